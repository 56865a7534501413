#include "host/viewer/panels/quality/RegionSamples.h"

#include "zuCore/CkPicBufAPI.h"
#include "zuCore/SampleVisitor.h"
#include "zuCore/ToFConfidence.h"
#include "zuCore/ToFVocabulary.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <type_traits>

namespace {

constexpr float kInvalid = std::numeric_limits<float>::quiet_NaN();

/// Index of the confidence channel, or -1.
int confidenceChannel(const SkPicBuf& picture, const CkImageMetadata& metadata) {
    const qsizetype index = metadata.channelNames.indexOf(ToFChannel::kConfidence);
    return picture.dataType == EkImageDataType::Float32 && index < qsizetype(picture.channels) ? int(index)
                                                                                               : -1;
}

template <class T>
void readValues(const SkPicBuf& picture, const QRect& region, quint32 channel, double scale,
                std::vector<float>& values) {
    T full = std::numeric_limits<T>::max();
    if constexpr (std::is_unsigned_v<T>) {
        if (picture.bitsPerChannel >= 1 && picture.bitsPerChannel < 8 * sizeof(T)) {
            full = T((quint64(1) << picture.bitsPerChannel) - 1U);
        }
    }
    for (int y = region.top(); y <= region.bottom(); ++y) {
        const T* sample = reinterpret_cast<const T*>(picture.row(quint32(y))) +
                          size_t(region.left()) * picture.channels + channel;
        for (int x = 0; x < region.width(); ++x, sample += picture.channels) {
            bool valid = false;
            if constexpr (std::is_floating_point_v<T>) {
                valid = std::isfinite(*sample);
            } else {
                valid = *sample < full;
            }
            values.push_back(valid ? float(double(*sample) * scale) : kInvalid);
        }
    }
}

void dropUncertain(const SkPicBuf& picture, const QRect& region, quint32 channel,
                   const SkToFConfidenceRule& rule, std::vector<float>& values) {
    size_t index = 0;
    for (int y = region.top(); y <= region.bottom(); ++y) {
        const float* confidence = reinterpret_cast<const float*>(picture.row(quint32(y))) +
                                  size_t(region.left()) * picture.channels + channel;
        for (int x = 0; x < region.width(); ++x, confidence += picture.channels, ++index) {
            values[index] = rule.accepts(*confidence) ? values[index] : kInvalid;
        }
    }
}

} // namespace

bool readRegion(const SkPicBuf& picture, const CkImageMetadata& metadata, const QRect& region,
                const SkRegionRule& rule, SkRegionSamples& samples) {
    samples.values.clear();
    samples.unit.clear();
    samples.distances = false;
    samples.wrapMm = 0.0;
    if (picture.data == nullptr || !CkPicBufAPI::isValid(picture) || rule.channel >= picture.channels ||
        region.isEmpty() || !QRect(0, 0, int(picture.width), int(picture.height)).contains(region)) {
        return false;
    }
    const QString name = metadata.channelNames.value(int(rule.channel));
    const bool depth = name == ToFChannel::kDepth;
    const bool phase = name == ToFChannel::kPhaseShift;
    const double frequency = double(metadata.modulationFrequency);
    double scale = 1.0;
    if (depth) {
        scale = 1000.0;
    } else if (phase && std::isfinite(frequency) && frequency > 0.0) {
        samples.wrapMm = 1000.0 * double(kSpeedOfLightInAirMMHz) / (2.0 * frequency);
        scale = samples.wrapMm / (2.0 * std::numbers::pi);
    }
    samples.distances = depth || samples.wrapMm > 0.0;
    samples.unit = samples.distances ? QStringLiteral("mm") : phase ? QStringLiteral("rad") : QString();
    samples.values.reserve(size_t(region.width()) * size_t(region.height()));
    const bool read = visitSamples(picture.dataType, [&](auto type) {
        readValues<decltype(type)>(picture, region, rule.channel, scale, samples.values);
        return true;
    });
    const int confidence = confidenceChannel(picture, metadata);
    if (read && confidence >= 0 && (depth || phase)) {
        dropUncertain(picture, region, quint32(confidence), {rule.confidenceLimit, depth}, samples.values);
    }
    return read;
}

void unwrapSamples(SkRegionSamples& samples, double referenceMm) {
    if (samples.wrapMm <= 0.0 || !std::isfinite(referenceMm)) {
        return;
    }
    for (float& value : samples.values) {
        const double turns = std::round((referenceMm - double(value)) / samples.wrapMm);
        value = turns == 0.0 || !std::isfinite(value) ? value : float(double(value) + turns * samples.wrapMm);
    }
}
