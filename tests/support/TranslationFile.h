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

/// A translation file and what every one must satisfy: complete, in step with the sources, and of the same
/// shape.
class TranslationFile {
public:
    struct SkText {
        QString context;
        QString source;
        QString translation;
        QStringList plurals; ///< singular, then plural, of a text with a number; empty for any other
        bool counts = false; ///< a text with a number
        QString state;       ///< of the translation: empty, or "unfinished", "vanished", "obsolete"

        std::string where() const { return (context + ": " + source).toStdString(); }
        QStringList forms() const { return counts ? plurals : QStringList{translation}; }
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
    void expectInStepWith(const QStringList& folders, const QString& sLupdate,
                          const QStringList& options = {}) const {
        const QTemporaryDir folder;
        const QString copy = folder.filePath(QStringLiteral("copy_de.ts"));
        ASSERT_TRUE(QFile::copy(m_file, copy));
        QProcess lupdate;
        lupdate.setProcessChannelMode(QProcess::MergedChannels);
        lupdate.start(sLupdate, folders + options + QStringList{"-locations", "none", "-ts", copy});
        ASSERT_TRUE(lupdate.waitForFinished(120000)) << lupdate.errorString().toStdString();
        const QString output = QString::fromLocal8Bit(lupdate.readAll());
        ASSERT_EQ(lupdate.exitCode(), 0) << output.toStdString();
        // Without Q_OBJECT a class would look up its texts under the name of its base class.
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
            EXPECT_EQ(text.forms().size(), text.counts ? 2 : 1) << text.where();
            for (const QString& form : text.forms()) {
                EXPECT_FALSE(form.isEmpty()) << text.where();
            }
            const QString key = text.context + '\n' + text.source;
            EXPECT_FALSE(known.contains(key)) << text.where();
            known.insert(key, text.translation);
        }
    }

    /// Placeholders, line breaks, tags and final punctuation match the sources.
    void expectSameShape() const {
        for (const SkText& text : m_texts) {
            EXPECT_EQ(text.source.contains("%n"), text.counts) << text.where();
            for (const QString& form : text.forms()) {
                expectShape(form, text);
            }
            if (text.counts) {
                // A singular may omit the number ("last frame"), a plural may not.
                EXPECT_EQ(text.forms().last().count("%n"), 1) << text.where();
                // The hint in the source that there are two forms.
                EXPECT_FALSE(text.translation.contains("(s)")) << text.where();
            }
        }
    }

    /// No typing errors or traces of search and replace; key names as on a German keyboard.
    void expectCleanGerman() const {
        for (const SkText& text : m_texts) {
            for (const QString& form : text.forms()) {
                EXPECT_EQ(faultsOf(form, text.source).join(", ").toStdString(), "")
                    << text.where() << "\n  " << form.toStdString();
            }
        }
    }

    /// The faults of a German text, in words; empty for none.
    static QStringList faultsOf(const QString& sGerman, const QString& sSource) {
        struct SkSlip {
            const char* pattern;
            const char* name;
        };
        static constexpr SkSlip kSlips[] = {
            {"(amp|lt|gt|quot|apos|nbsp);|&#\\d", "entity"},
            {"(?<!, )\\b(\\p{L}+) \\1\\b|, \\b(?!die |der |das )(\\p{L}+) \\2\\b", "doubled word"},
            {"(\\p{L}{4,})\\P{L}?\\1", "doubled word"},
            {"  | [,.;:!?](?![.%\\w])", "blank"},
            {"(?<![-\\w])(the|and|with|is|are|not|this|from|of)(?![-\\w])", "English"},
            {"\\b(Ctrl|Shift|Del|Home|End|Space)\\b", "English key"},
            {"\\d\\.\\d", "decimal point"},
            {"&(?![\\p{L}\\d])", "letter of a key without a letter"},
        };
        QStringList faults;
        for (const SkSlip& slip : kSlips) {
            if (!sortedMatches(sGerman, slip.pattern).isEmpty()) {
                faults.append(QLatin1String(slip.name));
            }
        }
        if (sGerman.count('&') != sSource.count('&')) {
            faults.append("letter of a key lost or doubled");
        }
        if (sGerman.count(QChar(0x201e)) != sGerman.count(QChar(0x201c))) {
            faults.append("quotation mark");
        }
        return faults;
    }

    /// Only these read the same in both languages.
    void expectSameOnly(const QStringList& same) const {
        for (const SkText& text : m_texts) {
            EXPECT_EQ(text.translation == text.source, same.contains(text.source)) << text.where();
        }
    }

private:
    static void expectShape(const QString& sForm, const SkText& text) {
        for (const char* pattern : {"%\\d", "\n", "<[^>]*>"}) {
            EXPECT_EQ(sortedMatches(sForm, pattern), sortedMatches(text.source, pattern)) << text.where();
        }
        for (const char* end : {":", ".", "...", " "}) {
            EXPECT_EQ(sForm.endsWith(QLatin1String(end)), text.source.endsWith(QLatin1String(end)))
                << text.where() << " ends with '" << end << "'";
        }
        EXPECT_EQ(sForm.startsWith(' '), text.source.startsWith(' ')) << text.where();
    }

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
                SkText text{name, message.firstChildElement("source").text(), translation.text(),
                            {},   message.attribute("numerus") == "yes",      translation.attribute("type")};
                for (QDomElement form = translation.firstChildElement("numerusform"); !form.isNull();
                     form = form.nextSiblingElement("numerusform")) {
                    text.plurals.append(form.text());
                }
                texts.append(text);
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
        auto matches =
            QRegularExpression(QLatin1String(pattern), QRegularExpression::UseUnicodePropertiesOption)
                .globalMatch(sText);
        while (matches.hasNext()) {
            found << matches.next().captured();
        }
        found.sort();
        return found;
    }

    QString m_file;
    QList<SkText> m_texts;
};
