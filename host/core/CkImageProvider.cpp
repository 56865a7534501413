#include "zuCore/CkImageProvider.h"

#include "host/core/CkChainPrivate.h"
#include "zuCore/CkChain.h"

CkImageProvider::CkImageProvider(int iBlockKind, QObject* pParent) : CkChainable(iBlockKind, pParent) {}

CkImageProvider::~CkImageProvider() = default;

bool CkImageProvider::queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out,
                                           const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta) {
    out = in;
    if (pOutMeta != nullptr) {
        *pOutMeta = pInMeta == nullptr ? CkImageMetadata() : *pInMeta;
    }
    return true;
}

bool CkImageProvider::inputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) const {
    CkChain* const owner = chain();
    const QList<CkChainable*> feeders = precedessors();
    SkFormat format;
    if (owner == nullptr || feeders.isEmpty() || !owner->m_d->outputFormat(feeders.first(), format)) {
        return false;
    }
    info = format.info;
    if (pMetadata != nullptr) {
        *pMetadata = format.metadata;
    }
    return true;
}

bool CkImageProvider::outputImageInfo(SkPicBufInfo& info, CkImageMetadata* pMetadata) {
    CkChain* const owner = chain();
    SkFormat format;
    if (owner == nullptr || !owner->m_d->outputFormat(this, format)) {
        return false;
    }
    info = format.info;
    if (pMetadata != nullptr) {
        *pMetadata = format.metadata;
    }
    return true;
}
