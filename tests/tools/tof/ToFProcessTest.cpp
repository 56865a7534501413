#include "tests/tools/tof/ToFFixture.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "tests/support/TestPicture.h"

namespace {

class ToFProcessTest : public ToFFixture {
protected:
    static bool samePixels(const SkPicBuf& a, const SkPicBuf& b) {
        const size_t row = size_t(a.width) * a.channels * sampleBytes(a.dataType);
        bool same = a.width == b.width && a.height == b.height && a.channels == b.channels &&
                    a.dataType == b.dataType;
        for (quint32 y = 0; same && y < a.height; ++y) {
            same = std::memcmp(a.row(y), b.row(y), row) == 0;
        }
        return same;
    }
};

} // namespace

TEST_F(ToFProcessTest, DepthIsWhatThePictureOperationMakes) {
    ASSERT_EQ(tof("record --frames 3 --set framerate=100 raw.tif").code, 0);
    const SkRun run = tof("process --transform depth raw.tif depth.tif");
    ASSERT_EQ(run.code, 0) << qPrintable(run.err);
    const auto raw = open("raw.tif");
    const auto depth = open("depth.tif");
    ASSERT_EQ(depth->frameCount(), 3);
    EXPECT_EQ(depth->recordingInfo().chainXml, raw->recordingInfo().chainXml);
    for (qint64 i = 0; i < 3; ++i) {
        const auto source = raw->read(i, nullptr);
        const auto result = depth->read(i, nullptr);
        TestPicture expected(640, 480, 2, EkImageDataType::Float32);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source->picBuf(), *expected, 4));
        EXPECT_TRUE(samePixels(result->picBuf(), *expected));
        EXPECT_EQ(result->metadata().channelNames.value(0), QStringLiteral("Phase shift"));
        EXPECT_EQ(result->picBuf().additionalData.frameNumber, source->picBuf().additionalData.frameNumber);
    }
}

TEST_F(ToFProcessTest, ManyFramesKeepTheirOrderAndTheirText) {
    recordTaps("raw.tif", 150);
    ASSERT_EQ(tof("process --transform aminb --compress raw.tif result.tif").code, 0);
    const auto reader = open("result.tif");
    ASSERT_EQ(reader->frameCount(), 150);
    for (qint64 i = 0; i < 150; ++i) {
        QJsonObject object;
        const auto frame = reader->read(i, nullptr, &object);
        ASSERT_NE(frame, nullptr);
        EXPECT_EQ(frame->metadata().frameNumber, quint64(i));
        EXPECT_EQ(frame->picBuf().dataType, EkImageDataType::Int16);
        EXPECT_EQ(sampleAt<qint16>(frame->picBuf(), 19, 479), 100 + i + 19 - 10);
        EXPECT_EQ(object[QStringLiteral("room")].toInt(), i);
    }
}

TEST_F(ToFProcessTest, SeparatePhasesAreGathered) {
    ASSERT_EQ(tof("record --frames 10 --set framerate=100 --set tof_phase_images=1 raw.tif").code, 0);
    ASSERT_EQ(tof("process --transform concat raw.tif stacked.tif").code, 0);
    ASSERT_EQ(tof("process --transform depth raw.tif depth.tif").code, 0);
    const auto raw = open("raw.tif");
    const auto stacked = open("stacked.tif");
    const auto depth = open("depth.tif");
    ASSERT_EQ(stacked->frameCount(), 2); // the third set has two phases only
    ASSERT_EQ(depth->frameCount(), 2);
    for (qint64 set = 0; set < 2; ++set) {
        TestPicture expected(640, 4 * 480, 2, EkImageDataType::UInt16);
        CkToFPicAPI::AngleList angles;
        for (quint32 phase = 0; phase < 4; ++phase) {
            const auto image = raw->read(4 * set + phase, nullptr);
            ASSERT_EQ(image->metadata().phaseSequenceIndex, qint32(phase));
            ASSERT_TRUE(CkPicBufAPI::CopyRect(*expected, 0, 480 * phase, image->picBuf(), 0, 0, 640, 480));
            angles.push_back(image->metadata().phaseAngle);
        }
        EXPECT_TRUE(samePixels(stacked->read(set, nullptr)->picBuf(), *expected));
        TestPicture phaseShift(640, 480, 2, EkImageDataType::Float32);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*expected, *phaseShift, 4, &angles));
        EXPECT_TRUE(samePixels(depth->read(set, nullptr)->picBuf(), *phaseShift));
    }
}

TEST_F(ToFProcessTest, EveryTransformWorksOnTheCameraItIsFor) {
    ASSERT_EQ(tof("record --frames 1 wave.tif").code, 0);
    ASSERT_EQ(tof("record --camera hybrid --frames 1 hybrid.tif").code, 0);
    for (const char* transform : {"depth", "amplitude", "intensity", "ab", "aminb", "concat"}) {
        EXPECT_EQ(tof((std::string("process --transform ") + transform + " wave.tif a.tif").c_str()).code, 0)
            << transform;
        EXPECT_EQ(open("a.tif")->frameCount(), 1);
    }
    for (const char* transform : {"depth", "amplitude", "intensity", "hybrid"}) {
        EXPECT_EQ(tof((std::string("process --transform ") + transform + " hybrid.tif a.tif").c_str()).code,
                  0)
            << transform;
    }
}

TEST_F(ToFProcessTest, WhatDoesNotFitIsCode6AndWritesNothing) {
    recordFloats("float.tif", {{1, 2}}, {});
    const SkRun run = tof("process --transform amplitude float.tif b.tif");
    EXPECT_EQ(run.code, 6);
    EXPECT_TRUE(run.err.contains(QLatin1String("float.tif\", page 1: The input image must be RAWX2 image")));
    EXPECT_FALSE(QFile::exists(path("b.tif")));
}

TEST_F(ToFProcessTest, AnIncompleteSetNamesTheFileAndItsMissingImages) {
    ASSERT_EQ(tof("record --frames 2 --set tof_phase_images=1 raw.tif").code, 0);
    const QString set = QStringLiteral(" The set of page 1 to 2 lacks 2 of its 4 images: 2, 3 (counted from "
                                       "0).\n");
    const SkRun processed = tof("process --transform depth raw.tif depth.tif");
    EXPECT_EQ(processed.code, 6);
    EXPECT_EQ(processed.err,
              QStringLiteral("tof: No frame came out of \"raw.tif\"; nothing was written.") + set);
    EXPECT_FALSE(QFile::exists(path("depth.tif")));
    const SkRun cloud = tof("cloud raw.tif a.ply");
    EXPECT_EQ(cloud.code, 6);
    EXPECT_EQ(cloud.err, QStringLiteral("tof: No cloud came out of \"raw.tif\"; nothing was written.") + set);
}

TEST_F(ToFProcessTest, ASetOfItsReferenceAloneSaysSo) {
    PaddedPicture made(8, 2, 3, EkImageDataType::UInt16, 12);
    made->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    CkImageMetadata metadata;
    metadata.colorFilterArray = 13;
    metadata.sectionMode = 3;
    metadata.sectionCount = 3;
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("raw.tif"), {}));
    ASSERT_TRUE(writer.write(*made, metadata));
    ASSERT_TRUE(writer.close());
    const SkRun run = tof("process --transform amplitude raw.tif amplitude.tif");
    EXPECT_EQ(run.code, 6);
    EXPECT_EQ(run.err,
              QStringLiteral("tof: No frame came out of \"raw.tif\"; nothing was written. The set of "
                             "page 1 has nothing but a reference section.\n"));
}

TEST_F(ToFProcessTest, ARefusedImageOfASetSaysWhy) {
    recordTaps("raw.tif", 1, [](CkImageMetadata& metadata) {
        metadata.phasesCount = 1;
        metadata.phaseSequenceLength = 2;
        metadata.phaseSequenceIndex = 2;
    });
    const SkRun run = tof("process --transform depth raw.tif depth.tif");
    EXPECT_EQ(run.code, 6);
    EXPECT_TRUE(
        run.err.contains(QLatin1String("\"raw.tif\", page 1: The index of the image is outside its set.\n")));
    EXPECT_TRUE(run.err.endsWith(QLatin1String("No frame came out of \"raw.tif\"; nothing was written.\n")));
}

TEST_F(ToFProcessTest, ADamagedRecordingIsWorkedOnUpToTheDamage) {
    recordTaps("whole.tif", 4);
    const QByteArray bytes = contents("whole.tif");
    setContents("cut.tif", bytes.left(bytes.size() - 10));
    const SkRun run = tof("process --transform aminb cut.tif b.tif");
    EXPECT_EQ(run.code, 4);
    EXPECT_TRUE(run.err.contains(QLatin1String("cut.tif\", page 4: ")));
    EXPECT_EQ(open("b.tif")->frameCount(), 3);
    EXPECT_EQ(tof("info cut.tif").code, 4);
}
