#pragma once

#include <QString>
#include <QStringList>

/// Tells the next start which library the program was loading when it crashed: a file that exists during the
/// lifetime of the object. The file is locked, and the system releases the lock when the program ends, so
/// that viewers that start at the same time ignore each other's files. User-interface thread.
class CkPluginLoadMarker {
public:
    /// Does nothing when the folder cannot be written to.
    CkPluginLoadMarker(const QString& sFolder, const QString& sLibrary);
    ~CkPluginLoadMarker();
    CkPluginLoadMarker(const CkPluginLoadMarker&) = delete;
    CkPluginLoadMarker& operator=(const CkPluginLoadMarker&) = delete;

    /// The libraries whose loading crashed a program; removes their files.
    static QStringList takeLeftBehind(const QString& sFolder);

private:
    QString m_fileName;
    int m_file = -1;
};
