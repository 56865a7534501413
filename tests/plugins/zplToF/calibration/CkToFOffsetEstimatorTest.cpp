#include "plugins/zplToF/calibration/CkToFOffsetEstimator.h"

#include "tests/support/TestPicture.h"
#include "zuCore/CkPicBufAPI.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kHalfPi = 1.5707963F;
constexpr float kPi = 3.1415927F;

// Owns its pixels; the function gives each sample from column, row and channel.
template <class Sample>
class Picture {
public:
    template <class Function>
    Picture(quint32 uiWidth, quint32 uiHeight, quint32 uiChannels, Function sample, quint32 uiPadding = 0)
        : m_bytes((uiWidth * uiChannels * sizeof(Sample) + uiPadding) * uiHeight, 0xA5) {
        picture.width = uiWidth;
        picture.height = uiHeight;
        picture.channels = uiChannels;
        picture.dataType = SampleTypeOf<Sample>::value;
        picture.bitsPerChannel = quint32(8 * sizeof(Sample));
        picture.lineSize = uiWidth * uiChannels * quint32(sizeof(Sample)) + uiPadding;
        picture.data = m_bytes.data();
        for (quint32 y = 0; y < uiHeight; ++y) {
            for (quint32 x = 0; x < uiWidth; ++x) {
                for (quint32 c = 0; c < uiChannels; ++c) {
                    const Sample value = Sample(sample(x, y, c));
                    std::memcpy(picture.row(y) + (x * uiChannels + c) * sizeof(Sample), &value,
                                sizeof(Sample));
                }
            }
        }
    }

    SkPicBuf picture;

private:
    std::vector<quint8> m_bytes;
};

CkImageMetadata aMinusB(int iPhases) {
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
    metadata.phasesCount = iPhases;
    return metadata;
}

float sum(const SkPicBuf& picture, int iChannel, int& iCount) {
    return CkToFOffsetEstimator::sumCentralPhaseShiftPixels(&picture, iChannel, 6, iCount);
}
} // namespace

TEST(CkToFOffsetEstimatorTest, SumsTheMiddleSixBySixOfALargePicture) {
    // Powers of two at the corners of the square and just outside it: sums are exact and tell the pixels
    // apart.
    Picture<float> full(640, 480, 1, [](quint32 x, quint32 y, quint32) {
        const bool bInside = x >= 317 && x <= 322 && y >= 237 && y <= 242;
        return bInside ? 1.0 : 1024.0;
    });
    int iCount = -1;
    EXPECT_EQ(sum(full.picture, 0, iCount), 36.0F);
    EXPECT_EQ(iCount, 36);
}

TEST(CkToFOffsetEstimatorTest, AFourByFourPictureUsesItsCentralTwoByTwo) {
    Picture<float> small(4, 4, 1, [](quint32 x, quint32 y, quint32) {
        return (x == 1 || x == 2) && (y == 1 || y == 2) ? 0.5 : 64.0;
    });
    int iCount = -1;
    EXPECT_EQ(sum(small.picture, 0, iCount), 2.0F);
    EXPECT_EQ(iCount, 4);
}

TEST(CkToFOffsetEstimatorTest, ASixBySixPictureIsSummedWhole) {
    Picture<float> whole(6, 6, 1, [](quint32 x, quint32 y, quint32) { return x + 6 * y; });
    int iCount = -1;
    EXPECT_EQ(sum(whole.picture, 0, iCount), 630.0F); // 0 + 1 + ... + 35
    EXPECT_EQ(iCount, 36);
}

TEST(CkToFOffsetEstimatorTest, ALowPictureUsesHalfItsHeight) {
    // Wide enough for 6, but 3 rows: side 1, at row 3 / 2 - 0 and column 20 / 2 - 0.
    Picture<float> low(20, 3, 1, [](quint32 x, quint32 y, quint32) { return x + 100 * y; });
    int iCount = -1;
    EXPECT_EQ(sum(low.picture, 0, iCount), 110.0F);
    EXPECT_EQ(iCount, 1);
}

TEST(CkToFOffsetEstimatorTest, APictureOneColumnWideGivesNothing) {
    Picture<float> narrow(1, 20, 1, [](quint32, quint32, quint32) { return 1.0; });
    int iCount = -1;
    EXPECT_EQ(sum(narrow.picture, 0, iCount), 0.0F);
    EXPECT_EQ(iCount, 0);
    Picture<float> flat(20, 1, 1, [](quint32, quint32, quint32) { return 1.0; });
    EXPECT_EQ(sum(flat.picture, 0, iCount), 0.0F);
    EXPECT_EQ(iCount, 0);
}

TEST(CkToFOffsetEstimatorTest, AgreesWithASlowSumOnEverySizeChannelAndPadding) {
    std::mt19937 random(7);
    for (quint32 uiWidth = 1; uiWidth <= 14; ++uiWidth) {
        for (quint32 uiHeight = 1; uiHeight <= 14; ++uiHeight) {
            const quint32 uiChannels = 1 + quint32(random() % 2);
            const quint32 uiPadding = quint32(random() % 9);
            const auto sample = [](quint32 x, quint32 y, quint32 c) { return 1 + x + 16 * y + 256 * c; };
            Picture<float> picture(uiWidth, uiHeight, uiChannels, sample, uiPadding);
            const int iChannel = int(uiChannels) - 1;
            int iSide = 6;
            if (int(uiWidth) < iSide) {
                iSide = int(uiWidth) / 2;
            }
            if (int(uiHeight) < iSide) {
                iSide = int(uiHeight) / 2;
            }
            double fExpected = 0.0; // whole numbers far below 2^24: exact in any order
            for (int y = 0; y < iSide; ++y) {
                for (int x = 0; x < iSide; ++x) {
                    fExpected += sample(uiWidth / 2 - quint32(iSide / 2) + quint32(x),
                                        uiHeight / 2 - quint32(iSide / 2) + quint32(y), quint32(iChannel));
                }
            }
            int iCount = -1;
            EXPECT_EQ(double(sum(picture.picture, iChannel, iCount)), fExpected)
                << uiWidth << " x " << uiHeight;
            EXPECT_EQ(iCount, iSide * iSide);
        }
    }
}

TEST(CkToFOffsetEstimatorTest, WhatCannotBeSummedGivesNothing) {
    int iCount = -1;
    EXPECT_EQ(CkToFOffsetEstimator::sumCentralPhaseShiftPixels(nullptr, 0, 6, iCount), 0.0F);
    EXPECT_EQ(iCount, 0);
    const auto one = [](quint32, quint32, quint32) { return 1; };
    Picture<double> wide(8, 8, 1, one);
    EXPECT_EQ(sum(wide.picture, 0, iCount), 0.0F);
    EXPECT_EQ(iCount, 0);
    Picture<float> good(8, 8, 2, one);
    for (const int iChannel : {-1, 2, std::numeric_limits<int>::max()}) {
        EXPECT_EQ(sum(good.picture, iChannel, iCount), 0.0F);
        EXPECT_EQ(iCount, 0);
    }
    for (const int iSize : {0, -6, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(CkToFOffsetEstimator::sumCentralPhaseShiftPixels(&good.picture, 0, iSize, iCount), 0.0F);
        EXPECT_EQ(iCount, 0);
    }
    SkPicBuf empty = good.picture;
    empty.data = nullptr;
    EXPECT_EQ(sum(empty, 0, iCount), 0.0F);
    SkPicBuf shortRows = good.picture;
    shortRows.lineSize = 8;
    EXPECT_EQ(sum(shortRows, 0, iCount), 0.0F);
    EXPECT_EQ(iCount, 0);
}

TEST(CkToFOffsetEstimatorTest, TwentyMegahertzAndAMeanOfPiAre3Point746Metres) {
    CkToFOffsetEstimator estimator;
    Picture<float> picture(8, 8, 2, [](quint32, quint32, quint32 c) { return c == 0 ? kPi : 100.0F; });
    ASSERT_TRUE(estimator.addPicture(picture.picture, nullptr));
    const auto result = estimator.result(40.0F, 20.0F);
    // 36 additions in single precision. Half a turn of half a wavelength: 0.5 * 299.70254 / 40 = 3.74628175;
    // 0.4 - 3.74628175.
    EXPECT_NEAR(result.fMeasuredDistance, 3.7462819F, 2e-6F);
    EXPECT_NEAR(result.fOffset, -3.3462819F, 2e-6F);
}

TEST(CkToFOffsetEstimatorTest, AveragesPicturesOfDifferentPhase) {
    CkToFOffsetEstimator estimator;
    for (const float fPhase : {1.0F, 2.0F, 6.0F}) {
        Picture<float> picture(6, 6, 1, [fPhase](quint32, quint32, quint32) { return fPhase; });
        ASSERT_TRUE(estimator.addPicture(picture.picture, nullptr));
    }
    EXPECT_EQ(estimator.pixelCount(), 108);
    EXPECT_EQ(estimator.phaseSum(), 324.0F);
    // A mean of 3 rad at 10 MHz: 3 / 2pi * 299.70254 / 20 = 7.15487 m.
    EXPECT_NEAR(estimator.result(100.0F, 10.0F).fMeasuredDistance, 7.15487F, 1e-5F);
    estimator.reset();
    EXPECT_EQ(estimator.pixelCount(), 0);
    EXPECT_EQ(estimator.phaseSum(), 0.0F);
}

TEST(CkToFOffsetEstimatorTest, ADifferencePictureIsReadPhaseByPhase) {
    // Four phases of 6 x 6: d0 - d180 = 0, d90 - d270 = 200, so a quarter of a turn everywhere.
    const auto sample = [](quint32, quint32 y, quint32) { return y / 6 == 1 ? 150 : y / 6 == 3 ? -50 : 7; };
    const CkImageMetadata metadata = aMinusB(4);
    CkToFOffsetEstimator estimator;
    Picture<qint16> words(6, 24, 1, sample);
    ASSERT_TRUE(estimator.addPicture(words.picture, &metadata));
    EXPECT_EQ(estimator.pixelCount(), 36);
    EXPECT_NEAR(estimator.phaseSum(), 36 * kHalfPi, 1e-4);
    const auto small = [](quint32, quint32 y, quint32) { return y / 6 == 1 ? 100 : y / 6 == 3 ? -50 : 7; };
    Picture<qint8> bytes(6, 24, 1, small);
    ASSERT_TRUE(estimator.addPicture(bytes.picture, &metadata));
    EXPECT_EQ(estimator.pixelCount(), 72);
    EXPECT_NEAR(estimator.phaseSum(), 72 * kHalfPi, 1e-4);
}

TEST(CkToFOffsetEstimatorTest, ADifferencePictureIsNotReadBehindItsEnd) {
    // The sanitizer guards the bytes after the last row: all phase counts, whether they divide the height or
    // not.
    for (const int iPhases : {1, 2, 3, 4, 5, 8, 24, 25, 1000, std::numeric_limits<int>::max()}) {
        const CkImageMetadata metadata = aMinusB(iPhases);
        Picture<qint16> picture(6, 24, 1, [](quint32, quint32, quint32) { return 5; });
        CkToFOffsetEstimator estimator;
        const bool bUsable = iPhases == 1 || iPhases == 2 || iPhases == 4 || iPhases == 8;
        EXPECT_EQ(estimator.addPicture(picture.picture, &metadata), bUsable) << iPhases;
        EXPECT_EQ(estimator.hasMean(), bUsable) << iPhases;
    }
}

TEST(CkToFOffsetEstimatorTest, APictureOfAAndBCountsAsPhaseZero) {
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
    metadata.phasesCount = 4;
    Picture<quint16> picture(8, 32, 2, [](quint32 x, quint32, quint32) { return 100 + x; });
    CkToFOffsetEstimator estimator;
    ASSERT_TRUE(estimator.addPicture(picture.picture, &metadata));
    EXPECT_EQ(estimator.pixelCount(), 36);
    EXPECT_EQ(estimator.phaseSum(), 0.0F);
    EXPECT_TRUE(estimator.hasMean());
}

TEST(CkToFOffsetEstimatorTest, OtherPicturesAreRefused) {
    const auto one = [](quint32, quint32, quint32) { return 1; };
    CkToFOffsetEstimator estimator;
    Picture<quint8> grey(8, 8, 1, one);
    EXPECT_FALSE(estimator.addPicture(grey.picture, nullptr));
    Picture<quint16> hybrid(8, 8, 3, one);
    hybrid.picture.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    EXPECT_FALSE(estimator.addPicture(hybrid.picture, nullptr));
    Picture<float> depth(8, 8, 1, one);
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{QStringLiteral("Depth")};
    EXPECT_FALSE(estimator.addPicture(depth.picture, &metadata));
    EXPECT_FALSE(estimator.addPicture(SkPicBuf(), nullptr));
    EXPECT_EQ(estimator.pixelCount(), 0);
}

TEST(CkToFOffsetEstimatorTest, ThereIsNoMeanWithoutPixelsOrOfNoNumbers) {
    CkToFOffsetEstimator estimator;
    EXPECT_FALSE(estimator.hasMean());
    Picture<float> tooSmall(1, 1, 1, [](quint32, quint32, quint32) { return 1.0; });
    EXPECT_TRUE(estimator.addPicture(tooSmall.picture, nullptr));
    EXPECT_FALSE(estimator.hasMean());
    Picture<float> good(6, 6, 1, [](quint32, quint32, quint32) { return 1.0; });
    EXPECT_TRUE(estimator.addPicture(good.picture, nullptr));
    EXPECT_TRUE(estimator.hasMean());
    Picture<float> bad(6, 6, 1, [](quint32 x, quint32 y, quint32) { return x == 3 && y == 3 ? kNan : 1.0F; });
    EXPECT_TRUE(estimator.addPicture(bad.picture, nullptr));
    EXPECT_FALSE(estimator.hasMean());
}
