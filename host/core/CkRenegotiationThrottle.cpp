#include "host/core/CkRenegotiationThrottle.h"

#include <algorithm>

namespace {

constexpr quint32 kMaximumBlockDoublings = 6;  // 64 frames
constexpr quint32 kMaximumValueDoublings = 62; // longer than any run; more would overflow
constexpr quint64 kCalmFrames = 64; // frames without a request after which the back-off starts over

} // namespace

void CkRenegotiationThrottle::reset() {
    *this = CkRenegotiationThrottle();
}

void CkRenegotiationThrottle::served(EkRequest request, EkFormatChange change) {
    SkBackOff& served = request == EkRequest::Block ? m_block : m_values;
    if (change >= EkFormatChange::Sets || m_frame > served.uiNext + kCalmFrames) {
        served.uiDoublings = 0;
    }
    const quint32 most = request == EkRequest::Block ? kMaximumBlockDoublings : kMaximumValueDoublings;
    served.uiDoublings = std::min(served.uiDoublings + 1, most);
    served.uiNext = m_frame + (quint64(1) << served.uiDoublings);
}
