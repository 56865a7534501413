#include "zuCore/CkCameraManager.h"

#include "chainBlocks.h"
#include "fakeCamera.h"
#include "zuCore/CkImageData.h"

#include <gmock/gmock.h>
#include <set>
#include <thread>

using testing::ElementsAre;

namespace {

class CkCameraManagerTest : public testing::Test {
protected:
    CkCameraManagerTest() { cameras.reset(); }
    ~CkCameraManagerTest() override { cameras.reset(); }

    void* open(const char* id) { return manager->openCamera(QString::fromLatin1(id)); }

    FakeCameras& cameras = FakeCameras::instance();
    CkCameraManager* const manager = CkCameraManager::instance();
    QObject context; ///< disconnects with the test
};

} // namespace

TEST_F(CkCameraManagerTest, OpensOnceAndListsInOrder) {
    std::vector<void*> connected;
    QObject::connect(manager, &CkCameraManager::newCameraConnected, &context,
                     [&](void* handle) { connected.push_back(handle); });
    void* const second = open("fake:2");
    void* const first = open("fake:1");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(open("fake:2"), second);
    EXPECT_EQ(manager->openedCameras(), (QList<void*>{second, first}));
    EXPECT_EQ(manager->openedCameraCount(), 2);
    EXPECT_THAT(connected, ElementsAre(second, first));
    SkCameraInfo info;
    ASSERT_TRUE(manager->cameraInfo(first, info));
    EXPECT_EQ(info.name, QStringLiteral("Fake 1"));
    EXPECT_NE(manager->cameraParameters(first), nullptr);
}

TEST_F(CkCameraManagerTest, RefusalsSayWhy) {
    QString error;
    EXPECT_EQ(manager->openCamera(QStringLiteral("fake:9"), &error), nullptr);
    EXPECT_TRUE(error.contains(QLatin1String("fake:9")));
    EXPECT_EQ(manager->openCamera(QStringLiteral("fake:broken"), &error), nullptr);
    EXPECT_EQ(error, QStringLiteral("lens cap on"));

    void* const handle = open("fake:1");
    cameras.first->refusesStart = true;
    EXPECT_FALSE(manager->startAcquisition(handle, &error));
    EXPECT_EQ(error, QStringLiteral("no light"));
    cameras.first->throwsOnStart = true;
    EXPECT_FALSE(manager->startAcquisition(handle, &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_FALSE(manager->isAcquiring(handle));
}

TEST_F(CkCameraManagerTest, GoneHandlesAnswerNothing) {
    void* const handle = open("fake:1");
    manager->closeCamera(handle);
    for (void* gone : {handle, static_cast<void*>(nullptr), static_cast<void*>(&context)}) {
        SkCameraInfo info;
        SkPicBufInfo format;
        QString error;
        EXPECT_FALSE(manager->isOpen(gone));
        EXPECT_EQ(manager->cameraParameters(gone), nullptr);
        EXPECT_FALSE(manager->cameraInfo(gone, info));
        EXPECT_FALSE(manager->frameInfo(gone, format, nullptr));
        EXPECT_FALSE(manager->startAcquisition(gone, &error));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_FALSE(manager->isAcquiring(gone));
        manager->stopAcquisition(gone);
        manager->setPaused(gone, true);
        manager->step(gone);
        manager->addFrameReceiver(gone, this, [](CkImageData* frame) { delete frame; });
        manager->closeCamera(gone);
        manager->unplugCamera(gone);
    }
}

TEST_F(CkCameraManagerTest, HandlesAreNeverReused) {
    std::set<void*> seen;
    for (int i = 0; i < 50; ++i) {
        void* const handle = open(i % 2 == 0 ? "fake:1" : "fake:2");
        EXPECT_TRUE(seen.insert(handle).second);
        manager->closeCamera(handle);
    }
}

TEST_F(CkCameraManagerTest, ClosingStopsAndTellsInOrder) {
    void* const handle = open("fake:1");
    QStringList told;
    QObject::connect(manager, &CkCameraManager::cameraAboutToClose, &context, [&](void* gone) {
        EXPECT_NE(manager->cameraParameters(gone), nullptr);
        told << QStringLiteral("about");
        manager->closeCamera(gone); // a second time, from within
    });
    QObject::connect(manager, &CkCameraManager::cameraClosed, &context, [&](void* gone) {
        EXPECT_FALSE(manager->isOpen(gone));
        told << QStringLiteral("closed");
    });
    QObject::connect(manager, &CkCameraManager::acquisitionChanged, &context, [&](void*, bool running) {
        told << (running ? QStringLiteral("runs") : QStringLiteral("stands"));
    });
    QObject::connect(manager, &CkCameraManager::cameraLost, &context,
                     [&](const QString& name) { told << QStringLiteral("lost ") + name; });
    EXPECT_TRUE(manager->startAcquisition(handle));
    EXPECT_TRUE(manager->startAcquisition(handle)) << "runs already";
    manager->unplugCamera(handle);
    EXPECT_EQ(told, QStringList({"runs", "about", "stands", "closed", "lost Fake 1"}));
    EXPECT_EQ(cameras.first->log, QStringList({"start", "stop", "deleted"}));
}

TEST_F(CkCameraManagerTest, PauseAndStepReachTheCamera) {
    void* const handle = open("fake:1");
    manager->setPaused(handle, true);
    manager->step(handle);
    manager->setPaused(handle, false);
    EXPECT_EQ(cameras.first->log, QStringList({"pause", "step", "go on"}));
}

TEST_F(CkCameraManagerTest, EachReceiverGetsAnObjectOfItsOwnOnTheSamePixels) {
    void* const handle = open("fake:1");
    std::vector<std::unique_ptr<CkImageData>> got;
    int a = 0;
    int b = 0;
    for (const int* key : {&a, &b}) {
        manager->addFrameReceiver(handle, key, [&](CkImageData* frame) { got.emplace_back(frame); });
    }
    ASSERT_TRUE(manager->startAcquisition(handle));
    cameras.first->deliver(fakeFrame(8, 5));
    ASSERT_EQ(got.size(), 2U);
    EXPECT_NE(got[0].get(), got[1].get());
    EXPECT_EQ(got[0]->picBuf().data, got[1]->picBuf().data);

    manager->removeFrameReceiver(&a);
    cameras.first->deliver(fakeFrame(8, 6));
    EXPECT_EQ(got.size(), 3U);
    manager->addFrameReceiver(handle, &b, [](CkImageData* frame) { delete frame; });
    cameras.first->deliver(fakeFrame(8, 7));
    EXPECT_EQ(got.size(), 3U) << "the same key replaces";
    manager->removeFrameReceiver(&b);
    cameras.first->deliver(fakeFrame(8, 8)); // nobody there: deleted
    EXPECT_EQ(got.size(), 3U);
}

TEST_F(CkCameraManagerTest, RemovingAReceiverWaitsUntilItIsLeft) {
    void* const handle = open("fake:1");
    cameras.first->ownThread = true;
    Gate gate;
    gate.close();
    std::atomic<int> inside = 0;
    manager->addFrameReceiver(handle, this, [&](CkImageData* frame) {
        ++inside;
        gate.pass();
        delete frame;
        --inside;
    });
    ASSERT_TRUE(manager->startAcquisition(handle));
    ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
    std::atomic<bool> removed = false;
    std::thread remover([&] {
        manager->removeFrameReceiver(this);
        EXPECT_EQ(inside, 0);
        removed = true;
    });
    EXPECT_FALSE(removed) << "the receiver is still inside";
    gate.open();
    remover.join();
    EXPECT_TRUE(removed);
    manager->stopAcquisition(handle);
}

TEST_F(CkCameraManagerTest, AReceiverMayTakeItselfAway) {
    void* const handle = open("fake:1");
    int calls = 0;
    manager->addFrameReceiver(handle, this, [&](CkImageData* frame) {
        delete frame;
        ++calls;
        manager->removeFrameReceiver(this);
    });
    ASSERT_TRUE(manager->startAcquisition(handle));
    cameras.first->deliver(fakeFrame(8, 1));
    cameras.first->deliver(fakeFrame(8, 2));
    EXPECT_EQ(calls, 1);
}

TEST_F(CkCameraManagerTest, TheFormatMayBeAskedWhileTheCameraCloses) {
    std::atomic<void*> handle = nullptr;
    std::atomic<bool> end = false;
    std::thread asker([&] {
        SkPicBufInfo info;
        while (!end) {
            manager->frameInfo(handle, info, nullptr);
        }
    });
    for (int i = 0; i < 200; ++i) {
        handle = open("fake:1");
        manager->closeCamera(handle);
    }
    end = true;
    asker.join();
    EXPECT_EQ(manager->openedCameraCount(), 0);
}
