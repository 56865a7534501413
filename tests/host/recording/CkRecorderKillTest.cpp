#include "tests/host/recording/recordingFixture.h"

#include "host/recording/CkRecorder.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

/// Progress of the recording process, in memory shared with the test.
struct SkReport {
    std::atomic<bool> started = false;
    std::atomic<qint64> completed = 0;
};

class CkRecorderKillTest : public RecordingFixture {
protected:
    void SetUp() override {
        void* const memory =
            ::mmap(nullptr, sizeof(SkReport), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        ASSERT_NE(memory, MAP_FAILED);
        m_pReport = new (memory) SkReport;
    }
    void TearDown() override {
        if (m_pReport != nullptr) {
            ::munmap(m_pReport, sizeof(SkReport));
        }
    }

    /// Records until the process is killed.
    [[noreturn]] void recordForever(quint32 width, quint32 height, EkRecordingCompression compression) const {
        PaddedPicture made = picture(0, width, height);
        CkRecorder recorder;
        CkRecorder::SkOptions options;
        options.compression = compression;
        options.queueFrames = 4;
        m_pReport->started = true;
        if (!recorder.start(path("killed.tif"), {}, options, nullptr)) {
            ::_exit(2);
        }
        for (qint64 number = 0; recorder.waitForSpace(); ++number) {
            made.fill<quint16>([number](quint32 x, quint32 y, quint32 c) { return sample(number, x, y, c); });
            auto frame = std::make_unique<CkImageData>();
            SkPicBuf copy;
            if (!CkPicBufAPI::CopyPicBuf(*made, copy)) {
                ::_exit(3);
            }
            frame->setPicBuf(copy);
            frame->setMetadata(metadata(number));
            recorder.takeFrame(frame.release());
            m_pReport->completed = recorder.state().written;
        }
        ::_exit(4);
    }

    /// Starts a recording process and kills it some time after that many frames. Returns how many frames it
    /// had completed.
    void killAfter(qint64 frames, std::chrono::microseconds delay, quint32 width, quint32 height,
                   EkRecordingCompression compression, qint64& completed) {
        QFile::remove(path("killed.tif"));
        m_pReport->started = false;
        m_pReport->completed = 0;
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            recordForever(width, height, compression);
        }
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while ((!m_pReport->started || m_pReport->completed < frames) &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(delay);
        completed = m_pReport->completed;
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the recorder ended by itself with code " << WEXITSTATUS(status);
    }

    SkReport* m_pReport = nullptr;
};

} // namespace

TEST_F(CkRecorderKillTest, AHundredRandomMomentsLeaveEveryCompletedFrame) {
    constexpr unsigned seed = 20260;
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> microseconds(0, 10'000);
    std::uniform_int_distribution<qint64> frames(0, 6);
    qint64 all = 0;
    int empty = 0;
    for (int round = 0; round < 100; ++round) {
        // With small pages the kill often happens between two pages, with large ones mostly within a page.
        const bool large = round % 2 == 1;
        const auto compression =
            round % 4 < 2 ? EkRecordingCompression::None : EkRecordingCompression::Deflate;
        qint64 completed = 0;
        ASSERT_NO_FATAL_FAILURE(killAfter(frames(random), std::chrono::microseconds(microseconds(random)),
                                          large ? 320 : 24, large ? 240 : 16, compression, completed));
        QString error;
        CkRecordingReader reader;
        if (!reader.open(path("killed.tif"), &error)) {
            // Killed before the first page was complete: nothing is lost, and the message names the file.
            ASSERT_EQ(completed, 0) << "round " << round << ": " << qPrintable(error);
            ASSERT_THAT(error.toStdString(), ::testing::HasSubstr("killed.tif"));
            ++empty;
            continue;
        }
        ASSERT_TRUE(reader.damage().isEmpty()) << "round " << round << ": " << qPrintable(reader.damage());
        ASSERT_GE(reader.frameCount(), completed) << "round " << round;
        for (qint64 i = 0; i < reader.frameCount(); ++i) {
            const auto read = reader.read(i, &error);
            ASSERT_NE(read, nullptr) << "round " << round << ": " << qPrintable(error);
            ASSERT_TRUE(isFrame(*read, i)) << "round " << round;
        }
        all += reader.frameCount();
    }
    // The recorders were killed while writing.
    EXPECT_LT(empty, 50);
    EXPECT_GE(all, 50);
}
