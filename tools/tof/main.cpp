#include "tools/tof/CkToFInput.h"
#include "tools/tof/ToFCommands.h"
#include "tools/tof/ToFConsole.h"

#include <QCoreApplication>

#include <new>

namespace {

const char* const kOverview = R"(Usage: tof COMMAND [options] ...
Works on recordings of time-of-flight cameras, without a window.

Commands:
  info     Shows the contents of a recording.
  record   Records frames of a simulated camera.
  process  Applies a ToF transform to a recording.
  cloud    Builds point clouds (PLY) from a recording.
  image    Writes a frame as a picture (PNG, 16-bit PNG or float TIFF).
  accuracy Measures the accuracy of distances with simulated cameras; writes a report.

Options:
  -h, --help     Shows this help; "tof COMMAND --help" that of a command.
  -v, --version  Shows the version.

Exit codes:
  0  Success.
  2  Wrong options or arguments.
  3  The input cannot be read at all.
  4  Parts of the input cannot be read; the rest was processed.
  5  The output cannot be written.
  6  The command does not apply to this input.
  7  Results were written, but exceed a given limit.

Examples:
  tof record --camera wave --frames 100 room.tif
  tof process --transform depth room.tif depth.tif
  tof cloud --lens --frame 0 depth.tif room.ply)";

int run(const QStringList& arguments) {
    const struct {
        const char* name;
        int (*command)(const QStringList&);
    } commands[] = {{"info", tofInfo},   {"record", tofRecord}, {"process", tofProcess},
                    {"cloud", tofCloud}, {"image", tofImage},   {"accuracy", tofAccuracy}};
    const QString name = arguments.value(1);
    for (const auto& entry : commands) {
        if (name == QLatin1String(entry.name)) {
            return entry.command(arguments.mid(1));
        }
    }
    if (name == QLatin1String("-h") || name == QLatin1String("--help")) {
        ToFConsole::print(QString::fromLatin1(kOverview));
        return ToFSuccess;
    }
    if (name == QLatin1String("-v") || name == QLatin1String("--version")) {
        ToFConsole::print(tofSoftware());
        return ToFSuccess;
    }
    ToFConsole::error(name.isEmpty()
                          ? QStringLiteral("Which command? See \"tof --help\".")
                          : QStringLiteral("There is no command \"%1\". See \"tof --help\".").arg(name));
    return ToFUsage;
}

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    try {
        return run(QCoreApplication::arguments());
    } catch (const std::bad_alloc&) {
        ToFConsole::error(QStringLiteral("There is not enough memory."));
        return ToFOutput;
    }
}
