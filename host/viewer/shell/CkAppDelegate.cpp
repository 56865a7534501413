#include "host/viewer/shell/CkAppDelegate.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/panels/lut/CkLutPanel.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/shell/CkMainWindow.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkLut.h"

#include <QSettings>
#include <algorithm>

CkAppDelegate::CkAppDelegate(CkMainWindow* pWindow) : m_window(pWindow) {}

CkAppDelegate::~CkAppDelegate() = default;

CkViewArea* CkAppDelegate::area() const {
    return m_window ? m_window->area() : nullptr;
}

QSettings* CkAppDelegate::settings() {
    return ViewerSettings::open().release();
}

QWidget* CkAppDelegate::mainWindow() {
    return m_window;
}

QMenu* CkAppDelegate::mainMenu(int iMenuId) {
    return m_window ? m_window->menu(iMenuId) : nullptr;
}

void CkAppDelegate::leaveFullScreen() {
    if (m_window) {
        m_window->setFullScreen(false);
    }
}

int CkAppDelegate::activeViewId() {
    return area() != nullptr ? area()->activeViewId() : -1;
}

void CkAppDelegate::setActiveView(int iViewId) {
    if (area() != nullptr) {
        area()->setActiveView(iViewId);
    }
}

CkMdiView* CkAppDelegate::mdiView(int iViewId) {
    return area() != nullptr ? area()->view(iViewId) : nullptr;
}

void CkAppDelegate::addMdiView(CkMdiView* pView) {
    if (area() != nullptr) {
        area()->addView(pView);
    }
}

int CkAppDelegate::openImageView(CkChainable* pBlock) {
    if (area() == nullptr || pBlock == nullptr || pBlock->chain() == nullptr) {
        return -1;
    }
    auto* view = new CkImageView(pBlock);
    area()->addView(view);
    return view->viewId();
}

bool CkAppDelegate::closeView(int iViewId) {
    return area() != nullptr && area()->closeView(iViewId);
}

void CkAppDelegate::refreshViewArea() {
    if (area() != nullptr) {
        area()->tile();
    }
}

void* CkAppDelegate::cameraHandleOfView(int iViewId) {
    const CkMdiView* view = mdiView(iViewId);
    const QList<void*> handles = view != nullptr ? view->cameraHandles() : QList<void*>();
    return !handles.isEmpty() && CkCameraManager::instance()->isOpen(handles.first()) ? handles.first()
                                                                                      : nullptr;
}

bool CkAppDelegate::addCameraPanelLayout(void* pCameraHandle, CkCameraParameters*, QLayout* pLayout, int) {
    CkCameraPanel* panel = m_window ? m_window->cameras()->panel(pCameraHandle) : nullptr;
    if (panel == nullptr || pLayout == nullptr) {
        return false;
    }
    panel->addToolLayout(pLayout);
    return true;
}

bool CkAppDelegate::startAcquisition(int iStart, quint64 uiCameraHandle) {
    if (!m_window) {
        return false;
    }
    auto* handle = reinterpret_cast<void*>(quintptr(uiCameraHandle));
    return iStart != 0 ? m_window->cameras()->start(handle) : m_window->cameras()->stop(handle);
}

CkLut* CkAppDelegate::createLut(const SkPicBufInfo& info, const QList<void*>&) {
    const bool isFloat = isFloatType(info.dataType);
    auto* lut = new CkLut(std::clamp(info.bitsPerChannel, 1U, 32U), std::max(info.channels, 1U),
                          info.layoutFlag, info.dataType);
    lut->setPseudoColorIndex(
        ViewerSettings::open()
            ->value(ViewerSettings::pseudoColorKey(isFloat), ViewerSettings::defaultPseudoColor(isFloat))
            .toInt());
    lut->allocRgbTable(0);
    return lut;
}

void CkAppDelegate::refreshLutControls() {
    if (m_window) {
        m_window->lutPanel()->refresh();
        m_window->updateActions();
    }
}

void CkAppDelegate::viewLutChanged(CkMdiView* pView) {
    if (pView != nullptr && pView->viewId() == activeViewId()) {
        refreshLutControls();
    }
}

QString CkAppDelegate::lastDirectory() {
    return ViewerSettings::lastDirectory();
}

void CkAppDelegate::setLastDirectory(const QString& sDirectory) {
    ViewerSettings::setLastDirectory(sDirectory);
}
