#include "host/viewer/picture/CkPictureRenderer.h"

#include "host/viewer/picture/PictureText.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Share of the pixels at each end that automatic contrast of integer pictures leaves out: hot and dead
// pixels.
constexpr double kTail = 0.005;

bool sameFormat(const SkPicBufInfo& a, const SkPicBufInfo& b) {
    return a.channels == b.channels && a.bitsPerChannel == b.bitsPerChannel && a.dataType == b.dataType &&
           a.colorFilterArray == b.colorFilterArray;
}

} // namespace

CkPictureRenderer::EkChange CkPictureRenderer::adaptTo(const CkImageData& frame) {
    const SkPicBuf& picture = frame.picBuf();
    if (sameFormat(picture, m_format) && frame.metadata().channelNames == m_channelNames) {
        return EkChange::None;
    }
    const bool otherKind =
        m_format.channels == 0 || isFloatType(picture.dataType) != isFloatType(m_format.dataType);
    m_format = picture;
    m_channelNames = frame.metadata().channelNames;
    m_window = PictureColours::fullRange(picture);
    m_channel = PictureColours::isColourPicture(picture) ? -1 : 0;
    return otherKind ? EkChange::Kind : EkChange::Format;
}

bool CkPictureRenderer::setChannel(int iChannel) {
    const int lowest = PictureColours::isColourPicture(m_format) ? -1 : 0;
    const int channel = std::clamp(iChannel, lowest, std::max(0, int(m_format.channels) - 1));
    const bool other = channel != m_channel;
    m_channel = channel;
    return other;
}

QString CkPictureRenderer::unit() const {
    CkImageMetadata metadata;
    metadata.channelNames = m_channelNames;
    return m_channel < 0 ? QString() : PictureText::channelUnit(m_format, metadata, quint32(m_channel));
}

void CkPictureRenderer::setColours(const CkLut& lut) {
    m_colours = PictureColours::colours(lut);
}

bool CkPictureRenderer::setWindow(const SkDisplayWindow& window) {
    if (!std::isfinite(window.low) || !std::isfinite(window.high)) {
        return false;
    }
    m_window = {std::min(window.low, window.high), std::max(window.low, window.high)};
    return true;
}

SkDisplayWindow CkPictureRenderer::fullRange(const SkPicBufInfo& info) const {
    return isFloatType(info.dataType) ? SkDisplayWindow{m_statistics.minimum, m_statistics.maximum}
                                      : PictureColours::fullRange(info);
}

void CkPictureRenderer::storeWindow(const SkPicBufInfo& info, CkLut& lut) const {
    const SkDisplayWindow full = PictureColours::fullRange(info);
    if (isFloatType(info.dataType) || full.low != 0.0) {
        return;
    }
    if (lut.contrastEntries().isEmpty()) {
        lut.contrastEntries().append(CkLut::CkCompContrast());
    }
    const double last = std::min(full.high, double(std::numeric_limits<quint32>::max()));
    lut.contrastEntries().first().inLow = quint32(std::clamp(m_window.low, 0.0, last));
    lut.contrastEntries().first().inHigh = quint32(std::clamp(m_window.high, 0.0, last));
}

bool CkPictureRenderer::render(const SkPicBuf& picture, const SkContrast& contrast) {
    const quint32 channel = quint32(std::max(m_channel, 0));
    computeStatistics(picture, channel, m_statistics);
    if (contrast.automatic && m_statistics.finite > 0) {
        m_window = isFloatType(picture.dataType)
                       ? SkDisplayWindow{m_statistics.minimum, m_statistics.maximum}
                       : SkDisplayWindow{m_statistics.quantile(kTail), m_statistics.quantile(1.0 - kTail)};
    }
    const bool shown =
        m_channel < 0 ? PictureColours::copyColours(picture, m_image)
                      : PictureColours::colourChannel(picture, channel,
                                                      {m_colours, m_window, contrast.markSaturated}, m_image);
    if (!shown) {
        m_image = QImage();
    }
    return shown;
}
