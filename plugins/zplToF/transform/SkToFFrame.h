#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"

/// A frame in a transform.
struct SkToFFrame {
    const SkPicBuf& frame;           ///< as it arrived, minus the reference section if there is one
    const SkPicBuf* input = nullptr; ///< the gathered set, or the frame; null while a set is incomplete
    bool gathered = false;           ///< the frame belongs to a set that is gathered
    bool hybrid = false;
    quint32 phases = 1;                             ///< phases stacked in the input
    const CkToFPicAPI::AngleList* angles = nullptr; ///< of a gathered set; null for a frame by itself
    float pulseDuration = 0.0F;                     ///< seconds
};
