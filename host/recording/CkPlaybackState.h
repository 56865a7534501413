#pragma once

#include <QtGlobal>

/// What the player is doing and which frame comes next. Not thread-safe.
class CkPlaybackState {
public:
    enum class EkMode {
        Paused,
        Stepping, ///< paused, with single frames still to be delivered
        Playing,
        Closing ///< the player's thread ends
    };

    EkMode mode() const { return m_mode; }
    qint64 next() const { return m_next; }         ///< the frame to be delivered next
    qint64 position() const { return m_position; } ///< the frame delivered last, -1 before the first one
    qint64 skipped() const { return m_skipped; }   ///< by real time, since play()
    /// Incremented by every change that invalidates the frame being read or waited for.
    quint64 generation() const { return m_generation; }
    bool chainRuns() const { return m_chainRuns; }
    bool needsFrames() const {
        return m_chainRuns && (m_mode == EkMode::Playing || m_mode == EkMode::Stepping);
    }

    /// Restarts at the first frame after the last one. False: already playing.
    bool play(qint64 iFrameCount);
    bool pause();             ///< False: not playing. Pending steps are unaffected.
    bool step();              ///< Pauses, with one more frame pending. True: was playing.
    void seek(qint64 iFrame); ///< While paused the frame counts as a step and replaces pending ones.
    void rewind();            ///< To be called for a new file.
    void discardFrame() { ++m_generation; } ///< The frame being read is discarded and read again.
    void setChainRuns(bool bRuns) { m_chainRuns = bRuns; }
    void close(); ///< For good: play, step and seek have no effect afterwards.

    void addSkipped(qint64 iFrames) { m_skipped += iFrames; }
    void frameDelivered(qint64 iFrame);
    void frameUnreadable(qint64 iFrame) { advance(iFrame); }
    void startOver() { m_next = 0; } ///< After the last frame of a loop.
    bool end();                      ///< After the last frame. Pauses; false when not playing.

private:
    void advance(qint64 iFrame);

    EkMode m_mode = EkMode::Paused;
    int m_steps = 0; ///< pending; above 0 exactly while Stepping
    bool m_chainRuns = false;
    qint64 m_next = 0;
    qint64 m_position = -1;
    qint64 m_skipped = 0;
    quint64 m_generation = 0;
};
