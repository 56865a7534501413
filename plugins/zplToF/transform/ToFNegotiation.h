#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

/// Which format comes out of a transform for a given input. Any thread, no allocation.
namespace ToFNegotiation {

/// Fills the output descriptor and, when pOutMeta is given, its metadata; without pInMeta the metadata
/// start from a default record. Returns null on success, otherwise the untranslated error text
/// (context CkToFProcessCnbl); the output is then a copy of the input, as for a number that is not a
/// transform. Outputs may be the inputs.
const char* negotiate(int iTransform, const SkPicBufInfo& in, SkPicBufInfo& out,
                      const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta);

/// One negotiation, see the implementation.
struct SkRequest;

// The rules of each transform. Null, or the error text.
const char* setABPhase(const SkRequest& request);
const char* intensity(const SkRequest& request);
const char* amplitude(const SkRequest& request);
const char* depth(const SkRequest& request);
const char* concatPhases(const SkRequest& request);
const char* aandBtoAminB(const SkRequest& request);
const char* setHybrid(const SkRequest& request);

} // namespace ToFNegotiation
