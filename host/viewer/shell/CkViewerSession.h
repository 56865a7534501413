#pragma once

#include "host/viewer/shell/CkCommandLine.h"

#include <QObject>
#include <functional>
#include <memory>

class CkAppDelegate;
class CkMainWindow;
class CkMdiView;
class CkPluginHost;
class CkSessionSaver;
class CkUnattendedRun;

/// The running viewer: window, application delegate for plug-ins, plug-ins, and the actions of the command
/// line. One at a time; user-interface thread.
class CkViewerSession : public QObject {
    Q_OBJECT

public:
    explicit CkViewerSession(const SkViewerOptions& options, QObject* pParent = nullptr);
    /// Closes views, cameras and chains in the order of their dependencies.
    ~CkViewerSession() override;

    CkMainWindow* window() const { return m_window.get(); }
    /// Null in unattended runs, and before start().
    CkSessionSaver* saver() const { return m_saver.get(); }
    CkPluginHost* plugins() const { return m_plugins.get(); }

    /// Loads the plug-ins, shows the window, opens cameras and files. False when something on the command
    /// line cannot be opened; everything else is opened nevertheless, and the failures are logged.
    bool start();

    /// Adds the camera drivers that come with the viewer to the camera manager; later calls are no-ops.
    static void addBuiltInDrivers();

    /// The identifier of a camera given by number or identifier; empty for an unknown one.
    static QString cameraId(const QString& sNumberOrId);
    /// One line per camera: number, name, model, identifier.
    static QString cameraList();

signals:
    /// An unattended run is over; 0 for success.
    void finished(int iExitCode);

private:
    void watchView(int iViewId);
    void loadPlugins();
    void restoreSession();
    bool openCameras();
    bool openFiles();
    /// Calls the function after the view's first frame.
    void whenReady(int iViewId, const std::function<void()>& callback);
    void open3dView(int iViewId);
    void runStartActionsWhenReady();
    void runStartActions(int iViewId);
    /// Clicks the menu entry or button with this object name, in the window or of a plug-in. False when there
    /// is none.
    bool trigger(const QString& sObjectName);

    SkViewerOptions m_options;
    std::unique_ptr<CkMainWindow> m_window;
    std::unique_ptr<CkAppDelegate> m_delegate;
    std::unique_ptr<CkPluginHost> m_plugins;
    std::unique_ptr<CkUnattendedRun> m_unattended;
    std::unique_ptr<CkSessionSaver> m_saver;
};
