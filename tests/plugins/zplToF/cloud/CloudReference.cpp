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

constexpr double kPi = 3.14159265358979323846;
constexpr double kRounding = 1.2e-7; ///< a bit more than a rounding to single precision

int clampedIndex(double value) {
    return std::isnan(value) ? 0 : int(std::clamp(std::trunc(value), 0.0, 255.0));
}

/// Of the finite values; the highest one of the trusted pixels where there is a confidence.
struct ValueRange {
    double lo = 1e300;
    double hi = -1e300;

    ValueRange(const SkToFDepthPictures& pictures, double threshold) {
        const SkPicBuf& depth = pictures.depthPic;
        double trusted = -1.0;
        for (quint32 y = 0; y < depth.height; y++) {
            for (quint32 x = 0; x < depth.width; x++) {
                const double v = sampleAt(depth, x, y);
                if (!std::isfinite(v)) {
                    continue;
                }
                lo = std::min(lo, v);
                hi = std::max(hi, v);
                if (!pictures.confidencePic.data) {
                    continue;
                }
                const double c = sampleAt(pictures.confidencePic, x, y);
                if (c > 0.0 && c <= threshold) {
                    trusted = std::max(trusted, v);
                }
            }
        }
        if (trusted >= 0.0 && threshold > 0.0) {
            hi = trusted;
        }
    }
};

/// From a value to its index in the colour table.
struct Colours {
    double inRange, base, outRange, outLow, gamma;
    bool active;

    Colours(const SkPicBuf& depth, const SkToFCloudParameters& parameters, const ValueRange& range) {
        const bool isFloat = int(depth.dataType) == 9;
        const double max = std::pow(2.0, depth.bitsPerChannel) - 1.0;
        double inLow = 0;
        double inHigh = max;
        double outHigh = 255;
        outLow = 0;
        gamma = 1.0;
        if (parameters.contrast && double(parameters.contrast->inHigh) <= max) {
            inLow = parameters.contrast->inLow;
            inHigh = parameters.contrast->inHigh;
            outLow = parameters.contrast->outLow;
            outHigh = parameters.contrast->outHigh;
            gamma = parameters.contrast->gamma;
        }
        active = isFloat || inLow != outLow || inHigh != outHigh;
        outRange = std::max(1.0, outHigh - outLow);
        inRange = inHigh - inLow;
        base = inLow;
        if (isFloat) {
            inRange = inRange * (range.hi - range.lo) / max;
            base = inLow * (range.hi - range.lo) / max + range.lo;
        }
        if (std::fabs(inRange) < 1e-24) {
            inRange = 1.0;
        }
    }

    /// A value within rounding of a border may get the colour on either side.
    void colour(double v, ReferencePoint& p) const {
        const double slack = 4.0 * kRounding * (std::fabs(v) + std::fabs(base) + std::fabs(inRange));
        p.lowestColour = 255;
        for (double near : {v - slack, v, v + slack}) {
            const double index = gamma != 1.0 ? std::pow((near - base) / inRange, gamma) * outRange + outLow
                                 : active     ? (near - base) * outRange / inRange + outLow
                                              : near;
            p.lowestColour = std::min(p.lowestColour, clampedIndex(index));
            p.highestColour = std::max(p.highestColour, clampedIndex(index));
        }
    }
};

/// From a pixel and its value to a point in space.
class Geometry {
public:
    Geometry(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters,
             const ValueRange& range)
        : isFloat(int(pictures.depthPic.dataType) == 9), radial(parameters.opticalPath.orthoRadialCorrection),
          w(pictures.depthPic.width), h(pictures.depthPic.height) {
        const double zoom = double(parameters.zZoom);
        double valueRange =
            isFloat ? range.hi - range.lo : std::pow(2.0, pictures.depthPic.bitsPerChannel) - 1.0;
        if (std::fabs(valueRange) < 1e-24) {
            valueRange = 1.0;
        }
        zBase = isFloat ? range.lo : 0.0;
        zExtent = isFloat ? 1.2 * zoom : 1.2;
        xyScale = 2.0 / w;
        zScale = zExtent / valueRange;
        useLens(pictures, parameters, range);
        if (!isFloat) {
            zScale *= zoom;
        }
    }

    void describe(CloudReference& cloud) const {
        cloud.spacing = 2.0 / w;
        cloud.halfDepth = zExtent / 2.0;
        cloud.halfHeight = h / w;
        cloud.lens = lens;
        if (lens) {
            cloud.widthM = 2.0 * halfWidthMM / 1000.0;
            cloud.heightM = cloud.widthM * h / w;
            cloud.depthM = rangeMM / 1000.0;
        }
    }

    ReferencePoint point(quint32 x, quint32 y, double v) const {
        ReferencePoint p;
        const double cx = x - w / 2.0;
        const double cy = h / 2.0 - y;
        if (lens) {
            placeThroughLens(cx, cy, v, p);
        } else {
            p.x = cx;
            p.y = cy;
            p.z = v - zBase;
            p.zTolerance = 2.0 * kRounding * (std::fabs(v) + std::fabs(zBase));
        }
        addScene(p);
        return p;
    }

private:
    void useLens(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters,
                 const ValueRange& values) {
        const SkToFOpticalPath& path = parameters.opticalPath;
        const int kind = int(pictures.depthDataKind);
        f = double(path.lensFocalLengthMM);
        pitch = double(path.chipCellSizeMM) * double(pictures.resolutionRatio);
        offsetX = path.centerOffsetMM.x();
        offsetY = path.centerOffsetMM.y();
        const bool complete = f > 0 && path.chipCellSizeMM > 0 && path.modulationFreqMHz > 0;
        if (!path.compensateDistortion || (kind != 1 && kind != 2) || !complete) {
            return;
        }
        const double r = kind == 1 ? 299.7025451660156 / (2.0 * double(path.modulationFreqMHz))
                         : isFloat ? values.hi
                                   : 1.0;
        const double range = 1000.0 * r;
        const double offset = 1000.0 * double(path.realDistanceOffsetM);
        const double farMM = std::max(offset, 0.0) + range;
        const double halfWidth = (std::floor(w / 2.0) * pitch - offsetX) * farMM / f;
        if (range > 0.0 && halfWidth > 0.0) {
            lens = true;
            rangeMM = range;
            halfWidthMM = halfWidth;
            distScale = kind == 1 ? range / (2.0 * kPi) : 1000.0;
            zBase = offset;
            xyScale = 1.0 / halfWidth;
            zExtent = double(parameters.zZoom) * range / halfWidth;
            zScale = zExtent / range;
        }
    }

    void placeThroughLens(double cx, double cy, double v, ReferencePoint& p) const {
        double d = v * distScale + zBase;
        p.zTolerance = 4.0 * kRounding * (std::fabs(v * distScale) + std::fabs(zBase) + rangeMM);
        // So far below zero that the wrapped distance is undefined in single precision.
        if (d < -1e4 * rangeMM) {
            d = rangeMM / 2.0;
            p.zTolerance = rangeMM;
        }
        while (d < 0.0) {
            d += rangeMM;
        }
        const double chipX = cx * pitch - offsetX;
        const double chipY = cy * pitch - offsetY;
        if (radial) {
            d *= f / std::sqrt(chipX * chipX + chipY * chipY + f * f);
        }
        p.x = chipX * d / f;
        p.y = chipY * d / f;
        p.z = zBase > 0.0 ? d - zBase : d;
        p.xTolerance = std::fabs(chipX / f) * p.zTolerance + kRounding * std::fabs(p.x) + 1e-30;
        p.yTolerance = std::fabs(chipY / f) * p.zTolerance + kRounding * std::fabs(p.y) + 1e-30;
    }

    void addScene(ReferencePoint& p) const {
        const double halfDepth = zExtent / 2.0;
        p.sceneX = p.x * xyScale;
        p.sceneY = p.y * xyScale;
        p.sceneZ = isFloat ? halfDepth - p.z * zScale : p.z * zScale - halfDepth;
        p.sceneXTolerance = p.xTolerance * xyScale + 4.0 * kRounding * std::fabs(p.sceneX) + 1e-30;
        p.sceneYTolerance = p.yTolerance * xyScale + 4.0 * kRounding * std::fabs(p.sceneY) + 1e-30;
        p.sceneZTolerance =
            p.zTolerance * std::fabs(zScale) + 6.0 * kRounding * (std::fabs(p.z * zScale) + halfDepth);
        if (!lens) {
            p.x = p.sceneX;
            p.y = p.sceneY;
            p.z = p.sceneZ;
            p.xTolerance = p.sceneXTolerance;
            p.yTolerance = p.sceneYTolerance;
            p.zTolerance = p.sceneZTolerance;
        }
    }

    bool isFloat;
    bool radial;
    double w, h;
    double xyScale, zBase, zExtent, zScale;
    double f = 0.0, pitch = 0.0, offsetX = 0.0, offsetY = 0.0;
    bool lens = false;
    double distScale = 1.0;
    double rangeMM = 0.0, halfWidthMM = 0.0;
};

bool isTrusted(const SkToFDepthPictures& pictures, quint32 x, quint32 y, double threshold) {
    const int kind = int(pictures.depthDataKind);
    if (!pictures.confidencePic.data || kind == 0) {
        return true;
    }
    const double c = sampleAt(pictures.confidencePic, x, y);
    return std::isfinite(c) && !(c > threshold) && (kind != 2 || c != 0.0);
}

} // namespace

CloudReference::CloudReference(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters) {
    const SkPicBuf& depth = pictures.depthPic;
    const double threshold = double(parameters.opticalPath.confidenceThreshold);
    const ValueRange range(pictures, threshold);
    const Colours colours(depth, parameters, range);
    const Geometry geometry(pictures, parameters, range);
    geometry.describe(*this);
    for (quint32 y = 0; y < depth.height; y++) {
        for (quint32 x = 0; x < depth.width; x++) {
            const double v = sampleAt(depth, x, y);
            if (!std::isfinite(v) || !isTrusted(pictures, x, y, threshold)) {
                continue;
            }
            ReferencePoint p = geometry.point(x, y, v);
            colours.colour(v, p);
            points.push_back(p);
        }
    }
}
