#pragma once

#include "plugins/zplToF/integration/CkToFChainEditor.h"
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
/// nothing throws. Refusals are told in message boxes.
class CkToFActions {
    // The texts belong to the plug-in class, which users and translators know.
    Q_DECLARE_TR_FUNCTIONS(CkToFPlugin)

public:
    /// Runs the calibration dialog modally on a view (may be null).
    using CalibrationFunction = std::function<void(CkMdiView*, QWidget*)>;

    /// chainHost stays the caller's.
    explicit CkToFActions(CkToFChainHost& chainHost);

    /// Replace what talks to the user.
    void setMessageFunction(ToFMessageFunction show) { m_showMessage = std::move(show); }
    void setCalibrationFunction(CalibrationFunction run) { m_runCalibration = std::move(run); }

    void openToF3dView();
    void openAllToFViews();
    void calibrateOffset();

    /// The 3D views opened here and not closed since; the MDI area owns them.
    const QList<QPointer<CkToF3DMdiView>>& views() const { return m_views; }
    void forgetView(int iViewId);

private:
    /// The active view, or the one it follows when it is a 3D view; null when there is none.
    static CkMdiView* activeImageView();
    static QString askToUpdate(const QString& sText);

    QMessageBox::StandardButton showMessage(QMessageBox::Icon icon, const QString& sTitle,
                                            const QString& sText,
                                            QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                            QMessageBox::StandardButton defaultButton = QMessageBox::Ok);

    /// Sets the camera up, and starts the view's chain (later) when it is stopped. False, which the user was
    /// told then, when the camera refuses. The view may be null, and may have been closed afterwards.
    bool setUpCamera(CkMdiView* pView, void* cameraHandle, CkToFChainStart& start);

    /// What is known of a view that a 3D view is to open on.
    struct SkToFFindings {
        SkToFKinds kinds;
        bool formatKnown = false;
        bool tofCamera = false;
        void* cameraHandle = nullptr;

        bool needsGathering() const {
            return tofCamera && (kinds.isAB || kinds.isAminB) && kinds.separatePhases;
        }
    };
    /// Before a 3D view opens on a view that shows nothing ToF: tells, or offers to set the camera up.
    void offerToFFormatFor3d(CkMdiView& view, SkToFFindings& findings, CkToFChainStart& start);
    /// Puts a gathering block in front of the view where phases come one by one. False: no view is opened.
    bool gatherPhases(const CkMdiView& view);
    void add3dView(int iConnectedViewId);

    /// Before the processing views open: false when the action ends here.
    bool ensureToFFormatForAll(CkMdiView& view, CkToFChainStart& start);
    /// Moves the first source of the view's chain into a new chain and closes the view; null on failure.
    CkChain* moveSourceToNewChain(CkMdiView& view, CkChainable* pSource);
    /// A branch with its view. The view's identifier, or -1.
    int openBranch(CkChain* pChain, CkChainable* pSource, int iTransform);
    /// Sees to a block with phase shift output behind the view, for the calibration. False: there is none.
    bool ensureDepthFor(const CkMdiView& view);

    CkToFChainHost& m_chainHost;
    CkToFChainEditor m_editor;
    ToFMessageFunction m_showMessage;
    CalibrationFunction m_runCalibration;
    QList<QPointer<CkToF3DMdiView>> m_views;
};
