#pragma once

#include <QtGlobal>

#include <chrono>

class IkFrameFile;

/// Schedules the frames of a recording that plays in real time, and decides which of them are too late to be
/// shown. Not thread-safe.
class CkPlaybackClock {
public:
    using Clock = std::chrono::steady_clock;

    struct SkDue {
        qint64 frame = 0; ///< the requested one, or a later one if that is overdue
        Clock::time_point time;
    };

    /// Discards the schedule: the next frame is due at once.
    void reset() { m_lastFrame = -1; }
    /// Playback time is halted between the two. They are also called when a chain only renegotiates.
    void chainStopped(Clock::time_point now) { m_stoppedAt = now; }
    void chainStarted(Clock::time_point now) { m_due += now - m_stoppedAt; }

    /// When to show iFrame. A frame is skipped when the following one is already due.
    SkDue schedule(const IkFrameFile& file, qint64 iFrame, double fSpeed, Clock::time_point now);

private:
    qint64 m_lastFrame = -1; ///< the frame scheduled last
    Clock::time_point m_due; ///< of that frame
    Clock::time_point m_stoppedAt;
};
