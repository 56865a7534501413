#include "plugins/zplToF/transform/CkToFFrameProcessor.h"

#include "plugins/zplToF/transform/ToFTransforms.h"
#include "zuCore/ToFVocabulary.h"

namespace {

using EkInput = SkToFTransform::EkInput;

bool takes(int iTransform, EkInput input) {
    const SkToFTransform* const transform = ToFTransforms::find(iTransform);
    return transform != nullptr && transform->input == input;
}

} // namespace

bool CkToFFrameProcessor::passesThrough(int iTransform, const SkToFFrame& frame) {
    return takes(iTransform, EkInput::Set) && !frame.hybrid && !frame.gathered;
}

bool CkToFFrameProcessor::needsNoSet(int iTransform) {
    return takes(iTransform, EkInput::Frame);
}

EkFrameRefusal CkToFFrameProcessor::refusal(int iTransform, const SkToFFrame& frame,
                                            const SkPicBufInfo& out) const {
    const SkToFTransform* const transform = ToFTransforms::find(iTransform);
    if (transform == nullptr) {
        return EkFrameRefusal::UnknownTransform;
    }
    if (transform->input == EkInput::Frame) {
        return EkFrameRefusal::None;
    }
    const bool merges = frame.hybrid && frame.input->height > out.height;
    if (merges && lacksHdrBuffer()) {
        return EkFrameRefusal::NoMemory;
    }
    const bool mustMerge = transform->input == EkInput::Set && frame.hybrid;
    return mustMerge && !(merges && hasHdrBuffer()) ? EkFrameRefusal::NothingToMerge : EkFrameRefusal::None;
}

bool CkToFFrameProcessor::leavesPixelsUnwritten(int iTransform, const SkToFFrame& frame) {
    return takes(iTransform, EkInput::Phases) && !frame.hybrid && !ToFPhases::isSupportedCount(frame.phases);
}

bool CkToFFrameProcessor::process(int iTransform, const SkToFFrame& frame, SkPicBuf& out) {
    const SkToFTransform* const transform = ToFTransforms::find(iTransform);
    return transform != nullptr && transform->compute(frame, m_hdr, out);
}
