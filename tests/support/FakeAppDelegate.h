#pragma once

#include "zuCoreGui/IkAppDelegate.h"

#include <QHash>
#include <QPointer>
#include <QSettings>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>
#include <memory>

class CkMdiView;
class QLayout;
class QMenu;
class QWidget;

/// A fake application: settings in a temporary file, views in a table, answers set by the test, and a log of
/// the calls. The registered instance during its lifetime.
class FakeAppDelegate : public IkAppDelegate {
public:
    FakeAppDelegate();
    ~FakeAppDelegate() override;

    // ---- what tests set ------------------------------------------------------------------------------

    /// Registers a view under its identifier; the test keeps ownership. Deleted views unregister themselves.
    void registerView(CkMdiView* pView);
    void unregisterView(int iViewId);

    QPointer<QWidget> window;         ///< returned by mainWindow
    bool provideMenus = true;         ///< false: mainMenu returns null
    int activeView = -1;              ///< returned by activeViewId; changed by setActiveView
    QHash<int, void*> viewCameras;    ///< cameraHandleOfView; without an entry the view's first camera
    QList<void*> camerasWithoutPanel; ///< addCameraPanelLayout returns false for these
    bool acquisitionSucceeds = true;  ///< returned by startAcquisition
    bool closingSucceeds = true;      ///< returned by closeView for known views, which it then deletes
    /// Implementation of openImageView. Default: a plain CkMdiView on the block, registered and owned by the
    /// delegate.
    std::function<CkMdiView*(CkChainable*)> makeImageView;
    bool provideLuts = true; ///< false: createLut returns null
    int lutPseudoColor = 0;  ///< map of the tables of createLut
    QString directory;       ///< returned by lastDirectory; changed by setLastDirectory
    std::function<void(int, quint64)> onStartAcquisition; ///< called inside startAcquisition

    // ---- what tests read -----------------------------------------------------------------------------

    /// "setActiveView 3", "startAcquisition 1 0", "leaveFullScreen", ... in order of the calls. Queries
    /// (settings, mainWindow, mdiView, ...) are not recorded.
    QStringList calls;
    QList<void*> lutHandles; ///< the cameras of the last createLut
    int settingsHandedOut = 0;
    /// Settings objects handed out and still alive.
    int settingsAlive() const { return *m_settingsAlive; }
    QString settingsFile() const;
    /// The stored value as a new reader sees it; invalid when there is none.
    QVariant stored(const QString& sKey) const;
    void store(const QString& sKey, const QVariant& value);
    /// Views that came through addMdiView, newest last.
    QList<QPointer<CkMdiView>> addedViews;
    /// Widgets that own the layouts of addCameraPanelLayout, by camera.
    QHash<void*, QWidget*> cameraPanels;

    // ---- IkAppDelegate -------------------------------------------------------------------------------

    QSettings* settings() override;
    QWidget* mainWindow() override;
    QMenu* mainMenu(int iMenuId) override;
    void leaveFullScreen() override;
    int activeViewId() override;
    void setActiveView(int iViewId) override;
    CkMdiView* mdiView(int iViewId) override;
    void addMdiView(CkMdiView* pView) override;
    int openImageView(CkChainable* pBlock) override;
    bool closeView(int iViewId) override;
    void refreshViewArea() override;
    void* cameraHandleOfView(int iViewId) override;
    bool addCameraPanelLayout(void* pCameraHandle, CkCameraParameters* pParameters, QLayout* pLayout,
                              int iFlag) override;
    bool startAcquisition(int iStart, quint64 uiCameraHandle) override;
    CkLut* createLut(const SkPicBufInfo& info, const QList<void*>& cameraHandles) override;
    void refreshLutControls() override;
    void viewLutChanged(CkMdiView* pView) override;
    QString lastDirectory() override;
    void setLastDirectory(const QString& sDirectory) override;

private:
    QTemporaryDir m_folder;
    std::shared_ptr<int> m_settingsAlive = std::make_shared<int>(0);
    QHash<int, QPointer<CkMdiView>> m_views;
    QList<QPointer<CkMdiView>> m_ownViews;
    QHash<int, QMenu*> m_menus;
};
