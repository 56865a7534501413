#pragma once

class CkToFCloudBuilder;
namespace Qt3DRender {
class QGeometryRenderer;
}

/// Hands a finished cloud to the renderer of the point cloud.
class CkToFCloudGeometry {
public:
    /// The first call builds the geometry, later ones exchange its buffers: in place when the number of
    /// points and the size of the buffer are those of the call before. bSceneRuns: the scene takes up
    /// changes; before that, changes in place would pile up in Qt's buffer.
    void update(Qt3DRender::QGeometryRenderer* pRenderer, const CkToFCloudBuilder& cloud, bool bSceneRuns);

private:
    int lastPointCount = 0;
};
