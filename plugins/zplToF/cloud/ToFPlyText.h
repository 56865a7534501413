#pragma once

#include "plugins/zplToF/cloud/SkToFPoint.h"

#include <QByteArray>

#include <span>

/// The points as ASCII PLY, without colours or faces. Every coordinate is written in the shortest form that
/// reads back as the same double, decimal or with an exponent, whichever is shorter. Any thread. Heap use
/// stays below twice the text's size. Empty when memory runs out.
QByteArray buildPlyText(std::span<const SkToFPoint> points);
