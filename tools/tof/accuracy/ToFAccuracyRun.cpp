#include "tools/tof/accuracy/ToFAccuracyRun.h"

#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/cloud/SkToFCloudScales.h"
#include "plugins/zplToF/transform/EkTransformType.h"
#include "sim/camera/SkSimPlan.h"
#include "sim/synth/CkSimHybridSynth.h"
#include "sim/synth/CkSimNoise.h"
#include "sim/synth/CkSimWaveSynth.h"
#include "sim/synth/SimRow.h"
#include "tools/tof/CkToFPipeline.h"
#include "tools/tof/accuracy/CkToFErrorStatistics.h"
#include "tools/tof/accuracy/ToFNoiseLimit.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicture.h"
#include "zuCore/ToFVocabulary.h"

#include <bit>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

SkSimSettings settingsOf(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup) {
    SkSimSettings settings;
    settings.exposure.timeUs = setup.exposureUs;
    settings.exposure.ambient = point.ambient;
    settings.exposure.noise = setup.noise;
    settings.exposure.seed = setup.seed;
    settings.scene = EkSimScene::Wall;
    settings.wallDistanceM = point.distanceM;
    settings.wallReflectivity = point.reflectivity;
    settings.modulationMHz = point.modulation;
    settings.pulseNs = point.modulation;
    settings.phases = point.phases;
    const bool bytes = point.bits == 8;
    settings.dataFormat = point.hybrid ? (bytes ? ToFDataFormat::kHybrid8 : ToFDataFormat::kHybrid12)
                                       : (bytes ? ToFDataFormat::kAandB8 : ToFDataFormat::kAandB12);
    settings.converterBits = bytes ? settings.converterBits : point.bits;
    return settings;
}

/// The first set of a cell's noise, the same whatever else is in the matrix.
quint64 firstSet(const SkToFAccuracyPoint& point) {
    quint64 key = point.hybrid ? 1U : 0U;
    for (const double value : {point.modulation, point.distanceM, point.reflectivity, point.ambient,
                               double(point.phases), double(point.bits)}) {
        key = CkSimNoise::bits(key ^ std::bit_cast<quint64>(value), 0);
    }
    return key;
}

template <typename Sample>
qint64 countSaturated(const SkPicBuf& raw, quint32 rows, quint32 parts) {
    const auto full = Sample((1U << raw.bitsPerChannel) - 1U);
    qint64 count = 0;
    for (quint32 y = 0; y < rows; ++y) {
        for (quint32 x = 0; x < raw.width; ++x) {
            bool saturated = false;
            for (quint32 part = 0; part < parts; ++part) {
                const auto* const samples =
                    reinterpret_cast<const Sample*>(raw.row(part * rows + y)) + size_t(x) * raw.channels;
                for (quint32 c = 0; c < raw.channels; ++c) {
                    saturated = saturated || samples[c] >= full;
                }
            }
            count += saturated ? 1 : 0;
        }
    }
    return count;
}

/// Light and limits of the cell, from the electrons of every pixel.
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

/// Distances as the point cloud has them, where its confidence filter lets them pass.
bool addErrors(const CkImageData& depth, const CkSimRaster& raster, const SkToFAccuracySetup& setup,
               SkToFAccuracyResult& result, CkToFErrorStatistics& statistics) {
    CkToFDepthFrame frame;
    if (!frame.update(depth.picBuf(), &depth.metadata(), std::numeric_limits<int>::max())) {
        return false;
    }
    SkToFCloudParameters parameters;
    parameters.opticalPath.takeOverCameraValues(depth.metadata());
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
    // A picture without one valid pixel has no range to make a cloud of, and no errors.
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
    const SkSimSettings settings = settingsOf(point, setup);
    const EkSimCameraKind kind = point.hybrid ? EkSimCameraKind::Hybrid : EkSimCameraKind::Wave;
    SkSimLens lens = simLens(kind, settings);
    lens.width = setup.width;
    lens.height = setup.height;
    const CkSimRaster raster(lens, CkSimScene::wall(point.distanceM, point.reflectivity));
    addLimits(raster, settings, result);

    const SkSimImage image = makeSimPlan(kind, settings, {}).front();
    SkPicBufInfo info = image.info;
    const auto parts = quint32(image.parts.size());
    info.width = quint32(setup.width);
    info.height = quint32(setup.height) * parts;
    info.lineSize = 0;

    CkSimWaveSynth wave;
    CkSimHybridSynth hybrid;
    wave.setup(settings.exposure, settings.modulationMHz);
    hybrid.setup(settings.exposure, settings.pulseNs);
    CkToFPipeline pipeline(ToFTransform::Depth);
    CkToFErrorStatistics statistics;
    const quint64 set = firstSet(point);
    for (qint64 frame = 0; frame < setup.frames; ++frame) {
        CkPicture picture;
        if (!picture.allocate(info)) {
            result.error = QStringLiteral("There is not enough memory.");
            return result;
        }
        CkImageData raw;
        raw.setPicBuf(picture.take());
        raw.setMetadata(image.metadata);
        for (quint32 part = 0; part < parts; ++part) {
            const quint32 row = part * quint32(setup.height);
            const int what = image.parts[part];
            const bool painted =
                point.hybrid ? hybrid.writeSection(raster, set + quint64(frame), what,
                                                   CkSimHybridSynth::EkSection::Plain, raw.picBuf(), row)
                             : wave.writePhase(raster, set + quint64(frame), what, raw.picBuf(), row);
            if (!painted) {
                result.error = QStringLiteral("The simulated camera cannot be set up like this.");
                return result;
            }
        }
        result.pixels += qint64(setup.width) * setup.height;
        result.saturated += info.dataType == EkImageDataType::UInt8
                                ? countSaturated<quint8>(raw.picBuf(), quint32(setup.height), parts)
                                : countSaturated<quint16>(raw.picBuf(), quint32(setup.height), parts);
        std::unique_ptr<CkImageData> depth;
        if (pipeline.process(raw, depth, result.error) != CkToFPipeline::EkResult::Frame) {
            return result;
        }
        if (!addErrors(*depth, raster, setup, result, statistics)) {
            result.error = QStringLiteral("The processing made no distances.");
            return result;
        }
    }
    result.biasMm = statistics.mean();
    result.stdMm = statistics.standardDeviation();
    result.p95Mm = statistics.percentile(0.95);
    result.largestMm = statistics.largest();
    return result;
}
