#include "host/core/SkChainNode.h"

#include "zuCore/CkImageSource.h"

SkChainNode::SkChainNode(CkChainable* pBlock, quint64 uiSerial)
    : block(pBlock), provider(qobject_cast<CkImageProvider*>(pBlock)),
      source(qobject_cast<CkImageSource*>(pBlock)), serial(uiSerial) {}
