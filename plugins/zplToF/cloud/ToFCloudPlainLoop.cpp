#include "plugins/zplToF/cloud/ToFCloudLoops.h"
#include "zuCore/SampleVisitor.h"

#include <cmath>

namespace {

struct Position {
    float x, y, z;
    bool isFinite() const { return std::isfinite(x) && std::isfinite(y) && std::isfinite(z); }
};

Position throughLens(float fValue, quint32 uiColumn, quint32 uiRow, const SkToFCloudInput& input) {
    const SkToFCloudScales& s = input.scales;
    float d = wrapDistance(fValue * s.distScale + s.zBase, s.rangeMM);
    if (s.correctRadially) {
        d *= reinterpret_cast<const float*>(input.orthoFactorPic.row(uiRow))[uiColumn];
    }
    return {float(s.chipXMM(uiColumn) * double(d) / s.focalMM),
            float(s.chipYMM(uiRow) * double(d) / s.focalMM), s.zBase > 0.0F ? d - s.zBase : d};
}

Position normalised(float fValue, quint32 uiColumn, quint32 uiRow, const SkToFCloudScales& scales) {
    return {float(uiColumn - scales.centreX), float(scales.centreY - uiRow), fValue - scales.zBase};
}

void writeVertex(float* out, float fX, float fY, float fZ, const quint8* pColour) {
    out[0] = fX;
    out[1] = fY;
    out[2] = fZ;
    out[3] = float(pColour[2] / 255.0);
    out[4] = float(pColour[1] / 255.0);
    out[5] = float(pColour[0] / 255.0);
}

template <typename Sample>
int buildFrom(const SkToFCloudInput& input, const SkToFCloudOutput& output) {
    const SkToFCloudScales& s = input.scales;
    float* vertices = output.pVertices;
    int points = 0;
    for (quint32 row = 0; row < s.height; row++) {
        const auto* samples = reinterpret_cast<const Sample*>(input.pictures.depthPic.row(row));
        const auto* confidences = s.filterByConfidence
                                      ? reinterpret_cast<const float*>(input.pictures.confidencePic.row(row))
                                      : nullptr;
        for (quint32 column = 0; column < s.width; column++) {
            const float value = float(samples[column]);
            if (!std::isfinite(value) || (confidences && !s.confidence.accepts(confidences[column]))) {
                continue;
            }
            const Position place =
                s.useLens ? throughLens(value, column, row, input) : normalised(value, column, row, s);
            const float depth = place.z * s.zScale;
            const Position scene = {place.x * s.xyScale, place.y * s.xyScale,
                                    s.floatPicture ? s.zHalf - depth : depth - s.zHalf};
            if (!place.isFinite() || !scene.isFinite()) {
                continue;
            }

            const quint8* colour = input.pColourTable + 4 * colourIndex(value, s);
            if (input.verticesPerPoint == 1) {
                writeVertex(vertices, scene.x, scene.y, scene.z, colour);
                vertices += 6;
            } else {
                const float edge = s.pointSpacing;
                writeVertex(vertices, scene.x, scene.y - edge, scene.z, colour);
                writeVertex(vertices + 6, scene.x + edge, scene.y - edge, scene.z, colour);
                writeVertex(vertices + 12, scene.x + edge, scene.y, scene.z, colour);
                writeVertex(vertices + 18, scene.x, scene.y, scene.z, colour);
                vertices += 24;
            }
            const Position& exported = s.useLens ? place : scene;
            output.pExport[points++] = {exported.x, exported.y, exported.z};
        }
    }
    return points;
}

} // namespace

int ToFCloudLoops::buildPlain(const SkToFCloudInput& input, const SkToFCloudOutput& output) {
    const EkImageDataType dataType = input.pictures.depthPic.dataType;
    if (!isCloudSampleType(dataType)) {
        return 0;
    }
    return visitSamples(dataType, [&](auto zero) { return buildFrom<decltype(zero)>(input, output); });
}
