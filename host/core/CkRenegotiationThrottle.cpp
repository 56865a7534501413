#include "CkRenegotiationThrottle.h"

#include <algorithm>

namespace {

constexpr quint32 mostDoublings = 6;
constexpr quint64 calmFrames = 1U << mostDoublings;

} // namespace

void CkRenegotiationThrottle::reset() {
    *this = CkRenegotiationThrottle();
}

void CkRenegotiationThrottle::served(EkFormatChange change) {
    const bool useful = change >= EkFormatChange::Sets;
    if (useful || m_uiFrame > m_uiNextWish + calmFrames) {
        m_uiDoublings = 0;
    }
    m_uiDoublings = std::min(m_uiDoublings + 1, mostDoublings);
    m_uiNextWish = m_uiFrame + (quint64(1) << m_uiDoublings);
}
