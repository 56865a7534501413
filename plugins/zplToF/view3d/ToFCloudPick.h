#pragma once

class QByteArray;
class QMatrix4x4;
class QPointF;
class QSizeF;

/// Finds points of a cloud on screen.
namespace ToFCloudPick {

/// Distance along the line of sight, in scene units, of the nearest of the points that are drawn within a few
/// pixels of a place in the window; 0 where there are none. vertexBytes begins with iVertices vertices as
/// CkToFCloudBuilder makes them; toClip is the camera's projection by its view.
float depthAt(const QByteArray& vertexBytes, int iVertices, const QMatrix4x4& toClip, const QSizeF& window,
              const QPointF& place);

} // namespace ToFCloudPick
