#include "picTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Every expected value is worked out by hand from the samples; each runs with every implementation.

namespace {

using Angles = CkToFPicAPI::AngleList;

class WaveKnownAnswers : public ::testing::TestWithParam<const SkToFKernels*> {
protected:
    void SetUp() override { CkToFKernelChoice::pin(GetParam()); }
    void TearDown() override { CkToFKernelChoice::pin(nullptr); }
};

INSTANTIATE_TEST_SUITE_P(Kernels, WaveKnownAnswers, ::testing::ValuesIn(CkToFKernelChoice::available()),
                         [](const auto& instance) { return std::string(instance.param->sName); });

constexpr float pi = 3.14159274F;

void setTaps(TestPicture& picture, quint32 x, std::initializer_list<std::pair<int, int>> phases) {
    quint32 y = 0;
    for (const auto& [a, b] : phases) {
        picture.put(x, y, 0, a);
        picture.put(x, y, 1, b);
        ++y;
    }
}

TEST_P(WaveKnownAnswers, TwoPhasePixel200And100) {
    for (const auto type : {EkImageDataType::UInt8, EkImageDataType::UInt16}) {
        TestPicture source(1, 2, 2, type);
        setTaps(source, 0, {{200, 100}, {100, 100}});
        TestPicture result(1, 1, 2, EkImageDataType::Float32);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source.pic, result.pic, 2));
        EXPECT_EQ(result.get<float>(0, 0, 0), 0.0F);
        EXPECT_EQ(result.get<float>(0, 0, 1), float(std::sqrt(62.0)) / 50.0F);
        EXPECT_EQ(result.pic.minValue, 0.0F);
        EXPECT_EQ(result.pic.maxValue, float(std::sqrt(62.0)) / 50.0F);
    }
}

TEST_P(WaveKnownAnswers, NegativeAxisIsPiAndNegativeYIsAbovePi) {
    TestPicture source(3, 2, 1, EkImageDataType::Int16);
    const int vectors[3][2] = {{-500, 0}, {-500, -1}, {0, -700}};
    for (quint32 x = 0; x < 3; ++x) {
        source.put(x, 0, 0, vectors[x][0]);
        source.put(x, 1, 0, vectors[x][1]);
    }
    TestPicture result(3, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(source.pic, result.pic, 2));
    EXPECT_LE(ulpDistance(result.get<float>(0, 0), pi), 2);
    EXPECT_NEAR(result.get<float>(1, 0), 3.1435926F, 2e-6F); // pi + 0.002
    EXPECT_GT(result.get<float>(1, 0), pi);
    EXPECT_NEAR(result.get<float>(2, 0), 4.712389F, 1e-6F); // 3 pi / 2
    EXPECT_EQ(result.pic.minValue, result.get<float>(0, 0));
    EXPECT_EQ(result.pic.maxValue, result.get<float>(2, 0));
}

TEST_P(WaveKnownAnswers, EqualTapsEverywhereKeepConfidenceZero) {
    for (const quint32 width : {1U, 5U, 16U, 37U}) {
        TestPicture source(width, 4, 2, EkImageDataType::UInt16);
        for (quint32 x = 0; x < width; ++x)
            setTaps(source, x, {{7, 7}, {900, 900}, {0, 0}, {65535, 65535}});
        TestPicture result(width, 1, 2, EkImageDataType::Float32);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source.pic, result.pic, 4));
        for (quint32 x = 0; x < width; ++x) {
            EXPECT_EQ(result.get<float>(x, 0, 0), 0.0F);
            EXPECT_EQ(result.get<float>(x, 0, 1), 0.0F);
        }
        EXPECT_EQ(result.pic.minValue, 0.0F);
        EXPECT_EQ(result.pic.maxValue, 0.0F);
    }
}

TEST_P(WaveKnownAnswers, DarkPixelTakesTheWorstConfidenceOfTheFrame) {
    // Confidence of one phase: sqrt((A + B) >> 2) / |A - B|. 36 >> 2 = 9, 3 / 10 = 0.3 and 3 / 12 = 0.25.
    TestPicture source(21, 2, 2, EkImageDataType::UInt8);
    for (quint32 x = 0; x < 21; ++x) {
        setTaps(source, x, {{24, 12}, {12, 24}});
    }
    setTaps(source, 3, {{23, 13}});
    setTaps(source, 20, {{90, 90}});
    TestPicture result(21, 2, 2, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source.pic, result.pic, 1));
    EXPECT_EQ(result.get<float>(3, 0, 1), 3.0F / 10.0F);
    EXPECT_EQ(result.get<float>(20, 0, 1), 3.0F / 10.0F);
    EXPECT_EQ(result.get<float>(20, 0, 0), 0.0F);
    EXPECT_EQ(result.get<float>(0, 0, 1), 0.25F);
    EXPECT_EQ(result.get<float>(20, 1, 1), 0.25F);
    EXPECT_EQ(result.get<float>(0, 1, 0), 12.0F);
    EXPECT_EQ(result.pic.minValue, 0.0F);
    EXPECT_EQ(result.pic.maxValue, 12.0F);
}

TEST_P(WaveKnownAnswers, ConfidenceThatRoundsDownToZeroIsReplacedToo) {
    // 3 >> 2 = 0: a confidence of exactly 0 with an amplitude of 3.
    TestPicture source(2, 1, 2, EkImageDataType::UInt8);
    setTaps(source, 0, {{3, 0}});
    setTaps(source, 1, {{24, 12}});
    TestPicture result(2, 1, 2, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source.pic, result.pic, 1));
    EXPECT_EQ(result.get<float>(0, 0, 0), 3.0F);
    EXPECT_EQ(result.get<float>(0, 0, 1), 0.25F);
}

TEST_P(WaveKnownAnswers, SignedEightBitMinus128) {
    TestPicture source(1, 1, 1, EkImageDataType::Int8);
    source.put(0, 0, 0, -128);
    TestPicture phase(1, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(source.pic, phase.pic, 1));
    EXPECT_EQ(phase.get<float>(0, 0), 128.0F);
    TestPicture amplitude(1, 1, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToAmplitude(source.pic, amplitude.pic, 1));
    EXPECT_EQ(amplitude.get<quint8>(0, 0), 128);
}

TEST_P(WaveKnownAnswers, DataType11IsRefusedAndRangeNotRefreshed) {
    TestPicture source(4, 4, 2, EkImageDataType::Other16);
    TestPicture result(4, 1, 2, EkImageDataType::Float32);
    result.pic.minValue = -5.0F;
    result.pic.maxValue = 17.0F;
    const auto before = result.store;
    ASSERT_TRUE(CkToFPicAPI::isRawX2ToFABPic(source.pic, nullptr));
    EXPECT_FALSE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source.pic, result.pic, 4));
    EXPECT_EQ(result.pic.minValue, -5.0F);
    EXPECT_EQ(result.pic.maxValue, 17.0F);
    EXPECT_EQ(result.store, before);
}

TEST_P(WaveKnownAnswers, EightPhasesListWithout135ReadsNominalPositionThree) {
    // Only the 135 degree phase carries signal: p = 0, q = d135, so x < 0 < y and the angle is 3 pi / 4.
    const Angles lacking{315, 270, 225, 1000, 180, 90, 45, 0};
    TestPicture source(1, 8, 1, EkImageDataType::Int16);
    source.put(0, 3, 0, 400);
    TestPicture result(1, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(source.pic, result.pic, 8, &lacking));
    EXPECT_NEAR(result.get<float>(0, 0), 2.3561945F, 1e-6F);
    // 400 * 0.7071 on both axes has the length 400; divided by 8 it is 49.99...
    TestPicture amplitude(1, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToAmplitude(source.pic, amplitude.pic, 8, &lacking));
    EXPECT_NEAR(amplitude.get<quint16>(0, 0), 50, 1);
}

TEST_P(WaveKnownAnswers, AngleListReordersFourPhases) {
    // Stored as 180, 0, 270, 90: d0 = 0, d90 = 300, others 0 -> pi / 2.
    const Angles stored{180, 0, 270, 90};
    TestPicture source(1, 4, 1, EkImageDataType::Int16);
    source.put(0, 3, 0, 300);
    TestPicture result(1, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(source.pic, result.pic, 4, &stored));
    EXPECT_NEAR(result.get<float>(0, 0), 1.5707964F, 1e-6F);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(source.pic, result.pic, 4));
    EXPECT_NEAR(result.get<float>(0, 0), 4.712389F, 1e-6F); // the same sub-image is 270 degrees now
}

TEST_P(WaveKnownAnswers, SumOfSquaresBeyond32Bits) {
    // x = y = 131070: length 185360.97, a quarter of it 46340. Sum 4 * 65535 >> 3 = 32767.
    TestPicture source(1, 4, 2, EkImageDataType::UInt16);
    setTaps(source, 0, {{65535, 0}, {65535, 0}, {0, 65535}, {0, 65535}});
    TestPicture amplitude(1, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(source.pic, amplitude.pic, 4));
    EXPECT_EQ(amplitude.get<quint16>(0, 0), 46340);
    TestPicture result(1, 1, 2, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source.pic, result.pic, 4));
    EXPECT_NEAR(result.get<float>(0, 0, 0), 0.78539816F, 1e-6F);
    EXPECT_EQ(result.get<float>(0, 0, 1), float(std::sqrt(32767.0)) / 92680.0F);
}

TEST_P(WaveKnownAnswers, AmplitudeAtExactSquares) {
    // Lengths 5, 10 and 20 from 3-4-5 triangles, one step below each of them truncates.
    const int vectors[][3] = {{12, 16, 5}, {12, 15, 4}, {-24, 32, 10}, {-24, -31, 9}, {3, 4, 1}, {0, 3, 0}};
    TestPicture source(6, 4, 1, EkImageDataType::Int16);
    for (quint32 x = 0; x < 6; ++x) {
        source.put(x, 0, 0, vectors[x][0]);
        source.put(x, 1, 0, vectors[x][1]);
    }
    TestPicture result(6, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToAmplitude(source.pic, result.pic, 4));
    for (quint32 x = 0; x < 6; ++x)
        EXPECT_EQ(result.get<quint16>(x, 0), vectors[x][2]) << x;
}

/// The largest integer whose square is not above the given one, worked out in integers.
qint64 integerRoot(qint64 square) {
    qint64 root = 0;
    for (qint64 bit = qint64(1) << 20; bit > 0; bit >>= 1) {
        if ((root + bit) * (root + bit) <= square)
            root += bit;
    }
    return root;
}

// A component above 255 takes the tap of the opposite phase as well.
TEST_P(WaveKnownAnswers, AmplitudeOfEveryVectorOf8BitSamples) {
    TestPicture source(511, 4 * 511, 2, EkImageDataType::UInt8);
    for (quint32 y = 0; y <= 510; ++y) {
        for (quint32 x = 0; x <= 510; ++x) {
            source.put(x, y, 0, std::min(x, 255U));
            source.put(x, 2 * 511 + y, 1, x - std::min(x, 255U));
            source.put(x, 511 + y, 0, std::min(y, 255U));
            source.put(x, 3 * 511 + y, 1, y - std::min(y, 255U));
        }
    }
    TestPicture four(511, 511, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(source.pic, four.pic, 4));
    // Phases 0 and 90 alone: components up to 255.
    TestPicture two(511, 511, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(source.pic, two.pic, 2));
    for (quint32 y = 0; y <= 510; ++y) {
        for (quint32 x = 0; x <= 510; ++x) {
            // floor(sqrt(s) / n) is floor(floor(sqrt(s)) / n).
            ASSERT_EQ(four.get<quint8>(x, y), integerRoot(x * x + y * y) / 4) << x << ' ' << y;
            const quint32 a = std::min(x, 255U);
            const quint32 b = std::min(y, 255U);
            ASSERT_EQ(two.get<quint8>(x, y), integerRoot(a * a + b * b) / 2) << a << ' ' << b;
        }
    }
}

TEST_P(WaveKnownAnswers, AmplitudeAroundEveryStepOf16BitSamples) {
    // Vectors along the axis step exactly at multiples of four; a short second component does not lift
    // the vector before them over the step, and a long one meets every size of square.
    TestPicture source(1024, 4 * 128, 2, EkImageDataType::UInt16);
    const auto component = [](quint32 index) { return std::min(index, 131070U); };
    for (const quint32 other : {0U, 1U, 511U, 65535U, 131070U}) {
        for (quint32 index = 0; index < 1024 * 128; ++index) {
            const quint32 x = index % 1024;
            const quint32 y = index / 1024;
            const quint32 along = component(index);
            source.put(x, y, 0, std::min(along, 65535U));
            source.put(x, 2 * 128 + y, 1, along - std::min(along, 65535U));
            source.put(x, 128 + y, 0, std::min(other, 65535U));
            source.put(x, 3 * 128 + y, 1, other - std::min(other, 65535U));
        }
        TestPicture result(1024, 128, 1, EkImageDataType::UInt16);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(source.pic, result.pic, 4));
        for (quint32 index = 0; index < 1024 * 128; ++index) {
            const qint64 along = component(index);
            ASSERT_EQ(result.get<quint16>(index % 1024, index / 1024),
                      integerRoot(along * along + qint64(other) * other) / 4)
                << along << ' ' << other;
        }
    }
}

/// Samples of 14 bits, now and then the limits of them and of 16 bits: blocks of pixels that take a short cut
/// lie beside blocks that must not.
void fillAround14Bits(TestPicture& source, std::mt19937& random) {
    const bool taps = source.pic.channels == 2;
    const std::vector<qint64> limits =
        taps ? std::vector<qint64>{16383, 16384, 32767, 32768, 65535}
             : std::vector<qint64>{16383, 16384, 32767, -16383, -16384, -16385, -32768};
    for (quint32 y = 0; y < source.pic.height; ++y) {
        for (quint32 x = 0; x < source.pic.width; ++x) {
            for (quint32 channel = 0; channel < source.pic.channels; ++channel) {
                const qint64 sample = taps ? random() % 16384 : qint64(random() % 32767) - 16383;
                source.put(x, y, channel, random() % 128 == 0 ? limits[random() % limits.size()] : sample);
            }
        }
    }
}

TEST_P(WaveKnownAnswers, AmplitudeAround14Bits) {
    constexpr quint32 width = 1021;
    constexpr quint32 height = 60;
    std::mt19937 random(14);
    for (const quint32 channels : {1U, 2U}) {
        TestPicture source(width, 4 * height, channels,
                           channels == 2 ? EkImageDataType::UInt16 : EkImageDataType::Int16);
        fillAround14Bits(source, random);
        const auto difference = [&](quint32 x, quint32 y, quint32 phase) {
            const quint32 row = phase * height + y;
            return source.at(x, row, 0) - (channels == 2 ? source.at(x, row, 1) : 0);
        };
        for (const int phases : {2, 4}) {
            TestPicture result(width, height, 1, EkImageDataType::UInt16);
            ASSERT_TRUE(channels == 2 ? CkToFPicAPI::rawX2PicToAmplitude(source.pic, result.pic, phases)
                                      : CkToFPicAPI::rawAminBPicToAmplitude(source.pic, result.pic, phases));
            for (quint32 y = 0; y < height; ++y) {
                for (quint32 x = 0; x < width; ++x) {
                    const bool four = phases == 4;
                    const qint64 along = difference(x, y, 0) - (four ? difference(x, y, 2) : 0);
                    const qint64 across = difference(x, y, 1) - (four ? difference(x, y, 3) : 0);
                    ASSERT_EQ(result.get<quint16>(x, y),
                              integerRoot(along * along + across * across) / phases)
                        << along << ' ' << across;
                }
            }
        }
    }
}

TEST_P(WaveKnownAnswers, EightBitSinglePhaseTenAndThirty) {
    TestPicture source(1, 1, 2, EkImageDataType::UInt8);
    setTaps(source, 0, {{10, 30}});
    TestPicture result(1, 1, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToIntensity(source.pic, result.pic, 1));
    EXPECT_EQ(result.get<quint8>(0, 0), 20);
    result.put(0, 0, 0, 0);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(source.pic, result.pic, 1));
    EXPECT_EQ(result.get<quint8>(0, 0), 20);
}

TEST_P(WaveKnownAnswers, AmplitudeFromSigned16IntoUnsigned8IsRefused) {
    TestPicture source(3, 4, 1, EkImageDataType::Int16);
    source.put(0, 0, 0, 100);
    TestPicture result(3, 1, 1, EkImageDataType::UInt8);
    const auto before = result.store;
    EXPECT_FALSE(CkToFPicAPI::rawAminBPicToAmplitude(source.pic, result.pic, 4));
    EXPECT_EQ(result.store, before);
}

TEST_P(WaveKnownAnswers, FourPhasesOfThousand) {
    TestPicture source(3, 4, 2, EkImageDataType::UInt16);
    for (quint32 x = 0; x < 3; ++x)
        setTaps(source, x, {{1000, 1000}, {1000, 1000}, {1000, 1000}, {1000, 1000}});
    TestPicture result(3, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToIntensity(source.pic, result.pic, 4));
    EXPECT_EQ(result.get<quint16>(2, 0), 1000);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(source.pic, result.pic, 4));
    EXPECT_EQ(result.get<quint16>(2, 0), 0);
}

TEST_P(WaveKnownAnswers, DifferenceWrapsInsteadOfSaturating) {
    TestPicture narrow(2, 1, 2, EkImageDataType::UInt8);
    setTaps(narrow, 0, {{200, 10}});
    setTaps(narrow, 1, {{0, 255}});
    TestPicture narrowResult(2, 1, 1, EkImageDataType::Int8);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToRawAminB(narrow.pic, narrowResult.pic));
    EXPECT_EQ(narrowResult.get<qint8>(0, 0), -66);
    EXPECT_EQ(narrowResult.get<qint8>(1, 0), 1);

    TestPicture wide(2, 1, 2, EkImageDataType::UInt16);
    setTaps(wide, 0, {{65535, 1}});
    setTaps(wide, 1, {{10, 30}});
    TestPicture wideResult(2, 1, 1, EkImageDataType::Int16);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToRawAminB(wide.pic, wideResult.pic));
    EXPECT_EQ(wideResult.get<qint16>(0, 0), -2);
    EXPECT_EQ(wideResult.get<qint16>(1, 0), -20);
}

} // namespace
