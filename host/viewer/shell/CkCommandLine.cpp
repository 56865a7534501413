#include "host/viewer/shell/CkCommandLine.h"

#include "host/viewer/base/ViewerLanguage.h"

namespace {

const QString kCamera = QStringLiteral("camera");
const QString kListCameras = QStringLiteral("list-cameras");
const QString k3d = QStringLiteral("3d");
const QString kPluginPath = QStringLiteral("plugin-path");
const QString kCheckPlugins = QStringLiteral("check-plugins");
const QString kChain = QStringLiteral("chain");
const QString kFrames = QStringLiteral("frames");
const QString kScreenshot = QStringLiteral("screenshot");
const QString kScreenshot3d = QStringLiteral("screenshot-3d");
const QString kExportPly = QStringLiteral("export-ply");
const QString kSettings = QStringLiteral("settings");
const QString kTrigger = QStringLiteral("trigger");
const QString kSize = QStringLiteral("size");
const QString kLanguage = QStringLiteral("language");
const QString kClean = QStringLiteral("clean");

constexpr int kMaximumFrames = 1'000'000;

bool parseSize(const QString& value, QSize& size) {
    const QStringList parts = value.split(QLatin1Char('x'));
    if (parts.size() != 2) {
        return false;
    }
    bool widthOk = false;
    bool heightOk = false;
    size = QSize(parts[0].toInt(&widthOk), parts[1].toInt(&heightOk));
    return widthOk && heightOk && size.width() >= 320 && size.height() >= 240 && size.width() <= 16384 &&
           size.height() <= 16384;
}

} // namespace

CkCommandLine::CkCommandLine() {
    m_parser.setApplicationDescription(CkCommandLine::tr(
        "Shows the pictures of industrial cameras, processes them in chains of blocks and, with the\n"
        "time-of-flight plug-in, turns them into live point clouds."));
    m_parser.addOption(
        {{QStringLiteral("h"), QStringLiteral("help")}, CkCommandLine::tr("Shows this help and exits.")});
    m_parser.addOption({{QStringLiteral("v"), QStringLiteral("version")},
                        CkCommandLine::tr("Shows the version and exits.")});
    m_parser.addOption(
        {kCamera,
         CkCommandLine::tr("Opens camera <N> at start and starts it: its number (from 0, see --list-cameras) "
                           "or its identifier. May be given several times."),
         QStringLiteral("N")});
    m_parser.addOption({kListCameras, CkCommandLine::tr("Prints the cameras with their numbers and exits.")});
    m_parser.addOption({k3d, CkCommandLine::tr("Opens the 3D view of the first camera beside its picture.")});
    m_parser.addOption(
        {kPluginPath,
         CkCommandLine::tr("Loads plug-ins from this folder, or this one library, too. May be given several "
                           "times."),
         QStringLiteral("path")});
    m_parser.addOption(
        {kCheckPlugins,
         CkCommandLine::tr(
             "Tries every plug-in in a process of its own again, also those left out before.")});
    m_parser.addOption({kChain, CkCommandLine::tr("Opens a chain file. May be given several times."),
                        QStringLiteral("file")});
    addUnattendedOptions();
    m_parser.addOption({kSettings,
                        CkCommandLine::tr("Keeps the settings in this INI file instead of the user's own."),
                        QStringLiteral("file")});
    m_parser.addOption(
        {kSize, CkCommandLine::tr("Size of the window, for example 1600x1000."), QStringLiteral("WxH")});
    m_parser.addOption(
        {kTrigger,
         CkCommandLine::tr("Clicks the menu entry or button of this object name once the first frame was "
                           "shown, for scripts. May be given several times."),
         QStringLiteral("name")});
    m_parser.addOption({kLanguage,
                        CkCommandLine::tr("Language of the texts: en or de. By default the user's own."),
                        QStringLiteral("code")});
    m_parser.addOption(
        {kClean,
         CkCommandLine::tr("Starts without the cameras, the views and the layout of the last session.")});
    m_parser.addPositionalArgument(QStringLiteral("file"),
                                   CkCommandLine::tr("Recordings, pictures and chain files to open."),
                                   QStringLiteral("[file...]"));
}

void CkCommandLine::addUnattendedOptions() {
    m_parser.addOption(
        {kFrames,
         CkCommandLine::tr(
             "Exits with code 0 after <N> frames have been shown and the requested files have been written."),
         QStringLiteral("N")});
    m_parser.addOption({kScreenshot, CkCommandLine::tr("With --frames: writes a picture of the window."),
                        QStringLiteral("file")});
    m_parser.addOption({kScreenshot3d,
                        CkCommandLine::tr("With --frames: writes a picture of the 3D scene; implies --3d."),
                        QStringLiteral("file")});
    m_parser.addOption({kExportPly,
                        CkCommandLine::tr("With --frames: writes the point cloud as PLY; implies --3d."),
                        QStringLiteral("file")});
}

CkCommandLine::EkResult CkCommandLine::parse(const QStringList& arguments, SkViewerOptions& options,
                                             QString& sError) {
    options = SkViewerOptions();
    if (!m_parser.parse(arguments)) {
        sError = m_parser.errorText();
        return EkResult::Error;
    }
    if (m_parser.isSet(QStringLiteral("help"))) {
        return EkResult::Help;
    }
    if (m_parser.isSet(QStringLiteral("version"))) {
        return EkResult::Version;
    }
    readValues(options);
    if (m_parser.isSet(kFrames)) {
        bool ok = false;
        options.frames = m_parser.value(kFrames).toInt(&ok);
        if (!ok || options.frames < 1 || options.frames > kMaximumFrames) {
            options.frames = 0;
            sError = CkCommandLine::tr("--frames takes a number from 1 to %1, not \"%2\".")
                         .arg(kMaximumFrames)
                         .arg(m_parser.value(kFrames));
            return EkResult::Error;
        }
    } else if (!options.screenshot3dFile.isEmpty() || !options.plyFile.isEmpty() ||
               !options.screenshotFile.isEmpty()) {
        sError = CkCommandLine::tr("--screenshot, --screenshot-3d and --export-ply need --frames.");
        return EkResult::Error;
    }
    if (m_parser.isSet(kSize) && !parseSize(m_parser.value(kSize), options.windowSize)) {
        options.windowSize = QSize();
        sError = CkCommandLine::tr("--size takes width and height, for example 1600x1000, not \"%1\".")
                     .arg(m_parser.value(kSize));
        return EkResult::Error;
    }
    if (m_parser.isSet(kLanguage) && !ViewerLanguage::codes().contains(m_parser.value(kLanguage))) {
        sError = CkCommandLine::tr("--language takes %1, not \"%2\".")
                     .arg(ViewerLanguage::codes().join(CkCommandLine::tr(" or ")), m_parser.value(kLanguage));
        return EkResult::Error;
    }
    if (options.open3dView && options.cameras.isEmpty() && options.chainFiles.isEmpty() &&
        options.files.isEmpty()) {
        sError = CkCommandLine::tr("--3d needs --camera, --chain or a file.");
        return EkResult::Error;
    }
    return EkResult::Run;
}

void CkCommandLine::readValues(SkViewerOptions& options) const {
    options.cameras = m_parser.values(kCamera);
    options.listCameras = m_parser.isSet(kListCameras);
    options.checkPlugins = m_parser.isSet(kCheckPlugins);
    options.pluginPaths = m_parser.values(kPluginPath);
    options.chainFiles = m_parser.values(kChain);
    options.files = m_parser.positionalArguments();
    options.cleanStart = m_parser.isSet(kClean);
    options.triggers = m_parser.values(kTrigger);
    options.settingsFile = m_parser.value(kSettings);
    options.screenshotFile = m_parser.value(kScreenshot);
    options.screenshot3dFile = m_parser.value(kScreenshot3d);
    options.plyFile = m_parser.value(kExportPly);
    options.open3dView =
        m_parser.isSet(k3d) || !options.screenshot3dFile.isEmpty() || !options.plyFile.isEmpty();
}

bool CkCommandLine::isInformationOnly(const QStringList& arguments) {
    static const QStringList information = {QStringLiteral("-h"), QStringLiteral("--help"),
                                            QStringLiteral("-v"), QStringLiteral("--version"),
                                            QStringLiteral("--list-cameras")};
    for (const QString& argument : arguments) {
        if (argument == QLatin1String("--")) {
            return false;
        }
        if (information.contains(argument)) {
            return true;
        }
    }
    return false;
}
