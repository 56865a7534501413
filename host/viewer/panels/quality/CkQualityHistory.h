#pragma once

#include "host/viewer/panels/quality/SkQualityValues.h"

#include <QCoreApplication>
#include <QList>
#include <QRect>

#include <deque>

/// The values of the last frames. One thread at a time.
class CkQualityHistory {
    Q_DECLARE_TR_FUNCTIONS(CkQualityHistory)

public:
    static constexpr size_t kMaximumFrames = 3000;

    void add(const SkQualityValues& values);
    void clear() { m_values.clear(); }
    const std::deque<SkQualityValues>& values() const { return m_values; }

    /// A comment line, a line of column names with units, then one line per frame; with decimal points, and
    /// an empty cell for an unknown value.
    QByteArray csv(const QString& sView, const QRect& region) const;

    /// Writes csv() to a file. False, with sError set and an existing file unchanged, when it cannot be
    /// written.
    bool saveCsv(const QString& sFileName, const QString& sView, const QRect& region, QString& sError) const;

private:
    std::deque<SkQualityValues> m_values;
};
