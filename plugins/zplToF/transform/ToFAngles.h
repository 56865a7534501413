#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"

namespace ToFAngles {

/// Why phases of these angles, in degrees, cannot be processed: the untranslated text (context
/// CkToFProcessCnbl). Null when they can: 2, 4 or 8 phases of the nominal angles in any order, or a single
/// angle.
const char* whyIncomplete(const CkToFPicAPI::AngleList& angles);

} // namespace ToFAngles
