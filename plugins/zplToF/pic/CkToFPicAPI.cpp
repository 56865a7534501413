#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include "plugins/zplToF/pic/ToFFormats.h"
#include "plugins/zplToF/pic/ToFHybridGeometry.h"
#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <iterator>

namespace {

/// Integers wider than 16 bits and floats are never raw samples; unknown types are left to the operations.
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

bool CkToFPicAPI::isRawX2ToFABPic(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    if (info.channels != 2 || isWideType(info.dataType) || info.layoutFlag) {
        return false;
    }
    if (pMetadata == nullptr) {
        return true;
    }
    return ToFFormats::isTwoTaps(pMetadata->tofFormatCode);
}

bool CkToFPicAPI::isRawToFAminBPic(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    if (info.channels != 1) {
        return false;
    }
    // layoutFlag plays no part here, unlike in the two-tap test.
    if (info.dataType != EkImageDataType::Int8 && info.dataType != EkImageDataType::Int16) {
        return false;
    }
    if (pMetadata == nullptr) {
        return true;
    }
    return ToFFormats::isDifference(pMetadata->tofFormatCode);
}

bool CkToFPicAPI::isRawToFHybridPic(const SkPicBufInfo& info, const CkImageMetadata* /*pMetadata*/) {
    if (info.channels != 3 || info.colorFilterArray != EkColorFilterArray::RawX3Hybrid) {
        return false;
    }
    if (info.dataType == EkImageDataType::UInt32) {
        return true;
    }
    return !isWideType(info.dataType) && !info.layoutFlag;
}

bool CkToFPicAPI::isPhaseShiftImage(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return isFloatPictureOf(info, pMetadata, ToFChannel::kPhaseShift);
}

bool CkToFPicAPI::isDepthImage(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return isFloatPictureOf(info, pMetadata, ToFChannel::kDepth);
}

bool CkToFPicAPI::incomingSeparatePhases(const CkImageMetadata* pMetadata) {
    if (pMetadata == nullptr) {
        return false;
    }
    if (pMetadata->phaseSequenceLength > 0 && pMetadata->phaseSequenceLength != pMetadata->phasesCount) {
        return true;
    }
    if (pMetadata->colorFilterArray != quint32(EkColorFilterArray::RawX3Hybrid)) {
        return false;
    }
    // Unsigned, so that no count can overflow.
    const quint32 references = pMetadata->sectionMode == ToFSectionMode::kReferenceFirst ? 1U : 0U;
    const quint32 counted = pMetadata->sectionCount - references;
    return qint32(counted) > 1;
}

quint32 CkToFPicAPI::detectPhasesCount(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    if (pMetadata != nullptr && pMetadata->phasesCount > 0) {
        return quint32(pMetadata->phasesCount);
    }
    // Multiples of the 480 rows of a two-tap sensor.
    switch (info.height) {
    case 960:
        return 2;
    case 1920:
        return 4;
    case 3840:
        return 8;
    case ToFHybridGeometry::kStackHeight:
        return info.colorFilterArray == EkColorFilterArray::RawX3Hybrid ? 3 : 1;
    default:
        return 1;
    }
}

quint32 CkToFPicAPI::findAngleIdx(quint32 uiNominalIndex, qint32 iAngle, const AngleList* pAngles) {
    if (pAngles == nullptr || pAngles->empty()) {
        return uiNominalIndex;
    }
    const auto found = std::find(pAngles->begin(), pAngles->end(), iAngle);
    return found == pAngles->end() ? uiNominalIndex : quint32(std::distance(pAngles->begin(), found));
}
