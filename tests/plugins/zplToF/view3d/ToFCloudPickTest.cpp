#include "plugins/zplToF/view3d/ToFCloudPick.h"

#include <QByteArray>
#include <QMatrix4x4>
#include <QPointF>
#include <QSizeF>
#include <QVector3D>
#include <gtest/gtest.h>
#include <vector>

namespace {

/// The camera at (0, 0, 3) looks at the origin: 1 unit at distance d is 100 / d pixels in a window of 200 x
/// 200.
class ToFCloudPickTest : public testing::Test {
protected:
    ToFCloudPickTest() {
        toClip.perspective(90.0F, 1.0F, 0.1F, 1000.0F);
        toClip.translate(0.0F, 0.0F, -3.0F);
    }

    float depthAt(const std::vector<QVector3D>& points, const QPointF& place, int count = -1) const {
        std::vector<float> bytes;
        for (const QVector3D& point : points) {
            bytes.insert(bytes.end(), {point.x(), point.y(), point.z(), 1.0F, 1.0F, 1.0F});
        }
        const QByteArray vertices(reinterpret_cast<const char*>(bytes.data()),
                                  qsizetype(bytes.size() * sizeof(float)));
        return ToFCloudPick::depthAt(vertices, count < 0 ? int(points.size()) : count, toClip,
                                     QSizeF(200.0, 200.0), place);
    }

    QMatrix4x4 toClip;
};

TEST_F(ToFCloudPickTest, TellsTheDistanceOfThePointThere) {
    // 1 right and 2 up at distance 4: 25 pixels right and 50 up of the middle.
    const std::vector<QVector3D> points = {{1.0F, 2.0F, -1.0F}};
    EXPECT_FLOAT_EQ(depthAt(points, {125.0, 50.0}), 4.0F);
    EXPECT_FLOAT_EQ(depthAt(points, {134.9, 59.9}), 4.0F);
    EXPECT_EQ(depthAt(points, {135.1, 50.0}), 0.0F);
    EXPECT_EQ(depthAt(points, {114.9, 50.0}), 0.0F);
    EXPECT_EQ(depthAt(points, {125.0, 60.1}), 0.0F);
    EXPECT_EQ(depthAt(points, {125.0, 39.9}), 0.0F);
}

TEST_F(ToFCloudPickTest, TheNearestOfSeveralCounts) {
    const std::vector<QVector3D> points = {{0.0F, 0.0F, 0.0F}, {0.0F, 0.0F, 1.0F}, {0.0F, 0.0F, -2.0F}};
    EXPECT_FLOAT_EQ(depthAt(points, {100.0, 100.0}), 2.0F);
}

TEST_F(ToFCloudPickTest, PointsRightBeforeTheCameraCountToo) {
    const QVector3D near(0.0F, 0.0F, 2.5F);
    const QVector3D behind(0.0F, 0.0F, 2.0F);
    EXPECT_FLOAT_EQ(depthAt({near}, {100.0, 100.0}), 0.5F);
    EXPECT_FLOAT_EQ(depthAt({near, behind}, {100.0, 100.0}), 0.5F);
    EXPECT_FLOAT_EQ(depthAt({behind, near}, {100.0, 100.0}), 0.5F);
}

TEST_F(ToFCloudPickTest, WhatIsBehindTheCameraOrBehindTheLastPointDoesNotCount) {
    EXPECT_EQ(depthAt({{0.0F, 0.0F, 4.0F}}, {100.0, 100.0}), 0.0F);
    EXPECT_FLOAT_EQ(depthAt({{0.0F, 0.0F, 0.0F}, {0.0F, 0.0F, 1.0F}}, {100.0, 100.0}, 1), 3.0F);
    EXPECT_EQ(depthAt({}, {100.0, 100.0}), 0.0F);
}

} // namespace
