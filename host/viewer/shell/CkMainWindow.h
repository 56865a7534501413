#pragma once

#include "host/viewer/session/SkWindowLayout.h"

#include <QList>
#include <QMainWindow>

class CkCameraController;
class CkCameraMenu;
class CkChainFileController;
class CkChainPanel;
class CkChainable;
class CkFileMenu;
class CkFileOpener;
class CkHelpMenu;
class CkLogPanel;
class CkLutPanel;
class CkPanelDocks;
class CkPictureMenu;
class CkQualityPanel;
class CkRecordingController;
class CkStatusBar;
class CkViewArea;
class CkViewMenu;
class QDockWidget;
class QMenu;
class QTabWidget;

/// The viewer's window: views in the middle, cameras on the left, chain and colours on the right, log at the
/// bottom. Creates, places and connects what the other folders offer. User-interface thread.
class CkMainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit CkMainWindow(QWidget* parent = nullptr);
    ~CkMainWindow() override;

    // Never null, and owned by the window.
    CkViewArea* area() const { return m_area; }
    CkCameraController* cameras() const { return m_cameras; }
    CkRecordingController* recordings() const { return m_recordings; }
    CkChainFileController* chainFiles() const { return m_chainFiles; }
    /// Opens files of every kind that the viewer knows.
    CkFileOpener* fileOpener() const { return m_fileOpener; }
    CkChainPanel* chainPanel() const { return m_chainPanel; }
    CkLutPanel* lutPanel() const { return m_lutPanel; }
    CkStatusBar* viewStatusBar() const { return m_statusBar; }
    CkCameraMenu* cameraMenu() const { return m_cameraMenu; }
    CkViewMenu* viewMenu() const { return m_viewMenu; }
    CkHelpMenu* helpMenu() const { return m_helpMenu; }

    /// IkAppDelegate::EkMenuId; null for any other number.
    QMenu* menu(int menuId) const { return m_menus.value(menuId); }

    /// Assigns shortcuts to the entries in the plug-in menu that have none. To be called once, after the
    /// plug-ins have been loaded.
    void assignPluginShortcuts();

    void setFullScreen(bool on);

    /// Window geometry and dock layout, from and to the settings. Saving includes the session if the scope
    /// does.
    void restoreLayout();
    void saveLayout() const;
    /// What closing the window saves.
    void setSessionScope(EkSessionScope scope) { m_sessionScope = scope; }

public slots:
    /// Enables the actions that apply to the active view. To be called when that view or its contents have
    /// changed.
    void updateActions();

signals:
    /// The user closed the window and no view objected.
    void closing();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createDocks();
    void createRecordings();
    void createMenus();
    void createChainMenu();
    void createRecordingMenu();
    void connectParts();
    void setInitialLayout();
    void addRecordButton(void* camera);
    void addMenuActions(int viewId);
    void openView(CkChainable* block);

    CkViewArea* m_area = nullptr;
    QTabWidget* m_cameraTabs = nullptr;
    CkStatusBar* m_statusBar = nullptr;
    CkPanelDocks* m_docks = nullptr;

    CkCameraController* m_cameras = nullptr;
    CkRecordingController* m_recordings = nullptr;
    CkChainFileController* m_chainFiles = nullptr;
    CkFileOpener* m_fileOpener = nullptr;

    CkChainPanel* m_chainPanel = nullptr;
    CkLutPanel* m_lutPanel = nullptr;
    CkQualityPanel* m_qualityPanel = nullptr;
    CkLogPanel* m_logPanel = nullptr;
    QDockWidget* m_cameraDock = nullptr;
    QDockWidget* m_chainDock = nullptr;
    QDockWidget* m_logDock = nullptr;

    CkFileMenu* m_fileMenu = nullptr;
    CkCameraMenu* m_cameraMenu = nullptr;
    CkViewMenu* m_viewMenu = nullptr;
    CkPictureMenu* m_pictureMenu = nullptr;
    CkHelpMenu* m_helpMenu = nullptr;
    QList<QMenu*> m_menus; ///< by IkAppDelegate::EkMenuId

    EkSessionScope m_sessionScope = EkSessionScope::LayoutAndSession;
};
