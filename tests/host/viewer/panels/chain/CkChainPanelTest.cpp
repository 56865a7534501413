#include "host/viewer/shell/CkChainFileController.h"
#include "host/viewer/shell/CkFileMenu.h"
#include "tests/host/viewer/ViewerFixture.h"

#include "host/viewer/area/CkViewNoticeController.h"
#include "host/viewer/base/ChainFile.h"
#include "host/viewer/panels/chain/CkChainPanel.h"
#include "host/viewer/panels/chain/CkChainTree.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "tests/host/viewer/ViewerBlocks.h"
#include "tests/support/PushSource.h"
#include "zuCore/CkCameraSource.h"
#include "zuCore/CkRTTI.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QDialog>
#include <QDropEvent>
#include <QFile>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPaintEvent>
#include <QSignalSpy>
#include <QTextBrowser>
#include <QToolButton>

namespace {

const QString kDemo = QStringLiteral("test.CkDemoBlock");

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

class ChainPanel : public ViewerFixture {
protected:
    void SetUp() override {
        ViewerFixture::SetUp();
        const QString base = QStringLiteral("CkChainable");
        ASSERT_TRUE(CkRTTI::instance()->registerClass(nullptr, &CkDemoBlock::staticMetaObject, base));
        ASSERT_TRUE(CkRTTI::instance()->registerClass(nullptr, &CkPickyBlock::staticMetaObject, base));
        m_options.cameras = QStringList{"sim:grey"};
        ASSERT_TRUE(start());
        ASSERT_TRUE(waitForFrame(firstView()));
        QCoreApplication::processEvents();
    }

    CkChainPanel* panel() const { return window()->chainPanel(); }
    CkChainTree* tree() const { return panel()->tree(); }
    CkChain* chain() const { return firstView()->dataProvider()->chain(); }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    static void click(QWidget* parent, const char* name) {
        auto* button = parent->findChild<QToolButton*>(QLatin1String(name));
        ASSERT_NE(button, nullptr) << name;
        ASSERT_TRUE(button->isEnabled()) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }
};

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
    // Frames still come, now through the block.
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

TEST_F(ChainPanel, BlockThatDoesNotFitIsRefusedWithABoxAndTheChainGoesOn) {
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

TEST_F(ChainPanel, ErrorTextStandsOnTheBlockWhileItLasts) {
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

TEST_F(ChainPanel, AnErrorThatIsGoneLeavesNoRowBehind) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    settle();
    // With the dialog open, as after "Configure...".
    tree()->selectBlock(block);
    click(panel(), "btnConfigureBlock");
    PaintedRegion painted(tree()->viewport());
    const QRect row = tree()->visualItemRect(tree()->itemOf(block));
    const QRect below(0, row.bottom() + 2, tree()->viewport()->width(), row.height() - 4);
    // A part of the tree is always about to be painted when a row is removed. That paint has to include the
    // place of the row, or outdated rows may stay on screen.
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

TEST_F(ChainPanel, ABrokenBlockSaysSoInItsViewAndTheOldPictureIsDark) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    CkImageView* view = firstView();
    QSignalSpy frames(view, &CkMdiView::receivedFrame);
    ASSERT_TRUE(QTest::qWaitFor([&] { return frames.size() >= 2; }, 20'000));
    const auto notice = [&] { return area()->notices()->notice(view->viewId()); };
    const QImage bright = view->canvas()->grab().toImage();
    EXPECT_EQ(notice(), "");
    EXPECT_FALSE(view->canvas()->isDimmed());
    block->m_bFail = true;
    ASSERT_TRUE(QTest::qWaitFor([&] { return notice() == "Demo 5: The demo block fails."; }, 20'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->canvas()->isDimmed(); }, 20'000));
    EXPECT_EQ(view->findChild<QLabel*>("viewNotice")->text(), notice());
    const QImage dark = view->canvas()->grab().toImage();
    const auto light = [](const QImage& image) { return qGray(image.pixel(image.rect().center())); };
    EXPECT_LT(light(dark), std::max(light(bright), 100));
    block->m_bFail = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice().isEmpty() && !view->canvas()->isDimmed(); }, 20'000));
    EXPECT_FALSE(view->findChild<QLabel*>("viewNotice")->isVisible());
    // The same for a block that is switched off.
    block->setState(CkChainable::Blocked);
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice() == "\"Demo 5\" is switched off."; }, 20'000));
    EXPECT_TRUE(view->canvas()->isDimmed());
}

TEST_F(ChainPanel, AWarningThatHoldsNothingUpDarkensNothing) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    CkImageView* view = firstView();
    block->m_bWarn = true;
    const auto notice = [&] { return area()->notices()->notice(view->viewId()); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return notice() == "Demo 5: Odd, but it works."; }, 20'000));
    // A frame arrives between any two checks.
    QSignalSpy frames(view, &CkMdiView::receivedFrame);
    for (int look = 0; look < 10; ++look) {
        const qsizetype before = frames.size();
        ASSERT_TRUE(QTest::qWaitFor([&] { return frames.size() > before; }, 20'000));
        area()->notices()->refresh();
        EXPECT_FALSE(view->canvas()->isDimmed()) << look;
    }
    EXPECT_EQ(notice(), "Demo 5: Odd, but it works.");
}

TEST_F(ChainPanel, AViewWithoutAPictureSaysWhatItWaitsFor) {
    CkImageView* view = firstView();
    cameras()->stop(cameras()->currentCamera());
    auto* later = new CkImageView(view->dataProvider());
    area()->addView(later);
    const auto text = [&] {
        area()->notices()->refresh();
        return later->canvas()->emptyText();
    };
    EXPECT_EQ(text(), "No picture yet. Start the camera to see one.");
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    block->m_bFail = true;
    ASSERT_TRUE(cameras()->start(nullptr));
    EXPECT_EQ(text(), "No picture yet. The camera runs; the first picture is on its way.");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !block->errorMessage().isEmpty(); }, 20'000));
    text();
    EXPECT_EQ(later->findChild<QLabel*>("viewNotice")->text(), "Demo 5: The demo block fails.");
    later->dataProvider()->chain()->stop();
    EXPECT_EQ(text(), "No picture yet. The processing chain is stopped.");
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

TEST_F(ChainPanel, SettingsDialogGoesWhenTheChainCloses) {
    CkChainable* block = panel()->addBlock(kDemo, false);
    tree()->selectBlock(block);
    panel()->configureSelected();
    ASSERT_NE(window()->findChild<QDialog*>("configureBlockDialog"), nullptr);
    area()->closeView(firstView()->viewId());
    EXPECT_EQ(window()->findChild<QDialog*>("configureBlockDialog"), nullptr);
}

TEST_F(ChainPanel, ChainFileBringsTheSameBlocksBackWithTheirSettings) {
    auto* first = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(first, nullptr);
    first->m_iSetting = 17;
    settle();
    tree()->selectBlock(chain()->imageSources().first());
    auto* branch = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, true));
    ASSERT_NE(branch, nullptr);
    branch->m_iSetting = 23;
    const QString file = m_folder.filePath("test.zuchain");
    QString error;
    ASSERT_TRUE(window()->chainFiles()->saveActive(file, error)) << qPrintable(error);
    cameras()->closeAllCameras();
    ASSERT_TRUE(area()->views().isEmpty());

    // The camera is opened again for the file.
    ASSERT_TRUE(window()->chainFiles()->open(file, error)) << qPrintable(error);
    ASSERT_EQ(CkChainManager::instance()->chains().size(), 1);
    const CkChain* loaded = CkChainManager::instance()->chains().first();
    QList<int> settings;
    for (const CkChainable* block : loaded->blocks()) {
        if (const auto* demo = qobject_cast<const CkDemoBlock*>(block)) {
            settings.append(demo->m_iSetting);
        }
    }
    EXPECT_EQ(settings, QList<int>({17, 23}));
    ASSERT_EQ(area()->views().size(), 2);
    for (CkMdiView* view : area()->views()) {
        EXPECT_TRUE(waitForFrame(view));
    }
}

TEST_F(ChainPanel, ChainFileOfTwoCamerasStartsBoth) {
    void* wave = cameras()->openCamera("sim:wave", false);
    ASSERT_NE(wave, nullptr);
    CkChain* both = chain();
    both->stop();
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(both, new CkCameraSource(wave), nullptr));
    const QString file = m_folder.filePath("two.zuchain");
    QString error;
    ASSERT_TRUE(ChainFile::save(both, file, error)) << qPrintable(error);
    cameras()->closeAllCameras();

    ASSERT_TRUE(window()->chainFiles()->open(file, error)) << qPrintable(error);
    const QList<void*> opened = CkCameraManager::instance()->openedCameras();
    EXPECT_EQ(opened.size(), 2);
    for (void* camera : opened) {
        EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
        EXPECT_NE(cameras()->panel(camera), nullptr);
    }
    ASSERT_EQ(area()->views().size(), 2);
    for (CkMdiView* view : area()->views()) {
        EXPECT_TRUE(waitForFrame(view));
    }
}

TEST_F(ChainPanel, DroppedAndRecentFilesOpen) {
    const QString file = m_folder.filePath("drop.zuchain");
    QString error;
    ASSERT_TRUE(window()->chainFiles()->saveActive(file, error)) << qPrintable(error);
    QMimeData content;
    content.setUrls({QUrl::fromLocalFile(file), QUrl::fromLocalFile(m_folder.filePath("none.zuchain"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &drop);
    EXPECT_TRUE(drop.isAccepted());
    settle();
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 2);
    auto* box = window()->findChild<QMessageBox*>("openChainBox");
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->text().contains("none.zuchain"));
    box->close();
    EXPECT_EQ(CkFileMenu::recentFiles(), QStringList{file});
    emit window()->menu(IkAppDelegate::FileMenu)->aboutToShow();
    auto* recent = window()->findChild<QMenu*>("menuRecentChains");
    ASSERT_EQ(recent->actions().size(), 1);
    recent->actions().first()->trigger();
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 3);
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
        // One by one: a full queue would drop further frames.
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

TEST_F(ChainPanel, AChainFileThatCannotBeLoadedLeavesNoCameraOpen) {
    const QString fileName = m_folder.filePath("unknown.zuchain");
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "<zuchainfile version=\"1\"><chain version=\"1\">"
        "<block class=\"com.orvane.Pictor.CkCameraSource\" id=\"0\" predecessors=\"\" camera=\"sim:wave\"/>"
        "<block class=\"com.orvane.Pictor.CkCameraSource\" id=\"1\" predecessors=\"\" camera=\"sim:grey\"/>"
        "<block class=\"not.there\" id=\"2\" predecessors=\"0\"/></chain></zuchainfile>");
    file.close();
    const QList<void*> before = CkCameraManager::instance()->openedCameras();
    ASSERT_EQ(before.size(), 1);
    QString error;
    EXPECT_FALSE(window()->chainFiles()->open(fileName, error));
    EXPECT_TRUE(error.contains("not.there")) << qPrintable(error);
    EXPECT_EQ(CkCameraManager::instance()->openedCameras(), before);
    EXPECT_NE(cameras()->panel(before.first()), nullptr);
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
}

TEST_F(ChainPanel, UnusableChainFilesAreRefusedWithTheirName) {
    const auto write = [this](const char* name, const QByteArray& content) {
        const QString fileName = m_folder.filePath(QLatin1String(name));
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return fileName;
    };
    const qsizetype before = CkChainManager::instance()->chains().size();
    const QStringList files = {
        write("empty.zuchain", ""),
        write("text.zuchain", "no xml at all"),
        write("foreign.zuchain", "<svg version=\"1\"/>"),
        write("newer.zuchain", "<zuchainfile version=\"9\"><chain/></zuchainfile>"),
        write("hollow.zuchain", "<zuchainfile version=\"1\"><chain/></zuchainfile>"),
        write("unknown.zuchain",
              "<zuchainfile version=\"1\"><chain><block class=\"x\"/></chain></zuchainfile>"),
        write("deep.zuchain", "<zuchainfile version=\"1\"><chain>" + QByteArray("<a>").repeated(500'000)),
        m_folder.filePath("missing.zuchain")};
    for (const QString& file : files) {
        QString error;
        EXPECT_FALSE(window()->chainFiles()->open(file, error)) << qPrintable(file);
        EXPECT_TRUE(error.contains(QFileInfo(file).fileName())) << qPrintable(error);
    }
    EXPECT_EQ(CkChainManager::instance()->chains().size(), before);
    QString error;
    EXPECT_FALSE(window()->chainFiles()->saveActive(m_folder.filePath("no/such/folder/a.zuchain"), error));
    EXPECT_TRUE(error.contains("a.zuchain"));
}

} // namespace
