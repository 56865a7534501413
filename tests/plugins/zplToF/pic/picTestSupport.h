#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "tests/support/TestPicture.h"

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

/// Random samples of the given bits; every tenth pixel is at or near the limits, some pixels are dark.
inline void fillRandom(TestPicture& picture, std::mt19937& random, quint32 bits) {
    const bool isSigned =
        picture->dataType == EkImageDataType::Int8 || picture->dataType == EkImageDataType::Int16;
    const qint64 range = qint64(1) << bits;
    const qint64 low = isSigned ? -range / 2 : 0;
    for (quint32 y = 0; y < picture->height; ++y) {
        for (quint32 x = 0; x < picture->width; ++x) {
            const auto kind = random() % 20;
            for (quint32 channel = 0; channel < picture->channels; ++channel) {
                qint64 value = low + qint64(random()) % range;
                if (kind == 0) {
                    value = random() % 2 == 0 ? low : low + range - 1;
                } else if (kind == 1) {
                    value = low + range / 2 + qint64(random() % 5) - (isSigned ? 2 : 0);
                } else if (kind == 2) {
                    value = isSigned ? 0 : low + range / 3;
                }
                picture.setInteger(x, y, channel, value);
            }
        }
    }
}

/// Ordinal number of a float, for distances in units in the last place.
inline qint64 floatPosition(float value) {
    qint32 bits;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits >= 0 ? qint64(bits) : qint64(std::numeric_limits<qint32>::min()) - bits;
}

inline qint64 ulpDistance(float first, float second) {
    const qint64 distance = floatPosition(first) - floatPosition(second);
    return distance < 0 ? -distance : distance;
}

/// Pins kernels for its lifetime.
class PinnedKernels {
public:
    explicit PinnedKernels(const SkToFKernels& kernels) { ToFKernelChoice::pin(&kernels); }
    ~PinnedKernels() { ToFKernelChoice::pin(nullptr); }
    PinnedKernels(const PinnedKernels&) = delete;
    PinnedKernels& operator=(const PinnedKernels&) = delete;
};
