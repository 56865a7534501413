#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/cloud/ToFPlyText.h"
#include "plugins/zplToF/cloud/ToFSettings.h"
#include "plugins/zplToF/transform/EkTransformType.h"
#include "tools/tof/CkToFArguments.h"
#include "tools/tof/CkToFInput.h"
#include "tools/tof/CkToFProgress.h"
#include "tools/tof/ToFCommands.h"
#include "tools/tof/ToFInOrder.h"
#include "tools/tof/base/CkToFPipeline.h"

#include "zuCore/CkImageData.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>

#include <limits>

namespace {

constexpr double kBytesPerPoint = 220;
constexpr qint64 kMaxSettingsBytes = 4 << 20;

/// The options of the command.
struct SkCloudOptions {
    SkToFOpticalPath path;
    float zoom = 1.0F;
    qint64 maxWidth = 640;
    bool frequencyGiven = false; ///< an option overrides the value of the camera
    bool focalLengthGiven = false;
};

bool readSettings(const CkToFArguments& options, SkToFOpticalPath& path) {
    const QString file = options.value(QStringLiteral("settings-file"));
    const QFileInfo info(file);
    if (!file.isEmpty() && (!info.isFile() || !info.isReadable())) {
        ToFConsole::error(QStringLiteral("\"%1\" cannot be read.").arg(file));
        return false;
    }
    if (!file.isEmpty() && info.size() > kMaxSettingsBytes) {
        ToFConsole::error(QStringLiteral("\"%1\" is larger than settings are (%2 MiB).")
                              .arg(file)
                              .arg(kMaxSettingsBytes >> 20));
        return false;
    }
    const std::unique_ptr<QSettings> settings =
        file.isEmpty() ? std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                                     QStringLiteral("Orvane"), QStringLiteral("zuviewer"))
                       : std::make_unique<QSettings>(file, QSettings::IniFormat);
    path = ToFSettings::readOpticalPath(*settings);
    return true;
}

bool readOptions(const CkToFArguments& options, SkCloudOptions& cloud) {
    SkToFOpticalPath& path = cloud.path;
    const bool settings =
        options.has(QStringLiteral("from-settings")) || options.has(QStringLiteral("settings-file"));
    if (settings && !readSettings(options, path)) {
        return false;
    }
    const struct {
        const char* on;
        const char* off;
        bool* value;
    } flags[] = {{"lens", "no-lens", &path.compensateDistortion},
                 {"ortho", "no-ortho", &path.orthoRadialCorrection}};
    for (const auto& flag : flags) {
        const bool on = options.has(QLatin1String(flag.on));
        const bool off = options.has(QLatin1String(flag.off));
        if (on && off) {
            ToFConsole::error(QStringLiteral("--%1 and --%2 exclude each other.")
                                  .arg(QLatin1String(flag.on), QLatin1String(flag.off)));
            return false;
        }
        *flag.value = on || (*flag.value && !off);
    }
    // Lengths, frequencies and thresholds must be above 0.
    constexpr float above0 = std::numeric_limits<float>::min();
    constexpr float any = -std::numeric_limits<float>::infinity();
    const struct {
        const char* name;
        float minimum;
        float* value;
    } numbers[] = {{"focal-length", above0, &path.lensFocalLengthMM},
                   {"cell-size", above0, &path.chipCellSizeMM},
                   {"frequency", above0, &path.modulationFreqMHz},
                   {"confidence", above0, &path.confidenceThreshold},
                   {"offset", any, &path.realDistanceOffsetM}};
    for (const auto& number : numbers) {
        if (!options.readNumber(QLatin1String(number.name), number.minimum, *number.value)) {
            return false;
        }
    }
    cloud.frequencyGiven = options.has(QStringLiteral("frequency"));
    cloud.focalLengthGiven = options.has(QStringLiteral("focal-length"));
    double x = path.centerOffsetMM.x();
    double y = path.centerOffsetMM.y();
    if (!options.readPair(QStringLiteral("center-offset"), x, y)) {
        return false;
    }
    path.centerOffsetMM = QPointF(x, y);
    return options.readNumber(QStringLiteral("z-zoom"), above0, cloud.zoom) &&
           options.readNumber(QStringLiteral("max-width"), 1, cloud.maxWidth);
}

struct SkClouds {
    std::vector<QByteArray> texts;
    QStringList errors;
    QString incomplete; ///< what the set lacks, when it gave no cloud
};

/// The points of a picture as PLY text; empty when no cloud can be built from it.
QByteArray cloudText(const CkImageData& data, const SkCloudOptions& cloud, const quint8* colours) {
    CkToFDepthFrame depth;
    const int width = int(std::min<qint64>(cloud.maxWidth, std::numeric_limits<int>::max()));
    if (!depth.update(data.picBuf(), &data.metadata(), width)) {
        return {};
    }
    SkToFCloudParameters parameters;
    parameters.opticalPath = cloud.path;
    parameters.opticalPath.adoptCameraValues(data.metadata());
    if (cloud.frequencyGiven) {
        parameters.opticalPath.modulationFreqMHz = cloud.path.modulationFreqMHz;
    }
    if (cloud.focalLengthGiven) {
        parameters.opticalPath.lensFocalLengthMM = cloud.path.lensFocalLengthMM;
    }
    parameters.zZoom = cloud.zoom;
    parameters.pColourTable = colours;
    CkToFCloudBuilder builder;
    if (!builder.build(depth.pictures(), parameters)) {
        return {};
    }
    return buildPlyText(builder.exportPoints());
}

/// Memory for the clouds of a group: pages as for processing, and points with their text. Other pictures
/// than ToF pictures are shrunk.
quint64 bytesFor(const SkToFGroup& group, const SkCloudOptions& cloud) {
    const double width = group.width;
    const double shrink = group.maybeTof ? 1.0 : std::min(1.0, double(cloud.maxWidth) / std::max(1.0, width));
    const double points = double(group.pixels) * shrink * shrink;
    return 2 * group.largestPage + (group.maybeTof ? 4 * group.bytes : 0) + quint64(kBytesPerPoint * points);
}

SkClouds groupClouds(const CkRecordingReader& reader, const SkToFGroup& group, const SkCloudOptions& cloud,
                     const quint8* colours) {
    SkClouds done;
    CkToFPipeline gathering(ToFTransform::Depth);
    bool waiting = false;
    for (qint64 page = group.first; page < group.first + group.count; ++page) {
        QString error;
        std::unique_ptr<CkImageData> data = reader.read(page, &error);
        if (!error.isEmpty()) {
            done.errors.append(error);
        }
        if (data == nullptr) {
            continue;
        }
        QString reason;
        if (CkToFPicAPI::incomingSeparatePhases(&data->metadata())) {
            std::unique_ptr<CkImageData> depth;
            const auto result = gathering.process(*data, depth, reason);
            waiting = result == CkToFPipeline::EkResult::Waiting;
            if (waiting) {
                continue;
            }
            data = std::move(depth);
        }
        const QByteArray text = data != nullptr ? cloudText(*data, cloud, colours) : QByteArray();
        if (text.isEmpty()) {
            done.errors.append(QStringLiteral("\"%1\", page %2: %3")
                                   .arg(reader.fileName())
                                   .arg(page + 1)
                                   .arg(reason.isEmpty()
                                            ? QStringLiteral("No cloud can be built from this picture.")
                                            : reason));
        } else {
            done.texts.push_back(text);
        }
    }
    if (waiting && done.texts.empty()) {
        done.incomplete = tofIncompleteSet(group, gathering.missingImages());
    }
    return done;
}

/// False, with an error message and the file unchanged, when it cannot be written.
bool writeFile(const QString& name, const QByteArray& text) {
    QSaveFile file(name);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit()) {
        return true;
    }
    ToFConsole::error(QStringLiteral("\"%1\" cannot be written (%2).").arg(name, file.errorString()));
    return false;
}

/// room.ply, 7 -> room-00007.ply
QString numbered(const QString& name, qint64 number) {
    const QFileInfo info(name);
    const QString suffix = info.suffix().isEmpty() ? QString() : QLatin1Char('.') + info.suffix();
    const QString base = name.left(name.size() - suffix.size());
    return QStringLiteral("%1-%2%3").arg(base).arg(number, 5, 10, QLatin1Char('0')).arg(suffix);
}

void addOptions(CkToFArguments& options) {
    const auto value = [&options](const char* name, const char* what, const char* about) {
        options.addValue(QLatin1String(name), QLatin1String(what), QLatin1String(about));
    };
    const auto flag = [&options](const char* name, const char* about) {
        options.addFlag(QLatin1String(name), QLatin1String(about));
    };
    value("frame", "N",
          "Only this frame or set, counted from 0, into the file named. Without it each one is written "
          "into a file with its number: room-00000.ply.");
    flag("from-settings", "Starts from the settings of the viewer.");
    value("settings-file", "FILE", "The same from another settings file.");
    flag("lens", "Uses the lens model: points in millimetres.");
    flag("no-lens", "No lens model: points in units of the picture's half width (the default).");
    value("focal-length", "MM", "Focal length in mm; otherwise the camera's value, or 3.5.");
    value("cell-size", "MM", "Pitch of a sensor cell in mm; 0.01 by default.");
    value("center-offset", "X,Y",
          "Optical axis from the picture's centre in mm on the chip; 0,0 by default.");
    value("frequency", "MHZ", "Modulation frequency in MHz; otherwise the camera's value, or 30.");
    value("confidence", "VALUE",
          "Drops pixels of a higher confidence value (lower is better); 10 by default.");
    value("offset", "M", "Metres added to every distance; -1.5 by default.");
    flag("ortho", "Corrects distances along the ray to distances along the axis (the default).");
    flag("no-ortho", "Leaves distances along the ray.");
    value("z-zoom", "FACTOR", "Stretches the depth axis of clouds without lens model; 1 by default.");
    value("max-width", "PIXELS", "Shrinks pictures other than ToF pictures to this width; 640 by default.");
    options.addArgument(QStringLiteral("RECORDING"), QStringLiteral("File to read."));
    options.addArgument(QStringLiteral("CLOUD"), QStringLiteral("PLY file to write."));
}

void reportEmptyClouds(qint64 number, qint64 empty, const SkCloudOptions& cloud) {
    ToFConsole::error(
        (number == 1 ? QStringLiteral("The cloud has")
                     : QStringLiteral("%1 of %2 clouds %3")
                           .arg(empty)
                           .arg(number)
                           .arg(empty == 1 ? QLatin1String("has") : QLatin1String("have"))) +
        QStringLiteral(" no points: the confidence of every pixel is above %1 or it holds no distance.")
            .arg(double(cloud.path.confidenceThreshold)));
}

/// Writes the clouds of the groups; numbers goes into the file names. Returns the exit code.
int writeClouds(CkToFInput& input, const std::vector<SkToFGroup>& groups, const SkCloudOptions& cloud,
                const QString& file, bool numbers) {
    // The file has no colours, but the builder needs a table.
    const std::vector<quint8> colours(size_t(256) * 4, 255);
    bool writes = true;
    qint64 number = 0;
    qint64 empty = 0;
    QString incomplete; // about the first incomplete set
    {
        CkToFProgress progress(QStringLiteral("Clouds"));
        inOrder(
            qint64(groups.size()), input.memoryBytes(),
            [&](qint64 i) { return bytesFor(groups[size_t(i)], cloud); },
            [&](qint64 i) {
                const SkToFGroup& group = groups[size_t(i)];
                const QString tooMuch = input.tooMuchMemory(group, bytesFor(group, cloud));
                return tooMuch.isEmpty() ? groupClouds(input.reader(), group, cloud, colours.data())
                                         : SkClouds{{}, {tooMuch}, {}};
            },
            [&](qint64 i, SkClouds&& done) {
                for (const QString& error : std::as_const(done.errors)) {
                    input.reportError(error);
                }
                if (incomplete.isEmpty()) {
                    incomplete = done.incomplete;
                }
                for (const QByteArray& text : done.texts) {
                    const QString name = numbers ? numbered(file, i) : file;
                    writes = writes && !input.isInput(name) && writeFile(name, text);
                    ++number;
                    empty += text.contains("\nelement vertex 0\n") ? 1 : 0;
                }
                progress.show(i + 1, qint64(groups.size()));
                return writes;
            });
    }
    if (!writes) {
        return ToFOutput;
    }
    if (number == 0) {
        ToFConsole::error(QStringLiteral("No cloud came out of \"%1\"; nothing was written.%2")
                              .arg(input.reader().fileName(), incomplete));
        return ToFNotApplicable;
    }
    if (empty > 0) {
        reportEmptyClouds(number, empty, cloud);
    }
    return input.exitCode();
}

} // namespace

int tofCloud(const QStringList& arguments) {
    CkToFArguments options(
        QStringLiteral("cloud [options] RECORDING CLOUD"),
        QStringLiteral("Builds point clouds (ASCII PLY) from raw ToF, phase shift and depth pictures."),
        {QStringLiteral("tof cloud --lens --offset 0 --frame 0 room.tif room.ply"),
         QStringLiteral("tof cloud --from-settings room.tif clouds/room.ply"),
         QStringLiteral("tof cloud --lens --focal-length 4 --cell-size 0.01 "
                        "--center-offset 0.1,-0.05 depth.tif depth.ply")});
    addOptions(options);
    SkToFLimits::addOptions(options);
    if (const auto code = options.parse(arguments)) {
        return *code;
    }
    SkToFLimits limits;
    if (!limits.read(options)) {
        return ToFUsage;
    }
    SkCloudOptions cloud;
    qint64 wanted = -1;
    if (!readOptions(options, cloud) || !options.readNumber(QStringLiteral("frame"), 0, wanted)) {
        return ToFUsage;
    }
    CkToFInput input(limits);
    if (!input.open(options.argument(0))) {
        return ToFInput;
    }
    std::vector<SkToFGroup> groups = input.groups();
    if (wanted >= qint64(groups.size())) {
        ToFConsole::error(QStringLiteral("There is no frame %1; \"%2\" has %3, counted from 0.")
                              .arg(wanted)
                              .arg(input.reader().fileName())
                              .arg(groups.size()));
        return ToFNotApplicable;
    }
    if (wanted >= 0) {
        groups = {groups[size_t(wanted)]};
    }
    return writeClouds(input, groups, cloud, options.argument(1), wanted < 0);
}
