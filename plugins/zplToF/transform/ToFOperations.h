#pragma once

#include "plugins/zplToF/transform/CkToFHdrBuffer.h"
#include "plugins/zplToF/transform/SkToFFrame.h"

/// What each transform computes: fills a picture of the negotiated format from a frame that is not refused.
/// False: nothing useful was written. The work buffer is used for hybrid frames with exposure sections.
namespace ToFOperations {

bool setABPhase(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);
bool intensity(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);
bool amplitude(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);
bool depth(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);
bool concatPhases(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);
bool aandBtoAminB(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);
bool setHybrid(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out);

} // namespace ToFOperations
