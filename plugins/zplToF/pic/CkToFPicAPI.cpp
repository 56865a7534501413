#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include <QString>

#include <algorithm>
#include <iterator>

namespace {

/// Integers wider than 16 bits and floats are never raw samples; unknown types are left to the operations.
bool isWideType(EkImageDataType dataType) {
    return dataType >= EkImageDataType::Int32 && dataType <= EkImageDataType::Float64;
}

bool isFloatPictureOf(const SkPicBufInfo& info, const CkImageMetadata* metadata, const QString& name) {
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
    const quint32 code = pMetadata->tofFormatCode;
    return code == ToFFormatCode::kRawX2Bits8 || code == ToFFormatCode::kRawX2Bits12 ||
           code == ToFFormatCode::kRawX2Bits12Alternate;
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
    const quint32 code = pMetadata->tofFormatCode;
    return code == ToFFormatCode::kAminusBBits8 || code == ToFFormatCode::kAminusBBits12 ||
           code == ToFFormatCode::kAminusBBits12Alternate;
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
    return isFloatPictureOf(info, pMetadata, QStringLiteral("Phase shift"));
}

bool CkToFPicAPI::isDepthImage(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return isFloatPictureOf(info, pMetadata, QStringLiteral("Depth"));
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
    // In mode 3 section 0 is a reference. Subtracted unsigned, so that no count can overflow.
    const quint32 counted = pMetadata->sectionCount - (pMetadata->sectionMode == 3 ? 1U : 0U);
    return qint32(counted) > 1;
}

quint32 CkToFPicAPI::detectPhasesCount(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    if (pMetadata != nullptr && pMetadata->phasesCount > 0) {
        return quint32(pMetadata->phasesCount);
    }
    switch (info.height) {
    case 960:
        return 2;
    case 1920:
        return 4;
    case 3840:
        return 8;
    case 1800:
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
