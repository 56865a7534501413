#include "tools/tof/accuracy/ToFAccuracyReport.h"

#include "tools/tof/accuracy/ToFAccuracyLimits.h"
#include "tools/tof/accuracy/ToFAccuracyPlots.h"
#include "tools/tof/base/ToFText.h"

#include <algorithm>
#include <cmath>

namespace {

const char* const kHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8"/>
<meta name="viewport" content="width=device-width, initial-scale=1"/>
<title>ToF accuracy report</title>
<style>
body { font: 15px/1.5 "DejaVu Sans", "Helvetica Neue", Arial, sans-serif; color: #1c2330; max-width: 1180px;
  margin: 2em auto; padding: 0 1.5em; }
h1 { font-size: 1.7em; margin: 0 0 .2em; }
h2 { font-size: 1.25em; margin: 2em 0 .6em; border-bottom: 2px solid #d5dae3; padding-bottom: .2em; }
h3 { font-size: 1em; margin: 1.4em 0 .4em; }
p { max-width: 60em; }
code { font-size: .9em; background: #f1f3f7; padding: .1em .3em; overflow-wrap: anywhere; }
table { border-collapse: collapse; font-size: .85em; }
th, td { padding: .25em .7em; text-align: right; border-bottom: 1px solid #e3e7ee; white-space: nowrap; }
th { text-align: right; background: #f1f3f7; vertical-align: bottom; }
td:first-child, th:first-child { text-align: left; }
.plain td { text-align: left; white-space: normal; }
.scroll { overflow-x: auto; }
.mild { color: #667085; }
.good { color: #11703a; font-weight: bold; }
.bad { color: #b3261e; font-weight: bold; }
.pair { display: grid; grid-template-columns: repeat(auto-fit, minmax(400px, 1fr)); gap: 1em; break-inside: avoid; }
.plot { width: 100%; height: auto; max-width: 640px; font: 11px "DejaVu Sans", Arial, sans-serif; }
.plot text { fill: #1c2330; }
.plot .heading { font-size: 13px; font-weight: bold; }
.plot .grid { stroke: #e3e7ee; }
.plot .zero { stroke: #98a2b3; }
.plot .axis { stroke: #475467; }
@media print {
  body { font-size: 10pt; margin: 0; max-width: none; padding: 0; }
  .pair { grid-template-columns: 1fr 1fr; }
  .scroll { overflow: visible; }
  table { font-size: 7.5pt; }
  th, td { padding: .15em .4em; }
  tr, .plot { break-inside: avoid; }
  h2, h3 { break-after: avoid; }
  thead { display: table-header-group; }
}
</style>
</head>
<body>
)";

const char* const kMethod = R"(<h2>How this was measured</h2>
<p>The simulated camera looks at a flat wall across its optical axis. Every raw picture goes through the
processing that the plug-in uses: phase shift and confidence of the processing block, then the distance along the
ray and the confidence filter of the point cloud. The error of a pixel is its measured minus its true distance;
beyond the unambiguous range (marked <em>wrapped</em>) the two are compared modulo that range. Bias, standard
deviation and percentile are taken over all valid pixels of all frames. Saturated pixels, whose raw samples are at
the end of their range, are included and also counted separately.</p>
<p><b>Shot-noise limit.</b> The number of electrons released by light varies with its square root. With
<i>S</i> reflected electrons and <i>T</i> reflected and ambient ones in both taps of one exposure, contrast
<i>C</i> and <i>N</i> phases, error propagation through the demodulation <i>atan2(Σ d sin t, Σ d cos
t)</i> gives the phase shift the standard deviation</p>
<p><i>σ<sub>φ</sub> = √(2 T / N) / (C S)</i>,
  <i>σ<sub>d</sub> = σ<sub>φ</sub> c / (4 π f)</i>.</p>
<p>The limit of the sensor has <i>T + 2 r² + 2 q² / 12</i> in place of <i>T</i>, for the read noise <i>r</i>
and the step <i>q</i> of the converter in electrons. For a hybrid camera, with the windows <i>P</i> and <i>Q</i>
that the pulse falls into, the ambient window <i>R</i>, <i>D = P + Q − 2 R</i> and
<i>u = (Q − R) / D</i>, it is
<i>σ<sub>d</sub> = range √(u² P + (1 − u)² Q + (2 u − 1)² R) / D</i>.
Source: Poisson statistics of the electrons (variance = mean), propagated through the measuring equation to first
order; valid as long as the noise is small against the range. The limits shown are quadratic means over the
pixels.</p>
)";

QString number(double value, int decimals) {
    return std::isfinite(value) ? QString::number(value, 'f', decimals) : QStringLiteral("–");
}

/// Three significant digits, in millimetres.
QString length(double value) {
    if (!std::isfinite(value)) {
        return QStringLiteral("–");
    }
    const double size = std::abs(value);
    return QString::number(value, 'f', size >= 100.0 ? 0 : size >= 10.0 ? 1 : size >= 1.0 ? 2 : 3);
}

QString row(const QStringList& cells, const char* tag = "td") {
    const QString name = QLatin1String(tag);
    const QString end = QStringLiteral("</%1>").arg(name);
    const QString start = QStringLiteral("<%1>").arg(name);
    return QStringLiteral("<tr>") + start + cells.join(end + start) + end + QStringLiteral("</tr>\n");
}

QString table(const QStringList& headings, const QString& rows) {
    return QStringLiteral("<div class=\"scroll\"><table>\n<thead>") + row(headings, "th") +
           QStringLiteral("</thead>\n<tbody>\n") + rows + QStringLiteral("</tbody></table></div>\n");
}

QString settingsTable(const SkToFAccuracyReport& report) {
    const SkToFAccuracySetup& setup = report.setup;
    QString rows;
    rows += row({QStringLiteral("Made by"), report.software.toHtmlEscaped()});
    rows += row(
        {QStringLiteral("With"), QStringLiteral("<code>%1</code>").arg(report.commandLine.toHtmlEscaped())});
    rows += row({QStringLiteral("Cells of the matrix"), QString::number(report.results.size())});
    rows += row({QStringLiteral("Pixels"), QStringLiteral("%1 × %2 in the middle of the sensor, %3")
                                               .arg(setup.width)
                                               .arg(setup.height)
                                               .arg(tofCount(setup.frames, "frame"))});
    rows += row({QStringLiteral("Exposure"), QStringLiteral("%1 µs each").arg(setup.exposureUs)});
    rows += row({QStringLiteral("Noise"),
                 setup.noise ? QStringLiteral("on, seed %1").arg(setup.seed) : QStringLiteral("off")});
    rows += row(
        {QStringLiteral("Valid up to a confidence value of"), QString::number(setup.confidenceThreshold)});
    return QStringLiteral("<table class=\"plain\">\n") + rows + QStringLiteral("</table>\n");
}

QString verdict(const SkToFAccuracyReport& report) {
    if (!report.limited) {
        return {};
    }
    if (report.exceeded.isEmpty()) {
        return QStringLiteral("<p class=\"good\">All results are within the limits given.</p>\n");
    }
    QString list;
    for (const QString& text : report.exceeded) {
        list += QStringLiteral("<li>") + text.toHtmlEscaped() + QStringLiteral("</li>\n");
    }
    return QStringLiteral("<p class=\"bad\">%1 exceeded:</p>\n<ul>%2</ul>\n")
        .arg(tofCount(report.exceeded.size(), "limit"), list);
}

/// The finite value of largest magnitude; NaN when there is none.
double worst(const SkToFAccuracyGroup& group, double SkToFAccuracyResult::*value) {
    double found = std::nan("");
    for (const SkToFAccuracyResult* result : group.results) {
        const double candidate = result->*value;
        if (std::isfinite(candidate) && !(std::abs(candidate) <= std::abs(found))) {
            found = candidate;
        }
    }
    return found;
}

QString medianRatio(const SkToFAccuracyGroup& group, double SkToFAccuracyResult::*limit) {
    std::vector<double> ratios;
    for (const SkToFAccuracyResult* result : group.results) {
        if (result->stdMm > 0.0 && result->saturated == 0) {
            ratios.push_back(result->stdMm / (result->*limit));
        }
    }
    std::sort(ratios.begin(), ratios.end());
    return number(ratios.empty() ? std::nan("") : ratios[ratios.size() / 2], 2);
}

QString summary(const std::vector<SkToFAccuracyGroup>& groups, bool noise) {
    QString rows;
    for (const SkToFAccuracyGroup& group : groups) {
        double valid = 1.0;
        int saturated = 0;
        for (const SkToFAccuracyResult* result : group.results) {
            valid = std::min(valid, result->validShare());
            saturated += result->saturated > 0 ? 1 : 0;
        }
        rows +=
            row({group.title(), QString::number(group.results.size()),
                 number(group.results.front()->rangeM, 3), length(worst(group, &SkToFAccuracyResult::biasMm)),
                 length(worst(group, &SkToFAccuracyResult::stdMm)),
                 length(worst(group, &SkToFAccuracyResult::p95Mm)),
                 noise ? medianRatio(group, &SkToFAccuracyResult::shotMm) : QStringLiteral("–"),
                 noise ? medianRatio(group, &SkToFAccuracyResult::sensorMm) : QStringLiteral("–"),
                 number(100.0 * valid, 1), QString::number(saturated)});
    }
    return table({QStringLiteral("Setting"), QStringLiteral("Cells"), QStringLiteral("Range<br/>m"),
                  QStringLiteral("Largest bias<br/>mm"), QStringLiteral("Largest std. dev.<br/>mm"),
                  QStringLiteral("Largest 95 %<br/>mm"),
                  QStringLiteral("Median of std. dev.<br/>/ shot limit"),
                  QStringLiteral("Median of std. dev.<br/>/ sensor limit"),
                  QStringLiteral("Least valid<br/>%"), QStringLiteral("Cells with<br/>saturation")},
                 rows);
}

QString allCells(const std::vector<SkToFAccuracyGroup>& groups) {
    QString text;
    for (const SkToFAccuracyGroup& group : groups) {
        QString rows;
        for (const SkToFAccuracyResult* result : group.results) {
            const SkToFAccuracyPoint& point = result->point;
            const QString wrapped =
                result->isWrapped() ? QStringLiteral(" <span class=\"mild\">wrapped</span>") : QString();
            rows += row({QString::number(point.distanceM) + wrapped,
                         QString::number(100.0 * point.reflectivity), QString::number(point.ambient),
                         length(result->biasMm), length(result->stdMm), length(result->p95Mm),
                         length(result->largestMm), length(result->shotMm), length(result->sensorMm),
                         number(100.0 * result->validShare(), 1), number(100.0 * result->saturatedShare(), 1),
                         number(result->signal, 0), number(result->total, 0)});
        }
        text += QStringLiteral("<h3>%1</h3>\n").arg(group.title()) +
                table({QStringLiteral("Distance<br/>m"), QStringLiteral("Reflectivity<br/>%"),
                       QStringLiteral("Ambient"), QStringLiteral("Bias<br/>mm"),
                       QStringLiteral("Std. dev.<br/>mm"), QStringLiteral("95 %<br/>mm"),
                       QStringLiteral("Largest<br/>mm"), QStringLiteral("Shot limit<br/>mm"),
                       QStringLiteral("Sensor limit<br/>mm"), QStringLiteral("Valid<br/>%"),
                       QStringLiteral("Saturated<br/>%"), QStringLiteral("Reflected<br/>electrons"),
                       QStringLiteral("All<br/>electrons")},
                      rows);
    }
    return text;
}

/// The plots, one section per frequency or pulse: all of its groups against the limit, then each group.
QString plots(const std::vector<SkToFAccuracyGroup>& groups, bool noise) {
    QString text;
    for (size_t first = 0; first < groups.size();) {
        const SkToFAccuracyPoint& point = groups[first].results.front()->point;
        std::vector<SkToFAccuracyGroup> same;
        for (; first < groups.size(); ++first) {
            const SkToFAccuracyPoint& next = groups[first].results.front()->point;
            if (next.hybrid != point.hybrid || next.modulation != point.modulation) {
                break;
            }
            same.push_back(groups[first]);
        }
        text += QStringLiteral("<h2>%1</h2>\n")
                    .arg(point.hybrid ? QStringLiteral("Hybrid, pulse %1 ns").arg(point.modulation)
                                      : QStringLiteral("%1 MHz").arg(point.modulation));
        if (noise) {
            text += accuracyLimitPlot(same);
        }
        for (const SkToFAccuracyGroup& group : same) {
            text += QStringLiteral("<h3>%1</h3>\n<div class=\"pair\">\n").arg(group.title()) +
                    accuracyErrorPlot(group) + QLatin1Char('\n') +
                    (noise ? accuracyNoisePlot(group) : QString()) + QStringLiteral("\n</div>\n");
        }
    }
    return text;
}

} // namespace

QByteArray SkToFAccuracyReport::html() const {
    const std::vector<SkToFAccuracyGroup> groups = groupAccuracy(results);
    QString text = QString::fromUtf8(kHead);
    text +=
        QStringLiteral("<h1>ToF accuracy</h1>\n<p class=\"mild\">Simulated camera with known truth</p>\n");
    text += verdict(*this) + settingsTable(*this);
    text += QStringLiteral("<h2>Summary</h2>\n") + summary(groups, setup.noise);
    text += QString::fromUtf8(kMethod);
    text += plots(groups, setup.noise);
    text += QStringLiteral("<h2>All cells</h2>\n") + allCells(groups);
    return (text + QStringLiteral("</body>\n</html>\n")).toUtf8();
}
