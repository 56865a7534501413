#include "tests/plugins/zplToF/integration/ActionTable.h"

namespace {

/// Blocks after the source; the view is on the last one.
struct ChainShape {
    const char* before;
    const char* after; ///< with the block that the action inserts
    bool inserts;
};

const ChainShape kShapes[] = {
    {"", "3", true},       {"p", "p3", true}, {"pp", "p3p", true}, {"2p", "2p3", true}, {"3p", "3p3", true},
    {"2pp", "2p3p", true}, {"2", "3", false}, {"3", "3", false},   {"p1", "p3", false},
};

/// The last one: the active view is a 3D view that follows the image view.
using Combination = std::tuple<ChainShape, FakeKind, CameraKind, bool, bool, bool, bool>;

class CalibrateTable : public ::testing::TestWithParam<Combination> {};

TEST_P(CalibrateTable, BoxesChainCameraAndDialog) {
    const auto& [shape, kind, camera, separate, insertionFails, running, sceneIsActive] = GetParam();
    const TableCameras cameras;
    ToFFixture rig;
    ASSERT_NO_FATAL_FAILURE(
        openOn(rig, sceneIsActive ? ViewOn::Scene : ViewOn::Source, kind, separate, cameras.of(camera)));
    ASSERT_NO_FATAL_FAILURE(buildShape(rig, shape.before));
    CkMdiView* const active = rig.app.mdiView(rig.app.activeView);
    if (insertionFails) {
        rig.chainHost.failing << QStringLiteral("insertAfter");
    }
    if (running) {
        ASSERT_TRUE(rig.chain()->start());
    }
    rig.actions.calibrateOffset();

    EXPECT_EQ(rig.app.calls, QStringList{"startAcquisition 1 0"});
    EXPECT_TRUE(rig.actions.views().isEmpty());
    if (!isToF(camera)) {
        EXPECT_EQ(rig.boxLines(),
                  QStringList{line(QMessageBox::Critical, "Error", "Active camera is not the ToF camera.",
                                   QMessageBox::Ok, QMessageBox::Ok)});
        EXPECT_EQ(shapeOf(rig.chain()), shape.before);
        EXPECT_EQ(rig.chain()->started(), running);
        EXPECT_EQ(cameras.state(), TableCameras::expectedState(CameraKind::None));
        EXPECT_TRUE(rig.calibrated.isEmpty());
        return;
    }
    const bool refused = shape.inserts && insertionFails;
    QStringList boxes;
    if (refused) {
        boxes << line(QMessageBox::Critical, "Error", "Cannot insert ToF processing to chain.",
                      QMessageBox::Ok, QMessageBox::Ok);
    }
    EXPECT_EQ(rig.boxLines(), boxes);
    EXPECT_EQ(shapeOf(rig.chain()), refused ? shape.before : shape.after);
    EXPECT_EQ(rig.chainHost.calls.count("insertAfter"), shape.inserts ? 1 : 0);
    EXPECT_TRUE(rig.chain()->started());
    EXPECT_EQ(cameras.state(), TableCameras::expectedState(camera));
    EXPECT_EQ(rig.calibrated, QList<QPointer<CkMdiView>>{active});
}
INSTANTIATE_TEST_SUITE_P(ToFCalibrateAction, CalibrateTable,
                         ::testing::Combine(::testing::ValuesIn(kShapes),
                                            ::testing::Values(FakeKind::Unknown, FakeKind::Grey, FakeKind::AB,
                                                              FakeKind::AminB, FakeKind::Hybrid),
                                            ::testing::Values(CameraKind::None, CameraKind::NotToF,
                                                              CameraKind::ToF, CameraKind::Hybrid),
                                            ::testing::Bool(), ::testing::Bool(), ::testing::Bool(),
                                            ::testing::Values(false)));
INSTANTIATE_TEST_SUITE_P(
    ToFCalibrateActionOn3dView, CalibrateTable,
    ::testing::Combine(::testing::ValuesIn(kShapes), ::testing::Values(FakeKind::Grey, FakeKind::AB),
                       ::testing::Values(CameraKind::NotToF, CameraKind::ToF, CameraKind::Hybrid),
                       ::testing::Bool(), ::testing::Bool(), ::testing::Bool(), ::testing::Values(true)));

class CalibrateWithoutAChain
    : public ::testing::TestWithParam<std::tuple<ViewOn, FakeKind, CameraKind, bool>> {};

TEST_P(CalibrateWithoutAChain, BoxesCameraAndDialog) {
    const auto& [on, kind, camera, running] = GetParam();
    const TableCameras cameras;
    ToFFixture rig;
    ASSERT_NO_FATAL_FAILURE(openOn(rig, on, kind, false, cameras.of(camera)));
    CkMdiView* const active = rig.app.mdiView(rig.app.activeView);
    if (running) {
        ASSERT_TRUE(rig.chain()->start());
    }
    rig.actions.calibrateOffset();

    EXPECT_EQ(rig.app.calls, QStringList{"startAcquisition 1 0"});
    // The view without a block still has a camera; the others no longer do.
    const bool isTold = on == ViewOn::OwnImage && isToF(camera);
    EXPECT_EQ(rig.boxLines(),
              QStringList{line(QMessageBox::Critical, "Error",
                               isTold ? QStringLiteral("Cannot insert ToF processing to chain.")
                                      : QStringLiteral("Active camera is not the ToF camera."),
                               QMessageBox::Ok, QMessageBox::Ok)});
    EXPECT_EQ(rig.calibrated, isTold ? QList<QPointer<CkMdiView>>{active} : QList<QPointer<CkMdiView>>());
    EXPECT_EQ(cameras.state(), TableCameras::expectedState(isTold ? camera : CameraKind::None));
    EXPECT_EQ(shapeOf(rig.chain()), "");
    EXPECT_EQ(rig.chain()->started(), running) << "not the chain of the active view";
    EXPECT_TRUE(rig.chainHost.calls.isEmpty());
}
INSTANTIATE_TEST_SUITE_P(
    ToFCalibrateAction, CalibrateWithoutAChain,
    ::testing::Combine(::testing::Values(ViewOn::Nothing, ViewOn::LonelyScene, ViewOn::OwnImage),
                       ::testing::Values(FakeKind::Unknown, FakeKind::Grey, FakeKind::AB),
                       ::testing::Values(CameraKind::None, CameraKind::NotToF, CameraKind::ToF,
                                         CameraKind::Hybrid),
                       ::testing::Bool()));

} // namespace
