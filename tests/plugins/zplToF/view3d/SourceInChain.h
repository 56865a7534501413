#pragma once

#include "tests/support/PushSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

/// A source of pictures of phase shift and confidence, 640 x 480, in a chain of its own.
struct SourceInChain {
    SourceInChain() {
        block->setFormat(640, 480, 2, EkImageDataType::Float32, 32);
        block->metadata.channelNames = {QStringLiteral("Phase shift"), QStringLiteral("Confidence")};
        EXPECT_TRUE(CkChainManager::instance()->insertAfter(chain, block, nullptr));
    }
    ~SourceInChain() { CkChainManager::instance()->closeChain(chain); }
    SourceInChain(const SourceInChain&) = delete;
    SourceInChain& operator=(const SourceInChain&) = delete;

    CkChain* chain = CkChainManager::instance()->createChain();
    PushSource* block = new PushSource;
};
