#include "plugins/zplToF/pic/ToFPictureKinds.h"

#include "plugins/zplToF/pic/ToFFormats.h"
#include "plugins/zplToF/pic/ToFHybridGeometry.h"
#include "zuCore/SkToFSetPosition.h"
#include "zuCore/ToFVocabulary.h"

namespace {

constexpr quint32 kRowsPerPhase = 480; ///< of the two-tap sensors that stack their phases

/// Integers wider than 16 bits and floats are never raw samples; the operations refuse unknown types.
bool isWideType(EkImageDataType dataType) {
    return dataType >= EkImageDataType::Int32 && dataType <= EkImageDataType::Float64;
}

bool isFloatPictureOf(const SkPicBufInfo& info, const CkImageMetadata* metadata, QLatin1String name) {
    if (info.dataType != EkImageDataType::Float32 || info.channels > 2) {
        return false;
    }
    if (metadata == nullptr || info.channels > quint32(metadata->channelNames.size())) {
        return true;
    }
    return !metadata->channelNames.isEmpty() && metadata->channelNames.first() == name;
}

} // namespace

bool ToFPictureKinds::isTwoTaps(const SkPicBufInfo& info, const CkImageMetadata* metadata) {
    if (info.channels != 2 || isWideType(info.dataType) || info.layoutFlag) {
        return false;
    }
    if (metadata == nullptr) {
        return true;
    }
    return ToFFormats::isTwoTaps(metadata->tofFormatCode);
}

bool ToFPictureKinds::isDifference(const SkPicBufInfo& info, const CkImageMetadata* metadata) {
    if (info.channels != 1) {
        return false;
    }
    // Unlike for two taps, layoutFlag is ignored.
    if (info.dataType != EkImageDataType::Int8 && info.dataType != EkImageDataType::Int16) {
        return false;
    }
    if (metadata == nullptr) {
        return true;
    }
    return ToFFormats::isDifference(metadata->tofFormatCode);
}

bool ToFPictureKinds::isHybrid(const SkPicBufInfo& info) {
    if (info.channels != 3 || info.colorFilterArray != EkColorFilterArray::RawX3Hybrid) {
        return false;
    }
    if (info.dataType == EkImageDataType::UInt32) {
        return true;
    }
    return !isWideType(info.dataType) && !info.layoutFlag;
}

bool ToFPictureKinds::isPhaseShift(const SkPicBufInfo& info, const CkImageMetadata* metadata) {
    return isFloatPictureOf(info, metadata, ToFChannel::kPhaseShift);
}

bool ToFPictureKinds::isDepth(const SkPicBufInfo& info, const CkImageMetadata* metadata) {
    return isFloatPictureOf(info, metadata, ToFChannel::kDepth);
}

bool ToFPictureKinds::isSeparatePhase(const CkImageMetadata* metadata) {
    if (metadata == nullptr) {
        return false;
    }
    if (SkToFSetPosition::isSeparatePhase(*metadata)) {
        return true;
    }
    if (metadata->colorFilterArray != quint32(EkColorFilterArray::RawX3Hybrid)) {
        return false;
    }
    // Counts beyond the signed range are treated as negative, like those of the phases.
    return qint32(SkToFSetPosition::of(*metadata, true).count) > 1;
}

quint32 ToFPictureKinds::stackedPhases(const SkPicBufInfo& info, const CkImageMetadata* metadata) {
    if (metadata != nullptr && metadata->phasesCount > 0) {
        return quint32(metadata->phasesCount);
    }
    if (info.height == ToFHybridGeometry::kStackHeight) {
        return info.colorFilterArray == EkColorFilterArray::RawX3Hybrid ? 3 : 1;
    }
    const quint32 phases = info.height / kRowsPerPhase;
    return info.height % kRowsPerPhase == 0 && ToFPhases::isSupportedCount(phases) ? phases : 1;
}
