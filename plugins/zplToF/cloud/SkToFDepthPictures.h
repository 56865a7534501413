#pragma once

#include "zuCore/SkPicBuf.h"

/// What a cloud is built from. The pictures are aliases here; whoever made them keeps them alive. Their rows
/// begin at multiples of the sample size.
struct SkToFDepthPictures {
    /// One channel. Float for time-of-flight data (radians or metres), otherwise of the input's sample type.
    /// minValue and maxValue span the finite values of a float picture.
    SkPicBuf depthPic;
    /// One float channel of the same size, lower is better; data null when the input has no confidence.
    SkPicBuf confidencePic;
    EkDepthDataType depthDataKind = EkDepthDataType::Generic;
    /// Width of the input divided by the width of depthPic; scales the cell pitch.
    float resolutionRatio = 1.0F;
};
