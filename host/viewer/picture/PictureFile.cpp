#include "host/viewer/picture/PictureFile.h"

#include "host/recording/SkFrameDescription.h"
#include "host/viewer/base/SaveFileName.h"
#include "host/viewer/picture/PictureColours.h"
#include "host/viewer/picture/PictureText.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/ToFVocabulary.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QImageWriter>
#include <QSaveFile>

#include <tiffio.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PictureFile)
};

constexpr double kSteps = 65536.0;

// A 32-bit float holds integers of up to 24 bits exactly.
bool fitsFloat32(EkImageDataType type) {
    return type == EkImageDataType::Float32 || (!isFloatType(type) && sampleBytes(type) <= 2);
}

bool isReadable(const SkPicBuf& picBuf, quint32 channel) {
    constexpr quint32 longest = quint32(std::numeric_limits<int>::max());
    return picBuf.data != nullptr && CkPicBufAPI::isValid(picBuf) && channel < picBuf.channels &&
           picBuf.width <= longest && picBuf.height <= longest && picBuf.channels <= 0xffffU;
}

// A file must not carry the extension of another format.
bool hasSuffixOf(const QString& format, const QString& fileName, QString& error) {
    const QString suffix = fileSuffix(fileName);
    if (suffix.isEmpty() || isSameSuffix(suffix, format)) {
        return true;
    }
    error = Texts::tr("%1: this format requires the extension .%2.")
                .arg(QDir::toNativeSeparators(fileName), format);
    return false;
}

bool store(const QByteArray& bytes, const QString& fileName, QString& error) {
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        error = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(fileName), file.errorString());
        return false;
    }
    return true;
}

// libtiff writes into memory: an existing file is only replaced by a complete picture.
tmsize_t readBytes(thandle_t handle, void* bytes, tmsize_t count) {
    return tmsize_t(static_cast<QBuffer*>(handle)->read(static_cast<char*>(bytes), count));
}
tmsize_t writeBytes(thandle_t handle, void* bytes, tmsize_t count) {
    return tmsize_t(static_cast<QBuffer*>(handle)->write(static_cast<const char*>(bytes), count));
}
toff_t seekByte(thandle_t handle, toff_t offset, int whence) {
    auto* buffer = static_cast<QBuffer*>(handle);
    const qint64 base = whence == SEEK_CUR ? buffer->pos() : whence == SEEK_END ? buffer->size() : 0;
    return buffer->seek(base + qint64(offset)) ? toff_t(buffer->pos()) : toff_t(-1);
}
int closeBytes(thandle_t) {
    return 0;
}
toff_t sizeOfBytes(thandle_t handle) {
    return toff_t(static_cast<QBuffer*>(handle)->size());
}

template <class T>
bool writeRows(TIFF* tif, const SkPicBuf& picBuf, quint32 first, quint32 channels) {
    std::vector<T> row(size_t(picBuf.width) * channels);
    for (quint32 y = 0; y < picBuf.height; ++y) {
        for (quint32 x = 0; x < picBuf.width; ++x) {
            for (quint32 c = 0; c < channels; ++c) {
                row[size_t(x) * channels + c] = T(PictureColours::sampleValue(picBuf, x, y, first + c));
            }
        }
        if (TIFFWriteScanline(tif, row.data(), y, 0) != 1) {
            return false;
        }
    }
    return true;
}

void describePage(TIFF* tif, const SkPicBuf& picBuf, quint16 channels, quint16 bits, const QByteArray& text) {
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, picBuf.width);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, picBuf.height);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, channels);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tif, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, picBuf.height);
    TIFFSetField(tif, TIFFTAG_IMAGEDESCRIPTION, text.constData());
    if (channels > 1) {
        const std::vector<quint16> extra(channels - 1U, quint16(EXTRASAMPLE_UNSPECIFIED));
        TIFFSetField(tif, TIFFTAG_EXTRASAMPLES, channels - 1, extra.data());
    }
}

} // namespace

PictureFile::SkScale PictureFile::scale16(const SkPicBufInfo& info, const CkImageMetadata& metadata,
                                          quint32 uiChannel) {
    if (!isFloatType(info.dataType)) {
        return {1.0, isSignedIntegerType(info.dataType) ? kSteps / 2.0 : 0.0};
    }
    const bool phase = metadata.channelNames.value(int(uiChannel)) == ToFChannel::kPhaseShift;
    return {phase ? kSteps / (2.0 * M_PI) : 1000.0, 0.0};
}

QString PictureFile::scaleText(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel) {
    if (isSignedIntegerType(info.dataType)) {
        return Texts::tr("plus 32768");
    }
    if (!isFloatType(info.dataType)) {
        return Texts::tr("unchanged");
    }
    const QString unit = PictureText::channelUnit(info, metadata, uiChannel);
    if (unit == QLatin1String("rad")) {
        return Texts::tr("65536 steps for 2 pi");
    }
    return Texts::tr("1 step = 0.001 %1").arg(unit).trimmed();
}

bool PictureFile::savePng16(const SkPicBuf& picBuf, const CkImageMetadata& metadata, quint32 uiChannel,
                            const QString& sFileName, QString& sError) {
    if (!isReadable(picBuf, uiChannel)) {
        sError = Texts::tr("There is no picture to save.");
        return false;
    }
    if (!hasSuffixOf(QStringLiteral("png"), sFileName, sError)) {
        return false;
    }
    QImage grey(int(picBuf.width), int(picBuf.height), QImage::Format_Grayscale16);
    if (grey.isNull()) {
        sError = Texts::tr("There is not enough memory for the picture.");
        return false;
    }
    const SkScale scale = scale16(picBuf, metadata, uiChannel);
    for (int y = 0; y < grey.height(); ++y) {
        auto* line = reinterpret_cast<quint16*>(grey.scanLine(y));
        for (int x = 0; x < grey.width(); ++x) {
            const double value = PictureColours::sampleValue(picBuf, quint32(x), quint32(y), uiChannel);
            const double stored = std::round(value * scale.factor + scale.offset);
            // A value that is not finite becomes 0, like an invalid distance.
            line[x] = quint16(!std::isfinite(value) ? 0.0
                              : stored >= kSteps    ? kSteps - 1.0
                              : stored > 0.0        ? stored
                                                    : 0.0);
        }
    }
    grey.setText(QStringLiteral("Description"),
                 QStringLiteral("%1: round(value * %2 + %3)")
                     .arg(metadata.channelNames.value(int(uiChannel), QStringLiteral("Value")))
                     .arg(scale.factor, 0, 'g', 17)
                     .arg(scale.offset));
    QBuffer buffer;
    QImageWriter writer(&buffer, "png");
    if (!buffer.open(QIODevice::WriteOnly) || !writer.write(grey)) {
        sError = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(sFileName), writer.errorString());
        return false;
    }
    return store(buffer.data(), sFileName, sError);
}

bool PictureFile::saveFloatTiff(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iChannel,
                                const QString& sFileName, QString& sError) {
    const quint32 first = quint32(std::max(iChannel, 0));
    if (!isReadable(picBuf, first)) {
        sError = Texts::tr("There is no picture to save.");
        return false;
    }
    if (!hasSuffixOf(QStringLiteral("tif"), sFileName, sError)) {
        return false;
    }
    const quint32 channels = iChannel < 0 ? picBuf.channels : 1U;
    const bool narrow = fitsFloat32(picBuf.dataType);
    SkFrameDescription description;
    description.info = picBuf;
    description.info.channels = channels;
    description.info.dataType = narrow ? EkImageDataType::Float32 : EkImageDataType::Float64;
    description.info.bitsPerChannel = narrow ? 32 : 64;
    description.info.lineSize = picBuf.width * channels * (narrow ? 4U : 8U);
    // A picture of floats is not a raw sensor picture.
    description.info.colorFilterArray = EkColorFilterArray::None;
    description.metadata = metadata;
    // The name in the metadata, which is not translated.
    if (channels == 1) {
        description.metadata.channelNames = metadata.channelNames.mid(qsizetype(first), 1);
    }
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    TIFF* const tif = TIFFClientOpen("picture", "wm", &buffer, readBytes, writeBytes, seekByte, closeBytes,
                                     sizeOfBytes, nullptr, nullptr);
    if (tif == nullptr) {
        sError = Texts::tr("There is not enough memory for the picture.");
        return false;
    }
    describePage(tif, picBuf, quint16(channels), narrow ? 32 : 64, description.toText());
    const bool written = (narrow ? writeRows<float>(tif, picBuf, first, channels)
                                 : writeRows<double>(tif, picBuf, first, channels)) &&
                         TIFFWriteDirectory(tif) == 1;
    TIFFClose(tif);
    if (!written) {
        sError = Texts::tr("There is not enough memory for the picture.");
        return false;
    }
    return store(buffer.data(), sFileName, sError);
}
