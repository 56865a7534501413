#include "host/viewer/shell/CkViewerSession.h"
#include "host/viewer/base/ViewerVersion.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/panels/log/CkLogSink.h"
#include "host/viewer/playback/CkRecordingController.h"
#include "host/viewer/plugins/CkPluginHost.h"
#include "host/viewer/session/CkSessionReader.h"
#include "host/viewer/session/CkSessionSaver.h"
#include "host/viewer/shell/CkAppDelegate.h"
#include "host/viewer/shell/CkChainFileController.h"
#include "host/viewer/shell/CkHelpMenu.h"
#include "host/viewer/shell/CkMainWindow.h"
#include "host/viewer/shell/CkUnattendedRun.h"
#include "sim/camera/CkSimCameraDriver.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPlugin.h"
#include "zuCoreGui/CkMdiView.h"

#include <QAbstractButton>
#include <QAction>
#include <QCoreApplication>
#include <QDockWidget>
#include <QMenu>
#include <QTimer>

CkViewerSession::CkViewerSession(const SkViewerOptions& options, QObject* pParent)
    : QObject(pParent), m_options(options) {
    CkLogSink::instance()->install();
    ViewerSettings::setFileName(options.settingsFile);
    m_window = std::make_unique<CkMainWindow>();
    m_delegate = std::make_unique<CkAppDelegate>(m_window.get());
    IkAppDelegate::setInstance(m_delegate.get());
    SkPluginCheckOptions checks;
    checks.again = options.checkPlugins;
    m_plugins = std::make_unique<CkPluginHost>(checks);

    CkViewArea* area = m_window->area();
    connect(area, &CkViewArea::viewAdded, this, &CkViewerSession::watchView);
    connect(area, &CkViewArea::activeViewChanged, m_plugins.get(), &CkPluginHost::notifyActiveView);
    connect(area, &CkViewArea::viewAboutToClose, m_plugins.get(), &CkPluginHost::notifyViewAboutToClose);
    connect(m_window->cameras(), &CkCameraController::cameraReady, m_plugins.get(),
            &CkPluginHost::notifyNewCamera);
}

CkViewerSession::~CkViewerSession() {
    m_unattended.reset();
    m_saver.reset();
    m_window->area()->closeAllViews(false);
    m_window->cameras()->closeAllCameras();
    for (CkChain* chain : CkChainManager::instance()->chains()) {
        CkChainManager::instance()->closeChain(chain);
    }
    // Views and tool areas of plug-ins must be deleted before their code is unloaded.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_plugins->disconnect();
    disconnect(m_window->area(), nullptr, m_plugins.get(), nullptr);
    disconnect(m_window->cameras(), nullptr, m_plugins.get(), nullptr);
    m_window.reset();
    m_plugins.reset();
    IkAppDelegate::setInstance(nullptr);
}

void CkViewerSession::addBuiltInDrivers() {
    static bool s_bDone = false;
    if (!s_bDone) {
        s_bDone = true;
        CkCameraManager::instance()->addDriver(std::make_unique<CkSimCameraDriver>());
    }
}

QString CkViewerSession::cameraId(const QString& sNumberOrId) {
    const QList<SkCameraInfo> cameras = CkCameraManager::instance()->availableCameras();
    for (const SkCameraInfo& info : cameras) {
        if (info.id == sNumberOrId) {
            return info.id;
        }
    }
    bool ok = false;
    const int number = sNumberOrId.toInt(&ok);
    return ok && number >= 0 && number < cameras.size() ? cameras[number].id : QString();
}

QString CkViewerSession::cameraList() {
    QString text;
    int number = 0;
    for (const SkCameraInfo& info : CkCameraManager::instance()->availableCameras()) {
        text += QStringLiteral("%1  %2 (%3)  %4\n").arg(number++).arg(info.name, info.model, info.id);
    }
    return text.isEmpty() ? tr("There is no camera.") + QLatin1Char('\n') : text;
}

void CkViewerSession::watchView(int iViewId) {
    CkMdiView* view = m_window->area()->view(iViewId);
    connect(view, &CkMdiView::frameShown, this, [this, view](int iShownId, const CkImageData* pData) {
        // A closed view may still get a frame in flight.
        if (m_window && m_window->area()->view(iShownId) == view) {
            m_plugins->notifyFrameShown(iShownId, pData);
        }
    });
}

bool CkViewerSession::start() {
    qInfo("%s", qUtf8Printable(ViewerVersion::text()));
    loadPlugins();
    // Named cameras or files are opened instead of the last session, which stays stored.
    const bool named =
        !m_options.cameras.isEmpty() || !m_options.chainFiles.isEmpty() || !m_options.files.isEmpty();
    const EkSessionScope scope = m_options.unattended() ? EkSessionScope::Nothing
                                 : named                ? EkSessionScope::Layout
                                                        : EkSessionScope::LayoutAndSession;
    m_window->setSessionScope(scope);
    m_window->recordings()->setInteractive(!m_options.unattended());
    const bool restoresLayout = !m_options.unattended() && !m_options.cleanStart;
    const bool restoresSession = restoresLayout && !named;
    if (restoresLayout) {
        m_window->restoreLayout();
    }
    if (m_options.windowSize.isValid()) {
        m_window->resize(m_options.windowSize);
    }
    m_window->show();
    bool ok = openCameras();
    ok = openFiles() && ok;
    if (restoresSession) {
        restoreSession();
    }
    if (m_options.open3dView || !m_options.triggers.isEmpty()) {
        runStartActionsWhenReady();
    }
    if (m_options.unattended()) {
        m_unattended = std::make_unique<CkUnattendedRun>(m_options, m_window.get());
        connect(m_unattended.get(), &CkUnattendedRun::finished, this, &CkViewerSession::finished);
        m_unattended->start();
    } else {
        m_saver = std::make_unique<CkSessionSaver>(m_window.get(), m_window->area(), scope, restoresSession);
        connect(m_window.get(), &CkMainWindow::closing, m_saver.get(), &CkSessionSaver::end);
    }
    return ok;
}

void CkViewerSession::loadPlugins() {
    const QString folder = CkPluginHost::defaultFolder();
    if (!folder.isEmpty()) {
        m_plugins->load(folder);
    }
    for (const QString& path : m_options.pluginPaths) {
        m_plugins->load(path);
    }
    QStringList texts;
    for (const CkPluginLoader::SkLoadedPlugin& loaded : m_plugins->plugins()) {
        texts.append(QStringLiteral("%1: %2").arg(loaded.name, loaded.description));
    }
    m_window->helpMenu()->setPluginTexts(texts);
    m_window->assignPluginShortcuts();
}

void CkViewerSession::restoreSession() {
    const SkRestoredSession restored = CkSessionReader::restoreLast(m_window->area(), m_window->cameras());
    for (const int id : restored.viewsWith3d) {
        whenReady(id, [this, id] {
            open3dView(id);
            if (CkMdiView* view = m_window->area()->view(id)) {
                CkSessionReader::set3dViewOpened(*view);
            }
        });
    }
}

bool CkViewerSession::openCameras() {
    bool ok = true;
    for (const QString& wanted : m_options.cameras) {
        const QString id = cameraId(wanted);
        if (id.isEmpty()) {
            qCritical("%s", qUtf8Printable(
                                tr("There is no camera \"%1\"; there are:\n%2").arg(wanted, cameraList())));
            ok = false;
            continue;
        }
        void* handle = m_window->cameras()->openCamera(id, true);
        ok = handle != nullptr && m_window->cameras()->start(handle) && ok;
    }
    return ok;
}

bool CkViewerSession::openFiles() {
    bool ok = true;
    for (const QString& fileName : m_options.chainFiles) {
        QString error;
        if (!m_window->chainFiles()->open(fileName, error)) {
            qCritical("%s", qUtf8Printable(error));
            ok = false;
        }
    }
    for (const QString& fileName : m_options.files) {
        QString error;
        if (!m_window->fileOpener()->open(fileName, error)) {
            qCritical("%s", qUtf8Printable(error));
            ok = false;
        }
    }
    return ok;
}

void CkViewerSession::whenReady(int iViewId, const std::function<void()>& callback) {
    // After the first frame, so that actions know what the view shows.
    connect(
        m_window->area()->view(iViewId), &CkMdiView::receivedFrame, this,
        [this, callback] {
            // Not during frame delivery, because actions may open modal dialogs.
            QTimer::singleShot(0, this, callback);
        },
        Qt::SingleShotConnection);
}

void CkViewerSession::runStartActionsWhenReady() {
    const QList<CkMdiView*> views = m_window->area()->views();
    if (!views.isEmpty()) {
        const int id = views.first()->viewId();
        whenReady(id, [this, id] { runStartActions(id); });
    }
}

void CkViewerSession::open3dView(int iViewId) {
    if (m_window->area()->view(iViewId) == nullptr) {
        return;
    }
    m_window->area()->setActiveView(iViewId);
    if (!trigger(QStringLiteral("menuOpenToF3dView"))) {
        qWarning("%s", qUtf8Printable(tr("No plug-in offers a 3D view.")));
    }
}

void CkViewerSession::runStartActions(int iViewId) {
    if (m_options.open3dView) {
        open3dView(iViewId);
    }
    m_window->area()->setActiveView(iViewId);
    for (const QString& name : m_options.triggers) {
        if (!trigger(name)) {
            qWarning("%s", qUtf8Printable(tr("There is nothing named \"%1\" to trigger.").arg(name)));
        }
    }
}

bool CkViewerSession::trigger(const QString& sObjectName) {
    QList<QObject*> roots = {m_window.get()};
    for (const CkPluginLoader::SkLoadedPlugin& loaded : m_plugins->plugins()) {
        roots.append(loaded.object);
    }
    for (const QObject* root : roots) {
        if (auto* action = root->findChild<QAction*>(sObjectName)) {
            action->trigger();
            return true;
        }
        if (auto* button = root->findChild<QAbstractButton*>(sObjectName)) {
            // The panel of a button has to be raised before the button can be clicked, as by a user.
            for (QWidget* parent = button->parentWidget(); parent != nullptr;
                 parent = parent->parentWidget()) {
                if (auto* const dock = qobject_cast<QDockWidget*>(parent)) {
                    dock->show();
                    dock->raise();
                }
            }
            button->click();
            return true;
        }
    }
    return false;
}
