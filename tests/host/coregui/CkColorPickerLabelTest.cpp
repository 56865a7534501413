#include "zuCoreGui/CkColorPickerLabel.h"
#include "tests/support/ModalDriver.h"

#include <QColorDialog>
#include <QDialogButtonBox>
#include <QImage>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {
class CkColorPickerLabelTest : public testing::Test {
protected:
    void SetUp() override {
        picker.setPickerColor(QColor(48, 48, 128));
        picker.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&picker, 30000));
    }

    // Types a colour into the dialog and accepts it, or cancels with Escape.
    void expectDialog(const QString& sColor) {
        driver.expectWindow([this, sColor](QWidget* pWindow) {
            auto* dialog = qobject_cast<QColorDialog*>(pWindow);
            ASSERT_NE(dialog, nullptr);
            offered = dialog->currentColor();
            if (sColor.isEmpty()) {
                QTest::keyClick(dialog, Qt::Key_Escape);
                return;
            }
            dialog->setCurrentColor(QColor(sColor));
            auto* buttons = dialog->findChild<QDialogButtonBox*>();
            ASSERT_NE(buttons, nullptr);
            QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        });
    }

    ModalDriver driver;
    CkColorPickerLabel picker;
    QColor offered;
};
} // namespace

TEST_F(CkColorPickerLabelTest, SettingTheColourEmitsNothing) {
    QSignalSpy changes(&picker, SIGNAL(colorChanged()));
    picker.setPickerColor(QColor(1, 2, 3));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(picker.pickerColor(), QColor(1, 2, 3));
}

TEST_F(CkColorPickerLabelTest, ColoursAreOpaqueAndInvalidOnesIgnored) {
    picker.setPickerColor(QColor(10, 20, 30, 40));
    EXPECT_EQ(picker.pickerColor(), QColor(10, 20, 30));
    picker.setPickerColor(QColor());
    EXPECT_EQ(picker.pickerColor(), QColor(10, 20, 30));
}

TEST_F(CkColorPickerLabelTest, AClickOffersTheColourAndTakesAnother) {
    QSignalSpy changes(&picker, SIGNAL(colorChanged()));
    expectDialog("#ff0000");
    QTest::mouseClick(&picker, Qt::LeftButton);
    EXPECT_EQ(driver.pending(), 0);
    EXPECT_EQ(offered, QColor(48, 48, 128));
    EXPECT_EQ(picker.pickerColor(), QColor(255, 0, 0));
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(CkColorPickerLabelTest, EscapeKeepsTheColour) {
    QSignalSpy changes(&picker, SIGNAL(colorChanged()));
    expectDialog(QString());
    QTest::mouseClick(&picker, Qt::LeftButton);
    EXPECT_EQ(driver.pending(), 0);
    EXPECT_EQ(picker.pickerColor(), QColor(48, 48, 128));
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(CkColorPickerLabelTest, TheSameColourAgainIsNoChange) {
    QSignalSpy changes(&picker, SIGNAL(colorChanged()));
    expectDialog("#303080");
    QTest::mouseClick(&picker, Qt::LeftButton);
    EXPECT_EQ(driver.pending(), 0);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(CkColorPickerLabelTest, SpaceAndEnterOpenTheDialog) {
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        expectDialog(key == Qt::Key_Space ? "#00ff00" : "#0000ff");
        QTest::keyClick(&picker, key);
        EXPECT_EQ(driver.pending(), 0);
    }
    EXPECT_EQ(picker.pickerColor(), QColor(0, 0, 255));
}

TEST_F(CkColorPickerLabelTest, OtherButtonsAndAReleaseOutsideOpenNothing) {
    expectDialog("#00ff00");
    QTest::mouseClick(&picker, Qt::RightButton);
    QTest::mousePress(&picker, Qt::LeftButton);
    QTest::mouseRelease(&picker, Qt::LeftButton, Qt::NoModifier, QPoint(-20, -20));
    EXPECT_EQ(driver.pending(), 1);
}

TEST_F(CkColorPickerLabelTest, ADisabledPickerOpensNothingAndLooksFaded) {
    expectDialog("#00ff00");
    QImage enabled(picker.size(), QImage::Format_ARGB32);
    picker.render(&enabled);
    picker.setEnabled(false);
    QImage disabled(picker.size(), QImage::Format_ARGB32);
    picker.render(&disabled);
    EXPECT_EQ(enabled.pixelColor(picker.rect().center()), QColor(48, 48, 128));
    EXPECT_NE(disabled.pixelColor(picker.rect().center()), QColor(48, 48, 128));
    QTest::mouseClick(&picker, Qt::LeftButton);
    EXPECT_EQ(driver.pending(), 1);
}

TEST(CkColorPickerLabelLifeTest, MayBeDeletedWhileItsDialogIsOpen) {
    ModalDriver driver;
    auto window = std::make_unique<QWidget>();
    auto* picker = new CkColorPickerLabel(window.get());
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get(), 30000));
    driver.expectWindow([picker](QWidget*) { delete picker; });
    QTest::mouseClick(picker, Qt::LeftButton);
    EXPECT_EQ(driver.pending(), 0);
    EXPECT_EQ(window->findChild<CkColorPickerLabel*>(), nullptr);
}
