#pragma once

#include "plugins/zplToF/transform/CkToFFrameProcessor.h"
#include "plugins/zplToF/transform/CkToFPhaseCollector.h"
#include "plugins/zplToF/transform/CkToFSectionReference.h"
#include "plugins/zplToF/transform/EkFrameRefusal.h"

/// Makes of a frame what a transform works on: takes its reference section away and gathers the images of a
/// set. Owns the buffers for both; one thread at a time. Nothing is allocated for frames like those of the
/// set-up.
class CkToFFrameInput {
public:
    using EkRefusal = ToFFrames::EkRefusal;

    /// Makes the buffers for frames of a format; images of a set are gathered only with bGathers. The refusal
    /// is what will become of every set, or None.
    EkRefusal prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata, bool bGathers);
    void clear();

    /// The picture without its reference section; an alias, valid until the next call. Null when nothing can
    /// come of it: a reference section itself (None), or what is refused.
    const SkPicBuf* lessReference(const SkPicBuf& picture, const CkImageMetadata& metadata,
                                  EkRefusal& refusal);

    /// Puts the frame into its set and enters the set, when it is complete, as the frame's input, which is
    /// null otherwise.
    EkRefusal gather(const CkImageMetadata& metadata, SkToFFrame& frame);

    /// Of the set's images so far, see CkToFPhaseCollector.
    const CkToFPicAPI::AngleList& angles() const { return m_collector.angles(); }
    /// Format of a whole set; null when none is gathered.
    const SkPicBufInfo* setInfo() const {
        return m_collector.hasBuffer() ? &m_collector.bufferInfo() : nullptr;
    }

private:
    CkToFPhaseCollector m_collector;
    CkToFSectionReference m_reference;
    EkRefusal m_setRefusal = EkRefusal::None;       ///< of every set
    EkRefusal m_referenceRefusal = EkRefusal::None; ///< of every section with a reference
};
