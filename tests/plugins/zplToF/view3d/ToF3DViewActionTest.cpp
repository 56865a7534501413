#include "tests/plugins/zplToF/view3d/ViewActionRig.h"
#include "zuCore/CkLut.h"

#include <QAction>
#include <Qt3DCore/QEntity>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DInput/QAction>
#include <Qt3DRender/QCamera>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

class ToF3DViewActionTest : public ViewActionTest {};

// ---- cloud
// -------------------------------------------------------------------------------------------------

TEST_F(ToF3DViewActionTest, ByDefaultTheCloudIsNormalisedAndTheLabelEmpty) {
    m_source.shown = TestFrame::phase(8, 6, [](int x, int) { return DepthPixel{float(x), 0.1F}; });
    const auto view = open();
    ASSERT_EQ(view->cloud().pointCount(), 48);
    float smallest = 9.0F;
    float largest = -9.0F;
    for (const SkToFPoint& point : view->cloud().exportPoints()) {
        smallest = std::min(smallest, point.x);
        largest = std::max(largest, point.x);
        EXPECT_LE(std::abs(point.z), 0.6001F);
    }
    EXPECT_FLOAT_EQ(smallest, -1.0F);
    EXPECT_FLOAT_EQ(largest, 1.0F - 2.0F / 8.0F);
    EXPECT_FALSE(view->cloud().usedLens());
    EXPECT_EQ(label(*view), QString());
}

TEST_F(ToF3DViewActionTest, ConfidenceOfZeroKeepsEveryPhasePoint) {
    m_source.shown = phaseOf(1.0F, 0.0F);
    EXPECT_EQ(open()->cloud().pointCount(), 48);
}

TEST_F(ToF3DViewActionTest, PhaseAt30MHzShowsItsRangeInTheLabel) {
    useLens(0.0F);
    m_source.shown = phaseOf(Pi);
    const auto view = open();
    // 299.70254 / 60 = 4.995 m deep; half of 8 pixels of 0.01 mm at 3.5 mm: 2 x 4.995 x 0.04 / 3.5 = 0.11 m.
    EXPECT_EQ(label(*view), QStringLiteral("Width: 0.1 m Height: 0.1 m Depth: 5.0 m"));
    // Half a turn is half the range.
    EXPECT_NEAR(view->cloud().exportPoints()[0].z, 4995.04F / 2.0F, 0.05F);
}

TEST_F(ToF3DViewActionTest, ADistanceOf100MillimetresBelowZeroWrapsRound) {
    useLens(-2.59752F);
    m_source.shown = phaseOf(Pi);
    const auto view = open();
    // 2497.52 - 2597.52 = -100: placed at 4995.04 - 100.
    EXPECT_NEAR(view->cloud().exportPoints()[0].z, 4895.04F, 0.1F);
}

TEST_F(ToF3DViewActionTest, AnUnsupportedDataTypeGivesNoPointsAndNoExport) {
    m_source.shown = phaseOf(1.0F);
    const auto view = open();
    QAction* exporting = action(*view, QStringLiteral("Export data"));
    EXPECT_TRUE(exporting->isEnabled());
    const auto odd = TestFrame::zeroes(8, 6, 1, EkImageDataType::UInt64, 64);
    view->updateDepthImage(odd.get());
    view->updatePointCloudGeometry();
    EXPECT_EQ(view->cloud().pointCount(), 0);
    EXPECT_FALSE(exporting->isEnabled());
    EXPECT_EQ(view->scene()->cloudRenderer()->vertexCount(), 0);
}

TEST_F(ToF3DViewActionTest, AFrameWithoutPixelsChangesNothing) {
    m_source.shown = phaseOf(1.0F);
    const auto view = open();
    const CkImageData* before = view->currentImage();
    const CkImageData empty;
    view->updateWithConnectedImageData(&empty, true);
    view->updateWithConnectedImageData(nullptr, true);
    EXPECT_EQ(view->currentImage(), before);
    EXPECT_EQ(view->depthFrame().depthDataKind(), EkDepthDataType::PhaseShift);
}

// ---- frames
// ------------------------------------------------------------------------------------------------

TEST_F(ToF3DViewActionTest, EveryFrameIsReportedWithItsPictureBehindTheIdentifier) {
    const auto view = open();
    QList<qint32> reported;
    const auto frame = TestFrame::phase(
        8, 6,
        [](int, int) {
            return DepthPixel{2.0F, 0.1F};
        },
        41);
    connectReports(*view, [&](qint32 id) {
        reported << id;
        EXPECT_EQ(view->imageData(id), frame.get());
    });
    give(*view, frame);
    EXPECT_EQ(reported, QList<qint32>{41});
    // Afterwards the identifier answers the depth picture, for those who were told late.
    const CkImageData* data = view->imageData(41);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data, view->currentImage());
    EXPECT_EQ(data->picBuf().channels, 1U);
    EXPECT_EQ(data->metadata().channelNames.value(0), QStringLiteral("Phase shift"));
    EXPECT_EQ(view->imageData(40), nullptr);
}

TEST_F(ToF3DViewActionTest, AListenerMayCloseTheView) {
    auto view = open();
    connectReports(*view, [&](qint32) { view.reset(); });
    const auto frame = phaseOf(1.0F);
    view->updateWithConnectedImageData(frame.get(), false);
    EXPECT_EQ(view, nullptr);
}

TEST_F(ToF3DViewActionTest, AFrameBeforeTheLimitIsDroppedAForcedOneNever) {
    m_host.store(QStringLiteral("ToF.RegulateInputFps"), true);
    m_host.store(QStringLiteral("ToF.MaxInputFps"), 0.001F);
    const auto view = open();
    give(*view, phaseOf(1.0F));
    EXPECT_EQ(view->depthFrame().depthPic().maxValue, 1.0F);
    letEventsHappen(5);
    give(*view, phaseOf(2.0F));
    EXPECT_EQ(view->depthFrame().depthPic().maxValue, 1.0F);
    view->updateWithConnectedImageData(phaseOf(3.0F).get(), true);
    EXPECT_EQ(view->depthFrame().depthPic().maxValue, 3.0F);
}

TEST_F(ToF3DViewActionTest, ANewResolutionIsShownWhateverTheLimit) {
    m_host.store(QStringLiteral("ToF.RegulateInputFps"), true);
    m_host.store(QStringLiteral("ToF.MaxInputFps"), 0.001F);
    m_source.shown = TestFrame::bytes(64, 32, [](int x, int) { return 3 * x; });
    const auto view = open();
    show(*view);
    give(*view, m_source.shown);
    letEventsHappen(5);
    QAction narrow(QStringLiteral("16"), nullptr);
    QObject::connect(&narrow, SIGNAL(triggered()), view.get(), SLOT(onDepthResChanged()));
    narrow.trigger();
    EXPECT_EQ(view->depthFrame().depthPic().width, 16U);
    EXPECT_EQ(view->cloud().pointCount(), 16 * 8);
}

TEST_F(ToF3DViewActionTest, TheCamerasOwnLensAndFrequencyWinAndAreNotStored) {
    const auto view = open();
    auto frame = phaseOf(1.0F);
    CkImageMetadata metadata = frame->metadata();
    metadata.modulationFrequency = 60.0F;
    metadata.lensFocalLength = 6.0F;
    frame->setMetadata(metadata);
    give(*view, frame);
    EXPECT_EQ(view->options().opticalPath.modulationFreqMHz, 60.0F);
    EXPECT_EQ(view->options().opticalPath.lensFocalLengthMM, 6.0F);
    EXPECT_FALSE(m_host.stored(QStringLiteral("ToF.OptModulationFreq")).isValid());
    // 0 means unknown.
    metadata.modulationFrequency = 0.0F;
    metadata.lensFocalLength = -1.0F;
    frame->setMetadata(metadata);
    give(*view, frame);
    EXPECT_EQ(view->options().opticalPath.modulationFreqMHz, 60.0F);
    EXPECT_EQ(view->options().opticalPath.lensFocalLengthMM, 6.0F);
}

// ---- actions that change a parameter
// -----------------------------------------------------------------------

TEST_F(ToF3DViewActionTest, TheZoomMenuSetsTheZoom) {
    m_source.shown = TestFrame::bytes(4, 4, [](int x, int) { return 80 * x; });
    const auto view = open();
    const float before = view->cloud().exportPoints()[3].z;
    action(*view, QStringLiteral("0.5x"))->trigger();
    EXPECT_EQ(view->model().zZoom(), 0.5F);
    EXPECT_NEAR(view->cloud().exportPoints()[3].z - view->cloud().exportPoints()[0].z,
                0.5F * (before - -0.6F), 1e-5F);
    action(*view, QStringLiteral("100x"))->trigger();
    EXPECT_EQ(view->model().zZoom(), 100.0F);
}

TEST_F(ToF3DViewActionTest, AZoomThatIsNoNumberAboveZeroChangesNothing) {
    const auto view = open();
    for (const char* text : {"x", "", "0x", "-2x", "twox", "nanx", "infx"}) {
        QAction odd(QLatin1String(text), nullptr);
        QObject::connect(&odd, SIGNAL(triggered()), view.get(), SLOT(onZZoomChanged()));
        odd.trigger();
        EXPECT_EQ(view->model().zZoom(), 1.0F) << text;
    }
    view->onZZoomChanged();
    EXPECT_EQ(view->model().zZoom(), 1.0F);
    QAction spaced(QStringLiteral(" 2.5 x "), nullptr);
    QObject::connect(&spaced, SIGNAL(triggered()), view.get(), SLOT(onZZoomChanged()));
    spaced.trigger();
    EXPECT_EQ(view->model().zZoom(), 2.5F);
}

TEST_F(ToF3DViewActionTest, AThresholdOfZeroOrLessChangesNothing) {
    m_source.shown = phaseOf(1.0F, 0.5F);
    const auto view = open();
    for (const float value : {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
        view->onConfidenceThresholdChanged(value);
        EXPECT_EQ(view->options().opticalPath.confidenceThreshold, 10.0F);
        EXPECT_EQ(view->cloud().pointCount(), 48);
    }
    view->onConfidenceThresholdChanged(0.4F);
    EXPECT_EQ(view->options().opticalPath.confidenceThreshold, 0.4F);
    EXPECT_EQ(view->cloud().pointCount(), 0);
}

TEST_F(ToF3DViewActionTest, AThresholdWithoutConfidenceIsStoredButBuildsNothing) {
    m_source.shown = TestFrame::bytes(4, 4, [](int x, int) { return 80 * x; });
    const auto view = open();
    const auto* positions =
        CkToF3DMdiView::getSceneAttribute(view->scene()->cloudRenderer(), QStringLiteral("vertexPosition"));
    // A build that changed nothing visible would still show in the colours.
    view->viewLut(nullptr, nullptr, nullptr)->setPseudoColorIndex(2);
    view->setViewLut(view->viewLut(nullptr, nullptr, nullptr), true, false, false);
    const QByteArray before = positions->buffer()->data();
    view->onConfidenceThresholdChanged(0.4F);
    EXPECT_EQ(view->options().opticalPath.confidenceThreshold, 0.4F);
    EXPECT_EQ(positions->buffer()->data(), before);
    view->updatePointCloudGeometry();
    EXPECT_NE(positions->buffer()->data(), before);
}

TEST_F(ToF3DViewActionTest, TheDepthResolutionIsTakenShownAndStored) {
    m_source.shown = TestFrame::bytes(64, 32, [](int x, int) { return 3 * x; });
    const auto view = open();
    EXPECT_EQ(view->depthFrame().depthPic().width, 64U);
    QAction narrow(QStringLiteral("16"), nullptr);
    QObject::connect(&narrow, SIGNAL(triggered()), view.get(), SLOT(onDepthResChanged()));
    narrow.trigger();
    EXPECT_EQ(view->model().maxGenericWidth(), 16);
    EXPECT_EQ(view->depthFrame().depthPic().width, 16U);
    EXPECT_EQ(view->depthFrame().depthPic().height, 8U);
    EXPECT_EQ(view->depthFrame().resolutionRatio(), 4.0F);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.DepthTexResolutionW")).toInt(), 16);
    for (const char* text : {"0", "-4", "wide", "", "1.5", "99999999999"}) {
        narrow.setText(QLatin1String(text));
        narrow.trigger();
        EXPECT_EQ(view->model().maxGenericWidth(), 16) << text;
    }
}

TEST_F(ToF3DViewActionTest, ANewDistanceOffsetIsReadAfterCalibration) {
    useLens(0.0F);
    m_source.shown = phaseOf(Pi);
    const auto view = open();
    const float before = view->cloud().exportPoints()[0].z;
    m_host.store(QStringLiteral("ToF.OptRealDistandeOffsetM"), -0.25F);
    view->updateAfterDistanceOffsetChanged();
    EXPECT_EQ(view->options().opticalPath.realDistanceOffsetM, -0.25F);
    EXPECT_NEAR(view->cloud().exportPoints()[0].z, before - 250.0F, 0.01F);
    // Junk leaves what there is.
    m_host.store(QStringLiteral("ToF.OptRealDistandeOffsetM"), QStringLiteral("junk"));
    view->updateAfterDistanceOffsetChanged();
    EXPECT_EQ(view->options().opticalPath.realDistanceOffsetM, -0.25F);
}

// ---- box and background
// ------------------------------------------------------------------------------------

TEST_F(ToF3DViewActionTest, TheBoxIsHiddenStoredAndShownAtItsNewSize) {
    m_source.shown = TestFrame::bytes(64, 48, [](int x, int) { return 3 * x; });
    const auto view = open();
    const auto corners = [&] {
        const auto* positions =
            CkToF3DMdiView::getSceneAttribute(view->scene()->boxRenderer(), QStringLiteral("vertexPosition"));
        QVector<float> values(24);
        std::memcpy(values.data(), positions->buffer()->data().constData(), 96);
        return values;
    };
    EXPECT_TRUE(view->scene()->boxEntity()->isEnabled());
    EXPECT_EQ(corners()[18], 1.0F);
    EXPECT_EQ(corners()[19], 0.75F);
    EXPECT_FLOAT_EQ(corners()[20], 0.6F);

    view->showBoundingBox(false);
    EXPECT_FALSE(view->scene()->boxEntity()->isEnabled());
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.ShowBBox")).toBool(), false);
    give(*view, TestFrame::generic(64, 32, [](int x, int) { return float(x); }));
    action(*view, QStringLiteral("2x"))->trigger();
    view->showBoundingBox(true);
    EXPECT_TRUE(view->scene()->boxEntity()->isEnabled());
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.ShowBBox")).toBool(), true);
    EXPECT_EQ(corners()[19], 0.5F);
    EXPECT_FLOAT_EQ(corners()[20], 1.2F);
    EXPECT_EQ(m_host.settingsAlive(), 0);
}

TEST_F(ToF3DViewActionTest, TheBoxOf640x480IsTwoWideAndOneAndAHalfHigh) {
    m_source.shown = TestFrame::bytes(640, 480, [](int x, int) { return x % 200; });
    const auto view = open();
    const auto* positions =
        CkToF3DMdiView::getSceneAttribute(view->scene()->boxRenderer(), QStringLiteral("vertexPosition"));
    std::array<float, 24> corners{};
    ASSERT_EQ(positions->buffer()->data().size(), 96);
    std::memcpy(corners.data(), positions->buffer()->data().constData(), 96);
    // The first corner, and the seventh, which lies opposite.
    EXPECT_EQ(corners[18] - corners[0], 2.0F);
    EXPECT_EQ(corners[19] - corners[1], 1.5F);
}

TEST_F(ToF3DViewActionTest, TheBackgroundIsStoredAsAnUnsignedNumber) {
    const auto view = open();
    view->selectBgColor(0xff8001U);
    EXPECT_EQ(view->scene()->clearColor(), QColor(255, 128, 1));
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.BgColor")).toUInt(), 0xff8001U);
    EXPECT_EQ(m_host.settingsAlive(), 0);
}

// ---- keys and mouse
// ----------------------------------------------------------------------------------------

TEST_F(ToF3DViewActionTest, PressingOTwiceReturnsTheCloudToItsFirstState) {
    useLens(0.0F);
    m_source.shown = phaseOf(Pi);
    const auto view = open();
    show(*view);
    const QByteArray before = vertices(*view);
    QTest::keyClick(view->scene()->window(), Qt::Key_O);
    EXPECT_TRUE(view->options().opticalPath.orthoRadialCorrection);
    EXPECT_NE(vertices(*view), before);
    QTest::keyClick(view->scene()->window(), Qt::Key_O);
    EXPECT_FALSE(view->options().opticalPath.orthoRadialCorrection);
    EXPECT_EQ(vertices(*view), before);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.OptOrthoRadialCorrection")).toBool(), false);
}

TEST_F(ToF3DViewActionTest, EscapeLeavesFullScreenOnly) {
    QWidget window;
    m_host.window = &window;
    const auto view = open();
    show(*view);
    window.show();
    QTest::keyClick(view->scene()->window(), Qt::Key_Escape);
    EXPECT_FALSE(m_host.calls.contains(QStringLiteral("leaveFullScreen")));
    window.showFullScreen();
    QTest::keyClick(view->scene()->window(), Qt::Key_Escape);
    EXPECT_EQ(m_host.calls.count(QStringLiteral("leaveFullScreen")), 1);
    m_host.window = nullptr;
    QTest::keyClick(view->scene()->window(), Qt::Key_Escape);
    EXPECT_EQ(m_host.calls.count(QStringLiteral("leaveFullScreen")), 1);
}

TEST_F(ToF3DViewActionTest, AMousePressMakesTheViewActiveOnce) {
    const auto view = open();
    show(*view);
    m_host.calls.clear();
    QTest::mouseClick(view->scene()->window(), Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_EQ(m_host.calls, QStringList{QStringLiteral("setActiveView %1").arg(view->viewId())});
    QTest::mouseClick(view->scene()->window(), Qt::RightButton, {}, QPoint(50, 50));
    EXPECT_EQ(m_host.calls.size(), 1);
}

/// The mouse buttons as the orbit controller sees them.
QList<Qt3DInput::QAction*> controllerButtons(const CkToF3DMdiView& view) {
    const auto entities = view.scene()->cloudRenderer()->entities();
    return entities[0]->parentNode()->findChildren<Qt3DInput::QAction*>();
}

/// Until Qt 3D has drawn a frame, nobody hands the mouse to its controllers.
void waitForInput(const QImage& drawn) {
    ASSERT_FALSE(drawn.isNull());
}

TEST_F(ToF3DViewActionTest, AMousePressMakesTheViewActiveBeforeTheOrbitControllerHandlesIt) {
    const auto view = open();
    show(*view);
    waitForInput(capture(*view));
    m_host.calls.clear();
    const QList<Qt3DInput::QAction*> buttons = controllerButtons(*view);
    ASSERT_FALSE(buttons.isEmpty());
    for (const Qt3DInput::QAction* button : buttons) {
        QObject::connect(button, &Qt3DInput::QAction::activeChanged, button,
                         [this] { m_host.calls << QStringLiteral("controller"); });
    }
    QTest::mousePress(view->scene()->window(), Qt::LeftButton, {}, QPoint(50, 50));
    ASSERT_TRUE(waitFor([&] { return m_host.calls.contains(QStringLiteral("controller")); }));
    EXPECT_EQ(m_host.calls, QStringList({QStringLiteral("setActiveView %1").arg(view->viewId()),
                                         QStringLiteral("controller")}));
    QTest::mouseRelease(view->scene()->window(), Qt::LeftButton, {}, QPoint(50, 50));
}

TEST_F(ToF3DViewActionTest, DefaultPositionAfterOrbiting) {
    const auto view = open();
    show(*view);
    waitForInput(capture(*view));
    Qt3DRender::QCamera* camera = view->scene()->camera();
    EXPECT_EQ(camera->position(), QVector3D(0, 0, 3));
    QWindow* window = view->scene()->window();
    // The controller reads the mouse once a frame and turns with what moved since the last one.
    QTest::mousePress(window, Qt::RightButton, {}, QPoint(200, 200));
    int x = 200;
    ASSERT_TRUE(waitFor([&] {
        x = x < 400 ? x + 5 : 200;
        QTest::mouseMove(window, QPoint(x, 200));
        return camera->position() != QVector3D(0, 0, 3);
    }));
    QTest::mouseRelease(window, Qt::RightButton, {}, QPoint(x, 200));
    const QList<Qt3DInput::QAction*> buttons = controllerButtons(*view);
    ASSERT_TRUE(waitFor([&] {
        return std::none_of(buttons.begin(), buttons.end(),
                            [](const auto* button) { return button->isActive(); });
    }));

    action(*view, QStringLiteral("Default position"))->trigger();
    EXPECT_EQ(camera->position(), QVector3D(0, 0, 3));
    EXPECT_EQ(camera->upVector(), QVector3D(0, 1, 0));
    EXPECT_EQ(camera->viewCenter(), QVector3D(0, 0, 0));
    EXPECT_EQ(camera->fieldOfView(), 45.0F);
    EXPECT_EQ(camera->aspectRatio(), 16.0F / 9.0F);
    EXPECT_EQ(camera->nearPlane(), 0.1F);
    EXPECT_EQ(camera->farPlane(), 1000.0F);
}

} // namespace
