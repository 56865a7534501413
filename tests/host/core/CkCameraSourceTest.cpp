#include "zuCore/CkCameraSource.h"

#include "tests/host/core/chainBlocks.h"
#include "tests/host/core/fakeCamera.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChainManager.h"

#include <QDomDocument>
#include <gmock/gmock.h>
#include <memory>

namespace {

class CkCameraSourceTest : public testing::Test {
protected:
    CkCameraSourceTest() { cameras.reset(); }
    ~CkCameraSourceTest() override {
        CkChainManager::instance()->closeChain(chain);
        cameras.reset();
    }

    FakeCameras& cameras = FakeCameras::instance();
    CkCameraManager* const manager = CkCameraManager::instance();
    CkChain* chain = CkChainManager::instance()->createChain();
};

} // namespace

TEST_F(CkCameraSourceTest, DeliversTheCamerasFramesToItsChain) {
    void* const handle = manager->openCamera(QStringLiteral("fake:1"));
    cameras.first->ownThread = true;
    auto* const source = new CkCameraSource(handle);
    KeepingSink sink(2);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    ASSERT_TRUE(chain->addSink(source, &sink));
    EXPECT_EQ(source->title(), QStringLiteral("Fake 1"));
    EXPECT_EQ(source->cameraHandles(), QList<void*>{handle});
    SkPicBufInfo info;
    CkImageMetadata metadata;
    ASSERT_TRUE(source->outputImageInfo(info, &metadata));
    EXPECT_EQ(info.width, 8U);
    EXPECT_EQ(metadata.cameraName, QStringLiteral("Fake 1"));

    ASSERT_TRUE(chain->start());
    EXPECT_FALSE(manager->isAcquiring(handle)) << "the chain does not start its camera";
    ASSERT_TRUE(manager->startAcquisition(handle));
    EXPECT_TRUE(waitUntil([&] { return sink.count() >= 20; }));

    // The camera now delivers another size; the chain follows.
    cameras.first->width = 16;
    EXPECT_TRUE(waitUntil([&] { return sink.lastInfo().width == 16; }));
    ASSERT_TRUE(chain->negotiatedInfo(source, info, nullptr));
    EXPECT_EQ(info.width, 16U);

    manager->closeCamera(handle);
    EXPECT_TRUE(chain->started()) << "the chain and its source stay";
    EXPECT_TRUE(source->cameraHandles().isEmpty());
    EXPECT_EQ(source->title(), QStringLiteral("Fake 1"));
    chain->stop();
    EXPECT_FALSE(source->outputImageInfo(info, nullptr));
    const size_t count = sink.count();
    EXPECT_TRUE(chain->start()) << "with a source of unknown format";
    EXPECT_EQ(sink.count(), count);
}

TEST_F(CkCameraSourceTest, GapsInTheFrameNumbersCountAsDropped) {
    void* const handle = manager->openCamera(QStringLiteral("fake:1"));
    auto* const source = new CkCameraSource(handle);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    ASSERT_TRUE(manager->startAcquisition(handle));
    quint64 delivered = 0;
    const auto deliver = [&](quint64 number) {
        CkImageData* const frame = fakeFrame(8, 1);
        frame->picBuf().additionalData.frameNumber = number;
        cameras.first->deliver(frame);
        ++delivered;
        // One at a time, so that the chain itself drops none.
        return waitUntil([&] { return chain->blockStatistics(source).framesOut == delivered; });
    };
    ASSERT_TRUE(chain->start());
    EXPECT_TRUE(deliver(7)) << "a camera may have run for a while";
    EXPECT_TRUE(deliver(8));
    EXPECT_EQ(chain->blockStatistics(source).dropped, 0U);
    EXPECT_TRUE(deliver(12));
    EXPECT_EQ(chain->blockStatistics(source).dropped, 3U);
    EXPECT_EQ(chain->blockStatistics(source).framesIn, 6U);
    EXPECT_TRUE(deliver(0)) << "started again";
    EXPECT_TRUE(deliver(0)) << "a camera that does not number its frames";
    EXPECT_TRUE(deliver(1));
    EXPECT_EQ(chain->blockStatistics(source).dropped, 3U);
    chain->stop();
}

TEST_F(CkCameraSourceTest, TheSourceMayGoWhileTheCameraDelivers) {
    void* const handle = manager->openCamera(QStringLiteral("fake:1"));
    cameras.first->ownThread = true;
    ASSERT_TRUE(manager->startAcquisition(handle));
    for (int i = 0; i < 100; ++i) {
        CkChain* other = CkChainManager::instance()->createChain();
        auto* const source = new CkCameraSource(handle);
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(other, source, nullptr));
        ASSERT_TRUE(other->start());
        if (i % 3 == 0) {
            CkChainManager::instance()->closeChain(other);
        } else {
            other->stop();
            ASSERT_TRUE(CkChainManager::instance()->remove(other, source, i % 3 == 1));
            EXPECT_EQ(other, nullptr);
            if (i % 3 == 1) {
                CkChainManager::instance()->deleteChainable(source);
            }
        }
    }
    EXPECT_TRUE(manager->isAcquiring(handle));
}

TEST_F(CkCameraSourceTest, IsFoundAgainByItsIdentifier) {
    void* const first = manager->openCamera(QStringLiteral("fake:1"));
    void* const second = manager->openCamera(QStringLiteral("fake:2"));
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("block"));
    CkCameraSource saved(second);
    EXPECT_TRUE(saved.saveSettings(doc, element));
    CkCameraSource loaded;
    EXPECT_EQ(loaded.cameraHandle(), nullptr);
    EXPECT_TRUE(loaded.loadSettings(element));
    EXPECT_EQ(loaded.cameraHandle(), second);

    manager->closeCamera(second);
    EXPECT_EQ(saved.cameraHandle(), nullptr);
    CkCameraSource other;
    EXPECT_TRUE(other.loadSettings(element));
    EXPECT_EQ(other.cameraHandle(), first) << "the first open camera is used instead";
    const std::unique_ptr<CkChainable> twin(other.clone());
    ASSERT_NE(qobject_cast<CkCameraSource*>(twin.get()), nullptr);
    EXPECT_EQ(static_cast<CkCameraSource*>(twin.get())->cameraHandle(), first);

    manager->closeCamera(first);
    CkCameraSource without;
    EXPECT_TRUE(without.loadSettings(element));
    EXPECT_EQ(without.cameraHandle(), nullptr);
    QDomElement again = doc.createElement(QStringLiteral("block"));
    EXPECT_TRUE(without.saveSettings(doc, again));
    EXPECT_EQ(again.attribute(QStringLiteral("camera")), QStringLiteral("fake:2"));
}
