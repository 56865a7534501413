#include "plugins/zplToF/view3d/3dMdiView.h"

#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "plugins/zplToF/view3d/CkToFViewToolBar.h"
#include "plugins/zplToF/view3d/ToFDistanceOffset.h"
#include "plugins/zplToF/view3d/ToFEmbeddedWindow.h"
#include "plugins/zplToF/view3d/ToFHostSettings.h"
#include "plugins/zplToF/view3d/ToFSceneFiles.h"
#include "plugins/zplToF/view3d/ToFSettingsDialog.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QDebug>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QResizeEvent>
#include <QThread>
#include <QVBoxLayout>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QRenderCapture>

namespace {

EkToFVertexLayout vertexLayout() {
    return CkToFScene::platformUsesPointPrimitives() ? EkToFVertexLayout::Points : EkToFVertexLayout::Quads;
}

void logCritical(const char* method, const QString& detail) {
    qCritical().noquote() << QStringLiteral("CkToF3DMdiView::%1(): %2").arg(QLatin1String(method), detail);
}

} // namespace

CkToF3DMdiView::CkToF3DMdiView(int iConnectedViewId, int iSecondViewId, CkChainable* pProvider,
                               CkChainable* pSecond)
    : CkToFFollowingView(iConnectedViewId, iSecondViewId, pProvider, pSecond), m_model(vertexLayout()) {
    // Every time: each window of Qt 3D reads the variable in its constructor and may set it to another value.
    if (m_model.usesPoints()) {
        qputenv("QT3D_RENDERER", "opengl");
    }
    m_model.options() = ToFHostSettings::readView();
    setWindowTitle(tr("ToF 3D view"));
    followTitle(tr(" (ToF 3D)"));
    if (CkMdiView* connected = connectedView()) {
        updateDepthImage(connected->currentImage());
    }
    m_model.adaptThresholdToKind();
    m_lut.makeDefault(depthFrame().depthPic());

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_toolBar = new CkToFViewToolBar(this);
    layout->addWidget(m_toolBar);
    layout->addWidget(createSceneWidget(), 1);
    const bool ownWindow = (viewCaps() & NativeWindowCap) != 0;
    setMinimumSize(ownWindow ? QSize(800, 600) : QSize(192, 160));
}

CkToF3DMdiView::~CkToF3DMdiView() = default;

QWidget* CkToF3DMdiView::createSceneWidget() {
    try {
        m_scene = CkToFScene::create(m_model.usesPoints(), ToFHostSettings::readBackground());
        if (m_scene) {
            connect(m_scene.get(), SIGNAL(programLogChanged(QString)), this,
                    SLOT(shaderProgramLogChanged(QString)));
            updatePointCloudGeometry();
            QWidget* container = m_scene->assemble(options().showBBox);
            m_scene->window()->installEventFilter(this);
            return container;
        }
    } catch (...) {
        m_scene.reset();
        const QString detail = QStringLiteral("[%1] plugins/zplToF/3dMdiView:%2: Exception in 3D view "
                                              "createSceneWidget.");
        logCritical("CkToF3DMdiView", detail.arg(quintptr(QThread::currentThreadId()), 0, 16).arg(__LINE__));
    }
    auto* label = new QLabel(
        tr("Error creating 3D widget. Please make sure OpenGL drivers are avilable on your computer."));
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

void CkToF3DMdiView::showBoundingBox(bool bShow) {
    m_model.options().showBBox = bShow;
    if (m_scene) {
        m_scene->setBoxVisible(bShow);
    }
    ToFHostSettings::write(ToFSettingsKey::kShowBBox, bShow);
}

void CkToF3DMdiView::selectBgColor(uint uiColor) {
    ToFHostSettings::write(ToFSettingsKey::kBgColor, uiColor);
    if (m_scene) {
        m_scene->setClearColor(QColor(QRgb(uiColor)));
    }
}

void CkToF3DMdiView::showOpticalPathDlg() {
    const QColor background = m_scene ? m_scene->clearColor() : ToFHostSettings::readBackground();
    // Frames keep coming while the dialog is open, and the host may close the view, which deletes both.
    const QPointer<CkToFOpticalPathSettingsDlg> dialog = ToFSettingsDialog::create(m_model, background, this);
    if (dialog->exec() == QDialog::Accepted && dialog) {
        ToFSettingsDialog::accept(*dialog, m_model);
        updatePointCloudGeometry();
    }
    delete dialog;
}

void CkToF3DMdiView::onOpticalPathDlgValueChanged() {
    if (const auto* dialog = qobject_cast<CkToFOpticalPathSettingsDlg*>(sender())) {
        ToFSettingsDialog::apply(*dialog, m_model);
        updatePointCloudGeometry();
    }
}

void CkToF3DMdiView::onConfidenceThresholdChanged(float fValue) {
    if (m_model.setConfidenceThreshold(fValue)) {
        updatePointCloudGeometry();
    }
}

void CkToF3DMdiView::onZZoomChanged() {
    const float factor = CkToFViewToolBar::zoomFactor(sender());
    if (factor > 0.0F) {
        m_model.setZZoom(factor);
        updatePointCloudGeometry();
    }
}

void CkToF3DMdiView::onDepthResChanged() {
    const int width = CkToFViewToolBar::width(sender());
    if (width <= 0) {
        return;
    }
    m_model.setDepthTexResolutionW(width);
    CkMdiView* connected = connectedView();
    updateWithConnectedImageData(connected != nullptr ? connected->currentImage() : nullptr, true);
    ToFHostSettings::write(ToFSettingsKey::kDepthTexResolutionW, width);
}

void CkToF3DMdiView::moveToDefault3DPosition() {
    if (m_scene) {
        m_scene->moveToDefaultPosition();
    }
}

// Queued: replies complete in the middle of Qt 3D's frame, where neither the file dialog's event loop may run
// nor the view be closed.
void CkToF3DMdiView::saveScreenshot() {
    if (Qt3DRender::QRenderCaptureReply* reply = m_scene ? m_scene->requestCapture() : nullptr) {
        connect(reply, SIGNAL(completed()), this, SLOT(onScreenshotRequestCompleted()), Qt::QueuedConnection);
    }
}

void CkToF3DMdiView::onScreenshotRequestCompleted() {
    auto* reply = qobject_cast<Qt3DRender::QRenderCaptureReply*>(sender());
    if (reply == nullptr) {
        return;
    }
    reply->deleteLater();
    const QImage image = m_scene ? m_scene->picture(*reply) : QImage();
    const QString problem = ToFSceneFiles::saveImageAs(image, this, tr("Save Screenshot to File"));
    // The view may have been closed by now.
    if (!problem.isEmpty()) {
        logCritical("onScreenshotRequestCompleted", problem);
    }
}

bool CkToF3DMdiView::grabScene(const QString& sFileName) {
    return m_scene && m_scene->saveCapture(sFileName);
}

void CkToF3DMdiView::exportPointCould() {
    const QString problem = ToFSceneFiles::exportPly(cloud().exportPoints(), this);
    if (!problem.isEmpty()) {
        logCritical("exportPointCould", problem);
    }
}

bool CkToF3DMdiView::savePly(const QString& sFileName) {
    return ToFSceneFiles::savePly(cloud().exportPoints(), sFileName);
}

void CkToF3DMdiView::shaderProgramLogChanged(const QString& sLog) {
    logCritical("shaderProgramLogChanged", sLog);
}

void CkToF3DMdiView::showImageData(const CkImageData* pData, bool bForce) {
    if (!bForce && m_regulator.dropsFrame(options().regulateInputFps, options().maxInputFps)) {
        return;
    }
    updateDepthImage(pData);
    if (m_scene && !m_scene->isDrawn()) {
        m_buildPending = true;
    } else {
        updatePointCloudGeometry();
    }
    m_regulator.frameShown();
}

void CkToF3DMdiView::updateDepthImage(const CkImageData* pData) {
    const SkPicBuf& picture = depthFrame().depthPic();
    if (!m_model.setFrame(pData) || m_lut.fits(picture)) {
        return;
    }
    if (CkLut* lut = m_lut.makeFor(picture, cameraHandles())) {
        setViewLut(lut, m_lut.flags().bFlag1, m_lut.flags().bFlag2, false);
        CkToFViewLut::announceChange(*this);
    }
}

void CkToF3DMdiView::updatePointCloudGeometry() {
    if (!m_scene || !m_model.build(m_lut)) {
        return;
    }
    m_buildPending = false;
    m_scene->setCloud(cloud());
    const auto [halfX, halfY, halfZ] = cloud().boxHalfExtents();
    updateBBoxGeometry(halfX, halfY, halfZ);
    m_toolBar->showCloud(cloud());
}

void CkToF3DMdiView::updateBBoxGeometry(float fHalfX, float fHalfY, float fHalfZ) {
    if (m_scene) {
        m_scene->setBox(fHalfX, fHalfY, fHalfZ);
    }
}

void CkToF3DMdiView::updateAfterDistanceOffsetChanged() {
    float& offset = m_model.options().opticalPath.realDistanceOffsetM;
    offset = ToFDistanceOffset::read(offset);
    updatePointCloudGeometry();
}

CkLut* CkToF3DMdiView::viewLut(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits) {
    return m_lut.read(pbFlag1, pbFlag2, puiBits);
}

void CkToF3DMdiView::setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) {
    if (m_lut.set(pLut, {bFlag1, bFlag2}) && bUpdate) {
        updatePointCloudGeometry();
    }
}

CkMdiView* CkToF3DMdiView::clone(CkChainable* pProvider, CkChainable* pSecond) {
    IkAppDelegate* host = IkAppDelegate::instance();
    const QSize size = cloneSize(pProvider);
    if (host == nullptr || size.isEmpty()) {
        return nullptr;
    }
    auto* view = new CkToF3DMdiView(connectedViewId(), secondViewId(), pProvider, pSecond);
    view->resize(size);
    host->addMdiView(view);
    return view;
}

void CkToF3DMdiView::resizeEvent(QResizeEvent* pEvent) {
    if (m_scene) {
        m_scene->setViewSize(pEvent->size());
    }
    CkMdiView::resizeEvent(pEvent);
}

bool CkToF3DMdiView::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (!m_scene || pWatched != m_scene->window()) {
        return CkMdiView::eventFilter(pWatched, pEvent);
    }
    const QEvent::Type type = pEvent->type();
    if (type == QEvent::Show || type == QEvent::Expose) {
        if (m_buildPending && m_scene->isDrawn()) {
            updatePointCloudGeometry();
        }
    } else if (type == QEvent::KeyPress && static_cast<QKeyEvent*>(pEvent)->key() == Qt::Key_O) {
        bool& orthogonal = m_model.options().opticalPath.orthoRadialCorrection;
        orthogonal = !orthogonal;
        updatePointCloudGeometry();
    } else {
        ToFEmbeddedWindow::forward(*m_scene->window(), *this, *pEvent);
    }
    return CkMdiView::eventFilter(pWatched, pEvent);
}
