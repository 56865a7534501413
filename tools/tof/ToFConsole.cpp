#include "tools/tof/ToFConsole.h"

#include <cstdio>

void ToFConsole::print(const QString& sText) {
    write(sText + QLatin1Char('\n'));
}

void ToFConsole::write(const QString& sText) {
    std::fputs(qPrintable(sText), stdout);
}

void ToFConsole::error(const QString& sText) {
    std::fputs(qPrintable(QStringLiteral("tof: ") + sText + QLatin1Char('\n')), stderr);
}
