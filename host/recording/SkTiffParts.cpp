#include "host/recording/SkTiffParts.h"

#include <algorithm>
#include <limits>

namespace {

quint64 product(quint64 a, quint64 b) {
    quint64 result = 0;
    return __builtin_mul_overflow(a, b, &result) ? std::numeric_limits<quint64>::max() : result;
}

quint64 partsAcross(quint64 length, quint64 part) {
    return (length + part - 1) / part;
}

quint64 storedOf(TIFF* tif, quint32 part, quint64 fileBytes) {
    const quint64 offset = TIFFGetStrileOffset(tif, part);
    return offset < fileBytes ? std::min<quint64>(TIFFGetStrileByteCount(tif, part), fileBytes - offset) : 0;
}

} // namespace

SkTiffParts SkTiffParts::of(TIFF* tif, const SkPicBufInfo& info) {
    SkTiffParts parts;
    uint16_t planar = PLANARCONFIG_CONTIG;
    TIFFGetFieldDefaulted(tif, TIFFTAG_PLANARCONFIG, &planar);
    const bool separate = planar == PLANARCONFIG_SEPARATE && info.channels > 1;
    parts.planes = separate ? info.channels : 1;
    parts.channels = separate ? 1 : info.channels;
    parts.tiled = TIFFIsTiled(tif) != 0;
    if (parts.tiled) {
        TIFFGetField(tif, TIFFTAG_TILEWIDTH, &parts.width);
        TIFFGetField(tif, TIFFTAG_TILELENGTH, &parts.height);
    } else {
        uint32_t rows = 0;
        TIFFGetFieldDefaulted(tif, TIFFTAG_ROWSPERSTRIP, &rows);
        parts.width = info.width;
        parts.height = std::clamp<quint32>(rows, 1, std::max(1U, info.height));
    }
    if (parts.width > 0 && parts.height > 0) {
        parts.count = product(partsAcross(info.width, parts.width) * parts.planes,
                              partsAcross(info.height, parts.height));
    }
    return parts;
}

quint64 SkTiffParts::partBytes(const SkPicBufInfo& info) const {
    return product(quint64(width) * channels * sampleBytes(info.dataType), height);
}

quint64 SkTiffParts::unpackedBytes(const SkPicBufInfo& info) const {
    return tiled ? product(partBytes(info), count)
                 : product(quint64(info.width) * info.channels * sampleBytes(info.dataType), info.height);
}

quint64 SkTiffParts::storedBytes(TIFF* tif, quint64 uiFileBytes) const {
    quint64 bytes = 0;
    for (quint32 part = 0; part < count && bytes < uiFileBytes; ++part) {
        bytes += storedOf(tif, part, uiFileBytes);
    }
    // Parts may overlap.
    return std::min(bytes, uiFileBytes);
}

quint64 SkTiffParts::largestStored(TIFF* tif, quint64 uiFileBytes) const {
    quint64 largest = 0;
    for (quint32 part = 0; part < count; ++part) {
        largest = std::max(largest, storedOf(tif, part, uiFileBytes));
    }
    return largest;
}
