#include "tests/support/SampleTypes.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkPicBufAPI.h"

#include <gtest/gtest.h>
#include <tuple>
#include <vector>

namespace {

template <typename T>
class CopyOfSamples : public testing::Test {};
TYPED_TEST_SUITE(CopyOfSamples, SampleTypes);

/// A different value for every sample, up to 127.
template <typename T>
T pattern(quint32 x, quint32 y, quint32 c) {
    return T((x * 7 + y * 31 + c * 3) % 128);
}

TYPED_TEST(CopyOfSamples, CopyPicBufBetweenDifferentLineSizes) {
    using T = TypeParam;
    PaddedPicture source(9, 5, 3, SampleTypeOf<T>::value, 0, 13);
    PaddedPicture target(9, 5, 3, SampleTypeOf<T>::value, 0, 5);
    source.fill<T>(pattern<T>);
    source->minValue = -2.0F;
    source->maxValue = 8.0F;
    source->additionalData = {5, 6};
    ASSERT_TRUE(CkPicBufAPI::CopyPicBuf(*source, *target));
    for (quint32 y = 0; y < 5; ++y) {
        for (quint32 x = 0; x < 9; ++x) {
            for (quint32 c = 0; c < 3; ++c) {
                ASSERT_EQ(target.at<T>(x, y, c), pattern<T>(x, y, c));
            }
        }
    }
    EXPECT_TRUE(target.guardsIntact());
    EXPECT_EQ(target->minValue, -2.0F);
    EXPECT_EQ(target->maxValue, 8.0F);
    EXPECT_EQ(target->additionalData.frameNumber, 5U);
    EXPECT_EQ(target->additionalData.timestampNs, 6);
}

TYPED_TEST(CopyOfSamples, CopyRectMovesExactlyTheRectangle) {
    using T = TypeParam;
    PaddedPicture source(8, 6, 2, SampleTypeOf<T>::value, 0, 3);
    PaddedPicture target(7, 9, 2, SampleTypeOf<T>::value, 0, 9);
    source.fill<T>(pattern<T>);
    target.fill<T>([](quint32, quint32, quint32) { return T(99); });
    ASSERT_TRUE(CkPicBufAPI::CopyRect(*target, 2, 5, *source, 3, 1, 4, 3));
    for (quint32 y = 0; y < 9; ++y) {
        for (quint32 x = 0; x < 7; ++x) {
            for (quint32 c = 0; c < 2; ++c) {
                const bool inside = x >= 2 && x < 6 && y >= 5 && y < 8;
                ASSERT_EQ(target.at<T>(x, y, c), inside ? pattern<T>(x + 1, y - 4, c) : T(99))
                    << x << ", " << y;
            }
        }
    }
    EXPECT_TRUE(target.guardsIntact());
}

TYPED_TEST(CopyOfSamples, ExtractChannelTakesOneChannel) {
    using T = TypeParam;
    PaddedPicture source(9, 4, 3, SampleTypeOf<T>::value);
    PaddedPicture target(9, 4, 1, SampleTypeOf<T>::value, 0, 1);
    source.fill<T>(pattern<T>);
    for (quint32 channel = 0; channel < 3; ++channel) {
        ASSERT_TRUE(CkPicBufAPI::ExtractChannel(*source, *target, channel));
        for (quint32 y = 0; y < 4; ++y) {
            for (quint32 x = 0; x < 9; ++x) {
                ASSERT_EQ(target.at<T>(x, y), pattern<T>(x, y, channel));
            }
        }
    }
    EXPECT_TRUE(target.guardsIntact());
    EXPECT_FALSE(CkPicBufAPI::ExtractChannel(*source, *target, 3));
}

TEST(CopyPicBuf, AllocatesAnEmptyTargetLikeTheSource) {
    PaddedPicture source(5, 3, 2, EkImageDataType::UInt16, 12);
    source.fill<quint16>(pattern<quint16>);
    source->colorFilterArray = EkColorFilterArray::RawX2AandB;
    SkPicBuf target;
    ASSERT_TRUE(CkPicBufAPI::CopyPicBuf(*source, target));
    EXPECT_EQ(target.lineSize, source->lineSize);
    EXPECT_EQ(target.bitsPerChannel, 12U);
    EXPECT_EQ(target.colorFilterArray, EkColorFilterArray::RawX2AandB);
    EXPECT_NE(target.data, source->data);
    EXPECT_EQ(sampleAt<quint16>(target, 4, 2, 1), pattern<quint16>(4, 2, 1));
    CkPicBufAPI::FreePicBuf(target);
}

TEST(CopyPicBuf, RefusesATargetOfAnotherFormat) {
    PaddedPicture source(5, 3, 2, EkImageDataType::UInt16);
    source.fill<quint16>(pattern<quint16>);
    const std::tuple<quint32, quint32, quint32, EkImageDataType> others[] = {
        {4, 3, 2, EkImageDataType::UInt16},
        {5, 4, 2, EkImageDataType::UInt16},
        {5, 3, 1, EkImageDataType::UInt16},
        {5, 3, 2, EkImageDataType::Int16}};
    for (const auto& [width, height, channels, type] : others) {
        PaddedPicture target(width, height, channels, type);
        const auto before = target.bytes();
        EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(*source, *target));
        EXPECT_EQ(target.bytes(), before);
    }
}

TEST(CopyPicBuf, OfAPictureToItselfChangesNothing) {
    PaddedPicture picture(5, 3, 1, EkImageDataType::UInt8);
    picture.fill<quint8>(pattern<quint8>);
    const auto before = picture.bytes();
    EXPECT_TRUE(CkPicBufAPI::CopyPicBuf(*picture, *picture));
    EXPECT_EQ(picture.bytes(), before);
}

TEST(CopyRect, RefusesWhatLeavesAPicture) {
    PaddedPicture source(8, 6, 1, EkImageDataType::UInt8);
    PaddedPicture target(8, 6, 1, EkImageDataType::UInt8);
    source.fill<quint8>([](quint32, quint32, quint32) { return quint8(1); });
    const auto before = target.bytes();
    const quint32 all = 0xffffffffU;
    const struct {
        quint32 toX, toY, fromX, fromY, width, height;
    } cases[] = {{1, 0, 0, 0, 8, 6},   {0, 1, 0, 0, 8, 6},   {0, 0, 1, 0, 8, 6},     {0, 0, 0, 1, 8, 6},
                 {0, 0, 0, 0, 9, 1},   {0, 0, 0, 0, 1, 7},   {all, 0, 0, 0, 1, 1},   {0, all, 0, 0, 1, 1},
                 {0, 0, all, 0, 2, 2}, {0, 0, 0, all, 2, 2}, {0, 0, 0, 0, all, all}, {9, 0, 0, 0, 0, 0},
                 {0, 0, 0, 7, 0, 0}};
    for (const auto& c : cases) {
        EXPECT_FALSE(
            CkPicBufAPI::CopyRect(*target, c.toX, c.toY, *source, c.fromX, c.fromY, c.width, c.height));
    }
    EXPECT_TRUE(CkPicBufAPI::CopyRect(*target, 8, 6, *source, 8, 6, 0, 0)) << "empty, at the far corner";
    EXPECT_TRUE(CkPicBufAPI::CopyRect(*target, 0, 0, *source, 0, 0, 0, 6));
    EXPECT_EQ(target.bytes(), before);
}

TEST(CopyRect, WithinOnePictureReadsBeforeItOverwrites) {
    const struct {
        quint32 toX, toY, fromX, fromY;
    } cases[] = {{1, 1, 0, 0}, {0, 0, 1, 1}, {0, 1, 0, 0}, {0, 0, 0, 1}, {1, 0, 0, 0}, {0, 1, 1, 0}};
    for (const auto& c : cases) {
        PaddedPicture picture(6, 5, 1, EkImageDataType::UInt16);
        picture.fill<quint16>(pattern<quint16>);
        ASSERT_TRUE(CkPicBufAPI::CopyRect(*picture, c.toX, c.toY, *picture, c.fromX, c.fromY, 5, 4));
        for (quint32 y = 0; y < 4; ++y) {
            for (quint32 x = 0; x < 5; ++x) {
                ASSERT_EQ(picture.at<quint16>(c.toX + x, c.toY + y),
                          pattern<quint16>(c.fromX + x, c.fromY + y, 0));
            }
        }
        EXPECT_TRUE(picture.guardsIntact());
    }
}

TEST(CopyRect, RefusesOverlappingMemoryWithAnotherLineSize) {
    // Two pictures in one block of bytes: rows of 8 and rows of 12 bytes, the second 20 bytes after the
    // first.
    std::vector<quint8> bytes(200);
    for (size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = quint8(i);
    }
    const std::vector<quint8> before = bytes;
    SkPicBuf narrow;
    narrow.width = 8;
    narrow.height = 6;
    narrow.lineSize = 8;
    narrow.channels = 1;
    narrow.dataType = EkImageDataType::UInt8;
    narrow.data = bytes.data();
    SkPicBuf wide = narrow;
    wide.lineSize = 12;
    wide.data = bytes.data() + 20;
    EXPECT_FALSE(CkPicBufAPI::CopyRect(wide, 0, 0, narrow, 0, 0, 8, 6));
    EXPECT_FALSE(CkPicBufAPI::CopyRect(narrow, 0, 0, wide, 0, 0, 8, 6));
    EXPECT_FALSE(CkPicBufAPI::CopyRect(wide, 3, 2, narrow, 1, 1, 4, 3));
    EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(narrow, wide));
    EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(wide, narrow));
    wide.data = narrow.data;
    EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(narrow, wide)) << "the same first row";
    EXPECT_EQ(bytes, before);
    EXPECT_TRUE(CkPicBufAPI::CopyRect(wide, 0, 0, narrow, 0, 0, 0, 6)) << "an empty rectangle";

    // Beyond the last row there is no overlap; with the same lineSize, overlapping rows are copied in a safe
    // order.
    wide.data = narrow.data + 48;
    EXPECT_TRUE(CkPicBufAPI::CopyPicBuf(narrow, wide));
    EXPECT_EQ(sampleAt<quint8>(wide, 7, 5), 47);
    bytes = before;
    SkPicBuf shifted = narrow;
    shifted.data = narrow.data + 3;
    EXPECT_TRUE(CkPicBufAPI::CopyPicBuf(narrow, shifted));
    EXPECT_EQ(sampleAt<quint8>(shifted, 7, 5), 47);
    EXPECT_EQ(sampleAt<quint8>(shifted, 0, 1), 8);
}

TEST(CopyRect, CopiesSamplesOfUnknownTypeAsBytes) {
    PaddedPicture source(4, 2, 1, EkImageDataType(200));
    PaddedPicture target(4, 2, 1, EkImageDataType(200));
    source.fill<quint8>(pattern<quint8>);
    ASSERT_TRUE(CkPicBufAPI::CopyRect(*target, 0, 0, *source, 0, 0, 4, 2));
    EXPECT_EQ(target.at<quint8>(3, 1), pattern<quint8>(3, 1, 0));
}

TEST(ExtractChannel, RefusesATargetOfAnotherFormatOrOnTheSamePixels) {
    PaddedPicture source(4, 4, 2, EkImageDataType::UInt8, 0, 0);
    PaddedPicture narrow(3, 4, 1, EkImageDataType::UInt8);
    PaddedPicture twoChannels(4, 4, 2, EkImageDataType::UInt8);
    PaddedPicture otherType(4, 4, 1, EkImageDataType::Int8);
    EXPECT_FALSE(CkPicBufAPI::ExtractChannel(*source, *narrow, 0));
    EXPECT_FALSE(CkPicBufAPI::ExtractChannel(*source, *twoChannels, 0));
    EXPECT_FALSE(CkPicBufAPI::ExtractChannel(*source, *otherType, 0));
    SkPicBuf alias = *source;
    alias.channels = 1;
    EXPECT_FALSE(CkPicBufAPI::ExtractChannel(*source, alias, 0));
}

} // namespace
