#include "tests/host/recording/recordingFixture.h"

#include <thread>

namespace {

class CkRecordingReaderTest : public RecordingFixture {};

} // namespace

TEST_F(CkRecordingReaderTest, EverythingAboutAFrameComesBack) {
    PaddedPicture made = picture(3, 20, 8, 3);
    made->linePadding = 64;
    made->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    made->layoutFlag = true;
    CkImageMetadata meta = metadata(3);
    meta.cameraName = QString::fromUtf8("Kamera Ä");
    meta.hybridPulseDuration = 4e-8F;
    CkRecordingWriter writer;
    const SkRecordingInfo recording{QStringLiteral("<chain/>"),
                                    {{QStringLiteral("map"), QStringLiteral("Turbo")}},
                                    QStringLiteral("reader test 2.1")};
    ASSERT_TRUE(writer.open(path("a.tif"), recording));
    ASSERT_TRUE(writer.write(*made, meta));
    ASSERT_TRUE(writer.close());

    CkRecordingReader reader;
    QString error;
    ASSERT_TRUE(reader.open(path("a.tif"), &error)) << qPrintable(error);
    EXPECT_EQ(reader.recordingInfo().chainXml, recording.chainXml);
    EXPECT_EQ(reader.recordingInfo().viewSettings, recording.viewSettings);
    EXPECT_EQ(reader.recordingInfo().software, recording.software);
    const auto frame = reader.read(0, &error);
    ASSERT_NE(frame, nullptr) << qPrintable(error);
    EXPECT_TRUE(error.isEmpty());
    EXPECT_TRUE(isFrame(*frame, 3));
    EXPECT_TRUE(frame->metadata() == meta);
    const SkPicBuf& picBuf = frame->picBuf();
    EXPECT_EQ(picBuf.lineSize, 20U * 3 * 2); // padding stripped
    EXPECT_EQ(picBuf.bitsPerChannel, 12U);
    EXPECT_EQ(picBuf.linePadding, 64U);
    EXPECT_EQ(picBuf.dataType, EkImageDataType::UInt16);
    EXPECT_EQ(picBuf.colorFilterArray, EkColorFilterArray::RawX3Hybrid);
    EXPECT_EQ(picBuf.storageFormat, EkDataStorageFormat::Interleaved);
    EXPECT_TRUE(picBuf.layoutFlag);
    EXPECT_EQ(picBuf.additionalData.frameNumber, 3U);
    EXPECT_EQ(picBuf.additionalData.timestampNs, 120'000'000);
}

TEST_F(CkRecordingReaderTest, FloatPicturesKnowTheirRange) {
    PaddedPicture made(2, 2, 1, EkImageDataType::Float32);
    made.fill<float>([](quint32 x, quint32 y, quint32) { return float(x) - 4.0F * float(y); });
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("a.tif"), {}));
    ASSERT_TRUE(writer.write(*made, {}));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    const auto frame = reader.read(0, nullptr);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->picBuf().minValue, -4.0F);
    EXPECT_EQ(frame->picBuf().maxValue, 1.0F);
}

TEST_F(CkRecordingReaderTest, UnknownMembersSurviveRewriting) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("a.tif"), {}));
    ASSERT_TRUE(
        writer.write(*picture(0), metadata(0), {{QStringLiteral("operator"), QStringLiteral("Ada")}}));
    ASSERT_TRUE(writer.close());
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    QJsonObject object;
    const auto frame = reader.read(0, nullptr, &object);
    ASSERT_NE(frame, nullptr);
    ASSERT_TRUE(writer.open(path("b.tif"), reader.recordingInfo()));
    ASSERT_TRUE(writer.write(frame->picBuf(), frame->metadata(), object));
    CkRecordingReader again;
    ASSERT_TRUE(again.open(path("b.tif"), nullptr));
    SkFrameDescription description;
    ASSERT_TRUE(again.describe(0, description, nullptr));
    EXPECT_EQ(description.object[QStringLiteral("operator")].toString(), QStringLiteral("Ada"));
}

TEST_F(CkRecordingReaderTest, FramesOfSeveralFormatsStandInOneFile) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("a.tif"), {}));
    ASSERT_TRUE(writer.write(*picture(0, 5, 3, 1), metadata(0)));
    ASSERT_TRUE(writer.write(*picture(1, 9, 2, 4), metadata(1)));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    ASSERT_EQ(reader.frameCount(), 2);
    EXPECT_TRUE(isFrame(*reader.read(0, nullptr), 0));
    const auto second = reader.read(1, nullptr);
    EXPECT_TRUE(isFrame(*second, 1));
    EXPECT_EQ(second->picBuf().channels, 4U);
}

TEST_F(CkRecordingReaderTest, SeveralThreadsReadAtOnce) {
    record(path("a.tif"), 40, EkRecordingCompression::Deflate);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int start = 0; start < 4; ++start) {
        threads.emplace_back([&reader, &wrong, start] {
            for (qint64 i = 0; i < 40; ++i) {
                const qint64 frame = (i * 7 + start) % 40;
                const auto read = reader.read(frame, nullptr);
                wrong += read != nullptr && isFrame(*read, frame) ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(CkRecordingReaderTest, TheSearchForPagesTellsItsProgressAndCanBeCancelled) {
    record(path("a.tif"), 600);
    CkRecordingReader reader;
    std::vector<std::pair<qint64, double>> reports;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr, [&reports](qint64 pages, double share) {
        reports.emplace_back(pages, share);
        return true;
    }));
    ASSERT_EQ(reports.size(), 3U); // after 256 and 512 pages and at the end
    EXPECT_LT(reports[0].second, reports[1].second);
    EXPECT_EQ(reports[2], std::make_pair(qint64(600), 1.0));

    CkRecordingReader cancelled;
    QString error;
    EXPECT_FALSE(cancelled.open(path("a.tif"), &error, [](qint64, double) { return false; }));
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("a.tif"));
}

TEST_F(CkRecordingReaderTest, NumbersOutsideAreRefused) {
    record(path("a.tif"), 2);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("a.tif"), nullptr));
    for (const qint64 frame : {qint64(-1), qint64(2), std::numeric_limits<qint64>::max()}) {
        QString error;
        EXPECT_EQ(reader.read(frame, &error), nullptr);
        EXPECT_FALSE(error.isEmpty());
        SkFrameDescription description;
        EXPECT_FALSE(reader.describe(frame, description, &error));
        EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("There is no such page."));
    }
}
