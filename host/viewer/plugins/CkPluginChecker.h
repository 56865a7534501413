#pragma once

#include "host/viewer/plugins/CkPluginVerdictCache.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <chrono>

struct SkPluginCheckOptions {
    QString cacheFolder = defaultFolder(); ///< of verdicts and load markers; created on demand
    std::chrono::milliseconds timeLimit = std::chrono::seconds(10); ///< for starting and ending a plug-in
    bool again = false; ///< drop all verdicts and check every library again

    static QString defaultFolder();
};

/// Decides which libraries the program may load: those that passed the probe and have not changed since, and
/// whose loading did not crash the previous start. User-interface thread.
class CkPluginChecker {
    Q_DECLARE_TR_FUNCTIONS(CkPluginChecker)

public:
    explicit CkPluginChecker(const SkPluginCheckOptions& checks);

    /// Why the library is not loaded, or empty. Runs a process for a new or changed one.
    QString refusal(const QString& sLibrary);

    /// Folder for the CkPluginLoadMarker of a library that is being loaded.
    QString markerFolder() const { return m_checks.cacheFolder; }

private:
    QString probe(const QString& sLibrary, const SkLibraryStamp& stamp);

    SkPluginCheckOptions m_checks;
    CkPluginVerdictCache m_verdicts;
    bool m_warnedUnchecked = false;
};
