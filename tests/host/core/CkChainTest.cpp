#include "tests/host/core/chainFixture.h"
#include "zuCore/CkMemoryPool.h"

#include <QDomDocument>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {
using CkChainTest = ChainFixture;
}

TEST_F(CkChainTest, FramesRunThroughAllBlocksInOrder) {
    auto* const first = branch(new AddBlock(1), source);
    auto* const second = branch(new AddBlock(10), first);
    KeepingSink sink;
    ASSERT_TRUE(chain->addSink(second, &sink));
    ASSERT_TRUE(chain->start());
    EXPECT_TRUE(chain->started());
    EXPECT_FALSE(chain->stopped());
    for (quint8 i = 0; i < 3; ++i) {
        pushSurely(i);
    }
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 3; }));
    chain->stop();
    EXPECT_THAT(sink.values(), ElementsAre(11, 12, 13));
    EXPECT_EQ(first->starts, 1);
    EXPECT_EQ(first->stops, 1);
    EXPECT_FALSE(first->calledWhileStopped);
    const SkBlockStatistics statistics = chain->blockStatistics(second);
    EXPECT_EQ(statistics.framesIn, 3U);
    EXPECT_EQ(statistics.framesOut, 3U);
    EXPECT_EQ(statistics.dropped, 0U);
    EXPECT_EQ(chain->blockStatistics(source).framesOut, 3U);
    chain->removeSink(&sink);
}

TEST_F(CkChainTest, AFrameIsDoneOnceAllBehindTheBlockAreDoneWithIt) {
    auto* const first = branch(new PassBlock(), source);
    auto* const second = branch(new AddBlock(1), first);
    KeepingSink sink;
    ASSERT_TRUE(chain->addSink(second, &sink));
    sink.gate.close();
    ASSERT_TRUE(chain->start());
    pushSurely(7);
    ASSERT_TRUE(waitUntil([&] { return sink.gate.waiting() == 1; }));
    for (const CkChainable* const block :
         {static_cast<CkChainable*>(source), static_cast<CkChainable*>(first),
          static_cast<CkChainable*>(second)}) {
        EXPECT_EQ(chain->blockStatistics(block).framesOut, 1U);
        EXPECT_EQ(chain->blockStatistics(block).framesDone, 0U);
    }
    sink.gate.open();
    EXPECT_TRUE(waitUntil([&] { return chain->blockStatistics(source).framesDone == 1; }));
    EXPECT_EQ(chain->blockStatistics(second).framesDone, 1U);
    chain->stop();
    chain->removeSink(&sink);
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(chain->blockStatistics(source).framesDone, 0U) << "reset by start";
}

TEST_F(CkChainTest, ASourceIsToldHowFarItsFramesHaveCome) {
    KeepingSink sink;
    ASSERT_TRUE(chain->addSink(branch(new PassBlock(), source), &sink));
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    ASSERT_TRUE(waitUntil([&] { return source->frameEvents() == "ED"; }));
    sink.gate.close();
    pushSurely(2);
    ASSERT_TRUE(waitUntil([&] { return sink.gate.waiting() == 1; }));
    EXPECT_EQ(source->frameEvents(), "EDE");
    ASSERT_TRUE(source->push(3));
    ASSERT_TRUE(source->push(4));
    EXPECT_FALSE(source->push(5)) << "refused immediately";
    std::thread stopper([this] { chain->stop(); });
    EXPECT_TRUE(waitUntil([&] { return chain->blockStatistics(source).dropped == 3; })) << "5, then 3 and 4";
    EXPECT_EQ(source->frameEvents(), "EDE") << "2 was delivered first and is not done";
    sink.gate.open();
    stopper.join();
    EXPECT_EQ(source->frameEvents(), "EDEDxx");
    chain->removeSink(&sink);
}

TEST_F(CkChainTest, AFrameThatDoesNotFitTheChainIsToldAsDropped) {
    ASSERT_TRUE(chain->start());
    for (quint32 width = 1; width <= 4; ++width) {
        SkPicBufInfo info = packedFormat(width, 1, 1, EkImageDataType::UInt8);
        ASSERT_TRUE(source->pushFormat(info, {}, 0));
        ASSERT_TRUE(waitUntil([&] {
            const SkBlockStatistics now = chain->blockStatistics(source);
            return now.framesDone + now.dropped == width;
        }));
    }
    chain->stop();
    EXPECT_EQ(source->frameEvents(), "EDxEDx");
}

TEST_F(CkChainTest, AChainWithoutSourceOrRunningDoesNotStart) {
    CkChain* const empty = manager->createChain();
    EXPECT_FALSE(empty->start());
    EXPECT_TRUE(empty->stopped());
    empty->stop();
    manager->closeChain(empty);
    ASSERT_TRUE(chain->start());
    EXPECT_FALSE(chain->start());
    chain->stop();
    EXPECT_FALSE(source->push(1)) << "a stopped chain accepts no frame";
    TestSource alone;
    EXPECT_FALSE(alone.push(1)) << "outside a chain no frame is accepted";
}

TEST_F(CkChainTest, BranchesAndSinksGetObjectsOfTheirOwnOnTheSamePixels) {
    auto* const left = branch(new PassBlock(), source);
    auto* const right = branch(new PassBlock(), source);
    KeepingSink atSource;
    KeepingSink atLeft;
    KeepingSink atRight;
    KeepingSink alsoAtRight;
    chain->addSink(source, &atSource);
    chain->addSink(left, &atLeft);
    chain->addSink(right, &atRight);
    chain->addSink(right, &alsoAtRight);
    ASSERT_TRUE(chain->start());
    pushSurely(7);
    ASSERT_TRUE(waitUntil([&] { return alsoAtRight.count() == 1; }));
    chain->stop();
    for (KeepingSink* sink : {&atSource, &atLeft, &atRight, &alsoAtRight}) {
        ASSERT_EQ(sink->count(), 1U);
        EXPECT_EQ(sink->pixels().front(), atSource.pixels().front());
        chain->removeSink(sink);
    }
}

TEST_F(CkChainTest, WhatComesTooFastIsDroppedAndCounted) {
    auto* const block = branch(new AddBlock(0), source);
    block->gate.close();
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(0));
    ASSERT_TRUE(waitUntil([&] { return block->gate.waiting() == 1; }));
    int taken = 0;
    for (int i = 0; i < 100; ++i) {
        taken += source->push(1) ? 1 : 0;
    }
    EXPECT_EQ(taken, 2) << "the capacity of the queue";
    EXPECT_EQ(chain->blockStatistics(source).dropped, 98U);
    EXPECT_EQ(chain->blockStatistics(source).framesIn, 101U);
    block->gate.open();
    EXPECT_TRUE(waitUntil([&] { return block->frames == 3; }));
}

TEST_F(CkChainTest, FramesThatAStopFindsWaitingAreDroppedAndCounted) {
    auto* const block = branch(new AddBlock(0), source);
    block->gate.close();
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(0));
    ASSERT_TRUE(waitUntil([&] { return block->gate.waiting() == 1; }));
    ASSERT_TRUE(source->push(1));
    ASSERT_TRUE(source->push(2));
    std::thread stopper([&] { chain->stop(); });
    EXPECT_TRUE(waitUntil([&] { return chain->blockStatistics(source).dropped == 2; }));
    EXPECT_FALSE(source->push(3)) << "the chain is about to stop";
    EXPECT_EQ(chain->blockStatistics(source).dropped, 3U);
    block->gate.open();
    stopper.join();
    EXPECT_FALSE(source->push(4)) << "a stopped chain expects no frames";
    const SkBlockStatistics statistics = chain->blockStatistics(source);
    EXPECT_EQ(statistics.framesIn, 4U);
    EXPECT_EQ(statistics.framesOut, 1U);
    EXPECT_EQ(statistics.dropped, 3U);
}

TEST_F(CkChainTest, StatisticsCountFromTheLastStart) {
    KeepingSink sink;
    chain->addSink(source, &sink);
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    chain->stop();
    EXPECT_EQ(chain->blockStatistics(source).framesIn, 1U) << "still to be read after a stop";
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(chain->blockStatistics(source).framesIn, 0U);
    EXPECT_EQ(chain->blockStatistics(nullptr).framesIn, 0U);
    chain->removeSink(&sink);
}

TEST_F(CkChainTest, ABlockThatAnswersNullEndsTheFrame) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const downstream = branch(new AddBlock(1), block);
    KeepingSink sink;
    chain->addSink(downstream, &sink);
    block->refuses = true;
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    ASSERT_TRUE(waitUntil([&] { return block->frames == 1; }));
    chain->stop();
    EXPECT_EQ(downstream->frames, 0);
    EXPECT_THAT(sink.values(), IsEmpty());
    EXPECT_EQ(chain->blockStatistics(block).framesOut, 0U);
    chain->removeSink(&sink);
}

TEST_F(CkChainTest, ABlockedBlockIsNotAsked) {
    auto* const block = branch(new AddBlock(1), source);
    KeepingSink atSource;
    chain->addSink(source, &atSource);
    block->setState(CkChainable::Blocked);
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    pushSurely(2);
    ASSERT_TRUE(waitUntil([&] { return chain->blockStatistics(block).framesIn == 2; }));
    EXPECT_EQ(block->frames, 0);
    block->setState(CkChainable::Ready);
    pushSurely(3);
    EXPECT_TRUE(waitUntil([&] { return block->frames == 1; }));
    chain->removeSink(&atSource);
}

TEST_F(CkChainTest, AnExceptionOfABlockShowsOnItAndTheRestGoesOn) {
    auto* const bad = branch(new AddBlock(1), source);
    auto* const good = branch(new AddBlock(2), source);
    KeepingSink sink;
    chain->addSink(good, &sink);
    bad->throws = true;
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    pushSurely(2);
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 2; }));
    chain->stop();
    EXPECT_FALSE(bad->errorMessage().isEmpty());
    EXPECT_EQ(chain->blockStatistics(bad).dropped, 2U);
    EXPECT_EQ(chain->blockStatistics(good).dropped, 0U);
    EXPECT_TRUE(good->errorMessage().isEmpty());
    chain->removeSink(&sink);
}

namespace {

/// Outputs only every second frame, with or without reporting the drop; its pool has no picture for it.
class ChoosyBlock : public AddBlock {
public:
    using AddBlock::AddBlock;
    IkChainData* processData(IkChainData* pData) override {
        if (frames++ % 2 == 0) {
            return pData;
        }
        if (asks) {
            SkPicBuf picture;
            memoryPool()->acquire(this, packedFormat(1, 1), picture, false);
        }
        if (says) {
            reportDropped();
        }
        return nullptr;
    }
    std::atomic<bool> says = false;
    std::atomic<bool> asks = false;
};

} // namespace

TEST_F(CkChainTest, AFrameThatABlockSaysItDroppedIsCountedOnce) {
    auto* const block = branch(new ChoosyBlock(0), source);
    const auto droppedOf = [&](int frames) {
        EXPECT_TRUE(chain->start());
        block->frames = 0;
        for (int i = 0; i < frames; ++i) {
            pushSurely(1);
        }
        EXPECT_TRUE(waitUntil([&] { return chain->blockStatistics(source).framesDone == quint64(frames); }));
        const quint64 dropped = chain->blockStatistics(block).dropped;
        chain->stop();
        return dropped;
    };
    EXPECT_EQ(droppedOf(6), 0U) << "a block may wait for more";
    block->says = true;
    EXPECT_EQ(droppedOf(6), 3U);
    EXPECT_EQ(droppedOf(7), 3U) << "a report about one frame does not count for the next";
    block->asks = true;
    EXPECT_EQ(droppedOf(2), 1U) << "without a picture as well";
}

TEST_F(CkChainTest, SeveralSourcesShareTheThread) {
    auto* const other = new TestSource();
    ASSERT_TRUE(manager->insertAfter(chain, other, nullptr));
    KeepingSink first;
    KeepingSink second;
    chain->addSink(source, &first);
    chain->addSink(other, &second);
    EXPECT_EQ(chain->imageSources(), (QList<CkChainable*>{source, other}));
    ASSERT_TRUE(chain->start());
    pushSurely(1);
    EXPECT_TRUE(waitUntil([&] { return other->push(2); }));
    EXPECT_TRUE(waitUntil([&] { return first.count() == 1 && second.count() == 1; }));
    chain->stop();
    EXPECT_THAT(first.values(), ElementsAre(1));
    EXPECT_THAT(second.values(), ElementsAre(2));
    chain->removeSink(&first);
    chain->removeSink(&second);
}

TEST_F(CkChainTest, SinksOfABlockInNoChainAreRefused) {
    PassBlock alone;
    KeepingSink sink;
    EXPECT_FALSE(chain->addSink(&alone, &sink));
    EXPECT_FALSE(chain->addSink(nullptr, &sink));
    EXPECT_FALSE(chain->addSink(source, nullptr));
    EXPECT_EQ(chain->sinkBlock(&sink), nullptr);
    chain->removeSink(&sink);
}

TEST_F(CkChainTest, RunningIsTold) {
    QList<bool> signalled;
    QObject::connect(chain, &CkChain::runningChanged, chain, [&](bool running) { signalled << running; });
    ASSERT_TRUE(chain->start());
    chain->stop();
    chain->stop();
    EXPECT_EQ(signalled, (QList<bool>{true, false}));
}

TEST_F(CkChainTest, ABlockKnowsItsPlace) {
    auto* const block = branch(new PassBlock(), source);
    PassBlock alone;
    EXPECT_EQ(block->chain(), chain);
    EXPECT_EQ(block->precedessors(), QList<CkChainable*>{source});
    EXPECT_TRUE(source->precedessors().isEmpty());
    EXPECT_EQ(block->memoryPool(), chain->memoryPool());
    EXPECT_EQ(alone.chain(), nullptr);
    EXPECT_EQ(alone.memoryPool(), nullptr);
    EXPECT_TRUE(alone.precedessors().isEmpty());
    EXPECT_EQ(chain->chainTitle(block), QStringLiteral("Test Source - Pass"));
    EXPECT_EQ(chain->chainTitle(&alone), QString());
}

TEST(CkChainable, DefaultsAreThoseOfAPassiveBlock) {
    CkChainable block;
    PassBlock other;
    EXPECT_EQ(block.title(), QStringLiteral("CkChainable"));
    EXPECT_EQ(other.title(), QStringLiteral("Pass"));
    EXPECT_FALSE(block.hasHelp());
    QString help = QStringLiteral("old");
    block.help(help);
    EXPECT_TRUE(help.isEmpty());
    EXPECT_EQ(block.configurationWidget(), nullptr);
    EXPECT_EQ(block.clone(), nullptr);
    EXPECT_EQ(block.processData(nullptr), nullptr);
    EXPECT_FALSE(block.acceptsDataFrom(nullptr));
    EXPECT_TRUE(block.acceptsDataFrom(&other));
}

TEST(CkChainable, MessagesAndStatesAreToldOnce) {
    CkChainable block;
    QStringList signalled;
    QObject::connect(&block, &CkChainable::errorMessageChanged, &block,
                     [&](const QString& text) { signalled << text; });
    QObject::connect(&block, &CkChainable::stateChanged, &block,
                     [&](int state) { signalled << QString::number(state); });
    block.setErrorMessage(QStringLiteral("bad"));
    block.setErrorMessage(QStringLiteral("bad"));
    block.setErrorMessage(QString());
    block.setState(CkChainable::Blocked);
    block.setState(CkChainable::Blocked);
    EXPECT_EQ(signalled, QStringList({"bad", "", "1"}));
}

TEST(CkChainable, TheBaseKeepsWhetherABlockIsSwitchedOff) {
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("block"));
    CkChainable off;
    off.setState(CkChainable::Blocked);
    EXPECT_TRUE(off.saveSettings(doc, element));
    CkChainable loaded;
    EXPECT_TRUE(loaded.loadSettings(element));
    EXPECT_EQ(loaded.state(), CkChainable::Blocked);
    element.setAttribute(QStringLiteral("state"), QStringLiteral("junk"));
    EXPECT_TRUE(loaded.loadSettings(element));
    EXPECT_EQ(loaded.state(), CkChainable::Ready);
}
