#pragma once

#include <QString>

/// "1 frame", "2 frames": for things whose plural only takes an s.
inline QString tofCount(qint64 iCount, const char* pThing) {
    return QStringLiteral("%1 %2%3").arg(QString::number(iCount), QLatin1String(pThing).toString(),
                                         iCount == 1 ? QString() : QStringLiteral("s"));
}
