#include "tools/tof/accuracy/ToFAccuracyRun.h"

#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/cloud/SkToFCloudScales.h"
#include "plugins/zplToF/transform/EkTransformType.h"
#include "sim/synth/SimRow.h"
#include "tools/tof/accuracy/CkToFErrorStatistics.h"
#include "tools/tof/accuracy/CkToFWallCamera.h"
#include "tools/tof/accuracy/ToFNoiseLimit.h"
#include "tools/tof/base/CkToFPipeline.h"
#include "zuCore/CkImageData.h"
#include "zuCore/SampleVisitor.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace {

/// Pixels with a sample at the end of its range in any of the stacked parts.
qint64 countSaturated(const SkPicBuf& raw, quint32 parts) {
    const quint32 rows = raw.height / parts;
    const quint32 full = (1U << raw.bitsPerChannel) - 1U;
    return visitIntegerSamples(raw.dataType, [&](auto zero) {
        using Sample = decltype(zero);
        qint64 count = 0;
        for (quint32 y = 0; y < rows; ++y) {
            for (quint32 x = 0; x < raw.width; ++x) {
                bool saturated = false;
                for (quint32 part = 0; part < parts; ++part) {
                    const quint8* const row = raw.row(part * rows + y);
                    for (quint32 c = 0; c < raw.channels; ++c) {
                        saturated = saturated ||
                                    loadSample<Sample>(row, size_t(x) * raw.channels + c) >= Sample(full);
                    }
                }
                count += saturated ? 1 : 0;
            }
        }
        return count;
    });
}

/// Adds light and noise limits of the cell, from the electrons of every pixel.
void addLimits(const CkSimRaster& raster, const SkSimSettings& settings, SkToFAccuracyResult& result) {
    using Wave = CkSimWaveSynth;
    using Hybrid = CkSimHybridSynth;
    const double milliseconds = settings.exposure.timeUs / 1000.0;
    const double step = 1.0 / double(simGain(quint32(result.point.bits)));
    const double rounding = step * step / 12.0;
    const size_t count = raster.distance().size();
    double shot = 0.0;
    double sensor = 0.0;
    for (size_t i = 0; i < count; ++i) {
        if (result.point.hybrid) {
            const double pulse = Hybrid::kSignalElectrons * milliseconds * double(raster.echo()[i]);
            const double light = Hybrid::kAmbientElectrons * settings.exposure.ambient * milliseconds *
                                 double(raster.ambient()[i]);
            const double range = Hybrid::range(settings.pulseNs);
            const double place = double(raster.distance()[i]) / range;
            const double share = place - std::floor(place);
            const double first = light + pulse * (1.0 - share);
            const double second = light + pulse * share;
            const double other = Hybrid::kReadNoiseElectrons * Hybrid::kReadNoiseElectrons + rounding;
            const double millimetres = 1000.0 * range;
            shot += std::pow(pulseShareSigma(first, second, light) * millimetres, 2);
            sensor += std::pow(pulseShareSigma(first, second, light, other) * millimetres, 2);
            result.signal += pulse / double(count);
            result.total += (pulse + 3.0 * light) / double(count);
        } else {
            const double signal = Wave::kSignalElectrons * milliseconds * double(raster.echo()[i]);
            const double total = signal + Wave::kAmbientElectrons * settings.exposure.ambient * milliseconds *
                                              double(raster.ambient()[i]);
            const double other = 2.0 * (Wave::kReadNoiseElectrons * Wave::kReadNoiseElectrons + rounding);
            const double millimetres =
                1000.0 * Wave::unambiguousRange(settings.modulationMHz) / (2.0 * std::numbers::pi);
            const int phases = result.point.phases;
            shot += std::pow(wavePhaseSigma(signal, total, Wave::kContrast, phases) * millimetres, 2);
            sensor +=
                std::pow(wavePhaseSigma(signal, total, Wave::kContrast, phases, other) * millimetres, 2);
            result.signal += signal / double(count);
            result.total += total / double(count);
        }
    }
    result.shotMm = std::sqrt(shot / double(count));
    result.sensorMm = std::sqrt(sensor / double(count));
}

/// Adds the errors of the pixels that pass the confidence filter of the point cloud, with its distances.
bool addErrors(const CkImageData& depth, const CkSimRaster& raster, const SkToFAccuracySetup& setup,
               SkToFAccuracyResult& result, CkToFErrorStatistics& statistics) {
    CkToFDepthFrame frame;
    if (!frame.update(depth.picBuf(), &depth.metadata(), std::numeric_limits<int>::max())) {
        return false;
    }
    SkToFCloudParameters parameters;
    parameters.opticalPath.adoptCameraValues(depth.metadata());
    parameters.opticalPath.compensateDistortion = true;
    parameters.opticalPath.orthoRadialCorrection = false;
    parameters.opticalPath.realDistanceOffsetM = 0.0F;
    parameters.opticalPath.confidenceThreshold = setup.confidenceThreshold;
    const SkToFDepthPictures& pictures = frame.pictures();
    const SkToFCloudScales scales = makeCloudScales(pictures, parameters, pictures.depthPic.maxValue);
    if (result.point.hybrid != (pictures.depthDataKind == EkDepthDataType::Depth) ||
        pictures.depthPic.width != quint32(setup.width) ||
        pictures.depthPic.height != quint32(setup.height)) {
        return false;
    }
    // Without a valid pixel there is no range for the scales, and no error to add.
    if (!scales.useLens) {
        return true;
    }
    const double wrap = result.point.hybrid ? 0.0 : 1000.0 * result.rangeM;
    for (quint32 y = 0; y < pictures.depthPic.height; ++y) {
        const auto* const values = reinterpret_cast<const float*>(pictures.depthPic.row(y));
        const auto* const confidences = reinterpret_cast<const float*>(pictures.confidencePic.row(y));
        const float* const truth = raster.distance().data() + size_t(y) * pictures.depthPic.width;
        for (quint32 x = 0; x < pictures.depthPic.width; ++x) {
            if (!std::isfinite(values[x]) || !scales.confidence.accepts(confidences[x])) {
                continue;
            }
            double error = double(values[x] * scales.distScale) - 1000.0 * double(truth[x]);
            error -= wrap > 0.0 ? wrap * std::round(error / wrap) : 0.0;
            statistics.add(error);
            ++result.valid;
        }
    }
    return true;
}

} // namespace

SkToFAccuracyResult measureAccuracy(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup) {
    SkToFAccuracyResult result;
    result.point = point;
    result.rangeM = point.hybrid ? 2.0 * CkSimHybridSynth::range(point.modulation)
                                 : CkSimWaveSynth::unambiguousRange(point.modulation);
    CkToFWallCamera camera(point, setup);
    addLimits(camera.raster(), camera.settings(), result);

    CkToFPipeline pipeline(ToFTransform::Depth);
    CkToFErrorStatistics statistics;
    for (qint64 frame = 0; frame < setup.frames; ++frame) {
        CkImageData raw;
        result.error = camera.expose(frame, raw);
        if (!result.error.isEmpty()) {
            return result;
        }
        result.pixels += qint64(setup.width) * setup.height;
        result.saturated += countSaturated(raw.picBuf(), camera.parts());
        std::unique_ptr<CkImageData> depth;
        if (pipeline.process(raw, depth, result.error) != CkToFPipeline::EkResult::Frame) {
            return result;
        }
        if (!addErrors(*depth, camera.raster(), setup, result, statistics)) {
            result.error = QStringLiteral("The processing gave no distances.");
            return result;
        }
    }
    result.biasMm = statistics.mean();
    result.stdMm = statistics.standardDeviation();
    result.p95Mm = statistics.percentile(0.95);
    result.largestMm = statistics.largest();
    return result;
}
