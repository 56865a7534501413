#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "plugins/zplToF/view3d/CkToFCloudGeometry.h"
#include "plugins/zplToF/view3d/CkToFColorTable.h"
#include "plugins/zplToF/view3d/ToFBoundingBox.h"
#include "zuCore/CkPicBufAPI.h"

#include <QSignalSpy>
#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QBuffer>
#include <Qt3DCore/QGeometry>
#include <Qt3DRender/QGeometryRenderer>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

using Qt3DCore::QAttribute;
using Qt3DRender::QGeometryRenderer;

namespace {

QAttribute* attribute(const QGeometryRenderer& renderer, const char* name) {
    return CkToF3DMdiView::getSceneAttribute(&renderer, QLatin1String(name));
}

template <typename T>
std::vector<T> contents(const QAttribute* attribute) {
    const QByteArray bytes = attribute->buffer()->data();
    std::vector<T> values(size_t(bytes.size()) / sizeof(T));
    std::memcpy(values.data(), bytes.constData(), values.size() * sizeof(T));
    return values;
}

/// The changes in place that the scene has yet to take up.
qsizetype pendingChanges(const Qt3DCore::QBuffer& buffer) {
    return buffer.property("QT3D_updateData").toList().size();
}

/// Clouds of 8-bit grey pictures; all pixels are drawn.
class CloudMaker {
public:
    explicit CloudMaker(EkToFVertexLayout layout) : m_layout(layout) { m_colors.update(0); }
    ~CloudMaker() { CkPicBufAPI::FreePicBuf(m_pictures.depthPic); }

    const CkToFCloudBuilder& make(quint32 width, quint32 height, quint8 value) {
        SkPicBuf& picture = m_pictures.depthPic;
        EXPECT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(
            picture, SkPicBufInfo::of(width, height, 1, EkImageDataType::UInt8, 8)));
        for (quint32 y = 0; y < height; ++y) {
            std::memset(picture.row(y), value, width);
        }
        SkToFCloudParameters parameters;
        parameters.pColourTable = m_colors.colors();
        parameters.layout = m_layout;
        EXPECT_TRUE(m_cloud.build(m_pictures, parameters));
        return m_cloud;
    }

    /// Only this many pixels are drawn, the first ones.
    const CkToFCloudBuilder& makePartly(quint32 width, quint32 height, quint32 points) {
        SkPicBuf& picture = m_pictures.depthPic;
        EXPECT_TRUE(CkPicBufAPI::AllocPicBufFromHeap(
            picture, SkPicBufInfo::of(width, height, 1, EkImageDataType::Float32, 32)));
        for (quint32 i = 0; i < width * height; ++i) {
            reinterpret_cast<float*>(picture.row(i / width))[i % width] =
                i < points ? 1.0F : std::numeric_limits<float>::quiet_NaN();
        }
        picture.minValue = 1.0F;
        picture.maxValue = 1.0F;
        SkToFCloudParameters parameters;
        parameters.pColourTable = m_colors.colors();
        parameters.layout = m_layout;
        EXPECT_TRUE(m_cloud.build(m_pictures, parameters));
        EXPECT_EQ(m_cloud.pointCount(), int(points));
        return m_cloud;
    }

private:
    EkToFVertexLayout m_layout;
    CkToFColorTable m_colors;
    SkToFDepthPictures m_pictures;
    CkToFCloudBuilder m_cloud;
};

// ---- attributes by name
// ------------------------------------------------------------------------------------

TEST(ToFSceneAttributeTest, ANameThatDiffersOnlyInLetterCaseIsNotFound) {
    QGeometryRenderer renderer;
    ToFBoundingBox::update(&renderer, 1.0F, 1.0F, 1.0F, false);
    EXPECT_NE(attribute(renderer, "vertexPosition"), nullptr);
    EXPECT_EQ(attribute(renderer, "vertexposition"), nullptr);
    EXPECT_EQ(attribute(renderer, "VertexPosition"), nullptr);
    EXPECT_EQ(attribute(renderer, "vertexColor"), nullptr);
}

TEST(ToFSceneAttributeTest, NothingIsFoundWithoutRendererOrGeometry) {
    const QGeometryRenderer renderer;
    EXPECT_EQ(CkToF3DMdiView::getSceneAttribute(nullptr, QStringLiteral("vertexPosition")), nullptr);
    EXPECT_EQ(attribute(renderer, "vertexPosition"), nullptr);
}

TEST(ToFSceneAttributeTest, TheIndexBufferIsCalledSceneIndexBuffer) {
    EXPECT_EQ(CkToF3DMdiView::indexBufferName(), QStringLiteral("sceneIndexBuffer"));
}

// ---- bounding box
// ------------------------------------------------------------------------------------------

TEST(ToFBoundingBoxTest, CornersAndEdges) {
    QGeometryRenderer renderer;
    ToFBoundingBox::update(&renderer, 1.0F, 0.75F, 0.5F, false);

    const QAttribute* positions = attribute(renderer, "vertexPosition");
    ASSERT_NE(positions, nullptr);
    const std::vector<float> corners = {-1.0F,  -0.75F, -0.5F, 1.0F,  -0.75F, -0.5F,  1.0F,  0.75F,
                                        -0.5F,  -1.0F,  0.75F, -0.5F, -1.0F,  -0.75F, 0.5F,  1.0F,
                                        -0.75F, 0.5F,   1.0F,  0.75F, 0.5F,   -1.0F,  0.75F, 0.5F};
    EXPECT_EQ(contents<float>(positions), corners);
    EXPECT_EQ(positions->vertexBaseType(), QAttribute::Float);
    EXPECT_EQ(positions->vertexSize(), 3U);
    EXPECT_EQ(positions->count(), 8U);
    EXPECT_EQ(positions->byteOffset(), 0U);
    EXPECT_EQ(positions->byteStride(), 0U);
    EXPECT_EQ(positions->attributeType(), QAttribute::VertexAttribute);

    const QAttribute* edges = attribute(renderer, "sceneIndexBuffer");
    ASSERT_NE(edges, nullptr);
    const std::vector<quint16> pairs = {0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6,
                                        6, 7, 7, 4, 0, 4, 1, 5, 2, 6, 3, 7};
    EXPECT_EQ(contents<quint16>(edges), pairs);
    EXPECT_EQ(edges->vertexBaseType(), QAttribute::UnsignedShort);
    EXPECT_EQ(edges->vertexSize(), 1U);
    EXPECT_EQ(edges->count(), 24U);
    EXPECT_EQ(edges->attributeType(), QAttribute::IndexAttribute);

    EXPECT_EQ(renderer.instanceCount(), 1);
    EXPECT_EQ(renderer.primitiveType(), QGeometryRenderer::Lines);
    EXPECT_EQ(renderer.vertexCount(), 24);
}

TEST(ToFBoundingBoxTest, ASecondCallChangesTheCornersOnly) {
    for (const bool uploaded : {false, true}) {
        QGeometryRenderer renderer;
        ToFBoundingBox::update(&renderer, 1.0F, 0.75F, 0.5F, uploaded);
        const auto* geometry = renderer.geometry();
        const auto* vertexBuffer = attribute(renderer, "vertexPosition")->buffer();
        const auto* indexBuffer = attribute(renderer, "sceneIndexBuffer")->buffer();
        const QByteArray indices = indexBuffer->data();

        ToFBoundingBox::update(&renderer, 1.0F, 0.75F, 0.25F, uploaded);
        EXPECT_EQ(renderer.geometry(), geometry);
        EXPECT_EQ(renderer.findChildren<Qt3DCore::QGeometry*>().size(), 1);
        EXPECT_EQ(renderer.geometry()->attributes().size(), 2);
        EXPECT_EQ(renderer.findChildren<Qt3DCore::QBuffer*>().size(), 2);
        EXPECT_EQ(attribute(renderer, "vertexPosition")->buffer(), vertexBuffer);
        EXPECT_EQ(attribute(renderer, "sceneIndexBuffer")->buffer(), indexBuffer);
        EXPECT_EQ(indexBuffer->data(), indices);
        EXPECT_EQ(vertexBuffer->data().size(), 96);
        EXPECT_EQ(contents<float>(attribute(renderer, "vertexPosition"))[2], -0.25F);
    }
}

TEST(ToFBoundingBoxTest, OnlyTheLastChangeInPlaceIsKeptForTheScene) {
    QGeometryRenderer renderer;
    ToFBoundingBox::update(&renderer, 1.0F, 0.75F, 0.5F, false);
    ToFBoundingBox::update(&renderer, 1.0F, 0.75F, 0.25F, true);
    ToFBoundingBox::update(&renderer, 1.0F, 0.75F, 0.125F, true);
    const auto& buffer = *attribute(renderer, "vertexPosition")->buffer();
    EXPECT_EQ(pendingChanges(buffer), 1);
    EXPECT_EQ(contents<float>(attribute(renderer, "vertexPosition"))[2], -0.125F);
    ToFBoundingBox::update(&renderer, 1.0F, 0.75F, 0.75F, false);
    EXPECT_EQ(pendingChanges(buffer), 0);
    EXPECT_EQ(contents<float>(attribute(renderer, "vertexPosition"))[2], -0.75F);
}

TEST(ToFBoundingBoxTest, ZeroExtentsPutEveryCornerAtTheOrigin) {
    QGeometryRenderer renderer;
    ToFBoundingBox::update(&renderer, 0.0F, 0.0F, 0.0F, false);
    for (const float coordinate : contents<float>(attribute(renderer, "vertexPosition"))) {
        EXPECT_EQ(coordinate, 0.0F);
    }
}

// ---- cloud
// -------------------------------------------------------------------------------------------------

TEST(CkToFCloudGeometryTest, PointsHaveOneVertexEachAndNoIndices) {
    CloudMaker clouds(EkToFVertexLayout::Points);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.make(4, 3, 7));

    const QAttribute* positions = attribute(renderer, "vertexPosition");
    const QAttribute* colors = attribute(renderer, "vertexColor");
    ASSERT_NE(positions, nullptr);
    ASSERT_NE(colors, nullptr);
    EXPECT_EQ(attribute(renderer, "sceneIndexBuffer"), nullptr);
    for (const QAttribute* each : {positions, colors}) {
        EXPECT_EQ(each->count(), 12U);
        EXPECT_EQ(each->byteStride(), 24U);
        EXPECT_EQ(each->vertexBaseType(), QAttribute::Float);
        EXPECT_EQ(each->vertexSize(), 3U);
        EXPECT_EQ(each->attributeType(), QAttribute::VertexAttribute);
        EXPECT_EQ(each->buffer(), positions->buffer());
    }
    EXPECT_EQ(positions->byteOffset(), 0U);
    EXPECT_EQ(colors->byteOffset(), 12U);
    EXPECT_EQ(positions->buffer()->data().size(), 12 * 24);
    EXPECT_EQ(renderer.primitiveType(), QGeometryRenderer::Points);
    EXPECT_EQ(renderer.instanceCount(), 1);
    EXPECT_EQ(renderer.vertexCount(), 12);
}

TEST(CkToFCloudGeometryTest, QuadsHaveFourVerticesAndSixIndicesEach) {
    CloudMaker clouds(EkToFVertexLayout::Quads);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.make(2, 1, 7));

    const QAttribute* indices = attribute(renderer, "sceneIndexBuffer");
    ASSERT_NE(indices, nullptr);
    EXPECT_EQ(indices->attributeType(), QAttribute::IndexAttribute);
    EXPECT_EQ(indices->vertexBaseType(), QAttribute::UnsignedInt);
    EXPECT_EQ(indices->vertexSize(), 1U);
    EXPECT_EQ(indices->byteStride(), 0U);
    EXPECT_EQ(indices->byteOffset(), 0U);
    EXPECT_EQ(indices->count(), 12U);
    const std::vector<quint32> expected = {0, 1, 2, 2, 3, 0, 4, 5, 6, 6, 7, 4};
    EXPECT_EQ(contents<quint32>(indices), expected);
    EXPECT_EQ(attribute(renderer, "vertexPosition")->count(), 8U);
    EXPECT_EQ(renderer.primitiveType(), QGeometryRenderer::Triangles);
    EXPECT_EQ(renderer.vertexCount(), 12);
}

TEST(CkToFCloudGeometryTest, TheSameCountIsUpdatedInPlaceOnceTheSceneTookUpTheBuffer) {
    CloudMaker clouds(EkToFVertexLayout::Points);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.make(4, 3, 0));
    const auto* buffer = attribute(renderer, "vertexPosition")->buffer();
    const QAttribute* positions = attribute(renderer, "vertexPosition");
    QSignalSpy countChanges(positions, &QAttribute::countChanged);
    geometry.frameBegun();

    geometry.update(&renderer, clouds.make(4, 3, 255));
    EXPECT_EQ(attribute(renderer, "vertexPosition")->buffer(), buffer);
    EXPECT_EQ(countChanges.count(), 0);
    EXPECT_EQ(contents<float>(attribute(renderer, "vertexColor"))[3], 1.0F);
    // Qt queues changes in place until the scene takes them up; only the last one counts.
    EXPECT_EQ(pendingChanges(*buffer), 1);
    geometry.update(&renderer, clouds.make(4, 3, 9));
    EXPECT_EQ(pendingChanges(*buffer), 1);
    EXPECT_EQ(contents<float>(attribute(renderer, "vertexColor"))[3], float(9.0 / 255.0));
}

TEST(CkToFCloudGeometryTest, AChangeInPlaceThatIsStillPendingGivesWayToAnotherSize) {
    CloudMaker clouds(EkToFVertexLayout::Points);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.make(4, 3, 0));
    const auto* buffer = attribute(renderer, "vertexPosition")->buffer();
    geometry.frameBegun();
    geometry.update(&renderer, clouds.make(4, 3, 1));
    ASSERT_EQ(pendingChanges(*buffer), 1);
    geometry.update(&renderer, clouds.make(2, 2, 2));
    EXPECT_EQ(pendingChanges(*buffer), 0);
    // The scene has not taken the new size up: changes in place would be lost.
    geometry.update(&renderer, clouds.make(2, 2, 3));
    EXPECT_EQ(pendingChanges(*buffer), 0);
    geometry.frameBegun();
    geometry.update(&renderer, clouds.make(2, 2, 4));
    EXPECT_EQ(pendingChanges(*buffer), 1);
}

TEST(CkToFCloudGeometryTest, AsManyPointsOfALargerPictureAreNotChangedInPlace) {
    CloudMaker clouds(EkToFVertexLayout::Points);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.makePartly(2, 1, 2));
    geometry.frameBegun();
    geometry.update(&renderer, clouds.makePartly(4, 1, 2));
    const auto* buffer = attribute(renderer, "vertexPosition")->buffer();
    EXPECT_EQ(pendingChanges(*buffer), 0);
    EXPECT_EQ(buffer->data().size(), 4 * 24);
}

TEST(CkToFCloudGeometryTest, NothingPilesUpBeforeTheSceneRuns) {
    CloudMaker clouds(EkToFVertexLayout::Points);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    for (int i = 0; i < 10; ++i) {
        geometry.update(&renderer, clouds.make(4, 3, quint8(10 * i)));
    }
    const auto* buffer = attribute(renderer, "vertexPosition")->buffer();
    EXPECT_EQ(pendingChanges(*buffer), 0);
    EXPECT_EQ(contents<float>(attribute(renderer, "vertexColor"))[3], float(90.0 / 255.0));
}

TEST(CkToFCloudGeometryTest, AnotherSizeReplacesTheBuffersContents) {
    CloudMaker clouds(EkToFVertexLayout::Points);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.make(4, 3, 0));
    geometry.update(&renderer, clouds.make(2, 2, 0));
    EXPECT_EQ(attribute(renderer, "vertexPosition")->count(), 4U);
    EXPECT_EQ(attribute(renderer, "vertexColor")->count(), 4U);
    EXPECT_EQ(attribute(renderer, "vertexPosition")->buffer()->data().size(), 4 * 24);
    EXPECT_EQ(renderer.vertexCount(), 4);
    EXPECT_EQ(renderer.findChildren<Qt3DCore::QGeometry*>().size(), 1);
}

TEST(CkToFCloudGeometryTest, QuadsTakeNewIndicesWithEverySizeOfThePicture) {
    CloudMaker clouds(EkToFVertexLayout::Quads);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.make(4, 3, 0));
    geometry.update(&renderer, clouds.make(2, 2, 0));
    const QAttribute* indices = attribute(renderer, "sceneIndexBuffer");
    EXPECT_EQ(indices->count(), 24U);
    EXPECT_EQ(contents<quint32>(indices).size(), 24U);
    EXPECT_EQ(renderer.vertexCount(), 24);
}

TEST(CkToFCloudGeometryTest, QuadsTakeNewIndicesWithAnotherSizeOfAsManyPoints) {
    CloudMaker clouds(EkToFVertexLayout::Quads);
    QGeometryRenderer renderer;
    CkToFCloudGeometry geometry;
    geometry.update(&renderer, clouds.makePartly(2, 1, 2));
    geometry.update(&renderer, clouds.makePartly(4, 1, 2));
    const QAttribute* indices = attribute(renderer, "sceneIndexBuffer");
    EXPECT_EQ(indices->count(), 24U);
    // All pixels are counted; the last two draw nothing.
    const std::vector<quint32> expected = {0, 1, 2, 2, 3, 0, 4, 5, 6, 6, 7, 4,
                                           0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(contents<quint32>(indices), expected);
    EXPECT_EQ(attribute(renderer, "vertexPosition")->buffer()->data().size(), 4 * 4 * 24);
    EXPECT_EQ(renderer.vertexCount(), 24);
}

} // namespace
