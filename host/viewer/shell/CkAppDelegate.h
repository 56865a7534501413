#pragma once

#include "zuCoreGui/IkAppDelegate.h"

#include <QPointer>

class CkCameraController;
class CkMainWindow;
class CkViewArea;

/// The viewer's interface to plug-ins and views. Outlives the window; from then on everything except the
/// settings is a no-op or returns null. User-interface thread.
class CkAppDelegate : public IkAppDelegate {
public:
    explicit CkAppDelegate(CkMainWindow* pWindow);
    ~CkAppDelegate() override;

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
    CkViewArea* area() const;

    QPointer<CkMainWindow> m_window;
};
