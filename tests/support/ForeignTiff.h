#pragma once

#include <QString>
#include <memory>
#include <tiffio.h>
#include <vector>

/// The choices other programs make for a TIFF with 16-bit samples.
struct ForeignTiffForm {
    const char* mode = "w"; ///< as for TIFFOpen: byte order, size of the offsets
    quint32 channels = 1;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    uint16_t planar = PLANARCONFIG_CONTIG;
    uint16_t compression = COMPRESSION_NONE;
    uint32_t rowsPerStrip = 3; ///< without tiles
    bool tiled = false;        ///< 16 x 16
    int pages = 1;
};

/// Writes sample(page, x, y, channel), including the samples of tiles beyond the picture. False when the file
/// cannot be written.
template <typename Sample>
[[nodiscard]] bool writeForeignTiff(const QString& file, quint32 width, quint32 height,
                                    const ForeignTiffForm& form, const Sample& sample) {
    const std::unique_ptr<TIFF, decltype(&TIFFClose)> opened(TIFFOpen(qPrintable(file), form.mode),
                                                             &TIFFClose);
    TIFF* const tif = opened.get();
    if (tif == nullptr) {
        return false;
    }
    const quint32 planes = form.planar == PLANARCONFIG_SEPARATE ? form.channels : 1;
    const quint32 inside = form.channels / planes;
    const quint32 columns = form.tiled ? 16 : width;
    const quint32 rows = form.tiled ? 16 : 1;
    const auto writeBlock = [&](int page, quint32 x0, quint32 y0, quint32 plane) {
        std::vector<quint16> values;
        for (quint32 y = y0; y < y0 + rows; ++y) {
            for (quint32 x = x0; x < x0 + columns; ++x) {
                for (quint32 c = 0; c < inside; ++c) {
                    values.push_back(sample(page, x, y, plane + c));
                }
            }
        }
        return form.tiled ? TIFFWriteTile(tif, values.data(), x0, y0, 0, uint16_t(plane)) >= 0
                          : TIFFWriteScanline(tif, values.data(), y0, uint16_t(plane)) == 1;
    };
    for (int page = 0; page < form.pages; ++page) {
        TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(tif, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, form.channels);
        TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, form.photometric);
        TIFFSetField(tif, TIFFTAG_PLANARCONFIG, form.planar);
        TIFFSetField(tif, TIFFTAG_COMPRESSION, form.compression);
        if (form.tiled) {
            TIFFSetField(tif, TIFFTAG_TILEWIDTH, columns);
            TIFFSetField(tif, TIFFTAG_TILELENGTH, rows);
        } else {
            TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, form.rowsPerStrip);
        }
        for (quint32 plane = 0; plane < planes; ++plane) {
            for (quint32 y = 0; y < height; y += rows) {
                for (quint32 x = 0; x < width; x += columns) {
                    if (!writeBlock(page, x, y, plane)) {
                        return false;
                    }
                }
            }
        }
        if (TIFFWriteDirectory(tif) != 1) {
            return false;
        }
    }
    return true;
}
