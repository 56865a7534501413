// The path of frames through chains that branch and merge.

#include "tests/host/core/chainFixture.h"
#include "zuCore/CkRTTI.h"

#include <QDomDocument>
#include <thread>

namespace {

/// A chain loaded from a description: the predecessors of each block after the source, which is number 0.
class CkChainWalkTest : public ChainFixture {
protected:
    CkChainWalkTest() {
        const QString base = QStringLiteral("CkChainable");
        for (const QMetaObject* metaObject :
             {&TestSource::staticMetaObject, &PassBlock::staticMetaObject, &AddBlock::staticMetaObject}) {
            EXPECT_TRUE(CkRTTI::instance()->registerClass(&plugin, metaObject, base));
        }
    }
    ~CkChainWalkTest() override {
        manager->closeChain(chain);
        CkRTTI::instance()->unregisterPlugin(&plugin);
    }

    void load(const std::vector<std::vector<int>>& predecessors, const QString& blockClass) {
        QString xml = QStringLiteral("<chain version=\"1\"><block id=\"0\" class=\"test.TestSource\"/>");
        for (size_t i = 0; i < predecessors.size(); ++i) {
            QStringList ids;
            for (const int id : predecessors[i]) {
                ids.append(QString::number(id));
            }
            xml += QStringLiteral("<block id=\"%1\" class=\"%2\" number=\"1\" predecessors=\"%3\"/>")
                       .arg(QString::number(i + 1), blockClass, ids.join(QLatin1Char(' ')));
        }
        QDomDocument doc;
        ASSERT_TRUE(doc.setContent(xml + QStringLiteral("</chain>")));
        QString error;
        ASSERT_TRUE(chain->load(doc.documentElement(), &error)) << error.toStdString();
        blocks = chain->blocks();
        ASSERT_EQ(blocks.size(), qsizetype(predecessors.size()) + 1);
        loaded = qobject_cast<TestSource*>(blocks.first());
    }

    void pushAndWait(int frames) {
        for (int i = 0; i < frames; ++i) {
            ASSERT_TRUE(loaded->push(1));
            ASSERT_TRUE(waitUntil([&] {
                const SkBlockStatistics statistics = chain->blockStatistics(loaded);
                return statistics.framesDone == statistics.framesIn;
            }));
        }
    }

    QObject plugin;
    QList<CkChainable*> blocks;
    TestSource* loaded = nullptr;
};

/// The source feeds two blocks, which feed one, which feeds two again.
std::vector<std::vector<int>> diamonds(int count) {
    std::vector<std::vector<int>> result;
    for (int i = 0; i < count; ++i) {
        const int top = int(result.size());
        result.push_back({top});
        result.push_back({top});
        result.push_back({top + 1, top + 2});
    }
    return result;
}

} // namespace

TEST_F(CkChainWalkTest, EachBlockSeesOneFrameOfEachPredecessor) {
    load(diamonds(20), QStringLiteral("test.AddBlock"));
    KeepingSink sink;
    chain->addSink(blocks.last(), &sink);
    ASSERT_TRUE(chain->start());
    pushAndWait(3);
    chain->stop();
    for (CkChainable* block : blocks) {
        const quint64 feeders = quint64(std::max<qsizetype>(1, chain->precedessors(block).size()));
        EXPECT_EQ(chain->blockStatistics(block).framesIn, 3 * feeders);
        EXPECT_EQ(chain->blockStatistics(block).framesOut, 3 * feeders);
        EXPECT_EQ(chain->blockStatistics(block).dropped, 0U);
    }
    // The last block receives two frames for each source frame, and each has passed two blocks per diamond.
    EXPECT_THAT(sink.values(), testing::ElementsAre(41, 41, 41, 41, 41, 41));
    chain->removeSink(&sink);
}

TEST_F(CkChainWalkTest, TheBlocksBehindGetTheFrameMadeLast) {
    load({{0}, {0}, {1, 2}, {3}}, QStringLiteral("test.AddBlock"));
    auto* const first = qobject_cast<AddBlock*>(blocks[1]);
    auto* const second = qobject_cast<AddBlock*>(blocks[2]);
    first->number = 10;
    second->number = 20;
    KeepingSink atMeeting;
    KeepingSink atEnd;
    chain->addSink(blocks[3], &atMeeting);
    chain->addSink(blocks[4], &atEnd);
    ASSERT_TRUE(chain->start());
    pushAndWait(1);
    EXPECT_THAT(atMeeting.values(), testing::ElementsAre(12, 22));
    EXPECT_THAT(atEnd.values(), testing::ElementsAre(23));
    second->setState(CkChainable::Blocked);
    pushAndWait(1);
    EXPECT_THAT(atMeeting.values(), testing::ElementsAre(12, 22, 12));
    EXPECT_THAT(atEnd.values(), testing::ElementsAre(23, 13)) << "the last of its inputs";
    chain->stop();
    chain->removeSink(&atMeeting);
    chain->removeSink(&atEnd);
}

TEST_F(CkChainWalkTest, AThousandBlocksInAnyShapeRun) {
    std::vector<std::vector<int>> row;
    std::vector<std::vector<int>> fan;
    std::vector<std::vector<int>> everyEarlierOne;
    for (int i = 0; i < 999; ++i) {
        row.push_back({i});
        fan.push_back({0});
        everyEarlierOne.emplace_back(size_t(i) + 1);
        for (int k = 0; k <= i; ++k) {
            everyEarlierOne.back()[size_t(k)] = k;
        }
    }
    for (const auto& shape : {row, fan, diamonds(333), everyEarlierOne}) {
        load(shape, QStringLiteral("test.PassBlock"));
        KeepingSink sink(1, 1);
        chain->addSink(blocks.last(), &sink);
        ASSERT_TRUE(chain->start());
        pushAndWait(1);
        chain->stop();
        EXPECT_EQ(sink.count(), shape.back().size());
        chain->removeSink(&sink);
    }
}

TEST_F(CkChainWalkTest, AStopWaitsForTheBlockThatWorksAndForNoOther) {
    load({{0}, {1}, {2}, {0}}, QStringLiteral("test.AddBlock"));
    auto* const working = qobject_cast<AddBlock*>(blocks[1]);
    working->gate.close();
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(loaded->push(1));
    ASSERT_TRUE(waitUntil([&] { return working->gate.waiting() == 1; }));
    ASSERT_TRUE(loaded->push(2));
    std::thread stopper([&] { chain->stop(); });
    // The queued frame is dropped when the stop has begun.
    EXPECT_TRUE(waitUntil([&] { return chain->blockStatistics(loaded).dropped == 1; }));
    working->gate.open();
    stopper.join();
    EXPECT_EQ(working->frames, 1);
    for (const int other : {2, 3, 4}) {
        EXPECT_EQ(qobject_cast<AddBlock*>(blocks[other])->frames, 0) << other;
    }
    EXPECT_EQ(chain->blockStatistics(blocks[2]).dropped, 1U) << "a frame is counted where it was lost";
    EXPECT_EQ(chain->blockStatistics(blocks[4]).dropped, 1U);
    const SkBlockStatistics statistics = chain->blockStatistics(loaded);
    EXPECT_EQ(statistics.framesDone, statistics.framesOut);
}
