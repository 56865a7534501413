// Faulty blocks, sinks and pictures, and the messages of the chain about them.

#include "tests/host/core/chainFixture.h"
#include "zuCore/CkMemoryPool.h"
#include "zuCore/CkPicBufAPI.h"

#include <stdexcept>
#include <thread>

using testing::ElementsAre;

namespace {

/// Throws in the selected functions.
class ThrowingBlock : public AddBlock {
public:
    enum EkWhere { Nowhere, Title, Accepts, Buffers, Query, Start, Stop, Process };

    ThrowingBlock() : AddBlock(1) {}

    QString title() const override {
        maybe(Title);
        return AddBlock::title();
    }
    bool acceptsDataFrom(CkChainable* pUpstream) override {
        maybe(Accepts);
        return AddBlock::acceptsDataFrom(pUpstream);
    }
    int buffersCountInMemoryPool() const override {
        maybe(Buffers);
        return AddBlock::buffersCountInMemoryPool();
    }
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override {
        maybe(Query);
        return AddBlock::queryOutputImageInfo(in, out, pInMeta, pOutMeta);
    }
    void setupStart() override {
        AddBlock::setupStart();
        maybe(Start);
    }
    void setupStop() override {
        AddBlock::setupStop();
        maybe(Stop);
    }
    IkChainData* processData(IkChainData* pData) override {
        if (clearsMessage) {
            setErrorMessage(QString());
        }
        if (every != 0 && called++ % every == 0) {
            throw std::runtime_error("now and then");
        }
        maybe(Process);
        return AddBlock::processData(pData);
    }

    std::atomic<int> where = Nowhere;
    std::atomic<int> every = 0; ///< frame on which it throws
    std::atomic<bool> clearsMessage = false;

private:
    void maybe(int place) const {
        if (where == place) {
            throw std::runtime_error("no licence");
        }
    }
    int called = 0;
};

/// A picture that cannot be shared.
class LonelyFrame : public CkImageData {
public:
    CkImageData* share() const override { throw std::runtime_error("not with me"); }
};

/// A picture that cannot be shared for lack of memory.
class CrowdedFrame : public CkImageData {
public:
    CkImageData* share() const override { return nullptr; }
};

/// Not a picture; counts its instances.
class Note : public IkChainData {
public:
    explicit Note(std::atomic<int>& count) : m_count(count) { ++m_count; }
    ~Note() override { --m_count; }
    IkChainData* share() const override { return new Note(m_count); }

private:
    std::atomic<int>& m_count;
};

/// Outputs something that is not a picture.
class NoteBlock : public AddBlock {
public:
    explicit NoteBlock(std::atomic<int>& count) : m_count(count) {}
    IkChainData* processData(IkChainData* pData) override {
        delete pData;
        return new Note(m_count);
    }

private:
    std::atomic<int>& m_count;
};

/// Sets messages while it is being set up, slowly.
class TalkingBlock : public AddBlock {
public:
    TalkingBlock() : AddBlock(1) {}
    void setupStart() override {
        AddBlock::setupStart();
        setErrorMessage(QStringLiteral("first"));
        setErrorMessage(QStringLiteral("last"));
        ownWords = errorMessage();
        setUp.pass();
    }

    Gate setUp;
    QString ownWords;
};

class ThrowingSink : public KeepingSink {
public:
    int heldFrames() const override { throw std::runtime_error("how should I know"); }
};

class CkChainGuardTest : public ChainFixture {
protected:
    ~CkChainGuardTest() override {
        chain->stop();
        chain->removeSink(&sink);
    }

    void run(int frames) {
        for (int i = 0; i < frames; ++i) {
            pushSurely(quint8(i));
        }
        ASSERT_TRUE(waitUntil([&] {
            const SkBlockStatistics statistics = chain->blockStatistics(source);
            return statistics.framesDone + statistics.dropped == statistics.framesIn;
        }));
    }

    /// The first frame, with this value in every byte.
    template <class Frame>
    void runOne(quint8 value) {
        auto frame = std::make_unique<Frame>();
        SkPicBuf picture;
        ASSERT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(picture, packedFormat(8, 4)));
        std::fill_n(picture.data, 32, value);
        frame->setPicBuf(picture);
        ASSERT_TRUE(source->pushFrame(std::move(frame)));
        ASSERT_TRUE(waitUntil([&] { return chain->blockStatistics(source).framesDone == 1; }));
    }

    void listen(CkChainable* block) {
        QObject::connect(
            block, &CkChainable::errorMessageChanged, block,
            [this](const QString& text) { signalled << text; }, Qt::DirectConnection);
    }

    KeepingSink sink;
    QStringList signalled; ///< written by one thread at a time
};

} // namespace

TEST_F(CkChainGuardTest, WhereverABlockThrowsTheChainStartsRunsAndStops) {
    auto* const bad = branch(new ThrowingBlock(), source);
    auto* const good = branch(new AddBlock(2), source);
    chain->addSink(good, &sink);
    for (int where = ThrowingBlock::Title; where <= ThrowingBlock::Process; ++where) {
        SCOPED_TRACE(where);
        bad->where = where;
        ASSERT_TRUE(chain->start());
        const size_t before = sink.count();
        run(2);
        EXPECT_EQ(sink.count(), before + 2);
        EXPECT_EQ(chain->chainTitle(bad), where == ThrowingBlock::Title
                                              ? QStringLiteral("Test Source - AddBlock")
                                              : QStringLiteral("Test Source - Add"));
        chain->stop();
        EXPECT_TRUE(chain->stopped());
        const bool harmless = where == ThrowingBlock::Title || where == ThrowingBlock::Accepts;
        EXPECT_EQ(bad->errorMessage().isEmpty(), harmless) << bad->errorMessage().toStdString();
    }
    bad->where = ThrowingBlock::Nowhere;
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(bad->errorMessage(), QString());
}

TEST_F(CkChainGuardTest, ABlockThatThrowsWhenAskedWhatItAcceptsAcceptsNothing) {
    auto* const bad = branch(new ThrowingBlock(), source);
    auto* const added = new ThrowingBlock();
    added->where = bad->where = ThrowingBlock::Accepts;
    EXPECT_FALSE(manager->insertAfter(chain, added, source));
    EXPECT_FALSE(manager->branchAfter(chain, added, source));
    added->where = ThrowingBlock::Nowhere;
    EXPECT_FALSE(manager->insertAfter(chain, added, source)) << "the other one would be fed by it";
    EXPECT_EQ(chain->blocks(), (QList<CkChainable*>{source, bad}));
    delete added;
}

TEST_F(CkChainGuardTest, APictureThatCannotBeSharedIsLostForAllButOne) {
    auto* const first = branch(new AddBlock(1), source);
    auto* const second = branch(new AddBlock(2), source);
    KeepingSink atSource;
    chain->addSink(source, &atSource);
    chain->addSink(second, &sink);
    ASSERT_TRUE(chain->start());
    runOne<LonelyFrame>(7);
    EXPECT_THAT(sink.values(), ElementsAre(9));
    EXPECT_EQ(chain->blockStatistics(source).dropped, 1U) << "its view";
    EXPECT_EQ(chain->blockStatistics(first).dropped, 1U);
    EXPECT_EQ(first->frames, 0);
    pushSurely(1);
    EXPECT_TRUE(waitUntil([&] { return first->frames == 1; })) << "the next frame is processed";
    chain->stop();
    chain->removeSink(&atSource);
}

TEST_F(CkChainGuardTest, AFrameThatCannotBeSharedIsLostToOneSink) {
    KeepingSink last;
    ASSERT_TRUE(chain->addSink(source, &sink));
    ASSERT_TRUE(chain->addSink(source, &last));
    ASSERT_TRUE(chain->start());
    runOne<CrowdedFrame>(7);
    EXPECT_EQ(chain->blockStatistics(source).dropped, 1U);
    EXPECT_EQ(sink.count(), 0U);
    EXPECT_THAT(last.values(), ElementsAre(7));
    chain->stop();
    chain->removeSink(&last);
}

TEST_F(CkChainGuardTest, WhatIsNoPictureIsFreedThoughSinksTakePicturesOnly) {
    std::atomic<int> notes = 0;
    auto* const block = branch(new NoteBlock(notes), source);
    ASSERT_TRUE(chain->addSink(block, &sink));
    ASSERT_TRUE(chain->start());
    run(3);
    chain->stop();
    EXPECT_EQ(notes, 0);
    EXPECT_EQ(sink.count(), 0U);
}

TEST_F(CkChainGuardTest, ASinkThatThrowsWhenAskedHowMuchItHoldsIsASinkAllTheSame) {
    ThrowingSink strange;
    EXPECT_TRUE(chain->addSink(source, &strange));
    ASSERT_TRUE(chain->start());
    run(1);
    EXPECT_EQ(strange.count(), 1U);
    chain->stop();
    chain->removeSink(&strange);
}

TEST_F(CkChainGuardTest, ABlockThatCannotBeSetUpIsHandedNoFramesAndItsReasonStays) {
    auto* const bad = branch(new ThrowingBlock(), source);
    bad->clearsMessage = true;
    for (const int where : {ThrowingBlock::Start, ThrowingBlock::Buffers}) {
        bad->where = where;
        bad->frames = 0;
        ASSERT_TRUE(chain->start());
        const QString reason = bad->errorMessage();
        EXPECT_THAT(reason.toStdString(),
                    testing::HasSubstr(where == ThrowingBlock::Start ? "cannot be set up: no licence"
                                                                     : "cannot be set up"));
        run(5);
        EXPECT_EQ(bad->frames, 0);
        EXPECT_EQ(chain->blockStatistics(bad).dropped, 5U);
        EXPECT_EQ(bad->errorMessage(), reason);
        // It is queried again when the chain is set up again.
        bad->where = ThrowingBlock::Nowhere;
        chain->requestRenegotiation();
        EXPECT_TRUE(waitUntil([&] { return bad->errorMessage().isEmpty(); }));
        run(1);
        EXPECT_EQ(bad->frames, 1);
        chain->stop();
    }
}

TEST_F(CkChainGuardTest, ABlockThatRefusesItsInputSaysSoBeforeTheFirstFrame) {
    auto* const silent = branch(new AddBlock(1), source);
    auto* const downstream = branch(new AddBlock(1), silent);
    silent->refuses = true;
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(silent->errorMessage(), "The block cannot work on the format of its input.");
    EXPECT_EQ(downstream->errorMessage(), QString()) << "the other block is intact";
    silent->setErrorMessage("this is no wall");
    EXPECT_EQ(silent->errorMessage(), "this is no wall") << "the block's own message has priority";
    silent->setErrorMessage(QString());
    EXPECT_EQ(silent->errorMessage(), "The block cannot work on the format of its input.");
    run(2);
    EXPECT_EQ(chain->blockStatistics(silent).dropped, 2U);
    chain->stop();
    source->announceNothing();
    ASSERT_TRUE(chain->start());
    EXPECT_EQ(silent->errorMessage(), QString()) << "the format of its input is unknown";
}

TEST_F(CkChainGuardTest, HostAndBlockDoNotWriteTheErrorTextInTurns) {
    auto* const block = branch(new ThrowingBlock(), source);
    block->clearsMessage = true;
    block->where = ThrowingBlock::Process;
    ASSERT_TRUE(chain->start());
    listen(block);
    run(50);
    EXPECT_THAT(signalled, ElementsAre(QString("The block failed on a frame.")));
}

TEST_F(CkChainGuardTest, ATextOfFramesThatFailNowAndThenStaysUntilNoneDoes) {
    auto* const block = branch(new ThrowingBlock(), source);
    block->every = 5;
    ASSERT_TRUE(chain->start());
    listen(block);
    run(50);
    EXPECT_THAT(signalled, ElementsAre(QString("The block failed on a frame.")));
    EXPECT_EQ(chain->blockStatistics(block).dropped, 10U);
    block->every = 0;
    run(40);
    EXPECT_THAT(signalled, ElementsAre(QString("The block failed on a frame."), QString()));
}

TEST_F(CkChainGuardTest, SettingUpAnewDoesNotTellTheSameTextAgain) {
    auto* const block = branch(new AddBlock(1), source);
    block->refuses = true;
    ASSERT_TRUE(chain->start());
    listen(block);
    for (int starts = 2; starts < 6; ++starts) {
        chain->requestRenegotiation();
        ASSERT_TRUE(waitUntil([&] { return block->starts == starts; }));
        run(1);
    }
    EXPECT_TRUE(signalled.isEmpty()) << signalled.join(", ").toStdString();
    block->refuses = false;
    chain->requestRenegotiation();
    ASSERT_TRUE(waitUntil([&] { return block->errorMessage().isEmpty(); }));
    chain->stop();
    EXPECT_THAT(signalled, ElementsAre(QString()));
}

namespace {

/// Calls a function when its number of pictures is first queried, while the chain starts.
class AskingBlock : public AddBlock {
public:
    AskingBlock() : AddBlock(1) {}
    int buffersCountInMemoryPool() const override {
        if (const auto act = std::exchange(action, nullptr)) {
            act();
        }
        return AddBlock::buffersCountInMemoryPool();
    }
    mutable std::function<void()> action;
};

} // namespace

TEST_F(CkChainGuardTest, ARenegotiationAskedForWhileTheChainStartsIsServed) {
    auto* const block = branch(new AskingBlock(), source);
    block->action = [this] { chain->requestRenegotiation(); };
    ASSERT_TRUE(chain->start());
    EXPECT_TRUE(waitUntil([&] { return block->starts == 2; }));
}

TEST_F(CkChainGuardTest, ASinkAddedWhileTheChainStartsFindsRoom) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const later = branch(new AskingBlock(), source);
    KeepingSink view(5, 5);
    later->action = [&] {
        EXPECT_TRUE(chain->addSink(block, &view)) << "whose pictures are counted already";
    };
    ASSERT_TRUE(chain->start());
    EXPECT_TRUE(waitUntil([&] { return chain->memoryPool()->capacity(block) == 1 + 5; }));
    run(50);
    EXPECT_EQ(view.count(), 50U);
    EXPECT_EQ(chain->blockStatistics(block).dropped, 0U);
    chain->stop();
    chain->removeSink(&view);
}

TEST_F(CkChainGuardTest, WhatIsSaidDuringSetUpIsHeardAtItsEnd) {
    auto* const block = branch(new TalkingBlock, source);
    listen(block);
    block->setUp.close();
    std::thread starter([this] { EXPECT_TRUE(chain->start()); });
    EXPECT_TRUE(waitUntil([&] { return block->setUp.waiting() == 1; }));
    EXPECT_EQ(block->ownWords, "last");
    EXPECT_EQ(block->errorMessage(), QString());
    block->setUp.open();
    starter.join();
    EXPECT_EQ(block->errorMessage(), "last");
    EXPECT_EQ(signalled, QStringList{"last"});
}
