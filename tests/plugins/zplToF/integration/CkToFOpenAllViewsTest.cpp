#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

namespace {

const QString kNeeds =
    QStringLiteral("ToF processing needs (A and B) RAWX2, or (A minus B) RAW image, or X1X2X3 RAWX3 image.");
const QString kQuestion =
    kNeeds + QStringLiteral("\n\nDo you want to update the camera parameters automatically?");

int imageViews(const FakeAppDelegate& app) {
    return int(app.calls.filter(QStringLiteral("openImageView")).size());
}

CkChain* onlyChain() {
    const QList<CkChain*> chains = CkChainManager::instance()->chains();
    return chains.size() == 1 ? chains.first() : nullptr;
}

TEST(ToFOpenAllViews, AandBSourceGetsDepthAmplitudeIntensityAndOneThreeDView) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    rig.actions.openAllToFViews();
    CkChain* chain = onlyChain();
    ASSERT_NE(chain, nullptr);
    EXPECT_EQ(ToFFixture::transforms(chain), (QList<int>{3, 2, 1}));
    EXPECT_EQ(imageViews(rig.app), 3);
    ASSERT_EQ(rig.actions.views().size(), 1);
    // The 3D view follows the image view of the "Depth" branch.
    const CkMdiView* depthView = rig.app.mdiView(rig.actions.views()[0]->connectedViewId());
    ASSERT_NE(depthView, nullptr);
    const auto* block = qobject_cast<CkToFProcessCnbl*>(depthView->dataProvider());
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(int(block->transform()), 3);
    EXPECT_TRUE(chain->started());
    EXPECT_EQ(rig.app.calls.last(), "refreshViewArea");
    EXPECT_TRUE(rig.boxes.empty());
    rig.view = nullptr;
}

TEST(ToFOpenAllViews, AminusBSourceGetsOnlyDepthAndAmplitude) {
    ToFFixture rig;
    rig.open(FakeKind::AminB);
    rig.actions.openAllToFViews();
    ASSERT_NE(onlyChain(), nullptr);
    EXPECT_EQ(ToFFixture::transforms(onlyChain()), (QList<int>{3, 2}));
    EXPECT_EQ(imageViews(rig.app), 2);
    EXPECT_EQ(rig.actions.views().size(), 1);
    rig.view = nullptr;
}

TEST(ToFOpenAllViews, HybridSourceGetsItsThreeBranches) {
    ToFFixture rig;
    rig.open(FakeKind::Hybrid);
    rig.actions.openAllToFViews();
    ASSERT_NE(onlyChain(), nullptr);
    EXPECT_EQ(ToFFixture::transforms(onlyChain()), (QList<int>{3, 2, 1}));
    rig.view = nullptr;
}

TEST(ToFOpenAllViews, ReplacesTheActiveViewAndItsChainAndMovesTheSource) {
    ToFFixture rig;
    rig.open(FakeKind::AB);
    ASSERT_TRUE(rig.chain()->start());
    const QPointer<CkMdiView> oldView = rig.view;
    CkChainable* source = rig.source;
    rig.actions.openAllToFViews();
    EXPECT_TRUE(oldView.isNull());
    EXPECT_EQ(rig.chain(), nullptr) << "the old chain is gone";
    ASSERT_NE(onlyChain(), nullptr);
    EXPECT_EQ(source->chain(), onlyChain());
    EXPECT_EQ(onlyChain()->imageSources(), QList<CkChainable*>{source});
    rig.view = nullptr;
}

TEST(ToFOpenAllViews, BranchesAreFedByTheSourceItself) {
    ToFFixture rig;
    rig.open(FakeKind::AB);
    CkChainable* source = rig.source;
    rig.actions.openAllToFViews();
    ASSERT_NE(onlyChain(), nullptr);
    const QList<CkChainable*> blocks = onlyChain()->blocks();
    ASSERT_EQ(blocks.size(), 4);
    for (CkChainable* block : blocks.mid(1)) {
        EXPECT_EQ(block->precedessors(), QList<CkChainable*>{source});
    }
    rig.view = nullptr;
}

TEST(ToFOpenAllViews, NotAToFCameraIsToldAndNothingHappens) {
    FakeCamera camera({-1, 13});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.actions.openAllToFViews();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Critical);
    EXPECT_EQ(rig.boxes[0].title, "Invalid input image");
    EXPECT_EQ(rig.boxes[0].text, kNeeds);
    EXPECT_EQ(rig.boxes[0].buttons, QMessageBox::Ok);
    EXPECT_EQ(rig.chain()->blocks(), QList<CkChainable*>{rig.source});
    EXPECT_TRUE(rig.actions.views().isEmpty());
}

TEST(ToFOpenAllViews, AnswerYesSetsTheCameraUpAndGoesOn) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.answer = QMessageBox::Yes;
    rig.actions.openAllToFViews();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Question);
    EXPECT_EQ(rig.boxes[0].text, kQuestion);
    EXPECT_EQ(rig.boxes[0].buttons, QMessageBox::Yes | QMessageBox::Cancel);
    EXPECT_EQ(rig.boxes[0].defaultButton, QMessageBox::Yes);
    EXPECT_EQ(camera.log().commits, 1);
    ASSERT_NE(onlyChain(), nullptr);
    EXPECT_EQ(ToFFixture::transforms(onlyChain()), (QList<int>{3, 2, 1}));
    rig.view = nullptr;
}

TEST(ToFOpenAllViews, AnswerCancelLeavesEverything) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.answer = QMessageBox::Cancel;
    rig.actions.openAllToFViews();
    EXPECT_EQ(camera.log().commits, 0);
    EXPECT_EQ(rig.chain()->blocks().size(), 1);
    EXPECT_EQ(imageViews(rig.app), 0);
}

TEST(ToFOpenAllViews, CameraThatCannotBeSetUpIsToldAndEndsTheAction) {
    FakeCamera camera({3, 5, 0, true});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.answer = QMessageBox::Yes;
    rig.actions.openAllToFViews();
    ASSERT_EQ(rig.boxes.size(), 2U);
    EXPECT_EQ(rig.boxes[1].icon, QMessageBox::Critical);
    EXPECT_EQ(rig.boxes[1].title, "Error");
    EXPECT_EQ(rig.boxes[1].text, "Cannot set (A and B) or (A-B) reaout mode to camera.");
    EXPECT_EQ(rig.boxes[1].buttons, QMessageBox::Ok);
    EXPECT_EQ(rig.chain()->blocks().size(), 1);
    EXPECT_TRUE(rig.chain()->stopped());
    EXPECT_EQ(imageViews(rig.app), 0);
}

TEST(ToFOpenAllViews, StoppedSourceIsStartedOnceAfterYes) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.answer = QMessageBox::Yes;
    const ChainLog log;
    rig.actions.openAllToFViews();
    EXPECT_EQ(log.runs, QList<bool>{true}) << "in its new chain";
    EXPECT_EQ(imageViews(rig.app), 3);
    rig.view = nullptr;
}

TEST(ToFOpenAllViews, StoppedChainThatStaysIsStartedOnceAfterYes) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    // The view shows grey pictures whatever the camera sends: the action ends after the set-up.
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), new CkToFProcessCnbl, rig.source));
    rig.answer = QMessageBox::Yes;
    const ChainLog log;
    rig.actions.openAllToFViews();
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_EQ(log.runs, QList<bool>{true});
    EXPECT_EQ(imageViews(rig.app), 0);
}

TEST(ToFOpenAllViews, ViewWithoutABlockOrAChainIsLeftAlone) {
    ToFFixture rig;
    CkMdiView lonely;
    rig.app.registerView(&lonely);
    rig.app.activeView = lonely.viewId();
    rig.actions.openAllToFViews();
    EXPECT_TRUE(rig.boxes.empty());
    EXPECT_TRUE(rig.app.calls.isEmpty());
}

TEST(ToFOpenAllViews, ChainWithoutASourceIsLeftAlone) {
    ToFFixture rig;
    rig.open(FakeKind::AB);
    CkChain* chain = rig.chain();
    auto* block = new PassBlock;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, block, rig.source));
    ASSERT_TRUE(CkChainManager::instance()->remove(chain, rig.source, true));
    delete rig.source;
    ViewWithImage view(block); // it still shows an earlier image
    view.image = std::make_unique<CkImageData>();
    SkPicBuf picture;
    CkImageMetadata metadata;
    describe(FakeKind::AB, false, picture, metadata);
    view.image->setPicBuf(picture);
    view.image->setMetadata(metadata);
    rig.app.registerView(&view);
    rig.app.activeView = view.viewId();
    rig.actions.openAllToFViews();
    EXPECT_TRUE(rig.boxes.empty());
    EXPECT_TRUE(rig.app.calls.isEmpty());
    EXPECT_EQ(rig.chain()->blocks(), QList<CkChainable*>{block});
    EXPECT_TRUE(rig.chainHost.calls.isEmpty());
}

TEST(ToFOpenAllViews, FailedRemovalLeavesTheChainRunning) {
    ToFFixture rig;
    rig.open(FakeKind::AB);
    ASSERT_TRUE(rig.chain()->start());
    rig.chainHost.failing << QStringLiteral("remove");
    rig.actions.openAllToFViews();
    ASSERT_NE(rig.chain(), nullptr);
    EXPECT_TRUE(rig.chain()->started());
    EXPECT_EQ(rig.source->chain(), rig.chain());
    EXPECT_EQ(imageViews(rig.app), 0);
}

TEST(ToFOpenAllViews, NoNewChainDeletesTheSource) {
    const int alive = FakeSource::alive;
    ToFFixture rig;
    rig.open(FakeKind::AB);
    rig.chainHost.failing << QStringLiteral("createChain");
    rig.actions.openAllToFViews();
    rig.view = nullptr;
    EXPECT_EQ(FakeSource::alive, alive);
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    EXPECT_TRUE(rig.chainHost.calls.contains("deleteChainable"));
    EXPECT_EQ(imageViews(rig.app), 0);
}

TEST(ToFOpenAllViews, SourceThatDoesNotFitTheNewChainIsDeletedWithIt) {
    const int alive = FakeSource::alive;
    ToFFixture rig;
    rig.open(FakeKind::AB);
    rig.chainHost.failing << QStringLiteral("insertAfter");
    rig.actions.openAllToFViews();
    rig.view = nullptr;
    EXPECT_EQ(FakeSource::alive, alive);
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST(ToFOpenAllViews, BranchThatCannotBeAddedIsDeletedAndTheActionGoesOn) {
    ToFFixture rig;
    rig.open(FakeKind::AB);
    rig.chainHost.failing << QStringLiteral("branchAfter");
    rig.actions.openAllToFViews();
    rig.view = nullptr;
    ASSERT_NE(onlyChain(), nullptr);
    EXPECT_EQ(onlyChain()->blocks().size(), 1);
    EXPECT_EQ(rig.chainHost.calls.count("branchAfter"), 3);
    EXPECT_EQ(rig.chainHost.calls.count("deleteChainable"), 3);
    EXPECT_TRUE(rig.actions.views().isEmpty());
    EXPECT_TRUE(onlyChain()->started());
}

TEST(ToFOpenAllViews, BranchWithoutAViewIsTakenOutAgainAndTheNextOneFollows) {
    ToFFixture rig;
    rig.open(FakeKind::AB);
    int opened = 0;
    rig.app.makeImageView = [&opened](CkChainable* block) -> CkMdiView* {
        return ++opened == 1 ? nullptr : new CkMdiView(block);
    };
    rig.actions.openAllToFViews();
    rig.view = nullptr;
    ASSERT_NE(onlyChain(), nullptr);
    EXPECT_EQ(ToFFixture::transforms(onlyChain()), (QList<int>{2, 1}));
    EXPECT_TRUE(rig.actions.views().isEmpty()) << "the 3D view belongs to the first branch";
}

TEST(ToFOpenAllViews, ActiveThreeDViewStandsForTheViewItFollows) {
    ToFFixture rig;
    rig.open(FakeKind::AB);
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.actions.views().size(), 1);
    rig.app.activeView = rig.actions.views()[0]->viewId();
    const QPointer<CkMdiView> followed = rig.view;
    rig.actions.openAllToFViews();
    rig.view = nullptr;
    EXPECT_TRUE(followed.isNull());
    EXPECT_EQ(rig.actions.views().size(), 2);
}

} // namespace
