#include "host/core/CkChainMessages.h"

#include "host/core/CkRenegotiationThrottle.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkChainable.h"

namespace {

constexpr quint64 kProblemFreeFrames = 30; // one second at 30 frames per second

} // namespace

CkChainMessages::CkHold::CkHold(const std::vector<SkChainNode*>& nodes) : m_nodes(nodes) {
    for (const SkChainNode* node : m_nodes) {
        node->block->holdMessages();
    }
}

CkChainMessages::CkHold::~CkHold() {
    for (const SkChainNode* node : m_nodes) {
        guardedCall([node] { node->block->releaseMessages(); });
    }
}

void CkChainMessages::show(SkChainNode& node) {
    guardedCall(
        [&node] { node.block->setChainMessage(node.problemFrame == 0 ? node.setUpText : node.problemText); });
}

void CkChainMessages::showSetUpError(SkChainNode& node, const QString& sText) {
    node.setUpText = sText;
    show(node);
}

void CkChainMessages::showProblem(SkChainNode& node, const QString& sText) const {
    if (node.problemFrame == 0) {
        node.problemText = sText;
    }
    if (node.problemText == sText) {
        node.problemFrame = m_throttle.frame();
        show(node);
    }
}

void CkChainMessages::clearExpiredProblem(SkChainNode& node) const {
    if (node.problemFrame != 0 && m_throttle.frame() > node.problemFrame + kProblemFreeFrames) {
        node.problemFrame = 0;
        show(node);
    }
}
