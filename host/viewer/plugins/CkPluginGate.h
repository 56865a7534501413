#pragma once

#include "host/viewer/plugins/CkPluginVerdicts.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <chrono>

struct SkPluginChecks {
    QString memoryFolder = defaultFolder(); ///< of what is remembered; made when it is wanted
    std::chrono::milliseconds timeLimit = std::chrono::seconds(10); ///< for a plug-in's start and end
    bool again = false; ///< forgets what is remembered and looks at every library anew

    static QString defaultFolder();
};

/// Decides which libraries the program may load: those that a process of their own came through with, or that
/// did so before and have not changed, and whose loading did not end the program the last time.
/// User-interface thread.
class CkPluginGate {
    Q_DECLARE_TR_FUNCTIONS(CkPluginGate)

public:
    explicit CkPluginGate(const SkPluginChecks& checks);

    /// Why the library stays outside, or empty. Takes the time of a process for a new or changed one.
    QString refusal(const QString& sLibrary);

    /// Where to leave the mark of a library that is being loaded; see CkLoadingMark.
    QString markFolder() const { return m_checks.memoryFolder; }

private:
    QString probe(const QString& sLibrary, const SkLibraryStamp& stamp);

    SkPluginChecks m_checks;
    CkPluginVerdicts m_verdicts;
    bool m_bSaidUnchecked = false;
};
