#include "zuCore/CkImageData.h"

#include <QVariant>

#include <memory>
#include <new>

IkChainData::~IkChainData() = default;

CkImageData::CkImageData(QObject* pParent) : QObject(pParent) {}

CkImageData::~CkImageData() = default;

void CkImageData::setPicBuf(const SkPicBuf& picBuf) {
    if (&picBuf == &m_picture.picBuf()) {
        return;
    }
    // The new picture is stored before the old one is released: a pool may reuse the old pixels immediately.
    const CkPicture previous(m_picture.take());
    m_picture = CkPicture(picBuf);
}

CkImageData* CkImageData::share() const {
    std::unique_ptr<CkImageData> twin(new (std::nothrow) CkImageData());
    if (!twin) {
        return nullptr;
    }
    if (picBuf().memory != nullptr) {
        CkPicBufAPI::SharePicBuf(picBuf(), twin->picBuf());
    } else if (picBuf().data != nullptr) {
        if (!CkPicBufAPI::CopyPicBuf(picBuf(), twin->picBuf())) {
            return nullptr;
        }
    } else {
        twin->picBuf() = picBuf();
    }
    twin->m_metadata = m_metadata;
    for (const QByteArray& name : dynamicPropertyNames()) {
        twin->setProperty(name.constData(), property(name.constData()));
    }
    return twin.release();
}
