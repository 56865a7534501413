#pragma once

#include "zuCore/SkPicBuf.h"

/// Search for the largest trusted depth: of the pixels whose confidence lies in (0, limit]. This is stricter
/// than SkToFConfidenceRule, which decides what is drawn: the search knows pixels only, not the kind of the
/// picture, so it takes a confidence of 0 for a missing measurement everywhere. For a phase shift, where 0 is
/// the best confidence, only pixels without any noise are left out of the range. Stateless; any thread.
/// False, and the maximum unchanged, when no pixel is trusted.
namespace ToFDepthSearch {

/// Depth is channel 0, confidence channel 1.
bool largestTrusted(const SkPicBuf& picture, float& maximum, float confidenceLimit);
/// Depth and confidence as two pictures of equal size.
bool largestTrusted(const SkPicBuf& depth, const SkPicBuf& confidence, float& maximum, float confidenceLimit);

} // namespace ToFDepthSearch
