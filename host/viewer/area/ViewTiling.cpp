#include "host/viewer/area/ViewTiling.h"

#include <algorithm>

namespace {

// No view gets less than this fraction of an equal share, before the shares are normalised.
constexpr double kLeastShare = 0.8;

QList<double> equalShares(qsizetype count) {
    return QList<double>(count, 1.0 / double(count));
}

QList<double> sharesByShape(const QList<double>& shapes) {
    double total = 0.0;
    for (const double shape : shapes) {
        total += shape;
    }
    const double least = kLeastShare / double(shapes.size());
    QList<double> shares;
    double sum = 0.0;
    for (const double shape : shapes) {
        shares.append(std::max(shape / total, least));
        sum += shares.last();
    }
    for (double& share : shares) {
        share /= sum;
    }
    return shares;
}

} // namespace

QList<QRect> ViewTiling::places(const QSize& space, const QList<double>& shapes) {
    const int count = int(shapes.size());
    QList<QRect> places;
    if (count == 0) {
        return places;
    }
    int columns = 1;
    while (columns * columns < count) {
        ++columns;
    }
    const int rows = (count + columns - 1) / columns;
    for (int row = 0; row < rows; ++row) {
        const int top = space.height() * row / rows;
        const int bottom = space.height() * (row + 1) / rows;
        const int inRow = std::min(columns, count - row * columns);
        double start = 0.0;
        for (const double share : rows == 1 ? sharesByShape(shapes) : equalShares(inRow)) {
            const int left = qRound(space.width() * start);
            const int right = qRound(space.width() * (start + share));
            places.append(QRect(left, top, right - left, bottom - top));
            start += share;
        }
    }
    return places;
}
