// What a view takes over from the host, its chain and other views, and what it returns to them.

#include "plugins/zplToF/view3d/CkToFScene.h"
#include "plugins/zplToF/view3d/ToFDistanceOffset.h"
#include "tests/plugins/zplToF/view3d/SourceInChain.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"
#include "tests/support/NamedBlock.h"
#include "zuCore/CkLut.h"

#include <QBoxLayout>
#include <QSignalSpy>
#include <QToolBar>

namespace {

class ToF3DViewHostTest : public ViewTest {
protected:
    static int pseudoColorOf(CkToF3DMdiView& view) {
        return view.viewLut(nullptr, nullptr, nullptr)->pseudoColorIndex();
    }
};

std::unique_ptr<CkImageData> somePhase() {
    return TestFrame::phase(4, 3, [](int x, int y) { return DepthPixel{float(x + y) + 1.0F, 0.1F}; });
}

// ---- title
// -------------------------------------------------------------------------------------------------

TEST_F(ToF3DViewHostTest, TheTitleFollowsTheBlockOfTheViewThatIsFollowed) {
    const SourceInChain source;
    auto* block = new NamedBlock;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(source.chain, block, source.block));
    CkMdiView followed(block);
    m_host.registerView(&followed);
    const CkToF3DMdiView view(followed.viewId(), -1, nullptr, nullptr);
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - Named (ToF 3D)"));
    QSignalSpy titles(&view, &CkMdiView::viewTitleChanged);
    block->rename(QStringLiteral("Another"));
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - Another (ToF 3D)"));
    EXPECT_EQ(view.windowTitle(), view.viewTitle());
    EXPECT_EQ(titles.count(), 1);
}

TEST_F(ToF3DViewHostTest, TheTitleOfACloneFollowsItsOwnBlock) {
    const SourceInChain source;
    auto* block = new NamedBlock;
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(source.chain, block, source.block));
    const CkToF3DMdiView view(-1, -1, block, nullptr);
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - Named (ToF 3D)"));
    block->rename(QStringLiteral("Another"));
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - Another (ToF 3D)"));
}

TEST_F(ToF3DViewHostTest, TheTitleOfAViewWhoseChainIsGoneTellsWhatItShows) {
    auto source = std::make_unique<SourceInChain>();
    CkMdiView followed(source->block);
    m_host.registerView(&followed);
    const CkToF3DMdiView view(followed.viewId(), -1, nullptr, nullptr);
    source.reset();
    followed.setWindowTitle(QStringLiteral("Renamed"));
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push (ToF 3D)"));
}

// ---- frames
// ------------------------------------------------------------------------------------------------

// With the limit on, only the first frame becomes a cloud; every frame is reported with its pixels.
TEST_F(ToF3DViewHostTest, FramesOfItsOwnBlockAreAnsweredThemselves) {
    for (const bool limited : {false, true}) {
        m_host.store(QStringLiteral("ToF.RegulateInputFps"), limited);
        m_host.store(QStringLiteral("ToF.MaxInputFps"), 0.001F);
        const SourceInChain source;
        CkToF3DMdiView view(-1, -1, source.block, nullptr);
        ASSERT_TRUE(source.chain->start());
        QList<qint32> reported;
        QObject::connect(&view, &CkMdiView::receivedFrame, [&](qint32 id) {
            reported << id;
            const CkImageData* frame = view.imageData(id);
            ASSERT_NE(frame, nullptr) << id;
            EXPECT_EQ(frame->frameId(), id);
            EXPECT_EQ(frame->picBuf().channels, 2U);
        });
        for (qint32 i = 1; i <= 3; ++i) {
            letEventsHappen(2);
            ASSERT_TRUE(waitFor([&] { return source.block->push(quint64(i)); }));
            ASSERT_TRUE(waitFor([&] { return reported.size() == i; }));
            // A receiver that is notified through the queue finds it, too.
            ASSERT_NE(view.imageData(i), nullptr);
            EXPECT_EQ(view.imageData(i)->picBuf().channels, 2U);
        }
        EXPECT_EQ(reported, QList<qint32>({1, 2, 3}));
        ASSERT_NE(view.currentImage(), nullptr);
        EXPECT_EQ(view.currentImage()->frameId(), limited ? 1 : 3);
        EXPECT_EQ(view.currentImage()->picBuf().channels, 1U);
        source.chain->stop();
    }
}

TEST_F(ToF3DViewHostTest, AFrameThatComesTooEarlyIsReportedAllTheSame) {
    m_host.store(QStringLiteral("ToF.RegulateInputFps"), true);
    m_host.store(QStringLiteral("ToF.MaxInputFps"), 0.001F);
    const auto view = open();
    QList<qint32> reported;
    const CkImageData* answered = nullptr;
    QObject::connect(view.get(), &CkMdiView::receivedFrame, [&](qint32 id) {
        reported << id;
        answered = view->imageData(id);
    });
    const auto at = [](int, int) { return DepthPixel{2.0F, 0.1F}; };
    const auto first = TestFrame::phase(8, 6, at, 1);
    const auto second = TestFrame::phase(8, 6, at, 2);
    give(*view, first);
    letEventsHappen(5);
    give(*view, second);
    EXPECT_EQ(reported, QList<qint32>({1, 2}));
    EXPECT_EQ(answered, second.get());
    EXPECT_EQ(view->currentImage()->frameId(), 1);
}

// The interval begins with the last frame shown: dropped frames do not delay the next one.
TEST_F(ToF3DViewHostTest, TheFirstFrameAfterTheIntervalIsShown) {
    m_host.store(QStringLiteral("ToF.RegulateInputFps"), true);
    m_host.store(QStringLiteral("ToF.MaxInputFps"), 2.0F);
    const auto view = open();
    give(*view, TestFrame::phase(8, 6, [](int, int) { return DepthPixel{1.0F, 0.1F}; }));
    letEventsHappen(5);
    const auto later = TestFrame::phase(8, 6, [](int, int) { return DepthPixel{3.0F, 0.1F}; });
    EXPECT_TRUE(waitFor([&] {
        give(*view, later);
        return view->depthFrame().depthPic().maxValue == 3.0F;
    }));
}

// ---- colouring
// ---------------------------------------------------------------------------------------------

TEST_F(ToF3DViewHostTest, AViewOpenedBeforeItsFirstPictureTakesTheHostsColoursToo) {
    m_host.lutPseudoColor = 2;
    const auto before = open();
    give(*before, somePhase());
    EXPECT_EQ(pseudoColorOf(*before), 2);
    EXPECT_EQ(m_host.calls.count(QStringLiteral("createLut")), 1);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.LUTPseudoColor")).toInt(), 2);

    m_source.shown = somePhase();
    const auto after = open();
    EXPECT_EQ(pseudoColorOf(*after), 2);
}

TEST_F(ToF3DViewHostTest, ColoursThatWereChosenOutliveTheFirstPicture) {
    m_host.lutPseudoColor = 2;
    const auto chosen = open();
    CkLut* lut = chosen->viewLut(nullptr, nullptr, nullptr);
    lut->setPseudoColorIndex(4);
    chosen->setViewLut(lut, true, false, true);
    give(*chosen, somePhase());
    EXPECT_EQ(pseudoColorOf(*chosen), 4);

    // Chosen in an earlier view.
    const auto next = open();
    give(*next, somePhase());
    EXPECT_EQ(pseudoColorOf(*next), 4);
    EXPECT_FALSE(m_host.calls.contains(QStringLiteral("createLut")));
}

TEST_F(ToF3DViewHostTest, AHostWithoutTablesLeavesTheViewItsOwn) {
    m_host.provideLuts = false;
    const auto view = open();
    give(*view, somePhase());
    EXPECT_EQ(view->viewLut(nullptr, nullptr, nullptr)->bitsPerChannel(), 32U);
    view->updatePointCloudGeometry();
    EXPECT_EQ(view->cloud().pointCount(), 12);
}

TEST_F(ToF3DViewHostTest, TheHostIsToldTheCamerasOfTheFollowedView) {
    int camera = 0;
    m_source.handles = {&camera};
    m_source.shown = somePhase();
    const auto view = open();
    EXPECT_EQ(m_host.lutHandles, QList<void*>{&camera});
}

TEST_F(ToF3DViewHostTest, ATableThatIsSetColoursThePictureAtOnceOnlyWhenAsked) {
    m_source.shown = somePhase();
    const auto view = open();
    const auto colours = [&] { return view->cloud().vertexBytes(); };
    const QByteArray grey = colours();
    CkLut* lut = view->viewLut(nullptr, nullptr, nullptr);
    lut->setPseudoColorIndex(2);
    view->setViewLut(lut, true, false, false);
    EXPECT_EQ(colours(), grey);
    view->setViewLut(lut, true, false, true);
    EXPECT_NE(colours(), grey);
}

// ---- clones
// ------------------------------------------------------------------------------------------------

TEST_F(ToF3DViewHostTest, ACloneHasTheBlocksItWasGiven) {
    const SourceInChain source;
    const SourceInChain second;
    const auto view = open();
    m_host.unregisterView(m_source.viewId());
    CkMdiView* clone = view->clone(source.block, second.block);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->connectedViewId(), m_source.viewId());
    EXPECT_EQ(clone->dataProvider(), source.block);
    EXPECT_EQ(clone->secondProvider(), second.block);
    delete clone;
}

TEST_F(ToF3DViewHostTest, ACloneHasBothIdsOfTheView) {
    const SourceInChain source;
    CkToF3DMdiView view(7, 9, nullptr, nullptr);
    const std::unique_ptr<CkMdiView> clone(view.clone(source.block, nullptr));
    const auto* const twin = qobject_cast<CkToF3DMdiView*>(clone.get());
    ASSERT_NE(twin, nullptr);
    EXPECT_EQ(twin->connectedViewId(), 7);
    EXPECT_EQ(twin->secondViewId(), 9);
}

TEST_F(ToF3DViewHostTest, ACloneOfAVeryHighOrWidePictureHasASize) {
    const auto view = open();
    const auto sizeFor = [&](quint32 width, quint32 height) {
        const SourceInChain source;
        source.block->setFormat(width, height, 1, EkImageDataType::UInt8, 8);
        const std::unique_ptr<CkMdiView> clone(view->clone(source.block, nullptr));
        return clone ? clone->size() : QSize();
    };
    EXPECT_EQ(sizeFor(1, 5'000'000), QSize(496, QWIDGETSIZE_MAX));
    EXPECT_EQ(sizeFor(1, 4'000'000'000U), QSize(496, QWIDGETSIZE_MAX));
    EXPECT_EQ(sizeFor(496, 700), QSize(496, 700));
    // The minimum height of the view.
    EXPECT_EQ(sizeFor(5'000'000, 1), QSize(496, 160));
}

// ---- settings and layout
// -----------------------------------------------------------------------------------

TEST_F(ToF3DViewHostTest, EveryViewTakesOverANewDistanceOffset) {
    const auto first = open();
    const auto second = open();
    ToFDistanceOffset::store(0.25F);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.OptRealDistandeOffsetM")).toFloat(), 0.25F);
    EXPECT_EQ(first->options().opticalPath.realDistanceOffsetM, 0.25F);
    EXPECT_EQ(second->options().opticalPath.realDistanceOffsetM, 0.25F);
}

TEST_F(ToF3DViewHostTest, ToolBarAndSceneFillTheView) {
    const auto view = open();
    const auto* layout = qobject_cast<const QVBoxLayout*>(view->layout());
    ASSERT_NE(layout, nullptr);
    EXPECT_EQ(layout->contentsMargins(), QMargins(0, 0, 0, 0));
    EXPECT_EQ(layout->spacing(), 0);
    ASSERT_EQ(layout->count(), 2);
    show(*view, QSize(640, 480));
    const QRect toolBar = layout->itemAt(0)->geometry();
    const QRect scene = layout->itemAt(1)->geometry();
    EXPECT_EQ(layout->itemAt(0)->widget(), view->findChild<QToolBar*>());
    EXPECT_EQ(toolBar.topLeft(), QPoint(0, 0));
    EXPECT_EQ(toolBar.width(), 640);
    EXPECT_EQ(scene, QRect(0, toolBar.height(), 640, 480 - toolBar.height()));
}

} // namespace
