// Writes the seed recordings of the fuzz target into the folder given as argument.
#include "host/recording/CkRecordingWriter.h"
#include "tests/support/ForeignTiff.h"
#include "tests/support/HostileFiles.h"

#include <QDir>

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr quint32 kWidth = 5;
constexpr quint32 kHeight = 3;

void require(bool done, const QString& file) {
    if (!done) {
        std::fprintf(stderr, "%s cannot be written\n", qPrintable(file));
        std::exit(1);
    }
}

SkFrameDescription describe(quint32 channels, EkImageDataType type, quint64 number) {
    SkFrameDescription made;
    made.info.width = kWidth;
    made.info.height = kHeight;
    made.info.channels = channels;
    made.info.dataType = type;
    made.info.bitsPerChannel = sampleBytes(type) * 8;
    made.info.lineSize = kWidth * channels * sampleBytes(type);
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
        std::vector<quint8> samples(size_t(frame.info.lineSize) * kHeight, quint8(17 * number + 3));
        SkPicBuf picture;
        static_cast<SkPicBufInfo&>(picture) = frame.info;
        picture.data = samples.data();
        require(writer.write(picture, frame.metadata), file);
    }
    require(writer.close(), file);
}

/// Files that declare more than they contain, small enough for a fuzz corpus.
void writeHostile(const QDir& folder) {
    const auto name = [&folder](const char* shape) {
        return folder.filePath(QStringLiteral("hostile-%1.tif").arg(QLatin1String(shape)));
    };
    require(HostileFiles::claimedPages(name("claimed"), 16384, 32768, 3, 100), name("claimed"));
    require(HostileFiles::claimedPages(name("cut"), 40, 30, 2, 100), name("cut"));
    require(HostileFiles::deflatedPages(name("deflated"), 600, 600, 16, 2), name("deflated"));
    require(HostileFiles::pagesOfOneStrip(name("one-strip"), 40, 30, 8), name("one-strip"));
    require(HostileFiles::emptyDirectories(name("empty"), 40), name("empty"));
    require(HostileFiles::tinyPages(name("tiny"), 20), name("tiny"));
    require(HostileFiles::wideEntries(name("wide"), 20, 1000), name("wide"));
    require(HostileFiles::manyStrips(name("strips"), 1U << 20U), name("strips"));
    require(HostileFiles::hugeTile(name("tile"), 4096), name("tile"));
    require(HostileFiles::hugeText(name("text"), R"({"schema":"zutof.frame","x":[[1])", ",[1]", 100, 2),
            name("text"));
    const auto padded = [](int) {
        return HostileFiles::tofText([](SkFrameDescription& text) { text.info.linePadding = 1U << 31U; });
    };
    require(HostileFiles::describedPages(name("padding"), 5, 3, 2, 2, padded), name("padding"));
    const auto endless = [](int) {
        return HostileFiles::tofText([](SkFrameDescription& text) {
            text.metadata.phaseSequenceLength = std::numeric_limits<qint32>::max();
            text.metadata.phaseSequenceIndex = 1;
        });
    };
    require(HostileFiles::describedPages(name("endless-set"), 5, 3, 2, 2, endless), name("endless-set"));
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
    const std::pair<const char*, ForeignTiffForm> foreign[] = {
        {"big-endian", {.mode = "wb", .rowsPerStrip = 2}},
        {"rgb",
         {.mode = "wl",
          .channels = 3,
          .photometric = PHOTOMETRIC_RGB,
          .compression = COMPRESSION_LZW,
          .rowsPerStrip = 2}},
        {"planes",
         {.mode = "wl",
          .channels = 3,
          .planar = PLANARCONFIG_SEPARATE,
          .compression = COMPRESSION_PACKBITS,
          .rowsPerStrip = 2}},
        {"tiles", {.mode = "wl8", .compression = COMPRESSION_ADOBE_DEFLATE, .tiled = true}},
        {"tile-planes",
         {.mode = "wb8",
          .channels = 2,
          .planar = PLANARCONFIG_SEPARATE,
          .compression = COMPRESSION_LZW,
          .tiled = true}},
    };
    for (const auto& [name, form] : foreign) {
        const QString file = folder.filePath(QString::fromLatin1(name) + QStringLiteral(".tif"));
        require(writeForeignTiff(file, kWidth, kHeight, form,
                                 [](int, quint32, quint32, quint32) { return quint16(1234); }),
                file);
    }
    writeHostile(folder);
    const SkRecordingInfo recording;
    const QByteArray text = describe(2, EkImageDataType::UInt16, 7).toText(&recording);
    QFile page(folder.filePath(QStringLiteral("page.json")));
    require(page.open(QIODevice::WriteOnly) && page.write(text) == text.size(), page.fileName());
    return 0;
}
