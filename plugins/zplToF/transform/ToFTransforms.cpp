#include "plugins/zplToF/transform/ToFTransforms.h"

#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "plugins/zplToF/transform/ToFOperations.h"

#include <QtGlobal>

#include <iterator>

namespace {

using namespace ToFTransform;
using EkInput = SkToFTransform::EkInput;

constexpr SkToFTransform kTransforms[ToFTransforms::kCount] = {
    {.type = SetABPhase,
     .title = QLatin1String("SetABPhase"),
     .name = QLatin1String("ab"),
     .choice = "Set metadata as RawX2 phases image with (A and B)",
     .isRawToRaw = true,
     .input = EkInput::Frame,
     .gathers = true,
     .needsAngles = false,
     .negotiate = ToFNegotiation::setABPhase,
     .compute = ToFOperations::setABPhase},
    {.type = Intensity,
     .title = QLatin1String("Intensity"),
     .name = QLatin1String("intensity"),
     .choice = QT_TRANSLATE_NOOP("CkToFProcessWidget", "Intensity [in: RawX2 (A and B), Raw Hybrid ToF]"),
     .isRawToRaw = false,
     .input = EkInput::Phases,
     .gathers = true,
     .needsAngles = false,
     .negotiate = ToFNegotiation::intensity,
     .compute = ToFOperations::intensity},
    {.type = Amplitude,
     .title = QLatin1String("Amplitude"),
     .name = QLatin1String("amplitude"),
     .choice = QT_TRANSLATE_NOOP("CkToFProcessWidget",
                                 "Amplitude [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]"),
     .isRawToRaw = false,
     .input = EkInput::Phases,
     .gathers = true,
     .needsAngles = true,
     .negotiate = ToFNegotiation::amplitude,
     .compute = ToFOperations::amplitude},
    {.type = Depth,
     .title = QLatin1String("Depth"),
     .name = QLatin1String("depth"),
     .choice = QT_TRANSLATE_NOOP(
         "CkToFProcessWidget",
         "Phase shift (depth) and confidence [in: RawX2 (A and B), Raw (A-B), Raw Hybrid ToF]"),
     .isRawToRaw = false,
     .input = EkInput::Phases,
     .gathers = true,
     .needsAngles = true,
     .negotiate = ToFNegotiation::depth,
     .compute = ToFOperations::depth},
    {.type = ConcatPhases,
     .title = QLatin1String("Concat phases"),
     .name = QLatin1String("concat"),
     .choice =
         QT_TRANSLATE_NOOP("CkToFProcessWidget", "Concatenate phases coming as separate images from camera"),
     .isRawToRaw = false,
     .input = EkInput::Set,
     .gathers = true,
     .needsAngles = false,
     .negotiate = ToFNegotiation::concatPhases,
     .compute = ToFOperations::concatPhases},
    {.type = AandBtoAminB,
     .title = QLatin1String("AandBtoAminB"),
     .name = QLatin1String("aminb"),
     .choice = "RawX2 (A and B) to signed Raw (A-B)",
     .isRawToRaw = true,
     .input = EkInput::Frame,
     .gathers = false,
     .needsAngles = false,
     .negotiate = ToFNegotiation::aandBtoAminB,
     .compute = ToFOperations::aandBtoAminB},
    {.type = SetHybrid,
     .title = QLatin1String("SetHybrid"),
     .name = QLatin1String("hybrid"),
     .choice = "Set metadata as Raw Hybrid ToF image",
     .isRawToRaw = true,
     .input = EkInput::Frame,
     .gathers = true,
     .needsAngles = false,
     .negotiate = ToFNegotiation::setHybrid,
     .compute = ToFOperations::setHybrid},
};

constexpr bool isInOrder() {
    for (size_t i = 0; i < std::size(kTransforms); ++i) {
        if (size_t(kTransforms[i].type) != i) {
            return false;
        }
    }
    return true;
}
static_assert(isInOrder(), "The numbers of the transforms are positions in the table.");

} // namespace

std::span<const SkToFTransform> ToFTransforms::all() {
    return kTransforms;
}

const SkToFTransform* ToFTransforms::find(int iTransform) {
    const bool known = iTransform >= 0 && size_t(iTransform) < std::size(kTransforms);
    return known ? &kTransforms[iTransform] : nullptr;
}
