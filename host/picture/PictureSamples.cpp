#include "host/picture/PictureSamples.h"

#include "host/picture/pictureChecks.h"
#include "zuCore/SampleVisitor.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace {

/// Smallest and largest finite value so far. Independent lanes, so that the loop has no dependency from one
/// pixel to the next and can be vectorised.
template <typename T>
class CkRange {
public:
    static constexpr size_t kLanes = 16;

    CkRange() {
        m_low.fill(std::numeric_limits<T>::infinity());
        m_high.fill(-std::numeric_limits<T>::infinity());
    }

    void add(size_t lane, T value) {
        const bool finite = std::abs(value) <= std::numeric_limits<T>::max();
        m_low[lane] = finite && value < m_low[lane] ? value : m_low[lane];
        m_high[lane] = finite && value > m_high[lane] ? value : m_high[lane];
    }

    void addRow(const quint8* row, size_t count, size_t step) {
        size_t i = 0;
        if (step == 1) {
            for (; i + kLanes <= count; i += kLanes) {
                for (size_t lane = 0; lane < kLanes; ++lane) {
                    add(lane, loadSample<T>(row, i + lane));
                }
            }
        }
        for (; i < count; ++i) {
            add(i % kLanes, loadSample<T>(row, i * step));
        }
    }

    T low() const { return *std::min_element(m_low.begin(), m_low.end()); }
    T high() const { return *std::max_element(m_high.begin(), m_high.end()); }

private:
    std::array<T, kLanes> m_low;
    std::array<T, kLanes> m_high;
};

float toFloatRange(double value) {
    constexpr double kLimit = std::numeric_limits<float>::max();
    return float(std::clamp(value, -kLimit, kLimit));
}

template <typename T>
std::make_unsigned_t<T> magnitude(T value) {
    using Unsigned = std::make_unsigned_t<T>;
    // In unsigned arithmetic: the negative of the smallest value does not fit its type.
    return value < 0 ? Unsigned(Unsigned(0) - Unsigned(value)) : Unsigned(value);
}

template <typename T>
T shifted(T value, qint64 shift) {
    constexpr qint64 width = qint64(sizeof(T)) * 8;
    // Shifts by the width of the type or more are undefined in C++.
    if (shift >= width) {
        return T(0);
    }
    if (shift <= -width) {
        return value < 0 ? T(-1) : T(0);
    }
    return shift >= 0 ? T(std::make_unsigned_t<T>(value) << shift) : T(value >> -shift);
}

template <typename T>
T saturatedDifference(T minuend, T subtrahend) {
    if constexpr (std::is_floating_point_v<T>) {
        return minuend - subtrahend;
    } else {
        T result;
        if (!__builtin_sub_overflow(minuend, subtrahend, &result)) {
            return result;
        }
        return subtrahend > 0 ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
    }
}

/// Calls perRow(row, sample count) for every row of a picture.
template <typename PerRow>
void forEachRow(SkPicBuf& picBuf, PerRow&& perRow) {
    const size_t samples = size_t(picBuf.width) * picBuf.channels;
    for (quint32 y = 0; y < picBuf.height; ++y) {
        perRow(picBuf.row(y), samples);
    }
}

} // namespace

bool PictureSamples::valueRange(const SkPicBuf& picBuf, float& fMin, float& fMax, bool bFirstChannelOnly) {
    if (!hasPixels(picBuf)) {
        return false;
    }
    const auto measure = [&]<typename T>(T) {
        CkRange<T> range;
        const size_t step = bFirstChannelOnly ? picBuf.channels : 1;
        const size_t count = bFirstChannelOnly ? picBuf.width : size_t(picBuf.width) * picBuf.channels;
        for (quint32 y = 0; y < picBuf.height; ++y) {
            range.addRow(picBuf.row(y), count, step);
        }
        const bool found = range.low() <= range.high();
        fMin = found ? toFloatRange(double(range.low())) : 0.0F;
        fMax = found ? toFloatRange(double(range.high())) : 0.0F;
        return found;
    };
    switch (picBuf.dataType) {
    case EkImageDataType::Float32:
        return measure(float());
    case EkImageDataType::Float64:
        return measure(double());
    default:
        return false;
    }
}

bool PictureSamples::bitDepth(const SkPicBuf& picBuf, quint32& uiBits, bool bFirstChannelOnly) {
    if (!hasPixels(picBuf)) {
        return false;
    }
    return visitIntegerSamples(picBuf.dataType, [&]<typename T>(T) {
        const size_t step = bFirstChannelOnly ? picBuf.channels : 1;
        const size_t count = bFirstChannelOnly ? picBuf.width : size_t(picBuf.width) * picBuf.channels;
        // The bitwise OR of all values has the bit length of the largest one.
        std::make_unsigned_t<T> bits = 0;
        for (quint32 y = 0; y < picBuf.height; ++y) {
            const quint8* const row = picBuf.row(y);
            if (step == 1) {
                for (size_t i = 0; i < count; ++i) {
                    bits |= magnitude(loadSample<T>(row, i));
                }
            } else {
                for (size_t i = 0; i < count; ++i) {
                    bits |= magnitude(loadSample<T>(row, i * step));
                }
            }
        }
        if (bits == 0) {
            return false;
        }
        uiBits = quint32(std::bit_width(bits));
        return true;
    });
}

bool PictureSamples::shiftBits(SkPicBuf& picBuf, int iShift, bool bUpdateBits) {
    if (!hasPixels(picBuf)) {
        return false;
    }
    return visitIntegerSamples(picBuf.dataType, [&]<typename T>(T) {
        forEachRow(picBuf, [&](quint8* row, size_t samples) {
            for (size_t i = 0; i < samples; ++i) {
                storeSample<T>(row, i, shifted(loadSample<T>(row, i), qint64(iShift)));
            }
        });
        if (bUpdateBits) {
            const qint64 bits = qint64(picBuf.bitsPerChannel) + iShift;
            picBuf.bitsPerChannel = quint32(std::clamp<qint64>(bits, 0, qint64(sizeof(T)) * 8));
        }
        return true;
    });
}

bool PictureSamples::subtract(SkPicBuf& picBuf, const SkPicBuf& subtrahend) {
    if (!hasPixels(picBuf) || !hasPixels(subtrahend) || !sameSize(picBuf, subtrahend) ||
        !samePixelFormat(picBuf, subtrahend)) {
        return false;
    }
    // Identical pixels are fine; a partial overlap would subtract results instead of samples.
    const bool samePlaces = picBuf.data == subtrahend.data && picBuf.lineSize == subtrahend.lineSize;
    if (!samePlaces && overlap(picBuf, subtrahend)) {
        return false;
    }
    return visitSamples(picBuf.dataType, [&]<typename T>(T) {
        const quint8* other = subtrahend.data;
        forEachRow(picBuf, [&](quint8* row, size_t samples) {
            for (size_t i = 0; i < samples; ++i) {
                storeSample<T>(row, i, saturatedDifference(loadSample<T>(row, i), loadSample<T>(other, i)));
            }
            other += subtrahend.lineSize;
        });
        return true;
    });
}
