#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

namespace {

CkToFProcessCnbl* tofBlock(int transform) {
    auto* block = new CkToFProcessCnbl;
    block->setTransform(CkToFProcessCnbl::EkTransformType(transform), false);
    return block;
}

class ToFChainEditor : public ::testing::Test {
protected:
    void SetUp() override { rig.open(FakeKind::AB); }
    CkChainable* append(CkChainable* block, CkChainable* after) {
        EXPECT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), block, after));
        return block;
    }
    ToFFixture rig;
    CkToFChainEditor editor{rig.chainHost};
};

TEST_F(ToFChainEditor, SearchStopsAtOnceAtAToFBlockOrAtTheTop) {
    EXPECT_EQ(CkToFChainEditor::searchUpstream(nullptr), nullptr);
    EXPECT_EQ(CkToFChainEditor::searchUpstream(rig.source), rig.source);
    CkChainable* tof = append(tofBlock(2), rig.source);
    EXPECT_EQ(CkToFChainEditor::searchUpstream(tof), tof);
}

TEST_F(ToFChainEditor, SearchAnswersTheBlockJustDownstreamOfWhereItStopped) {
    CkChainable* tof = append(tofBlock(2), rig.source);
    CkChainable* first = append(new PassBlock, tof);
    CkChainable* second = append(new PassBlock, first);
    EXPECT_EQ(CkToFChainEditor::searchUpstream(second), first);
    EXPECT_EQ(CkToFChainEditor::searchUpstream(first), first);
    EXPECT_EQ(CkToFChainEditor::firstToFBlock(second), tof);
}

TEST_F(ToFChainEditor, SearchWithoutAToFBlockAnswersTheSecondBlockOfTheChain) {
    CkChainable* first = append(new PassBlock, rig.source);
    CkChainable* second = append(new PassBlock, first);
    EXPECT_EQ(CkToFChainEditor::searchUpstream(second), first);
    EXPECT_EQ(CkToFChainEditor::searchUpstream(first), first);
    EXPECT_EQ(CkToFChainEditor::firstToFBlock(second), nullptr);
    EXPECT_EQ(CkToFChainEditor::firstToFBlock(nullptr), nullptr);
}

class Insertion : public ::testing::TestWithParam<std::tuple<bool, bool>> {};

TEST_P(Insertion, StopsRestartsAndFreesAsTheChainWas) {
    const auto [running, succeeds] = GetParam();
    ToFFixture rig;
    rig.open(FakeKind::AB);
    CkToFChainEditor editor(rig.chainHost);
    if (running) {
        ASSERT_TRUE(rig.chain()->start());
    }
    if (!succeeds) {
        rig.chainHost.failing << QStringLiteral("insertAfter");
    }
    EXPECT_EQ(editor.insertDepthBlock(rig.source), succeeds);
    EXPECT_EQ(rig.chain()->started(), running || succeeds);
    EXPECT_EQ(ToFFixture::transforms(rig.chain()), succeeds ? QList<int>{3} : QList<int>{});
    EXPECT_EQ(rig.chain()->blocks().size(), succeeds ? 2 : 1);
}
INSTANTIATE_TEST_SUITE_P(ToFChainEditor, Insertion, ::testing::Combine(::testing::Bool(), ::testing::Bool()));

TEST_F(ToFChainEditor, InsertionBehindABlockWithoutAChainIsRefused) {
    PassBlock lonely;
    EXPECT_FALSE(editor.insertDepthBlock(&lonely));
    EXPECT_FALSE(editor.insertDepthBlock(nullptr));
}

TEST_F(ToFChainEditor, ViewFollowsToTheInsertedBlock) {
    ASSERT_TRUE(editor.insertDepthBlock(rig.source));
    EXPECT_EQ(rig.view->dataProvider(), rig.chain()->blocks().last());
    EXPECT_NE(qobject_cast<CkToFProcessCnbl*>(rig.view->dataProvider()), nullptr);
}

} // namespace
