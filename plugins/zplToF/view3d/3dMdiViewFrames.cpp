// The way of a frame into the view, and what the host asks of a view.

#include "plugins/zplToF/view3d/3dMdiView.h"
#include "plugins/zplToF/view3d/CkToFInputRegulator.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "plugins/zplToF/view3d/CkToFToolBar.h"
#include "plugins/zplToF/view3d/ToFEmbeddedWindow.h"
#include "plugins/zplToF/view3d/ToFSceneAttribute.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"
#include "zuCore/CkLut.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLocale>
#include <QPointer>
#include <QResizeEvent>
#include <QSettings>
#include <Qt3DExtras/Qt3DWindow>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int CloneWidth = 496;

QString metres(double value) {
    return QLocale().toString(value, 'f', 1);
}

} // namespace

// ---- frames
// ------------------------------------------------------------------------------------------------

void CkToF3DMdiView::updateWithConnectedImageData(const CkImageData* pData, bool bForce) {
    if (pData != nullptr) {
        // Listeners may close the view.
        const QPointer<CkToF3DMdiView> self(this);
        const CkImageData* outer = std::exchange(m_pArriving, pData);
        emit receivedFrame(pData->frameId());
        if (!self) {
            return;
        }
        m_pArriving = outer;
    }
    takeFrame(pData, bForce);
}

// A view that was cloned onto a block of its own gets its frames from there.
void CkToF3DMdiView::showFrame(std::unique_ptr<CkImageData> arrived) {
    if (arrived) {
        takeFrame(arrived.get(), false);
    }
    CkMdiView::showFrame(std::move(arrived));
}

void CkToF3DMdiView::takeFrame(const CkImageData* pData, bool bForce) {
    const qint64 elapsedMs = inputTimer.isValid() ? inputTimer.elapsed() : -1;
    if (!bForce && CkToFInputRegulator::drops(m_options.regulateInputFps, m_options.maxInputFps, elapsedMs)) {
        return;
    }
    updateDepthImage(pData);
    if (m_scene && !m_scene->isDrawn()) {
        m_bBuildPending = true;
    } else {
        updatePointCloudGeometry();
    }
    inputTimer.start();
}

void CkToF3DMdiView::updateDepthImage(const CkImageData* pData) {
    if (pData == nullptr || pData->picBuf().data == nullptr) {
        return;
    }
    m_data.reset();
    const CkImageMetadata& metadata = pData->metadata();
    m_frame.update(pData->picBuf(), &metadata, m_iDepthTexResolutionW);
    m_options.opticalPath.takeOverCameraValues(metadata);
    if (m_frame.isEmpty()) {
        return;
    }
    SkPicBuf shared;
    if (CkPicBufAPI::SharePicBuf(m_frame.depthPic(), shared)) {
        shared.copyPicAdditionalData(pData->picBuf());
        m_data = std::make_unique<CkImageData>();
        m_data->setPicBuf(shared);
        m_data->setMetadata(metadata);
    }
    updateLut();
}

void CkToF3DMdiView::updatePointCloudGeometry() {
    if (m_frame.isEmpty() || !m_scene || m_colorTable.colors() == nullptr || !m_lut) {
        return;
    }
    SkToFCloudParameters parameters;
    parameters.opticalPath = m_options.opticalPath;
    parameters.zZoom = m_fZZoom;
    parameters.pColourTable = m_colorTable.colors();
    if (!m_lut->contrastEntries().isEmpty()) {
        parameters.contrast = m_lut->contrastEntries().constFirst();
    }
    parameters.layout = m_bUsePointPrimitives ? EkToFVertexLayout::Points : EkToFVertexLayout::Quads;
    if (!m_cloud.build(m_frame.pictures(), parameters)) {
        return;
    }
    m_bBuildPending = false;
    m_scene->setCloud(m_cloud);
    const auto [halfX, halfY, halfZ] = m_cloud.boxHalfExtents();
    updateBBoxGeometry(halfX, halfY, halfZ);
    showFigures();
}

void CkToF3DMdiView::updateBBoxGeometry(float fHalfX, float fHalfY, float fHalfZ) {
    if (m_scene) {
        m_scene->setBox(fHalfX, fHalfY, fHalfZ);
    }
}

void CkToF3DMdiView::showFigures() {
    QString text;
    if (const auto size = m_cloud.dimensions()) {
        text = tr("Width: %1 m Height: %2 m Depth: %3 m")
                   .arg(metres(size->widthM), metres(size->heightM), metres(size->depthM));
    }
    m_pToolBar->setLabelText(text);
    exportAction->setEnabled(!m_cloud.exportPoints().empty());
}

void CkToF3DMdiView::updateAfterDistanceOffsetChanged() {
    IkAppDelegate* host = IkAppDelegate::instance();
    if (const std::unique_ptr<QSettings> settings{host != nullptr ? host->settings() : nullptr}) {
        float& offset = m_options.opticalPath.realDistanceOffsetM;
        offset = SkToFViewSettings::readDistanceOffset(*settings, offset);
    }
    updatePointCloudGeometry();
}

void CkToF3DMdiView::updateAllAfterDistanceOffsetChanged() {
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        if (auto* view = qobject_cast<CkToF3DMdiView*>(widget)) {
            view->updateAfterDistanceOffsetChanged();
        }
    }
}

// ---- colouring
// ---------------------------------------------------------------------------------------------

// Keeps the table while its depth fits, also over to another depth; otherwise the host's choice for this kind
// of picture.
void CkToF3DMdiView::updateLut() {
    const SkPicBuf& picture = m_frame.depthPic();
    if (m_lut && m_lut->bitsPerChannel() == picture.bitsPerChannel) {
        return;
    }
    IkAppDelegate* host = IkAppDelegate::instance();
    CkLut* lut = nullptr;
    if (host != nullptr && (!m_lut || m_bLutIsStandIn)) {
        lut = host->createLut(picture, cameraHandles());
    }
    if (lut == nullptr && m_lut) {
        lut = m_lut->transformToFormat(picture.bitsPerChannel, picture.channels, picture.layoutFlag,
                                       picture.dataType);
    }
    if (lut == nullptr || lut == m_lut.get()) {
        return;
    }
    setViewLut(lut, m_bLutFlag1, m_bLutFlag2, false);
    if (host == nullptr) {
        return;
    }
    if (host->activeViewId() == viewId()) {
        host->refreshLutControls();
    }
    host->viewLutChanged(this);
}

void CkToF3DMdiView::createOwnLut() {
    if (m_lut) {
        return;
    }
    const SkPicBuf& picture = m_frame.depthPic();
    m_lut = std::make_unique<CkLut>(picture.bitsPerChannel, picture.channels, picture.layoutFlag,
                                    picture.dataType);
    IkAppDelegate* host = IkAppDelegate::instance();
    if (const std::unique_ptr<QSettings> settings{host != nullptr ? host->settings() : nullptr}) {
        m_lut->setPseudoColorIndex(SkToFViewSettings::readPseudoColor(*settings));
        m_bLutIsStandIn = !settings->contains(QLatin1String(ToFSettingsKey::LutPseudoColor));
    }
    m_lut->allocRgbTable(sampleBytes(picture.dataType));
}

void CkToF3DMdiView::updateGradientLutPic() {
    if (m_lut) {
        m_colorTable.update(m_lut->pseudoColorIndex());
    }
}

CkLut* CkToF3DMdiView::viewLut(bool* pbFlag1, bool* pbFlag2, unsigned int* puiBits) {
    if (pbFlag1 != nullptr) {
        *pbFlag1 = m_bLutFlag1;
    }
    if (pbFlag2 != nullptr) {
        *pbFlag2 = m_bLutFlag2;
    }
    if (puiBits != nullptr) {
        *puiBits = 32;
    }
    return m_lut.get();
}

void CkToF3DMdiView::setViewLut(CkLut* pLut, bool bFlag1, bool bFlag2, bool bUpdate) {
    m_bLutFlag1 = bFlag1;
    m_bLutFlag2 = bFlag2;
    if (pLut == nullptr) {
        return;
    }
    m_bLutIsStandIn = false;
    if (pLut != m_lut.get()) {
        m_lut.reset(pLut);
    }
    updateGradientLutPic();
    IkAppDelegate* host = IkAppDelegate::instance();
    if (const std::unique_ptr<QSettings> settings{host != nullptr ? host->settings() : nullptr}) {
        settings->setValue(QLatin1String(ToFSettingsKey::LutPseudoColor), m_lut->pseudoColorIndex());
    }
    if (bUpdate) {
        updatePointCloudGeometry();
    }
}

// ---- what the host asks
// ------------------------------------------------------------------------------------

CkMdiView* CkToF3DMdiView::connectedView() const {
    IkAppDelegate* host = IkAppDelegate::instance();
    return host != nullptr ? host->mdiView(m_iConnectedViewId) : nullptr;
}

int CkToF3DMdiView::viewCaps() const {
    return CkToFScene::platformUsesPointPrimitives() ? 0 : NativeWindowCap;
}

int CkToF3DMdiView::connectedViewId() const {
    return m_iConnectedViewId;
}

int CkToF3DMdiView::secondViewId() const {
    return m_iSecondViewId;
}

bool CkToF3DMdiView::containsData() const {
    return false;
}

QString CkToF3DMdiView::viewTitle() const {
    return windowTitle();
}

CkImageData* CkToF3DMdiView::currentImage() {
    return m_data.get();
}

const CkImageData* CkToF3DMdiView::imageData(qint32 iFrameId) {
    if (m_pArriving != nullptr && m_pArriving->frameId() == iFrameId) {
        return m_pArriving;
    }
    if (const CkImageData* own = CkMdiView::imageData(iFrameId)) {
        return own;
    }
    return m_data && m_data->frameId() == iFrameId ? m_data.get() : nullptr;
}

CkChainable* CkToF3DMdiView::dataProvider() const {
    const CkMdiView* connected = connectedView();
    return connected != nullptr ? connected->dataProvider() : CkMdiView::dataProvider();
}

QList<void*> CkToF3DMdiView::cameraHandles() const {
    const CkMdiView* connected = connectedView();
    return connected != nullptr ? connected->cameraHandles() : CkMdiView::cameraHandles();
}

CkMdiView* CkToF3DMdiView::clone(CkChainable* pProvider, CkChainable* pSecond) {
    IkAppDelegate* host = IkAppDelegate::instance();
    auto* images = qobject_cast<CkImageProvider*>(pProvider);
    SkPicBufInfo info;
    if (host == nullptr || images == nullptr || !images->outputImageInfo(info, nullptr) || info.width == 0 ||
        info.height == 0) {
        return nullptr;
    }
    auto* view = new CkToF3DMdiView(m_iConnectedViewId, m_iSecondViewId, pProvider, pSecond);
    const double shape = double(info.width) / double(info.height);
    view->resize(CloneWidth, int(std::min(std::ceil(CloneWidth / shape), double(QWIDGETSIZE_MAX))));
    host->addMdiView(view);
    return view;
}

Qt3DCore::QAttribute* CkToF3DMdiView::getSceneAttribute(const Qt3DRender::QGeometryRenderer* pRenderer,
                                                        const QString& sName) {
    return ToFSceneAttribute::find(pRenderer, sName);
}

QString CkToF3DMdiView::indexBufferName() {
    return ToFSceneAttribute::indexName();
}

// ---- events
// ------------------------------------------------------------------------------------------------

void CkToF3DMdiView::resizeEvent(QResizeEvent* pEvent) {
    if (m_scene) {
        m_scene->setViewSize(pEvent->size());
    }
    CkMdiView::resizeEvent(pEvent);
}

bool CkToF3DMdiView::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (m_scene && pWatched == m_scene->window()) {
        sceneEvent(*pEvent);
    }
    return CkMdiView::eventFilter(pWatched, pEvent);
}

void CkToF3DMdiView::sceneEvent(QEvent& event) {
    IkAppDelegate* host = IkAppDelegate::instance();
    switch (event.type()) {
    case QEvent::Show:
    case QEvent::Expose:
        if (m_bBuildPending && m_scene->isDrawn()) {
            updatePointCloudGeometry();
        }
        break;
    case QEvent::MouseButtonPress:
        if (host != nullptr && host->activeViewId() != viewId()) {
            host->setActiveView(viewId());
        }
        break;
    case QEvent::KeyPress:
        switch (static_cast<QKeyEvent&>(event).key()) {
        case Qt::Key_Escape:
            if (host != nullptr && host->mainWindow() != nullptr && host->mainWindow()->isFullScreen()) {
                host->leaveFullScreen();
            }
            break;
        case Qt::Key_O:
            m_options.opticalPath.orthoRadialCorrection = !m_options.opticalPath.orthoRadialCorrection;
            updatePointCloudGeometry();
            break;
        default:
            ToFEmbeddedWindow::triggerShortcut(*this, static_cast<QKeyEvent&>(event));
            break;
        }
        break;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        ToFEmbeddedWindow::handOverDrop(*m_scene->window(), *this, event);
        break;
    default:
        break;
    }
}
