#pragma once

#include <QtGlobal>

namespace ToFTransform {

/// What the processing block turns a frame into. The numbers are stored in chain files, which may hold any
/// other number as well: it yields no output.
enum EkTransformType : qint32 {
    SetABPhase = 0,   ///< re-labels as two-tap picture, pixels unchanged
    Intensity = 1,    ///< ambient light
    Amplitude = 2,    ///< reflected light
    Depth = 3,        ///< phase shift or depth, with confidence
    ConcatPhases = 4, ///< gathers phases or sections that arrive as separate images
    AandBtoAminB = 5, ///< two taps to their signed difference
    SetHybrid = 6     ///< re-labels as hybrid picture
};

} // namespace ToFTransform
