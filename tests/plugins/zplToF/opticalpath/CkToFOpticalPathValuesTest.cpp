#include "tests/plugins/zplToF/opticalpath/OpticalPathFixture.h"

#include <cmath>
#include <functional>

// Which values Apply, OK and Cancel take over, one by one.

namespace {
using CkToFOpticalPathValuesTest = OpticalPathTest;
using Dialog = CkToFOpticalPathSettingsDlg;

struct SkField {
    const char* name;
    double before;
    double after;
    const char* typed;
    std::function<double(const Dialog&)> value;
};

const std::vector<SkField>& fields() {
    static const std::vector<SkField> s_fields = {
        {"edModulationFreq", 30.0, 20.0, "20", [](const Dialog& d) { return double(d.modulationFreq()); }},
        {"edLensFocalLength", 3.5, 8.25, "8.25", [](const Dialog& d) { return double(d.lensFocalLength()); }},
        {"edOptCenterOffsetX", 0.5, -0.5, "-0.5", [](const Dialog& d) { return d.centerOffset().x(); }},
        {"edOptCenterOffsetY", -0.25, 1.75, "1.75", [](const Dialog& d) { return d.centerOffset().y(); }},
        {"edChipCellSize", 10.0, 5.5, "5.5", [](const Dialog& d) { return double(d.chipCellSize()); }},
        {"edRealDistOffset", -1.5, 0.0625, "0.0625",
         [](const Dialog& d) { return double(d.realDistOffset()); }},
        {"edRegInputFps", 5.0, 12.5, "12.5", [](const Dialog& d) { return double(d.maxInputFps()); }},
    };
    return s_fields;
}

struct SkSwitch {
    const char* name;
    std::function<bool(const Dialog&)> value;
};

const std::vector<SkSwitch>& switches() {
    static const std::vector<SkSwitch> s_switches = {
        {"chkCompensate", [](const Dialog& d) { return d.compensate(); }},
        {"chkOrthoDistance", [](const Dialog& d) { return d.orthoDistance(); }},
        {"chkRegInputFps", [](const Dialog& d) { return d.limitInputFps(); }},
    };
    return s_switches;
}
} // namespace

TEST_F(CkToFOpticalPathValuesTest, ApplyTakesEveryValueOverAndStaysOpen) {
    for (const SkField& field : fields()) {
        SCOPED_TRACE(field.name);
        open();
        QSignalSpy applied(dialog.get(), SIGNAL(dialogValuesChanged()));
        type(field.name, field.typed);
        EXPECT_EQ(field.value(*dialog), field.before);
        click(QDialogButtonBox::Apply);
        EXPECT_EQ(applied.count(), 1);
        EXPECT_TRUE(dialog->isVisible());
        for (const SkField& other : fields()) {
            EXPECT_EQ(other.value(*dialog), &other == &field ? other.after : other.before) << other.name;
        }
    }
    for (const SkSwitch& option : switches()) {
        SCOPED_TRACE(option.name);
        open();
        QSignalSpy applied(dialog.get(), SIGNAL(dialogValuesChanged()));
        toggle(option.name);
        EXPECT_TRUE(option.value(*dialog));
        click(QDialogButtonBox::Apply);
        EXPECT_FALSE(option.value(*dialog));
        EXPECT_EQ(applied.count(), 1);
    }
}

TEST_F(CkToFOpticalPathValuesTest, OkTakesEveryValueOverWithoutTheSignalOfApply) {
    for (const SkField& field : fields()) {
        SCOPED_TRACE(field.name);
        open();
        QSignalSpy applied(dialog.get(), SIGNAL(dialogValuesChanged()));
        type(field.name, field.typed);
        click(QDialogButtonBox::Ok);
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
        EXPECT_FALSE(dialog->isVisible());
        EXPECT_EQ(applied.count(), 0);
        EXPECT_EQ(field.value(*dialog), field.after);
    }
    for (const SkSwitch& option : switches()) {
        SCOPED_TRACE(option.name);
        open();
        toggle(option.name);
        click(QDialogButtonBox::Ok);
        EXPECT_FALSE(option.value(*dialog));
    }
}

TEST_F(CkToFOpticalPathValuesTest, CancelTakesNoValueOver) {
    for (const SkField& field : fields()) {
        SCOPED_TRACE(field.name);
        open();
        type(field.name, field.typed);
        click(QDialogButtonBox::Cancel);
        EXPECT_EQ(dialog->result(), QDialog::Rejected);
        EXPECT_EQ(field.value(*dialog), field.before);
    }
    for (const SkSwitch& option : switches()) {
        SCOPED_TRACE(option.name);
        open();
        toggle(option.name);
        click(QDialogButtonBox::Cancel);
        EXPECT_TRUE(option.value(*dialog));
    }
}

TEST_F(CkToFOpticalPathValuesTest, CancelKeepsWhatApplyTookOver) {
    open();
    type("edLensFocalLength", "4");
    click(QDialogButtonBox::Apply);
    type("edLensFocalLength", "6");
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->lensFocalLength(), 4.0F);
}

TEST_F(CkToFOpticalPathValuesTest, TypingAbcAsTheFocalLengthKeepsTheOldOne) {
    open();
    type("edLensFocalLength", "abc");
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(dialog->result(), QDialog::Accepted);
    EXPECT_EQ(dialog->lensFocalLength(), 3.5F);
}

TEST_F(CkToFOpticalPathValuesTest, ACellSizeOfZeroIsIgnoredAModulationFrequencyOfZeroIsNot) {
    open();
    type("edChipCellSize", "0");
    type("edModulationFreq", "0");
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(dialog->chipCellSize(), 10.0F);
    EXPECT_EQ(dialog->modulationFreq(), 0.0F);
}

TEST_F(CkToFOpticalPathValuesTest, OnlyFocalLengthAndCellSizeHaveToBePositive) {
    open();
    for (const SkField& field : fields()) {
        type(field.name, "-2");
    }
    click(QDialogButtonBox::Ok);
    for (const SkField& field : fields()) {
        const bool bGuarded = QLatin1String(field.name) == QLatin1String("edLensFocalLength") ||
                              QLatin1String(field.name) == QLatin1String("edChipCellSize");
        EXPECT_EQ(field.value(*dialog), bGuarded ? field.before : -2.0) << field.name;
    }
}

TEST_F(CkToFOpticalPathValuesTest, NoFieldTakesWhatIsNoNumber) {
    for (const char* typed :
         {"abc", "", " ", "1.2.3", "nan", "inf", "-inf", "1e99", "1,5,2", "0x10", "--1"}) {
        SCOPED_TRACE(typed);
        open();
        for (const SkField& field : fields()) {
            type(field.name, typed);
        }
        click(QDialogButtonBox::Ok);
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
        for (const SkField& field : fields()) {
            EXPECT_EQ(field.value(*dialog), field.before) << field.name;
        }
    }
}

TEST_F(CkToFOpticalPathValuesTest, AValueThatNobodyTouchedKeepsItsLastDigit) {
    modulationFreq = 29.999999F;
    focalLength = 3.4567891F;
    center = QPointF(0.12345678901234, -0.98765432109876);
    cellSize = 9.8765432F;
    distOffset = -3.3462819F; // what a calibration stored; the dialog shows -3.35
    maxFps = 123.456F;
    open();
    EXPECT_EQ(text("edRealDistOffset"), "-3.35");
    click(QDialogButtonBox::Apply);
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(dialog->modulationFreq(), modulationFreq);
    EXPECT_EQ(dialog->lensFocalLength(), focalLength);
    EXPECT_EQ(dialog->centerOffset().x(), center.x());
    EXPECT_EQ(dialog->centerOffset().y(), center.y());
    EXPECT_EQ(dialog->chipCellSize(), cellSize);
    EXPECT_EQ(dialog->realDistOffset(), distOffset);
    EXPECT_EQ(dialog->maxInputFps(), maxFps);
}

TEST_F(CkToFOpticalPathValuesTest, TypingTheTextThatWasThereBeforeApplyIsAnEdit) {
    distOffset = -3.3462819F;
    open();
    type("edRealDistOffset", "-1");
    click(QDialogButtonBox::Apply);
    type("edRealDistOffset", "-3.35");
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(dialog->realDistOffset(), -3.35F);
}

TEST_F(CkToFOpticalPathValuesTest, ADecimalCommaIsShownAndParsed) {
    const LocaleScope german(QLocale(QLocale::German, QLocale::Germany));
    distOffset = -1234.5F;
    open();
    EXPECT_EQ(text("edLensFocalLength"), "3,50");
    EXPECT_EQ(text("edRealDistOffset"), "-1.234,50");
    EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "0,60");
    type("edLensFocalLength", "4,25");
    type("edChipCellSize", "7,5");
    type("edOptCenterOffsetX", "0.5"); // no number where the point groups thousands
    QTest::keyClick(child("tbConfThreshold"), Qt::Key_Right);
    EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "0,70");
    click(QDialogButtonBox::Ok);
    EXPECT_EQ(dialog->lensFocalLength(), 4.25F);
    EXPECT_EQ(dialog->chipCellSize(), 7.5F);
    EXPECT_EQ(dialog->centerOffset().x(), 0.5);
    EXPECT_EQ(dialog->realDistOffset(), -1234.5F);
}
