#pragma once

#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QList>
#include <functional>
#include <memory>

class CkImageData;

/// An open camera of a driver.
///
/// Opened, configured, started and stopped on the user-interface thread; delivers frames from its own
/// thread.
class ZUCORE_EXPORT IkCamera {
public:
    /// Takes ownership of the frame. Called from the camera's own thread. Frames that the camera drops for
    /// lack of memory or bandwidth leave a gap in additionalData.frameNumber; the host counts them by these
    /// gaps.
    using FrameFunction = std::function<void(CkImageData*)>;

    virtual ~IkCamera();

    /// Owned by the camera. Committed values take effect together, from the next frame on.
    virtual CkCameraParameters* parameters() = 0;

    /// Format of the frames to come with the current parameters. Any thread.
    virtual bool frameInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const = 0;

    /// Starts delivering. False, with psError set, on failure.
    virtual bool start(FrameFunction deliver, QString* psError) = 0;
    /// Returns when no frame is being delivered any more.
    virtual void stop() = 0;
    virtual bool isRunning() const = 0; ///< Between start and stop, paused or not.

    /// Pauses delivery without stopping (true), or resumes it; step delivers one set while paused.
    virtual void setPaused(bool bPaused) = 0;
    virtual void step() = 0; ///< See setPaused.
};

/// A family of cameras. One object per driver, registered with CkCameraManager at start.
class ZUCORE_EXPORT IkCameraDriver {
public:
    virtual ~IkCameraDriver();

    virtual QString name() const = 0; ///< To be displayed.
    /// Cameras that can be opened now, and those that are open and present. When one is added or removed,
    /// the driver has CkCameraManager::checkCameras called on the user-interface thread.
    virtual QList<SkCameraInfo> availableCameras() const = 0;
    /// Null, with psError set, when the camera is missing or cannot be opened. A camera that was unplugged
    /// while open is opened again while its old object, stopped, still exists.
    virtual std::unique_ptr<IkCamera> open(const QString& sId, QString* psError) = 0;
};
