#include "integration/CkToFActions.h"

#include "calibration/CkToFCalibrateOffsetDlg.h"
#include "chain/CkToFProcessCnbl.h"
#include "view3d/3dMdiView.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainable.h"
#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <algorithm>

namespace {

void runCalibrationDialog(CkMdiView* view, QWidget* parent) {
    // The main window may go while the dialog is open, and takes the dialog along.
    const QPointer<CkToFCalibrateOffsetDlg> dialog(new CkToFCalibrateOffsetDlg(view, parent));
    dialog->exec();
    delete dialog;
}

// A running chain negotiates a camera's new format with its next frame. Whoever asks a block at once what it
// delivers would still be told of the old one.
void negotiateAnew(const CkMdiView& view) {
    const CkChainable* block = view.dataProvider();
    CkChain* chain = block != nullptr ? block->chain() : nullptr;
    if (chain != nullptr && chain->started()) {
        const CkChain::CkControlLock lock(chain);
        chain->stop();
        chain->start();
    }
}

} // namespace

CkToFActions::CkToFActions(CkToFChainHost& chainHost)
    : m_chainHost(chainHost), m_editor(chainHost), m_showMessage(showToFMessage),
      m_runCalibration(runCalibrationDialog) {}

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

// ---- 3D view ---------------------------------------------------------------------------------------------

void CkToFActions::openToF3dView() {
    QPointer<CkMdiView> view = activeImageView();
    if (view == nullptr) {
        return;
    }
    SkToFKinds kinds;
    const bool formatKnown = CkToFCameraCheck::imageFormatAtView(view, kinds);
    void* camera = nullptr;
    const bool tofCamera = CkToFCameraCheck::viewBelongsToToFCamera(view->viewId(), camera);

    if (!kinds.any()) {
        offerToFFormatFor3d(*view, formatKnown, tofCamera, camera, kinds);
        if (view == nullptr) {
            return; // closed while the box was open
        }
    }
    if (tofCamera && (kinds.isAB || kinds.isAminB) && kinds.separatePhases && !ensureGatheredPhases(*view)) {
        return;
    }
    add3dView(view->viewId());
}

void CkToFActions::offerToFFormatFor3d(CkMdiView& view, bool bFormatKnown, bool bToFCamera,
                                       void* cameraHandle, SkToFKinds& kinds) {
    const QString title = tr("Invalid input image");
    const QString text =
        tr("ToF 3D view works with (A and B) RAWX2 image or (A-B) RAW image containing all phases, or the "
           "image with ToF phase-shift and confidence, or X1X2X3 RAWX3 image.");
    if (!bFormatKnown || !bToFCamera) {
        showMessage(QMessageBox::Warning, title, text);
        return;
    }
    QPointer<CkMdiView> guarded = &view;
    if (showMessage(QMessageBox::Question, title, askToUpdate(text), QMessageBox::Yes | QMessageBox::No,
                    QMessageBox::Yes) != QMessageBox::Yes ||
        guarded == nullptr) {
        return;
    }
    if (CkToFCameraCheck::switchCameraTo3dFormat(guarded, cameraHandle)) {
        negotiateAnew(*guarded);
    }
    CkToFCameraCheck::imageFormatAtView(guarded, kinds);
    if (!kinds.any()) {
        CkChainable* block = CkToFChainEditor::firstToFBlock(guarded->dataProvider());
        if (auto* tofBlock = qobject_cast<CkToFProcessCnbl*>(block)) {
            tofBlock->setTransform(CkToFProcessCnbl::Depth, true);
        }
    }
}

bool CkToFActions::ensureGatheredPhases(CkMdiView& view) {
    CkChainable* found = CkToFChainEditor::searchUpstream(view.dataProvider());
    if (found != nullptr && qobject_cast<CkToFProcessCnbl*>(found) == nullptr &&
        m_editor.insertDepthBlock(found)) {
        return true;
    }
    showMessage(QMessageBox::Warning, tr("ToF 3D view expects ToF image containing all phases"),
                tr("Please add ToF Processing into the chain before the current view."));
    return false;
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
    QPointer<CkMdiView> view = activeImageView();
    CkChainable* block = view != nullptr ? view->dataProvider() : nullptr;
    if (block == nullptr || block->chain() == nullptr) {
        return;
    }
    if (!ensureToFFormatForAll(*view) || view == nullptr) {
        return;
    }
    // The box may have been open for long: what stood behind the view is looked up anew.
    block = view->dataProvider();
    if (block == nullptr || block->chain() == nullptr) {
        return;
    }
    const QList<CkChainable*> sources = block->chain()->imageSources();
    if (sources.isEmpty()) {
        return;
    }
    CkChainable* source = sources.first();
    CkChain* chain = moveSourceToNewChain(*view, source);
    if (chain == nullptr) {
        return;
    }
    SkToFKinds kinds;
    CkToFCameraCheck::checkToFFormat(source, kinds);

    const int depthView = openBranch(chain, source, CkToFProcessCnbl::Depth);
    if (depthView != -1) {
        add3dView(depthView);
    }
    openBranch(chain, source, CkToFProcessCnbl::Amplitude);
    if (kinds.isAB || kinds.isHybrid) {
        openBranch(chain, source, CkToFProcessCnbl::Intensity);
    }
    chain->start();
    IkAppDelegate::instance()->refreshViewArea();
}

bool CkToFActions::ensureToFFormatForAll(CkMdiView& view) {
    SkToFKinds kinds;
    CkToFCameraCheck::imageFormatAtView(&view, kinds);
    if (kinds.any()) {
        return true;
    }
    const QString title = tr("Invalid input image");
    const QString text =
        tr("ToF processing needs (A and B) RAWX2, or (A minus B) RAW image, or X1X2X3 RAWX3 image.");
    void* camera = nullptr;
    if (!CkToFCameraCheck::viewBelongsToToFCamera(view.viewId(), camera)) {
        showMessage(QMessageBox::Critical, title, text);
        return false;
    }
    QPointer<CkMdiView> guarded = &view;
    const bool goesOn =
        showMessage(QMessageBox::Question, title, askToUpdate(text), QMessageBox::Yes | QMessageBox::Cancel,
                    QMessageBox::Yes) == QMessageBox::Yes;
    if (!goesOn || guarded == nullptr || !CkToFCameraCheck::switchCameraTo3dFormat(guarded, camera)) {
        return false;
    }
    negotiateAnew(*guarded);
    CkToFCameraCheck::imageFormatAtView(guarded, kinds);
    return kinds.anyRaw();
}

CkChain* CkToFActions::moveSourceToNewChain(CkMdiView& view, CkChainable* pSource) {
    const int viewId = view.viewId();
    QPointer<CkChain> oldChain = pSource->chain();
    const bool running = oldChain->started();
    if (running) {
        oldChain->stop();
    }
    CkChain* remaining = oldChain;
    if (!m_chainHost.remove(remaining, pSource, true)) {
        if (running && oldChain != nullptr) {
            oldChain->start();
        }
        return nullptr;
    }
    // A host may close the view with its chain, or the chain with its view: neither is touched unguarded.
    IkAppDelegate::instance()->closeView(viewId);
    if (oldChain != nullptr) {
        m_chainHost.closeChain(oldChain);
    }
    CkChain* newChain = m_chainHost.createChain();
    if (newChain == nullptr) {
        m_chainHost.deleteChainable(pSource);
        return nullptr;
    }
    if (!m_chainHost.insertAfter(newChain, pSource, nullptr)) {
        m_chainHost.deleteChainable(pSource);
        m_chainHost.closeChain(newChain);
        return nullptr;
    }
    return newChain;
}

int CkToFActions::openBranch(CkChain* pChain, CkChainable* pSource, int iTransform) {
    auto* block = new CkToFProcessCnbl;
    block->setTransform(CkToFProcessCnbl::EkTransformType(iTransform), true);
    if (!m_chainHost.branchAfter(pChain, block, pSource)) {
        m_chainHost.deleteChainable(block);
        return -1;
    }
    const int viewId = IkAppDelegate::instance()->openImageView(block);
    if (viewId == -1) {
        m_chainHost.deleteChainable(block);
    }
    return viewId;
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
    if (!CkToFCameraCheck::viewBelongsToToFCamera(active, camera)) {
        showMessage(QMessageBox::Critical, tr("Error"), tr("Active camera is not the ToF camera."));
        return;
    }
    QPointer<CkMdiView> view = host->mdiView(active);
    if (!CkToFCameraCheck::switchCameraTo3dFormat(view, camera)) {
        showMessage(QMessageBox::Critical, tr("Error"),
                    tr("Cannot set (A and B) or (A-B) reaout mode to camera."));
        return;
    }
    if (view != nullptr) {
        ensureDepthFor(*view);
    }
    m_runCalibration(view, host->mainWindow());
}

void CkToFActions::ensureDepthFor(CkMdiView& view) {
    CkChainable* found = CkToFChainEditor::searchUpstream(view.dataProvider());
    if (auto* tofBlock = qobject_cast<CkToFProcessCnbl*>(found)) {
        if (tofBlock->transform() != CkToFProcessCnbl::Depth) {
            tofBlock->setTransform(CkToFProcessCnbl::Depth, true);
        }
        return;
    }
    if (found == nullptr || !m_editor.insertDepthBlock(found)) {
        showMessage(QMessageBox::Critical, tr("Error"), tr("Cannot insert ToF processing to chain."));
    }
}
