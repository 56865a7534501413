#include "tests/host/core/chainFixture.h"
#include "zuCore/CkRTTI.h"

#include <QDomDocument>

using testing::HasSubstr;

namespace {

class CkChainXmlTest : public ChainFixture {
protected:
    CkChainXmlTest() {
        const QString base = QStringLiteral("CkChainable");
        for (const QMetaObject* metaObject :
             {&TestSource::staticMetaObject, &PassBlock::staticMetaObject, &AddBlock::staticMetaObject}) {
            EXPECT_TRUE(CkRTTI::instance()->registerClass(&plugin, metaObject, base));
        }
    }
    ~CkChainXmlTest() override { CkRTTI::instance()->unregisterPlugin(&plugin); }

    /// Loads XML text; returns the error, empty on success.
    std::string load(const QString& xml) {
        QDomDocument doc;
        EXPECT_TRUE(doc.setContent(xml)) << qPrintable(xml);
        QString error;
        return chain->load(doc.documentElement(), &error) ? std::string() : error.toStdString();
    }

    QString saved() const {
        QDomDocument doc;
        QDomElement element;
        EXPECT_TRUE(chain->save(doc, element));
        doc.appendChild(element);
        return doc.toString();
    }

    QObject plugin;
};

const char* const valid =
    "<chain version=\"1\">"
    "<block class=\"test.TestSource\" id=\"s\"/>"
    "<block class=\"test.AddBlock\" id=\"a\" predecessors=\"s\" number=\"3\" state=\"1\"/>"
    "<block class=\"test.PassBlock\" id=\"p\" predecessors=\"s\"/>"
    "<block class=\"AddBlock\" id=\"b\" predecessors=\"p\" number=\"4\"/>"
    "</chain>";

} // namespace

TEST_F(CkChainXmlTest, ASourceThatIsKeptLeavesAChainThatIsSavedAndLoaded) {
    auto* const other = new TestSource();
    auto* const downstream = new PassBlock();
    auto* const last = new PassBlock();
    ASSERT_TRUE(manager->insertAfter(chain, other, nullptr));
    ASSERT_TRUE(manager->insertAfter(chain, downstream, other));
    ASSERT_TRUE(manager->insertAfter(chain, last, downstream));
    ASSERT_TRUE(manager->remove(chain, other, true));
    EXPECT_EQ(chain->blocks(), (QList<CkChainable*>{source, downstream, last}));
    EXPECT_TRUE(chain->precedessors(downstream).isEmpty());
    EXPECT_EQ(other->chain(), nullptr);
    delete other;
    QDomDocument doc;
    QDomElement element = doc.createElement("chain");
    ASSERT_TRUE(chain->save(doc, element));
    EXPECT_EQ(element.elementsByTagName("block").size(), 1) << "a block without input could not be loaded";
    QString error;
    EXPECT_TRUE(chain->load(element, &error)) << qPrintable(error);
    EXPECT_EQ(chain->blocks().size(), 1);
}

TEST_F(CkChainXmlTest, LoadsBlocksConnectionsAndSettings) {
    ASSERT_EQ(load(QString::fromLatin1(valid)), "");
    const QList<CkChainable*> blocks = chain->blocks();
    ASSERT_EQ(blocks.size(), 4);
    EXPECT_NE(qobject_cast<TestSource*>(blocks[0]), nullptr);
    auto* const add = qobject_cast<AddBlock*>(blocks[1]);
    ASSERT_NE(add, nullptr);
    EXPECT_EQ(add->number, 3);
    EXPECT_EQ(add->state(), CkChainable::Blocked);
    EXPECT_EQ(add->chain(), chain);
    EXPECT_EQ(chain->successors(blocks[0]), (QList<CkChainable*>{blocks[1], blocks[2]}));
    EXPECT_EQ(chain->precedessors(blocks[3]), QList<CkChainable*>{blocks[2]});
}

TEST_F(CkChainXmlTest, SavesWhatItLoads) {
    ASSERT_EQ(load(QString::fromLatin1(valid)), "");
    const QString text = saved();
    ASSERT_EQ(load(text), "");
    EXPECT_EQ(saved(), text);
    const auto* const add = qobject_cast<AddBlock*>(chain->blocks().at(3));
    ASSERT_NE(add, nullptr);
    EXPECT_EQ(add->number, 4);
}

TEST_F(CkChainXmlTest, ALoadedChainRuns) {
    ASSERT_EQ(load(QString::fromLatin1(valid)), "");
    auto* const loaded = qobject_cast<TestSource*>(chain->imageSources().first());
    KeepingSink sink;
    ASSERT_TRUE(chain->addSink(chain->blocks().last(), &sink));
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(loaded->push(10));
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 1; }));
    EXPECT_EQ(sink.values().front(), 14);
    chain->stop();
    chain->removeSink(&sink);
}

TEST_F(CkChainXmlTest, SavesIntoAnElementOfAnotherName) {
    QDomDocument doc;
    QDomElement session = doc.createElement(QStringLiteral("session"));
    ASSERT_TRUE(chain->save(doc, session));
    EXPECT_EQ(session.tagName(), QStringLiteral("session"));
    QString error;
    EXPECT_TRUE(chain->load(session, &error)) << qPrintable(error);
    QDomElement own = doc.createElement(QStringLiteral("chain"));
    ASSERT_TRUE(chain->save(doc, own));
    EXPECT_EQ(own.firstChildElement().tagName(), QStringLiteral("block"));
}

TEST_F(CkChainXmlTest, JunkIsRefusedByNameAndChangesNothing) {
    struct SkCase {
        const char* xml;
        const char* reason;
    };
    const SkCase cases[] = {
        {"<other/>", "Element \"other\""},
        {"<chain/>", "Element \"chain\""},
        {"<chain version=\"2\"/>", "version \"2\""},
        {"<chain version=\"x\"/>", "version \"x\""},
        {"<chain version=\"1\"><foo/></chain>", "Element \"foo\""},
        {"<chain version=\"1\"><block/></chain>", "Element \"block\" number 1"},
        {"<chain version=\"1\"><block id=\"1\" class=\"no.such\"/></chain>", "no class \"no.such\""},
        {"<chain version=\"1\"><block id=\"a b\" class=\"test.TestSource\"/></chain>", "\"a b\""},
        {"<chain version=\"1\"><block id=\"1\" class=\"test.PassBlock\"/></chain>", "no source"},
        {"<chain version=\"1\"><block id=\"1\" class=\"test.TestSource\"/>"
         "<block id=\"1\" class=\"test.PassBlock\" predecessors=\"1\"/></chain>",
         "number 2"},
        {"<chain version=\"1\"><block id=\"1\" class=\"test.TestSource\"/>"
         "<block id=\"2\" class=\"test.PassBlock\" predecessors=\"2\"/></chain>",
         "no block \"2\" before it"},
        {"<chain version=\"1\"><block id=\"1\" class=\"test.TestSource\"/>"
         "<block id=\"2\" class=\"test.PassBlock\" predecessors=\"1 1\"/></chain>",
         "names block \"1\" twice"},
        {"<chain version=\"1\"><block id=\"1\" class=\"test.TestSource\"/>"
         "<block id=\"2\" class=\"test.TestSource\" predecessors=\"1\"/></chain>",
         "does not accept"},
        {"<chain version=\"1\"><block id=\"1\" class=\"test.TestSource\"/>"
         "<block id=\"2\" class=\"test.AddBlock\" predecessors=\"1\" number=\"x\"/></chain>",
         "settings of class \"test.AddBlock\""},
    };
    for (const SkCase& entry : cases) {
        EXPECT_THAT(load(QString::fromLatin1(entry.xml)), HasSubstr(entry.reason)) << entry.xml;
        EXPECT_EQ(chain->blocks(), QList<CkChainable*>{source}) << entry.xml;
    }
    QString error;
    EXPECT_FALSE(chain->load(QDomElement(), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(chain->load(QDomElement(), nullptr));
}

TEST_F(CkChainXmlTest, TheLineIsNamedWhenTheTextWasParsed) {
    EXPECT_THAT(load(QStringLiteral("<chain version=\"1\">\n\n<foo/></chain>")), HasSubstr("line 3"));
}

TEST_F(CkChainXmlTest, ARunningChainIsNotReplaced) {
    ASSERT_TRUE(chain->start());
    EXPECT_THAT(load(QString::fromLatin1(valid)), HasSubstr("runs"));
    EXPECT_EQ(chain->blocks(), QList<CkChainable*>{source});
}

TEST_F(CkChainXmlTest, TooManyBlocksAreRefused) {
    QString xml = QStringLiteral("<chain version=\"1\"><block id=\"0\" class=\"test.TestSource\"/>");
    for (int i = 1; i < 1002; ++i) {
        xml += QStringLiteral("<block id=\"%1\" class=\"test.PassBlock\" predecessors=\"%2\"/>")
                   .arg(i)
                   .arg(i - 1);
    }
    EXPECT_THAT(load(xml + QStringLiteral("</chain>")), HasSubstr("more than 1000"));
}

TEST_F(CkChainXmlTest, ABlockFedByTwoWorksOnTheFramesOfBoth) {
    ASSERT_EQ(load(QStringLiteral("<chain version=\"1\">"
                                  "<block class=\"test.TestSource\" id=\"s\"/>"
                                  "<block class=\"test.AddBlock\" id=\"a\" predecessors=\"s\" number=\"1\"/>"
                                  "<block class=\"test.AddBlock\" id=\"b\" predecessors=\"s\" number=\"2\"/>"
                                  "<block class=\"test.PassBlock\" id=\"p\" predecessors=\"a b\"/>"
                                  "</chain>")),
              "");
    auto* const loaded = qobject_cast<TestSource*>(chain->imageSources().first());
    KeepingSink sink;
    chain->addSink(chain->blocks().last(), &sink);
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(loaded->push(10));
    ASSERT_TRUE(waitUntil([&] { return sink.count() == 2; }));
    EXPECT_THAT(sink.values(), testing::ElementsAre(11, 12));
    chain->stop();
    // Removing one predecessor leaves the other's connection unchanged.
    CkChainable* const a = chain->blocks().at(1);
    ASSERT_TRUE(manager->remove(chain, a, false));
    EXPECT_EQ(chain->precedessors(chain->blocks().last()).size(), 2);
    chain->removeSink(&sink);
}
