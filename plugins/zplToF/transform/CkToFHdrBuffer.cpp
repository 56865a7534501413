#include "plugins/zplToF/transform/CkToFHdrBuffer.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"

namespace {

constexpr quint32 kPitchBytes = 256;

} // namespace

bool CkToFHdrBuffer::prepare(const SkPicBufInfo& sections, qint32 iPhasesCount) {
    clear();
    SkPicBufInfo info = sections;
    if (iPhasesCount > 1) {
        info.height /= quint32(iPhasesCount);
    }
    info.dataType = EkImageDataType::UInt32;
    info.bitsPerChannel = 32;
    info.padRows(kPitchBytes);
    info.linePadding = sections.linePadding;
    if (info.lineSize == 0) {
        return false; // a row exceeds 32 bits
    }
    if (!m_picture.allocate(info)) {
        m_lacksMemory = CkPicBufAPI::byteSize(info) != 0;
        return false;
    }
    m_info = info;
    return true;
}

void CkToFHdrBuffer::clear() {
    m_picture.reset();
    m_info = SkPicBufInfo();
    m_lacksMemory = false;
}

SkPicBuf* CkToFHdrBuffer::merge(const SkPicBuf& sections) {
    if (m_picture.isEmpty()) {
        return nullptr;
    }
    SkPicBuf& merged = m_picture.picBuf();
    // A merge stores the number of bits in use, except for a dark frame, which would keep those of the last
    // frame.
    static_cast<SkPicBufInfo&>(merged) = m_info;
    return CkToFPicAPI::processHdrFromImageSections(sections, merged) ? &merged : nullptr;
}
