#pragma once

class CkToFCloudBuilder;
namespace Qt3DRender {
class QGeometryRenderer;
}

/// Hands a finished cloud to the renderer of the point cloud.
class CkToFCloudGeometry {
public:
    /// The first call builds the geometry, later ones exchange its buffers: in place when the number of
    /// points and the size of the buffer are those of the call before and the scene has taken up the buffer.
    void update(Qt3DRender::QGeometryRenderer* pRenderer, const CkToFCloudBuilder& cloud);

    /// The scene has taken up all changes made so far.
    void frameBegun() { m_bTakenUp = true; }

private:
    int m_iLastPointCount = 0;
    bool m_bTakenUp = false; ///< the scene has the vertex buffer in its present size
};
