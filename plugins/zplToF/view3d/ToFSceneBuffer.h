#pragma once

class QByteArray;
namespace Qt3DCore {
class QBuffer;
}

/// Replaces the contents of the scene's buffers. Qt 3D's own setData and updateData lose changes when they
/// are mixed before a frame is drawn.
namespace ToFSceneBuffer {

/// Replaces the whole buffer; its size may change.
void set(Qt3DCore::QBuffer& buffer, const QByteArray& bytes);

/// Replaces the bytes in place. The scene must have uploaded the buffer in this size.
void replace(Qt3DCore::QBuffer& buffer, const QByteArray& bytes);

} // namespace ToFSceneBuffer
