#include "tests/support/TranslationFile.h"

namespace {
const QString s_file = QStringLiteral(ZPLTOF_SOURCES "/translations/zplToF_de.ts");
} // namespace

TEST(ToFTranslationFile, IsInStepWithTheSources) {
    const TranslationFile file(s_file);
    file.expectInStepWith({ZPLTOF_SOURCES}, ZU_LUPDATE, {"-I", ZPLTOF_SOURCES "/../.."});
    EXPECT_EQ(file.translationOf("CkToFOpticalPathSettingsDlg", "3D View Settings"),
              "Einstellungen der 3D-Ansicht");
}

TEST(ToFTranslationFile, EveryTextIsTranslatedOnce) {
    TranslationFile(s_file).expectWhole();
}

TEST(ToFTranslationFile, PlacesLinesTagsAndEndsAreThoseOfTheSource) {
    TranslationFile(s_file).expectSameShape();
}

TEST(ToFTranslationFile, ReadsAsSomebodyWroteIt) {
    TranslationFile(s_file).expectCleanGerman();
}

TEST(ToFTranslationFile, OnlyNamesAndUnitsReadTheSameInBothLanguages) {
    TranslationFile(s_file).expectSameOnly(
        {" (ToF 3D)", "Z-Zoom", "MHz", "mm", QString::fromUtf8("µm"), "m", "cm", "Y:"});
}
