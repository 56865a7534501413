#include "plugins/zplToF/cloud/SkToFCloudScales.h"
#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <gmock/gmock.h>
#include <sys/mman.h>

using testing::ElementsAre;
using testing::FloatNear;

namespace {

/// Millimetres of a radian and of the whole range at 30 MHz, by hand: 299.70254 / (2 * 30) m = 4.995042 m.
constexpr float RangeMM = 4995.0424F;
constexpr float MMPerRadian = RangeMM / 6.2831855F;

/// Depth data of one value with the lens model on.
class Lens : public testing::TestWithParam<bool> {
protected:
    Lens() : parameters(testParameters(true)) {
        builder.setPlainLoop(GetParam());
        parameters.opticalPath.realDistanceOffsetM = 0.0F;
        parameters.opticalPath.orthoRadialCorrection = false;
    }

    /// The export point of the only pixel in the middle column of a 2 x 1 picture (x = cx), or none.
    bool build(float value, EkDepthDataType kind) {
        fillFloats(depth, [&](quint32, quint32) { return value; });
        return builder.build({*depth, {}, kind, 1.0F}, parameters);
    }

    HeapPicture depth{2, 1, 1, EkImageDataType::Float32};
    SkToFCloudParameters parameters;
    CkToFCloudBuilder builder;
};

class Normalised : public testing::TestWithParam<bool> {
protected:
    Normalised() { builder.setPlainLoop(GetParam()); }
    CkToFCloudBuilder builder;
};

std::string loopName(const testing::TestParamInfo<bool>& info) {
    return info.param ? "Plain" : "Vectors";
}

INSTANTIATE_TEST_SUITE_P(Both, Lens, testing::Bool(), loopName);
INSTANTIATE_TEST_SUITE_P(Both, Normalised, testing::Bool(), loopName);

} // namespace

TEST_P(Normalised, ZeroConfidenceKeepsEveryPhasePoint) {
    HeapPicture depth(9, 4, 1, EkImageDataType::Float32);
    HeapPicture confidence(9, 4, 1, EkImageDataType::Float32);
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
    HeapPicture depth(4, 1, 1, EkImageDataType::Float32);
    HeapPicture confidence(4, 1, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32 x, quint32) { return 1.0F + float(x); });
    fillFloats(confidence, [](quint32 x, quint32) { return std::array{0.5F, 0.6F, 0.7F, NotANumber}[x]; });
    SkToFCloudParameters parameters = testParameters();
    parameters.opticalPath.confidenceThreshold = 0.6F;
    for (auto kind : {EkDepthDataType::PhaseShift, EkDepthDataType::Depth}) {
        ASSERT_TRUE(builder.build({*depth, *confidence, kind, 1.0F}, parameters));
        EXPECT_EQ(builder.pointCount(), 2);
        // The largest value that passes is 2: it takes the last colour and the near end of the box.
        EXPECT_EQ(colourOf(vertexAt(builder, 1)), 255);
        EXPECT_FLOAT_EQ(vertexAt(builder, 1).z, -0.6F);
        EXPECT_FLOAT_EQ(vertexAt(builder, 0).z, 0.6F);
    }
}

TEST_P(Lens, MinusOneHundredMillimetresIsPlacedAtTheRangeLessOneHundred) {
    parameters.opticalPath.realDistanceOffsetM = -1.5F;
    ASSERT_TRUE(build(1400.0F / MMPerRadian, EkDepthDataType::PhaseShift));
    ASSERT_EQ(builder.pointCount(), 2);
    EXPECT_NEAR(builder.exportPoints()[0].z, RangeMM - 100.0F, 0.002F);
}

TEST_P(Lens, DepthBelowTheOffsetWrapsToo) {
    parameters.opticalPath.realDistanceOffsetM = -1.5F;
    // The range of depth data is its own largest value, here 1 m.
    ASSERT_TRUE(build(1.0F, EkDepthDataType::Depth));
    EXPECT_NEAR(builder.exportPoints()[0].z, 500.0F, 0.001F);
}

TEST_P(Normalised, DefaultSettingsGiveANormalisedCloud) {
    HeapPicture depth(8, 4, 1, EkImageDataType::Float32);
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
    // Near points (small values) stand towards the viewer.
    EXPECT_FLOAT_EQ(vertexAt(builder, 0).z, 0.6F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 31).z, -0.6F);
}

TEST_P(Lens, PhaseDataAt30MHzHasARangeOfFiveMetresLessFiveMillimetres) {
    ASSERT_TRUE(build(1.0F, EkDepthDataType::PhaseShift));
    ASSERT_TRUE(builder.usedLens());
    ASSERT_TRUE(builder.dimensions());
    EXPECT_NEAR(builder.dimensions()->depthM, 4.99504, 1e-5);
    EXPECT_NEAR(builder.exportPoints()[0].z, 794.98F, 0.01F);
}

TEST_P(Lens, PlacesAPixelByHand) {
    parameters.opticalPath.lensFocalLengthMM = 4.0F;
    parameters.opticalPath.chipCellSizeMM = 0.02F;
    parameters.opticalPath.centerOffsetMM = QPointF(0.01, -0.03);
    parameters.opticalPath.realDistanceOffsetM = 0.5F;
    parameters.zZoom = 2.0F;
    HeapPicture picture(40, 20, 1, EkImageDataType::Float32);
    fillFloats(picture, [](quint32, quint32) { return 2.0F; });
    ASSERT_TRUE(builder.build({*picture, {}, EkDepthDataType::Depth, 2.0F}, parameters));
    ASSERT_EQ(builder.pointCount(), 800);
    // Range 2000 mm, far end 2500 mm, half width (20 * 0.02 * 2 - 0.01) * 2500 / 4 = 493.75 mm.
    const double halfWidth = 493.75;
    EXPECT_NEAR(builder.dimensions()->widthM, 0.9875, 1e-6);
    EXPECT_NEAR(builder.dimensions()->heightM, 0.49375, 1e-6);
    EXPECT_NEAR(builder.dimensions()->depthM, 2.0, 1e-6);
    // Pixel (3, 5): distance 2500 mm, chip x (3 - 20) * 0.04 - 0.01 = -0.69, y (10 - 5) * 0.04 + 0.03 = 0.23.
    const int i = 5 * 40 + 3;
    EXPECT_NEAR(builder.exportPoints()[i].x, -431.25, 1e-3);
    EXPECT_NEAR(builder.exportPoints()[i].y, 143.75, 1e-3);
    EXPECT_NEAR(builder.exportPoints()[i].z, 2000.0, 1e-3) << "a positive offset is taken off again";
    EXPECT_NEAR(vertexAt(builder, i).x, -431.25 / halfWidth, 1e-6);
    EXPECT_NEAR(vertexAt(builder, i).y, 143.75 / halfWidth, 1e-6);
    // Extent 2 * 2000 / 493.75; the far end is the back of the box.
    const double zHalf = 2000.0 / halfWidth;
    EXPECT_NEAR(vertexAt(builder, i).z, -zHalf, 1e-5);
    EXPECT_THAT(builder.boxHalfExtents(),
                ElementsAre(1.0F, FloatNear(0.5F, 1e-6F), FloatNear(float(zHalf), 1e-5F)));
}

TEST_P(Lens, OrthogonalCorrectionTurnsRaysIntoDistancesAlongTheAxis) {
    parameters.opticalPath.orthoRadialCorrection = true;
    parameters.opticalPath.lensFocalLengthMM = 4.0F;
    parameters.opticalPath.chipCellSizeMM = 1.0F;
    HeapPicture picture(6, 2, 1, EkImageDataType::Float32);
    fillFloats(picture, [](quint32, quint32) { return 1.0F; });
    ASSERT_TRUE(builder.build({*picture, {}, EkDepthDataType::Depth, 1.0F}, parameters));
    // Pixel (0, 1): chip (-3, 0), so the ray is 5 long for 4 along the axis.
    const SkToFPoint point = builder.exportPoints()[6];
    EXPECT_NEAR(point.z, 800.0F, 1e-3F);
    EXPECT_NEAR(point.x, -600.0F, 1e-3F);
    EXPECT_NEAR(point.y, 0.0F, 1e-6F);
    // The factors follow the lens, whoever changes it.
    parameters.opticalPath.lensFocalLengthMM = 2.25F;
    ASSERT_TRUE(builder.build({*picture, {}, EkDepthDataType::Depth, 1.0F}, parameters));
    EXPECT_NEAR(builder.exportPoints()[6].z, 1000.0F * 2.25F / 3.75F, 1e-3F);
    builder.freeOrthoFactorPic();
    ASSERT_TRUE(builder.build({*picture, {}, EkDepthDataType::Depth, 1.0F}, parameters));
    EXPECT_NEAR(builder.exportPoints()[6].z, 600.0F, 1e-3F);
}

TEST_P(Normalised, UnsupportedSampleTypesGiveNoPoints) {
    for (auto type : {EkImageDataType::Int64, EkImageDataType::UInt64, EkImageDataType::Float64,
                      EkImageDataType::Other16, EkImageDataType::Unknown, EkImageDataType(77)}) {
        HeapPicture depth(8, 8, 1, type);
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
    HeapPicture depth(4, 2, 1, EkImageDataType::UInt8);
    depth.at<quint8>(1, 0) = 255;
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
    HeapPicture depth(7, 5, 1, EkImageDataType::Float32);
    SkToFCloudParameters parameters = testParameters();
    parameters.layout = EkToFVertexLayout::Quads;
    // Fewer and more points than before, with arrays that somebody holds and without.
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
    HeapPicture depth(20, 1, 1, EkImageDataType::Float32);
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
    HeapPicture depth(5, 3, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32, quint32) { return NotANumber; });
    ASSERT_TRUE(builder.build({*depth, {}, EkDepthDataType::PhaseShift, 1.0F}, testParameters(true)));
    EXPECT_EQ(builder.pointCount(), 0);
}

TEST_P(Normalised, AConstantPictureDividesByNothing) {
    HeapPicture depth(5, 3, 1, EkImageDataType::Float32);
    fillFloats(depth, [](quint32, quint32) { return 4.0F; });
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    ASSERT_EQ(builder.pointCount(), 15);
    EXPECT_FLOAT_EQ(vertexAt(builder, 7).z, 0.6F);
    EXPECT_EQ(colourOf(vertexAt(builder, 7)), 0);
}

TEST_P(Normalised, ZoomStretchesTheDepthAxis) {
    HeapPicture depth(2, 1, 1, EkImageDataType::UInt8);
    depth.at<quint8>(1, 0) = 255;
    SkToFCloudParameters parameters = testParameters();
    parameters.zZoom = 0.5F;
    ASSERT_TRUE(builder.build({*depth, {}}, parameters));
    // Other than float: the values shrink, the box does not.
    EXPECT_FLOAT_EQ(vertexAt(builder, 0).z, -0.6F);
    EXPECT_FLOAT_EQ(vertexAt(builder, 1).z, 0.0F);
    EXPECT_FLOAT_EQ(builder.boxHalfExtents()[2], 0.6F);

    HeapPicture floats(2, 1, 1, EkImageDataType::Float32);
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

TEST_P(Lens, APointThatIsNowhereInOneDirectionIsDropped) {
    // x and z are finite all the same.
    parameters.opticalPath.centerOffsetMM.setY(1e300);
    fillFloats(depth, [](quint32, quint32) { return 1.0F; });
    EXPECT_TRUE(builder.build({*depth, {}, EkDepthDataType::PhaseShift, 1.0F}, parameters));
    EXPECT_TRUE(builder.usedLens());
    EXPECT_EQ(builder.pointCount(), 0);
}

TEST_P(Lens, UnusableParametersSwitchTheLensOff) {
    const auto usesLens = [&](const std::function<void(SkToFOpticalPath&)>& change) {
        SkToFCloudParameters changed = parameters;
        change(changed.opticalPath);
        fillFloats(depth, [](quint32, quint32) { return 1.0F; });
        EXPECT_TRUE(builder.build({*depth, {}, EkDepthDataType::PhaseShift, 1.0F}, changed));
        EXPECT_EQ(builder.usedLens(), builder.dimensions().has_value());
        EXPECT_EQ(builder.pointCount(), 2);
        return builder.usedLens();
    };
    EXPECT_TRUE(usesLens([](SkToFOpticalPath&) {}));
    EXPECT_FALSE(usesLens([](SkToFOpticalPath& path) { path.compensateDistortion = false; }));
    for (float value : {0.0F, -1.0F, NotANumber, Infinite}) {
        EXPECT_FALSE(usesLens([&](SkToFOpticalPath& path) { path.lensFocalLengthMM = value; })) << value;
        EXPECT_FALSE(usesLens([&](SkToFOpticalPath& path) { path.chipCellSizeMM = value; })) << value;
        EXPECT_FALSE(usesLens([&](SkToFOpticalPath& path) { path.modulationFreqMHz = value; })) << value;
    }
    EXPECT_FALSE(usesLens([](SkToFOpticalPath& path) { path.centerOffsetMM.setX(0.01); }))
        << "at the chip's edge";
    EXPECT_FALSE(usesLens([](SkToFOpticalPath& path) { path.centerOffsetMM.setX(qQNaN()); }));
    EXPECT_FALSE(usesLens([](SkToFOpticalPath& path) { path.centerOffsetMM.setY(qInf()); }));
    EXPECT_FALSE(usesLens([](SkToFOpticalPath& path) { path.modulationFreqMHz = 1e-42F; }))
        << "endless range";
    EXPECT_TRUE(usesLens([](SkToFOpticalPath& path) { path.realDistanceOffsetM = NotANumber; }))
        << "no offset";
}

TEST_P(Lens, GenericPicturesAndPicturesOnePixelWideHaveNoLens) {
    ASSERT_TRUE(build(1.0F, EkDepthDataType::Generic));
    EXPECT_FALSE(builder.usedLens());
    HeapPicture narrow(1, 7, 1, EkImageDataType::Float32);
    fillFloats(narrow, [](quint32, quint32 y) { return 1.0F + float(y); });
    ASSERT_TRUE(builder.build({*narrow, {}, EkDepthDataType::PhaseShift, 1.0F}, parameters));
    EXPECT_FALSE(builder.usedLens());
    EXPECT_EQ(builder.pointCount(), 7);
}

TEST_P(Lens, DepthWithoutAPositiveMaximumHasNoLens) {
    ASSERT_TRUE(build(0.0F, EkDepthDataType::Depth));
    EXPECT_FALSE(builder.usedLens());
    ASSERT_TRUE(build(-2.0F, EkDepthDataType::Depth));
    EXPECT_FALSE(builder.usedLens());
}

TEST_P(Lens, WrappingEndsWhereTheLoopWould) {
    for (float offsetM : {-1.5F, -4.0F, -4.9F, -20.0F, -33.25F, -400.0F}) {
        parameters.opticalPath.realDistanceOffsetM = offsetM;
        for (float value : {0.0F, 0.5F, 1.7F, 3.3F, 6.28F}) {
            double expected = double(value * MMPerRadian + 1000.0F * offsetM);
            while (expected < 0.0) {
                expected += double(RangeMM);
            }
            ASSERT_TRUE(build(value, EkDepthDataType::PhaseShift));
            ASSERT_EQ(builder.pointCount(), 2);
            EXPECT_NEAR(builder.exportPoints()[1].z, expected, 1e-6 * std::fabs(offsetM) * 1000.0 + 1e-3)
                << value << " at " << offsetM;
        }
    }
}

TEST_P(Lens, NoOffsetHoweverLargeHangs) {
    for (float offsetM : {-1e5F, -1e9F, -1e20F, -1e34F}) {
        parameters.opticalPath.realDistanceOffsetM = offsetM;
        ASSERT_TRUE(build(1.0F, EkDepthDataType::PhaseShift));
        ASSERT_EQ(builder.pointCount(), 2) << offsetM;
        EXPECT_GE(builder.exportPoints()[0].z, 0.0F);
        EXPECT_LE(builder.exportPoints()[0].z, RangeMM);
    }
    // A distance that leaves the numbers is dropped.
    parameters.opticalPath.realDistanceOffsetM = -3e35F;
    ASSERT_TRUE(build(-3e38F, EkDepthDataType::PhaseShift));
    EXPECT_EQ(builder.pointCount(), 0);
}

TEST_P(Lens, AWholeNumberOfRangesEndsAtZero) {
    // Quotients up to 2^28 are taken one way, beyond that another.
    for (float turns : {1.0F, 3.0F, 268435456.0F, 536870912.0F, 1e9F}) {
        EXPECT_EQ(wrapDistance(-turns * 4096.0F, 4096.0F), 0.0F) << turns;
    }
    EXPECT_EQ(wrapDistance(-1.0F - 4096.0F, 4096.0F), 4095.0F);
    EXPECT_EQ(wrapDistance(-4294967296.0F, 3.0F), 2.0F) << "2^32 = 3 * 1431655765 + 1";
}

TEST_P(Lens, ATinyNegativeDistanceIsWrappedOnce) {
    ASSERT_TRUE(build(-1e-30F, EkDepthDataType::PhaseShift));
    ASSERT_EQ(builder.pointCount(), 2);
    EXPECT_FLOAT_EQ(builder.exportPoints()[0].z, RangeMM);
    ASSERT_TRUE(build(-0.0F, EkDepthDataType::PhaseShift));
    EXPECT_EQ(builder.exportPoints()[0].z, 0.0F);
}

TEST(CkToFCloudBuilder, RefusesWhatItCannotUseAndKeepsItsCloud) {
    CkToFCloudBuilder builder;
    HeapPicture good(6, 4, 1, EkImageDataType::UInt8);
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
    HeapPicture twoChannels(6, 4, 2, EkImageDataType::Float32);
    refused({*twoChannels, {}}, testParameters());
    HeapPicture small(5, 4, 1, EkImageDataType::Float32);
    HeapPicture wrongType(6, 4, 1, EkImageDataType::UInt32);
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
    HeapPicture crooked(6, 4, 1, EkImageDataType::Float32, 0, 3);
    refused({*crooked, {}}, testParameters());
}

TEST(CkToFCloudBuilder, RefusesMorePointsThanItsIndicesCanNumber) {
    // Address space only: nothing is read of a picture that is refused.
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
    HeapPicture depth(16, 4, 1, EkImageDataType::UInt8);
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
    HeapPicture depth(3, 3, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    CkToFCloudBuilder moved = std::move(builder);
    EXPECT_EQ(moved.pointCount(), 9);
    CkToFCloudBuilder assigned;
    assigned = std::move(moved);
    EXPECT_EQ(assigned.pointCount(), 9);
    EXPECT_TRUE(assigned.build({*depth, {}}, testParameters()));
}
