#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QCoreApplication>

/// What the viewer writes about pictures. Stateless; any thread.
class CkPictureText {
    Q_DECLARE_TR_FUNCTIONS(CkPictureText)

public:
    /// Name of a channel: what the picture says, else what its sensor arrangement tells, else a number.
    static QString channelName(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);

    /// Unit of a channel's values: "rad", "m" or empty.
    static QString channelUnit(const CkImageMetadata& metadata, quint32 uiChannel);

    /// A value with as many digits as are worth reading.
    static QString number(const SkPicBufInfo& info, double fValue);

    /// Position and all channels of a pixel; empty outside the picture.
    static QString pixel(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iX, int iY);

    /// Size, channels, bits and kind of samples.
    static QString format(const SkPicBufInfo& info);
};
