#include "tests/support/TranslationFile.h"

namespace {
const QString kFile = QStringLiteral(ZPLTOF_SOURCES "/translations/zplToF_de.ts");
} // namespace

TEST(ToFTranslationFile, IsInStepWithTheSources) {
    const TranslationFile file(kFile);
    file.expectInStepWith({ZPLTOF_SOURCES}, ZU_LUPDATE, {"-I", ZPLTOF_SOURCES "/../.."});
    EXPECT_EQ(file.translationOf("CkToFOpticalPathSettingsDlg", "3D View Settings"),
              "Einstellungen der 3D-Ansicht");
}

TEST(ToFTranslationFile, EveryTextIsTranslatedOnce) {
    TranslationFile(kFile).expectWhole();
}

TEST(ToFTranslationFile, PlacesLinesTagsAndEndsAreThoseOfTheSource) {
    TranslationFile(kFile).expectSameShape();
}

TEST(ToFTranslationFile, ReadsAsSomebodyWroteIt) {
    TranslationFile(kFile).expectCleanGerman();
}

TEST(ToFTranslationFile, OnlyNamesAndUnitsReadTheSameInBothLanguages) {
    TranslationFile(kFile).expectSameOnly(
        {" (ToF 3D)", "Z-Zoom", "MHz", "mm", QString::fromUtf8("µm"), "m", "cm", "Y:"});
}
