#pragma once

#include "zuCore/SkPicBuf.h"

/// Descriptor of a picture whose rows hold nothing but their pixels, every bit of a sample used.
inline SkPicBufInfo packedFormat(quint32 width, quint32 height, quint32 channels = 1,
                                 EkImageDataType type = EkImageDataType::UInt8) {
    SkPicBufInfo info;
    info.width = width;
    info.height = height;
    info.lineSize = width * channels * sampleBytes(type);
    info.channels = channels;
    info.bitsPerChannel = 8 * sampleBytes(type);
    info.dataType = type;
    info.storageFormat = EkDataStorageFormat::Interleaved;
    return info;
}
