#include "tests/tools/tof/ToFFixture.h"

#include "tools/tof/accuracy/ToFAccuracyRun.h"

#include <QXmlStreamReader>

#include <cmath>
#include <numbers>

namespace {

constexpr double kFullPixel = 60000.0; // electrons that the largest count stands for
constexpr double kSignalAtOneMetre = 60000.0;
constexpr double kAmbientLight = 4000.0;
constexpr double kWallShare = 0.65; // of the ambient light, on a wall
constexpr double kContrast = 0.9;
constexpr double kReadNoise = 25.0;
constexpr double kLightSpeed = 299.70254; // m MHz

double stepOf(int bits) {
    return kFullPixel / (std::pow(2.0, bits) - 1.0);
}

double millimetresPerRadian(double megahertz) {
    return 1000.0 * kLightSpeed / (2.0 * megahertz) / (2.0 * std::numbers::pi);
}

/// Small, so that all pixels are nearly equivalent to the one in the middle.
SkToFAccuracySetup smallSetup() {
    SkToFAccuracySetup setup;
    setup.width = 40;
    setup.height = 30;
    return setup;
}

/// How far rounding the taps can turn the vector (x, y): each tap is off by half a step, so that a difference
/// is off by one. With two phases x is one difference; with four two of them; with eight two and twice two
/// weighted with sqrt(1/2). The length of the vector is C S N / 2.
double roundingBound(const SkToFAccuracyPoint& point) {
    const double steps = point.phases == 2 ? 1.0 : point.phases == 4 ? 2.0 : 2.0 + 4.0 * std::sqrt(0.5);
    // The corners lie 0.2 and 0.15 mm from the middle of the chip, with a lens of 3.5 mm; light falls with
    // the cube of the cosine.
    const double cosine = 3.5 / std::hypot(3.5, 0.2, 0.15);
    const double signal =
        kSignalAtOneMetre * point.reflectivity / (point.distanceM * point.distanceM) * std::pow(cosine, 3.0);
    const double length = kContrast * signal * point.phases / 2.0;
    return std::asin(std::sqrt(2.0) * steps * stepOf(point.bits) / length) *
           millimetresPerRadian(point.modulation);
}

class ToFAccuracyTest : public ToFFixture {
protected:
    /// The cells of the table: line, column.
    std::vector<QStringList> table(const char* name) const {
        std::vector<QStringList> lines;
        for (const QByteArray& line : contents(name).split('\n')) {
            if (!line.isEmpty()) {
                lines.push_back(QString::fromUtf8(line).split(QLatin1Char(',')));
            }
        }
        return lines;
    }
};

} // namespace

TEST_F(ToFAccuracyTest, WithoutNoiseOnlyRoundingIsLeft) {
    SkToFAccuracySetup setup = smallSetup();
    setup.noise = false;
    setup.frames = 1;
    for (const int phases : {2, 4, 8}) {
        for (const int bits : {8, 12, 16}) {
            for (const double distance : {1.0, 2.3, 6.5}) {
                SkToFAccuracyPoint point;
                point.phases = phases;
                point.bits = bits;
                point.distanceM = distance;
                const double bound = roundingBound(point);
                const SkToFAccuracyResult result = measureAccuracy(point, setup);
                ASSERT_TRUE(result.error.isEmpty()) << qPrintable(result.error);
                ASSERT_EQ(result.valid, 40 * 30);
                // Single precision of phases and electrons: 1e-6 of the range and of a pixel.
                const double precision = 1e-6 * 1000.0 * result.rangeM * (bits == 16 ? 2.0 : 1.0);
                EXPECT_LE(result.largestMm, bound + precision) << phases << ' ' << bits << ' ' << distance;
                EXPECT_LE(std::abs(result.biasMm), bound + precision);
                EXPECT_LE(result.p95Mm, result.largestMm);
            }
        }
    }
    // The bound is tight enough to detect an error of a millimetre.
    SkToFAccuracyPoint fine;
    fine.bits = 16;
    fine.distanceM = 2.3;
    EXPECT_LT(roundingBound(fine), 0.3);
}

TEST_F(ToFAccuracyTest, NoiseIsWhatTheElectronsSay) {
    SkToFAccuracySetup setup = smallSetup();
    setup.frames = 10;
    for (const int phases : {2, 4, 8}) {
        for (const double megahertz : {20.0, 60.0}) {
            for (const double ambient : {0.0, 1.0}) {
                SkToFAccuracyPoint point;
                point.phases = phases;
                point.modulation = megahertz;
                point.ambient = ambient;
                point.distanceM = 2.0;
                point.bits = 16;
                const double signal = kSignalAtOneMetre * point.reflectivity / 4.0;
                const double total = signal + kAmbientLight * ambient * kWallShare * point.reflectivity;
                const double variance = total + 2.0 * kReadNoise * kReadNoise;
                const double expected = std::sqrt(2.0 * variance / phases) / (kContrast * signal) *
                                        millimetresPerRadian(megahertz);
                const SkToFAccuracyResult result = measureAccuracy(point, setup);
                ASSERT_TRUE(result.error.isEmpty()) << qPrintable(result.error);
                ASSERT_EQ(result.valid, 10 * 40 * 30);
                // The standard deviation of 12000 samples is accurate to 0.65 %; the light falls by 1 %
                // towards the corners.
                EXPECT_NEAR(result.stdMm / expected, 1.0, 0.04) << phases << ' ' << megahertz;
                EXPECT_NEAR(result.sensorMm / expected, 1.0, 0.02);
                EXPECT_LT(result.shotMm, result.sensorMm);
                EXPECT_NEAR(result.signal / signal, 1.0, 0.02);
                EXPECT_NEAR(result.total / total, 1.0, 0.02);
                // The mean of n errors is within five of its standard deviations.
                EXPECT_LE(std::abs(result.biasMm), 5.0 * expected / std::sqrt(12000.0));
                // 95 % of a normal distribution are within 1.96 standard deviations.
                EXPECT_NEAR(result.p95Mm / expected, 1.96, 0.1);
            }
        }
    }
}

TEST_F(ToFAccuracyTest, BeyondTheRangeDistancesAreComparedModuloIt) {
    SkToFAccuracyPoint point;
    point.modulation = 60.0;
    point.distanceM = 3.0;
    point.bits = 16;
    SkToFAccuracySetup setup = smallSetup();
    setup.noise = false;
    const SkToFAccuracyResult result = measureAccuracy(point, setup);
    EXPECT_NEAR(result.rangeM, 2.4975, 1e-4);
    EXPECT_TRUE(result.isWrapped());
    EXPECT_LE(result.largestMm, roundingBound(point) + 0.005);
}

TEST_F(ToFAccuracyTest, AHybridCameraIsAsExactAsItsCounts) {
    SkToFAccuracyPoint point;
    point.hybrid = true;
    point.modulation = 40.0;
    point.bits = 16;
    point.distanceM = 3.0;
    SkToFAccuracySetup setup = smallSetup();
    setup.noise = false;
    const double range = 40e-9 * 299792458.0 / 2.0 * 1000.0;
    // Half a step in each window moves u = (Q - R) / D by at most (u + (1 - u) + |2 u - 1|) / (2 D) steps.
    const double pulse = 45000.0 * 0.8 / 9.0;
    const double bound = range * stepOf(16) / pulse * 1.02;
    SkToFAccuracyResult result = measureAccuracy(point, setup);
    ASSERT_TRUE(result.error.isEmpty()) << qPrintable(result.error);
    ASSERT_EQ(result.valid, result.pixels);
    EXPECT_LE(result.largestMm, bound);

    setup.noise = true;
    setup.frames = 10;
    const double share = 3000.0 / range;
    const double light = 600.0 * kWallShare * 0.8;
    const double other = 15.0 * 15.0;
    const double variance = share * share * (light + pulse * (1.0 - share) + other) +
                            (1.0 - share) * (1.0 - share) * (light + pulse * share + other) +
                            (2.0 * share - 1.0) * (2.0 * share - 1.0) * (light + other);
    result = measureAccuracy(point, setup);
    EXPECT_NEAR(result.stdMm / (range * std::sqrt(variance) / pulse), 1.0, 0.05);
}

TEST_F(ToFAccuracyTest, SaturatedAndInvalidPixelsAreCounted) {
    SkToFAccuracyPoint point;
    point.distanceM = 0.3; // eleven times the light of 1 m
    SkToFAccuracyResult result = measureAccuracy(point, smallSetup());
    EXPECT_EQ(result.saturated, result.pixels);
    // A confidence that no pixel has.
    point.distanceM = 2.0;
    SkToFAccuracySetup setup = smallSetup();
    setup.confidenceThreshold = 0.0;
    result = measureAccuracy(point, setup);
    EXPECT_EQ(result.saturated, 0);
    EXPECT_EQ(result.valid, 0);
    EXPECT_TRUE(std::isnan(result.biasMm));
}

TEST_F(ToFAccuracyTest, TheReportIsOnePageThatNeedsNothingElse) {
    const SkRun run = tof("accuracy --frequency 20,60 --distance 1,2 --phases 4 --bits 12 --frames 1 "
                          "--size 32,24 --pulse 40 out.html");
    ASSERT_EQ(run.code, 0) << qPrintable(run.err);
    EXPECT_TRUE(run.err.isEmpty()); // no progress bar without a terminal
    EXPECT_TRUE(run.out.isEmpty());
    const QByteArray page = contents("out.html");
    QXmlStreamReader reader(page);
    int plots = 0;
    int rows = 0;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        plots += reader.name() == QLatin1String("svg") ? 1 : 0;
        rows += reader.name() == QLatin1String("tr") ? 1 : 0;
        for (const char* outside : {"src", "href", "data"}) {
            EXPECT_FALSE(reader.attributes().hasAttribute(QLatin1String(outside)));
        }
        EXPECT_NE(reader.name(), QLatin1String("script"));
    }
    EXPECT_FALSE(reader.hasError()) << qPrintable(reader.errorString()) << reader.lineNumber();
    // Three settings (20 MHz, 60 MHz, hybrid), each with error, noise and limit.
    EXPECT_EQ(plots, 3 * 3);
    // Settings; the summary with its heading; three tables with a heading and 2 x 2 x 2 cells.
    EXPECT_EQ(rows, 7 + 4 + 3 * 9);
    EXPECT_FALSE(page.contains("url(") || page.contains("@import") || page.contains("http"));

    const std::vector<QStringList> lines = table("out.csv");
    ASSERT_EQ(lines.size(), 1U + 24);
    for (const QStringList& line : lines) {
        EXPECT_EQ(line.size(), lines[0].size());
    }
    const auto column = [&](const char* name) { return lines[0].indexOf(QLatin1String(name)); };
    EXPECT_EQ(lines[2][column("distance_m")], QStringLiteral("2"));
    EXPECT_EQ(lines[9][column("modulation_MHz")], QStringLiteral("60"));
    EXPECT_EQ(lines[17][column("pulse_ns")], QStringLiteral("40"));
}

TEST_F(ToFAccuracyTest, TheSameSeedGivesTheSameReport) {
    const char* const line =
        "accuracy --camera wave --distance 1,1.5,2 --frames 2 --size 32,24 --seed 5 a.html";
    ASSERT_EQ(tof(line).code, 0);
    const QByteArray page = contents("a.html");
    const QByteArray cells = contents("a.csv");
    ASSERT_EQ(tof(line).code, 0);
    EXPECT_EQ(contents("a.html"), page);
    EXPECT_EQ(contents("a.csv"), cells);
    ASSERT_EQ(
        tof("accuracy --camera wave --distance 1,1.5,2 --frames 2 --size 32,24 --seed 6 --csv b.txt b.html")
            .code,
        0);
    EXPECT_NE(contents("b.txt"), cells);
    // A cell does not depend on the rest of the matrix.
    ASSERT_EQ(tof("accuracy --camera wave --distance 1.5 --frames 2 --size 32,24 --seed 5 c.html").code, 0);
    EXPECT_TRUE(cells.contains(contents("c.csv").split('\n').value(1)));
}

TEST_F(ToFAccuracyTest, LimitsDecideTheExitCode) {
    const std::string common = "accuracy --camera wave --frequency 20 --phases 4 --bits 12 --reflectivity 80 "
                               "--ambient 0 --distance 1,2 --frames 1 --size 64,48 ";
    // From the electrons: 4.6 mm at 1 m, 11 mm at 2 m.
    EXPECT_EQ(tof((common + "--max-bias 2 --max-std 20 --max-ratio 1.2 --min-valid 100 a.html").c_str()).code,
              0);
    EXPECT_TRUE(contents("a.html").contains("All results are within the limits"));
    EXPECT_TRUE(contents("a.html").contains("64 × 48 in the middle of the sensor, 1 frame<"));
    const SkRun run = tof((common + "--max-std 8 b.html").c_str());
    EXPECT_EQ(run.code, 7);
    EXPECT_TRUE(
        run.err.contains(QLatin1String("4 phases, 12 bit, 2 m, 80 %, ambient 0: standard deviation")));
    EXPECT_FALSE(run.err.contains(QLatin1String("12 bit, 1 m")));
    // The report is written all the same and lists what was exceeded.
    EXPECT_TRUE(contents("b.html").contains(">1 limit exceeded:"));
    EXPECT_EQ(table("b.csv").size(), 3U);
}

TEST_F(ToFAccuracyTest, WrongOptionsAndPlacesAreRefused) {
    for (const char* line :
         {"accuracy", "accuracy --frequency 0 a.html", "accuracy --frequency 20,,30 a.html",
          "accuracy --phases 3 a.html", "accuracy --bits 10 a.html", "accuracy --camera grey a.html",
          "accuracy --distance far a.html", "accuracy --size 640 a.html", "accuracy --size 1000,10 a.html",
          "accuracy --frames 0 a.html", "accuracy --max-bias -1 a.html", "accuracy --reflectivity nan a.html",
          "accuracy a.csv"}) {
        const SkRun run = tof(line);
        EXPECT_EQ(run.code, 2) << line;
        EXPECT_TRUE(run.err.startsWith(QLatin1String("tof: "))) << line;
    }
    EXPECT_EQ(tof("accuracy no/a.html").code, 5);
    EXPECT_FALSE(QFile::exists(path("a.html")));
}
