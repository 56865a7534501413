#pragma once

#include <QByteArray>

/// The size and samples of a picture to be encoded.
struct SkToFPngFormat {
    quint32 width = 0;  ///< pixels
    quint32 height = 0; ///< pixels
    int bits = 8;       ///< of a sample, 8 or 16
    int channels = 1;   ///< 1: grey; 3: red, green, blue
};

/// Encodes a PNG picture. samples: packed rows, 16-bit samples in native byte order. Empty when the format is
/// not supported, when samples has another size, or when memory runs out.
QByteArray encodePng(const SkToFPngFormat& format, const QByteArray& samples);
