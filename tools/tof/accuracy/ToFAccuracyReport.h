#pragma once

#include "tools/tof/accuracy/SkToFAccuracy.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

/// What a report is made of. Plain data.
struct SkToFAccuracyReport {
    SkToFAccuracySetup setup;
    QString software;
    QString commandLine; ///< that makes the same report
    std::vector<SkToFAccuracyResult> results;
    bool limited = false; ///< whether limits were given
    QStringList exceeded; ///< the limits that were exceeded, one text each

    /// One line a cell, lengths in millimetres unless the name says otherwise, a point as decimal sign.
    QByteArray csv() const;
    /// A page that needs nothing else: tables and plots.
    QByteArray html() const;
};
