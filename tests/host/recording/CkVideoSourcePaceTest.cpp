#include "tests/host/recording/VideoSourceFixture.h"

#include <limits>

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
    // A minute and a half remains, longer than the sink waits.
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
