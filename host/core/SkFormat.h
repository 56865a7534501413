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

/// How far a format is from another one, the larger the farther.
enum class EkFormatChange : int {
    None,    ///< blocks make the same of both
    Values,  ///< what is told beside the pixels; the same buffers serve
    Sets,    ///< how pictures make up a set, or what kind of picture they are
    Pictures ///< size or layout, or one of them is not known
};

/// Fields that change from frame to frame, or say only how a picture was allocated, do not count.
EkFormatChange formatChange(const SkFormat& a, const SkFormat& b);
