#include "tests/plugins/zplToF/opticalpath/OpticalPathFixture.h"

#include "tests/support/ModalDriver.h"

#include <QColorDialog>
#include <QGridLayout>
#include <QGroupBox>
#include <QMetaMethod>

namespace {
using CkToFOpticalPathSettingsDlgTest = OpticalPathTest;

QStringList methods(const QMetaObject& metaObject, QMetaMethod::MethodType type) {
    QStringList names;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        if (metaObject.method(i).methodType() == type) {
            names << metaObject.method(i).methodSignature();
        }
    }
    return names;
}
} // namespace

TEST_F(CkToFOpticalPathSettingsDlgTest, SignalsAndSlotsHaveTheirTexts) {
    const QMetaObject& metaObject = CkToFOpticalPathSettingsDlg::staticMetaObject;
    EXPECT_EQ(methods(metaObject, QMetaMethod::Signal),
              (QStringList{"dialogValuesChanged()", "confidenceThresholdChanged(float)",
                           "bboxVisibityChanged(bool)", "bgColorChanged(uint)"}));
    EXPECT_EQ(methods(metaObject, QMetaMethod::Slot),
              (QStringList{"on_buttonBox_accepted()", "on_buttonBox_clicked(QAbstractButton*)",
                           "onConfThresholdSliderValueChanged(CkValue)", "on_chkBoundingBox_toggled(bool)",
                           "onBgColorPickedChanged()"}));
}

TEST_F(CkToFOpticalPathSettingsDlgTest, EveryControlHasItsNameAndText) {
    open();
    EXPECT_EQ(dialog->windowTitle(), "3D View Settings");
    const std::pair<const char*, const char*> labels[] = {
        {"lbConfThreshold", "Confidence threshold:"},
        {"lbModulationFreq", "ToF modulation frequency:"},
        {"lbModulationFreqUnit", "MHz"},
        {"label_5", "Optical center offset X:"},
        {"label_6", "mm (right)"},
        {"label_12", "Y:"},
        {"label_7", "mm (up)"},
        {"label", "Lens focal length:"},
        {"label_3", "mm"},
        {"label_2", "Chip cell size:"},
        {"label_4", "µm"},
        {"label_10", "Real distance offset:"},
        {"label_13", "m"},
        {"label_11", "Background color:"},
        {"lbInputFps", "FPS"},
        {"lbControls",
         "3D view controls:\n - Left mouse button: move\n - Right mouse button: rotate\n - Wheel: zoom"},
    };
    for (const auto& [name, sText] : labels) {
        EXPECT_EQ(child<QLabel>(name)->text(), QString::fromUtf8(sText)) << name;
    }
    const std::pair<const char*, const char*> boxes[] = {
        {"chkCompensate", "Show with lens projection"},
        {"chkOrthoDistance", "Transform to orthogonal distance"},
        {"chkBoundingBox", "Show bounding box"},
        {"chkRegInputFps", "Limit input data refresh rate:"},
    };
    for (const auto& [name, sText] : boxes) {
        EXPECT_EQ(child<QCheckBox>(name)->text(), sText) << name;
    }
    EXPECT_EQ(child<QGroupBox>("groupOpt")->title(), "Optical path parameters");
    EXPECT_NE(dialog->findChild<QGridLayout*>("gridLayout_3"), nullptr);
    EXPECT_EQ(child<QFrame>("line")->frameShape(), QFrame::HLine);
    const auto* buttons = child<QDialogButtonBox>("buttonBox");
    EXPECT_EQ(buttons->orientation(), Qt::Horizontal);
    EXPECT_EQ(buttons->standardButtons(),
              QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply);
}

TEST_F(CkToFOpticalPathSettingsDlgTest, EveryFieldShowsItsValue) {
    maxFps = 12.34F;
    open();
    EXPECT_EQ(text("edModulationFreq"), "30.00");
    EXPECT_EQ(text("edLensFocalLength"), "3.50");
    EXPECT_EQ(text("edOptCenterOffsetX"), "0.50");
    EXPECT_EQ(text("edOptCenterOffsetY"), "-0.25");
    EXPECT_EQ(text("edChipCellSize"), "10.00");
    EXPECT_EQ(text("edRealDistOffset"), "-1.50");
    EXPECT_EQ(text("edRegInputFps"), "12"); // two significant digits
    EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "0.60");
    EXPECT_TRUE(child<QCheckBox>("chkCompensate")->isChecked());
    EXPECT_TRUE(child<QCheckBox>("chkOrthoDistance")->isChecked());
    EXPECT_FALSE(child<QCheckBox>("chkBoundingBox")->isChecked());
    EXPECT_TRUE(child<QCheckBox>("chkRegInputFps")->isChecked());
    EXPECT_EQ(child<CkColorPickerLabel>("pickBgColor")->pickerColor(), QColor(0x30, 0x30, 0x80));
    const auto* bar = child<CkTuningBar>("tbConfThreshold");
    EXPECT_EQ(bar->minimum(), 0.0);
    EXPECT_EQ(bar->maximum(), 2.0);
    EXPECT_EQ(bar->step(), 0.1);
    EXPECT_FLOAT_EQ(bar->value().toFloat(), 0.6F);
}

TEST_F(CkToFOpticalPathSettingsDlgTest, EveryInputExplainsItselfAndSoDoesItsLabel) {
    open();
    for (const char* name :
         {"tbConfThreshold", "chkCompensate", "edModulationFreq", "edOptCenterOffsetX", "edOptCenterOffsetY",
          "edLensFocalLength", "edChipCellSize", "edRealDistOffset", "chkOrthoDistance", "chkBoundingBox",
          "pickBgColor", "chkRegInputFps", "edRegInputFps"}) {
        EXPECT_FALSE(child(name)->toolTip().isEmpty()) << name;
    }
    const std::pair<const char*, const char*> units[] = {
        {"edModulationFreq", "MHz"}, {"edOptCenterOffsetX", "mm"}, {"edOptCenterOffsetY", "mm"},
        {"edLensFocalLength", "mm"}, {"edChipCellSize", "µm"},     {"edRealDistOffset", " m "}};
    for (const auto& [name, sUnit] : units) {
        EXPECT_TRUE(child(name)->toolTip().contains(QString::fromUtf8(sUnit))) << name;
    }
    EXPECT_EQ(child("label_2")->toolTip(), child("edChipCellSize")->toolTip());
    EXPECT_EQ(child("lbConfThreshold")->toolTip(), child("tbConfThreshold")->toolTip());
    EXPECT_EQ(child("edChipCellSize")->accessibleName(), child<QLabel>("label_2")->text());
    EXPECT_EQ(child("edRegInputFps")->accessibleName(), child<QCheckBox>("chkRegInputFps")->text());
    EXPECT_FALSE(child("edRegInputFps")->accessibleName().isEmpty());
}

TEST_F(CkToFOpticalPathSettingsDlgTest, TheTabKeyVisitsTheControlsInOrder) {
    open();
    child("chkCompensate")->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([this] { return child("chkCompensate")->hasFocus(); }, 30000));
    QStringList visited;
    for (int i = 0; i < 10; ++i) {
        visited << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(visited,
              (QStringList{"chkCompensate", "edModulationFreq", "edChipCellSize", "edLensFocalLength",
                           "edOptCenterOffsetX", "edOptCenterOffsetY", "edRealDistOffset", "chkBoundingBox",
                           "chkRegInputFps", "edRegInputFps"}));
    // The others can also be reached with the keyboard.
    QStringList rest;
    for (int i = 0; i < 8; ++i) {
        rest << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_TRUE(rest.contains("chkOrthoDistance"));
    EXPECT_TRUE(rest.contains("pickBgColor"));
    EXPECT_TRUE(rest.contains("tbConfThreshold"));
}

TEST_F(CkToFOpticalPathSettingsDlgTest, EnterAcceptsAndEscapeRejects) {
    open();
    type("edLensFocalLength", "8");
    QTest::keyClick(child("edLensFocalLength"), Qt::Key_Return);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->lensFocalLength(), 8.0F);
    open();
    type("edLensFocalLength", "9");
    QTest::keyClick(child("edLensFocalLength"), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_EQ(dialog->lensFocalLength(), 3.5F);
}

TEST_F(CkToFOpticalPathSettingsDlgTest, LensProjectionEnablesTheGroup) {
    compensate = false;
    open();
    EXPECT_FALSE(child("groupOpt")->isEnabled());
    toggle("chkCompensate");
    EXPECT_TRUE(child("groupOpt")->isEnabled());
    EXPECT_TRUE(child("edLensFocalLength")->isEnabled());
    toggle("chkCompensate");
    EXPECT_FALSE(child("groupOpt")->isEnabled());
}

TEST_F(CkToFOpticalPathSettingsDlgTest, TheRefreshLimitEnablesItsField) {
    limitFps = false;
    open();
    EXPECT_FALSE(child("edRegInputFps")->isEnabled());
    EXPECT_FALSE(child("lbInputFps")->isEnabled());
    toggle("chkRegInputFps");
    EXPECT_TRUE(child("edRegInputFps")->isEnabled());
    EXPECT_TRUE(child("lbInputFps")->isEnabled());
}

TEST_F(CkToFOpticalPathSettingsDlgTest, WithoutConfidenceTheThresholdRowIsDisabled) {
    confidence = false;
    thresholdMax = 0.0F;
    open();
    EXPECT_FALSE(child("lbConfThreshold")->isEnabled());
    EXPECT_FALSE(child("tbConfThreshold")->isEnabled());
    EXPECT_FALSE(child("lbConfThresholdValue")->isEnabled());
    EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->minimum(), 0.0);
    EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->maximum(), 0.0);
}

TEST_F(CkToFOpticalPathSettingsDlgTest, WithoutConfidenceARangeDoesNotEnableTheBar) {
    confidence = false;
    thresholdMax = 2.0F;
    open();
    EXPECT_FALSE(child("tbConfThreshold")->isEnabled());
}

TEST_F(CkToFOpticalPathSettingsDlgTest, AThresholdRangeOfZeroDisablesTheBarAndShowsTheThreshold) {
    thresholdMax = 0.0F;
    threshold = 10.0F;
    open();
    EXPECT_TRUE(child("lbConfThreshold")->isEnabled());
    EXPECT_FALSE(child("tbConfThreshold")->isEnabled());
    EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "10.00");
    QSignalSpy changes(dialog.get(), SIGNAL(confidenceThresholdChanged(float)));
    QTest::mouseClick(child("tbConfThreshold"), Qt::LeftButton);
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(dialog->confidenceThreshold(), 10.0F);
}

TEST_F(CkToFOpticalPathSettingsDlgTest, MovingTheThresholdActsAtOnce) {
    open();
    QSignalSpy changes(dialog.get(), SIGNAL(confidenceThresholdChanged(float)));
    QTest::keyClick(child("tbConfThreshold"), Qt::Key_Right);
    ASSERT_EQ(changes.count(), 1);
    EXPECT_FLOAT_EQ(changes.at(0).at(0).toFloat(), 0.7F);
    EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "0.70");
    EXPECT_FLOAT_EQ(dialog->confidenceThreshold(), 0.7F);
    QTest::keyClick(child("tbConfThreshold"), Qt::Key_End);
    EXPECT_EQ(changes.at(1).at(0).toFloat(), 2.0F);
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->confidenceThreshold(), 2.0F);
}

TEST_F(CkToFOpticalPathSettingsDlgTest, TheBoundingBoxActsAtOnce) {
    open();
    QSignalSpy changes(dialog.get(), SIGNAL(bboxVisibityChanged(bool)));
    toggle("chkBoundingBox");
    toggle("chkBoundingBox");
    ASSERT_EQ(changes.count(), 2);
    EXPECT_TRUE(changes.at(0).at(0).toBool());
    EXPECT_FALSE(changes.at(1).at(0).toBool());
}

TEST_F(CkToFOpticalPathSettingsDlgTest, TheBackgroundColourActsAtOnceAndIsOpaque) {
    open();
    QSignalSpy changes(dialog.get(), SIGNAL(bgColorChanged(uint)));
    ModalDriver driver;
    driver.expectWindow([](QWidget* pWindow) {
        auto* colors = qobject_cast<QColorDialog*>(pWindow);
        ASSERT_NE(colors, nullptr);
        colors->setCurrentColor(QColor(0x12, 0x34, 0x56));
        QTest::mouseClick(colors->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                          Qt::LeftButton);
    });
    QTest::mouseClick(child("pickBgColor"), Qt::LeftButton);
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes.at(0).at(0).toUInt(), 0x123456U);
}

TEST_F(CkToFOpticalPathSettingsDlgTest, OpeningEmitsNothingThatAListenerWouldHear) {
    bbox = true;
    open();
    QSignalSpy applied(dialog.get(), SIGNAL(dialogValuesChanged()));
    QSignalSpy thresholds(dialog.get(), SIGNAL(confidenceThresholdChanged(float)));
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(applied.count(), 0);
    EXPECT_EQ(thresholds.count(), 0);
}
