#include "ActionTable.h"
#include "view3d/3dMdiView.h"

#include <gtest/gtest.h>

namespace {

struct Combination {
    FakeKind kind;
    CameraKind camera;
    bool separate = false;
    bool running = false;
    bool sceneIsActive = false; ///< the active view is a 3D view that follows the image view
    bool yes = true;
    bool inserts = true;

    bool asks() const { return kind == FakeKind::Grey && isToF(camera); }
    /// What the view shows once the question, if any, was answered is single raw phases of a ToF camera.
    bool needsGathering() const {
        const bool raw = kind == FakeKind::AB || kind == FakeKind::AminB ||
                         (kind == FakeKind::Grey && camera == CameraKind::ToF && yes);
        return raw && separate && camera == CameraKind::ToF;
    }
};

/// Every combination of which each answer counts: an answer only where there is a question, a failing
/// insertion only where something is inserted, single phases only of pictures that have phases.
std::vector<Combination> combinations() {
    std::vector<Combination> all;
    for (const FakeKind kind : {FakeKind::Unknown, FakeKind::Grey, FakeKind::AB, FakeKind::AminB,
                                FakeKind::PhaseShift, FakeKind::Hybrid}) {
        const bool phases = kind == FakeKind::Grey || kind == FakeKind::AB || kind == FakeKind::AminB;
        for (const CameraKind camera :
             {CameraKind::None, CameraKind::NotToF, CameraKind::ToF, CameraKind::Hybrid}) {
            if (camera == CameraKind::Hybrid && kind != FakeKind::Grey && kind != FakeKind::Hybrid) {
                continue;
            }
            for (int bits = 0; bits < 32; ++bits) {
                const Combination made{kind,
                                       camera,
                                       (bits & 1) != 0,
                                       (bits & 2) != 0,
                                       (bits & 4) != 0,
                                       (bits & 8) == 0,
                                       (bits & 16) == 0};
                const bool counts = (phases || !made.separate) && (made.asks() || made.yes) &&
                                    (made.needsGathering() || made.inserts) &&
                                    (!made.sceneIsActive || (camera == CameraKind::ToF && !made.running));
                if (counts) {
                    all.push_back(made);
                }
            }
        }
    }
    return all;
}

struct Outcome {
    QStringList boxes;
    int views = 1;
    QList<int> transforms;
    bool running = false;
    CameraKind setUp = CameraKind::None;
};

Outcome expectedOutcome(const Combination& given) {
    const QString needs = QStringLiteral(
        "ToF 3D view works with (A and B) RAWX2 image or (A-B) RAW image containing all phases, "
        "or the image with ToF phase-shift and confidence, or X1X2X3 RAWX3 image.");
    Outcome outcome;
    outcome.running = given.running;
    if (given.asks()) {
        outcome.boxes << line(QMessageBox::Question, "Invalid input image", withQuestion(needs),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
        if (given.yes) {
            outcome.setUp = given.camera;
            outcome.running = true;
        }
    } else if (given.kind == FakeKind::Unknown || given.kind == FakeKind::Grey) {
        outcome.boxes << line(QMessageBox::Warning, "Invalid input image", needs, QMessageBox::Ok,
                              QMessageBox::Ok);
    }
    if (given.needsGathering() && given.inserts) {
        outcome.transforms = {3};
        outcome.running = true;
    } else if (given.needsGathering()) {
        outcome.boxes << line(
            QMessageBox::Warning, "ToF 3D view expects ToF image containing all phases",
            QStringLiteral("Please add ToF Processing into the chain before the current view."),
            QMessageBox::Ok, QMessageBox::Ok);
        outcome.views = 0;
    }
    return outcome;
}

class Open3dViewTable : public ::testing::TestWithParam<Combination> {};

TEST_P(Open3dViewTable, BoxesChainCameraAndViews) {
    const Combination& given = GetParam();
    const Outcome expected = expectedOutcome(given);
    const TableCameras cameras;
    ToFRig rig;
    rig.open(given.kind, given.separate, cameras.of(given.camera));
    if (given.sceneIsActive) {
        auto* scene = new CkToF3DMdiView(rig.view->viewId(), -1, nullptr, nullptr);
        rig.app.addMdiView(scene);
        rig.app.addedViews.clear();
        rig.app.activeView = scene->viewId();
    }
    rig.answer = given.yes ? QMessageBox::Yes : QMessageBox::No;
    if (!given.inserts) {
        rig.chainHost.failing << QStringLiteral("insertAfter");
    }
    if (given.running) {
        ASSERT_TRUE(rig.chain()->start());
    }
    rig.actions.openToF3dView();

    EXPECT_EQ(rig.boxLines(), expected.boxes);
    ASSERT_EQ(rig.actions.views().size(), expected.views);
    ASSERT_EQ(rig.app.addedViews.size(), expected.views);
    if (expected.views == 1) {
        EXPECT_EQ(rig.actions.views()[0], rig.app.addedViews[0]);
        EXPECT_EQ(rig.actions.views()[0]->connectedViewId(), rig.view->viewId());
    }
    EXPECT_EQ(rig.chainHost.calls.count("insertAfter"), given.needsGathering() ? 1 : 0);
    EXPECT_EQ(ToFRig::transforms(rig.chain()), expected.transforms);
    EXPECT_EQ(rig.chain()->blocks().size(), 1 + expected.transforms.size());
    EXPECT_EQ(rig.chain()->started(), expected.running);
    EXPECT_EQ(cameras.state(), TableCameras::expectedState(expected.setUp));
}
INSTANTIATE_TEST_SUITE_P(ToFOpen3dView, Open3dViewTable, ::testing::ValuesIn(combinations()));

} // namespace
