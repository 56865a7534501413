#include "plugins/zplToF/pic/kernels/PlainKernels.h"

#include <algorithm>
#include <type_traits>

namespace {

constexpr double kConfidenceLimit = 0.9;
constexpr qint64 kNearlyEqual = 2;

/// The three windows of a pixel. 32-bit samples count as signed; 64 bits hold every sum and product.
struct Windows {
    qint64 x1;
    qint64 x2;
    qint64 x3;
};

template <typename T>
Windows windowsAt(const quint8* row, size_t pixel) {
    using Read = std::conditional_t<sizeof(T) == 4, qint32, T>;
    return {qint64(sampleAt<Read>(row, 3 * pixel)), qint64(sampleAt<Read>(row, 3 * pixel + 1)),
            qint64(sampleAt<Read>(row, 3 * pixel + 2))};
}

qint64 ambientLight(const Windows& windows) {
    return std::min(windows.x1, windows.x3);
}

qint64 reflectedLight(const Windows& windows) {
    const qint64 low = std::min(windows.x1, windows.x3);
    const qint64 high = std::max(windows.x1, windows.x3);
    return std::max<qint64>(windows.x2 + high - 2 * low, 0);
}

template <typename T, typename R, qint64 (*value)(const Windows&)>
void windowRow(const quint8* source, quint8* result, size_t pixels, int shift) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        putSample(result, pixel, R(value(windowsAt<T>(source, pixel)) >> shift));
    }
}

struct DepthConfidence {
    float depth = 0.0F;
    float confidence = 0.0F;
};

/// (0, 0) for a pixel without a valid measurement.
DepthConfidence measuredDepth(const Windows& windows, double range) {
    const auto [a, b, c] = windows;
    if (-kNearlyEqual <= a - b && a - b <= kNearlyEqual && std::max(a, b) < c) {
        return {};
    }

    // The pulse returns in windows 1 and 2 or in windows 2 and 3; the third one measures ambient light.
    const bool near = a > c;
    const qint64 first = near ? a : b;
    const qint64 second = near ? b : c;
    const qint64 ambient = near ? c : a;
    const double offset = near ? 0.0 : range;

    const qint64 sum = first + second;
    const qint64 reflected = sum - 2 * ambient;
    if (reflected <= 0 || second < ambient || first == 0 || second == 0) {
        return {};
    }

    const double confidence = double(sum * ambient) / double(2 * first * second);
    if (confidence > kConfidenceLimit) {
        return {};
    }
    return {float(double(second - ambient) * range / double(reflected) + offset), float(confidence)};
}

template <typename T>
void hybridDepthRow(const quint8* source, quint8* result, size_t pixels, double range) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        const DepthConfidence value = measuredDepth(windowsAt<T>(source, pixel), range);
        putSample(result, 2 * pixel, value.depth);
        putSample(result, 2 * pixel + 1, value.confidence);
    }
}

/// Takes the most sensitive unsaturated section and scales it to the sensitivity of the last one.
template <typename T, typename R>
void mergeSectionsRow(const SkToFSectionRows& rows, quint8* result, size_t pixels, quint32&) {
    // A copy: the result might alias the caller's structure.
    const SkToFSectionRows sections = rows;
    const quint16 threshold = sections.threshold;
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        quint32 chosen = sections.count - 1;
        for (; chosen > 0; --chosen) {
            const quint8* row = sections.row(chosen);
            if (sampleAt<T>(row, 3 * pixel) < threshold && sampleAt<T>(row, 3 * pixel + 1) < threshold &&
                sampleAt<T>(row, 3 * pixel + 2) < threshold) {
                break;
            }
        }
        const quint32 shift = sections.count - 1 - chosen;
        for (size_t sample = 3 * pixel; sample < 3 * pixel + 3; ++sample) {
            const quint64 value = sampleAt<T>(sections.row(chosen), sample);
            putSample(result, sample, shift < 32 ? R(value << shift) : R(0));
        }
    }
}

template <typename T>
void interleaveThreeRow(const quint8* const* rows, quint8* result, size_t pixels) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        for (size_t window = 0; window < 3; ++window) {
            putSample(result, 3 * pixel + window, sampleAt<T>(rows[window], pixel));
        }
    }
}

float largerTrusted(float maximum, float depth, float confidence, float limit) {
    return confidence > 0.0F && confidence <= limit && depth > maximum ? depth : maximum;
}

float largestDepthOfPairsRow(const quint8* pairs, const quint8*, size_t pixels, float limit, float maximum) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        maximum = largerTrusted(maximum, sampleAt<float>(pairs, 2 * pixel),
                                sampleAt<float>(pairs, 2 * pixel + 1), limit);
    }
    return maximum;
}

float largestDepthRow(const quint8* depth, const quint8* confidence, size_t pixels, float limit,
                      float maximum) {
    for (size_t pixel = 0; pixel < pixels; ++pixel) {
        maximum =
            largerTrusted(maximum, sampleAt<float>(depth, pixel), sampleAt<float>(confidence, pixel), limit);
    }
    return maximum;
}

template <typename T, typename R>
void addWindowPair(SkToFKernels& kernels, int source, int result) {
    kernels.hybridIntensity[source][result] = windowRow<T, R, ambientLight>;
    kernels.hybridAmplitude[source][result] = windowRow<T, R, reflectedLight>;
}

} // namespace

void addPlainHybridKernels(SkToFKernels& kernels) {
    addWindowPair<quint8, quint8>(kernels, 0, 0);
    addWindowPair<quint16, quint16>(kernels, 1, 1);
    addWindowPair<quint32, quint8>(kernels, 2, 0);
    addWindowPair<quint32, quint16>(kernels, 2, 1);
    addWindowPair<quint32, quint32>(kernels, 2, 2);
    kernels.hybridDepth[0] = hybridDepthRow<quint8>;
    kernels.hybridDepth[1] = hybridDepthRow<quint16>;
    kernels.hybridDepth[2] = hybridDepthRow<quint32>;
    kernels.mergeSections[0][1] = mergeSectionsRow<quint8, quint16>;
    kernels.mergeSections[0][2] = mergeSectionsRow<quint8, quint32>;
    kernels.mergeSections[1][1] = mergeSectionsRow<quint16, quint16>;
    kernels.mergeSections[1][2] = mergeSectionsRow<quint16, quint32>;
    kernels.interleaveThree[0] = interleaveThreeRow<quint8>;
    kernels.interleaveThree[1] = interleaveThreeRow<quint16>;
    kernels.largestDepthOfPairs = largestDepthOfPairsRow;
    kernels.largestDepth = largestDepthRow;
}
