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

/// What is drawn: the cloud, the box around it and the camera, in a window of their own.
/// User-interface thread. The window belongs to the container once there is one; the nodes belong to the
/// window.
class CkToFScene : public QObject {
    Q_OBJECT

public:
    /// The name of the platform on which the scene is drawn by Qt 3D's default renderer.
    static constexpr char kWaylandPlatform[] = "wayland";
    /// Vertical field of view in degrees, and shape of the picture it is meant for; holds for every window.
    static constexpr float kFieldOfView = 45.0F;
    static constexpr float kAspectRatio = 16.0F / 9.0F;

    /// Whether points are drawn as squares by the billboard shaders (everywhere but on Wayland).
    static bool platformUsesPointPrimitives();

    /// The window, its nodes, cloud and box without geometry. Null where the scene cannot be drawn: no usable
    /// OpenGL context, or no frame graph.
    static std::unique_ptr<CkToFScene> create(bool bUsePointPrimitives, const QColor& clBackground);
    ~CkToFScene() override;

    /// Puts the pieces together and wraps the window into a widget, owned by the caller. Once only.
    QWidget* assemble(bool bShowBBox);

    Qt3DExtras::Qt3DWindow* window() const;
    Qt3DRender::QCamera* camera() const;
    Qt3DRender::QGeometryRenderer* cloudRenderer() const;
    Qt3DRender::QGeometryRenderer* boxRenderer() const;
    Qt3DCore::QEntity* boxEntity() const;
    CkToFRenderCapture* renderCapture() const { return m_capture; }
    const SkToFBillboardMaterial& billboards() const { return m_billboards; }

    /// Whether the window is on screen. What happens while it is not cannot be seen.
    bool isDrawn() const;

    void setCloud(const CkToFCloudBuilder& cloud);
    void setBox(float fHalfX, float fHalfY, float fHalfZ);
    void setBoxVisible(bool bVisible);
    QColor clearColor() const;
    void setClearColor(const QColor& clColor);
    /// Keeps the square points square for a view of this size.
    void setViewSize(const QSize& size);
    void moveToDefaultPosition();

    /// See CkToFRenderCapture; null when the window is not on screen, where no picture would ever come.
    Qt3DRender::QRenderCaptureReply* requestCapture();
    /// The picture of a completed reply, the right way up; null when the capture failed.
    QImage picture(const Qt3DRender::QRenderCaptureReply& reply) const;
    /// Saves the next capture under this name; false when none can be requested.
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

    const bool m_bUsePointPrimitives;
    bool m_bRuns = false;  ///< the window was shown once, and Qt 3D has run the scene ever since
    bool m_bDrawn = false; ///< a frame has begun, with what there was at that time
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
