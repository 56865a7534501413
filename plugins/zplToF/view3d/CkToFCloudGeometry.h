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
    /// uploaded the buffer.
    void update(Qt3DRender::QGeometryRenderer* pRenderer, const CkToFCloudBuilder& cloud);

    /// To be called once the scene has uploaded all changes made so far.
    void frameBegun() { m_uploaded = true; }

private:
    int m_lastPointCount = 0;
    bool m_uploaded = false; ///< the scene has uploaded the vertex buffer in its present size
};
