#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

/// Which format a transform makes of a given input. Any thread, no allocation.
namespace ToFNegotiation {

/// Fills the output descriptor and, when pOutMeta is given, its metadata; without pInMeta the metadata
/// start from a default record. Answers null on success, otherwise the untranslated error text
/// (context CkToFProcessCnbl); the output then is a copy of the input. Outputs may be the inputs.
const char* negotiate(int iTransform, const SkPicBufInfo& in, SkPicBufInfo& out,
                      const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta);

} // namespace ToFNegotiation
