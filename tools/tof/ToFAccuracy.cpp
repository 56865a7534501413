#include "tools/tof/CkToFArguments.h"
#include "tools/tof/CkToFInput.h"
#include "tools/tof/CkToFProgress.h"
#include "tools/tof/ToFCommands.h"
#include "tools/tof/ToFInOrder.h"
#include "tools/tof/accuracy/ToFAccuracyLimits.h"
#include "tools/tof/accuracy/ToFAccuracyMatrix.h"
#include "tools/tof/accuracy/ToFAccuracyReport.h"
#include "tools/tof/accuracy/ToFAccuracyRun.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

namespace {

constexpr size_t kShownExcesses = 10;

void addOptions(CkToFArguments& options) {
    const auto value = [&options](const char* name, const char* what, const char* about) {
        options.addValue(QLatin1String(name), QLatin1String(what), QLatin1String(about));
    };
    value("camera", "LIST", "wave, hybrid or both; wave,hybrid by default.");
    value("frequency", "LIST", "Modulation frequencies in MHz, 1 to 120; 20,60 by default.");
    value("pulse", "LIST", "Pulse durations of the hybrid camera in ns, 1 to 200; 40 by default.");
    value("distance", "LIST", "Distances of the wall in m, 0.05 to 30; 1,1.5,2,3,4,5.5,7 by default.");
    value("reflectivity", "LIST", "Reflectivities of the wall in %, 1 to 100; 10,80 by default.");
    value("ambient", "LIST", "Ambient light, 0 (dark) to 10; 1 is ordinary room light; 0,1 by default.");
    value("phases", "LIST", "Phases of a measurement: 2, 4 or 8; 2,4,8 by default.");
    value("bits", "LIST", "Bits of the converter: 8, 12 or 16; 8,12 by default.");
    value("exposure", "US", "Exposure in us, 1 to 20000; 1000 by default.");
    value("frames", "N", "Frames of each cell; 4 by default.");
    value("size", "W,H", "Pixels in the middle of the sensor, up to 640,480; 128,96 by default.");
    value("seed", "N", "Seed of the noise; the same seed gives the same report. 1 by default.");
    options.addFlag(QStringLiteral("no-noise"),
                    QStringLiteral("Without noise: only the error of the processing remains."));
    value("confidence", "VALUE", "Pixels of a higher confidence value are not valid; 10 by default.");
    value("csv", "FILE", "File of the table; next to the report by default, ending in .csv.");
    value("max-bias", "MM", "Fails when the bias of a cell is larger than this, in mm.");
    value("max-std", "MM", "Fails when the standard deviation of a cell is larger than this, in mm.");
    value("max-ratio", "FACTOR",
          "Fails when a standard deviation is more than this many times what the sensor's noise allows.");
    value("min-valid", "PERCENT", "Fails when a cell has a smaller share of valid pixels.");
    options.addArgument(QStringLiteral("REPORT"), QStringLiteral("HTML file to write."));
}

bool readCameras(const CkToFArguments& options, SkToFAccuracyMatrix& matrix) {
    const QString name = QStringLiteral("camera");
    if (!options.has(name)) {
        return true;
    }
    QStringList cameras = options.value(name).split(QLatin1Char(','));
    matrix.wave = cameras.removeAll(QStringLiteral("wave")) > 0;
    matrix.hybrid = cameras.removeAll(QStringLiteral("hybrid")) > 0;
    if (!cameras.isEmpty()) {
        ToFConsole::error(QStringLiteral("--camera expects wave, hybrid or wave,hybrid, not \"%1\".")
                              .arg(options.value(name)));
    }
    return cameras.isEmpty();
}

bool readMatrix(const CkToFArguments& options, SkToFAccuracyMatrix& matrix) {
    const struct {
        const char* name;
        double minimum;
        double maximum;
        std::vector<double>* values;
    } lists[] = {{"frequency", 1.0, 120.0, &matrix.frequencies},
                 {"pulse", 1.0, 200.0, &matrix.pulses},
                 {"distance", 0.05, 30.0, &matrix.distances},
                 {"reflectivity", 1.0, 100.0, &matrix.reflectivities},
                 {"ambient", 0.0, 10.0, &matrix.ambients}};
    for (double& share : matrix.reflectivities) {
        share *= 100.0;
    }
    for (const auto& list : lists) {
        if (!options.readNumbers(QLatin1String(list.name), list.minimum, list.maximum, *list.values)) {
            return false;
        }
    }
    for (double& percent : matrix.reflectivities) {
        percent /= 100.0;
    }
    const struct {
        const char* name;
        std::vector<double> allowed;
        std::vector<double>* values;
    } choices[] = {{"phases", {2.0, 4.0, 8.0}, &matrix.phases}, {"bits", {8.0, 12.0, 16.0}, &matrix.bits}};
    for (const auto& choice : choices) {
        const QString name = QLatin1String(choice.name);
        if (!options.readNumbers(name, choice.allowed.front(), choice.allowed.back(), *choice.values)) {
            return false;
        }
        for (const double value : *choice.values) {
            if (std::find(choice.allowed.begin(), choice.allowed.end(), value) == choice.allowed.end()) {
                ToFConsole::error(QStringLiteral("--%1 expects numbers out of %2, %3 and %4, not \"%5\".")
                                      .arg(name)
                                      .arg(choice.allowed[0])
                                      .arg(choice.allowed[1])
                                      .arg(choice.allowed[2])
                                      .arg(options.value(name)));
                return false;
            }
        }
    }
    return readCameras(options, matrix);
}

bool readSetup(const CkToFArguments& options, SkToFAccuracySetup& setup) {
    qint64 seed = setup.seed;
    double width = setup.width;
    double height = setup.height;
    std::vector<double> exposure{setup.exposureUs};
    if (!options.readNumbers(QStringLiteral("exposure"), 1.0, 20000.0, exposure) ||
        !options.readNumber(QStringLiteral("frames"), 1, setup.frames) ||
        !options.readNumber(QStringLiteral("seed"), 0, seed) ||
        !options.readPair(QStringLiteral("size"), width, height) ||
        !options.readNumber(QStringLiteral("confidence"), 0.0F, setup.confidenceThreshold)) {
        return false;
    }
    if (width < 2.0 || width > 640.0 || height < 2.0 || height > 480.0) {
        ToFConsole::error(QStringLiteral("--size expects 2,2 to 640,480, not \"%1\".")
                              .arg(options.value(QStringLiteral("size"))));
        return false;
    }
    if (exposure.size() != 1) {
        ToFConsole::error(QStringLiteral("--exposure expects a single number."));
        return false;
    }
    setup.exposureUs = exposure.front();
    setup.width = int(width);
    setup.height = int(height);
    setup.seed = quint32(seed);
    setup.noise = !options.has(QStringLiteral("no-noise"));
    return true;
}

bool readLimits(const CkToFArguments& options, SkToFAccuracyLimits& limits) {
    const struct {
        const char* name;
        double scale;
        std::optional<double>* limit;
    } numbers[] = {{"max-bias", 1.0, &limits.maxBiasMm},
                   {"max-std", 1.0, &limits.maxStdMm},
                   {"max-ratio", 1.0, &limits.maxRatio},
                   {"min-valid", 0.01, &limits.minValidShare}};
    for (const auto& number : numbers) {
        double value = 0.0;
        if (!options.readNumber(QLatin1String(number.name), 0.0, value)) {
            return false;
        }
        if (options.has(QLatin1String(number.name))) {
            *number.limit = value * number.scale;
        }
    }
    return true;
}

bool openFile(QSaveFile& file) {
    if (file.open(QIODevice::WriteOnly)) {
        return true;
    }
    ToFConsole::error(
        QStringLiteral("\"%1\" cannot be written (%2).").arg(file.fileName(), file.errorString()));
    return false;
}

bool saveFile(QSaveFile& file, const QByteArray& bytes) {
    if (file.write(bytes) == bytes.size() && file.commit()) {
        return true;
    }
    ToFConsole::error(
        QStringLiteral("\"%1\" cannot be written (%2).").arg(file.fileName(), file.errorString()));
    return false;
}

QString csvName(const CkToFArguments& options) {
    if (options.has(QStringLiteral("csv"))) {
        return options.value(QStringLiteral("csv"));
    }
    const QFileInfo report(options.argument(0));
    return report.path() + QLatin1Char('/') + report.completeBaseName() + QStringLiteral(".csv");
}

int measure(const SkToFAccuracyMatrix& matrix, SkToFAccuracyReport& report) {
    const std::vector<SkToFAccuracyPoint> points = matrix.points();
    CkToFProgress progress(QStringLiteral("Measuring"));
    QString error;
    inOrder(
        qint64(points.size()), [&](qint64 i) { return measureAccuracy(points[size_t(i)], report.setup); },
        [&](qint64 i, SkToFAccuracyResult&& result) {
            error = result.error;
            report.results.push_back(std::move(result));
            progress.show(i + 1, qint64(points.size()));
            return error.isEmpty();
        });
    if (!error.isEmpty()) {
        ToFConsole::error(
            QStringLiteral("%1: %2").arg(describeAccuracyPoint(report.results.back().point), error));
        return ToFNotApplicable;
    }
    return ToFSuccess;
}

void judge(const SkToFAccuracyLimits& limits, SkToFAccuracyReport& report) {
    report.limited = !limits.isEmpty();
    for (const SkToFAccuracyResult& result : report.results) {
        for (const QString& excess : limits.exceededBy(result)) {
            report.exceeded.append(describeAccuracyPoint(result.point) + QStringLiteral(": ") + excess);
        }
    }
}

} // namespace

int tofAccuracy(const QStringList& arguments) {
    CkToFArguments options(
        QStringLiteral("accuracy [options] REPORT"),
        QStringLiteral(
            "Measures bias, noise and valid pixels of the simulated cameras, whose truth is known, for every "
            "combination of the values given, against the shot-noise limit; writes a report (HTML) and "
            "a table (CSV)."),
        {QStringLiteral("tof accuracy report.html"),
         QStringLiteral("tof accuracy --camera wave --frequency 10,20,40 --distance 1,2,3 --phases 4 --bits "
                        "12 report.html"),
         QStringLiteral("tof accuracy --no-noise --bits 16 --exposure 100 --max-bias 0.5 report.html"),
         QStringLiteral(
             "tof accuracy --distance 1,2 --reflectivity 80 --bits 12 --max-ratio 1.2 report.html")});
    addOptions(options);
    if (const auto code = options.parse(arguments)) {
        return *code;
    }
    SkToFAccuracyMatrix matrix;
    SkToFAccuracyReport report;
    SkToFAccuracyLimits limits;
    if (!readMatrix(options, matrix) || !readSetup(options, report.setup) || !readLimits(options, limits)) {
        return ToFUsage;
    }
    const QString table = csvName(options);
    if (QFileInfo(table).absoluteFilePath() == QFileInfo(options.argument(0)).absoluteFilePath()) {
        ToFConsole::error(QStringLiteral("Report and table would be the same file; name the report .html."));
        return ToFUsage;
    }
    // Opened first, so that a long measurement does not end in a file that cannot be written.
    QSaveFile htmlFile(options.argument(0));
    QSaveFile csvFile(table);
    if (!openFile(htmlFile) || !openFile(csvFile)) {
        return ToFOutput;
    }
    report.software = tofSoftware();
    report.commandLine = QStringLiteral("tof ") + arguments.join(QLatin1Char(' '));
    if (const int code = measure(matrix, report); code != ToFSuccess) {
        return code;
    }
    judge(limits, report);
    if (!saveFile(csvFile, report.csv()) || !saveFile(htmlFile, report.html())) {
        return ToFOutput;
    }
    for (qsizetype i = 0; i < report.exceeded.size() && size_t(i) < kShownExcesses; ++i) {
        ToFConsole::error(report.exceeded[i]);
    }
    if (size_t(report.exceeded.size()) > kShownExcesses) {
        ToFConsole::error(QStringLiteral("%1 limits are exceeded in all; the report lists them.")
                              .arg(report.exceeded.size()));
    }
    return report.exceeded.isEmpty() ? ToFSuccess : ToFExceeded;
}
