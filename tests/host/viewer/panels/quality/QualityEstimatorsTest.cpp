#include "host/viewer/panels/quality/CkQualityHistory.h"
#include "host/viewer/panels/quality/CkQualityMeter.h"
#include "host/viewer/panels/quality/QualityQuantities.h"
#include "tests/host/viewer/ViewerPictures.h"
#include "tests/support/LocaleScope.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

std::unique_ptr<CkImageData> named(std::unique_ptr<CkImageData> frame, const QStringList& names,
                                   float frequency = 0.0F) {
    CkImageMetadata metadata;
    metadata.channelNames = names;
    metadata.modulationFrequency = frequency;
    frame->setMetadata(metadata);
    return frame;
}

std::unique_ptr<CkImageData> floats(quint32 width, quint32 height, quint32 channels,
                                    const std::function<float(quint32, quint32, quint32)>& sample) {
    return makeFrame<float>(EkImageDataType::Float32, width, height, channels, 32, sample);
}

/// Distances in metres along the rays to a plane through (0, 0, zMm) that is turned about the vertical axis.
std::unique_ptr<CkImageData> turnedWall(double zMm, double degrees, double focalMm, double cellMm) {
    const double slope = std::tan(degrees * std::numbers::pi / 180.0);
    return named(floats(64, 48, 1,
                        [=](quint32 x, quint32 y, quint32) {
                            const double u = (double(x) - 32.0) * cellMm / focalMm;
                            const double v = (24.0 - double(y)) * cellMm / focalMm;
                            // z = zMm + slope X and X = u z.
                            const double z = zMm / (1.0 - slope * u);
                            return float(z * std::sqrt(1.0 + u * u + v * v) / 1000.0);
                        }),
                 {QStringLiteral("Depth")});
}

} // namespace

TEST(TemporalStatistics, EachPixelVariesByItself) {
    CkTemporalStatistics statistics;
    EXPECT_TRUE(std::isnan(statistics.standardDeviation()));
    statistics.add({1.0F, 10.0F, 5.0F});
    EXPECT_TRUE(std::isnan(statistics.standardDeviation()));
    statistics.add({2.0F, 10.0F, kNaN});
    statistics.add({3.0F, kNaN, kNaN});
    EXPECT_EQ(statistics.frames(), 3);
    // Variances 1 and 0; the third pixel was seen once only.
    EXPECT_DOUBLE_EQ(statistics.standardDeviation(), std::sqrt(0.5));
    statistics.add({7.0F});
    EXPECT_EQ(statistics.frames(), 1);
}

TEST(TemporalStatistics, SmallNoiseOnALargeValueKeepsItsDigits) {
    CkTemporalStatistics statistics;
    for (int i = 0; i < 10000; ++i) {
        statistics.add({i % 2 == 0 ? 8000.0F : 8000.5F});
    }
    EXPECT_NEAR(statistics.standardDeviation(), 0.25 * std::sqrt(10000.0 / 9999.0), 1e-9);
}

TEST(PlaneFit, PointsOnAPlaneLieOnIt) {
    std::vector<SkSpacePoint> points;
    for (int y = -3; y <= 5; ++y) {
        for (int x = 0; x < 4; ++x) {
            points.push_back({double(x) + 1e6, double(y), 0.5 * x - 2.0 * y + 7.0});
        }
    }
    const auto plane = fitPlane(points);
    ASSERT_TRUE(plane);
    EXPECT_NEAR(plane->slopeX, 0.5, 1e-9);
    EXPECT_NEAR(plane->slopeY, -2.0, 1e-9);
    EXPECT_NEAR(plane->offset, 7.0 - 0.5e6, 1e-3);
    // The normal is (-0.5, 2, 1): the tangent of the tilt is sqrt(4.25).
    EXPECT_NEAR(plane->tiltDegrees, std::atan(std::sqrt(4.25)) * 180.0 / std::numbers::pi, 1e-9);
    EXPECT_NEAR(plane->rms, 0.0, 1e-8);
    EXPECT_NEAR(plane->flatness, 0.0, 1e-8);
}

TEST(PlaneFit, WhatIsLeftIsMeasuredAlongTheNormal) {
    // A checkerboard pattern adds no slope.
    std::vector<SkSpacePoint> points;
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            points.push_back({double(x), double(y), (x + y) % 2 == 0 ? 3.0 : -3.0});
        }
    }
    auto plane = fitPlane(points);
    ASSERT_TRUE(plane);
    EXPECT_NEAR(plane->tiltDegrees, 0.0, 1e-9);
    EXPECT_NEAR(plane->rms, 3.0, 1e-12);
    EXPECT_NEAR(plane->flatness, 6.0, 1e-12);
    // On a slope of 45 degrees it is 1 / sqrt(2) of that.
    for (SkSpacePoint& point : points) {
        point.z += point.x;
    }
    plane = fitPlane(points);
    ASSERT_TRUE(plane);
    EXPECT_NEAR(plane->tiltDegrees, 45.0, 1e-9);
    EXPECT_NEAR(plane->rms, 3.0 / std::sqrt(2.0), 1e-12);
    EXPECT_NEAR(plane->flatness, 6.0 / std::sqrt(2.0), 1e-12);
}

TEST(PlaneFit, NothingForFewPointsOrALine) {
    EXPECT_FALSE(fitPlane({}));
    EXPECT_FALSE(fitPlane({{0, 0, 0}, {1, 0, 0}}));
    EXPECT_FALSE(fitPlane({{0, 0, 1}, {1, 2, 2}, {2, 4, 3}, {3, 6, 9}}));
    EXPECT_FALSE(fitPlane({{1, 1, 1}, {1, 1, 2}, {1, 1, 3}}));
    EXPECT_TRUE(fitPlane({{0, 0, 1}, {1, 2, 2}, {2, 5, 3}}));
}

TEST(RegionSamples, APhaseShiftIsMillimetresWhenTheFrequencyIsKnown) {
    const auto frame = floats(4, 3, 2, [](quint32 x, quint32 y, quint32 c) {
        return c == 1 ? (x == 1 ? 11.0F : 0.5F) : x == 3 ? kNaN : float(y) * float(std::numbers::pi) / 2.0F;
    });
    const QStringList names{QStringLiteral("Phase shift"), QStringLiteral("Confidence")};
    CkImageMetadata metadata;
    metadata.channelNames = names;
    metadata.modulationFrequency = 20.0F;
    SkRegionSamples samples;
    ASSERT_TRUE(readRegion(frame->picBuf(), metadata, QRect(0, 1, 4, 2), {}, samples));
    EXPECT_EQ(samples.unit, QStringLiteral("mm"));
    EXPECT_TRUE(samples.distances);
    // 299.70254 / 40 m; a quarter turn and half a turn of it.
    EXPECT_NEAR(samples.wrapMm, 7492.5635, 1e-3);
    ASSERT_EQ(samples.values.size(), 8U);
    EXPECT_NEAR(samples.values[0], 7492.5635 / 4.0, 1e-3);
    EXPECT_TRUE(std::isnan(samples.values[1])); // confidence above the limit of 10
    EXPECT_TRUE(std::isnan(samples.values[3]));
    EXPECT_NEAR(samples.values[4], 7492.5635 / 2.0, 1e-3);

    metadata.modulationFrequency = 0.0F;
    ASSERT_TRUE(readRegion(frame->picBuf(), metadata, QRect(0, 1, 1, 1), {}, samples));
    EXPECT_EQ(samples.unit, QStringLiteral("rad"));
    EXPECT_FALSE(samples.distances);
    EXPECT_FLOAT_EQ(samples.values[0], float(std::numbers::pi) / 2.0F);

    ASSERT_TRUE(readRegion(frame->picBuf(), metadata, QRect(0, 0, 4, 1), {1, 10.0F}, samples));
    EXPECT_EQ(samples.unit, QString());
    EXPECT_EQ(samples.values[1], 11.0F);
    for (const QRect& outside : {QRect(), QRect(-1, 0, 2, 2), QRect(3, 2, 2, 1)}) {
        EXPECT_FALSE(readRegion(frame->picBuf(), metadata, outside, {}, samples));
    }
    EXPECT_FALSE(readRegion(frame->picBuf(), metadata, QRect(0, 0, 1, 1), {2, 10.0F}, samples));
}

TEST(RegionSamples, ADepthWithoutConfidenceAndASaturatedCountAreNotValid) {
    const auto depth = floats(
        3, 1, 2, [](quint32 x, quint32, quint32 c) { return c == 1 ? float(x) * 0.2F : 1.5F + float(x); });
    CkImageMetadata metadata;
    metadata.channelNames = {QStringLiteral("Depth"), QStringLiteral("Confidence")};
    SkRegionSamples samples;
    ASSERT_TRUE(readRegion(depth->picBuf(), metadata, QRect(0, 0, 3, 1), {0, 0.3F}, samples));
    EXPECT_TRUE(std::isnan(samples.values[0]));
    EXPECT_FLOAT_EQ(samples.values[1], 2500.0F);
    EXPECT_TRUE(std::isnan(samples.values[2]));

    const auto counts = makeFrame<quint16>(EkImageDataType::UInt16, 3, 1, 1, 12,
                                           [](quint32 x, quint32, quint32) { return quint16(4093 + x); });
    ASSERT_TRUE(readRegion(counts->picBuf(), {}, QRect(0, 0, 3, 1), {}, samples));
    EXPECT_EQ(samples.values[0], 4093.0F);
    EXPECT_EQ(samples.values[1], 4094.0F);
    EXPECT_TRUE(std::isnan(samples.values[2]));
    EXPECT_EQ(samples.unit, QString());
}

TEST(QualityMeter, AWallIsFlatAndItsTiltIsFound) {
    CkQualityMeter meter;
    meter.setLens({0.5, 0.01}); // wide, so that rays and axis differ much
    meter.setRegion(QRect(5, 3, 50, 40));
    SkQualityValues values;
    for (const double degrees : {0.0, 10.0, 30.0}) {
        ASSERT_TRUE(meter.add(*turnedWall(2000.0, degrees, 0.5, 0.01), 0, {}, values));
        EXPECT_NEAR(values.tiltDegrees, degrees, 1e-3);
        // Single precision at 3 m is a quarter of a micrometre.
        EXPECT_LT(values.planeRms, 0.001);
        EXPECT_LT(values.flatness, 0.003);
        EXPECT_EQ(values.validShare, 1.0);
    }
    // With another lens the same distances are not flat.
    meter.setLens({3.5, 0.01});
    ASSERT_TRUE(meter.add(*turnedWall(2000.0, 0.0, 0.5, 0.01), 0, {}, values));
    EXPECT_GT(values.flatness, 10.0);
    // The focal length in the metadata takes precedence.
    auto told = turnedWall(2000.0, 0.0, 0.5, 0.01);
    CkImageMetadata metadata = told->metadata();
    metadata.lensFocalLength = 0.5F;
    told->setMetadata(metadata);
    ASSERT_TRUE(meter.add(*told, 0, {}, values));
    EXPECT_LT(values.flatness, 0.003);
}

TEST(QualityMeter, SpreadOverRegionAndTimeAreTwoThings) {
    CkQualityMeter meter;
    meter.setRegion(QRect(0, 0, 2, 1));
    SkQualityValues values;
    const auto frame = [](float low, float high) {
        return floats(2, 2, 1, [=](quint32 x, quint32, quint32) { return x == 0 ? low : high; });
    };
    ASSERT_TRUE(meter.add(*frame(1.0F, 3.0F), 0, {}, values));
    EXPECT_EQ(values.mean, 2.0);
    EXPECT_DOUBLE_EQ(values.spatialStd, std::sqrt(2.0));
    EXPECT_TRUE(std::isnan(values.temporalStd));
    EXPECT_TRUE(std::isnan(values.tiltDegrees));
    EXPECT_EQ(values.unit, QString());
    ASSERT_TRUE(meter.add(*frame(2.0F, 4.0F), 0, {}, values));
    EXPECT_DOUBLE_EQ(values.spatialStd, std::sqrt(2.0));
    EXPECT_DOUBLE_EQ(values.temporalStd, std::sqrt(0.5));
    EXPECT_EQ(values.frames, 2);
    ASSERT_TRUE(meter.add(*frame(2.0F, kNaN), 0, {}, values));
    EXPECT_EQ(values.validShare, 0.5);
    ASSERT_TRUE(meter.add(*frame(kNaN, kNaN), 0, {}, values));
    EXPECT_EQ(values.validShare, 0.0);
    EXPECT_TRUE(std::isnan(values.mean));
}

TEST(QualityMeter, StartsAnewWhenSomethingElseIsMeasured) {
    CkQualityMeter meter;
    SkQualityValues values;
    const auto flat = [](quint32 size, const QString& name) {
        return named(floats(size, size, 2, [](quint32, quint32, quint32) { return 1.0F; }), {name});
    };
    EXPECT_FALSE(meter.add(*flat(8, {}), 0, {}, values)); // no region yet
    meter.setRegion(QRect(6, 6, 4, 4));
    const auto frames = [&](quint32 size, quint32 channel, const char* name) {
        EXPECT_TRUE(meter.add(*flat(size, QLatin1String(name)), channel, {}, values));
        return values.frames;
    };
    EXPECT_EQ(frames(8, 0, ""), 1);
    EXPECT_EQ(frames(8, 0, ""), 2);
    EXPECT_EQ(frames(9, 0, ""), 1);
    EXPECT_EQ(frames(9, 1, ""), 1);
    EXPECT_EQ(frames(9, 0, "Depth"), 1);
    EXPECT_EQ(frames(9, 0, "Depth"), 2);
    meter.setConfidenceLimit(3.0F);
    EXPECT_EQ(frames(9, 0, "Depth"), 1);
    meter.setRegion(QRect(5, 5, 4, 4));
    EXPECT_EQ(frames(9, 0, "Depth"), 1);
    EXPECT_FALSE(meter.add(*flat(4, {}), 0, {}, values)); // the region lies outside
}

TEST(QualityMeter, NoiseAroundTheEndOfTheRangeIsNoJump) {
    CkQualityMeter meter;
    meter.setRegion(QRect(0, 0, 4, 4));
    SkQualityValues values;
    const float turn = 2.0F * float(std::numbers::pi);
    for (int i = 0; i < 4; ++i) {
        // One hundredth of a radian to either side of 0, which equals a full turn.
        const auto frame = named(
            floats(4, 4, 1,
                   [=](quint32 x, quint32, quint32) { return (int(x) + i) % 2 == 0 ? 0.01F : turn - 0.01F; }),
            {QStringLiteral("Phase shift")}, 20.0F);
        ASSERT_TRUE(meter.add(*frame, 0, {}, values));
    }
    const double step = 0.01 * 7492.5635 / (2.0 * std::numbers::pi); // 11.9 mm
    EXPECT_NEAR(values.mean, 0.0, 0.01);
    EXPECT_NEAR(values.spatialStd, step * std::sqrt(16.0 / 15.0), 0.01);
    EXPECT_NEAR(values.temporalStd, step * std::sqrt(4.0 / 3.0), 0.01);
}

TEST(QualityHistory, TableHoldsOneLineAFrame) {
    CkQualityHistory history;
    SkQualityValues values;
    values.frameNumber = 7;
    values.frames = 2;
    values.unit = QStringLiteral("mm");
    values.mean = 1234.5;
    values.spatialStd = 0.25;
    values.validShare = 0.75;
    history.add(values);
    values.frameNumber = 8;
    values.saturationKnown = false;
    history.add(values);
    EXPECT_EQ(history.csv(QStringLiteral("Depth"), QRect(1, 2, 3, 4)),
              "# view: Depth; region: x 1, y 2, 3 x 4 pixels\n"
              "frame,frames_over_time,unit,mean,std_region,std_time,valid_share,tilt_deg,flatness_mm,"
              "plane_rms_mm,saturation_known\n"
              "7,2,mm,1234.5,0.25,,0.75,,,,1\n"
              "8,2,mm,1234.5,0.25,,0.75,,,,0\n");
    EXPECT_TRUE(QualityQuantities::text(values).startsWith(QStringLiteral("Mean\t1234.5 mm\n")));
    EXPECT_TRUE(QualityQuantities::text(values).contains(QStringLiteral("Valid pixels\t75.00 %\n")));
    EXPECT_TRUE(QualityQuantities::text(values).contains(QStringLiteral("Tilt\t\u2013\n")));
    {
        // Texts use the user's number format, the table decimal points.
        const LocaleScope german{QLocale(QLocale::German)};
        EXPECT_EQ(QualityQuantities::number(1234.5, QStringLiteral("mm")), QStringLiteral("1234,5 mm"));
        EXPECT_TRUE(history.csv(QString(), QRect()).contains("7,2,mm,1234.5,0.25"));
    }
    for (size_t i = 0; i < CkQualityHistory::kMaximumFrames + 5; ++i) {
        values.frameNumber = i;
        history.add(values);
    }
    EXPECT_EQ(history.values().size(), CkQualityHistory::kMaximumFrames);
    EXPECT_EQ(history.values().back().frameNumber, CkQualityHistory::kMaximumFrames + 4);
}
