#include "zuCore/CkImageData.h"
#include "tests/support/TestFrames.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkMemoryPool.h"
#include "zuCore/CkPicBufAPI.h"

#include <QPointer>
#include <gtest/gtest.h>
#include <memory>

namespace {

TEST(CkImageData, GivesItsPictureBackWhenDeletedAndWhenReplaced) {
    const int owner = 0;
    CkMemoryPool pool;
    ASSERT_TRUE(pool.reserve(&owner, packedFormat(4, 4), 2));
    {
        CkImageData data;
        for (int i = 0; i < 3; ++i) {
            SkPicBuf picBuf;
            ASSERT_TRUE(pool.acquire(&owner, packedFormat(4, 4), picBuf, false));
            data.setPicBuf(picBuf);
            EXPECT_EQ(pool.freeCount(&owner), 1);
        }
        data.setPicBuf(data.picBuf());
        EXPECT_EQ(pool.freeCount(&owner), 1) << "its own picture stays";
    }
    EXPECT_EQ(pool.freeCount(&owner), 2);
}

TEST(CkImageData, ShareIsASecondFrameOnTheSamePixels) {
    CkImageData data;
    SkPicBuf picBuf;
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picBuf, packedFormat(4, 4)));
    picBuf.additionalData = {7, 8};
    data.setPicBuf(picBuf);
    CkImageMetadata metadata;
    metadata.phasesCount = 4;
    metadata.channelNames = QStringList{"A", "B"};
    data.setMetadata(metadata);
    const std::unique_ptr<IkChainData> twin(static_cast<const IkChainData&>(data).share());
    const auto* const frame = dynamic_cast<CkImageData*>(twin.get());
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->picBuf().data, data.picBuf().data);
    EXPECT_EQ(frame->metadata(), metadata);
    EXPECT_EQ(frame->frameId(), 7);
    data.setPicBuf(SkPicBuf());
    EXPECT_EQ(frame->picBuf().data[15], 0) << "still held by the twin";
}

TEST(CkImageData, ShareCopiesPixelsThatNobodyOwns) {
    PaddedPicture foreign(5, 2, 1, EkImageDataType::UInt8);
    foreign.set<quint8>(4, 1, 0, 31);
    CkImageData data;
    data.setPicBuf(*foreign);
    const std::unique_ptr<CkImageData> twin(data.share());
    ASSERT_NE(twin, nullptr);
    EXPECT_NE(twin->picBuf().data, foreign->data);
    EXPECT_EQ(sampleAt<quint8>(twin->picBuf(), 4, 1), 31);
}

TEST(CkImageData, ShareOfAnEmptyFrameKeepsItsDescriptor) {
    CkImageData data;
    data.picBuf().width = 12;
    const std::unique_ptr<CkImageData> twin(data.share());
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(twin->picBuf().width, 12U);
    EXPECT_EQ(twin->picBuf().data, nullptr);
}

TEST(CkImageData, FrameIdIsNeverNegative) {
    CkImageData data;
    data.picBuf().additionalData.frameNumber = 0xffffffffULL;
    EXPECT_EQ(data.frameId(), 0x7fffffff);
    data.picBuf().additionalData.frameNumber = 0x80000003ULL;
    EXPECT_EQ(data.frameId(), 3);
}

TEST(CkImageData, IsDeletedWithItsParent) {
    auto parent = std::make_unique<QObject>();
    const QPointer<CkImageData> data(new CkImageData(parent.get()));
    SkPicBuf picBuf;
    ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picBuf, packedFormat(4, 4)));
    data->setPicBuf(picBuf);
    parent.reset();
    EXPECT_TRUE(data.isNull());
}

} // namespace
