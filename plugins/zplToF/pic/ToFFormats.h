#pragma once

#include "zuCore/CkImageMetadata.h"

/// Which arrangement of samples a format code denotes.
namespace ToFFormats {

/// Both taps A and B.
constexpr bool isTwoTaps(quint32 code) {
    return code == ToFFormatCode::kRawX2Bits8 || code == ToFFormatCode::kRawX2Bits12 ||
           code == ToFFormatCode::kRawX2Bits12Alternate;
}

/// The signed difference A minus B.
constexpr bool isDifference(quint32 code) {
    return code == ToFFormatCode::kAminusBBits8 || code == ToFFormatCode::kAminusBBits12 ||
           code == ToFFormatCode::kAminusBBits12Alternate;
}

} // namespace ToFFormats
