#include "ToFRig.h"
#include "view3d/3dMdiView.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

namespace {

// A box waits for the user while the rest of the host goes on: views, chains and cameras may go meanwhile.

class WhileABoxIsOpen : public ::testing::Test {
protected:
    /// Grey pictures of a camera that could be set up for ToF.
    void SetUp() override { rig.open(FakeKind::Grey, false, &camera); }

    void inTheBox(const std::function<void()>& happens) {
        rig.actions.setMessageFunction([this, happens](const SkToFMessage& message) {
            rig.boxes.push_back(message);
            happens();
            return QMessageBox::Yes;
        });
    }
    void closeTheView() {
        rig.app.closeView(rig.view->viewId());
        rig.view = nullptr;
    }
    void expectNothingWasDone() {
        EXPECT_EQ(rig.boxes.size(), 1U);
        EXPECT_EQ(camera.log().commits, 0);
        EXPECT_TRUE(rig.actions.views().isEmpty());
        EXPECT_TRUE(rig.app.addedViews.isEmpty());
        EXPECT_TRUE(rig.app.calls.filter(QStringLiteral("openImageView")).isEmpty());
    }

    FakeCamera camera{{3, 5}};
    ToFRig rig;
};

TEST_F(WhileABoxIsOpen, ViewClosedDuringTheQuestionGetsNo3dView) {
    inTheBox([this] { closeTheView(); });
    rig.actions.openToF3dView();
    expectNothingWasDone();
    EXPECT_TRUE(rig.chain()->stopped());
}

TEST_F(WhileABoxIsOpen, ViewClosedDuringTheWarningGetsNo3dView) {
    camera.close(); // so that it is a warning
    inTheBox([this] { closeTheView(); });
    rig.actions.openToF3dView();
    expectNothingWasDone();
}

TEST_F(WhileABoxIsOpen, CameraUnpluggedDuringTheQuestionIsNotSetUpAndThe3dViewOpens) {
    inTheBox([this] { camera.close(); });
    rig.actions.openToF3dView();
    EXPECT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(camera.log().commits, 0);
    EXPECT_TRUE(rig.chain()->stopped());
    EXPECT_EQ(rig.actions.views().size(), 1);
}

TEST_F(WhileABoxIsOpen, ViewClosedDuringTheQuestionGetsNoProcessingViews) {
    inTheBox([this] { closeTheView(); });
    rig.actions.openAllToFViews();
    expectNothingWasDone();
    ASSERT_NE(rig.chain(), nullptr);
    EXPECT_EQ(rig.chain()->blocks().size(), 1);
}

TEST_F(WhileABoxIsOpen, CameraUnpluggedDuringTheQuestionGetsNoProcessingViews) {
    inTheBox([this] { camera.close(); });
    rig.actions.openAllToFViews();
    expectNothingWasDone();
    EXPECT_EQ(rig.app.mdiView(rig.view->viewId()), rig.view);
}

TEST_F(WhileABoxIsOpen, ChainClosedDuringTheQuestionEndsTheAction) {
    inTheBox([this] { CkChainManager::instance()->closeChain(rig.chain()); });
    rig.actions.openAllToFViews();
    EXPECT_EQ(rig.boxes.size(), 1U);
    EXPECT_TRUE(rig.actions.views().isEmpty());
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    EXPECT_EQ(rig.view->dataProvider(), nullptr);
}

TEST_F(WhileABoxIsOpen, ChainClosedDuringTheQuestionLeavesThe3dViewOnItsView) {
    inTheBox([this] { CkChainManager::instance()->closeChain(rig.chain()); });
    rig.actions.openToF3dView();
    EXPECT_EQ(rig.boxes.size(), 1U);
    ASSERT_EQ(rig.actions.views().size(), 1);
    EXPECT_EQ(rig.actions.views()[0]->connectedViewId(), rig.view->viewId());
}

TEST_F(WhileABoxIsOpen, ViewClosedDuringTheErrorLeavesTheCalibrationWithoutAView) {
    rig.chainHost.failing << QStringLiteral("insertAfter");
    inTheBox([this] { closeTheView(); });
    rig.actions.calibrateOffset();
    EXPECT_EQ(rig.boxTexts(), QStringList{"Cannot insert ToF processing to chain."});
    ASSERT_EQ(rig.calibrated.size(), 1);
    EXPECT_TRUE(rig.calibrated[0].isNull());
}

} // namespace
