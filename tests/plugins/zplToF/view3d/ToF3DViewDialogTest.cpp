#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"
#include "tests/plugins/zplToF/view3d/ViewActionFixture.h"
#include "zuCoreGui/CkTuningBar.h"

#include <QAction>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <Qt3DCore/QEntity>

namespace {

class ToF3DViewDialogTest : public ViewActionTest {
protected:
    void inDialog(CkToF3DMdiView& view, const std::function<void(CkToFOpticalPathSettingsDlg&)>& work) {
        m_driver.expectWindow([work](QWidget* window) {
            auto* dialog = qobject_cast<CkToFOpticalPathSettingsDlg*>(window);
            ASSERT_NE(dialog, nullptr);
            work(*dialog);
        });
        action(view, QStringLiteral("Settings..."))->trigger();
        EXPECT_EQ(m_driver.pending(), 0);
    }
    static void press(QDialog& dialog, QDialogButtonBox::StandardButton button) {
        QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
    }
    static void type(QDialog& dialog, const char* edit, const char* text) {
        auto* line = dialog.findChild<QLineEdit*>(QLatin1String(edit));
        ASSERT_NE(line, nullptr) << edit;
        line->selectAll();
        QTest::keyClicks(line, QLatin1String(text));
    }
    static void toggle(QDialog& dialog, const char* box) {
        dialog.findChild<QCheckBox*>(QLatin1String(box))->click();
    }
};

TEST_F(ToF3DViewDialogTest, OkTakesOverAndStoresEveryValue) {
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    inDialog(*view, [](CkToFOpticalPathSettingsDlg& dialog) {
        toggle(dialog, "chkCompensate");
        type(dialog, "edModulationFreq", "20");
        type(dialog, "edLensFocalLength", "4.25");
        type(dialog, "edChipCellSize", "15");
        type(dialog, "edOptCenterOffsetX", "0.02");
        type(dialog, "edOptCenterOffsetY", "-0.25");
        type(dialog, "edRealDistOffset", "0.75");
        toggle(dialog, "chkOrthoDistance");
        toggle(dialog, "chkRegInputFps");
        type(dialog, "edRegInputFps", "8");
        press(dialog, QDialogButtonBox::Ok);
    });
    SkToFViewSettings expected;
    expected.regulateInputFps = true;
    expected.maxInputFps = 8.0F;
    expected.opticalPath.compensateDistortion = true;
    expected.opticalPath.modulationFreqMHz = 20.0F;
    expected.opticalPath.lensFocalLengthMM = 4.25F;
    expected.opticalPath.chipCellSizeMM = 0.015F;
    expected.opticalPath.centerOffsetMM = QPointF(double(0.02F), -0.25);
    expected.opticalPath.realDistanceOffsetM = 0.75F;
    expected.opticalPath.orthoRadialCorrection = false;
    EXPECT_EQ(view->options(), expected);
    EXPECT_TRUE(view->cloud().usedLens());
    const QSettings stored(m_host.settingsFile(), QSettings::IniFormat);
    EXPECT_EQ(SkToFViewSettings::read(stored), expected);
    EXPECT_EQ(m_host.settingsAlive(), 0);
}

TEST_F(ToF3DViewDialogTest, AnUntouchedDialogChangesNothing) {
    m_host.store(QStringLiteral("ToF.OptChipCellSizeMM"), 0.0137F);
    m_host.store(QStringLiteral("ToF.OptRealDistandeOffsetM"), -1.23456F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    const SkToFViewSettings before = view->options();
    inDialog(*view, [](CkToFOpticalPathSettingsDlg& dialog) { press(dialog, QDialogButtonBox::Ok); });
    EXPECT_EQ(view->options(), before);
}

TEST_F(ToF3DViewDialogTest, ApplyLeavesTheOrthogonalCorrectionToOk) {
    useLens(0.0F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    const QByteArray before = vertices(*view);
    inDialog(*view, [&](CkToFOpticalPathSettingsDlg& dialog) {
        toggle(dialog, "chkOrthoDistance");
        press(dialog, QDialogButtonBox::Apply);
        EXPECT_EQ(vertices(*view), before);
        EXPECT_FALSE(view->options().opticalPath.orthoRadialCorrection);
        EXPECT_FALSE(m_host.stored(QStringLiteral("ToF.MaxInputFps")).isValid());
        press(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_TRUE(view->options().opticalPath.orthoRadialCorrection);
    EXPECT_NE(vertices(*view), before);
    EXPECT_TRUE(m_host.stored(QStringLiteral("ToF.OptOrthoRadialCorrection")).toBool());
}

TEST_F(ToF3DViewDialogTest, WhatWasAppliedStaysAfterCancelAndIsNotStored) {
    useLens(0.0F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    inDialog(*view, [](CkToFOpticalPathSettingsDlg& dialog) {
        type(dialog, "edRealDistOffset", "0.5");
        press(dialog, QDialogButtonBox::Apply);
        type(dialog, "edRealDistOffset", "0.75");
        press(dialog, QDialogButtonBox::Cancel);
    });
    EXPECT_EQ(view->options().opticalPath.realDistanceOffsetM, 0.5F);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.OptRealDistandeOffsetM")).toFloat(), 0.0F);
}

TEST_F(ToF3DViewDialogTest, AThresholdMovedBeforeCancelStaysInTheViewOnly) {
    m_source.shown = TestFrame::phase(8, 6, [](int x, int) { return DepthPixel{1.0F, 0.5F * float(x)}; });
    const auto view = open();
    inDialog(*view, [&](CkToFOpticalPathSettingsDlg& dialog) {
        auto* bar = dialog.findChild<CkTuningBar*>(QStringLiteral("tbConfThreshold"));
        ASSERT_NE(bar, nullptr);
        // The largest confidence in the frame.
        EXPECT_EQ(bar->minimum(), 0.0);
        EXPECT_EQ(bar->maximum(), 3.5);
        QTest::keyClick(bar, Qt::Key_End);
        QTest::keyClick(bar, Qt::Key_Left);
        press(dialog, QDialogButtonBox::Cancel);
    });
    EXPECT_NEAR(view->options().opticalPath.confidenceThreshold, 3.4F, 1e-5F);
    EXPECT_EQ(view->cloud().pointCount(), 42);
    EXPECT_FALSE(m_host.stored(QStringLiteral("ToF.OptConfidenceThreshold")).isValid());
}

TEST_F(ToF3DViewDialogTest, TheThresholdOfDepthEndsAtOneAndThatOfPlainPhasesAtZero) {
    m_source.shown = TestFrame::depth(8, 6, [](int x, int) { return DepthPixel{1.0F, 5.0F * float(x)}; });
    const auto view = open();
    inDialog(*view, [](CkToFOpticalPathSettingsDlg& dialog) {
        EXPECT_EQ(dialog.findChild<CkTuningBar*>()->maximum(), 1.0);
        EXPECT_TRUE(dialog.findChild<CkTuningBar*>()->isEnabled());
        press(dialog, QDialogButtonBox::Cancel);
    });
    auto plain = TestFrame::generic(8, 6, [](int, int) { return 1.0F; });
    CkImageMetadata metadata;
    metadata.channelNames = {QStringLiteral("Phase shift")};
    metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
    plain->setMetadata(metadata);
    give(*view, plain);
    ASSERT_EQ(view->depthFrame().depthDataKind(), EkDepthDataType::PhaseShift);
    inDialog(*view, [](CkToFOpticalPathSettingsDlg& dialog) {
        EXPECT_FALSE(dialog.findChild<CkTuningBar*>()->isEnabled());
        press(dialog, QDialogButtonBox::Cancel);
    });
}

TEST_F(ToF3DViewDialogTest, BoxAndBackgroundActAtOnce) {
    m_host.store(QStringLiteral("ToF.BgColor"), 0x010203U);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    view->scene()->setClearColor(QColor(9, 8, 7));
    inDialog(*view, [&](CkToFOpticalPathSettingsDlg& dialog) {
        toggle(dialog, "chkBoundingBox");
        EXPECT_FALSE(view->scene()->boxEntity()->isEnabled());
        press(dialog, QDialogButtonBox::Cancel);
    });
    EXPECT_FALSE(view->options().showBBox);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.ShowBBox")).toBool(), false);
}

TEST_F(ToF3DViewDialogTest, FramesKeepComingWhileItIsOpen) {
    m_source.shown = phaseOf(1.0F);
    const auto view = open();
    show(*view);
    inDialog(*view, [&](CkToFOpticalPathSettingsDlg& dialog) {
        for (int i = 1; i <= 20; ++i) {
            give(*view, phaseOf(0.1F * float(i)));
            letEventsHappen(2);
        }
        EXPECT_FLOAT_EQ(view->depthFrame().depthPic().maxValue, 2.0F);
        press(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_FLOAT_EQ(view->depthFrame().depthPic().maxValue, 2.0F);
}

TEST_F(ToF3DViewDialogTest, TheViewMayCloseUnderIt) {
    m_source.shown = phaseOf(1.0F);
    auto view = open();
    CkToF3DMdiView* raw = view.get();
    m_driver.expectWindow([&](QWidget*) { view.reset(); });
    raw->showOpticalPathDlg();
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(m_host.settingsAlive(), 0);
}

TEST_F(ToF3DViewDialogTest, OnlyTheDialogMayApply) {
    const auto view = open();
    const SkToFViewSettings before = view->options();
    view->onOpticalPathDlgValueChanged();
    QAction other;
    QObject::connect(&other, SIGNAL(triggered()), view.get(), SLOT(onOpticalPathDlgValueChanged()));
    other.trigger();
    EXPECT_EQ(view->options(), before);
}

} // namespace
