#include "plugins/zplToF/transform/ToFAngles.h"

#include "zuCore/ToFVocabulary.h"

#include <algorithm>

namespace {

const char* const kWantsTwo =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "2 phases processing requires phases with 0 and 90 deg.");
const char* const kWantsFour =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "4 phases processing requires phases with 0, 90, 180 and 270 deg.");
const char* const kWantsEight =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                      "8 phases processing requires phases with 0, 45, 90, 135, 180, 225, 270 and 315 deg.");
const char* const kWantsAnyOfThese =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "ToF processing requires 2, 4 or 8 phases.");

/// Whether all nominal angles are in the list.
bool holdsAngles(const CkToFPicAPI::AngleList& angles) {
    const qint32 step = ToFPhases::nominalStep(qint64(angles.size()));
    for (qint32 i = 0; i < qint32(angles.size()); ++i) {
        if (std::find(angles.begin(), angles.end(), i * step) == angles.end()) {
            return false;
        }
    }
    return true;
}

} // namespace

const char* ToFAngles::whyIncomplete(const CkToFPicAPI::AngleList& angles) {
    switch (angles.size()) {
    case 1:
        return nullptr;
    case 2:
        return holdsAngles(angles) ? nullptr : kWantsTwo;
    case 4:
        return holdsAngles(angles) ? nullptr : kWantsFour;
    case 8:
        return holdsAngles(angles) ? nullptr : kWantsEight;
    default:
        return kWantsAnyOfThese;
    }
}
