#pragma once

namespace Qt3DCore {
class QNode;
}
namespace Qt3DRender {
class QMaterial;
class QParameter;
class QShaderProgram;
} // namespace Qt3DRender

/// Draws each point of a geometry as a square that faces the viewer. The nodes are owned by the parent; all
/// are null until they are created.
struct SkToFBillboardMaterial {
    Qt3DRender::QMaterial* material = nullptr;
    Qt3DRender::QParameter* pointSize = nullptr; ///< "parPointSize", QPointF: edges in scene units
    Qt3DRender::QParameter* windowSize =
        nullptr; ///< "parWindowSize", QPointF: correction for the window's aspect ratio
    Qt3DRender::QShaderProgram* program = nullptr;

    static SkToFBillboardMaterial create(Qt3DCore::QNode* pParent);
};
