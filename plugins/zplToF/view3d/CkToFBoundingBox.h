#pragma once

namespace Qt3DRender {
class QGeometryRenderer;
}

/// Geometry of the wire-frame box around the measured volume.
namespace CkToFBoundingBox {

/// Gives the renderer a box of these half extents in scene units. The first call builds the geometry, later
/// ones exchange the corners only. bSceneRuns: the scene takes up changes; before that, changes in place
/// would pile up in Qt's buffer.
void update(Qt3DRender::QGeometryRenderer* pRenderer, float fHalfX, float fHalfY, float fHalfZ,
            bool bSceneRuns);

} // namespace CkToFBoundingBox
