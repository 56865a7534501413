#include "plugins/zplToF/cloud/CkToFDepthFrame.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "tests/plugins/zplToF/cloud/CloudRig.h"
#include "tests/plugins/zplToF/cloud/DepthFrameChecks.h"
#include "tests/support/TestPicture.h"

#include <gmock/gmock.h>

using testing::FloatEq;

namespace {

CkImageMetadata named(const char* channel) {
    CkImageMetadata metadata;
    metadata.channelNames = {channel, "Confidence"};
    return metadata;
}

/// Two float channels: 1, 2, 3, ... and 0.01, 0.02, ...
void fillTwoChannels(SkPicBuf& picture) {
    for (quint32 y = 0; y < picture.height; y++) {
        for (quint32 x = 0; x < picture.width; x++) {
            const float n = float(y * picture.width + x + 1);
            setSample(picture, x, y, 0, n);
            setSample(picture, x, y, 1, n / 100.0F);
        }
    }
}

} // namespace

TEST(CkToFDepthFrame, StartsWithAnEmptyGenericPicture) {
    expectEmpty(CkToFDepthFrame());
}

TEST(CkToFDepthFrame, SplitsTwoChannelFloatPictures) {
    PaddedPicture input(5, 3, 2, EkImageDataType::Float32);
    fillTwoChannels(*input);
    input->additionalData.frameNumber = 77;
    const std::vector<std::pair<const char*, EkDepthDataType>> kinds = {
        {"Phase shift", EkDepthDataType::PhaseShift},
        {"Depth", EkDepthDataType::Depth},
        {"Height", EkDepthDataType::Generic}};
    CkToFDepthFrame frame;
    for (const auto& [name, kind] : kinds) {
        const CkImageMetadata metadata = named(name);
        ASSERT_TRUE(frame.update(*input, &metadata, 3)) << name;
        EXPECT_EQ(frame.depthDataKind(), kind) << name;
        EXPECT_EQ(frame.depthPic().width, 5U);
        EXPECT_EQ(frame.depthPic().height, 3U);
        EXPECT_EQ(frame.depthPic().channels, 1U);
        EXPECT_EQ(frame.depthPic().dataType, EkImageDataType::Float32);
        EXPECT_EQ(frame.depthPic().bitsPerChannel, 32U);
        EXPECT_EQ(frame.depthPic().additionalData.frameNumber, 77U);
        for (quint32 i = 0; i < 15; i++) {
            EXPECT_EQ(sampleAt<float>(frame.depthPic(), i % 5, i / 5), float(i + 1));
            EXPECT_EQ(sampleAt<float>(frame.confidencePic(), i % 5, i / 5), float(i + 1) / 100.0F);
        }
        EXPECT_EQ(frame.depthPic().minValue, 1.0F);
        EXPECT_EQ(frame.depthPic().maxValue, 15.0F);
        EXPECT_FLOAT_EQ(frame.confidencePic().minValue, 0.01F);
        EXPECT_FLOAT_EQ(frame.confidencePic().maxValue, 0.15F);
        EXPECT_EQ(frame.resolutionRatio(), 1.0F) << "never shrunk";
    }
    ASSERT_TRUE(frame.update(*input, nullptr, 640));
    EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::PhaseShift) << "without metadata a phase shift";
}

TEST(CkToFDepthFrame, MakesPhaseShiftAndConfidenceOfTwoTaps) {
    PaddedPicture input(3, 8, 2, EkImageDataType::UInt8);
    // Pixel (0, 0), four phases 2 rows apart: A - B = 0, 10, 0, -10: a quarter of a turn.
    for (int phase = 0; phase < 4; phase++) {
        setSample<quint8>(*input, 0, quint32(2 * phase), 0, quint8(phase == 1 ? 60 : 50));
        setSample<quint8>(*input, 0, quint32(2 * phase), 1, quint8(phase == 3 ? 60 : 50));
    }
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kRawX2Bits8;
    metadata.phasesCount = 4;
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, &metadata, 640));
    EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::PhaseShift);
    ASSERT_EQ(frame.depthPic().height, 2U);
    EXPECT_NEAR(sampleAt<float>(frame.depthPic(), 0, 0), 1.5707964F, 1e-6F);
    // Amplitude 20 / 4 = 5; the root of 420 / 8 (52), over twice that.
    EXPECT_NEAR(sampleAt<float>(frame.confidencePic(), 0, 0), std::sqrt(52.0F) / 10.0F, 1e-6F);
}

TEST(CkToFDepthFrame, MakesPhaseShiftWithoutConfidenceOfDifferences) {
    PaddedPicture input(2, 4, 1, EkImageDataType::Int16);
    setSample<qint16>(*input, 1, 0, 0, -100);
    setSample<qint16>(*input, 1, 2, 0, -100);
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
    metadata.phasesCount = 2;
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, &metadata, 640));
    EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::PhaseShift);
    EXPECT_EQ(frame.confidencePic().data, nullptr);
    ASSERT_EQ(frame.depthPic().height, 2U);
    EXPECT_NEAR(sampleAt<float>(frame.depthPic(), 1, 0), 5.0F / 4.0F * 3.1415927F, 1e-6F);
    EXPECT_NEAR(frame.depthPic().maxValue, 5.0F / 4.0F * 3.1415927F, 1e-6F);
}

TEST(CkToFDepthFrame, MakesDepthAndConfidenceOfHybridPictures) {
    PaddedPicture input(2, 2, 3, EkImageDataType::UInt16);
    input->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    const std::array<quint16, 3> windows = {100, 60, 20};
    for (quint32 channel = 0; channel < 3; channel++) {
        setSample(*input, 1, 1, channel, windows[channel]);
    }
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, nullptr, 640));
    EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::Depth);
    EXPECT_NEAR(sampleAt<float>(frame.depthPic(), 1, 1), 3.99723F, 1e-5F);
    EXPECT_NEAR(sampleAt<float>(frame.confidencePic(), 1, 1), 0.26667F, 1e-5F);
    // Half the range of 8e-8 s: 11.99169832 m.
    CkImageMetadata metadata;
    metadata.hybridPulseDuration = 4e-8F;
    ASSERT_TRUE(frame.update(*input, &metadata, 640));
    EXPECT_NEAR(sampleAt<float>(frame.depthPic(), 1, 1), 3.99723F / 2.0F, 1e-5F);
}

TEST(CkToFDepthFrame, OneFloatChannelWithACodeOfDifferencesIsPhaseShift) {
    PaddedPicture input(700, 2, 1, EkImageDataType::Float32);
    setSample(*input, 699, 1, 0, 3.0F);
    CkToFDepthFrame frame;
    for (quint32 code : {0x80a05f08U, 0x80a05f0cU, 0x84a05f0cU}) {
        CkImageMetadata metadata;
        metadata.tofFormatCode = code;
        ASSERT_TRUE(frame.update(*input, &metadata, 640));
        EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::PhaseShift) << code;
        EXPECT_EQ(frame.confidencePic().data, nullptr);
        EXPECT_EQ(frame.depthPic().width, 700U) << "phases are never averaged";
        EXPECT_EQ(sampleAt<float>(frame.depthPic(), 699, 1), 3.0F);
        EXPECT_EQ(frame.depthPic().maxValue, 3.0F);
    }
    CkImageMetadata other = named("Phase shift");
    other.tofFormatCode = 0x84a05f08U;
    ASSERT_TRUE(frame.update(*input, &other, 640));
    EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::Generic);
    EXPECT_EQ(frame.depthPic().width, 640U);
}

TEST(CkToFDepthFrame, OtherPicturesBecomeGreyPicturesOfTheirOwnType) {
    CkToFDepthFrame frame;
    PaddedPicture grey(4, 2, 1, EkImageDataType::UInt16, 12);
    setSample<quint16>(*grey, 3, 1, 0, 4000);
    ASSERT_TRUE(frame.update(*grey, nullptr, 640));
    EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::Generic);
    EXPECT_EQ(frame.depthPic().dataType, EkImageDataType::UInt16);
    EXPECT_EQ(frame.depthPic().bitsPerChannel, 12U);
    EXPECT_EQ(sampleAt<quint16>(frame.depthPic(), 3, 1), 4000);
    EXPECT_EQ(frame.confidencePic().data, nullptr);

    PaddedPicture colour(3, 1, 3, EkImageDataType::UInt8);
    for (quint32 channel = 0; channel < 3; channel++) {
        setSample<quint8>(*colour, 2, 0, channel, std::array<quint8, 3>{10, 100, 200}[channel]);
    }
    ASSERT_TRUE(frame.update(*colour, nullptr, 640));
    EXPECT_EQ(frame.depthPic().channels, 1U);
    // 0.299 * 200 + 0.587 * 100 + 0.114 * 10 = 119.64
    EXPECT_EQ(sampleAt<quint8>(frame.depthPic(), 2, 0), 120);
}

TEST(CkToFDepthFrame, WideGenericPicturesAreShrunk) {
    CkToFDepthFrame frame;
    PaddedPicture wide(1280, 10, 1, EkImageDataType::UInt8);
    for (quint32 x = 0; x < 1280; x++) {
        for (quint32 y = 0; y < 10; y++) {
            setSample<quint8>(*wide, x, y, 0, quint8(x / 2 % 200));
        }
    }
    ASSERT_TRUE(frame.update(*wide, nullptr, 640));
    EXPECT_EQ(frame.depthPic().width, 640U);
    EXPECT_EQ(frame.depthPic().height, 5U);
    EXPECT_EQ(frame.resolutionRatio(), 2.0F);
    EXPECT_EQ(sampleAt<quint8>(frame.depthPic(), 150, 4), 150);

    ASSERT_TRUE(frame.update(*wide, nullptr, 1280));
    EXPECT_EQ(frame.resolutionRatio(), 1.0F);
    ASSERT_TRUE(frame.update(*wide, nullptr, 1000));
    EXPECT_EQ(frame.depthPic().height, 7U) << "10 * 1000 / 1280 = 7.8";
    EXPECT_FLOAT_EQ(frame.resolutionRatio(), 1.28F);
    ASSERT_TRUE(frame.update(*wide, nullptr, 64));
    EXPECT_EQ(frame.depthPic().height, 1U) << "a picture keeps a row";

    for (int width : {1, 0, -5}) {
        ASSERT_TRUE(frame.update(*wide, nullptr, width));
        EXPECT_EQ(frame.depthPic().width, 1U) << "and a column";
        EXPECT_EQ(frame.resolutionRatio(), 1280.0F);
    }

    PaddedPicture colour(1000, 4, 3, EkImageDataType::UInt16);
    ASSERT_TRUE(frame.update(*colour, nullptr, 500));
    EXPECT_EQ(frame.depthPic().width, 500U);
    EXPECT_EQ(frame.depthPic().height, 2U);
    EXPECT_EQ(frame.depthPic().channels, 1U);

    PaddedPicture floats(1280, 2, 1, EkImageDataType::Float32);
    setSample(*floats, 0, 0, 0, 8.0F);
    ASSERT_TRUE(frame.update(*floats, nullptr, 640));
    EXPECT_EQ(frame.depthPic().maxValue, 2.0F) << "the mean of four pixels";
    EXPECT_EQ(frame.depthPic().minValue, 0.0F);
}

TEST(CkToFDepthFrame, EveryPhaseCountThatIsComputedGivesPhases) {
    for (qint32 phases : {1, 2, 4, 8}) {
        PaddedPicture input(1, quint32(phases), 1, EkImageDataType::Int16);
        // The differences have their maximum at the angle opposite to the first nominal one.
        for (quint32 y = 0; y < quint32(phases); y++) {
            setSample<qint16>(*input, 0, y, 0, qint16(-100));
        }
        setSample<qint16>(*input, 0, quint32(phases) / 2, 0, qint16(100));
        CkImageMetadata metadata;
        metadata.tofFormatCode = 0x80a05f0cU;
        metadata.phasesCount = phases;
        CkToFDepthFrame frame;
        ASSERT_TRUE(frame.update(*input, &metadata, 640));
        EXPECT_EQ(frame.depthDataKind(), EkDepthDataType::PhaseShift) << phases;
        PaddedPicture expected(1, 1, 1, EkImageDataType::Float32);
        ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(*input, *expected, phases, nullptr));
        EXPECT_NE(expected.at<float>(0, 0), 0.0F) << phases;
        EXPECT_EQ(sampleAt<float>(frame.depthPic(), 0, 0), expected.at<float>(0, 0)) << phases;
    }
}

TEST(CkToFDepthFrame, SharedPicturesOutliveUpdatesAndTheFrame) {
    SkPicBuf shared;
    {
        CkToFDepthFrame frame;
        TestPicture input(4, 2, 2, EkImageDataType::Float32);
        fillTwoChannels(*input);
        ASSERT_TRUE(frame.update(*input, nullptr, 640));
        ASSERT_TRUE(CkPicBufAPI::SharePicBuf(frame.depthPic(), shared));
        std::memset(input->data, 0, size_t(input->lineSize) * 2);
        for (int i = 0; i < 5; i++) {
            ASSERT_TRUE(frame.update(*input, nullptr, 640));
        }
        EXPECT_NE(frame.depthPic().data, shared.data);
    }
    EXPECT_EQ(sampleAt<float>(shared, 3, 1), 8.0F);
    EXPECT_EQ(shared.maxValue, 8.0F);
    CkPicBufAPI::FreePicBuf(shared);
}

TEST(CkToFDepthFrame, ManyHoldersDoNotStopIt) {
    CkToFDepthFrame frame;
    TestPicture input(4, 2, 2, EkImageDataType::Float32);
    std::array<SkPicBuf, 6> held;
    for (size_t i = 0; i < held.size(); i++) {
        input.set<float>(0, 0, 0, float(i));
        ASSERT_TRUE(frame.update(*input, nullptr, 640));
        ASSERT_TRUE(CkPicBufAPI::SharePicBuf(frame.depthPic(), held[i]));
    }
    for (size_t i = 0; i < held.size(); i++) {
        EXPECT_EQ(sampleAt<float>(held[i], 0, 0), float(i));
        CkPicBufAPI::FreePicBuf(held[i]);
    }
}

TEST(CkToFDepthFrame, MovesWithItsPictures) {
    CkToFDepthFrame frame;
    TestPicture input(4, 2, 2, EkImageDataType::Float32);
    fillTwoChannels(*input);
    ASSERT_TRUE(frame.update(*input, nullptr, 640));
    CkToFDepthFrame moved = std::move(frame);
    expectEmpty(frame); // NOLINT: empty is what a moved frame is
    EXPECT_EQ(sampleAt<float>(moved.depthPic(), 0, 0), 1.0F);
    CkToFDepthFrame assigned;
    ASSERT_TRUE(assigned.update(*input, nullptr, 640));
    assigned = std::move(moved);
    EXPECT_EQ(sampleAt<float>(assigned.confidencePic(), 3, 1), 0.08F);
    ASSERT_TRUE(frame.update(*input, nullptr, 640)) << "a moved frame can be used again";
    assigned.clear();
    expectEmpty(assigned);
}

TEST(CkToFDepthFrame, AgreesWithTheProcessingFunctions) {
    TestPicture input(33, 20, 2, EkImageDataType::UInt16, 12);
    for (quint32 y = 0; y < 20; y++) {
        for (quint32 x = 0; x < 66; x++) {
            reinterpret_cast<quint16*>(input->row(y))[x] =
                quint16((x * 2654435761U + y * 40503U) >> 7 & 4095);
        }
    }
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
    metadata.phasesCount = 4;
    TestPicture expected(33, 5, 2, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*input, *expected, 4));
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, &metadata, 640));
    for (quint32 y = 0; y < 5; y++) {
        for (quint32 x = 0; x < 33; x++) {
            ASSERT_EQ(sampleAt<float>(frame.depthPic(), x, y), expected.at<float>(x, y, 0));
            ASSERT_EQ(sampleAt<float>(frame.confidencePic(), x, y), expected.at<float>(x, y, 1));
        }
    }
}
