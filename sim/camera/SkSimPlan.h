#pragma once

#include "sim/camera/SkSimSettings.h"
#include "sim/synth/SkSimLens.h"

#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <vector>

enum class EkSimContent { Grey, Phases, Sections, Reference };

/// One image of a set: its format and its content.
struct SkSimImage {
    SkPicBufInfo info;
    CkImageMetadata metadata; ///< time stamp and frame number are set on delivery
    EkSimContent content = EkSimContent::Grey;
    std::vector<int> parts; ///< phase angles in degrees or section numbers, from top to bottom
};

/// The images of one set in order of delivery; never empty. All have the same format.
using SkSimPlan = std::vector<SkSimImage>;

SkSimLens simLens(EkSimCameraKind kind, const SkSimSettings& settings);

/// The images that a camera with these settings delivers. With a readout mode that does not match the data
/// format they are plain grey pictures, as from a camera that is not configured for ToF.
SkSimPlan makeSimPlan(EkSimCameraKind kind, const SkSimSettings& settings, const SkCameraInfo& camera);
