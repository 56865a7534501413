#include "plugins/zplToF/integration/CkToFChainStart.h"

#include "zuCore/CkChain.h"

CkToFChainStart::CkToFChainStart() = default;

CkToFChainStart::~CkToFChainStart() {
    now();
}

void CkToFChainStart::later(CkChain* pChain) {
    m_pending = pChain;
}

void CkToFChainStart::now() {
    CkChain* const chain = m_pending;
    m_pending.clear();
    if (chain != nullptr && chain->stopped()) {
        chain->start();
    }
}
