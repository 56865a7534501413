#pragma once

#include <QString>
#include <QStringList>

/// Tells the next start which library this program was loading when it ended. A file stands in the folder for
/// as long as the object lives; the system holds a lock on it that ends with the program, so that viewers
/// which start side by side do not suspect each other. User-interface thread.
class CkPluginLoadMarker {
public:
    /// A folder that cannot be written to leaves no mark.
    CkPluginLoadMarker(const QString& sFolder, const QString& sLibrary);
    ~CkPluginLoadMarker();
    CkPluginLoadMarker(const CkPluginLoadMarker&) = delete;
    CkPluginLoadMarker& operator=(const CkPluginLoadMarker&) = delete;

    /// The libraries whose loading ended a program, and takes their marks away.
    static QStringList takeLeftBehind(const QString& sFolder);

private:
    QString m_sFileName;
    int m_iFile = -1;
};
