#include "tests/support/TranslationFile.h"

namespace {
const QString s_sources = QStringLiteral(ZU_SOURCES);
const QString s_file = s_sources + QStringLiteral("/host/viewer/translations/zuviewer_de.ts");
const QString s_english = s_sources + QStringLiteral("/host/viewer/translations/zuviewer_en.ts");
const QStringList s_folders = {s_sources + "/hostsdk", s_sources + "/host", s_sources + "/sim/camera"};
} // namespace

TEST(ViewerTranslationFile, IsInStepWithTheSources) {
    const TranslationFile file(s_file);
    // The same call as in scripts/update-translations.sh.
    file.expectInStepWith(s_folders, ZU_LUPDATE, {"-I", ZU_SOURCES});
    EXPECT_EQ(file.translationOf("CkMainWindow", "&File"), "&Datei");
    EXPECT_EQ(file.translationOf("CkExportToolButton", "Save to file..."), "In Datei speichern...");
    EXPECT_EQ(file.translationOf("CkSimCamera", "Exposure"), "Belichtung");
}

TEST(ViewerTranslationFile, EveryTextIsTranslatedOnce) {
    TranslationFile(s_file).expectWhole();
}

TEST(ViewerTranslationFile, PlacesLinesTagsAndEndsAreThoseOfTheSource) {
    TranslationFile(s_file).expectSameShape();
}

TEST(ViewerTranslationFile, ReadsAsSomebodyWroteIt) {
    TranslationFile(s_file).expectCleanGerman();
}

TEST(TranslationFaults, AreFound) {
    const auto faults = [](const char* german, const char* source) {
        return TranslationFile::faultsOf(QString::fromUtf8(german), QString::fromUtf8(source)).join(", ");
    };
    EXPECT_EQ(faults("Region &zeichnenamp;neu", "&Draw"), "entity");
    EXPECT_EQ(faults("Region &#38;", "&Draw"), "entity, letter of a key without a letter");
    EXPECT_EQ(faults("Region &zeichnen zeichnen", "&Draw"), "doubled word, doubled word");
    EXPECT_EQ(faults("Die die Bilder", "The pictures"), "");
    EXPECT_EQ(faults("wie wie", "as"), "doubled word");
    EXPECT_EQ(faults("Bilder, die die Ansicht zeigt", "Frames that the view shows"), "");
    EXPECT_EQ(faults("Bilder, wie wie gezeigt", "Frames as shown"), "doubled word");
    EXPECT_EQ(faults("Bild  da", "Picture there"), "blank");
    EXPECT_EQ(faults("Bild , da", "Picture, there"), "blank");
    EXPECT_EQ(faults("Bild of %1", "Frame of %1"), "English");
    EXPECT_EQ(faults("Suchen (Ctrl+F)", "Search (Ctrl+F)"), "English key");
    EXPECT_EQ(faults("Alle 149.85 m", "Every 149.85 m"), "decimal point");
    EXPECT_EQ(faults("Region zeichnen &", "&Draw"), "letter of a key without a letter");
    EXPECT_EQ(faults("Region zeichnen", "&Draw"), "letter of a key lost or doubled");
    EXPECT_EQ(faults("&Region &zeichnen", "&Draw"), "letter of a key lost or doubled");
    EXPECT_EQ(faults("\u201e%1 fehlt", "\"%1\" is missing"), "quotation mark");
    EXPECT_EQ(faults("\u201e%1\u201c fehlt (Strg+\u00dc); 0,5 m: *.png", "x"), "");
}

TEST(ViewerTranslationFile, EnglishHasASingularAndAPluralForEveryNumber) {
    const TranslationFile file(s_english);
    file.expectInStepWith(s_folders, ZU_LUPDATE, {"-I", ZU_SOURCES, "-pluralonly"});
    file.expectWhole();
    file.expectSameShape();
    QStringList counting;
    const TranslationFile german(s_file);
    for (const TranslationFile::SkText& text : german.texts()) {
        if (text.counts) {
            counting.append(text.source);
        }
    }
    EXPECT_EQ(file.texts().size(), counting.size());
    for (const TranslationFile::SkText& text : file.texts()) {
        EXPECT_TRUE(text.counts) << text.where();
        EXPECT_TRUE(counting.contains(text.source)) << text.where();
    }
}

TEST(ViewerTranslationFile, OnlyNamesAndUnitsReadTheSameInBothLanguages) {
    TranslationFile(s_file).expectSameOnly({"ms", "%1: %2", "Block", "Alpha", "Debug", "Info", "Gamma",
                                            "plus 32768", "Name: %1", "A minus B", " mm"});
}
