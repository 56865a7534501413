#include "tests/host/viewer/panels/chain/ChainPanelFixture.h"
#include "tests/support/PushSource.h"

#include <QPaintEvent>

namespace {

/// Records which parts of a widget are repainted.
class PaintedRegion : public QObject {
public:
    explicit PaintedRegion(QWidget* pWidget) { pWidget->installEventFilter(this); }
    void clear() { m_region = m_first = QRegion(); }
    bool any() const { return !m_region.isEmpty(); }
    bool coveredAtOnce(const QRect& rect) const { return QRegion(rect).subtracted(m_first).isEmpty(); }
    bool covers(const QRect& rect) const { return QRegion(rect).subtracted(m_region).isEmpty(); }
    bool eventFilter(QObject*, QEvent* pEvent) override {
        if (pEvent->type() == QEvent::Paint) {
            m_first = m_region.isEmpty() ? static_cast<QPaintEvent*>(pEvent)->region() : m_first;
            m_region += static_cast<QPaintEvent*>(pEvent)->region();
        }
        return false;
    }

private:
    QRegion m_region;
    QRegion m_first; ///< in the first paint
};

TEST_F(ChainPanel, ErrorTextIsShownOnTheBlockWhileItLasts) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    settle();
    EXPECT_EQ(tree()->shownError(block), "");
    block->m_bFail = true;
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return tree()->shownError(block) == "The demo block fails."; }, 20'000));
    EXPECT_EQ(tree()->shownState(block), "error");
    block->m_bFail = false;
    ASSERT_TRUE(QTest::qWaitFor([&] { return tree()->shownError(block).isEmpty(); }, 20'000));
    EXPECT_EQ(tree()->shownState(block), "runs");
}

TEST_F(ChainPanel, AClearedErrorLeavesNoRow) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    settle();
    // With the dialog open, as after "Configure...".
    tree()->selectBlock(block);
    click(panel(), "btnConfigureBlock");
    PaintedRegion painted(tree()->viewport());
    const QRect row = tree()->visualItemRect(tree()->itemOf(block));
    const QRect below(0, row.bottom() + 2, tree()->viewport()->width(), row.height() - 4);
    // When a row is removed, a repaint of part of the tree is always pending. That repaint has to include the
    // area of the row, or outdated rows may stay on the screen.
    int gone = 0;
    QObject::connect(tree()->model(), &QAbstractItemModel::rowsRemoved, &painted, [&] {
        painted.clear();
        ++gone;
    });
    for (int round = 0; round < 3; ++round) {
        painted.clear();
        block->m_bFail = true;
        ASSERT_TRUE(QTest::qWaitFor([&] { return !tree()->shownError(block).isEmpty(); }, 20'000));
        EXPECT_TRUE(QTest::qWaitFor([&] { return painted.covers(below); }, 20'000)) << round;
        block->m_bFail = false;
        ASSERT_TRUE(QTest::qWaitFor([&] { return gone == round + 1 && painted.any(); }, 20'000));
        EXPECT_TRUE(painted.coveredAtOnce(below)) << "the text still stands there, round " << round;
    }
}

/// Too slow for two of three frames, and reports it.
class SlowSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        delete pData;
        return ++m_iFrames % 3 == 0 ? 0 : 1;
    }

private:
    int m_iFrames = 0;
};

TEST(ChainTree, ShowsHowManyFramesEachBlockPassedOnAndLost) {
    CkChain* const chain = CkChainManager::instance()->createChain();
    auto* const source = new PushSource;
    source->setFormat(4, 4, 1, EkImageDataType::UInt8, 8);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    SlowSink sink;
    ASSERT_TRUE(chain->addSink(source, &sink));
    CkChainTree tree;
    tree.setChain(chain, source);
    const QTreeWidgetItem* const item = tree.itemOf(source);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->text(CkChainTree::DroppedColumn), "0");
    ASSERT_TRUE(chain->start());
    for (quint64 frame = 0; frame < 6; ++frame) {
        // One at a time: a full queue would drop further frames.
        ASSERT_TRUE(source->push(frame));
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return chain->blockStatistics(source).framesOut == frame + 1; }, 30'000));
    }
    chain->stop();
    tree.refreshCounters();
    EXPECT_EQ(item->text(CkChainTree::FramesColumn), "6");
    EXPECT_EQ(item->text(CkChainTree::DroppedColumn), "4");
    chain->removeSink(&sink);
    CkChainManager::instance()->closeChain(chain);
}

} // namespace
