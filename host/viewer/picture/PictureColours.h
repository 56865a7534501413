#pragma once

#include "zuCore/SkPicBuf.h"

#include <QImage>
#include <QList>

class CkLut;

/// The values that are shown with the first and the last colour. In the units of the samples.
struct SkDisplayWindow {
    double low = 0.0;
    double high = 1.0;

    bool operator==(const SkDisplayWindow&) const = default;
};

/// Turns pictures into images for the screen. Stateless; any thread.
namespace PictureColours {

inline constexpr QRgb kSaturated = 0xffff0000U;
inline constexpr QRgb kInvalid = 0xff000000U;
inline constexpr int kColours = 1024;

/// Every value an integer picture can hold by its significant bits; 0 to 1 for floats.
SkDisplayWindow fullRange(const SkPicBufInfo& info);

/// The table's map, warped by its gamma; kColours entries from the lowest to the highest value.
QList<QRgb> colours(const CkLut& lut);

/// Colours one channel: the window is spread over the colours, values that are not finite become
/// black, and with bSaturation integer samples at the end of their range become red. The image is made
/// anew when its size differs. False, with the image untouched, for pictures that cannot be read, an
/// unknown channel or fewer than two colours.
bool colourChannel(const SkPicBuf& picBuf, quint32 uiChannel, const QList<QRgb>& colours,
                   const SkDisplayWindow& window, bool bSaturation, QImage& image);

/// Whether a picture is a colour picture (three or four 8-bit channels blue, green, red).
bool isColourPicture(const SkPicBufInfo& info);
/// Shows a colour picture as it is.
bool copyColours(const SkPicBuf& picBuf, QImage& image);

/// One sample; not a number for what cannot be read.
double sampleValue(const SkPicBuf& picBuf, quint32 uiX, quint32 uiY, quint32 uiChannel);

} // namespace PictureColours
