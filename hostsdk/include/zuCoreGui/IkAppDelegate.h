#pragma once

#include "zuCore/SkPicBuf.h"
#include "zuCoreGui/zuCoreGuiGlobal.h"

#include <QList>
#include <QString>

class CkCameraParameters;
class CkChainable;
class CkLut;
class CkMdiView;
class QLayout;
class QMenu;
class QSettings;
class QWidget;

/// The interface of the application to plug-ins and views. User-interface thread. The application sets the
/// single instance before it loads plug-ins and clears it last.
class ZUCOREGUI_EXPORT IkAppDelegate {
public:
    virtual ~IkAppDelegate();

    /// Null outside an application.
    static IkAppDelegate* instance();
    static void setInstance(IkAppDelegate* pDelegate); ///< For the host, which keeps ownership.

    /// Menus of the main window by identifier.
    enum EkMenuId : int { FileMenu = 0, CameraMenu = 1, ViewMenu = 2, PluginMenu = 3, HelpMenu = 4 };

    /// A new settings object at each call, deleted by the caller. Never null.
    virtual QSettings* settings() = 0;

    /// Parent of dialogs and boxes. May be null.
    virtual QWidget* mainWindow() = 0;
    /// Null for an unknown identifier.
    virtual QMenu* mainMenu(int iMenuId) = 0;
    virtual void leaveFullScreen() = 0; ///< No-op in a normal window.

    /// -1: none.
    virtual int activeViewId() = 0;
    virtual void setActiveView(int iViewId) = 0; ///< -1: none. Unknown ones are ignored.
    /// Null for an unknown identifier.
    virtual CkMdiView* mdiView(int iViewId) = 0;
    /// Adds a new view to the MDI area, which then owns it, and shows it.
    virtual void addMdiView(CkMdiView* pView) = 0;
    /// Opens a standard image view on a block. Returns its identifier, or -1 on failure.
    virtual int openImageView(CkChainable* pBlock) = 0;
    /// False for an unknown view, or when the user decides to keep it open.
    virtual bool closeView(int iViewId) = 0;
    /// Arranges the views so that all are visible.
    virtual void refreshViewArea() = 0;

    /// The first camera that feeds a view; null for a view without one.
    virtual void* cameraHandleOfView(int iViewId) = 0;
    /// Adds a layout to a camera's panel, which then owns it. iFlag 1: below the camera's controls. False,
    /// and the caller keeps the layout, when the camera has no panel.
    virtual bool addCameraPanelLayout(void* pCameraHandle, CkCameraParameters* pParameters, QLayout* pLayout,
                                      int iFlag) = 0;
    /// Starts (iStart 1) or stops (0) a camera's acquisition and the chains it feeds. Handle 0: the camera of
    /// the active view, or the only open one.
    virtual bool startAcquisition(int iStart, quint64 uiCameraHandle) = 0;

    /// A new table for a picture format, owned by the caller, with the user's preferences for these cameras.
    virtual CkLut* createLut(const SkPicBufInfo& info, const QList<void*>& cameraHandles) = 0;
    /// Updates the look-up table controls from the active view's table.
    virtual void refreshLutControls() = 0;
    /// A view changed its own table.
    virtual void viewLutChanged(CkMdiView* pView) = 0;

    /// Folder of the last file dialog; empty when there was none.
    virtual QString lastDirectory() = 0;
    virtual void setLastDirectory(const QString& sDirectory) = 0; ///< Start folder of the next dialog.
};
