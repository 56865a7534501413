#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

namespace {

const QString kNeeds = QStringLiteral("ToF 3D view works with (A and B) RAWX2 image or (A-B) RAW image "
                                      "containing all phases, or the image with ToF "
                                      "phase-shift and confidence, or X1X2X3 RAWX3 image.");
const QString kQuestion =
    kNeeds + QStringLiteral("\n\nDo you want to update the camera parameters automatically?");
const QString kAddBefore =
    QStringLiteral("Please add ToF Processing into the chain before the current view.");

TEST(ToFOpen3dView, NoActiveViewDoesNothing) {
    ToFFixture rig;
    rig.app.activeView = -1;
    rig.actions.openToF3dView();
    rig.actions.openAllToFViews();
    EXPECT_TRUE(rig.boxes.empty());
    EXPECT_TRUE(rig.app.calls.isEmpty());
    EXPECT_TRUE(rig.actions.views().isEmpty());
}

TEST(ToFOpen3dView, ViewOfANonToFCameraShowsTheWarningAndStillOpens) {
    FakeCamera camera({-1, 13});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Warning);
    EXPECT_EQ(rig.boxes[0].title, "Invalid input image");
    EXPECT_EQ(rig.boxes[0].text, kNeeds);
    EXPECT_EQ(rig.boxes[0].buttons, QMessageBox::Ok);
    EXPECT_EQ(rig.actions.views().size(), 1);
}

TEST(ToFOpen3dView, SeparatePhasesBehindAToFBlockAskForABlockBeforeAndOpenNothing) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, true, &camera);
    // A block that does not change the format: the phases still reach the view as separate images.
    auto* block = new CkToFProcessCnbl;
    block->setTransform(CkToFProcessCnbl::EkTransformType(5), false);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), block, rig.source));
    ASSERT_EQ(rig.view->dataProvider(), block);
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Warning);
    EXPECT_EQ(rig.boxes[0].title, "ToF 3D view expects ToF image containing all phases");
    EXPECT_EQ(rig.boxes[0].text, kAddBefore);
    EXPECT_TRUE(rig.actions.views().isEmpty());
    EXPECT_EQ(rig.chain()->blocks().size(), 2);
}

TEST(ToFOpen3dView, AnswerNoLeavesCameraAndChainUntouchedAndOpens) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.answer = QMessageBox::No;
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Question);
    EXPECT_EQ(rig.boxes[0].title, "Invalid input image");
    EXPECT_EQ(rig.boxes[0].text, kQuestion);
    EXPECT_EQ(rig.boxes[0].buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(rig.boxes[0].defaultButton, QMessageBox::Yes);
    EXPECT_EQ(camera.log().commits, 0);
    EXPECT_TRUE(rig.chain()->stopped());
    EXPECT_EQ(rig.chain()->blocks().size(), 1);
    EXPECT_EQ(rig.actions.views().size(), 1);
}

TEST(ToFOpen3dView, AnswerYesThatChangesNothingSwitchesTheToFBlockToDepth) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    auto* block = new CkToFProcessCnbl; // "Amplitude": the view shows no ToF data then
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), block, rig.source));
    rig.answer = QMessageBox::Yes;
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].text, kQuestion);
    EXPECT_EQ(ToFFixture::transforms(rig.chain()), QList<int>{3});
    EXPECT_TRUE(rig.chain()->started()) << "setting up starts a stopped chain";
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_EQ(rig.actions.views().size(), 1);
}

TEST(ToFOpen3dView, ActiveThreeDViewStandsForTheViewItFollows) {
    ToFFixture rig;
    rig.open(FakeKind::PhaseShift);
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.actions.views().size(), 1);
    rig.app.activeView = rig.actions.views()[0]->viewId();
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.actions.views().size(), 2);
    EXPECT_EQ(rig.actions.views()[1]->connectedViewId(), rig.view->viewId());

    rig.app.closeView(rig.view->viewId());
    rig.view = nullptr;
    rig.actions.openToF3dView();
    EXPECT_EQ(rig.actions.views().size(), 2) << "the followed view no longer exists";
}

TEST(ToFOpen3dView, CameraThatCannotBeSetUpIsToldAndTheStepsFollow) {
    FakeCamera camera({3, 5, 0, true});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), new CkToFProcessCnbl, rig.source));
    rig.answer = QMessageBox::Yes;
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.boxes.size(), 2U);
    EXPECT_EQ(rig.boxes[0].text, kQuestion);
    EXPECT_EQ(rig.boxes[1].icon, QMessageBox::Critical);
    EXPECT_EQ(rig.boxes[1].title, "Error");
    EXPECT_EQ(rig.boxes[1].text, "Cannot set (A and B) or (A-B) reaout mode to camera.");
    EXPECT_EQ(rig.boxes[1].buttons, QMessageBox::Ok);
    EXPECT_EQ(camera.value("tof_readout_mode"), 3);
    EXPECT_EQ(ToFFixture::transforms(rig.chain()), QList<int>{3});
    EXPECT_TRUE(rig.chain()->stopped());
    EXPECT_EQ(rig.actions.views().size(), 1);
}

/// Blocks after the source, which sends phases as separate images or together.
struct StartCase {
    FakeKind kind;
    bool separate;
    bool amplitudeBlock;
};

class StartsAfterYes : public ::testing::TestWithParam<StartCase> {
protected:
    void SetUp() override {
        rig.open(GetParam().kind, GetParam().separate, &camera);
        if (GetParam().amplitudeBlock) {
            ASSERT_TRUE(
                CkChainManager::instance()->insertAfter(rig.chain(), new CkToFProcessCnbl, rig.source));
        }
        rig.answer = QMessageBox::Yes;
    }

    FakeCamera camera{{3, 5}};
    ToFFixture rig;
};

TEST_P(StartsAfterYes, StoppedChainIsStartedOnce) {
    const ChainLog log;
    rig.actions.openToF3dView();
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_EQ(log.runs, QList<bool>{true});
    EXPECT_EQ(rig.actions.views().size(), 1);
}

TEST_P(StartsAfterYes, StoppedChainIsStartedOnceForTheCalibration) {
    const ChainLog log;
    rig.actions.calibrateOffset();
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_EQ(log.runs, QList<bool>{true});
    EXPECT_EQ(rig.calibrated.size(), 1);
    EXPECT_EQ(rig.ranAtCalibrations, QList<bool>{true}) << "the dialog waits for frames";
}
INSTANTIATE_TEST_SUITE_P(ToFOpen3dView, StartsAfterYes,
                         ::testing::Values(StartCase{FakeKind::Grey, false, false},
                                           StartCase{FakeKind::Grey, true, false},
                                           StartCase{FakeKind::AB, false, true}));

TEST(ToFOpen3dView, AStoppedChainRunsWhileTheBoxAboutMissingPhasesIsOpen) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, true, &camera);
    rig.chainHost.failing << QStringLiteral("insertAfter") << QStringLiteral("branchAfter");
    rig.answer = QMessageBox::Yes;
    rig.actions.openToF3dView();
    ASSERT_EQ(rig.boxes.size(), 2U);
    EXPECT_EQ(rig.boxes[1].text, kAddBefore);
    EXPECT_EQ(rig.ranAtBoxes, (QList<bool>{false, true}));
}

TEST(ToFOpen3dView, RunningChainNegotiatesTheNewFormatOnceAfterYes) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    ASSERT_TRUE(rig.chain()->start());
    rig.answer = QMessageBox::Yes;
    const ChainLog log;
    rig.actions.openToF3dView();
    EXPECT_EQ(log.runs, (QList<bool>{false, true}));
}

} // namespace
