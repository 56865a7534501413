#include "tests/plugins/zplToF/calibration/CalibrationFixture.h"

#include "plugins/zplToF/view3d/3dMdiView.h"

#include <QMetaMethod>
#include <cmath>
#include <functional>
#include <limits>

namespace {
using CkToFCalibrateOffsetDlgTest = CalibrationTest;
constexpr float s_fPi = 3.1415927F;
// Metres; 180 additions in single precision and the way to metres.
constexpr float s_fRounding = 5e-6F;
constexpr float s_fNan = std::numeric_limits<float>::quiet_NaN();
constexpr float s_fInf = std::numeric_limits<float>::infinity();
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
        feed(phaseFrame(s_fPi));
        EXPECT_EQ(progress(), QString("Progresss: %1 / 5").arg(i));
    }
    EXPECT_FALSE(delegate.stored(key).isValid());
    feed(phaseFrame(s_fPi));
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].title, "Result");
    EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Information);
    EXPECT_EQ(driver.boxes[0].text, "Measured distance: 374.63 cm\n\nCalculated offset: -334.63 cm");
    EXPECT_EQ(driver.boxes[0].parent, dialog.get());
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
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
    feedPhases(3, s_fPi);
    ASSERT_EQ(driver.boxes.size(), 1);
    // 3.74628175 m * 39.37008 = 147.4914 in; (0.381 - 3.74628175) * 39.37008 = -132.4914 in.
    EXPECT_EQ(driver.boxes[0].text, "Measured distance: 147.49 inches\n\nCalculated offset: -132.49 inches");
    EXPECT_NEAR(delegate.stored(key).toFloat(), 0.381F - 3.7462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, AFourByFourPhaseImageCountsFourPixels) {
    open();
    click(QDialogButtonBox::Ok);
    for (int i = 0; i < 5; ++i) {
        auto frame = phaseFrame(90.0F, 20.0F, 4, 4);
        for (const auto& [x, y] : {std::pair(1U, 1U), {2U, 1U}, {1U, 2U}, {2U, 2U}}) {
            std::memcpy(frame->picBuf().row(y) + x * 8, &s_fPi, 4);
        }
        feed(std::move(frame));
    }
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, NotificationsQueuedWhenTheLastFrameWasCountedChangeNothing) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    for (int i = 0; i < 3; ++i) {
        view->show(phaseFrame(s_fPi));
    }
    for (int i = 0; i < 4; ++i) {
        view->show(phaseFrame(1.0F));
        view->show(greyFrame());
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(progress(), "Progresss: 3 / 3");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
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
        feed(phaseFrame(s_fPi));
        EXPECT_EQ(progress(), " ");
        typeDistance("40");
        click(QDialogButtonBox::Ok);
        EXPECT_FALSE(button(QDialogButtonBox::Ok)->isEnabled());
        feed(phaseFrame(s_fPi));
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
    feedPhases(5, s_fPi);
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].text, "Measured distance: 374,63 cm\n\nCalculated offset: -336,53 cm");
    EXPECT_NEAR(delegate.stored(key).toFloat(), 0.381F - 3.7462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, FramesOfAWrongKindAreToldEachTimeAndNotCounted) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    feed(greyFrame());
    EXPECT_EQ(progress(), "Progresss: 0 / 3");
    feed(phaseFrame(s_fPi));
    feed(greyFrame());
    EXPECT_EQ(progress(), "Progresss: 1 / 3");
    ASSERT_EQ(driver.boxes.size(), 2);
    for (const auto& box : driver.boxes) {
        EXPECT_EQ(box.title, "Error");
        EXPECT_EQ(box.icon, QMessageBox::Critical);
        EXPECT_EQ(box.text, wrongKind);
    }
    feed(phaseFrame(s_fPi));
    feed(phaseFrame(s_fPi));
    ASSERT_EQ(driver.boxes.size(), 3);
    EXPECT_EQ(driver.boxes[2].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, WhileABoxIsOpenFurtherWrongFramesOpenNoSecondOne) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    int iOpen = 0;
    driver.onBox = [&](QMessageBox* pBox) {
        for (int i = 0; i < 10; ++i) {
            feed(greyFrame());
            iOpen = qMax(iOpen, int(QApplication::topLevelWidgets().count(pBox)));
            EXPECT_EQ(QApplication::activeModalWidget(), pBox);
        }
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    feed(greyFrame());
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(progress(), "Progresss: 0 / 3");
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(CkToFCalibrateOffsetDlgTest, ACameraThatSendsOnlyWrongFramesIsLeftByEscapeInTheBox) {
    open();
    click(QDialogButtonBox::Ok);
    driver.onBox = [&](QMessageBox* pBox) {
        QTest::keyClick(pBox, driver.boxes.size() < 3 ? Qt::Key_Return : Qt::Key_Escape);
    };
    for (int i = 0; i < 5; ++i) {
        feed(greyFrame());
    }
    EXPECT_EQ(driver.boxes.size(), 3);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_EQ(delegate.settingsHandedOut, 0);
}

TEST_F(CkToFCalibrateOffsetDlgTest, ClosingTheBoxOfAWrongFrameCancelsToo) {
    open();
    click(QDialogButtonBox::Ok);
    driver.onBox = [](QMessageBox* pBox) { pBox->close(); };
    feed(greyFrame());
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(CkToFCalibrateOffsetDlgTest, TheBoxOfAWrongFrameIsClosedInAnyWayOnceAFrameWasCounted) {
    const std::function<void(QMessageBox*)> ways[] = {
        [](QMessageBox* pBox) { QTest::keyClick(pBox, Qt::Key_Escape); },
        [](QMessageBox* pBox) { pBox->close(); },
        [](QMessageBox* pBox) { QTest::keyClick(pBox, Qt::Key_Return); },
        [](QMessageBox* pBox) { QTest::mouseClick(pBox->button(QMessageBox::Ok), Qt::LeftButton); },
    };
    for (const auto& close : ways) {
        driver.boxes.clear();
        open();
        chooseFrames(3);
        click(QDialogButtonBox::Ok);
        feed(phaseFrame(s_fPi));
        driver.onBox = close;
        feed(greyFrame());
        ASSERT_EQ(driver.boxes.size(), 1);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_EQ(progress(), "Progresss: 1 / 3");
        feedPhases(2, s_fPi);
        ASSERT_EQ(driver.boxes.size(), 2);
        EXPECT_EQ(driver.boxes[1].title, "Result");
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
    }
}

TEST_F(CkToFCalibrateOffsetDlgTest, EscapeInTheBoxGoesOnWhenAFrameWasCountedBehindIt) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        feed(phaseFrame(s_fPi));
        QTest::keyClick(pBox, Qt::Key_Escape);
    };
    feed(greyFrame());
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(progress(), "Progresss: 1 / 3");
}

TEST_F(CkToFCalibrateOffsetDlgTest, EscapeInTheBoxSettlesWhatWasCountedBehindIt) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        if (driver.boxes.size() == 1) {
            feedPhases(3, s_fPi);
        }
        QTest::keyClick(pBox, Qt::Key_Escape);
    };
    feed(greyFrame());
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes[1].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(CkToFCalibrateOffsetDlgTest, TheLastFrameBehindTheBoxOfABadDistanceIsSettledAfterwards) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    feed(phaseFrame(s_fPi));
    child<QLineEdit>("edDistance")->setText("abc");
    driver.onBox = [this](QMessageBox* pBox) {
        if (driver.boxes.size() == 1) {
            feed(greyFrame()); // no second box over this one
            feedPhases(3, s_fPi);
            EXPECT_EQ(progress(), "Progresss: 3 / 3");
        }
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    dialog->on_buttonBox_accepted();
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes[0].text, "Please set the distance as decimal number.");
    EXPECT_EQ(driver.boxes[1].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(CkToFCalibrateOffsetDlgTest, OkInCodeNeitherRepeatsNorUndoesAFinishedMeasurement) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        if (driver.boxes.size() == 1) {
            feedPhases(3, s_fPi);
        }
        dialog->on_buttonBox_accepted(); // all is counted, or the result is shown already
        feedPhases(2, 1.0F);
        EXPECT_EQ(progress(), "Progresss: 3 / 3");
        child<QLineEdit>("edDistance")->setText("abc");
        dialog->on_buttonBox_accepted();
        EXPECT_EQ(QApplication::activeModalWidget(), pBox);
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    feed(greyFrame());
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes[1].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
    EXPECT_EQ(delegate.settingsHandedOut, 1);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(CkToFCalibrateOffsetDlgTest, ADialogThatIsRejectedBehindItsBoxStoresNothing) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        feedPhases(2, s_fPi);
        dialog->reject();
        feedPhases(3, s_fPi);
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    feed(greyFrame());
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_EQ(delegate.settingsHandedOut, 0);
}

TEST_F(CkToFCalibrateOffsetDlgTest, DifferencesOfAPhasesCountThatHasNoPhaseShiftAreUnexpected) {
    open();
    click(QDialogButtonBox::Ok);
    for (const qint32 iPhases : {3, 6}) {
        driver.boxes.clear();
        SkPicBuf picture;
        CkPicBufAPI::AllocPicBufFromHeap(picture, 8, 48, 1, EkImageDataType::Int16, 1, 0, 12,
                                         EkDataStorageFormat::Interleaved, EkColorFilterArray::None, false,
                                         false, 0);
        CkImageMetadata metadata;
        metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
        metadata.phasesCount = iPhases;
        metadata.modulationFrequency = 20.0F;
        auto frame = std::make_unique<CkImageData>();
        frame->setPicBuf(picture);
        frame->setMetadata(metadata);
        feed(std::move(frame));
        ASSERT_EQ(driver.boxes.size(), 1) << iPhases;
        EXPECT_EQ(driver.boxes[0].text, wrongKind);
        EXPECT_EQ(progress(), "Progresss: 0 / 5");
    }
}

TEST_F(CkToFCalibrateOffsetDlgTest, EscapeInTheBoxOfABadDistanceLeavesTheDialogOpen) {
    open();
    typeDistance("abc");
    driver.onBox = [](QMessageBox* pBox) { QTest::keyClick(pBox, Qt::Key_Escape); };
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(CkToFCalibrateOffsetDlgTest, ABadDistanceInCodeDoesNotDisturbAMeasurementUnderWay) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    feed(phaseFrame(s_fPi));
    child<QLineEdit>("edDistance")->setText("abc");
    dialog->on_buttonBox_accepted();
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].text, "Please set the distance as decimal number.");
    feedPhases(2, s_fPi);
    EXPECT_EQ(progress(), "Progresss: 3 / 3");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, TheLastFrameBehindAnOpenBoxIsSettledAfterwards) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    bool bFirst = true;
    driver.onBox = [&](QMessageBox* pBox) {
        if (bFirst) {
            bFirst = false;
            feedPhases(5, s_fPi);
            EXPECT_EQ(QApplication::activeModalWidget(), pBox);
            EXPECT_FALSE(delegate.stored(key).isValid());
        }
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    feed(greyFrame());
    QCoreApplication::processEvents();
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes[1].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(CkToFCalibrateOffsetDlgTest, MetadataWithoutModulationFrequencyStoreNothing) {
    for (const float fFreq : {0.0F, 0.099F, -20.0F, s_fNan, s_fInf}) {
        SCOPED_TRACE(fFreq);
        driver.boxes.clear();
        open();
        click(QDialogButtonBox::Ok);
        feedPhases(4, s_fPi, 20.0F);
        feed(phaseFrame(s_fPi, fFreq));
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
    feedPhases(4, s_fPi, 0.0F);
    feed(phaseFrame(s_fPi, 20.0F));
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, PicturesWithoutAMeanAreToldAndStoreNothing) {
    for (const bool bTooSmall : {true, false}) {
        driver.boxes.clear();
        open();
        click(QDialogButtonBox::Ok);
        for (int i = 0; i < 5; ++i) {
            feed(bTooSmall ? phaseFrame(s_fPi, 20.0F, 1, 1) : phaseFrame(s_fNan));
        }
        ASSERT_EQ(driver.boxes.size(), 1);
        EXPECT_EQ(driver.boxes[0].text, wrongKind);
        EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Critical);
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
        EXPECT_EQ(delegate.settingsHandedOut, 0);
    }
}

TEST_F(CkToFCalibrateOffsetDlgTest, CancelHalfWayStoresNothingAndStopsListening) {
    open();
    click(QDialogButtonBox::Ok);
    feedPhases(3, s_fPi);
    view->show(phaseFrame(s_fPi)); // queued when Cancel comes
    view->show(greyFrame());
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    feedPhases(5, s_fPi);
    feed(greyFrame());
    EXPECT_TRUE(driver.boxes.isEmpty());
    EXPECT_EQ(progress(), "Progresss: 3 / 5");
    EXPECT_EQ(delegate.settingsHandedOut, 0);
}

TEST_F(CkToFCalibrateOffsetDlgTest, EscapeRejectsAndEnterStarts) {
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

TEST_F(CkToFCalibrateOffsetDlgTest, WithoutAViewOkOnlyValidatesAndDisablesItself) {
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

TEST_F(CkToFCalibrateOffsetDlgTest, TheViewMayCloseWhileTheDialogWaits) {
    open();
    click(QDialogButtonBox::Ok);
    feed(phaseFrame(s_fPi));
    view->show(phaseFrame(s_fPi));
    view.reset();
    QCoreApplication::processEvents();
    dialog->on_viewFrameReceived(2);
    EXPECT_EQ(progress(), "Progresss: 1 / 5");
    EXPECT_TRUE(dialog->isVisible());
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CkToFCalibrateOffsetDlgTest, TheViewMayCloseWhileTheResultIsShown) {
    open();
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        view.reset();
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    for (int i = 0; i < 5; ++i) {
        view->show(phaseFrame(s_fPi));
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, TheDialogMayBeDeletedWhileItsBoxIsOpen) {
    driver.onBox = [this](QMessageBox*) { dialog.reset(); };
    const std::function<void()> endings[] = {
        [this] { feed(greyFrame()); },
        [this] { feedPhases(5, s_fPi); },
        [this] { feedPhases(5, s_fPi, 0.0F); },
        [this] { feedPhases(5, s_fNan); },
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

TEST_F(CkToFCalibrateOffsetDlgTest, FramesThatHaveGoneAreNotCounted) {
    open();
    click(QDialogButtonBox::Ok);
    view->announce(99);
    QCoreApplication::processEvents();
    EXPECT_EQ(progress(), " ");
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CkToFCalibrateOffsetDlgTest, PressingOkTwiceInCodeCountsFramesOnce) {
    open();
    dialog->on_buttonBox_accepted();
    dialog->on_buttonBox_accepted();
    feed(phaseFrame(s_fPi));
    EXPECT_EQ(progress(), "Progresss: 1 / 5");
}

TEST_F(CkToFCalibrateOffsetDlgTest, A3dViewTakesTheOffsetOver) {
    // The 3D view's own answer to a frame identifier is its current picture; the signal comes from the base.
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
        view3d.show(phaseFrame(s_fPi));
        QCoreApplication::processEvents();
    }
    EXPECT_NEAR(view3d.options().opticalPath.realDistanceOffsetM, -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, EveryOpen3dViewTakesTheOffsetOver) {
    const CkToF3DMdiView first(-1, -1, nullptr, nullptr);
    const CkToF3DMdiView second(view->viewId(), -1, nullptr, nullptr);
    open();
    click(QDialogButtonBox::Ok);
    for (int i = 0; i < 5; ++i) {
        feed(phaseFrame(s_fPi));
    }
    EXPECT_NEAR(first.options().opticalPath.realDistanceOffsetM, -3.3462819F, s_fRounding);
    EXPECT_NEAR(second.options().opticalPath.realDistanceOffsetM, -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, FramesThatA3dViewFollowsAreMeasuredThroughItsQueue) {
    FrameView source;
    delegate.registerView(&source);
    CkToF3DMdiView view3d(source.viewId(), -1, nullptr, nullptr);
    open(&view3d);
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    for (int i = 1; i <= 3; ++i) {
        auto frame = phaseFrame(s_fPi);
        frame->picBuf().additionalData.frameNumber = quint64(i);
        view3d.updateWithConnectedImageData(frame.get(), false);
        frame.reset();
        QCoreApplication::processEvents();
        EXPECT_EQ(progress(), QString("Progresss: %1 / 3").arg(i));
    }
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].title, "Result");
    EXPECT_NEAR(view3d.options().opticalPath.realDistanceOffsetM, -3.3462819F, s_fRounding);
}

TEST_F(CkToFCalibrateOffsetDlgTest, RunsModallyOnTheStackToo) {
    QTimer feeder;
    QObject::connect(&feeder, &QTimer::timeout, view.get(), [this] { view->show(phaseFrame(s_fPi)); });
    driver.expectWindow([&](QWidget* pWindow) {
        auto* buttons = pWindow->findChild<QDialogButtonBox*>("buttonBox");
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        feeder.start(1);
    });
    CkToFCalibrateOffsetDlg modal(view.get(), nullptr);
    EXPECT_EQ(modal.exec(), QDialog::Accepted);
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, s_fRounding);
}
