#pragma once

#include <QObject>

class CkCameraController;
class QAction;
class QMenu;

/// The actions of the Camera menu: opening cameras, starting, pausing and stepping the current one, closing,
/// unplugging and plugging in. User-interface thread.
class CkCameraMenu : public QObject {
    Q_OBJECT

public:
    CkCameraMenu(CkCameraController* pCameras, QMenu* pMenu, QObject* pParent = nullptr);

    QMenu* openMenu() const { return m_pOpenMenu; }
    QMenu* closeMenu() const { return m_pCloseMenu; }
    QMenu* unplugMenu() const { return m_pUnplugMenu; }
    QMenu* plugInMenu() const { return m_pPlugInMenu; }

public slots:
    /// Updates all actions. To be called when the set of cameras or the current camera has changed.
    void refresh();

private:
    void addReopenAction(QMenu* pMenu);
    void fillOpenMenu();
    void fillHandleMenus();
    void toggleAcquisition();

    CkCameraController* m_pCameras;
    QMenu* m_pOpenMenu;
    QMenu* m_pCloseMenu;
    QMenu* m_pUnplugMenu;
    QMenu* m_pPlugInMenu;
    QAction* m_pStartAction;
    QAction* m_pPauseAction;
    QAction* m_pStepAction;
    QAction* m_pViewAction;
    QAction* m_pCloseAction;
};
