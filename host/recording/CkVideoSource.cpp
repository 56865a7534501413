#include "host/recording/CkVideoSource.h"

#include "host/recording/CkPageErrors.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"

#include <QDomElement>
#include <QFileInfo>

#include <algorithm>
#include <chrono>
#include <cmath>

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

constexpr qint64 secondNs = 1'000'000'000;
// A longer pause between two frames is a gap in the recording, not a rate.
constexpr qint64 longestGapNs = 10 * secondNs;
constexpr float usualFrameRate = 30.0F;
// A file may have a million pages that cannot be read.
constexpr qint64 mostPagesTried = 1000;
// What is left out at a time for being late: their times have to be read, while the controls wait.
constexpr qint64 mostSkipped = 250;

qint64 timeBetween(const IkFrameFile& reader, qint64 first) {
    SkFrameDescription here;
    SkFrameDescription next;
    if (!reader.describe(first, here, nullptr) || !reader.describe(first + 1, next, nullptr)) {
        return 0;
    }
    const qint64 from = here.additionalData.timestampNs;
    const qint64 to = next.additionalData.timestampNs;
    // The first frame is often the one at time 0; two of them are files without time stamps.
    if (from >= 0 && to >= from && to != 0 && to - from <= longestGapNs) {
        return to - from;
    }
    const float rate = here.metadata.frameRate > 0.1F ? here.metadata.frameRate : usualFrameRate;
    return qint64(double(secondNs) / double(rate));
}

thread_local CkVideoSource::ProgressFunction s_openingProgress;

} // namespace

CkVideoSource::CkOpeningProgress::CkOpeningProgress(const ProgressFunction& progress) {
    s_openingProgress = progress;
}

CkVideoSource::CkOpeningProgress::~CkOpeningProgress() {
    s_openingProgress = nullptr;
}

/// What the player's thread and the controls share.
struct CkVideoSource::SkShared {
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::shared_ptr<const IkFrameFile> reader;
    QString missing;   ///< named by a chain but not there; kept for the chain's next file
    SkPicBufInfo info; ///< of the frame delivered last, or of the first one, as it lies in the file
    CkImageMetadata metadata;
    SkDepthScale scale;
    qint64 next = 0;
    qint64 position = -1;
    qint64 skipped = 0;
    int steps = 0;     ///< frames to be delivered though paused
    quint64 jumps = 0; ///< counts whatever makes a frame that is being read the wrong one
    bool playing = false;
    bool loop = false;
    bool chainRuns = false;
    bool stop = false;
    int pace = EveryFrame;
    double speed = 1.0;
    std::function<void(const std::function<bool()>&)> afterFrame;
    qint64 dueFrame = -1;       ///< the frame that was timed last in real time, -1 for none
    Clock::time_point due;      ///< its time
    Clock::time_point pausedAt; ///< when the chain stopped asking for frames
    CkPageErrors errors;        ///< of the player's thread alone

    /// Between a frame and the next one, at the speed of playback.
    Clock::duration gapAfter(qint64 frame) const {
        return std::chrono::nanoseconds(qint64(double(timeBetween(*reader, frame)) / speed));
    }
    bool wanted() const { return reader != nullptr && chainRuns && (playing || steps > 0); }
};

CkVideoSource::CkVideoSource() : m_d(std::make_unique<SkShared>()), m_thread([this] { run(); }) {}

CkVideoSource::~CkVideoSource() {
    {
        const std::lock_guard lock(m_d->mutex);
        m_d->stop = true;
        ++m_d->jumps;
    }
    m_d->changed.notify_all();
    m_thread.join();
}

bool CkVideoSource::openFile(const QString& sFileName, QString* psError, const ProgressFunction& progress) {
    const std::shared_ptr<const IkFrameFile> reader = CkFrameFiles::open(sFileName, psError, progress);
    if (reader == nullptr) {
        return false;
    }
    useFile(reader);
    return true;
}

void CkVideoSource::shareFile(const CkVideoSource& other) {
    if (const std::shared_ptr<const IkFrameFile> file = other.recording()) {
        useFile(file);
    }
}

void CkVideoSource::useFile(const std::shared_ptr<const IkFrameFile>& file) {
    SkFrameDescription first;
    QString error = file->damage();
    // A first page that cannot be shown is no reason not to show the second.
    const qint64 tried = std::min(file->frameCount(), mostPagesTried);
    for (qint64 frame = 0; frame < tried && !file->describe(frame, first, &error); ++frame) {
    }
    {
        const std::lock_guard lock(m_d->mutex);
        m_d->reader = file;
        m_d->info = first.info;
        m_d->metadata = first.metadata;
        m_d->next = 0;
        m_d->position = -1;
        m_d->skipped = 0;
        m_d->dueFrame = -1;
        ++m_d->jumps;
    }
    m_d->changed.notify_all();
    setErrorMessage(error);
    emit configurationChanged();
}

QString CkVideoSource::fileName() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->reader == nullptr ? QString() : m_d->reader->fileName();
}

std::shared_ptr<const IkFrameFile> CkVideoSource::recording() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->reader;
}

void CkVideoSource::setDepthScale(const SkDepthScale& scale) {
    {
        const std::lock_guard lock(m_d->mutex);
        if (m_d->scale == scale) {
            return;
        }
        m_d->scale = scale;
        ++m_d->jumps;
    }
    m_d->changed.notify_all();
    emit configurationChanged();
}

void CkVideoSource::setAfterFrame(std::function<void(const std::function<bool()>&)> afterFrame) {
    const std::lock_guard lock(m_d->mutex);
    m_d->afterFrame = std::move(afterFrame);
}

SkDepthScale CkVideoSource::depthScale() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->scale;
}

qint64 CkVideoSource::frameCount() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->reader == nullptr ? 0 : m_d->reader->frameCount();
}

qint64 CkVideoSource::position() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->position;
}

bool CkVideoSource::isPlaying() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->playing;
}

bool CkVideoSource::isLoop() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->loop;
}

int CkVideoSource::pace() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->pace;
}

double CkVideoSource::speed() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->speed;
}

qint64 CkVideoSource::skippedFrames() const {
    const std::lock_guard lock(m_d->mutex);
    return m_d->skipped;
}

void CkVideoSource::play() {
    {
        const std::lock_guard lock(m_d->mutex);
        if (m_d->playing) {
            return;
        }
        m_d->playing = true;
        m_d->dueFrame = -1;
        m_d->skipped = 0;
        if (m_d->reader != nullptr && m_d->next >= m_d->reader->frameCount()) {
            m_d->next = 0;
        }
    }
    m_d->changed.notify_all();
    emit playingChanged(true);
}

void CkVideoSource::pause() {
    {
        const std::lock_guard lock(m_d->mutex);
        if (!m_d->playing) {
            return;
        }
        m_d->playing = false;
    }
    m_d->changed.notify_all();
    emit playingChanged(false);
}

void CkVideoSource::step() {
    pause();
    {
        const std::lock_guard lock(m_d->mutex);
        ++m_d->steps;
    }
    m_d->changed.notify_all();
}

bool CkVideoSource::seek(qint64 iFrame) {
    {
        const std::lock_guard lock(m_d->mutex);
        if (m_d->reader == nullptr || iFrame < 0 || iFrame >= m_d->reader->frameCount()) {
            return false;
        }
        m_d->next = iFrame;
        m_d->dueFrame = -1;
        m_d->steps = m_d->playing ? 0 : 1;
        ++m_d->jumps;
    }
    m_d->changed.notify_all();
    return true;
}

void CkVideoSource::setLoop(bool bLoop) {
    const std::lock_guard lock(m_d->mutex);
    m_d->loop = bLoop;
}

void CkVideoSource::setPace(int iPace) {
    {
        const std::lock_guard lock(m_d->mutex);
        m_d->pace = iPace == RealTime ? RealTime : EveryFrame;
        m_d->dueFrame = -1;
    }
    m_d->changed.notify_all();
}

void CkVideoSource::setSpeed(double fSpeed) {
    if (!std::isfinite(fSpeed)) {
        return;
    }
    {
        const std::lock_guard lock(m_d->mutex);
        const double speed = std::clamp(fSpeed, SlowestSpeed, FastestSpeed);
        if (speed == m_d->speed) {
            return;
        }
        m_d->speed = speed;
        m_d->dueFrame = -1;
        ++m_d->jumps; // the wait for the next frame was measured at the speed before
    }
    m_d->changed.notify_all();
}

QString CkVideoSource::title() const {
    const QString file = fileName();
    return file.isEmpty() ? CkImageSource::title() : QFileInfo(file).fileName();
}

bool CkVideoSource::sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_d->mutex);
    if (m_d->info.width == 0) {
        return false;
    }
    info = m_d->info;
    if (pMetadata != nullptr) {
        *pMetadata = m_d->metadata;
    }
    if (m_d->scale.isActive() && SkDepthScale::fits(info)) {
        info = SkDepthScale::scaledInfo(info);
        if (pMetadata != nullptr) {
            pMetadata->channelNames = QStringList{QStringLiteral("Depth")};
            pMetadata->colorFilterArray = 0;
        }
    }
    return true;
}

void CkVideoSource::setupStart() {
    CkImageSource::setupStart();
    {
        const std::lock_guard lock(m_d->mutex);
        m_d->chainRuns = true;
        // The recording's clock stands still while the chain does, be it only to be set up anew.
        m_d->due += Clock::now() - m_d->pausedAt;
    }
    m_d->changed.notify_all();
}

void CkVideoSource::setupStop() {
    CkImageSource::setupStop();
    {
        const std::lock_guard lock(m_d->mutex);
        m_d->chainRuns = false;
        m_d->pausedAt = Clock::now();
    }
    m_d->changed.notify_all();
}

// ---- the player's thread --------------------------------------------------------------------------

void CkVideoSource::run() {
    std::unique_lock lock(m_d->mutex);
    for (;;) {
        m_d->changed.wait(lock, [this] { return m_d->stop || m_d->wanted(); });
        if (m_d->stop) {
            return;
        }
        playOne(lock);
    }
}

void CkVideoSource::playOne(std::unique_lock<std::mutex>& lock) {
    const auto reader = m_d->reader;
    const qint64 count = reader->frameCount();
    if (m_d->next >= count) {
        const bool wasPlaying = m_d->playing;
        if (m_d->loop) {
            m_d->next = 0;
            return;
        }
        m_d->playing = false;
        m_d->steps = 0;
        lock.unlock();
        showError(m_d->errors.endOfRow());
        if (wasPlaying) {
            emit playingChanged(false);
            emit finished();
        }
        lock.lock();
        return;
    }
    qint64 frame = m_d->next;
    const quint64 jumps = m_d->jumps;
    if (m_d->playing && m_d->pace == RealTime && !waitUntilDue(lock, frame)) {
        return;
    }
    const SkDepthScale scale = m_d->scale;
    lock.unlock();
    QString error;
    const std::unique_ptr<CkImageData> data = reader->read(frame, &error);
    showError(error.isEmpty() ? m_d->errors.endOfRow() : m_d->errors.add(error, Clock::now()));
    std::unique_ptr<CkImageData> depth;
    if (data != nullptr && scale.isActive()) {
        depth = scale.scaled(*data);
    }
    lock.lock();
    if (m_d->jumps != jumps || !m_d->wanted()) {
        return;
    }
    if (data == nullptr) {
        advance(frame); // goes on behind what cannot be read
        return;
    }
    m_d->info = data->picBuf();
    m_d->metadata = data->metadata();
    const bool delivered = deliverOne(lock, depth != nullptr ? *depth : *data);
    if (m_d->jumps != jumps || !delivered) {
        return;
    }
    m_d->position = frame;
    advance(frame);
    const auto afterFrame = m_d->pace == EveryFrame ? m_d->afterFrame : nullptr;
    lock.unlock();
    emit positionChanged(frame);
    const auto interrupted = [this, jumps] {
        const std::lock_guard guard(m_d->mutex);
        return m_d->stop || m_d->jumps != jumps;
    };
    if (afterFrame) {
        waitForChain(interrupted);
        afterFrame(interrupted);
    }
    lock.lock();
}

void CkVideoSource::showError(const QString& sText) {
    if (!sText.isEmpty()) {
        setErrorMessage(sText);
    }
}

// A frame that has left the player may still be on its way to the views behind the blocks.
void CkVideoSource::waitForChain(const std::function<bool()>& interrupted) {
    while (!interrupted()) {
        const CkChain* const owner = chain();
        const SkBlockStatistics now = owner != nullptr ? owner->blockStatistics(this) : SkBlockStatistics();
        if (now.framesDone == now.framesOut) {
            return;
        }
        std::this_thread::sleep_for(200us);
    }
}

void CkVideoSource::advance(qint64 iFrame) {
    m_d->next = iFrame + 1;
    if (m_d->steps > 0) {
        --m_d->steps;
    }
}

bool CkVideoSource::waitUntilDue(std::unique_lock<std::mutex>& lock, qint64& iFrame) {
    const auto reader = m_d->reader;
    const quint64 jumps = m_d->jumps;
    const auto interrupted = [this, jumps] {
        return m_d->stop || m_d->jumps != jumps || !m_d->wanted() || m_d->pace != RealTime;
    };
    if (m_d->dueFrame < 0) {
        m_d->due = Clock::now();
    } else if (iFrame > 0 && m_d->dueFrame == iFrame - 1) {
        m_d->due += m_d->gapAfter(iFrame - 1);
    }
    // Whoever is later than the next frame shows that one.
    const qint64 last = std::min(reader->frameCount() - 1, iFrame + mostSkipped);
    while (iFrame < last) {
        const auto nextDue = m_d->due + m_d->gapAfter(iFrame);
        if (nextDue > Clock::now() || nextDue == m_d->due) {
            break;
        }
        m_d->due = nextDue;
        ++iFrame;
        ++m_d->skipped;
    }
    m_d->dueFrame = iFrame;
    m_d->changed.wait_until(lock, m_d->due, interrupted);
    return !interrupted();
}

bool CkVideoSource::deliverOne(std::unique_lock<std::mutex>& lock, CkImageData& frame) {
    const quint64 jumps = m_d->jumps;
    const auto interrupted = [this, jumps] { return m_d->stop || m_d->jumps != jumps; };
    const bool everyFrame = m_d->pace == EveryFrame || !m_d->playing;
    for (int attempt = 0;; ++attempt) {
        CkChain* const owner = chain();
        CkImageData* const own = frame.share();
        if (owner == nullptr || own == nullptr) {
            delete own;
            return false;
        }
        lock.unlock();
        const SkBlockStatistics before = owner->blockStatistics(this);
        const bool taken = deliver(own);
        if (!everyFrame) {
            lock.lock();
            return true;
        }
        SkBlockStatistics after = owner->blockStatistics(this);
        lock.lock();
        // The chain has one frame at a time: none is lost to its queue, and two runs are alike.
        while (taken && after.framesOut == before.framesOut && after.dropped == before.dropped) {
            m_d->changed.wait_for(lock, 200us, interrupted);
            if (interrupted()) {
                return false;
            }
            lock.unlock();
            after = owner->blockStatistics(this);
            lock.lock();
            if (!m_d->chainRuns && owner->stopped()) {
                return false;
            }
        }
        if (after.framesOut != before.framesOut) {
            return true;
        }
        // A frame of another format than the one before is dropped while the chain is set up anew for it.
        m_d->changed.wait_for(lock, 1ms, interrupted);
        if (interrupted() || owner->stopped() || attempt == 1000) {
            return false;
        }
    }
}

// ---- settings ---------------------------------------------------------------------------------------

bool CkVideoSource::saveSettings(QDomDocument& doc, QDomElement& element) const {
    if (!CkImageSource::saveSettings(doc, element)) {
        return false;
    }
    const QString file = fileName();
    element.setAttribute(QStringLiteral("file"), file.isEmpty() ? m_d->missing : file);
    element.setAttribute(QStringLiteral("loop"), isLoop() ? 1 : 0);
    element.setAttribute(QStringLiteral("pace"), pace());
    element.setAttribute(QStringLiteral("speed"), QString::number(speed(), 'g', 17));
    const SkDepthScale scale = depthScale();
    if (scale.isActive()) {
        element.setAttribute(QStringLiteral("metresPerCount"),
                             QString::number(scale.metresPerCount, 'g', 17));
        element.setAttribute(QStringLiteral("zeroIsNothing"), scale.zeroIsNothing ? 1 : 0);
    }
    return true;
}

bool CkVideoSource::loadSettings(const QDomElement& element) {
    if (!CkImageSource::loadSettings(element)) {
        return false;
    }
    setLoop(element.attribute(QStringLiteral("loop")).toInt() != 0);
    setPace(element.attribute(QStringLiteral("pace")).toInt());
    bool number = false;
    const double speed = element.attribute(QStringLiteral("speed")).toDouble(&number);
    setSpeed(number ? speed : 1.0);
    SkDepthScale scale;
    const double metres = element.attribute(QStringLiteral("metresPerCount")).toDouble();
    scale.metresPerCount = std::isfinite(metres) ? std::max(metres, 0.0) : 0.0;
    scale.zeroIsNothing =
        element.attribute(QStringLiteral("zeroIsNothing"), QStringLiteral("1")).toInt() != 0;
    setDepthScale(scale);
    const QString file = element.attribute(QStringLiteral("file"));
    // One that is missing may come back; a pipe or a device never is a recording.
    if (const QFileInfo info(file); info.exists() && !info.isFile()) {
        setErrorMessage(tr("\"%1\": This is no ordinary file.").arg(file));
        return false;
    }
    QString error;
    if (!file.isEmpty() && !openFile(file, &error, s_openingProgress)) {
        m_d->missing = file;
        setErrorMessage(error);
    }
    return true;
}

CkChainable* CkVideoSource::clone() {
    auto copy = std::make_unique<CkVideoSource>();
    copy->shareFile(*this);
    copy->m_d->missing = m_d->missing;
    copy->setLoop(isLoop());
    copy->setPace(pace());
    copy->setSpeed(speed());
    copy->setDepthScale(depthScale());
    return copy.release();
}
