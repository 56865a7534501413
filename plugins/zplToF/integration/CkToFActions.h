#pragma once

#include "plugins/zplToF/integration/CkToFChainEditor.h"
#include "plugins/zplToF/integration/CkToFChainHost.h"
#include "plugins/zplToF/integration/CkToFChainStart.h"
#include "plugins/zplToF/integration/SkToFMessage.h"
#include "plugins/zplToF/integration/ToFCameraCheck.h"

#include <QCoreApplication>
#include <QList>
#include <QPointer>
#include <functional>

class CkMdiView;
class CkToF3DMdiView;
class QWidget;

/// The user's three actions: open a 3D view, open all processing views, calibrate. User-interface thread;
/// nothing throws. Refusals are reported in message boxes.
class CkToFActions {
    // The texts belong to the plug-in class, which users and translators know.
    Q_DECLARE_TR_FUNCTIONS(CkToFPlugin)

public:
    /// Runs the calibration dialog modally on a view (may be null).
    using CalibrationFunction = std::function<void(CkMdiView*, QWidget*)>;

    /// chainHost outlives the actions, which do not own it.
    explicit CkToFActions(CkToFChainHost& chainHost);

    /// Replace the functions that open message boxes and the dialog; for tests.
    void setMessageFunction(ToFMessageFunction show) { m_showMessage = std::move(show); }
    void setCalibrationFunction(CalibrationFunction run) { m_runCalibration = std::move(run); }

    void openToF3dView();
    void openAllToFViews();
    void calibrateOffset();

    /// The 3D views opened here and not closed since; the MDI area owns them.
    const QList<QPointer<CkToF3DMdiView>>& views() const { return m_views; }
    void forgetView(int iViewId);

private:
    /// The active view, or the connected one when it is a 3D view; null when there is none.
    static CkMdiView* activeImageView();
    static QString askToUpdate(const QString& sText);

    QMessageBox::StandardButton showMessage(QMessageBox::Icon icon, const QString& sTitle,
                                            const QString& sText,
                                            QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                            QMessageBox::StandardButton defaultButton = QMessageBox::Ok);

    /// Sets the camera up and hands the view's chain to start, which starts it if it is stopped. False, after
    /// a message to the user, when the camera refuses. The view may be null, and may be closed on return.
    bool setUpCamera(CkMdiView* pView, void* cameraHandle, CkToFChainStart& start);

    /// What is known about the view that a 3D view is to follow.
    struct SkToFFindings {
        SkToFKinds kinds;
        bool formatKnown = false;
        bool tofCamera = false;
        void* cameraHandle = nullptr;

        bool needsGathering() const {
            return tofCamera && (kinds.isAB || kinds.isAminB) && kinds.separatePhases;
        }
    };
    /// For a view without ToF data: warns, or offers to set the camera up, before a 3D view is opened.
    void offerToFFormatFor3d(CkMdiView& view, SkToFFindings& findings, CkToFChainStart& start);
    /// Inserts a block before the view that gathers phases from separate images. False: the view cannot be
    /// opened.
    bool gatherPhases(const CkMdiView& view);
    void add3dView(int iConnectedViewId);

    /// Makes sure that the view has a ToF format before the processing views are opened. False: the action
    /// ends.
    bool ensureToFFormatForAll(CkMdiView& view, CkToFChainStart& start);
    /// Makes sure that a ToF block before the view turns its frames into phase shifts. False: there is none.
    bool ensureDepthFor(const CkMdiView& view);

    CkToFChainEditor m_editor;
    ToFMessageFunction m_showMessage;
    CalibrationFunction m_runCalibration;
    QList<QPointer<CkToF3DMdiView>> m_views;
};
