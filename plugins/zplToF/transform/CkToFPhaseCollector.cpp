#include "plugins/zplToF/transform/CkToFPhaseCollector.h"

#include <algorithm>
#include <new>

bool CkToFPhaseCollector::isTooLarge(const SkPicBufInfo& image, qint64 iCount) {
    const quint64 imageBytes = std::max<quint64>(CkPicBufAPI::byteSize(image), kMinimumImageBytes);
    return iCount > 0 && quint64(iCount) > kMaximumBytes / imageBytes;
}

EkFrameRefusal CkToFPhaseCollector::prepare(const SkPicBufInfo& image, qint64 iCount) {
    clear();
    if (iCount < 1 || CkPicBufAPI::byteSize(image) == 0) {
        return EkFrameRefusal::None;
    }
    if (isTooLarge(image, iCount)) {
        return EkFrameRefusal::SetTooLarge;
    }
    SkPicBufInfo stacked = image;
    stacked.height = quint32(iCount) * image.height;
    try {
        m_angles.reserve(size_t(iCount));
    } catch (const std::bad_alloc&) {
        return EkFrameRefusal::NoMemory;
    }
    if (!m_buffer.allocate(stacked)) {
        clear();
        return EkFrameRefusal::NoMemory;
    }
    return EkFrameRefusal::None;
}

void CkToFPhaseCollector::clear() {
    m_buffer.reset();
    m_set = SkPicBuf();
    CkToFPicAPI::AngleList().swap(m_angles);
}

CkToFPhaseCollector::SkAdded CkToFPhaseCollector::add(const SkPicBuf& image, const SkToFSetPosition& position,
                                                      qint32 iAngle) {
    const bool tooLarge = isTooLarge(image, position.count);
    if (position.count >= 0 && !tooLarge) {
        m_angles.resize(size_t(position.count), kMissingAngle);
    }
    if (position.index == 0) {
        std::fill(m_angles.begin(), m_angles.end(), kMissingAngle);
    }
    if (position.index < 0 || position.index >= position.count) {
        return {.refusal = EkFrameRefusal::OutsideSet};
    }
    if (tooLarge) {
        return {.refusal = EkFrameRefusal::SetTooLarge};
    }
    if (!store(image, position)) {
        return {.refusal = EkFrameRefusal::SetDiffers};
    }
    m_angles[size_t(position.index)] = iAngle;
    if (std::find(m_angles.begin(), m_angles.end(), kMissingAngle) != m_angles.end()) {
        return {};
    }
    describeSet(image);
    return {.complete = true};
}

bool CkToFPhaseCollector::store(const SkPicBuf& image, const SkToFSetPosition& position) {
    // Also refuses to store into an empty buffer, which has no rows.
    const quint64 firstRow = quint64(position.index) * image.height;
    const quint64 setRows = quint64(position.count) * image.height;
    return setRows <= m_buffer.picBuf().height &&
           CkPicBufAPI::CopyRect(m_buffer.picBuf(), 0, quint32(firstRow), image, 0, 0, image.width,
                                 image.height);
}

void CkToFPhaseCollector::describeSet(const SkPicBuf& image) {
    // The description of the last image: bits or labels may have changed since the allocation.
    m_set = m_buffer.picBuf();
    m_set.height = quint32(m_angles.size()) * image.height;
    m_set.width = image.width;
    m_set.bitsPerChannel = image.bitsPerChannel;
    m_set.colorFilterArray = image.colorFilterArray;
    m_set.layoutFlag = image.layoutFlag;
}
