#include "plugins/zplToF/view3d/ToFBoundingBox.h"

#include "plugins/zplToF/cloud/ToFBoundingBoxTables.h"
#include "plugins/zplToF/view3d/ToFSceneAttribute.h"
#include "plugins/zplToF/view3d/ToFSceneBuffer.h"

#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QBuffer>
#include <Qt3DCore/QGeometry>
#include <Qt3DRender/QGeometryRenderer>

using Qt3DCore::QAttribute;

namespace {

template <typename Table>
QByteArray bytesOf(const Table& table) {
    return QByteArray(reinterpret_cast<const char*>(table.data()), qsizetype(sizeof(table)));
}

void buildGeometry(Qt3DRender::QGeometryRenderer* renderer, const QByteArray& corners) {
    const auto& indices = ToFBoundingBoxTables::indices();
    auto* geometry = new Qt3DCore::QGeometry(renderer);
    auto* vertexBuffer = new Qt3DCore::QBuffer(geometry);
    vertexBuffer->setData(corners);
    auto* indexBuffer = new Qt3DCore::QBuffer(geometry);
    indexBuffer->setData(bytesOf(indices));

    auto* positions = new QAttribute(vertexBuffer, QAttribute::defaultPositionAttributeName(),
                                     QAttribute::Float, 3, 8, 0, 0, geometry);
    auto* edges = new QAttribute(indexBuffer, ToFSceneAttribute::indexName(), QAttribute::UnsignedShort, 1,
                                 uint(indices.size()), 0, 0, geometry);
    edges->setAttributeType(QAttribute::IndexAttribute);
    geometry->addAttribute(positions);
    geometry->addAttribute(edges);

    renderer->setInstanceCount(1);
    renderer->setPrimitiveType(Qt3DRender::QGeometryRenderer::Lines);
    renderer->setGeometry(geometry);
    renderer->setVertexCount(int(edges->count()));
}

} // namespace

void ToFBoundingBox::update(Qt3DRender::QGeometryRenderer* pRenderer, float fHalfX, float fHalfY,
                            float fHalfZ, bool bUploaded) {
    const QByteArray corners = bytesOf(ToFBoundingBoxTables::vertices(fHalfX, fHalfY, fHalfZ));
    QAttribute* positions = ToFSceneAttribute::find(pRenderer, QAttribute::defaultPositionAttributeName());
    if (positions == nullptr) {
        buildGeometry(pRenderer, corners);
    } else if (bUploaded) {
        ToFSceneBuffer::replace(*positions->buffer(), corners);
    } else {
        ToFSceneBuffer::set(*positions->buffer(), corners);
    }
}
