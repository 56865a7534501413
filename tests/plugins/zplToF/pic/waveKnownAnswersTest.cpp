#include "tests/plugins/zplToF/pic/picTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Every expected value is computed on paper from the samples; each test runs with every implementation.

namespace {

using Angles = CkToFPicAPI::AngleList;

class WaveKnownAnswers : public ::testing::TestWithParam<const SkToFKernels*> {
protected:
    void SetUp() override { ToFKernelChoice::pin(GetParam()); }
    void TearDown() override { ToFKernelChoice::pin(nullptr); }
};

INSTANTIATE_TEST_SUITE_P(Kernels, WaveKnownAnswers, ::testing::ValuesIn(ToFKernelChoice::available()),
                         [](const auto& instance) { return std::string(instance.param->sName); });

constexpr float kPi = 3.14159274F;

void setTaps(TestPicture& picture, quint32 x, std::initializer_list<std::pair<int, int>> phases) {
    quint32 y = 0;
    for (const auto& [a, b] : phases) {
        picture.setInteger(x, y, 0, a);
        picture.setInteger(x, y, 1, b);
        ++y;
    }
}

TEST_P(WaveKnownAnswers, TwoPhasePixel200And100) {
    for (const auto type : {EkImageDataType::UInt8, EkImageDataType::UInt16}) {
        TestPicture source(1, 2, 2, type);
        setTaps(source, 0, {{200, 100}, {100, 100}});
        TestPicture result(1, 1, 2, EkImageDataType::Float32);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 2));
        EXPECT_EQ(result.at<float>(0, 0, 0), 0.0F);
        EXPECT_EQ(result.at<float>(0, 0, 1), float(std::sqrt(62.0)) / 50.0F);
        EXPECT_EQ(result->minValue, 0.0F);
        EXPECT_EQ(result->maxValue, float(std::sqrt(62.0)) / 50.0F);
    }
}

TEST_P(WaveKnownAnswers, NegativeAxisIsPiAndNegativeYIsAbovePi) {
    TestPicture source(3, 2, 1, EkImageDataType::Int16);
    const int vectors[3][2] = {{-500, 0}, {-500, -1}, {0, -700}};
    for (quint32 x = 0; x < 3; ++x) {
        source.setInteger(x, 0, 0, vectors[x][0]);
        source.setInteger(x, 1, 0, vectors[x][1]);
    }
    TestPicture result(3, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(*source, *result, 2));
    EXPECT_LE(ulpDistance(result.at<float>(0, 0), kPi), 2);
    EXPECT_NEAR(result.at<float>(1, 0), 3.1435926F, 2e-6F); // pi + 0.002
    EXPECT_GT(result.at<float>(1, 0), kPi);
    EXPECT_NEAR(result.at<float>(2, 0), 4.712389F, 1e-6F); // 3 pi / 2
    EXPECT_EQ(result->minValue, result.at<float>(0, 0));
    EXPECT_EQ(result->maxValue, result.at<float>(2, 0));
}

TEST_P(WaveKnownAnswers, EqualTapsEverywhereKeepConfidenceZero) {
    for (const quint32 width : {1U, 5U, 16U, 37U}) {
        TestPicture source(width, 4, 2, EkImageDataType::UInt16);
        for (quint32 x = 0; x < width; ++x) {
            setTaps(source, x, {{7, 7}, {900, 900}, {0, 0}, {65535, 65535}});
        }
        TestPicture result(width, 1, 2, EkImageDataType::Float32);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 4));
        for (quint32 x = 0; x < width; ++x) {
            EXPECT_EQ(result.at<float>(x, 0, 0), 0.0F);
            EXPECT_EQ(result.at<float>(x, 0, 1), 0.0F);
        }
        EXPECT_EQ(result->minValue, 0.0F);
        EXPECT_EQ(result->maxValue, 0.0F);
    }
}

TEST_P(WaveKnownAnswers, TheRangeBeginsAtConfidencesOfZeroUnderAnglesThatAreNot) {
    for (const auto type : {EkImageDataType::UInt8, EkImageDataType::UInt16}) {
        for (const quint32 width : {1U, 5U, 37U}) {
            TestPicture source(width, 4, 2, type);
            for (quint32 x = 0; x < width; ++x) {
                setTaps(source, x, {{5, 5}, {6, 4}, {7, 7}, {8, 8}}); // (0, 2): 2 / 4 is an amplitude of 0
            }
            TestPicture result(width, 1, 2, EkImageDataType::Float32);
            ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 4));
            const float angle = result.at<float>(0, 0, 0);
            EXPECT_LE(ulpDistance(angle, 1.57079637F), 2);
            EXPECT_EQ(result.at<float>(width - 1, 0, 0), angle);
            EXPECT_EQ(result.at<float>(width - 1, 0, 1), 0.0F);
            EXPECT_EQ(result->minValue, 0.0F);
            EXPECT_EQ(result->maxValue, angle);
        }
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
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 1));
    EXPECT_EQ(result.at<float>(3, 0, 1), 3.0F / 10.0F);
    EXPECT_EQ(result.at<float>(20, 0, 1), 3.0F / 10.0F);
    EXPECT_EQ(result.at<float>(20, 0, 0), 0.0F);
    EXPECT_EQ(result.at<float>(0, 0, 1), 0.25F);
    EXPECT_EQ(result.at<float>(20, 1, 1), 0.25F);
    EXPECT_EQ(result.at<float>(0, 1, 0), 12.0F);
    EXPECT_EQ(result->minValue, 0.0F);
    EXPECT_EQ(result->maxValue, 12.0F);
}

TEST_P(WaveKnownAnswers, ConfidenceThatRoundsDownToZeroIsReplacedToo) {
    // 3 >> 2 = 0: a confidence of exactly 0 with an amplitude of 3.
    TestPicture source(2, 1, 2, EkImageDataType::UInt8);
    setTaps(source, 0, {{3, 0}});
    setTaps(source, 1, {{24, 12}});
    TestPicture result(2, 1, 2, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 1));
    EXPECT_EQ(result.at<float>(0, 0, 0), 3.0F);
    EXPECT_EQ(result.at<float>(0, 0, 1), 0.25F);
}

TEST_P(WaveKnownAnswers, SignedEightBitMinus128) {
    TestPicture source(1, 1, 1, EkImageDataType::Int8);
    source.setInteger(0, 0, 0, -128);
    TestPicture phase(1, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(*source, *phase, 1));
    EXPECT_EQ(phase.at<float>(0, 0), 128.0F);
    TestPicture amplitude(1, 1, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToAmplitude(*source, *amplitude, 1));
    EXPECT_EQ(amplitude.at<quint8>(0, 0), 128);
}

TEST_P(WaveKnownAnswers, DataType11IsRefusedAndRangeNotRefreshed) {
    TestPicture source(4, 4, 2, EkImageDataType::Other16);
    TestPicture result(4, 1, 2, EkImageDataType::Float32);
    result->minValue = -5.0F;
    result->maxValue = 17.0F;
    const auto before = result.bytes();
    ASSERT_TRUE(CkToFPicAPI::isRawX2ToFABPic(*source, nullptr));
    EXPECT_FALSE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 4));
    EXPECT_EQ(result->minValue, -5.0F);
    EXPECT_EQ(result->maxValue, 17.0F);
    EXPECT_EQ(result.bytes(), before);
}

TEST_P(WaveKnownAnswers, EightPhasesListWithout135ReadsNominalPositionThree) {
    // Only the 135 degree phase carries signal: p = 0, q = d135, so x < 0 < y and the angle is 3 pi / 4.
    const Angles lacking{315, 270, 225, 1000, 180, 90, 45, 0};
    TestPicture source(1, 8, 1, EkImageDataType::Int16);
    source.setInteger(0, 3, 0, 400);
    TestPicture result(1, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(*source, *result, 8, &lacking));
    EXPECT_NEAR(result.at<float>(0, 0), 2.3561945F, 1e-6F);
    // 400 * 0.7071 on both axes has the length 400; divided by 8 it is 49.99...
    TestPicture amplitude(1, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToAmplitude(*source, *amplitude, 8, &lacking));
    EXPECT_NEAR(amplitude.at<quint16>(0, 0), 50, 1);
}

TEST_P(WaveKnownAnswers, AngleListReordersFourPhases) {
    // Stored as 180, 0, 270, 90: d0 = 0, d90 = 300, others 0 -> pi / 2.
    const Angles stored{180, 0, 270, 90};
    TestPicture source(1, 4, 1, EkImageDataType::Int16);
    source.setInteger(0, 3, 0, 300);
    TestPicture result(1, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(*source, *result, 4, &stored));
    EXPECT_NEAR(result.at<float>(0, 0), 1.5707964F, 1e-6F);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(*source, *result, 4));
    EXPECT_NEAR(result.at<float>(0, 0), 4.712389F, 1e-6F); // the same sub-image is 270 degrees now
}

TEST_P(WaveKnownAnswers, SumOfSquaresBeyond32Bits) {
    // x = y = 131070: length 185360.97, a quarter of it 46340. Sum 4 * 65535 >> 3 = 32767.
    TestPicture source(1, 4, 2, EkImageDataType::UInt16);
    setTaps(source, 0, {{65535, 0}, {65535, 0}, {0, 65535}, {0, 65535}});
    TestPicture amplitude(1, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(*source, *amplitude, 4));
    EXPECT_EQ(amplitude.at<quint16>(0, 0), 46340);
    TestPicture result(1, 1, 2, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 4));
    EXPECT_NEAR(result.at<float>(0, 0, 0), 0.78539816F, 1e-6F);
    EXPECT_EQ(result.at<float>(0, 0, 1), float(std::sqrt(32767.0)) / 92680.0F);
}

TEST_P(WaveKnownAnswers, AmplitudeAtExactSquares) {
    // Lengths 5, 10 and 20 from 3-4-5 triangles, one step below each of them truncates.
    const int vectors[][3] = {{12, 16, 5}, {12, 15, 4}, {-24, 32, 10}, {-24, -31, 9}, {3, 4, 1}, {0, 3, 0}};
    TestPicture source(6, 4, 1, EkImageDataType::Int16);
    for (quint32 x = 0; x < 6; ++x) {
        source.setInteger(x, 0, 0, vectors[x][0]);
        source.setInteger(x, 1, 0, vectors[x][1]);
    }
    TestPicture result(6, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawAminBPicToAmplitude(*source, *result, 4));
    for (quint32 x = 0; x < 6; ++x) {
        EXPECT_EQ(result.at<quint16>(x, 0), vectors[x][2]) << x;
    }
}

TEST_P(WaveKnownAnswers, EightBitSinglePhaseTenAndThirty) {
    TestPicture source(1, 1, 2, EkImageDataType::UInt8);
    setTaps(source, 0, {{10, 30}});
    TestPicture result(1, 1, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToIntensity(*source, *result, 1));
    EXPECT_EQ(result.at<quint8>(0, 0), 20);
    result.setInteger(0, 0, 0, 0);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(*source, *result, 1));
    EXPECT_EQ(result.at<quint8>(0, 0), 20);
}

TEST_P(WaveKnownAnswers, AmplitudeFromSigned16IntoUnsigned8IsRefused) {
    TestPicture source(3, 4, 1, EkImageDataType::Int16);
    source.setInteger(0, 0, 0, 100);
    TestPicture result(3, 1, 1, EkImageDataType::UInt8);
    const auto before = result.bytes();
    EXPECT_FALSE(CkToFPicAPI::rawAminBPicToAmplitude(*source, *result, 4));
    EXPECT_EQ(result.bytes(), before);
}

TEST_P(WaveKnownAnswers, FourPhasesOfThousand) {
    TestPicture source(3, 4, 2, EkImageDataType::UInt16);
    for (quint32 x = 0; x < 3; ++x) {
        setTaps(source, x, {{1000, 1000}, {1000, 1000}, {1000, 1000}, {1000, 1000}});
    }
    TestPicture result(3, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToIntensity(*source, *result, 4));
    EXPECT_EQ(result.at<quint16>(2, 0), 1000);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(*source, *result, 4));
    EXPECT_EQ(result.at<quint16>(2, 0), 0);
}

TEST_P(WaveKnownAnswers, DifferenceWrapsInsteadOfSaturating) {
    TestPicture narrow(2, 1, 2, EkImageDataType::UInt8);
    setTaps(narrow, 0, {{200, 10}});
    setTaps(narrow, 1, {{0, 255}});
    TestPicture narrowResult(2, 1, 1, EkImageDataType::Int8);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToRawAminB(*narrow, *narrowResult));
    EXPECT_EQ(narrowResult.at<qint8>(0, 0), -66);
    EXPECT_EQ(narrowResult.at<qint8>(1, 0), 1);

    TestPicture wide(2, 1, 2, EkImageDataType::UInt16);
    setTaps(wide, 0, {{65535, 1}});
    setTaps(wide, 1, {{10, 30}});
    TestPicture wideResult(2, 1, 1, EkImageDataType::Int16);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToRawAminB(*wide, *wideResult));
    EXPECT_EQ(wideResult.at<qint16>(0, 0), -2);
    EXPECT_EQ(wideResult.at<qint16>(1, 0), -20);
}

} // namespace
