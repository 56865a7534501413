#include "host/core/SkFormat.h"

#include "zuCore/CkImageData.h"

namespace {

bool isSameLayout(const SkPicBufInfo& a, const SkPicBufInfo& b) {
    return a.width == b.width && a.height == b.height && a.lineSize == b.lineSize &&
           a.channels == b.channels && a.bitsPerChannel == b.bitsPerChannel && a.dataType == b.dataType &&
           a.colorFilterArray == b.colorFilterArray && a.layoutFlag == b.layoutFlag;
}

bool isSameSet(const CkImageMetadata& a, const CkImageMetadata& b) {
    return a.tofFormatCode == b.tofFormatCode && a.colorFilterArray == b.colorFilterArray &&
           a.phasesCount == b.phasesCount && a.phaseSequenceLength == b.phaseSequenceLength &&
           a.sectionCount == b.sectionCount && a.sectionMode == b.sectionMode;
}

/// Clears the fields that differ from frame to frame; exposure is one, because each section may have its own.
CkImageMetadata withoutPerFrameFields(const CkImageMetadata& metadata) {
    CkImageMetadata rest = metadata;
    rest.phaseSequenceIndex = 0;
    rest.phaseAngle = 0;
    rest.sectionIndex = 0;
    rest.exposureTimeUs = 0.0F;
    rest.timestampNs = 0;
    rest.frameNumber = 0;
    return rest;
}

} // namespace

SkFormat SkFormat::of(const CkImageData& frame) {
    return {true, frame.picBuf(), frame.metadata()};
}

EkFormatChange formatChange(const SkFormat& a, const SkFormat& b) {
    if (!a.known && !b.known) {
        return EkFormatChange::None;
    }
    if (a.known != b.known || !isSameLayout(a.info, b.info)) {
        return EkFormatChange::Pictures;
    }
    if (!isSameSet(a.metadata, b.metadata)) {
        return EkFormatChange::Sets;
    }
    return withoutPerFrameFields(a.metadata) == withoutPerFrameFields(b.metadata) ? EkFormatChange::None
                                                                                  : EkFormatChange::Values;
}
