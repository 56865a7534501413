#pragma once

namespace Qt3DRender {
class QGeometryRenderer;
}

/// Geometry of the wire-frame box around the measured volume.
namespace ToFBoundingBox {

/// Gives the renderer a box of these half extents in scene units. The first call builds the geometry, later
/// calls replace the corners only: in place if bUploaded, that is once the scene has uploaded the box; before
/// that, changes in place would queue up.
void update(Qt3DRender::QGeometryRenderer* pRenderer, float fHalfX, float fHalfY, float fHalfZ,
            bool bUploaded);

} // namespace ToFBoundingBox
