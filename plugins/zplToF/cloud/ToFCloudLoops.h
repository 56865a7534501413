#pragma once

#include "plugins/zplToF/cloud/SkToFCloudScales.h"

/// What a loop over the pixels reads.
struct SkToFCloudInput {
    const SkToFDepthPictures& pictures;
    const SkToFCloudScales& scales;
    const quint8* pColourTable;
    const SkPicBuf& orthoFactorPic; ///< same size, one float channel; read when scales.correctRadially
    double* pColumnFactors;         ///< scratch of width + ColumnSlack numbers
    int verticesPerPoint;           ///< 1 or 4
};

/// Where it writes.
struct SkToFCloudOutput {
    float* pVertices;    ///< verticesPerPoint vertices of 6 floats for every pixel
    SkToFPoint* pExport; ///< a point for every pixel, and ExportSlack behind them
    float* pBounce;      ///< scratch of BouncePoints points, like pVertices
};

namespace ToFCloudLoops {

/// Behind the points that a loop answers, this many more may have been written, inside the buffers given.
inline constexpr size_t SlackPoints = 2;
inline constexpr size_t ExportSlack = 16;
inline constexpr size_t ColumnSlack = 64;
inline constexpr size_t BouncePoints = 256 + SlackPoints;

/// One pixel after the other, by the formulas as they stand. Answers the number of points.
int buildPlain(const SkToFCloudInput& input, const SkToFCloudOutput& output);

/// The same by vectors, with the best instruction set at hand.
int buildByVectors(const SkToFCloudInput& input, const SkToFCloudOutput& output);

/// Largest finite depth of the pixels whose confidence lies in (0, fLimit], by vectors; false, and fLargest
/// unchanged, when there is none at or above 0.
bool largestTrustedDepth(const SkToFDepthPictures& pictures, float fLimit, float& fLargest);

/// Name of the instruction set that buildByVectors runs on.
const char* vectorTargetName();

} // namespace ToFCloudLoops
