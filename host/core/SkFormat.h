#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

class CkImageData;

/// A picture format as it is negotiated between blocks.
struct SkFormat {
    bool known = false;
    SkPicBufInfo info;
    CkImageMetadata metadata;

    static SkFormat of(const CkImageData& frame);
};

/// How much two formats differ, in ascending order.
enum class EkFormatChange : int {
    None,    ///< blocks treat both alike
    Values,  ///< only metadata values; buffers can be reused
    Sets,    ///< how pictures make up a set, or what kind of picture they are
    Pictures ///< size or layout, or one of them is not known
};

/// Ignores fields that change from frame to frame or only describe how a picture was allocated.
EkFormatChange formatChange(const SkFormat& a, const SkFormat& b);
