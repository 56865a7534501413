#pragma once

#include "host/recording/CkRecordingWriter.h"
#include "zuCore/CkChain.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

/// Records the frames of a block. Writing happens on a thread of the recorder's own; a frame that finds the
/// queue full is dropped and counted. After a write error every further frame is. Any thread, start and stop
/// one at a time.
class CkRecorder : public IkFrameSink {
public:
    struct SkOptions {
        EkRecordingCompression compression = EkRecordingCompression::None;
        int queueFrames = 16; ///< frames that may wait for the disk, at least 1
    };
    struct SkState {
        qint64 written = 0; ///< frames that are in the file
        qint64 dropped = 0; ///< frames that are not and will not be
        int waiting = 0;    ///< frames in the queue, with the one that is being written
        quint64 bytes = 0;  ///< of the file
        QString error;      ///< names file and page; empty while all is well
    };

    CkRecorder();
    /// Stops.
    ~CkRecorder() override;

    /// Makes the file and takes frames from then on. False, with psError, when the file cannot be written or
    /// the recorder runs already.
    bool start(const QString& sFileName, const SkRecordingInfo& recording, const SkOptions& options,
               QString* psError);
    /// Writes what waits and closes the file. Frames that come later are deleted and not counted. False when
    /// a frame was lost or an error was met; the state tells.
    bool stop();
    bool isRunning() const;

    SkState state() const;
    /// Called after each drop and each error, from the thread that noticed; quick, and not calling back. Set
    /// it while stopped.
    void setTroubleFunction(std::function<void(const SkState&)> trouble);

    int takeFrame(CkImageData* pData) override;
    int heldFrames() const override;

    /// Waits until the queue has room, for producers that would rather wait than lose a frame. False when the
    /// recorder does not run or has met an error.
    bool waitForRoom();

private:
    void run();
    SkState stateLocked() const;

    mutable std::mutex m_mutex; ///< guards all but the writer, which is the thread's while it runs
    std::condition_variable m_changed;
    std::deque<std::unique_ptr<CkImageData>> m_queue;
    SkState m_state;
    SkOptions m_options;
    bool m_bRunning = false;
    bool m_bWriting = false;
    std::function<void(const SkState&)> m_trouble;
    std::thread m_thread;
    CkRecordingWriter m_writer;
};
