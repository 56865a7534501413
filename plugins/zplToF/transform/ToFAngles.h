#pragma once

#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include <optional>

/// Checks of the angles of a set. Stateless; any thread.
namespace ToFAngles {

/// Why phases of these angles, in degrees, cannot be processed: the untranslated text (context
/// CkToFProcessCnbl). Null when they can: 2, 4 or 8 phases of the nominal angles in any order, or a single
/// angle.
const char* whyIncomplete(const CkToFPicAPI::AngleList& angles);

/// The first nominal angle that 2, 4 or 8 phases lack, in degrees. Empty when they have all of them, and for
/// any other number of phases.
std::optional<qint32> firstMissing(const CkToFPicAPI::AngleList& angles);

} // namespace ToFAngles
