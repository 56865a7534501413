#include "tests/plugins/zplToF/cloud/CloudReference.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

double sampleAt(const SkPicBuf& picture, quint32 x, quint32 y) {
    const quint8* p = picture.data + size_t(y) * picture.lineSize + size_t(x) * sampleBytes(picture.dataType);
    const auto as = [p](auto value) {
        std::memcpy(&value, p, sizeof value);
        return double(value);
    };
    switch (int(picture.dataType)) {
    case 1:
        return as(qint8());
    case 2:
        return as(quint8());
    case 3:
        return as(qint16());
    case 4:
        return as(quint16());
    case 5:
        return as(qint32());
    case 6:
        return as(quint32());
    default:
        return as(float());
    }
}

constexpr double Pi = 3.14159265358979323846;
constexpr double kHalf = 1.2e-7; ///< a bit more than a rounding to single precision

int clampedIndex(double value) {
    return std::isnan(value) ? 0 : int(std::clamp(std::trunc(value), 0.0, 255.0));
}

} // namespace

CloudReference::CloudReference(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters) {
    const SkPicBuf& depth = pictures.depthPic;
    const SkPicBuf& confidence = pictures.confidencePic;
    const SkToFOpticalPath& path = parameters.opticalPath;
    const bool isFloat = int(depth.dataType) == 9;
    const int kind = int(pictures.depthDataKind);
    const double w = depth.width;
    const double h = depth.height;
    const double zoom = double(parameters.zZoom);

    // Value range, of the trusted pixels where there is a confidence.
    double lo = 1e300;
    double hi = -1e300;
    double trusted = -1.0;
    for (quint32 y = 0; y < depth.height; y++) {
        for (quint32 x = 0; x < depth.width; x++) {
            const double v = sampleAt(depth, x, y);
            if (!std::isfinite(v)) {
                continue;
            }
            lo = std::min(lo, v);
            hi = std::max(hi, v);
            if (!confidence.data) {
                continue;
            }
            const double c = sampleAt(confidence, x, y);
            if (c > 0.0 && c <= double(path.confidenceThreshold)) {
                trusted = std::max(trusted, v);
            }
        }
    }
    if (trusted >= 0.0 && path.confidenceThreshold > 0.0F) {
        hi = trusted;
    }

    // Colours.
    const double max = std::pow(2.0, depth.bitsPerChannel) - 1.0;
    double inLow = 0;
    double inHigh = max;
    double outLow = 0;
    double outHigh = 255;
    double gamma = 1.0;
    if (parameters.contrast && double(parameters.contrast->inHigh) <= max) {
        inLow = parameters.contrast->inLow;
        inHigh = parameters.contrast->inHigh;
        outLow = parameters.contrast->outLow;
        outHigh = parameters.contrast->outHigh;
        gamma = parameters.contrast->gamma;
    }
    const bool active = isFloat || inLow != outLow || inHigh != outHigh;
    const double outRange = std::max(1.0, outHigh - outLow);
    double inRange = inHigh - inLow;
    double base = inLow;
    double zBase = 0.0;
    double valueRange = max;
    double zExtent = 1.2;
    if (isFloat) {
        inRange = inRange * (hi - lo) / max;
        base = inLow * (hi - lo) / max + lo;
        zBase = lo;
        valueRange = hi - lo;
        zExtent = 1.2 * zoom;
    }
    if (std::fabs(inRange) < 1e-24) {
        inRange = 1.0;
    }
    if (std::fabs(valueRange) < 1e-24) {
        valueRange = 1.0;
    }

    // Scales.
    double xyScale = 2.0 / w;
    double zScale = zExtent / valueRange;
    double distScale = 1.0;
    double rangeMM = 0.0;
    spacing = 2.0 / w;
    const double f = double(path.lensFocalLengthMM);
    const double pitch = double(path.chipCellSizeMM) * double(pictures.resolutionRatio);
    const double offsetX = path.centerOffsetMM.x();
    const double offsetY = path.centerOffsetMM.y();
    if (path.compensateDistortion && (kind == 1 || kind == 2) && f > 0 && path.chipCellSizeMM > 0 &&
        path.modulationFreqMHz > 0) {
        const double r = kind == 1 ? 299.7025451660156 / (2.0 * double(path.modulationFreqMHz))
                         : isFloat ? hi
                                   : 1.0;
        const double range = 1000.0 * r;
        const double offset = 1000.0 * double(path.realDistanceOffsetM);
        const double farMM = std::max(offset, 0.0) + range;
        const double halfWidth = (std::floor(w / 2.0) * pitch - offsetX) * farMM / f;
        if (range > 0.0 && halfWidth > 0.0) {
            lens = true;
            rangeMM = range;
            distScale = kind == 1 ? range / (2.0 * Pi) : 1000.0;
            zBase = offset;
            xyScale = 1.0 / halfWidth;
            zExtent = zoom * range / halfWidth;
            zScale = zExtent / range;
            widthM = 2.0 * halfWidth / 1000.0;
            heightM = widthM * h / w;
            depthM = range / 1000.0;
        }
    }
    if (!isFloat) {
        zScale *= zoom;
    }
    halfDepth = zExtent / 2.0;
    halfHeight = h / w;

    for (quint32 y = 0; y < depth.height; y++) {
        for (quint32 x = 0; x < depth.width; x++) {
            const double v = sampleAt(depth, x, y);
            if (!std::isfinite(v)) {
                continue;
            }
            if (confidence.data && kind != 0) {
                const double c = sampleAt(confidence, x, y);
                if (!std::isfinite(c) || c > double(path.confidenceThreshold) || (kind == 2 && c == 0.0)) {
                    continue;
                }
            }
            ReferencePoint p;
            const double cx = x - w / 2.0;
            const double cy = h / 2.0 - y;
            double distanceTolerance = 0.0;
            if (lens) {
                double d = v * distScale + zBase;
                distanceTolerance = 4.0 * kHalf * (std::fabs(v * distScale) + std::fabs(zBase) + rangeMM);
                // So far below zero that the wrapped distance is undefined in single precision.
                if (d < -1e4 * rangeMM) {
                    d = rangeMM / 2.0;
                    distanceTolerance = rangeMM;
                }
                while (d < 0.0) {
                    d += rangeMM;
                }
                const double chipX = cx * pitch - offsetX;
                const double chipY = cy * pitch - offsetY;
                if (path.orthoRadialCorrection) {
                    d *= f / std::sqrt(chipX * chipX + chipY * chipY + f * f);
                }
                p.x = chipX * d / f;
                p.y = chipY * d / f;
                p.z = zBase > 0.0 ? d - zBase : d;
                p.xTolerance = std::fabs(chipX / f) * distanceTolerance + kHalf * std::fabs(p.x) + 1e-30;
                p.yTolerance = std::fabs(chipY / f) * distanceTolerance + kHalf * std::fabs(p.y) + 1e-30;
            } else {
                p.x = cx;
                p.y = cy;
                p.z = v - zBase;
                distanceTolerance = 2.0 * kHalf * (std::fabs(v) + std::fabs(zBase));
            }
            p.zTolerance = distanceTolerance;
            p.sceneX = p.x * xyScale;
            p.sceneY = p.y * xyScale;
            p.sceneZ = isFloat ? halfDepth - p.z * zScale : p.z * zScale - halfDepth;
            p.sceneXTolerance = p.xTolerance * xyScale + 4.0 * kHalf * std::fabs(p.sceneX) + 1e-30;
            p.sceneYTolerance = p.yTolerance * xyScale + 4.0 * kHalf * std::fabs(p.sceneY) + 1e-30;
            p.sceneZTolerance =
                distanceTolerance * std::fabs(zScale) + 6.0 * kHalf * (std::fabs(p.z * zScale) + halfDepth);
            if (!lens) {
                p.x = p.sceneX;
                p.y = p.sceneY;
                p.z = p.sceneZ;
                p.xTolerance = p.sceneXTolerance;
                p.yTolerance = p.sceneYTolerance;
                p.zTolerance = p.sceneZTolerance;
            }

            // A value within rounding of a border may get the colour on either side.
            const double slack = 4.0 * kHalf * (std::fabs(v) + std::fabs(base) + std::fabs(inRange));
            p.lowestColour = 255;
            for (double near : {v - slack, v, v + slack}) {
                const double index = gamma != 1.0
                                         ? std::pow((near - base) / inRange, gamma) * outRange + outLow
                                     : active ? (near - base) * outRange / inRange + outLow
                                              : near;
                p.lowestColour = std::min(p.lowestColour, clampedIndex(index));
                p.highestColour = std::max(p.highestColour, clampedIndex(index));
            }
            points.push_back(p);
        }
    }
}
