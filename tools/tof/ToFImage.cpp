#include "host/recording/CkRecordingWriter.h"
#include "tools/tof/CkToFArguments.h"
#include "tools/tof/CkToFInput.h"
#include "tools/tof/CkToFProgress.h"
#include "tools/tof/ToFCommands.h"
#include "tools/tof/ToFPng.h"
#include "tools/tof/base/ToFText.h"

#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"
#include "zuCore/CkPicture.h"
#include "zuCore/SampleVisitor.h"
#include "zuCore/ToFVocabulary.h"

#include <QSaveFile>

#include <cmath>
#include <limits>

namespace {

// A float, a BGRA colour, and the samples of the PNG in the copies up to the encoded file.
constexpr quint64 kBytesPerPngPixel = 24;

double sampleOf(const SkPicBuf& picBuf, quint32 x, quint32 y, quint32 channel) {
    const bool isWord = picBuf.dataType == EkImageDataType::Other16;
    const quint8* const row = picBuf.row(y);
    const size_t index = size_t(x) * picBuf.channels + channel;
    double value = row[index]; // unknown types are read as bytes
    visitSamples(isWord ? EkImageDataType::UInt16 : picBuf.dataType, [&](auto zero) {
        value = double(loadSample<decltype(zero)>(row, index));
        return true;
    });
    return value;
}

struct SkImageOptions {
    qint64 frame = 0;
    QString format; ///< png, png16 or tiff
    qint64 channel = 0;
    int map = 0;
    bool ranged = false;
    float low = 0.0F;
    float high = 1.0F;
};

/// The samples of the channels as float, so that a range is in the units of the samples, whatever their type.
bool toFloat(const SkPicBuf& source, quint32 firstChannel, quint32 channels, CkPicture& target) {
    if (!target.allocate(
            SkPicBufInfo::of(source.width, source.height, channels, EkImageDataType::Float32, 32))) {
        return false;
    }
    for (quint32 y = 0; y < source.height; ++y) {
        auto* const row = reinterpret_cast<float*>(target.picBuf().row(y));
        for (quint32 x = 0; x < source.width; ++x) {
            for (quint32 c = 0; c < channels; ++c) {
                row[size_t(x) * channels + c] = float(sampleOf(source, x, y, firstChannel + c));
            }
        }
    }
    return true;
}

QByteArray colouredPng(const SkPicBuf& picture, const SkImageOptions& options) {
    CkPicture values;
    CkPicture colours;
    if (!toFloat(picture, quint32(options.channel), 1, values) ||
        !colours.allocate(SkPicBufInfo::of(picture.width, picture.height, 4, EkImageDataType::UInt8, 8))) {
        return {};
    }
    SkPicBuf& grey = values.picBuf();
    if (options.ranged) {
        grey.minValue = options.low;
        grey.maxValue = options.high;
    } else {
        CkPicBufAPI::CalcFloatDataMinMax(grey, grey.minValue, grey.maxValue, false);
    }
    CkLut lut(32, 1, false, EkImageDataType::Float32);
    lut.setPseudoColorIndex(options.map);
    if (!lut.allocRgbTable(256 * 4) || !lut.applyToPic(grey, colours.picBuf())) {
        return {};
    }
    QByteArray samples;
    samples.reserve(qsizetype(picture.width) * picture.height * 3);
    for (quint32 y = 0; y < picture.height; ++y) {
        const quint8* const row = colours.picBuf().row(y);
        for (quint32 x = 0; x < picture.width; ++x) {
            samples.append(char(row[4 * x + 2])).append(char(row[4 * x + 1])).append(char(row[4 * x]));
        }
    }
    return encodePng({picture.width, picture.height, 8, 3}, samples);
}

QByteArray measuredPng(const SkPicBuf& picture, const CkImageMetadata& metadata,
                       const SkImageOptions& options) {
    const bool isFloat = isFloatType(picture.dataType);
    const bool isSigned = isSignedIntegerType(picture.dataType);
    const bool isPhase = metadata.channelNames.value(int(options.channel)) == ToFChannel::kPhaseShift;
    const double scale = !isFloat ? 1.0 : isPhase ? 65536.0 / (2.0 * M_PI) : 1000.0;
    const double offset = isSigned ? 32768.0 : 0.0;
    QByteArray samples;
    samples.reserve(qsizetype(picture.width) * picture.height * 2);
    for (quint32 y = 0; y < picture.height; ++y) {
        for (quint32 x = 0; x < picture.width; ++x) {
            const double value =
                std::round(sampleOf(picture, x, y, quint32(options.channel)) * scale + offset);
            // NaN is stored as 0, like an invalid distance.
            const auto stored = quint16(value >= 65535.0 ? 65535.0 : value > 0.0 ? value : 0.0);
            samples.append(reinterpret_cast<const char*>(&stored), sizeof(stored));
        }
    }
    return encodePng({picture.width, picture.height, 16, 1}, samples);
}

int saveTiff(const QString& file, const CkImageData& data) {
    CkPicture values;
    const SkPicBuf& picture = data.picBuf();
    CkRecordingWriter writer;
    if (!toFloat(picture, 0, picture.channels, values)) {
        ToFConsole::error(QStringLiteral("There is not enough memory."));
        return ToFOutput;
    }
    values.picBuf().copyPicAdditionalData(picture);
    if (!writer.open(file, {{}, {}, tofSoftware()}) || !writer.write(values.picBuf(), data.metadata()) ||
        !writer.close()) {
        ToFConsole::error(writer.errorMessage());
        return ToFOutput;
    }
    return ToFSuccess;
}

int savePng(const QString& name, const QByteArray& png) {
    QSaveFile file(name);
    if (png.isEmpty() || !file.open(QIODevice::WriteOnly) || file.write(png) != png.size() ||
        !file.commit()) {
        ToFConsole::error(QStringLiteral("\"%1\" cannot be written (%2).").arg(name, file.errorString()));
        return ToFOutput;
    }
    return ToFSuccess;
}

bool readMap(const QString& name, int& map) {
    const QStringList names = CkLut::pseudoColorNames();
    for (int i = 0; i < names.size(); ++i) {
        if (names[i].compare(name, Qt::CaseInsensitive) == 0) {
            map = i;
            return true;
        }
    }
    ToFConsole::error(
        QStringLiteral("--map expects one of %1, not \"%2\".").arg(names.join(QStringLiteral(", ")), name));
    return false;
}

/// Sets the format from the file name when none was requested. False, with an error message, when the
/// requested format and the file name do not match.
bool readFormat(bool requested, const QString& name, QString& format) {
    const QString ending = tofSuffix(name);
    const bool asTiff = ending == QLatin1String("tif") || ending == QLatin1String("tiff");
    if (!asTiff && !ending.isEmpty() && ending != QLatin1String("png")) {
        ToFConsole::error(QStringLiteral("\"%1\": a picture is written as .png, .tif or .tiff, not as .%2.")
                              .arg(name, ending));
        return false;
    }
    if (!requested) {
        format = asTiff ? QStringLiteral("tiff") : QStringLiteral("png");
        return true;
    }
    const QStringList formats{QStringLiteral("png"), QStringLiteral("png16"), QStringLiteral("tiff")};
    if (!formats.contains(format)) {
        ToFConsole::error(QStringLiteral("--format expects png, png16 or tiff, not \"%1\".").arg(format));
        return false;
    }
    const bool tiff = format == QLatin1String("tiff");
    if (!ending.isEmpty() && tiff != asTiff) {
        ToFConsole::error(
            QStringLiteral("\"%1\" does not match --format %2, whose files end in %3.")
                .arg(name, format, tiff ? QStringLiteral(".tif or .tiff") : QStringLiteral(".png")));
        return false;
    }
    return true;
}

/// The error text when a frame needs too much memory; empty when it does not, or when its size is unknown.
QString tooMuchMemory(const CkToFInput& input, qint64 frame, bool tiff) {
    SkFrameDescription description;
    if (!input.reader().describe(frame, description, nullptr)) {
        return {};
    }
    const SkPicBufInfo& info = description.info;
    SkToFGroup group{.first = frame};
    group.add(description);
    // The frame as stored and as read, and the intermediate pictures on the way to the file.
    const quint64 pixelBytes = tiff ? 8ULL * info.channels : kBytesPerPngPixel;
    return input.tooMuchMemory(group, 2 * group.bytes + pixelBytes * group.pixels);
}

void addOptions(CkToFArguments& options) {
    options.addValue(QStringLiteral("frame"), QStringLiteral("N"),
                     QStringLiteral("Page of the recording, counted from 0; 0 by default."));
    options.addValue(
        QStringLiteral("format"), QStringLiteral("FORMAT"),
        QStringLiteral(
            "png: through a colour map; the default, unless PICTURE ends in .tif or .tiff. png16: as "
            "measured; whole numbers unchanged (signed "
            "ones plus 32768), metres as millimetres, a phase shift with 65536 for a full turn; values "
            "outside are clipped. tiff: as measured, all channels as 32-bit float."));
    options.addValue(QStringLiteral("channel"), QStringLiteral("C"),
                     QStringLiteral("Channel for PNG, counted from 0; 0 by default."));
    options.addValue(
        QStringLiteral("map"), QStringLiteral("NAME"),
        QStringLiteral("Colour map: %1.").arg(CkLut::pseudoColorNames().join(QStringLiteral(", "))));
    options.addValue(
        QStringLiteral("range"), QStringLiteral("LOW,HIGH"),
        QStringLiteral("Values at the ends of the colour map; those of the picture by default."));
    options.addArgument(QStringLiteral("RECORDING"), QStringLiteral("File to read."));
    options.addArgument(QStringLiteral("PICTURE"), QStringLiteral("File to write."));
    SkToFLimits::addOptions(options);
}

/// Reads and checks the options of the command. False, with a message, when one is wrong.
bool readOptions(const CkToFArguments& options, SkImageOptions& image) {
    image.ranged = options.has(QStringLiteral("range"));
    image.format = options.value(QStringLiteral("format"));
    if (!readFormat(options.has(QStringLiteral("format")), options.argument(1), image.format)) {
        return false;
    }
    if (!options.readNumber(QStringLiteral("frame"), 0, image.frame) ||
        !options.readNumber(QStringLiteral("channel"), 0, image.channel) ||
        !options.readPair(QStringLiteral("range"), image.low, image.high) ||
        (options.has(QStringLiteral("map")) && !readMap(options.value(QStringLiteral("map")), image.map))) {
        return false;
    }
    if (image.ranged && !(image.low < image.high)) {
        ToFConsole::error(QStringLiteral("--range expects the lower value first, not \"%1\".")
                              .arg(options.value(QStringLiteral("range"))));
        return false;
    }
    return true;
}

/// Reads the frame and writes the picture. Returns the exit code.
int writeImage(CkToFInput& input, const QString& name, const SkImageOptions& image) {
    CkToFProgress progress(QStringLiteral("Reading"));
    QString error;
    const std::unique_ptr<CkImageData> data = input.reader().read(image.frame, &error);
    if (!error.isEmpty()) {
        input.reportError(error);
    }
    if (data == nullptr) {
        return ToFInput;
    }
    if (image.channel >= data->picBuf().channels) {
        ToFConsole::error(QStringLiteral("There is no channel %1; the picture has %2, counted from 0.")
                              .arg(image.channel)
                              .arg(data->picBuf().channels));
        return ToFNotApplicable;
    }
    int code = ToFSuccess;
    if (image.format == QLatin1String("tiff")) {
        code = saveTiff(name, *data);
    } else {
        code = savePng(name, image.format == QLatin1String("png16")
                                 ? measuredPng(data->picBuf(), data->metadata(), image)
                                 : colouredPng(data->picBuf(), image));
    }
    return code != ToFSuccess ? code : input.exitCode();
}

} // namespace

int tofImage(const QStringList& arguments) {
    CkToFArguments options(QStringLiteral("image [options] RECORDING PICTURE"),
                           QStringLiteral("Writes a frame as a picture."),
                           {QStringLiteral("tof image --map Jet --range 0,6.2832 phase.tif phase.png"),
                            QStringLiteral("tof image --format png16 --frame 10 depth.tif depth.png"),
                            QStringLiteral("tof image --format tiff --frame 10 depth.tif one.tif")});
    addOptions(options);
    if (const auto code = options.parse(arguments)) {
        return *code;
    }
    SkToFLimits limits;
    SkImageOptions image;
    if (!limits.read(options) || !readOptions(options, image)) {
        return ToFUsage;
    }
    CkToFInput input(limits);
    if (!input.open(options.argument(0))) {
        return ToFInput;
    }
    const CkRecordingReader& reader = input.reader();
    if (input.isInput(options.argument(1))) {
        return ToFUsage;
    }
    if (image.frame >= reader.frameCount()) {
        ToFConsole::error(QStringLiteral("There is no frame %1; \"%2\" has %3, counted from 0.")
                              .arg(image.frame)
                              .arg(reader.fileName())
                              .arg(reader.frameCount()));
        return ToFNotApplicable;
    }
    const QString tooMuch = tooMuchMemory(input, image.frame, image.format == QLatin1String("tiff"));
    if (!tooMuch.isEmpty()) {
        ToFConsole::error(tooMuch);
        return ToFNotApplicable;
    }
    return writeImage(input, options.argument(1), image);
}
