#pragma once

#include "zuCoreGui/IkAppDelegate.h"

#include <QMainWindow>
#include <QTemporaryDir>

/// An application without cameras, views and remembered settings, as plug-ins find it in the probe: a window
/// that is not shown, its menus, and settings that are thrown away. User-interface thread.
class CkProbeDelegate : public IkAppDelegate {
public:
    CkProbeDelegate(); ///< Is the instance for as long as it lives.
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
