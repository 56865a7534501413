#include "plugins/zplToF/view3d/CkToFCloudGeometry.h"

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/view3d/ToFSceneAttribute.h"
#include "plugins/zplToF/view3d/ToFSceneBuffer.h"

#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QBuffer>
#include <Qt3DCore/QGeometry>
#include <Qt3DRender/QGeometryRenderer>

using Qt3DCore::QAttribute;
using Qt3DRender::QGeometryRenderer;

namespace {

void setDrawnVertices(QGeometryRenderer* renderer, const CkToFCloudBuilder& cloud) {
    renderer->setVertexCount(cloud.indexCount() != 0 ? cloud.indexCount() : cloud.vertexCount());
}

void buildGeometry(QGeometryRenderer* renderer, const CkToFCloudBuilder& cloud) {
    constexpr uint stride = CkToFCloudBuilder::kBytesPerVertex;
    const uint vertices = uint(cloud.vertexCount());
    auto* geometry = new Qt3DCore::QGeometry(renderer);
    auto* vertexBuffer = new Qt3DCore::QBuffer(geometry);
    vertexBuffer->setData(cloud.vertexBytes());
    geometry->addAttribute(new QAttribute(vertexBuffer, QAttribute::defaultPositionAttributeName(),
                                          QAttribute::Float, 3, vertices, 0, stride, geometry));
    geometry->addAttribute(new QAttribute(vertexBuffer, QAttribute::defaultColorAttributeName(),
                                          QAttribute::Float, 3, vertices, CkToFCloudBuilder::kColourOffset,
                                          stride, geometry));
    if (cloud.indexCount() != 0) {
        auto* indexBuffer = new Qt3DCore::QBuffer(geometry);
        indexBuffer->setData(cloud.indexBytes());
        auto* indices = new QAttribute(indexBuffer, ToFSceneAttribute::indexName(), QAttribute::UnsignedInt,
                                       1, uint(cloud.indexCount()), 0, 0, geometry);
        indices->setAttributeType(QAttribute::IndexAttribute);
        geometry->addAttribute(indices);
    }
    renderer->setInstanceCount(1);
    renderer->setPrimitiveType(cloud.indexCount() != 0 ? QGeometryRenderer::Triangles
                                                       : QGeometryRenderer::Points);
    renderer->setGeometry(geometry);
    setDrawnVertices(renderer, cloud);
}

} // namespace

void CkToFCloudGeometry::update(QGeometryRenderer* pRenderer, const CkToFCloudBuilder& cloud) {
    QAttribute* positions = ToFSceneAttribute::find(pRenderer, QAttribute::defaultPositionAttributeName());
    QAttribute* colors = ToFSceneAttribute::find(pRenderer, QAttribute::defaultColorAttributeName());
    QAttribute* indices = ToFSceneAttribute::find(pRenderer, ToFSceneAttribute::indexName());
    if (positions == nullptr || colors == nullptr) {
        buildGeometry(pRenderer, cloud);
        m_uploaded = false;
        m_lastPointCount = cloud.pointCount();
        return;
    }

    Qt3DCore::QBuffer& buffer = *positions->buffer();
    const bool sameSize = buffer.data().size() == cloud.vertexBytes().size();
    if (m_uploaded && sameSize && cloud.pointCount() == m_lastPointCount) {
        ToFSceneBuffer::replace(buffer, cloud.vertexBytes());
    } else {
        ToFSceneBuffer::set(buffer, cloud.vertexBytes());
        m_uploaded = false;
        positions->setCount(uint(cloud.vertexCount()));
        colors->setCount(uint(cloud.vertexCount()));
    }
    // The quads' indices depend on the points written and on the size of the picture.
    if (indices != nullptr &&
        (cloud.pointCount() != m_lastPointCount || indices->count() != uint(cloud.indexCount()))) {
        ToFSceneBuffer::set(*indices->buffer(), cloud.indexBytes());
        indices->setCount(uint(cloud.indexCount()));
    }
    setDrawnVertices(pRenderer, cloud);
    m_lastPointCount = cloud.pointCount();
}
