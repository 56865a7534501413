// What a chain says of its blocks.

#include "host/core/CkChainMessages.h"

#include "host/core/guarded.h"
#include "zuCore/CkChainable.h"

namespace {

constexpr quint64 calmFrames = 30;

} // namespace

CkChain::CkPrivate::CkHeldMessages::CkHeldMessages(const std::vector<SkChainNode*>& nodes) : m_nodes(nodes) {
    for (const SkChainNode* node : m_nodes) {
        node->block->holdMessages();
    }
}

CkChain::CkPrivate::CkHeldMessages::~CkHeldMessages() {
    for (const SkChainNode* node : m_nodes) {
        guarded(false, [node] {
            node->block->tellMessages();
            return true;
        });
    }
}

void CkChain::CkPrivate::showChainText(SkChainNode& node) {
    guarded(false, [&node] {
        node.block->setChainMessage(node.troubleFrame == 0 ? node.setUpText : node.troubleText);
        return true;
    });
}

void CkChain::CkPrivate::showSetUpError(SkChainNode& node, const QString& sText) {
    node.setUpText = sText;
    showChainText(node);
}

void CkChain::CkPrivate::showTrouble(SkChainNode& node, const QString& sText) const {
    if (node.troubleFrame == 0) {
        node.troubleText = sText;
    }
    if (node.troubleText == sText) {
        node.troubleFrame = m_throttle.frame();
        showChainText(node);
    }
}

void CkChain::CkPrivate::endTrouble(SkChainNode& node) const {
    if (node.troubleFrame != 0 && m_throttle.frame() > node.troubleFrame + calmFrames) {
        node.troubleFrame = 0;
        showChainText(node);
    }
}
