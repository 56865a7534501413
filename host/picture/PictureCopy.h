#pragma once

#include "zuCore/SkPicBuf.h"

/// Copies of pixels that do not look at sample values. Specified in CkPicBufAPI.h.
namespace PictureCopy {

/// CkPicBufAPI::CopyPicBuf
bool copy(const SkPicBuf& source, SkPicBuf& target);
/// CkPicBufAPI::CopyRect
bool copyRect(SkPicBuf& target, quint32 uiTargetX, quint32 uiTargetY, const SkPicBuf& source,
              quint32 uiSourceX, quint32 uiSourceY, quint32 uiWidth, quint32 uiHeight);
/// CkPicBufAPI::ExtractChannel
bool extractChannel(const SkPicBuf& source, SkPicBuf& target, quint32 uiChannel);

} // namespace PictureCopy
