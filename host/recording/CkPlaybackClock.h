#pragma once

#include <QtGlobal>

#include <chrono>

class IkFrameFile;

/// Tells at what time a frame is to be shown when a recording plays in real time, and which frames are too
/// late for that. Not thread-safe.
class CkPlaybackClock {
public:
    using Clock = std::chrono::steady_clock;

    struct SkDue {
        qint64 frame = 0; ///< the one asked for, or a later one where that is overdue
        Clock::time_point time;
    };

    /// Forgets the last frame: the next one is due at once.
    void reset() { m_lastFrame = -1; }
    /// Between the two the recording's time stands still. A chain that only renegotiates calls them as well.
    void chainStopped(Clock::time_point now) { m_stoppedAt = now; }
    void chainStarted(Clock::time_point now) { m_due += now - m_stoppedAt; }

    /// When to show iFrame. A frame is skipped when the one after it is due by now.
    SkDue schedule(const IkFrameFile& file, qint64 iFrame, double fSpeed, Clock::time_point now);

private:
    qint64 m_lastFrame = -1; ///< scheduled last
    Clock::time_point m_due; ///< of that frame
    Clock::time_point m_stoppedAt;
};
