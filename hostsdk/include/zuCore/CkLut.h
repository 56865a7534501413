#pragma once

#include "zuCore/SkPicBuf.h"

#include <QList>
#include <QStringList>
#include <vector>

/// Look-up table that turns sample values into display colours: contrast entries (window and gamma) followed
/// by a pseudo-colour map. Not synchronised; user-interface thread.
class ZUCORE_EXPORT CkLut {
public:
    /// Maps [inLow, inHigh] to [outLow, outHigh] with ((v - inLow) / (inHigh - inLow)) ^ gamma.
    struct CkCompContrast {
        quint32 inLow = 0;     ///< first value of the window
        quint32 inHigh = 255;  ///< last value of the window
        quint32 outLow = 0;    ///< what inLow becomes
        quint32 outHigh = 255; ///< what inHigh becomes
        double gamma = 1.0;    ///< 1 is a straight line

        bool operator==(const CkCompContrast&) const = default;
    };

    /// A table for pictures of uiBits significant bits, uiPixelStep samples from one pixel to the next, a
    /// layout flag and a sample type. Without contrast entries the whole range 0 .. 2^bits - 1 is mapped.
    CkLut(quint32 uiBits, quint32 uiPixelStep, bool bLayoutFlag, EkImageDataType dataType);

    quint32 bitsPerChannel() const { return m_uiBits; }     ///< Significant bits, as constructed.
    quint32 pixelStep() const { return m_uiPixelStep; }     ///< Samples from pixel to pixel.
    bool layoutFlag() const { return m_bLayoutFlag; }       ///< As constructed.
    EkImageDataType dataType() const { return m_dataType; } ///< Of the samples, as constructed.

    /// Number and names of the pseudo-colour maps; 0 is grey.
    static int pseudoColorCount();
    static QStringList pseudoColorNames(); ///< Not translated.

    int pseudoColorIndex() const { return m_iPseudoColorIndex; } ///< 0 is grey.
    /// Indices outside the maps count as 0.
    void setPseudoColorIndex(int iIndex);

    QList<CkCompContrast>& contrastEntries() { return m_contrastEntries; } ///< Only the first one is used.
    /// Empty: the full range.
    const QList<CkCompContrast>& contrastEntries() const { return m_contrastEntries; }

    /// Builds the colour table, 4 bytes per entry in the order blue, green, red, 255. uiBytes is the
    /// requested size; it is rounded to one entry for each of min(2^bits, 65536) values (256 for float).
    /// False when memory allocation fails.
    bool allocRgbTable(size_t uiBytes);
    /// Null before allocRgbTable. Valid until the next change of the table.
    const quint8* rgbTable() const { return m_rgbTable.empty() ? nullptr : m_rgbTable.data(); }
    /// Entries of the table.
    size_t rgbTableEntries() const { return m_rgbTable.size() / 4; }

    /// Colours a one-channel picture (or channel 0) into a picture of 4 unsigned 8-bit channels and the same
    /// size. Float pictures are scaled from their minValue .. maxValue to the contrast window; unless both
    /// are finite and minValue is the smaller one, every value counts as minValue. Values that are not finite
    /// become black. False on other formats or without a table.
    bool applyToPic(const SkPicBuf& source, SkPicBuf& target) const;

    /// This table when the format is the same, otherwise a new one, owned by the caller, with the same map
    /// and with contrast entries scaled to the new range; its RGB table is allocated.
    CkLut* transformToFormat(quint32 uiBits, quint32 uiPixelStep, bool bLayoutFlag, EkImageDataType dataType);

private:
    /// The first contrast entry if it lies inside the value range, otherwise the whole range.
    CkCompContrast activeContrast() const;

    quint32 m_uiBits;
    quint32 m_uiPixelStep;
    bool m_bLayoutFlag;
    EkImageDataType m_dataType;
    int m_iPseudoColorIndex = 0;
    QList<CkCompContrast> m_contrastEntries;
    std::vector<quint8> m_rgbTable;
};
