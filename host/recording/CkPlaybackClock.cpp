#include "host/recording/CkPlaybackClock.h"

#include "host/recording/IkFrameFile.h"

#include <algorithm>

namespace {

constexpr qint64 kSecondNs = 1'000'000'000;
// A longer pause between two frames is a gap in the recording, not a frame rate.
constexpr qint64 kLongestGapNs = 10 * kSecondNs;
constexpr float kDefaultFrameRate = 30.0F;
// Skipping reads frame times from the file under the player's lock, which blocks the controls.
constexpr qint64 kMaximumSkippedAtOnce = 250;

/// Time from iFrame to the next frame, at the speed of playback. 0 when either cannot be read.
CkPlaybackClock::Clock::duration gapAfter(const IkFrameFile& file, qint64 iFrame, double fSpeed) {
    SkFrameDescription here;
    SkFrameDescription next;
    if (!file.describe(iFrame, here, nullptr) || !file.describe(iFrame + 1, next, nullptr)) {
        return {};
    }
    const qint64 from = here.additionalData.timestampNs;
    const qint64 to = next.additionalData.timestampNs;
    // A first frame at time 0 is common; two zeros in a row mean a file without time stamps.
    if (from >= 0 && to >= from && to != 0 && to - from <= kLongestGapNs) {
        return std::chrono::nanoseconds(qint64(double(to - from) / fSpeed));
    }
    const float rate = here.metadata.frameRate > 0.1F ? here.metadata.frameRate : kDefaultFrameRate;
    const qint64 gapNs = qint64(double(kSecondNs) / double(rate));
    return std::chrono::nanoseconds(qint64(double(gapNs) / fSpeed));
}

} // namespace

CkPlaybackClock::SkDue CkPlaybackClock::schedule(const IkFrameFile& file, qint64 iFrame, double fSpeed,
                                                 Clock::time_point now) {
    if (m_lastFrame < 0) {
        m_due = now;
    } else if (iFrame > 0 && m_lastFrame == iFrame - 1) {
        m_due += gapAfter(file, iFrame - 1, fSpeed);
    }
    const qint64 last = std::min(file.frameCount() - 1, iFrame + kMaximumSkippedAtOnce);
    while (iFrame < last) {
        const Clock::time_point nextDue = m_due + gapAfter(file, iFrame, fSpeed);
        if (nextDue > now || nextDue == m_due) {
            break;
        }
        m_due = nextDue;
        ++iFrame;
    }
    m_lastFrame = iFrame;
    return {iFrame, m_due};
}
