#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QList>
#include <QObject>
#include <QString>

class CkPlugin;
class QPluginLoader;

/// Loads viewer plug-ins. User-interface thread. A library that is broken, foreign or built for another major
/// version of the framework is refused with a message that names the file and the reason; its exceptions
/// never end the program.
class ZUCORE_EXPORT CkPluginLoader : public QObject {
    Q_OBJECT

public:
    /** A loaded plug-in. */ struct SkLoadedPlugin {
        QString fileName;           ///< the library, with its path
        CkPlugin* plugin = nullptr; ///< owned by the loader
        QObject* object = nullptr;  ///< the same object as a QObject
        QString name;               ///< queried once, right after init()
        QString description;        ///< likewise
        QString version;            ///< likewise, "major.minor.patch"
    };

    explicit CkPluginLoader(QObject* pParent = nullptr); ///< Loads nothing yet.
    ~CkPluginLoader() override;

    /// Loads one library, calls init() and queries its texts. Null, with psError set, on refusal.
    CkPlugin* load(const QString& sFileName, QString* psError);

    /// Loads every library of a folder, in order of file name; returns the messages of the refused ones.
    QStringList loadFolder(const QString& sFolder);

    QList<SkLoadedPlugin> plugins() const { return m_plugins; } ///< In order of loading.

private:
    QList<SkLoadedPlugin> m_plugins;
};
