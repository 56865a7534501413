#include "plugins/zplToF/transform/CkToFPhaseCollector.h"

#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <new>

CkToFPhaseCollector::SkPlace CkToFPhaseCollector::SkPlace::of(const CkImageMetadata& metadata, bool bHybrid) {
    if (!bHybrid) {
        return {metadata.phaseSequenceLength, metadata.phaseSequenceIndex};
    }
    const qint64 reference = ToFSectionMode::referenceSections(metadata.sectionMode);
    return {qint64(metadata.sectionCount) - reference, qint64(metadata.sectionIndex) - reference};
}

bool CkToFPhaseCollector::isTooLarge(const SkPicBufInfo& image, qint64 iCount) {
    const quint64 imageBytes = std::max<quint64>(CkPicBufAPI::byteSize(image), kMinimumImageBytes);
    return iCount > 0 && quint64(iCount) > kMaximumBytes / imageBytes;
}

CkToFPhaseCollector::EkRefusal CkToFPhaseCollector::prepare(const SkPicBufInfo& image, qint64 iCount) {
    clear();
    if (iCount < 1 || CkPicBufAPI::byteSize(image) == 0) {
        return EkRefusal::None;
    }
    if (isTooLarge(image, iCount)) {
        return EkRefusal::SetTooLarge;
    }
    SkPicBufInfo stacked = image;
    stacked.height = quint32(iCount) * image.height;
    try {
        m_angles.reserve(size_t(iCount));
    } catch (const std::bad_alloc&) {
        return EkRefusal::NoMemory;
    }
    if (!CkPicBufAPI::AllocPicBufFromHeap(m_buffer.picBuf(), stacked)) {
        clear();
        return EkRefusal::NoMemory;
    }
    return EkRefusal::None;
}

void CkToFPhaseCollector::clear() {
    m_buffer.reset();
    m_set = SkPicBuf();
    CkToFPicAPI::AngleList().swap(m_angles);
}

CkToFPhaseCollector::SkAdded CkToFPhaseCollector::add(const SkPicBuf& image, SkPlace place, qint32 iAngle) {
    const bool tooLarge = isTooLarge(image, place.count);
    if (place.count >= 0 && !tooLarge) {
        m_angles.resize(size_t(place.count), kMissingAngle);
    }
    if (place.index == 0) {
        std::fill(m_angles.begin(), m_angles.end(), kMissingAngle);
    }
    if (place.index < 0 || place.index >= place.count) {
        return {.refusal = EkRefusal::OutsideSet};
    }
    if (tooLarge) {
        return {.refusal = EkRefusal::SetTooLarge};
    }
    if (!store(image, place)) {
        return {.refusal = EkRefusal::SetDiffers};
    }
    m_angles[size_t(place.index)] = iAngle;
    if (std::find(m_angles.begin(), m_angles.end(), kMissingAngle) != m_angles.end()) {
        return {};
    }
    describeSet(image);
    return {.complete = true};
}

bool CkToFPhaseCollector::store(const SkPicBuf& image, SkPlace place) {
    // Also refuses to store into an empty buffer, which has no rows.
    const quint64 firstRow = quint64(place.index) * image.height;
    const quint64 setRows = quint64(place.count) * image.height;
    return setRows <= m_buffer.picBuf().height &&
           CkPicBufAPI::CopyRect(m_buffer.picBuf(), 0, quint32(firstRow), image, 0, 0, image.width,
                                 image.height);
}

void CkToFPhaseCollector::describeSet(const SkPicBuf& image) {
    // Takes the description of its last image: bits or labels may have changed since the allocation.
    m_set = m_buffer.picBuf();
    m_set.height = quint32(m_angles.size()) * image.height;
    m_set.width = image.width;
    m_set.bitsPerChannel = image.bitsPerChannel;
    m_set.colorFilterArray = image.colorFilterArray;
    m_set.layoutFlag = image.layoutFlag;
}
