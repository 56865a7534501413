#include "tools/tof/accuracy/CkToFErrorStatistics.h"
#include "tools/tof/accuracy/SkToFSvgPlot.h"
#include "tools/tof/accuracy/ToFAccuracyLimits.h"
#include "tools/tof/accuracy/ToFAccuracyMatrix.h"
#include "tools/tof/accuracy/ToFNoiseLimit.h"

#include <cmath>
#include <gmock/gmock.h>
#include <numbers>
#include <random>

using ::testing::DoubleNear;
using ::testing::ElementsAre;
using ::testing::Pointwise;

namespace {

// The relative error of a standard deviation of n samples is 1 / sqrt(2 n): 0.5 % here.
constexpr int kSamples = 20000;
constexpr double kTolerance = 0.025;

double deviation(const std::vector<double>& values) {
    double mean = 0.0;
    for (const double value : values) {
        mean += value / double(values.size());
    }
    double squares = 0.0;
    for (const double value : values) {
        squares += (value - mean) * (value - mean);
    }
    return std::sqrt(squares / double(values.size() - 1));
}

} // namespace

TEST(ToFNoiseLimit, PhasesScatterAsCountedPhotonsDo) {
    std::mt19937 random(7);
    const double signal = 9000.0;
    const double total = 12000.0;
    const double contrast = 0.8;
    const double readNoise = 30.0;
    const double truth = 1.1;
    for (const int phases : {2, 4, 8}) {
        std::vector<double> measured;
        for (int i = 0; i < kSamples; ++i) {
            double x = 0.0;
            double y = 0.0;
            for (int k = 0; k < phases; ++k) {
                const double angle = (phases == 2 ? 90.0 : 360.0 / phases) * k * std::numbers::pi / 180.0;
                const double swing = 0.5 * signal * contrast * std::cos(truth - angle);
                const auto tap = [&](double electrons) {
                    return std::poisson_distribution<int>(electrons)(random) +
                           std::normal_distribution<double>(0.0, readNoise)(random);
                };
                const double difference = tap(0.5 * total + swing) - tap(0.5 * total - swing);
                x += difference * std::cos(angle);
                y += difference * std::sin(angle);
            }
            measured.push_back(std::atan2(y, x));
        }
        const double expected = wavePhaseSigma(signal, total, contrast, phases, 2.0 * readNoise * readNoise);
        EXPECT_NEAR(deviation(measured) / expected, 1.0, kTolerance) << phases;
    }
}

TEST(ToFNoiseLimit, MoreLightAndMorePhasesHelpAsTheSquareRoot) {
    const double one = wavePhaseSigma(1000.0, 1000.0, 1.0, 4);
    // sqrt(2 * 1000 / 4) / 1000
    EXPECT_NEAR(one, 0.0223607, 1e-7);
    EXPECT_NEAR(wavePhaseSigma(4000.0, 4000.0, 1.0, 4), one / 2.0, 1e-12);
    EXPECT_NEAR(wavePhaseSigma(1000.0, 1000.0, 1.0, 8), one / std::sqrt(2.0), 1e-12);
    EXPECT_NEAR(wavePhaseSigma(1000.0, 1000.0, 0.5, 4), 2.0 * one, 1e-12);
}

TEST(ToFNoiseLimit, PulsesScatterAsCountedPhotonsDo) {
    std::mt19937 random(11);
    for (const double share : {0.1, 0.5, 0.8}) {
        const double pulse = 8000.0;
        const double ambient = 700.0;
        std::vector<double> measured;
        for (int i = 0; i < kSamples; ++i) {
            const auto window = [&](double electrons) {
                return double(std::poisson_distribution<int>(electrons)(random));
            };
            const double first = window(ambient + pulse * (1.0 - share));
            const double second = window(ambient + pulse * share);
            const double third = window(ambient);
            measured.push_back((second - third) / (first + second - 2.0 * third));
        }
        const double expected =
            pulseShareSigma(ambient + pulse * (1.0 - share), ambient + pulse * share, ambient);
        EXPECT_NEAR(deviation(measured) / expected, 1.0, kTolerance) << share;
    }
}

TEST(ToFErrorStatistics, HandWorked) {
    CkToFErrorStatistics statistics;
    EXPECT_TRUE(std::isnan(statistics.mean()));
    EXPECT_TRUE(std::isnan(statistics.percentile(0.95)));
    statistics.add(5.0);
    EXPECT_EQ(statistics.standardDeviation(), 0.0);
    for (const double error : {-1.0, 2.0, -4.0}) {
        statistics.add(error);
    }
    EXPECT_DOUBLE_EQ(statistics.mean(), 0.5);
    // Squares about 0.5: 20.25 + 2.25 + 2.25 + 20.25 = 45, over 3.
    EXPECT_DOUBLE_EQ(statistics.standardDeviation(), std::sqrt(15.0));
    EXPECT_EQ(statistics.largest(), 5.0);
    EXPECT_EQ(statistics.percentile(0.25), 1.0);
    EXPECT_EQ(statistics.percentile(0.75), 4.0);
    EXPECT_EQ(statistics.percentile(0.76), 5.0);
}

TEST(ToFErrorStatistics, SmallErrorsBesideALargeMeanKeepTheirDigits) {
    CkToFErrorStatistics statistics;
    for (int i = 0; i < 1000; ++i) {
        statistics.add(1e9 + (i % 2 == 0 ? 0.5 : -0.5));
    }
    EXPECT_NEAR(statistics.standardDeviation(), 0.5 * std::sqrt(1000.0 / 999.0), 1e-6);
}

TEST(ToFAccuracyMatrix, CombinesEverythingInOrder) {
    SkToFAccuracyMatrix matrix;
    matrix.frequencies = {10, 20};
    matrix.phases = {2, 4, 8};
    matrix.bits = {12};
    matrix.reflectivities = {0.5};
    matrix.ambients = {0, 1};
    matrix.distances = {1, 2, 3};
    matrix.pulses = {30};
    const std::vector<SkToFAccuracyPoint> points = matrix.points();
    ASSERT_EQ(points.size(), 2U * 3 * 2 * 3 + 2 * 3);
    EXPECT_EQ(points[1].distanceM, 2.0);
    EXPECT_EQ(points[3].ambient, 1.0);
    EXPECT_EQ(points[6].phases, 4);
    EXPECT_EQ(points[18].modulation, 20.0);
    EXPECT_TRUE(points[36].hybrid);
    EXPECT_EQ(points[36].modulation, 30.0);
}

TEST(ToFAccuracyLimits, EachLimitIsItsOwn) {
    SkToFAccuracyResult result;
    result.pixels = 100;
    result.valid = 90;
    result.biasMm = -2.0;
    result.stdMm = 6.0;
    result.sensorMm = 4.0;
    EXPECT_TRUE(SkToFAccuracyLimits().exceededBy(result).isEmpty());
    SkToFAccuracyLimits limits{2.0, 6.0, 1.5, 0.9};
    EXPECT_TRUE(limits.exceededBy(result).isEmpty());
    limits = {1.9, 5.9, 1.4, 0.91};
    EXPECT_EQ(limits.exceededBy(result),
              QStringList({QStringLiteral("bias of 2 mm (limit 1.9 mm)"),
                           QStringLiteral("standard deviation of 6 mm (limit 5.9 mm)"),
                           QStringLiteral("1.5 times the sensor's noise (limit 1.4)"),
                           QStringLiteral("90 % valid pixels (limit 91 %)")}));
    // A cell without valid pixels exceeds every limit.
    result.biasMm = std::nan("");
    limits = {1e9, {}, {}, {}};
    EXPECT_EQ(limits.exceededBy(result).size(), 1);
}

TEST(ToFSvgPlot, TicksAreRoundNumbers) {
    EXPECT_THAT(tofPlotTicks(0.0, 7.0, false), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7));
    EXPECT_THAT(tofPlotTicks(-0.11, 0.12, false),
                Pointwise(DoubleNear(1e-12), {-0.10, -0.05, 0.0, 0.05, 0.10}));
    EXPECT_THAT(tofPlotTicks(3.0, 60.0, true), Pointwise(DoubleNear(1e-9), {5.0, 10.0, 20.0, 50.0}));
    EXPECT_THAT(tofPlotTicks(0.5, 2e4, true), Pointwise(DoubleNear(1e-9), {1.0, 10.0, 100.0, 1e3, 1e4}));
}

TEST(ToFSvgPlot, LeavesOutWhatCannotBeDrawn) {
    SkToFSvgPlot plot;
    plot.title = QStringLiteral("a < b & c");
    plot.logY = true;
    plot.series.push_back({QStringLiteral("one"),
                           QStringLiteral("#000"),
                           true,
                           false,
                           {{1, 1}, {2, 0}, {3, std::nan("")}, {4, 100}, {INFINITY, 5}}});
    const QString svg = plot.svg();
    EXPECT_EQ(svg.count(QLatin1String("<circle")), 2);
    EXPECT_FALSE(svg.contains(QLatin1String("nan")) || svg.contains(QLatin1String("inf")));
    EXPECT_TRUE(svg.contains(QLatin1String("a &lt; b &amp; c")));
    // An empty plot is still valid.
    plot.series.clear();
    EXPECT_FALSE(plot.svg().contains(QLatin1String("nan")));
}
