#include "host/recording/CkTiffPage.h"

#include "host/recording/CkRecordingWriter.h"
#include "host/recording/CkTiffClient.h"
#include "host/recording/CkTiffFile.h"
#include "host/recording/SkTiffParts.h"
#include "zuCore/CkPicBufAPI.h"

#include <QCoreApplication>

#include <tiffio.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <vector>

namespace {

// Largest row alignment that is restored from a recording.
constexpr quint32 kMaximumPadding = 4096;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkRecordingReader)
};

EkImageDataType sampleType(quint16 bits, quint16 format) {
    const bool isSigned = format == SAMPLEFORMAT_INT;
    const bool isFloat = format == SAMPLEFORMAT_IEEEFP;
    switch (bits) {
    case 8:
        return isFloat ? EkImageDataType::Unknown : isSigned ? EkImageDataType::Int8 : EkImageDataType::UInt8;
    case 16:
        return isFloat    ? EkImageDataType::Unknown
               : isSigned ? EkImageDataType::Int16
                          : EkImageDataType::UInt16;
    case 32:
        return isFloat    ? EkImageDataType::Float32
               : isSigned ? EkImageDataType::Int32
                          : EkImageDataType::UInt32;
    case 64:
        return isFloat    ? EkImageDataType::Float64
               : isSigned ? EkImageDataType::Int64
                          : EkImageDataType::UInt64;
    default:
        return EkImageDataType::Unknown;
    }
}

QString tooLarge(const SkPicBufInfo& info) {
    return Texts::tr("The page declares %1 x %2 pixels, more than fit into this file or into 1 GiB.")
        .arg(info.width)
        .arg(info.height);
}

} // namespace

CkTiffPage::CkTiffPage(const CkTiffFile& file, qint64 iPage, const SkReadLimits& limits)
    : m_client(std::make_unique<CkTiffClient>(file, file.pageOffsets()[size_t(iPage)])), m_limits(limits),
      m_page(iPage) {}

CkTiffPage::~CkTiffPage() = default;

QString CkTiffPage::reason(const QString& sFallback) const {
    return m_client->error().isEmpty() ? sFallback : m_client->error();
}

bool CkTiffPage::describe(SkFrameDescription& description, QString& sReason) {
    if (m_client->tif() == nullptr) {
        sReason = reason(Texts::tr("The page's directory cannot be read."));
        return false;
    }
    description = SkFrameDescription();
    if (!checkFormat(description, sReason)) {
        return false;
    }
    bool ours = false;
    if (!readText(description, ours, sReason)) {
        return false;
    }
    if (!ours) {
        description.additionalData.frameNumber = quint64(m_page);
        description.metadata.frameNumber = quint64(m_page);
        uint16_t photometric = 0;
        TIFFGetField(m_client->tif(), TIFFTAG_PHOTOMETRIC, &photometric);
        m_foreignRgb = photometric == PHOTOMETRIC_RGB && description.info.channels >= 3;
    }
    return true;
}

bool CkTiffPage::readText(SkFrameDescription& description, bool& bOurs, QString& sReason) {
    char* text = nullptr;
    if (TIFFGetField(m_client->tif(), TIFFTAG_IMAGEDESCRIPTION, &text) != 1 || text == nullptr) {
        return true;
    }
    while (std::isspace(quint8(*text)) != 0) {
        ++text;
    }
    // Other programs may store long texts of any kind here.
    if (*text != '{') {
        return true;
    }
    const auto length = qint64(std::strlen(text));
    if (length > SkReadLimits::textBytes(m_page)) {
        sReason =
            Texts::tr("The page's text is longer than %1 MiB.").arg(SkReadLimits::textBytes(m_page) >> 20U);
        return false;
    }
    bOurs = description.fromText(QByteArray::fromRawData(text, qsizetype(length)));
    // With more bits than the sample type has, code that scales samples would shift out of range.
    const quint32 sampleBits = 8 * sampleBytes(description.info.dataType);
    if (description.info.bitsPerChannel == 0 || description.info.bitsPerChannel > sampleBits) {
        description.info.bitsPerChannel = sampleBits;
    }
    // The recorded row padding is only a hint; a large one would waste memory.
    SkPicBufInfo& info = description.info;
    if (info.linePadding > kMaximumPadding ||
        (quint64(info.lineSize) + info.linePadding) * info.height > m_limit) {
        info.linePadding = 0;
    }
    return true;
}

bool CkTiffPage::checkFormat(SkFrameDescription& description, QString& sReason) {
    TIFF* const tif = m_client->tif();
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t bits = 1;
    uint16_t samples = 1;
    uint16_t format = SAMPLEFORMAT_UINT;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(tif, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tif, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tif, TIFFTAG_SAMPLEFORMAT, &format);
    TIFFGetField(tif, TIFFTAG_PHOTOMETRIC, &photometric);
    SkPicBufInfo& info = description.info;
    info = SkPicBufInfo::of(width, height, samples, sampleType(bits, format), bits);
    if (width == 0 || height == 0) {
        sReason = Texts::tr("The page has no pixels.");
        return false;
    }
    if (info.dataType == EkImageDataType::Unknown || samples < 1 || samples > 4 ||
        photometric == PHOTOMETRIC_YCBCR) {
        sReason = Texts::tr("Pages of %1 x %2 bits per pixel in this form are not supported.")
                      .arg(samples)
                      .arg(bits);
        return false;
    }
    const quint64 row = quint64(width) * (samples * sampleBytes(info.dataType));
    if (row > CkRecordingWriter::kMaximumPictureBytes) {
        sReason = tooLarge(info);
        return false;
    }
    return checkSize(info, sReason);
}

bool CkTiffPage::checkSize(const SkPicBufInfo& info, QString& sReason) {
    TIFF* const tif = m_client->tif();
    const SkTiffParts parts = SkTiffParts::of(tif, info);
    if (parts.count == 0 || parts.count > SkReadLimits::kMaximumParts) {
        sReason = Texts::tr("The page declares %1 strips or tiles; 1 to %2 are read.")
                      .arg(parts.count)
                      .arg(SkReadLimits::kMaximumParts);
        return false;
    }
    uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tif, TIFFTAG_COMPRESSION, &compression);
    const quint64 fileBytes = m_client->file().byteCount();
    const quint64 unpacked = parts.unpackedBytes(info);
    if (compression == COMPRESSION_NONE) {
        m_limit = std::min(CkRecordingWriter::kMaximumPictureBytes,
                           SkReadLimits::kSmallPictureBytes + 2 * fileBytes);
        sReason = unpacked > m_limit ? tooLarge(info) : QString();
        return sReason.isEmpty();
    }
    const quint64 stored = parts.storedBytes(tif, fileBytes);
    m_limit =
        std::min(m_limits.unpackedBytes, SkReadLimits::kSmallPictureBytes + stored * m_limits.expansion);
    if (unpacked > m_limit) {
        sReason = Texts::tr("The page declares %1 x %2 pixels in %3 compressed bytes; compressed pages "
                            "are read up to %4 MiB and up to %5 times their compressed bytes.")
                      .arg(info.width)
                      .arg(info.height)
                      .arg(stored)
                      .arg(m_limits.unpackedBytes >> 20U)
                      .arg(m_limits.expansion);
        return false;
    }
    // libtiff loads the compressed bytes of a strip before it decompresses them. No compression method
    // doubles the size.
    if (parts.largestStored(tif, fileBytes) > SkReadLimits::kSmallPictureBytes + 2 * parts.partBytes(info)) {
        sReason = Texts::tr("A strip or tile of the page declares more compressed bytes than samples.");
        return false;
    }
    return true;
}

bool CkTiffPage::readPart(quint32 uiPart, void* pBytes, qint64 iBytes, bool& bSome) {
    TIFF* const tif = m_client->tif();
    const tmsize_t got = TIFFIsTiled(tif) != 0 ? TIFFReadEncodedTile(tif, uiPart, pBytes, iBytes)
                                               : TIFFReadEncodedStrip(tif, uiPart, pBytes, iBytes);
    if (got >= iBytes) {
        bSome = true;
        return true;
    }
    uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(tif, TIFFTAG_COMPRESSION, &compression);
    const quint64 offset = TIFFGetStrileOffset(tif, uiPart);
    if (compression != COMPRESSION_NONE || TIFFIsByteSwapped(tif) != 0 || offset == 0) {
        bSome = bSome || got > 0;
        return false;
    }
    // Of a truncated uncompressed page, the part that exists is shown.
    const qint64 plain = m_client->file().readAt(pBytes, quint64(iBytes), offset);
    bSome = bSome || plain > 0;
    return false;
}

CkTiffPage::EkResult CkTiffPage::readSamples(SkPicBuf& picBuf, QString& sReason) {
    m_client->clearError();
    const SkTiffParts parts = SkTiffParts::of(m_client->tif(), picBuf);
    const EkResult result = parts.tiled ? readTiles(parts, picBuf) : readStrips(parts, picBuf);
    if (result != EkResult::Complete) {
        sReason = reason(Texts::tr("The samples cannot be read."));
    }
    if (m_foreignRgb) {
        // Colour pictures are in the order blue, green, red in memory.
        const size_t bytes = sampleBytes(picBuf.dataType);
        for (quint32 y = 0; y < picBuf.height; ++y) {
            for (quint32 x = 0; x < picBuf.width; ++x) {
                quint8* const pixel = picBuf.row(y) + size_t(x) * picBuf.channels * bytes;
                std::swap_ranges(pixel, pixel + bytes, pixel + 2 * bytes);
            }
        }
    }
    return result;
}

/// A strip or tile: which samples it holds, and their position in the picture.
struct CkTiffPage::SkPart {
    quint32 x;
    quint32 y;
    quint32 width;  ///< pixels of a row in the part
    quint32 height; ///< rows
    quint32 plane;
    quint32 channels; ///< samples per pixel in the part

    void place(const quint8* bytes, SkPicBuf& picBuf) const {
        const size_t sample = sampleBytes(picBuf.dataType);
        const quint32 columns = std::min(width, picBuf.width - x);
        const quint32 rows = std::min(height, picBuf.height - y);
        for (quint32 row = 0; row < rows; ++row) {
            const quint8* source = bytes + size_t(row) * width * channels * sample;
            quint8* target = picBuf.row(y + row) + (size_t(x) * picBuf.channels + plane) * sample;
            if (channels == picBuf.channels) {
                std::memcpy(target, source, size_t(columns) * channels * sample);
                continue;
            }
            for (quint32 column = 0; column < columns; ++column) {
                std::memcpy(target, source, sample);
                source += sample;
                target += picBuf.channels * sample;
            }
        }
    }
};

CkTiffPage::EkResult CkTiffPage::readStrips(const SkTiffParts& parts, SkPicBuf& picBuf) {
    const size_t row = size_t(picBuf.width) * parts.channels * sampleBytes(picBuf.dataType);
    if (TIFFScanlineSize64(m_client->tif()) != row) {
        return EkResult::Failed;
    }
    const bool separate = parts.planes > 1;
    std::vector<quint8> buffer(separate ? row * parts.height : 0);
    bool whole = true;
    bool some = false;
    quint32 strip = 0;
    for (quint32 plane = 0; plane < parts.planes; ++plane) {
        for (quint32 y = 0; y < picBuf.height; y += std::min(parts.height, picBuf.height - y), ++strip) {
            const quint32 count = std::min(parts.height, picBuf.height - y);
            const auto bytes = qint64(row) * count;
            if (!separate) {
                whole = readPart(strip, picBuf.row(y), bytes, some) && whole;
                continue;
            }
            std::fill(buffer.begin(), buffer.end(), quint8(0));
            whole = readPart(strip, buffer.data(), bytes, some) && whole;
            SkPart{0, y, picBuf.width, count, plane, 1}.place(buffer.data(), picBuf);
        }
    }
    return whole ? EkResult::Complete : some ? EkResult::Partial : EkResult::Failed;
}

CkTiffPage::EkResult CkTiffPage::readTiles(const SkTiffParts& parts, SkPicBuf& picBuf) {
    const quint64 bytes = parts.partBytes(picBuf);
    if (TIFFTileSize64(m_client->tif()) != bytes) {
        return EkResult::Failed;
    }
    std::vector<quint8> buffer(size_t{bytes});
    bool whole = true;
    bool some = false;
    quint32 tile = 0;
    for (quint32 plane = 0; plane < parts.planes; ++plane) {
        for (quint64 y = 0; y < picBuf.height; y += parts.height) {
            for (quint64 x = 0; x < picBuf.width; x += parts.width, ++tile) {
                std::fill(buffer.begin(), buffer.end(), quint8(0));
                whole = readPart(tile, buffer.data(), qint64(buffer.size()), some) && whole;
                SkPart{quint32(x), quint32(y), parts.width, parts.height, plane, parts.channels}.place(
                    buffer.data(), picBuf);
            }
        }
    }
    return whole ? EkResult::Complete : some ? EkResult::Partial : EkResult::Failed;
}
