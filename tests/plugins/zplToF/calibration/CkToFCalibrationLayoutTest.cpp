#include "plugins/zplToF/translations/ToFTranslation.h"
#include "tests/plugins/zplToF/calibration/CalibrationFixture.h"
#include "tests/support/LayoutChecks.h"

#include <QLayout>

// The layout that the user sees. Run a second time at a scale factor of 2.

namespace {
class CkToFCalibrationLayoutTest : public CalibrationTest, public testing::WithParamInterface<const char*> {
protected:
    void SetUp() override {
        const QLocale language{QString::fromLatin1(GetParam())};
        QLocale::setDefault(language);
        EXPECT_EQ(ToFTranslation::install(language, &owner), language.language() == QLocale::German);
        open();
    }

    int left(const char* name) { return child(name)->mapTo(dialog.get(), QPoint()).x(); }

    QObject owner;
};
} // namespace

TEST_P(CkToFCalibrationLayoutTest, NothingIsCutOffOrOverlaps) {
    EXPECT_EQ(layoutFaults(dialog.get()), QStringList());
    click(QDialogButtonBox::Ok);
    feed(phaseFrame(1.0F));
    EXPECT_NE(progress(), " ");
    EXPECT_EQ(layoutFaults(dialog.get()), QStringList());
}

TEST_P(CkToFCalibrationLayoutTest, LabelsAndFieldsLineUp) {
    EXPECT_EQ(left("label_2"), left("label"));
    EXPECT_EQ(left("lbDistance"), left("label"));
    EXPECT_EQ(left("lbProgress"), left("label"));
    EXPECT_EQ(left("spinAveraging"), left("edDistance"));
    EXPECT_EQ(child("spinAveraging")->width(), child("edDistance")->width());
}

TEST_P(CkToFCalibrationLayoutTest, TheSizeIsFixed) {
    const QSize size = dialog->size();
    EXPECT_EQ(dialog->minimumSize(), size);
    EXPECT_EQ(dialog->maximumSize(), size);
    EXPECT_EQ(size.height(), dialog->layout()->totalHeightForWidth(size.width()));
}

INSTANTIATE_TEST_SUITE_P(Languages, CkToFCalibrationLayoutTest, testing::Values("en_US", "de_DE"),
                         [](const auto& language) { return std::string(language.param, 2); });
