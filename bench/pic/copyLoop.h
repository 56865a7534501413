#pragma once

#include "zuCore/SkPicBuf.h"

/// Reads every byte of the source's pixels and writes every byte of the result's, and nothing else: what
/// memory allows an operation at best. The value depends on everything read.
quint64 copyLoop(const SkPicBuf& source, SkPicBuf& result);
