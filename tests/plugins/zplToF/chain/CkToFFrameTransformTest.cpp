// Frames that hold all their phases.

#include "tests/plugins/zplToF/chain/ToFChainRig.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkMemoryPool.h"

#include <gtest/gtest.h>

namespace {

/// Rows of phase p hold A = first[p], B = 100.
std::unique_ptr<CkImageData> stacked(const ToFChainRig& rig, std::vector<int> first) {
    const quint32 rows = rig.source->info.height / quint32(first.size());
    return rig.frame([=](quint32, quint32 y, quint32 c) { return c == 0 ? first[y / rows] : 100; });
}

TEST(StackedFrame, DepthOfFourPhases) {
    ToFChainRig rig;
    rig.useAandB(5, 8, 4);
    rig.start(CkToFProcessCnbl::Depth);
    auto frame = stacked(rig, {100, 200, 100, 100});
    frame->picBuf().additionalData = {77, 88};
    const ToFResult result = rig.process(std::move(frame));
    ASSERT_FALSE(result.empty());
    const SkPicBuf& picture = result.picture();
    EXPECT_EQ(picture.width, 5U);
    EXPECT_EQ(picture.height, 2U);
    EXPECT_EQ(picture.channels, 2U);
    EXPECT_EQ(picture.lineSize, 256U);
    EXPECT_EQ(picture.dataType, EkImageDataType::Float32);
    EXPECT_EQ(picture.additionalData.frameNumber, 77U);
    EXPECT_EQ(picture.additionalData.timestampNs, 88);
    EXPECT_EQ(result.output->metadata().channelNames, (QStringList{"Phase shift", "Confidence"}));
    EXPECT_EQ(result.output->metadata().phasesCount, 0);
    // x = 0, y = 100: pi / 2; amplitude 25; confidence sqrt(900 >> 3) / (2 * 25).
    EXPECT_FLOAT_EQ(sampleAt<float>(picture, 4, 1, 0), 1.57079633F);
    EXPECT_FLOAT_EQ(sampleAt<float>(picture, 4, 1, 1), std::sqrt(112.0F) / 50.0F);
    EXPECT_FLOAT_EQ(picture.minValue, std::sqrt(112.0F) / 50.0F);
    EXPECT_FLOAT_EQ(picture.maxValue, 1.57079633F);
}

TEST(StackedFrame, AFrameAloneIsProcessedWithoutAnAngleList) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Depth);
    auto frame = stacked(rig, {100, 200});
    CkImageMetadata metadata = frame->metadata();
    metadata.phaseAngle = 90; // of the whole frame, not of the phases inside
    frame->setMetadata(metadata);
    const ToFResult result = rig.process(std::move(frame));
    ASSERT_FALSE(result.empty());
    EXPECT_FLOAT_EQ(sampleAt<float>(result.picture(), 0, 0, 0), 1.57079633F);
}

TEST(StackedFrame, DepthOfDifferencesHasOneChannel) {
    ToFChainRig rig;
    rig.useAminusB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Depth);
    const ToFResult result =
        rig.process(rig.frame([](quint32, quint32 y, quint32) { return y < 2 ? -50 : 0; }));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(result.picture().channels, 1U);
    EXPECT_TRUE(result.output->metadata().channelNames.isEmpty());
    EXPECT_FLOAT_EQ(sampleAt<float>(result.picture(), 3, 1), 3.14159265F);
}

TEST(StackedFrame, IntensityAndAmplitude) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Intensity);
    ToFResult result = rig.process(stacked(rig, {160, 180}));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{135, 135}));
    rig.stop();
    rig.start(CkToFProcessCnbl::Amplitude);
    result = rig.process(stacked(rig, {160, 180}));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{50, 50}));
}

TEST(StackedFrame, AmplitudeOfDifferences) {
    ToFChainRig rig;
    rig.useAminusB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Amplitude);
    const ToFResult result =
        rig.process(rig.frame([](quint32, quint32 y, quint32) { return y < 2 ? -60 : 80; }));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{50, 50}));
}

TEST(StackedFrame, ConcatPhasesReturnsTheVerySameObject) {
    ToFChainRig rig;
    rig.useAandB(4, 8, 4);
    rig.start(CkToFProcessCnbl::ConcatPhases);
    auto frame = rig.frame(7);
    const CkImageData* const address = frame.get();
    const CkImageMetadata metadata = frame->metadata();
    const ToFResult result = rig.process(std::move(frame));
    EXPECT_TRUE(result.passedThrough);
    EXPECT_EQ(result.output.get(), address);
    EXPECT_EQ(result.output->metadata(), metadata);
}

TEST(StackedFrame, AandBtoAminBKeepsAllPhases) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::AandBtoAminB);
    const ToFResult result = rig.process(stacked(rig, {160, 30}));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{60, 60, -70, -70}));
    EXPECT_EQ(result.picture().colorFilterArray, EkColorFilterArray::RawAminusB);
    EXPECT_EQ(result.output->metadata().tofFormatCode, ToFFormatCode::kAminusBBits12);
    EXPECT_EQ(result.output->metadata().phasesCount, 2);
}

TEST(StackedFrame, SetABPhaseKeepsEveryByteOfTheRows) {
    ToFChainRig rig;
    rig.source->setFormat(6, 4, 1, EkImageDataType::UInt16, 12);
    rig.start(CkToFProcessCnbl::SetABPhase);
    const ToFResult result =
        rig.process(rig.frame([](quint32 x, quint32 y, quint32) { return int(1000 * y + x); }));
    ASSERT_FALSE(result.empty());
    const SkPicBuf& picture = result.picture();
    EXPECT_EQ(picture.width, 3U);
    EXPECT_EQ(picture.channels, 2U);
    EXPECT_EQ(picture.colorFilterArray, EkColorFilterArray::RawX2AandB);
    for (quint32 y = 0; y < 4; ++y) {
        for (quint32 x = 0; x < 3; ++x) {
            EXPECT_EQ(valueAt(picture, x, y, 0), int(1000 * y + 2 * x));
            EXPECT_EQ(valueAt(picture, x, y, 1), int(1000 * y + 2 * x + 1));
        }
    }
}

TEST(StackedFrame, SetHybridStacksTheWindowsOfAPlainPicture) {
    ToFChainRig rig;
    rig.source->setFormat(832, 1800, 1, EkImageDataType::UInt16, 16);
    rig.start(CkToFProcessCnbl::SetHybrid);
    const ToFResult result = rig.process(rig.frame([](quint32 x, quint32 y, quint32) {
        return int((y / 600 + 1) * 0x1000 + (x + y % 600) % 256 * 16);
    }));
    ASSERT_FALSE(result.empty());
    const SkPicBuf& picture = result.picture();
    EXPECT_EQ(picture.width, 832U);
    EXPECT_EQ(picture.height, 600U);
    EXPECT_EQ(picture.channels, 3U);
    EXPECT_EQ(picture.bitsPerChannel, 12U);
    EXPECT_EQ(picture.lineSize, 5120U);
    // X1 is the lowest sub-image; 16 bits become 12.
    for (quint32 c = 0; c < 3; ++c) {
        EXPECT_EQ(valueAt(picture, 831, 599, c), int((3 - c) * 0x100 + (831 + 599) % 256));
    }
    EXPECT_EQ(result.output->metadata().channelNames, (QStringList{"X1", "X2", "X3"}));
}

TEST(StackedFrame, SetHybridKeepsThreeChannels) {
    ToFChainRig rig;
    rig.source->setFormat(6, 4, 3, EkImageDataType::UInt8, 8);
    rig.start(CkToFProcessCnbl::SetHybrid);
    const ToFResult result =
        rig.process(rig.frame([](quint32 x, quint32 y, quint32 c) { return int(40 * y + 3 * x + c); }));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(result.picture().colorFilterArray, EkColorFilterArray::RawX3Hybrid);
    EXPECT_EQ(valueAt(result.picture(), 5, 3, 2), 137);
}

TEST(StackedFrame, TransformsOutsideTheListYieldNothing) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    for (int transform : {-1, 7, 1000}) {
        rig.start(transform);
        EXPECT_TRUE(rig.process(rig.frame(5)).empty());
        EXPECT_EQ(rig.block->errorMessage(), ToFTexts::unknownTransform);
        rig.stop();
    }
}

TEST(StackedFrame, AnUnsupportedPhasesCountGivesAZeroPicture) {
    ToFChainRig rig;
    rig.useAandB(4, 6, 2);
    for (int transform :
         {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth}) {
        rig.source->metadata.phasesCount = 2;
        rig.start(transform);
        EXPECT_FALSE(rig.process(stacked(rig, {160, 180})).empty());
        auto frame = rig.frame([](quint32, quint32, quint32 c) { return c == 0 ? 300 : 100; });
        // Three phases of 3 rows: as many rows come out as from two phases of 3.
        SkPicBuf taller;
        ASSERT_TRUE(
            CkPicBufAPI::AllocPicBufFromHeap(taller, SkPicBufInfo::of(4, 9, 2, EkImageDataType::UInt16, 12)));
        std::memset(taller.data, 0x11, size_t(taller.lineSize) * taller.height);
        frame->setPicBuf(taller);
        CkImageMetadata metadata = frame->metadata();
        metadata.phasesCount = 3;
        frame->setMetadata(metadata);
        const ToFResult result = rig.process(std::move(frame));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{0, 0, 0}));
        rig.stop();
    }
}

TEST(StackedFrame, AnExhaustedPoolDropsTheFrameSilently) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Amplitude);
    std::vector<ToFResult> held;
    ToFResult last = rig.process(stacked(rig, {160, 180}));
    while (!last.empty() && held.size() < 1000) {
        held.push_back(std::move(last));
        last = rig.process(stacked(rig, {160, 180}));
    }
    EXPECT_GE(held.size(), 1U);
    EXPECT_LT(held.size(), 1000U) << "the pool has no bound";
    EXPECT_TRUE(rig.block->errorMessage().isEmpty());
    held.pop_back();
    EXPECT_FALSE(rig.process(stacked(rig, {160, 180})).empty()) << "a picture has come back";
}

TEST(StackedFrame, AComputationThatFailsGivesItsPictureBack) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.source->info.dataType = EkImageDataType::Other16; // two taps, but of an unsupported type
    rig.start(CkToFProcessCnbl::Depth);
    CkMemoryPool* const pool = rig.block->memoryPool();
    const int pictures = pool->freeCount(rig.block);
    ASSERT_GT(pictures, 0);
    for (int i = 0; i < 2 * pictures; ++i) {
        EXPECT_TRUE(rig.process(rig.frame(5)).empty());
        EXPECT_EQ(rig.block->errorMessage(), ToFTexts::notSupported);
        EXPECT_EQ(pool->freeCount(rig.block), pictures);
    }
}

} // namespace
