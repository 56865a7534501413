#include "host/viewer/picture/PictureColours.h"

#include "zuCore/CkLut.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/SampleVisitor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

/// Position of a value in the table of colours.
class CkColourScale {
public:
    explicit CkColourScale(const SkColouring& colouring)
        : m_colours(colouring.colours.constData()), m_low(colouring.window.low),
          m_last(double(colouring.colours.size()) - 1.0) {
        const double range = colouring.window.high - colouring.window.low;
        // An empty window is a step: everything above its value gets the last colour.
        m_factor = range > 0.0 && std::isfinite(range) ? m_last / range : std::numeric_limits<double>::max();
    }

    QRgb colour(double value) const {
        return m_colours[size_t(std::clamp((value - m_low) * m_factor + 0.5, 0.0, m_last))];
    }

private:
    const QRgb* m_colours;
    double m_low;
    double m_last;
    double m_factor;
};

bool isSaturated(double value, const SkDisplayWindow& full) {
    return value >= full.high || (full.low < 0.0 && value <= full.low);
}

template <class T>
void colourSmall(const SkPicBuf& picBuf, quint32 channel, const SkColouring& colouring, QImage& image) {
    // One entry for each value of the sample type: the loop over the pixels is a plain look-up.
    using Unsigned = std::make_unsigned_t<T>;
    constexpr size_t count = size_t(1) << (8 * sizeof(T));
    std::vector<QRgb> direct(count);
    const CkColourScale scale(colouring);
    const SkDisplayWindow full = PictureColours::fullRange(picBuf);
    for (size_t i = 0; i < count; ++i) {
        const double value = double(T(Unsigned(i)));
        direct[i] = colouring.markSaturated && isSaturated(value, full) ? PictureColours::kSaturated
                                                                        : scale.colour(value);
    }
    for (quint32 y = 0; y < picBuf.height; ++y) {
        const T* sample = reinterpret_cast<const T*>(picBuf.row(y)) + channel;
        QRgb* target = reinterpret_cast<QRgb*>(image.scanLine(int(y)));
        for (quint32 x = 0; x < picBuf.width; ++x, sample += picBuf.channels) {
            target[x] = direct[Unsigned(*sample)];
        }
    }
}

template <class T>
void colourLarge(const SkPicBuf& picBuf, quint32 channel, const SkColouring& colouring, QImage& image) {
    const CkColourScale scale(colouring);
    const SkDisplayWindow full = PictureColours::fullRange(picBuf);
    const bool mark = colouring.markSaturated && std::is_integral_v<T>;
    for (quint32 y = 0; y < picBuf.height; ++y) {
        const T* sample = reinterpret_cast<const T*>(picBuf.row(y)) + channel;
        QRgb* target = reinterpret_cast<QRgb*>(image.scanLine(int(y)));
        for (quint32 x = 0; x < picBuf.width; ++x, sample += picBuf.channels) {
            const double value = double(*sample);
            if (!std::isfinite(value)) {
                target[x] = PictureColours::kInvalid;
            } else if (mark && isSaturated(value, full)) {
                target[x] = PictureColours::kSaturated;
            } else {
                target[x] = scale.colour(value);
            }
        }
    }
}

bool isReadable(const SkPicBuf& picBuf) {
    constexpr quint32 longest = quint32(std::numeric_limits<int>::max()) / 4;
    return picBuf.data != nullptr && CkPicBufAPI::isValid(picBuf) && picBuf.width <= longest &&
           picBuf.height <= longest;
}

bool prepareImage(const SkPicBuf& picBuf, QImage& image) {
    const QSize size(int(picBuf.width), int(picBuf.height));
    if (image.size() != size || image.format() != QImage::Format_RGB32) {
        QImage fresh(size, QImage::Format_RGB32);
        if (fresh.isNull()) {
            return false;
        }
        image = std::move(fresh);
    }
    return true;
}

} // namespace

SkDisplayWindow PictureColours::fullRange(const SkPicBufInfo& info) {
    if (isFloatType(info.dataType)) {
        return {0.0, 1.0};
    }
    const quint32 sampleBits = 8 * sampleBytes(info.dataType);
    const quint32 bits =
        info.bitsPerChannel == 0 || info.bitsPerChannel > sampleBits ? sampleBits : info.bitsPerChannel;
    if (isSignedIntegerType(info.dataType)) {
        const double half = std::ldexp(1.0, int(bits) - 1);
        return {-half, half - 1.0};
    }
    return {0.0, std::ldexp(1.0, int(bits)) - 1.0};
}

QList<QRgb> PictureColours::colours(const CkLut& lut) {
    // A table for bytes without contrast entries is the bare map.
    CkLut bare(8, 1, false, EkImageDataType::UInt8);
    bare.setPseudoColorIndex(lut.pseudoColorIndex());
    QList<QRgb> result;
    if (!bare.allocRgbTable(0)) {
        return result;
    }
    const double gamma = gammaOf(lut);
    const double last = double(bare.rgbTableEntries()) - 1.0;
    result.reserve(kColours);
    for (int i = 0; i < kColours; ++i) {
        const double part = double(i) / (kColours - 1);
        const double warped = gamma > 0.0 && std::isfinite(gamma) ? std::pow(part, gamma) : part;
        const quint8* entry = bare.rgbTable() + size_t(std::lround(warped * last)) * 4;
        result.append(qRgb(entry[2], entry[1], entry[0]));
    }
    return result;
}

double PictureColours::gammaOf(const CkLut& lut) {
    return lut.contrastEntries().isEmpty() ? 1.0 : lut.contrastEntries().first().gamma;
}

bool PictureColours::setGamma(CkLut& lut, double fGamma) {
    if (!std::isfinite(fGamma) || fGamma <= 0.0) {
        return false;
    }
    if (lut.contrastEntries().isEmpty()) {
        CkLut::CkCompContrast whole;
        const quint32 bits = lut.bitsPerChannel();
        whole.inHigh = bits >= 32 ? std::numeric_limits<quint32>::max() : (1U << bits) - 1U;
        lut.contrastEntries().append(whole);
    }
    lut.contrastEntries().first().gamma = fGamma;
    return true;
}

bool PictureColours::colourChannel(const SkPicBuf& picBuf, quint32 uiChannel, const SkColouring& colouring,
                                   QImage& image) {
    if (!isReadable(picBuf) || uiChannel >= picBuf.channels || colouring.colours.size() < 2) {
        return false;
    }
    return visitSamples(picBuf.dataType, [&](auto type) {
        using T = decltype(type);
        if (!prepareImage(picBuf, image)) {
            return false;
        }
        if constexpr (std::is_integral_v<T> && sizeof(T) <= 2) {
            colourSmall<T>(picBuf, uiChannel, colouring, image);
        } else {
            colourLarge<T>(picBuf, uiChannel, colouring, image);
        }
        return true;
    });
}

bool PictureColours::isColourPicture(const SkPicBufInfo& info) {
    return info.dataType == EkImageDataType::UInt8 && (info.channels == 3 || info.channels == 4) &&
           info.colorFilterArray == EkColorFilterArray::None;
}

bool PictureColours::copyColours(const SkPicBuf& picBuf, QImage& image) {
    if (!isColourPicture(picBuf) || !isReadable(picBuf) || !prepareImage(picBuf, image)) {
        return false;
    }
    for (quint32 y = 0; y < picBuf.height; ++y) {
        const quint8* sample = picBuf.row(y);
        QRgb* target = reinterpret_cast<QRgb*>(image.scanLine(int(y)));
        for (quint32 x = 0; x < picBuf.width; ++x, sample += picBuf.channels) {
            target[x] = qRgb(sample[2], sample[1], sample[0]);
        }
    }
    return true;
}

double PictureColours::sampleValue(const SkPicBuf& picBuf, quint32 uiX, quint32 uiY, quint32 uiChannel) {
    double value = std::numeric_limits<double>::quiet_NaN();
    if (!isReadable(picBuf) || uiX >= picBuf.width || uiY >= picBuf.height || uiChannel >= picBuf.channels) {
        return value;
    }
    visitSamples(picBuf.dataType, [&](auto type) {
        using T = decltype(type);
        value =
            double(reinterpret_cast<const T*>(picBuf.row(uiY))[size_t(uiX) * picBuf.channels + uiChannel]);
        return true;
    });
    return value;
}
