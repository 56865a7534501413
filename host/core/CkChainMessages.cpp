#include "host/core/CkChainMessages.h"

#include "host/core/CkRenegotiationThrottle.h"
#include "host/core/guardedCall.h"
#include "zuCore/CkChainable.h"

namespace {

constexpr quint64 kCalmFrames = 30; // one second at a typical frame rate

} // namespace

CkChainMessages::CkHold::CkHold(const std::vector<SkChainNode*>& nodes) : m_nodes(nodes) {
    for (const SkChainNode* node : m_nodes) {
        node->block->holdMessages();
    }
}

CkChainMessages::CkHold::~CkHold() {
    for (const SkChainNode* node : m_nodes) {
        guardedCall([node] { node->block->tellMessages(); });
    }
}

void CkChainMessages::show(SkChainNode& node) {
    guardedCall(
        [&node] { node.block->setChainMessage(node.troubleFrame == 0 ? node.setUpText : node.troubleText); });
}

void CkChainMessages::showSetUpError(SkChainNode& node, const QString& sText) {
    node.setUpText = sText;
    show(node);
}

void CkChainMessages::showTrouble(SkChainNode& node, const QString& sText) const {
    if (node.troubleFrame == 0) {
        node.troubleText = sText;
    }
    if (node.troubleText == sText) {
        node.troubleFrame = m_throttle.frame();
        show(node);
    }
}

void CkChainMessages::endTrouble(SkChainNode& node) const {
    if (node.troubleFrame != 0 && m_throttle.frame() > node.troubleFrame + kCalmFrames) {
        node.troubleFrame = 0;
        show(node);
    }
}
