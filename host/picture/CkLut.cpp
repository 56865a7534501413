#include "zuCore/CkLut.h"

#include "host/picture/pictureChecks.h"
#include "host/picture/pseudoColors.h"
#include "zuCore/SampleVisitor.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace {

constexpr quint32 maximumOfBits(quint32 bits) {
    return bits >= 32 ? std::numeric_limits<quint32>::max() : (1U << bits) - 1U;
}

/// Position 0..255 in the map for a value on the scale of the contrast entry.
size_t mapPosition(const CkLut::CkCompContrast& contrast, double value) {
    const double range = double(contrast.inHigh) - double(contrast.inLow);
    // A window of zero width acts as a threshold.
    double part = range > 0.0 ? (value - contrast.inLow) / range : (value < contrast.inLow ? 0.0 : 1.0);
    part = std::clamp(part, 0.0, 1.0);
    if (contrast.gamma > 0.0 && contrast.gamma != 1.0) {
        part = std::pow(part, contrast.gamma);
    }
    const double position = contrast.outLow + part * (double(contrast.outHigh) - double(contrast.outLow));
    return size_t(std::clamp(position, 0.0, 255.0));
}

quint32 scaled(quint32 value, quint32 fromMaximum, quint32 toMaximum) {
    const quint64 rounded = (quint64(value) * toMaximum + fromMaximum / 2) / fromMaximum;
    return quint32(std::min<quint64>(rounded, toMaximum));
}

} // namespace

CkLut::CkLut(quint32 uiBits, quint32 uiPixelStep, bool bLayoutFlag, EkImageDataType dataType)
    : m_uiBits(std::clamp(uiBits, 1U, 32U)), m_uiPixelStep(uiPixelStep), m_bLayoutFlag(bLayoutFlag),
      m_dataType(dataType) {}

int CkLut::pseudoColorCount() {
    return int(pseudoColorNames().size());
}

QStringList CkLut::pseudoColorNames() {
    static const QStringList kNames = pseudoColorMapNames();
    return kNames;
}

void CkLut::setPseudoColorIndex(int iIndex) {
    m_iPseudoColorIndex = iIndex >= 0 && iIndex < pseudoColorCount() ? iIndex : 0;
}

CkLut::CkCompContrast CkLut::activeContrast() const {
    const quint32 maximum = maximumOfBits(m_uiBits);
    if (!m_contrastEntries.isEmpty() && m_contrastEntries.first().inHigh <= maximum) {
        return m_contrastEntries.first();
    }
    CkCompContrast whole;
    whole.inHigh = maximum;
    return whole;
}

bool CkLut::allocRgbTable(size_t uiBytes) {
    Q_UNUSED(uiBytes) // the format alone determines the size
    const PseudoColorTable colors = pseudoColorMap(m_iPseudoColorIndex);
    // Floats are windowed when they are looked up, so their table is the map itself.
    const bool plainMap = isFloatType(m_dataType);
    const size_t entries = plainMap ? 256 : size_t(std::min(maximumOfBits(m_uiBits), 65535U)) + 1;
    try {
        m_rgbTable.resize(entries * 4);
    } catch (const std::bad_alloc&) {
        m_rgbTable.clear();
        return false;
    }
    const CkCompContrast contrast = activeContrast();
    const double valueStep = double(maximumOfBits(m_uiBits)) / double(entries - 1);
    for (size_t i = 0; i < entries; ++i) {
        const size_t position = plainMap ? i : mapPosition(contrast, double(i) * valueStep);
        std::copy_n(&colors[position * 4], 4, &m_rgbTable[i * 4]);
    }
    return true;
}

bool CkLut::applyToPic(const SkPicBuf& source, SkPicBuf& target) const {
    if (m_rgbTable.empty() || !hasPixels(source) || !hasPixels(target) || !sameSize(source, target) ||
        target.channels != 4 || target.dataType != EkImageDataType::UInt8 || source.dataType != m_dataType ||
        overlap(source, target)) {
        return false;
    }
    const CkCompContrast contrast = activeContrast();
    const double maximum = maximumOfBits(m_uiBits);
    // An infinite window has no relative positions; it is treated like one of zero width.
    const bool bounded = std::isfinite(source.minValue) && std::isfinite(source.maxValue);
    const double span = bounded ? double(source.maxValue) - double(source.minValue) : 0.0;
    const quint64 lastEntry = rgbTableEntries() - 1;
    // Integers of more than 16 bits share entries.
    const double entriesPerValue = double(lastEntry) / maximum;
    return visitSamples(source.dataType, [&]<typename T>(T) {
        static constexpr quint8 kBlack[4] = {0, 0, 0, 255};
        const auto color = [&](T value) -> const quint8* {
            if constexpr (std::is_floating_point_v<T>) {
                if (!std::isfinite(value)) {
                    return kBlack;
                }
                const double onScale =
                    span > 0.0 ? (double(value) - double(source.minValue)) / span * maximum : 0.0;
                return &m_rgbTable[mapPosition(contrast, onScale) * 4];
            } else {
                const quint64 positive = value > T(0) ? quint64(value) : 0;
                const quint64 entry = m_uiBits <= 16 ? positive : quint64(double(positive) * entriesPerValue);
                return &m_rgbTable[size_t(std::min(entry, lastEntry)) * 4];
            }
        };
        for (quint32 y = 0; y < source.height; ++y) {
            const quint8* const from = source.row(y);
            quint8* const to = target.row(y);
            for (quint32 x = 0; x < source.width; ++x) {
                std::memcpy(to + size_t(x) * 4, color(loadSample<T>(from, size_t(x) * source.channels)), 4);
            }
        }
        return true;
    });
}

CkLut* CkLut::transformToFormat(quint32 uiBits, quint32 uiPixelStep, bool bLayoutFlag,
                                EkImageDataType dataType) {
    const quint32 bits = std::clamp(uiBits, 1U, 32U);
    if (bits == m_uiBits && uiPixelStep == m_uiPixelStep && bLayoutFlag == m_bLayoutFlag &&
        dataType == m_dataType) {
        return this;
    }
    auto* const lut = new CkLut(bits, uiPixelStep, bLayoutFlag, dataType);
    lut->m_iPseudoColorIndex = m_iPseudoColorIndex;
    const quint32 fromMaximum = maximumOfBits(m_uiBits);
    const quint32 toMaximum = maximumOfBits(bits);
    for (CkCompContrast entry : m_contrastEntries) {
        entry.inLow = scaled(entry.inLow, fromMaximum, toMaximum);
        entry.inHigh = scaled(entry.inHigh, fromMaximum, toMaximum);
        lut->m_contrastEntries.append(entry);
    }
    lut->allocRgbTable(0);
    return lut;
}
