#pragma once

#include <QString>

#include <chrono>

/// Errors of pages that are read one after the other, as texts to be shown. The first one of a row comes at
/// once, the others twice a second with their number: a file may have a million pages that cannot be read,
/// and whoever shows the texts is slower than they come.
class CkPageErrors {
public:
    using Clock = std::chrono::steady_clock;

    /// After a page that could not be read, or not whole. Empty when there is nothing to be shown now.
    QString add(const QString& sError, Clock::time_point now);
    /// After a page that could be read, and behind the last one: what add has held back, or empty.
    QString endOfRow();

private:
    QString text() const;

    qint64 m_iInRow = 0;
    QString m_sLast;
    bool m_bHeldBack = false;
    Clock::time_point m_shown;
};
