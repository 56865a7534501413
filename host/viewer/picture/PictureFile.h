#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

/// Writes pictures to files with the measured values, not with the colours on the screen. Stateless; any
/// thread. Every function returns whether the file was written; if not, sError holds the reason, and an
/// existing file of that name is unchanged.
namespace PictureFile {

/// How a channel is written into 16 bits: stored = round(value * factor + offset), limited to 0..65535;
/// values that are not finite become 0.
struct SkScale {
    double factor = 1.0;
    double offset = 0.0;
};
/// Integers are stored unchanged (signed ones plus 32768), metres as millimetres, a phase shift with 65536
/// for a full turn, other floats as thousandths.
SkScale scale16(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);
/// The same in words, for the user: "1 step = 0.001 m".
QString scaleText(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);

/// One channel as a grey PNG of 16 bits, with its scale as the text "Description".
bool savePng16(const SkPicBuf& picBuf, const CkImageMetadata& metadata, quint32 uiChannel,
               const QString& sFileName, QString& sError);

/// One channel, or all of them interleaved (iChannel -1), as a TIFF of floats: 32 bits where these hold
/// every sample exactly, else 64. The page's description holds the metadata.
bool saveFloatTiff(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iChannel,
                   const QString& sFileName, QString& sError);

} // namespace PictureFile
