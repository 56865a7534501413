#include "tests/support/TestFrames.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkPicBufAPI.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <thread>

namespace {

constexpr quint32 huge = std::numeric_limits<quint32>::max();

bool allocate(SkPicBuf& picBuf, quint32 width, quint32 height, quint32 channels, EkImageDataType type,
              quint32 padding = 0, quint32 lineSize = 0, size_t reserve = 0) {
    return CkPicBufAPI::AllocPicBufFromHeap(picBuf, width, height, channels, type, padding, lineSize, 16,
                                            EkDataStorageFormat::Interleaved, EkColorFilterArray::RawX3Hybrid,
                                            true, false, reserve);
}

void expectEmpty(const SkPicBuf& picBuf) {
    EXPECT_EQ(picBuf.data, nullptr);
    EXPECT_EQ(picBuf.memory, nullptr);
    EXPECT_EQ(picBuf.width, 0U);
    EXPECT_EQ(picBuf.height, 0U);
    EXPECT_EQ(picBuf.lineSize, 0U);
}

bool allZero(const SkPicBuf& picBuf, size_t bytes) {
    return std::all_of(picBuf.data, picBuf.data + bytes, [](quint8 byte) { return byte == 0; });
}

bool aligned(const SkPicBuf& picBuf) {
    return reinterpret_cast<std::uintptr_t>(picBuf.data) % 64 == 0;
}

SkPicBufInfo describe(quint32 width, quint32 height, quint32 lineSize, quint32 channels,
                      EkImageDataType type) {
    SkPicBufInfo info;
    info.width = width;
    info.height = height;
    info.lineSize = lineSize;
    info.channels = channels;
    info.dataType = type;
    return info;
}

TEST(AllocPicBufFromHeap, FillsTheDescriptor) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 5, 3, 2, EkImageDataType::UInt16, 4));
    EXPECT_EQ(picBuf.width, 5U);
    EXPECT_EQ(picBuf.height, 3U);
    EXPECT_EQ(picBuf.channels, 2U);
    EXPECT_EQ(picBuf.lineSize, 20U);
    EXPECT_EQ(picBuf.linePadding, 4U);
    EXPECT_EQ(picBuf.bitsPerChannel, 16U);
    EXPECT_EQ(picBuf.dataType, EkImageDataType::UInt16);
    EXPECT_EQ(picBuf.storageFormat, EkDataStorageFormat::Interleaved);
    EXPECT_EQ(picBuf.colorFilterArray, EkColorFilterArray::RawX3Hybrid);
    EXPECT_TRUE(picBuf.layoutFlag);
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(AllocPicBufFromHeap, PixelsAreAlignedAndZeroForAllSizes) {
    for (quint32 width = 1; width < 70; ++width) {
        SkPicBuf picBuf;
        ASSERT_TRUE(allocate(picBuf, width, 3, 1, EkImageDataType::UInt8));
        EXPECT_TRUE(aligned(picBuf));
        EXPECT_TRUE(allZero(picBuf, size_t(width) * 3));
        std::memset(picBuf.data, 0xff, size_t(width) * 3); // recycled memory must come back zeroed
        CkPicBufAPI::FreePicBuf(picBuf);
    }
}

TEST(AllocPicBufFromHeap, RowsAreRoundedUpToThePadding) {
    const struct {
        quint32 padding;
        quint32 lineSize;
    } cases[] = {{0, 30}, {1, 30}, {2, 30}, {7, 35}, {15, 30}, {16, 32}, {30, 30}, {256, 256}};
    for (const auto& c : cases) {
        SkPicBuf picBuf;
        ASSERT_TRUE(allocate(picBuf, 5, 2, 3, EkImageDataType::UInt16, c.padding));
        EXPECT_EQ(picBuf.lineSize, c.lineSize) << c.padding;
        CkPicBufAPI::FreePicBuf(picBuf);
    }
}

TEST(AllocPicBufFromHeap, OddRowsAreRoundedUpToPairs) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 5, 3, 1, EkImageDataType::UInt8, 2));
    EXPECT_EQ(picBuf.lineSize, 6U);
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(AllocPicBufFromHeap, ASingleByteIsAPicture) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 1, 1, 1, EkImageDataType::UInt8));
    EXPECT_EQ(CkPicBufAPI::byteSize(picBuf), 1U);
    EXPECT_EQ(*picBuf.data, 0);
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(AllocPicBufFromHeap, AGivenLineSizeHolds) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 5, 2, 1, EkImageDataType::UInt16, 4, 11));
    EXPECT_EQ(picBuf.lineSize, 11U);
    EXPECT_TRUE(allZero(picBuf, 22));
    EXPECT_FALSE(allocate(picBuf, 5, 2, 1, EkImageDataType::UInt16, 4, 9)) << "shorter than a row";
    expectEmpty(picBuf);
}

TEST(AllocPicBufFromHeap, ReserveLiesBehindTheLastRow) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 4, 2, 1, EkImageDataType::UInt8, 0, 0, 100));
    EXPECT_TRUE(allZero(picBuf, 8 + 100));
    std::memset(picBuf.data, 1, 8 + 100); // a sanitizer would report a shorter block
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(AllocPicBufFromHeap, SizesThatAreZeroOverflowOrCannotBeHadFailAndLeaveAnEmptyPicture) {
    const struct {
        quint32 width, height, channels;
        EkImageDataType type;
        quint32 padding, lineSize;
        size_t reserve;
    } cases[] = {
        {0, 1, 1, EkImageDataType::UInt8, 0, 0, 0},
        {1, 0, 1, EkImageDataType::UInt8, 0, 0, 0},
        {1, 1, 0, EkImageDataType::UInt8, 0, 0, 0},
        {huge, 1, 2, EkImageDataType::UInt8, 0, 0, 0},
        {huge, 1, 1, EkImageDataType::UInt16, 0, 0, 0},
        {huge, huge, huge, EkImageDataType::Float64, 0, 0, 0},
        {0x80000000U, 1, 0x80000000U, EkImageDataType::UInt32, 0, 0, 0},
        {huge - 1, 1, 1, EkImageDataType::UInt8, 256, 0, 0},
        {2, 1, 1, EkImageDataType::UInt8, huge, huge - 5, std::numeric_limits<size_t>::max() - 5},
        {1, 1, 1, EkImageDataType::UInt8, 0, 0, std::numeric_limits<size_t>::max()},
        {1, 1, 1, EkImageDataType::UInt8, 0, 0, std::numeric_limits<size_t>::max() - 1},
        {1, 1, 1, EkImageDataType::UInt8, 0, 0, size_t(std::numeric_limits<std::ptrdiff_t>::max())},
        {huge, huge, 1, EkImageDataType::UInt8, 0, 0, 0},
        {1, huge, 1, EkImageDataType::UInt8, 0, huge, 0},
    };
    for (const auto& c : cases) {
        SkPicBuf picBuf;
        ASSERT_TRUE(allocate(picBuf, 2, 2, 1, EkImageDataType::UInt8));
        EXPECT_FALSE(
            allocate(picBuf, c.width, c.height, c.channels, c.type, c.padding, c.lineSize, c.reserve))
            << c.width << " x " << c.height << " x " << c.channels;
        expectEmpty(picBuf);
    }
}

TEST(AllocPicBufFromHeap, LikeADescriptorKeepsOrPacksItsRows) {
    SkPicBufInfo info = describe(10, 4, 40, 1, EkImageDataType::UInt16);
    info.linePadding = 8;
    info.bitsPerChannel = 12;
    info.colorFilterArray = EkColorFilterArray::RawAminusB;
    SkPicBuf picBuf;
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picBuf, info));
    EXPECT_EQ(picBuf.lineSize, 40U);
    EXPECT_EQ(picBuf.bitsPerChannel, 12U);
    EXPECT_EQ(picBuf.colorFilterArray, EkColorFilterArray::RawAminusB);
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picBuf, info, true));
    EXPECT_EQ(picBuf.lineSize, 24U);
    info.lineSize = 0;
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picBuf, info));
    EXPECT_EQ(picBuf.lineSize, 24U);
    info.lineSize = 19;
    EXPECT_FALSE(CkPicBufAPI::AllocPicBufFromHeap(picBuf, info));
    expectEmpty(picBuf);
}

TEST(AllocPicBufFromHeap, TheDescriptorMayBeThePicturesOwn) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 6, 4, 1, EkImageDataType::UInt8));
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picBuf, picBuf));
    EXPECT_EQ(picBuf.width, 6U);
    EXPECT_EQ(picBuf.height, 4U);
    EXPECT_TRUE(allZero(picBuf, 24));
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(AllocPicBufFromHeap, AnUnknownSampleTypeCountsAsOneByte) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 7, 2, 1, EkImageDataType(4711)));
    EXPECT_EQ(picBuf.lineSize, 7U);
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(FreePicBuf, ClearsPixelsAndOnRequestTheDescriptor) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 5, 3, 1, EkImageDataType::Float32));
    picBuf.minValue = 1.0F;
    picBuf.maxValue = 2.0F;
    CkPicBufAPI::FreePicBuf(picBuf, false);
    EXPECT_EQ(picBuf.data, nullptr);
    EXPECT_EQ(picBuf.memory, nullptr);
    EXPECT_EQ(picBuf.minValue, 0.0F);
    EXPECT_EQ(picBuf.maxValue, 0.0F);
    EXPECT_EQ(picBuf.width, 5U);
    CkPicBufAPI::FreePicBuf(picBuf, true);
    EXPECT_EQ(picBuf.width, 5U) << "nothing happens for an empty picture";
    ASSERT_TRUE(allocate(picBuf, 5, 3, 1, EkImageDataType::Float32));
    CkPicBufAPI::FreePicBuf(picBuf, true);
    expectEmpty(picBuf);
}

TEST(FreePicBuf, LeavesPixelsOfSomebodyElseAlone) {
    PaddedPicture foreign(3, 2, 1, EkImageDataType::UInt8);
    foreign.set<quint8>(1, 1, 0, 77);
    SkPicBuf alias = *foreign;
    CkPicBufAPI::FreePicBuf(alias);
    expectEmpty(alias);
    EXPECT_EQ(foreign.at<quint8>(1, 1), 77);
}

TEST(SharePicBuf, PixelsLiveAsLongAsTheLastHolder) {
    SkPicBuf first;
    ASSERT_TRUE(allocate(first, 4, 4, 1, EkImageDataType::UInt8));
    first.data[5] = 99;
    first.minValue = 3.0F;
    first.additionalData.frameNumber = 12;
    SkPicBuf second;
    ASSERT_TRUE(CkPicBufAPI::SharePicBuf(first, second));
    EXPECT_EQ(second.data, first.data);
    EXPECT_EQ(second.minValue, 3.0F);
    EXPECT_EQ(second.additionalData.frameNumber, 12U);
    CkPicBufAPI::FreePicBuf(first);
    EXPECT_EQ(second.data[5], 99);
    ASSERT_TRUE(CkPicBufAPI::SharePicBuf(second, second)) << "with itself";
    EXPECT_EQ(second.data[5], 99);
    CkPicBufAPI::FreePicBuf(second);
}

TEST(SharePicBuf, GivesBackWhatTheTargetHeldAndRefusesPixelsWithoutOwner) {
    SkPicBuf source;
    SkPicBuf target;
    ASSERT_TRUE(allocate(source, 4, 4, 1, EkImageDataType::UInt8));
    ASSERT_TRUE(allocate(target, 8, 8, 1, EkImageDataType::UInt8)); // leaked unless released
    ASSERT_TRUE(CkPicBufAPI::SharePicBuf(source, target));
    EXPECT_EQ(target.width, 4U);
    PaddedPicture foreign(3, 2, 1, EkImageDataType::UInt8);
    EXPECT_FALSE(CkPicBufAPI::SharePicBuf(*foreign, target));
    EXPECT_EQ(target.data, source.data);
    EXPECT_FALSE(CkPicBufAPI::SharePicBuf(SkPicBuf(), target));
    CkPicBufAPI::FreePicBuf(target);
    CkPicBufAPI::FreePicBuf(source);
}

TEST(SharePicBuf, ManyThreadsMayHoldAndLetGo) {
    SkPicBuf picBuf;
    ASSERT_TRUE(allocate(picBuf, 64, 4, 1, EkImageDataType::UInt8));
    std::memset(picBuf.data, 42, 256);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        SkPicBuf mine;
        ASSERT_TRUE(CkPicBufAPI::SharePicBuf(picBuf, mine));
        threads.emplace_back([mine, &wrong]() mutable {
            for (int i = 0; i < 2000; ++i) {
                SkPicBuf own;
                CkPicBufAPI::SharePicBuf(mine, own);
                wrong += own.data[i % 256] != 42;
                CkPicBufAPI::FreePicBuf(own);
            }
            CkPicBufAPI::FreePicBuf(mine);
        });
    }
    CkPicBufAPI::FreePicBuf(picBuf);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST(ByteSize, CountsPaddedRowsAndAnswersZeroForTheImpossible) {
    EXPECT_EQ(CkPicBufAPI::byteSize(describe(5, 3, 20, 2, EkImageDataType::UInt16)), 60U);
    EXPECT_EQ(CkPicBufAPI::byteSize(describe(5, 3, 19, 2, EkImageDataType::UInt16)), 0U);
    EXPECT_EQ(CkPicBufAPI::byteSize(describe(5, 0, 20, 2, EkImageDataType::UInt16)), 0U);
    EXPECT_EQ(CkPicBufAPI::byteSize(describe(huge, huge, huge, 1, EkImageDataType::UInt8)),
              size_t(huge) * size_t(huge));
    EXPECT_EQ(CkPicBufAPI::byteSize(describe(huge, huge, huge, huge, EkImageDataType::Float64)), 0U);
}

TEST(IsValid, WantsPixelsAndRowsThatHoldThem) {
    EXPECT_TRUE(CkPicBufAPI::isValid(describe(5, 3, 20, 2, EkImageDataType::UInt16)));
    EXPECT_TRUE(CkPicBufAPI::isValid(describe(5, 3, 21, 2, EkImageDataType::UInt16)));
    EXPECT_FALSE(CkPicBufAPI::isValid(describe(5, 3, 19, 2, EkImageDataType::UInt16)));
    EXPECT_FALSE(CkPicBufAPI::isValid(describe(0, 3, 20, 2, EkImageDataType::UInt16)));
    EXPECT_FALSE(CkPicBufAPI::isValid(describe(5, 0, 20, 2, EkImageDataType::UInt16)));
    EXPECT_FALSE(CkPicBufAPI::isValid(describe(5, 3, 20, 0, EkImageDataType::UInt16)));
    EXPECT_FALSE(CkPicBufAPI::isValid(SkPicBufInfo()));
    // 2^31 * 2^31 * 4 is 0 in 64 bits.
    EXPECT_FALSE(CkPicBufAPI::isValid(describe(0x80000000U, 1, huge, 0x80000000U, EkImageDataType::UInt32)));
}

TEST(PictureWithoutData, IsNeverProcessed) {
    SkPicBuf empty = *PaddedPicture(4, 4, 1, EkImageDataType::UInt8);
    empty.data = nullptr;
    SkPicBuf floats = empty;
    floats.dataType = EkImageDataType::Float32;
    floats.lineSize = 16;
    PaddedPicture other(4, 4, 1, EkImageDataType::UInt8);
    const auto before = other.bytes();
    SkPicBuf none;
    float low = 5.0F;
    float high = 6.0F;
    quint32 bits = 7;
    EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(empty, *other));
    EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(empty, none));
    EXPECT_FALSE(CkPicBufAPI::CopyRect(*other, 0, 0, empty, 0, 0, 1, 1));
    EXPECT_FALSE(CkPicBufAPI::CopyRect(empty, 0, 0, *other, 0, 0, 1, 1));
    EXPECT_FALSE(CkPicBufAPI::ExtractChannel(empty, *other, 0));
    EXPECT_FALSE(CkPicBufAPI::ExtractChannel(*other, empty, 0));
    EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(empty, *other));
    EXPECT_FALSE(CkPicBufAPI::ResizePic(empty, *other, 4, 4));
    EXPECT_FALSE(CkPicBufAPI::CalcFloatDataMinMax(floats, low, high, false));
    EXPECT_FALSE(CkPicBufAPI::DetectColorBitDepth(empty, bits, false));
    EXPECT_FALSE(CkPicBufAPI::ShiftBits(empty, 1, true));
    EXPECT_FALSE(CkPicBufAPI::Subtract(empty, *other));
    EXPECT_FALSE(CkPicBufAPI::Subtract(*other, empty));
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(empty, *other, false));
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*other, empty, false));
    EXPECT_EQ(other.bytes(), before);
    EXPECT_EQ(none.data, nullptr);
    EXPECT_EQ(low, 5.0F);
    EXPECT_EQ(high, 6.0F);
    EXPECT_EQ(bits, 7U);
}

TEST(CkPicBufAPIAlloc, APictureMayBeOneByte) {
    SkPicBuf picture;
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picture, packedFormat(1, 1)));
    EXPECT_EQ(picture.lineSize, 1U);
    EXPECT_EQ(CkPicBufAPI::byteSize(picture), 1U);
    CkPicBufAPI::FreePicBuf(picture);
}

TEST(CkPicBufAPIAlloc, WhatCannotBeHadLeavesNoDescription) {
    SkPicBuf picture; // never allocated
    picture.width = 5;
    picture.channels = 2;
    EXPECT_FALSE(CkPicBufAPI::AllocPicBufFromHeap(picture, packedFormat(0, 1)));
    EXPECT_EQ(picture.width, 0U);
    EXPECT_EQ(picture.data, nullptr);
}

} // namespace
