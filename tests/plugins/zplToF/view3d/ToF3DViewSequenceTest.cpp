// The screen shows the last frame, whatever frames came before it and however many of them came between two
// drawn ones. Runs once on X11 (points) and once on Wayland (quads).

#include "plugins/zplToF/view3d/CkToFColorTable.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include <QHash>
#include <QWidget>
#include <Qt3DExtras/Qt3DWindow>
#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace {

/// The look of a frame. Points that are shown have confidences below 0.5, all others above.
struct FrameKind {
    int width;
    int height;
    int shownRows;  ///< rows from the top whose points pass the threshold
    float nearness; ///< 0 to 1; where the depth begins
};

constexpr std::array kinds = {
    FrameKind{40, 30, 30, 0.0F}, FrameKind{40, 30, 30, 0.5F},  FrameKind{40, 30, 15, 0.0F},
    FrameKind{40, 30, 15, 0.5F}, FrameKind{40, 30, 0, 0.0F},   FrameKind{80, 60, 60, 0.0F},
    FrameKind{80, 60, 60, 0.5F}, FrameKind{80, 60, 15, 0.0F},  FrameKind{20, 15, 15, 0.0F},
    FrameKind{20, 15, 15, 0.5F}, FrameKind{30, 40, 40, 0.25F},
};

std::unique_ptr<CkImageData> frameOf(size_t kind) {
    const FrameKind& wanted = kinds.at(kind);
    return TestFrame::phase(wanted.width, wanted.height, [&](int x, int y) {
        const float shade = std::fmod(float(x) / float(wanted.width) + wanted.nearness, 1.0F);
        return DepthPixel{1.0F + 4.0F * shade, y < wanted.shownRows ? 0.1F : 0.9F};
    });
}

/// Something on screen that shows frames.
class Shown {
public:
    virtual ~Shown() = default;
    virtual void give(size_t kind) = 0;
    virtual CkToFScene& scene() = 0;
};

/// The view as the plug-in uses it.
class ShownView : public Shown {
public:
    ShownView(std::unique_ptr<CkToF3DMdiView> view, size_t kind) : m_view(std::move(view)) {
        m_view->onConfidenceThresholdChanged(0.5F);
        ShownView::give(kind);
        m_view->setMinimumSize(1, 1);
        m_view->resize(240, 200);
        m_view->show();
    }

    void give(size_t kind) override { m_view->updateWithConnectedImageData(frameOf(kind).get(), false); }
    CkToFScene& scene() override { return *m_view->scene(); }
    CkToF3DMdiView& view() { return *m_view; }

private:
    std::unique_ptr<CkToF3DMdiView> m_view;
};

/// The scene alone, for the vertex layout that views do not use on this platform.
class ShownScene : public Shown {
public:
    ShownScene(EkToFVertexLayout layout, size_t kind)
        : m_layout(layout), m_scene(CkToFScene::create(layout == EkToFVertexLayout::Points, Qt::darkBlue)) {
        m_colors.update(2);
        m_container.reset(m_scene->assemble(false));
        ShownScene::give(kind);
        m_container->resize(240, 160);
        m_container->show();
    }

    void give(size_t kind) override {
        const auto frame = frameOf(kind);
        ASSERT_TRUE(m_frame.update(frame->picBuf(), &frame->metadata(), 640));
        SkToFCloudParameters parameters;
        parameters.opticalPath.confidenceThreshold = 0.5F;
        parameters.pColourTable = m_colors.colors();
        parameters.layout = m_layout;
        ASSERT_TRUE(m_cloud.build(m_frame.pictures(), parameters));
        m_scene->setCloud(m_cloud);
        const auto [halfX, halfY, halfZ] = m_cloud.boxHalfExtents();
        m_scene->setBox(halfX, halfY, halfZ);
    }
    CkToFScene& scene() override { return *m_scene; }

private:
    const EkToFVertexLayout m_layout;
    CkToFColorTable m_colors;
    CkToFDepthFrame m_frame;
    CkToFCloudBuilder m_cloud;
    std::unique_ptr<CkToFScene> m_scene;
    std::unique_ptr<QWidget> m_container;
};

class ToF3DViewSequenceTest : public ViewTest {
protected:
    using Opener = std::function<std::unique_ptr<Shown>(size_t kind)>;
    using Sequence = std::vector<size_t>;

    ToF3DViewSequenceTest() {
        m_host.store(QStringLiteral("ToF.LUTPseudoColor"), 2);
        m_host.provideLuts = false;
    }

    Opener views() {
        return [this](size_t kind) { return std::make_unique<ShownView>(open(), kind); };
    }
    /// The other layout can be drawn, too, except for points on Wayland.
    static Opener quadsWithoutView() {
        return [](size_t kind) { return std::make_unique<ShownScene>(EkToFVertexLayout::Quads, kind); };
    }

    static QImage captureOf(Shown& shown) {
        EXPECT_TRUE(waitFor([&shown] { return shown.scene().isDrawn(); }));
        return capture(shown.scene());
    }

    /// The frame as a new target shows it that was given no other.
    const QImage& reference(const Opener& opener, size_t kind) {
        QImage& image = m_references[kind];
        if (image.isNull()) {
            image = captureOf(*opener(kind));
        }
        return image;
    }

    /// Passes all frames and draws only after the last one.
    void expectLastIsShown(const Opener& opener, Shown& shown, const Sequence& sequence) {
        for (const size_t kind : sequence) {
            shown.give(kind);
        }
        const QImage& expected = reference(opener, sequence.back());
        EXPECT_EQ(captureOf(shown), expected) << ::testing::PrintToString(sequence);
    }

    void walkThroughSizes(const Opener& opener);
    void walkAtRandom(const Opener& opener, unsigned seed, int sequences);

    QHash<size_t, QImage> m_references;
};

// The numbers are those of the kinds: 0 to 4 are equal in size, 5 to 7 larger, 8 and 9 smaller, 10 another
// shape.
void ToF3DViewSequenceTest::walkThroughSizes(const Opener& opener) {
    for (size_t kind = 1; kind < kinds.size(); ++kind) {
        EXPECT_NE(reference(opener, kind), reference(opener, kind - 1)) << kind << " cannot be told apart";
    }
    const std::unique_ptr<Shown> shown = opener(0);
    const std::vector<Sequence> sequences = {
        {1, 0},    {0, 1},    {0, 1, 0}, {2, 0},    {0, 2},    {1, 2, 3}, {3, 2, 0}, {0, 4},    {4, 0},
        {4, 4},    {2, 3},    {5, 6},    {6, 5},    {5, 5, 6}, {7, 5},    {5, 7},    {0, 0},    {8, 9},
        {9, 8},    {8, 8},    {0, 5},    {5, 0},    {0, 8, 0}, {5, 8, 5}, {6, 6},    {8, 5, 8}, {10, 0},
        {0, 10},   {10, 10},  {0, 6, 6}, {1, 5, 5}, {1, 1, 2}, {0, 1, 8}, {8, 9, 5}, {7, 2},    {2, 7},
        {8, 0, 1}, {5, 0, 1}, {6, 6, 0}, {0},       {1},       {5},       {6},       {8},       {0},
    };
    for (const Sequence& sequence : sequences) {
        expectLastIsShown(opener, *shown, sequence);
    }
}

// Some of the frames are drawn, or partly drawn, before the next one comes.
void ToF3DViewSequenceTest::walkAtRandom(const Opener& opener, unsigned seed, int sequences) {
    std::mt19937 random(seed);
    const auto below = [&random](size_t limit) { return random() % limit; };
    const std::unique_ptr<Shown> shown = opener(0);
    Sequence given{0};
    for (int i = 0; i < sequences && !HasFailure(); ++i) {
        const size_t frames = 2 + below(2);
        for (size_t j = 0; j < frames; ++j) {
            given.push_back(below(kinds.size()));
            shown->give(given.back());
            if (below(3) == 0) {
                letEventsHappen(int(below(25)));
            }
        }
        EXPECT_EQ(captureOf(*shown), reference(opener, given.back()))
            << "seed " << seed << ", " << ::testing::PrintToString(given);
    }
}

TEST_F(ToF3DViewSequenceTest, ViewsShowTheLastOfSeveralFramesOfAnySize) {
    walkThroughSizes(views());
}

TEST_F(ToF3DViewSequenceTest, ViewsShowTheLastFrameOfRandomSequences) {
    walkAtRandom(views(), 1, 200);
}

TEST_F(ToF3DViewSequenceTest, QuadsShowTheLastOfSeveralFramesOfAnySize) {
    walkThroughSizes(quadsWithoutView());
}

TEST_F(ToF3DViewSequenceTest, TwoThresholdsWithoutADrawingShowTheSecond) {
    ShownView shown(open(), 2);
    const QImage half = captureOf(shown);
    shown.view().onConfidenceThresholdChanged(1.0F);
    EXPECT_NE(captureOf(shown), half);
    shown.view().onConfidenceThresholdChanged(1.0F);
    shown.view().onConfidenceThresholdChanged(0.3F);
    EXPECT_EQ(captureOf(shown), half);
    shown.view().onConfidenceThresholdChanged(1.0F);
    EXPECT_NE(captureOf(shown), half);
}

TEST_F(ToF3DViewSequenceTest, TheBoxFollowsTheLastFrame) {
    m_host.store(QStringLiteral("ToF.ShowBBox"), true);
    expectLastIsShown(views(), *views()(5), {10, 8, 0});
    expectLastIsShown(views(), *views()(0), {0, 10, 10});
}

} // namespace
