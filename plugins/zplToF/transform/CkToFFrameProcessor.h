#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/transform/EkFrameRefusal.h"
#include "zuCore/CkPicture.h"

/// A frame on its way through the block.
struct SkToFFrame {
    const SkPicBuf& frame;           ///< as it came, less a reference section where there is one
    const SkPicBuf* input = nullptr; ///< the gathered set, or the frame; null while a set is incomplete
    bool gathered = false;           ///< input is, or is going to be, a gathered set
    bool hybrid = false;
    quint32 phases = 1;                             ///< phases stacked in the input
    const CkToFPicAPI::AngleList* angles = nullptr; ///< of a gathered set; null for a frame alone
    float pulseDuration = 0.0F;                     ///< seconds
};

/// Applies one transform to one frame: which operation, on which of its pictures. Owns the work buffer in
/// which exposure sections are merged; one thread at a time. Nothing is allocated per frame.
class CkToFFrameProcessor {
public:
    using EkRefusal = ToFFrames::EkRefusal;

    /// Makes the work buffer for hybrid input from the format of the picture that holds all sections.
    bool prepareHdr(const SkPicBufInfo& sections, qint32 iPhasesCount);
    void clear();

    bool hasHdrBuffer() const { return !m_hdr.isEmpty(); }
    const SkPicBufInfo& hdrInfo() const { return m_hdrInfo; }
    /// The memory for the work buffer could not be had.
    bool lacksHdrBuffer() const { return m_bHdrMissing; }

    /// The frame leaves the block as it came; no output picture is needed.
    static bool passesThrough(int iTransform, const SkToFFrame& frame);

    /// Whether the transform works on the frame as it came, whether or not a set is being gathered.
    static bool needsNoSet(int iTransform);

    /// Why no output picture can come out, as far as this is known beforehand. The frame's input may be null
    /// only where no set is needed.
    EkRefusal refusal(int iTransform, const SkToFFrame& frame, const SkPicBufInfo& out) const;

    /// Whether the output picture has to be zeroed because the operation leaves pixels unwritten.
    static bool leavesPixelsOpen(int iTransform, const SkToFFrame& frame);

    /// Fills the output picture, which has the negotiated format, for a frame that is not refused. False:
    /// nothing useful was written.
    bool process(int iTransform, const SkToFFrame& frame, SkPicBuf& out);

private:
    bool relabel(const SkToFFrame& frame, SkPicBuf& out) const;
    bool concatenate(const SkToFFrame& frame, SkPicBuf& out);
    bool mergeSections(const SkPicBuf& sections);
    const SkPicBuf& hybridSource(const SkToFFrame& frame, const SkPicBuf& out);

    CkPicture m_hdr;
    SkPicBufInfo m_hdrInfo; ///< of the work buffer at set-up
    bool m_bHdrMissing = false;
};
