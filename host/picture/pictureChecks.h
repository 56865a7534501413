#pragma once

#include "zuCore/CkPicBufAPI.h"

#include <functional>

/// Bytes of the pixels of one row; 0 without pixels, or when the number exceeds the 32 bits of a lineSize.
inline quint64 pictureRowBytes(const SkPicBufInfo& info) {
    quint64 bytes = 0;
    if (__builtin_mul_overflow(quint64(info.width), quint64(info.channels), &bytes) ||
        __builtin_mul_overflow(bytes, quint64(sampleBytes(info.dataType)), &bytes) || bytes > 0xffffffffU) {
        return 0;
    }
    return bytes;
}

inline bool hasPixels(const SkPicBuf& picBuf) {
    return picBuf.data != nullptr && CkPicBufAPI::isValid(picBuf);
}

inline bool sameSize(const SkPicBufInfo& first, const SkPicBufInfo& second) {
    return first.width == second.width && first.height == second.height;
}

/// Same channels and sample type, so that pixels can be moved from one to the other.
inline bool samePixelFormat(const SkPicBufInfo& first, const SkPicBufInfo& second) {
    return first.channels == second.channels && first.dataType == second.dataType;
}

/// True when two pictures share memory, so that writing to one may change the other.
inline bool overlap(const SkPicBuf& first, const SkPicBuf& second) {
    const std::less<const quint8*> before;
    return before(first.data, second.data + CkPicBufAPI::byteSize(second)) &&
           before(second.data, first.data + CkPicBufAPI::byteSize(first));
}
