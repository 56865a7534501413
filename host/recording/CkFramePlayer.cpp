#include "host/recording/CkFramePlayer.h"

#include "host/recording/IkFrameFile.h"
#include "zuCore/CkImageData.h"

#include <utility>

using EkMode = CkPlaybackState::EkMode;

template <typename Change>
auto CkFramePlayer::change(Change&& apply) {
    const std::lock_guard lock(m_mutex);
    m_changed.notify_all(); // the threads continue when the lock is released
    return std::forward<Change>(apply)();
}

CkFramePlayer::CkFramePlayer(SkOutput output) : m_output(std::move(output)), m_thread([this] { run(); }) {}

CkFramePlayer::~CkFramePlayer() {
    change([this] { m_state.close(); });
    m_thread.join();
}

void CkFramePlayer::setFile(const std::shared_ptr<const IkFrameFile>& file, const SkFrameDescription& first) {
    change([&] {
        m_file = file;
        m_info = first.info;
        m_metadata = first.metadata;
        m_state.rewind();
        m_clock.reset();
    });
}

std::shared_ptr<const IkFrameFile> CkFramePlayer::file() const {
    const std::lock_guard lock(m_mutex);
    return m_file;
}

qint64 CkFramePlayer::frameCount() const {
    const std::lock_guard lock(m_mutex);
    return m_file == nullptr ? 0 : m_file->frameCount();
}

bool CkFramePlayer::format(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_mutex);
    if (m_info.width == 0) {
        return false;
    }
    info = m_info;
    if (pMetadata != nullptr) {
        *pMetadata = m_metadata;
    }
    if (m_settings.scale.isActive() && SkDepthScale::fits(info)) {
        info = SkDepthScale::scaledInfo(info);
        if (pMetadata != nullptr) {
            *pMetadata = SkDepthScale::scaledMetadata(m_metadata);
        }
    }
    return true;
}

SkPlaybackSettings CkFramePlayer::settings() const {
    const std::lock_guard lock(m_mutex);
    return m_settings;
}

SkPlaybackSettings CkFramePlayer::changeSettings(const std::function<void(SkPlaybackSettings&)>& edit) {
    return change([&] {
        const SkPlaybackSettings before = m_settings;
        edit(m_settings);
        const bool otherSpeed = m_settings.speed != before.speed;
        if (otherSpeed || m_settings.pace != before.pace) {
            m_clock.reset();
        }
        if (otherSpeed || !(m_settings.scale == before.scale)) {
            m_state.discardFrame(); // scheduled at the old speed, or scaled with the old factor
        }
        return before;
    });
}

void CkFramePlayer::setAfterFrame(AfterFrame afterFrame) {
    const std::lock_guard lock(m_mutex);
    m_afterFrame = std::move(afterFrame);
}

CkPlaybackState CkFramePlayer::state() const {
    const std::lock_guard lock(m_mutex);
    return m_state;
}

bool CkFramePlayer::play() {
    return change([this] {
        // Without a file there is no last frame after which to start over.
        const bool started = m_state.play(m_file == nullptr ? m_state.next() + 1 : m_file->frameCount());
        if (started) {
            m_clock.reset();
        }
        return started;
    });
}

bool CkFramePlayer::pause() {
    return change([this] { return m_state.pause(); });
}

bool CkFramePlayer::step() {
    return change([this] { return m_state.step(); });
}

bool CkFramePlayer::seek(qint64 iFrame) {
    return change([this, iFrame] {
        if (m_file == nullptr || iFrame < 0 || iFrame >= m_file->frameCount()) {
            return false;
        }
        m_state.seek(iFrame);
        m_clock.reset();
        return true;
    });
}

void CkFramePlayer::chainStarted() {
    change([this] {
        m_state.setChainRuns(true);
        m_clock.chainStarted(CkPlaybackClock::Clock::now());
    });
}

void CkFramePlayer::chainStopped() {
    change([this] {
        m_state.setChainRuns(false);
        m_clock.chainStopped(CkPlaybackClock::Clock::now());
    });
}

void CkFramePlayer::frameEntered() {
    change([this] {
        ++m_flight.settled;
        m_flight.lastEntered = true;
    });
}

void CkFramePlayer::frameDropped() {
    change([this] {
        ++m_flight.settled;
        ++m_flight.done;
        m_flight.lastEntered = false;
    });
}

void CkFramePlayer::frameDone() {
    change([this] { ++m_flight.done; });
}

// ---- the player's thread --------------------------------------------------------------------------

void CkFramePlayer::run() {
    Lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_state.mode() == EkMode::Closing || needsFrames(); });
        if (m_state.mode() == EkMode::Closing) {
            return;
        }
        playNext(lock);
    }
}

void CkFramePlayer::playNext(Lock& lock) {
    const std::shared_ptr<const IkFrameFile> file = m_file;
    qint64 frame = m_state.next();
    if (frame >= file->frameCount()) {
        endOfFile(lock);
        return;
    }
    const quint64 generation = m_state.generation();
    if (m_state.mode() == EkMode::Playing && m_settings.pace == SkPlaybackSettings::RealTime &&
        !waitUntilDue(lock, frame)) {
        return;
    }
    const SkDepthScale scale = m_settings.scale;
    lock.unlock();
    CkFrameFetcher::SkFetched fetched = m_fetcher.fetch(*file, frame, scale);
    if (!fetched.message.isEmpty()) {
        m_output.showError(fetched.message);
    }
    lock.lock();
    if (m_state.generation() != generation || !needsFrames()) {
        return;
    }
    if (fetched.frame == nullptr) {
        m_state.frameUnreadable(frame);
        return;
    }
    m_info = fetched.fileInfo;
    m_metadata = fetched.fileMetadata;
    if (deliverFrame(lock, *fetched.frame) && m_state.generation() == generation) {
        reportDelivered(lock, frame);
    }
}

void CkFramePlayer::endOfFile(Lock& lock) {
    if (m_settings.loop) {
        m_state.startOver();
        return;
    }
    const bool played = m_state.end();
    lock.unlock();
    const QString message = m_fetcher.pendingMessage();
    if (!message.isEmpty()) {
        m_output.showError(message);
    }
    if (played) {
        m_output.finished();
    }
    lock.lock();
}

/// False when the frame is no longer the one to show. Advances iFrame past overdue frames.
bool CkFramePlayer::waitUntilDue(Lock& lock, qint64& iFrame) {
    const CkPlaybackClock::SkDue due =
        m_clock.schedule(*m_file, iFrame, m_settings.speed, CkPlaybackClock::Clock::now());
    m_state.addSkipped(due.frame - iFrame);
    iFrame = due.frame;
    const auto interrupted = [this, generation = m_state.generation()] {
        return m_state.generation() != generation || m_state.mode() != EkMode::Playing ||
               !m_state.chainRuns() || m_settings.pace != SkPlaybackSettings::RealTime;
    };
    return !m_changed.wait_until(lock, due.time, interrupted);
}

/// False when the frame was not delivered: the chain stopped, or another frame has been requested.
bool CkFramePlayer::deliverFrame(Lock& lock, const CkImageData& frame) {
    const quint64 generation = m_state.generation();
    const bool mayDrop = m_settings.pace == SkPlaybackSettings::RealTime && m_state.mode() == EkMode::Playing;
    while (m_state.generation() == generation && m_state.chainRuns()) {
        CkImageData* const own = frame.share();
        if (own == nullptr) {
            return false;
        }
        const quint64 settledBefore = m_flight.settled;
        lock.unlock();
        const bool taken = m_output.deliver(own);
        lock.lock();
        m_flight.delivered += taken ? 1 : 0;
        if (mayDrop) {
            return true;
        }
        // The next frame is delivered when this one has entered the chain: none is lost to a full queue, and
        // two runs give the same result. A frame is refused while the chain stops, or when frames from before
        // a seek fill the queue; it is dropped when its format arrives while the chain is busy with another
        // change of format. All three conditions are temporary.
        m_changed.wait(lock, [&] {
            const bool settled = taken ? m_flight.settled >= m_flight.delivered
                                       : m_flight.settled != settledBefore || !m_state.chainRuns();
            return settled || m_state.generation() != generation;
        });
        if (m_state.generation() == generation && taken && m_flight.lastEntered) {
            return true;
        }
    }
    return false;
}

void CkFramePlayer::reportDelivered(Lock& lock, qint64 iFrame) {
    m_state.frameDelivered(iFrame);
    const AfterFrame afterFrame =
        m_settings.pace == SkPlaybackSettings::EveryFrame ? m_afterFrame : AfterFrame();
    const quint64 generation = m_state.generation();
    lock.unlock();
    m_output.positionChanged(iFrame);
    lock.lock();
    if (!afterFrame) {
        return;
    }
    // A frame that has entered the chain may not have reached the views yet.
    m_changed.wait(lock,
                   [&] { return m_flight.done >= m_flight.delivered || m_state.generation() != generation; });
    lock.unlock();
    afterFrame([this, generation] {
        const std::lock_guard guard(m_mutex);
        return m_state.generation() != generation;
    });
    lock.lock();
}
