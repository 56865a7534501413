#include "tests/tools/tof/ToFFixture.h"

#include <QDir>
#include <array>
#include <cmath>

namespace {

using Point = std::array<double, 3>;

class ToFCloudTest : public ToFFixture {
protected:
    std::vector<Point> points(const char* name) const {
        const QList<QByteArray> lines = contents(name).split('\n');
        std::vector<Point> found;
        const qsizetype header = lines.indexOf("end_header");
        EXPECT_GT(header, 0) << name;
        for (qsizetype i = header + 1; i < lines.size() && !lines[i].isEmpty(); ++i) {
            const QList<QByteArray> words = lines[i].split(' ');
            found.push_back(
                {words.value(0).toDouble(), words.value(1).toDouble(), words.value(2).toDouble()});
        }
        EXPECT_EQ(lines.value(2), "element vertex " + QByteArray::number(qsizetype(found.size())));
        return found;
    }
    static CkImageMetadata phaseShift() {
        return named({QStringLiteral("Phase shift"), QStringLiteral("Confidence")});
    }
    static void expectPoint(const Point& point, const Point& expected, double tolerance) {
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_NEAR(point[i], expected[i], tolerance) << i;
        }
    }
};

} // namespace

// Two pixels of 1 and 3 rad: x spans -1 to 0 in steps of 2 / 2, y is half a pixel, z spans the 1.2 of the
// box.
TEST_F(ToFCloudTest, WithoutLensPointsAreSceneUnits) {
    recordFloats("a.tif", {{1, 3}}, named({QStringLiteral("Phase shift")}));
    const SkRun run = tof("cloud --frame 0 a.tif a.ply");
    ASSERT_EQ(run.code, 0) << qPrintable(run.err);
    EXPECT_TRUE(contents("a.ply").startsWith("ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\n"
                                             "property float y\nproperty float z\nend_header\n"));
    const auto cloud = points("a.ply");
    ASSERT_EQ(cloud.size(), 2U);
    expectPoint(cloud[0], {-1, 0.5, 0.6}, 1e-6);
    expectPoint(cloud[1], {0, 0.5, -0.6}, 1e-6);
    ASSERT_EQ(tof("cloud --frame 0 --z-zoom 2 a.tif b.ply").code, 0);
    expectPoint(points("b.ply")[0], {-1, 0.5, 1.2}, 1e-6);
}

// At 30 MHz a radian is 299.70254 / 60 * 1000 / (2 pi) = 794.985 mm. The pixels lie 1 and 0 cells to the left
// of the axis and half a cell above it; a cell is 0.01 mm behind a lens of 2 mm.
TEST_F(ToFCloudTest, WithLensPointsAreMillimetres) {
    recordFloats("a.tif", {{1, 1, 3, 1}}, phaseShift(), 2);
    const double radian = 299.70254 / 60 * 1000 / (2 * M_PI);
    ASSERT_EQ(tof("cloud --lens --offset 0 --no-ortho --focal-length 2 --frame 0 a.tif a.ply").code, 0);
    auto cloud = points("a.ply");
    ASSERT_EQ(cloud.size(), 2U);
    expectPoint(cloud[0], {-0.01 * radian / 2, 0.005 * radian / 2, radian}, 0.01);
    expectPoint(cloud[1], {0, 0.005 * 3 * radian / 2, 3 * radian}, 0.01);

    ASSERT_EQ(
        tof("cloud --lens --offset 0.5 --frequency 15 --cell-size 0.02 --center-offset 0.005,-0.2 --no-ortho "
            "--focal-length 2 --frame 0 a.tif a.ply")
            .code,
        0);
    cloud = points("a.ply");
    const double d = 2 * radian + 500; // half the frequency, twice the range
    expectPoint(cloud[0], {(-0.02 - 0.005) * d / 2, (0.01 + 0.2) * d / 2, d - 500}, 0.01);

    // Along the ray instead of the axis: shorter by the cosine of the angle between them.
    ASSERT_EQ(
        tof("cloud --lens --offset 0 --ortho --focal-length 2 --cell-size 1 --frame 0 a.tif a.ply").code, 0);
    expectPoint(points("a.ply")[0],
                {-radian / std::sqrt(1 + 0.25 + 4), 0.5 * radian / std::sqrt(1 + 0.25 + 4),
                 2 * radian / std::sqrt(1 + 0.25 + 4)},
                0.01);
}

TEST_F(ToFCloudTest, TheCameraWinsOverSettingsAndOptionsOverTheCamera) {
    CkImageMetadata metadata = phaseShift();
    metadata.modulationFrequency = 60;
    recordFloats("camera.tif", {{1, 1, 3, 1}}, metadata, 2);
    recordFloats("plain.tif", {{1, 1, 3, 1}}, phaseShift(), 2);
    setContents("viewer.ini", "[General]\nToF.OptCompensateDistorsion=true\nToF.OptModulationFreq=15\n"
                              "ToF.OptRealDistandeOffsetM=0\nToF.OptOrthoRadialCorrection=false\n");
    const double radian30 = 299.70254 / 60 * 1000 / (2 * M_PI);
    ASSERT_EQ(tof("cloud --settings-file viewer.ini --frame 0 plain.tif a.ply").code, 0);
    EXPECT_NEAR(points("a.ply")[0][2], 2 * radian30, 0.01);
    ASSERT_EQ(tof("cloud --settings-file viewer.ini --frame 0 camera.tif a.ply").code, 0);
    EXPECT_NEAR(points("a.ply")[0][2], radian30 / 2, 0.01);
    ASSERT_EQ(tof("cloud --settings-file viewer.ini --frequency 30 --frame 0 camera.tif a.ply").code, 0);
    EXPECT_NEAR(points("a.ply")[0][2], radian30, 0.01);

    // The settings file of the viewer, at its default location.
    ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral(".config/Orvane")));
    setContents(".config/Orvane/zuviewer.ini", contents("viewer.ini"));
    ASSERT_EQ(tof("cloud --from-settings --frame 0 plain.tif a.ply").code, 0);
    EXPECT_NEAR(points("a.ply")[0][2], 2 * radian30, 0.01);
    ASSERT_EQ(tof("cloud --from-settings --no-lens --frame 0 plain.tif a.ply").code, 0);
    EXPECT_NEAR(points("a.ply")[0][2], 0.6, 1e-6);
}

TEST_F(ToFCloudTest, PixelsOfLowConfidenceAreLeftOut) {
    recordFloats("a.tif", {{1, 5, 2, 12, 3, 7}},
                 named({QStringLiteral("Phase shift"), QStringLiteral("Confidence")}), 2);
    ASSERT_EQ(tof("cloud --frame 0 a.tif a.ply").code, 0);
    EXPECT_EQ(points("a.ply").size(), 2U);
    ASSERT_EQ(tof("cloud --frame 0 --confidence 6 a.tif a.ply").code, 0);
    EXPECT_EQ(points("a.ply").size(), 1U);
}

TEST_F(ToFCloudTest, EveryFrameGetsAFileOfItsOwn) {
    recordFloats("a.tif", {{1, 2}, {1, 2, 3}, {1, 2, 3, 4}}, named({QStringLiteral("Phase shift")}));
    ASSERT_EQ(tof("cloud a.tif room.ply").code, 0);
    EXPECT_EQ(points("room-00000.ply").size(), 2U);
    EXPECT_EQ(points("room-00001.ply").size(), 3U);
    EXPECT_EQ(points("room-00002.ply").size(), 4U);
    EXPECT_FALSE(QFile::exists(path("room.ply")));
    ASSERT_EQ(tof("cloud --frame 1 a.tif one.ply").code, 0);
    EXPECT_EQ(contents("one.ply"), contents("room-00001.ply"));
    EXPECT_EQ(tof("cloud --frame 3 a.tif one.ply").code, 6);
}

TEST_F(ToFCloudTest, RawPicturesGiveCloudsStackedOrSeparate) {
    ASSERT_EQ(tof("record --frames 1 --set sim_noise=false stacked.tif").code, 0);
    ASSERT_EQ(tof("record --frames 4 --set sim_noise=false --set tof_phase_images=1 separate.tif").code, 0);
    ASSERT_EQ(tof("cloud --lens stacked.tif stacked.ply").code, 0);
    const SkRun run = tof("cloud --lens separate.tif separate.ply");
    ASSERT_EQ(run.code, 0) << qPrintable(run.err);
    EXPECT_GT(points("stacked-00000.ply").size(), 100'000U);
    EXPECT_EQ(contents("separate-00000.ply"), contents("stacked-00000.ply"));
}

TEST_F(ToFCloudTest, CloudWithoutPointsIsWrittenAndTold) {
    recordFloats("a.tif", {{1, 0.5F, 3, 0.5F}}, phaseShift(), 2);
    const SkRun kept = tof("cloud --frame 0 --confidence 0.6 a.tif a.ply");
    EXPECT_EQ(kept.code, 0);
    EXPECT_TRUE(kept.err.isEmpty()) << qPrintable(kept.err);
    EXPECT_EQ(points("a.ply").size(), 2U);
    const SkRun dropped = tof("cloud --frame 0 --confidence 0.25 a.tif a.ply");
    EXPECT_EQ(dropped.code, 0);
    EXPECT_TRUE(dropped.err.contains(QLatin1String("tof: The cloud has no points: the confidence")))
        << qPrintable(dropped.err);
    EXPECT_TRUE(points("a.ply").empty());
    recordFloats("b.tif", {{1, 5, 2, 5}, {1, 9, 2, 9}, {1, 5, 2, 5}}, phaseShift(), 2);
    EXPECT_TRUE(tof("cloud --confidence 6 b.tif b.ply")
                    .err.startsWith(QLatin1String("tof: 1 of 3 clouds has no points: ")));
    EXPECT_TRUE(tof("cloud --confidence 4 b.tif b.ply")
                    .err.startsWith(QLatin1String("tof: 3 of 3 clouds have no points: ")));
}
