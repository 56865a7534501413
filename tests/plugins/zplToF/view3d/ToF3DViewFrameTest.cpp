// From a frame to the cloud.

#include "tests/plugins/zplToF/view3d/ViewActionFixture.h"

#include <QAction>
#include <algorithm>
#include <cmath>

namespace {

class ToF3DViewFrameTest : public ViewActionTest {};

// ---- cloud
// -------------------------------------------------------------------------------------------------

TEST_F(ToF3DViewFrameTest, ByDefaultTheCloudIsNormalisedAndTheLabelEmpty) {
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

TEST_F(ToF3DViewFrameTest, ConfidenceOfZeroKeepsEveryPhasePoint) {
    m_source.shown = phaseOf(1.0F, 0.0F);
    EXPECT_EQ(open()->cloud().pointCount(), 48);
}

TEST_F(ToF3DViewFrameTest, PhaseAt30MHzShowsItsRangeInTheLabel) {
    useLens(0.0F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    // 299.70254 / 60 = 4.995 m deep; half of 8 pixels of 0.01 mm at 3.5 mm: 2 x 4.995 x 0.04 / 3.5 = 0.11 m.
    EXPECT_EQ(label(*view), QStringLiteral("Width: 0.1 m Height: 0.1 m Depth: 5.0 m"));
    // A phase shift of half a turn is half the range.
    EXPECT_NEAR(view->cloud().exportPoints()[0].z, 4995.04F / 2.0F, 0.05F);
}

TEST_F(ToF3DViewFrameTest, ADistanceOf100MillimetresBelowZeroWrapsRound) {
    useLens(-2.59752F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    // 2497.52 - 2597.52 = -100: placed at 4995.04 - 100.
    EXPECT_NEAR(view->cloud().exportPoints()[0].z, 4895.04F, 0.1F);
}

TEST_F(ToF3DViewFrameTest, AnUnsupportedDataTypeGivesNoPointsAndNoExport) {
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

TEST_F(ToF3DViewFrameTest, AFrameWithoutPixelsChangesNothing) {
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

TEST_F(ToF3DViewFrameTest, EveryFrameIsReportedWithItsPictureBehindTheIdentifier) {
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
    // Afterwards imageData returns the depth picture, for receivers that were notified through the queue.
    const CkImageData* data = view->imageData(41);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data, view->currentImage());
    EXPECT_EQ(data->picBuf().channels, 1U);
    EXPECT_EQ(data->metadata().channelNames.value(0), QStringLiteral("Phase shift"));
    EXPECT_EQ(view->imageData(40), nullptr);
}

TEST_F(ToF3DViewFrameTest, AListenerMayCloseTheView) {
    auto view = open();
    connectReports(*view, [&](qint32) { view.reset(); });
    const auto frame = phaseOf(1.0F);
    view->updateWithConnectedImageData(frame.get(), false);
    EXPECT_EQ(view, nullptr);
}

TEST_F(ToF3DViewFrameTest, AFrameBeforeTheLimitIsDroppedAForcedOneNever) {
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

TEST_F(ToF3DViewFrameTest, ANewResolutionIsShownWhateverTheLimit) {
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

TEST_F(ToF3DViewFrameTest, TheCamerasOwnLensAndFrequencyWinAndAreNotStored) {
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
    // 0: unknown.
    metadata.modulationFrequency = 0.0F;
    metadata.lensFocalLength = -1.0F;
    frame->setMetadata(metadata);
    give(*view, frame);
    EXPECT_EQ(view->options().opticalPath.modulationFreqMHz, 60.0F);
    EXPECT_EQ(view->options().opticalPath.lensFocalLengthMM, 6.0F);
}

} // namespace
