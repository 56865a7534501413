#pragma once

#include <QFileInfo>
#include <QString>

#include <algorithm>

/// "1 frame", "2 frames": for nouns with a regular plural.
inline QString tofCount(qint64 iCount, const char* pThing) {
    return QStringLiteral("%1 %2%3").arg(QString::number(iCount), QLatin1String(pThing).toString(),
                                         iCount == 1 ? QString() : QStringLiteral("s"));
}

/// The suffix of a file name, in lower case and without the dot. Empty when the text after the last dot has
/// no letters: it is part of a number or a date, as in "room-1.5".
inline QString tofSuffix(const QString& sFileName) {
    const QString ending = QFileInfo(sFileName).suffix().toLower();
    const bool letters =
        std::any_of(ending.begin(), ending.end(), [](QChar letter) { return letter.isLetter(); });
    return letters ? ending : QString();
}
