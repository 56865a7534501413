#pragma once

#include <QString>

/// Exit codes of the program; part of its interface.
enum EkToFExit : int {
    ToFSuccess = 0,
    ToFUsage = 2,         ///< wrong options or arguments
    ToFInput = 3,         ///< the input cannot be read at all
    ToFDamaged = 4,       ///< parts of the input cannot be read; the rest was worked on
    ToFOutput = 5,        ///< the output cannot be written
    ToFNotApplicable = 6, ///< the command makes nothing of this input
    ToFExceeded = 7       ///< the results are there, and exceed a limit that was given
};

/// Where results, errors and progress go. Results to the standard output, the others to the standard error;
/// progress only where a person watches. One thread.
class CkToFConsole {
public:
    static void print(const QString& sText);
    /// The same without the end of a line.
    static void write(const QString& sText);
    static void error(const QString& sText);

    /// Shows a bar while it lives, from its first moment, unless the standard error is no terminal.
    class CkProgress {
    public:
        explicit CkProgress(const QString& sTask);
        ~CkProgress();
        CkProgress(const CkProgress&) = delete;
        CkProgress& operator=(const CkProgress&) = delete;
        void show(qint64 iDone, qint64 iTotal);

    private:
        QString m_sTask;
        bool m_bTerminal;
        int m_iShown = -1; ///< per cent
    };
};
