#include "plugins/zplToF/view3d/CkToFScene.h"

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/view3d/CkToFOrbitController.h"
#include "plugins/zplToF/view3d/CkToFRenderCapture.h"
#include "plugins/zplToF/view3d/ToFBoundingBox.h"
#include "plugins/zplToF/view3d/ToFCloudPick.h"
#include "plugins/zplToF/view3d/ToFGlProbe.h"
#include "plugins/zplToF/view3d/ToFSceneAttribute.h"
#include "plugins/zplToF/view3d/ToFSceneFiles.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSurfaceFormat>
#include <QVector3D>
#include <QWidget>
#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QBuffer>
#include <Qt3DCore/QEntity>
#include <Qt3DExtras/QForwardRenderer>
#include <Qt3DExtras/QPerVertexColorMaterial>
#include <Qt3DExtras/QPhongMaterial>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DLogic/QFrameAction>
#include <Qt3DRender/QCamera>
#include <Qt3DRender/QClearBuffers>
#include <Qt3DRender/QGeometryRenderer>
#include <Qt3DRender/QParameter>
#include <Qt3DRender/QRenderCapabilities>
#include <Qt3DRender/QRenderCapture>
#include <Qt3DRender/QRenderSettings>
#include <Qt3DRender/QShaderProgram>

namespace {

// Qt 3D requests four samples per pixel, also as the default of its contexts. A software renderer spends more
// time on them than on the rest of the picture, and the main thread waits for it.
void drawWithoutMultisampling(QWindow& window) {
    QSurfaceFormat format = window.format();
    format.setSamples(0);
    window.setFormat(format);
    QSurfaceFormat::setDefaultFormat(format);
}

// A window hands its nodes to the aspect engine when it is shown. If it never was, its root and its settings,
// frame graph included, would leak.
void freeNodesWith(Qt3DExtras::Qt3DWindow& window, Qt3DCore::QNode* root) {
    QObject::connect(&window, &QObject::destroyed,
                     [root = QPointer<Qt3DCore::QNode>(root),
                      settings = QPointer<Qt3DCore::QNode>(window.renderSettings())] {
                         delete root;
                         delete settings;
                     });
}

} // namespace

bool CkToFScene::platformUsesPointPrimitives() {
    return QGuiApplication::platformName() != QLatin1String(kWaylandPlatform);
}

CkToFScene::CkToFScene(bool bUsePointPrimitives) : m_usePointPrimitives(bUsePointPrimitives) {}

std::unique_ptr<CkToFScene> CkToFScene::create(bool bUsePointPrimitives, const QColor& clBackground) {
    if (!ToFGlProbe::canRender(bUsePointPrimitives)) {
        return nullptr;
    }
    std::unique_ptr<CkToFScene> scene(new CkToFScene(bUsePointPrimitives));
    return scene->build(clBackground) ? std::move(scene) : nullptr;
}

CkToFScene::~CkToFScene() {
    if (m_window && !m_runs) {
        freeNodesWith(*m_window, m_root != nullptr ? m_root->parentNode() : nullptr);
    }
    // Before assemble the window and the nodes have no other owner.
    if (!m_container) {
        delete m_root;
        delete m_cloudRenderer;
        delete m_boxRenderer;
        delete m_window;
    }
}

bool CkToFScene::build(const QColor& clBackground) {
    m_window = new Qt3DExtras::Qt3DWindow;
    if (m_window->defaultFrameGraph() == nullptr) {
        return false;
    }
    if (ToFGlProbe::isSoftware()) {
        drawWithoutMultisampling(*m_window);
    }
    logRenderer();
    // The default policy draws continuously, on this thread, even when nothing changes.
    m_window->renderSettings()->setRenderPolicy(Qt3DRender::QRenderSettings::OnDemand);
    setClearColor(clBackground);

    m_root = new Qt3DCore::QEntity;
    if (m_usePointPrimitives) {
        createBillboardShaderMaterial(m_root);
    }
    m_cloudEntity = new Qt3DCore::QEntity(m_root);
    m_cloudRenderer = new Qt3DRender::QGeometryRenderer;
    m_boxEntity = new Qt3DCore::QEntity(m_root);
    m_boxRenderer = new Qt3DRender::QGeometryRenderer;
    return true;
}

Qt3DRender::QMaterial* CkToFScene::createBillboardShaderMaterial(Qt3DCore::QNode* pParent) {
    m_billboards = SkToFBillboardMaterial::create(pParent);
    connect(m_billboards.program, &Qt3DRender::QShaderProgram::logChanged, this,
            &CkToFScene::programLogChanged);
    return m_billboards.material;
}

// At critical level, so that the line passes every filter of the host's log.
void CkToFScene::logRenderer() const {
    const Qt3DRender::QRenderCapabilities* found = m_window->renderSettings()->renderCapabilities();
    qCritical().noquote() << QStringLiteral("Starting ToF 3D with OpenGL %1.%2 (glsl %3) on %4, platform: %5")
                                 .arg(found->majorVersion())
                                 .arg(found->minorVersion())
                                 .arg(found->glslVersion(), found->renderer(),
                                      QGuiApplication::platformName());
}

QWidget* CkToFScene::assemble(bool bShowBBox) {
    Qt3DRender::QMaterial* cloudMaterial = m_billboards.material;
    if (cloudMaterial == nullptr) {
        cloudMaterial = new Qt3DExtras::QPerVertexColorMaterial(m_root);
    }
    m_cloudEntity->addComponent(m_cloudRenderer);
    m_cloudEntity->addComponent(cloudMaterial);

    auto* boxMaterial = new Qt3DExtras::QPhongMaterial(m_root);
    boxMaterial->setAmbient(Qt::white);
    m_boxEntity->addComponent(m_boxRenderer);
    m_boxEntity->addComponent(boxMaterial);
    m_boxEntity->setEnabled(bShowBBox);

    setUpCamera();
    auto* frames = new Qt3DLogic::QFrameAction;
    m_root->addComponent(frames);
    connect(frames, &Qt3DLogic::QFrameAction::triggered, this, [this] {
        m_drawn = true;
        m_cloudGeometry.frameBegun();
    });
    if (auto* clear = m_window->defaultFrameGraph()->findChild<Qt3DRender::QClearBuffers*>()) {
        m_capture = new CkToFRenderCapture(clear, this);
    }
    m_window->setRootEntity(m_root);
    m_window->installEventFilter(this);
    m_container = QWidget::createWindowContainer(m_window);
    return m_container;
}

void CkToFScene::setUpCamera() {
    if (Qt3DRender::QCamera* view = camera()) {
        view->lens()->setPerspectiveProjection(kFieldOfView, kAspectRatio, 0.1F, 1000.0F);
        // Qt3DWindow::resizeEvent sets the camera's aspect ratio to the window's; the billboards need ours.
        connect(view, &Qt3DRender::QCamera::aspectRatioChanged, view,
                [view] { view->setAspectRatio(kAspectRatio); });
        moveToDefaultPosition();
    }
    const QPointer<const CkToFScene> scene(this);
    const auto depth = [scene](const QPointF& place) { return scene ? scene->depthAt(place) : 0.0F; };
    auto* controller = new CkToFOrbitController(m_window, depth, m_root);
    controller->setCamera(camera());
}

float CkToFScene::depthAt(const QPointF& place) const {
    using Qt3DCore::QAttribute;
    const QAttribute* positions =
        ToFSceneAttribute::find(m_cloudRenderer, QAttribute::defaultPositionAttributeName());
    if (positions == nullptr) {
        return 0.0F;
    }
    return ToFCloudPick::depthAt(positions->buffer()->data(), int(positions->count()),
                                 camera()->projectionMatrix() * camera()->viewMatrix(), m_window->size(),
                                 place);
}

Qt3DExtras::Qt3DWindow* CkToFScene::window() const {
    return m_window;
}

Qt3DRender::QGeometryRenderer* CkToFScene::cloudRenderer() const {
    return m_cloudRenderer;
}

Qt3DRender::QGeometryRenderer* CkToFScene::boxRenderer() const {
    return m_boxRenderer;
}

Qt3DCore::QEntity* CkToFScene::boxEntity() const {
    return m_boxEntity;
}

Qt3DRender::QCamera* CkToFScene::camera() const {
    return m_window ? m_window->camera() : nullptr;
}

// On Wayland a sub-surface is drawn but never reported as exposed.
bool CkToFScene::isDrawn() const {
    return m_window && (platformUsesPointPrimitives() ? m_window->isExposed() : m_window->isVisible());
}

void CkToFScene::setCloud(const CkToFCloudBuilder& cloud) {
    if (m_billboards.pointSize != nullptr) {
        const double size = 2.0 * double(cloud.pointSpacing());
        m_billboards.pointSize->setValue(QPointF(size, size));
    }
    m_cloudGeometry.update(m_cloudRenderer, cloud);
}

void CkToFScene::setBox(float fHalfX, float fHalfY, float fHalfZ) {
    ToFBoundingBox::update(m_boxRenderer, fHalfX, fHalfY, fHalfZ, m_drawn);
}

void CkToFScene::setBoxVisible(bool bVisible) {
    m_boxEntity->setEnabled(bVisible);
}

QColor CkToFScene::clearColor() const {
    return m_window->defaultFrameGraph()->clearColor();
}

void CkToFScene::setClearColor(const QColor& clColor) {
    m_window->defaultFrameGraph()->setClearColor(clColor);
}

void CkToFScene::setViewSize(const QSize& size) {
    if (m_billboards.windowSize != nullptr && size.width() > 0) {
        const float shape = float(size.height()) / float(size.width());
        m_billboards.windowSize->setValue(QPointF(double(shape), 1.0));
    }
}

void CkToFScene::moveToDefaultPosition() {
    if (Qt3DRender::QCamera* view = camera()) {
        view->setPosition(QVector3D(0.0F, 0.0F, 3.0F));
        view->setUpVector(QVector3D(0.0F, 1.0F, 0.0F));
        view->setViewCenter(QVector3D(0.0F, 0.0F, 0.0F));
    }
}

Qt3DRender::QRenderCaptureReply* CkToFScene::requestCapture() {
    return m_capture != nullptr && isDrawn() ? m_capture->request() : nullptr;
}

// Qt 3D's default renderer returns pictures drawn by OpenGL bottom row first; its OpenGL renderer does not.
QImage CkToFScene::picture(const Qt3DRender::QRenderCaptureReply& reply) const {
    const bool upsideDown =
        !m_usePointPrimitives && m_window && m_window->surfaceType() == QSurface::OpenGLSurface;
    return upsideDown ? reply.image().mirrored() : reply.image();
}

// Queued: a reply completes in the middle of Qt 3D's frame, where the view must not be closed.
bool CkToFScene::saveCapture(const QString& sFileName) {
    Qt3DRender::QRenderCaptureReply* reply = requestCapture();
    if (reply == nullptr) {
        return false;
    }
    const auto save = [this, reply, sFileName] {
        reply->deleteLater();
        ToFSceneFiles::saveImage(picture(*reply), sFileName);
    };
    connect(reply, &Qt3DRender::QRenderCaptureReply::completed, this, save, Qt::QueuedConnection);
    return true;
}

bool CkToFScene::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == m_window && pEvent->type() == QEvent::Show) {
        m_runs = true;
    }
    return QObject::eventFilter(pWatched, pEvent);
}
