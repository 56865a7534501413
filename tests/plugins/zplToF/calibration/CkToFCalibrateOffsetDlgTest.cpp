// The controls of the calibration dialog, and what it measures.

#include "tests/plugins/zplToF/calibration/CalibrationFixture.h"

#include <limits>

namespace {
using CkToFCalibrateOffsetDlgTest = CalibrationTest;
constexpr float kPi = 3.1415927F;
// Metres: 180 additions in single precision, and the conversion to metres.
constexpr float kRounding = 5e-6F;
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();
} // namespace

TEST_F(CkToFCalibrateOffsetDlgTest, EveryControlHasItsNameTextAndRange) {
    open();
    EXPECT_EQ(dialog->windowTitle(), "Calibrate ToF Distance Offset");
    EXPECT_EQ(child<QLabel>("label")->text(),
              "To calibrate ToF camera offset value, please place the camera in front of a wall, facing it "
              "at distance "
              "40 cm (15\").\n\nThe cffset will be applied in the ToF 3D view.");
    EXPECT_TRUE(child<QLabel>("label")->wordWrap());
    EXPECT_EQ(child("label")->maximumWidth(), 370);
    EXPECT_EQ(child<QLabel>("label_2")->text(), "Frames to average:");
    const auto* spin = child<QSpinBox>("spinAveraging");
    EXPECT_EQ(spin->minimum(), 3);
    EXPECT_EQ(spin->maximum(), 9);
    EXPECT_EQ(spin->value(), 5);
    EXPECT_EQ(child<QLabel>("lbDistance")->text(), "Camera distance:");
    EXPECT_EQ(child<QLineEdit>("edDistance")->text(), "40");
    EXPECT_EQ(child("edDistance")->maximumWidth(), 80);
    const auto* unit = child<QComboBox>("cbUnit");
    ASSERT_EQ(unit->count(), 2);
    EXPECT_EQ(unit->itemText(0), "cm");
    EXPECT_EQ(unit->itemText(1), "inches");
    EXPECT_EQ(unit->currentIndex(), 0);
    EXPECT_EQ(progress(), " ");
    EXPECT_EQ(child<QDialogButtonBox>("buttonBox")->standardButtons(),
              QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    EXPECT_TRUE(button(QDialogButtonBox::Ok)->isEnabled());
    for (const char* name : {"spinAveraging", "edDistance", "cbUnit"}) {
        EXPECT_FALSE(child(name)->toolTip().isEmpty()) << name;
    }
}

TEST_F(CkToFCalibrateOffsetDlgTest, SlotsHaveTheirTexts) {
    const QMetaObject& metaObject = CkToFCalibrateOffsetDlg::staticMetaObject;
    EXPECT_EQ(metaObject.methodCount() - metaObject.methodOffset(), 2);
    const int iFirst = metaObject.methodOffset();
    EXPECT_EQ(metaObject.indexOfSlot("on_buttonBox_accepted()"), iFirst);
    EXPECT_EQ(metaObject.indexOfSlot("on_viewFrameReceived(qint32)"), iFirst + 1);
}

TEST_F(CkToFCalibrateOffsetDlgTest, TheTabKeyVisitsTheControlsFromTopToBottom) {
    open();
    child("spinAveraging")->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([this] { return child("spinAveraging")->hasFocus(); }, 30000));
    QStringList visited;
    for (int i = 0; i < 3; ++i) {
        visited << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(visited, (QStringList{"spinAveraging", "edDistance", "cbUnit"}));
    EXPECT_NE(qobject_cast<QPushButton*>(QApplication::focusWidget()), nullptr);
}

TEST_F(CkToFCalibrateOffsetDlgTest, FrameCountsBelow3OrAbove9CannotBeEntered) {
    open();
    auto* spin = child<QSpinBox>("spinAveraging");
    for (const char* typed : {"2", "0", "-4", "10", "99"}) {
        spin->setFocus();
        QTest::keyClick(spin, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(spin, typed);
        QTest::keyClick(spin, Qt::Key_Tab);
        EXPECT_GE(spin->value(), 3) << typed;
        EXPECT_LE(spin->value(), 9) << typed;
    }
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(spin, Qt::Key_Up);
    }
    EXPECT_EQ(spin->value(), 9);
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(spin, Qt::Key_Down);
    }
    EXPECT_EQ(spin->value(), 3);
}

TEST_F(CkToFCalibrateOffsetDlgTest, TwentyMegahertzAndAMeanPhaseOfPiStoreMinus3Point346) {
    open();
    click(QDialogButtonBox::Ok);
    EXPECT_FALSE(button(QDialogButtonBox::Ok)->isEnabled());
    EXPECT_TRUE(dialog->isVisible());
    for (int i = 1; i <= 4; ++i) {
        feed(phaseFrame(kPi));
        EXPECT_EQ(progress(), QString("Progresss: %1 / 5").arg(i));
    }
    EXPECT_FALSE(delegate.stored(key).isValid());
    feed(phaseFrame(kPi));
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].title, "Result");
    EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Information);
    EXPECT_EQ(driver.boxes[0].text, "Measured distance: 374.63 cm\n\nCalculated offset: -334.63 cm");
    EXPECT_EQ(driver.boxes[0].parent, dialog.get());
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
    EXPECT_EQ(delegate.settingsHandedOut, 1);
    EXPECT_EQ(delegate.settingsAlive(), 0);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(progress(), "Progresss: 5 / 5");
}

TEST_F(CkToFCalibrateOffsetDlgTest, FifteenInchesAreMeasuredAgainst38Point1CentimetresAndShownInInches) {
    open();
    typeDistance("15");
    chooseInches();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    feedPhases(3, kPi);
    ASSERT_EQ(driver.boxes.size(), 1);
    // 3.74628175 m * 39.37008 = 147.4914 in; (0.381 - 3.74628175) * 39.37008 = -132.4914 in.
    EXPECT_EQ(driver.boxes[0].text, "Measured distance: 147.49 inches\n\nCalculated offset: -132.49 inches");
    EXPECT_NEAR(delegate.stored(key).toFloat(), 0.381F - 3.7462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, AFourByFourPhaseImageCountsFourPixels) {
    open();
    click(QDialogButtonBox::Ok);
    for (int i = 0; i < 5; ++i) {
        auto frame = phaseFrame(90.0F, 20.0F, 4, 4);
        for (const auto& [x, y] : {std::pair(1U, 1U), {2U, 1U}, {1U, 2U}, {2U, 2U}}) {
            std::memcpy(frame->picBuf().row(y) + x * 8, &kPi, 4);
        }
        feed(std::move(frame));
    }
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, NotificationsQueuedWhenTheLastFrameWasCountedChangeNothing) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    for (int i = 0; i < 3; ++i) {
        view->show(phaseFrame(kPi));
    }
    for (int i = 0; i < 4; ++i) {
        view->show(phaseFrame(1.0F));
        view->show(greyFrame());
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(progress(), "Progresss: 3 / 3");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
    dialog->on_viewFrameReceived(1);
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(delegate.settingsHandedOut, 1);
}

TEST_F(CkToFCalibrateOffsetDlgTest, ADistanceThatIsNoNumberIsToldAndNothingStarts) {
    for (const char* typed : {"abc", "", "4 0", "1.2.3", "nan", "inf", "1e39", "4,0,0"}) {
        SCOPED_TRACE(typed);
        driver.boxes.clear();
        open();
        typeDistance(typed);
        if (QLatin1String(typed).isEmpty()) {
            QTest::keyClick(child("edDistance"), Qt::Key_Delete);
        }
        click(QDialogButtonBox::Ok);
        ASSERT_EQ(driver.boxes.size(), 1);
        EXPECT_EQ(driver.boxes[0].title, "Error");
        EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Critical);
        EXPECT_EQ(driver.boxes[0].text, "Please set the distance as decimal number.");
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_TRUE(button(QDialogButtonBox::Ok)->isEnabled());
        feed(phaseFrame(kPi));
        EXPECT_EQ(progress(), " ");
        typeDistance("40");
        click(QDialogButtonBox::Ok);
        EXPECT_FALSE(button(QDialogButtonBox::Ok)->isEnabled());
        feed(phaseFrame(kPi));
        EXPECT_EQ(progress(), "Progresss: 1 / 5");
    }
}

TEST_F(CkToFCalibrateOffsetDlgTest, ADistanceThatOverflowsInCentimetresIsNoNumber) {
    open();
    typeDistance("3e38");
    chooseInches();
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_TRUE(button(QDialogButtonBox::Ok)->isEnabled());
}

TEST_F(CkToFCalibrateOffsetDlgTest, ADecimalCommaIsParsedAndShown) {
    const LocaleScope german(QLocale(QLocale::German, QLocale::Germany));
    open();
    typeDistance("38,1");
    click(QDialogButtonBox::Ok);
    feedPhases(5, kPi);
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].text, "Measured distance: 374,63 cm\n\nCalculated offset: -336,53 cm");
    EXPECT_NEAR(delegate.stored(key).toFloat(), 0.381F - 3.7462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, MetadataWithoutModulationFrequencyStoreNothing) {
    for (const float fFreq : {0.0F, 0.099F, -20.0F, kNan, kInf}) {
        SCOPED_TRACE(fFreq);
        driver.boxes.clear();
        open();
        click(QDialogButtonBox::Ok);
        feedPhases(4, kPi, 20.0F);
        feed(phaseFrame(kPi, fFreq));
        ASSERT_EQ(driver.boxes.size(), 1);
        EXPECT_EQ(driver.boxes[0].title, "Error");
        EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Critical);
        EXPECT_EQ(driver.boxes[0].text, "Modulation frequency not present in image metadata.");
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(delegate.settingsHandedOut, 0);
    }
}

TEST_F(CkToFCalibrateOffsetDlgTest, OnlyTheLastFramesModulationFrequencyCounts) {
    open();
    click(QDialogButtonBox::Ok);
    feedPhases(4, kPi, 0.0F);
    feed(phaseFrame(kPi, 20.0F));
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, PicturesWithoutAMeanAreToldAndStoreNothing) {
    for (const bool bTooSmall : {true, false}) {
        driver.boxes.clear();
        open();
        click(QDialogButtonBox::Ok);
        for (int i = 0; i < 5; ++i) {
            feed(bTooSmall ? phaseFrame(kPi, 20.0F, 1, 1) : phaseFrame(kNan));
        }
        ASSERT_EQ(driver.boxes.size(), 1);
        EXPECT_EQ(driver.boxes[0].text, wrongKind);
        EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Critical);
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
        EXPECT_EQ(delegate.settingsHandedOut, 0);
    }
}
