#include "zuCore/CkImageData.h"

#include "zuCore/CkPicBufAPI.h"

#include <QVariant>

#include <memory>
#include <new>

IkChainData::~IkChainData() = default;

CkImageData::CkImageData(QObject* pParent) : QObject(pParent) {}

CkImageData::~CkImageData() {
    CkPicBufAPI::FreePicBuf(m_picBuf, true);
}

void CkImageData::setPicBuf(const SkPicBuf& picBuf) {
    if (&picBuf == &m_picBuf) {
        return;
    }
    // The new one is in place before the old one is freed: a pool may hand the old pixels out again at once.
    SkPicBuf previous = m_picBuf;
    m_picBuf = picBuf;
    CkPicBufAPI::FreePicBuf(previous, true);
}

CkImageData* CkImageData::share() const {
    std::unique_ptr<CkImageData> twin(new (std::nothrow) CkImageData());
    if (!twin) {
        return nullptr;
    }
    if (m_picBuf.memory != nullptr) {
        CkPicBufAPI::SharePicBuf(m_picBuf, twin->m_picBuf);
    } else if (m_picBuf.data != nullptr) {
        if (!CkPicBufAPI::CopyPicBuf(m_picBuf, twin->m_picBuf)) {
            return nullptr;
        }
    } else {
        twin->m_picBuf = m_picBuf;
    }
    twin->m_metadata = m_metadata;
    for (const QByteArray& name : dynamicPropertyNames()) {
        twin->setProperty(name.constData(), property(name.constData()));
    }
    return twin.release();
}
