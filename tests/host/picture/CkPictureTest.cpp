#include "zuCore/CkPicture.h"
#include "tests/support/TestFrames.h"
#include "zuCore/CkMemoryPool.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace {

/// Uses a pool of three pictures, so that every held reference can be counted.
class CkPictureTest : public testing::Test {
protected:
    CkPictureTest() { EXPECT_TRUE(pool.reserve(this, packedFormat(4, 2), 3)); }

    CkPicture taken() {
        CkPicture picture;
        EXPECT_TRUE(
            CkPicBufAPI::AllocPicBufFromPool(&pool, this, picture.picBuf(), packedFormat(4, 2), false));
        return picture;
    }
    int held() const { return 3 - pool.freeCount(this); }

    CkMemoryPool pool;
};

TEST_F(CkPictureTest, ItsReferenceEndsWithIt) {
    {
        const CkPicture picture = taken();
        EXPECT_FALSE(picture.isEmpty());
        EXPECT_EQ(held(), 1);
    }
    EXPECT_EQ(held(), 0);
}

TEST_F(CkPictureTest, MovingHandsTheReferenceOver) {
    CkPicture first = taken();
    const quint8* const pixels = first.picBuf().data;
    CkPicture second = taken();
    EXPECT_EQ(held(), 2);
    second = std::move(first);
    EXPECT_EQ(held(), 1) << "the target's old reference has been released";
    EXPECT_EQ(second.picBuf().data, pixels);
    CkPicture third(std::move(second));
    EXPECT_EQ(held(), 1);
    EXPECT_EQ(third.picBuf().data, pixels);
}

TEST_F(CkPictureTest, MovedToItselfItStaysAsItIs) {
    CkPicture picture = taken();
    CkPicture& same = picture;
    picture = std::move(same);
    EXPECT_FALSE(picture.isEmpty());
    EXPECT_EQ(held(), 1);
}

TEST_F(CkPictureTest, WhatWasTakenIsTheCallers) {
    CkPicture picture = taken();
    SkPicBuf raw = picture.take();
    EXPECT_TRUE(picture.isEmpty());
    EXPECT_EQ(held(), 1);
    CkPicBufAPI::FreePicBuf(raw);
    EXPECT_EQ(held(), 0);
}

TEST_F(CkPictureTest, TakesTheReferenceOfAPicture) {
    SkPicBuf raw = taken().take();
    {
        const CkPicture picture(raw);
        EXPECT_EQ(picture.picBuf().data, raw.data);
        EXPECT_EQ(held(), 1);
    }
    EXPECT_EQ(held(), 0);
}

TEST_F(CkPictureTest, AllocatesInPlaceOfWhatItHeld) {
    CkPicture picture = taken();
    SkPicBufInfo info = SkPicBufInfo::of(5, 3, 2, EkImageDataType::UInt16, 12);
    info.padRows(64);
    info.colorFilterArray = EkColorFilterArray::RawX2AandB;
    info.layoutFlag = true;
    ASSERT_TRUE(picture.allocate(info));
    EXPECT_EQ(held(), 0);
    const SkPicBuf& made = picture.picBuf();
    EXPECT_EQ(made.width, 5U);
    EXPECT_EQ(made.height, 3U);
    EXPECT_EQ(made.channels, 2U);
    EXPECT_EQ(made.lineSize, 64U);
    EXPECT_EQ(made.linePadding, 64U);
    EXPECT_EQ(made.bitsPerChannel, 12U);
    EXPECT_EQ(made.dataType, EkImageDataType::UInt16);
    EXPECT_EQ(made.storageFormat, EkDataStorageFormat::Interleaved);
    EXPECT_EQ(made.colorFilterArray, EkColorFilterArray::RawX2AandB);
    EXPECT_TRUE(made.layoutFlag);
    const quint8* const end = made.data + CkPicBufAPI::byteSize(made);
    EXPECT_EQ(std::find_if(made.row(0), end, [](quint8 byte) { return byte != 0; }), end);
    EXPECT_TRUE(picture.allocate(info, false));
}

TEST_F(CkPictureTest, IsEmptyWhenItCannotAllocate) {
    CkPicture picture = taken();
    EXPECT_FALSE(picture.allocate(SkPicBufInfo::of(0, 3, 1, EkImageDataType::UInt8, 8)));
    EXPECT_TRUE(picture.isEmpty());
    EXPECT_EQ(picture.picBuf().height, 0U);
    EXPECT_EQ(held(), 0);
}

} // namespace
