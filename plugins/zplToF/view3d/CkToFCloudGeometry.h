#pragma once

class CkToFCloudBuilder;
namespace Qt3DRender {
class QGeometryRenderer;
}

/// Passes a finished cloud to the geometry renderer of the point cloud. User-interface thread.
class CkToFCloudGeometry {
public:
    /// The first call builds the geometry, later calls replace the contents of its buffers: in place when the
    /// number of points and the size of the buffer have not changed since the last call and the scene has
    /// taken the buffer up.
    void update(Qt3DRender::QGeometryRenderer* pRenderer, const CkToFCloudBuilder& cloud);

    /// The scene has taken up all changes made so far.
    void frameBegun() { m_takenUp = true; }

private:
    int m_lastPointCount = 0;
    bool m_takenUp = false; ///< the scene has taken the vertex buffer up in its present size
};
