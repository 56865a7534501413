#include "tests/host/recording/recordingFixture.h"
#include "tests/support/TestFrames.h"

#include "host/recording/CkVideoSource.h"
#include "host/recording/SkDepthScale.h"

#include <QDomDocument>
#include <cmath>

namespace {

template <typename Sample>
std::unique_ptr<CkImageData> pictureOf(EkImageDataType dataType, const std::vector<Sample>& samples) {
    return makeFrame<Sample>(dataType, quint32(samples.size()), 2, 1, 8 * quint32(sizeof(Sample)),
                             [&](quint32 x, quint32, quint32) { return samples[x]; });
}

std::vector<float> rowOf(const CkImageData& data, quint32 y) {
    const auto* const row = reinterpret_cast<const float*>(data.picBuf().row(y));
    return {row, row + data.picBuf().width};
}

} // namespace

TEST(SkDepthScale, MillimetresBecomeMetresAndZeroBecomesNothing) {
    const auto frame = pictureOf<quint16>(EkImageDataType::UInt16, {1500, 0, 1, 65535});
    SkDepthScale scale;
    scale.metresPerCount = 0.001;
    const auto depth = scale.scaled(*frame);
    ASSERT_NE(depth, nullptr);
    EXPECT_EQ(depth->picBuf().dataType, EkImageDataType::Float32);
    EXPECT_EQ(depth->picBuf().channels, 1U);
    EXPECT_EQ(depth->metadata().channelNames, QStringList{QStringLiteral("Depth")});
    for (quint32 y = 0; y < 2; ++y) {
        const std::vector<float> row = rowOf(*depth, y);
        EXPECT_EQ(row[0], 1.5F);
        EXPECT_TRUE(std::isnan(row[1]));
        EXPECT_EQ(row[2], 0.001F);
        EXPECT_EQ(row[3], 65.535F);
    }
    EXPECT_EQ(depth->picBuf().minValue, 0.001F);
    EXPECT_EQ(depth->picBuf().maxValue, 65.535F);
    scale.zeroIsInvalid = false;
    EXPECT_EQ(rowOf(*scale.scaled(*frame), 1)[1], 0.0F);
}

TEST(SkDepthScale, EverySampleTypeIsRead) {
    SkDepthScale scale;
    scale.metresPerCount = 0.5;
    EXPECT_EQ(rowOf(*scale.scaled(*pictureOf<qint8>(EkImageDataType::Int8, {-8, 3})), 1),
              (std::vector<float>{-4.0F, 1.5F}));
    EXPECT_EQ(rowOf(*scale.scaled(*pictureOf<quint8>(EkImageDataType::UInt8, {200})), 1),
              (std::vector<float>{100.0F}));
    EXPECT_EQ(rowOf(*scale.scaled(*pictureOf<qint16>(EkImageDataType::Int16, {-3000})), 1),
              (std::vector<float>{-1500.0F}));
    EXPECT_EQ(rowOf(*scale.scaled(*pictureOf<qint32>(EkImageDataType::Int32, {-70000})), 1),
              (std::vector<float>{-35000.0F}));
    EXPECT_EQ(rowOf(*scale.scaled(*pictureOf<quint32>(EkImageDataType::UInt32, {4'000'000'000U})), 1),
              (std::vector<float>{2e9F}));
    EXPECT_EQ(rowOf(*scale.scaled(*pictureOf<float>(EkImageDataType::Float32, {2.25F})), 1),
              (std::vector<float>{1.125F}));
    EXPECT_EQ(rowOf(*scale.scaled(*pictureOf<double>(EkImageDataType::Float64, {-8.5})), 1),
              (std::vector<float>{-4.25F}));
}

TEST(SkDepthScale, PicturesThatAreNoDepthsStayAsTheyAre) {
    SkPicBufInfo info;
    info.channels = 2;
    info.dataType = EkImageDataType::UInt16;
    EXPECT_FALSE(SkDepthScale::fits(info));
    info.channels = 1;
    EXPECT_TRUE(SkDepthScale::fits(info));
    info.dataType = EkImageDataType::Unknown;
    EXPECT_FALSE(SkDepthScale::fits(info));
    EXPECT_EQ(SkDepthScale().scaled(*pictureOf<quint16>(EkImageDataType::UInt16, {7})), nullptr);
}

class CkScaledVideoTest : public RecordingFixture {};

TEST_F(CkScaledVideoTest, TheScaleIsKeptWithTheSource) {
    CkRecordingWriter writer;
    ASSERT_TRUE(writer.open(path("grey.tif"), {}));
    ASSERT_TRUE(writer.write(*picture(0, 6, 4, 1), {}));
    ASSERT_TRUE(writer.close());
    CkVideoSource source;
    ASSERT_TRUE(source.openFile(path("grey.tif"), nullptr));
    source.setDepthScale({0.00025, false});
    SkPicBufInfo info;
    CkImageMetadata metadata;
    ASSERT_TRUE(source.sourceImageInfo(info, &metadata));
    EXPECT_EQ(info.dataType, EkImageDataType::Float32);
    EXPECT_EQ(info.lineSize, 24U);
    EXPECT_EQ(metadata.channelNames, QStringList{QStringLiteral("Depth")});

    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("block"));
    ASSERT_TRUE(source.saveSettings(doc, element));
    CkVideoSource other;
    ASSERT_TRUE(other.loadSettings(element));
    EXPECT_EQ(other.depthScale(), (SkDepthScale{0.00025, false}));
    element.setAttribute(QStringLiteral("metresPerCount"), QStringLiteral("-1"));
    ASSERT_TRUE(other.loadSettings(element));
    EXPECT_FALSE(other.depthScale().isActive());
}
