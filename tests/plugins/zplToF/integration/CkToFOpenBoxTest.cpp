#include "plugins/zplToF/integration/ToFCameraCheck.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

namespace {

// The host keeps running while a box waits for the user: views, chains and cameras may be closed meanwhile.

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
    void expectNothingWasOpened() {
        EXPECT_TRUE(rig.actions.views().isEmpty());
        EXPECT_TRUE(rig.app.addedViews.isEmpty());
        EXPECT_TRUE(rig.app.calls.filter(QStringLiteral("openImageView")).isEmpty());
    }

    void expectNothingWasDone() {
        EXPECT_EQ(rig.boxes.size(), 1U);
        EXPECT_EQ(camera.log().commits, 0);
        expectNothingWasOpened();
    }

    FakeCamera camera{{3, 5}};
    ToFFixture rig;
    const QString refused = QStringLiteral("Cannot set (A and B) or (A-B) reaout mode to camera.");
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
    ASSERT_EQ(rig.boxes.size(), 2U);
    EXPECT_EQ(rig.boxes[1].text, refused);
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
    ASSERT_EQ(rig.boxes.size(), 2U);
    EXPECT_EQ(rig.boxes[1].text, refused);
    expectNothingWasOpened();
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

TEST_F(WhileABoxIsOpen, ViewClosedDuringTheErrorOfTheCameraGetsNo3dView) {
    inTheBox([this] {
        camera.close();
        if (rig.boxes.size() == 2) {
            closeTheView();
        }
    });
    rig.actions.openToF3dView();
    EXPECT_EQ(rig.boxes.size(), 2U);
    expectNothingWasOpened();
}

/// A receiver of the camera's signals may close the view that shows it.
class WhileTheCameraIsSetUp : public WhileABoxIsOpen {
protected:
    void SetUp() override {
        WhileABoxIsOpen::SetUp();
        inTheBox([] {});
        QObject::connect(camera.parameters(), &CkCameraParameters::committed, camera.parameters(),
                         [this] { closeTheView(); });
    }
    void closeTheCameraAtTheFirstValue() {
        CkCameraParam* readout = camera.parameters()->findParam(QStringLiteral("tof_readout_mode"));
        QObject::connect(readout, &CkCameraParam::pendingValueChanged, readout, [this] { camera.close(); });
    }
};

TEST_F(WhileTheCameraIsSetUp, ClosedViewGetsNo3dView) {
    rig.actions.openToF3dView();
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_EQ(rig.boxes.size(), 1U);
    expectNothingWasOpened();
}

TEST_F(WhileTheCameraIsSetUp, ClosedViewOfARunningChainGetsNo3dView) {
    ASSERT_TRUE(rig.chain()->start());
    rig.actions.openToF3dView();
    EXPECT_EQ(camera.log().commits, 1);
    expectNothingWasOpened();
}

TEST_F(WhileTheCameraIsSetUp, ClosedViewGetsNoProcessingViews) {
    rig.actions.openAllToFViews();
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_EQ(rig.boxes.size(), 1U);
    expectNothingWasOpened();
}

TEST_F(WhileTheCameraIsSetUp, ClosedViewLeavesTheCalibrationWithoutAView) {
    rig.actions.calibrateOffset();
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_TRUE(rig.boxes.empty());
    ASSERT_EQ(rig.calibrated.size(), 1);
    EXPECT_TRUE(rig.calibrated[0].isNull());
}

TEST_F(WhileTheCameraIsSetUp, ClosedViewIsNotAskedForItsChain) {
    EXPECT_TRUE(ToFCameraCheck::switchCameraTo3dFormat(rig.view, camera.handle()));
    EXPECT_TRUE(rig.chain()->stopped());
}

TEST_F(WhileTheCameraIsSetUp, CameraClosedBeforeTheCommitIsNotSetUp) {
    closeTheCameraAtTheFirstValue();
    EXPECT_FALSE(ToFCameraCheck::switchCameraTo3dFormat(rig.view, camera.handle()));
    EXPECT_TRUE(camera.log().committed.isEmpty());
    EXPECT_TRUE(rig.chain()->stopped());
}

TEST_F(WhileTheCameraIsSetUp, CameraClosedBeforeTheCommitIsToldAsOneThatRefuses) {
    closeTheCameraAtTheFirstValue();
    rig.actions.calibrateOffset();
    EXPECT_EQ(rig.boxTexts(), QStringList{refused});
    EXPECT_TRUE(rig.calibrated.isEmpty());
}

} // namespace
