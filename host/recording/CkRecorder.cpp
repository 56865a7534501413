#include "host/recording/CkRecorder.h"

#include "host/recording/ForeignMembers.h"
#include "zuCore/CkImageData.h"

#include <QCoreApplication>

#include <algorithm>
#include <system_error>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkRecorder)
};

} // namespace

CkRecorder::CkRecorder() = default;

CkRecorder::~CkRecorder() {
    stop();
}

void CkRecorder::setProblemCallback(std::function<void(const SkState&)> callback) {
    const std::lock_guard lock(m_mutex);
    m_onProblem = std::move(callback);
}

bool CkRecorder::start(const QString& sFileName, const SkRecordingInfo& recording, const SkOptions& options,
                       QString* psError) {
    const std::lock_guard lock(m_mutex);
    const auto refuse = [psError](const QString& message) {
        if (psError != nullptr) {
            *psError = message;
        }
        return false;
    };
    if (m_running) {
        return refuse(Texts::tr("A recording is running already."));
    }
    if (!m_writer.open(sFileName, recording, options.compression)) {
        return refuse(m_writer.errorMessage());
    }
    m_state = SkState();
    m_options = options;
    m_options.queueFrames = std::max(1, options.queueFrames);
    try {
        m_running = true;
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        m_running = false;
        m_writer.close();
        return refuse(Texts::tr("There is no thread to record in."));
    }
    return true;
}

bool CkRecorder::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_running = false;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) {
        m_thread.join();
        const bool closed = m_writer.close();
        const std::lock_guard lock(m_mutex);
        if (!closed && m_state.error.isEmpty()) {
            m_state.error = m_writer.errorMessage();
        }
    }
    const std::lock_guard lock(m_mutex);
    return m_state.dropped == 0 && m_state.error.isEmpty();
}

bool CkRecorder::isRunning() const {
    const std::lock_guard lock(m_mutex);
    return m_running;
}

CkRecorder::SkState CkRecorder::stateLocked() const {
    SkState state = m_state;
    state.waiting = int(m_queue.size()) + (m_writing ? 1 : 0);
    return state;
}

CkRecorder::SkState CkRecorder::state() const {
    const std::lock_guard lock(m_mutex);
    return stateLocked();
}

int CkRecorder::heldFrames() const {
    const std::lock_guard lock(m_mutex);
    return m_options.queueFrames + 1;
}

int CkRecorder::takeFrame(CkImageData* pData) {
    std::unique_ptr<CkImageData> frame(pData);
    std::function<void(const SkState&)> onProblem;
    SkState state;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_running || frame == nullptr) {
            return 0;
        }
        if (m_state.error.isEmpty() && int(m_queue.size()) < m_options.queueFrames) {
            m_queue.push_back(std::move(frame));
        } else {
            ++m_state.dropped;
            onProblem = m_onProblem;
            state = stateLocked();
        }
    }
    if (frame == nullptr) {
        m_changed.notify_all();
        return 0;
    }
    if (onProblem) {
        onProblem(state);
    }
    return 1;
}

bool CkRecorder::waitForSpace() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] {
        return !m_running || !m_state.error.isEmpty() || int(m_queue.size()) < m_options.queueFrames;
    });
    return m_running && m_state.error.isEmpty();
}

void CkRecorder::run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return !m_queue.empty() || !m_running; });
        if (m_queue.empty()) {
            return;
        }
        std::unique_ptr<CkImageData> frame = std::move(m_queue.front());
        m_queue.pop_front();
        m_writing = true;
        const bool broken = !m_state.error.isEmpty();
        lock.unlock();
        const bool written =
            !broken && m_writer.write(frame->picBuf(), frame->metadata(), ForeignMembers::of(*frame));
        frame.reset();
        lock.lock();
        m_writing = false;
        std::function<void(const SkState&)> onProblem;
        if (written) {
            m_state.written = m_writer.frameCount();
            m_state.bytes = m_writer.byteCount();
        } else {
            ++m_state.dropped;
            if (!broken) {
                m_state.error = m_writer.errorMessage();
            }
            onProblem = m_onProblem;
        }
        if (onProblem) {
            const SkState state = stateLocked();
            lock.unlock();
            onProblem(state);
            lock.lock();
        }
        m_changed.notify_all();
    }
}
