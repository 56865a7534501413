#include "host/picture/PictureConversion.h"

#include "host/picture/pictureChecks.h"
#include "zuCore/SampleVisitor.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// 128 bits hold a 64-bit sample shifted by up to 63; 64 bits, which are faster, suffice for narrower samples.
__extension__ using Int128 = __int128;

/// The type in which means are computed: it holds every sample exactly, and sums of samples without overflow.
template <typename T>
using MeanType = std::conditional_t<sizeof(T) == 8, long double, double>;

template <typename T>
T fromMean(MeanType<T> value) {
    if constexpr (std::is_integral_v<T>) {
        using Mean = MeanType<T>;
        return T(std::clamp(std::round(value), Mean(std::numeric_limits<T>::min()),
                            Mean(std::numeric_limits<T>::max())));
    } else {
        return T(value);
    }
}

/// Allocates an empty target; any other must have this format.
bool provideTarget(SkPicBuf& target, const SkPicBufInfo& wanted) {
    if (target.data == nullptr) {
        SkPicBufInfo info = wanted;
        info.lineSize = 0;
        return CkPicBufAPI::AllocPicBufFromHeap(target, info);
    }
    return hasPixels(target) && sameSize(target, wanted) && samePixelFormat(target, wanted);
}

/// How target pixel i of n covers the pixels of a source axis of length m, in units of 1/n source pixel.
struct CkCover {
    CkCover(quint32 i, quint32 targetLength, quint32 sourceLength)
        : n(targetLength), begin(quint64(i) * sourceLength), end(begin + sourceLength), first(begin / n),
          last((end - 1) / n) {}

    /// Part of source pixel j that is covered.
    quint64 weight(quint64 j) const { return std::min(end, (j + 1) * n) - std::max(begin, j * n); }

    quint64 n;
    quint64 begin;
    quint64 end;
    quint64 first;
    quint64 last;
};

template <typename T>
T meanOfArea(const SkPicBuf& source, const CkCover& columns, const CkCover& rows, quint32 channel) {
    if (columns.first == columns.last && rows.first == rows.last) {
        return loadSample<T>(source.row(quint32(rows.first)),
                             size_t(columns.first) * source.channels + channel);
    }
    using Mean = MeanType<T>;
    Mean sum = 0;
    Mean weights = 0;
    for (quint64 y = rows.first; y <= rows.last; ++y) {
        const quint8* const row = source.row(quint32(y));
        const Mean rowWeight = Mean(rows.weight(y));
        for (quint64 x = columns.first; x <= columns.last; ++x) {
            const T value = loadSample<T>(row, size_t(x) * source.channels + channel);
            if constexpr (std::is_floating_point_v<T>) {
                if (!std::isfinite(value)) {
                    continue;
                }
            }
            const Mean weight = rowWeight * Mean(columns.weight(x));
            sum += weight * Mean(value);
            weights += weight;
        }
    }
    if (weights == 0) {
        return std::numeric_limits<T>::has_quiet_NaN ? std::numeric_limits<T>::quiet_NaN() : T(0);
    }
    return fromMean<T>(sum / weights);
}

template <typename Wide, typename S, typename T>
void convertRows(const SkPicBuf& source, SkPicBuf& target, int shift, bool round) {
    const quint32 bits = target.bitsPerChannel;
    const Wide high = (Wide(1) << (std::is_signed_v<T> ? bits - 1 : bits)) - 1;
    const Wide low = std::is_signed_v<T> ? -high - 1 : Wide(0);
    const int right = std::max(-shift, 0);
    const int left = std::max(shift, 0);
    const Wide half = round && right > 0 ? Wide(1) << (right - 1) : Wide(0);
    const size_t samples = size_t(source.width) * source.channels;
    for (quint32 y = 0; y < source.height; ++y) {
        const quint8* const from = source.row(y);
        quint8* const to = target.row(y);
        for (size_t i = 0; i < samples; ++i) {
            const Wide value = ((Wide(loadSample<S>(from, i)) + half) >> right) * (Wide(1) << left);
            storeSample<T>(to, i, T(std::clamp(value, low, high)));
        }
    }
}

} // namespace

bool PictureConversion::toGrey(const SkPicBuf& source, SkPicBuf& target) {
    if (!hasPixels(source)) {
        return false;
    }
    SkPicBufInfo grey = source;
    grey.channels = 1;
    grey.colorFilterArray = EkColorFilterArray::None;
    return visitSamples(source.dataType, [&]<typename T>(T) {
        if (!provideTarget(target, grey) || overlap(source, target)) {
            return false;
        }
        using Mean = MeanType<T>;
        const quint32 channels = source.channels;
        for (quint32 y = 0; y < source.height; ++y) {
            const quint8* const from = source.row(y);
            quint8* const to = target.row(y);
            for (quint32 x = 0; x < source.width; ++x) {
                const auto sample = [&](quint32 c) {
                    return Mean(loadSample<T>(from, size_t(x) * channels + c));
                };
                if (channels == 1) {
                    storeSample<T>(to, x, loadSample<T>(from, x));
                } else if (channels == 2) {
                    storeSample<T>(to, x, fromMean<T>(sample(0) / 2 + sample(1) / 2));
                } else {
                    const Mean mean =
                        Mean(0.299L) * sample(2) + Mean(0.587L) * sample(1) + Mean(0.114L) * sample(0);
                    storeSample<T>(to, x, fromMean<T>(mean));
                }
            }
        }
        return true;
    });
}

bool PictureConversion::resize(const SkPicBuf& source, SkPicBuf& target, quint32 uiWidth, quint32 uiHeight) {
    if (!hasPixels(source) || uiWidth == 0 || uiHeight == 0) {
        return false;
    }
    SkPicBufInfo resized = source;
    resized.width = uiWidth;
    resized.height = uiHeight;
    return visitSamples(source.dataType, [&]<typename T>(T) {
        if (!provideTarget(target, resized) || overlap(source, target)) {
            return false;
        }
        for (quint32 y = 0; y < uiHeight; ++y) {
            const CkCover rows(y, uiHeight, source.height);
            quint8* const to = target.row(y);
            for (quint32 x = 0; x < uiWidth; ++x) {
                const CkCover columns(x, uiWidth, source.width);
                for (quint32 c = 0; c < source.channels; ++c) {
                    storeSample<T>(to, size_t(x) * source.channels + c,
                                   meanOfArea<T>(source, columns, rows, c));
                }
            }
        }
        return true;
    });
}

bool PictureConversion::changeBitDepth(const SkPicBuf& source, SkPicBuf& target, bool bRound) {
    if (!hasPixels(source) || !hasPixels(target) || !sameSize(source, target) ||
        source.channels != target.channels || overlap(source, target)) {
        return false;
    }
    const auto bitsFit = [](const SkPicBufInfo& info) {
        return info.bitsPerChannel >= 1 && info.bitsPerChannel <= 8 * sampleBytes(info.dataType);
    };
    if (!bitsFit(source) || !bitsFit(target)) {
        return false;
    }
    const int shift = int(target.bitsPerChannel) - int(source.bitsPerChannel);
    return visitIntegerSamples(source.dataType, [&]<typename S>(S) {
        return visitIntegerSamples(target.dataType, [&]<typename T>(T) {
            if (sizeof(S) == 8 || sizeof(T) == 8) {
                convertRows<Int128, S, T>(source, target, shift, bRound);
            } else {
                convertRows<qint64, S, T>(source, target, shift, bRound);
            }
            return true;
        });
    });
}
