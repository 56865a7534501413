#include "tests/host/core/chainFixture.h"
#include "zuCore/CkMemoryPool.h"

namespace {

using CkChainNegotiationTest = ChainFixture;

CkImageMetadata phases(qint32 count) {
    CkImageMetadata metadata;
    metadata.phasesCount = count;
    return metadata;
}

/// Requests renegotiation with every frame, and counts how often it was granted.
class NaggingBlock : public PassBlock {
public:
    void setupStart() override { ++starts; }
    IkChainData* processData(IkChainData* pData) override {
        chain()->requestRenegotiation();
        return pData;
    }
    std::atomic<int> starts = 0;
};

/// Always delivers another size than it announces.
class LyingBlock : public PassBlock {
public:
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override {
        PassBlock::queryOutputImageInfo(in, out, pInMeta, pOutMeta);
        out.height = in.height + 1;
        return true;
    }
};

} // namespace

TEST_F(CkChainNegotiationTest, AStoppedChainAnswersFromTheSourceDown) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const downstream = branch(new PassBlock(), block);
    block->dividesRows = true;
    source->announce(packedFormat(8, 12), phases(4));
    SkPicBufInfo info;
    CkImageMetadata metadata;
    ASSERT_TRUE(downstream->outputImageInfo(info, &metadata));
    EXPECT_EQ(info.height, 3U);
    ASSERT_TRUE(downstream->inputImageInfo(info, nullptr));
    EXPECT_EQ(info.height, 3U);
    ASSERT_TRUE(block->inputImageInfo(info, nullptr));
    EXPECT_EQ(info.height, 12U);
    EXPECT_FALSE(chain->negotiatedInfo(block, info, nullptr)) << "never started";
    EXPECT_FALSE(source->inputImageInfo(info, nullptr));

    source->announce(packedFormat(8, 12), phases(2));
    ASSERT_TRUE(downstream->outputImageInfo(info, nullptr));
    EXPECT_EQ(info.height, 6U);
    source->announceNothing();
    EXPECT_FALSE(downstream->outputImageInfo(info, nullptr));
    PassBlock alone;
    EXPECT_FALSE(alone.outputImageInfo(info, nullptr));
    EXPECT_FALSE(alone.inputImageInfo(info, nullptr));
}

TEST_F(CkChainNegotiationTest, SetupFindsItsInputFormatNegotiated) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const downstream = branch(new AddBlock(1), block);
    block->dividesRows = true;
    source->announce(packedFormat(8, 12), phases(4));
    ASSERT_TRUE(chain->start());
    EXPECT_TRUE(downstream->inputKnownAtStart);
    EXPECT_EQ(downstream->inputAtStart.height, 3U);
    SkPicBufInfo info;
    ASSERT_TRUE(chain->negotiatedInfo(downstream, info, nullptr));
    EXPECT_EQ(info.height, 3U);
    EXPECT_EQ(chain->memoryPool()->bytesPerPicture(downstream), 24U);
    chain->stop();
    EXPECT_TRUE(chain->negotiatedInfo(downstream, info, nullptr)) << "still known after a stop";
}

TEST_F(CkChainNegotiationTest, ABlockThatCannotNegotiateHasNoPoolAndRecovers) {
    auto* const bad = branch(new AddBlock(1), source);
    auto* const good = branch(new AddBlock(2), source);
    KeepingSink atBad;
    KeepingSink atGood;
    chain->addSink(bad, &atBad);
    chain->addSink(good, &atGood);
    bad->refuses = true;
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(chain->memoryPool()->capacity(bad), 0);
    pushSurely(1);
    ASSERT_TRUE(waitUntil([&] { return atGood.count() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return !bad->errorMessage().isEmpty(); }))
        << "the block itself set no message";
    EXPECT_EQ(bad->frames, 1) << "it receives frames nevertheless";
    bad->refuses = false;
    EXPECT_TRUE(waitUntil([&] {
        source->push(5);
        return atBad.count() > 0;
    }));
    EXPECT_TRUE(bad->errorMessage().isEmpty()) << "a negotiation that succeeds clears the message";
    EXPECT_GT(chain->memoryPool()->capacity(bad), 0);
    chain->stop();
    chain->removeSink(&atBad);
    chain->removeSink(&atGood);
}

TEST_F(CkChainNegotiationTest, ABlocksOwnMessageStays) {
    auto* const bad = branch(new AddBlock(1), source);
    bad->setErrorMessage(QStringLiteral("of the run before"));
    ASSERT_TRUE(chain->start());
    EXPECT_TRUE(bad->errorMessage().isEmpty());
    chain->stop();
    bad->refuses = true;
    ASSERT_TRUE(chain->start());
    bad->setErrorMessage(QStringLiteral("of its own"));
    pushSurely(1);
    ASSERT_TRUE(waitUntil([&] { return bad->frames == 1; }));
    chain->stop();
    EXPECT_EQ(bad->errorMessage(), QStringLiteral("of its own"));
}

TEST_F(CkChainNegotiationTest, TheChainFollowsAFrameOfAnotherFormat) {
    auto* const block = branch(new AddBlock(1), source);
    KeepingSink sink;
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    source->announce(packedFormat(32, 20));
    pushSurely(2);
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 2; }));
    EXPECT_EQ(block->starts, 2);
    EXPECT_EQ(chain->blockStatistics(source).dropped, 0U);
    EXPECT_EQ(sink.lastInfo().width, 32U);
    EXPECT_EQ(chain->memoryPool()->bytesPerPicture(block), 32U * 20U);
    EXPECT_EQ(block->stops, 1);
    EXPECT_FALSE(block->calledWhileStopped);
    chain->stop();
    chain->removeSink(&sink);
}

TEST_F(CkChainNegotiationTest, FramesAreBelievedMoreThanASourceThatInsists) {
    auto* const block = branch(new AddBlock(1), source);
    KeepingSink sink;
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    const SkPicBufInfo real = packedFormat(6, 6);
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(waitUntil([&] { return source->pushFormat(real, {}, 9); }));
    }
    ASSERT_TRUE(waitUntil([&] {
        const SkBlockStatistics statistics = chain->blockStatistics(source);
        return sink.count() + statistics.dropped == statistics.framesIn;
    }));
    EXPECT_EQ(block->starts, 2);
    EXPECT_EQ(sink.count(), 20U);
    chain->stop();
    chain->removeSink(&sink);
}

TEST_F(CkChainNegotiationTest, ASourceThatKnowsNothingIsNegotiatedByItsFirstFrame) {
    source->announceNothing();
    auto* const block = branch(new AddBlock(1), source);
    KeepingSink sink;
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    EXPECT_FALSE(block->inputKnownAtStart);
    ASSERT_TRUE(source->pushFormat(packedFormat(5, 5), {}, 1));
    EXPECT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    EXPECT_TRUE(block->inputKnownAtStart);
    chain->stop();
    chain->removeSink(&sink);
}

TEST_F(CkChainNegotiationTest, AnOutputThatNoLongerFitsThePoolNegotiatesAnew) {
    auto* const block = branch(new AddBlock(1), source);
    block->dividesRows = true;
    source->announce(packedFormat(8, 8), phases(4));
    KeepingSink sink;
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    EXPECT_EQ(sink.lastInfo().height, 2U);

    // The block changes its output while its input stays the same.
    block->dividesRows = false;
    pushSurely(2);
    ASSERT_TRUE(waitUntil([&] { return block->starts == 2; }));
    EXPECT_EQ(chain->blockStatistics(block).dropped, 1U);
    pushSurely(3);
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 2; }));
    EXPECT_EQ(sink.lastInfo().height, 8U);
    chain->stop();
    chain->removeSink(&sink);
}

TEST_F(CkChainNegotiationTest, AnOutputWithoutRowsIsNoPictureAndNoCrash) {
    auto* const block = branch(new AddBlock(1), source);
    block->dividesRows = true;
    source->announce(packedFormat(8, 8), phases(100));
    ASSERT_TRUE(chain->start());
    for (int i = 0; i < 10; ++i) {
        pushSurely(1);
    }
    EXPECT_TRUE(waitUntil([&] { return block->frames == 10; }));
    EXPECT_EQ(chain->blockStatistics(block).framesOut, 0U);
}

TEST_F(CkChainNegotiationTest, ABlockThatKeepsAskingIsServedEverMoreRarely) {
    auto* const block = branch(new NaggingBlock(), source);
    KeepingSink sink(1);
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    constexpr int frames = 640;
    for (int i = 0; i < frames; ++i) {
        pushSurely(quint8(i));
    }
    ASSERT_TRUE(waitUntil([&] { return sink.count() == frames; }));
    chain->stop();
    // Delays of 2, 4, 8, 16, 32, 64 and then 64 frames each: 7 within the first 127 and about 8 in the rest.
    EXPECT_GE(block->starts, 4);
    EXPECT_LE(block->starts, 20);
    chain->removeSink(&sink);
}

TEST_F(CkChainNegotiationTest, ABlockWhoseFramesNeverHaveTheAnnouncedSizeIsPutUpWith) {
    auto* const block = branch(new LyingBlock(), source);
    KeepingSink sink;
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    for (int i = 0; i < 20; ++i) {
        pushSurely(quint8(i));
    }
    ASSERT_TRUE(waitUntil([&] {
        return chain->blockStatistics(block).framesOut + chain->blockStatistics(block).dropped == 20;
    }));
    chain->stop();
    EXPECT_EQ(sink.count(), 20U);
    chain->removeSink(&sink);
}

TEST_F(CkChainNegotiationTest, AskedFromOutsideItHappensWithoutAFrame) {
    auto* const block = branch(new AddBlock(1), source);
    ASSERT_TRUE(chain->start());
    source->announce(packedFormat(10, 10));
    chain->requestRenegotiation();
    EXPECT_TRUE(waitUntil([&] { return block->starts == 2; }));
    EXPECT_EQ(block->stops, 1);
    EXPECT_TRUE(waitUntil([&] {
        SkPicBufInfo info;
        return block->outputImageInfo(info, nullptr) && info.width == 10;
    }));
    KeepingSink sink;
    chain->addSink(block, &sink);
    pushSurely(1);
    EXPECT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    EXPECT_EQ(chain->blockStatistics(source).dropped, 0U);
    chain->stop();
    chain->removeSink(&sink);
}
