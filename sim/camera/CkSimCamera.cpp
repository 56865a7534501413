#include "sim/camera/CkSimCamera.h"

#include "zuCore/CkImageData.h"
#include "zuCore/CkPicture.h"

#include <cmath>
#include <memory>
#include <system_error>

namespace {

/// Pictures in use at the same time: some in a chain, one in each of a few views, one being painted.
constexpr int kPicturesInPool = 8;

qint64 periodNs(const SkSimSettings& settings) {
    return std::llround(1e9 / settings.frameRate);
}

qint64 hostClockNs() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

} // namespace

CkSimCamera::CkSimCamera(EkSimCameraKind kind, const SkCameraInfo& info)
    : m_kind(kind),
      m_parameters(info, [this](const QList<CkCameraParam*>& params) { return applySettings(params); }),
      m_bindings(kind, m_parameters), m_settings(m_bindings.settings({})),
      m_plan(makeSimPlan(kind, m_settings, info)), m_painter(kind) {}

CkSimCamera::~CkSimCamera() {
    stop();
}

bool CkSimCamera::frameInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_mutex);
    info = m_plan.front().info;
    if (pMetadata) {
        *pMetadata = m_plan.front().metadata;
    }
    return true;
}

bool CkSimCamera::start(FrameFunction deliver, QString* psError) {
    const auto refuse = [&](const QString& sReason) {
        if (psError) {
            *psError = sReason;
        }
        return false;
    };
    if (m_running) {
        return refuse(CkSimCamera::tr("The camera is already running."));
    }
    if (!deliver) {
        return refuse(CkSimCamera::tr("Nobody receives the camera's frames."));
    }
    stop();
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = false;
        m_steps = 0;
    }
    m_deliver = std::move(deliver);
    m_frameNumber = 0;
    m_setNumber = 0;
    m_clockNs = 0;
    m_droppedSets = 0;
    m_running = true;
    try {
        m_thread = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        m_running = false;
        m_deliver = nullptr;
        return refuse(CkSimCamera::tr("The camera's thread cannot be started."));
    }
    return true;
}

void CkSimCamera::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    // A receiver that stops the camera from within its callback must not join its own thread.
    if (m_worker.load() == std::this_thread::get_id()) {
        return;
    }
    if (m_thread.joinable()) {
        m_thread.join();
        m_deliver = nullptr;
    }
}

void CkSimCamera::setPaused(bool bPaused) {
    {
        const std::lock_guard lock(m_mutex);
        m_paused = bPaused;
        m_steps = 0;
    }
    m_changed.notify_all();
}

void CkSimCamera::step() {
    {
        const std::lock_guard lock(m_mutex);
        if (m_paused) {
            ++m_steps;
        }
    }
    m_changed.notify_all();
}

bool CkSimCamera::trueDistance(qint64 timestampNs, SkPicBuf& target) const {
    SkSimSettings settings;
    {
        const std::lock_guard lock(m_mutex);
        settings = m_settings;
    }
    CkSimPainter painter(m_kind); // m_painter belongs to the camera's thread
    if (!painter.moveTo(settings, double(timestampNs) * 1e-9)) {
        return false;
    }
    const SkSimLens& lens = painter.raster()->lens();
    if (target.data == nullptr) {
        CkPicture distance;
        if (!distance.allocate(SkPicBufInfo::of(quint32(lens.width), quint32(lens.height), 1,
                                                EkImageDataType::Float32, 32))) {
            return false;
        }
        target = distance.take();
    }
    return painter.raster()->writeDistance(target);
}

bool CkSimCamera::applySettings(const QList<CkCameraParam*>& committing) {
    const SkSimSettings settings = m_bindings.settings(committing);
    SkSimPlan plan = makeSimPlan(m_kind, settings, m_parameters.cameraInfo());
    {
        const std::lock_guard lock(m_mutex);
        m_settings = settings;
        m_plan = std::move(plan);
    }
    // The thread may be waiting for a period that has become shorter.
    m_changed.notify_all();
    return true;
}

void CkSimCamera::run() {
    m_worker = std::this_thread::get_id();
    Clock::time_point due = Clock::now();
    while (waitForSet(due)) {
        SkSimSettings settings;
        SkSimPlan plan;
        {
            const std::lock_guard lock(m_mutex);
            settings = m_settings;
            plan = m_plan;
        }
        if (!deliverSet(settings, plan, due)) {
            break;
        }
        ++m_setNumber;
        m_clockNs += periodNs(settings);
    }
    m_worker = std::thread::id();
    m_running = false;
}

/// Waits until the next set is due and returns that time. False when the camera stops. The first set is due
/// at once.
bool CkSimCamera::waitForSet(Clock::time_point& due) {
    std::unique_lock lock(m_mutex);
    const Clock::time_point before = due;
    const bool first = m_setNumber == 0;
    while (!m_stopping) {
        const Clock::time_point now = Clock::now();
        if (m_paused) {
            if (m_steps > 0) {
                --m_steps;
                due = now;
                return true;
            }
            m_changed.wait(lock);
            continue;
        }
        const std::chrono::nanoseconds period(first ? 0 : periodNs(m_settings));
        due = before + period;
        if (now >= due) {
            // Late sets are skipped: catching up would deliver them in a burst.
            if (now - due > period) {
                due = now;
            }
            return true;
        }
        m_changed.wait_until(lock, due);
    }
    return false;
}

bool CkSimCamera::waitUntil(Clock::time_point due) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_until(lock, due, [this] { return m_stopping; });
    return !m_stopping;
}

bool CkSimCamera::reservePictures(const SkPicBufInfo& info) {
    const size_t bytes = CkPicBufAPI::byteSize(info);
    if (bytes == m_pictureBytes) {
        return true;
    }
    m_pictureBytes = m_pool.reserve(this, info, kPicturesInPool) ? bytes : 0;
    return m_pictureBytes > 0;
}

/// False when the camera stops.
bool CkSimCamera::deliverSet(const SkSimSettings& settings, const SkSimPlan& plan, Clock::time_point due) {
    if (!m_painter.moveTo(settings, double(m_clockNs) * 1e-9) || !reservePictures(plan.front().info)) {
        ++m_droppedSets;
        m_frameNumber += plan.size();
        return true;
    }
    const std::chrono::nanoseconds interval(periodNs(settings) / qint64(plan.size()));
    for (size_t index = 0; index < plan.size(); ++index) {
        if (index > 0 && !waitUntil(due + qint64(index) * interval)) {
            return false;
        }
        if (!deliverImage(settings, plan[index])) {
            ++m_droppedSets;
            m_frameNumber += plan.size() - index;
            break;
        }
    }
    return true;
}

bool CkSimCamera::deliverImage(const SkSimSettings& settings, const SkSimImage& image) {
    CkPicture picture;
    if (!CkPicBufAPI::AllocPicBufFromPool(&m_pool, this, picture.picBuf(), image.info, false) ||
        !m_painter.paint(settings, image, m_setNumber, picture.picBuf())) {
        return false;
    }
    picture.picBuf().additionalData.frameNumber = m_frameNumber;
    picture.picBuf().additionalData.timestampNs = m_clockNs;
    CkImageMetadata metadata = image.metadata;
    metadata.frameNumber = m_frameNumber;
    metadata.timestampNs = hostClockNs();
    ++m_frameNumber;

    auto data = std::make_unique<CkImageData>();
    data->setPicBuf(picture.take());
    data->setMetadata(metadata);
    m_deliver(data.release());
    return true;
}
