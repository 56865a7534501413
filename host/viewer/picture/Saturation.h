#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

class CkChainable;

/// Whether a picture shows which of its pixels were saturated. Stateless; any thread.
namespace Saturation {

enum class EkEvidence : int {
    Samples,    ///< yes: samples at the end of their range are saturated
    Difference, ///< A minus B: two saturated taps cancel out
    Floats,     ///< floats have no end of their range
    Computed,   ///< computed from other pictures, which show it
};

/// Of a picture that pBlock delivered; null: no block did.
EkEvidence evidence(const SkPicBufInfo& info, const CkImageMetadata& metadata, const CkChainable* pBlock);

/// Why the picture does not show it, for the user. Empty when it does.
QString reason(EkEvidence evidence);

/// The only source of a block's frames; null when there are several, and outside a chain.
CkChainable* soleSource(const CkChainable* pBlock);

/// The smallest saturated sample of an unsigned integer picture.
quint64 fullScale(const SkPicBufInfo& info);

} // namespace Saturation
