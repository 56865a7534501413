#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

class CkImageData;

/// A picture format as it is negotiated between blocks.
struct SkFormat {
    bool known = false; ///< false: the other members are meaningless
    SkPicBufInfo info;
    CkImageMetadata metadata;

    static SkFormat of(const CkImageData& frame);
};

/// How much two formats differ, in ascending order.
enum class EkFormatChange : int {
    None,    ///< blocks treat both alike
    Values,  ///< only metadata values; buffers can be reused
    Sets,    ///< the composition of a set, or the kind of raw picture
    Pictures ///< size or layout, or only one of the formats is known
};

/// Ignores fields that change from frame to frame or only describe how a picture was allocated.
EkFormatChange formatChange(const SkFormat& a, const SkFormat& b);
