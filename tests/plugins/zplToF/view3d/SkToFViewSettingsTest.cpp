#include "plugins/zplToF/view3d/SkToFViewSettings.h"

#include <QColor>
#include <QRect>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>

namespace {

const QStringList kAllKeys = {
    QStringLiteral("ToF.ShowBBox"),
    QStringLiteral("ToF.RegulateInputFps"),
    QStringLiteral("ToF.MaxInputFps"),
    QStringLiteral("ToF.OptCompensateDistorsion"),
    QStringLiteral("ToF.OptLensFocalLengthMM"),
    QStringLiteral("ToF.OptChipCellSizeMM"),
    QStringLiteral("ToF.OptCenterOffsetMM"),
    QStringLiteral("ToF.OptModulationFreq"),
    QStringLiteral("ToF.OptConfidenceThreshold"),
    QStringLiteral("ToF.OptRealDistandeOffsetM"),
    QStringLiteral("ToF.OptOrthoRadialCorrection"),
    QStringLiteral("ToF.LUTPseudoColor"),
    QStringLiteral("ToF.DepthTexResolutionW"),
    QStringLiteral("ToF.BgColor"),
};

class SkToFViewSettingsTest : public ::testing::Test {
protected:
    std::unique_ptr<QSettings> store() const {
        return std::make_unique<QSettings>(m_folder.filePath(QStringLiteral("settings.ini")),
                                           QSettings::IniFormat);
    }
    void put(const QString& key, const QVariant& value) const { store()->setValue(key, value); }

    static void expectDefaults(const QSettings& settings) {
        const SkToFViewSettings read = SkToFViewSettings::read(settings);
        EXPECT_TRUE(read.showBBox);
        EXPECT_FALSE(read.regulateInputFps);
        EXPECT_EQ(read.maxInputFps, 5.0F);
        EXPECT_FALSE(read.opticalPath.compensateDistortion);
        EXPECT_EQ(read.opticalPath.lensFocalLengthMM, 3.5F);
        EXPECT_EQ(read.opticalPath.chipCellSizeMM, 0.01F);
        EXPECT_EQ(read.opticalPath.centerOffsetMM, QPointF(0.0, 0.0));
        EXPECT_EQ(read.opticalPath.modulationFreqMHz, 30.0F);
        EXPECT_EQ(read.opticalPath.confidenceThreshold, 10.0F);
        EXPECT_EQ(read.opticalPath.realDistanceOffsetM, -1.5F);
        EXPECT_TRUE(read.opticalPath.orthoRadialCorrection);
        EXPECT_EQ(SkToFViewSettings::readPseudoColor(settings), 0);
        EXPECT_EQ(SkToFViewSettings::readBackground(settings), QColor(48, 48, 128));
        EXPECT_EQ(SkToFViewSettings::readDistanceOffset(settings, 0.25F), 0.25F);
    }

    QTemporaryDir m_folder;
};

TEST_F(SkToFViewSettingsTest, EmptyStoreGivesTheDefaults) {
    expectDefaults(*store());
}

TEST_F(SkToFViewSettingsTest, EveryKeyIsRead) {
    put(QStringLiteral("ToF.ShowBBox"), false);
    put(QStringLiteral("ToF.RegulateInputFps"), true);
    put(QStringLiteral("ToF.MaxInputFps"), 12.5F);
    put(QStringLiteral("ToF.OptCompensateDistorsion"), true);
    put(QStringLiteral("ToF.OptLensFocalLengthMM"), 8.0F);
    put(QStringLiteral("ToF.OptChipCellSizeMM"), 0.015F);
    put(QStringLiteral("ToF.OptCenterOffsetMM"), QPointF(0.25, -0.5));
    put(QStringLiteral("ToF.OptModulationFreq"), 20.0F);
    put(QStringLiteral("ToF.OptConfidenceThreshold"), 0.75F);
    put(QStringLiteral("ToF.OptRealDistandeOffsetM"), 0.125F);
    put(QStringLiteral("ToF.OptOrthoRadialCorrection"), false);
    put(QStringLiteral("ToF.LUTPseudoColor"), 3);
    put(QStringLiteral("ToF.BgColor"), 0x102030U);

    const auto settings = store();
    const SkToFViewSettings read = SkToFViewSettings::read(*settings);
    EXPECT_FALSE(read.showBBox);
    EXPECT_TRUE(read.regulateInputFps);
    EXPECT_EQ(read.maxInputFps, 12.5F);
    EXPECT_TRUE(read.opticalPath.compensateDistortion);
    EXPECT_EQ(read.opticalPath.lensFocalLengthMM, 8.0F);
    EXPECT_EQ(read.opticalPath.chipCellSizeMM, 0.015F);
    EXPECT_EQ(read.opticalPath.centerOffsetMM, QPointF(0.25, -0.5));
    EXPECT_EQ(read.opticalPath.modulationFreqMHz, 20.0F);
    EXPECT_EQ(read.opticalPath.confidenceThreshold, 0.75F);
    EXPECT_EQ(read.opticalPath.realDistanceOffsetM, 0.125F);
    EXPECT_FALSE(read.opticalPath.orthoRadialCorrection);
    EXPECT_EQ(SkToFViewSettings::readPseudoColor(*settings), 3);
    EXPECT_EQ(SkToFViewSettings::readBackground(*settings), QColor(16, 32, 48));
    EXPECT_EQ(SkToFViewSettings::readDistanceOffset(*settings, 9.0F), 0.125F);
}

TEST_F(SkToFViewSettingsTest, JunkInEveryKeyGivesTheDefaults) {
    const QVariantList junk = {
        QStringLiteral("junk"),
        QString(),
        QByteArray("\x00\xff\x80", 3),
        QVariantList{1, QStringLiteral("two")},
        QVariantMap{{QStringLiteral("key"), 1}},
        QRect(1, 2, 3, 4),
        QStringLiteral("@Variant(\\0\\0\\0)"),
    };
    for (const QVariant& value : junk) {
        for (const QString& key : kAllKeys) {
            put(key, value);
        }
        SCOPED_TRACE(value.typeName());
        expectDefaults(*store());
    }
}

TEST_F(SkToFViewSettingsTest, NumbersThatAreNotFiniteCountAsMissing) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const QVariant& value : {QVariant(infinity), QVariant(std::numeric_limits<double>::quiet_NaN()),
                                  QVariant(QStringLiteral("inf")), QVariant(QStringLiteral("nan")),
                                  QVariant(QStringLiteral("1e400"))}) {
        for (const QString& key : kAllKeys) {
            put(key, value);
        }
        put(QStringLiteral("ToF.OptCenterOffsetMM"), QPointF(infinity, 0.0));
        SCOPED_TRACE(value.toString().toStdString());
        expectDefaults(*store());
    }
}

TEST_F(SkToFViewSettingsTest, WhatTheDialogStoresIsReadBack) {
    SkToFViewSettings settings;
    settings.regulateInputFps = true;
    settings.maxInputFps = 0.1F;
    settings.opticalPath.compensateDistortion = true;
    settings.opticalPath.lensFocalLengthMM = 4.2F;
    settings.opticalPath.chipCellSizeMM = 0.0056F;
    settings.opticalPath.centerOffsetMM = QPointF(0.1, -0.3);
    settings.opticalPath.modulationFreqMHz = 60.0F;
    settings.opticalPath.confidenceThreshold = 0.3F;
    settings.opticalPath.realDistanceOffsetM = -0.7F;
    settings.opticalPath.orthoRadialCorrection = false;
    settings.writeDialogValues(*store());
    EXPECT_EQ(SkToFViewSettings::read(*store()), settings);

    // showBBox is written elsewhere.
    EXPECT_FALSE(store()->contains(QStringLiteral("ToF.ShowBBox")));
    QStringList written = store()->allKeys();
    written.sort();
    QStringList expected = {
        QStringLiteral("ToF.OptCompensateDistorsion"), QStringLiteral("ToF.OptLensFocalLengthMM"),
        QStringLiteral("ToF.OptChipCellSizeMM"),       QStringLiteral("ToF.OptCenterOffsetMM"),
        QStringLiteral("ToF.OptModulationFreq"),       QStringLiteral("ToF.OptConfidenceThreshold"),
        QStringLiteral("ToF.OptRealDistandeOffsetM"),  QStringLiteral("ToF.OptOrthoRadialCorrection"),
        QStringLiteral("ToF.RegulateInputFps"),        QStringLiteral("ToF.MaxInputFps")};
    expected.sort();
    EXPECT_EQ(written, expected);
}

} // namespace
