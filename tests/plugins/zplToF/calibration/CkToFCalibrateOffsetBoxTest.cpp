// Message boxes of the calibration, and frames that arrive while one is open.

#include "tests/plugins/zplToF/calibration/CalibrationFixture.h"

#include <functional>

namespace {
using CkToFCalibrateOffsetBoxTest = CalibrationTest;
constexpr float kPi = 3.1415927F;
// Metres: 180 additions in single precision, and the conversion to metres.
constexpr float kRounding = 5e-6F;
} // namespace

TEST_F(CkToFCalibrateOffsetBoxTest, FramesOfAWrongKindAreToldEachTimeAndNotCounted) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    feed(greyFrame());
    EXPECT_EQ(progress(), "Progresss: 0 / 3");
    feed(phaseFrame(kPi));
    feed(greyFrame());
    EXPECT_EQ(progress(), "Progresss: 1 / 3");
    ASSERT_EQ(driver.boxes.size(), 2);
    for (const auto& box : driver.boxes) {
        EXPECT_EQ(box.title, "Error");
        EXPECT_EQ(box.icon, QMessageBox::Critical);
        EXPECT_EQ(box.text, wrongKind);
    }
    feed(phaseFrame(kPi));
    feed(phaseFrame(kPi));
    ASSERT_EQ(driver.boxes.size(), 3);
    EXPECT_EQ(driver.boxes[2].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetBoxTest, WhileABoxIsOpenFurtherWrongFramesOpenNoSecondOne) {
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

TEST_F(CkToFCalibrateOffsetBoxTest, ACameraThatSendsOnlyWrongFramesIsLeftByEscapeInTheBox) {
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

TEST_F(CkToFCalibrateOffsetBoxTest, ClosingTheBoxOfAWrongFrameCancelsToo) {
    open();
    click(QDialogButtonBox::Ok);
    driver.onBox = [](QMessageBox* pBox) { pBox->close(); };
    feed(greyFrame());
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(CkToFCalibrateOffsetBoxTest, TheBoxOfAWrongFrameIsClosedInAnyWayOnceAFrameWasCounted) {
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
        feed(phaseFrame(kPi));
        driver.onBox = close;
        feed(greyFrame());
        ASSERT_EQ(driver.boxes.size(), 1);
        EXPECT_TRUE(dialog->isVisible());
        EXPECT_EQ(progress(), "Progresss: 1 / 3");
        feedPhases(2, kPi);
        ASSERT_EQ(driver.boxes.size(), 2);
        EXPECT_EQ(driver.boxes[1].title, "Result");
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
    }
}

TEST_F(CkToFCalibrateOffsetBoxTest, EscapeInTheBoxGoesOnWhenAFrameWasCountedBehindIt) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        feed(phaseFrame(kPi));
        QTest::keyClick(pBox, Qt::Key_Escape);
    };
    feed(greyFrame());
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(progress(), "Progresss: 1 / 3");
}

TEST_F(CkToFCalibrateOffsetBoxTest, EscapeInTheBoxSettlesWhatWasCountedBehindIt) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        if (driver.boxes.size() == 1) {
            feedPhases(3, kPi);
        }
        QTest::keyClick(pBox, Qt::Key_Escape);
    };
    feed(greyFrame());
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes[1].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(CkToFCalibrateOffsetBoxTest, TheLastFrameBehindTheBoxOfABadDistanceIsSettledAfterwards) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    feed(phaseFrame(kPi));
    child<QLineEdit>("edDistance")->setText("abc");
    driver.onBox = [this](QMessageBox* pBox) {
        if (driver.boxes.size() == 1) {
            feed(greyFrame()); // opens no second box on top of this one
            feedPhases(3, kPi);
            EXPECT_EQ(progress(), "Progresss: 3 / 3");
        }
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    dialog->on_buttonBox_accepted();
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes[0].text, "Please set the distance as decimal number.");
    EXPECT_EQ(driver.boxes[1].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(CkToFCalibrateOffsetBoxTest, OkInCodeNeitherRepeatsNorUndoesAFinishedMeasurement) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        if (driver.boxes.size() == 1) {
            feedPhases(3, kPi);
        }
        dialog->on_buttonBox_accepted(); // all frames are counted, or the result is shown already
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
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
    EXPECT_EQ(delegate.settingsHandedOut, 1);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(CkToFCalibrateOffsetBoxTest, ADialogThatIsRejectedBehindItsBoxStoresNothing) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    driver.onBox = [this](QMessageBox* pBox) {
        feedPhases(2, kPi);
        dialog->reject();
        feedPhases(3, kPi);
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    feed(greyFrame());
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_EQ(delegate.settingsHandedOut, 0);
}

TEST_F(CkToFCalibrateOffsetBoxTest, DifferencesOfAPhasesCountThatHasNoPhaseShiftAreUnexpected) {
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

TEST_F(CkToFCalibrateOffsetBoxTest, EscapeInTheBoxOfABadDistanceLeavesTheDialogOpen) {
    open();
    typeDistance("abc");
    driver.onBox = [](QMessageBox* pBox) { QTest::keyClick(pBox, Qt::Key_Escape); };
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(CkToFCalibrateOffsetBoxTest, ABadDistanceInCodeDoesNotDisturbAMeasurementUnderWay) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    feed(phaseFrame(kPi));
    child<QLineEdit>("edDistance")->setText("abc");
    dialog->on_buttonBox_accepted();
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].text, "Please set the distance as decimal number.");
    feedPhases(2, kPi);
    EXPECT_EQ(progress(), "Progresss: 3 / 3");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
}

TEST_F(CkToFCalibrateOffsetBoxTest, TheLastFrameBehindAnOpenBoxIsSettledAfterwards) {
    open();
    chooseFrames(3);
    click(QDialogButtonBox::Ok);
    bool bFirst = true;
    driver.onBox = [&](QMessageBox* pBox) {
        if (bFirst) {
            bFirst = false;
            feedPhases(5, kPi);
            EXPECT_EQ(QApplication::activeModalWidget(), pBox);
            EXPECT_FALSE(delegate.stored(key).isValid());
        }
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    feed(greyFrame());
    QCoreApplication::processEvents();
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes[1].title, "Result");
    EXPECT_NEAR(delegate.stored(key).toFloat(), -3.3462819F, kRounding);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
}
