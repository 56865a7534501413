#pragma once

#include <QtGlobal>
#include <algorithm>
#include <limits>

/// A count for tr() texts with a plural ("%n frame(s)"), which take an int; clamped to its range.
inline int pluralNumber(qint64 iCount) {
    constexpr qint64 most = std::numeric_limits<int>::max();
    return int(std::clamp<qint64>(iCount, 0, most));
}
