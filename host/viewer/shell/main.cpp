#include "host/viewer/base/ViewerLanguage.h"
#include "host/viewer/base/ViewerVersion.h"
#include "host/viewer/shell/CkCommandLine.h"
#include "host/viewer/shell/CkViewerSession.h"

#include <QApplication>
#include <QIcon>
#include <QStyleFactory>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kBadCommandLine = 1;
constexpr int kNoDisplay = 2;

int report(int code, const QString& text) {
    std::fprintf(code == 0 ? stdout : stderr, "%s\n", qUtf8Printable(text.trimmed()));
    return code;
}

/// QCoreApplication does not remove the options of QGuiApplication.
QStringList withoutWindowOptions(const QStringList& given) {
    static const QStringList withValue = {
        QStringLiteral("platform"), QStringLiteral("platformpluginpath"), QStringLiteral("platformtheme"),
        QStringLiteral("style"),    QStringLiteral("stylesheet"),         QStringLiteral("display"),
        QStringLiteral("geometry")};
    QStringList left;
    for (qsizetype i = 0; i < given.size(); ++i) {
        const QString name = given[i].startsWith(QLatin1String("--")) ? given[i].mid(2) : given[i].mid(1);
        if (given[i].startsWith(QLatin1Char('-')) && withValue.contains(name)) {
            ++i;
        } else {
            left.append(given[i]);
        }
    }
    return left;
}

int inform(int argc, char** argv, const QStringList& arguments) {
    QCoreApplication application(argc, argv);
    ViewerLanguage::apply(ViewerLanguage::requested(arguments));
    CkCommandLine commandLine;
    SkViewerOptions options;
    QString error;
    switch (commandLine.parse(arguments, options, error)) {
    case CkCommandLine::EkResult::Help:
        return report(0, commandLine.helpText());
    case CkCommandLine::EkResult::Version:
        return report(0, ViewerVersion::text());
    case CkCommandLine::EkResult::Error:
        return report(kBadCommandLine, QStringLiteral("zuviewer: ") + error);
    case CkCommandLine::EkResult::Run:
        break;
    }
    CkViewerSession::addBuiltInDrivers();
    return report(0, CkViewerSession::cameraList());
}

QIcon programIcon() {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        icon.addFile(QStringLiteral(":/icons/zuviewer-%1.png").arg(size));
    }
    return icon;
}

// Qt aborts the program when it finds no screen; report the reason instead.
void reportMissingScreen(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type == QtFatalMsg) {
        std::fputs("zuviewer: no window can be opened: there is no display that can be reached (DISPLAY or "
                   "WAYLAND_DISPLAY).\nWithout a screen, run it under Xvfb: xvfb-run zuviewer ...\n",
                   stderr);
        std::_Exit(kNoDisplay);
    }
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication::setApplicationName(QStringLiteral("zuviewer"));
    QCoreApplication::setOrganizationName(QStringLiteral("Orvane"));
    QCoreApplication::setApplicationVersion(ViewerVersion::number());
    QStringList given;
    bool style = qEnvironmentVariableIsSet("QT_STYLE_OVERRIDE");
    for (int i = 0; i < argc; ++i) {
        given.append(QString::fromLocal8Bit(argv[i]));
        style = style || given.last().startsWith(QLatin1String("-style")) ||
                given.last().startsWith(QLatin1String("--style"));
    }
    if (CkCommandLine::isInformationOnly(given)) {
        return inform(argc, argv, withoutWindowOptions(given));
    }

    const QtMessageHandler usual = qInstallMessageHandler(&reportMissingScreen);
    QApplication application(argc, argv);
    qInstallMessageHandler(usual);

    QApplication::setWindowIcon(programIcon());
    // Wayland identifies windows by the name of their desktop entry.
    QGuiApplication::setDesktopFileName(QStringLiteral("zuviewer"));

    ViewerLanguage::apply(ViewerLanguage::requested(QCoreApplication::arguments()));
    CkCommandLine commandLine;
    SkViewerOptions options;
    QString error;
    // Qt's own options (-style, -platform ...) have been removed by now.
    if (commandLine.parse(QCoreApplication::arguments(), options, error) != CkCommandLine::EkResult::Run) {
        return report(kBadCommandLine, QStringLiteral("zuviewer: ") + error);
    }
    if (!style) {
        QApplication::setStyle(QStringLiteral("Fusion"));
    }
    CkViewerSession::addBuiltInDrivers();
    CkViewerSession session(options);
    QObject::connect(&session, &CkViewerSession::finished, &application, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    if (!session.start() && options.unattended()) {
        return 3;
    }
    return QApplication::exec();
}
