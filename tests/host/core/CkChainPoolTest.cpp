#include "tests/host/core/chainFixture.h"
#include "zuCore/CkMemoryPool.h"

namespace {

using CkChainPoolTest = ChainFixture;

/// Keeps all frames until it is destroyed.
class HoardingSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        m_frames.emplace_back(pData);
        ++count;
        return 0;
    }
    int heldFrames() const override { return 0; }

    std::atomic<int> count = 0;

private:
    std::vector<std::unique_ptr<CkImageData>> m_frames;
};

/// Accepts one of three frames and reports the others as dropped.
class LazySink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        delete pData;
        ++count;
        return count % 3 == 1 ? 0 : 1;
    }
    std::atomic<int> count = 0;
};

/// Announces an output larger than any memory, and clears its message with every frame.
class GiantBlock : public AddBlock {
public:
    using AddBlock::AddBlock;
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override {
        AddBlock::queryOutputImageInfo(in, out, pInMeta, pOutMeta);
        out.height = rows;
        out.lineSize = rows;
        return true;
    }
    IkChainData* processData(IkChainData* pData) override {
        setErrorMessage(QString());
        return AddBlock::processData(pData);
    }

    std::atomic<quint32> rows = 0x80000000U;
};

} // namespace

TEST_F(CkChainPoolTest, APoolOfOneDoesNotStarveBecauseAViewShowsTheLastPicture) {
    auto* const block = branch(new AddBlock(1), source);
    KeepingSink view(1, 1);
    chain->addSink(block, &view);
    ASSERT_TRUE(chain->start());
    for (int i = 0; i < 100; ++i) {
        pushSurely(quint8(i));
    }
    ASSERT_TRUE(waitUntil([&] { return block->frames == 100 && view.count() == 100; }));
    EXPECT_EQ(chain->blockStatistics(block).dropped, 0U);
    chain->stop();
    chain->removeSink(&view);
}

TEST_F(CkChainPoolTest, SinksBehindPassingBlocksHoldTheFirstOnesPictures) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const pass = branch(new PassBlock(), block);
    auto* const pass2 = branch(new PassBlock(), pass);
    KeepingSink first(4, 4);
    KeepingSink second(4, 4);
    chain->addSink(pass, &first);
    chain->addSink(pass2, &second);
    ASSERT_TRUE(chain->start());
    // The block's own, four in each view, one for the block after it.
    EXPECT_EQ(chain->memoryPool()->capacity(block), 1 + 4 + 4 + 1);
    EXPECT_EQ(chain->memoryPool()->capacity(pass), 0) << "no sub-pool for a block that makes no pictures";
    for (int i = 0; i < 50; ++i) {
        pushSurely(quint8(i));
    }
    EXPECT_TRUE(waitUntil([&] { return second.count() == 50; }));
    EXPECT_EQ(chain->blockStatistics(block).dropped, 0U);
    chain->stop();
    chain->removeSink(&first);
    chain->removeSink(&second);
}

TEST_F(CkChainPoolTest, ASinkAddedToARunningChainFindsRoom) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const pass = branch(new PassBlock(), block);
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    KeepingSink view(5, 5);
    chain->addSink(pass, &view);
    EXPECT_TRUE(waitUntil([&] { return chain->memoryPool()->capacity(block) == 1 + 5 + 1; }));
    for (int i = 0; i < 50; ++i) {
        pushSurely(quint8(i));
    }
    EXPECT_TRUE(waitUntil([&] { return view.count() >= 50; }));
    EXPECT_EQ(chain->blockStatistics(block).dropped, 0U);
    chain->stop();
    chain->removeSink(&view);
}

TEST_F(CkChainPoolTest, AnExhaustedPoolDropsAndCountsAndRecovers) {
    auto* const block = branch(new AddBlock(1), source);
    {
        HoardingSink hoard;
        chain->addSink(block, &hoard);
        ASSERT_TRUE(chain->start());
        for (int i = 0; i < 10; ++i) {
            pushSurely(quint8(i));
        }
        ASSERT_TRUE(waitUntil([&] { return block->frames == 10; }));
        EXPECT_TRUE(waitUntil([&] { return chain->blockStatistics(block).dropped == 9; }));
        EXPECT_EQ(hoard.count, 1) << "the one picture of the pool";
        chain->removeSink(&hoard);
    }
    KeepingSink view;
    chain->addSink(block, &view);
    pushSurely(1);
    EXPECT_TRUE(waitUntil([&] { return view.count() == 1; }));
    chain->stop();
    chain->removeSink(&view);
}

TEST_F(CkChainPoolTest, FramesThatTheMemoryDoesNotSufficeForAreCountedAndTheReasonStays) {
    auto* const block = branch(new GiantBlock(1), source);
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(block->errorMessage(), "There is not enough memory for the pictures of the block.");
    for (int i = 0; i < 5; ++i) {
        pushSurely(quint8(i));
    }
    ASSERT_TRUE(waitUntil([&] { return block->frames == 5; }));
    chain->stop();
    EXPECT_EQ(chain->blockStatistics(block).dropped, 5U);
    EXPECT_EQ(block->errorMessage(), "There is not enough memory for the pictures of the block.");
}

TEST_F(CkChainPoolTest, AnOutputWithoutPixelsIsSaidAsLongAsFramesCome) {
    auto* const block = branch(new GiantBlock(1), source);
    block->rows = 0;
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(block->errorMessage(), "The output of the block has no pixels.");
    for (int i = 0; i < 5; ++i) {
        pushSurely(quint8(i));
    }
    ASSERT_TRUE(waitUntil([&] { return chain->blockStatistics(source).framesDone == 5; }));
    chain->stop();
    EXPECT_EQ(chain->blockStatistics(block).dropped, 5U);
    EXPECT_EQ(block->errorMessage(), "The output of the block has no pixels.");
}

TEST_F(CkChainPoolTest, WhatASinkDropsIsCountedOnItsBlock) {
    // Not on the source, whose counter also includes frames dropped at a full queue.
    auto* const block = branch(new PassBlock(), source);
    LazySink sink;
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    for (int i = 0; i < 9; ++i) {
        pushSurely(quint8(i));
    }
    ASSERT_TRUE(waitUntil([&] { return sink.count == 9; }));
    chain->stop();
    EXPECT_EQ(chain->blockStatistics(block).dropped, 6U);
    chain->removeSink(&sink);
}

TEST_F(CkChainPoolTest, PicturesOutliveTheChain) {
    CkChain* other = manager->createChain();
    auto* const from = new TestSource();
    auto* const block = new AddBlock(3);
    ASSERT_TRUE(manager->insertAfter(other, from, nullptr));
    ASSERT_TRUE(manager->insertAfter(other, block, from));
    KeepingSink sink;
    other->addSink(block, &sink);
    ASSERT_TRUE(other->start());
    ASSERT_TRUE(from->push(4));
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    manager->closeChain(other);
    EXPECT_EQ(*sink.pixels().front(), 7);
}
