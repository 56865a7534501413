#include "plugins/zplToF/cloud/ToFCloudVectorSteps.h"
#include "plugins/zplToF/pic/kernels/SimdTables.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "zuCore/SampleVisitor.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

template <typename Sample>
void readSamples(const quint8* pRow, quint32 uiColumn, size_t uiPixels, float* pValues) {
    const auto* samples = reinterpret_cast<const Sample*>(pRow) + uiColumn;
    for (size_t i = 0; i < uiPixels; i++) {
        pValues[i] = float(samples[i]);
    }
}

using SampleReader = void (*)(const quint8*, quint32, size_t, float*);

/// Null for float, which is read in place.
SampleReader sampleReader(EkImageDataType dataType) {
    return visitIntegerSamples(dataType,
                               [](auto zero) -> SampleReader { return readSamples<decltype(zero)>; });
}

const float* floatsOfRow(const SkPicBuf& picture, quint32 uiRow, quint32 uiColumn) {
    return reinterpret_cast<const float*>(picture.row(uiRow)) + uiColumn;
}

/// Fills up to a full vector with pixels that are dropped.
const float* padded(const float* pPixels, size_t uiPixels, size_t uiFull, float* pCopy) {
    if (pPixels != pCopy) {
        std::memcpy(pCopy, pPixels, uiPixels * sizeof(float));
    }
    std::fill(pCopy + uiPixels, pCopy + uiFull, std::numeric_limits<float>::quiet_NaN());
    return pCopy;
}

/// The inputs of a chunk, in place or, where they end inside a vector, copied.
SkToFCloudChunkSource chunkSource(const SkToFCloudInput& input, SampleReader reader, quint32 uiRow,
                                  quint32 uiColumn, size_t uiPixels, size_t uiFull, SkToFCloudChunk& chunk) {
    const SkPicBuf& depthPic = input.pictures.depthPic;
    SkToFCloudChunkSource source{chunk.values, nullptr, nullptr, uiRow, uiColumn};
    if (reader) {
        reader(depthPic.row(uiRow), uiColumn, uiPixels, chunk.values);
    } else {
        source.pValues = floatsOfRow(depthPic, uiRow, uiColumn);
    }
    if (input.scales.filterByConfidence) {
        source.pConfidences = floatsOfRow(input.pictures.confidencePic, uiRow, uiColumn);
    }
    if (input.scales.correctRadially) {
        source.pFactors = floatsOfRow(input.orthoFactorPic, uiRow, uiColumn);
    }
    if (uiFull == uiPixels) {
        return source;
    }
    source.pValues = padded(source.pValues, uiPixels, uiFull, chunk.values);
    if (source.pConfidences) {
        source.pConfidences = padded(source.pConfidences, uiPixels, uiFull, chunk.confidences);
    }
    if (source.pFactors) {
        source.pFactors = padded(source.pFactors, uiPixels, uiFull, chunk.factors);
    }
    return source;
}

/// With the lens model, columns on the chip divided by the focal length; without it, in pixels. The last
/// vector reads past them, into lanes of dropped pixels.
void fillColumns(const SkToFCloudInput& input) {
    const SkToFCloudScales& s = input.scales;
    for (quint32 x = 0; x < s.width; x++) {
        input.pColumnFactors[x] = s.useLens ? s.chipXMM(x) / s.focalMM : x - s.centreX;
    }
}

} // namespace

const SkToFCloudSteps* cloudSteps() {
    static const CkToFSimdTables<SkToFCloudSteps> tables(SkToFCloudSteps{}, addSimdCloudSteps);
    return tables.find(ToFKernelChoice::active().sName);
}

int ToFCloudLoops::buildByVectors(const SkToFCloudInput& input, const SkToFCloudOutput& output) {
    const SkToFCloudScales& s = input.scales;
    const EkImageDataType dataType = input.pictures.depthPic.dataType;
    if (!isCloudSampleType(dataType)) {
        return 0;
    }
    const SampleReader reader = sampleReader(dataType);

    const SkToFCloudSteps* steps = cloudSteps();
    if (!steps) {
        return buildPlain(input, output);
    }

    const size_t lanes = steps->lanes;
    const size_t floatsPerPoint = size_t(input.verticesPerPoint) * 6;
    const size_t allPixels = size_t(s.width) * s.height;
    alignas(64) SkToFColours colours;
    readColours(input.pColourTable, colours);
    fillColumns(input);
    SkToFCloudChunk chunk;

    size_t points = 0;
    for (quint32 row = 0; row < s.height; row++) {
        for (quint32 column = 0; column < s.width; column += kChunkPixels) {
            const size_t pixels = std::min<size_t>(kChunkPixels, s.width - column);
            const size_t full = (pixels + lanes - 1) / lanes * lanes;
            steps->compute(input, chunkSource(input, reader, row, column, pixels, full, chunk), full, chunk);
            float* vertices = output.pVertices + points * floatsPerPoint;
            float* exported = reinterpret_cast<float*>(output.pExport + points);
            // Full vectors write past the last point. Near the end of the buffer they write to scratch
            // memory.
            if (points + pixels + kSlackPoints <= allPixels) {
                points += steps->write(input, chunk, full, colours, vertices, exported);
                continue;
            }
            float* bounce = output.pBounce;
            const size_t written = steps->write(input, chunk, full, colours, bounce, exported);
            std::memcpy(vertices, bounce, written * floatsPerPoint * sizeof(float));
            points += written;
        }
    }
    steps->finishWriting();
    return int(points);
}

const char* ToFCloudLoops::vectorTargetName() {
    const SkToFCloudSteps* steps = cloudSteps();
    return steps ? steps->sName : "plain";
}
