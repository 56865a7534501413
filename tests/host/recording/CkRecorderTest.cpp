#include "tests/host/recording/recordingFixture.h"
#include "tests/support/FullDisk.h"

#include "host/recording/CkRecorder.h"

#include <future>

namespace {

class CkRecorderTest : public RecordingFixture {
protected:
    static std::unique_ptr<CkImageData> frame(qint64 number) {
        return fill(std::make_unique<CkImageData>(), number);
    }
    template <typename Data>
    static std::unique_ptr<Data> fill(std::unique_ptr<Data> data, qint64 number) {
        PaddedPicture made = picture(number);
        SkPicBuf copy;
        EXPECT_TRUE(CkPicBufAPI::CopyPicBuf(*made, copy));
        data->setPicBuf(copy);
        data->setMetadata(metadata(number));
        return data;
    }
};

/// A frame whose destructor blocks until the test releases it.
class GatedFrame : public CkImageData {
public:
    GatedFrame(std::promise<void>& reached, std::shared_future<void> gate)
        : m_reached(reached), m_gate(gate) {}
    ~GatedFrame() override {
        m_reached.set_value();
        m_gate.wait();
    }

private:
    std::promise<void>& m_reached;
    std::shared_future<void> m_gate;
};

} // namespace

TEST_F(CkRecorderTest, RecordsWhatItIsGiven) {
    CkRecorder recorder;
    QString error;
    ASSERT_TRUE(recorder.start(path("a.tif"), {}, {}, &error)) << qPrintable(error);
    EXPECT_FALSE(recorder.start(path("b.tif"), {}, {}, &error));
    for (qint64 i = 0; i < 50; ++i) {
        ASSERT_TRUE(recorder.waitForSpace());
        EXPECT_EQ(recorder.takeFrame(frame(i).release()), 0);
    }
    EXPECT_TRUE(recorder.stop());
    EXPECT_EQ(recorder.state().written, 50);
    EXPECT_EQ(recorder.state().waiting, 0);
    EXPECT_EQ(recorder.takeFrame(frame(50).release()), 0);
    EXPECT_EQ(recorder.state().waiting, 0) << "the thread that would write it has ended";
    EXPECT_EQ(recorder.state().dropped, 0);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), &error));
    ASSERT_EQ(reader.frameCount(), 50);
    EXPECT_EQ(quint64(reader.byteCount()), recorder.state().bytes);
    for (qint64 i = 0; i < 50; ++i) {
        EXPECT_TRUE(isFrame(*reader.read(i, &error), i));
    }
}

TEST_F(CkRecorderTest, NoFrameIsNothingToWrite) {
    CkRecorder recorder;
    ASSERT_TRUE(recorder.start(path("a.tif"), {}, {}, nullptr));
    EXPECT_EQ(recorder.takeFrame(nullptr), 0);
    EXPECT_EQ(recorder.takeFrame(frame(0).release()), 0);
    EXPECT_TRUE(recorder.stop());
    EXPECT_EQ(recorder.state().written, 1);
}

TEST_F(CkRecorderTest, FramesThatDoNotFitAreCountedAndReported) {
    CkRecorder recorder;
    std::vector<qint64> reports;
    recorder.setProblemCallback(
        [&reports](const CkRecorder::SkState& state) { reports.push_back(state.dropped); });
    ASSERT_TRUE(recorder.start(path("a.tif"), {}, {EkRecordingCompression::None, 2}, nullptr));
    EXPECT_EQ(recorder.heldFrames(), 3);
    std::promise<void> reached;
    std::promise<void> gate;
    recorder.takeFrame(fill(std::make_unique<GatedFrame>(reached, gate.get_future().share()), 0).release());
    reached.get_future().wait(); // the thread is blocked with frame 0; two more fit into the queue
    int dropped = 0;
    for (qint64 i = 1; i <= 6; ++i) {
        dropped += recorder.takeFrame(frame(i).release());
    }
    EXPECT_EQ(dropped, 4);
    EXPECT_EQ(recorder.state().dropped, 4);
    EXPECT_EQ(recorder.state().waiting, 3);
    EXPECT_EQ(reports, (std::vector<qint64>{1, 2, 3, 4}));
    gate.set_value();
    EXPECT_FALSE(recorder.stop());
    EXPECT_EQ(recorder.state().written, 3);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    ASSERT_EQ(reader.frameCount(), 3);
    EXPECT_TRUE(isFrame(*reader.read(2, nullptr), 2));
}

TEST_F(CkRecorderTest, AFullDiskIsReportedAndNothingIsLostSilently) {
    CkRecorder recorder;
    int offered = 0;
    {
        const FullDisk disk(10'000);
        ASSERT_TRUE(recorder.start(path("a.tif"), {}, {}, nullptr));
        while (recorder.waitForSpace() && offered < 1000) {
            recorder.takeFrame(frame(offered++).release());
        }
        recorder.takeFrame(frame(offered++).release());
        EXPECT_FALSE(recorder.stop());
    }
    const CkRecorder::SkState state = recorder.state();
    EXPECT_LT(offered, 1000);
    EXPECT_EQ(state.written + state.dropped, offered);
    EXPECT_GT(state.written, 0);
    EXPECT_THAT(state.error.toStdString(), ::testing::HasSubstr("a.tif"));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    EXPECT_EQ(reader.frameCount(), state.written);
}

TEST_F(CkRecorderTest, AFileThatCannotBeMadeIsAnErrorAtTheStart) {
    CkRecorder recorder;
    QString error;
    EXPECT_FALSE(recorder.start(path("none/a.tif"), {}, {}, &error));
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("none/a.tif"));
    EXPECT_FALSE(recorder.isRunning());
    EXPECT_FALSE(recorder.waitForSpace());
}
