#include "host/recording/CkRecordingWriter.h"

#include "host/recording/CkTiffDirectory.h"
#include "host/recording/SkReadLimits.h"
#include "zuCore/CkPicBufAPI.h"

#include <QCoreApplication>
#include <QFile>
#include <QtEndian>

#include <tiff.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "Samples are written in their byte order in memory.");

constexpr quint64 kHeaderBytes = 16;
constexpr quint64 kLinkInHeader = 8;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkRecordingWriter)
};

quint16 sampleFormat(EkImageDataType dataType) {
    if (isFloatType(dataType)) {
        return SAMPLEFORMAT_IEEEFP;
    }
    return isSignedIntegerType(dataType) ? SAMPLEFORMAT_INT : SAMPLEFORMAT_UINT;
}

bool isKnown(EkImageDataType dataType) {
    return dataType >= EkImageDataType::Int8 && dataType <= EkImageDataType::Other16;
}

/// The horizontal predictor: each sample minus its left neighbour, from right to left; wraps around.
template <typename Sample>
void predictRow(quint8* row, size_t samples, size_t channels) {
    for (size_t i = samples; i-- > channels;) {
        Sample here;
        Sample left;
        std::memcpy(&here, row + i * sizeof(Sample), sizeof(Sample));
        std::memcpy(&left, row + (i - channels) * sizeof(Sample), sizeof(Sample));
        here = Sample(here - left);
        std::memcpy(row + i * sizeof(Sample), &here, sizeof(Sample));
    }
}

void predictRow(quint8* row, size_t samples, size_t channels, quint32 bytes) {
    switch (bytes) {
    case 1:
        return predictRow<quint8>(row, samples, channels);
    case 2:
        return predictRow<quint16>(row, samples, channels);
    case 4:
        return predictRow<quint32>(row, samples, channels);
    default:
        return predictRow<quint64>(row, samples, channels);
    }
}

bool isPredicted(EkRecordingCompression compression, EkImageDataType dataType) {
    return compression == EkRecordingCompression::Deflate && !isFloatType(dataType);
}

/// Why the picture cannot be recorded; empty when it can.
QString refusal(const SkPicBuf& picBuf) {
    if (picBuf.data == nullptr || !CkPicBufAPI::isValid(picBuf) || !isKnown(picBuf.dataType) ||
        picBuf.channels > 4) {
        return Texts::tr("A picture of this format cannot be recorded.");
    }
    // Checked factor by factor: the product may overflow.
    const quint64 row = quint64(picBuf.width) * (picBuf.channels * sampleBytes(picBuf.dataType));
    constexpr quint64 kMaximum = CkRecordingWriter::kMaximumPictureBytes;
    if (row > kMaximum || row * picBuf.height > kMaximum) {
        return Texts::tr("The picture is larger than 1 GiB.");
    }
    return {};
}

/// Where the samples of a page are, and how they are stored.
struct SkStrip {
    quint64 offset; ///< in the file
    quint64 bytes;
    EkRecordingCompression compression;
};

/// The directory that follows the samples; pRecording only for the first page of a file.
CkTiffDirectory pageDirectory(const SkPicBufInfo& info, const SkStrip& strip, const QByteArray& text,
                              const SkRecordingInfo* pRecording) {
    const auto channels = quint16(info.channels);
    CkTiffDirectory page(strip.offset + strip.bytes);
    page.addLong(TIFFTAG_IMAGEWIDTH, info.width);
    page.addLong(TIFFTAG_IMAGELENGTH, info.height);
    page.addShort(TIFFTAG_BITSPERSAMPLE, quint16(8 * sampleBytes(info.dataType)), channels);
    page.addShort(TIFFTAG_COMPRESSION, strip.compression == EkRecordingCompression::None
                                           ? COMPRESSION_NONE
                                           : COMPRESSION_ADOBE_DEFLATE);
    page.addShort(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    page.addText(TIFFTAG_IMAGEDESCRIPTION, text);
    page.addLong8(TIFFTAG_STRIPOFFSETS, strip.offset);
    page.addShort(TIFFTAG_SAMPLESPERPIXEL, channels);
    page.addLong(TIFFTAG_ROWSPERSTRIP, info.height);
    page.addLong8(TIFFTAG_STRIPBYTECOUNTS, strip.bytes);
    page.addShort(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    if (pRecording != nullptr) {
        page.addText(TIFFTAG_SOFTWARE, pRecording->software.toLatin1());
    }
    if (isPredicted(strip.compression, info.dataType)) {
        page.addShort(TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    }
    if (channels > 1) {
        page.addShort(TIFFTAG_EXTRASAMPLES, EXTRASAMPLE_UNSPECIFIED, channels - 1U);
    }
    page.addShort(TIFFTAG_SAMPLEFORMAT, sampleFormat(info.dataType), channels);
    return page;
}

} // namespace

CkRecordingWriter::~CkRecordingWriter() {
    close();
}

bool CkRecordingWriter::fail(const QString& sReason) {
    m_error = Texts::tr("\"%1\", page %2: %3").arg(m_fileName, QString::number(m_frames + 1), sReason);
    return false;
}

bool CkRecordingWriter::writeAt(const void* pBytes, size_t uiBytes, quint64 uiOffset) {
    const auto* next = static_cast<const char*>(pBytes);
    while (uiBytes > 0) {
        const ssize_t done = ::pwrite(m_file, next, uiBytes, off_t(uiOffset));
        if (done < 0 && errno == EINTR) {
            continue;
        }
        if (done <= 0) {
            return fail(Texts::tr("Writing failed (%1).")
                            .arg(QString::fromLocal8Bit(std::strerror(done < 0 ? errno : ENOSPC))));
        }
        next += done;
        uiBytes -= size_t(done);
        uiOffset += quint64(done);
    }
    return true;
}

bool CkRecordingWriter::open(const QString& sFileName, const SkRecordingInfo& recording,
                             EkRecordingCompression compression) {
    close();
    m_fileName = sFileName;
    m_recording = recording;
    m_compression = compression;
    m_frames = 0;
    m_error.clear();
    m_file = ::open(QFile::encodeName(sFileName).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (m_file < 0) {
        m_error = Texts::tr("\"%1\" cannot be written (%2).")
                      .arg(sFileName, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    // Little endian, BigTIFF, offsets of 8 bytes, no page yet.
    const quint8 header[kHeaderBytes] = {'I', 'I', 43, 0, 8};
    m_end = kHeaderBytes;
    m_link = kLinkInHeader;
    if (!writeAt(header, sizeof(header), 0)) {
        const QString reason = m_error;
        close();
        m_error = reason;
        return false;
    }
    return true;
}

const quint8* CkRecordingWriter::packedSamples(const SkPicBuf& picBuf, size_t& uiBytes) {
    const size_t row = size_t(picBuf.width) * picBuf.channels * sampleBytes(picBuf.dataType);
    uiBytes = row * picBuf.height;
    if (picBuf.lineSize == row && m_compression == EkRecordingCompression::None) {
        return picBuf.data;
    }
    m_packed.resize(uiBytes);
    for (quint32 y = 0; y < picBuf.height; ++y) {
        std::memcpy(m_packed.data() + y * row, picBuf.row(y), row);
    }
    return m_packed.data();
}

QByteArray CkRecordingWriter::deflated(const SkPicBuf& picBuf, size_t uiBytes) {
    if (isPredicted(m_compression, picBuf.dataType)) {
        const size_t row = uiBytes / picBuf.height;
        for (quint32 y = 0; y < picBuf.height; ++y) {
            predictRow(m_packed.data() + y * row, size_t(picBuf.width) * picBuf.channels, picBuf.channels,
                       sampleBytes(picBuf.dataType));
        }
    }
    // qCompress puts the length before the zlib stream; TIFF stores the stream alone.
    return qCompress(m_packed.data(), qsizetype(uiBytes), 1).mid(4);
}

bool CkRecordingWriter::write(const SkPicBuf& picBuf, const CkImageMetadata& metadata,
                              const QJsonObject& object) {
    if (!isOpen()) {
        return fail(Texts::tr("No file is open."));
    }
    const QString reason = refusal(picBuf);
    if (!reason.isEmpty()) {
        return fail(reason);
    }
    try {
        SkFrameDescription description;
        description.info = picBuf;
        description.additionalData = picBuf.additionalData;
        description.metadata = metadata;
        description.object = object;
        const QByteArray text = description.toText(recordingOfPage());
        const qint64 longest = SkReadLimits::textBytes(m_frames);
        if (text.size() > longest) {
            return fail(
                Texts::tr("The page's text (metadata, chain) is longer than %1 MiB.").arg(longest >> 20U));
        }
        size_t bytes = 0;
        const quint8* samples = packedSamples(picBuf, bytes);
        if (m_compression == EkRecordingCompression::None) {
            return appendPage(picBuf, text, samples, bytes);
        }
        const QByteArray stream = deflated(picBuf, bytes);
        if (stream.isEmpty()) {
            return fail(Texts::tr("There is not enough memory."));
        }
        return appendPage(picBuf, text, stream.constData(), size_t(stream.size()));
    } catch (const std::bad_alloc&) {
        return fail(Texts::tr("There is not enough memory."));
    }
}

bool CkRecordingWriter::appendPage(const SkPicBufInfo& info, const QByteArray& text, const void* pSamples,
                                   size_t uiBytes) {
    const quint64 start = CkTiffDirectory::alignedUp(m_end, 16);
    const quint64 tailOffset = start + uiBytes;
    const CkTiffDirectory::SkBytes tail =
        pageDirectory(info, {start, uiBytes, m_compression}, text, recordingOfPage()).toBytes();
    const quint64 pageOffset = qToLittleEndian(tailOffset + tail.directory);
    // The link is written last: until then, the file ends with the previous page.
    if (!writeAt(pSamples, uiBytes, start) ||
        !writeAt(tail.bytes.constData(), size_t(tail.bytes.size()), tailOffset) ||
        !writeAt(&pageOffset, sizeof(pageOffset), m_link)) {
        // Frees the space of the failed page. If that fails too, the file is merely longer.
        [[maybe_unused]] const int code = ::ftruncate(m_file, off_t(m_end));
        return false;
    }
    m_link = tailOffset + tail.link;
    m_end = tailOffset + quint64(tail.bytes.size());
    ++m_frames;
    return true;
}

bool CkRecordingWriter::close() {
    if (m_file < 0) {
        return true;
    }
    const int code = ::close(m_file);
    m_file = -1;
    m_packed = {};
    if (code != 0) {
        return fail(Texts::tr("Writing failed (%1).").arg(QString::fromLocal8Bit(std::strerror(errno))));
    }
    return true;
}
