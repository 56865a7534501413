#pragma once

#include <QString>

/// A progress bar on standard error, from its construction to its destruction. Shown only on a terminal. One
/// thread.
class CkToFProgress {
public:
    explicit CkToFProgress(const QString& sTask);
    /// Clears the line.
    ~CkToFProgress();
    CkToFProgress(const CkToFProgress&) = delete;
    CkToFProgress& operator=(const CkToFProgress&) = delete;

    void show(qint64 iDone, qint64 iTotal);

private:
    QString m_task;
    bool m_terminal;
    int m_shown = -1; ///< percent; -1: nothing shown
};
