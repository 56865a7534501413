#pragma once

#include "plugins/zplToF/cloud/ToFCloudLoops.h"

#include <cstdint>

/// Pixels that are computed together: their intermediate results stay in the first-level cache.
inline constexpr size_t kChunkPixels = 256;

/// Results of a chunk, one array for each quantity. The pixels after the last one, up to a full vector, are
/// computed as dropped ones.
struct alignas(64) SkToFCloudChunk {
    float values[kChunkPixels];
    float confidences[kChunkPixels];
    float factors[kChunkPixels];
    float x[kChunkPixels], y[kChunkPixels], z[kChunkPixels]; ///< export, lens model only
    float sceneX[kChunkPixels], sceneY[kChunkPixels], sceneZ[kChunkPixels];
    qint32 colours[kChunkPixels];
    quint32 kept[kChunkPixels]; ///< 1 for a point, 0 for a dropped pixel
};

/// The inputs of a chunk: the rows of the pictures themselves where they hold full vectors, copies otherwise.
struct SkToFCloudChunkSource {
    const float* pValues;
    const float* pConfidences; ///< null: no filter
    const float* pFactors;     ///< null: no correction
    quint32 uiRow;
    quint32 uiColumn; ///< of the first pixel
};

/// Where the points of a chunk are written, and in which colours.
struct SkToFCloudTarget {
    const SkToFColours& colours;
    float* pVertices;
    float* pExport;
};

/// The steps of one instruction set.
struct SkToFCloudSteps {
    const char* sName; ///< of the instruction set
    size_t lanes;      ///< floats in a vector; chunks are computed in full ones
    void (*compute)(const SkToFCloudInput& input, const SkToFCloudChunkSource& source, size_t uiPixels,
                    SkToFCloudChunk& chunk);
    /// Returns the number of points written.
    size_t (*write)(const SkToFCloudInput& input, const SkToFCloudChunk& chunk, size_t uiPixels,
                    const SkToFCloudTarget& target);
    /// After the last write: fences the streaming stores, so that other threads see the points.
    void (*finishWriting)();
};

/// Fills in the steps of an instruction set (a Highway target). False for one that was not compiled in.
bool addSimdCloudSteps(int64_t target, SkToFCloudSteps& steps);

/// The steps of the instruction set that ToFKernelChoice selects; null for the plain loops.
const SkToFCloudSteps* cloudSteps();
