#pragma once

#include "tools/tof/accuracy/SkToFAccuracy.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

/// The content of a report. Plain data.
struct SkToFAccuracyReport {
    SkToFAccuracySetup setup;
    QString software;
    QString commandLine; ///< which reproduces the report
    std::vector<SkToFAccuracyResult> results;
    bool limited = false; ///< whether limits were given
    QStringList exceeded; ///< the limits that were exceeded, one text each

    /// One line per cell. Column names carry the units; the decimal separator is a point.
    QByteArray csv() const;
    /// A self-contained page with tables and plots.
    QByteArray html() const;
};
