#include "tools/tof/CkToFArguments.h"
#include "tools/tof/CkToFInput.h"
#include "tools/tof/ToFCommands.h"
#include "tools/tof/base/ToFText.h"
#include "zuCore/SampleVisitor.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <type_traits>

namespace {

QString typeName(EkImageDataType dataType) {
    const QString name = visitSamples(dataType, [](auto zero) {
        using Sample = decltype(zero);
        const char* const kind = std::is_floating_point_v<Sample> ? "float"
                                 : std::is_signed_v<Sample>       ? "signed"
                                                                  : "unsigned";
        return QStringLiteral("%1 %2 bit").arg(QLatin1String(kind)).arg(8 * sizeof(Sample));
    });
    return name.isEmpty() ? QStringLiteral("unknown") : name;
}

/// The metadata of a frame as an element of the list of frames; null, with an error message, when it cannot
/// be read.
QString frameJson(const CkRecordingReader& reader, qint64 page, CkToFInput& input) {
    SkFrameDescription description;
    QString error;
    if (!reader.describe(page, description, &error)) {
        input.reportError(error);
        return QStringLiteral("null");
    }
    // The metadata of the file, with defaults for TIFF files of other origin.
    return QString::fromUtf8(QJsonDocument::fromJson(description.toText()).toJson()).trimmed();
}

void printJson(const CkRecordingReader& reader, bool bEachFrame, CkToFInput& input) {
    const QString place = QStringLiteral("frames are inserted here");
    const SkRecordingInfo& info = reader.recordingInfo();
    const QJsonObject root{{QStringLiteral("file"), reader.fileName()},
                           {QStringLiteral("bytes"), qint64(reader.byteCount())},
                           {QStringLiteral("frameCount"), reader.frameCount()},
                           {QStringLiteral("software"), info.software},
                           {QStringLiteral("damage"), reader.damage()},
                           {QStringLiteral("frames"), QJsonArray{place}}};
    const QString text = QString::fromUtf8(QJsonDocument(root).toJson()).trimmed();
    // Written frame by frame: a recording may have a million.
    const QString indented = QStringLiteral("\n        ");
    const QString mark = indented + QLatin1Char('"') + place + QLatin1Char('"');
    const qsizetype at = text.lastIndexOf(mark);
    ToFConsole::write(text.left(at));
    const qint64 count = bEachFrame ? reader.frameCount() : 1;
    for (qint64 page = 0; page < count; ++page) {
        QString frame = frameJson(reader, page, input);
        frame.replace(QLatin1Char('\n'), indented);
        ToFConsole::write(indented + frame + (page + 1 < count ? QStringLiteral(",") : QString()));
    }
    ToFConsole::print(text.mid(at + mark.size()));
}

void printText(const CkRecordingReader& reader, CkToFInput& input) {
    const auto line = [](const char* name, const QString& value) {
        if (!value.isEmpty()) {
            ToFConsole::print(QLatin1String(name).toString().leftJustified(14) + value);
        }
    };
    line("File:", reader.fileName());
    line("Size:", tofCount(qint64(reader.byteCount()), "byte"));
    line("Frames:", QString::number(reader.frameCount()));
    line("Written by:", reader.recordingInfo().software);
    SkFrameDescription first;
    QString error;
    if (!reader.describe(0, first, &error)) {
        input.reportError(error);
        return;
    }
    const SkPicBufInfo& info = first.info;
    const CkImageMetadata& metadata = first.metadata;
    line("Pictures:", QStringLiteral("%1 x %2, %3, %4, %5")
                          .arg(info.width)
                          .arg(info.height)
                          .arg(tofCount(info.channels, "channel"))
                          .arg(typeName(info.dataType))
                          .arg(tofCount(info.bitsPerChannel, "significant bit")));
    line("Channels:", metadata.channelNames.join(QStringLiteral(", ")));
    line("Camera:", QStringLiteral("%1 %2").arg(metadata.cameraName, metadata.cameraSerial).trimmed());
    if (metadata.modulationFrequency > 0) {
        line("Modulation:", QStringLiteral("%1 MHz").arg(double(metadata.modulationFrequency)));
    }
    if (metadata.hybridPulseDuration > 0) {
        line("Pulse:", QStringLiteral("%1 ns").arg(double(metadata.hybridPulseDuration) * 1e9, 0, 'g', 6));
    }
    if (metadata.phasesCount > 0) {
        line("Phases:", QStringLiteral("%1 in a picture").arg(metadata.phasesCount));
    }
    if (metadata.phaseSequenceLength > 0) {
        line("Sequence:", tofCount(metadata.phaseSequenceLength, "picture") + QStringLiteral(" a set"));
    }
    if (metadata.frameRate > 0) {
        line("Frame rate:", (metadata.frameRate == 1.0F
                                 ? QStringLiteral("1 set per second")
                                 : QStringLiteral("%1 sets per second").arg(double(metadata.frameRate))));
    }
    SkFrameDescription last;
    if (reader.describe(reader.frameCount() - 1, last, nullptr)) {
        const qint64 ns = last.additionalData.timestampNs - first.additionalData.timestampNs;
        line("Duration:", ns > 0 ? QStringLiteral("%1 s").arg(double(ns) * 1e-9, 0, 'f', 3) : QString());
    }
}

} // namespace

int tofInfo(const QStringList& arguments) {
    CkToFArguments options(QStringLiteral("info [options] RECORDING"),
                           QStringLiteral("Shows the contents of a recording or any other TIFF file."),
                           {QStringLiteral("tof info room.tif"),
                            QStringLiteral("tof info --json --frames room.tif > room.json"),
                            QStringLiteral("tof info --chain room.tif > chain.xml")});
    options.addFlag(QStringLiteral("json"), QStringLiteral("As JSON, with all metadata of the first frame."));
    options.addFlag(QStringLiteral("frames"), QStringLiteral("With --json: of every frame."));
    options.addFlag(QStringLiteral("chain"), QStringLiteral("Only the chain that was recorded, as XML."));
    options.addArgument(QStringLiteral("RECORDING"), QStringLiteral("File to read."));
    SkToFLimits::addOptions(options);
    if (const auto code = options.parse(arguments)) {
        return *code;
    }
    SkToFLimits limits;
    if (!limits.read(options)) {
        return ToFUsage;
    }
    CkToFInput input(limits);
    if (!input.open(options.argument(0))) {
        return ToFInput;
    }
    const CkRecordingReader& reader = input.reader();
    if (options.has(QStringLiteral("chain"))) {
        if (reader.recordingInfo().chainXml.isEmpty()) {
            ToFConsole::error(QStringLiteral("\"%1\" contains no chain.").arg(reader.fileName()));
            return ToFNotApplicable;
        }
        ToFConsole::print(reader.recordingInfo().chainXml);
    } else if (options.has(QStringLiteral("json"))) {
        printJson(reader, options.has(QStringLiteral("frames")), input);
    } else {
        printText(reader, input);
    }
    return input.exitCode();
}
