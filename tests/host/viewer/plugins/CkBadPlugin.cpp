#include "zuCore/CkPlugin.h"
#include "zuCore/zuCoreVersion.h"

#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <stdexcept>
#include <unistd.h>

// One library for every kind of bad plug-in: its file name defines where it does what, as in
// "init-aborts.so". The word "viewer" in between restricts that to outside of the probe. With any other name
// it is a good plug-in that records in the file ZU_TEST_TRACE how often it was started in the probe.

namespace {

QString ownName() {
    static const char here = 0;
    Dl_info info = {};
    return dladdr(&here, &info) != 0 ? QFileInfo(QFile::decodeName(info.dli_fname)).completeBaseName()
                                     : QString();
}

void misbehave(const char* place) {
    const QStringList words = ownName().split(QLatin1Char('-'));
    const bool spared =
        words.contains(QLatin1String("viewer")) && qEnvironmentVariableIsSet("ZU_PLUGIN_PROBE");
    if (words.first() != QLatin1String(place) || spared) {
        return;
    }
    const QString deed = words.last();
    if (deed == QLatin1String("throws")) {
        throw std::runtime_error(place);
    }
    if (deed == QLatin1String("aborts")) {
        std::abort();
    }
    if (deed == QLatin1String("exits")) {
        std::exit(0);
    }
    if (deed == QLatin1String("leaves")) {
        ::_exit(0);
    }
    if (deed == QLatin1String("crashes")) {
        std::raise(SIGSEGV);
    }
    while (deed == QLatin1String("hangs")) {
        ::pause();
    }
}

struct SkStaticInitialiser {
    SkStaticInitialiser() { misbehave("library"); }
} s_initialiser;

void noteProbe() {
    QFile trace(qEnvironmentVariable("ZU_TEST_TRACE"));
    if (qEnvironmentVariableIsSet("ZU_PLUGIN_PROBE") && trace.open(QIODevice::Append)) {
        trace.write("1");
    }
}

} // namespace

class CkBadPlugin : public QObject, public CkPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.Pictor.CkBadPlugin")
    Q_INTERFACES(CkPlugin)

public:
    CkBadPlugin() { misbehave("constructor"); }
    ~CkBadPlugin() override { misbehave("destructor"); } // NOLINT(bugprone-exception-escape)
    bool init() override {
        misbehave("init");
        noteProbe();
        return true;
    }
    QString name() const override {
        misbehave("name");
        return ownName();
    }
    QString author() const override { return QString::fromLatin1("Nobody asks for the author"); }
    QString description() const override {
        misbehave("description");
        return {};
    }
    void version(int& major, int& minor, int& patch) const override {
        misbehave("version");
        zuCoreVersion(major, minor, patch);
    }
    QString website() const override { return {}; }
    void activeViewChanged(int) override {}
    void viewAboutToClose(int) override {}
    void viewGotNewImage(int, const CkImageData*) override {}
    void newCameraConnected(void*) override {}
};

#include "CkBadPlugin.moc"
