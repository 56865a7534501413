#pragma once

#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <functional>
#include <memory>

/// Packed rows, every bit of a sample used.
inline SkPicBufInfo packedFormat(quint32 width, quint32 height, quint32 channels = 1,
                                 EkImageDataType type = EkImageDataType::UInt8) {
    return SkPicBufInfo::of(width, height, channels, type, 8 * sampleBytes(type));
}

/// A zeroed frame, without pixels when the format is impossible.
inline std::unique_ptr<CkImageData> makeFrame(const SkPicBufInfo& info, const CkImageMetadata& metadata = {},
                                              quint64 frameNumber = 0) {
    SkPicBuf picture;
    CkPicBufAPI::AllocPicBufFromHeap(picture, info);
    picture.additionalData.frameNumber = frameNumber;
    auto frame = std::make_unique<CkImageData>();
    frame->setPicBuf(picture);
    frame->setMetadata(metadata);
    return frame;
}

/// A frame whose samples come from a function of column, row and channel. Rows are longer than their pixels.
template <class T>
std::unique_ptr<CkImageData> makeFrame(EkImageDataType type, quint32 width, quint32 height, quint32 channels,
                                       quint32 bits,
                                       const std::function<T(quint32, quint32, quint32)>& sample) {
    SkPicBufInfo info = SkPicBufInfo::of(width, height, channels, type, bits);
    info.lineSize += 24;
    auto frame = makeFrame(info);
    SkPicBuf& picture = frame->picBuf();
    if (picture.data == nullptr) {
        return nullptr;
    }
    for (quint32 y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<T*>(picture.row(y));
        for (quint32 x = 0; x < width; ++x) {
            for (quint32 c = 0; c < channels; ++c) {
                row[x * channels + c] = sample(x, y, c);
            }
        }
    }
    return frame;
}
