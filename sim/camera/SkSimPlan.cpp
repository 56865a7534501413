#include "sim/camera/SkSimPlan.h"

namespace {

constexpr int kReadoutAminusB = 2;
constexpr int kReadoutAandB = 4;
constexpr int kReferenceMode = 3;
constexpr quint32 kRowAlignment = 64;

bool isByteFormat(int format) {
    return format == 0 || format == 5 || format == 11 || format == 17;
}

bool isTapFormat(int format) {
    return format == 11 || format == 13;
}

bool isDifferenceFormat(int format) {
    return format == 0 || format == 5 || format == 1 || format == 6;
}

bool isWindowFormat(int format) {
    return format == 17 || format == 18;
}

/// Unknown formats are delivered as bytes.
bool isKnownWideFormat(int format) {
    return format == 1 || format == 6 || format == 13 || format == 18;
}

SkPicBufInfo describe(const SkSimLens& lens, size_t parts, quint32 channels, EkImageDataType type,
                      quint32 bits, EkColorFilterArray arrangement) {
    SkPicBufInfo info;
    info.width = quint32(lens.width);
    info.height = quint32(lens.height) * quint32(parts);
    info.channels = channels;
    info.bitsPerChannel = bits;
    info.linePadding = kRowAlignment;
    const quint32 packed = info.width * channels * sampleBytes(type);
    info.lineSize = (packed + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
    info.dataType = type;
    info.storageFormat = EkDataStorageFormat::Interleaved;
    info.colorFilterArray = arrangement;
    return info;
}

std::vector<int> phaseAngles(int phases) {
    std::vector<int> angles;
    angles.reserve(size_t(phases));
    // Two phases are a quarter turn apart, not half a turn: half a turn would only repeat the first with its
    // taps exchanged.
    const int step = phases == 8 ? 45 : 90;
    for (int phase = 0; phase < phases; ++phase) {
        angles.push_back(phase * step);
    }
    return angles;
}

SkSimPlan greyPlan(const SkSimLens& lens, const SkSimSettings& settings, const CkImageMetadata& common) {
    SkSimImage image;
    const bool wide = isKnownWideFormat(settings.dataFormat);
    image.info = describe(lens, 1, 1, wide ? EkImageDataType::UInt16 : EkImageDataType::UInt8,
                          wide ? quint32(settings.converterBits) : 8U, EkColorFilterArray::None);
    image.metadata = common;
    image.metadata.channelNames = {QStringLiteral("Grey")};
    return {image};
}

SkSimPlan wavePlan(const SkSimLens& lens, const SkSimSettings& settings, const CkImageMetadata& common) {
    const bool taps = settings.readoutMode == kReadoutAandB && isTapFormat(settings.dataFormat);
    const bool difference =
        settings.readoutMode == kReadoutAminusB && isDifferenceFormat(settings.dataFormat);
    if (!taps && !difference) {
        return greyPlan(lens, settings, common);
    }

    const bool bytes = isByteFormat(settings.dataFormat);
    const quint32 bits = bytes ? 8U : quint32(settings.converterBits);
    const std::vector<int> angles = phaseAngles(settings.phases);
    const size_t stacked = settings.separateImages ? 1 : angles.size();

    SkSimImage image;
    image.content = EkSimContent::Phases;
    image.metadata = common;
    if (taps) {
        image.info = describe(lens, stacked, 2, bytes ? EkImageDataType::UInt8 : EkImageDataType::UInt16,
                              bits, EkColorFilterArray::RawX2AandB);
        image.metadata.channelNames = {QStringLiteral("A"), QStringLiteral("B")};
        image.metadata.tofFormatCode = bytes ? ToFFormatCode::kRawX2Bits8 : ToFFormatCode::kRawX2Bits12;
    } else {
        image.info = describe(lens, stacked, 1, bytes ? EkImageDataType::Int8 : EkImageDataType::Int16, bits,
                              EkColorFilterArray::RawAminusB);
        image.metadata.channelNames = {QStringLiteral("A-B")};
        image.metadata.tofFormatCode = bytes ? ToFFormatCode::kAminusBBits8 : ToFFormatCode::kAminusBBits12;
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
    if (!isWindowFormat(settings.dataFormat)) {
        return greyPlan(lens, settings, common);
    }

    const bool bytes = isByteFormat(settings.dataFormat);
    const size_t stacked = settings.separateImages ? 1 : size_t(settings.sections);
    const bool reference = settings.sectionMode == kReferenceMode;

    SkSimImage image;
    image.info = describe(lens, stacked, 3, bytes ? EkImageDataType::UInt8 : EkImageDataType::UInt16,
                          bytes ? 8U : quint32(settings.converterBits), EkColorFilterArray::RawX3Hybrid);
    image.metadata = common;
    image.metadata.channelNames = {QStringLiteral("X1"), QStringLiteral("X2"), QStringLiteral("X3")};
    image.metadata.colorFilterArray = quint32(image.info.colorFilterArray);
    image.metadata.hybridPulseDuration = float(settings.pulseNs * 1e-9);
    image.metadata.phasesCount = qint32(stacked);
    image.metadata.sectionMode = quint32(settings.sectionMode);

    // A section is an image: stacked exposures count as one.
    SkSimPlan plan;
    if (reference) {
        image.content = EkSimContent::Reference;
        image.parts.clear();
        for (size_t part = 0; part < stacked; ++part) {
            image.parts.push_back(int(part));
        }
        plan.push_back(image);
    }
    image.content = EkSimContent::Sections;
    const int images = settings.separateImages ? settings.sections : 1;
    for (int index = 0; index < images; ++index) {
        image.parts.clear();
        for (size_t part = 0; part < stacked; ++part) {
            image.parts.push_back(index + int(part));
        }
        plan.push_back(image);
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
