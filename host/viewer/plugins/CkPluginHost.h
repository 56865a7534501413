#pragma once

#include "host/viewer/plugins/CkPluginChecker.h"
#include "zuCore/CkPluginLoader.h"

#include <QObject>
#include <QStringList>

class CkImageData;

/// The loaded plug-ins and what they are told. User-interface thread.
class CkPluginHost : public QObject {
    Q_OBJECT

public:
    explicit CkPluginHost(const SkPluginCheckOptions& checks = SkPluginCheckOptions(),
                          QObject* pParent = nullptr);

    /// The program's own plug-in folder, found from where the program lies: the same in the build tree and
    /// once installed. Empty when there is none.
    static QString defaultFolder();

    /// Loads every library of a folder in order of file name, or a single library, once the gate lets it in.
    /// What is refused is written to the log and remembered as a problem; the others load all the same.
    void load(const QString& sPath);

    QList<CkPluginLoader::SkLoadedPlugin> plugins() const { return m_loader.plugins(); }
    QStringList problems() const { return m_problems; }

    void notifyActiveView(int iViewId);
    void notifyViewAboutToClose(int iViewId);
    void notifyFrameShown(int iViewId, const CkImageData* pData);
    void notifyNewCamera(void* pCameraHandle);

private:
    /// What a plug-in throws is logged and kept from the others.
    template <typename Call>
    void tellAll(Call call);
    void loadLibrary(const QString& sFileName);
    void addProblem(const QString& sProblem);

    CkPluginChecker m_checker;
    CkPluginLoader m_loader;
    QStringList m_problems;
};
