#pragma once

#include "zuCore/SkPicBuf.h"

/// A picture that owns its pixels, with rows padded to 256 bytes and allocated like those of the processing
/// chain.
struct BenchPicture {
    BenchPicture(quint32 width, quint32 height, quint32 channels, EkImageDataType type, quint32 bits);
    BenchPicture(BenchPicture&& other) noexcept;
    BenchPicture& operator=(BenchPicture&&) = delete;
    ~BenchPicture();

    size_t bytes() const { return size_t(pic.lineSize) * pic.height; }

    SkPicBuf pic;
};

/// Two taps, 12-bit (or 8-bit) data of a sloping scene with noise; every fiftieth pixel is dark.
BenchPicture twoTapPicture(quint32 phases, EkImageDataType type);
/// The differences of the same taps.
BenchPicture differencePicture(quint32 phases, EkImageDataType type);
/// Three windows, 832 x 600 per section; each further section is twice as sensitive.
BenchPicture hybridPicture(quint32 sections, EkImageDataType type);
/// Sections of noise over the whole range: neighbouring pixels are independent.
BenchPicture noisePicture(quint32 sections, EkImageDataType type);
