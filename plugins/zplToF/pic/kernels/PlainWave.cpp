#include "plugins/zplToF/pic/kernels/PlainKernels.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kTwoPi = 6.2831855F;
constexpr float kHalfRootOfTwo = 0.70710677F;
constexpr float kOnePlusRootOfTwo = 2.4142137F;

/// Two interleaved taps A and B.
template <typename T>
struct TwoTaps {
    using Amplitude = T;
    static int difference(const quint8* row, size_t x) {
        return int(sampleAt<T>(row, 2 * x)) - int(sampleAt<T>(row, 2 * x + 1));
    }
    static quint32 sum(const quint8* row, size_t x) {
        return quint32(sampleAt<T>(row, 2 * x)) + quint32(sampleAt<T>(row, 2 * x + 1));
    }
};

/// One signed difference.
template <typename T>
struct Differences {
    using Amplitude = std::make_unsigned_t<T>;
    static int difference(const quint8* row, size_t x) { return int(sampleAt<T>(row, x)); }
};

/// The in-phase and quadrature parts of the reflected light. 16-bit samples of four phases reach
/// +-131070: the sum of the squares needs 64 bits.
struct IntegerVector {
    qint64 x;
    qint64 y;
};

struct FloatVector {
    float x;
    float y;
};

template <class Source, int phases>
auto lightVector(const quint8* const* rows, size_t pixel) {
    const auto d = [rows, pixel](int phase) { return Source::difference(rows[phase], pixel); };
    if constexpr (phases == 2) {
        return IntegerVector{d(0), d(1)};
    } else if constexpr (phases == 4) {
        return IntegerVector{d(0) - d(2), d(1) - d(3)};
    } else {
        const int p = d(1) - d(5);
        const int q = d(3) - d(7);
        return FloatVector{float(d(0) - d(4)) + float(p - q) * kHalfRootOfTwo,
                           float(d(2) - d(6)) + float(p + q) * kHalfRootOfTwo};
    }
}

float wrapped(float angle) {
    return angle < 0.0F ? angle + kTwoPi : angle;
}

template <class Vector>
float phaseShift(Vector light) {
    return wrapped(std::atan2(float(light.y), float(light.x)));
}

/// Length of the vector divided by the number of phases, rounded towards zero.
template <int phases>
quint32 scaledLength(IntegerVector light) {
    return quint32(std::sqrt(double(light.x * light.x + light.y * light.y)) * (1.0 / phases));
}

template <int phases>
quint32 scaledLength(FloatVector light) {
    return quint32(std::sqrt(light.x * light.x + light.y * light.y) * (1.0F / phases));
}

template <class Source, int phases>
quint32 amplitudeOf(const quint8* const* rows, size_t pixel) {
    if constexpr (phases == 1) {
        return quint32(std::abs(Source::difference(rows[0], pixel)));
    } else {
        return scaledLength<phases>(lightVector<Source, phases>(rows, pixel));
    }
}

template <class Source, int phases>
quint32 sampleSum(const quint8* const* rows, size_t pixel) {
    quint32 sum = 0;
    for (int phase = 0; phase < phases; ++phase) {
        sum += Source::sum(rows[phase], pixel);
    }
    return sum;
}

/// Standard deviation of the phase shift; 0 for a pixel without signal.
template <int phases>
float confidenceOf(quint32 sum, quint32 amplitude) {
    if (amplitude == 0) {
        return 0.0F;
    }
    if constexpr (phases == 1) {
        return float(std::sqrt(double(sum >> 2))) / float(amplitude);
    } else if constexpr (phases == 2) {
        return float(std::sqrt(double(sum >> 3))) / float(amplitude);
    } else if constexpr (phases == 4) {
        return float(std::sqrt(double(sum >> 3))) / float(2 * amplitude);
    } else {
        return std::sqrt(float(sum >> 4) * kOnePlusRootOfTwo) / float(4 * amplitude);
    }
}

/// A single phase has no angle: its magnitude is the result.
template <class Source, int phases>
float phaseValue(const quint8* const* rows, size_t pixel) {
    if constexpr (phases == 1) {
        return float(amplitudeOf<Source, 1>(rows, pixel));
    } else {
        return phaseShift(lightVector<Source, phases>(rows, pixel));
    }
}

template <typename T, int phases>
void phaseConfidenceRow(const quint8* const* rows, quint8* result, size_t pixels, SkToFRowStats& stats) {
    using Source = TwoTaps<T>;
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        const auto amplitude = typename Source::Amplitude(amplitudeOf<Source, phases>(rows, pixel));
        const float confidence = confidenceOf<phases>(sampleSum<Source, phases>(rows, pixel), amplitude);
        putSample(result, 2 * pixel, phaseValue<Source, phases>(rows, pixel));
        putSample(result, 2 * pixel + 1, confidence);
        stats.fWorst = std::max(stats.fWorst, confidence);
        stats.bDark = stats.bDark || confidence == 0.0F;
    }
}

template <typename T, int phases>
void phaseRow(const quint8* const* rows, quint8* result, size_t pixels, SkToFRowStats&) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        putSample(result, pixel, phaseValue<Differences<T>, phases>(rows, pixel));
    }
}

void angleRow(const quint8* const* rows, quint8* result, size_t pixels) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        putSample(result, pixel,
                  phaseShift(FloatVector{sampleAt<float>(rows[0], pixel), sampleAt<float>(rows[1], pixel)}));
    }
}

void fillDarkRow(quint8* result, size_t pixels, float worst) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        if (sampleAt<float>(result, 2 * pixel + 1) == 0.0F) {
            putSample(result, 2 * pixel + 1, worst);
        }
    }
}

template <typename T, int phases>
void intensityRow(const quint8* const* rows, quint8* result, size_t pixels) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        putSample(result, pixel, T(sampleSum<TwoTaps<T>, phases>(rows, pixel) / (2 * phases)));
    }
}

template <class Source, int phases>
void amplitudeRow(const quint8* const* rows, quint8* result, size_t pixels) {
    using Amplitude = typename Source::Amplitude;
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        putSample(result, pixel, Amplitude(amplitudeOf<Source, phases>(rows, pixel)));
    }
}

/// The difference wraps to the signed type; it is not saturated.
template <typename T>
void differenceRow(const quint8* source, quint8* result, size_t pixels) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        putSample(result, pixel, std::make_signed_t<T>(TwoTaps<T>::difference(source, pixel)));
    }
}

template <int phases, int index>
void addPhases(SkToFKernels& kernels) {
    kernels.phaseConfidence[0][index] = phaseConfidenceRow<quint8, phases>;
    kernels.phaseConfidence[1][index] = phaseConfidenceRow<quint16, phases>;
    kernels.phase[0][index] = phaseRow<qint8, phases>;
    kernels.phase[1][index] = phaseRow<qint16, phases>;
    kernels.intensity[0][index] = intensityRow<quint8, phases>;
    kernels.intensity[1][index] = intensityRow<quint16, phases>;
    kernels.amplitude[0][index] = amplitudeRow<TwoTaps<quint8>, phases>;
    kernels.amplitude[1][index] = amplitudeRow<TwoTaps<quint16>, phases>;
    kernels.amplitudeOfDifference[0][index] = amplitudeRow<Differences<qint8>, phases>;
    kernels.amplitudeOfDifference[1][index] = amplitudeRow<Differences<qint16>, phases>;
}

} // namespace

void addPlainWaveKernels(SkToFKernels& kernels) {
    addPhases<1, 0>(kernels);
    addPhases<2, 1>(kernels);
    addPhases<4, 2>(kernels);
    addPhases<8, 3>(kernels);
    kernels.fillDark = fillDarkRow;
    kernels.angle = angleRow;
    kernels.difference[0] = differenceRow<quint8>;
    kernels.difference[1] = differenceRow<quint16>;
}
