#include "host/viewer/plugins/CkPluginHost.h"

#include "host/viewer/plugins/CkPluginLoadMarker.h"
#include "zuCore/CkPlugin.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>

CkPluginHost::CkPluginHost(const SkPluginCheckOptions& checks, QObject* pParent)
    : QObject(pParent), m_checker(checks) {}

QString CkPluginHost::defaultFolder() {
    const QDir binaries(QCoreApplication::applicationDirPath());
    // The second is the place on distributions with a library folder per architecture.
    for (const char* relative : {"../lib/zuviewer/plugins", "../" ZU_PLUGIN_INSTALL_DIR}) {
        const QFileInfo folder(binaries.filePath(QLatin1String(relative)));
        if (folder.isDir()) {
            return folder.canonicalFilePath();
        }
    }
    return {};
}

void CkPluginHost::load(const QString& sPath) {
    const QFileInfo info(sPath);
    if (info.isDir()) {
        const QDir folder(sPath);
        for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
            if (QLibrary::isLibrary(name)) {
                loadLibrary(folder.absoluteFilePath(name));
            }
        }
    } else if (info.isFile()) {
        loadLibrary(info.absoluteFilePath());
    } else {
        addProblem(tr("%1: there is no such plug-in or folder.").arg(sPath));
    }
}

void CkPluginHost::loadLibrary(const QString& sFileName) {
    const qsizetype before = m_loader.plugins().size();
    QString problem = m_checker.refusal(sFileName);
    if (problem.isEmpty()) {
        // If the program crashes here, the next start skips the library.
        const CkPluginLoadMarker marker(m_checker.markerFolder(), sFileName);
        m_loader.load(sFileName, &problem);
    }
    if (!problem.isEmpty()) {
        addProblem(problem);
    } else if (m_loader.plugins().size() > before) {
        // A copy, for plugins() returns a temporary list.
        const CkPluginLoader::SkLoadedPlugin loaded = m_loader.plugins().constLast();
        qInfo("%s",
              qUtf8Printable(
                  tr("Plug-in \"%1\" %2 loaded from %3").arg(loaded.name, loaded.version, loaded.fileName)));
    }
}

void CkPluginHost::addProblem(const QString& sProblem) {
    qWarning("%s", qUtf8Printable(sProblem));
    m_problems.append(sProblem);
}

template <typename Call>
void CkPluginHost::callAll(Call call) {
    for (const CkPluginLoader::SkLoadedPlugin& loaded : m_loader.plugins()) {
        try {
            call(*loaded.plugin);
        } catch (...) {
            // Any type of exception: the other plug-ins and the viewer have to continue.
            qCritical("%s threw an exception", qUtf8Printable(loaded.fileName));
        }
    }
}

void CkPluginHost::notifyActiveView(int iViewId) {
    callAll([=](CkPlugin& plugin) { plugin.activeViewChanged(iViewId); });
}

void CkPluginHost::notifyViewAboutToClose(int iViewId) {
    callAll([=](CkPlugin& plugin) { plugin.viewAboutToClose(iViewId); });
}

void CkPluginHost::notifyFrameShown(int iViewId, const CkImageData* pData) {
    callAll([=](CkPlugin& plugin) { plugin.viewGotNewImage(iViewId, pData); });
}

void CkPluginHost::notifyNewCamera(void* pCameraHandle) {
    callAll([=](CkPlugin& plugin) { plugin.newCameraConnected(pCameraHandle); });
}
