#include "tests/host/viewer/panels/chain/ChainPanelFixture.h"

#include <QDialog>
#include <QMenu>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTextBrowser>

namespace {

TEST_F(ChainPanel, ShowsTheActiveViewsChain) {
    CkChainable* source = firstView()->dataProvider();
    ASSERT_NE(tree()->itemOf(source), nullptr);
    EXPECT_EQ(tree()->itemOf(source)->text(CkChainTree::BlockColumn), source->title());
    EXPECT_EQ(tree()->shownState(source), "runs");
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            tree()->refreshCounters();
            return tree()->itemOf(source)->text(CkChainTree::FramesColumn).toInt() > 0;
        },
        20'000));
    area()->closeView(firstView()->viewId());
    settle();
    EXPECT_EQ(tree()->topLevelItemCount(), 0);
    EXPECT_FALSE(panel()->findChild<QToolButton*>("btnAddBlock")->isEnabled());
    EXPECT_FALSE(panel()->findChild<QToolButton*>("btnAddBlock")->toolTip().isEmpty());
}

TEST_F(ChainPanel, AddMenuOffersRegisteredBlocksAndInsertsOne) {
    emit panel()->addMenu()->aboutToShow();
    QAction* demo = nullptr;
    for (QAction* action : panel()->addMenu()->actions()) {
        if (action->text() == "Demo block") {
            demo = action;
        }
    }
    ASSERT_NE(demo, nullptr);
    demo->trigger();
    auto* block = qobject_cast<CkDemoBlock*>(firstView()->dataProvider());
    ASSERT_NE(block, nullptr);
    EXPECT_TRUE(chain()->started());
    settle();
    EXPECT_EQ(tree()->selectedBlock(), block);
    EXPECT_EQ(tree()->itemOf(block)->parent(), tree()->itemOf(chain()->imageSources().first()));
    // Frames still arrive, now through the block.
    QSignalSpy frames(firstView(), &CkMdiView::receivedFrame);
    EXPECT_TRUE(frames.wait(20'000));
}

TEST_F(ChainPanel, BranchGetsAViewOfItsOwn) {
    CkChainable* block = panel()->addBlock(kDemo, true);
    ASSERT_NE(block, nullptr);
    ASSERT_EQ(area()->views().size(), 2);
    EXPECT_EQ(area()->views().last()->dataProvider(), block);
    EXPECT_NE(firstView()->dataProvider(), block);
    EXPECT_TRUE(waitForFrame(area()->views().last()));
}

TEST_F(ChainPanel, BlockThatDoesNotFitIsRefusedWithABoxAndTheChainContinues) {
    const qsizetype before = chain()->blocks().size();
    EXPECT_EQ(panel()->addBlock("test.CkPickyBlock", false), nullptr);
    auto* box = window()->findChild<QMessageBox*>("chainProblemBox");
    ASSERT_NE(box, nullptr);
    EXPECT_FALSE(box->text().isEmpty());
    box->close();
    EXPECT_EQ(chain()->blocks().size(), before);
    EXPECT_TRUE(chain()->started());
    EXPECT_EQ(panel()->addBlock("no.such.class", false), nullptr);
}

TEST_F(ChainPanel, TheTitleFollowsTheBlocksSettings) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    const auto title = [&] {
        for (const QLabel* label : panel()->findChildren<QLabel*>(QString(), Qt::FindDirectChildrenOnly)) {
            return label->toolTip();
        }
        return QString();
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return title().endsWith("Demo 5"); }, 20'000)) << qPrintable(title());
    settle(); // whatever follows the insertion has looked, too
    block->m_iSetting = 6;
    emit block->configurationChanged();
    EXPECT_TRUE(QTest::qWaitFor([&] { return title().endsWith("Demo 6"); }, 20'000)) << qPrintable(title());
}

TEST_F(ChainPanel, ConfigureHelpSwitchAndRemove) {
    CkChainable* block = panel()->addBlock(kDemo, false);
    settle();
    tree()->selectBlock(block);
    click(panel(), "btnConfigureBlock");
    auto* dialog = window()->findChild<QDialog*>("configureBlockDialog");
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_NE(dialog->findChild<QWidget*>("demoSettings"), nullptr);
    click(panel(), "btnConfigureBlock");
    EXPECT_EQ(window()->findChildren<QDialog*>("configureBlockDialog").size(), 1);

    click(panel(), "btnHelpBlock");
    auto* help = window()->findChild<QDialog*>("blockHelpDialog");
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->findChild<QTextBrowser*>()->toPlainText(), "Helps to test.");
    help->close();

    click(panel(), "btnToggleBlock");
    EXPECT_EQ(block->state(), CkChainable::Blocked);
    settle();
    EXPECT_EQ(tree()->shownState(block), "off");
    click(panel(), "btnToggleBlock");
    EXPECT_EQ(block->state(), CkChainable::Ready);

    CkChainable* source = chain()->imageSources().first();
    click(panel(), "btnRemoveBlock");
    settle();
    EXPECT_EQ(chain()->blocks(), QList<CkChainable*>{source});
    EXPECT_EQ(firstView()->dataProvider(), source);
    EXPECT_TRUE(chain()->started());
    // Its settings dialog was closed with the block.
    EXPECT_EQ(window()->findChild<QDialog*>("configureBlockDialog"), nullptr);
    tree()->selectBlock(source);
    EXPECT_FALSE(panel()->findChild<QToolButton*>("btnRemoveBlock")->isEnabled());
}

TEST_F(ChainPanel, SettingsDialogClosesWithTheChain) {
    CkChainable* block = panel()->addBlock(kDemo, false);
    tree()->selectBlock(block);
    panel()->configureSelected();
    ASSERT_NE(window()->findChild<QDialog*>("configureBlockDialog"), nullptr);
    area()->closeView(firstView()->viewId());
    EXPECT_EQ(window()->findChild<QDialog*>("configureBlockDialog"), nullptr);
}

} // namespace
