#include "recording/CkTiffPage.h"

#include "recording/CkRecordingWriter.h"
#include "recording/CkTiffFile.h"
#include "zuCore/CkPicBufAPI.h"

#include <QCoreApplication>

#include <tiffio.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

// Deflate packs a thousand bytes into one at best, LZW and the others less.
constexpr quint64 maximumExpansion = 2048;

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

size_t rowBytes(const SkPicBufInfo& info) {
    return size_t(info.width) * info.channels * sampleBytes(info.dataType);
}

} // namespace

/// What libtiff reads: the file, with a header that makes this page the first one.
struct CkTiffPage::SkClient {
    explicit SkClient(const CkTiffFile& tiff, quint64 offset) : file(tiff) {
        headerBytes = file.headerFor(offset, header);
        TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
        if (options == nullptr) {
            return;
        }
        TIFFOpenOptionsSetMaxSingleMemAlloc(options, tmsize_t(CkRecordingWriter::MaximumPictureBytes));
        TIFFOpenOptionsSetErrorHandlerExtR(options, onError, this);
        TIFFOpenOptionsSetWarningHandlerExtR(options, onWarning, this);
        // No mapping (files may shrink) and strips as they are.
        tif = TIFFClientOpenExt("page", "rmc", this, onRead, onWrite, onSeek, onClose, onSize, onMap, onUnmap,
                                options);
        TIFFOpenOptionsFree(options);
    }
    ~SkClient() {
        if (tif != nullptr) {
            TIFFClose(tif);
        }
    }
    SkClient(const SkClient&) = delete;
    SkClient& operator=(const SkClient&) = delete;

    static SkClient& self(thandle_t handle) { return *static_cast<SkClient*>(handle); }
    static tmsize_t onRead(thandle_t handle, void* bytes, tmsize_t count) {
        SkClient& client = self(handle);
        if (count <= 0) {
            return 0;
        }
        auto* target = static_cast<quint8*>(bytes);
        auto wanted = quint64(count);
        tmsize_t done = 0;
        if (client.position < client.headerBytes) {
            const quint64 part = std::min(wanted, client.headerBytes - client.position);
            std::memcpy(target, client.header + client.position, size_t(part));
            client.position += part;
            target += part;
            wanted -= part;
            done = tmsize_t(part);
        }
        if (wanted > 0) {
            const qint64 got = client.file.readAt(target, wanted, client.position);
            if (got < 0) {
                return -1;
            }
            client.position += quint64(got);
            done += tmsize_t(got);
        }
        return done;
    }
    static tmsize_t onWrite(thandle_t, void*, tmsize_t) { return -1; }
    static toff_t onSeek(thandle_t handle, toff_t offset, int whence) {
        SkClient& client = self(handle);
        const quint64 base = whence == SEEK_CUR   ? client.position
                             : whence == SEEK_END ? client.file.byteCount()
                                                  : 0;
        client.position = base + offset;
        return client.position;
    }
    static int onClose(thandle_t) { return 0; }
    static toff_t onSize(thandle_t handle) { return self(handle).file.byteCount(); }
    static int onMap(thandle_t, void**, toff_t*) { return 0; }
    static void onUnmap(thandle_t, void*, toff_t) {}
    static int onError(TIFF*, void* user, const char*, const char* format, va_list arguments) {
        // The first one is the cause, the others follow from it.
        QString& error = static_cast<SkClient*>(user)->error;
        if (error.isEmpty()) {
            char line[256];
            std::vsnprintf(line, sizeof(line), format, arguments);
            error = QString::fromLatin1(line);
        }
        return 1;
    }
    static int onWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    const CkTiffFile& file;
    quint8 header[16] = {};
    quint64 headerBytes = 0;
    quint64 position = 0;
    TIFF* tif = nullptr;
    QString error;
};

CkTiffPage::CkTiffPage(const CkTiffFile& file, qint64 iPage)
    : m_client(std::make_unique<SkClient>(file, file.pageOffsets()[size_t(iPage)])), m_iPage(iPage) {}

CkTiffPage::~CkTiffPage() = default;

QString CkTiffPage::reason(const QString& sFallback) const {
    return m_client->error.isEmpty() ? sFallback : m_client->error;
}

bool CkTiffPage::describe(SkFrameDescription& description, QString& sReason) {
    if (m_client->tif == nullptr) {
        sReason = reason(Texts::tr("The page's directory cannot be read."));
        return false;
    }
    description = SkFrameDescription();
    if (!checkFormat(description, sReason)) {
        return false;
    }
    char* words = nullptr;
    const bool hasText =
        TIFFGetField(m_client->tif, TIFFTAG_IMAGEDESCRIPTION, &words) == 1 && words != nullptr;
    if (!hasText || !description.fromText(QByteArray(words))) {
        description.additionalData.frameNumber = quint64(m_iPage);
        description.metadata.frameNumber = quint64(m_iPage);
        uint16_t photometric = 0;
        TIFFGetField(m_client->tif, TIFFTAG_PHOTOMETRIC, &photometric);
        m_bForeignRgb = photometric == PHOTOMETRIC_RGB && description.info.channels >= 3;
    }
    return true;
}

bool CkTiffPage::checkFormat(SkFrameDescription& description, QString& sReason) {
    TIFF* const tif = m_client->tif;
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
    info.width = width;
    info.height = height;
    info.channels = samples;
    info.dataType = sampleType(bits, format);
    info.bitsPerChannel = bits;
    info.storageFormat = EkDataStorageFormat::Interleaved;
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
    const quint64 limit =
        std::min(CkRecordingWriter::MaximumPictureBytes, m_client->file.byteCount() * maximumExpansion);
    if (row > limit || row * height > limit) {
        sReason =
            Texts::tr("The page is said to have %1 x %2 pixels, more than fit into this file or into 1 GiB.")
                .arg(width)
                .arg(height);
        return false;
    }
    info.lineSize = quint32(row);
    return true;
}

bool CkTiffPage::readPart(quint32 uiPart, void* pBytes, qint64 iBytes, bool& bSome) {
    TIFF* const tif = m_client->tif;
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
    // Plain samples can be shown as far as the file goes.
    const qint64 plain = m_client->file.readAt(pBytes, quint64(iBytes), offset);
    bSome = bSome || plain > 0;
    return false;
}

CkTiffPage::EkResult CkTiffPage::readSamples(SkPicBuf& picBuf, QString& sReason) {
    m_client->error.clear();
    const EkResult result = TIFFIsTiled(m_client->tif) != 0 ? readTiles(picBuf) : readStrips(picBuf);
    if (result != EkResult::Complete) {
        sReason = reason(Texts::tr("The samples cannot be read."));
    }
    if (m_bForeignRgb) {
        // Colour pictures of the house come as blue, green, red.
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

/// A strip or tile: which samples it holds and where they go.
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

CkTiffPage::EkResult CkTiffPage::readStrips(SkPicBuf& picBuf) {
    TIFF* const tif = m_client->tif;
    uint16_t planar = PLANARCONFIG_CONTIG;
    uint32_t rowsPerStrip = 0;
    TIFFGetFieldDefaulted(tif, TIFFTAG_PLANARCONFIG, &planar);
    TIFFGetFieldDefaulted(tif, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    const bool separate = planar == PLANARCONFIG_SEPARATE && picBuf.channels > 1;
    const quint32 rows = std::clamp<quint32>(rowsPerStrip, 1, picBuf.height);
    const quint32 planes = separate ? picBuf.channels : 1;
    const size_t stripRow = rowBytes(picBuf) / planes;
    if (TIFFScanlineSize64(tif) != stripRow) {
        return EkResult::Failed;
    }
    std::vector<quint8> buffer(separate ? stripRow * rows : 0);
    bool whole = true;
    bool some = false;
    quint32 strip = 0;
    for (quint32 plane = 0; plane < planes; ++plane) {
        for (quint32 y = 0; y < picBuf.height; y += std::min(rows, picBuf.height - y), ++strip) {
            const quint32 count = std::min(rows, picBuf.height - y);
            const auto bytes = qint64(stripRow) * count;
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

CkTiffPage::EkResult CkTiffPage::readTiles(SkPicBuf& picBuf) {
    TIFF* const tif = m_client->tif;
    uint16_t planar = PLANARCONFIG_CONTIG;
    uint32_t width = 0;
    uint32_t height = 0;
    TIFFGetFieldDefaulted(tif, TIFFTAG_PLANARCONFIG, &planar);
    TIFFGetField(tif, TIFFTAG_TILEWIDTH, &width);
    TIFFGetField(tif, TIFFTAG_TILELENGTH, &height);
    const bool separate = planar == PLANARCONFIG_SEPARATE && picBuf.channels > 1;
    const quint32 planes = separate ? picBuf.channels : 1;
    const quint32 channels = separate ? 1 : picBuf.channels;
    const quint64 tileRow = quint64(width) * (channels * sampleBytes(picBuf.dataType));
    const quint64 limit = CkRecordingWriter::MaximumPictureBytes;
    if (tileRow == 0 || height == 0 || tileRow > limit || tileRow * height > limit ||
        TIFFTileSize64(tif) != tileRow * height) {
        return EkResult::Failed;
    }
    std::vector<quint8> buffer(size_t(tileRow * height));
    bool whole = true;
    bool some = false;
    quint32 tile = 0;
    for (quint32 plane = 0; plane < planes; ++plane) {
        for (quint64 y = 0; y < picBuf.height; y += height) {
            for (quint64 x = 0; x < picBuf.width; x += width, ++tile) {
                std::fill(buffer.begin(), buffer.end(), quint8(0));
                whole = readPart(tile, buffer.data(), qint64(buffer.size()), some) && whole;
                SkPart{quint32(x), quint32(y), width, height, plane, channels}.place(buffer.data(), picBuf);
            }
        }
    }
    return whole ? EkResult::Complete : some ? EkResult::Partial : EkResult::Failed;
}
