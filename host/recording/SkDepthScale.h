#pragma once

#include "zuCore/SkPicBuf.h"

#include <memory>

class CkImageData;
struct CkImageMetadata;

/// Converts the samples of a foreign picture to depths.
struct SkDepthScale {
    double metresPerCount = 0.0; ///< 0: samples are not scaled
    bool zeroIsInvalid = true;   ///< a sample of 0 means "not measured" and becomes NaN

    bool operator==(const SkDepthScale&) const = default;

    bool isActive() const { return metresPerCount > 0.0; }

    /// Whether pictures of this format can be scaled: one channel of a known sample type.
    static bool fits(const SkPicBufInfo& info);

    /// The format of the scaled picture: one float channel, "Depth".
    static SkPicBufInfo scaledInfo(const SkPicBufInfo& info);
    static CkImageMetadata scaledMetadata(const CkImageMetadata& metadata);

    /// The picture in metres, channel "Depth", owned by the caller; everything else is unchanged. Null when
    /// the format cannot be scaled or memory allocation fails.
    std::unique_ptr<CkImageData> scaled(const CkImageData& frame) const;
};
