// Writes the recordings that the fuzzing begins with into the folder that is named.
#include "recording/CkRecordingWriter.h"

#include <QDir>

#include <cstdio>
#include <cstdlib>
#include <tiffio.h>
#include <vector>

namespace {

constexpr quint32 width = 5;
constexpr quint32 height = 3;

void require(bool done, const QString& file) {
    if (!done) {
        std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
        std::exit(1);
    }
}

SkFrameDescription describe(quint32 channels, EkImageDataType type, quint64 number) {
    SkFrameDescription made;
    made.info.width = width;
    made.info.height = height;
    made.info.channels = channels;
    made.info.dataType = type;
    made.info.bitsPerChannel = sampleBytes(type) * 8;
    made.info.lineSize = width * channels * sampleBytes(type);
    made.additionalData.frameNumber = number;
    made.metadata.frameNumber = number;
    made.metadata.channelNames = QStringList{QStringLiteral("A"), QStringLiteral("\u00e4\"")};
    made.metadata.modulationFrequency = 20.0F;
    made.metadata.phasesCount = 4;
    return made;
}

void writeOurs(const QString& file, quint32 channels, EkImageDataType type,
               EkRecordingCompression compression) {
    CkRecordingWriter writer;
    SkRecordingInfo recording;
    recording.chainXml = QStringLiteral("<chain version=\"1\"/>");
    recording.viewSettings.insert(QStringLiteral("zoom"), 2);
    recording.software = QStringLiteral("seed");
    require(writer.open(file, recording, compression), file);
    for (quint64 number = 0; number < 2; ++number) {
        const SkFrameDescription frame = describe(channels, type, number);
        std::vector<quint8> samples(size_t(frame.info.lineSize) * height, quint8(17 * number + 3));
        SkPicBuf picture;
        static_cast<SkPicBufInfo&>(picture) = frame.info;
        picture.data = samples.data();
        require(writer.write(picture, frame.metadata), file);
    }
    require(writer.close(), file);
}

struct Form {
    const char* name;
    const char* mode;
    uint16_t channels;
    uint16_t photometric;
    uint16_t planar;
    uint16_t compression;
    bool tiled;
};

/// As other programs write them.
void writeOther(const QString& file, const Form& form) {
    TIFF* const tif = TIFFOpen(qPrintable(file), form.mode);
    require(tif != nullptr, file);
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, form.channels);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, form.photometric);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, form.planar);
    TIFFSetField(tif, TIFFTAG_COMPRESSION, form.compression);
    if (form.tiled) {
        TIFFSetField(tif, TIFFTAG_TILEWIDTH, 16);
        TIFFSetField(tif, TIFFTAG_TILELENGTH, 16);
    } else {
        TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, 2);
    }
    std::vector<quint16> samples(16 * 16 * 4, 1234);
    const quint32 planes = form.planar == PLANARCONFIG_SEPARATE ? form.channels : 1;
    for (quint32 plane = 0; plane < planes; ++plane) {
        for (quint32 y = 0; y < (form.tiled ? 1 : height); ++y) {
            require(form.tiled ? TIFFWriteTile(tif, samples.data(), 0, y, 0, uint16_t(plane)) >= 0
                               : TIFFWriteScanline(tif, samples.data(), y, uint16_t(plane)) == 1,
                    file);
        }
    }
    TIFFClose(tif);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fprintf(stderr, "Usage: recordingSeeds FOLDER\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(arguments[1]));
    writeOurs(folder.filePath(QStringLiteral("raw.tif")), 2, EkImageDataType::UInt16,
              EkRecordingCompression::None);
    writeOurs(folder.filePath(QStringLiteral("depth.tif")), 1, EkImageDataType::Float32,
              EkRecordingCompression::None);
    writeOurs(folder.filePath(QStringLiteral("packed.tif")), 4, EkImageDataType::UInt8,
              EkRecordingCompression::Deflate);
    const Form forms[] = {
        {"big-endian", "wb", 1, PHOTOMETRIC_MINISBLACK, PLANARCONFIG_CONTIG, COMPRESSION_NONE, false},
        {"rgb", "wl", 3, PHOTOMETRIC_RGB, PLANARCONFIG_CONTIG, COMPRESSION_LZW, false},
        {"planes", "wl", 3, PHOTOMETRIC_MINISBLACK, PLANARCONFIG_SEPARATE, COMPRESSION_PACKBITS, false},
        {"tiles", "wl8", 1, PHOTOMETRIC_MINISBLACK, PLANARCONFIG_CONTIG, COMPRESSION_ADOBE_DEFLATE, true},
        {"tile-planes", "wb8", 2, PHOTOMETRIC_MINISBLACK, PLANARCONFIG_SEPARATE, COMPRESSION_LZW, true},
    };
    for (const Form& form : forms) {
        writeOther(folder.filePath(QString::fromLatin1(form.name) + QStringLiteral(".tif")), form);
    }
    const SkRecordingInfo recording;
    const QByteArray text = describe(2, EkImageDataType::UInt16, 7).toText(&recording);
    QFile page(folder.filePath(QStringLiteral("page.json")));
    require(page.open(QIODevice::WriteOnly) && page.write(text) == text.size(), page.fileName());
    return 0;
}
