#pragma once

#include <QList>
#include <QRect>
#include <QSize>

/// How views are laid out side by side. Stateless; any thread.
namespace ViewTiling {

/// Places for as many views as there are shapes (width by height), row by row. A single row is divided
/// according to the shapes, so that a tall picture leaves width to the others. Several rows have the same
/// columns, except the last, whose views may be fewer and share its width.
QList<QRect> places(const QSize& space, const QList<double>& shapes);

} // namespace ViewTiling
