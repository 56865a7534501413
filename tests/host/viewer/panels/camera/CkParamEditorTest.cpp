#include "host/viewer/panels/camera/CkParamEditor.h"

#include "tests/support/LocaleScope.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCoreGui/CkTuningBar.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class ParamEditor : public ::testing::Test {
protected:
    CkCameraParam* add(CkCameraParam::EkKind kind, CkValue value, double minimum, double maximum,
                       double step) {
        CkCameraParam::SkDescription description;
        description.name = QStringLiteral("p%1").arg(m_parameters.params().size());
        description.displayName = "Parameter";
        description.toolTip = "What it does";
        description.unit = "MHz";
        description.kind = kind;
        description.value = value;
        description.minimum = minimum;
        description.maximum = maximum;
        description.step = step;
        if (kind == CkCameraParam::EkKind::Enumeration) {
            description.entries = {{2, "two"}, {4, "four"}};
            description.acceptsUnlisted = true;
        }
        return m_parameters.addParam(description);
    }

    bool m_bAccept = true;
    QList<CkCameraParam*> m_committed;
    CkCameraParameters m_parameters{SkCameraInfo(), [this](const QList<CkCameraParam*>& params) {
                                        m_committed += params;
                                        return m_bAccept;
                                    }};
};

TEST_F(ParamEditor, NumberShowsLimitsUnitAndToolTip) {
    CkParamEditor editor(add(CkCameraParam::EkKind::Float, CkValue(20.0), 5.0, 80.0, 0.5));
    const auto* number = editor.findChild<QDoubleSpinBox*>();
    ASSERT_NE(number, nullptr);
    EXPECT_DOUBLE_EQ(number->value(), 20.0);
    EXPECT_DOUBLE_EQ(number->minimum(), 5.0);
    EXPECT_DOUBLE_EQ(number->maximum(), 80.0);
    EXPECT_EQ(number->suffix(), " MHz");
    EXPECT_EQ(number->decimals(), 1);
    for (const char* part : {"What it does", "5", "80", "MHz", "p0"}) {
        EXPECT_TRUE(editor.toolTip().contains(part)) << part;
    }
}

TEST_F(ParamEditor, IntegerHasNoDecimalsAndCommitsAtOnce) {
    CkCameraParam* param = add(CkCameraParam::EkKind::Integer, CkValue(4), 1, 8, 1);
    CkParamEditor editor(param);
    auto* number = editor.findChild<QDoubleSpinBox*>();
    EXPECT_EQ(number->decimals(), 0);
    number->setValue(6);
    EXPECT_EQ(param->committedValue().toInt(), 6);
    EXPECT_EQ(m_committed, QList<CkCameraParam*>({param}));
}

TEST_F(ParamEditor, DraggingTheBarReachesTheCameraOnceItRests) {
    CkCameraParam* param = add(CkCameraParam::EkKind::Float, CkValue(10.0), 0.0, 100.0, 1.0);
    CkParamEditor editor(param);
    auto* bar = editor.findChild<CkTuningBar*>();
    ASSERT_NE(bar, nullptr);
    emit bar->valueChanged(CkValue(30.0));
    emit bar->valueChanged(CkValue(40.0));
    EXPECT_TRUE(m_committed.isEmpty());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !m_committed.isEmpty(); }));
    EXPECT_EQ(m_committed.size(), 1);
    EXPECT_DOUBLE_EQ(param->committedValue().toDouble(), 40.0);
    EXPECT_DOUBLE_EQ(editor.findChild<QDoubleSpinBox*>()->value(), 40.0);
}

TEST_F(ParamEditor, FlagAndListCommit) {
    CkCameraParam* flag = add(CkCameraParam::EkKind::Bool, CkValue(false), 0, 0, 0);
    CkParamEditor flagEditor(flag);
    flagEditor.findChild<QCheckBox*>()->click();
    EXPECT_TRUE(flag->committedValue().toBool());
    CkCameraParam* list = add(CkCameraParam::EkKind::Enumeration, CkValue(2), 0, 0, 0);
    CkParamEditor listEditor(list);
    auto* box = listEditor.findChild<QComboBox*>();
    EXPECT_EQ(box->currentText(), "two");
    box->setCurrentIndex(1);
    emit box->activated(1);
    EXPECT_EQ(list->committedValue().toInt(), 4);
}

TEST_F(ParamEditor, RefusedValueGoesBack) {
    CkCameraParam* param = add(CkCameraParam::EkKind::Integer, CkValue(4), 1, 8, 1);
    CkParamEditor editor(param);
    QSignalSpy refused(&editor, &CkParamEditor::refused);
    m_bAccept = false;
    editor.findChild<QDoubleSpinBox*>()->setValue(7);
    EXPECT_EQ(refused.size(), 1);
    EXPECT_EQ(param->committedValue().toInt(), 4);
    EXPECT_DOUBLE_EQ(editor.findChild<QDoubleSpinBox*>()->value(), 4.0);
}

TEST_F(ParamEditor, FollowsChangesMadeElsewhereEvenUnlistedOnes) {
    CkCameraParam* list = add(CkCameraParam::EkKind::Enumeration, CkValue(2), 0, 0, 0);
    CkParamEditor editor(list);
    ASSERT_TRUE(list->setParamValue(CkValue(3)));
    ASSERT_TRUE(list->commit());
    EXPECT_TRUE(editor.findChild<QComboBox*>()->currentText().contains("3"));
    EXPECT_EQ(m_committed.size(), 1);
}

TEST_F(ParamEditor, ReadOnlyIsDisabledWithAReason) {
    CkCameraParam::SkDescription description;
    description.name = "fixed";
    description.kind = CkCameraParam::EkKind::Integer;
    description.value = CkValue(5);
    description.readOnly = true;
    CkParamEditor editor(m_parameters.addParam(description));
    EXPECT_FALSE(editor.isEnabled());
    EXPECT_TRUE(editor.toolTip().contains("does not allow"));
}

class ParamTyping : public ParamEditor {
protected:
    /// Replaces the text and presses Enter.
    void type(const CkCameraParam* param, CkParamEditor& editor, const QString& text) {
        editor.show();
        auto* number = editor.findChild<QDoubleSpinBox*>();
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, text);
        QTest::keyClick(number, Qt::Key_Return);
        // The field shows the camera's value.
        EXPECT_NEAR(number->value(), param->committedValue().toDouble(), 1e-12) << qPrintable(text);
    }
};

TEST_F(ParamTyping, AValueBeyondTheLimitsIsClampedAndReported) {
    const LocaleScope locale(QLocale::c());
    CkCameraParam* param = add(CkCameraParam::EkKind::Float, CkValue(20.0), 5.0, 80.0, 0.5);
    CkParamEditor editor(param);
    type(param, editor, "9000");
    EXPECT_EQ(param->committedValue().toDouble(), 80.0);
    EXPECT_EQ(editor.remark(), "9000 is too large; 80.0 MHz was set.");
    EXPECT_TRUE(editor.findChild<QLabel*>("paramRemark")->isVisible());
    // The same text again, which changes nothing.
    type(param, editor, "81");
    EXPECT_EQ(editor.remark(), "81 is too large; 80.0 MHz was set.");
    type(param, editor, "-3");
    EXPECT_EQ(param->committedValue().toDouble(), 5.0);
    EXPECT_EQ(editor.remark(), "-3 is too small; 5.0 MHz was set.");
    // A value that is set unchanged needs no remark.
    type(param, editor, "42.5");
    EXPECT_EQ(param->committedValue().toDouble(), 42.5);
    EXPECT_EQ(editor.remark(), "");
    EXPECT_FALSE(editor.findChild<QLabel*>("paramRemark")->isVisible());
}

TEST_F(ParamTyping, AValueBetweenTwoStepsIsReportedAndOneThatFitsIsNot) {
    const LocaleScope locale(QLocale::c());
    CkCameraParam* param = add(CkCameraParam::EkKind::Float, CkValue(20.0), 5.0, 80.0, 0.5);
    CkParamEditor editor(param);
    type(param, editor, "30.3");
    EXPECT_EQ(param->committedValue().toDouble(), 30.5);
    EXPECT_EQ(editor.remark(), "30.3 is between two steps; 30.5 MHz was set.");
    type(param, editor, "30.500");
    EXPECT_EQ(editor.remark(), "");
    CkCameraParam* whole = add(CkCameraParam::EkKind::Integer, CkValue(4), 1, 8, 1);
    CkParamEditor wholeEditor(whole);
    type(whole, wholeEditor, "4.7");
    EXPECT_EQ(whole->committedValue().toInt(), 5);
    EXPECT_EQ(wholeEditor.remark(), "4.7 is between two steps; 5 MHz was set.");
}

TEST_F(ParamTyping, WithoutStepsNoDigitIsLost) {
    const LocaleScope locale(QLocale::c());
    CkCameraParam* param = add(CkCameraParam::EkKind::Float, CkValue(1.5), 0.0, 10.0, 0.0);
    CkParamEditor editor(param);
    EXPECT_EQ(editor.findChild<QDoubleSpinBox*>()->text(), "1.5 MHz");
    type(param, editor, "0.00125");
    EXPECT_DOUBLE_EQ(param->committedValue().toDouble(), 0.00125);
    EXPECT_EQ(editor.remark(), "");
}

TEST_F(ParamTyping, PointAndCommaAreBothDecimalSignsAndWhatCouldBeTwoNumbersIsMarked) {
    for (const QLocale& language : {QLocale(QLocale::English), QLocale(QLocale::German)}) {
        const LocaleScope locale(language);
        CkCameraParam* param = add(CkCameraParam::EkKind::Float, CkValue(20.0), 5.0, 8000.0, 0.5);
        CkParamEditor editor(param);
        type(param, editor, "30.5");
        EXPECT_EQ(param->committedValue().toDouble(), 30.5) << qPrintable(language.name());
        type(param, editor, "31,5");
        EXPECT_EQ(param->committedValue().toDouble(), 31.5) << qPrintable(language.name());
        EXPECT_EQ(editor.remark(), "");
        const bool comma = language.decimalPoint() == ",";
        type(param, editor, comma ? "1.500" : "1,500");
        EXPECT_EQ(param->committedValue().toDouble(), 31.5) << qPrintable(language.name());
        EXPECT_TRUE(editor.remark().contains("is not a clear number")) << qPrintable(editor.remark());
        type(param, editor, comma ? "1500,5" : "1500.5");
        EXPECT_EQ(param->committedValue().toDouble(), 1500.5) << qPrintable(language.name());
    }
}

TEST_F(ParamTyping, HalfANumberLeavesTheOldValueAndIsReported) {
    const LocaleScope locale(QLocale::c());
    CkCameraParam* param = add(CkCameraParam::EkKind::Float, CkValue(20.0), -5.0, 80.0, 0.5);
    CkParamEditor editor(param);
    type(param, editor, "-");
    EXPECT_EQ(param->committedValue().toDouble(), 20.0);
    EXPECT_EQ(editor.remark(), "\"-\" is not a clear number; 20.0 MHz stays.");
}

TEST_F(ParamTyping, ARefusalIsReportedAndTheNextGoodValueClearsIt) {
    CkCameraParam* param = add(CkCameraParam::EkKind::Integer, CkValue(4), 1, 8, 1);
    CkParamEditor editor(param);
    m_bAccept = false;
    type(param, editor, "7");
    EXPECT_EQ(param->committedValue().toInt(), 4);
    EXPECT_EQ(editor.remark(), "The camera refused it; the old value stays.");
    m_bAccept = true;
    type(param, editor, "9");
    EXPECT_EQ(editor.remark(), "9 is too large; 8 MHz was set.");
    type(param, editor, "7");
    EXPECT_EQ(editor.remark(), "");
}

TEST_F(ParamTyping, AStepAfterTypingIsReportedOnlyIfTheNumberDidNotFit) {
    CkCameraParam* param = add(CkCameraParam::EkKind::Integer, CkValue(4), 1, 8, 1);
    CkParamEditor editor(param);
    editor.show();
    auto* number = editor.findChild<QDoubleSpinBox*>();
    number->setFocus();
    number->selectAll();
    QTest::keyClicks(number, "5");
    QTest::keyClick(number, Qt::Key_Up);
    EXPECT_EQ(param->committedValue().toInt(), 6);
    EXPECT_EQ(editor.remark(), "");
    number->selectAll();
    QTest::keyClicks(number, "20");
    QTest::keyClick(number, Qt::Key_Up);
    EXPECT_EQ(param->committedValue().toInt(), 8);
    EXPECT_EQ(editor.remark(), "20 is too large; 8 MHz was set.");
}

} // namespace
