#pragma once

#include <QtGlobal>
#include <algorithm>
#include <limits>

/// A count as texts with a plural ("%n frame(s)") take it; counts that are too large for these stay at the
/// largest.
inline int pluralNumber(qint64 iCount) {
    constexpr qint64 most = std::numeric_limits<int>::max();
    return int(std::clamp<qint64>(iCount, 0, most));
}
