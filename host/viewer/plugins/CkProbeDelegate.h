#pragma once

#include "zuCoreGui/IkAppDelegate.h"

#include <QMainWindow>
#include <QTemporaryDir>

/// The application that plug-ins find in the probe: a hidden window with its menus, temporary settings, no
/// cameras, no views. User-interface thread.
class CkProbeDelegate : public IkAppDelegate {
public:
    /// The instance of IkAppDelegate during its lifetime.
    CkProbeDelegate();
    ~CkProbeDelegate() override;

    QSettings* settings() override;
    QWidget* mainWindow() override { return &m_window; }
    QMenu* mainMenu(int iMenuId) override;
    void leaveFullScreen() override {}
    int activeViewId() override { return -1; }
    void setActiveView(int) override {}
    CkMdiView* mdiView(int) override { return nullptr; }
    void addMdiView(CkMdiView* pView) override;
    int openImageView(CkChainable*) override { return -1; }
    bool closeView(int) override { return false; }
    void refreshViewArea() override {}
    void* cameraHandleOfView(int) override { return nullptr; }
    bool addCameraPanelLayout(void*, CkCameraParameters*, QLayout*, int) override { return false; }
    bool startAcquisition(int, quint64) override { return false; }
    CkLut* createLut(const SkPicBufInfo& info, const QList<void*>&) override;
    void refreshLutControls() override {}
    void viewLutChanged(CkMdiView*) override {}
    QString lastDirectory() override { return {}; }
    void setLastDirectory(const QString&) override {}

private:
    QTemporaryDir m_folder;
    QMainWindow m_window;
    QList<QMenu*> m_menus;
};
