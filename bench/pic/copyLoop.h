#pragma once

#include "zuCore/SkPicBuf.h"

/// Reads all pixels of the source and writes all pixels of the result, nothing else: the memory bound of an
/// operation. The value depends on everything read.
quint64 copyLoop(const SkPicBuf& source, SkPicBuf& result);
