// Actions, the box and the background.

#include "tests/plugins/zplToF/view3d/ViewActionFixture.h"

#include <QAction>
#include <Qt3DCore/QEntity>
#include <array>
#include <cstring>
#include <limits>

namespace {

class ToF3DViewActionTest : public ViewActionTest {};

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
    // Any rebuild would show in the colours.
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
    EXPECT_EQ(view->model().depthTexResolutionW(), 16);
    EXPECT_EQ(view->depthFrame().depthPic().width, 16U);
    EXPECT_EQ(view->depthFrame().depthPic().height, 8U);
    EXPECT_EQ(view->depthFrame().resolutionRatio(), 4.0F);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.DepthTexResolutionW")).toInt(), 16);
    for (const char* text : {"0", "-4", "wide", "", "1.5", "99999999999"}) {
        narrow.setText(QLatin1String(text));
        narrow.trigger();
        EXPECT_EQ(view->model().depthTexResolutionW(), 16) << text;
    }
}

TEST_F(ToF3DViewActionTest, ANewDistanceOffsetIsReadAfterCalibration) {
    useLens(0.0F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    const float before = view->cloud().exportPoints()[0].z;
    m_host.store(QStringLiteral("ToF.OptRealDistandeOffsetM"), -0.25F);
    view->updateAfterDistanceOffsetChanged();
    EXPECT_EQ(view->options().opticalPath.realDistanceOffsetM, -0.25F);
    EXPECT_NEAR(view->cloud().exportPoints()[0].z, before - 250.0F, 0.01F);
    // Invalid texts change nothing.
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
    // The first corner, and the opposite one, the seventh.
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

} // namespace
