#pragma once

#include <QtGlobal>

#include <array>

/// Counter-based random numbers: a value depends only on seed, set, exposure and pixel, not on the order in
/// which pixels or pictures are computed. Any thread.
class CkSimNoise {
public:
    /// Stream of one row of one exposure. Different arguments give unrelated streams.
    static quint64 rowKey(quint64 seed, quint64 set, quint32 exposure, quint32 row);

    /// 64 random bits of a position in a stream.
    static quint64 bits(quint64 key, quint32 position) {
        quint64 value = key + (quint64(position) + 1U) * 0x9e3779b97f4a7c15U;
        value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9U;
        value = (value ^ (value >> 27)) * 0x94d049bb133111ebU;
        return value ^ (value >> 31);
    }

    /// Normally distributed values of mean 0 and variance 1: one to three independent rows.
    template <int channels>
    static void fillRow(quint64 key, int count, float* const (&rows)[channels]) {
        static_assert(channels >= 1 && channels <= 3);
        const float* table = quantiles().data();
        for (int column = 0; column < count; ++column) {
            const quint64 value = bits(key, quint32(column));
            rows[0][column] = table[value & 0xfffU];
            if constexpr (channels > 1) {
                rows[1][column] = table[(value >> 20) & 0xfffU];
            }
            if constexpr (channels > 2) {
                rows[2][column] = table[(value >> 40) & 0xfffU];
            }
        }
    }

    /// The normal distribution cut into 4096 slices of equal probability; small enough for the L1 cache.
    static const std::array<float, 4096>& quantiles();
};
