#include "tools/tof/accuracy/SkToFSvgPlot.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double kWidth = 560.0;
constexpr double kLeft = 66.0;
constexpr double kRight = 14.0;
constexpr double kTop = 30.0;
constexpr double kPlotHeight = 240.0;
constexpr double kAxisHeight = 46.0;
constexpr double kLegendRow = 17.0;
constexpr double kLegendColumn = 240.0;
constexpr int kMaxTicks = 7;

/// One axis: maps its values to pixels.
struct SkAxis {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    bool logarithmic = false;
    double first = 0.0; ///< pixel of low
    double last = 1.0;

    bool shows(double value) const { return std::isfinite(value) && (!logarithmic || value > 0.0); }
    void include(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    void widen() {
        if (!(low <= high)) {
            low = logarithmic ? 1.0 : 0.0;
            high = logarithmic ? 10.0 : 1.0;
        }
        if (logarithmic) {
            const double margin = std::max(0.03 * std::log10(high / low), 0.05);
            low *= std::pow(10.0, -margin);
            high *= std::pow(10.0, margin);
        } else {
            const double margin = high > low ? 0.05 * (high - low) : std::max(0.5 * std::abs(high), 0.5);
            low -= margin;
            high += margin;
        }
    }
    double pixel(double value) const {
        const double share =
            logarithmic ? std::log(value / low) / std::log(high / low) : (value - low) / (high - low);
        return first + share * (last - first);
    }
};

QString number(double value) {
    // A tick at 0 is computed with a rounding error.
    return QString::number(std::abs(value) < 1e-12 ? 0.0 : value, 'g', 6);
}

QString at(double value) {
    return QString::number(value, 'f', 1);
}

QString text(double x, double y, const QString& anchor, const QString& content, const QString& more = {}) {
    return QStringLiteral("<text x=\"%1\" y=\"%2\" text-anchor=\"%3\"%4>%5</text>")
        .arg(at(x), at(y), anchor, more, content.toHtmlEscaped());
}

QString line(double x1, double y1, double x2, double y2, const QString& style) {
    return QStringLiteral("<line x1=\"%1\" y1=\"%2\" x2=\"%3\" y2=\"%4\" class=\"%5\"/>")
        .arg(at(x1), at(y1), at(x2), at(y2), style);
}

QString drawn(const SkToFSvgPlot::SkSeries& series, const SkAxis& x, const SkAxis& y) {
    QStringList corners;
    QString marks;
    for (const auto& [px, py] : series.points) {
        if (!x.shows(px) || !y.shows(py)) {
            continue;
        }
        corners.append(at(x.pixel(px)) + QLatin1Char(',') + at(y.pixel(py)));
        if (!series.dashed) {
            marks += QStringLiteral("<circle cx=\"%1\" cy=\"%2\" r=\"2.6\" fill=\"%3\"/>")
                         .arg(at(x.pixel(px)), at(y.pixel(py)), series.colour);
        }
    }
    QString svg;
    if (series.line && corners.size() > 1) {
        svg = QStringLiteral("<polyline fill=\"none\" stroke=\"%1\" stroke-width=\"1.6\"%2 points=\"%3\"/>")
                  .arg(series.colour, series.dashed ? QStringLiteral(" stroke-dasharray=\"5 3\"") : QString(),
                       corners.join(QLatin1Char(' ')));
    }
    return svg + marks;
}

QString legendEntry(const SkToFSvgPlot::SkSeries& one, size_t entry, double legendTop) {
    const double entryX = kLeft + kLegendColumn * double(entry % 2);
    const size_t entryRow = entry / 2;
    const double entryY = legendTop + kLegendRow * double(entryRow) + 8.0;
    return QStringLiteral(
               "<line x1=\"%1\" y1=\"%2\" x2=\"%3\" y2=\"%2\" stroke=\"%4\" stroke-width=\"%5\"%6/>")
               .arg(at(one.line ? entryX : entryX + 9.0), at(entryY),
                    at(one.line ? entryX + 22.0 : entryX + 14.0), one.colour,
                    one.line ? QStringLiteral("1.6") : QStringLiteral("5"),
                    one.dashed ? QStringLiteral(" stroke-dasharray=\"5 3\"") : QString()) +
           text(entryX + 28.0, entryY + 4.0, QStringLiteral("start"), one.name);
}

} // namespace

QString tofPlotColour(size_t index) {
    static const char* const kColours[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                           "#e69f00", "#56b4e9", "#000000", "#7a6a00"};
    return QLatin1String(kColours[index % std::size(kColours)]);
}

std::vector<double> tofPlotTicks(double low, double high, bool logarithmic) {
    std::vector<double> ticks;
    if (logarithmic) {
        const bool few = std::log10(high / low) < 2.5;
        for (int decade = int(std::floor(std::log10(low))); decade <= int(std::ceil(std::log10(high)));
             ++decade) {
            for (const double step : {1.0, 2.0, 5.0}) {
                const double value = step * std::pow(10.0, decade);
                if (value >= low && value <= high && (few || step == 1.0)) {
                    ticks.push_back(value);
                }
            }
        }
        return ticks;
    }
    const double raw = (high - low) / kMaxTicks;
    const double decade = std::pow(10.0, std::floor(std::log10(raw)));
    const double share = raw / decade;
    const double step = decade * (share <= 1.0 ? 1.0 : share <= 2.0 ? 2.0 : share <= 5.0 ? 5.0 : 10.0);
    for (double i = std::ceil(low / step); i * step <= high; i += 1.0) {
        ticks.push_back(i * step);
    }
    return ticks;
}

QString SkToFSvgPlot::svg() const {
    SkAxis x;
    SkAxis y;
    x.logarithmic = logX;
    y.logarithmic = logY;
    size_t named = 0;
    for (const SkSeries& one : series) {
        named += one.name.isEmpty() ? 0 : 1;
        for (const auto& [px, py] : one.points) {
            if (x.shows(px) && y.shows(py)) {
                x.include(px);
                y.include(py);
            }
        }
    }
    x.widen();
    y.widen();
    x.first = kLeft;
    x.last = kWidth - kRight;
    y.first = kTop + kPlotHeight;
    y.last = kTop;
    const double legendTop = kTop + kPlotHeight + kAxisHeight;
    const size_t legendRows = (named + 1) / 2;
    const double height = legendTop + kLegendRow * double(legendRows) + 4.0;

    QString svg = QStringLiteral("<svg viewBox=\"0 0 %1 %2\" role=\"img\" class=\"plot\">"
                                 "<title>%3</title>")
                      .arg(at(kWidth), at(height), title.toHtmlEscaped());
    svg += text(kWidth / 2.0, 17.0, QStringLiteral("middle"), title, QStringLiteral(" class=\"heading\""));
    for (const double tick : tofPlotTicks(x.low, x.high, logX)) {
        svg += line(x.pixel(tick), y.last, x.pixel(tick), y.first, QStringLiteral("grid"));
        svg += text(x.pixel(tick), y.first + 16.0, QStringLiteral("middle"), number(tick));
    }
    for (const double tick : tofPlotTicks(y.low, y.high, logY)) {
        const bool zero = !logY && std::abs(tick) < 1e-12;
        svg += line(x.first, y.pixel(tick), x.last, y.pixel(tick),
                    zero ? QStringLiteral("zero") : QStringLiteral("grid"));
        svg += text(kLeft - 6.0, y.pixel(tick) + 4.0, QStringLiteral("end"), number(tick));
    }
    svg += line(x.first, y.first, x.last, y.first, QStringLiteral("axis"));
    svg += line(x.first, y.first, x.first, y.last, QStringLiteral("axis"));
    svg += text((x.first + x.last) / 2.0, y.first + 35.0, QStringLiteral("middle"), xLabel);
    const double middle = (y.first + y.last) / 2.0;
    svg += text(14.0, middle, QStringLiteral("middle"), yLabel,
                QStringLiteral(" transform=\"rotate(-90 14 %1)\"").arg(at(middle)));
    size_t entry = 0;
    for (const SkSeries& one : series) {
        svg += drawn(one, x, y);
        if (!one.name.isEmpty()) {
            svg += legendEntry(one, entry++, legendTop);
        }
    }
    return svg + QStringLiteral("</svg>");
}
