#pragma once

#include "zuCore/IkCameraDriver.h"

#include <QList>
#include <QObject>
#include <memory>

/// All cameras of the program. User-interface thread, but for frame delivery. A handle is an opaque pointer,
/// valid from openCamera until cameraClosed; every function answers null, false or nothing for a handle that
/// has gone.
class ZUCORE_EXPORT CkCameraManager : public QObject {
    Q_OBJECT

public:
    static CkCameraManager* instance(); ///< Never null.

    void addDriver(std::unique_ptr<IkCameraDriver> driver); ///< Takes the driver over.
    QList<SkCameraInfo> availableCameras() const; ///< Those that can be opened now, driver by driver.

    /// Opens a camera; the handle of one that is open already. Null, with psError set, on failure.
    void* openCamera(const QString& sId, QString* psError = nullptr);
    /// Stops and closes; emits cameraAboutToClose first.
    void closeCamera(void* pHandle);
    /// As if the camera had been pulled off: the same as closeCamera, reported as a loss.
    void unplugCamera(void* pHandle);

    /// In order of opening.
    QList<void*> openedCameras() const;
    int openedCameraCount() const;    ///< 0 when none is open.
    bool isOpen(void* pHandle) const; ///< False for null.

    CkCameraParameters* cameraParameters(void* pHandle) const; ///< Null for no open camera.
    bool cameraInfo(void* pHandle, SkCameraInfo& info) const;  ///< False for no open camera.
    /// Any thread.
    bool frameInfo(void* pHandle, SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    bool startAcquisition(void* pHandle, QString* psError = nullptr); ///< False, with psError, when it fails.
    void stopAcquisition(void* pHandle);         ///< Returns when no frame is being delivered.
    bool isAcquiring(void* pHandle) const;       ///< Paused cameras are, too.
    void setPaused(void* pHandle, bool bPaused); ///< See IkCamera::setPaused.
    void step(void* pHandle);                    ///< One set of images, while paused.

    /// Receivers of a camera's frames; each gets an object of its own. Removal returns when the receiver is
    /// no longer being called. The pointer identifies the receiver.
    void addFrameReceiver(void* pHandle, const void* pReceiver, IkCamera::FrameFunction receive);
    void removeFrameReceiver(const void* pReceiver); ///< Nothing for an unknown one.

signals:
    void newCameraConnected(void* pHandle); ///< After it was opened.
    /// The handle still works.
    void cameraAboutToClose(void* pHandle);
    void cameraClosed(void* pHandle);                      ///< The handle is no longer valid.
    void cameraLost(const QString& sName);                 ///< A camera that was pulled off, by its name.
    void acquisitionChanged(void* pHandle, bool bRunning); ///< By whomever it was done.
    void availableCamerasChanged();                        ///< One came or went.

private:
    CkCameraManager();
    ~CkCameraManager() override;

    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
