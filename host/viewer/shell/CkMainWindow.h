#pragma once

#include "host/viewer/session/SkWindowLayout.h"
#include "zuCore/CkChainable.h"

#include <QMainWindow>
#include <QPointer>

class CkCameraController;
class CkCameraMenu;
class CkChainPanel;
class CkFileOpener;
class CkLogPanel;
class CkLutPanel;
class CkQualityPanel;
class CkRecordingController;
class CkStatusBar;
class CkViewArea;
class QDockWidget;
class QMenu;
class QTabWidget;

/// The viewer's window: views in the middle, cameras on the left, chain and colours on the right, log below.
/// User-interface thread.
class CkMainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit CkMainWindow(QWidget* pParent = nullptr);
    ~CkMainWindow() override;

    CkViewArea* area() const { return m_pArea; }
    CkCameraController* cameras() const { return m_pCameras; }
    CkChainPanel* chainPanel() const { return m_pChainPanel; }
    CkLutPanel* lutPanel() const { return m_pLutPanel; }
    CkQualityPanel* qualityPanel() const { return m_pQualityPanel; }
    CkLogPanel* logPanel() const { return m_pLogPanel; }
    CkStatusBar* viewStatusBar() const { return m_pStatusBar; }
    CkCameraMenu* cameraMenu() const { return m_pCameraMenu; }

    /// IkAppDelegate::EkMenuId; null for any other number.
    QMenu* menu(int iMenuId) const;

    /// Gives the entries that plug-ins have put into their menu shortcuts, where they have none. Once the
    /// plug-ins are loaded.
    void equipPluginMenu();

    CkRecordingController* recordings() const { return m_pRecordings; }

    /// Opens files of every kind that the viewer knows.
    CkFileOpener* fileOpener() const { return m_pOpener; }

    /// Opens a file; a box says why it cannot be.
    void openOrTell(const QString& sFileName);

    /// Opens a chain file: the cameras it names, its chain, and a picture view on each of its ends; then
    /// starts them. False, with sError set, when that cannot be.
    bool openChainFile(const QString& sFileName, QString& sError);
    /// Chain files opened or saved last, newest first.
    static QStringList recentChains();
    /// Saves the active view's chain.
    bool saveChainFile(const QString& sFileName, QString& sError);

    void setFullScreen(bool bOn);

    /// What the active view is or shows has changed: enables what can be done with it.
    void updateActions();

    /// Window geometry and dock layout, from and to the settings. Saving remembers what is open, too.
    void restoreLayout();
    void saveLayout() const;
    /// Panels as in a new installation; the views stay.
    void resetLayout();
    /// What closing the window saves.
    void setSessionScope(EkSessionScope scope) { m_sessionScope = scope; }

    /// Texts for Help > About: one line per loaded plug-in.
    void setPluginTexts(const QStringList& texts) { m_pluginTexts = texts; }

signals:
    /// The user closed the window and no view objected.
    void closing();

protected:
    void closeEvent(QCloseEvent* pEvent) override;
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;

private:
    QDockWidget* addDock(const QString& sName, const QString& sTitle, QWidget* pWidget,
                         Qt::DockWidgetArea area);
    void createDocks();
    void createFileMenu();
    void createViewMenu();
    QAction* createPanelAction(QDockWidget* pDock);
    void createPictureMenu();
    void createChainMenu();
    void createHelpMenu();
    void updatePictureActions();
    void openChainWithDialog();
    void openRecordingWithDialog();
    void createFileOpener();
    void createRecordings();
    void addRecordButton(void* pCameraHandle);
    void createRecordingMenu();
    void fillRecentMenu();
    static void addRecent(const QString& sFileName);
    CkChain* activeChain() const;
    static bool saveChain(const CkChain& chain, const QString& sFileName, QString& sError);
    void saveChainWithDialog();
    void openViewOn(CkChainable* pBlock);
    void equipView(int iViewId);
    void showAbout();

    CkViewArea* m_pArea;
    QTabWidget* m_pCameraTabs;
    CkCameraController* m_pCameras;
    CkFileOpener* m_pOpener = nullptr;
    CkRecordingController* m_pRecordings = nullptr;
    CkChainPanel* m_pChainPanel = nullptr;
    CkLutPanel* m_pLutPanel = nullptr;
    CkQualityPanel* m_pQualityPanel = nullptr;
    CkLogPanel* m_pLogPanel = nullptr;
    CkStatusBar* m_pStatusBar = nullptr;
    CkCameraMenu* m_pCameraMenu = nullptr;
    QDockWidget* m_pLogDock = nullptr;
    QList<QDockWidget*> m_docks;
    QList<QMenu*> m_menus;
    QMenu* m_pRecentMenu = nullptr;
    QAction* m_pSaveChainAction = nullptr;
    QAction* m_pArrangeAction = nullptr;
    QAction* m_pFullScreenAction = nullptr;
    QAction* m_pAutoContrastAction = nullptr;
    QAction* m_pSaturatedAction = nullptr;
    QAction* m_pLegendAction = nullptr;
    QList<QAction*> m_viewActions;     ///< need any active view
    QList<QAction*> m_pictureActions;  ///< need an active picture view
    QList<QAction*> m_contrastActions; ///< need one that is coloured by a table
    QList<QAction*> m_channelActions;  ///< need one of several channels
    QStringList m_pluginTexts;
    QByteArray m_defaultState;
    EkSessionScope m_sessionScope = EkSessionScope::LayoutAndSession;
};
