#pragma once

#include <QString>

/// Exit codes of the program; part of its interface.
enum EkToFExit : int {
    ToFSuccess = 0,
    ToFUsage = 2,         ///< wrong options or arguments
    ToFInput = 3,         ///< the input cannot be read at all
    ToFDamaged = 4,       ///< parts of the input cannot be read; the rest was processed
    ToFOutput = 5,        ///< the output cannot be written
    ToFNotApplicable = 6, ///< the command does not apply to this input
    ToFExceeded = 7       ///< results were written, but exceed a given limit
};

/// Output of the program: results to standard output, errors and progress to standard error. One thread.
class CkToFConsole {
public:
    static void print(const QString& sText);
    /// Without a line break.
    static void write(const QString& sText);
    static void error(const QString& sText);

    /// A progress bar for its lifetime; shown only if standard error is a terminal.
    class CkProgress {
    public:
        explicit CkProgress(const QString& sTask);
        ~CkProgress();
        CkProgress(const CkProgress&) = delete;
        CkProgress& operator=(const CkProgress&) = delete;
        void show(qint64 iDone, qint64 iTotal);

    private:
        QString m_task;
        bool m_terminal;
        int m_shown = -1; ///< percent; -1: nothing shown
    };
};
