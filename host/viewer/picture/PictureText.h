#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QLocale>

/// Texts about pictures in the user's language. Stateless; any thread.
namespace PictureText {

/// Name of a channel: from the metadata (well-known names translated), else from the sensor arrangement, else
/// a number.
QString channelName(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);

/// Unit of a channel's values: "rad", "m", counts for integers of a sensor, or empty.
QString channelUnit(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);

/// The user's number format, without group separators.
QLocale locale();

/// A value: floats with five significant digits, integers in full.
QString number(const SkPicBufInfo& info, double fValue);

/// Position and all channels of a pixel; empty outside the picture.
QString pixel(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iX, int iY);

/// Size, channels, bits and kind of samples.
QString format(const SkPicBufInfo& info);

/// Translates the name of a channel or colour map that the program or its plug-ins define ("Depth", "Grey"
/// ...); returns any other name unchanged.
QString translated(const QString& sName);

} // namespace PictureText
