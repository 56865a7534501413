#include "tools/tof/accuracy/ToFAccuracyPlots.h"

#include "tools/tof/accuracy/SkToFSvgPlot.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace {

auto groupKey(const SkToFAccuracyPoint& point) {
    return std::tuple(point.hybrid, point.modulation, point.phases, point.bits);
}

/// The cells of a group, split by reflectivity and ambient light and sorted by distance.
std::vector<SkToFAccuracyGroup> byScene(const SkToFAccuracyGroup& group) {
    std::vector<SkToFAccuracyGroup> scenes;
    for (const SkToFAccuracyResult* result : group.results) {
        const auto same = [result](const SkToFAccuracyGroup& scene) {
            const SkToFAccuracyPoint& first = scene.results.front()->point;
            return first.reflectivity == result->point.reflectivity && first.ambient == result->point.ambient;
        };
        const auto found = std::find_if(scenes.begin(), scenes.end(), same);
        if (found == scenes.end()) {
            scenes.push_back({{result}});
        } else {
            found->results.push_back(result);
        }
    }
    for (SkToFAccuracyGroup& scene : scenes) {
        std::stable_sort(scene.results.begin(), scene.results.end(),
                         [](const SkToFAccuracyResult* a, const SkToFAccuracyResult* b) {
                             return a->point.distanceM < b->point.distanceM;
                         });
    }
    return scenes;
}

QString sceneName(const SkToFAccuracyPoint& point) {
    return QStringLiteral("%1 % reflectivity, ambient %2").arg(100.0 * point.reflectivity).arg(point.ambient);
}

template <typename Value>
SkToFSvgPlot::SkSeries overDistance(const SkToFAccuracyGroup& scene, const Value& value) {
    SkToFSvgPlot::SkSeries series;
    for (const SkToFAccuracyResult* result : scene.results) {
        series.points.emplace_back(result->point.distanceM, value(*result));
    }
    return series;
}

} // namespace

QString SkToFAccuracyGroup::title() const {
    const SkToFAccuracyPoint& point = results.front()->point;
    return point.hybrid ? QStringLiteral("Hybrid, pulse %1 ns, %2 bit").arg(point.modulation).arg(point.bits)
                        : QStringLiteral("%1 MHz, %2 phases, %3 bit")
                              .arg(point.modulation)
                              .arg(point.phases)
                              .arg(point.bits);
}

std::vector<SkToFAccuracyGroup> groupAccuracy(const std::vector<SkToFAccuracyResult>& results) {
    std::vector<SkToFAccuracyGroup> groups;
    for (const SkToFAccuracyResult& result : results) {
        const auto found = std::find_if(groups.begin(), groups.end(), [&](const SkToFAccuracyGroup& group) {
            return groupKey(group.results.front()->point) == groupKey(result.point);
        });
        if (found == groups.end()) {
            groups.push_back({{&result}});
        } else {
            found->results.push_back(&result);
        }
    }
    return groups;
}

QString accuracyErrorPlot(const SkToFAccuracyGroup& group) {
    SkToFSvgPlot plot;
    plot.title = QStringLiteral("Mean error");
    plot.xLabel = QStringLiteral("Distance of the wall (m)");
    plot.yLabel = QStringLiteral("Bias (mm)");
    size_t index = 0;
    for (const SkToFAccuracyGroup& scene : byScene(group)) {
        auto series = overDistance(scene, [](const auto& result) { return result.biasMm; });
        series.name = sceneName(scene.results.front()->point);
        series.colour = tofPlotColour(index++);
        plot.series.push_back(series);
    }
    return plot.svg();
}

QString accuracyNoisePlot(const SkToFAccuracyGroup& group) {
    SkToFSvgPlot plot;
    plot.title = QStringLiteral("Noise; dashed: shot-noise limit");
    plot.xLabel = QStringLiteral("Distance of the wall (m)");
    plot.yLabel = QStringLiteral("Standard deviation (mm)");
    plot.logY = true;
    size_t index = 0;
    for (const SkToFAccuracyGroup& scene : byScene(group)) {
        auto limit = overDistance(scene, [](const auto& result) { return result.shotMm; });
        limit.colour = tofPlotColour(index);
        limit.dashed = true;
        plot.series.push_back(limit);
        auto series = overDistance(scene, [](const auto& result) { return result.stdMm; });
        series.name = sceneName(scene.results.front()->point);
        series.colour = tofPlotColour(index++);
        plot.series.push_back(series);
    }
    return plot.svg();
}

QString accuracyLimitPlot(const std::vector<SkToFAccuracyGroup>& groups) {
    SkToFSvgPlot plot;
    plot.title = QStringLiteral("Noise against the limit; on the dashed line the two are equal");
    plot.xLabel = QStringLiteral("Shot-noise limit (mm)");
    plot.yLabel = QStringLiteral("Standard deviation (mm)");
    plot.logX = true;
    plot.logY = true;
    SkToFSvgPlot::SkSeries equal;
    equal.colour = QStringLiteral("#666666");
    equal.dashed = true;
    double low = std::numeric_limits<double>::infinity();
    double high = 0.0;
    size_t index = 0;
    for (const SkToFAccuracyGroup& group : groups) {
        SkToFSvgPlot::SkSeries series;
        series.name = group.title();
        series.colour = tofPlotColour(index++);
        series.line = false;
        for (const SkToFAccuracyResult* result : group.results) {
            // Saturation clips the noise, so these cells cannot be compared with the limit.
            if (result->stdMm > 0.0 && result->saturated == 0) {
                series.points.emplace_back(result->shotMm, result->stdMm);
                low = std::min(low, result->shotMm);
                high = std::max(high, result->shotMm);
            }
        }
        plot.series.push_back(series);
    }
    if (high > 0.0) {
        equal.points = {{low, low}, {high, high}};
        plot.series.insert(plot.series.begin(), equal);
    }
    return plot.svg();
}
