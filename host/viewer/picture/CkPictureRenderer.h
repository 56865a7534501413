#pragma once

#include "host/viewer/picture/PictureColours.h"
#include "host/viewer/picture/PictureStatistics.h"

#include <QImage>
#include <QList>
#include <QStringList>

class CkImageData;
class CkLut;

/// Turns the frames of one view into the image on the screen: holds the channel, the colours, the contrast
/// window and the statistics of the frame coloured last. Knows no widget; one thread at a time.
class CkPictureRenderer {
public:
    /// How one frame is to be coloured.
    struct SkContrast {
        bool automatic = false;     ///< the window follows the frame
        bool markSaturated = false; ///< samples at the end of their range become red
    };

    /// What a frame with another format or other channel names changed.
    enum class EkChange : int {
        None,
        Format, ///< the window is the full range and the channel the first one, or all for a colour picture
        Kind,   ///< the same; also a change between integers and floats, or the first frame
    };
    EkChange adaptTo(const CkImageData& frame);
    /// Of the frame that was adapted to last; 0 channels before the first.
    const SkPicBufInfo& format() const { return m_format; }

    /// Channel shown; -1: all, as colours.
    int channel() const { return m_channel; }
    /// Clamped to the existing channels. False when the channel stays the same.
    bool setChannel(int iChannel);
    /// Unit of the channel shown, may be empty.
    QString unit() const;

    void setColours(const CkLut& lut);
    /// From the lowest to the highest value.
    const QList<QRgb>& colours() const { return m_colours; }

    /// The values at the ends of the colours, in the unit of the channel.
    const SkDisplayWindow& window() const { return m_window; }
    /// The ends of a reversed window are swapped. False, with the window unchanged, for ends that are not
    /// finite.
    bool setWindow(const SkDisplayWindow& window);
    /// All values that an integer picture can hold, or the value range of the float picture coloured last.
    SkDisplayWindow fullRange(const SkPicBufInfo& info) const;
    /// Writes the window into a table for integer pictures, whose entries are in counts. No-op for other
    /// tables.
    void storeWindow(const SkPicBufInfo& info, CkLut& lut) const;

    /// Colours a picture with its statistics. False, with a null image, for a format that cannot be shown.
    bool render(const SkPicBuf& picture, const SkContrast& contrast);
    /// Null before the first picture.
    const QImage& image() const { return m_image; }
    /// Of the picture coloured last. All zero before the first.
    const SkPictureStatistics& statistics() const { return m_statistics; }

private:
    SkPicBufInfo m_format;
    QStringList m_channelNames;
    QList<QRgb> m_colours;
    SkDisplayWindow m_window;
    SkPictureStatistics m_statistics;
    QImage m_image;
    int m_channel = 0;
};
