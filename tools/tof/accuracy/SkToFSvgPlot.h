#pragma once

#include <QString>

#include <utility>
#include <vector>

/// A line or scatter plot as a piece of SVG that goes into a page as it is. Plain data.
struct SkToFSvgPlot {
    struct SkSeries {
        QString name;   ///< in the legend; a series without a name is not in it
        QString colour; ///< of the SVG
        bool line = true;
        bool dashed = false; ///< a line without marks
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

/// Colours that stay apart for the colour-blind and on grey prints; any number, from 0.
QString tofPlotColour(size_t index);

/// Round numbers on an axis from low to high, both included where round. Logarithmic: low above 0.
std::vector<double> tofPlotTicks(double low, double high, bool logarithmic);
