#include "host/viewer/plugins/CkPluginChecker.h"

#include "host/viewer/base/ViewerVersion.h"
#include "host/viewer/plugins/CkPluginLoadMarker.h"
#include "host/viewer/plugins/PluginProbe.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

// A library may behave differently in another version of the program.
QString hostIdentity() {
    const QFileInfo program(PluginProbe::program());
    return QStringLiteral("%1 Qt %2 %3 %4")
        .arg(ViewerVersion::number(), QLatin1String(qVersion()))
        .arg(program.size())
        .arg(program.lastModified().toMSecsSinceEpoch());
}

} // namespace

QString SkPluginCheckOptions::defaultFolder() {
    return QDir(QStandardPaths::writableLocation(QStandardPaths::CacheLocation))
        .filePath(QStringLiteral("plugins"));
}

CkPluginChecker::CkPluginChecker(const SkPluginCheckOptions& checks)
    : m_checks(checks),
      m_verdicts(QDir(checks.cacheFolder).filePath(QStringLiteral("verdicts.json")), hostIdentity()) {
    const QStringList culprits = CkPluginLoadMarker::takeLeftBehind(m_checks.cacheFolder);
    if (m_checks.again) {
        m_verdicts.clear();
        return;
    }
    for (const QString& library : culprits) {
        if (const auto stamp = SkLibraryStamp::of(library)) {
            m_verdicts.insert(
                library, *stamp,
                tr("Plug-in \"%1\" was left out: an earlier start ended while it was being loaded. It "
                   "is tried again when its file has changed or with --check-plugins.")
                    .arg(QDir::toNativeSeparators(library)));
        }
    }
}

QString CkPluginChecker::refusal(const QString& sLibrary) {
    const std::optional<SkLibraryStamp> stamp = SkLibraryStamp::of(sLibrary);
    if (!stamp) {
        return tr("Plug-in \"%1\" was refused: the file cannot be read.")
            .arg(QDir::toNativeSeparators(sLibrary));
    }
    const std::optional<QString> known = m_verdicts.find(sLibrary, *stamp);
    return known ? *known : probe(sLibrary, *stamp);
}

QString CkPluginChecker::probe(const QString& sLibrary, const SkLibraryStamp& stamp) {
    const std::optional<QString> refusal = PluginProbe::refusal(sLibrary, m_checks.timeLimit);
    if (refusal) {
        m_verdicts.insert(sLibrary, stamp, *refusal);
        return *refusal;
    }
    if (!m_warnedUnchecked) {
        m_warnedUnchecked = true;
        qWarning("%s", qUtf8Printable(
                           tr("Plug-ins are loaded unchecked: the program zuPluginProbe cannot be run.")));
    }
    return {};
}
