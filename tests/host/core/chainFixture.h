#pragma once

#include "tests/host/core/chainBlocks.h"
#include "zuCore/CkChainManager.h"

#include <gmock/gmock.h>

/// A chain with a source; closed at the end, so that sinks of a test must not be members of derived classes
/// unless they are removed.
class ChainFixture : public testing::Test {
protected:
    ChainFixture() { EXPECT_TRUE(manager->insertAfter(chain, source, nullptr)); }
    ~ChainFixture() override { manager->closeChain(chain); }

    /// A block after another one, as a branch.
    template <class Block>
    Block* branch(Block* block, CkChainable* after) {
        EXPECT_TRUE(manager->branchAfter(chain, block, after));
        return block;
    }

    /// Waits until the queue has space before it pushes, so that no frame is dropped.
    void pushSurely(quint8 value) {
        EXPECT_TRUE(waitUntil([&] { return source->push(value); }));
    }

    CkChainManager* const manager = CkChainManager::instance();
    CkChain* chain = manager->createChain();
    TestSource* const source = new TestSource();
};
