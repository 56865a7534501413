#include "zuCore/CkXmlReader.h"

#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <sys/stat.h>

using testing::HasSubstr;

namespace {

/// The reader's error for a document; empty when it accepts it.
template <class Text>
std::string refusal(const Text& xml, const SkXmlLimits& limits = SkXmlLimits()) {
    QDomDocument doc;
    QString error;
    const bool read = CkXmlReader::read(xml, doc, error, limits);
    EXPECT_NE(read, doc.isNull());
    EXPECT_EQ(read, error.isEmpty());
    return error.toStdString();
}

QByteArray nested(int levels) {
    return QByteArray("<a>").repeated(levels) + QByteArray("</a>").repeated(levels);
}

QByteArray elements(int count) {
    return "<r>" + QByteArray("<a/>").repeated(count - 1) + "</r>";
}

QByteArray withAttributes(int count) {
    QByteArray xml = "<r>\n<a";
    for (int i = 0; i < count; ++i) {
        xml += " a" + QByteArray::number(i) + "='1'";
    }
    return xml + "/></r>";
}

QByteArray withAttributesOfAll(int count) {
    return "<r>" + QByteArray("<a b='1' c='2'/>").repeated(count / 2) + "</r>";
}

} // namespace

TEST(CkXmlReader, ReadsElementsAttributesAndText) {
    QDomDocument doc;
    QString error;
    ASSERT_TRUE(CkXmlReader::read(QByteArray("<?xml version=\"1.0\"?><!-- = --><r a=\"&lt;1\">\n"
                                             "<b>x<![CDATA[<y>]]></b><p:c/></r>"),
                                  doc, error))
        << qPrintable(error);
    const QDomElement root = doc.documentElement();
    EXPECT_EQ(root.tagName(), "r");
    EXPECT_EQ(root.attribute("a"), "<1");
    EXPECT_EQ(root.firstChildElement("b").text(), "x<y>");
    EXPECT_EQ(root.firstChildElement("b").lineNumber(), 2);
    EXPECT_EQ(root.lastChildElement().tagName(), "p:c");
}

TEST(CkXmlReader, EveryLimitHoldsToTheLastOne) {
    SkXmlLimits limits;
    limits.depth = 7;
    EXPECT_EQ(refusal(nested(7), limits), "");
    EXPECT_THAT(refusal(nested(8), limits), HasSubstr("nested deeper than 7 levels"));
    limits = SkXmlLimits();
    limits.elements = 50;
    EXPECT_EQ(refusal(elements(50), limits), "");
    EXPECT_THAT(refusal(elements(51), limits), HasSubstr("more than 50 elements"));
    limits = SkXmlLimits();
    limits.attributes = 20;
    EXPECT_EQ(refusal(withAttributes(20), limits), "");
    EXPECT_THAT(refusal(withAttributes(21), limits), HasSubstr("line 2"));
    EXPECT_THAT(refusal(withAttributes(21), limits), HasSubstr("an element has more than 20 attributes"));
    limits = SkXmlLimits();
    limits.allAttributes = 30;
    EXPECT_EQ(refusal(withAttributesOfAll(30), limits), "");
    EXPECT_THAT(refusal(withAttributesOfAll(32), limits), HasSubstr("there are more than 30 attributes"));
    limits = SkXmlLimits();
    limits.bytes = 700;
    EXPECT_EQ(refusal(nested(100), limits), "");
    EXPECT_THAT(refusal(nested(100) + "\n", limits), HasSubstr("larger than 700 bytes"));
}

TEST(CkXmlReader, ElementsBesideEachOtherAreNotDeep) {
    EXPECT_EQ(refusal(elements(100'000)), "");
}

TEST(CkXmlReader, HugeTagsTextsAndCommentsAreRefused) {
    const QByteArray filling(3 * 1024 * 1024, 'x');
    EXPECT_THAT(refusal(QByteArray("<a b='" + filling + "'/>")), HasSubstr("longer than 1048576 bytes"));
    EXPECT_THAT(refusal(QByteArray("<a>" + filling + "</a>")), HasSubstr("longer than 1048576 bytes"));
    EXPECT_THAT(refusal(QByteArray("<a><!--" + filling + "--></a>")), HasSubstr("longer than 1048576 bytes"));
    EXPECT_THAT(refusal(QByteArray("<?a " + filling + "?><a/>")), HasSubstr("longer than 1048576 bytes"));
    const QByteArray large(1000 * 1024, 'x');
    EXPECT_EQ(refusal(QByteArray("<a b='" + large + "'>" + large + "<!--" + large + "--></a>")), "");
}

// Comparing 2 million attributes with each other would take hours.
TEST(CkXmlReader, MillionsOfAttributesAreRefusedBeforeTheyAreCompared) {
    EXPECT_THAT(refusal(withAttributes(100'000)), HasSubstr("an element has more than 1000 attributes"));
    SkXmlLimits limits;
    limits.bytes = 64 * 1024 * 1024;
    limits.tokenBytes = limits.bytes;
    EXPECT_THAT(refusal(withAttributes(2'000'000), limits),
                HasSubstr("an element has more than 1000 attributes"));
}

TEST(CkXmlReader, ALongRuleInACommentIsNoAttribute) {
    EXPECT_EQ(refusal(QByteArray("<a><!-- " + QByteArray(100'000, '=') + " --></a>")), "");
    EXPECT_EQ(refusal(QByteArray("<a>" + QByteArray(100'000, '"') + "</a>")), "");
}

TEST(CkXmlReader, TypeDeclarationsAndTheirEntitiesAreRefused) {
    EXPECT_THAT(refusal(QByteArray("<!DOCTYPE r><r/>")), HasSubstr("type declarations are not read"));
    EXPECT_THAT(refusal(QByteArray("<!DOCTYPE r [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]><r>&b;</r>")),
                HasSubstr("type declarations are not read"));
    EXPECT_NE(refusal(QByteArray("<r>&b;</r>")), "");
}

TEST(CkXmlReader, WhatIsNoXmlIsRefusedWithItsPlace) {
    EXPECT_NE(refusal(QByteArray()), "");
    EXPECT_NE(refusal(QString()), "");
    EXPECT_NE(refusal(QByteArray("no xml")), "");
    EXPECT_THAT(refusal(QByteArray("<a>\n<b></a>")), HasSubstr("line 2"));
    EXPECT_NE(refusal(QByteArray("<a>")), "");
    EXPECT_NE(refusal(QByteArray("<a/><b/>")), "");
    EXPECT_NE(refusal(QByteArray("<a b='1' b='2'/>")), "");
    EXPECT_NE(refusal(QByteArray("<a b=")), "");
}

TEST(CkXmlReader, ARefusedDocumentLeavesTheOneBefore) {
    QDomDocument doc;
    QString error;
    ASSERT_TRUE(CkXmlReader::read(QByteArray("<before/>"), doc, error));
    EXPECT_FALSE(CkXmlReader::read(QByteArray("<after>"), doc, error));
    EXPECT_EQ(doc.documentElement().tagName(), "before");
}

// Documents are checked in pieces; a surrogate pair may straddle a boundary.
TEST(CkXmlReader, DecodedTextKeepsItsCharacters) {
    const QString text = QString::fromUcs4(U"\U00010400").repeated(20'000);
    for (const char* space : {"", " "}) {
        QDomDocument doc;
        QString error;
        const QString xml = QStringLiteral("<r>%1%2</r>").arg(QLatin1String(space), text);
        ASSERT_TRUE(CkXmlReader::read(xml, doc, error)) << qPrintable(error);
        EXPECT_EQ(doc.documentElement().text(), QLatin1String(space) + text);
    }
    EXPECT_EQ(refusal(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-16\"?><a>\u00e4</a>")), "");
}

TEST(CkXmlReader, FilesAreReadAndPipesAreRefusedAtOnce) {
    const QTemporaryDir folder;
    QFile file(folder.filePath("a.xml"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<a/>");
    file.close();
    QDomDocument doc;
    QString error;
    EXPECT_TRUE(CkXmlReader::readFile(file.fileName(), doc, error)) << qPrintable(error);
    SkXmlLimits small;
    small.bytes = 3;
    EXPECT_FALSE(CkXmlReader::readFile(file.fileName(), doc, error, small));
    EXPECT_THAT(error.toStdString(), HasSubstr("larger than 3 bytes"));
    const QString pipe = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString& name : {pipe, QStringLiteral("/dev/zero"), folder.path()}) {
        EXPECT_FALSE(CkXmlReader::readFile(name, doc, error));
        EXPECT_EQ(error.toStdString(), "it is no ordinary file");
    }
    EXPECT_FALSE(CkXmlReader::readFile(folder.filePath("none"), doc, error));
    EXPECT_THAT(error.toStdString(), HasSubstr("No such file"));
}
