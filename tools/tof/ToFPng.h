#pragma once

#include <QByteArray>

/// A PNG picture. iBits: 8 or 16; iChannels: 1 grey, 3 red, green, blue. samples: packed rows, 16-bit samples
/// in the order of the machine. Empty when the sizes do not fit together.
QByteArray encodePng(quint32 uiWidth, quint32 uiHeight, int iBits, int iChannels, const QByteArray& samples);
