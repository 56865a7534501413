#include "tests/plugins/zplToF/pic/picTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

// Every expected value is worked out by hand from the samples; each runs with every implementation.

namespace {

class HybridKnownAnswers : public ::testing::TestWithParam<const SkToFKernels*> {
protected:
    void SetUp() override { ToFKernelChoice::pin(GetParam()); }
    void TearDown() override { ToFKernelChoice::pin(nullptr); }
};

INSTANTIATE_TEST_SUITE_P(Kernels, HybridKnownAnswers, ::testing::ValuesIn(ToFKernelChoice::available()),
                         [](const auto& instance) { return std::string(instance.param->sName); });

constexpr EkImageDataType unsignedTypes[] = {EkImageDataType::UInt8, EkImageDataType::UInt16,
                                             EkImageDataType::UInt32};

void setWindows(TestPicture& picture, quint32 x, quint32 y, qint64 x1, qint64 x2, qint64 x3) {
    picture.put(x, y, 0, x1);
    picture.put(x, y, 1, x2);
    picture.put(x, y, 2, x3);
}

struct Answer {
    float depth;
    float confidence;
};

Answer depthOf(EkImageDataType type, qint64 x1, qint64 x2, qint64 x3, float pulse = 0.0F) {
    TestPicture source(1, 1, 3, type);
    source.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, x1, x2, x3);
    TestPicture result(1, 1, 2, EkImageDataType::Float32);
    result.set(0, 0, 0, -1.0F);
    EXPECT_TRUE(CkToFPicAPI::rawHybridToDepth_Confidence(source.pic, result.pic, pulse));
    return {result.get<float>(0, 0, 0), result.get<float>(0, 0, 1)};
}

TEST_P(HybridKnownAnswers, NearPixel100_60_20) {
    for (const auto type : unsignedTypes) {
        const Answer answer = depthOf(type, 100, 60, 20);
        EXPECT_EQ(answer.confidence, float(3200.0 / 12000.0));
        EXPECT_EQ(answer.depth, float(40.0 * 11.99169832 / 120.0));
        EXPECT_NEAR(answer.depth, 3.99723F, 1e-5F);
    }
}

TEST_P(HybridKnownAnswers, FarPixel20_100_60) {
    for (const auto type : unsignedTypes) {
        const Answer answer = depthOf(type, 20, 100, 60);
        EXPECT_EQ(answer.confidence, float(3200.0 / 12000.0));
        EXPECT_NEAR(answer.depth, 15.98893F, 1e-5F);
    }
}

TEST_P(HybridKnownAnswers, NearEqualWindowsBelowTheThirdAreInvalid) {
    for (const auto type : unsignedTypes) {
        for (const qint64 second : {48, 49, 50, 51, 52}) {
            const Answer answer = depthOf(type, 50, second, 60);
            EXPECT_EQ(answer.depth, 0.0F) << second;
            EXPECT_EQ(answer.confidence, 0.0F) << second;
        }
        // 3 counts apart: P = 53, Q = 60, R = 50, S = 113, D = 13; 5650 / 6360 = 0.888 is accepted.
        const Answer apart = depthOf(type, 50, 53, 60);
        EXPECT_EQ(apart.confidence, float(5650.0 / 6360.0));
        EXPECT_EQ(apart.depth, float(10.0 * 11.99169832 / 13.0 + 11.99169832));
    }
}

TEST_P(HybridKnownAnswers, Confidence095IsInvalid) {
    // P = Q = 20, R = 19: 40 * 19 / 800 = 0.95.
    for (const auto type : unsignedTypes) {
        const Answer answer = depthOf(type, 20, 20, 19);
        EXPECT_EQ(answer.depth, 0.0F);
        EXPECT_EQ(answer.confidence, 0.0F);
        // One count less ambient light: 40 * 18 / 800 = 0.9 is not above the limit.
        const Answer limit = depthOf(type, 20, 20, 18);
        EXPECT_EQ(limit.confidence, 0.9F);
        EXPECT_EQ(limit.depth, float(2.0 * 11.99169832 / 4.0));
    }
}

TEST_P(HybridKnownAnswers, PixelsWithoutReflectionAreInvalid) {
    for (const auto type : unsignedTypes) {
        EXPECT_EQ(depthOf(type, 0, 0, 0).depth, 0.0F);
        EXPECT_EQ(depthOf(type, 60, 10, 40).depth, 0.0F); // Q below the ambient light
        EXPECT_EQ(depthOf(type, 100, 0, 0).depth, 0.0F);  // Q = 0
        EXPECT_EQ(depthOf(type, 10, 0, 40).depth, 0.0F);  // P = 0
    }
}

TEST_P(HybridKnownAnswers, PulseDurationSetsTheRange) {
    const float pulse = 40e-9F;
    const double range = double(pulse) * 299792458.0 * 0.5;
    EXPECT_EQ(depthOf(EkImageDataType::UInt16, 100, 60, 20, pulse).depth, float(40.0 * range / 120.0));
    EXPECT_EQ(depthOf(EkImageDataType::UInt16, 20, 100, 60, pulse).depth,
              float(40.0 * range / 120.0 + range));
    EXPECT_EQ(depthOf(EkImageDataType::UInt16, 100, 60, 20, -1.0F).depth, float(40.0 * 11.99169832 / 120.0));
    EXPECT_EQ(depthOf(EkImageDataType::UInt16, 100, 60, 20, NAN).depth, float(40.0 * 11.99169832 / 120.0));
}

TEST_P(HybridKnownAnswers, AnInfinitePulseGivesInfiniteDepths) {
    for (const auto type : unsignedTypes) {
        EXPECT_EQ(depthOf(type, 100, 60, 20, INFINITY).depth, INFINITY); // near: no offset is added
        EXPECT_EQ(depthOf(type, 20, 100, 60, INFINITY).depth, INFINITY);
        // Windows 2 and 3 are equal: 0 times infinity, near and far.
        EXPECT_TRUE(std::isnan(depthOf(type, 100, 20, 20, INFINITY).depth));
        EXPECT_TRUE(std::isnan(depthOf(type, 20, 100, 20, INFINITY).depth));
        EXPECT_EQ(depthOf(type, 50, 51, 60, INFINITY).depth, 0.0F) << "an invalid pixel";
        // The largest pulse: 3.4e38 * 299792458 / 2 = 5.1e46 m, beyond a float but not a double.
        constexpr float largest = std::numeric_limits<float>::max();
        EXPECT_EQ(depthOf(type, 100, 60, 20, largest).depth, INFINITY);
        EXPECT_EQ(depthOf(type, 100, 20, 20, largest).depth, 0.0F);
    }
}

TEST_P(HybridKnownAnswers, ThirtyTwoBitSamplesAreSigned) {
    // -20, 100, 60: P = 100, Q = 60, R = -20, S = 160, D = 200, offset; confidence -3200 / 12000.
    const Answer answer = depthOf(EkImageDataType::UInt32, -20, 100, 60);
    EXPECT_EQ(answer.confidence, float(-3200.0 / 12000.0));
    EXPECT_EQ(answer.depth, float(80.0 * 11.99169832 / 200.0 + 11.99169832));
    // The largest sums and products fit: P = Q = 2^31 - 1, R = 0, S = D = 2 P.
    const Answer huge = depthOf(EkImageDataType::UInt32, 2147483647, 2147483647, 0);
    EXPECT_EQ(huge.confidence, 0.0F);
    EXPECT_EQ(huge.depth, float(2147483647.0 * 11.99169832 / 4294967294.0));
}

struct Pair {
    EkImageDataType source;
    EkImageDataType result;
};

TEST_P(HybridKnownAnswers, IntensityAndAmplitudeOfEveryPairing) {
    const Pair pairs[] = {{EkImageDataType::UInt8, EkImageDataType::UInt8},
                          {EkImageDataType::UInt16, EkImageDataType::UInt16},
                          {EkImageDataType::UInt32, EkImageDataType::UInt32},
                          {EkImageDataType::UInt32, EkImageDataType::UInt8},
                          {EkImageDataType::UInt32, EkImageDataType::UInt16}};
    for (const Pair& pair : pairs) {
        for (const quint32 width : {1U, 7U, 33U}) {
            TestPicture source(width, 2, 3, pair.source, 8);
            source.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
            for (quint32 x = 0; x < width; ++x) {
                setWindows(source, x, 0, 100, 60, 20); // 60 + 100 - 40 = 120
                setWindows(source, x, 1, 30, 10, 90);  // 10 + 90 - 60 = 40
            }
            setWindows(source, 0, 0, 50, 0, 50); // 0 + 50 - 100 < 1
            TestPicture result(width, 2, 1, pair.result, 8);
            ASSERT_TRUE(CkToFPicAPI::rawHybridToIntensity(source.pic, result.pic));
            EXPECT_EQ(result.at(0, 0), 50);
            EXPECT_EQ(result.at(width - 1, 1), 30);
            ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(source.pic, result.pic));
            EXPECT_EQ(result.at(0, 0), 0);
            EXPECT_EQ(result.at(width - 1, 0), width == 1 ? 0 : 120);
            EXPECT_EQ(result.at(width - 1, 1), 40);
            EXPECT_TRUE(result.guardsIntact());
        }
    }
}

TEST_P(HybridKnownAnswers, UnsupportedPairingsAreRefused) {
    for (const auto sourceType : unsignedTypes) {
        for (const auto resultType : {EkImageDataType::UInt8, EkImageDataType::UInt16,
                                      EkImageDataType::UInt32, EkImageDataType::Int16}) {
            const bool supported = sourceType == resultType || (sourceType == EkImageDataType::UInt32 &&
                                                                resultType != EkImageDataType::Int16);
            TestPicture source(2, 2, 3, sourceType);
            source.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
            TestPicture result(2, 2, 1, resultType);
            EXPECT_EQ(CkToFPicAPI::rawHybridToIntensity(source.pic, result.pic), supported);
            EXPECT_EQ(CkToFPicAPI::rawHybridToAmplitude(source.pic, result.pic), supported);
            source.pic.colorFilterArray = EkColorFilterArray::None;
            EXPECT_FALSE(CkToFPicAPI::rawHybridToIntensity(source.pic, result.pic));
            EXPECT_FALSE(CkToFPicAPI::rawHybridToAmplitude(source.pic, result.pic));
        }
    }
}

TEST_P(HybridKnownAnswers, NarrowingShiftsByTheBitsInUse) {
    // 20 bits in use, 12 wanted: a shift of 8 of the finished value.
    TestPicture source(2, 1, 3, EkImageDataType::UInt32, 32);
    source.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, 0x80000, 0x100, 0x12345);
    setWindows(source, 1, 0, 0x40, 0x17F, 0x30);
    TestPicture result(2, 1, 1, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToIntensity(source.pic, result.pic));
    EXPECT_EQ(result.at(0, 0), 0x123);
    EXPECT_EQ(result.at(1, 0), 0);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(source.pic, result.pic));
    EXPECT_EQ(result.at(0, 0), (0x100 + 0x80000 - 2 * 0x12345) >> 8);
    EXPECT_EQ(result.at(1, 0), 1); // 0x17F + 0x40 - 0x60 = 0x15F
}

/// Intensity of one 32-bit pixel whose windows are all the same.
qint64 narrowed(qint64 sample, quint32 bits, EkImageDataType resultType, quint32 resultBits) {
    TestPicture source(1, 1, 3, EkImageDataType::UInt32, bits);
    source.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, sample, sample, sample);
    TestPicture result(1, 1, 1, resultType, resultBits);
    EXPECT_TRUE(CkToFPicAPI::rawHybridToIntensity(source.pic, result.pic));
    return result.at(0, 0);
}

TEST_P(HybridKnownAnswers, BitsAreDetectedOnlyWhenTheSourceClaimsMoreThanTheResult) {
    // 20 bits in use. A source that claims 16 has none more than the result: cut off, not shifted.
    EXPECT_EQ(narrowed(0xABCDE, 16, EkImageDataType::UInt16, 16), 0xBCDE);
    EXPECT_EQ(narrowed(0xABCDE, 8, EkImageDataType::UInt16, 16), 0xBCDE);
    EXPECT_EQ(narrowed(0xABCDE, 12, EkImageDataType::UInt8, 12), 0xDE);
    EXPECT_EQ(narrowed(0xABCDE, 17, EkImageDataType::UInt16, 16), 0xABCD); // one more: 20 - 16
}

TEST_P(HybridKnownAnswers, BitsInUseThatTheResultHoldsAreNotShifted) {
    EXPECT_EQ(narrowed(0x7F, 32, EkImageDataType::UInt8, 8), 0x7F);  // 7 bits
    EXPECT_EQ(narrowed(0xAB, 32, EkImageDataType::UInt8, 8), 0xAB);  // 8 bits
    EXPECT_EQ(narrowed(0x1AB, 32, EkImageDataType::UInt8, 8), 0xD5); // 9 bits: one place
    EXPECT_EQ(narrowed(0x9ABC, 32, EkImageDataType::UInt16, 16), 0x9ABC);
}

TEST_P(HybridKnownAnswers, ThirtyTwoBitResultsAreNeverShifted) {
    for (const quint32 resultBits : {0U, 8U, 16U, 31U}) {
        EXPECT_EQ(narrowed(0x7BCDEF01, 32, EkImageDataType::UInt32, resultBits), 0x7BCDEF01);
    }
    TestPicture source(1, 1, 3, EkImageDataType::UInt32, 32);
    source.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, 0x100, 0x70000000, 0x300);
    TestPicture result(1, 1, 1, EkImageDataType::UInt32, 8);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(source.pic, result.pic));
    EXPECT_EQ(result.at(0, 0), 0x70000100); // 0x70000000 + 0x300 - 2 * 0x100
}

TEST_P(HybridKnownAnswers, BitsOfEveryWindowCount) {
    for (quint32 window = 0; window < 3; ++window) {
        TestPicture source(2, 1, 3, EkImageDataType::UInt32, 32);
        source.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
        setWindows(source, 0, 0, 0x300, 0x300, 0x300);
        source.put(1, 0, window, 0x800000); // the only one with 24 bits
        TestPicture result(2, 1, 1, EkImageDataType::UInt16, 16);
        ASSERT_TRUE(CkToFPicAPI::rawHybridToIntensity(source.pic, result.pic));
        EXPECT_EQ(result.at(0, 0), 3) << window;

        TestPicture sections(2, 2, 3, EkImageDataType::UInt16, 16);
        setWindows(sections, 0, 1, 1, 1, 1);
        sections.put(1, 1, window, 0x700); // 11 bits, in the section that is taken
        TestPicture merged(2, 1, 3, EkImageDataType::UInt16, 16);
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(sections.pic, merged.pic));
        EXPECT_EQ(merged.pic.bitsPerChannel, 11U) << window;
    }
}

TEST_P(HybridKnownAnswers, AmplitudeBeyondTheResultIsTruncated) {
    TestPicture narrow(1, 1, 3, EkImageDataType::UInt8);
    narrow.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(narrow, 0, 0, 255, 200, 0);
    TestPicture narrowResult(1, 1, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(narrow.pic, narrowResult.pic));
    EXPECT_EQ(narrowResult.at(0, 0), 455 - 256);
    TestPicture wide(1, 1, 3, EkImageDataType::UInt16);
    wide.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(wide, 0, 0, 0, 65535, 65535);
    TestPicture wideResult(1, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(wide.pic, wideResult.pic));
    EXPECT_EQ(wideResult.at(0, 0), 131070 - 65536);
}

TEST_P(HybridKnownAnswers, SectionOneOfFourIsShiftedByTwo) {
    for (const auto type : {EkImageDataType::UInt16, EkImageDataType::UInt32}) {
        TestPicture source(3, 8, 3, EkImageDataType::UInt16, 12);
        for (quint32 x = 0; x < 3; ++x) {
            setWindows(source, x, 0, 1, 2, 3);
            setWindows(source, x, 2, 100, 200, 3684);
            setWindows(source, x, 4, 1, 3685, 1); // the threshold itself is saturated
            setWindows(source, x, 6, 4095, 1, 1);
            setWindows(source, x, 1, 11, 12, 13); // row 1: nothing but section 0
            setWindows(source, x, 3, 4000, 0, 0);
            setWindows(source, x, 5, 0, 4000, 0);
            setWindows(source, x, 7, 0, 0, 4000);
        }
        TestPicture result(3, 2, 3, type, 16);
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(source.pic, result.pic));
        for (quint32 x = 0; x < 3; ++x) {
            EXPECT_EQ(result.at(x, 0, 0), 400);
            EXPECT_EQ(result.at(x, 0, 1), 800);
            EXPECT_EQ(result.at(x, 0, 2), 14736);
            EXPECT_EQ(result.at(x, 1, 0), 88);
            EXPECT_EQ(result.at(x, 1, 1), 96);
            EXPECT_EQ(result.at(x, 1, 2), 104);
        }
        EXPECT_EQ(result.pic.bitsPerChannel, 14U); // 8192 <= 14736 < 16384
    }
}

TEST_P(HybridKnownAnswers, ThresholdsOfTheUsualBits) {
    const std::pair<quint32, int> thresholds[] = {{8, 229}, {12, 3685}, {16, 58981}};
    for (const auto& [bits, threshold] : thresholds) {
        const auto type = bits == 8 ? EkImageDataType::UInt8 : EkImageDataType::UInt16;
        TestPicture source(2, 2, 3, type, bits);
        setWindows(source, 0, 0, 1, 1, 1);
        setWindows(source, 1, 0, 1, 1, 1);
        setWindows(source, 0, 1, 0, threshold - 1, 0);
        setWindows(source, 1, 1, 0, threshold, 0);
        TestPicture result(2, 1, 3, EkImageDataType::UInt32, 32);
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(source.pic, result.pic));
        EXPECT_EQ(result.at(0, 0, 1), threshold - 1);
        EXPECT_EQ(result.at(1, 0, 1), 2);
    }
}

TEST_P(HybridKnownAnswers, AThresholdBeyond16BitsKeepsItsLow16) {
    // (2^20 - 1) * 0.9 = 943717.5, and 943717 - 14 * 65536 = 26213; (2^18 - 1) * 0.9 = 235928.7, 39320.
    const std::pair<quint32, int> thresholds[] = {{20, 26213}, {18, 39320}};
    for (const auto& [bits, threshold] : thresholds) {
        TestPicture source(40, 2, 3, EkImageDataType::UInt16, bits);
        for (quint32 x = 0; x < 40; ++x) {
            setWindows(source, x, 0, 1, 1, 1);
            setWindows(source, x, 1, 0, x % 2 == 0 ? threshold - 1 : threshold, 0);
        }
        TestPicture result(40, 1, 3, EkImageDataType::UInt32, 32);
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(source.pic, result.pic));
        EXPECT_EQ(result.at(38, 0, 1), threshold - 1);
        EXPECT_EQ(result.at(39, 0, 1), 2);
    }
}

TEST_P(HybridKnownAnswers, OneSectionIsRefused) {
    TestPicture source(2, 600, 3, EkImageDataType::UInt16);
    TestPicture result(2, 600, 3, EkImageDataType::UInt16);
    const auto before = result.store;
    EXPECT_FALSE(CkToFPicAPI::processHdrFromImageSections(source.pic, result.pic));
    EXPECT_EQ(result.store, before);
}

TEST_P(HybridKnownAnswers, BitsOfAnEightBitMergeStay) {
    TestPicture source(1, 2, 3, EkImageDataType::UInt8);
    setWindows(source, 0, 1, 3, 3, 3);
    TestPicture result(1, 1, 3, EkImageDataType::UInt16, 8);
    ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(source.pic, result.pic));
    EXPECT_EQ(result.pic.bitsPerChannel, 8U);
    result.pic.bitsPerChannel = 9;
    ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(source.pic, result.pic));
    EXPECT_EQ(result.pic.bitsPerChannel, 2U);
}

TEST_P(HybridKnownAnswers, TestImageBecomesThreeWindows) {
    for (const auto type : {EkImageDataType::UInt8, EkImageDataType::UInt16}) {
        TestPicture source(5, 6, 1, type);
        for (quint32 y = 0; y < 6; ++y) {
            for (quint32 x = 0; x < 5; ++x) {
                source.put(x, y, 0, 10 * y + x);
            }
        }
        TestPicture result(5, 2, 3, type);
        ASSERT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(source.pic, result.pic));
        for (quint32 x = 0; x < 5; ++x) {
            EXPECT_EQ(result.at(x, 1, 0), 50 + x);
            EXPECT_EQ(result.at(x, 1, 1), 30 + x);
            EXPECT_EQ(result.at(x, 1, 2), 10 + x);
        }
    }
}

TEST_P(HybridKnownAnswers, SixteenBitTestImageIsReducedToTwelveBits) {
    TestPicture source(2, 3, 1, EkImageDataType::UInt16, 16);
    source.put(1, 2, 0, 0xABCD);
    TestPicture result(2, 1, 3, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(source.pic, result.pic));
    EXPECT_EQ(result.at(1, 0, 0), 0xABC);
    EXPECT_EQ(result.pic.bitsPerChannel, 12U);
}

TEST_P(HybridKnownAnswers, OnlyATestImageOf16BitsForAResultOf12IsReduced) {
    const struct {
        EkImageDataType type;
        quint32 bits;
        quint32 resultBits;
        qint64 expected;
    } cases[] = {{EkImageDataType::UInt16, 16, 12, 0xABC},  {EkImageDataType::UInt16, 16, 16, 0xABCD},
                 {EkImageDataType::UInt16, 16, 10, 0xABCD}, {EkImageDataType::UInt16, 16, 14, 0xABCD},
                 {EkImageDataType::UInt16, 16, 8, 0xABCD},  {EkImageDataType::UInt16, 12, 12, 0xABCD},
                 {EkImageDataType::UInt16, 14, 12, 0xABCD}, {EkImageDataType::UInt16, 15, 12, 0xABCD},
                 {EkImageDataType::UInt16, 17, 12, 0xABCD}, {EkImageDataType::UInt16, 32, 12, 0xABCD},
                 {EkImageDataType::UInt8, 16, 12, 0xCD}};
    for (const auto& c : cases) {
        TestPicture source(2, 3, 1, c.type, c.bits);
        source.put(1, 2, 0, 0xABCD);
        TestPicture result(2, 1, 3, c.type, c.resultBits);
        ASSERT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(source.pic, result.pic));
        EXPECT_EQ(result.at(1, 0, 0), c.expected) << c.bits << " to " << c.resultBits;
        EXPECT_EQ(result.pic.bitsPerChannel, c.resultBits);
    }
}

TEST_P(HybridKnownAnswers, EmptyTestImageResultIsDoneAtOnceButTypesAreChecked) {
    TestPicture source(2, 3, 1, EkImageDataType::UInt16);
    SkPicBuf empty;
    empty.channels = 3;
    empty.dataType = EkImageDataType::UInt16;
    EXPECT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(source.pic, empty));
    empty.dataType = EkImageDataType::UInt8;
    EXPECT_FALSE(CkToFPicAPI::convertTestImageToHybridTof(source.pic, empty));
}

TEST_P(HybridKnownAnswers, LargestDepthAmongTrustedPixels) {
    for (const quint32 width : {3U, 8U, 19U}) {
        TestPicture pairs(width, 2, 2, EkImageDataType::Float32, 0, 8);
        TestPicture depth(width, 2, 1, EkImageDataType::Float32, 0, 4);
        TestPicture confidence(width, 2, 1, EkImageDataType::Float32, 0, 12);
        const auto set = [&](quint32 x, quint32 y, float metres, float value) {
            pairs.set(x, y, 0, metres);
            pairs.set(x, y, 1, value);
            depth.set(x, y, 0, metres);
            confidence.set(x, y, 0, value);
        };
        set(0, 0, 2.5F, 0.5F);
        set(width - 1, 1, 7.5F, 0.25F);
        set(1, 1, 9.0F, 0.50001F);
        set(1, 0, 8.0F, 0.0F);
        set(2, 0, NAN, 0.1F);
        set(0, 1, 11.0F, NAN);
        float maximum = -3.0F;
        ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(pairs.pic, maximum, 0.5F));
        EXPECT_EQ(maximum, 7.5F);
        maximum = -3.0F;
        ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(depth.pic, confidence.pic, maximum, 0.5F));
        EXPECT_EQ(maximum, 7.5F);
    }
}

TEST_P(HybridKnownAnswers, NoTrustedPixelLeavesTheMaximumUntouched) {
    TestPicture pairs(20, 3, 2, EkImageDataType::Float32);
    for (quint32 x = 0; x < 20; ++x) {
        pairs.set(x, 1, 0, 5.0F);
    }
    float maximum = 42.0F;
    EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(pairs.pic, maximum, 1.0F));
    EXPECT_EQ(maximum, 42.0F);
    pairs.set(4, 0, 0, -0.5F);
    pairs.set(4, 0, 1, 0.5F);
    EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(pairs.pic, maximum, 1.0F));
    EXPECT_EQ(maximum, 42.0F);
}

TEST_P(HybridKnownAnswers, ALargestDepthOfZeroCountsAndTheFirstZeroGivesItsSign) {
    for (const quint32 width : {1U, 2U, 7U, 40U}) {
        for (const float first : {0.0F, -0.0F}) {
            // The first trusted zero stands in the second row, followed by zeros of the other sign.
            TestPicture pairs(width, 3, 2, EkImageDataType::Float32);
            TestPicture depth(width, 3, 1, EkImageDataType::Float32);
            TestPicture confidence(width, 3, 1, EkImageDataType::Float32);
            for (quint32 index = 0; index < 3 * width; ++index) {
                const quint32 x = index % width;
                const quint32 y = index / width;
                const quint32 firstZero = width + width / 2;
                const float metres = index < firstZero ? -0.5F : index == firstZero ? first : -first;
                pairs.set(x, y, 0, metres);
                pairs.set(x, y, 1, 0.5F);
                depth.set(x, y, 0, metres);
                confidence.set(x, y, 0, 0.5F);
            }
            float ofPairs = 42.0F;
            ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(pairs.pic, ofPairs, 1.0F));
            EXPECT_EQ(ofPairs, 0.0F);
            EXPECT_EQ(std::signbit(ofPairs), std::signbit(first)) << width;
            float ofTwo = 42.0F;
            ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(depth.pic, confidence.pic, ofTwo, 1.0F));
            EXPECT_EQ(ofTwo, 0.0F);
            EXPECT_EQ(std::signbit(ofTwo), std::signbit(first)) << width;
        }
    }
}

} // namespace
