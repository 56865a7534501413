#include "plugins/zplToF/cloud/SkToFCloudScales.h"
#include "tests/plugins/zplToF/cloud/CloudBuilderFixtures.h"

#include <gmock/gmock.h>
#include <sys/mman.h>

using testing::ElementsAre;
using testing::FloatNear;

INSTANTIATE_TEST_SUITE_P(Both, Normalised, testing::Bool(), loopName);

TEST_P(Normalised, ZeroConfidenceKeepsEveryPhasePoint) {
    TestPicture depth(9, 4, 1, EkImageDataType::Float32);
    TestPicture confidence(9, 4, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32 x, quint32) { return float(x) * 0.5F; });
    SkToFDepthPictures pictures{*depth, *confidence, EkDepthDataType::PhaseShift, 1.0F};
    ASSERT_TRUE(builder.build(pictures, testParameters()));
    EXPECT_EQ(builder.pointCount(), 36);
    pictures.depthDataKind = EkDepthDataType::Depth;
    ASSERT_TRUE(builder.build(pictures, testParameters()));
    EXPECT_EQ(builder.pointCount(), 0) << "zero confidence drops points of depth data";
    pictures.depthDataKind = EkDepthDataType::Generic;
    ASSERT_TRUE(builder.build(pictures, testParameters()));
    EXPECT_EQ(builder.pointCount(), 36) << "generic pictures are not filtered";
}

TEST_P(Normalised, ConfidenceAboveTheThresholdDropsThePoint) {
    TestPicture depth(4, 1, 1, EkImageDataType::Float32);
    TestPicture confidence(4, 1, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32 x, quint32) { return 1.0F + float(x); });
    fillFloats(confidence, [](quint32 x, quint32) { return std::array{0.5F, 0.6F, 0.7F, NotANumber}[x]; });
    SkToFCloudParameters parameters = testParameters();
    parameters.opticalPath.confidenceThreshold = 0.6F;
    for (auto kind : {EkDepthDataType::PhaseShift, EkDepthDataType::Depth}) {
        ASSERT_TRUE(builder.build({*depth, *confidence, kind, 1.0F}, parameters));
        EXPECT_EQ(builder.pointCount(), 2);
        // The largest value that passes is 2: it gets the last colour and the near end of the box.
        EXPECT_EQ(colourOf(vertexAt(builder, 1)), 255);
        EXPECT_FLOAT_EQ(vertexAt(builder, 1).z, -0.6F);
        EXPECT_FLOAT_EQ(vertexAt(builder, 0).z, 0.6F);
    }
}

TEST_P(Normalised, DefaultSettingsGiveANormalisedCloud) {
    TestPicture depth(8, 4, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32 x, quint32 y) { return float(x + 8 * y); });
    ASSERT_TRUE(builder.build({*depth, {}, EkDepthDataType::PhaseShift, 1.0F}, testParameters()));
    ASSERT_EQ(builder.pointCount(), 32);
    EXPECT_FALSE(builder.usedLens());
    EXPECT_EQ(builder.dimensions(), std::nullopt);
    EXPECT_FLOAT_EQ(vertexAt(builder, 0).x, -1.0F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 7).x, 1.0F - 2.0F / 8.0F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 0).y, 0.5F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 31).y, -0.25F);
    for (int i = 0; i < 32; i++) {
        const TestVertex vertex = vertexAt(builder, i);
        EXPECT_EQ(builder.exportPoints()[size_t(i)], (SkToFPoint{vertex.x, vertex.y, vertex.z}));
    }
    // Near points (small values) are towards the viewer.
    EXPECT_FLOAT_EQ(vertexAt(builder, 0).z, 0.6F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 31).z, -0.6F);
}

TEST_P(Normalised, UnsupportedSampleTypesGiveNoPoints) {
    for (auto type : {EkImageDataType::Int64, EkImageDataType::UInt64, EkImageDataType::Float64,
                      EkImageDataType::Other16, EkImageDataType::Unknown, EkImageDataType(77)}) {
        TestPicture depth(8, 8, 1, type);
        SkToFCloudParameters parameters = testParameters();
        parameters.layout = EkToFVertexLayout::Quads;
        ASSERT_TRUE(builder.build({*depth, {}}, parameters)) << int(type);
        EXPECT_EQ(builder.pointCount(), 0);
        EXPECT_TRUE(builder.exportPoints().empty());
        EXPECT_EQ(builder.indexBytes(), QByteArray(8 * 8 * 6 * 4, '\0'));
        EXPECT_EQ(builder.vertexBytes(), QByteArray(8 * 8 * 4 * 24, '\0'));
    }
}

TEST_P(Normalised, QuadsHaveFourCornersAndSixIndices) {
    TestPicture depth(4, 2, 1, EkImageDataType::UInt8);
    depth.set<quint8>(1, 0, 0, 255);
    SkToFCloudParameters parameters = testParameters();
    parameters.layout = EkToFVertexLayout::Quads;
    ASSERT_TRUE(builder.build({*depth, {}}, parameters));
    ASSERT_EQ(builder.pointCount(), 8);
    EXPECT_EQ(builder.verticesPerPoint(), 4);
    EXPECT_EQ(builder.vertexCount(), 32);
    EXPECT_EQ(builder.indexCount(), 48);
    EXPECT_FLOAT_EQ(builder.pointSpacing(), 0.5F);
    // Pixel (1, 0): x (1 - 2) * 2 / 4 = -0.5, y (1 - 0) * 0.5 = 0.5, z 1.2 - 0.6.
    const std::array<std::array<float, 2>, 4> corners = {
        {{-0.5F, 0.0F}, {0.0F, 0.0F}, {0.0F, 0.5F}, {-0.5F, 0.5F}}};
    for (int i = 0; i < 4; i++) {
        const TestVertex vertex = vertexAt(builder, 4 + i);
        EXPECT_FLOAT_EQ(vertex.x, corners[size_t(i)][0]);
        EXPECT_FLOAT_EQ(vertex.y, corners[size_t(i)][1]);
        EXPECT_FLOAT_EQ(vertex.z, 0.6F);
        EXPECT_EQ(colourOf(vertex), 255);
        EXPECT_FLOAT_EQ(vertex.green, 0.0F);
        EXPECT_FLOAT_EQ(vertex.red, float((7 * 255) & 255) / 255.0F);
    }
    std::vector<quint32> indices;
    for (int i = 6; i < 12; i++) {
        indices.push_back(indexAt(builder, i));
    }
    EXPECT_THAT(indices, ElementsAre(4, 5, 6, 6, 7, 4));
}

TEST_P(Normalised, BytesBehindThePointsAreZero) {
    TestPicture depth(7, 5, 1, EkImageDataType::Float32);
    SkToFCloudParameters parameters = testParameters();
    parameters.layout = EkToFVertexLayout::Quads;
    // Fewer and more points than before, with and without shared arrays.
    QByteArray held;
    for (quint32 points : {35U, 3U, 20U, 0U, 34U, 35U, 1U}) {
        fillFloats(depth,
                   [&](quint32 x, quint32 y) { return y * 7 + x < points ? 1.0F + float(x) : NotANumber; });
        ASSERT_TRUE(builder.build({*depth, {}}, parameters));
        ASSERT_EQ(builder.pointCount(), int(points));
        const QByteArray vertices = builder.vertexBytes();
        const QByteArray indices = builder.indexBytes();
        ASSERT_EQ(vertices.size(), 35 * 96);
        ASSERT_EQ(indices.size(), 35 * 24);
        EXPECT_EQ(vertices.mid(qsizetype(points) * 96), QByteArray(qsizetype(35 - points) * 96, '\0'))
            << points;
        EXPECT_EQ(indices.mid(qsizetype(points) * 24), QByteArray(qsizetype(35 - points) * 24, '\0'))
            << points;
        for (quint32 i = 0; i < points; i++) {
            EXPECT_EQ(indexAt(builder, int(6 * i + 4)), 4 * i + 3);
        }
        if (points % 2 == 0) {
            held = builder.vertexBytes();
        }
    }
}

TEST_P(Normalised, AValueThatIsNoNumberIsDropped) {
    TestPicture depth(20, 1, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32 x, quint32) {
        return x == 3 ? NotANumber : x == 9 ? Infinite : x == 19 ? -Infinite : 1.0F + float(x % 2);
    });
    for (auto kind : {EkDepthDataType::Generic, EkDepthDataType::PhaseShift, EkDepthDataType::Depth}) {
        for (bool lens : {false, true}) {
            ASSERT_TRUE(builder.build({*depth, {}, kind, 1.0F}, testParameters(lens)));
            EXPECT_EQ(builder.pointCount(), 17);
            EXPECT_EQ(colourOf(vertexAt(builder, 0)), 0);
            EXPECT_EQ(colourOf(vertexAt(builder, 1)), 255);
        }
    }
}

TEST_P(Normalised, NoFiniteValueGivesNoPoints) {
    TestPicture depth(5, 3, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32, quint32) { return NotANumber; });
    ASSERT_TRUE(builder.build({*depth, {}, EkDepthDataType::PhaseShift, 1.0F}, testParameters(true)));
    EXPECT_EQ(builder.pointCount(), 0);
}

TEST_P(Normalised, AConstantPictureDividesByNothing) {
    TestPicture depth(5, 3, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32, quint32) { return 4.0F; });
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    ASSERT_EQ(builder.pointCount(), 15);
    EXPECT_FLOAT_EQ(vertexAt(builder, 7).z, 0.6F);
    EXPECT_EQ(colourOf(vertexAt(builder, 7)), 0);
}

TEST_P(Normalised, ZoomStretchesTheDepthAxis) {
    TestPicture depth(2, 1, 1, EkImageDataType::UInt8);
    depth.set<quint8>(1, 0, 0, 255);
    SkToFCloudParameters parameters = testParameters();
    parameters.zZoom = 0.5F;
    ASSERT_TRUE(builder.build({*depth, {}}, parameters));
    // Integer samples: the values shrink, the box does not.
    EXPECT_FLOAT_EQ(vertexAt(builder, 0).z, -0.6F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 1).z, 0.0F);
    EXPECT_FLOAT_EQ(builder.boxHalfExtents()[2], 0.6F);

    TestPicture floats(2, 1, 1, EkImageDataType::Float32);
    fillFloats(floats, [](quint32 x, quint32) { return float(x); });
    ASSERT_TRUE(builder.build({*floats, {}}, parameters));
    EXPECT_FLOAT_EQ(vertexAt(builder, 0).z, 0.3F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 1).z, -0.3F);
    EXPECT_FLOAT_EQ(builder.boxHalfExtents()[2], 0.3F);
    for (float zoom : {0.0F, -1.0F, NotANumber, Infinite}) {
        parameters.zZoom = zoom;
        ASSERT_TRUE(builder.build({*floats, {}}, parameters));
        EXPECT_FLOAT_EQ(builder.boxHalfExtents()[2], 0.6F) << zoom;
    }
}

TEST(CkToFCloudBuilder, RefusesWhatItCannotUseAndKeepsItsCloud) {
    CkToFCloudBuilder builder;
    TestPicture good(6, 4, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(builder.build({*good, {}}, testParameters()));
    const QByteArray vertices = builder.vertexBytes();
    const auto refused = [&](const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters) {
        EXPECT_FALSE(builder.build(pictures, parameters));
        EXPECT_EQ(builder.pointCount(), 24);
        EXPECT_EQ(builder.vertexBytes(), vertices);
        EXPECT_EQ(builder.width(), 6);
        EXPECT_EQ(builder.height(), 4);
    };
    refused({}, testParameters());
    refused({*good, {}}, SkToFCloudParameters());
    TestPicture twoChannels(6, 4, 2, EkImageDataType::Float32);
    refused({*twoChannels, {}}, testParameters());
    TestPicture small(5, 4, 1, EkImageDataType::Float32);
    TestPicture wrongType(6, 4, 1, EkImageDataType::UInt32);
    refused({*good, *small}, testParameters());
    refused({*good, *wrongType}, testParameters());
    refused({*good, *twoChannels}, testParameters());
    SkPicBuf shortRows = *good;
    shortRows.lineSize = 5;
    refused({shortRows, {}}, testParameters());
    SkPicBuf huge = *good;
    huge.width = 1U << 20;
    huge.height = 1U << 20;
    huge.lineSize = 1U << 20;
    refused({huge, {}}, testParameters());
    TestPicture crooked(6, 4, 1, EkImageDataType::Float32, 0, 3);
    refused({*crooked, {}}, testParameters());
}

TEST(CkToFCloudBuilder, RefusesMorePointsThanItsIndicesCanNumber) {
    // Address space only: a refused picture is not read.
    constexpr quint32 side = 1U << 14;
    void* const pixels =
        mmap(nullptr, size_t(side) * side, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(pixels, MAP_FAILED);
    SkPicBuf picture;
    picture.width = picture.height = picture.lineSize = side;
    picture.channels = 1;
    picture.bitsPerChannel = 8;
    picture.dataType = EkImageDataType::UInt8;
    picture.data = static_cast<quint8*>(pixels);
    ASSERT_TRUE(CkPicBufAPI::isValid(picture));
    CkToFCloudBuilder builder;
    EXPECT_FALSE(builder.build({picture, {}}, testParameters()));
    EXPECT_EQ(builder.pointCount(), 0);
    munmap(pixels, size_t(side) * side);
}

TEST(CkToFCloudBuilder, StartsWithoutACloud) {
    const CkToFCloudBuilder builder;
    EXPECT_EQ(builder.pointCount(), 0);
    EXPECT_EQ(builder.vertexCount(), 0);
    EXPECT_EQ(builder.indexCount(), 0);
    EXPECT_TRUE(builder.exportPoints().empty());
    EXPECT_TRUE(builder.vertexBytes().isEmpty());
    EXPECT_EQ(builder.dimensions(), std::nullopt);
    EXPECT_FALSE(builder.usedLens());
}

TEST(CkToFCloudBuilder, BytesGivenAwayAreNotWrittenAgain) {
    CkToFCloudBuilder builder;
    TestPicture depth(16, 4, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    const QByteArray held = builder.vertexBytes();
    const QByteArray copy(held.constData(), held.size());
    std::memset(depth->data, 200, size_t(depth->lineSize) * 4);
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    EXPECT_NE(builder.vertexBytes(), copy);
    EXPECT_EQ(held, copy);
}

TEST(CkToFCloudBuilder, MovesWithItsCloud) {
    CkToFCloudBuilder builder;
    TestPicture depth(3, 3, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    CkToFCloudBuilder moved = std::move(builder);
    EXPECT_EQ(moved.pointCount(), 9);
    CkToFCloudBuilder assigned;
    assigned = std::move(moved);
    EXPECT_EQ(assigned.pointCount(), 9);
    EXPECT_TRUE(assigned.build({*depth, {}}, testParameters()));
}
