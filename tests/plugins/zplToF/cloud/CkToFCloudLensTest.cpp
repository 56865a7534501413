#include "tests/plugins/zplToF/cloud/CloudBuilderFixtures.h"

#include "plugins/zplToF/cloud/SkToFCloudScales.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::FloatNear;

INSTANTIATE_TEST_SUITE_P(Both, Lens, testing::Bool(), loopName);

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
    TestPicture picture(40, 20, 1, EkImageDataType::Float32);
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
    TestPicture picture(6, 2, 1, EkImageDataType::Float32);
    fillFloats(picture, [](quint32, quint32) { return 1.0F; });
    ASSERT_TRUE(builder.build({*picture, {}, EkDepthDataType::Depth, 1.0F}, parameters));
    // Pixel (0, 1): chip (-3, 0), so the ray is 5 long for 4 along the axis.
    const SkToFPoint point = builder.exportPoints()[6];
    EXPECT_NEAR(point.z, 800.0F, 1e-3F);
    EXPECT_NEAR(point.x, -600.0F, 1e-3F);
    EXPECT_NEAR(point.y, 0.0F, 1e-6F);
    // The factors follow every change of the lens.
    parameters.opticalPath.lensFocalLengthMM = 2.25F;
    ASSERT_TRUE(builder.build({*picture, {}, EkDepthDataType::Depth, 1.0F}, parameters));
    EXPECT_NEAR(builder.exportPoints()[6].z, 1000.0F * 2.25F / 3.75F, 1e-3F);
    builder.freeOrthoFactorPic();
    ASSERT_TRUE(builder.build({*picture, {}, EkDepthDataType::Depth, 1.0F}, parameters));
    EXPECT_NEAR(builder.exportPoints()[6].z, 600.0F, 1e-3F);
}

TEST_P(Lens, APointThatIsNowhereInOneDirectionIsDropped) {
    // x and z are still finite.
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
    TestPicture narrow(1, 7, 1, EkImageDataType::Float32);
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
    // A distance that overflows is dropped.
    parameters.opticalPath.realDistanceOffsetM = -3e35F;
    ASSERT_TRUE(build(-3e38F, EkDepthDataType::PhaseShift));
    EXPECT_EQ(builder.pointCount(), 0);
}

TEST_P(Lens, AWholeNumberOfRangesEndsAtZero) {
    // Quotients up to 2^28 and beyond take different paths.
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
