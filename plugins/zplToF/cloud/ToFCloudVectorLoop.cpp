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

/// A copy that is padded to full vectors with pixels that will be dropped.
const float* padded(const float* pPixels, size_t uiPixels, size_t uiFull, float* pCopy) {
    if (pPixels != pCopy) {
        std::memcpy(pCopy, pPixels, uiPixels * sizeof(float));
    }
    std::fill(pCopy + uiPixels, pCopy + uiFull, std::numeric_limits<float>::quiet_NaN());
    return pCopy;
}

/// The pixels of a chunk.
struct SkChunkPixels {
    quint32 row;
    quint32 column; ///< of the first pixel
    size_t count;
    size_t padded; ///< count rounded up to full vectors
};

/// The inputs of a chunk, in place or, where they end inside a vector, copied.
SkToFCloudChunkSource chunkSource(const SkToFCloudInput& input, SampleReader reader,
                                  const SkChunkPixels& pixels, SkToFCloudChunk& chunk) {
    const auto [row, column, count, full] = pixels;
    const SkPicBuf& depthPic = input.pictures.depthPic;
    SkToFCloudChunkSource source{chunk.values, nullptr, nullptr, row, column};
    if (reader) {
        reader(depthPic.row(row), column, count, chunk.values);
    } else {
        source.pValues = floatsOfRow(depthPic, row, column);
    }
    if (input.scales.filterByConfidence) {
        source.pConfidences = floatsOfRow(input.pictures.confidencePic, row, column);
    }
    if (input.scales.correctRadially) {
        source.pFactors = floatsOfRow(input.orthoFactorPic, row, column);
    }
    if (full == count) {
        return source;
    }
    source.pValues = padded(source.pValues, count, full, chunk.values);
    if (source.pConfidences) {
        source.pConfidences = padded(source.pConfidences, count, full, chunk.confidences);
    }
    if (source.pFactors) {
        source.pFactors = padded(source.pFactors, count, full, chunk.factors);
    }
    return source;
}

/// Fills the column factors: with the lens model the position on the chip divided by the focal length,
/// otherwise pixels from the centre. The last vector reads past them, for lanes that are dropped.
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
            steps->compute(input, chunkSource(input, reader, {row, column, pixels, full}, chunk), full,
                           chunk);
            float* vertices = output.pVertices + points * floatsPerPoint;
            float* exported = reinterpret_cast<float*>(output.pExport + points);
            // Full vectors write past the last point. Near the end of the buffer they write to the bounce
            // buffer instead.
            if (points + pixels + kSlackPoints <= allPixels) {
                points += steps->write(input, chunk, full, {colours, vertices, exported});
                continue;
            }
            float* bounce = output.pBounce;
            const size_t written = steps->write(input, chunk, full, {colours, bounce, exported});
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
