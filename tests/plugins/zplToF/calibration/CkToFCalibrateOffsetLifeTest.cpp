// The calibration dialog and the views around it: cancelled, closed, deleted, followed.

#include "tests/plugins/zplToF/calibration/CalibrationFixture.h"

#include "plugins/zplToF/view3d/3dMdiView.h"

#include <functional>
#include <limits>

namespace {
using CkToFCalibrateOffsetLifeTest = CalibrationTest;
constexpr float kPi = 3.1415927F;
// Metres: 180 additions in single precision, and the conversion to metres.
constexpr float kRounding = 5e-6F;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
} // namespace

TEST_F(CkToFCalibrateOffsetLifeTest, CancelHalfWayStoresNothingAndStopsListening) {
    open();
    click(QDialogButtonBox::Ok);
    feedPhases(3, kPi);
    view->show(phaseFrame(kPi)); // queued when Cancel is clicked
    view->show(greyFrame());
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    feedPhases(5, kPi);
    feed(greyFrame());
    EXPECT_TRUE(driver.boxes.isEmpty());
    EXPECT_EQ(progress(), "Progresss: 3 / 5");
    EXPECT_EQ(delegate.settingsHandedOut, 0);
}

TEST_F(CkToFCalibrateOffsetLifeTest, EscapeRejectsAndEnterStarts) {
    open();
    child("edDistance")->setFocus();
    QTest::keyClick(child("edDistance"), Qt::Key_Return);
    EXPECT_FALSE(button(QDialogButtonBox::Ok)->isEnabled());
    QTest::keyClick(child("edDistance"), Qt::Key_Return);
    EXPECT_TRUE(dialog->isVisible());
    QTest::keyClick(child("edDistance"), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(CkToFCalibrateOffsetLifeTest, WithoutAViewOkOnlyValidatesAndDisablesItself) {
    open(nullptr);
    typeDistance("x");
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(driver.boxes.size(), 1);
    typeDistance("40");
    static int s_iWarnings = 0;
    s_iWarnings = 0;
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext&, const QString&) { s_iWarnings += type != QtDebugMsg; });
    click(QDialogButtonBox::Ok);
    qInstallMessageHandler(before);
    EXPECT_EQ(s_iWarnings, 0) << "there is nothing to connect to";
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_FALSE(button(QDialogButtonBox::Ok)->isEnabled());
    dialog->on_viewFrameReceived(1);
    EXPECT_EQ(progress(), " ");
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
}

TEST_F(CkToFCalibrateOffsetLifeTest, TheViewMayCloseWhileTheDialogWaits) {
    open();
    click(QDialogButtonBox::Ok);
    feed(phaseFrame(kPi));
    view->show(phaseFrame(kPi));
    view.reset();
    QCoreApplication::processEvents();
    dialog->on_viewFrameReceived(2);
    EXPECT_EQ(progress(), "Progresss: 1 / 5");
    EXPECT_TRUE(dialog->isVisible());
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CkToFCalibrateOffsetLifeTest, TheViewMayCloseWhileTheResultIsShown) {
    open();
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        view.reset();
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    for (int i = 0; i < 5; ++i) {
        view->show(phaseFrame(kPi));
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetLifeTest, TheDialogMayBeDeletedWhileItsBoxIsOpen) {
    driver.onBox = [this](QMessageBox*) { dialog.reset(); };
    const std::function<void()> endings[] = {
        [this] { feed(greyFrame()); },
        [this] { feedPhases(5, kPi); },
        [this] { feedPhases(5, kPi, 0.0F); },
        [this] { feedPhases(5, kNan); },
    };
    for (const auto& end : endings) {
        driver.boxes.clear();
        open();
        click(QDialogButtonBox::Ok);
        end();
        EXPECT_EQ(driver.boxes.size(), 1);
        EXPECT_EQ(dialog, nullptr);
        EXPECT_EQ(delegate.settingsHandedOut, 0);
    }
}

TEST_F(CkToFCalibrateOffsetLifeTest, FramesThatHaveGoneAreNotCounted) {
    open();
    click(QDialogButtonBox::Ok);
    view->announce(99);
    QCoreApplication::processEvents();
    EXPECT_EQ(progress(), " ");
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CkToFCalibrateOffsetLifeTest, PressingOkTwiceInCodeCountsFramesOnce) {
    open();
    dialog->on_buttonBox_accepted();
    dialog->on_buttonBox_accepted();
    feed(phaseFrame(kPi));
    EXPECT_EQ(progress(), "Progresss: 1 / 5");
}

TEST_F(CkToFCalibrateOffsetLifeTest, A3dViewTakesTheOffsetOver) {
    // The 3D view's imageData returns its current picture for the identifier; the base emits the signal.
    class Framed3dView : public CkToF3DMdiView {
    public:
        Framed3dView() : CkToF3DMdiView(-1, -1, nullptr, nullptr) {}
        const CkImageData* imageData(qint32) override { return m_frame.get(); }
        void show(std::unique_ptr<CkImageData> frame) {
            m_frame = std::move(frame);
            emit receivedFrame(1);
        }

    private:
        std::unique_ptr<CkImageData> m_frame;
    };
    Framed3dView view3d;
    EXPECT_EQ(view3d.options().opticalPath.realDistanceOffsetM, -1.5F);
    open(&view3d);
    click(QDialogButtonBox::Ok);
    for (int i = 0; i < 5; ++i) {
        view3d.show(phaseFrame(kPi));
        QCoreApplication::processEvents();
    }
    EXPECT_NEAR(view3d.options().opticalPath.realDistanceOffsetM, -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetLifeTest, EveryOpen3dViewTakesTheOffsetOver) {
    const CkToF3DMdiView first(-1, -1, nullptr, nullptr);
    const CkToF3DMdiView second(view->viewId(), -1, nullptr, nullptr);
    open();
    click(QDialogButtonBox::Ok);
    for (int i = 0; i < 5; ++i) {
        feed(phaseFrame(kPi));
    }
    EXPECT_NEAR(first.options().opticalPath.realDistanceOffsetM, -3.3462819F, kRounding);
    EXPECT_NEAR(second.options().opticalPath.realDistanceOffsetM, -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetLifeTest, FramesThatA3dViewFollowsAreMeasuredThroughItsQueue) {
    FrameView source;
    delegate.registerView(&source);
    CkToF3DMdiView view3d(source.viewId(), -1, nullptr, nullptr);
    open(&view3d);
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    for (int i = 1; i <= 3; ++i) {
        auto frame = phaseFrame(kPi);
        frame->picBuf().additionalData.frameNumber = quint64(i);
        view3d.updateWithConnectedImageData(frame.get(), false);
        frame.reset();
        QCoreApplication::processEvents();
        EXPECT_EQ(progress(), QString("Progresss: %1 / 3").arg(i));
    }
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].title, "Result");
    EXPECT_NEAR(view3d.options().opticalPath.realDistanceOffsetM, -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetLifeTest, RunsModallyOnTheStackToo) {
    QTimer feeder;
    QObject::connect(&feeder, &QTimer::timeout, view.get(), [this] { view->show(phaseFrame(kPi)); });
    driver.expectWindow([&](QWidget* pWindow) {
        auto* buttons = pWindow->findChild<QDialogButtonBox*>("buttonBox");
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        feeder.start(1);
    });
    CkToFCalibrateOffsetDlg modal(view.get(), nullptr);
    EXPECT_EQ(modal.exec(), QDialog::Accepted);
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
}
