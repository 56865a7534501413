#include "tests/plugins/zplToF/integration/ActionTable.h"

namespace {

enum class Failure { Nothing, Remove, CloseView, CreateChain, InsertAfter, BranchAfter, OpenView };

struct Combination {
    ViewOn on;
    FakeKind kind;
    CameraKind camera;
    Failure failure = Failure::Nothing;
    bool separate = false;
    bool running = false;
    bool yes = true;

    bool isNoToFPicture() const {
        const FakeKind shown = shownKind(on, kind);
        return shown == FakeKind::Unknown || shown == FakeKind::Grey;
    }
    bool asks() const { return hasBlock(on) && isNoToFPicture() && isToF(camera); }
    bool isSetUp() const { return asks() && yes; }
    FakeKind sourceInTheEnd() const { return isSetUp() ? kindAfterSetUp(kind, camera) : kind; }
    /// An unknown format, and that of a block that makes grey pictures, does not change.
    bool goesOn() const {
        return hasBlock(on) && (!isNoToFPicture() || (isSetUp() && isRaw(shownKind(on, sourceInTheEnd()))));
    }
};

/// For the message of a row that fails.
void PrintTo(const Combination& given, std::ostream* out) {
    *out << "view " << int(given.on) << ", pictures " << int(given.kind) << ", camera " << int(given.camera)
         << ", failure " << int(given.failure) << (given.separate ? ", separate" : "")
         << (given.running ? ", running" : "") << (given.yes ? ", yes" : ", no");
}

/// All combinations that differ: an answer only where there is a question, failures only where the action
/// gets that far.
std::vector<Combination> combinations() {
    std::vector<Combination> all;
    const auto add = [&all](Combination made) {
        for (const bool running : {false, true}) {
            made.running = running;
            for (const bool yes : {true, false}) {
                made.yes = yes;
                if (yes || made.asks()) {
                    all.push_back(made);
                }
            }
        }
    };
    for (const FakeKind kind : {FakeKind::Unknown, FakeKind::Grey, FakeKind::AB, FakeKind::AminB,
                                FakeKind::PhaseShift, FakeKind::Depth, FakeKind::Hybrid}) {
        const bool phases = kind == FakeKind::Grey || kind == FakeKind::AB || kind == FakeKind::AminB;
        for (const ViewOn on : {ViewOn::Nothing, ViewOn::Source, ViewOn::Block, ViewOn::Amplitude,
                                ViewOn::BehindAmplitude, ViewOn::Depth, ViewOn::Raw, ViewOn::BehindRaw,
                                ViewOn::Scene, ViewOn::LonelyScene, ViewOn::OwnImage}) {
            for (const CameraKind camera :
                 {CameraKind::None, CameraKind::NotToF, CameraKind::ToF, CameraKind::Hybrid}) {
                add({on, kind, camera});
                if (phases) {
                    add({on, kind, camera, Failure::Nothing, true});
                }
            }
        }
        if (kind == FakeKind::Unknown) {
            continue;
        }
        for (const Failure failure : {Failure::Remove, Failure::CloseView, Failure::CreateChain,
                                      Failure::InsertAfter, Failure::BranchAfter, Failure::OpenView}) {
            add({ViewOn::Source, kind, CameraKind::ToF, failure});
            if (kind == FakeKind::AB) {
                add({ViewOn::Depth, kind, CameraKind::ToF, failure});
            }
        }
    }
    return all;
}

struct Outcome {
    QStringList boxes;
    CameraKind setUp = CameraKind::None;
    bool replaced = false; ///< the old view and chain are gone
    bool sourceLives = true;
    bool running = false; ///< the chain that has the source
    QString shape;        ///< of that chain
    int imageViews = 0;   ///< opened
    int scenes = 0;       ///< opened
};

Outcome expectedOutcome(const Combination& given) {
    const QString needs = QStringLiteral(
        "ToF processing needs (A and B) RAWX2, or (A minus B) RAW image, or X1X2X3 RAWX3 image.");
    Outcome outcome;
    outcome.running = given.running;
    outcome.shape = shapeBehind(given.on);
    if (!hasBlock(given.on)) {
        return outcome;
    }
    if (given.asks()) {
        outcome.boxes << line(QMessageBox::Question, "Invalid input image", withQuestion(needs),
                              QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Yes);
        outcome.setUp = given.yes ? given.camera : CameraKind::None;
        outcome.running = given.running || given.yes;
    } else if (given.isNoToFPicture()) {
        outcome.boxes << line(QMessageBox::Critical, "Invalid input image", needs, QMessageBox::Ok,
                              QMessageBox::Ok);
    }
    if (!given.goesOn() || given.failure == Failure::Remove) {
        return outcome;
    }
    outcome.replaced = true;
    outcome.sourceLives = given.failure != Failure::CreateChain && given.failure != Failure::InsertAfter;
    if (!outcome.sourceLives) {
        return outcome;
    }
    outcome.running = true;
    outcome.shape.clear();
    if (given.failure != Failure::BranchAfter && given.failure != Failure::OpenView) {
        const FakeKind source = given.sourceInTheEnd();
        const bool hasIntensity = source == FakeKind::AB || source == FakeKind::Hybrid;
        outcome.shape = hasIntensity ? QStringLiteral("321") : QStringLiteral("32");
        outcome.imageViews = int(outcome.shape.size());
        outcome.scenes = 1;
    }
    return outcome;
}

void letFail(ToFFixture& rig, Failure failure) {
    switch (failure) {
    case Failure::Nothing:
        break;
    case Failure::Remove:
        rig.chainHost.failing << QStringLiteral("remove");
        break;
    case Failure::CloseView:
        rig.app.closingSucceeds = false;
        break;
    case Failure::CreateChain:
        rig.chainHost.failing << QStringLiteral("createChain");
        break;
    case Failure::InsertAfter:
        rig.chainHost.failing << QStringLiteral("insertAfter");
        break;
    case Failure::BranchAfter:
        rig.chainHost.failing << QStringLiteral("branchAfter");
        break;
    case Failure::OpenView:
        rig.app.makeImageView = [](CkChainable*) -> CkMdiView* { return nullptr; };
        break;
    }
}

class OpenAllTable : public ::testing::TestWithParam<Combination> {};

TEST_P(OpenAllTable, BoxesChainsCameraAndViews) {
    const Combination& given = GetParam();
    const Outcome expected = expectedOutcome(given);
    const TableCameras cameras;
    const int sourcesBefore = FakeSource::alive;
    ToFFixture rig;
    ASSERT_NO_FATAL_FAILURE(openOn(rig, given.on, given.kind, given.separate, cameras.of(given.camera)));
    rig.answer = given.yes ? QMessageBox::Yes : QMessageBox::Cancel;
    letFail(rig, given.failure);
    if (given.running) {
        ASSERT_TRUE(rig.chain()->start());
    }
    const QPointer<CkMdiView> oldView = rig.view;
    const QPointer<CkChain> oldChain = rig.chain();
    const int oldViewId = rig.view->viewId();
    CkChainable* const source = rig.source;
    rig.actions.openAllToFViews();
    rig.view = oldView;

    EXPECT_EQ(rig.boxLines(), expected.boxes);
    EXPECT_EQ(cameras.state(), TableCameras::expectedState(expected.setUp));
    EXPECT_EQ(oldChain.isNull(), expected.replaced);
    EXPECT_EQ(rig.app.calls.count(QStringLiteral("closeView %1").arg(oldViewId)), expected.replaced ? 1 : 0);
    EXPECT_EQ(oldView.isNull(), expected.replaced && given.failure != Failure::CloseView);
    EXPECT_EQ(FakeSource::alive, sourcesBefore + (expected.sourceLives ? 1 : 0));

    const QList<CkChain*> chains = CkChainManager::instance()->chains();
    ASSERT_EQ(chains.size(), expected.sourceLives ? 1 : 0);
    if (expected.sourceLives) {
        EXPECT_EQ(source->chain(), chains[0]);
        EXPECT_EQ(chains[0]->started(), expected.running);
        EXPECT_EQ(shapeOf(chains[0]), expected.shape);
        if (expected.replaced) {
            EXPECT_EQ(chains[0]->successors(source).size(), expected.shape.size()) << "all fed by the source";
        }
    }
    const QStringList opened = rig.app.calls.filter(QStringLiteral("openImageView"));
    EXPECT_EQ(opened.size() - opened.count(QStringLiteral("openImageView -1")), expected.imageViews);
    ASSERT_EQ(rig.actions.views().size(), expected.scenes);
    EXPECT_EQ(rig.app.addedViews.size(), expected.scenes);
    if (expected.scenes == 1) {
        EXPECT_EQ(QStringLiteral("openImageView %1").arg(rig.actions.views()[0]->connectedViewId()),
                  opened.first());
    }
    EXPECT_EQ(rig.app.calls.contains("refreshViewArea"), expected.replaced && expected.sourceLives);
}
INSTANTIATE_TEST_SUITE_P(ToFOpenAllViews, OpenAllTable, ::testing::ValuesIn(combinations()));

} // namespace
