#include "zuCore/CkMemoryPool.h"
#include "tests/support/TestFrames.h"
#include "zuCore/CkPicBufAPI.h"

#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace {

const int owners[2] = {};
const void* const firstOwner = &owners[0];
const void* const secondOwner = &owners[1];

TEST(CkMemoryPool, HandsOutAsManyAsReservedAndTakesThemBack) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(10, 6), 2));
    EXPECT_EQ(pool.capacity(firstOwner), 2);
    EXPECT_EQ(pool.freeCount(firstOwner), 2);
    EXPECT_EQ(pool.bytesPerPicture(firstOwner), 60U);
    SkPicBuf a;
    SkPicBuf b;
    SkPicBuf c;
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromPool(&pool, firstOwner, a, packedFormat(10, 6), false));
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromPool(&pool, firstOwner, b, packedFormat(10, 6), false));
    EXPECT_NE(a.data, b.data);
    EXPECT_EQ(pool.freeCount(firstOwner), 0);
    EXPECT_FALSE(CkPicBufAPI::AllocPicBufFromPool(&pool, firstOwner, c, packedFormat(10, 6), false));
    EXPECT_EQ(c.data, nullptr);
    CkPicBufAPI::FreePicBuf(a);
    EXPECT_EQ(pool.freeCount(firstOwner), 1);
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromPool(&pool, firstOwner, c, packedFormat(10, 6), false));
    CkPicBufAPI::FreePicBuf(b);
    CkPicBufAPI::FreePicBuf(c);
    EXPECT_EQ(pool.freeCount(firstOwner), 2);
}

TEST(CkMemoryPool, AnUnknownOwnerHasNoPicturesAndASubPoolMayBeEmpty) {
    CkMemoryPool pool;
    EXPECT_EQ(pool.capacity(firstOwner), 0);
    EXPECT_EQ(pool.freeCount(firstOwner), 0);
    EXPECT_EQ(pool.bytesPerPicture(firstOwner), 0U);
    EXPECT_FALSE(pool.reserve(firstOwner, packedFormat(10, 6), -1));
    EXPECT_EQ(pool.bytesPerPicture(firstOwner), 0U);
    EXPECT_TRUE(pool.reserve(firstOwner, packedFormat(10, 6), 0));
    EXPECT_EQ(pool.capacity(firstOwner), 0);
    EXPECT_EQ(pool.freeCount(firstOwner), 0);
    EXPECT_EQ(pool.bytesPerPicture(firstOwner), 60U);
}

TEST(CkMemoryPool, StartsZeroedAndClearsOnRequest) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 2), 1));
    SkPicBuf picBuf;
    ASSERT_TRUE(pool.acquire(firstOwner, packedFormat(8, 2), picBuf, false));
    EXPECT_TRUE(std::all_of(picBuf.data, picBuf.data + 16, [](quint8 byte) { return byte == 0; }));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(picBuf.data) % 64, 0U);
    std::memset(picBuf.data, 9, 16);
    CkPicBufAPI::FreePicBuf(picBuf);
    ASSERT_TRUE(pool.acquire(firstOwner, packedFormat(8, 2), picBuf, false));
    EXPECT_EQ(picBuf.data[3], 9) << "the pixels of the last use";
    ASSERT_FALSE(pool.acquire(secondOwner, packedFormat(8, 2), picBuf, true));
    ASSERT_TRUE(pool.acquire(firstOwner, packedFormat(8, 2), picBuf, true));
    EXPECT_TRUE(std::all_of(picBuf.data, picBuf.data + 16, [](quint8 byte) { return byte == 0; }));
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(CkMemoryPool, SharedPicturesComeBackWithTheLastHolder) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 2), 1));
    SkPicBuf picBuf;
    SkPicBuf twin;
    ASSERT_TRUE(pool.acquire(firstOwner, packedFormat(8, 2), picBuf, false));
    ASSERT_TRUE(CkPicBufAPI::SharePicBuf(picBuf, twin));
    CkPicBufAPI::FreePicBuf(picBuf);
    EXPECT_EQ(pool.freeCount(firstOwner), 0);
    CkPicBufAPI::FreePicBuf(twin);
    EXPECT_EQ(pool.freeCount(firstOwner), 1);
}

TEST(CkMemoryPool, AnyDescriptorOfTheSameByteSizeFits) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 4), 1));
    SkPicBuf picBuf;
    ASSERT_TRUE(pool.acquire(firstOwner, packedFormat(16, 2), picBuf, false));
    EXPECT_EQ(picBuf.width, 16U);
    EXPECT_EQ(picBuf.lineSize, 16U);
    CkPicBufAPI::FreePicBuf(picBuf);
    EXPECT_FALSE(pool.acquire(firstOwner, packedFormat(8, 5), picBuf, false));
    EXPECT_FALSE(pool.acquire(firstOwner, packedFormat(8, 3), picBuf, false));
    SkPicBufInfo impossible = packedFormat(8, 4);
    impossible.lineSize = 7;
    EXPECT_FALSE(pool.acquire(firstOwner, impossible, picBuf, false));
    EXPECT_EQ(pool.freeCount(firstOwner), 1);
}

TEST(CkMemoryPool, OwnersDoNotShareSubPools) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 4), 1));
    ASSERT_TRUE(pool.reserve(secondOwner, packedFormat(4, 4), 3));
    EXPECT_EQ(pool.capacity(firstOwner), 1);
    EXPECT_EQ(pool.capacity(secondOwner), 3);
    pool.release(firstOwner);
    EXPECT_EQ(pool.capacity(firstOwner), 0);
    EXPECT_EQ(pool.bytesPerPicture(firstOwner), 0U);
    EXPECT_EQ(pool.capacity(secondOwner), 3);
    SkPicBuf picBuf;
    EXPECT_FALSE(pool.acquire(firstOwner, packedFormat(8, 4), picBuf, false));
    EXPECT_FALSE(CkPicBufAPI::AllocPicBufFromPool(nullptr, firstOwner, picBuf, packedFormat(8, 4), false));
}

TEST(CkMemoryPool, WithoutAPoolThePictureIsEmptyAndWhatItHeldIsGivenBack) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 4), 1));
    SkPicBuf picBuf;
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromPool(&pool, firstOwner, picBuf, packedFormat(8, 4), false));
    EXPECT_EQ(pool.freeCount(firstOwner), 0);
    EXPECT_FALSE(CkPicBufAPI::AllocPicBufFromPool(nullptr, firstOwner, picBuf, picBuf, false));
    EXPECT_EQ(picBuf.data, nullptr);
    EXPECT_EQ(picBuf.memory, nullptr);
    EXPECT_EQ(picBuf.width, 0U);
    EXPECT_EQ(pool.freeCount(firstOwner), 1);
}

TEST(CkMemoryPool, PicturesOutliveTheirSubPoolAndThePool) {
    SkPicBuf ofSubPool;
    SkPicBuf ofPool;
    {
        CkMemoryPool pool;
        ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 2), 1));
        ASSERT_TRUE(pool.acquire(firstOwner, packedFormat(8, 2), ofSubPool, false));
        ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 2), 1)) << "in place of the old sub-pool";
        ofSubPool.data[15] = 1;
        EXPECT_EQ(pool.freeCount(firstOwner), 1);
        ASSERT_TRUE(pool.acquire(firstOwner, packedFormat(8, 2), ofPool, false));
        EXPECT_NE(ofPool.data, ofSubPool.data);
    }
    ofPool.data[15] = 2;
    EXPECT_EQ(ofSubPool.data[15], 1);
    EXPECT_EQ(ofPool.data[15], 2);
    CkPicBufAPI::FreePicBuf(ofSubPool);
    CkPicBufAPI::FreePicBuf(ofPool);
}

TEST(CkMemoryPool, RefusesSizesThatCannotBeHad) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(8, 2), 1));
    EXPECT_FALSE(pool.reserve(firstOwner, packedFormat(8, 0), 1));
    EXPECT_EQ(pool.capacity(firstOwner), 0) << "the owner is left without a sub-pool";
    EXPECT_FALSE(pool.reserve(firstOwner, packedFormat(0xffffffffU, 0xffffffffU), 1));
    EXPECT_FALSE(pool.reserve(firstOwner, packedFormat(8, 2), -1));
    EXPECT_TRUE(pool.reserve(firstOwner, packedFormat(8, 2), 0));
    EXPECT_EQ(pool.capacity(firstOwner), 0);
}

TEST(CkMemoryPool, AFailedAllocationLeavesAnEmptySubPoolThatCountsRefusals) {
    // 2^62 bytes cannot be allocated, but the size does not overflow.
    const SkPicBufInfo huge = packedFormat(0x80000000U, 0x80000000U);
    CkMemoryPool pool;
    EXPECT_FALSE(pool.reserve(firstOwner, huge, 2));
    EXPECT_EQ(pool.capacity(firstOwner), 0);
    SkPicBuf picBuf;
    EXPECT_FALSE(pool.acquire(firstOwner, huge, picBuf, false));
    EXPECT_FALSE(pool.acquire(firstOwner, huge, picBuf, false));
    EXPECT_EQ(pool.refusals(firstOwner).exhausted, 2U);
    EXPECT_EQ(pool.refusals(firstOwner).misfits, 0U);
    EXPECT_TRUE(pool.reserve(firstOwner, packedFormat(8, 2), 1));
    EXPECT_TRUE(pool.acquire(firstOwner, packedFormat(8, 2), picBuf, false));
    CkPicBufAPI::FreePicBuf(picBuf);
}

TEST(CkMemoryPool, ManyThreadsAcquireAndReleaseWhileSubPoolsChange) {
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(32, 2), 3));
    std::atomic<bool> stop{false};
    std::atomic<int> mixedUp{0};
    std::vector<std::thread> threads;
    for (quint8 t = 1; t <= 3; ++t) {
        threads.emplace_back([&, t] {
            while (!stop) {
                SkPicBuf picBuf;
                if (pool.acquire(firstOwner, packedFormat(32, 2), picBuf, false)) {
                    std::memset(picBuf.data, t, 64);
                    mixedUp += !std::all_of(picBuf.data, picBuf.data + 64, [t](quint8 b) { return b == t; });
                    CkPicBufAPI::FreePicBuf(picBuf);
                }
            }
        });
    }
    for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(pool.reserve(firstOwner, packedFormat(32, 2), 1 + i % 3));
    }
    stop = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(mixedUp, 0) << "two holders had the same picture";
    EXPECT_EQ(pool.freeCount(firstOwner), pool.capacity(firstOwner));
}

} // namespace
