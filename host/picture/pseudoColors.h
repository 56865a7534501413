#pragma once

#include <QStringList>
#include <QtGlobal>
#include <array>

/// A pseudo-colour map: 256 colours, each blue, green, red, 255.
using PseudoColorTable = std::array<quint8, 256 * 4>;

QStringList pseudoColorMapNames();

/// The map with an index into the names; grey for an index out of range.
PseudoColorTable pseudoColorMap(int index);
