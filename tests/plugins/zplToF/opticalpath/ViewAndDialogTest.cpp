#include "tests/plugins/zplToF/opticalpath/ViewAndDialogFixture.h"
#include "zuCoreGui/CkColorPickerLabel.h"
#include "zuCoreGui/CkTuningBar.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QLabel>
#include <dlfcn.h>

namespace {
const QStringList kDialogKeys = {"ToF.OptCompensateDistorsion", "ToF.OptLensFocalLengthMM",
                                 "ToF.OptChipCellSizeMM",       "ToF.OptCenterOffsetMM",
                                 "ToF.OptModulationFreq",       "ToF.OptConfidenceThreshold",
                                 "ToF.OptRealDistandeOffsetM",  "ToF.OptOrthoRadialCorrection",
                                 "ToF.RegulateInputFps",        "ToF.MaxInputFps"};
} // namespace

// Replaces the library's own function: records the key and calls that one. The order in which keys were
// written cannot be read from the file.
void QSettings::setValue(QAnyStringView key, const QVariant& value) {
    settingsWrites << key.toString();
    using Function = void (*)(QSettings*, QAnyStringView, const QVariant&);
    static const auto s_real =
        reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN9QSettings8setValueE14QAnyStringViewRK8QVariant"));
    s_real(this, key, value);
}

TEST_F(ViewAndDialogTest, OkWritesTheSettingsInTheirOrder) {
    auto view = openOn(wall());
    withDialog(*view, [this] { click(QDialogButtonBox::Ok); });
    EXPECT_EQ(settingsWrites, kDialogKeys);
}

TEST_F(ViewAndDialogTest, OkStoresEveryValueApplyAndCancelNone) {
    for (const auto button : {QDialogButtonBox::Cancel, QDialogButtonBox::Apply, QDialogButtonBox::Ok}) {
        auto view = openOn(wall());
        withDialog(*view, [&] {
            toggle("chkCompensate");
            type("edModulationFreq", "20");
            type("edOptCenterOffsetX", "0.5");
            type("edOptCenterOffsetY", "-0.75");
            type("edLensFocalLength", "8");
            type("edChipCellSize", "12.5");
            type("edRealDistOffset", "0.25");
            toggle("chkOrthoDistance");
            toggle("chkRegInputFps");
            type("edRegInputFps", "7");
            click(button);
            if (button == QDialogButtonBox::Apply) {
                EXPECT_TRUE(dialog->isVisible());
                click(QDialogButtonBox::Cancel);
            }
        });
        const SkToFViewSettings& options = view->options();
        const bool bTaken = button != QDialogButtonBox::Cancel;
        EXPECT_EQ(options.opticalPath.compensateDistortion, bTaken);
        EXPECT_EQ(options.opticalPath.modulationFreqMHz, bTaken ? 20.0F : 30.0F);
        EXPECT_EQ(options.opticalPath.centerOffsetMM, bTaken ? QPointF(0.5, -0.75) : QPointF());
        EXPECT_EQ(options.opticalPath.lensFocalLengthMM, bTaken ? 8.0F : 3.5F);
        EXPECT_EQ(options.opticalPath.chipCellSizeMM, bTaken ? 0.0125F : 0.01F);
        EXPECT_EQ(options.opticalPath.realDistanceOffsetM, bTaken ? 0.25F : -1.5F);
        EXPECT_EQ(options.regulateInputFps, bTaken);
        EXPECT_EQ(options.maxInputFps, bTaken ? 7.0F : 5.0F);
        // Apply does not change the orthogonal correction.
        EXPECT_EQ(options.opticalPath.orthoRadialCorrection, button != QDialogButtonBox::Ok);
        if (button != QDialogButtonBox::Ok) {
            EXPECT_EQ(storedKeys(), QStringList());
        }
    }
    EXPECT_EQ(m_host.stored("ToF.OptCompensateDistorsion").toBool(), true);
    EXPECT_EQ(m_host.stored("ToF.OptLensFocalLengthMM").toFloat(), 8.0F);
    EXPECT_EQ(m_host.stored("ToF.OptChipCellSizeMM").toFloat(), 0.0125F);
    EXPECT_EQ(m_host.stored("ToF.OptCenterOffsetMM").toPointF(), QPointF(0.5, -0.75));
    EXPECT_EQ(m_host.stored("ToF.OptModulationFreq").toFloat(), 20.0F);
    EXPECT_EQ(m_host.stored("ToF.OptConfidenceThreshold").toFloat(), 10.0F);
    EXPECT_EQ(m_host.stored("ToF.OptRealDistandeOffsetM").toFloat(), 0.25F);
    EXPECT_EQ(m_host.stored("ToF.OptOrthoRadialCorrection").toBool(), false);
    EXPECT_EQ(m_host.stored("ToF.RegulateInputFps").toBool(), true);
    EXPECT_EQ(m_host.stored("ToF.MaxInputFps").toFloat(), 7.0F);
    EXPECT_EQ(m_host.settingsAlive(), 0);
}

TEST_F(ViewAndDialogTest, TypingAbcAsTheFocalLengthKeepsTheOldOneAndStillSavesAllKeys) {
    auto view = openOn(wall());
    withDialog(*view, [this] {
        toggle("chkCompensate");
        type("edLensFocalLength", "abc");
        click(QDialogButtonBox::Ok);
    });
    EXPECT_EQ(view->options().opticalPath.lensFocalLengthMM, 3.5F);
    QStringList keys = kDialogKeys;
    keys.sort();
    EXPECT_EQ(storedKeys(), keys);
}

TEST_F(ViewAndDialogTest, ValuesThatNobodyTouchedKeepTheirLastDigit) {
    m_host.store("ToF.OptRealDistandeOffsetM", -3.3462819F);
    m_host.store("ToF.OptChipCellSizeMM", 0.0056789F);
    m_host.store("ToF.OptLensFocalLengthMM", 4.0123456F);
    auto view = openOn(wall());
    withDialog(*view, [this] {
        click(QDialogButtonBox::Apply);
        click(QDialogButtonBox::Ok);
    });
    EXPECT_EQ(view->options().opticalPath.realDistanceOffsetM, -3.3462819F);
    EXPECT_EQ(view->options().opticalPath.chipCellSizeMM, 0.0056789F);
    EXPECT_EQ(m_host.stored("ToF.OptRealDistandeOffsetM").toFloat(), -3.3462819F);
    EXPECT_EQ(m_host.stored("ToF.OptChipCellSizeMM").toFloat(), 0.0056789F);
    EXPECT_EQ(m_host.stored("ToF.OptLensFocalLengthMM").toFloat(), 4.0123456F);
}

TEST_F(ViewAndDialogTest, PhaseDataWithoutConfidenceHaveARangeOfZeroOtherDataOfOne) {
    auto view = open();
    auto frame = TestFrame::generic(8, 6, [](int, int) { return 1.0F; });
    CkImageMetadata metadata = frame->metadata();
    metadata.channelNames = QStringList{QStringLiteral("Phase shift")};
    metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
    frame->setMetadata(metadata);
    give(*view, frame);
    ASSERT_EQ(view->depthFrame().depthDataKind(), EkDepthDataType::PhaseShift);
    withDialog(*view, [this] {
        EXPECT_FALSE(child("lbConfThreshold")->isEnabled());
        EXPECT_FALSE(child("tbConfThreshold")->isEnabled());
        EXPECT_FALSE(child("lbConfThresholdValue")->isEnabled());
        EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->minimum(), 0.0);
        EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->maximum(), 0.0);
        EXPECT_TRUE(child("edModulationFreq")->isVisible());
        click(QDialogButtonBox::Cancel);
    });

    give(*view, wall());
    withDialog(*view, [this] {
        EXPECT_TRUE(child("tbConfThreshold")->isEnabled());
        EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->maximum(), double(0.5F + 0.1F * 15.0F));
        click(QDialogButtonBox::Cancel);
    });

    give(*view, TestFrame::depth(8, 6, [](int, int) { return DepthPixel{1.0F, 0.5F}; }));
    withDialog(*view, [this] {
        EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->minimum(), 0.0);
        EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->maximum(), 1.0);
        EXPECT_FALSE(child("edModulationFreq")->isVisible());
        click(QDialogButtonBox::Cancel);
    });

    give(*view, TestFrame::bytes(8, 6, [](int x, int) { return x; }));
    ASSERT_EQ(view->depthFrame().depthDataKind(), EkDepthDataType::Generic);
    withDialog(*view, [this] {
        EXPECT_EQ(child<CkTuningBar>("tbConfThreshold")->maximum(), 1.0);
        click(QDialogButtonBox::Cancel);
    });
}

TEST_F(ViewAndDialogTest, OrthogonalDistanceChangesTheCloudWithOkButNotWithApply) {
    m_host.store("ToF.OptCompensateDistorsion", true);
    m_host.store("ToF.OptChipCellSizeMM", 0.5F); // a wide angle
    auto view = openOn(wall());
    show(*view);
    view->updatePointCloudGeometry();
    const QByteArray before = view->cloud().vertexBytes();
    ASSERT_GT(view->cloud().pointCount(), 0);
    withDialog(*view, [&] {
        toggle("chkOrthoDistance");
        click(QDialogButtonBox::Apply);
        EXPECT_EQ(view->cloud().vertexBytes(), before);
        click(QDialogButtonBox::Ok);
    });
    EXPECT_NE(view->cloud().vertexBytes(), before);
    EXPECT_FALSE(view->options().opticalPath.orthoRadialCorrection);
}

TEST_F(ViewAndDialogTest, CancelAfterMovingTheThresholdKeepsItInTheViewUnsaved) {
    auto view = openOn(wall());
    show(*view);
    ASSERT_EQ(view->cloud().pointCount(), 16 * 12);
    withDialog(*view, [&] {
        // The bar clips 10 to its end, 2; three steps down give 1.7.
        for (int i = 0; i < 3; ++i) {
            QTest::keyClick(child("tbConfThreshold"), Qt::Key_Left);
        }
        EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "1.70");
        EXPECT_NEAR(view->options().opticalPath.confidenceThreshold, 1.7F, 1e-6F);
        // 0.5 + 0.1 x up to 1.7: columns 0 to 11, and 12 itself within rounding.
        EXPECT_LT(view->cloud().pointCount(), 14 * 12);
        click(QDialogButtonBox::Cancel);
    });
    EXPECT_NEAR(view->options().opticalPath.confidenceThreshold, 1.7F, 1e-6F);
    EXPECT_FALSE(m_host.stored("ToF.OptConfidenceThreshold").isValid());
    EXPECT_TRUE(settingsWrites.isEmpty());
}

TEST_F(ViewAndDialogTest, OkStoresAMovedThresholdAsItStandsInTheView) {
    auto view = openOn(wall());
    withDialog(*view, [&] {
        // The bar clips 10 to its end, 2; two steps down give 1.8.
        QTest::keyClick(child("tbConfThreshold"), Qt::Key_Left);
        QTest::keyClick(child("tbConfThreshold"), Qt::Key_Left);
        click(QDialogButtonBox::Ok);
    });
    EXPECT_NEAR(view->options().opticalPath.confidenceThreshold, 1.8F, 1e-6F);
    EXPECT_NEAR(m_host.stored("ToF.OptConfidenceThreshold").toFloat(), 1.8F, 1e-6F);
    // The view ignores 0.
    withDialog(*view, [&] {
        QTest::keyClick(child("tbConfThreshold"), Qt::Key_Home);
        EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "0.00");
        click(QDialogButtonBox::Ok);
    });
    EXPECT_NEAR(view->options().opticalPath.confidenceThreshold, 1.8F, 1e-6F);
    EXPECT_NEAR(m_host.stored("ToF.OptConfidenceThreshold").toFloat(), 1.8F, 1e-6F);
}

TEST_F(ViewAndDialogTest, OkLeavesAThresholdAboveTheBarThatNobodyMoved) {
    auto view = openOn(wall());
    withDialog(*view, [&] {
        EXPECT_EQ(child<QLabel>("lbConfThresholdValue")->text(), "10.00");
        click(QDialogButtonBox::Apply);
        click(QDialogButtonBox::Ok);
    });
    EXPECT_EQ(view->options().opticalPath.confidenceThreshold, 10.0F);
    EXPECT_EQ(m_host.stored("ToF.OptConfidenceThreshold").toFloat(), 10.0F);
}

TEST_F(ViewAndDialogTest, ThePickerStartsWithTheColourThatIsDrawn) {
    m_host.store("ToF.BgColor", 0x112233U);
    auto view = openOn(wall());
    show(*view);
    m_host.store("ToF.BgColor", 0x445566U); // by another view
    withDialog(*view, [this] {
        EXPECT_EQ(child<CkColorPickerLabel>("pickBgColor")->pickerColor(), QColor(0x11, 0x22, 0x33));
        click(QDialogButtonBox::Cancel);
    });
}

TEST_F(ViewAndDialogTest, BoxAndColourActAtOnceAndAreSavedByTheView) {
    auto view = openOn(wall());
    show(*view);
    withDialog(*view, [&] {
        toggle("chkBoundingBox");
        EXPECT_FALSE(view->options().showBBox);
        EXPECT_EQ(m_host.stored("ToF.ShowBBox").toBool(), false);
        driver.expectWindow([](QWidget* pWindow) {
            auto* colors = qobject_cast<QColorDialog*>(pWindow);
            ASSERT_NE(colors, nullptr);
            EXPECT_EQ(colors->currentColor(), QColor(0x30, 0x30, 0x80));
            colors->setCurrentColor(QColor(255, 0, 0));
            QTest::mouseClick(colors->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                              Qt::LeftButton);
        });
        QTest::mouseClick(child("pickBgColor"), Qt::LeftButton);
        EXPECT_EQ(m_host.stored("ToF.BgColor").toUInt(), 0xff0000U);
        click(QDialogButtonBox::Cancel);
    });
    EXPECT_EQ(settingsWrites, (QStringList{"ToF.ShowBBox", "ToF.BgColor"}));
    withDialog(*view, [this] {
        EXPECT_EQ(child<CkColorPickerLabel>("pickBgColor")->pickerColor(), QColor(255, 0, 0));
        EXPECT_FALSE(child<QCheckBox>("chkBoundingBox")->isChecked());
        click(QDialogButtonBox::Cancel);
    });
}
