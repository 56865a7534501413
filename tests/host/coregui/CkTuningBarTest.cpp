#include "zuCoreGui/CkTuningBar.h"

#include <QApplication>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>
#include <gtest/gtest.h>
#include <limits>

namespace {
class CkTuningBarTest : public testing::Test {
protected:
    void SetUp() override {
        bar.resize(220, 24);
        bar.setRange(CkValue(0.0), CkValue(2.0), CkValue(0.25));
        bar.setValue(CkValue(1.0));
        bar.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&bar, 30000));
        bar.setFocus();
    }

    void wheel(int iDelta) {
        const QPointF at = QRectF(bar.rect()).center();
        QWheelEvent event(at, bar.mapToGlobal(at), QPoint(), QPoint(0, iDelta), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&bar, &event);
    }

    QImage picture() {
        QImage image(bar.size() * 2, QImage::Format_ARGB32);
        image.setDevicePixelRatio(2.0);
        bar.render(&image);
        return image;
    }

    CkTuningBar bar;
};
} // namespace

TEST_F(CkTuningBarTest, SettingTheValueEmitsNothingAndClamps) {
    QSignalSpy changes(&bar, SIGNAL(valueChanged(CkValue)));
    bar.setValue(CkValue(1.5));
    EXPECT_EQ(bar.value().toDouble(), 1.5);
    bar.setValue(CkValue(7.0));
    EXPECT_EQ(bar.value().toDouble(), 2.0);
    bar.setValue(CkValue(-7.0));
    EXPECT_EQ(bar.value().toDouble(), 0.0);
    bar.setValue(CkValue(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ(bar.value().toDouble(), 0.0);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(CkTuningBarTest, KeysStepPageAndJump) {
    QSignalSpy changes(&bar, SIGNAL(valueChanged(CkValue)));
    QTest::keyClick(&bar, Qt::Key_Right);
    EXPECT_EQ(bar.value().toDouble(), 1.25);
    QTest::keyClick(&bar, Qt::Key_Up);
    EXPECT_EQ(bar.value().toDouble(), 1.5);
    QTest::keyClick(&bar, Qt::Key_Left);
    QTest::keyClick(&bar, Qt::Key_Down);
    EXPECT_EQ(bar.value().toDouble(), 1.0);
    QTest::keyClick(&bar, Qt::Key_End);
    EXPECT_EQ(bar.value().toDouble(), 2.0);
    QTest::keyClick(&bar, Qt::Key_Home);
    EXPECT_EQ(bar.value().toDouble(), 0.0);
    ASSERT_EQ(changes.count(), 6);
    EXPECT_EQ(changes.at(1).at(0).value<CkValue>().toDouble(), 1.5);

    bar.setRange(CkValue(0.0), CkValue(100.0), CkValue(1.0));
    bar.setValue(CkValue(50.0));
    QTest::keyClick(&bar, Qt::Key_PageUp);
    EXPECT_EQ(bar.value().toDouble(), 60.0);
    QTest::keyClick(&bar, Qt::Key_PageDown);
    QTest::keyClick(&bar, Qt::Key_PageDown);
    EXPECT_EQ(bar.value().toDouble(), 40.0);
}

TEST_F(CkTuningBarTest, EmitsNothingAtTheEndOfTheRange) {
    bar.setValue(CkValue(2.0));
    QSignalSpy changes(&bar, SIGNAL(valueChanged(CkValue)));
    QTest::keyClick(&bar, Qt::Key_Right);
    QTest::keyClick(&bar, Qt::Key_End);
    wheel(120);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(CkTuningBarTest, WheelStepsOnceANotchAndGathersPartsOfNotches) {
    wheel(120);
    EXPECT_EQ(bar.value().toDouble(), 1.25);
    wheel(-240);
    EXPECT_EQ(bar.value().toDouble(), 0.75);
    wheel(60);
    EXPECT_EQ(bar.value().toDouble(), 0.75);
    wheel(60);
    EXPECT_EQ(bar.value().toDouble(), 1.0);
}

TEST_F(CkTuningBarTest, ClickAndDragReachBothEndsAndTheMiddle) {
    QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(bar.width() - 1, 12));
    EXPECT_EQ(bar.value().toDouble(), 2.0);
    QTest::mouseMove(&bar, QPoint(bar.width() / 2, 12));
    QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(bar.width() / 2, 12));
    EXPECT_NEAR(bar.value().toDouble(), 1.0, 0.02);
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(0, 12));
    EXPECT_EQ(bar.value().toDouble(), 0.0);
    QTest::mouseClick(&bar, Qt::RightButton, Qt::NoModifier, QPoint(bar.width() - 1, 12));
    EXPECT_EQ(bar.value().toDouble(), 0.0);
}

TEST_F(CkTuningBarTest, RunsTheOtherWayInRightToLeftLanguages) {
    bar.setLayoutDirection(Qt::RightToLeft);
    QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(0, 12));
    EXPECT_EQ(bar.value().toDouble(), 2.0);
    QTest::keyClick(&bar, Qt::Key_Right);
    EXPECT_EQ(bar.value().toDouble(), 1.75);
}

TEST_F(CkTuningBarTest, AnUnusableRangeDisablesTheBarAndKeepsTheValue) {
    const double fInf = std::numeric_limits<double>::infinity();
    const double fNan = std::numeric_limits<double>::quiet_NaN();
    const double fHuge = std::numeric_limits<double>::max();
    const std::pair<double, double> ranges[] = {{0.0, 0.0},  {1.0, 0.0},   {0.0, fInf},
                                                {fNan, 1.0}, {-fInf, 1.0}, {-fHuge, fHuge}};
    for (const auto& [fLow, fHigh] : ranges) {
        SCOPED_TRACE(testing::Message() << fLow << " .. " << fHigh);
        bar.setRange(CkValue(0.0), CkValue(2.0), CkValue(0.25));
        ASSERT_TRUE(bar.isEnabled());
        bar.setValue(CkValue(1.5));
        QSignalSpy changes(&bar, SIGNAL(valueChanged(CkValue)));
        bar.setRange(CkValue(fLow), CkValue(fHigh), CkValue(0.1));
        EXPECT_FALSE(bar.isEnabled());
        EXPECT_FALSE(bar.hasUsableRange());
        QTest::keyClick(&bar, Qt::Key_Right);
        QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(20, 12));
        wheel(120);
        picture();
        EXPECT_EQ(bar.value().toDouble(), 1.5);
        EXPECT_EQ(changes.count(), 0);
    }
}

TEST_F(CkTuningBarTest, ABarThatItsOwnerDisabledStaysSoWithAUsableRange) {
    bar.setEnabled(false);
    bar.setRange(CkValue(0.0), CkValue(5.0), CkValue(0.1));
    EXPECT_FALSE(bar.isEnabled());
    bar.setEnabled(true);
    EXPECT_TRUE(bar.isEnabled());
    bar.setRange(CkValue(0.0), CkValue(0.0), CkValue(0.1));
    bar.setEnabled(true);
    EXPECT_FALSE(bar.isEnabled());
}

TEST_F(CkTuningBarTest, AStepThatIsNoneBecomesAHundredthOfTheRange) {
    bar.setRange(CkValue(0.0), CkValue(10.0), CkValue(0.0));
    EXPECT_EQ(bar.step(), 0.1);
    bar.setRange(CkValue(0.0), CkValue(10.0), CkValue(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(bar.step(), 0.1);
}

TEST_F(CkTuningBarTest, ShowsValueFocusAndDisabledState) {
    bar.clearFocus();
    const QImage plain = picture();
    bar.setValue(CkValue(0.25));
    const QImage lower = picture();
    EXPECT_NE(plain, lower);
    bar.setEnabled(false);
    EXPECT_NE(lower, picture());
    bar.setEnabled(true);
    QApplication::setActiveWindow(&bar);
    bar.setFocus();
    ASSERT_TRUE(QTest::qWaitFor([this] { return bar.hasFocus(); }, 30000));
    EXPECT_NE(lower, picture());
}
