#include "plugins/zplToF/transform/CkToFTransformer.h"

#include "plugins/zplToF/transform/ToFAngles.h"
#include "plugins/zplToF/transform/ToFTransforms.h"
#include "zuCore/CkImageData.h"

namespace {

using EkOutcome = CkToFTransformer::EkOutcome;

bool isEmpty(const SkPicBufInfo& info) {
    return info.width == 0 || info.height == 0;
}

CkToFTransformer::SkResult withoutOutput(EkFrameRefusal refusal) {
    CkToFTransformer::SkResult result;
    result.outcome = refusal == EkFrameRefusal::None ? EkOutcome::Waiting : EkOutcome::Refused;
    result.refusal = refusal;
    return result;
}

} // namespace

void CkToFTransformer::reset(bool bGathers) {
    clear();
    m_gathers = bGathers;
}

void CkToFTransformer::clear() {
    m_input.clear();
    m_processor.clear();
}

EkFrameRefusal CkToFTransformer::prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata) {
    m_processor.clear();
    const EkFrameRefusal refusal = m_input.prepare(in, metadata, m_gathers);
    const SkPicBufInfo* const set = m_input.setInfo();
    if (CkToFPicAPI::isRawToFHybridPic(in, &metadata) && (set != nullptr || metadata.phasesCount >= 2)) {
        m_processor.prepareHdr(set != nullptr ? *set : in, metadata.phasesCount);
    }
    return refusal == EkFrameRefusal::None && m_processor.lacksHdrBuffer() ? EkFrameRefusal::NoMemory
                                                                           : refusal;
}

const char* CkToFTransformer::angleError(int iTransform) const {
    const SkToFTransform* const transform = ToFTransforms::find(iTransform);
    return transform != nullptr && transform->needsAngles ? ToFAngles::whyIncomplete(angles()) : nullptr;
}

CkToFTransformer::SkResult CkToFTransformer::process(int iTransform, const CkImageData& data,
                                                     const SkToFFormat& out,
                                                     const PictureSource& pictureSource) {
    const SkToFTransform* const transform = ToFTransforms::find(iTransform);
    if (transform == nullptr) {
        return withoutOutput(EkFrameRefusal::UnknownTransform);
    }
    const CkImageMetadata& metadata = data.metadata();
    EkFrameRefusal refusal = EkFrameRefusal::None;
    const SkPicBuf* const section = m_input.subtractReference(data.picBuf(), metadata, refusal);
    if (section == nullptr) {
        return withoutOutput(refusal);
    }
    SkToFFrame frame{.frame = *section, .input = section};
    frame.hybrid = CkToFPicAPI::isRawToFHybridPic(data.picBuf(), &metadata);
    frame.phases = CkToFPicAPI::detectPhasesCount(data.picBuf(), &metadata);
    frame.pulseDuration = metadata.hybridPulseDuration;
    SkResult result;
    if (m_gathers && transform->gathers && CkToFPicAPI::incomingSeparatePhases(&metadata)) {
        refusal = m_input.gather(metadata, frame);
        if (frame.input == nullptr && transform->input != SkToFTransform::EkInput::Frame) {
            // When no set of this format can be processed, each of its images reports it.
            const bool incomplete = refusal == EkFrameRefusal::None;
            return withoutOutput(incomplete && isEmpty(out.info) ? EkFrameRefusal::NoOutputPixels : refusal);
        }
        if (frame.input != nullptr && !frame.hybrid) {
            result.angleError = angleError(iTransform);
        }
    }
    if (CkToFFrameProcessor::passesThrough(*transform, frame)) {
        result.outcome = EkOutcome::SameFrame;
        return result;
    }
    makeFrame(*transform, frame, out, pictureSource, result);
    if (result.frame != nullptr) {
        result.frame->picBuf().copyPicAdditionalData(data.picBuf());
    }
    return result;
}

void CkToFTransformer::makeFrame(const SkToFTransform& transform, const SkToFFrame& frame,
                                 const SkToFFormat& out, const PictureSource& pictureSource,
                                 SkResult& result) {
    result.outcome = EkOutcome::Refused;
    result.refusal =
        isEmpty(out.info) ? EkFrameRefusal::NoOutputPixels : m_processor.refusal(transform, frame, out.info);
    if (result.refusal != EkFrameRefusal::None) {
        return;
    }
    CkPicture picture;
    if (!pictureSource(out.info, CkToFFrameProcessor::leavesPixelsUnwritten(transform, frame), picture)) {
        result.outcome = EkOutcome::NoPicture;
        return;
    }
    if (!m_processor.process(transform, frame, picture.picBuf())) {
        result.refusal = EkFrameRefusal::NotSupported;
        return;
    }
    result.frame = std::make_unique<CkImageData>();
    result.frame->setPicBuf(picture.take());
    result.frame->setMetadata(out.metadata);
    result.outcome = EkOutcome::NewFrame;
}
