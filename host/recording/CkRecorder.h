#pragma once

#include "host/recording/CkRecordingWriter.h"
#include "zuCore/CkChain.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

/// Records the frames of a block. A separate thread writes them; a frame that arrives at a full queue is
/// dropped and counted, and so is every frame after a write error. Any thread, but start and stop must not
/// overlap.
class CkRecorder : public IkFrameSink {
public:
    struct SkOptions {
        EkRecordingCompression compression = EkRecordingCompression::None;
        int queueFrames = 16; ///< capacity of the queue of frames to write, at least 1
    };
    struct SkState {
        qint64 written = 0; ///< frames in the file
        qint64 dropped = 0; ///< frames lost
        int waiting = 0;    ///< frames in the queue, including the one being written
        quint64 bytes = 0;  ///< of the file
        QString error;      ///< names file and page; empty for none
    };

    CkRecorder();
    /// Stops.
    ~CkRecorder() override;

    /// Creates the file; from then on frames are recorded. False, with psError, when the file cannot be
    /// written or the recorder is running already.
    bool start(const QString& sFileName, const SkRecordingInfo& recording, const SkOptions& options,
               QString* psError);
    /// Writes the queued frames and closes the file. Frames that arrive later are deleted and not counted.
    /// False when a frame was dropped or an error occurred, see state().
    bool stop();
    bool isRunning() const;

    SkState state() const;
    /// The function is called after each dropped frame and each error, on the thread that detected it. It
    /// must return quickly and must not call the recorder. To be set while stopped.
    void setProblemCallback(std::function<void(const SkState&)> callback);

    int takeFrame(CkImageData* pData) override;
    int heldFrames() const override;

    /// Blocks until the queue has space, for producers that prefer back-pressure to dropped frames. False
    /// when the recorder is stopped or an error occurred.
    bool waitForSpace();

private:
    void run();
    SkState stateLocked() const;

    mutable std::mutex m_mutex; ///< guards all but the writer, which belongs to the thread while it runs
    std::condition_variable m_changed;
    std::deque<std::unique_ptr<CkImageData>> m_queue;
    SkState m_state;
    SkOptions m_options;
    bool m_running = false;
    bool m_writing = false;
    std::function<void(const SkState&)> m_onProblem;
    std::thread m_thread;
    CkRecordingWriter m_writer;
};
