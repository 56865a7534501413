#pragma once

#include "host/viewer/plugins/CkPluginVerdictCache.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <chrono>

struct SkPluginCheckOptions {
    QString memoryFolder = defaultFolder(); ///< of what is remembered; made when it is wanted
    std::chrono::milliseconds timeLimit = std::chrono::seconds(10); ///< for a plug-in's start and end
    bool again = false; ///< forgets what is remembered and looks at every library anew

    static QString defaultFolder();
};

/// Decides which libraries the program may load: those that a process of their own came through with, or that
/// did so before and have not changed, and whose loading did not end the program the last time.
/// User-interface thread.
class CkPluginChecker {
    Q_DECLARE_TR_FUNCTIONS(CkPluginChecker)

public:
    explicit CkPluginChecker(const SkPluginCheckOptions& checks);

    /// Why the library stays outside, or empty. Takes the time of a process for a new or changed one.
    QString refusal(const QString& sLibrary);

    /// Where to leave the mark of a library that is being loaded; see CkPluginLoadMarker.
    QString markFolder() const { return m_checks.memoryFolder; }

private:
    QString probe(const QString& sLibrary, const SkLibraryStamp& stamp);

    SkPluginCheckOptions m_checks;
    CkPluginVerdictCache m_verdicts;
    bool m_bSaidUnchecked = false;
};
