#include "app/CkPluginHost.h"

#include "zuCore/CkPlugin.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

CkPluginHost::CkPluginHost(QObject* pParent) : QObject(pParent) {}

QString CkPluginHost::defaultFolder() {
    const QDir binaries(QCoreApplication::applicationDirPath());
    // The second one is where a distribution with libraries by architecture puts it.
    for (const char* relative : {"../lib/zuviewer/plugins", "../" ZU_PLUGIN_INSTALL_DIR}) {
        const QFileInfo folder(binaries.filePath(QLatin1String(relative)));
        if (folder.isDir()) {
            return folder.canonicalFilePath();
        }
    }
    return {};
}

void CkPluginHost::load(const QString& sPath) {
    QStringList problems;
    const qsizetype before = m_loader.plugins().size();
    const QFileInfo info(sPath);
    if (info.isDir()) {
        problems = m_loader.loadFolder(sPath);
    } else if (info.isFile()) {
        QString error;
        if (m_loader.load(sPath, &error) == nullptr) {
            problems.append(error);
        }
    } else {
        problems.append(tr("%1: there is no such plug-in or folder.").arg(sPath));
    }
    for (const QString& problem : problems) {
        qWarning("%s", qUtf8Printable(problem));
    }
    m_problems += problems;
    const QList<CkPluginLoader::SkLoadedPlugin> fresh = m_loader.plugins().mid(before);
    for (const CkPluginLoader::SkLoadedPlugin& loaded : fresh) {
        int major = 0;
        int minor = 0;
        int patch = 0;
        loaded.plugin->version(major, minor, patch);
        qInfo("%s", qUtf8Printable(tr("Plug-in \"%1\" %2.%3.%4 loaded from %5")
                                       .arg(loaded.plugin->name())
                                       .arg(major)
                                       .arg(minor)
                                       .arg(patch)
                                       .arg(loaded.fileName)));
    }
}

template <typename Call>
void CkPluginHost::tellAll(Call call) {
    for (const CkPluginLoader::SkLoadedPlugin& loaded : m_loader.plugins()) {
        try {
            call(*loaded.plugin);
        } catch (...) {
            // Whatever it was, the other plug-ins and the viewer go on.
            qCritical("%s threw an exception", qUtf8Printable(loaded.fileName));
        }
    }
}

void CkPluginHost::notifyActiveView(int iViewId) {
    tellAll([=](CkPlugin& plugin) { plugin.activeViewChanged(iViewId); });
}

void CkPluginHost::notifyViewAboutToClose(int iViewId) {
    tellAll([=](CkPlugin& plugin) { plugin.viewAboutToClose(iViewId); });
}

void CkPluginHost::notifyNewImage(int iViewId, const CkImageData* pData) {
    tellAll([=](CkPlugin& plugin) { plugin.viewGotNewImage(iViewId, pData); });
}

void CkPluginHost::notifyNewCamera(void* pCameraHandle) {
    tellAll([=](CkPlugin& plugin) { plugin.newCameraConnected(pCameraHandle); });
}
