#pragma once

#include "plugins/zplToF/cloud/SkToFCloudScales.h"

/// Input of a loop over the pixels.
struct SkToFCloudInput {
    const SkToFDepthPictures& pictures;
    const SkToFCloudScales& scales;
    const quint8* pColourTable;
    const SkPicBuf& orthoFactorPic; ///< same size, one float channel; read when scales.correctRadially
    double* pColumnFactors;         ///< scratch of width + kColumnSlack numbers
    int verticesPerPoint;           ///< 1 or 4
};

/// Output of a loop over the pixels.
struct SkToFCloudOutput {
    float* pVertices;    ///< verticesPerPoint vertices of 6 floats for every pixel
    SkToFPoint* pExport; ///< a point for every pixel, and kExportSlack more
    float* pBounce;      ///< scratch of kBouncePoints points, like pVertices
};

namespace ToFCloudLoops {

/// A loop may write up to this many points more than it returns, within the given buffers.
inline constexpr size_t kSlackPoints = 2;
inline constexpr size_t kExportSlack = 16;
inline constexpr size_t kColumnSlack = 64;
inline constexpr size_t kBouncePoints = 256 + kSlackPoints;

/// Pixel by pixel: the definition of the result. Returns the number of points.
int buildPlain(const SkToFCloudInput& input, const SkToFCloudOutput& output);

/// The same result, by vectors of the instruction set that ToFKernelChoice selects.
int buildByVectors(const SkToFCloudInput& input, const SkToFCloudOutput& output);

/// Name of the instruction set that buildByVectors uses, or "plain".
const char* vectorTargetName();

} // namespace ToFCloudLoops
