#pragma once

#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"
#include "tests/support/LocaleScope.h"
#include "zuCoreGui/CkColorPickerLabel.h"
#include "zuCoreGui/CkTuningBar.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

/// A dialog on values that a test changes before it opens it.
class OpticalPathTest : public testing::Test {
protected:
    EkDepthDataType depthDataType = EkDepthDataType::PhaseShift;
    float modulationFreq = 30.0F;
    bool confidence = true;
    float threshold = 0.6F;
    float thresholdMin = 0.0F;
    float thresholdMax = 2.0F;
    bool compensate = true;
    float focalLength = 3.5F;
    QPointF center{0.5, -0.25};
    float cellSize = 10.0F;
    float distOffset = -1.5F;
    bool ortho = true;
    bool bbox = false;
    unsigned int bgColor = 0x303080;
    bool limitFps = true;
    float maxFps = 5.0F;

    LocaleScope locale{QLocale(QLocale::English, QLocale::UnitedStates)};
    std::unique_ptr<CkToFOpticalPathSettingsDlg> dialog;

    void open() {
        dialog = std::make_unique<CkToFOpticalPathSettingsDlg>(
            depthDataType, modulationFreq, confidence, threshold, thresholdMin, thresholdMax, compensate,
            focalLength, center, cellSize, distOffset, ortho, bbox, bgColor, limitFps, maxFps);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get(), 30000));
        QApplication::setActiveWindow(dialog.get());
    }

    template <class Widget = QWidget>
    Widget* child(const char* name) {
        auto* widget = dialog->findChild<Widget*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    QString text(const char* name) { return child<QLineEdit>(name)->text(); }

    /// Types the text, replacing the present one.
    void type(const char* name, const QString& sText) {
        auto* edit = child<QLineEdit>(name);
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        QTest::keyClicks(edit, sText);
    }

    void click(QDialogButtonBox::StandardButton button) {
        QTest::mouseClick(child<QDialogButtonBox>("buttonBox")->button(button), Qt::LeftButton);
    }

    void toggle(const char* name) {
        // Styles accept clicks on the box and its text, not on the empty space after it.
        auto* box = child<QCheckBox>(name);
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(8, box->height() / 2));
    }
};
