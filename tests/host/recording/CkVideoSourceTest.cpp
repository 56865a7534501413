#include "tests/host/recording/recordingFixture.h"
#include "tests/support/HostileFiles.h"

#include "host/recording/CkOpeningProgress.h"
#include "host/recording/CkVideoSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <QDomDocument>
#include <atomic>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <numeric>
#include <thread>

namespace {

using Numbers = std::vector<qint64>;

/// Keeps the numbers of the frames that arrive.
class NumberSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        const std::unique_ptr<CkImageData> data(pData);
        const std::lock_guard lock(m_mutex);
        m_numbers.push_back(qint64(data->metadata().frameNumber));
        m_widths.push_back(data->picBuf().width);
        m_arrived.notify_all();
        return 0;
    }
    /// The numbers once there are so many; fewer only after a long time.
    Numbers waitFor(size_t count) {
        std::unique_lock lock(m_mutex);
        m_arrived.wait_for(lock, std::chrono::seconds(60), [&] { return m_numbers.size() >= count; });
        return m_numbers;
    }
    std::vector<quint32> widths() {
        const std::lock_guard lock(m_mutex);
        return m_widths;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    Numbers m_numbers;
    std::vector<quint32> m_widths;
};

class CkVideoSourceTest : public RecordingFixture {
protected:
    void SetUp() override {
        m_chain = CkChainManager::instance()->createChain();
        m_source = new CkVideoSource;
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(m_chain, m_source, nullptr));
        ASSERT_TRUE(m_chain->addSink(m_source, &m_sink));
    }
    void TearDown() override {
        m_chain->stop();
        m_chain->removeSink(&m_sink);
        CkChainManager::instance()->closeChain(m_chain);
    }
    void openFrames(qint64 frames) {
        record(path("a.tif"), frames);
        QString error;
        ASSERT_TRUE(m_source->openFile(path("a.tif"), &error)) << qPrintable(error);
    }
    static Numbers counted(qint64 first, qint64 behind) {
        Numbers numbers;
        for (qint64 i = first; i < behind; ++i) {
            numbers.push_back(i);
        }
        return numbers;
    }
    /// Until the player has told about a frame.
    void waitForPosition(qint64 position) const {
        for (int i = 0; i < 60000 && m_source->position() != position; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ASSERT_EQ(m_source->position(), position);
    }

    CkChain* m_chain = nullptr;
    CkVideoSource* m_source = nullptr;
    NumberSink m_sink;
};

} // namespace

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

/// Counts a frame some time after it came.
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

TEST_F(CkVideoSourceTest, TheChainIsDoneWithAFrameBeforeWhoeverWaitsForItIsAsked) {
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

namespace {

/// Counts how often it is set up.
class CountingBlock : public CkImageProvider {
public:
    void setupStart() override { ++starts; }
    std::atomic<int> starts = 0;
};

} // namespace

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

TEST_F(CkVideoSourceTest, SettingTheChainUpAnewDoesNotHurryRealTime) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("slow.tif"), {}, EkRecordingCompression::None));
    for (int frame = 0; frame < 100; ++frame) {
        PaddedPicture made = picture(frame);
        made->additionalData.timestampNs = frame * 9'000'000'000;
        ASSERT_TRUE(writer.write(*made, metadata(frame))) << qPrintable(writer.errorMessage());
    }
    ASSERT_TRUE(writer.close());
    auto* const block = new CountingBlock;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(m_chain, block, m_source));
    QString error;
    ASSERT_TRUE(m_source->openFile(path("slow.tif"), &error)) << qPrintable(error);
    m_source->setPace(SkPlaybackSettings::RealTime);
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    ASSERT_EQ(m_sink.waitFor(1), Numbers{0});
    waitForPosition(0);
    for (int starts = 2; starts < 30; ++starts) {
        m_chain->requestRenegotiation();
        for (int i = 0; i < 60000 && block->starts < starts; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    EXPECT_EQ(m_sink.waitFor(1), Numbers{0}) << "the next frame is due seconds later";
}

TEST_F(CkVideoSourceTest, RealTimeKeepsOrderAndAccountsForEveryFrame) {
    openFrames(12); // 40 ms each
    m_source->setPace(SkPlaybackSettings::RealTime);
    ASSERT_TRUE(m_chain->start());
    const auto begin = std::chrono::steady_clock::now();
    m_source->play();
    waitForPosition(11);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(11 * 40));
    const Numbers numbers = m_sink.waitFor(12 - size_t(m_source->skippedFrames()));
    EXPECT_EQ(qint64(numbers.size()) + m_source->skippedFrames(), 12);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    EXPECT_EQ(numbers.front(), 0);
    EXPECT_EQ(numbers.back(), 11);
}

TEST_F(CkVideoSourceTest, HalfTheSpeedTakesTwiceTheTime) {
    openFrames(6); // 40 ms each
    m_source->setPace(SkPlaybackSettings::RealTime);
    m_source->setSpeed(0.5);
    ASSERT_TRUE(m_chain->start());
    const auto begin = std::chrono::steady_clock::now();
    m_source->play();
    waitForPosition(5);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(5 * 40 * 2));
}

TEST_F(CkVideoSourceTest, AnotherSpeedEndsTheWaitForTheNextFrame) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("slow.tif"), {}));
    for (qint64 i = 0; i < 2; ++i) {
        PaddedPicture made = picture(i);
        made->additionalData.timestampNs = 1 + i * 9'000'000'000;
        ASSERT_TRUE(writer.write(*made, metadata(i)));
    }
    ASSERT_TRUE(writer.close());
    ASSERT_TRUE(m_source->openFile(path("slow.tif"), nullptr));
    m_source->setPace(SkPlaybackSettings::RealTime);
    m_source->setSpeed(SkPlaybackSettings::kSlowestSpeed);
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    waitForPosition(0);
    // A minute and a half to go, longer than anybody waits here.
    m_source->setSpeed(SkPlaybackSettings::kFastestSpeed);
    EXPECT_EQ(m_sink.waitFor(2), counted(0, 2));
}

TEST_F(CkVideoSourceTest, SpeedsOutOfRangeAreClamped) {
    EXPECT_EQ(m_source->speed(), 1.0);
    m_source->setSpeed(1000.0);
    EXPECT_EQ(m_source->speed(), 10.0);
    m_source->setSpeed(-3.0);
    EXPECT_EQ(m_source->speed(), 0.1);
    m_source->setSpeed(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(m_source->speed(), 0.1);
    m_source->setSpeed(std::numeric_limits<double>::infinity());
    EXPECT_EQ(m_source->speed(), 0.1);
}

TEST_F(CkVideoSourceTest, WhatCannotBeOpenedChangesNothing) {
    openFrames(2);
    QString error;
    EXPECT_FALSE(m_source->openFile(path("missing.tif"), &error));
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("missing.tif"));
    EXPECT_EQ(m_source->frameCount(), 2);
    EXPECT_FALSE(m_source->openFile(path("a.tif"), &error, [](qint64, double) { return false; }));
    EXPECT_EQ(m_source->frameCount(), 2);
}

TEST_F(CkVideoSourceTest, LoadingSettingsReportsTheSearchForFrames) {
    record(path("a.tif"), 3);
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("block"));
    element.setAttribute(QStringLiteral("file"), path("a.tif"));
    qint64 found = 0;
    bool goesOn = true;
    {
        const CkOpeningProgress progress([&](qint64 frames, double) {
            found = frames;
            return goesOn;
        });
        ASSERT_TRUE(m_source->loadSettings(element));
        EXPECT_EQ(found, 3);
        EXPECT_EQ(m_source->frameCount(), 3);
        goesOn = false;
        CkVideoSource other;
        ASSERT_TRUE(other.loadSettings(element));
        EXPECT_EQ(other.frameCount(), 0);
        EXPECT_THAT(other.errorMessage().toStdString(), ::testing::HasSubstr("cancelled"));
    }
    CkVideoSource after;
    ASSERT_TRUE(after.loadSettings(element));
    EXPECT_EQ(after.frameCount(), 3);
}

TEST_F(CkVideoSourceTest, ADamagedRecordingPlaysAndSaysWhatIsWrong) {
    record(path("whole.tif"), 4);
    const QByteArray bytes = contents(path("whole.tif"));
    setContents(path("cut.tif"), bytes.left(bytes.size() - 3));
    ASSERT_TRUE(m_source->openFile(path("cut.tif"), nullptr));
    EXPECT_THAT(m_source->errorMessage().toStdString(), ::testing::HasSubstr("cut.tif\", page 4: "));
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(3), counted(0, 3));
}

TEST_F(CkVideoSourceTest, SettingsComeBack) {
    openFrames(2);
    m_source->setLoop(true);
    m_source->setPace(SkPlaybackSettings::RealTime);
    m_source->setSpeed(0.25);
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("block"));
    ASSERT_TRUE(m_source->saveSettings(doc, element));
    CkVideoSource other;
    ASSERT_TRUE(other.loadSettings(element));
    EXPECT_EQ(other.fileName(), path("a.tif"));
    EXPECT_TRUE(other.isLoop());
    EXPECT_EQ(other.pace(), int(SkPlaybackSettings::RealTime));
    const std::unique_ptr<CkChainable> copy(other.clone());
    ASSERT_NE(qobject_cast<CkVideoSource*>(copy.get()), nullptr);
    EXPECT_EQ(qobject_cast<CkVideoSource*>(copy.get())->frameCount(), 2);
    EXPECT_EQ(other.speed(), 0.25);
    EXPECT_EQ(qobject_cast<CkVideoSource*>(copy.get())->speed(), 0.25);
    // Chain files from before there was one.
    element.removeAttribute(QStringLiteral("speed"));
    ASSERT_TRUE(other.loadSettings(element));
    EXPECT_EQ(other.speed(), 1.0);

    element.setAttribute(QStringLiteral("file"), path("gone.tif"));
    CkVideoSource lost;
    EXPECT_TRUE(lost.loadSettings(element));
    EXPECT_THAT(lost.errorMessage().toStdString(), ::testing::HasSubstr("gone.tif"));
    // The recording may come back, from a disk that is not in today: its name is not lost.
    QDomElement again = doc.createElement(QStringLiteral("block"));
    ASSERT_TRUE(lost.saveSettings(doc, again));
    EXPECT_EQ(again.attribute(QStringLiteral("file")), path("gone.tif"));
}

TEST_F(CkVideoSourceTest, ThousandsOfUnreadablePagesAreToldOfOnce) {
    HostileTiff tiff(path("torn.tif"));
    const quint32 strip = tiff.append(QByteArray(2, '\1'));
    const auto page = HostileTiff::page(1, 1, 16, COMPRESSION_NONE, strip, 2);
    tiff.addPage(page);
    for (int i = 0; i < 5000; ++i) {
        tiff.addPage({{TIFFTAG_SUBFILETYPE, TIFF_LONG, 1, 0}});
    }
    tiff.addPage(page);
    ASSERT_TRUE(tiff.close());
    QString error;
    ASSERT_TRUE(m_source->openFile(path("torn.tif"), &error)) << qPrintable(error);
    std::atomic<int> told{0};
    QObject::connect(
        m_source, &CkChainable::errorMessageChanged, m_source, [&told] { ++told; }, Qt::DirectConnection);
    m_chain->start();
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(2), (Numbers{0, 5001}));
    waitForPosition(5001);
    // The first one, one twice a second at most, and what is left.
    EXPECT_GE(told, 2);
    EXPECT_LT(told, 500);
    const std::string text = m_source->errorMessage().toStdString();
    EXPECT_THAT(text, ::testing::AllOf(::testing::HasSubstr("torn.tif\", page 5001: "),
                                       ::testing::HasSubstr("(5000 pages in a row)")));
}
