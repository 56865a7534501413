#pragma once

#include "sim/camera/CkSimPainter.h"
#include "sim/camera/CkSimParameters.h"
#include "sim/camera/SkSimPlan.h"

#include "zuCore/CkMemoryPool.h"
#include "zuCore/IkCameraDriver.h"

#include <QCoreApplication>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// A simulated camera. Its own thread paints and delivers one set of images per period.
///
/// Committed settings take effect with the next set. All images of a set show the scene at the same time of
/// the camera's clock. The clock starts at 0 with the acquisition and advances by one period per set,
/// regardless of how long a set takes: pictures depend on settings and set number only. A set is dropped when
/// the receivers still hold all pictures of the pool.
class CkSimCamera : public IkCamera {
    Q_DECLARE_TR_FUNCTIONS(CkSimCamera)

public:
    CkSimCamera(EkSimCameraKind kind, const SkCameraInfo& info);
    /// Stops the acquisition first.
    ~CkSimCamera() override;
    CkSimCamera(const CkSimCamera&) = delete;
    CkSimCamera& operator=(const CkSimCamera&) = delete;

    CkCameraParameters* parameters() override { return &m_parameters; }
    /// Format of the first image of a set; time stamp and frame number are 0.
    bool frameInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;
    bool start(FrameFunction deliver, QString* psError) override;
    void stop() override;
    bool isRunning() const override { return m_running; }
    /// Takes effect after the current set; persists across stop and start.
    void setPaused(bool bPaused) override;
    void step() override;

    /// True radial distances in metres at a frame's additionalData.timestampNs, with the current settings. An
    /// empty target is allocated on the heap; any other must be a one-channel float picture of the sensor's
    /// size (of one phase or section). False when it is not, or when memory allocation fails. Any thread.
    bool trueDistance(qint64 timestampNs, SkPicBuf& target) const;

    /// Sets since the start that were not delivered completely because the pool was empty. Any thread.
    quint64 droppedSets() const { return m_droppedSets; }

private:
    using Clock = std::chrono::steady_clock;

    bool applySettings(const QList<CkCameraParam*>& committing);
    void run();
    bool waitForSet(Clock::time_point& due);
    bool waitUntil(Clock::time_point due);
    bool reservePictures(const SkPicBufInfo& info);
    bool deliverSet(const SkSimSettings& settings, const SkSimPlan& plan, Clock::time_point due);
    bool deliverImage(const SkSimSettings& settings, const SkSimImage& image);

    const EkSimCameraKind m_kind;
    CkCameraParameters m_parameters;
    CkSimParameters m_bindings;

    mutable std::mutex m_mutex; ///< guards the members up to m_stopping
    std::condition_variable m_changed;
    SkSimSettings m_settings;
    SkSimPlan m_plan;
    bool m_paused = false;
    int m_steps = 0;
    bool m_stopping = false;

    std::thread m_thread;
    std::atomic<std::thread::id> m_worker; ///< the delivering thread, which must not join itself
    std::atomic<bool> m_running{false};
    std::atomic<quint64> m_droppedSets{0};

    // Used only by the camera's thread while it runs.
    FrameFunction m_deliver;
    CkSimPainter m_painter;
    CkMemoryPool m_pool;
    size_t m_pictureBytes = 0;
    quint64 m_frameNumber = 0;
    quint64 m_setNumber = 0;
    qint64 m_clockNs = 0;
};
