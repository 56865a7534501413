#pragma once

#include <QFileInfo>
#include <QString>
#include <algorithm>

/// The ending of a file name, lower case and without its dot; empty when what stands behind the last dot is
/// no ending but part of a number or a date, as in "room-1.5".
inline QString tofEnding(const QString& sFileName) {
    const QString ending = QFileInfo(sFileName).suffix().toLower();
    const bool letters =
        std::any_of(ending.begin(), ending.end(), [](QChar letter) { return letter.isLetter(); });
    return letters ? ending : QString();
}
