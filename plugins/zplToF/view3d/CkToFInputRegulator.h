#pragma once

#include "plugins/zplToF/cloud/SkToFOpticalPath.h"

#include <QtGlobal>

/// Limits how often frames are shown. A frame that comes too early is dropped, never kept for later.
namespace CkToFInputRegulator {

/// iElapsedMs: whole milliseconds since the last frame that was shown; negative when there was none. A limit
/// that is not a number above 0 limits nothing.
inline bool drops(bool bRegulate, float fMaxFps, qint64 iElapsedMs) {
    return bRegulate && float_is_positive(fMaxFps) && iElapsedMs > 0 &&
           1000.0 / double(fMaxFps) > double(iElapsedMs);
}

} // namespace CkToFInputRegulator
