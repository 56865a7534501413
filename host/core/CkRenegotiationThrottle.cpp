#include "host/core/CkRenegotiationThrottle.h"

#include <algorithm>

namespace {

constexpr quint32 mostDoublingsOfBlocks = 6;
constexpr quint32 mostDoublings = 62;
constexpr quint64 calmFrames = 64;

} // namespace

void CkRenegotiationThrottle::reset() {
    *this = CkRenegotiationThrottle();
}

void CkRenegotiationThrottle::served(EkWish wish, EkFormatChange change) {
    SkWishes& served = wish == EkWish::Block ? m_block : m_values;
    if (change >= EkFormatChange::Sets || m_uiFrame > served.uiNext + calmFrames) {
        served.uiDoublings = 0;
    }
    const quint32 most = wish == EkWish::Block ? mostDoublingsOfBlocks : mostDoublings;
    served.uiDoublings = std::min(served.uiDoublings + 1, most);
    served.uiNext = m_uiFrame + (quint64(1) << served.uiDoublings);
}
