#include "tests/host/core/chainFixture.h"
#include "zuCore/CkMemoryPool.h"

using testing::ElementsAre;

namespace {

using CkChainManagerTest = ChainFixture;

/// Accepts only the output of an AddBlock.
class SumBlock : public PassBlock {
public:
    bool acceptsDataFrom(CkChainable* pUpstream) override {
        return qobject_cast<AddBlock*>(pUpstream) != nullptr;
    }
};

/// Accepts only sources.
class PickyBlock : public PassBlock {
public:
    bool acceptsDataFrom(CkChainable* pUpstream) override {
        return qobject_cast<CkImageSource*>(pUpstream) != nullptr;
    }
};

} // namespace

TEST_F(CkChainManagerTest, InsertAfterTakesOverBlocksAndSinks) {
    auto* const left = branch(new PassBlock(), source);
    auto* const right = branch(new PassBlock(), source);
    KeepingSink sink;
    chain->addSink(source, &sink);
    int moves = 0;
    int structures = 0;
    QObject::connect(chain, &CkChain::sinksMoved, chain, [&] { ++moves; });
    QObject::connect(chain, &CkChain::structureChanged, chain, [&] { ++structures; });
    auto* const middle = new AddBlock(1);
    ASSERT_TRUE(manager->insertAfter(chain, middle, source));
    EXPECT_EQ(chain->successors(source), QList<CkChainable*>{middle});
    EXPECT_EQ(chain->successors(middle), (QList<CkChainable*>{left, right}));
    EXPECT_EQ(chain->precedessors(right), QList<CkChainable*>{middle});
    EXPECT_EQ(chain->blocks(), (QList<CkChainable*>{source, middle, left, right}));
    EXPECT_EQ(chain->sinkBlock(&sink), middle);
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(structures, 1);
    ASSERT_TRUE(chain->start());
    pushSurely(4);
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    EXPECT_THAT(sink.values(), ElementsAre(5));
    chain->stop();
    chain->removeSink(&sink);
}

TEST_F(CkChainManagerTest, BranchAfterLeavesTheRestAlone) {
    auto* const left = branch(new PassBlock(), source);
    KeepingSink sink;
    chain->addSink(source, &sink);
    auto* const right = branch(new AddBlock(1), source);
    EXPECT_EQ(chain->successors(source), (QList<CkChainable*>{left, right}));
    EXPECT_EQ(chain->sinkBlock(&sink), source);
    chain->removeSink(&sink);
}

TEST_F(CkChainManagerTest, RefusedInsertionsChangeNothing) {
    auto* const picky = branch(new PickyBlock(), source);
    auto* const added = new AddBlock(1);
    TestSource outside;
    EXPECT_FALSE(manager->insertAfter(chain, added, source)) << "the picky block would refuse it";
    EXPECT_FALSE(manager->insertAfter(chain, added, nullptr)) << "no source";
    EXPECT_FALSE(manager->branchAfter(chain, added, nullptr));
    EXPECT_FALSE(manager->insertAfter(chain, added, &outside)) << "in no chain";
    EXPECT_FALSE(manager->insertAfter(nullptr, added, source));
    EXPECT_FALSE(manager->insertAfter(chain, nullptr, source));
    EXPECT_FALSE(manager->insertAfter(chain, picky, source)) << "in a chain already";
    EXPECT_FALSE(manager->branchAfter(chain, &outside, source)) << "a source has no input";
    ASSERT_TRUE(chain->start());
    EXPECT_FALSE(manager->branchAfter(chain, added, source)) << "the chain runs";
    CkChain* same = chain;
    EXPECT_FALSE(manager->remove(same, picky, false));
    EXPECT_EQ(same, chain);
    chain->stop();
    EXPECT_EQ(added->chain(), nullptr);
    EXPECT_EQ(chain->blocks(), (QList<CkChainable*>{source, picky}));
    manager->deleteChainable(added);
}

TEST_F(CkChainManagerTest, RemoveConnectsWhatWasFedToTheFirstPredecessor) {
    auto* const middle = branch(new AddBlock(1), source);
    auto* const left = branch(new PassBlock(), middle);
    auto* const right = branch(new PassBlock(), middle);
    KeepingSink sink;
    chain->addSink(middle, &sink);
    ASSERT_TRUE(manager->remove(chain, middle, true));
    EXPECT_EQ(middle->chain(), nullptr);
    EXPECT_EQ(chain->successors(source), (QList<CkChainable*>{left, right}));
    EXPECT_EQ(chain->sinkBlock(&sink), source);
    EXPECT_FALSE(manager->remove(chain, middle, true)) << "no longer there";
    ASSERT_TRUE(manager->insertAfter(chain, middle, source)) << "and may come back";
    EXPECT_EQ(chain->successors(middle), (QList<CkChainable*>{left, right}));
    chain->removeSink(&sink);
}

TEST_F(CkChainManagerTest, ABlockThatASuccessorCannotDoWithoutStays) {
    auto* const first = branch(new AddBlock(1), source);
    auto* const second = branch(new AddBlock(1), first);
    auto* const sum = branch(new SumBlock(), second);
    EXPECT_TRUE(manager->remove(chain, second, false)) << "its input can come from the first one";
    EXPECT_EQ(chain->precedessors(sum), QList<CkChainable*>{first});
    KeepingSink sink;
    chain->addSink(first, &sink);
    EXPECT_FALSE(manager->remove(chain, first, false)) << "but not from the source";
    EXPECT_EQ(chain->blocks(), (QList<CkChainable*>{source, first, sum}));
    EXPECT_EQ(chain->precedessors(sum), QList<CkChainable*>{first});
    EXPECT_EQ(chain->sinkBlock(&sink), first);
    manager->deleteChainable(first);
    EXPECT_EQ(chain->blocks().size(), 3) << "so it is not deleted either";
    chain->removeSink(&sink);
}

TEST_F(CkChainManagerTest, ARemovedSourceLeavesItsSinksWithoutFrames) {
    auto* const other = new TestSource();
    ASSERT_TRUE(manager->insertAfter(chain, other, nullptr));
    KeepingSink sink;
    chain->addSink(other, &sink);
    ASSERT_TRUE(manager->remove(chain, other, false));
    EXPECT_EQ(chain->sinkBlock(&sink), nullptr);
    EXPECT_TRUE(chain->start());
    chain->stop();
    chain->removeSink(&sink);
}

TEST_F(CkChainManagerTest, ASourceIsNotTakenAwayFromWhatOnlyItFeeds) {
    auto* const other = new TestSource();
    auto* const downstream = new PassBlock();
    ASSERT_TRUE(manager->insertAfter(chain, other, nullptr));
    ASSERT_TRUE(manager->insertAfter(chain, downstream, other));
    EXPECT_FALSE(manager->remove(chain, other, false)) << "nothing could feed the block after it any more";
    EXPECT_EQ(chain->precedessors(downstream), QList<CkChainable*>{other});
    EXPECT_EQ(chain->blocks(), (QList<CkChainable*>{source, other, downstream}));
    manager->deleteChainable(other);
    EXPECT_EQ(chain->blocks().size(), 3);
    ASSERT_TRUE(manager->remove(chain, downstream, false));
    EXPECT_TRUE(manager->remove(chain, other, false));
    EXPECT_EQ(chain->blocks(), QList<CkChainable*>{source});
}

TEST_F(CkChainManagerTest, AChainWithoutBlocksIsClosed) {
    CkChain* other = manager->createChain();
    auto* const moved = new TestSource();
    ASSERT_TRUE(manager->insertAfter(other, moved, nullptr));
    ASSERT_TRUE(manager->remove(other, moved, true));
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(manager->chains(), QList<CkChain*>{chain});
    ASSERT_TRUE(manager->insertAfter(chain, moved, nullptr)) << "the kept source serves another chain";
    EXPECT_EQ(moved->chain(), chain);
}

TEST_F(CkChainManagerTest, ClosingDeletesBlocksOnceAndTellsWhileAllIsWhole) {
    CkChain* const other = manager->createChain();
    auto* const from = new TestSource();
    auto* const block = new AddBlock(1);
    bool deleted = false;
    block->pDeleted = &deleted;
    ASSERT_TRUE(manager->insertAfter(other, from, nullptr));
    ASSERT_TRUE(manager->insertAfter(other, block, from));
    KeepingSink sink;
    other->addSink(block, &sink);
    ASSERT_TRUE(other->start());
    QObject context;
    int signalled = 0;
    QObject::connect(manager, &CkChainManager::chainAboutToClose, &context, [&](CkChain* closing) {
        ++signalled;
        EXPECT_EQ(closing, other);
        EXPECT_TRUE(closing->stopped());
        EXPECT_EQ(closing->blocks().size(), 2);
        EXPECT_EQ(closing->sinkBlock(&sink), block);
        manager->closeChain(closing); // recursive call
    });
    manager->closeChain(other);
    EXPECT_EQ(signalled, 1);
    EXPECT_TRUE(deleted);
    EXPECT_EQ(manager->chains(), QList<CkChain*>{chain});
    manager->closeChain(other); // no longer known: ignored
    manager->closeChain(nullptr);
}

TEST_F(CkChainManagerTest, DeletingABlockTakesItOutFirst) {
    auto* const block = branch(new AddBlock(1), source);
    auto* const downstream = branch(new PassBlock(), block);
    bool deleted = false;
    block->pDeleted = &deleted;
    ASSERT_TRUE(chain->start());
    manager->deleteChainable(block);
    EXPECT_FALSE(deleted) << "not while the chain runs";
    chain->stop();
    manager->deleteChainable(block);
    EXPECT_TRUE(deleted);
    EXPECT_EQ(chain->precedessors(downstream), QList<CkChainable*>{source});
    manager->deleteChainable(nullptr);
}

TEST_F(CkChainManagerTest, ABlockDeletedBehindTheManagersBackLeavesNoTrace) {
    auto* const block = branch(new AddBlock(1), source);
    delete block;
    EXPECT_EQ(chain->blocks(), QList<CkChainable*>{source});
    EXPECT_TRUE(chain->start());
}

TEST_F(CkChainManagerTest, TheChainTakesABlockFromItsQtParent) {
    auto parent = std::make_unique<QObject>();
    auto* const block = new PassBlock();
    block->setParent(parent.get());
    ASSERT_TRUE(manager->branchAfter(chain, block, source));
    parent.reset();
    EXPECT_EQ(chain->blocks(), (QList<CkChainable*>{source, block}));
}

TEST_F(CkChainManagerTest, NewChainsAreTold) {
    QObject context;
    CkChain* signalled = nullptr;
    QObject::connect(manager, &CkChainManager::chainCreated, &context,
                     [&](CkChain* made) { signalled = made; });
    CkChain* const made = manager->createChain();
    EXPECT_EQ(signalled, made);
    manager->closeChain(made);
}
