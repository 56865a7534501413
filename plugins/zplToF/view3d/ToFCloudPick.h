#pragma once

class QByteArray;
class QMatrix4x4;
class QPointF;
class QSizeF;

/// Finds the point of a cloud under a position on screen.
namespace ToFCloudPick {

/// Distance along the line of sight, in scene units, of the nearest point drawn within a few pixels of a
/// position in the window; 0 where there is none. vertexBytes: begins with iVertices vertices in the layout
/// of CkToFCloudBuilder. toClip: the camera's projection matrix times its view matrix.
float depthAt(const QByteArray& vertexBytes, int iVertices, const QMatrix4x4& toClip, const QSizeF& window,
              const QPointF& place);

} // namespace ToFCloudPick
