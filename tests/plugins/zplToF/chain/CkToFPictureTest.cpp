#include "plugins/zplToF/transform/CkToFPicture.h"
#include "tests/support/PackedFormat.h"
#include "zuCore/CkMemoryPool.h"

#include <gtest/gtest.h>
#include <utility>

namespace {

/// Of a pool of three, so that every reference that is held shows.
class CkToFPictureTest : public testing::Test {
protected:
    CkToFPictureTest() { EXPECT_TRUE(pool.reserve(this, packedFormat(4, 2), 3)); }

    CkToFPicture taken() {
        CkToFPicture picture;
        EXPECT_TRUE(
            CkPicBufAPI::AllocPicBufFromPool(&pool, this, picture.picBuf(), packedFormat(4, 2), false));
        return picture;
    }
    int held() const { return 3 - pool.freeCount(this); }

    CkMemoryPool pool;
};

TEST_F(CkToFPictureTest, ItsReferenceEndsWithIt) {
    {
        const CkToFPicture picture = taken();
        EXPECT_FALSE(picture.isEmpty());
        EXPECT_EQ(held(), 1);
    }
    EXPECT_EQ(held(), 0);
}

TEST_F(CkToFPictureTest, MovingHandsTheReferenceOver) {
    CkToFPicture first = taken();
    const quint8* const pixels = first.picBuf().data;
    CkToFPicture second = taken();
    EXPECT_EQ(held(), 2);
    second = std::move(first);
    EXPECT_EQ(held(), 1) << "what the target held has been given back";
    EXPECT_EQ(second.picBuf().data, pixels);
    CkToFPicture third(std::move(second));
    EXPECT_EQ(held(), 1);
    EXPECT_EQ(third.picBuf().data, pixels);
}

TEST_F(CkToFPictureTest, MovedToItselfItStaysAsItIs) {
    CkToFPicture picture = taken();
    CkToFPicture& same = picture;
    picture = std::move(same);
    EXPECT_FALSE(picture.isEmpty());
    EXPECT_EQ(held(), 1);
}

TEST_F(CkToFPictureTest, WhatWasTakenIsTheCallers) {
    CkToFPicture picture = taken();
    SkPicBuf raw = picture.take();
    EXPECT_TRUE(picture.isEmpty());
    EXPECT_EQ(held(), 1);
    CkPicBufAPI::FreePicBuf(raw);
    EXPECT_EQ(held(), 0);
}

} // namespace
