#include "plugins/zplToF/transform/ToFAngles.h"

#include "zuCore/ToFVocabulary.h"

#include <algorithm>

namespace {

const char* const kNeedsTwo =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "2 phases processing requires phases with 0 and 90 deg.");
const char* const kNeedsFour =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "4 phases processing requires phases with 0, 90, 180 and 270 deg.");
const char* const kNeedsEight =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl",
                      "8 phases processing requires phases with 0, 45, 90, 135, 180, 225, 270 and 315 deg.");
const char* const kNeedsSupportedCount =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "ToF processing requires 2, 4 or 8 phases.");

} // namespace

std::optional<qint32> ToFAngles::firstMissing(const CkToFPicAPI::AngleList& angles) {
    const auto count = qint64(angles.size());
    if (count == 1 || !ToFPhases::isSupportedCount(count)) {
        return std::nullopt;
    }
    for (qint32 i = 0; i < count; ++i) {
        const qint32 angle = i * ToFPhases::nominalStep(count);
        if (std::find(angles.begin(), angles.end(), angle) == angles.end()) {
            return angle;
        }
    }
    return std::nullopt;
}

const char* ToFAngles::whyIncomplete(const CkToFPicAPI::AngleList& angles) {
    const auto count = qint64(angles.size());
    if (!ToFPhases::isSupportedCount(count)) {
        return kNeedsSupportedCount;
    }
    if (!firstMissing(angles)) {
        return nullptr;
    }
    return count == 2 ? kNeedsTwo : count == 4 ? kNeedsFour : kNeedsEight;
}
