#include "zuCoreGui/CkMdiView.h"

#include "tests/host/coregui/MdiViewFixture.h"
#include "tests/support/NamedBlock.h"
#include "zuCore/CkLut.h"

#include <QSignalSpy>
#include <QTest>

TEST_F(CkMdiViewTest, IdentifiersAreNeverUsedAgain) {
    auto first = std::make_unique<CkMdiView>();
    const int iFirst = first->viewId();
    EXPECT_GE(iFirst, 0);
    first.reset();
    const CkMdiView second;
    EXPECT_GT(second.viewId(), iFirst);
}

TEST_F(CkMdiViewTest, AnswersForAViewWithoutABlock) {
    CkMdiView view;
    EXPECT_EQ(view.viewCaps(), 0);
    EXPECT_EQ(view.connectedViewId(), -1);
    EXPECT_FALSE(view.containsData());
    EXPECT_EQ(view.viewTitle(), "");
    EXPECT_EQ(view.currentImage(), nullptr);
    EXPECT_EQ(view.imageData(0), nullptr);
    EXPECT_EQ(view.dataProvider(), nullptr);
    EXPECT_EQ(view.secondProvider(), nullptr);
    EXPECT_TRUE(view.cameraHandles().isEmpty());
    EXPECT_EQ(view.clone(nullptr, nullptr), nullptr);
    EXPECT_EQ(view.droppedFrames(), 0U);
    view.updateWithConnectedImageData(nullptr, true);
    EXPECT_EQ(view.currentImage(), nullptr);
}

TEST_F(CkMdiViewTest, TheTitleIsTheWaysOrTheOneThatWasSet) {
    CkMdiView view(source);
    QSignalSpy titles(&view, &CkMdiView::viewTitleChanged);
    EXPECT_EQ(view.viewTitle(), chain->chainTitle(source));
    EXPECT_FALSE(view.viewTitle().isEmpty());
    view.setWindowTitle("Mine");
    EXPECT_EQ(view.viewTitle(), "Mine");
    EXPECT_EQ(titles.count(), 1);
}

TEST_F(CkMdiViewTest, TheTitleFollowsTheTitlesOfTheBlocksOnTheWay) {
    auto* first = new NamedBlock;
    auto* last = new NamedBlock;
    auto* beside = new NamedBlock;
    CkChainManager* manager = CkChainManager::instance();
    ASSERT_TRUE(manager->insertAfter(chain, first, source));
    ASSERT_TRUE(manager->insertAfter(chain, last, first));
    ASSERT_TRUE(manager->branchAfter(chain, beside, first));
    CkMdiView view(last);
    QSignalSpy titles(&view, &CkMdiView::viewTitleChanged);
    last->rename(QStringLiteral("Last"));
    EXPECT_EQ(titles.count(), 1);
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - Named - Last"));
    first->rename(QStringLiteral("First"));
    EXPECT_EQ(titles.count(), 2);
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - First - Last"));
    beside->rename(QStringLiteral("Beside"));
    EXPECT_EQ(titles.count(), 2);

    // Includes blocks inserted later, and no longer those that were removed.
    auto* inserted = new NamedBlock;
    ASSERT_TRUE(manager->insertAfter(chain, inserted, first));
    titles.clear();
    inserted->rename(QStringLiteral("Inserted"));
    EXPECT_EQ(titles.count(), 1);
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - First - Inserted - Last"));
    CkChain* remaining = chain;
    ASSERT_TRUE(manager->remove(remaining, inserted, true));
    titles.clear();
    inserted->rename(QStringLiteral("Gone"));
    EXPECT_EQ(titles.count(), 0);
    last->rename(QStringLiteral("Final"));
    EXPECT_EQ(titles.count(), 1);
    EXPECT_EQ(view.viewTitle(), QStringLiteral("Push - First - Final"));
    manager->deleteChainable(inserted);
}

TEST_F(CkMdiViewTest, TellsTheCamerasOfTheSourcesBeforeItsBlock) {
    int camera = 0;
    source->handles = {&camera};
    auto* block = append(1, source);
    EXPECT_EQ(CkMdiView(source).cameraHandles(), QList<void*>{&camera});
    EXPECT_EQ(CkMdiView(block).cameraHandles(), QList<void*>{&camera});
}

TEST_F(CkMdiViewTest, OwnsItsTableAndStoresFlagsWithoutOne) {
    CkMdiView view;
    bool bFlag1 = true;
    bool bFlag2 = true;
    unsigned int uiBits = 99;
    EXPECT_EQ(view.viewLut(&bFlag1, &bFlag2, &uiBits), nullptr);
    EXPECT_FALSE(bFlag1);
    EXPECT_FALSE(bFlag2);
    EXPECT_EQ(uiBits, 0U);

    auto* lut = new CkLut(12, 1, false, EkImageDataType::UInt16);
    view.setViewLut(lut, true, false, true);
    view.setViewLut(lut, true, true, false);
    EXPECT_EQ(view.viewLut(&bFlag1, nullptr, &uiBits), lut);
    EXPECT_TRUE(bFlag1);
    EXPECT_EQ(uiBits, 12U);
    view.setViewLut(nullptr, false, true, true);
    EXPECT_EQ(view.viewLut(&bFlag1, &bFlag2, nullptr), lut);
    EXPECT_FALSE(bFlag1);
    EXPECT_TRUE(bFlag2);
}

TEST_F(CkMdiViewTest, FollowsABlockInsertedBehindItsOwnAndComesBack) {
    CkMdiView view(source);
    QSignalSpy changes(&view, &CkMdiView::dataProviderChanged);
    auto* block = append(42, source);
    EXPECT_EQ(view.dataProvider(), block);
    EXPECT_EQ(changes.count(), 1);

    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(1));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.imageData(1) != nullptr; }, kPatienceMs));
    EXPECT_EQ(view.imageData(1)->picBuf().data[0], 42);

    chain->stop();
    CkChain* whole = chain;
    ASSERT_TRUE(CkChainManager::instance()->remove(whole, block, false));
    EXPECT_EQ(view.dataProvider(), source);
    EXPECT_EQ(changes.count(), 2);
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(2));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.imageData(2) != nullptr; }, kPatienceMs));
    EXPECT_EQ(view.imageData(2)->picBuf().data[0], 0);
}

TEST_F(CkMdiViewTest, ABranchLeavesTheViewWhereItIs) {
    CkMdiView view(source);
    QSignalSpy changes(&view, &CkMdiView::dataProviderChanged);
    ASSERT_TRUE(CkChainManager::instance()->branchAfter(chain, new MarkingBlock(1), source));
    EXPECT_EQ(view.dataProvider(), source);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(CkMdiViewTest, OutlivesItsChain) {
    CkMdiView view(append(1, source));
    QSignalSpy changes(&view, &CkMdiView::dataProviderChanged);
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(1));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.currentImage() != nullptr; }, kPatienceMs));
    CkChainManager::instance()->closeChain(chain);
    EXPECT_EQ(view.dataProvider(), nullptr);
    EXPECT_EQ(changes.count(), 1);
    // The picture stays valid although its pool was destroyed.
    ASSERT_NE(view.imageData(1), nullptr);
    EXPECT_EQ(view.imageData(1)->picBuf().data[0], 1);
    EXPECT_TRUE(view.cameraHandles().isEmpty());
}

TEST_F(CkMdiViewTest, OutlivesASecondBlockAndABlockOutsideAnyChain) {
    auto loose = std::make_unique<MarkingBlock>(quint8(1));
    CkMdiView view(loose.get(), loose.get());
    EXPECT_EQ(view.dataProvider(), loose.get());
    EXPECT_EQ(view.secondProvider(), loose.get());
    loose.reset();
    EXPECT_EQ(view.dataProvider(), nullptr);
    EXPECT_EQ(view.secondProvider(), nullptr);
}

TEST_F(CkMdiViewTest, MovesToAnotherBlockAndToNone) {
    auto* block = append(9, source);
    BareView view(source);
    QSignalSpy changes(&view, &CkMdiView::dataProviderChanged);
    view.setDataProvider(block);
    EXPECT_EQ(view.dataProvider(), block);
    view.setDataProvider(block);
    EXPECT_EQ(changes.count(), 1);
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(3));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.imageData(3) != nullptr; }, kPatienceMs));
    EXPECT_EQ(view.imageData(3)->picBuf().data[0], 9);

    view.setDataProvider(nullptr);
    EXPECT_EQ(view.dataProvider(), nullptr);
    QSignalSpy received(&view, &CkMdiView::receivedFrame);
    ASSERT_TRUE(pushAndWait(4, block));
    chain->stop();
    QCoreApplication::processEvents();
    EXPECT_EQ(received.count(), 0);
}
