#include "tests/support/FakeAppDelegate.h"

#include "zuCore/CkChainable.h"
#include "zuCore/CkLut.h"
#include "zuCoreGui/CkMdiView.h"

#include <QMenu>
#include <QVBoxLayout>

FakeAppDelegate::FakeAppDelegate() {
    makeImageView = [](CkChainable* pBlock) { return new CkMdiView(pBlock); };
    IkAppDelegate::setInstance(this);
}

FakeAppDelegate::~FakeAppDelegate() {
    for (const QPointer<CkMdiView>& view : m_ownViews) {
        delete view;
    }
    qDeleteAll(m_menus);
    qDeleteAll(cameraPanels);
    if (IkAppDelegate::instance() == this) {
        IkAppDelegate::setInstance(nullptr);
    }
}

void FakeAppDelegate::registerView(CkMdiView* pView) {
    m_views.insert(pView->viewId(), pView);
}

void FakeAppDelegate::unregisterView(int iViewId) {
    m_views.remove(iViewId);
}

QString FakeAppDelegate::settingsFile() const {
    return m_folder.filePath(QStringLiteral("settings.ini"));
}

QVariant FakeAppDelegate::stored(const QString& sKey) const {
    return QSettings(settingsFile(), QSettings::IniFormat).value(sKey);
}

void FakeAppDelegate::store(const QString& sKey, const QVariant& value) {
    QSettings(settingsFile(), QSettings::IniFormat).setValue(sKey, value);
}

QSettings* FakeAppDelegate::settings() {
    ++settingsHandedOut;
    auto* settings = new QSettings(settingsFile(), QSettings::IniFormat);
    ++*m_settingsAlive;
    QObject::connect(settings, &QObject::destroyed, [alive = m_settingsAlive] { --*alive; });
    return settings;
}

QWidget* FakeAppDelegate::mainWindow() {
    return window;
}

QMenu* FakeAppDelegate::mainMenu(int iMenuId) {
    if (!provideMenus || iMenuId < FileMenu || iMenuId > HelpMenu) {
        return nullptr;
    }
    QMenu*& menu = m_menus[iMenuId];
    if (menu == nullptr) {
        menu = new QMenu;
    }
    return menu;
}

void FakeAppDelegate::leaveFullScreen() {
    calls << QStringLiteral("leaveFullScreen");
}

int FakeAppDelegate::activeViewId() {
    return activeView;
}

void FakeAppDelegate::setActiveView(int iViewId) {
    calls << QStringLiteral("setActiveView %1").arg(iViewId);
    activeView = iViewId;
}

CkMdiView* FakeAppDelegate::mdiView(int iViewId) {
    return m_views.value(iViewId);
}

void FakeAppDelegate::addMdiView(CkMdiView* pView) {
    calls << QStringLiteral("addMdiView %1").arg(pView->viewId());
    addedViews << pView;
    m_ownViews << pView;
    registerView(pView);
}

int FakeAppDelegate::openImageView(CkChainable* pBlock) {
    CkMdiView* view = makeImageView ? makeImageView(pBlock) : nullptr;
    const int iViewId = view != nullptr ? view->viewId() : -1;
    calls << QStringLiteral("openImageView %1").arg(iViewId);
    if (view != nullptr) {
        m_ownViews << view;
        registerView(view);
    }
    return iViewId;
}

bool FakeAppDelegate::closeView(int iViewId) {
    calls << QStringLiteral("closeView %1").arg(iViewId);
    CkMdiView* view = mdiView(iViewId);
    if (view == nullptr || !closingSucceeds) {
        return false;
    }
    unregisterView(iViewId);
    delete view;
    return true;
}

void FakeAppDelegate::refreshViewArea() {
    calls << QStringLiteral("refreshViewArea");
}

void* FakeAppDelegate::cameraHandleOfView(int iViewId) {
    if (viewCameras.contains(iViewId)) {
        return viewCameras.value(iViewId);
    }
    const CkMdiView* view = mdiView(iViewId);
    return view != nullptr ? view->cameraHandles().value(0, nullptr) : nullptr;
}

bool FakeAppDelegate::addCameraPanelLayout(void* pCameraHandle, CkCameraParameters*, QLayout* pLayout,
                                           int iFlag) {
    calls << QStringLiteral("addCameraPanelLayout %1").arg(iFlag);
    if (camerasWithoutPanel.contains(pCameraHandle)) {
        return false;
    }
    QWidget*& panel = cameraPanels[pCameraHandle];
    if (panel == nullptr) {
        panel = new QWidget;
        new QVBoxLayout(panel);
    }
    static_cast<QVBoxLayout*>(panel->layout())->addLayout(pLayout);
    return true;
}

bool FakeAppDelegate::startAcquisition(int iStart, quint64 uiCameraHandle) {
    calls << QStringLiteral("startAcquisition %1 %2").arg(iStart).arg(uiCameraHandle);
    if (onStartAcquisition) {
        onStartAcquisition(iStart, uiCameraHandle);
    }
    return acquisitionSucceeds;
}

CkLut* FakeAppDelegate::createLut(const SkPicBufInfo& info, const QList<void*>& cameraHandles) {
    calls << QStringLiteral("createLut");
    lutHandles = cameraHandles;
    if (!provideLuts) {
        return nullptr;
    }
    auto* lut = new CkLut(info.bitsPerChannel, info.channels, info.layoutFlag, info.dataType);
    lut->setPseudoColorIndex(lutPseudoColor);
    return lut;
}

void FakeAppDelegate::refreshLutControls() {
    calls << QStringLiteral("refreshLutControls");
}

void FakeAppDelegate::viewLutChanged(CkMdiView* pView) {
    calls << QStringLiteral("viewLutChanged %1").arg(pView != nullptr ? pView->viewId() : -1);
}

QString FakeAppDelegate::lastDirectory() {
    return directory;
}

void FakeAppDelegate::setLastDirectory(const QString& sDirectory) {
    calls << QStringLiteral("setLastDirectory %1").arg(sDirectory);
    directory = sDirectory;
}
