#pragma once

#include "zuCore/SkPicBuf.h"

/// Checks that must pass before a row of a picture may be touched. Any thread; nothing is written.
namespace ToFPicGuard {

/// Data, sizes above 0, and rows that hold their pixels inside the address space.
bool isUsable(const SkPicBuf& picture);

/// A readable source, and a writable result of the given type and channels that is no wider than the source
/// and shares no memory with it.
bool isPair(const SkPicBuf& source, const SkPicBuf& result, EkImageDataType resultType,
            quint32 resultChannels);

} // namespace ToFPicGuard
