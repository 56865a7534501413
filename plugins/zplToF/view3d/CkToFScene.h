#pragma once

#include "plugins/zplToF/view3d/CkToFCloudGeometry.h"
#include "plugins/zplToF/view3d/SkToFBillboardMaterial.h"

#include <QColor>
#include <QImage>
#include <QObject>
#include <QPointer>
#include <memory>

class CkToFCloudBuilder;
class CkToFRenderCapture;
class QWidget;

namespace Qt3DCore {
class QEntity;
class QNode;
} // namespace Qt3DCore
namespace Qt3DExtras {
class Qt3DWindow;
}
namespace Qt3DRender {
class QCamera;
class QGeometryRenderer;
class QMaterial;
class QRenderCaptureReply;
} // namespace Qt3DRender

/// The scene that is drawn: cloud, bounding box and camera, in a native window. User-interface thread. The
/// container owns the window once it exists, the window owns the nodes.
class CkToFScene : public QObject {
    Q_OBJECT

public:
    /// The platform on which Qt 3D draws the scene with its default renderer instead of its OpenGL renderer.
    static constexpr char kWaylandPlatform[] = "wayland";
    /// Vertical field of view in degrees, and aspect ratio of the projection; the same for windows of any
    /// shape.
    static constexpr float kFieldOfView = 45.0F;
    static constexpr float kAspectRatio = 16.0F / 9.0F;

    /// Whether the billboard shaders draw each point as a square (everywhere but on Wayland).
    static bool platformUsesPointPrimitives();

    /// Makes the window and its nodes; cloud and box have no geometry yet. Null when the scene cannot be
    /// drawn: no usable OpenGL context, or no frame graph.
    static std::unique_ptr<CkToFScene> create(bool bUsePointPrimitives, const QColor& clBackground);
    ~CkToFScene() override;

    /// Connects the nodes and wraps the window into a widget, owned by the caller. Call once.
    QWidget* assemble(bool bShowBBox);

    Qt3DExtras::Qt3DWindow* window() const;
    Qt3DRender::QCamera* camera() const;
    Qt3DRender::QGeometryRenderer* cloudRenderer() const;
    Qt3DRender::QGeometryRenderer* boxRenderer() const;
    Qt3DCore::QEntity* boxEntity() const;
    CkToFRenderCapture* renderCapture() const { return m_capture; }
    const SkToFBillboardMaterial& billboards() const { return m_billboards; }

    /// Whether the window is on screen.
    bool isDrawn() const;

    void setCloud(const CkToFCloudBuilder& cloud);
    void setBox(float fHalfX, float fHalfY, float fHalfZ);
    void setBoxVisible(bool bVisible);
    QColor clearColor() const;
    void setClearColor(const QColor& clColor);
    /// Corrects the shape of the points for a view of this size, so that they stay square.
    void setViewSize(const QSize& size);
    void moveToDefaultPosition();

    /// See CkToFRenderCapture. Null when the window is not on screen: such a reply would never complete.
    Qt3DRender::QRenderCaptureReply* requestCapture();
    /// The picture of a completed reply, top row first; null when the capture failed.
    QImage picture(const Qt3DRender::QRenderCaptureReply& reply) const;
    /// Requests a capture and saves it under this name when it completes; false when none can be requested.
    bool saveCapture(const QString& sFileName);

signals:
    void programLogChanged(const QString& sLog);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    explicit CkToFScene(bool bUsePointPrimitives);
    bool build(const QColor& clBackground);
    Qt3DRender::QMaterial* createBillboardShaderMaterial(Qt3DCore::QNode* pParent);
    void logRenderer() const;
    void setUpCamera();
    float depthAt(const QPointF& place) const;

    const bool m_usePointPrimitives;
    bool m_runs = false;  ///< the window has been shown: from then on Qt 3D runs the scene
    bool m_drawn = false; ///< a frame has begun, so the nodes have been uploaded
    QPointer<QWidget> m_container;
    QPointer<Qt3DExtras::Qt3DWindow> m_window;
    QPointer<Qt3DCore::QEntity> m_root;
    QPointer<Qt3DCore::QEntity> m_cloudEntity;
    QPointer<Qt3DCore::QEntity> m_boxEntity;
    QPointer<Qt3DRender::QGeometryRenderer> m_cloudRenderer;
    QPointer<Qt3DRender::QGeometryRenderer> m_boxRenderer;
    CkToFRenderCapture* m_capture = nullptr;
    SkToFBillboardMaterial m_billboards;
    CkToFCloudGeometry m_cloudGeometry;
};
