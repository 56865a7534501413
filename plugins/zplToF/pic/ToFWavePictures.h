#pragma once

#include "plugins/zplToF/pic/ToFPhaseStack.h"
#include "zuCore/SkPicBuf.h"

/// Whole pictures from the raw samples of continuous-wave sensors: two taps A and B, or the difference A - B.
/// Stateless; any thread. CkToFPicAPI documents sources, results and failures.
namespace ToFWavePictures {

/// Float, 2 channels: phase shift in radians [0, 2 pi) and confidence.
bool phaseShiftAndConfidence(const SkPicBuf& source, SkPicBuf& result, int phases,
                             const ToFPhaseStack::AngleList* angles);
/// Float, 1 channel: phase shift in radians.
bool phaseShiftOfDifference(const SkPicBuf& source, SkPicBuf& result, int phases,
                            const ToFPhaseStack::AngleList* angles);
bool intensity(const SkPicBuf& source, SkPicBuf& result, int phases);
bool amplitude(const SkPicBuf& source, SkPicBuf& result, int phases, const ToFPhaseStack::AngleList* angles);
bool amplitudeOfDifference(const SkPicBuf& source, SkPicBuf& result, int phases,
                           const ToFPhaseStack::AngleList* angles);
/// A - B wrapped to the signed type of the source's width, all stacked phases at once.
bool difference(const SkPicBuf& source, SkPicBuf& result);

} // namespace ToFWavePictures
