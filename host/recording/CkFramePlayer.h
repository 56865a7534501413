#pragma once

#include "host/recording/CkFrameFetcher.h"
#include "host/recording/CkPlaybackClock.h"
#include "host/recording/CkPlaybackState.h"
#include "host/recording/SkPlaybackSettings.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

class IkFrameFile;
struct SkFrameDescription;

/// The thread that reads a recording and delivers its frames to a chain, at the configured pace.
///
/// Every function may be called from any thread.
class CkFramePlayer {
public:
    /// Callbacks for frames and notifications; called on the player's thread, without its lock.
    struct SkOutput {
        /// Takes ownership of a frame. False when the chain refuses it; after true the chain reports with
        /// frameEntered and frameDone, or with frameDropped.
        std::function<bool(CkImageData*)> deliver;
        std::function<void(const QString& sText)> showError;
        std::function<void(qint64 iFrame)> positionChanged;
        std::function<void()> finished; ///< playback ended at the last frame
    };
    using Interrupted = std::function<bool()>;
    using AfterFrame = std::function<void(const Interrupted& interrupted)>;

    explicit CkFramePlayer(SkOutput output); ///< Paused, without a file.
    ~CkFramePlayer();                        ///< Waits for the thread.
    CkFramePlayer(const CkFramePlayer&) = delete;
    CkFramePlayer& operator=(const CkFramePlayer&) = delete;

    /// Plays another file from its beginning; never null. first: of the first frame that can be read.
    void setFile(const std::shared_ptr<const IkFrameFile>& file, const SkFrameDescription& first);
    std::shared_ptr<const IkFrameFile> file() const; ///< Null before setFile.
    qint64 frameCount() const;                       ///< 0 without a file.
    /// The format of the frame delivered last, or of the first one, scaled. False when unknown.
    bool format(SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    SkPlaybackSettings settings() const;
    /// Takes effect at once, also while waiting for a frame's time. Returns the previous settings.
    SkPlaybackSettings changeSettings(const std::function<void(SkPlaybackSettings&)>& edit);
    /// See CkVideoSource::setAfterFrame.
    void setAfterFrame(AfterFrame afterFrame);

    CkPlaybackState state() const; ///< A snapshot.
    bool play();                   ///< False when already playing.
    bool pause();                  ///< False when not playing.
    bool step();                   ///< Pauses and delivers one more frame. True when it was playing.
    bool seek(qint64 iFrame);      ///< False for an invalid number.

    void chainStarted();
    void chainStopped();
    /// The chain's reports, in the order of delivery.
    void frameEntered();
    void frameDropped();
    void frameDone();

private:
    /// Frames that the chain accepted, counted since construction.
    struct SkFlight {
        quint64 delivered = 0;
        quint64 settled = 0; ///< entered the chain or were dropped before that
        quint64 done = 0;    ///< of the settled ones, those that the chain has finished
        bool lastEntered = false;
    };
    using Lock = std::unique_lock<std::mutex>;

    void run();
    void playNext(Lock& lock);
    void endOfFile(Lock& lock);
    bool waitUntilDue(Lock& lock, qint64& iFrame);
    bool deliverFrame(Lock& lock, const CkImageData& frame);
    void reportDelivered(Lock& lock, qint64 iFrame);
    bool needsFrames() const { return m_file != nullptr && m_state.needsFrames(); }
    /// Changes the state with the lock held, then wakes the thread.
    template <typename Change>
    auto change(Change&& apply);

    const SkOutput m_output;
    mutable std::mutex m_mutex; ///< guards everything below except the fetcher
    std::condition_variable m_changed;
    std::shared_ptr<const IkFrameFile> m_file;
    SkPicBufInfo m_info; ///< as stored in the file
    CkImageMetadata m_metadata;
    SkPlaybackSettings m_settings;
    CkPlaybackState m_state;
    CkPlaybackClock m_clock;
    SkFlight m_flight;
    AfterFrame m_afterFrame;
    CkFrameFetcher m_fetcher; ///< used by the thread only
    std::thread m_thread;     ///< declared last: uses all of the above
};
