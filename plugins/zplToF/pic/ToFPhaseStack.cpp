#include "plugins/zplToF/pic/ToFPhaseStack.h"

#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <iterator>

quint32 ToFPhaseStack::indexOfAngle(quint32 nominalIndex, qint32 angle, const AngleList* angles) {
    if (angles == nullptr || angles->empty()) {
        return nominalIndex;
    }
    const auto found = std::find(angles->begin(), angles->end(), angle);
    return found == angles->end() ? nominalIndex : quint32(std::distance(angles->begin(), found));
}

bool ToFPhaseStack::holds(const SkPicBuf& source, const SkPicBuf& result, quint64 subImages) {
    return subImages <= source.height / result.height;
}

bool ToFPhaseStack::locate(const SkPicBuf& source, const SkPicBuf& result, int phases,
                           const AngleList* angles, std::array<quint32, 8>& firstRows) {
    if (!holds(source, result, quint64(phases))) {
        return false;
    }
    for (quint32 phase = 0; phase < quint32(phases); ++phase) {
        const qint32 angle = qint32(phase) * ToFPhases::nominalStep(phases);
        const quint32 subImage = indexOfAngle(phase, angle, angles);
        if (!holds(source, result, quint64(subImage) + 1)) {
            return false;
        }
        firstRows[phase] = subImage * result.height;
    }
    return true;
}
