// Loads one plug-in, starts it and ends it, so that a crash or a hang happens in this process and not in the
// viewer.

#include "host/viewer/base/ViewerLanguage.h"
#include "host/viewer/plugins/CkProbeDelegate.h"
#include "host/viewer/plugins/PluginProbeSteps.h"
#include "zuCore/CkPluginLoader.h"
#include "zuCore/CkRTTI.h"

#include <QApplication>
#include <QLocale>
#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace PluginProbeSteps;

namespace {

constexpr int kBadCommandLine = 1;
constexpr int kRefusal = 2;

int s_iReport = -1;

void report(const QByteArray& line) {
    const QByteArray text = line + '\n';
    static_cast<void>(::write(s_iReport, text.constData(), size_t(text.size())));
}

/// Keeps the standard output for reports; what the plug-in prints is discarded.
void redirectStandardOutput() {
    s_iReport = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        ::dup2(nowhere, stream);
    }
}

void limit(__rlimit_resource resource, rlim_t value) {
    const rlimit wanted = {value, value};
    ::setrlimit(resource, &wanted);
}

void limitDamage() {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // not to outlive the viewer
    limit(RLIMIT_CORE, 0);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    limit(RLIMIT_DATA, rlim_t(4) << 30U);
#endif
}

/// What happens to a plug-in in the viewer, from loading to unloading.
int probe(const QString& sLibrary) {
    report(kStart);
    CkPluginLoader loader;
    QString error;
    if (loader.load(sLibrary, &error) == nullptr) {
        report(kRefused + error.simplified().toUtf8());
        return kRefusal;
    }
    // Runs what the plug-in has deferred to the event loop.
    QCoreApplication::processEvents();
    report(kEnd);
    QObject* const object = loader.plugins().first().object;
    CkRTTI::instance()->unregisterPlugin(object);
    delete object;
    report(kDone);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    redirectStandardOutput();
    limitDamage();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv(kVariable, "1");
    QCoreApplication::setApplicationName(QStringLiteral("zuviewer"));
    QCoreApplication::setOrganizationName(QStringLiteral("Orvane"));
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        return kBadCommandLine;
    }
    QLocale::setDefault(QLocale(arguments[2]));
    ViewerLanguage::apply(QString());
    CkProbeDelegate delegate;
    return probe(arguments[3]);
}
