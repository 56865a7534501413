#pragma once

namespace Qt3DRender {
class QGeometryRenderer;
}

/// Geometry of the wire-frame box around the measured volume.
namespace ToFBoundingBox {

/// Gives the renderer a box of these half extents in scene units. The first call builds the geometry, later
/// ones exchange the corners only: in place when the scene has taken up the box, as changes in place would
/// wait for it otherwise.
void update(Qt3DRender::QGeometryRenderer* pRenderer, float fHalfX, float fHalfY, float fHalfZ,
            bool bTakenUp);

} // namespace ToFBoundingBox
