#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include <array>

/// What has to hold before a row of a picture may be touched. Any thread; nothing is written.
namespace ToFPicGuard {

/// Data, sizes above 0, and rows that hold their pixels inside the address space.
bool isUsable(const SkPicBuf& picture);

/// A source that can be read and a result of the wanted kind that can be written without touching the
/// source, and that is no wider.
bool isPair(const SkPicBuf& source, const SkPicBuf& result, EkImageDataType resultType,
            quint32 uiResultChannels);

/// Whether uiSubImages of the result's height fit into the source.
bool holdsStack(const SkPicBuf& source, const SkPicBuf& result, quint64 uiSubImages);

/// Start rows of the sub-images of iPhases phases by ascending nominal angle. False when one of them is
/// not inside the source.
bool locatePhases(const SkPicBuf& source, const SkPicBuf& result, int iPhases,
                  const CkToFPicAPI::AngleList* pAngles, std::array<quint32, 8>& firstRows);

} // namespace ToFPicGuard
