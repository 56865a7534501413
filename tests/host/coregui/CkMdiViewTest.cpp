#include "zuCoreGui/CkMdiView.h"

#include "tests/support/NamedBlock.h"
#include "tests/support/PushSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkLut.h"
#include "zuCore/CkMemoryPool.h"

#include <QDialog>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace {
constexpr int s_iPatience = 30000; // ms; how long a test waits for what has to come

// Copies every frame into a picture of its own shelf and marks its first byte.
class MarkingBlock : public CkImageProvider {
public:
    explicit MarkingBlock(quint8 uiMark) : m_uiMark(uiMark) {}

    QString title() const override { return QStringLiteral("Mark"); }
    int buffersCountInMemoryPool() const override { return 1; }

    IkChainData* processData(IkChainData* pData) override {
        auto* in = dynamic_cast<CkImageData*>(pData);
        SkPicBuf picture;
        if (in == nullptr ||
            !CkPicBufAPI::AllocPicBufFromPool(memoryPool(), this, picture, in->picBuf(), true)) {
            return nullptr;
        }
        picture.data[0] = m_uiMark;
        picture.copyPicAdditionalData(in->picBuf());
        auto* out = new CkImageData;
        out->setPicBuf(picture);
        out->setMetadata(in->metadata());
        delete pData;
        return out;
    }

private:
    const quint8 m_uiMark;
};

class CkMdiViewTest : public testing::Test {
protected:
    void SetUp() override {
        chain = CkChainManager::instance()->createChain();
        ASSERT_NE(chain, nullptr);
        source = new PushSource;
        source->setFormat(16, 8, 1, EkImageDataType::UInt8, 8);
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    }

    void TearDown() override {
        if (chain) {
            CkChainManager::instance()->closeChain(chain);
        }
    }

    MarkingBlock* append(quint8 uiMark, CkChainable* pAfter) {
        auto* block = new MarkingBlock(uiMark);
        EXPECT_TRUE(CkChainManager::instance()->insertAfter(chain, block, pAfter));
        return block;
    }

    // Without the event loop, so that nothing is handed over meanwhile.
    bool pushAndWait(quint64 uiFrameNumber, CkChainable* pLast) {
        const quint64 uiBefore = chain->blockStatistics(pLast).framesOut;
        if (!source->push(uiFrameNumber)) {
            return false;
        }
        for (int i = 0; i < s_iPatience; ++i) {
            if (chain->blockStatistics(pLast).framesOut > uiBefore) {
                return true;
            }
            QThread::msleep(1);
        }
        return false;
    }

    QPointer<CkChain> chain;
    PushSource* source = nullptr;
};

// Connected after a view, it gets every frame after the view.
class OtherSink : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        delete pData;
        ++frames;
        return 0;
    }
    std::atomic<int> frames = 0;
};

// The base alone, as tests of frames need it.
class BareView : public CkMdiView {
public:
    using CkMdiView::CkMdiView;
    using CkMdiView::setDataProvider;
};
} // namespace

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

    // Blocks that come later as well, and those that left no longer.
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

TEST_F(CkMdiViewTest, HandsFramesOverOnTheUserInterfaceThread) {
    CkMdiView view(source);
    EXPECT_EQ(view.dataProvider(), source);
    QStringList order;
    QObject::connect(&view, &CkMdiView::receivedFrame, &view, [&](qint32 iFrameId) {
        EXPECT_EQ(QThread::currentThread(), qApp->thread());
        ASSERT_NE(view.imageData(iFrameId), nullptr);
        EXPECT_EQ(view.imageData(iFrameId)->picBuf().width, 16U);
        EXPECT_EQ(view.imageData(iFrameId + 1), nullptr);
        order << QString("received %1").arg(iFrameId);
    });
    QObject::connect(&view, &CkMdiView::frameShown, &view, [&](int iViewId, const CkImageData* pData) {
        EXPECT_EQ(iViewId, view.viewId());
        order << QString("shown %1").arg(pData->frameId());
    });
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(7));
    ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 2; }, s_iPatience));
    EXPECT_EQ(order, (QStringList{"received 7", "shown 7"}));
    ASSERT_NE(view.currentImage(), nullptr);
    EXPECT_EQ(view.imageData(7), view.currentImage());
}

TEST_F(CkMdiViewTest, TheNewestFrameWinsAndTheOthersAreCounted) {
    CkMdiView view(source);
    QSignalSpy received(&view, &CkMdiView::receivedFrame);
    ASSERT_TRUE(chain->start());
    for (quint64 uiFrame = 0; uiFrame < 5; ++uiFrame) {
        ASSERT_TRUE(pushAndWait(uiFrame, source));
    }
    // The last frame has left the source, and its sink a moment later.
    chain->stop();
    ASSERT_TRUE(QTest::qWaitFor([&] { return received.count() > 0; }, s_iPatience));
    QCoreApplication::processEvents();
    ASSERT_EQ(received.count(), 1);
    EXPECT_EQ(received.at(0).at(0).toInt(), 4);
    EXPECT_EQ(view.droppedFrames(), 4U);
}

TEST_F(CkMdiViewTest, AQueuedListenerSeesItsFrameOnAViewThatIsAlwaysLate) {
    CkMdiView view(source);
    OtherSink other;
    ASSERT_TRUE(chain->addSink(source, &other));
    ASSERT_TRUE(chain->start());
    int iNext = 1;
    int iSeen = 0;
    int iMissed = 0;
    // The next frame is there before the listeners have heard of this one.
    QObject::connect(&view, &CkMdiView::receivedFrame, &view, [&] {
        if (iNext < 20) {
            ASSERT_TRUE(source->push(quint64(iNext++)));
            for (int i = 0; i < s_iPatience && other.frames < iNext; ++i) {
                QThread::msleep(1);
            }
            ASSERT_EQ(other.frames, iNext);
        }
    });
    QObject::connect(
        &view, &CkMdiView::receivedFrame, &view,
        [&](qint32 iFrameId) { ++(view.imageData(iFrameId) != nullptr ? iSeen : iMissed); },
        Qt::QueuedConnection);
    ASSERT_TRUE(source->push(0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return iSeen + iMissed == 20; }, s_iPatience));
    EXPECT_EQ(iMissed, 0);
    chain->removeSink(&other);
}

TEST_F(CkMdiViewTest, FollowsABlockInsertedBehindItsOwnAndComesBack) {
    CkMdiView view(source);
    QSignalSpy changes(&view, &CkMdiView::dataProviderChanged);
    auto* block = append(42, source);
    EXPECT_EQ(view.dataProvider(), block);
    EXPECT_EQ(changes.count(), 1);

    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(1));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.imageData(1) != nullptr; }, s_iPatience));
    EXPECT_EQ(view.imageData(1)->picBuf().data[0], 42);

    chain->stop();
    CkChain* whole = chain;
    ASSERT_TRUE(CkChainManager::instance()->remove(whole, block, false));
    EXPECT_EQ(view.dataProvider(), source);
    EXPECT_EQ(changes.count(), 2);
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(2));
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.imageData(2) != nullptr; }, s_iPatience));
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.currentImage() != nullptr; }, s_iPatience));
    CkChainManager::instance()->closeChain(chain);
    EXPECT_EQ(view.dataProvider(), nullptr);
    EXPECT_EQ(changes.count(), 1);
    // The picture stays, though the pool it came from was destroyed.
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return view.imageData(3) != nullptr; }, s_iPatience));
    EXPECT_EQ(view.imageData(3)->picBuf().data[0], 9);

    view.setDataProvider(nullptr);
    EXPECT_EQ(view.dataProvider(), nullptr);
    QSignalSpy received(&view, &CkMdiView::receivedFrame);
    ASSERT_TRUE(pushAndWait(4, block));
    chain->stop();
    QCoreApplication::processEvents();
    EXPECT_EQ(received.count(), 0);
}

TEST_F(CkMdiViewTest, NoFrameReachesAViewThatWaitsForItsDeletion) {
    auto* view = new CkMdiView(source);
    QPointer<CkMdiView> alive(view);
    int iReceived = 0;
    QObject::connect(view, &CkMdiView::receivedFrame, view, [&] { ++iReceived; });
    ASSERT_TRUE(chain->start());
    view->deleteLater();
    ASSERT_TRUE(pushAndWait(1, source));
    chain->stop();
    QCoreApplication::sendPostedEvents(view, QEvent::DeferredDelete);
    EXPECT_FALSE(alive);
    QCoreApplication::processEvents();
    EXPECT_EQ(iReceived, 0);
}

TEST_F(CkMdiViewTest, AListenerMayCloseTheView) {
    auto* view = new CkMdiView(source);
    QPointer<CkMdiView> alive(view);
    QObject::connect(view, &CkMdiView::receivedFrame, qApp, [view] { delete view; });
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(source->push(1));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !alive; }, s_iPatience));
}

TEST_F(CkMdiViewTest, ViewsOpenAndCloseWhileFramesArrive) {
    auto* block = append(5, source);
    ASSERT_TRUE(chain->start());
    std::atomic<bool> bStop = false;
    std::thread feeder([&] {
        for (quint64 uiFrame = 0; !bStop; ++uiFrame) {
            source->push(uiFrame);
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
    });
    int iShown = 0;
    for (int iRound = 0; iRound < 60; ++iRound) {
        CkMdiView first(block);
        CkMdiView second(iRound % 2 == 0 ? static_cast<CkChainable*>(source) : block);
        QObject::connect(&first, &CkMdiView::frameShown, &first, [&](int, const CkImageData* pData) {
            iShown += pData->picBuf().data[0] == 5 ? 1 : -1000;
        });
        // Some views live until they have shown a frame, the others go at once.
        const int iBefore = iShown;
        if (iRound % 3 == 0 && !QTest::qWaitFor([&] { return iShown > iBefore; }, s_iPatience)) {
            ADD_FAILURE() << "no frame in round " << iRound;
            break;
        }
        QCoreApplication::processEvents();
    }
    bStop = true;
    feeder.join();
    chain->stop();
    EXPECT_GT(iShown, 0);
}

TEST_F(CkMdiViewTest, MemoryStaysFlatWhileAListenerKeepsADialogOpen) {
    auto* block = append(5, source);
    CkMdiView view(block);
    ASSERT_TRUE(chain->start());
    CkMemoryPool* pool = chain->memoryPool();
    const int iCapacity = pool->capacity(block);
    ASSERT_GT(iCapacity, 0);

    QDialog dialog;
    bool bOpened = false;
    int iInside = 0;
    const CkImageData* pOuter = nullptr;
    QObject::connect(&view, &CkMdiView::receivedFrame, &view, [&](qint32) {
        if (bOpened) {
            ++iInside;
            return;
        }
        bOpened = true;
        dialog.exec();
    });
    QObject::connect(&view, &CkMdiView::frameShown, &view, [&](int, const CkImageData* pData) {
        // The frame that the dialog held up comes last, still whole.
        pOuter = pData;
        EXPECT_EQ(pData->picBuf().data[0], 5);
    });
    quint64 uiFrame = 0;
    quint64 uiLost = 0;
    QTimer feeder;
    QObject::connect(&feeder, &QTimer::timeout, &feeder, [&] {
        uiLost += source->push(uiFrame++) ? 0 : 1;
        if (uiFrame == 300) {
            dialog.reject();
        }
    });
    feeder.start(0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return uiFrame > 310; }, s_iPatience));
    feeder.stop();
    EXPECT_GT(iInside, 0);
    EXPECT_EQ(pool->capacity(block), iCapacity);
    // The last frame may still be inside the block.
    chain->stop();
    EXPECT_EQ(chain->blockStatistics(block).framesIn, chain->blockStatistics(block).framesOut)
        << "the pool ran dry";
    ASSERT_NE(pOuter, nullptr);
}
