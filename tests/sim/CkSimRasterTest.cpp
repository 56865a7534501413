#include "sim/synth/CkSimRaster.h"
#include "tests/sim/SimPicture.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// Ratio of axial to radial distance, from the definition of the lens.
double axisShare(const SkSimLens& lens, int column, int row) {
    const double x = (column - lens.width / 2) * lens.cellSizeMm;
    const double y = (lens.height / 2 - row) * lens.cellSizeMm;
    return lens.focalLengthMm / std::hypot(x, y, lens.focalLengthMm);
}

double distanceAt(const CkSimRaster& raster, int column, int row) {
    return double(raster.distance()[size_t(row) * size_t(raster.lens().width) + size_t(column)]);
}

} // namespace

TEST(CkSimRaster, wallIsAtItsDistanceAlongTheAxis) {
    const SkSimLens lens;
    const CkSimRaster raster(lens, CkSimScene::wall(2.0));
    EXPECT_FLOAT_EQ(float(distanceAt(raster, 320, 240)), 2.0F);
    // The corner: 3.2 mm and 2.4 mm off the axis at 3.5 mm focal length.
    EXPECT_NEAR(distanceAt(raster, 0, 0), 2.0 * std::sqrt(10.24 + 5.76 + 12.25) / 3.5, 1e-6);
    for (int row = 0; row < lens.height; row += 7) {
        for (int column = 0; column < lens.width; column += 7) {
            ASSERT_NEAR(distanceAt(raster, column, row) * axisShare(lens, column, row), 2.0, 1e-6);
        }
    }
}

TEST(CkSimRaster, wallSendsLightBackByInverseSquareAndCosine) {
    const SkSimLens lens;
    const CkSimRaster near(lens, CkSimScene::wall(1.5, 0.6));
    const CkSimRaster far(lens, CkSimScene::wall(3.0, 0.6));
    EXPECT_NEAR(double(near.echo()[240 * 640 + 320]), 0.6 / 2.25, 1e-6);
    for (size_t index = 0; index < near.echo().size(); index += 97) {
        ASSERT_NEAR(double(near.echo()[index] / far.echo()[index]), 4.0, 1e-5);
    }
    const double share = axisShare(lens, 50, 30);
    EXPECT_NEAR(double(near.echo()[30 * 640 + 50]), 0.6 * share * share * share / 2.25, 1e-6);
}

TEST(CkSimRaster, roomHasItsWallsAndBoxesWhereTheyStand) {
    const SkSimLens lens;
    CkSimRaster raster(lens, CkSimScene::room());
    const auto position = [&](int column, int row) {
        const double distance = distanceAt(raster, column, row);
        const double depth = distance * axisShare(lens, column, row);
        return SkSimVector{(column - 320) * 0.01 / 3.5 * depth, (240 - row) * 0.01 / 3.5 * depth, depth};
    };
    EXPECT_NEAR(position(460, 165).z, 4.5, 1e-5);  // back wall
    EXPECT_NEAR(position(5, 240).x, -2.2, 1e-5);   // left wall
    EXPECT_NEAR(position(635, 240).x, 2.2, 1e-5);  // right wall
    EXPECT_NEAR(position(320, 475).y, -1.3, 1e-5); // floor
    EXPECT_NEAR(position(320, 5).y, 1.4, 1e-5);    // ceiling
    // Front of the box that reaches from x -1.7 to -0.9, y -1.3 to -0.3 at z 2.9: seen at x -1.2, y -0.8.
    EXPECT_NEAR(position(int(320 - 350 * 1.2 / 2.9), int(240 + 350 * 0.8 / 2.9)).z, 2.9, 1e-5);
    // Picture on the back wall, after the sphere has moved out of the way.
    raster.moveTo(1.5);
    EXPECT_NEAR(position(int(320 + 350 * 0.3 / 4.44), int(240 - 350 * 0.6 / 4.44)).z, 4.44, 1e-5);
}

TEST(CkSimRaster, surfacesFacingTheLampsAreBrighter) {
    const CkSimRaster raster(SkSimLens{}, CkSimScene::room());
    // Floor: reflectivity 0.35 in full light; ceiling: 0.8 in 0.3 of it; back wall: 0.6 in 0.65 of it.
    EXPECT_NEAR(double(raster.ambient()[475 * 640 + 320]), 0.35, 1e-6);
    EXPECT_NEAR(double(raster.ambient()[5 * 640 + 320]), 0.8 * 0.3, 1e-6);
    EXPECT_NEAR(double(raster.ambient()[165 * 640 + 460]), 0.6 * 0.65, 1e-6);
}

TEST(CkSimRaster, spherePointsAreOnTheSphere) {
    const SkSimLens lens;
    const CkSimScene scene = CkSimScene::room();
    CkSimRaster raster(lens, scene);
    const CkSimScene still = CkSimScene::room();
    for (const double seconds : {0.0, 0.7, 1.9, 3.3, 100.25}) {
        raster.moveTo(seconds);
        const SkSimVector center = scene.sphereCenter(seconds);
        int onSphere = 0;
        for (int row = 0; row < lens.height; ++row) {
            for (int column = 0; column < lens.width; ++column) {
                const double x = (column - 320) * lens.cellSizeMm;
                const double y = (240 - row) * lens.cellSizeMm;
                const double length = std::sqrt(x * x + y * y + 12.25);
                const SkSimVector ray = {x / length, y / length, 3.5 / length};
                const double distance = distanceAt(raster, column, row);
                const double standing = still.hitStatic(ray).distance;
                // Closest approach of the ray to the centre decides whether the sphere is met.
                const double along = ray.x * center.x + ray.y * center.y + ray.z * center.z;
                const double miss =
                    std::hypot(center.x - along * ray.x, center.y - along * ray.y, center.z - along * ray.z);
                if (miss > 0.3 + 1e-9 || along > standing + 0.3) {
                    ASSERT_NEAR(distance, standing, 1e-5) << column << ' ' << row;
                } else if (miss < 0.3 - 1e-9 && along < standing - 0.3) {
                    ++onSphere;
                    const double radius = std::hypot(center.x - distance * ray.x, center.y - distance * ray.y,
                                                     center.z - distance * ray.z);
                    ASSERT_NEAR(radius, 0.3, 1e-5) << column << ' ' << row;
                    ASSERT_LT(distance, along + 1e-6) << "the near side is seen";
                }
            }
        }
        EXPECT_GT(onSphere, 3000) << seconds;
    }
}

TEST(CkSimRaster, dependsOnTheTimeAloneNotOnThePath) {
    CkSimRaster wanderer(SkSimLens{}, CkSimScene::room());
    for (const double seconds : {5.0, 0.25, 1.0, 2.5, 2.0}) {
        wanderer.moveTo(seconds);
    }
    CkSimRaster direct(SkSimLens{}, CkSimScene::room());
    direct.moveTo(2.0);
    EXPECT_EQ(wanderer.distance(), direct.distance());
    EXPECT_EQ(wanderer.echo(), direct.echo());
    EXPECT_EQ(wanderer.ambient(), direct.ambient());
    CkSimRaster before(SkSimLens{}, CkSimScene::room());
    EXPECT_NE(before.distance(), direct.distance()) << "the sphere moves";
}

TEST(CkSimRaster, nothingOutsideTheChangedAreaChanges) {
    CkSimRaster raster(SkSimLens{}, CkSimScene::room());
    for (const double seconds : {0.1, 1.7, 0.3}) {
        const std::vector<float> before = raster.distance();
        const quint64 revision = raster.revision();
        raster.moveTo(seconds);
        EXPECT_EQ(raster.revision(), revision + 1);
        const SkSimRect& area = raster.changed();
        for (int row = 0; row < 480; ++row) {
            for (int column = 0; column < 640; ++column) {
                const bool inside =
                    row >= area.top && row < area.bottom && column >= area.left && column < area.right;
                const size_t index = size_t(row * 640 + column);
                ASSERT_TRUE(inside || raster.distance()[index] == before[index]);
            }
        }
    }
}

TEST(CkSimRaster, distancePictureIsWrittenByLineSizeAndRefusedWhenItDoesNotFit) {
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(2.0));
    SimPicture picture(640, 480, 1, EkImageDataType::Float32, 32);
    ASSERT_TRUE(raster.writeDistance(picture));
    EXPECT_TRUE(picture.guardsIntact());
    EXPECT_EQ(float(picture.valueAt(17, 311)), raster.distance()[311 * 640 + 17]);
    EXPECT_FLOAT_EQ(picture->minValue, 2.0F);
    EXPECT_NEAR(double(picture->maxValue), 2.0 * std::sqrt(10.24 + 5.76 + 12.25) / 3.5, 1e-5);

    SimPicture small(640, 479, 1, EkImageDataType::Float32, 32);
    EXPECT_FALSE(raster.writeDistance(small));
    SimPicture integers(640, 480, 1, EkImageDataType::UInt32, 32);
    EXPECT_FALSE(raster.writeDistance(integers));
    SkPicBuf empty = picture;
    empty.data = nullptr;
    EXPECT_FALSE(raster.writeDistance(empty));
    SkPicBuf shortRows = picture;
    shortRows.lineSize = 2559;
    EXPECT_FALSE(raster.writeDistance(shortRows));
}
