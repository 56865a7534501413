#include "sim/synth/CkSimNoise.h"

#include <cmath>
#include <numbers>

namespace {

/// The value that a standard normal variable exceeds with a probability of 0 to 1/2.
double upperQuantile(double probability) {
    double low = 0.0;
    double high = 10.0;
    for (int halving = 0; halving < 48; ++halving) {
        const double middle = 0.5 * (low + high);
        if (0.5 * std::erfc(middle / std::numbers::sqrt2) > probability) {
            low = middle;
        } else {
            high = middle;
        }
    }
    return 0.5 * (low + high);
}

std::array<float, 4096> makeQuantiles() {
    constexpr int kCount = 4096;
    constexpr int kHalf = kCount / 2;
    std::array<double, kHalf> upper{};
    double squares = 0.0;
    for (int slice = 0; slice < kHalf; ++slice) {
        upper[size_t(slice)] = upperQuantile((slice + 0.5) / kCount);
        squares += upper[size_t(slice)] * upper[size_t(slice)];
    }
    // Slicing truncates the tails; rescaled to variance 1.
    const double scale = 1.0 / std::sqrt(squares / kHalf);
    std::array<float, kCount> table{};
    for (int slice = 0; slice < kHalf; ++slice) {
        const float value = float(upper[size_t(slice)] * scale);
        table[size_t(slice)] = -value;
        table[size_t(kCount - 1 - slice)] = value;
    }
    return table;
}

} // namespace

quint64 CkSimNoise::rowKey(quint64 seed, quint64 set, quint32 exposure, quint32 row) {
    // Each argument is added after the one before has been hashed, so that sums cannot collide.
    quint64 key = bits(seed, 0);
    key = bits(key ^ set, 1);
    key = bits(key ^ exposure, 2);
    return bits(key ^ row, 3);
}

const std::array<float, 4096>& CkSimNoise::quantiles() {
    static const std::array<float, 4096> kQuantiles = makeQuantiles();
    return kQuantiles;
}
