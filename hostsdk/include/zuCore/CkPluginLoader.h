#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QList>
#include <QObject>
#include <QString>

class CkPlugin;
class QPluginLoader;

/// Loads viewer plug-ins. User-interface thread. A library that is broken, foreign or built for another major
/// version of the framework is refused with a message that names the file and the reason; it never takes
/// the program down with an exception.
class ZUCORE_EXPORT CkPluginLoader : public QObject {
    Q_OBJECT

public:
    /** A plug-in at work. */ struct SkLoadedPlugin {
        QString fileName;           ///< the library, with its path
        CkPlugin* plugin = nullptr; ///< stays the loader's
        QObject* object = nullptr;  ///< the same one as a QObject
        QString name;               ///< as it answered right after its start; it is not asked again
        QString description;        ///< likewise
        QString version;            ///< likewise, "major.minor.patch"
    };

    explicit CkPluginLoader(QObject* pParent = nullptr); ///< Loads nothing yet.
    ~CkPluginLoader() override;

    /// Loads one library, calls init() and asks for its texts. Null, with psError set, on refusal.
    CkPlugin* load(const QString& sFileName, QString* psError);

    /// Loads every library of a folder, in order of file name; returns the messages of the refused ones.
    QStringList loadFolder(const QString& sFolder);

    QList<SkLoadedPlugin> plugins() const { return m_plugins; } ///< In order of loading.

private:
    QList<SkLoadedPlugin> m_plugins;
};
