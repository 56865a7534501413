#include "plugins/zplToF/cloud/SkToFCloudScales.h"

#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kTwoPi = 6.2831855F;
constexpr float kNearlyNoRange = 1e-24F;
constexpr float kNormalisedDepth = 1.2F;

float usableRange(float fRange) {
    return std::fabs(fRange) < kNearlyNoRange ? 1.0F : fRange;
}

double largestSample(quint32 uiBits) {
    return std::ldexp(1.0, int(std::min(uiBits, 64U))) - 1.0;
}

/// Sets the colour mapping; fLow and fSpan are the value range of float pictures.
void setColourMapping(SkToFCloudScales& scales, const SkToFCloudParameters& parameters, double dMax,
                      float fLow, float fSpan) {
    double inLow = 0.0;
    double inHigh = dMax;
    double outLow = 0.0;
    double outHigh = 255.0;
    scales.gamma = CkLut::CkCompContrast().gamma;
    if (parameters.contrast && parameters.contrast->inHigh <= dMax) {
        inLow = parameters.contrast->inLow;
        inHigh = parameters.contrast->inHigh;
        outLow = parameters.contrast->outLow;
        outHigh = parameters.contrast->outHigh;
        scales.gamma = parameters.contrast->gamma;
    }
    scales.useGamma = scales.gamma != 1.0;
    scales.useContrast = scales.floatPicture || inLow != outLow || inHigh != outHigh;
    scales.outRange = float(std::max(1.0, outHigh - outLow));
    scales.outLow = float(outLow);
    if (scales.floatPicture) {
        // Without bits there is no integer range to scale by, so the span of the values is used as it is.
        const double perStep = dMax > 0.0 ? double(fSpan) / dMax : double(fSpan);
        scales.inRange = float((inHigh - inLow) * perStep);
        scales.base = float(inLow * perStep + double(fLow));
        if (dMax <= 0.0 && inHigh <= inLow) {
            scales.inRange = fSpan;
        }
    } else {
        scales.inRange = float(inHigh - inLow);
        scales.base = float(inLow);
    }
    scales.inRange = usableRange(scales.inRange);
}

float rangeInMM(EkDepthDataType kind, const SkToFOpticalPath& path, bool bFloat, float fLargest) {
    if (kind == EkDepthDataType::PhaseShift) {
        return float(1000.0 * (double(kSpeedOfLightInAirMMHz) / (2.0 * double(path.modulationFreqMHz))));
    }
    return 1000.0F * (bFloat ? fLargest : 1.0F);
}

/// Replaces the scales of the normalised view where the lens model can be used.
void setLens(SkToFCloudScales& scales, const SkToFDepthPictures& pictures, const SkToFOpticalPath& path,
             float fLargest, float fZoom) {
    const EkDepthDataType kind = pictures.depthDataKind;
    const bool distances = kind == EkDepthDataType::PhaseShift || kind == EkDepthDataType::Depth;
    if (!path.compensateDistortion || !distances || !float_is_positive(path.lensFocalLengthMM) ||
        !float_is_positive(path.chipCellSizeMM) || !float_is_positive(path.modulationFreqMHz) ||
        !std::isfinite(path.centerOffsetMM.x()) || !std::isfinite(path.centerOffsetMM.y())) {
        return;
    }

    const float range = rangeInMM(kind, path, scales.floatPicture, fLargest);
    const float offset = 1000.0F * path.realDistanceOffsetM;
    const float zBase = float_is_valid(offset) ? offset : scales.zBase;
    const double farMM = double(std::max(zBase, 0.0F)) + double(range);
    const double halfWidth =
        ((scales.width >> 1) * double(path.chipCellSizeMM) * double(pictures.resolutionRatio) -
         path.centerOffsetMM.x()) *
        farMM / double(path.lensFocalLengthMM);
    const float xyScale = float(1.0 / halfWidth);
    if (!float_is_positive(range) || !float_is_positive(float(halfWidth)) || !float_is_positive(xyScale)) {
        return;
    }

    scales.useLens = true;
    scales.correctRadially = path.orthoRadialCorrection;
    scales.cellMM = double(path.chipCellSizeMM);
    scales.resolutionRatio = double(pictures.resolutionRatio);
    scales.offsetXMM = path.centerOffsetMM.x();
    scales.offsetYMM = path.centerOffsetMM.y();
    scales.focalMM = double(path.lensFocalLengthMM);
    scales.rangeMM = range;
    scales.distScale = kind == EkDepthDataType::PhaseShift ? range / kTwoPi : 1000.0F;
    scales.zBase = zBase;
    scales.xyScale = xyScale;
    const float zExtent = float(double(fZoom) * double(range) / halfWidth);
    scales.zScale = zExtent / range;
    scales.zHalf = zExtent * 0.5F;
    const double widthM = halfWidth / 500.0;
    scales.dimensions = {widthM, scales.height * widthM / scales.width, double(range) / 1000.0};
}

} // namespace

SkToFCloudScales makeCloudScales(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters,
                                 float fLargest) {
    const SkPicBuf& depthPic = pictures.depthPic;
    const SkToFOpticalPath& path = parameters.opticalPath;
    const float zoom = float_is_positive(parameters.zZoom) ? parameters.zZoom : 1.0F;
    const double max = largestSample(depthPic.bitsPerChannel);

    SkToFCloudScales scales;
    scales.width = depthPic.width;
    scales.height = depthPic.height;
    scales.floatPicture = depthPic.dataType == EkImageDataType::Float32;
    const float low = scales.floatPicture ? depthPic.minValue : 0.0F;
    const float span = scales.floatPicture ? fLargest - low : 0.0F;
    setColourMapping(scales, parameters, max, low, span);

    scales.filterByConfidence =
        pictures.confidencePic.data && pictures.depthDataKind != EkDepthDataType::Generic;
    scales.confidence.zeroIsInvalid = pictures.depthDataKind == EkDepthDataType::Depth;
    scales.confidence.threshold = path.confidenceThreshold;

    scales.centreX = scales.width * 0.5;
    scales.centreY = scales.height * 0.5;
    scales.yHalf = float(2.0 * scales.height / scales.width * 0.5);
    scales.xyScale = float(2.0 / scales.width);
    scales.pointSpacing = scales.xyScale;
    scales.zBase = low;
    const float zExtent = scales.floatPicture ? kNormalisedDepth * zoom : kNormalisedDepth;
    scales.zScale = zExtent / usableRange(scales.floatPicture ? span : float(max));
    scales.zHalf = zExtent * 0.5F;
    setLens(scales, pictures, path, fLargest, zoom);
    if (!scales.floatPicture) {
        scales.zScale *= zoom;
    }
    return scales;
}

void readColours(const quint8* pColourTable, SkToFColours& colours) {
    for (size_t i = 0; i < colours.size(); i++) {
        const quint8* entry = pColourTable + 4 * i;
        colours[i] = {float(entry[2] / 255.0), float(entry[1] / 255.0), float(entry[0] / 255.0), 0.0F};
    }
}

float wrapDistance(float fDistance, float fRange) {
    if (!(fDistance < 0.0F)) {
        return fDistance;
    }
    const double distance = double(fDistance);
    const double range = double(fRange);
    // Up to this many turns, quotient, product and sum are exact in double precision.
    constexpr double kExactTurns = 268435456.0;
    const double turns = std::ceil(-distance / range);
    if (turns < kExactTurns) {
        return float(distance + turns * range);
    }
    const double rest = std::fmod(distance, range);
    return float(rest < 0.0 ? rest + range : rest + 0.0);
}

int colourIndex(float fValue, const SkToFCloudScales& scales) {
    double index = 0.0;
    if (scales.useGamma) {
        index = std::pow((double(fValue) - double(scales.base)) / double(scales.inRange), scales.gamma) *
                    double(scales.outRange) +
                double(scales.outLow);
    } else if (scales.useContrast) {
        index = double((fValue - scales.base) * scales.outRange / scales.inRange + scales.outLow);
    } else {
        index = double(fValue);
    }
    // The comparison also maps NaN to 0.
    return index > 0.0 ? int(std::min(index, 255.0)) : 0;
}
