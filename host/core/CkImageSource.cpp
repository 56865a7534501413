#include "zuCore/CkImageSource.h"

#include "host/core/CkChainPrivate.h"
#include "zuCore/CkChain.h"

CkImageSource::CkImageSource(QObject* pParent) : CkImageProvider(0, pParent) {}

CkImageSource::~CkImageSource() {
    // Deleted while in a chain: frameEvent must not be called once this part of the object is destroyed.
    if (CkChain* const owner = chain()) {
        owner->m_d->removeDeleted(this);
    }
}

bool CkImageSource::acceptsDataFrom(CkChainable* pUpstream) {
    return pUpstream == nullptr;
}

bool CkImageSource::inputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    Q_UNUSED(info);
    Q_UNUSED(pMetadata);
    return false;
}

bool CkImageSource::outputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) {
    return sourceImageInfo(info, pMetadata);
}

QList<void*> CkImageSource::cameraHandles() const {
    return {};
}

bool CkImageSource::deliver(CkImageData* pData) {
    return CkChain::CkPrivate::deliver(this, pData);
}

void CkImageSource::frameEvent(EkFrameEvent event) {
    Q_UNUSED(event);
}

void CkImageSource::reportLost(quint64 uiFrames) {
    CkChain::CkPrivate::reportLost(this, uiFrames);
}
