#include "zuCore/CkCameraManager.h"

#include "tests/host/core/chainBlocks.h"
#include "tests/host/core/fakeCamera.h"
#include "zuCore/CkImageData.h"

#include <gmock/gmock.h>
#include <set>
#include <thread>

using testing::ElementsAre;

namespace {

class CkCameraManagerTest : public testing::Test {
protected:
    CkCameraManagerTest() { cameras.reset(); }
    ~CkCameraManagerTest() override {
        manager->disconnect(&context); // the receivers refer to objects of the test
        cameras.reset();
    }

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
    for (void* invalid : {handle, static_cast<void*>(nullptr), static_cast<void*>(&context)}) {
        SkCameraInfo info;
        SkPicBufInfo format;
        QString error;
        EXPECT_FALSE(manager->isOpen(invalid));
        EXPECT_EQ(manager->cameraParameters(invalid), nullptr);
        EXPECT_FALSE(manager->cameraInfo(invalid, info));
        EXPECT_FALSE(manager->frameInfo(invalid, format, nullptr));
        EXPECT_FALSE(manager->startAcquisition(invalid, &error));
        EXPECT_FALSE(error.isEmpty());
        EXPECT_FALSE(manager->isAcquiring(invalid));
        manager->stopAcquisition(invalid);
        manager->setPaused(invalid, true);
        manager->step(invalid);
        manager->addFrameReceiver(invalid, this, [](CkImageData* frame) { delete frame; });
        manager->closeCamera(invalid);
        manager->unplugCamera(invalid);
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
    QStringList signalled;
    QObject::connect(manager, &CkCameraManager::cameraAboutToClose, &context, [&](void* pHandle) {
        EXPECT_NE(manager->cameraParameters(pHandle), nullptr);
        signalled << QStringLiteral("about");
        manager->closeCamera(pHandle); // a second time, from within
    });
    QObject::connect(manager, &CkCameraManager::cameraClosed, &context, [&](void* pHandle) {
        EXPECT_FALSE(manager->isOpen(pHandle));
        signalled << QStringLiteral("closed");
    });
    QObject::connect(manager, &CkCameraManager::acquisitionChanged, &context, [&](void*, bool running) {
        signalled << (running ? QStringLiteral("runs") : QStringLiteral("stopped"));
    });
    EXPECT_TRUE(manager->startAcquisition(handle));
    EXPECT_TRUE(manager->startAcquisition(handle)) << "already running";
    manager->closeCamera(handle);
    EXPECT_EQ(signalled, QStringList({"runs", "about", "stopped", "closed"}));
    EXPECT_EQ(cameras.first->log, QStringList({"start", "stop", "deleted"}));
}

TEST_F(CkCameraManagerTest, AnUnpluggedCameraStaysOpenAndGoesOnWithItsSettings) {
    void* const handle = open("fake:1");
    QStringList signalled;
    const auto note = [&signalled](const char* what) {
        return [&signalled, what] { signalled << QLatin1String(what); };
    };
    QObject::connect(manager, &CkCameraManager::cameraAboutToClose, &context, note("about"));
    QObject::connect(manager, &CkCameraManager::cameraUnplugged, &context, note("unplugged"));
    QObject::connect(manager, &CkCameraManager::acquisitionChanged, &context, [&](void*, bool running) {
        signalled << (running ? QStringLiteral("runs") : QStringLiteral("stopped"));
    });
    QObject::connect(manager, &CkCameraManager::cameraLost, &context,
                     [&](const QString& name) { signalled << QStringLiteral("lost ") + name; });
    const CkCameraParameters* const before = manager->cameraParameters(handle);
    QObject::connect(manager, &CkCameraManager::cameraPluggedIn, &context, [&](void* back) {
        EXPECT_EQ(back, handle);
        EXPECT_NE(manager->cameraParameters(handle), before);
        EXPECT_EQ(before->findParam(QStringLiteral("gain"))->committedValue().toInt(), 7) << "until now";
        EXPECT_EQ(
            manager->cameraParameters(handle)->findParam(QStringLiteral("gain"))->committedValue().toInt(),
            7);
        signalled << QStringLiteral("back");
    });
    int frames = 0;
    manager->addFrameReceiver(handle, this, [&](CkImageData* frame) {
        ++frames;
        delete frame;
    });
    CkCameraParam* const gain = manager->cameraParameters(handle)->findParam(QStringLiteral("gain"));
    ASSERT_TRUE(gain->setParamValue(CkValue(7)) && gain->commit());
    ASSERT_TRUE(manager->startAcquisition(handle));

    manager->unplugCamera(handle);
    manager->unplugCamera(handle); // already unplugged
    EXPECT_EQ(signalled, QStringList({"runs", "stopped", "unplugged", "lost Fake 1"}));
    EXPECT_TRUE(manager->isOpen(handle));
    EXPECT_TRUE(manager->isUnplugged(handle));
    EXPECT_FALSE(manager->isAcquiring(handle));
    EXPECT_FALSE(cameras.first->running);
    EXPECT_EQ(open("fake:1"), handle);
    SkPicBufInfo format;
    EXPECT_TRUE(manager->frameInfo(handle, format, nullptr)) << "the chain keeps its format";
    for (const SkCameraInfo& info : manager->availableCameras()) {
        EXPECT_NE(info.id, QStringLiteral("fake:1"));
    }
    QString error;
    EXPECT_FALSE(manager->startAcquisition(handle, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("Fake 1"))) << qPrintable(error);

    signalled.clear();
    EXPECT_FALSE(manager->plugCameraIn(QStringLiteral("fake:2"), &error)) << "never unplugged";
    EXPECT_TRUE(manager->plugCameraIn(QStringLiteral("fake:1"), &error));
    EXPECT_EQ(signalled, QStringList({"back", "runs"}));
    EXPECT_EQ(cameras.first->alive, 1) << "the old camera object was deleted";
    EXPECT_FALSE(manager->isUnplugged(handle));
    EXPECT_TRUE(manager->isAcquiring(handle));
    ASSERT_TRUE(cameras.first->deliver);
    cameras.first->deliver(fakeFrame(8, 1));
    EXPECT_EQ(frames, 1) << "receivers stay";
    EXPECT_TRUE(manager->withheldCameras().isEmpty());
}

TEST_F(CkCameraManagerTest, ACameraComesBackAsItWasLeft) {
    void* const handle = open("fake:1");
    manager->unplugCamera(handle);
    EXPECT_TRUE(manager->plugCameraIn(QStringLiteral("fake:1")));
    EXPECT_FALSE(manager->isAcquiring(handle)) << "it was not acquiring before";
    ASSERT_TRUE(manager->startAcquisition(handle));
    manager->setPaused(handle, true);
    manager->unplugCamera(handle);
    cameras.first->log.clear();
    EXPECT_TRUE(manager->plugCameraIn(QStringLiteral("fake:1")));
    EXPECT_EQ(cameras.first->log, QStringList({"pause", "deleted", "start"}));
    EXPECT_TRUE(manager->isPaused(handle));
    // A camera stopped while unplugged must not start when it is plugged in.
    manager->unplugCamera(handle);
    manager->stopAcquisition(handle);
    EXPECT_TRUE(manager->plugCameraIn(QStringLiteral("fake:1")));
    EXPECT_FALSE(manager->isAcquiring(handle));
}

TEST_F(CkCameraManagerTest, WhatADriverNoLongerOffersIsTakenAsPulledOff) {
    void* const handle = open("fake:1");
    void* const other = open("fake:2");
    ASSERT_TRUE(manager->startAcquisition(handle));
    manager->checkCameras();
    EXPECT_FALSE(manager->isUnplugged(handle));
    cameras.first->offered = false;
    manager->checkCameras();
    EXPECT_TRUE(manager->isUnplugged(handle));
    EXPECT_FALSE(manager->isUnplugged(other));
    EXPECT_TRUE(manager->withheldCameras().isEmpty())
        << "it was unplugged by the driver, not by unplugCamera";
    cameras.first->offered = true;
    manager->checkCameras();
    EXPECT_FALSE(manager->isUnplugged(handle));
    EXPECT_TRUE(manager->isAcquiring(handle));
    // checkCameras does not plug in a camera that is withheld.
    manager->unplugCamera(other);
    manager->checkCameras();
    EXPECT_TRUE(manager->isUnplugged(other));
}

TEST_F(CkCameraManagerTest, ACameraThatCannotBeOpenedAgainStaysAwayAndMayBeTriedAgain) {
    void* const handle = open("fake:1");
    manager->unplugCamera(handle);
    cameras.first->refusesOpen = true;
    QString error;
    EXPECT_FALSE(manager->plugCameraIn(QStringLiteral("fake:1"), &error));
    EXPECT_EQ(error, QStringLiteral("in use elsewhere"));
    EXPECT_TRUE(manager->isUnplugged(handle));
    EXPECT_EQ(cameras.first->alive, 1);
    cameras.first->refusesOpen = false;
    manager->checkCameras();
    EXPECT_FALSE(manager->isUnplugged(handle));
}

TEST_F(CkCameraManagerTest, ACameraClosedWhileItIsAwayCanBePluggedInAndOpenedAgain) {
    void* const handle = open("fake:1");
    manager->unplugCamera(handle);
    manager->closeCamera(handle);
    EXPECT_FALSE(manager->isOpen(handle));
    QString error;
    EXPECT_EQ(manager->openCamera(QStringLiteral("fake:1"), &error), nullptr);
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(manager->plugCameraIn(QStringLiteral("fake:1")));
    EXPECT_NE(open("fake:1"), nullptr);
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
    cameras.first->deliver(fakeFrame(8, 8)); // without a receiver: deleted
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
