#include "tests/host/recording/VideoSourceFixture.h"

#include <numeric>

TEST_F(CkVideoSourceTest, IsKnownByItsName) {
    EXPECT_STREQ(m_source->metaObject()->className(), "CkVideoSource");
    EXPECT_TRUE(m_source->acceptsDataFrom(nullptr));
    SkPicBufInfo info;
    EXPECT_FALSE(m_source->sourceImageInfo(info, nullptr));
    openFrames(1);
    CkImageMetadata meta;
    ASSERT_TRUE(m_source->sourceImageInfo(info, &meta));
    EXPECT_EQ(info.width, 6U);
    EXPECT_EQ(info.lineSize, 24U);
    EXPECT_EQ(meta.channelNames.size(), 2);
    EXPECT_EQ(m_source->title(), QStringLiteral("a.tif"));
}

TEST_F(CkVideoSourceTest, EveryFrameComesOnceAndInOrder) {
    openFrames(300);
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(300), counted(0, 300));
    waitForPosition(299);
    for (int i = 0; i < 60000 && m_source->isPlaying(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_FALSE(m_source->isPlaying());
    EXPECT_EQ(m_chain->blockStatistics(m_source).dropped, 0U);
    m_source->play();
    Numbers twice = counted(0, 300);
    for (const qint64 number : counted(0, 300)) {
        twice.push_back(number);
    }
    EXPECT_EQ(m_sink.waitFor(600), twice);
}

/// Counts each frame some milliseconds after it arrived.
class SlowSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        const std::unique_ptr<CkImageData> data(pData);
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
        ++m_frames;
        return 0;
    }
    int frames() const { return m_frames; }

private:
    std::atomic<int> m_frames = 0;
};

TEST_F(CkVideoSourceTest, TheChainHasFinishedAFrameBeforeAfterFrameIsCalled) {
    openFrames(20);
    SlowSink slow;
    ASSERT_TRUE(m_chain->addSink(m_source, &slow));
    std::mutex mutex;
    std::vector<int> seen;
    m_source->setAfterFrame([&](const std::function<bool()>&) {
        const std::lock_guard lock(mutex);
        seen.push_back(slow.frames());
    });
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    for (int i = 0; i < 60000; ++i) {
        {
            const std::lock_guard lock(mutex);
            if (seen.size() == 20) {
                break;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    m_chain->stop();
    m_source->setAfterFrame(nullptr);
    m_chain->removeSink(&slow);
    const std::lock_guard lock(mutex);
    std::vector<int> all(20);
    std::iota(all.begin(), all.end(), 1);
    EXPECT_EQ(seen, all);
}

TEST_F(CkVideoSourceTest, NothingFlowsBeforeTheChainRuns) {
    openFrames(3);
    m_source->play();
    EXPECT_EQ(m_source->position(), -1);
    ASSERT_TRUE(m_chain->start());
    EXPECT_EQ(m_sink.waitFor(3), counted(0, 3));
}

TEST_F(CkVideoSourceTest, AStepDuringPlaybackPausesAndReportsItOnce) {
    openFrames(3);
    QList<bool> reports;
    QObject::connect(m_source, &CkVideoSource::playingChanged, m_source,
                     [&reports](bool playing) { reports.append(playing); });
    m_source->play();
    m_source->step();
    m_source->step();
    EXPECT_EQ(reports, (QList<bool>{true, false}));
    EXPECT_FALSE(m_source->isPlaying());
}

TEST_F(CkVideoSourceTest, StepsAndJumps) {
    openFrames(10);
    ASSERT_TRUE(m_chain->start());
    m_source->step();
    waitForPosition(0);
    m_source->step();
    waitForPosition(1);
    EXPECT_TRUE(m_source->seek(7));
    waitForPosition(7);
    m_source->step();
    waitForPosition(8);
    m_source->step();
    waitForPosition(9);
    EXPECT_FALSE(m_source->seek(10));
    EXPECT_FALSE(m_source->seek(-1));
    m_source->setLoop(true);
    m_source->step();
    waitForPosition(0);
    EXPECT_EQ(m_sink.waitFor(6), (Numbers{0, 1, 7, 8, 9, 0}));
    EXPECT_FALSE(m_source->isPlaying());
}

TEST_F(CkVideoSourceTest, GoesOnWhereItWasPausedAndLoops) {
    openFrames(5);
    m_source->setLoop(true);
    ASSERT_TRUE(m_chain->start());
    m_source->seek(3);
    waitForPosition(3);
    m_source->play();
    Numbers numbers = m_sink.waitFor(12);
    m_source->pause();
    EXPECT_FALSE(m_source->isPlaying());
    for (size_t i = 0; i < numbers.size(); ++i) {
        EXPECT_EQ(numbers[i], qint64((3 + i) % 5));
    }
}

TEST_F(CkVideoSourceTest, AStoppedChainGoesOnWithTheNextFrame) {
    openFrames(4);
    ASSERT_TRUE(m_chain->start());
    m_source->step();
    waitForPosition(0);
    m_chain->stop();
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(4), counted(0, 4));
}

TEST_F(CkVideoSourceTest, FramesOfAnotherFormatAreNotSkipped) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("mixed.tif"), {}));
    for (qint64 i = 0; i < 12; ++i) {
        ASSERT_TRUE(writer.write(*picture(i, i % 4 < 2 ? 6 : 9), metadata(i)));
    }
    ASSERT_TRUE(writer.close());
    ASSERT_TRUE(m_source->openFile(path("mixed.tif"), nullptr));
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(12), counted(0, 12));
    EXPECT_EQ(m_sink.widths(), (std::vector<quint32>{6, 6, 9, 9, 6, 6, 9, 9, 6, 6, 9, 9}));
}

TEST_F(CkVideoSourceTest, ALongerSequenceOfPhasesLosesNoFrame) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("n.tif"), {}, EkRecordingCompression::None));
    constexpr int lengths[] = {2, 2, 4, 4, 4, 4, 4, 4, 4, 4};
    for (int frame = 0; frame < 10; ++frame) {
        PaddedPicture made = picture(frame);
        CkImageMetadata meta = metadata(frame);
        meta.phaseSequenceLength = lengths[frame];
        ASSERT_TRUE(writer.write(*made, meta)) << qPrintable(writer.errorMessage());
    }
    ASSERT_TRUE(writer.close());
    auto* const block = new CountingBlock;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(m_chain, block, m_source));
    QString error;
    ASSERT_TRUE(m_source->openFile(path("n.tif"), &error)) << qPrintable(error);
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(10), counted(0, 10));
    EXPECT_EQ(block->starts, 2);
    CkImageMetadata negotiated;
    SkPicBufInfo info;
    ASSERT_TRUE(m_chain->negotiatedInfo(block, info, &negotiated));
    EXPECT_EQ(negotiated.phaseSequenceLength, 4);
    EXPECT_EQ(m_chain->blockStatistics(m_source).dropped, 0U);
}
