#pragma once

class QByteArray;
namespace Qt3DCore {
class QBuffer;
}

/// New contents for the buffers of the scene.
namespace ToFSceneBuffer {

/// The buffer as a whole, of any size.
void set(Qt3DCore::QBuffer& buffer, const QByteArray& bytes);

/// In place. The scene must have taken up a buffer of this size already.
void replace(Qt3DCore::QBuffer& buffer, const QByteArray& bytes);

} // namespace ToFSceneBuffer
