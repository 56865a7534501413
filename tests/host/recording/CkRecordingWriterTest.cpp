#include "tests/host/recording/recordingFixture.h"
#include "tests/support/FullDisk.h"

#include <csignal>
#include <sys/wait.h>
#include <thread>
#include <tiffio.h>
#include <unistd.h>

namespace {

class CkRecordingWriterTest : public RecordingFixture {};

using Parameters = std::tuple<EkImageDataType, quint32, EkRecordingCompression>;
class CkRecordingWriterFormatTest : public RecordingFixture,
                                    public ::testing::WithParamInterface<Parameters> {};

std::pair<int, int> bitsAndFormat(EkImageDataType type) {
    switch (type) {
    case EkImageDataType::Int8:
        return {8, SAMPLEFORMAT_INT};
    case EkImageDataType::UInt8:
        return {8, SAMPLEFORMAT_UINT};
    case EkImageDataType::Int16:
        return {16, SAMPLEFORMAT_INT};
    case EkImageDataType::UInt16:
        return {16, SAMPLEFORMAT_UINT};
    case EkImageDataType::Int32:
        return {32, SAMPLEFORMAT_INT};
    case EkImageDataType::UInt32:
        return {32, SAMPLEFORMAT_UINT};
    default:
        return {32, SAMPLEFORMAT_IEEEFP};
    }
}

} // namespace

// Read back with libtiff's ordinary interface, independent of our reader.
TEST_P(CkRecordingWriterFormatTest, OrdinaryReadersSeeTheSamplesAsDelivered) {
    const auto [type, channels, compression] = GetParam();
    const quint32 width = 37;
    const quint32 height = 5;
    const size_t row = size_t(width) * channels * sampleBytes(type);
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("a.tif"), {{}, {}, QStringLiteral("writer test")}, compression));
    std::vector<std::vector<quint8>> expected;
    for (int frame = 0; frame < 3; ++frame) {
        PaddedPicture made(width, height, channels, type);
        std::vector<quint8> bytes;
        for (quint32 y = 0; y < height; ++y) {
            for (size_t i = 0; i < row; ++i) {
                made->row(y)[i] = quint8(frame * 77 + int(y) * 31 + int(i * i));
                bytes.push_back(made->row(y)[i]);
            }
        }
        const auto before = made.bytes();
        ASSERT_TRUE(writer.write(*made, {})) << qPrintable(writer.errorMessage());
        EXPECT_EQ(made.bytes(), before);
        expected.push_back(bytes);
    }
    ASSERT_TRUE(writer.close());

    TIFF* const tif = TIFFOpen(qPrintable(path("a.tif")), "r");
    ASSERT_NE(tif, nullptr);
    EXPECT_EQ(TIFFNumberOfDirectories(tif), 3U);
    EXPECT_NE(TIFFIsBigTIFF(tif), 0);
    for (tdir_t page = 0; page < 3; ++page) {
        ASSERT_EQ(TIFFSetDirectory(tif, page), 1);
        uint32_t w = 0;
        uint32_t h = 0;
        uint16_t samples = 0;
        uint16_t bits = 0;
        uint16_t format = 0;
        TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &w);
        TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &h);
        TIFFGetField(tif, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetField(tif, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetField(tif, TIFFTAG_SAMPLEFORMAT, &format);
        EXPECT_EQ(w, width);
        EXPECT_EQ(h, height);
        EXPECT_EQ(samples, channels);
        EXPECT_EQ(std::make_pair(int(bits), int(format)), bitsAndFormat(type));
        ASSERT_EQ(TIFFScanlineSize(tif), tmsize_t(row));
        std::vector<quint8> bytes(row * height);
        for (quint32 y = 0; y < height; ++y) {
            ASSERT_EQ(TIFFReadScanline(tif, bytes.data() + y * row, y), 1);
        }
        EXPECT_EQ(bytes, expected[page]);
        char* software = nullptr;
        if (page == 0) {
            ASSERT_EQ(TIFFGetField(tif, TIFFTAG_SOFTWARE, &software), 1);
            EXPECT_STREQ(software, "writer test");
        }
    }
    TIFFClose(tif);
}

INSTANTIATE_TEST_SUITE_P(All, CkRecordingWriterFormatTest,
                         ::testing::Combine(::testing::Values(EkImageDataType::Int8, EkImageDataType::UInt8,
                                                              EkImageDataType::Int16, EkImageDataType::UInt16,
                                                              EkImageDataType::Int32, EkImageDataType::UInt32,
                                                              EkImageDataType::Float32),
                                            ::testing::Values(1U, 2U, 3U, 4U),
                                            ::testing::Values(EkRecordingCompression::None,
                                                              EkRecordingCompression::Deflate)));

// Up to eight bytes are stored in the entry itself, more after the directory.
TEST_F(CkRecordingWriterTest, TextsOfEveryLengthAreReadByOthers) {
    for (int length = 1; length <= 20; ++length) {
        const QString text(length, QLatin1Char('x'));
        CkRecordingWriter writer;
        ASSERT_TRUE(writer.open(path("a.tif"), {QString(), {}, text}));
        PaddedPicture made = picture(0);
        ASSERT_TRUE(writer.write(*made, metadata(0)));
        ASSERT_TRUE(writer.close());
        TIFF* const tif = TIFFOpen(qPrintable(path("a.tif")), "r");
        ASSERT_NE(tif, nullptr);
        char* software = nullptr;
        EXPECT_EQ(TIFFGetField(tif, TIFFTAG_SOFTWARE, &software), 1) << length;
        EXPECT_STREQ(software, qPrintable(text));
        TIFFClose(tif);
    }
}

TEST_F(CkRecordingWriterTest, CompressionMakesSmoothPicturesSmall) {
    for (const auto compression : {EkRecordingCompression::None, EkRecordingCompression::Deflate}) {
        CkRecordingWriter writer;
        ASSERT_TRUE(writer.open(path("a.tif"), {}, compression));
        PaddedPicture made(256, 256, 1, EkImageDataType::UInt16);
        made.fill<quint16>([](quint32 x, quint32 y, quint32) { return quint16(3 * x + y); });
        ASSERT_TRUE(writer.write(*made, {}));
        const bool packed = compression == EkRecordingCompression::Deflate;
        EXPECT_EQ(writer.byteCount() < 256 * 256 * 2 / 20, packed);
        CkRecordingReader reader;
        ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
        const auto frame = reader.read(0, nullptr);
        ASSERT_NE(frame, nullptr);
        EXPECT_EQ(sampleAt<quint16>(frame->picBuf(), 255, 255), 3 * 255 + 255);
    }
}

TEST_F(CkRecordingWriterTest, PicturesThatCannotBeStoredAreRefusedAndTheNextIsTaken) {
    CkRecordingWriter writer;
    EXPECT_FALSE(writer.write(*picture(0), {}));
    ASSERT_TRUE(writer.open(path("a.tif"), {}));
    EXPECT_FALSE(writer.write(SkPicBuf(), {}));
    EXPECT_THAT(writer.errorMessage().toStdString(), ::testing::HasSubstr("a.tif\", page 1: "));
    PaddedPicture five(3, 3, 5, EkImageDataType::UInt8);
    EXPECT_FALSE(writer.write(*five, {}));
    PaddedPicture unknown(3, 3, 1, EkImageDataType::Unknown);
    EXPECT_FALSE(writer.write(*unknown, {}));
    PaddedPicture shortRows = picture(0);
    shortRows->lineSize = 5;
    EXPECT_FALSE(writer.write(*shortRows, {}));
    PaddedPicture giant = picture(0);
    giant->width = 0x40000000U;
    giant->lineSize = 0xffffffffU;
    EXPECT_FALSE(writer.write(*giant, {}));
    EXPECT_TRUE(writer.write(*picture(7), metadata(7)));
    EXPECT_EQ(writer.frameCount(), 1);
    ASSERT_TRUE(writer.close());
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    ASSERT_EQ(reader.frameCount(), 1);
    EXPECT_TRUE(isFrame(*reader.read(0, nullptr), 7));
}

TEST_F(CkRecordingWriterTest, FilesThatCannotBeMadeSayWhy) {
    CkRecordingWriter writer;
    EXPECT_FALSE(writer.open(path("no/such/folder/a.tif"), {}));
    EXPECT_THAT(writer.errorMessage().toStdString(), ::testing::HasSubstr("no/such/folder/a.tif"));
    EXPECT_FALSE(writer.isOpen());
}

namespace {

/// Bytes that this process has requested from the system to read and write so far.
std::pair<qint64, qint64> trafficSoFar() {
    QFile file(QStringLiteral("/proc/self/io"));
    qint64 read = -1;
    qint64 written = -1;
    if (file.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith("rchar: ")) {
                read = line.mid(7).toLongLong();
            } else if (line.startsWith("wchar: ")) {
                written = line.mid(7).toLongLong();
            }
        }
    }
    return {read, written};
}

} // namespace

// The cost of a page in bytes transferred: the last thousand compared with the first.
TEST_F(CkRecordingWriterTest, TenThousandPagesCostTheSameEach) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("a.tif"), {}));
    qint64 first = 0;
    qint64 last = 0;
    for (int thousand = 0; thousand < 10; ++thousand) {
        const auto before = trafficSoFar();
        ASSERT_GE(before.second, 0);
        for (int i = 0; i < 1000; ++i) {
            const int frame = thousand * 1000 + i;
            ASSERT_TRUE(writer.write(*picture(frame), metadata(frame)));
        }
        const auto after = trafficSoFar();
        last = after.second - before.second + after.first - before.first;
        first = thousand == 0 ? last : first;
    }
    ASSERT_TRUE(writer.close());
    EXPECT_LT(last, first + first / 20); // frame numbers and offsets have more digits

    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    ASSERT_EQ(reader.frameCount(), 10000);
    for (const qint64 frame : {9999, 0, 5000}) {
        EXPECT_TRUE(isFrame(*reader.read(frame, nullptr), frame));
    }
}

TEST_F(CkRecordingWriterTest, AKilledWriterLeavesEveryCompletedFrame) {
    for (int round = 0; round < 25; ++round) {
        int reports[2];
        ASSERT_EQ(::pipe(reports), 0);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            CkRecordingWriter writer;
            bool good =
                writer.open(path("killed.tif"), {},
                            round % 2 == 0 ? EkRecordingCompression::None : EkRecordingCompression::Deflate);
            for (quint32 frame = 0; good; ++frame) {
                good = writer.write(*picture(frame, 60, 40), metadata(frame)) &&
                       ::write(reports[1], &frame, sizeof(frame)) == sizeof(frame);
            }
            ::_exit(1);
        }
        ::close(reports[1]);
        // The last report that arrives is of a frame that had been completed.
        quint32 completed = 0;
        quint32 frame = 0;
        for (int wait = 0; wait < 1 + round * 3 && ::read(reports[0], &frame, sizeof(frame)) == sizeof(frame);
             ++wait) {
            completed = frame + 1;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(round * 37));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        while (::read(reports[0], &frame, sizeof(frame)) == sizeof(frame)) {
            completed = frame + 1;
        }
        ::close(reports[0]);
        ASSERT_TRUE(WIFSIGNALED(status));
        ASSERT_GT(completed, 0U);

        CkRecordingReader reader;
        QString error;
        ASSERT_TRUE(reader.open(path("killed.tif"), &error)) << qPrintable(error);
        EXPECT_TRUE(reader.damage().isEmpty()) << qPrintable(reader.damage());
        ASSERT_GE(reader.frameCount(), qint64(completed));
        for (qint64 i = 0; i < reader.frameCount(); ++i) {
            const auto read = reader.read(i, &error);
            ASSERT_NE(read, nullptr) << qPrintable(error);
            ASSERT_TRUE(isFrame(*read, i));
        }
    }
}

TEST_F(CkRecordingWriterTest, AFullDiskLeavesEveryCompletedFrame) {
    CkRecordingWriter writer;
    qint64 written = 0;
    QString error;
    {
        const FullDisk disk(100'000);
        ASSERT_TRUE(writer.open(path("full.tif"), {}));
        while (written < 1000 && writer.write(*picture(written, 60, 40), metadata(written))) {
            ++written;
        }
        error = writer.errorMessage();
        EXPECT_TRUE(writer.close());
    }
    // 60 x 40 x 2 samples of 2 bytes: 9600 bytes and a text of less than 2000.
    EXPECT_GE(written, 100'000 / 11'600);
    EXPECT_LE(written, 100'000 / 9'600);
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("page " + std::to_string(written + 1)));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("full.tif"), nullptr));
    EXPECT_TRUE(reader.damage().isEmpty());
    ASSERT_EQ(reader.frameCount(), written);
    for (qint64 i = 0; i < written; ++i) {
        EXPECT_TRUE(isFrame(*reader.read(i, nullptr), i));
    }
}
