#pragma once

#include "zuCore/SkPicBuf.h"

/// Whether clouds can be built from samples of this type: integers of up to 32 bits and single-precision
/// floats.
constexpr bool isCloudSampleType(EkImageDataType dataType) {
    return (dataType >= EkImageDataType::Int8 && dataType <= EkImageDataType::UInt32) ||
           dataType == EkImageDataType::Float32;
}

/// What a cloud is built from. The pictures are aliases; their owner keeps them alive. Their rows begin at
/// multiples of the sample size.
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
