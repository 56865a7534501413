#include "tests/plugins/zplToF/integration/ActionTable.h"

namespace {

struct Combination {
    ViewOn on;
    FakeKind kind;
    CameraKind camera;
    bool separate = false;
    bool running = false;
    bool yes = true;
    bool inserts = true;

    bool opensNothing() const { return on == ViewOn::Nothing || on == ViewOn::LonelyScene; }
    FakeKind shown() const { return shownKind(on, kind); }
    bool asks() const { return !opensNothing() && shown() == FakeKind::Grey && isToF(camera); }
    bool warns() const {
        return !opensNothing() && (shown() == FakeKind::Unknown || (shown() == FakeKind::Grey && !asks()));
    }
    /// After the question, if there was one.
    FakeKind shownInTheEnd() const {
        // An image that a view holds does not change.
        const bool changes = asks() && yes && hasBlock(on);
        return changes ? shownKind(on, kindAfterSetUp(kind, camera)) : shown();
    }
    bool needsGathering() const {
        const FakeKind seen = shownInTheEnd();
        return !opensNothing() && (seen == FakeKind::AB || seen == FakeKind::AminB) && separate &&
               isToF(camera);
    }
    bool triesToInsert() const { return needsGathering() && hasBlock(on) && on != ViewOn::Raw; }
};

/// For the message of a row that fails.
void PrintTo(const Combination& given, std::ostream* out) {
    *out << "view " << int(given.on) << ", pictures " << int(given.kind) << ", camera " << int(given.camera)
         << (given.separate ? ", separate" : "") << (given.running ? ", running" : "")
         << (given.yes ? ", yes" : ", no") << (given.inserts ? "" : ", insertion fails");
}

/// All combinations that differ: an answer only where there is a question, a failing insertion only where a
/// block is inserted, separate phases only of pictures that have phases.
std::vector<Combination> combinations() {
    std::vector<Combination> all;
    for (const ViewOn on : {ViewOn::Nothing, ViewOn::Source, ViewOn::Block, ViewOn::Amplitude,
                            ViewOn::BehindAmplitude, ViewOn::Depth, ViewOn::Raw, ViewOn::BehindRaw,
                            ViewOn::Scene, ViewOn::LonelyScene, ViewOn::OwnImage}) {
        for (const FakeKind kind : {FakeKind::Unknown, FakeKind::Grey, FakeKind::AB, FakeKind::AminB,
                                    FakeKind::PhaseShift, FakeKind::Depth, FakeKind::Hybrid}) {
            const bool phases = kind == FakeKind::Grey || kind == FakeKind::AB || kind == FakeKind::AminB;
            for (const CameraKind camera :
                 {CameraKind::None, CameraKind::NotToF, CameraKind::ToF, CameraKind::Hybrid}) {
                for (int bits = 0; bits < 16; ++bits) {
                    const Combination made{
                        on, kind, camera, (bits & 1) != 0, (bits & 2) != 0, (bits & 4) == 0, (bits & 8) == 0};
                    if ((phases || !made.separate) && (made.asks() || made.yes) &&
                        (made.triesToInsert() || made.inserts)) {
                        all.push_back(made);
                    }
                }
            }
        }
    }
    return all;
}

struct Outcome {
    QStringList boxes;
    int views = 1;
    QString shape;
    bool running = false;
    CameraKind setUp = CameraKind::None;
};

Outcome expectedOutcome(const Combination& given) {
    const QString needs = QStringLiteral(
        "ToF 3D view works with (A and B) RAWX2 image or (A-B) RAW image containing all phases, "
        "or the image with ToF phase-shift and confidence, or X1X2X3 RAWX3 image.");
    Outcome outcome;
    outcome.running = given.running;
    outcome.shape = shapeBehind(given.on);
    if (given.opensNothing()) {
        outcome.views = 0;
        return outcome;
    }
    if (given.warns()) {
        outcome.boxes << line(QMessageBox::Warning, "Invalid input image", needs, QMessageBox::Ok,
                              QMessageBox::Ok);
    }
    if (given.asks()) {
        outcome.boxes << line(QMessageBox::Question, "Invalid input image", withQuestion(needs),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    }
    if (given.asks() && given.yes) {
        outcome.setUp = given.camera;
        outcome.running = outcome.running || hasBlock(given.on);
        if (given.shownInTheEnd() == FakeKind::Grey) {
            outcome.shape.replace(QLatin1Char('2'), QLatin1Char('3'));
        }
    }
    if (given.needsGathering() && given.triesToInsert() && given.inserts) {
        outcome.shape += QLatin1Char('3');
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
    ToFFixture rig;
    ASSERT_NO_FATAL_FAILURE(openOn(rig, given.on, given.kind, given.separate, cameras.of(given.camera)));
    const int followed = given.on == ViewOn::OwnImage ? rig.app.activeView : rig.view->viewId();
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
        EXPECT_EQ(rig.actions.views()[0]->connectedViewId(), followed);
    }
    EXPECT_EQ(rig.chainHost.calls.count("insertAfter"), given.triesToInsert() ? 1 : 0);
    EXPECT_EQ(shapeOf(rig.chain()), expected.shape);
    EXPECT_EQ(rig.chain()->started(), expected.running);
    EXPECT_EQ(cameras.state(), TableCameras::expectedState(expected.setUp));
}
INSTANTIATE_TEST_SUITE_P(ToFOpen3dView, Open3dViewTable, ::testing::ValuesIn(combinations()));

} // namespace
