#include "tests/host/coregui/MdiViewFixture.h"
#include "zuCore/CkMemoryPool.h"

#include <QDialog>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <thread>

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
    ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 2; }, kPatienceMs));
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
    // The last frame has left the source; the sink may still be processing it.
    chain->stop();
    ASSERT_TRUE(QTest::qWaitFor([&] { return received.count() > 0; }, kPatienceMs));
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
    // The next frame arrives before all slots have been called for this one.
    QObject::connect(&view, &CkMdiView::receivedFrame, &view, [&] {
        if (iNext < 20) {
            ASSERT_TRUE(source->push(quint64(iNext++)));
            for (int i = 0; i < kPatienceMs && other.frames < iNext; ++i) {
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return iSeen + iMissed == 20; }, kPatienceMs));
    EXPECT_EQ(iMissed, 0);
    chain->removeSink(&other);
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return !alive; }, kPatienceMs));
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
        // Some views exist until they have shown a frame, the others are deleted at once.
        const int iBefore = iShown;
        if (iRound % 3 == 0 && !QTest::qWaitFor([&] { return iShown > iBefore; }, kPatienceMs)) {
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
        // The frame that was delayed by the dialog arrives last, still intact.
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return uiFrame > 310; }, kPatienceMs));
    feeder.stop();
    EXPECT_GT(iInside, 0);
    EXPECT_EQ(pool->capacity(block), iCapacity);
    // The last frame may still be inside the block.
    chain->stop();
    EXPECT_EQ(chain->blockStatistics(block).framesIn, chain->blockStatistics(block).framesOut)
        << "the pool ran dry";
    ASSERT_NE(pOuter, nullptr);
}
