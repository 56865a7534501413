#pragma once

#include "plugins/zplToF/transform/CkToFPhaseCollector.h"
#include "plugins/zplToF/transform/CkToFSectionReference.h"
#include "plugins/zplToF/transform/EkFrameRefusal.h"
#include "plugins/zplToF/transform/SkToFFrame.h"

/// Turns a frame into the input of a transform: subtracts the reference section and gathers the images of a
/// set. Owns the buffers for both; one thread at a time. Nothing is allocated for frames of the format it was
/// prepared for.
class CkToFFrameInput {
public:
    /// Allocates the buffers for frames of a format; images of a set are gathered only with bGathers. The
    /// refusal is the one that every set will get, or None.
    EkFrameRefusal prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata, bool bGathers);
    void clear();

    /// The picture minus its reference section; an alias, valid until the next call. Null when there is
    /// nothing to process: for a reference section itself (refusal None), or for a section that is refused.
    const SkPicBuf* subtractReference(const SkPicBuf& picture, const CkImageMetadata& metadata,
                                      EkFrameRefusal& refusal);

    /// Adds the frame to its set. The frame's input becomes the set when it is complete, otherwise null.
    EkFrameRefusal gather(const CkImageMetadata& metadata, SkToFFrame& frame);

    /// Of the images gathered so far, see CkToFPhaseCollector.
    const CkToFPicAPI::AngleList& angles() const { return m_collector.angles(); }
    /// Format of a complete set; null when no sets are gathered.
    const SkPicBufInfo* setInfo() const {
        return m_collector.hasBuffer() ? &m_collector.bufferInfo() : nullptr;
    }

private:
    CkToFPhaseCollector m_collector;
    CkToFSectionReference m_reference;
    EkFrameRefusal m_setRefusal = EkFrameRefusal::None;       ///< of every set
    EkFrameRefusal m_referenceRefusal = EkFrameRefusal::None; ///< of every section with a reference
};
