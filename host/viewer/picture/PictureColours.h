#pragma once

#include "zuCore/SkPicBuf.h"

#include <QImage>
#include <QList>

class CkLut;

/// The values shown in the first and the last colour. In the units of the samples.
struct SkDisplayWindow {
    double low = 0.0;
    double high = 1.0;

    bool operator==(const SkDisplayWindow&) const = default;
};

/// How the samples of one channel become colours.
struct SkColouring {
    QList<QRgb> colours; ///< at least two, spread over the window
    SkDisplayWindow window;
    bool markSaturated = false; ///< integer samples at the end of their range
};

/// Turns pictures into images for the screen. Stateless; any thread.
namespace PictureColours {

inline constexpr QRgb kSaturated = 0xffff0000U; ///< red
inline constexpr QRgb kInvalid = 0xff000000U;   ///< black
inline constexpr int kColours = 1024;

/// From the smallest to the largest value that the significant bits of an integer picture can hold; 0 to 1
/// for floats.
SkDisplayWindow fullRange(const SkPicBufInfo& info);

/// The table's map, warped by its gamma; kColours entries from the lowest to the highest value.
QList<QRgb> colours(const CkLut& lut);

/// The gamma of a table; 1 for a table without one.
double gammaOf(const CkLut& lut);
/// False, with the table unchanged, for a gamma that is not finite or not above 0.
bool setGamma(CkLut& lut, double fGamma);

/// Colours one channel. Values that are not finite become kInvalid, saturated integer samples kSaturated when
/// they are to be marked. The image is allocated anew when its size differs. False, with the image untouched,
/// for pictures that cannot be read, an unknown channel or fewer than two colours.
bool colourChannel(const SkPicBuf& picBuf, quint32 uiChannel, const SkColouring& colouring, QImage& image);

/// Whether a picture is a colour picture (three or four 8-bit channels blue, green, red).
bool isColourPicture(const SkPicBufInfo& info);
/// Copies a colour picture into an image. False, with the image untouched, for any other picture.
bool copyColours(const SkPicBuf& picBuf, QImage& image);

/// One sample; NaN if it cannot be read.
double sampleValue(const SkPicBuf& picBuf, quint32 uiX, quint32 uiY, quint32 uiChannel);

} // namespace PictureColours
