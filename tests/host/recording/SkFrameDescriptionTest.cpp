#include "host/recording/SkFrameDescription.h"

#include <QJsonDocument>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

CkImageMetadata unusualMetadata() {
    CkImageMetadata m;
    m.channelNames = QStringList{QStringLiteral("Depth"), QString::fromUtf8("Güte \"1\"\n\xf0\x9f\x98\x80")};
    m.tofFormatCode = 0x84ab0f0cU;
    m.colorFilterArray = 0xffffffffU;
    m.modulationFrequency = 20.123457F;
    m.phasesCount = std::numeric_limits<qint32>::min();
    m.phaseSequenceLength = std::numeric_limits<qint32>::max();
    m.phaseSequenceIndex = -7;
    m.phaseAngle = 315;
    m.hybridPulseDuration = 1e-38F;
    m.sectionIndex = 3;
    m.sectionCount = 4;
    m.sectionMode = 5;
    m.lensFocalLength = -std::numeric_limits<float>::infinity();
    m.exposureTimeUs = std::numeric_limits<float>::max();
    m.frameRate = 0.1F;
    m.timestampNs = 1'700'000'000'123'456'789; // more than a double holds exactly
    m.frameNumber = std::numeric_limits<quint64>::max();
    m.cameraName = QStringLiteral("camera");
    m.cameraSerial = QStringLiteral("</x> & \\u0041");
    return m;
}

} // namespace

TEST(SkFrameDescription, EveryMemberSurvivesExactly) {
    SkFrameDescription written;
    written.metadata = unusualMetadata();
    written.additionalData.frameNumber = 9'007'199'254'740'993ULL; // 2^53 + 1
    written.additionalData.timestampNs = -5;
    written.info.bitsPerChannel = 12;
    written.info.linePadding = 256;
    written.info.storageFormat = EkDataStorageFormat::Interleaved;
    written.info.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    written.info.layoutFlag = true;

    SkFrameDescription read;
    ASSERT_TRUE(read.fromText(written.toText()));
    EXPECT_TRUE(read.metadata == written.metadata);
    EXPECT_EQ(read.additionalData.frameNumber, 9'007'199'254'740'993ULL);
    EXPECT_EQ(read.additionalData.timestampNs, -5);
    EXPECT_EQ(read.info.bitsPerChannel, 12U);
    EXPECT_EQ(read.info.linePadding, 256U);
    EXPECT_EQ(read.info.storageFormat, EkDataStorageFormat::Interleaved);
    EXPECT_EQ(read.info.colorFilterArray, EkColorFilterArray::RawX3Hybrid);
    EXPECT_TRUE(read.info.layoutFlag);
}

TEST(SkFrameDescription, NotANumberSurvives) {
    SkFrameDescription written;
    written.metadata.frameRate = std::nanf("");
    SkFrameDescription read;
    ASSERT_TRUE(read.fromText(written.toText()));
    EXPECT_TRUE(std::isnan(read.metadata.frameRate));
}

TEST(SkFrameDescription, TheTextIsAsciiAndNamesItsSchema) {
    SkFrameDescription written;
    written.metadata = unusualMetadata();
    const QByteArray text = written.toText();
    for (const char letter : text) {
        ASSERT_GE(letter, ' ');
    }
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    EXPECT_EQ(root["schema"].toString(), QStringLiteral("zutof.frame"));
    EXPECT_EQ(root["schemaVersion"].toInt(), 1);
    EXPECT_EQ(root["metadata"]["phaseAngle"].toInt(), 315);
}

TEST(SkFrameDescription, MembersOfALaterVersionAreKept) {
    const QByteArray later = R"({"schema":"zutof.frame","schemaVersion":2,"weather":{"rain":[1,2]},)"
                             R"("metadata":{"phaseAngle":90,"humidity":0.5},"picture":{"gain":7}})";
    SkFrameDescription read;
    ASSERT_TRUE(read.fromText(later));
    EXPECT_EQ(read.metadata.phaseAngle, 90);
    read.metadata.phaseAngle = 180;
    const QJsonObject again = QJsonDocument::fromJson(read.toText()).object();
    EXPECT_EQ(again["weather"]["rain"][1].toInt(), 2);
    EXPECT_EQ(again["metadata"]["humidity"].toDouble(), 0.5);
    EXPECT_EQ(again["metadata"]["phaseAngle"].toInt(), 180);
    EXPECT_EQ(again["picture"]["gain"].toInt(), 7);
}

TEST(SkFrameDescription, TheRecordingIsDescribedOnDemand) {
    const SkRecordingInfo recording{
        QStringLiteral("<chain a=\"1\"/>"), {{QStringLiteral("zoom"), 2}}, QStringLiteral("test 1.0")};
    SkFrameDescription read;
    ASSERT_TRUE(read.fromText(SkFrameDescription().toText(&recording)));
    EXPECT_EQ(read.recordingInfo().chainXml, recording.chainXml);
    EXPECT_EQ(read.recordingInfo().viewSettings, recording.viewSettings);
    EXPECT_EQ(read.recordingInfo().software, recording.software);
    ASSERT_TRUE(read.fromText(SkFrameDescription().toText()));
    EXPECT_FALSE(read.object.contains(QStringLiteral("recording")));
}

TEST(SkFrameDescription, OtherTextsAreRefusedAndWrongTypesCountAsDefaults) {
    SkFrameDescription read;
    read.metadata.phaseAngle = 45;
    for (const char* text :
         {"", "a picture", "[]", "{}", R"({"schema":"other"})", R"({"schema":"zutof.frame")"}) {
        EXPECT_FALSE(read.fromText(text)) << text;
    }
    EXPECT_EQ(read.metadata.phaseAngle, 45);
    ASSERT_TRUE(read.fromText(
        R"({"schema":"zutof.frame","metadata":{"phaseAngle":"x","sectionCount":-4,)"
        R"("phasesCount":1e300,"channelNames":7,"frameRate":[],"frameNumber":-1},"picture":3})"));
    EXPECT_EQ(read.metadata.phaseAngle, 0);
    EXPECT_EQ(read.metadata.sectionCount, 0U);
    EXPECT_EQ(read.metadata.phasesCount, std::numeric_limits<qint32>::max());
    EXPECT_TRUE(read.metadata.channelNames.isEmpty());
    EXPECT_EQ(read.metadata.frameRate, 0.0F);
    EXPECT_EQ(read.metadata.frameNumber, 0U);
}
