#pragma once

#include <QStringList>
#include <QtGlobal>
#include <array>

/// A pseudo-colour map: 256 colours, each blue, green, red, 255.
using PseudoColorTable = std::array<quint8, 256 * 4>;

QStringList pseudoColorMapNames();

/// The map of an index of the names; grey for any other index.
PseudoColorTable pseudoColorMap(int index);
