#include "plugins/zplToF/transform/ToFAngles.h"

#include <algorithm>
#include <span>

namespace {

const char* const wantsTwo =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "2 phases processing requires phases with 0 and 90 deg.");
const char* const wantsFour =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "4 phases processing requires phases with 0, 90, 180 and 270 deg.");
const char* const wantsEight =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                      "8 phases processing requires phases with 0, 45, 90, 135, 180, 225, 270 and 315 deg.");
const char* const wantsAnyOfThese =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "ToF processing requires 2, 4 or 8 phases.");

/// Whether every angle of a nominal order is in the list where it will be looked up.
bool holdsAngles(const CkToFPicAPI::AngleList& angles, std::span<const qint32> nominal) {
    for (quint32 i = 0; i < nominal.size(); ++i) {
        if (angles[CkToFPicAPI::findAngleIdx(i, nominal[i], &angles)] != nominal[i]) {
            return false;
        }
    }
    return true;
}

} // namespace

const char* ToFAngles::whyIncomplete(const CkToFPicAPI::AngleList& angles) {
    static constexpr qint32 nominal2[] = {0, 90};
    static constexpr qint32 nominal4[] = {0, 90, 180, 270};
    static constexpr qint32 nominal8[] = {0, 45, 90, 135, 180, 225, 270, 315};
    switch (angles.size()) {
    case 1:
        return nullptr;
    case 2:
        return holdsAngles(angles, nominal2) ? nullptr : wantsTwo;
    case 4:
        return holdsAngles(angles, nominal4) ? nullptr : wantsFour;
    case 8:
        return holdsAngles(angles, nominal8) ? nullptr : wantsEight;
    default:
        return wantsAnyOfThese;
    }
}
