#pragma once

#include "plugins/zplToF/cloud/ToFCloudLoops.h"

/// Pixels that are computed together: their intermediate results stay in the first-level cache.
inline constexpr size_t ChunkPixels = 256;

/// Results of a chunk, one array a quantity. The pixels behind the last one, up to a full vector, are
/// computed as dropped ones.
struct alignas(64) SkToFCloudChunk {
    float values[ChunkPixels];
    float confidences[ChunkPixels];
    float factors[ChunkPixels];
    float x[ChunkPixels], y[ChunkPixels], z[ChunkPixels]; ///< export, lens model only
    float sceneX[ChunkPixels], sceneY[ChunkPixels], sceneZ[ChunkPixels];
    qint32 colours[ChunkPixels];
    quint32 kept[ChunkPixels]; ///< 1 for a point, 0 for a dropped pixel
};

/// The inputs of a chunk: pixels of the pictures themselves where they come in full vectors.
struct SkToFCloudChunkSource {
    const float* pValues;
    const float* pConfidences; ///< null: no filter
    const float* pFactors;     ///< null: no correction
    quint32 uiRow;
    quint32 uiColumn; ///< of the first pixel
};

/// The steps of one instruction set.
struct SkToFCloudSteps {
    const char* sName;
    size_t lanes; ///< floats in a vector; chunks are computed in full ones
    void (*compute)(const SkToFCloudInput& input, const SkToFCloudChunkSource& source, size_t uiPixels,
                    SkToFCloudChunk& chunk);
    /// Answers the number of points written.
    size_t (*write)(const SkToFCloudInput& input, const SkToFCloudChunk& chunk, size_t uiPixels,
                    const SkToFColours& colours, float* pVertices, float* pExport);
    /// After the last write: what went past the caches has arrived, for other threads as well.
    void (*finishWriting)();
    /// Largest finite depth among the pixels of confidence in (0, fLimit], at least fStart.
    float (*largestOfRow)(const float* pDepths, const float* pConfidences, size_t uiPixels, float fLimit,
                          float fStart);
};

/// Those of the best instruction set at hand; null where there is none with vectors.
const SkToFCloudSteps* cloudSteps();

/// The one that largestOfRow computes, for single pixels.
float largestOfPixels(const float* pDepths, const float* pConfidences, size_t uiPixels, float fLimit,
                      float fStart);
