#include "plugins/zplToF/view3d/CkToFScene.h"
#include "tests/plugins/zplToF/view3d/SourceInChain.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"
#include "tests/support/ModalDriver.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkLut.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMetaMethod>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QParameter>

namespace {

class ToF3DViewStateTest : public ViewTest {};

std::unique_ptr<CkImageData> somePhase() {
    return TestFrame::phase(4, 3, [](int x, int y) { return DepthPixel{float(x + y) + 1.0F, 0.1F}; });
}

std::unique_ptr<CkImageData> someDepth() {
    return TestFrame::depth(4, 3, [](int x, int y) { return DepthPixel{float(x + y) + 1.0F, 0.1F}; });
}

// ---- construction
// ------------------------------------------------------------------------------------------

TEST_F(ToF3DViewStateTest, AnEmptyStoreStartsWithTheDefaults) {
    const auto view = open();
    EXPECT_EQ(view->connectedViewId(), m_source.viewId());
    EXPECT_FALSE(view->options().opticalPath.compensateDistortion);
    EXPECT_EQ(view->options().opticalPath.lensFocalLengthMM, 3.5F);
    EXPECT_EQ(view->options().opticalPath.realDistanceOffsetM, -1.5F);
    EXPECT_TRUE(view->options().showBBox);
    EXPECT_FALSE(view->options().regulateInputFps);
    EXPECT_EQ(view->options().maxInputFps, 5.0F);
    EXPECT_EQ(view->model().zZoom(), 1.0F);
    EXPECT_EQ(view->model().depthTexResolutionW(), 640);
    EXPECT_EQ(view->depthFrame().depthDataKind(), EkDepthDataType::Generic);
    EXPECT_EQ(view->currentImage(), nullptr);
    EXPECT_TRUE(view->cloud().exportPoints().empty());
    EXPECT_TRUE(view->model().usesPoints());
    bool flag1 = false;
    bool flag2 = true;
    unsigned int bits = 0;
    EXPECT_NE(view->viewLut(&flag1, &flag2, &bits), nullptr);
    EXPECT_TRUE(flag1);
    EXPECT_FALSE(flag2);
    EXPECT_EQ(bits, 32U);
    EXPECT_NE(view->viewLut(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(m_host.settingsAlive(), 0);
}

TEST_F(ToF3DViewStateTest, EveryStoredKeyReachesTheView) {
    m_host.store(QStringLiteral("ToF.ShowBBox"), false);
    m_host.store(QStringLiteral("ToF.RegulateInputFps"), true);
    m_host.store(QStringLiteral("ToF.MaxInputFps"), 7.5F);
    m_host.store(QStringLiteral("ToF.OptCompensateDistorsion"), true);
    m_host.store(QStringLiteral("ToF.OptLensFocalLengthMM"), 8.0F);
    m_host.store(QStringLiteral("ToF.OptChipCellSizeMM"), 0.02F);
    m_host.store(QStringLiteral("ToF.OptCenterOffsetMM"), QPointF(0.5, -0.25));
    m_host.store(QStringLiteral("ToF.OptModulationFreq"), 20.0F);
    m_host.store(QStringLiteral("ToF.OptConfidenceThreshold"), 0.5F);
    m_host.store(QStringLiteral("ToF.OptRealDistandeOffsetM"), 0.25F);
    m_host.store(QStringLiteral("ToF.OptOrthoRadialCorrection"), false);
    m_host.store(QStringLiteral("ToF.LUTPseudoColor"), 2);
    m_host.store(QStringLiteral("ToF.DepthTexResolutionW"), 320);
    m_host.store(QStringLiteral("ToF.BgColor"), 0x102030U);
    const auto view = open();
    const SkToFViewSettings& options = view->options();
    EXPECT_FALSE(options.showBBox);
    EXPECT_TRUE(options.regulateInputFps);
    EXPECT_EQ(options.maxInputFps, 7.5F);
    EXPECT_TRUE(options.opticalPath.compensateDistortion);
    EXPECT_EQ(options.opticalPath.lensFocalLengthMM, 8.0F);
    EXPECT_EQ(options.opticalPath.chipCellSizeMM, 0.02F);
    EXPECT_EQ(options.opticalPath.centerOffsetMM, QPointF(0.5, -0.25));
    EXPECT_EQ(options.opticalPath.modulationFreqMHz, 20.0F);
    EXPECT_EQ(options.opticalPath.confidenceThreshold, 0.5F);
    EXPECT_EQ(options.opticalPath.realDistanceOffsetM, 0.25F);
    EXPECT_FALSE(options.opticalPath.orthoRadialCorrection);
    EXPECT_EQ(view->viewLut(nullptr, nullptr, nullptr)->pseudoColorIndex(), 2);
    // Stored for other tools; every view starts with 640.
    EXPECT_EQ(view->model().depthTexResolutionW(), 640);
    ASSERT_NE(view->scene(), nullptr);
    EXPECT_EQ(view->scene()->clearColor(), QColor(16, 32, 48));
}

TEST_F(ToF3DViewStateTest, JunkInTheStoreIsPassedOver) {
    for (const char* key :
         {"ToF.ShowBBox", "ToF.RegulateInputFps", "ToF.MaxInputFps", "ToF.OptCompensateDistorsion",
          "ToF.OptLensFocalLengthMM", "ToF.OptChipCellSizeMM", "ToF.OptCenterOffsetMM",
          "ToF.OptModulationFreq", "ToF.OptConfidenceThreshold", "ToF.OptRealDistandeOffsetM",
          "ToF.OptOrthoRadialCorrection", "ToF.LUTPseudoColor", "ToF.DepthTexResolutionW", "ToF.BgColor"}) {
        m_host.store(QLatin1String(key), QStringLiteral("junk"));
    }
    m_source.shown = somePhase();
    const auto view = open();
    EXPECT_EQ(view->options(), SkToFViewSettings());
    EXPECT_EQ(view->scene()->clearColor(), QColor(48, 48, 128));
    EXPECT_EQ(view->cloud().pointCount(), 12);
}

TEST_F(ToF3DViewStateTest, APhaseThresholdIsReplacedForDepthAndStaysStored) {
    m_host.store(QStringLiteral("ToF.OptConfidenceThreshold"), 10.0F);
    m_source.shown = someDepth();
    const auto view = open();
    EXPECT_EQ(view->depthFrame().depthDataKind(), EkDepthDataType::Depth);
    EXPECT_EQ(view->options().opticalPath.confidenceThreshold, 0.6F);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.OptConfidenceThreshold")).toFloat(), 10.0F);
}

TEST_F(ToF3DViewStateTest, APhaseThresholdIsKeptForPhases) {
    m_source.shown = somePhase();
    EXPECT_EQ(open()->options().opticalPath.confidenceThreshold, 10.0F);
}

TEST_F(ToF3DViewStateTest, AThresholdUpToOneIsKeptForDepth) {
    m_host.store(QStringLiteral("ToF.OptConfidenceThreshold"), 1.0F);
    m_source.shown = someDepth();
    EXPECT_EQ(open()->options().opticalPath.confidenceThreshold, 1.0F);
}

TEST_F(ToF3DViewStateTest, TheRendererVariableIsOpenglAfterEveryConstruction) {
    for (const char* before : {"", "rhi"}) {
        qputenv("QT3D_RENDERER", before);
        const auto view = open();
        EXPECT_EQ(qgetenv("QT3D_RENDERER"), QByteArray("opengl"));
    }
}

TEST_F(ToF3DViewStateTest, TheSmallestSizeIs192x160) {
    const auto view = open();
    EXPECT_EQ(view->minimumSize(), QSize(192, 160));
    EXPECT_EQ(view->viewCaps(), 0);
    EXPECT_FALSE(view->containsData());
}

TEST_F(ToF3DViewStateTest, ToolBarHoldsItsItemsInOrder) {
    const auto view = open();
    const auto* toolBar = view->findChild<QToolBar*>();
    ASSERT_NE(toolBar, nullptr);
    QStringList items;
    for (QAction* item : toolBar->actions()) {
        QWidget* widget = toolBar->widgetForAction(item);
        const auto* button = qobject_cast<QToolButton*>(widget);
        if (item->isSeparator()) {
            items << QStringLiteral("|");
        } else if (button != nullptr && button->menu() != nullptr) {
            items << button->text() + QStringLiteral("[menu]");
            EXPECT_EQ(button->popupMode(), QToolButton::InstantPopup);
            QStringList entries;
            for (const QAction* entry : button->menu()->actions()) {
                entries << entry->text();
            }
            EXPECT_EQ(entries.join(QLatin1Char(' ')), QStringLiteral("0.2x 0.5x 1x 2x 5x 10x 20x 50x 100x"));
        } else if (qobject_cast<QLabel*>(widget) != nullptr) {
            items << QStringLiteral("label");
        } else if (button == nullptr) {
            items << QStringLiteral("spacer");
            EXPECT_EQ(widget->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
        } else {
            items << item->text();
        }
    }
    EXPECT_EQ(items, QStringList({QStringLiteral("Settings..."), QStringLiteral("Z-Zoom [menu]"),
                                  QStringLiteral("Screenshot"), QStringLiteral("Export data"),
                                  QStringLiteral("|"), QStringLiteral("Default position"),
                                  QStringLiteral("spacer"), QStringLiteral("label")}));
    EXPECT_FALSE(action(*view, QStringLiteral("Export data"))->isEnabled());
}

TEST_F(ToF3DViewStateTest, TheSlotsStandInTheirOrder) {
    const QMetaObject& meta = CkToF3DMdiView::staticMetaObject;
    QStringList slotNames;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Slot) {
            slotNames << QString::fromLatin1(meta.method(i).methodSignature());
        }
    }
    EXPECT_EQ(
        slotNames,
        QStringList({QStringLiteral("showBoundingBox(bool)"), QStringLiteral("selectBgColor(uint)"),
                     QStringLiteral("showOpticalPathDlg()"), QStringLiteral("onOpticalPathDlgValueChanged()"),
                     QStringLiteral("onConfidenceThresholdChanged(float)"),
                     QStringLiteral("onZZoomChanged()"), QStringLiteral("onDepthResChanged()"),
                     QStringLiteral("moveToDefault3DPosition()"), QStringLiteral("saveScreenshot()"),
                     QStringLiteral("onScreenshotRequestCompleted()"), QStringLiteral("exportPointCould()"),
                     QStringLiteral("shaderProgramLogChanged(QString)")}));
}

// ---- title and provider
// ------------------------------------------------------------------------------------

TEST_F(ToF3DViewStateTest, WithoutAChainItIsCalledToF3DView) {
    EXPECT_EQ(open()->viewTitle(), QStringLiteral("ToF 3D view"));
}

TEST_F(ToF3DViewStateTest, InAChainItIsCalledAfterTheChain) {
    const SourceInChain source;
    const CkChain* chain = source.chain;
    PushSource* block = source.block;
    {
        CkMdiView followed(block);
        m_host.registerView(&followed);
        const CkToF3DMdiView view(followed.viewId(), -1, nullptr, nullptr);
        EXPECT_EQ(view.dataProvider(), block);
        EXPECT_EQ(view.viewTitle(), chain->chainTitle(block) + QStringLiteral(" (ToF 3D)"));
        EXPECT_EQ(view.windowTitle(), view.viewTitle());
    }
}

TEST_F(ToF3DViewStateTest, CameraHandlesAreThoseOfTheConnectedView) {
    int camera = 0;
    m_source.handles = {&camera};
    const auto view = open();
    EXPECT_EQ(view->cameraHandles(), QList<void*>{&camera});
    m_host.unregisterView(m_source.viewId());
    EXPECT_TRUE(view->cameraHandles().isEmpty());
    EXPECT_EQ(view->dataProvider(), nullptr);
}

// ---- cloning
// -----------------------------------------------------------------------------------------------

TEST_F(ToF3DViewStateTest, ACloneOf640x480Is496x372) {
    const SourceInChain source;
    const auto view = open();
    CkMdiView* clone = view->clone(source.block, nullptr);
    ASSERT_NE(clone, nullptr);
    EXPECT_EQ(clone->size(), QSize(496, 372));
    EXPECT_NE(qobject_cast<CkToF3DMdiView*>(clone), nullptr);
    EXPECT_EQ(clone->connectedViewId(), view->connectedViewId());
    ASSERT_EQ(m_host.addedViews.size(), 1);
    EXPECT_EQ(m_host.addedViews[0], clone);
    delete clone;
}

// No frames are forwarded to it: the host has no view of the identifier it follows.
TEST_F(ToF3DViewStateTest, ACloneShowsTheFramesOfItsOwnBlock) {
    const SourceInChain source;
    const auto view = open();
    CkMdiView* clone = view->clone(source.block, nullptr);
    ASSERT_NE(clone, nullptr);
    ASSERT_TRUE(source.chain->start());
    int reported = 0;
    QObject::connect(clone, &CkMdiView::receivedFrame, [&](qint32 id) {
        ++reported;
        EXPECT_NE(clone->imageData(id), nullptr);
    });
    for (quint64 i = 0; i < 3; ++i) {
        ASSERT_TRUE(waitFor([&] { return source.block->push(i); }));
        ASSERT_TRUE(waitFor([&] { return reported == int(i) + 1; }));
        ASSERT_NE(clone->currentImage(), nullptr);
        EXPECT_EQ(clone->currentImage()->frameId(), qint32(i));
    }
    EXPECT_EQ(qobject_cast<CkToF3DMdiView*>(clone)->depthFrame().depthDataKind(),
              EkDepthDataType::PhaseShift);
    delete clone;
    source.chain->stop();
}

TEST_F(ToF3DViewStateTest, NoCloneWithoutPicturesOrWithoutAFormat) {
    const auto view = open();
    EXPECT_EQ(view->clone(nullptr, nullptr), nullptr);
    CkChainable noPictures;
    EXPECT_EQ(view->clone(&noPictures, nullptr), nullptr);
    PushSource noFormat;
    EXPECT_EQ(view->clone(&noFormat, nullptr), nullptr);
    EXPECT_TRUE(m_host.addedViews.isEmpty());
}

// ---- colouring
// ---------------------------------------------------------------------------------------------

TEST_F(ToF3DViewStateTest, TheFirstPictureTakesTheHostsTable) {
    m_source.shown = somePhase();
    const auto view = open();
    EXPECT_EQ(m_host.calls.count(QStringLiteral("createLut")), 1);
    const CkLut* lut = view->viewLut(nullptr, nullptr, nullptr);
    ASSERT_NE(lut, nullptr);
    EXPECT_EQ(lut->bitsPerChannel(), 32U);
    EXPECT_EQ(m_host.calls.last(), QStringLiteral("viewLutChanged %1").arg(view->viewId()));
    EXPECT_FALSE(m_host.calls.contains(QStringLiteral("refreshLutControls")));

    // Further pictures of the same bit depth keep it.
    m_host.calls.clear();
    give(*view, somePhase());
    EXPECT_EQ(view->viewLut(nullptr, nullptr, nullptr), lut);
    EXPECT_TRUE(m_host.calls.isEmpty());
}

TEST_F(ToF3DViewStateTest, AnotherDepthTransformsTheTableAndRefreshesTheControlsOfTheActiveView) {
    m_source.shown = somePhase();
    const auto view = open();
    view->viewLut(nullptr, nullptr, nullptr)->setPseudoColorIndex(4);
    m_host.activeView = view->viewId();
    m_host.calls.clear();
    give(*view, TestFrame::bytes(4, 3, [](int, int) { return 9; }));
    const CkLut* lut = view->viewLut(nullptr, nullptr, nullptr);
    EXPECT_EQ(lut->bitsPerChannel(), 8U);
    EXPECT_EQ(lut->pseudoColorIndex(), 4);
    EXPECT_EQ(m_host.calls, QStringList({QStringLiteral("refreshLutControls"),
                                         QStringLiteral("viewLutChanged %1").arg(view->viewId())}));
}

TEST_F(ToF3DViewStateTest, ATableThatIsSetIsTakenOverAndItsMapRemembered) {
    const auto view = open();
    auto* lut = new CkLut(8, 1, false, EkImageDataType::UInt8);
    lut->setPseudoColorIndex(2);
    view->setViewLut(lut, false, true, true);
    bool flag1 = true;
    bool flag2 = false;
    EXPECT_EQ(view->viewLut(&flag1, &flag2, nullptr), lut);
    EXPECT_FALSE(flag1);
    EXPECT_TRUE(flag2);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.LUTPseudoColor")).toInt(), 2);

    view->setViewLut(nullptr, true, false, true);
    EXPECT_EQ(view->viewLut(&flag1, &flag2, nullptr), lut);
    EXPECT_TRUE(flag1);
    EXPECT_FALSE(flag2);
    // The same table again, changed in place.
    lut->setPseudoColorIndex(3);
    view->setViewLut(lut, true, false, false);
    EXPECT_EQ(view->viewLut(nullptr, nullptr, nullptr), lut);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.LUTPseudoColor")).toInt(), 3);
}

TEST_F(ToF3DViewStateTest, TheFirstTableComesFromTheStoreWhenTheHostHasNone) {
    m_host.provideLuts = false;
    m_host.store(QStringLiteral("ToF.LUTPseudoColor"), 5);
    m_source.shown = somePhase();
    const auto view = open();
    ASSERT_NE(view->viewLut(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(view->viewLut(nullptr, nullptr, nullptr)->pseudoColorIndex(), 5);
    EXPECT_EQ(view->cloud().pointCount(), 12);
}

// ---- without an application
// --------------------------------------------------------------------------------

TEST_F(ToF3DViewStateTest, WorksOutsideAnApplication) {
    IkAppDelegate::setInstance(nullptr);
    CkToF3DMdiView view(3, -1, nullptr, nullptr);
    give(view, somePhase());
    view.showBoundingBox(false);
    view.selectBgColor(0xff0000);
    view.updateAfterDistanceOffsetChanged();
    EXPECT_EQ(view.clone(nullptr, nullptr), nullptr);
    EXPECT_NE(view.currentImage(), nullptr);
    IkAppDelegate::setInstance(&m_host);
}

// ---- parameters of the scene
// -------------------------------------------------------------------------------

TEST_F(ToF3DViewStateTest, AResizeTo800x400SetsTheWindowSizeToHalf) {
    const auto view = open();
    show(*view, QSize(800, 400));
    ASSERT_NE(view->scene()->billboards().windowSize, nullptr);
    EXPECT_EQ(view->scene()->billboards().windowSize->name(), QStringLiteral("parWindowSize"));
    EXPECT_EQ(view->scene()->billboards().windowSize->value().toPointF(), QPointF(0.5, 1.0));
}

TEST_F(ToF3DViewStateTest, ThePointSizeFollowsTheWidthOfThePicture) {
    const auto view = open();
    const Qt3DRender::QParameter* size = view->scene()->billboards().pointSize;
    EXPECT_EQ(size->name(), QStringLiteral("parPointSize"));
    EXPECT_EQ(size->value().toPointF(), QPointF(0.01, 0.01));
    view->updateDepthImage(TestFrame::bytes(8, 4, [](int, int) { return 1; }).get());
    view->updatePointCloudGeometry();
    EXPECT_EQ(size->value().toPointF(), QPointF(0.5, 0.5));
}

} // namespace
