#include "chain/CkToFPhaseCollector.h"

#include <algorithm>
#include <limits>
#include <new>

namespace {

constexpr quint32 referenceSectionMode = 3;

} // namespace

CkToFPhaseCollector::SkPlace CkToFPhaseCollector::SkPlace::of(const CkImageMetadata& metadata, bool bHybrid) {
    if (!bHybrid) {
        return {metadata.phaseSequenceLength, metadata.phaseSequenceIndex};
    }
    const qint64 reference = metadata.sectionMode == referenceSectionMode ? 1 : 0;
    return {qint64(metadata.sectionCount) - reference, qint64(metadata.sectionIndex) - reference};
}

CkToFPhaseCollector::EkPrepared CkToFPhaseCollector::prepare(const SkPicBufInfo& image, qint64 iCount) {
    clear();
    const quint64 imageBytes = CkPicBufAPI::byteSize(image);
    if (iCount < 1 || imageBytes == 0) {
        return EkPrepared::NothingToGather;
    }
    const quint64 count = quint64(iCount);
    if (imageBytes > maximumBytes || count > maximumBytes / (imageBytes + sizeof(qint32)) ||
        count * image.height > std::numeric_limits<quint32>::max()) {
        return EkPrepared::TooLarge;
    }
    SkPicBufInfo stacked = image;
    stacked.height = quint32(count * image.height);
    if (!CkPicBufAPI::AllocPicBufFromHeap(m_buffer.picBuf(), stacked)) {
        return EkPrepared::TooLarge;
    }
    try {
        m_angles.reserve(size_t(count));
    } catch (const std::bad_alloc&) {
        clear();
        return EkPrepared::TooLarge;
    }
    m_uiCapacity = count;
    return EkPrepared::Ready;
}

void CkToFPhaseCollector::clear() {
    m_buffer.free();
    m_set = SkPicBuf();
    m_uiCapacity = 0;
    CkToFPicAPI::AngleList().swap(m_angles);
}

bool CkToFPhaseCollector::add(const SkPicBuf& image, SkPlace place, qint32 iAngle) {
    const bool fits = place.count >= 0 && quint64(place.count) <= m_uiCapacity;
    if (fits) {
        m_angles.resize(size_t(place.count), missingAngle);
    }
    if (place.index == 0) {
        std::fill(m_angles.begin(), m_angles.end(), missingAngle);
    }
    if (m_buffer.isEmpty() || !fits || place.index < 0 || place.index >= place.count) {
        return false;
    }
    const quint64 firstRow = quint64(place.index) * image.height;
    const quint64 setRows = quint64(place.count) * image.height;
    SkPicBuf& buffer = m_buffer.picBuf();
    if (setRows > buffer.height ||
        !CkPicBufAPI::CopyRect(buffer, 0, quint32(firstRow), image, 0, 0, image.width, image.height)) {
        return false;
    }
    m_angles[size_t(place.index)] = iAngle;
    if (std::find(m_angles.begin(), m_angles.end(), missingAngle) != m_angles.end()) {
        return false;
    }
    // The set is described like its last image: bits or labels may have changed since set-up.
    m_set = buffer;
    m_set.height = quint32(setRows);
    m_set.width = image.width;
    m_set.bitsPerChannel = image.bitsPerChannel;
    m_set.colorFilterArray = image.colorFilterArray;
    m_set.layoutFlag = image.layoutFlag;
    return true;
}
