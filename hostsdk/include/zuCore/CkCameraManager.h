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
    static CkCameraManager* instance();

    void addDriver(std::unique_ptr<IkCameraDriver> driver);
    QList<SkCameraInfo> availableCameras() const;

    /// Opens a camera; the handle of one that is open already. Null, with psError set, on failure.
    void* openCamera(const QString& sId, QString* psError = nullptr);
    /// Stops and closes; emits cameraAboutToClose first.
    void closeCamera(void* pHandle);
    /// As if the camera had been pulled off: the same as closeCamera, reported as a loss.
    void unplugCamera(void* pHandle);

    /// In order of opening.
    QList<void*> openedCameras() const;
    int openedCameraCount() const;
    bool isOpen(void* pHandle) const;

    CkCameraParameters* cameraParameters(void* pHandle) const;
    bool cameraInfo(void* pHandle, SkCameraInfo& info) const;
    /// Any thread.
    bool frameInfo(void* pHandle, SkPicBufInfo& info, CkImageMetadata* pMetadata) const;

    bool startAcquisition(void* pHandle, QString* psError = nullptr);
    void stopAcquisition(void* pHandle);
    bool isAcquiring(void* pHandle) const;
    void setPaused(void* pHandle, bool bPaused);
    void step(void* pHandle);

    /// Receivers of a camera's frames; each gets an object of its own. Removal returns when the receiver is
    /// no longer being called. The pointer identifies the receiver.
    void addFrameReceiver(void* pHandle, const void* pReceiver, IkCamera::FrameFunction receive);
    void removeFrameReceiver(const void* pReceiver);

signals:
    void newCameraConnected(void* pHandle);
    /// The handle still works.
    void cameraAboutToClose(void* pHandle);
    void cameraClosed(void* pHandle);
    void cameraLost(const QString& sName);
    void acquisitionChanged(void* pHandle, bool bRunning);
    void availableCamerasChanged();

private:
    CkCameraManager();
    ~CkCameraManager() override;

    class CkPrivate;
    std::unique_ptr<CkPrivate> m_d;
};
