#include "plugins/zplToF/translations/ToFTranslation.h"
#include "tests/plugins/zplToF/opticalpath/OpticalPathFixture.h"
#include "tests/support/LayoutChecks.h"

// The layout that the user sees. Run a second time at a scale factor of 2.

namespace {
class CkToFOpticalPathLayoutTest : public OpticalPathTest, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        const QLocale language{QString::fromLatin1(GetParam())};
        QLocale::setDefault(language);
        EXPECT_EQ(ToFTranslation::install(language, &owner), language.language() == QLocale::German);
    }

    int left(const char* name) { return child(name)->mapTo(dialog.get(), QPoint()).x(); }
    int right(const char* name) { return left(name) + child(name)->width(); }
    int top(const char* name) { return child(name)->mapTo(dialog.get(), QPoint()).y(); }

    QObject owner;
};
} // namespace

TEST_P(CkToFOpticalPathLayoutTest, NothingIsCutOffOrOverlaps) {
    for (const EkDepthDataType type : {EkDepthDataType::PhaseShift, EkDepthDataType::Depth}) {
        depthDataType = type;
        open();
        EXPECT_EQ(layoutFaults(dialog.get()), QStringList());
    }
}

TEST_P(CkToFOpticalPathLayoutTest, FieldsAndUnitsStandInColumns) {
    open();
    for (const char* name : {"edOptCenterOffsetX", "edOptCenterOffsetY", "edLensFocalLength",
                             "edChipCellSize", "edRealDistOffset", "edRegInputFps", "tbConfThreshold"}) {
        EXPECT_EQ(left(name), left("edModulationFreq")) << name;
        EXPECT_EQ(right(name), right("edModulationFreq")) << name;
    }
    EXPECT_EQ(left("pickBgColor"), left("edModulationFreq"));
    for (const char* name :
         {"label_6", "label_7", "label_3", "label_4", "label_13", "lbInputFps", "lbConfThresholdValue"}) {
        EXPECT_EQ(left(name), left("lbModulationFreqUnit")) << name;
    }
    for (const char* name : {"label_5", "label", "label_2", "label_10"}) {
        EXPECT_EQ(left(name), left("lbModulationFreq")) << name;
    }
}

TEST_P(CkToFOpticalPathLayoutTest, ControlsStandInTheirOrder) {
    open();
    const char* rows[] = {"lbConfThreshold",  "line",           "chkCompensate",    "groupOpt",
                          "lbModulationFreq", "label_5",        "label_12",         "label",
                          "label_2",          "label_10",       "chkOrthoDistance", "chkBoundingBox",
                          "label_11",         "chkRegInputFps", "lbControls",       "buttonBox"};
    for (size_t i = 1; i < std::size(rows); ++i) {
        EXPECT_LT(top(rows[i - 1]), top(rows[i])) << rows[i];
    }
}

TEST_P(CkToFOpticalPathLayoutTest, TheModulationFrequencyVanishesWithoutAHole) {
    open();
    const int iRow = top("edOptCenterOffsetX") - top("edModulationFreq");
    const int iFirst = top("edModulationFreq") - top("groupOpt");
    const int iHeight = dialog->height();
    depthDataType = EkDepthDataType::Depth;
    open();
    EXPECT_FALSE(child("lbModulationFreq")->isVisible());
    EXPECT_FALSE(child("edModulationFreq")->isVisible());
    EXPECT_FALSE(child("lbModulationFreqUnit")->isVisible());
    EXPECT_EQ(top("edOptCenterOffsetX") - top("groupOpt"), iFirst);
    EXPECT_EQ(dialog->height(), iHeight - iRow);
}

TEST_P(CkToFOpticalPathLayoutTest, TheSizeIsFixed) {
    open();
    const QSize size = dialog->size();
    EXPECT_EQ(dialog->minimumSize(), size);
    EXPECT_EQ(dialog->maximumSize(), size);
    dialog->resize(size * 2);
    EXPECT_EQ(dialog->size(), size);
}

TEST_P(CkToFOpticalPathLayoutTest, FitsIntoASmallScreen) {
    open();
    // 1280 x 1024 at 200 %, less a title bar.
    EXPECT_LE(dialog->width(), 640);
    EXPECT_LE(dialog->height(), 490);
}

INSTANTIATE_TEST_SUITE_P(Languages, CkToFOpticalPathLayoutTest, testing::Values("en_US", "de_DE"),
                         [](const auto& language) { return std::string(language.param, 2); });
