#include "tests/host/recording/recordingFixture.h"

#include "host/recording/CkRecorder.h"
#include "host/recording/CkVideoSource.h"
#include "host/recording/ForeignMembers.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageProvider.h"

#include <QJsonArray>
#include <chrono>
#include <thread>

namespace {

QJsonObject laterVersion(qint64 frame) {
    return {{QStringLiteral("weather"), QJsonObject{{QStringLiteral("rain"), frame}}},
            {QStringLiteral("metadata"), QJsonObject{{QStringLiteral("humidity"), 0.5}}}};
}

/// Outputs a new frame without the properties of its input.
class CkNewFrameBlock : public CkImageProvider {
public:
    CkNewFrameBlock() : CkImageProvider(41) {}
    IkChainData* processData(IkChainData* pData) override {
        const std::unique_ptr<CkImageData> old(dynamic_cast<CkImageData*>(pData));
        SkPicBuf copy;
        if (old == nullptr || !CkPicBufAPI::CopyPicBuf(old->picBuf(), copy)) {
            return nullptr;
        }
        auto made = std::make_unique<CkImageData>();
        made->setPicBuf(copy);
        made->setMetadata(old->metadata());
        return made.release();
    }
};

class CkForeignMembersTest : public RecordingFixture {
protected:
    void SetUp() override {
        SkRecordingInfo info;
        info.chainXml = QStringLiteral("<chain/>");
        info.software = QStringLiteral("first");
        CkRecordingWriter writer;
        ASSERT_TRUE(writer.open(path("first.tif"), info));
        for (qint64 i = 0; i < 4; ++i) {
            ASSERT_TRUE(writer.write(*picture(i), metadata(i), laterVersion(i)));
        }
        ASSERT_TRUE(writer.close());
    }

    /// Plays the file from its second frame in a loop and records what leaves the chain.
    void playAndRecord(bool withBlock, qint64 frames) {
        CkChainManager* chains = CkChainManager::instance();
        CkChain* chain = chains->createChain();
        auto* source = new CkVideoSource;
        ASSERT_TRUE(source->openFile(path("first.tif"), nullptr));
        ASSERT_TRUE(chains->insertAfter(chain, source, nullptr));
        CkChainable* end = source;
        if (withBlock) {
            end = new CkNewFrameBlock;
            ASSERT_TRUE(chains->insertAfter(chain, end, source));
        }
        CkRecorder recorder;
        SkRecordingInfo info;
        info.software = QStringLiteral("second");
        ASSERT_TRUE(recorder.start(path("second.tif"), info, {}, nullptr));
        ASSERT_TRUE(chain->addSink(end, &recorder));
        source->setLoop(true);
        ASSERT_TRUE(chain->start());
        source->seek(1);
        source->play();
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (recorder.state().written < frames && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        chain->stop();
        chain->removeSink(&recorder);
        recorder.stop();
        chains->closeChain(chain);
    }

    void expectKept(qint64 frames) {
        CkRecordingReader reader;
        QString error;
        ASSERT_TRUE(reader.open(path("second.tif"), &error)) << qPrintable(error);
        ASSERT_GE(reader.frameCount(), frames);
        EXPECT_EQ(reader.recordingInfo().software, QStringLiteral("second"));
        EXPECT_TRUE(reader.recordingInfo().chainXml.isEmpty());
        for (qint64 i = 0; i < frames; ++i) {
            SkFrameDescription page;
            ASSERT_TRUE(reader.describe(i, page, &error));
            const auto frame = qint64(page.metadata.frameNumber);
            const QJsonObject object = page.object;
            EXPECT_EQ(object["weather"]["rain"].toInteger(-1), frame);
            EXPECT_EQ(object["metadata"]["humidity"].toDouble(), 0.5);
            // What the first page of the first file says about that file is not repeated on later pages.
            EXPECT_EQ(object.contains(QStringLiteral("recording")), i == 0);
        }
    }
};

} // namespace

TEST_F(CkForeignMembersTest, TheyGoThroughPlaybackAndRecordingAgain) {
    ASSERT_NO_FATAL_FAILURE(playAndRecord(false, 6));
    expectKept(6);
}

TEST_F(CkForeignMembersTest, TheyGoThroughBlocksThatMakeNewFrames) {
    ASSERT_NO_FATAL_FAILURE(playAndRecord(true, 6));
    expectKept(6);
}

TEST_F(CkForeignMembersTest, OnlyWhatIsUnknownCountsAsForeign) {
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("first.tif"), nullptr));
    EXPECT_EQ(ForeignMembers::of(*reader.read(2, nullptr)), laterVersion(2));
    record(path("plain.tif"), 1);
    ASSERT_TRUE(reader.open(path("plain.tif"), nullptr));
    EXPECT_TRUE(ForeignMembers::of(*reader.read(0, nullptr)).isEmpty());
    EXPECT_TRUE(reader.read(0, nullptr)->dynamicPropertyNames().isEmpty());
}
