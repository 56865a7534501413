#include "plugins/zplToF/view3d/ToFSceneBuffer.h"

#include <QByteArray>
#include <QVariant>
#include <Qt3DCore/QBuffer>

namespace {

// Where Qt 3D keeps the changes in place until the scene takes them up. As long as there are any it does not
// look at the contents as a whole, and a change of all of them in between would be lost. Changes that were
// not taken up yet are of no use once all bytes are new.
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
