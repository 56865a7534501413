#pragma once

#include "host/viewer/plugins/CkPluginChecker.h"
#include "zuCore/CkPluginLoader.h"

#include <QObject>
#include <QStringList>

class CkImageData;

/// Loads the plug-ins and forwards events to them. User-interface thread.
class CkPluginHost : public QObject {
    Q_OBJECT

public:
    explicit CkPluginHost(const SkPluginCheckOptions& checks = SkPluginCheckOptions(),
                          QObject* pParent = nullptr);

    /// The program's own plug-in folder, located relative to the program, in the build tree as when
    /// installed. Empty when there is none.
    static QString defaultFolder();

    /// Loads every library of a folder in order of file name, or a single library, if CkPluginChecker accepts
    /// it. A refused library is logged and listed in problems(); the others are loaded nevertheless.
    void load(const QString& sPath);

    QList<CkPluginLoader::SkLoadedPlugin> plugins() const { return m_loader.plugins(); }
    QStringList problems() const { return m_problems; }

    void notifyActiveView(int iViewId);
    void notifyViewAboutToClose(int iViewId);
    void notifyFrameShown(int iViewId, const CkImageData* pData);
    void notifyNewCamera(void* pCameraHandle);

private:
    /// Calls every plug-in; exceptions are logged, and the remaining plug-ins are still called.
    template <typename Call>
    void callAll(Call call);
    void loadLibrary(const QString& sFileName);
    void addProblem(const QString& sProblem);

    CkPluginChecker m_checker;
    CkPluginLoader m_loader;
    QStringList m_problems;
};
