#pragma once

#include "tests/support/HostileTiff.h"

#include "host/recording/SkFrameDescription.h"

/// Small files that claim to be large. Each function writes one; false when the file could not be written.
namespace HostileFiles {

/// Uncompressed pages whose samples are mostly missing from the file.
[[nodiscard]] inline bool claimedPages(const QString& file, quint32 width, quint32 height, int pages,
                                       qsizetype bytes) {
    HostileTiff tiff(file);
    const quint32 strip = tiff.append(QByteArray(bytes, '\1'));
    for (int i = 0; i < pages; ++i) {
        tiff.addPage(HostileTiff::page(width, height, 16, COMPRESSION_NONE, strip, width * height * 2));
    }
    return tiff.close();
}

/// Pages of deflated zeros, each with a strip of its own.
[[nodiscard]] inline bool deflatedPages(const QString& file, quint32 width, quint32 height, quint32 bits,
                                        int pages) {
    HostileTiff tiff(file);
    const QByteArray stream = HostileTiff::deflatedZeros(qsizetype(width) * height * bits / 8);
    for (int i = 0; i < pages; ++i) {
        const quint32 strip = tiff.append(stream);
        tiff.addPage(
            HostileTiff::page(width, height, bits, COMPRESSION_ADOBE_DEFLATE, strip, quint32(stream.size())));
    }
    return tiff.close();
}

/// Pages of deflated zeros that all share one strip.
[[nodiscard]] inline bool pagesOfOneStrip(const QString& file, quint32 width, quint32 height, int pages) {
    HostileTiff tiff(file);
    const QByteArray stream = HostileTiff::deflatedZeros(qsizetype(width) * height * 2);
    const quint32 strip = tiff.append(stream);
    for (int i = 0; i < pages; ++i) {
        tiff.addPage(
            HostileTiff::page(width, height, 16, COMPRESSION_ADOBE_DEFLATE, strip, quint32(stream.size())));
    }
    return tiff.close();
}

/// Pages with the text of a recording, made by describe for each page, that share one uncompressed strip.
template <typename Describe>
[[nodiscard]] bool describedPages(const QString& file, quint32 width, quint32 height, quint32 channels,
                                  int pages, const Describe& describe) {
    HostileTiff tiff(file);
    const quint32 strip = tiff.append(QByteArray(qsizetype(width) * height * channels * 2, '\1'));
    for (int i = 0; i < pages; ++i) {
        const QByteArray text = describe(i);
        const auto description = tiff.text(TIFFTAG_IMAGEDESCRIPTION, text);
        // Up to two numbers of 16 bits lie in the entry itself.
        auto entries =
            HostileTiff::page(width, height, 16, COMPRESSION_NONE, strip, width * height * channels * 2,
                              {description, {TIFFTAG_SAMPLESPERPIXEL, TIFF_SHORT, 1, channels}});
        if (channels == 2) {
            for (HostileTiff::SkEntry& entry : entries) {
                if (entry.tag == TIFFTAG_BITSPERSAMPLE) {
                    entry.count = 2;
                    entry.value = 16U << 16U | 16U;
                }
            }
        }
        tiff.addPage(entries);
    }
    return tiff.close();
}

/// A raw ToF page as in a recording, modified by change.
template <typename Change>
QByteArray tofText(const Change& change) {
    SkFrameDescription description;
    description.info.bitsPerChannel = 12;
    description.metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
    description.metadata.phasesCount = 1;
    change(description);
    return description.toText();
}

/// Directories of one meaningless entry.
[[nodiscard]] inline bool emptyDirectories(const QString& file, int pages) {
    HostileTiff tiff(file);
    for (int i = 0; i < pages; ++i) {
        tiff.addPage({{TIFFTAG_SUBFILETYPE, TIFF_LONG, 1, 0}});
    }
    return tiff.close();
}

/// Valid pages of one pixel each.
[[nodiscard]] inline bool tinyPages(const QString& file, int pages) {
    HostileTiff tiff(file);
    const quint32 strip = tiff.append(QByteArray(2, '\1'));
    for (int i = 0; i < pages; ++i) {
        tiff.addPage(HostileTiff::page(1, 1, 16, COMPRESSION_NONE, strip, 2));
    }
    return tiff.close();
}

/// One complete uncompressed page, in a hole of a sparse file.
[[nodiscard]] inline bool hugePlainPage(const QString& file, quint32 width, quint32 height, quint32 bits) {
    HostileTiff tiff(file);
    const quint32 bytes = width * height * (bits / 8);
    const quint32 strip = tiff.appendHole(bytes);
    auto entries = HostileTiff::page(width, height, bits, COMPRESSION_NONE, strip, bytes);
    if (bits >= 32) {
        entries.push_back({TIFFTAG_SAMPLEFORMAT, TIFF_SHORT, 1, SAMPLEFORMAT_IEEEFP});
    }
    tiff.addPage(entries);
    return tiff.close();
}

/// A directory whose unknown tags all claim the same large range of bytes.
[[nodiscard]] inline bool wideEntries(const QString& file, int entries, quint32 bytes) {
    HostileTiff tiff(file);
    const quint32 hole = tiff.appendHole(bytes);
    auto page = HostileTiff::page(2, 2, 16, COMPRESSION_NONE, 8, 8);
    for (int i = 0; i < entries; ++i) {
        page.push_back({quint16(50000 + i), TIFF_BYTE, bytes, hole});
    }
    tiff.addPage(page);
    return tiff.close();
}

/// A page whose text fills the file.
[[nodiscard]] inline bool hugeText(const QString& file, const QByteArray& beginning, const QByteArray& unit,
                                   int units, int pages) {
    HostileTiff tiff(file);
    const quint32 at = tiff.append(beginning);
    for (int i = 0; i < units; ++i) {
        tiff.append(unit);
    }
    tiff.append(QByteArray(1, '\0'));
    const quint32 bytes = tiff.size() - at;
    for (int i = 0; i < pages; ++i) {
        tiff.addPage(HostileTiff::page(2, 2, 16, COMPRESSION_NONE, 8, 8,
                                       {{TIFFTAG_IMAGEDESCRIPTION, TIFF_ASCII, bytes, at}}));
    }
    return tiff.close();
}

/// A page one pixel wide with a strip for each row.
[[nodiscard]] inline bool manyStrips(const QString& file, quint32 rows) {
    HostileTiff tiff(file);
    auto page = HostileTiff::page(1, rows, 8, COMPRESSION_ADOBE_DEFLATE, 8, 8);
    for (HostileTiff::SkEntry& entry : page) {
        if (entry.tag == TIFFTAG_ROWSPERSTRIP) {
            entry.value = 1;
        }
    }
    tiff.addPage(page);
    return tiff.close();
}

/// A page of a few pixels in one enormous tile.
[[nodiscard]] inline bool hugeTile(const QString& file, quint32 side) {
    HostileTiff tiff(file);
    const QByteArray stream = HostileTiff::deflatedZeros(1024 * 1024);
    const quint32 at = tiff.append(stream);
    tiff.addPage({
        {TIFFTAG_IMAGEWIDTH, TIFF_LONG, 1, 16},
        {TIFFTAG_IMAGELENGTH, TIFF_LONG, 1, 16},
        {TIFFTAG_BITSPERSAMPLE, TIFF_SHORT, 1, 8},
        {TIFFTAG_COMPRESSION, TIFF_SHORT, 1, COMPRESSION_ADOBE_DEFLATE},
        {TIFFTAG_PHOTOMETRIC, TIFF_SHORT, 1, PHOTOMETRIC_MINISBLACK},
        {TIFFTAG_TILEWIDTH, TIFF_LONG, 1, side},
        {TIFFTAG_TILELENGTH, TIFF_LONG, 1, side},
        {TIFFTAG_TILEOFFSETS, TIFF_LONG, 1, at},
        {TIFFTAG_TILEBYTECOUNTS, TIFF_LONG, 1, quint32(stream.size())},
    });
    return tiff.close();
}

} // namespace HostileFiles
