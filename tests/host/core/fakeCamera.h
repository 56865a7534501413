#pragma once

#include "zuCore/IkCameraDriver.h"

#include <QStringList>
#include <atomic>
#include <memory>
#include <thread>

/// State shared between a test and the cameras of a FakeDriver; outlives the cameras.
struct FakeCameraState {
    QStringList log;
    std::atomic<int> alive = 0;
    std::atomic<bool> running = false;
    bool refusesStart = false;
    bool refusesOpen = false;
    bool offered = true; ///< by the driver
    bool throwsOnStart = false;
    IkCamera::FrameFunction deliver; ///< while running without a thread of its own
    bool ownThread = false;          ///< delivers as fast as it can from a thread
    std::atomic<quint32> width = 8;
};

/// Each has an integer "gain" from 0 to 10 and a read-only "serial". Two cameras, "fake:1" and "fake:2", and
/// one that cannot be opened, "fake:broken".
class FakeDriver : public IkCameraDriver {
public:
    explicit FakeDriver(std::shared_ptr<FakeCameraState> first, std::shared_ptr<FakeCameraState> second);

    QString name() const override;
    QList<SkCameraInfo> availableCameras() const override;
    std::unique_ptr<IkCamera> open(const QString& sId, QString* psError) override;

private:
    std::shared_ptr<FakeCameraState> m_first;
    std::shared_ptr<FakeCameraState> m_second;
};

/// The single driver of a test program: the manager never removes drivers.
struct FakeCameras {
    std::shared_ptr<FakeCameraState> first;
    std::shared_ptr<FakeCameraState> second;
    static FakeCameras& instance();
    /// Closes open cameras and resets all settings.
    void reset() const;
};

/// A frame of 8-bit pixels of one value.
CkImageData* fakeFrame(quint32 width, quint8 value);
