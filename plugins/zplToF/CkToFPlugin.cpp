#include "plugins/zplToF/CkToFPlugin.h"

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/integration/ToFCameraCheck.h"
#include "plugins/zplToF/integration/ToFToolArea.h"
#include "plugins/zplToF/translations/ToFTranslation.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkRTTI.h"
#include "zuCore/ToFVocabulary.h"
#include "zuCore/zuCoreVersion.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAction>
#include <QLocale>
#include <QMenu>
#include <QVariant>

namespace {

// The host may have deleted the menu together with its entries. The tool tip of a disabled entry gives the
// reason.
void enable(QAction* action, bool enabled, const QString& why) {
    if (action != nullptr) {
        action->setEnabled(enabled);
        action->setToolTip(enabled ? QString() : why);
    }
}

} // namespace

CkToFPlugin::CkToFPlugin() : m_actions(m_chainHost) {
    ToFTranslation::install(QLocale(), this);
}

CkToFPlugin::~CkToFPlugin() = default;

bool CkToFPlugin::init() {
    CkRTTI::instance()->registerClass(this, &CkToFProcessCnbl::staticMetaObject,
                                      QStringLiteral("CkChainable"));

    IkAppDelegate* host = IkAppDelegate::instance();
    if (QMenu* hostMenu = host != nullptr ? host->mainMenu(IkAppDelegate::PluginMenu) : nullptr) {
        QMenu* menu = hostMenu->addMenu(tr("Time of Flight Processing (ToF)"));
        const auto add = [menu](const QString& text, const char* name) {
            QAction* action = menu->addAction(text);
            action->setObjectName(QLatin1String(name));
            enable(action, false, tr("No view is active"));
            return action;
        };
        m_open3dView = add(tr("Open ToF 3D View"), "menuOpenToF3dView");
        m_openAllViews = add(tr("Open All ToF Processing Views"), "menuOpenAllToFProcessingViews");
        m_calibrate = add(tr("Calibrate distance offset..."), "menuTofCalibrateOffset");
        // Cameras are opened and closed without a change of the active view.
        connect(menu, &QMenu::aboutToShow, this, [this] {
            if (IkAppDelegate* now = IkAppDelegate::instance()) {
                enableMainMenuItems(now->activeViewId());
            }
        });
        connect(m_open3dView, SIGNAL(triggered()), this, SLOT(on_actOpenToF3dView()));
        connect(m_openAllViews, SIGNAL(triggered()), this, SLOT(on_actOpenAllToFViews()));
        connect(m_calibrate, SIGNAL(triggered()), this, SLOT(on_actCalibrateOffset()));
    }
    const QList<void*> cameras = CkCameraManager::instance()->openedCameras();
    for (void* camera : cameras) {
        newCameraConnected(camera);
    }
    return true;
}

QString CkToFPlugin::name() const {
    return tr("ToF Images Visualization");
}

QString CkToFPlugin::author() const {
    return QStringLiteral("Orvane");
}

QString CkToFPlugin::description() const {
    return tr("Plugin for ToF camera output visualization and processing.");
}

void CkToFPlugin::version(int& major, int& minor, int& patch) const {
    zuCoreVersion(major, minor, patch);
}

QString CkToFPlugin::website() const {
    return QStringLiteral("https://www.orvane.com");
}

void CkToFPlugin::activeViewChanged(int viewId) {
    enableMainMenuItems(viewId);
}

void CkToFPlugin::viewAboutToClose(int viewId) {
    m_actions.forgetView(viewId);
}

void CkToFPlugin::viewGotNewImage(int viewId, const CkImageData* pData) {
    // A copy: a frame may make the host close views, which changes the list.
    const QList<QPointer<CkToF3DMdiView>> views = m_actions.views();
    for (const QPointer<CkToF3DMdiView>& view : views) {
        if (view != nullptr && view->connectedViewId() == viewId) {
            view->updateWithConnectedImageData(pData, false);
        }
    }
}

void CkToFPlugin::newCameraConnected(void* cameraHandle) {
    if (ToFToolArea::addToCameraPanel(cameraHandle, this)) {
        enableMainMenuItems(IkAppDelegate::instance()->activeViewId());
    }
}

void CkToFPlugin::on_actOpenToF3dView() {
    m_actions.openToF3dView();
}

void CkToFPlugin::on_actOpenToF3dViewStartAcq() {
    startCameraAcquitionFromButton(sender());
    on_actOpenToF3dView();
}

void CkToFPlugin::on_actOpenAllToFViews() {
    m_actions.openAllToFViews();
}

void CkToFPlugin::on_actOpenAllToFViewsStartAcq() {
    startCameraAcquitionFromButton(sender());
    on_actOpenAllToFViews();
}

void CkToFPlugin::on_actCalibrateOffset() {
    m_actions.calibrateOffset();
}

void CkToFPlugin::startCameraAcquitionFromButton(const QObject* pButton) {
    const QVariant handle = pButton != nullptr ? pButton->property(ToFProperty::kCameraHandle) : QVariant();
    IkAppDelegate* host = IkAppDelegate::instance();
    if (handle.isValid() && host != nullptr) {
        host->startAcquisition(1, handle.toULongLong());
    }
}

void CkToFPlugin::enableMainMenuItems(int iActiveViewId) {
    void* camera = nullptr;
    const bool active = iActiveViewId != -1;
    const bool tofView = active && ToFCameraCheck::viewBelongsToToFCamera(iActiveViewId, camera);
    const CkCameraManager* cameras = CkCameraManager::instance();
    const bool onlyToFCamera = active && cameras->openedCameraCount() == 1 &&
                               ToFCameraCheck::isToFCamera(cameras->openedCameras().constFirst());
    const QString noView = tr("No view is active");
    const QString noCamera = active ? tr("The active view does not show a ToF camera") : noView;
    enable(m_open3dView, active, noView);
    enable(m_openAllViews, tofView, noCamera);
    enable(m_calibrate, tofView || onlyToFCamera, noCamera);
}
