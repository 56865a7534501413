#pragma once

#include "zuCore/CkImageSource.h"

#include <QString>
#include <atomic>

/// Source that delivers the frames of an open camera. The camera's acquisition is started and stopped through
/// CkCameraManager, not by the chain. When the camera closes, the source stays and delivers nothing. Gaps in
/// the camera's frame numbers are counted as dropped frames.
class ZUCORE_EXPORT CkCameraSource : public CkImageSource {
    Q_OBJECT
    Q_CLASSINFO("CustomName", "Camera")
    Q_CLASSINFO("UniqueID", "com.orvane.Pictor.CkCameraSource")

public:
    /// For re-creation from a chain file: uses the open camera with the saved identifier, otherwise the first
    /// open one.
    Q_INVOKABLE CkCameraSource();
    explicit CkCameraSource(void* pCameraHandle); ///< Frames of this camera; null for none yet.
    ~CkCameraSource() override;

    QString title() const override;
    bool sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const override;
    QList<void*> cameraHandles() const override;
    bool saveSettings(QDomDocument& doc, QDomElement& element) const override;
    bool loadSettings(const QDomElement& element) override; ///< The named camera, else the first one.
    CkChainable* clone() override;

    void* cameraHandle() const;                ///< Null when it was closed.
    void setCameraHandle(void* pCameraHandle); ///< Null for none.

private:
    void connectCamera();
    void disconnectCamera();
    void receive(CkImageData* pFrame);

    std::atomic<void*> m_pCameraHandle = nullptr; ///< read by the chain's thread
    QString m_sCameraId;                          ///< kept after the camera was closed, for the chain file
    QString m_sCameraName;
    quint64 m_uiNextFrame = 0; ///< expected number of the next frame, 0 for any; camera thread
};
