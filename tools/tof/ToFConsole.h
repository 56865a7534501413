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

/// Output of the program: results to standard output, errors to standard error. One thread.
namespace ToFConsole {

void print(const QString& sText);
/// Without a line break.
void write(const QString& sText);
void error(const QString& sText);

} // namespace ToFConsole
