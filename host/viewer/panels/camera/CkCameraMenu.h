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

    QMenu* openMenu() const { return m_openMenu; }
    QMenu* closeMenu() const { return m_closeMenu; }
    QMenu* unplugMenu() const { return m_unplugMenu; }
    QMenu* plugInMenu() const { return m_plugInMenu; }

public slots:
    /// Updates all actions. To be called when the set of cameras or the current camera has changed.
    void refresh();

private:
    void addReopenAction(QMenu* pMenu);
    void fillOpenMenu();
    void fillHandleMenus();
    void toggleAcquisition();

    CkCameraController* m_cameras;
    QMenu* m_openMenu;
    QMenu* m_closeMenu;
    QMenu* m_unplugMenu;
    QMenu* m_plugInMenu;
    QAction* m_startAction;
    QAction* m_pauseAction;
    QAction* m_stepAction;
    QAction* m_viewAction;
    QAction* m_closeAction;
};
