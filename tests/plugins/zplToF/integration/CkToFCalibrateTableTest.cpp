#include "ActionTable.h"
#include "chain/CkToFProcessCnbl.h"
#include "zuCore/CkChainManager.h"

#include <gtest/gtest.h>

namespace {

/// Blocks behind the source: p passes on, a digit is a ToF block with that transform. The view shows the
/// last.
struct ChainShape {
    const char* before;
    const char* after; ///< with the block that the action puts in
    bool inserts;
};

const ChainShape g_shapes[] = {
    {"", "3", true},       {"p", "p3", true}, {"pp", "p3p", true}, {"2p", "2p3", true}, {"3p", "3p3", true},
    {"2pp", "2p3p", true}, {"2", "3", false}, {"3", "3", false},   {"p1", "p3", false},
};

using Combination = std::tuple<ChainShape, FakeKind, CameraKind, bool, bool, bool>;

void build(ToFRig& rig, const char* shape) {
    CkChainable* last = rig.source;
    for (const char* letter = shape; *letter != '\0'; ++letter) {
        CkChainable* block = nullptr;
        if (*letter == 'p') {
            block = new PassBlock;
        } else {
            auto* tof = new CkToFProcessCnbl;
            tof->setTransform(CkToFProcessCnbl::EkTransformType(*letter - '0'), false);
            block = tof;
        }
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain(), block, last));
        last = block;
    }
    ASSERT_EQ(rig.view->dataProvider(), last);
}

QString shapeOf(const CkChain* chain) {
    QString shape;
    const QList<CkChainable*> blocks = chain->blocks();
    for (CkChainable* block : blocks.mid(1)) {
        const auto* tof = qobject_cast<CkToFProcessCnbl*>(block);
        shape += tof != nullptr ? QString::number(int(tof->transform())) : QStringLiteral("p");
    }
    return shape;
}

class CalibrateTable : public ::testing::TestWithParam<Combination> {};

TEST_P(CalibrateTable, BoxesChainCameraAndDialog) {
    const auto& [shape, kind, camera, separate, insertionFails, running] = GetParam();
    const TableCameras cameras;
    ToFRig rig;
    rig.open(kind, separate, cameras.of(camera));
    ASSERT_NO_FATAL_FAILURE(build(rig, shape.before));
    if (insertionFails) {
        rig.chainHost.failing << QStringLiteral("insertAfter");
    }
    if (running) {
        ASSERT_TRUE(rig.chain()->start());
    }
    rig.app.calls.clear();
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
    EXPECT_EQ(rig.calibrated, QList<QPointer<CkMdiView>>{rig.view});
}
INSTANTIATE_TEST_SUITE_P(ToFCalibrateAction, CalibrateTable,
                         ::testing::Combine(::testing::ValuesIn(g_shapes),
                                            ::testing::Values(FakeKind::Unknown, FakeKind::Grey, FakeKind::AB,
                                                              FakeKind::AminB, FakeKind::Hybrid),
                                            ::testing::Values(CameraKind::None, CameraKind::NotToF,
                                                              CameraKind::ToF, CameraKind::Hybrid),
                                            ::testing::Bool(), ::testing::Bool(), ::testing::Bool()));

} // namespace
