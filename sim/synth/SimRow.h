#pragma once

#include "zuCore/SkPicBuf.h"

#include <cmath>

// Row loops shared by the sensors. Values are electrons; the loops are simple enough for auto-vectorisation.

/// Electrons at which a pixel saturates.
inline constexpr float kSimFullWell = 60000.0F;

/// Adds shot noise (Gaussian approximation of the Poisson distribution) and read noise.
inline void addSimNoise(float* electrons, const float* gauss, float readVariance, int count) {
    for (int column = 0; column < count; ++column) {
        const float mean = electrons[column];
        electrons[column] = mean + gauss[column] * std::sqrt(mean + readVariance);
    }
}

/// Clamps to the range from an empty to a saturated pixel.
inline void saturateSim(float* electrons, int count) {
    for (int column = 0; column < count; ++column) {
        float value = electrons[column];
        value = value < 0.0F ? 0.0F : value;
        electrons[column] = value > kSimFullWell ? kSimFullWell : value;
    }
}

/// Counts per electron of a converter whose largest count is a full pixel.
inline float simGain(quint32 bits) {
    return float((1U << bits) - 1U) / kSimFullWell;
}

/// Whether a sub-image of the size fits into the picture at a row: rows long enough, and no more bits than
/// the sample type has.
inline bool simFits(const SkPicBuf& target, int width, int height, quint32 firstRow) {
    const quint32 sampleBits = 8 * sampleBytes(target.dataType);
    return target.data && target.width == quint32(width) && target.bitsPerChannel >= 2 &&
           target.bitsPerChannel <= sampleBits && target.bitsPerChannel <= 16 && firstRow <= target.height &&
           target.height - firstRow >= quint32(height) &&
           target.lineSize >= size_t(target.width) * target.channels * (sampleBits / 8);
}
