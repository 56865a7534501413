#include "plugins/zplToF/view3d/ToFSceneBuffer.h"

#include <QByteArray>
#include <QVariant>
#include <Qt3DCore/QBuffer>

namespace {

// The property in which Qt 3D queues changes in place until the scene uploads them. While it holds any, Qt 3D
// ignores the data of the buffer as a whole, so that a setData in between would be lost. Since every call
// replaces all bytes, the queued changes can be dropped.
void dropPendingChanges(Qt3DCore::QBuffer& buffer) {
    buffer.setProperty("QT3D_updateData", QVariant());
}

} // namespace

void ToFSceneBuffer::set(Qt3DCore::QBuffer& buffer, const QByteArray& bytes) {
    dropPendingChanges(buffer);
    buffer.setData(bytes);
}

void ToFSceneBuffer::replace(Qt3DCore::QBuffer& buffer, const QByteArray& bytes) {
    dropPendingChanges(buffer);
    buffer.updateData(0, bytes);
}
