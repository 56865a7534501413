#include "tests/tools/tof/ToFFixture.h"

#include <QRegularExpression>
#include <csignal>
#include <sys/resource.h>

namespace {

// Limits the file size of the program, to simulate a full disk.
void narrow(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {bytes, bytes};
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

class ToFRecordTest : public ToFFixture {};

} // namespace

TEST_F(ToFRecordTest, RecordsTheFramesAskedFor) {
    const SkRun run = tof("record --frames 4 --set framerate=100 --set tof_modulation_frequency=25 a.tif");
    ASSERT_EQ(run.code, 0) << qPrintable(run.err);
    EXPECT_TRUE(run.out.isEmpty());
    EXPECT_TRUE(run.err.isEmpty()); // no terminal, no bar
    const auto reader = open("a.tif");
    ASSERT_EQ(reader->frameCount(), 4);
    EXPECT_EQ(reader->recordingInfo().software, QStringLiteral("tof 1.0.0"));
    EXPECT_TRUE(reader->recordingInfo().chainXml.contains(QLatin1String("CkCameraSource")));
    quint64 last = 0;
    for (qint64 i = 0; i < 4; ++i) {
        const auto frame = reader->read(i, nullptr);
        ASSERT_NE(frame, nullptr);
        const SkPicBuf& picBuf = frame->picBuf();
        EXPECT_EQ(picBuf.width, 640U);
        EXPECT_EQ(picBuf.height, 4 * 480U);
        EXPECT_EQ(picBuf.channels, 2U);
        EXPECT_EQ(frame->metadata().modulationFrequency, 25.0F);
        EXPECT_EQ(frame->metadata().phasesCount, 4);
        EXPECT_TRUE(i == 0 || picBuf.additionalData.frameNumber > last);
        last = picBuf.additionalData.frameNumber;
        quint32 bits = 0;
        EXPECT_TRUE(CkPicBufAPI::DetectColorBitDepth(picBuf, bits, false)); // not black
    }
}

TEST_F(ToFRecordTest, CompressionKeepsEverySample) {
    const char* const line = "--camera hybrid --frames 2 --set framerate=100 --set sim_seed=5";
    ASSERT_EQ(tof((std::string("record ") + line + " plain.tif").c_str()).code, 0);
    ASSERT_EQ(tof((std::string("record --compress ") + line + " packed.tif").c_str()).code, 0);
    const auto plain = open("plain.tif");
    const auto packed = open("packed.tif");
    EXPECT_LT(packed->byteCount(), plain->byteCount());
    ASSERT_EQ(packed->frameCount(), 2);
    const auto a = plain->read(0, nullptr);
    const auto b = packed->read(0, nullptr);
    ASSERT_TRUE(a != nullptr && b != nullptr);
    ASSERT_EQ(CkPicBufAPI::byteSize(a->picBuf()), CkPicBufAPI::byteSize(b->picBuf()));
    EXPECT_EQ(std::memcmp(a->picBuf().data, b->picBuf().data, CkPicBufAPI::byteSize(a->picBuf())), 0);
}

TEST_F(ToFRecordTest, ListsCamerasAndParameters) {
    const SkRun run = tof("record --list");
    EXPECT_EQ(run.code, 0);
    for (const char* word :
         {"sim:wave", "sim:hybrid", "sim:grey", "tof_phases=4", "framerate=30",
          "1000 us  Exposure, 1 to 20000", "Scene: 0 Room with moving sphere, 1 Flat wall"}) {
        EXPECT_TRUE(run.out.contains(QLatin1String(word))) << word;
    }
}

TEST_F(ToFRecordTest, PulseOfAHybridCameraIsInTheSummary) {
    ASSERT_EQ(tof("record --camera hybrid --frames 1 --set hybrid_pulse_duration=25 a.tif").code, 0);
    const SkRun run = tof("info a.tif");
    EXPECT_EQ(run.code, 0);
    EXPECT_TRUE(run.out.contains(QLatin1String("\nPulse:        25 ns\n"))) << qPrintable(run.out);
    EXPECT_FALSE(run.out.contains(QLatin1String("Modulation:")));
}

TEST_F(ToFRecordTest, AFullDiskTellsHowManyFramesAreThere) {
    // Two taps of 2 bytes, 640 x 1920 pixels: a frame has 4.9 MB.
    const SkRun run = runIn(m_folder.path(), {"record", "--frames", "4", "--set", "framerate=100", "a.tif"},
                            [] { narrow(7'000'000); });
    EXPECT_EQ(run.code, 5);
    const auto told =
        QRegularExpression(" 1 frame was recorded, (\\d+) (was|were) lost\\.\n$").match(run.err);
    ASSERT_TRUE(told.hasMatch()) << qPrintable(run.err);
    EXPECT_EQ(told.captured(2), told.captured(1) == "1" ? "was" : "were");
    EXPECT_EQ(open("a.tif")->frameCount(), 1);
}
