#include "sim/camera/SkSimPlan.h"

#include "zuCore/ToFVocabulary.h"

#include <numeric>

namespace {

// Rows start on cache lines.
constexpr quint32 kRowAlignment = 64;

/// The channels of a pixel.
enum class EkArrangement { Unknown, Taps, Difference, Windows };

/// A data format of ToFDataFormat. Any other value is an unknown one-byte format.
struct SkDataFormat {
    EkArrangement arrangement = EkArrangement::Unknown;
    bool wide = false; ///< 16 bits per sample instead of 8
};

SkDataFormat dataFormat(int format) {
    switch (format) {
    case ToFDataFormat::kAminusB8:
    case ToFDataFormat::kAminusB8Alternate:
        return {EkArrangement::Difference, false};
    case ToFDataFormat::kAminusB16:
    case ToFDataFormat::kAminusB16Alternate:
        return {EkArrangement::Difference, true};
    case ToFDataFormat::kAandB8:
        return {EkArrangement::Taps, false};
    case ToFDataFormat::kAandB12:
        return {EkArrangement::Taps, true};
    case ToFDataFormat::kHybrid8:
        return {EkArrangement::Windows, false};
    case ToFDataFormat::kHybrid12:
        return {EkArrangement::Windows, true};
    default:
        return {};
    }
}

/// An image of several parts of the size of the sensor, one below the other.
SkPicBufInfo describe(const SkSimLens& lens, size_t parts, quint32 channels, EkImageDataType type,
                      int converterBits) {
    const bool wide = sampleBytes(type) > 1;
    SkPicBufInfo info = SkPicBufInfo::of(quint32(lens.width), quint32(lens.height) * quint32(parts), channels,
                                         type, wide ? quint32(converterBits) : 8U);
    info.padRows(kRowAlignment);
    return info;
}

std::vector<int> phaseAngles(int phases) {
    std::vector<int> angles;
    angles.reserve(size_t(phases));
    for (int phase = 0; phase < phases; ++phase) {
        angles.push_back(phase * ToFPhases::nominalStep(phases));
    }
    return angles;
}

SkSimPlan greyPlan(const SkSimLens& lens, const SkSimSettings& settings, const CkImageMetadata& common) {
    SkSimImage image;
    const bool wide = dataFormat(settings.dataFormat).wide;
    image.info =
        describe(lens, 1, 1, wide ? EkImageDataType::UInt16 : EkImageDataType::UInt8, settings.converterBits);
    image.metadata = common;
    image.metadata.channelNames = QStringList{ToFChannel::kGrey};
    return {image};
}

SkSimPlan wavePlan(const SkSimLens& lens, const SkSimSettings& settings, const CkImageMetadata& common) {
    const auto [arrangement, wide] = dataFormat(settings.dataFormat);
    const bool taps = settings.readoutMode == ToFReadoutMode::kAandB && arrangement == EkArrangement::Taps;
    const bool difference =
        settings.readoutMode == ToFReadoutMode::kAminusB && arrangement == EkArrangement::Difference;
    if (!taps && !difference) {
        return greyPlan(lens, settings, common);
    }

    const std::vector<int> angles = phaseAngles(settings.phases);
    const size_t stacked = settings.separateImages ? 1 : angles.size();

    SkSimImage image;
    image.content = EkSimContent::Phases;
    image.metadata = common;
    if (taps) {
        image.info = describe(lens, stacked, 2, wide ? EkImageDataType::UInt16 : EkImageDataType::UInt8,
                              settings.converterBits);
        image.info.colorFilterArray = EkColorFilterArray::RawX2AandB;
        image.metadata.channelNames = QStringList{ToFChannel::kA, ToFChannel::kB};
        image.metadata.tofFormatCode = wide ? ToFFormatCode::kRawX2Bits12 : ToFFormatCode::kRawX2Bits8;
    } else {
        image.info = describe(lens, stacked, 1, wide ? EkImageDataType::Int16 : EkImageDataType::Int8,
                              settings.converterBits);
        image.info.colorFilterArray = EkColorFilterArray::RawAminusB;
        image.metadata.channelNames = QStringList{ToFChannel::kAminusB};
        image.metadata.tofFormatCode = wide ? ToFFormatCode::kAminusBBits12 : ToFFormatCode::kAminusBBits8;
    }
    image.metadata.colorFilterArray = quint32(image.info.colorFilterArray);
    image.metadata.modulationFrequency = float(settings.modulationMHz);
    image.metadata.phasesCount = qint32(stacked);
    if (!settings.separateImages) {
        image.parts = angles;
        return {image};
    }

    SkSimPlan plan;
    for (size_t index = 0; index < angles.size(); ++index) {
        image.parts = {angles[index]};
        image.metadata.phaseSequenceLength = qint32(angles.size());
        image.metadata.phaseSequenceIndex = qint32(index);
        image.metadata.phaseAngle = angles[index];
        plan.push_back(image);
    }
    return plan;
}

SkSimPlan hybridPlan(const SkSimLens& lens, const SkSimSettings& settings, const CkImageMetadata& common) {
    const auto [arrangement, wide] = dataFormat(settings.dataFormat);
    if (arrangement != EkArrangement::Windows) {
        return greyPlan(lens, settings, common);
    }

    const size_t stacked = settings.separateImages ? 1 : size_t(settings.sections);

    SkSimImage image;
    image.info = describe(lens, stacked, 3, wide ? EkImageDataType::UInt16 : EkImageDataType::UInt8,
                          settings.converterBits);
    image.info.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    image.metadata = common;
    image.metadata.channelNames = QStringList{ToFChannel::kX1, ToFChannel::kX2, ToFChannel::kX3};
    image.metadata.colorFilterArray = quint32(image.info.colorFilterArray);
    image.metadata.hybridPulseDuration = float(settings.pulseNs * 1e-9);
    image.metadata.phasesCount = qint32(stacked);
    image.metadata.sectionMode = quint32(settings.sectionMode);

    // Sections are counted per image: stacked exposures count as one.
    SkSimPlan plan;
    const auto addImage = [&](EkSimContent content, int first) {
        image.content = content;
        image.parts.resize(stacked);
        std::iota(image.parts.begin(), image.parts.end(), first);
        plan.push_back(image);
    };
    if (image.metadata.sectionMode == ToFSectionMode::kReferenceFirst) {
        addImage(EkSimContent::Reference, 0);
    }
    const int images = settings.separateImages ? settings.sections : 1;
    for (int index = 0; index < images; ++index) {
        addImage(EkSimContent::Sections, index);
    }
    for (size_t index = 0; index < plan.size(); ++index) {
        plan[index].metadata.sectionIndex = quint32(index);
        plan[index].metadata.sectionCount = quint32(plan.size());
    }
    return plan;
}

} // namespace

SkSimLens simLens(EkSimCameraKind kind, const SkSimSettings& settings) {
    SkSimLens lens;
    if (kind == EkSimCameraKind::Hybrid) {
        lens.width = 832;
        lens.height = 600;
    }
    lens.focalLengthMm = settings.focalLengthMm;
    return lens;
}

SkSimPlan makeSimPlan(EkSimCameraKind kind, const SkSimSettings& settings, const SkCameraInfo& camera) {
    CkImageMetadata common;
    common.exposureTimeUs = float(settings.exposure.timeUs);
    common.frameRate = float(settings.frameRate);
    common.cameraName = camera.name;
    common.cameraSerial = camera.serial;
    if (settings.reportFocalLength) {
        common.lensFocalLength = float(settings.focalLengthMm);
    }

    const SkSimLens lens = simLens(kind, settings);
    switch (kind) {
    case EkSimCameraKind::Wave:
        return wavePlan(lens, settings, common);
    case EkSimCameraKind::Hybrid:
        return hybridPlan(lens, settings, common);
    case EkSimCameraKind::Grey:
        break;
    }
    return greyPlan(lens, settings, common);
}
