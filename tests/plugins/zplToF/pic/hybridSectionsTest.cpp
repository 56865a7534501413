#include "tests/plugins/zplToF/pic/HybridKnownAnswers.h"

namespace {

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
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *result));
        for (quint32 x = 0; x < 3; ++x) {
            EXPECT_EQ(result.integerAt(x, 0, 0), 400);
            EXPECT_EQ(result.integerAt(x, 0, 1), 800);
            EXPECT_EQ(result.integerAt(x, 0, 2), 14736);
            EXPECT_EQ(result.integerAt(x, 1, 0), 88);
            EXPECT_EQ(result.integerAt(x, 1, 1), 96);
            EXPECT_EQ(result.integerAt(x, 1, 2), 104);
        }
        EXPECT_EQ(result->bitsPerChannel, 14U); // 8192 <= 14736 < 16384
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
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *result));
        EXPECT_EQ(result.integerAt(0, 0, 1), threshold - 1);
        EXPECT_EQ(result.integerAt(1, 0, 1), 2);
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
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *result));
        EXPECT_EQ(result.integerAt(38, 0, 1), threshold - 1);
        EXPECT_EQ(result.integerAt(39, 0, 1), 2);
    }
}

TEST_P(HybridKnownAnswers, OneSectionIsRefused) {
    TestPicture source(2, 600, 3, EkImageDataType::UInt16);
    TestPicture result(2, 600, 3, EkImageDataType::UInt16);
    const auto before = result.bytes();
    EXPECT_FALSE(CkToFPicAPI::processHdrFromImageSections(*source, *result));
    EXPECT_EQ(result.bytes(), before);
}

TEST_P(HybridKnownAnswers, BitsOfAnEightBitMergeStay) {
    TestPicture source(1, 2, 3, EkImageDataType::UInt8);
    setWindows(source, 0, 1, 3, 3, 3);
    TestPicture result(1, 1, 3, EkImageDataType::UInt16, 8);
    ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *result));
    EXPECT_EQ(result->bitsPerChannel, 8U);
    result->bitsPerChannel = 9;
    ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *result));
    EXPECT_EQ(result->bitsPerChannel, 2U);
}

TEST_P(HybridKnownAnswers, TestImageBecomesThreeWindows) {
    for (const auto type : {EkImageDataType::UInt8, EkImageDataType::UInt16}) {
        TestPicture source(5, 6, 1, type);
        for (quint32 y = 0; y < 6; ++y) {
            for (quint32 x = 0; x < 5; ++x) {
                source.setInteger(x, y, 0, 10 * y + x);
            }
        }
        TestPicture result(5, 2, 3, type);
        ASSERT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(*source, *result));
        for (quint32 x = 0; x < 5; ++x) {
            EXPECT_EQ(result.integerAt(x, 1, 0), 50 + x);
            EXPECT_EQ(result.integerAt(x, 1, 1), 30 + x);
            EXPECT_EQ(result.integerAt(x, 1, 2), 10 + x);
        }
    }
}

TEST_P(HybridKnownAnswers, SixteenBitTestImageIsReducedToTwelveBits) {
    TestPicture source(2, 3, 1, EkImageDataType::UInt16, 16);
    source.setInteger(1, 2, 0, 0xABCD);
    TestPicture result(2, 1, 3, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(*source, *result));
    EXPECT_EQ(result.integerAt(1, 0, 0), 0xABC);
    EXPECT_EQ(result->bitsPerChannel, 12U);
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
        source.setInteger(1, 2, 0, 0xABCD);
        TestPicture result(2, 1, 3, c.type, c.resultBits);
        ASSERT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(*source, *result));
        EXPECT_EQ(result.integerAt(1, 0, 0), c.expected) << c.bits << " to " << c.resultBits;
        EXPECT_EQ(result->bitsPerChannel, c.resultBits);
    }
}

TEST_P(HybridKnownAnswers, EmptyTestImageResultIsDoneAtOnceButTypesAreChecked) {
    TestPicture source(2, 3, 1, EkImageDataType::UInt16);
    SkPicBuf empty;
    empty.channels = 3;
    empty.dataType = EkImageDataType::UInt16;
    EXPECT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(*source, empty));
    empty.dataType = EkImageDataType::UInt8;
    EXPECT_FALSE(CkToFPicAPI::convertTestImageToHybridTof(*source, empty));
}

} // namespace
