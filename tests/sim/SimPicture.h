#pragma once

#include "tests/support/TestPicture.h"

/// A picture for the synthesisers, every sample a guard byte until it is written.
class SimPicture : public TestPicture {
public:
    SimPicture(quint32 columns, quint32 rows, quint32 samples, EkImageDataType type, quint32 bits,
               quint32 padding = 24)
        : TestPicture(columns, rows, samples, type, bits, padding) {
        (**this).bitsPerChannel = bits; // 0 as well
        poison();
    }
    operator SkPicBuf&() { return **this; }

    bool samePixels(const SimPicture& other, quint32 otherFirstRow = 0) const {
        const SkPicBuf& own = **this;
        for (quint32 line = 0; line < own.height; ++line) {
            for (quint32 column = 0; column < own.width; ++column) {
                for (quint32 channel = 0; channel < own.channels; ++channel) {
                    if (valueAt(column, line, channel) !=
                        other.valueAt(column, otherFirstRow + line, channel)) {
                        return false;
                    }
                }
            }
        }
        return true;
    }
};
