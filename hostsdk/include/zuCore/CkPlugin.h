#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QString>
#include <QtPlugin>

class CkImageData;

/// The interface of a viewer plug-in, implemented in addition to QObject. All functions are
/// called on the user-interface thread. The order of the functions is part of the binary interface.
class CkPlugin {
public:
    virtual ~CkPlugin() = default;

    /// Called once after loading. False: the plug-in cannot work; it is unloaded.
    virtual bool init() = 0;

    virtual QString name() const = 0;        ///< To be displayed.
    virtual QString author() const = 0;      ///< To be displayed.
    virtual QString description() const = 0; ///< A sentence, to be displayed.
    /// The framework version the plug-in was built with (zuCoreVersion). A plug-in with another major version
    /// than the host's is refused.
    virtual void version(int& major, int& minor, int& patch) const = 0;
    virtual QString website() const = 0; ///< Address, or empty.

    /// viewId -1: no view is active.
    virtual void activeViewChanged(int viewId) = 0;
    /// The view still exists.
    virtual void viewAboutToClose(int viewId) = 0;
    /// pData belongs to the host and is valid only during the call.
    virtual void viewGotNewImage(int viewId, const CkImageData* pData) = 0;
    virtual void newCameraConnected(void* cameraHandle) = 0; ///< See CkCameraManager.
};

Q_DECLARE_INTERFACE(CkPlugin, "com.orvane.CkPlugin")
