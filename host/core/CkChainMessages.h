#pragma once

#include "host/core/CkChainPrivate.h"

class CkChain::CkPrivate::CkHeldMessages {
public:
    explicit CkHeldMessages(const std::vector<SkChainNode*>& nodes);
    ~CkHeldMessages();
    CkHeldMessages(const CkHeldMessages&) = delete;
    CkHeldMessages& operator=(const CkHeldMessages&) = delete;

private:
    const std::vector<SkChainNode*>& m_nodes;
};
