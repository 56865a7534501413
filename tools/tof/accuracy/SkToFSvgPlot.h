#pragma once

#include <QString>

#include <utility>
#include <vector>

/// A line or scatter plot as an SVG element for an HTML page. Plain data.
struct SkToFSvgPlot {
    struct SkSeries {
        QString name;   ///< in the legend; a series without a name is left out of it
        QString colour; ///< an SVG colour
        bool line = true;
        bool dashed = false; ///< a line without markers
        std::vector<std::pair<double, double>> points;
    };
    QString title;
    QString xLabel; ///< with unit
    QString yLabel; ///< with unit
    bool logX = false;
    bool logY = false;
    std::vector<SkSeries> series;

    /// Values that are not finite, or not above 0 on a logarithmic axis, are left out.
    QString svg() const;
};

/// Colours that are distinguishable with colour blindness and in grey print. Any index: they repeat.
QString tofPlotColour(size_t index);

/// Round numbers from low to high, inclusive. On a logarithmic axis low is above 0.
std::vector<double> tofPlotTicks(double low, double high, bool logarithmic);
