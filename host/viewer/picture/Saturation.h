#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

class CkChainable;

/// Whether pictures tell which of their pixels were saturated. Stateless; any thread.
namespace Saturation {

enum class EkEvidence : int {
    Samples,    ///< those at the end of their range are
    Difference, ///< A minus B: two saturated taps cancel out
    Floats,     ///< there is no end of the range
    Computed,   ///< from other pictures, which tell it
};

/// Of a picture that leaves a block; null for a picture of no block.
EkEvidence evidence(const SkPicBufInfo& info, const CkImageMetadata& metadata, const CkChainable* pBlock);

/// For people: why the picture does not tell. Empty when it does.
QString reason(EkEvidence evidence);

/// The only source that a block's frames come from; null for several and outside a chain.
CkChainable* soleSource(const CkChainable* pBlock);

/// The smallest sample that is saturated, of an unsigned integer picture.
quint64 fullScale(const SkPicBufInfo& info);

} // namespace Saturation
