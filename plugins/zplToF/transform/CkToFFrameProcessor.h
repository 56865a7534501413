#pragma once

#include "plugins/zplToF/transform/CkToFHdrBuffer.h"
#include "plugins/zplToF/transform/EkFrameRefusal.h"
#include "plugins/zplToF/transform/SkToFFrame.h"

struct SkToFTransform;

/// Applies one transform to one frame: selects the operation and its input picture. Owns the work buffer for
/// exposure sections; one thread at a time. Nothing is allocated per frame.
class CkToFFrameProcessor {
public:
    /// Allocates the work buffer for hybrid input, see CkToFHdrBuffer::prepare.
    bool prepareHdr(const SkPicBufInfo& sections, qint32 iPhasesCount) {
        return m_hdr.prepare(sections, iPhasesCount);
    }
    void clear() { m_hdr.clear(); }

    bool hasHdrBuffer() const { return !m_hdr.isEmpty(); }
    const SkPicBufInfo& hdrInfo() const { return m_hdr.info(); }
    /// The work buffer could not be allocated.
    bool lacksHdrBuffer() const { return m_hdr.lacksMemory(); }

    /// Whether the frame is passed on unchanged, without an output picture.
    static bool passesThrough(const SkToFTransform& transform, const SkToFFrame& frame);

    /// Why there will be no output picture, as far as that is known before processing. The frame's input may
    /// be null only where no set is needed.
    EkFrameRefusal refusal(const SkToFTransform& transform, const SkToFFrame& frame,
                           const SkPicBufInfo& out) const;

    /// Whether the output picture has to be zeroed because the operation leaves pixels unwritten.
    static bool leavesPixelsUnwritten(const SkToFTransform& transform, const SkToFFrame& frame);

    /// Fills the output picture, which has the negotiated format, from a frame that is not refused. False:
    /// nothing useful was written.
    bool process(const SkToFTransform& transform, const SkToFFrame& frame, SkPicBuf& out);

private:
    CkToFHdrBuffer m_hdr;
};
