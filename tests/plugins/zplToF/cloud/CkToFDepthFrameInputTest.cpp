// Input without usable samples.

#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "tests/plugins/zplToF/cloud/CloudRig.h"
#include "tests/plugins/zplToF/cloud/DepthFrameChecks.h"
#include "tests/support/TestPicture.h"

TEST(CkToFDepthFrame, UnsupportedSampleTypesGiveAPictureThatDrawsNothing) {
    CkToFDepthFrame frame;
    for (auto type : {EkImageDataType::Float64, EkImageDataType::Int64, EkImageDataType::Other16}) {
        PaddedPicture input(1000, 3, 1, type);
        ASSERT_TRUE(frame.update(*input, nullptr, 640)) << int(type);
        EXPECT_EQ(frame.depthPic().dataType, type);
        EXPECT_EQ(frame.depthPic().width, 640U);
        CkToFCloudBuilder builder;
        ASSERT_TRUE(builder.build(frame.pictures(), testParameters()));
        EXPECT_EQ(builder.pointCount(), 0);
    }
}

TEST(CkToFDepthFrame, ValuesThatAreNoNumbersStayOutOfTheRange) {
    PaddedPicture input(4, 1, 2, EkImageDataType::Float32);
    const std::array<float, 4> depths = {NotANumber, 2.0F, -Infinite, 5.0F};
    for (quint32 x = 0; x < 4; x++) {
        setSample(*input, x, 0, 0, depths[x]);
        setSample(*input, x, 0, 1, x == 3 ? Infinite : 0.25F);
    }
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, nullptr, 640));
    EXPECT_EQ(frame.depthPic().minValue, 2.0F);
    EXPECT_EQ(frame.depthPic().maxValue, 5.0F);
    EXPECT_EQ(frame.confidencePic().maxValue, 0.25F);
}

TEST(CkToFDepthFrame, APictureWithoutDataChangesNothing) {
    CkToFDepthFrame frame;
    TestPicture input(4, 4, 1, EkImageDataType::UInt8);
    ASSERT_TRUE(frame.update(*input, nullptr, 640));
    const quint8* data = frame.depthPic().data;
    SkPicBuf none = *input;
    none.data = nullptr;
    EXPECT_FALSE(frame.update(none, nullptr, 640));
    EXPECT_EQ(frame.depthPic().data, data);
    EXPECT_EQ(frame.depthPic().width, 4U);
}

TEST(CkToFDepthFrame, RefusesBadInputAndGoesOn) {
    CkToFDepthFrame frame;
    TestPicture good(4, 4, 1, EkImageDataType::UInt8);
    const auto refused = [&](const SkPicBuf& picture, const CkImageMetadata* metadata, const char* what) {
        SCOPED_TRACE(what);
        ASSERT_TRUE(frame.update(*good, nullptr, 640));
        EXPECT_FALSE(frame.update(picture, metadata, 640));
        expectEmpty(frame);
        CkToFCloudBuilder builder;
        EXPECT_FALSE(builder.build(frame.pictures(), testParameters()));
    };

    TestPicture taps(4, 4, 2, EkImageDataType::UInt8);
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kRawX2Bits8;
    metadata.phasesCount = 5;
    refused(*taps, &metadata, "more phases than rows");
    metadata.phasesCount = std::numeric_limits<qint32>::max();
    refused(*taps, &metadata, "phases without end");
    TestPicture strange(4, 4, 2, EkImageDataType::Other16);
    metadata.phasesCount = 4;
    refused(*strange, &metadata, "two taps of a type that nothing processes");

    TestPicture differences(4, 4, 1, EkImageDataType::Int16);
    metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
    metadata.phasesCount = 8;
    refused(*differences, &metadata, "more differences than rows");

    SkPicBuf shortRows = *good;
    shortRows.lineSize = 3;
    refused(shortRows, nullptr, "rows shorter than their pixels");
    SkPicBuf noRows = *good;
    noRows.height = 0;
    refused(noRows, nullptr, "no rows");
}

TEST(CkToFDepthFrame, APhaseCountThatNothingComputesGivesZeros) {
    CkToFDepthFrame frame;
    TestPicture taps(4, 6, 2, EkImageDataType::UInt8);
    std::memset(taps->data, 0x5a, size_t(taps->lineSize) * 6);
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kRawX2Bits8;
    // Pixels of earlier pictures must not show up.
    metadata.phasesCount = 2;
    ASSERT_TRUE(frame.update(*taps, &metadata, 640));
    metadata.phasesCount = 3;
    if (frame.update(*taps, &metadata, 640)) {
        EXPECT_EQ(frame.depthPic().height, 2U);
        EXPECT_EQ(frame.depthPic().maxValue, 0.0F);
        EXPECT_EQ(frame.confidencePic().maxValue, 0.0F);
    } else {
        expectEmpty(frame);
    }
}
