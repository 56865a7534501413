#pragma once

#include <QString>

#include <chrono>

/// Condenses the errors of consecutive pages into messages for the user. The first error of a run is reported
/// at once, later ones twice a second with their count: a file may have a million unreadable pages, too many
/// for one message each.
class CkPageErrors {
public:
    using Clock = std::chrono::steady_clock;

    /// After a page that could not be read completely. The message to show now, or empty.
    QString add(const QString& sError, Clock::time_point now);
    /// After a readable page, and after the last page: the message that add() delayed, or empty.
    QString endOfRun();

private:
    QString text() const;

    qint64 m_runLength = 0; ///< consecutive pages with errors
    QString m_last;
    bool m_pending = false; ///< the last error has not been reported
    Clock::time_point m_shown;
};
