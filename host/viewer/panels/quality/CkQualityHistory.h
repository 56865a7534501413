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
    static constexpr size_t kMost = 3000; ///< frames kept

    void add(const SkQualityValues& values);
    void clear() { m_values.clear(); }
    const std::deque<SkQualityValues>& values() const { return m_values; }

    /// One line a frame below one line of names that hold the unit; a point as decimal sign, nothing for what
    /// is not known.
    QByteArray csv(const QString& sView, const QRect& region) const;

    /// The newest values for people: name, tabulator, value with unit.
    static QString text(const SkQualityValues& values);

    /// A value with its unit; a dash for what is not known.
    static QString number(double fValue, const QString& sUnit);

private:
    std::deque<SkQualityValues> m_values;
};
