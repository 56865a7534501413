#include "plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "tests/support/ModalDriver.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

namespace {

TEST(ToFCalibrateAction, NonToFActiveViewShowsOnlyTheErrorAndNoDialog) {
    FakeCamera camera({-1, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    rig.actions.calibrateOffset();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Critical);
    EXPECT_EQ(rig.boxes[0].title, "Error");
    EXPECT_EQ(rig.boxes[0].text, "Active camera is not the ToF camera.");
    EXPECT_EQ(rig.boxes[0].buttons, QMessageBox::Ok);
    EXPECT_TRUE(rig.calibrated.isEmpty());
    EXPECT_TRUE(rig.app.calls.contains("startAcquisition 1 0")) << "the current camera is started first";
}

TEST(ToFCalibrateAction, OwnBlockWithAmplitudeSwitchesToDepthAndRestartsItsChain) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    auto* block = new CkToFProcessCnbl;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), block, rig.source));
    ASSERT_TRUE(rig.chain()->start());
    int restarts = 0;
    QObject::connect(rig.chain(), &CkChain::runningChanged, [&restarts](bool on) { restarts += on ? 1 : 0; });
    rig.actions.calibrateOffset();
    EXPECT_EQ(ToFFixture::transforms(rig.chain()), QList<int>{3});
    EXPECT_EQ(rig.chain()->blocks().size(), 2) << "no block is inserted";
    EXPECT_EQ(restarts, 1);
    EXPECT_TRUE(rig.chain()->started());
    EXPECT_EQ(rig.calibrated, QList<QPointer<CkMdiView>>{rig.view});
    EXPECT_TRUE(rig.boxes.empty());
}

TEST(ToFCalibrateAction, OwnBlockWithDepthIsLeftRunning) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    auto* block = new CkToFProcessCnbl;
    block->setTransform(CkToFProcessCnbl::EkTransformType(3), false);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), block, rig.source));
    ASSERT_TRUE(rig.chain()->start());
    int changes = 0;
    QObject::connect(rig.chain(), &CkChain::runningChanged, [&changes](bool) { ++changes; });
    rig.actions.calibrateOffset();
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(rig.calibrated.size(), 1);
}

TEST(ToFCalibrateAction, ViewWithoutAChainBlockShowsTheErrorAndStillOpensTheDialog) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    CkMdiView lonely;
    rig.app.registerView(&lonely);
    rig.app.activeView = lonely.viewId();
    rig.app.viewCameras[lonely.viewId()] = camera.handle();
    rig.actions.calibrateOffset();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Critical);
    EXPECT_EQ(rig.boxes[0].title, "Error");
    EXPECT_EQ(rig.boxes[0].text, "Cannot insert ToF processing to chain.");
    EXPECT_EQ(rig.calibrated, QList<QPointer<CkMdiView>>{&lonely});
}

TEST(ToFCalibrateAction, RawViewGetsADepthBlockBehindItsSource) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.actions.calibrateOffset();
    EXPECT_EQ(camera.value("tof_readout_mode"), 4);
    EXPECT_EQ(camera.value("imgdataformat"), 13);
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_EQ(ToFFixture::transforms(rig.chain()), QList<int>{3});
    EXPECT_TRUE(rig.chain()->started());
    EXPECT_EQ(rig.calibrated.size(), 1);
    EXPECT_TRUE(rig.boxes.empty());
}

TEST(ToFCalibrateAction, FailedInsertionIsToldAndTheDialogStillOpens) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    rig.chainHost.failing << QStringLiteral("insertAfter");
    rig.actions.calibrateOffset();
    EXPECT_EQ(rig.boxTexts(), QStringList{"Cannot insert ToF processing to chain."});
    EXPECT_EQ(rig.chain()->blocks().size(), 1);
    EXPECT_TRUE(rig.chain()->started()) << "the set-up had started it";
    EXPECT_EQ(rig.calibrated.size(), 1);
}

TEST(ToFCalibrateAction, CameraThatCannotBeSetUpIsToldInTheseWords) {
    FakeCamera withoutFormat({4, -1});
    FakeCamera refusing({3, 5, 0, true});
    for (const FakeCamera* camera : {&withoutFormat, &refusing}) {
        ToFFixture rig;
        rig.open(FakeKind::AB, false, camera);
        rig.actions.calibrateOffset();
        ASSERT_EQ(rig.boxes.size(), 1U);
        EXPECT_EQ(rig.boxes[0].icon, QMessageBox::Critical);
        EXPECT_EQ(rig.boxes[0].title, "Error");
        EXPECT_EQ(rig.boxes[0].text, "Cannot set (A and B) or (A-B) reaout mode to camera.");
        EXPECT_TRUE(rig.calibrated.isEmpty());
        EXPECT_EQ(rig.chain()->blocks().size(), 1);
    }
}

TEST(ToFCalibrateAction, CameraThatDoesNotStartIsSetUpAllTheSame) {
    FakeCamera camera({3, 5});
    ToFFixture rig;
    rig.open(FakeKind::Grey, false, &camera);
    rig.app.acquisitionSucceeds = false;
    rig.actions.calibrateOffset();
    EXPECT_EQ(camera.value("tof_readout_mode"), 4);
    EXPECT_EQ(ToFFixture::transforms(rig.chain()), QList<int>{3});
    EXPECT_EQ(rig.calibrated.size(), 1);
    EXPECT_TRUE(rig.boxes.empty());
}

TEST(ToFCalibrateAction, CameraThatWasUnpluggedMeanwhileIsNone) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    camera.close();
    rig.actions.calibrateOffset();
    EXPECT_EQ(rig.boxTexts(), QStringList{"Active camera is not the ToF camera."});
    EXPECT_TRUE(rig.calibrated.isEmpty());
}

TEST(ToFCalibrateAction, DialogIsAChildOfTheMainWindow) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    QWidget window;
    rig.app.window = &window;
    CkToFActions actions(rig.chainHost);
    ModalDriver driver;
    driver.expectWindow([&](QWidget* dialog) {
        EXPECT_NE(qobject_cast<CkToFCalibrateOffsetDlg*>(dialog), nullptr);
        EXPECT_EQ(dialog->parentWidget(), &window);
        static_cast<QDialog*>(dialog)->reject();
    });
    actions.calibrateOffset();
    EXPECT_EQ(driver.pending(), 0);
}

} // namespace
