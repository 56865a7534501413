#pragma once

#include <QDomDocument>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <set>
#include <string>

/// A translation as translators see it, and what has to hold for any: whole, in step with the sources, and of
/// the same shape.
class TranslationFile {
public:
    struct SkText {
        QString context;
        QString source;
        QString translation;
        QString state; ///< of the translation: empty, or "unfinished", "vanished", "obsolete"

        std::string where() const { return (context + ": " + source).toStdString(); }
    };

    explicit TranslationFile(const QString& sFile) : m_file(sFile), m_texts(textsOf(sFile)) {}

    const QList<SkText>& texts() const { return m_texts; }

    QString translationOf(const QString& sContext, const QString& sSource) const {
        for (const SkText& text : m_texts) {
            if (text.context == sContext && text.source == sSource) {
                return text.translation;
            }
        }
        return {};
    }

    /// Runs lupdate over the folders into a copy, which must then be the same as the file.
    void expectInStepWith(const QStringList& folders, const QString& sLupdate) const {
        const QTemporaryDir folder;
        const QString copy = folder.filePath(QStringLiteral("copy_de.ts"));
        ASSERT_TRUE(QFile::copy(m_file, copy));
        QProcess lupdate;
        lupdate.setProcessChannelMode(QProcess::MergedChannels);
        lupdate.start(sLupdate, folders + QStringList{"-locations", "none", "-ts", copy});
        ASSERT_TRUE(lupdate.waitForFinished(120000)) << lupdate.errorString().toStdString();
        const QString output = QString::fromLocal8Bit(lupdate.readAll());
        ASSERT_EQ(lupdate.exitCode(), 0) << output.toStdString();
        // A class without the macro would look its texts up under another name at run time.
        EXPECT_FALSE(output.contains("Q_OBJECT")) << output.toStdString();
        const QList<SkText> fresh = textsOf(copy);
        for (const SkText& text : fresh) {
            EXPECT_EQ(text.state.toStdString(), "")
                << text.where()
                << "\n  scripts/update-translations.sh takes new texts in; then translate them.";
        }
        EXPECT_EQ(keysOf(fresh), keysOf(m_texts));
    }

    void expectWhole() const {
        QMap<QString, QString> known;
        EXPECT_FALSE(m_texts.isEmpty());
        for (const SkText& text : m_texts) {
            EXPECT_EQ(text.state.toStdString(), "") << text.where();
            EXPECT_FALSE(text.translation.isEmpty()) << text.where();
            const QString key = text.context + '\n' + text.source;
            EXPECT_FALSE(known.contains(key)) << text.where();
            known.insert(key, text.translation);
        }
    }

    /// Places, line breaks, tags and ends are those of the sources.
    void expectSameShape() const {
        for (const SkText& text : m_texts) {
            for (const char* pattern : {"%\\d", "\n", "<[^>]*>"}) {
                EXPECT_EQ(sortedMatches(text.translation, pattern), sortedMatches(text.source, pattern))
                    << text.where();
            }
            for (const char* end : {":", ".", "...", " "}) {
                EXPECT_EQ(text.translation.endsWith(QLatin1String(end)),
                          text.source.endsWith(QLatin1String(end)))
                    << text.where() << " ends with '" << end << "'";
            }
            EXPECT_EQ(text.translation.startsWith(' '), text.source.startsWith(' ')) << text.where();
        }
    }

    /// Only these read the same in both languages.
    void expectSameOnly(const QStringList& same) const {
        for (const SkText& text : m_texts) {
            EXPECT_EQ(text.translation == text.source, same.contains(text.source)) << text.where();
        }
    }

private:
    static QList<SkText> textsOf(const QString& sFile) {
        QFile file(sFile);
        QDomDocument document;
        QString error;
        if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file, &error)) {
            ADD_FAILURE() << sFile.toStdString() << ": " << error.toStdString();
            return {};
        }
        QList<SkText> texts;
        const QDomNodeList contexts = document.elementsByTagName("context");
        for (int i = 0; i < contexts.size(); ++i) {
            const QDomElement context = contexts.at(i).toElement();
            const QString name = context.firstChildElement("name").text();
            for (QDomElement message = context.firstChildElement("message"); !message.isNull();
                 message = message.nextSiblingElement("message")) {
                const QDomElement translation = message.firstChildElement("translation");
                texts.append({name, message.firstChildElement("source").text(), translation.text(),
                              translation.attribute("type")});
            }
        }
        return texts;
    }

    static std::set<std::string> keysOf(const QList<SkText>& texts) {
        std::set<std::string> keys;
        for (const SkText& text : texts) {
            keys.insert(text.where() + " = " + text.translation.toStdString());
        }
        return keys;
    }

    static QStringList sortedMatches(const QString& sText, const char* pattern) {
        QStringList found;
        auto matches = QRegularExpression(QLatin1String(pattern)).globalMatch(sText);
        while (matches.hasNext()) {
            found << matches.next().captured();
        }
        found.sort();
        return found;
    }

    QString m_file;
    QList<SkText> m_texts;
};
