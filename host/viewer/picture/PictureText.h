#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QLocale>

/// What the viewer writes about pictures. Stateless; any thread.
namespace PictureText {

/// Name of a channel: what the picture says (well-known names in the user's language), else what its
/// sensor arrangement tells, else a number.
QString channelName(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);

/// Unit of a channel's values: "rad", "m", counts for whole numbers of a sensor, or empty.
QString channelUnit(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);

/// How numbers are written: as the user's language wants it, without marks between thousands.
QLocale locale();

/// A value with as many digits as are worth reading.
QString number(const SkPicBufInfo& info, double fValue);

/// Position and all channels of a pixel; empty outside the picture.
QString pixel(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iX, int iY);

/// Size, channels, bits and kind of samples.
QString format(const SkPicBufInfo& info);

/// A name that the program and its plug-ins give themselves ("Depth", "Grey" ...) in the user's language;
/// any other as it is.
QString translated(const QString& sName);

} // namespace PictureText
