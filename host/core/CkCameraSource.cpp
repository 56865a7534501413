#include "zuCore/CkCameraSource.h"

#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"

#include <QDomElement>

CkCameraSource::CkCameraSource() : CkCameraSource(nullptr) {}

CkCameraSource::CkCameraSource(void* pCameraHandle) {
    connect(CkCameraManager::instance(), &CkCameraManager::cameraClosed, this, [this](void* pHandle) {
        if (pHandle == m_pCameraHandle) {
            m_pCameraHandle = nullptr;
        }
    });
    setCameraHandle(pCameraHandle);
}

CkCameraSource::~CkCameraSource() {
    disconnectCamera();
}

QString CkCameraSource::title() const {
    return m_sCameraName.isEmpty() ? tr("Camera") : m_sCameraName;
}

bool CkCameraSource::sourceImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    return CkCameraManager::instance()->frameInfo(m_pCameraHandle, info, pMetadata);
}

QList<void*> CkCameraSource::cameraHandles() const {
    void* const handle = m_pCameraHandle;
    return CkCameraManager::instance()->isOpen(handle) ? QList<void*>{handle} : QList<void*>();
}

bool CkCameraSource::saveSettings(QDomDocument& doc, QDomElement& element) const {
    const bool saved = CkImageSource::saveSettings(doc, element);
    element.setAttribute(QStringLiteral("camera"), m_sCameraId);
    return saved;
}

bool CkCameraSource::loadSettings(const QDomElement& element) {
    const bool loaded = CkImageSource::loadSettings(element);
    const QString id = element.attribute(QStringLiteral("camera"));
    const QList<void*> opened = CkCameraManager::instance()->openedCameras();
    void* chosen = opened.isEmpty() ? nullptr : opened.first();
    for (void* handle : opened) {
        SkCameraInfo info;
        if (CkCameraManager::instance()->cameraInfo(handle, info) && info.id == id) {
            chosen = handle;
            break;
        }
    }
    setCameraHandle(chosen);
    if (chosen == nullptr) {
        m_sCameraId = id; // kept for saveSettings
    }
    return loaded;
}

CkChainable* CkCameraSource::clone() {
    return new CkCameraSource(m_pCameraHandle);
}

void* CkCameraSource::cameraHandle() const {
    return m_pCameraHandle;
}

void CkCameraSource::setCameraHandle(void* pCameraHandle) {
    disconnectCamera();
    m_pCameraHandle = pCameraHandle;
    SkCameraInfo info;
    if (CkCameraManager::instance()->cameraInfo(pCameraHandle, info)) {
        m_sCameraId = info.id;
        m_sCameraName = info.name;
    }
    connectCamera();
    emit configurationChanged();
    if (CkChain* const owner = chain(); owner != nullptr && owner->started()) {
        owner->requestRenegotiation();
    }
}

void CkCameraSource::connectCamera() {
    m_uiNextFrame = 0;
    CkCameraManager::instance()->addFrameReceiver(m_pCameraHandle, this,
                                                  [this](CkImageData* frame) { receive(frame); });
}

void CkCameraSource::receive(CkImageData* pFrame) {
    const quint64 number = pFrame->picBuf().additionalData.frameNumber;
    // Smaller numbers come from a camera that was restarted or that does not number its frames.
    if (number > m_uiNextFrame && m_uiNextFrame > 0) {
        reportLost(number - m_uiNextFrame);
    }
    m_uiNextFrame = number + 1;
    deliver(pFrame);
}

void CkCameraSource::disconnectCamera() {
    CkCameraManager::instance()->removeFrameReceiver(this);
}
