#pragma once

#include "zuCore/SkPicBuf.h"

#include <array>
#include <vector>

/// Pictures that hold several sub-images of the result's height, one below the other: sub-image i occupies
/// source rows i * height to (i + 1) * height - 1. Stateless; any thread.
namespace ToFPhaseStack {

/// The angle of each sub-image in degrees, in stored order; null or empty: nominal order.
using AngleList = std::vector<qint32>;

/// Position of the first entry equal to the angle; the nominal index without a list or a match.
quint32 indexOfAngle(quint32 nominalIndex, qint32 angle, const AngleList* angles);

/// Whether so many sub-images of the result's height fit into the source. The result is not empty.
bool holds(const SkPicBuf& source, const SkPicBuf& result, quint64 subImages);

/// Start rows of the sub-images of 1 to 8 phases by ascending nominal angle. False when one of them is
/// outside the source.
bool locate(const SkPicBuf& source, const SkPicBuf& result, int phases, const AngleList* angles,
            std::array<quint32, 8>& firstRows);

} // namespace ToFPhaseStack
