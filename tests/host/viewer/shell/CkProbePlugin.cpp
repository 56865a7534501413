#include "tests/host/viewer/shell/CkProbePlugin.h"

#include "zuCore/CkCameraManager.h"
#include "zuCore/CkImageData.h"
#include "zuCore/zuCoreVersion.h"
#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QToolButton>

bool CkProbePlugin::init() {
    IkAppDelegate* delegate = IkAppDelegate::instance();
    QMenu* menu = delegate != nullptr ? delegate->mainMenu(IkAppDelegate::PluginMenu) : nullptr;
    if (menu == nullptr) {
        return false;
    }
    menu->addAction(QStringLiteral("Probe"))->setObjectName(QStringLiteral("probeAction"));
    m_calls.append(QStringLiteral("init"));
    return true;
}

void CkProbePlugin::version(int& major, int& minor, int& patch) const {
    zuCoreVersion(major, minor, patch);
}

void CkProbePlugin::throwIfAsked(const char* call) {
    if (property("throws").toBool()) {
        m_calls.append(QStringLiteral("threw in ") + QLatin1String(call));
        throw 7;
    }
}

void CkProbePlugin::activeViewChanged(int viewId) {
    throwIfAsked("activeViewChanged");
    m_calls.append(QStringLiteral("active %1").arg(viewId));
}

void CkProbePlugin::viewAboutToClose(int viewId) {
    throwIfAsked("viewAboutToClose");
    const bool alive = IkAppDelegate::instance()->mdiView(viewId) != nullptr;
    m_calls.append(QStringLiteral("closing %1 %2").arg(viewId).arg(alive ? "alive" : "gone"));
}

void CkProbePlugin::viewGotNewImage(int viewId, const CkImageData* pData) {
    throwIfAsked("viewGotNewImage");
    const QString call =
        QStringLiteral("image %1 %2x%3").arg(viewId).arg(pData->picBuf().width).arg(pData->picBuf().height);
    if (!m_calls.contains(call)) {
        m_calls.append(call);
    }
}

void CkProbePlugin::newCameraConnected(void* cameraHandle) {
    throwIfAsked("newCameraConnected");
    auto* layout = new QHBoxLayout;
    auto* button = new QToolButton;
    button->setObjectName(QStringLiteral("probeButton"));
    layout->addWidget(button);
    const bool placed = IkAppDelegate::instance()->addCameraPanelLayout(
        cameraHandle, CkCameraManager::instance()->cameraParameters(cameraHandle), layout, 1);
    m_calls.append(placed ? QStringLiteral("camera with panel") : QStringLiteral("camera without panel"));
    if (!placed) {
        delete button;
        delete layout;
    }
}
