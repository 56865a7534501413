#include "tests/plugins/zplToF/pic/HybridKnownAnswers.h"

#include <cmath>
#include <limits>

namespace {

INSTANTIATE_TEST_SUITE_P(Kernels, HybridKnownAnswers, ::testing::ValuesIn(ToFKernelChoice::available()),
                         [](const auto& instance) { return std::string(instance.param->sName); });

struct Answer {
    float depth;
    float confidence;
};

Answer depthOf(EkImageDataType type, qint64 x1, qint64 x2, qint64 x3, float pulse = 0.0F) {
    TestPicture source(1, 1, 3, type);
    source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, x1, x2, x3);
    TestPicture result(1, 1, 2, EkImageDataType::Float32);
    result.set(0, 0, 0, -1.0F);
    EXPECT_TRUE(CkToFPicAPI::rawHybridToDepth_Confidence(*source, *result, pulse));
    return {result.at<float>(0, 0, 0), result.at<float>(0, 0, 1)};
}

TEST_P(HybridKnownAnswers, NearPixel100_60_20) {
    for (const auto type : kUnsignedTypes) {
        const Answer answer = depthOf(type, 100, 60, 20);
        EXPECT_EQ(answer.confidence, float(3200.0 / 12000.0));
        EXPECT_EQ(answer.depth, float(40.0 * 11.99169832 / 120.0));
        EXPECT_NEAR(answer.depth, 3.99723F, 1e-5F);
    }
}

TEST_P(HybridKnownAnswers, FarPixel20_100_60) {
    for (const auto type : kUnsignedTypes) {
        const Answer answer = depthOf(type, 20, 100, 60);
        EXPECT_EQ(answer.confidence, float(3200.0 / 12000.0));
        EXPECT_NEAR(answer.depth, 15.98893F, 1e-5F);
    }
}

TEST_P(HybridKnownAnswers, NearEqualWindowsBelowTheThirdAreInvalid) {
    for (const auto type : kUnsignedTypes) {
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
    for (const auto type : kUnsignedTypes) {
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
    for (const auto type : kUnsignedTypes) {
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
    for (const auto type : kUnsignedTypes) {
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
            source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
            for (quint32 x = 0; x < width; ++x) {
                setWindows(source, x, 0, 100, 60, 20); // 60 + 100 - 40 = 120
                setWindows(source, x, 1, 30, 10, 90);  // 10 + 90 - 60 = 40
            }
            setWindows(source, 0, 0, 50, 0, 50); // 0 + 50 - 100 < 1
            TestPicture result(width, 2, 1, pair.result, 8);
            ASSERT_TRUE(CkToFPicAPI::rawHybridToIntensity(*source, *result));
            EXPECT_EQ(result.integerAt(0, 0), 50);
            EXPECT_EQ(result.integerAt(width - 1, 1), 30);
            ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(*source, *result));
            EXPECT_EQ(result.integerAt(0, 0), 0);
            EXPECT_EQ(result.integerAt(width - 1, 0), width == 1 ? 0 : 120);
            EXPECT_EQ(result.integerAt(width - 1, 1), 40);
            EXPECT_TRUE(result.guardsIntact());
        }
    }
}

TEST_P(HybridKnownAnswers, UnsupportedPairingsAreRefused) {
    for (const auto sourceType : kUnsignedTypes) {
        for (const auto resultType : {EkImageDataType::UInt8, EkImageDataType::UInt16,
                                      EkImageDataType::UInt32, EkImageDataType::Int16}) {
            const bool supported = sourceType == resultType || (sourceType == EkImageDataType::UInt32 &&
                                                                resultType != EkImageDataType::Int16);
            TestPicture source(2, 2, 3, sourceType);
            source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
            TestPicture result(2, 2, 1, resultType);
            EXPECT_EQ(CkToFPicAPI::rawHybridToIntensity(*source, *result), supported);
            EXPECT_EQ(CkToFPicAPI::rawHybridToAmplitude(*source, *result), supported);
            source->colorFilterArray = EkColorFilterArray::None;
            EXPECT_FALSE(CkToFPicAPI::rawHybridToIntensity(*source, *result));
            EXPECT_FALSE(CkToFPicAPI::rawHybridToAmplitude(*source, *result));
        }
    }
}

TEST_P(HybridKnownAnswers, NarrowingShiftsByTheBitsInUse) {
    // 20 bits in use, 12 wanted: a shift of 8 of the finished value.
    TestPicture source(2, 1, 3, EkImageDataType::UInt32, 32);
    source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, 0x80000, 0x100, 0x12345);
    setWindows(source, 1, 0, 0x40, 0x17F, 0x30);
    TestPicture result(2, 1, 1, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToIntensity(*source, *result));
    EXPECT_EQ(result.integerAt(0, 0), 0x123);
    EXPECT_EQ(result.integerAt(1, 0), 0);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(*source, *result));
    EXPECT_EQ(result.integerAt(0, 0), (0x100 + 0x80000 - 2 * 0x12345) >> 8);
    EXPECT_EQ(result.integerAt(1, 0), 1); // 0x17F + 0x40 - 0x60 = 0x15F
}

/// Intensity of one 32-bit pixel whose windows are all the same.
qint64 narrowed(qint64 sample, quint32 bits, EkImageDataType resultType, quint32 resultBits) {
    TestPicture source(1, 1, 3, EkImageDataType::UInt32, bits);
    source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, sample, sample, sample);
    TestPicture result(1, 1, 1, resultType, resultBits);
    EXPECT_TRUE(CkToFPicAPI::rawHybridToIntensity(*source, *result));
    return result.integerAt(0, 0);
}

TEST_P(HybridKnownAnswers, BitsAreDetectedOnlyWhenTheSourceClaimsMoreThanTheResult) {
    // 20 bits in use. A source that declares 16 has no more than the result: truncated, not shifted.
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
    source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(source, 0, 0, 0x100, 0x70000000, 0x300);
    TestPicture result(1, 1, 1, EkImageDataType::UInt32, 8);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(*source, *result));
    EXPECT_EQ(result.integerAt(0, 0), 0x70000100); // 0x70000000 + 0x300 - 2 * 0x100
}

TEST_P(HybridKnownAnswers, BitsOfEveryWindowCount) {
    for (quint32 window = 0; window < 3; ++window) {
        TestPicture source(2, 1, 3, EkImageDataType::UInt32, 32);
        source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
        setWindows(source, 0, 0, 0x300, 0x300, 0x300);
        source.setInteger(1, 0, window, 0x800000); // the only one with 24 bits
        TestPicture result(2, 1, 1, EkImageDataType::UInt16, 16);
        ASSERT_TRUE(CkToFPicAPI::rawHybridToIntensity(*source, *result));
        EXPECT_EQ(result.integerAt(0, 0), 3) << window;

        TestPicture sections(2, 2, 3, EkImageDataType::UInt16, 16);
        setWindows(sections, 0, 1, 1, 1, 1);
        sections.setInteger(1, 1, window, 0x700); // 11 bits, in the section that is taken
        TestPicture merged(2, 1, 3, EkImageDataType::UInt16, 16);
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*sections, *merged));
        EXPECT_EQ(merged->bitsPerChannel, 11U) << window;
    }
}

TEST_P(HybridKnownAnswers, AmplitudeBeyondTheResultIsTruncated) {
    TestPicture narrow(1, 1, 3, EkImageDataType::UInt8);
    narrow->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(narrow, 0, 0, 255, 200, 0);
    TestPicture narrowResult(1, 1, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(*narrow, *narrowResult));
    EXPECT_EQ(narrowResult.integerAt(0, 0), 455 - 256);
    TestPicture wide(1, 1, 3, EkImageDataType::UInt16);
    wide->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    setWindows(wide, 0, 0, 0, 65535, 65535);
    TestPicture wideResult(1, 1, 1, EkImageDataType::UInt16);
    ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(*wide, *wideResult));
    EXPECT_EQ(wideResult.integerAt(0, 0), 131070 - 65536);
}

} // namespace
