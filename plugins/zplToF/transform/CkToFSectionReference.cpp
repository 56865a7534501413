#include "plugins/zplToF/transform/CkToFSectionReference.h"

bool CkToFSectionReference::prepare(const SkPicBufInfo& frame) {
    clear();
    if (m_reference.allocate(frame) && m_difference.allocate(frame)) {
        return true;
    }
    clear();
    return false;
}

void CkToFSectionReference::clear() {
    m_reference.reset();
    m_difference.reset();
}

bool CkToFSectionReference::setReference(const SkPicBuf& frame) {
    // The copy would allocate an empty target.
    return !m_reference.isEmpty() && CkPicBufAPI::CopyPicBuf(frame, m_reference.picBuf());
}

const SkPicBuf* CkToFSectionReference::difference(const SkPicBuf& frame) {
    SkPicBuf& result = m_difference.picBuf();
    if (m_difference.isEmpty() || !CkPicBufAPI::CopyPicBuf(frame, result) ||
        !CkPicBufAPI::Subtract(result, m_reference.picBuf())) {
        return nullptr;
    }
    // Bits and labels of this frame may differ from those the buffers were allocated with.
    result.bitsPerChannel = frame.bitsPerChannel;
    result.colorFilterArray = frame.colorFilterArray;
    result.layoutFlag = frame.layoutFlag;
    return &result;
}
