#include "host/viewer/picture/PictureStatistics.h"

#include "zuCore/CkPicBufAPI.h"
#include "zuCore/SampleVisitor.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Enough pixels for a histogram that looks the same as the full one.
constexpr quint64 kHistogramPixels = 300'000;

template <class T>
bool isFinite(T value) {
    if constexpr (std::is_floating_point_v<T>) {
        return std::isfinite(value);
    } else {
        return true;
    }
}

template <class T>
void limitsOf(const SkPicBuf& picBuf, quint32 channel, SkPictureStatistics& statistics) {
    T low = std::numeric_limits<T>::max();
    T high = std::numeric_limits<T>::lowest();
    for (quint32 y = 0; y < picBuf.height; ++y) {
        const T* sample = reinterpret_cast<const T*>(picBuf.row(y)) + channel;
        for (quint32 x = 0; x < picBuf.width; ++x, sample += picBuf.channels) {
            if (!isFinite(*sample)) {
                ++statistics.notFinite;
                continue;
            }
            low = std::min(low, *sample);
            high = std::max(high, *sample);
        }
    }
    statistics.finite = quint64(picBuf.width) * picBuf.height - statistics.notFinite;
    if (statistics.finite > 0) {
        statistics.minimum = double(low);
        statistics.maximum = double(high);
    }
}

template <class T>
void fillHistogram(const SkPicBuf& picBuf, quint32 channel, SkPictureStatistics& statistics) {
    const quint64 pixels = quint64(picBuf.width) * picBuf.height;
    const quint32 step = quint32(std::clamp<quint64>(pixels / kHistogramPixels, 1, picBuf.height));
    const double range = statistics.maximum - statistics.minimum;
    // A range beyond the largest double (two huge values of opposite sign) falls into one bin.
    const double scale = range > 0.0 && std::isfinite(range) ? SkPictureStatistics::kBins / range : 0.0;
    for (quint32 y = 0; y < picBuf.height; y += step) {
        const T* sample = reinterpret_cast<const T*>(picBuf.row(y)) + channel;
        for (quint32 x = 0; x < picBuf.width; ++x, sample += picBuf.channels) {
            if (isFinite(*sample)) {
                const int bin = int((double(*sample) - statistics.minimum) * scale);
                ++statistics.histogram[size_t(std::clamp(bin, 0, SkPictureStatistics::kBins - 1))];
            }
        }
    }
}

} // namespace

double SkPictureStatistics::quantile(double share) const {
    quint64 total = 0;
    for (const quint32 count : histogram) {
        total += count;
    }
    const double wanted = share * double(total);
    const double binWidth = (maximum - minimum) / kBins;
    double seen = 0.0;
    for (int bin = 0; bin < kBins; ++bin) {
        const double count = double(histogram[size_t(bin)]);
        if (count > 0.0 && seen + count >= wanted) {
            return minimum + binWidth * (bin + (wanted - seen) / count);
        }
        seen += count;
    }
    return maximum;
}

bool computeStatistics(const SkPicBuf& picBuf, quint32 channel, SkPictureStatistics& statistics) {
    statistics = SkPictureStatistics();
    if (picBuf.data == nullptr || !CkPicBufAPI::isValid(picBuf) || channel >= picBuf.channels) {
        return false;
    }
    return visitSamples(picBuf.dataType, [&](auto type) {
        using T = decltype(type);
        limitsOf<T>(picBuf, channel, statistics);
        fillHistogram<T>(picBuf, channel, statistics);
        return true;
    });
}
