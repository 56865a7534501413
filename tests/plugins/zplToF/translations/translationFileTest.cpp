#include <QDomDocument>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <set>
#include <string>

// The translation as translators see it: whole, in step with the sources, and of the same shape.

namespace {
struct SkText {
    QString context;
    QString source;
    QString translation;
    QString state; ///< of the translation: empty, or "unfinished", "vanished", "obsolete"

    std::string where() const { return (context + ": " + source).toStdString(); }
};

QList<SkText> textsOf(const QString& sFile) {
    QFile file(sFile);
    QDomDocument document;
    QString sError;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file, &sError)) {
        ADD_FAILURE() << sFile.toStdString() << ": " << sError.toStdString();
        return {};
    }
    QList<SkText> texts;
    const QDomNodeList contexts = document.elementsByTagName("context");
    for (int i = 0; i < contexts.size(); ++i) {
        const QDomElement context = contexts.at(i).toElement();
        const QString sName = context.firstChildElement("name").text();
        for (QDomElement message = context.firstChildElement("message"); !message.isNull();
             message = message.nextSiblingElement("message")) {
            const QDomElement translation = message.firstChildElement("translation");
            texts.append({sName, message.firstChildElement("source").text(), translation.text(),
                          translation.attribute("type")});
        }
    }
    return texts;
}

std::set<std::string> keysOf(const QList<SkText>& texts) {
    std::set<std::string> keys;
    for (const SkText& text : texts) {
        keys.insert(text.where() + " = " + text.translation.toStdString());
    }
    return keys;
}

QStringList sortedMatches(const QString& sText, const char* pattern) {
    QStringList found;
    auto matches = QRegularExpression(QLatin1String(pattern)).globalMatch(sText);
    while (matches.hasNext()) {
        found << matches.next().captured();
    }
    found.sort();
    return found;
}

const QString s_file = QStringLiteral(ZPLTOF_SOURCES "/translations/zplToF_de.ts");
} // namespace

TEST(ToFTranslationFile, IsInStepWithTheSources) {
    const QTemporaryDir folder;
    const QString sCopy = folder.filePath("zplToF_de.ts");
    ASSERT_TRUE(QFile::copy(s_file, sCopy));
    QProcess lupdate;
    lupdate.setProcessChannelMode(QProcess::MergedChannels);
    lupdate.start(ZU_LUPDATE, {ZPLTOF_SOURCES, "-locations", "none", "-ts", sCopy});
    ASSERT_TRUE(lupdate.waitForFinished(120000)) << lupdate.errorString().toStdString();
    const QString sOutput = QString::fromLocal8Bit(lupdate.readAll());
    ASSERT_EQ(lupdate.exitCode(), 0) << sOutput.toStdString();
    // A class without the macro would look its texts up under another name at run time.
    EXPECT_FALSE(sOutput.contains("Q_OBJECT")) << sOutput.toStdString();

    const QList<SkText> texts = textsOf(sCopy);
    for (const SkText& text : texts) {
        EXPECT_EQ(text.state.toStdString(), "") << text.where();
    }
    EXPECT_EQ(keysOf(texts), keysOf(textsOf(s_file)));
    EXPECT_EQ(
        keysOf(texts).count("CkToFOpticalPathSettingsDlg: 3D View Settings = Einstellungen der 3D-Ansicht"),
        1U);
}

TEST(ToFTranslationFile, EveryTextIsTranslatedOnce) {
    QMap<QString, QString> known;
    const QList<SkText> texts = textsOf(s_file);
    EXPECT_FALSE(texts.isEmpty());
    for (const SkText& text : texts) {
        EXPECT_EQ(text.state.toStdString(), "") << text.where();
        EXPECT_FALSE(text.translation.isEmpty()) << text.where();
        const QString sKey = text.context + '\n' + text.source;
        EXPECT_FALSE(known.contains(sKey)) << text.where();
        known.insert(sKey, text.translation);
    }
}

TEST(ToFTranslationFile, PlacesLinesTagsAndEndsAreThoseOfTheSource) {
    const QList<SkText> texts = textsOf(s_file);
    for (const SkText& text : texts) {
        for (const char* pattern : {"%\\d", "\n", "<[^>]*>"}) {
            EXPECT_EQ(sortedMatches(text.translation, pattern), sortedMatches(text.source, pattern))
                << text.where();
        }
        for (const char* end : {":", ".", "...", " "}) {
            EXPECT_EQ(text.translation.endsWith(QLatin1String(end)), text.source.endsWith(QLatin1String(end)))
                << text.where() << " ends with '" << end << "'";
        }
        EXPECT_EQ(text.translation.startsWith(' '), text.source.startsWith(' ')) << text.where();
    }
}

TEST(ToFTranslationFile, OnlyNamesAndUnitsReadTheSameInBothLanguages) {
    const QStringList same = {" (ToF 3D)", "Z-Zoom", "MHz", "mm", QString::fromUtf8("µm"), "m", "cm", "Y:"};
    const QList<SkText> texts = textsOf(s_file);
    for (const SkText& text : texts) {
        EXPECT_EQ(text.translation == text.source, same.contains(text.source)) << text.where();
    }
}
