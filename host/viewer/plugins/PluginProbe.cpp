#include "host/viewer/plugins/PluginProbe.h"

#include "host/viewer/plugins/PluginProbeSteps.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QProcess>

#include <csignal>
#include <unistd.h>

using namespace PluginProbeSteps;

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(PluginProbe)
};

// In bytes; the probe writes less.
constexpr qint64 kMaximumOutput = 64 * 1024;

/// Kills the child and all processes that the plug-in may have started in it.
void endGroup(QProcess& child) {
    const auto group = pid_t(child.processId());
    if (group > 0) {
        ::kill(-group, SIGKILL);
    }
    child.kill();
    child.waitForFinished();
}

QString stepText(const QByteArray& sStep) {
    return sStep == kStart ? Texts::tr("it was loaded and started") : Texts::tr("it was ended");
}

} // namespace

QString PluginProbe::program() {
    const QDir binaries(QCoreApplication::applicationDirPath());
    // The second is where distributions install programs that users do not start themselves.
    for (const char* relative : {"../libexec/zuviewer", "../" ZU_PROBE_INSTALL_DIR}) {
        const QFileInfo file(QDir(binaries.filePath(QLatin1String(relative))),
                             QStringLiteral("zuPluginProbe"));
        if (file.isExecutable()) {
            return file.canonicalFilePath();
        }
    }
    return {};
}

std::optional<QString> PluginProbe::refusal(const QString& sLibrary, std::chrono::milliseconds timeLimit) {
    QProcess child;
    child.setProgram(program());
    child.setArguments({QStringLiteral("--language"), QLocale().name(), sLibrary});
    child.setChildProcessModifier([] { ::setsid(); });
    child.start(QIODevice::ReadOnly);
    if (child.program().isEmpty() || !child.waitForStarted()) {
        return {};
    }
    const bool finished = child.waitForFinished(int(timeLimit.count()));
    endGroup(child);
    const QList<QByteArray> lines = child.read(kMaximumOutput).split('\n');
    const QByteArray last = lines.size() > 1 ? lines[lines.size() - 2] : QByteArray();
    if (last.startsWith(kRefused)) {
        return QString::fromUtf8(last.mid(kRefused.size()));
    }
    if (last.isEmpty()) {
        return {}; // the probe itself failed
    }
    const QString library = QDir::toNativeSeparators(sLibrary);
    if (!finished) {
        return Texts::tr("Plug-in \"%1\" was refused: it did not come back within %2 s while %3.")
            .arg(library)
            .arg(double(timeLimit.count()) / 1000.0)
            .arg(stepText(last));
    }
    if (last != kDone || child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0) {
        return Texts::tr("Plug-in \"%1\" was refused: it ended the program while %2.")
            .arg(library, stepText(last));
    }
    return QString();
}
