#pragma once

#include "zuCore/SkPicBuf.h"

/// Conversion of pictures to another format or size. Documented in CkPicBufAPI.h.
namespace PictureConversion {

/// CkPicBufAPI::ConvertToGrey
bool toGrey(const SkPicBuf& source, SkPicBuf& target);
/// CkPicBufAPI::ResizePic
bool resize(const SkPicBuf& source, SkPicBuf& target, quint32 uiWidth, quint32 uiHeight);
/// CkPicBufAPI::ConvertPicToDifBpc
bool changeBitDepth(const SkPicBuf& source, SkPicBuf& target, bool bRound);

} // namespace PictureConversion
