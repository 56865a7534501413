#pragma once

#include "zuCore/SkPicBuf.h"

/// Whole pictures from the three integration windows of hybrid sensors.
/// Stateless; any thread. CkToFPicAPI documents sources, results and failures.
namespace ToFHybridPictures {

bool intensity(const SkPicBuf& source, SkPicBuf& result);
bool amplitude(const SkPicBuf& source, SkPicBuf& result);
/// Float, 2 channels: depth in metres and confidence. The pulse duration is in seconds.
bool depthAndConfidence(const SkPicBuf& source, SkPicBuf& result, float pulseDurationS);
/// Merges stacked exposure sections into one picture; sets the result's bits to those in use.
bool mergeSections(const SkPicBuf& source, SkPicBuf& result);
/// Three stacked one-channel sub-images to X1, X2, X3.
bool interleaveWindows(const SkPicBuf& source, SkPicBuf& result);

} // namespace ToFHybridPictures
