#pragma once

#include "zuCore/SkPicBuf.h"

/// Copies of pixels without interpretation of their samples. Documented in CkPicBufAPI.h.
namespace PictureCopy {

/// A rectangle and its position in both pictures, in pixels.
struct SkRectCopy {
    quint32 sourceX = 0;
    quint32 sourceY = 0;
    quint32 targetX = 0;
    quint32 targetY = 0;
    quint32 width = 0;
    quint32 height = 0;
};

/// CkPicBufAPI::CopyPicBuf
bool copy(const SkPicBuf& source, SkPicBuf& target);
/// CkPicBufAPI::CopyRect
bool copyRect(const SkPicBuf& source, SkPicBuf& target, const SkRectCopy& rect);
/// CkPicBufAPI::ExtractChannel
bool extractChannel(const SkPicBuf& source, SkPicBuf& target, quint32 uiChannel);

} // namespace PictureCopy
