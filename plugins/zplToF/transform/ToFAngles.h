#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"

namespace ToFAngles {

/// Why the angles of a set, in degrees, are none that phases can be processed from: the untranslated text
/// (context CkToFProcessCnbl). Null when they are: of 2, 4 or 8 phases the nominal ones in any order, or a
/// single angle.
const char* whyIncomplete(const CkToFPicAPI::AngleList& angles);

} // namespace ToFAngles
