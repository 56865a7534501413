#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

/// What a picture holds, from its descriptor and metadata. Stateless; any thread. The metadata may be null.
/// CkToFPicAPI documents the rules.
namespace ToFPictureKinds {

/// Two taps A and B as two interleaved channels.
bool isTwoTaps(const SkPicBufInfo& info, const CkImageMetadata* metadata);
/// Signed difference A minus B, one channel.
bool isDifference(const SkPicBufInfo& info, const CkImageMetadata* metadata);
/// Three integration windows X1, X2, X3; the metadata is not consulted.
bool isHybrid(const SkPicBufInfo& info);
/// Float picture whose first channel is a phase shift in radians.
bool isPhaseShift(const SkPicBufInfo& info, const CkImageMetadata* metadata);
/// Float picture whose first channel is a depth in metres.
bool isDepth(const SkPicBufInfo& info, const CkImageMetadata* metadata);
/// Whether the phases (or sections) arrive as separate images that have to be gathered.
bool isSeparatePhase(const CkImageMetadata* metadata);
/// Phases stacked in the picture, at least 1. Not checked to be 1, 2, 4 or 8.
quint32 stackedPhases(const SkPicBufInfo& info, const CkImageMetadata* metadata);

} // namespace ToFPictureKinds
