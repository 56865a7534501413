#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

/// Pictures as files, as they were measured rather than as they look. Stateless; any thread. Every function
/// answers whether the file was written; if not, sError says why, and a file of that name is as it was.
namespace PictureFile {

/// How a channel is written into 16 bits: stored = round(value * factor + offset), limited to 0..65535;
/// values that are not finite become 0.
struct SkScale {
    double factor = 1.0;
    double offset = 0.0;
};
/// Whole numbers stay as they are (signed ones plus 32768), metres become millimetres, a phase shift gets
/// 65536 for a full turn, other floats thousandths.
SkScale scale16(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);
/// The same in words for people: "1 step = 0.001 m".
QString scaleText(const SkPicBufInfo& info, const CkImageMetadata& metadata, quint32 uiChannel);

/// One channel as a grey PNG of 16 bits, with its scale as the text "Description".
bool savePng16(const SkPicBuf& picBuf, const CkImageMetadata& metadata, quint32 uiChannel,
               const QString& sFileName, QString& sError);

/// One channel, or all of them interleaved (iChannel -1), as a TIFF of floats: 32 bits where these hold
/// every sample exactly, else 64. The metadata travel along as the page's description.
bool saveFloatTiff(const SkPicBuf& picBuf, const CkImageMetadata& metadata, int iChannel,
                   const QString& sFileName, QString& sError);

} // namespace PictureFile
