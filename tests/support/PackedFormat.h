#pragma once

#include "zuCore/SkPicBuf.h"

/// Descriptor of a picture whose rows hold nothing but their pixels, every bit of a sample used.
inline SkPicBufInfo packedFormat(quint32 width, quint32 height, quint32 channels = 1,
                                 EkImageDataType type = EkImageDataType::UInt8) {
    return SkPicBufInfo::of(width, height, channels, type, 8 * sampleBytes(type));
}
