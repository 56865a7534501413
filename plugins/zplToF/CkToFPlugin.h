#pragma once

#include "plugins/zplToF/integration/CkToFActions.h"
#include "plugins/zplToF/integration/CkToFChainHost.h"
#include "zuCore/CkPlugin.h"

#include <QObject>
#include <QPointer>

class QAction;

/// Entry point of the library, a manifest: registers the processing block, wires the user's actions and
/// forwards the host's notifications. User-interface thread.
class CkToFPlugin : public QObject, public CkPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.Pictor.CkToFPlugin")
    Q_INTERFACES(CkPlugin)

public:
    CkToFPlugin();
    ~CkToFPlugin() override;

    bool init() override;
    QString name() const override;
    QString author() const override;
    QString description() const override;
    void version(int& major, int& minor, int& patch) const override;
    QString website() const override;

    void activeViewChanged(int viewId) override;
    void viewAboutToClose(int viewId) override;
    void viewGotNewImage(int viewId, const CkImageData* pData) override;
    void newCameraConnected(void* cameraHandle) override;

    CkToFActions& actions() { return m_actions; }

    /// Starts acquisition of the camera whose handle a tool button carries; no-op for any other object.
    static void startCameraAcquitionFromButton(const QObject* pButton);

public slots:
    void on_actOpenToF3dView();
    void on_actOpenToF3dViewStartAcq();
    void on_actOpenAllToFViews();
    void on_actOpenAllToFViewsStartAcq();
    void on_actCalibrateOffset();
    void enableMainMenuItems(int iActiveViewId);

private:
    QPointer<QAction> m_open3dView;
    QPointer<QAction> m_openAllViews;
    QPointer<QAction> m_calibrate;
    CkToFChainHost m_chainHost;
    CkToFActions m_actions;
};
