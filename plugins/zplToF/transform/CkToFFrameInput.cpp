#include "plugins/zplToF/transform/CkToFFrameInput.h"

#include "zuCore/ToFVocabulary.h"

EkFrameRefusal CkToFFrameInput::prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata,
                                        bool bGathers) {
    clear();
    if (metadata.sectionMode == ToFSectionMode::kReferenceFirst && !m_reference.prepare(in)) {
        m_referenceRefusal = EkFrameRefusal::NoMemory;
    }
    if (bGathers && CkToFPicAPI::incomingSeparatePhases(&metadata)) {
        const bool hybrid = CkToFPicAPI::isRawToFHybridPic(in, &metadata);
        m_setRefusal = m_collector.prepare(in, SkToFSetPosition::of(metadata, hybrid).count);
    }
    return m_setRefusal != EkFrameRefusal::None ? m_setRefusal : m_referenceRefusal;
}

void CkToFFrameInput::clear() {
    m_collector.clear();
    m_reference.clear();
    m_setRefusal = EkFrameRefusal::None;
    m_referenceRefusal = EkFrameRefusal::None;
}

const SkPicBuf* CkToFFrameInput::subtractReference(const SkPicBuf& picture, const CkImageMetadata& metadata,
                                                   EkFrameRefusal& refusal) {
    if (metadata.sectionMode != ToFSectionMode::kReferenceFirst) {
        return &picture;
    }
    if (!m_reference.hasBuffers()) {
        refusal =
            m_referenceRefusal != EkFrameRefusal::None ? m_referenceRefusal : EkFrameRefusal::NoReference;
        return nullptr;
    }
    const bool isReference = metadata.sectionIndex == 0;
    const SkPicBuf* const difference = isReference ? nullptr : m_reference.difference(picture);
    if (isReference ? !m_reference.setReference(picture) : difference == nullptr) {
        refusal = EkFrameRefusal::ReferenceDiffers;
    }
    return difference;
}

EkFrameRefusal CkToFFrameInput::gather(const CkImageMetadata& metadata, SkToFFrame& frame) {
    frame.gathered = true;
    frame.input = nullptr;
    const auto position = SkToFSetPosition::of(metadata, frame.hybrid);
    const auto added = m_collector.add(frame.frame, position, metadata.phaseAngle);
    if (added.refusal == EkFrameRefusal::SetDiffers && m_setRefusal != EkFrameRefusal::None) {
        return m_setRefusal;
    }
    if (added.complete) {
        frame.input = &m_collector.set();
        frame.phases = quint32(m_collector.angles().size());
        frame.angles = &m_collector.angles();
    }
    return added.refusal;
}
