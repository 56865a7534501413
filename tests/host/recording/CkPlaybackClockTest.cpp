#include "host/recording/CkPlaybackClock.h"
#include "host/recording/IkFrameFile.h"
#include "zuCore/CkImageData.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = CkPlaybackClock::Clock;

/// A file of frames without pictures, only their times in ns; a frame with a negative time is unreadable.
class TimedFile : public IkFrameFile {
public:
    explicit TimedFile(std::vector<qint64> times, float rate = 0.0F)
        : m_times(std::move(times)), m_rate(rate) {}
    QString fileName() const override { return {}; }
    qint64 frameCount() const override { return qint64(m_times.size()); }
    QString damage() const override { return {}; }
    const SkRecordingInfo& recordingInfo() const override { return m_info; }
    std::unique_ptr<CkImageData> read(qint64, QString*, QJsonObject*) const override { return nullptr; }
    bool describe(qint64 iFrame, SkFrameDescription& description, QString*) const override {
        description.additionalData.timestampNs = m_times[size_t(iFrame)];
        description.metadata.frameRate = m_rate;
        return m_times[size_t(iFrame)] >= 0;
    }

private:
    std::vector<qint64> m_times;
    float m_rate;
    SkRecordingInfo m_info;
};

std::vector<qint64> every(std::chrono::nanoseconds gap, qint64 frames) {
    std::vector<qint64> times;
    for (qint64 i = 0; i < frames; ++i) {
        times.push_back(1 + i * gap.count());
    }
    return times;
}

const Clock::time_point kStart = Clock::time_point(1h);

/// When the second of two frames is due, counted from the first.
Clock::duration gapOf(const TimedFile& file, double speed = 1.0) {
    CkPlaybackClock clock;
    clock.schedule(file, 0, speed, kStart);
    const CkPlaybackClock::SkDue due = clock.schedule(file, 1, speed, kStart);
    EXPECT_EQ(due.frame, 1);
    return due.time - kStart;
}

} // namespace

TEST(CkPlaybackClockTest, TheFirstFrameIsDueAtOnceAndTheOthersAtTheirTimes) {
    const TimedFile file({100, 40'000'100, 50'000'100});
    CkPlaybackClock clock;
    EXPECT_EQ(clock.schedule(file, 0, 1.0, kStart).time, kStart);
    EXPECT_EQ(clock.schedule(file, 1, 1.0, kStart + 1ms).time, kStart + 40ms);
    const CkPlaybackClock::SkDue last = clock.schedule(file, 2, 1.0, kStart + 45ms);
    EXPECT_EQ(last.frame, 2);
    EXPECT_EQ(last.time, kStart + 50ms) << "measured from the frame's time, not from when it was shown";
}

TEST(CkPlaybackClockTest, SpeedScalesTheGaps) {
    EXPECT_EQ(gapOf(TimedFile(every(40ms, 2)), 0.5), 80ms);
    EXPECT_EQ(gapOf(TimedFile(every(40ms, 2)), 4.0), 10ms);
}

TEST(CkPlaybackClockTest, WithoutUsableTimesTheFrameRateCounts) {
    EXPECT_EQ(gapOf(TimedFile({0, 0}, 50.0F)), 20ms);
    EXPECT_EQ(gapOf(TimedFile({0, 0}, 50.0F), 2.0), 10ms);
    EXPECT_EQ(gapOf(TimedFile({0, 0})), std::chrono::nanoseconds(33'333'333)) << "30 Hz without a rate";
    EXPECT_EQ(gapOf(TimedFile({50, 10}, 50.0F)), 20ms) << "time runs backwards";
    EXPECT_EQ(gapOf(TimedFile({1, 10'000'000'001})), 10s);
    EXPECT_EQ(gapOf(TimedFile({1, 10'000'000'002}, 50.0F)), 20ms) << "a gap in the recording";
    EXPECT_EQ(gapOf(TimedFile({0, 7'000'000})), 7ms) << "only the first frame is at time 0";
}

TEST(CkPlaybackClockTest, AFrameIsSkippedWhenTheNextOneIsDue) {
    const TimedFile file(every(10ms, 100));
    CkPlaybackClock clock;
    clock.schedule(file, 0, 1.0, kStart);
    CkPlaybackClock::SkDue due = clock.schedule(file, 1, 1.0, kStart + 49ms);
    EXPECT_EQ(due.frame, 4);
    EXPECT_EQ(due.time, kStart + 40ms);
    due = clock.schedule(file, 5, 1.0, kStart + 60ms);
    EXPECT_EQ(due.frame, 6) << "due at this very moment";
    due = clock.schedule(file, 7, 1.0, kStart + 10s);
    EXPECT_EQ(due.frame, 99) << "the last frame is never skipped";
}

TEST(CkPlaybackClockTest, SkippingEndsAfter250Frames) {
    const TimedFile file(every(10ms, 1000));
    CkPlaybackClock clock;
    clock.schedule(file, 0, 1.0, kStart);
    EXPECT_EQ(clock.schedule(file, 1, 1.0, kStart + 9s).frame, 251);
    EXPECT_EQ(clock.schedule(file, 252, 1.0, kStart + 9s).frame, 502);
}

TEST(CkPlaybackClockTest, UnreadableFramesAreNotSkippedOver) {
    const TimedFile file({1, -1, 20'000'001});
    CkPlaybackClock clock;
    EXPECT_EQ(clock.schedule(file, 0, 1.0, kStart).frame, 0);
    const CkPlaybackClock::SkDue due = clock.schedule(file, 1, 1.0, kStart + 1s);
    EXPECT_EQ(due.frame, 1);
    EXPECT_EQ(due.time, kStart);
}

TEST(CkPlaybackClockTest, AResetMakesTheNextFrameDueAtOnce) {
    const TimedFile file(every(40ms, 10));
    CkPlaybackClock clock;
    clock.schedule(file, 0, 1.0, kStart);
    clock.reset();
    EXPECT_EQ(clock.schedule(file, 1, 1.0, kStart + 3ms).time, kStart + 3ms);
}

TEST(CkPlaybackClockTest, TimeStandsStillWhileTheChainIsStopped) {
    const TimedFile file(every(40ms, 10));
    CkPlaybackClock clock;
    clock.schedule(file, 0, 1.0, kStart);
    clock.chainStopped(kStart + 10ms);
    clock.chainStarted(kStart + 5010ms);
    const CkPlaybackClock::SkDue due = clock.schedule(file, 1, 1.0, kStart + 5010ms);
    EXPECT_EQ(due.frame, 1);
    EXPECT_EQ(due.time, kStart + 5040ms);
}

TEST(CkPlaybackClockTest, ALoopShowsItsFirstFrameAtTheTimeOfTheLast) {
    const TimedFile file(every(40ms, 2));
    CkPlaybackClock clock;
    clock.schedule(file, 0, 1.0, kStart);
    clock.schedule(file, 1, 1.0, kStart);
    EXPECT_EQ(clock.schedule(file, 0, 1.0, kStart + 41ms).time, kStart + 40ms);
}
