#include "tests/plugins/zplToF/pic/HybridKnownAnswers.h"

#include <cmath>
#include <limits>

namespace {

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
        ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(*pairs, maximum, 0.5F));
        EXPECT_EQ(maximum, 7.5F);
        maximum = -3.0F;
        ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(*depth, *confidence, maximum, 0.5F));
        EXPECT_EQ(maximum, 7.5F);
    }
}

TEST_P(HybridKnownAnswers, NoTrustedPixelLeavesTheMaximumUntouched) {
    TestPicture pairs(20, 3, 2, EkImageDataType::Float32);
    for (quint32 x = 0; x < 20; ++x) {
        pairs.set(x, 1, 0, 5.0F);
    }
    float maximum = 42.0F;
    EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(*pairs, maximum, 1.0F));
    EXPECT_EQ(maximum, 42.0F);
    pairs.set(4, 0, 0, -0.5F);
    pairs.set(4, 0, 1, 0.5F);
    EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(*pairs, maximum, 1.0F));
    EXPECT_EQ(maximum, 42.0F);
}

TEST_P(HybridKnownAnswers, ALargestDepthOfZeroCountsAndTheFirstZeroGivesItsSign) {
    for (const quint32 width : {1U, 2U, 7U, 40U}) {
        for (const float first : {0.0F, -0.0F}) {
            // The first trusted zero is in the second row, followed by zeros of the other sign.
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
            ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(*pairs, ofPairs, 1.0F));
            EXPECT_EQ(ofPairs, 0.0F);
            EXPECT_EQ(std::signbit(ofPairs), std::signbit(first)) << width;
            float ofTwo = 42.0F;
            ASSERT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(*depth, *confidence, ofTwo, 1.0F));
            EXPECT_EQ(ofTwo, 0.0F);
            EXPECT_EQ(std::signbit(ofTwo), std::signbit(first)) << width;
        }
    }
}

} // namespace
