#pragma once

#include "zuCore/IkCameraDriver.h"

#include <QList>
#include <QObject>
#include <memory>

/// All cameras of the program. User-interface thread, except for frame delivery. A handle is an opaque
/// pointer, valid from openCamera until cameraClosed; every function returns null, false or nothing for a
/// handle that is no longer valid.
class ZUCORE_EXPORT CkCameraManager : public QObject {
    Q_OBJECT

public:
    static CkCameraManager* instance(); ///< Never null.

    void addDriver(std::unique_ptr<IkCameraDriver> driver); ///< Takes ownership of the driver.
    QList<SkCameraInfo> availableCameras() const; ///< Those that can be opened now, driver by driver.

    /// Opens a camera and returns its handle; for a camera that is already open, the existing handle. Null,
    /// with psError set, on failure.
    void* openCamera(const QString& sId, QString* psError = nullptr);
    /// Stops and closes; emits cameraAboutToClose first.
    void closeCamera(void* pHandle);
    /// Simulates unplugging: the camera delivers nothing and is not offered until plugCameraIn. It stays
    /// open: its handle, receivers and parameter values are preserved.
    void unplugCamera(void* pHandle);
    /// Reverts unplugCamera, also for a camera that has been closed since. For one that is still open, the
    /// parameter values, the paused state and the acquisition are restored. False, with psError set, for a
    /// camera that was not unplugged, cannot be opened or started.
    bool plugCameraIn(const QString& sId, QString* psError = nullptr);
    QList<SkCameraInfo> withheldCameras() const; ///< Between unplugCamera and plugCameraIn.
    /// Whether an open camera cannot deliver because it was unplugged, by unplugCamera or physically.
    bool isUnplugged(void* pHandle) const;
    /// Queries the drivers for the cameras they offer; a driver calls it when a camera was added or removed.
    /// An open camera that is no longer offered counts as unplugged; it resumes when it is offered again.
    void checkCameras();

    /// In order of opening.
    QList<void*> openedCameras() const;
    int openedCameraCount() const;    ///< 0 when none is open.
    bool isOpen(void* pHandle) const; ///< False for null.

    /// Null when the camera is not open. Different objects after cameraPluggedIn.
    CkCameraParameters* cameraParameters(void* pHandle) const;
    bool cameraInfo(void* pHandle, SkCameraInfo& info) const; ///< False when it is not open.
    /// Any thread.
    bool frameInfo(void* pHandle, SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    bool startAcquisition(void* pHandle, QString* psError = nullptr); ///< False, with psError, when it fails.
    void stopAcquisition(void* pHandle);         ///< Returns when no frame is being delivered.
    bool isAcquiring(void* pHandle) const;       ///< True while paused, too.
    void setPaused(void* pHandle, bool bPaused); ///< See IkCamera::setPaused.
    bool isPaused(void* pHandle) const;          ///< As set last; false when it is not open.
    void step(void* pHandle);                    ///< Delivers one set of images while paused.

    /// Receivers of a camera's frames; each gets its own frame object. Removal returns when the receiver is
    /// no longer being called. The pointer identifies the receiver.
    void addFrameReceiver(void* pHandle, const void* pReceiver, IkCamera::FrameFunction receive);
    void removeFrameReceiver(const void* pReceiver); ///< No-op for an unknown one.

signals:
    void newCameraConnected(void* pHandle); ///< After it was opened.
    void cameraAboutToClose(void* pHandle); ///< The handle still works.
    void cameraClosed(void* pHandle);       ///< The handle is no longer valid.
    void cameraUnplugged(void* pHandle);    ///< An open camera was unplugged; it stays open.
    void cameraLost(const QString& sName);  ///< After cameraUnplugged; the display name.
    /// Plugged in again, with new parameter objects; the old ones are deleted when the signal returns.
    void cameraPluggedIn(void* pHandle);
    void acquisitionChanged(void* pHandle, bool bRunning); ///< For any reason.
    void availableCamerasChanged();                        ///< A camera was added or removed.

private:
    CkCameraManager();
    ~CkCameraManager() override;

    void handleUnplugged(void* pHandle);
    bool reconnect(void* pHandle, QString* psError);

    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
