#include "plugins/zplToF/transform/CkToFFrameProcessor.h"

#include "plugins/zplToF/transform/ToFTransforms.h"
#include "zuCore/ToFVocabulary.h"

using EkInput = SkToFTransform::EkInput;

bool CkToFFrameProcessor::passesThrough(const SkToFTransform& transform, const SkToFFrame& frame) {
    return transform.input == EkInput::Set && !frame.hybrid && !frame.gathered;
}

EkFrameRefusal CkToFFrameProcessor::refusal(const SkToFTransform& transform, const SkToFFrame& frame,
                                            const SkPicBufInfo& out) const {
    if (transform.input == EkInput::Frame) {
        return EkFrameRefusal::None;
    }
    const bool merges = frame.hybrid && frame.input->height > out.height;
    if (merges && lacksHdrBuffer()) {
        return EkFrameRefusal::NoMemory;
    }
    const bool mustMerge = transform.input == EkInput::Set && frame.hybrid;
    return mustMerge && !(merges && hasHdrBuffer()) ? EkFrameRefusal::NothingToMerge : EkFrameRefusal::None;
}

bool CkToFFrameProcessor::leavesPixelsUnwritten(const SkToFTransform& transform, const SkToFFrame& frame) {
    return transform.input == EkInput::Phases && !frame.hybrid && !ToFPhases::isSupportedCount(frame.phases);
}

bool CkToFFrameProcessor::process(const SkToFTransform& transform, const SkToFFrame& frame, SkPicBuf& out) {
    return transform.compute(frame, m_hdr, out);
}
