#include "plugins/zplToF/integration/CkToFActions.h"

#include "plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <algorithm>

namespace {

void runCalibrationDialog(CkMdiView* view, QWidget* parent) {
    // The main window may be deleted while the dialog is open, together with the dialog.
    const QPointer<CkToFCalibrateOffsetDlg> dialog(new CkToFCalibrateOffsetDlg(view, parent));
    dialog->exec();
    delete dialog;
}

CkChain* chainOf(const CkMdiView* view) {
    const CkChainable* block = view != nullptr ? view->dataProvider() : nullptr;
    return block != nullptr ? block->chain() : nullptr;
}

// A running chain negotiates a camera's new format with its next frame; until then its blocks report the old
// one. Restarted, it negotiates at once.
void renegotiate(CkChain* chain) {
    if (chain != nullptr && chain->started()) {
        const CkChain::CkControlLock lock(chain);
        chain->stop();
        chain->start();
    }
}

} // namespace

CkToFActions::CkToFActions(CkToFChainHost& chainHost)
    : m_editor(chainHost), m_showMessage(showToFMessage), m_runCalibration(runCalibrationDialog) {}

void CkToFActions::forgetView(int iViewId) {
    const auto closing = std::find_if(m_views.begin(), m_views.end(), [iViewId](const auto& view) {
        return view != nullptr && view->viewId() == iViewId;
    });
    if (closing != m_views.end()) {
        m_views.erase(closing);
    }
}

CkMdiView* CkToFActions::activeImageView() {
    IkAppDelegate* host = IkAppDelegate::instance();
    if (host == nullptr) {
        return nullptr;
    }
    const int active = host->activeViewId();
    CkMdiView* view = active != -1 ? host->mdiView(active) : nullptr;
    if (const auto* scene = qobject_cast<CkToF3DMdiView*>(view)) {
        view = host->mdiView(scene->connectedViewId());
    }
    return view;
}

QString CkToFActions::askToUpdate(const QString& sText) {
    return sText + tr("\n\nDo you want to update the camera parameters automatically?");
}

QMessageBox::StandardButton CkToFActions::showMessage(QMessageBox::Icon icon, const QString& sTitle,
                                                      const QString& sText,
                                                      QMessageBox::StandardButtons buttons,
                                                      QMessageBox::StandardButton defaultButton) {
    return m_showMessage({icon, sTitle, sText, buttons, defaultButton});
}

bool CkToFActions::setUpCamera(CkMdiView* pView, void* cameraHandle, CkToFChainStart& start) {
    const QPointer<CkMdiView> guarded = pView;
    // Without the view: its chain is started once, after the action has inserted its blocks.
    if (!ToFCameraCheck::switchCameraTo3dFormat(nullptr, cameraHandle)) {
        showMessage(QMessageBox::Critical, tr("Error"),
                    tr("Cannot set (A and B) or (A-B) reaout mode to camera."));
        return false;
    }
    start.later(chainOf(guarded));
    return true;
}

// ---- 3D view ---------------------------------------------------------------------------------------------

void CkToFActions::openToF3dView() {
    const QPointer<CkMdiView> view = activeImageView();
    if (view == nullptr) {
        return;
    }
    SkToFFindings findings;
    findings.formatKnown = ToFCameraCheck::imageFormatAtView(view, findings.kinds);
    findings.tofCamera = ToFCameraCheck::viewBelongsToToFCamera(view->viewId(), findings.cameraHandle);

    CkToFChainStart start;
    if (!findings.kinds.any()) {
        offerToFFormatFor3d(*view, findings, start);
    }
    if (view == nullptr) {
        return; // closed while a box was open or while the camera was set up
    }
    const bool gathered = !findings.needsGathering() || gatherPhases(*view);
    start.now();
    if (!gathered) {
        showMessage(QMessageBox::Warning, tr("ToF 3D view expects ToF image containing all phases"),
                    tr("Please add ToF Processing into the chain before the current view."));
        return;
    }
    if (view != nullptr) {
        add3dView(view->viewId());
    }
}

void CkToFActions::offerToFFormatFor3d(CkMdiView& view, SkToFFindings& findings, CkToFChainStart& start) {
    const QString title = tr("Invalid input image");
    const QString text =
        tr("ToF 3D view works with (A and B) RAWX2 image or (A-B) RAW image containing all phases, or the "
           "image with ToF phase-shift and confidence, or X1X2X3 RAWX3 image.");
    if (!findings.formatKnown || !findings.tofCamera) {
        showMessage(QMessageBox::Warning, title, text);
        return;
    }
    const QPointer<CkMdiView> guarded = &view;
    if (showMessage(QMessageBox::Question, title, askToUpdate(text), QMessageBox::Yes | QMessageBox::No,
                    QMessageBox::Yes) != QMessageBox::Yes ||
        guarded == nullptr) {
        return;
    }
    if (setUpCamera(guarded, findings.cameraHandle, start)) {
        renegotiate(chainOf(guarded));
    }
    if (guarded == nullptr) {
        return;
    }
    ToFCameraCheck::imageFormatAtView(guarded, findings.kinds);
    if (!findings.kinds.any()) {
        CkChainable* block = CkToFChainEditor::firstToFBlock(guarded->dataProvider());
        if (auto* tofBlock = qobject_cast<CkToFProcessCnbl*>(block)) {
            tofBlock->setTransform(CkToFProcessCnbl::Depth, true);
        }
    }
}

bool CkToFActions::gatherPhases(const CkMdiView& view) {
    CkChainable* found = CkToFChainEditor::searchUpstream(view.dataProvider());
    return found != nullptr && qobject_cast<CkToFProcessCnbl*>(found) == nullptr &&
           m_editor.insertDepthBlock(found);
}

void CkToFActions::add3dView(int iConnectedViewId) {
    auto* view = new CkToF3DMdiView(iConnectedViewId, -1, nullptr, nullptr);
    QPointer<CkToF3DMdiView> guarded = view;
    IkAppDelegate::instance()->addMdiView(view);
    if (guarded != nullptr) {
        m_views.append(guarded);
    }
}

// ---- all views -------------------------------------------------------------------------------------------

void CkToFActions::openAllToFViews() {
    const QPointer<CkMdiView> view = activeImageView();
    CkToFChainStart start;
    if (chainOf(view) == nullptr || !ensureToFFormatForAll(*view, start)) {
        return;
    }
    // Looked up again: the chain may have changed while the box was open.
    CkChain* const oldChain = chainOf(view);
    const QList<CkChainable*> sources =
        oldChain != nullptr ? oldChain->imageSources() : QList<CkChainable*>();
    if (sources.isEmpty()) {
        return;
    }
    CkChainable* source = sources.first();
    CkChain* chain = m_editor.moveToNewChain(source, view->viewId());
    if (chain == nullptr) {
        return;
    }
    SkToFKinds kinds;
    ToFCameraCheck::checkToFFormat(source, kinds);

    const int depthView = m_editor.openBranch(chain, source, CkToFProcessCnbl::Depth);
    if (depthView != -1) {
        add3dView(depthView);
    }
    m_editor.openBranch(chain, source, CkToFProcessCnbl::Amplitude);
    if (kinds.isAB || kinds.isHybrid) {
        m_editor.openBranch(chain, source, CkToFProcessCnbl::Intensity);
    }
    chain->start();
    IkAppDelegate::instance()->refreshViewArea();
}

bool CkToFActions::ensureToFFormatForAll(CkMdiView& view, CkToFChainStart& start) {
    SkToFKinds kinds;
    ToFCameraCheck::imageFormatAtView(&view, kinds);
    if (kinds.any()) {
        return true;
    }
    const QString title = tr("Invalid input image");
    const QString text =
        tr("ToF processing needs (A and B) RAWX2, or (A minus B) RAW image, or X1X2X3 RAWX3 image.");
    void* camera = nullptr;
    if (!ToFCameraCheck::viewBelongsToToFCamera(view.viewId(), camera)) {
        showMessage(QMessageBox::Critical, title, text);
        return false;
    }
    const QPointer<CkMdiView> guarded = &view;
    const bool accepted =
        showMessage(QMessageBox::Question, title, askToUpdate(text), QMessageBox::Yes | QMessageBox::Cancel,
                    QMessageBox::Yes) == QMessageBox::Yes;
    if (!accepted || guarded == nullptr || !setUpCamera(guarded, camera, start)) {
        return false;
    }
    renegotiate(chainOf(guarded));
    ToFCameraCheck::imageFormatAtView(guarded, kinds);
    return kinds.anyRaw();
}

// ---- calibration -----------------------------------------------------------------------------------------

void CkToFActions::calibrateOffset() {
    IkAppDelegate* host = IkAppDelegate::instance();
    if (host == nullptr) {
        return;
    }
    host->startAcquisition(1, 0);

    const int active = host->activeViewId();
    void* camera = nullptr;
    if (!ToFCameraCheck::viewBelongsToToFCamera(active, camera)) {
        showMessage(QMessageBox::Critical, tr("Error"), tr("Active camera is not the ToF camera."));
        return;
    }
    const QPointer<CkMdiView> view = host->mdiView(active);
    CkToFChainStart start;
    if (!setUpCamera(view, camera, start)) {
        return;
    }
    const bool ready = view == nullptr || ensureDepthFor(*view);
    start.now();
    if (!ready) {
        showMessage(QMessageBox::Critical, tr("Error"), tr("Cannot insert ToF processing to chain."));
    }
    m_runCalibration(view, host->mainWindow());
}

bool CkToFActions::ensureDepthFor(const CkMdiView& view) {
    CkChainable* found = CkToFChainEditor::searchUpstream(view.dataProvider());
    if (auto* tofBlock = qobject_cast<CkToFProcessCnbl*>(found)) {
        if (tofBlock->transform() != CkToFProcessCnbl::Depth) {
            tofBlock->setTransform(CkToFProcessCnbl::Depth, true);
        }
        return true;
    }
    return found != nullptr && m_editor.insertDepthBlock(found);
}
