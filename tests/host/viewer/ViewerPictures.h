#pragma once

#include "host/viewer/picture/CkImageView.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <functional>
#include <memory>

/// A frame whose samples come from a function of column, row and channel. Rows are longer than their pixels.
template <class T>
std::unique_ptr<CkImageData> makeFrame(EkImageDataType type, quint32 width, quint32 height, quint32 channels,
                                       quint32 bits,
                                       const std::function<T(quint32, quint32, quint32)>& sample) {
    SkPicBuf picture;
    const quint32 packed = width * channels * quint32(sizeof(T));
    if (!CkPicBufAPI::AllocPicBufFromHeap(picture, width, height, channels, type, 0, packed + 24, bits,
                                          EkDataStorageFormat::Interleaved, EkColorFilterArray::None, false,
                                          false, 0)) {
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
    auto frame = std::make_unique<CkImageData>();
    frame->setPicBuf(picture);
    return frame;
}

/// A picture view that tests hand frames to.
class CkFedImageView : public CkImageView {
public:
    CkFedImageView() : CkImageView(nullptr) {}
    void feed(std::unique_ptr<CkImageData> frame) { showFrame(std::move(frame)); }
};
