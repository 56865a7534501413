#include "tests/plugins/zplToF/chain/ToFChainRig.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

namespace {

/// The same three windows in every pixel.
ToFChainRig::Samples windows(int x1, int x2, int x3) {
    return [=](quint32, quint32, quint32 c) { return c == 0 ? x1 : c == 1 ? x2 : x3; };
}

TEST(HybridFrame, IntensityAmplitudeAndDepthOfOneSection) {
    ToFChainRig rig;
    rig.useHybrid(4, 3, 1);
    rig.start(CkToFProcessCnbl::Intensity);
    ToFResult result = rig.process(rig.frame(windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{20, 20, 20}));
    rig.stop();
    rig.start(CkToFProcessCnbl::Amplitude);
    result = rig.process(rig.frame(windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{120, 120, 120})); // 60 + 100 - 2 * 20
    rig.stop();
    rig.start(CkToFProcessCnbl::Depth);
    result = rig.process(rig.frame(windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(result.output->metadata().channelNames, (QStringList{"Depth", "Confidence"}));
    // (60 - 20) * 11.99169832 / 120 m; 160 * 20 / (2 * 100 * 60).
    EXPECT_NEAR(sampleAt<float>(result.picture(), 3, 2, 0), 3.99723277, 1e-6);
    EXPECT_NEAR(sampleAt<float>(result.picture(), 3, 2, 1), 0.26666667, 1e-7);
}

TEST(HybridFrame, ThePulseDurationOfTheFrameSetsTheRange) {
    ToFChainRig rig;
    rig.useHybrid(4, 3, 1);
    rig.start(CkToFProcessCnbl::Depth);
    auto frame = rig.frame(windows(100, 60, 20));
    CkImageMetadata metadata = frame->metadata();
    metadata.hybridPulseDuration = 4e-8F;
    frame->setMetadata(metadata);
    const ToFResult result = rig.process(std::move(frame));
    ASSERT_FALSE(result.empty());
    EXPECT_NEAR(sampleAt<float>(result.picture(), 0, 0, 0), 40.0 * (4e-8 * 299792458.0 * 0.5) / 120.0, 1e-5);
}

/// Sections of 2 rows; by default section s holds 1000 * (s + 1).
ToFChainRig::Samples sections(std::vector<int> values) {
    return [=](quint32, quint32 y, quint32) { return values[y / 2]; };
}

TEST(HybridFrame, StackedSectionsAreMergedBeforeTheTransform) {
    ToFChainRig rig;
    rig.useHybrid(4, 6, 3);
    rig.start(CkToFProcessCnbl::Intensity);
    // 12 bits: saturated from 3685 on. Section 2 is, section 1 is not: its samples count twice.
    ToFResult result = rig.process(rig.frame(sections({500, 1000, 4000})));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(result.picture().height, 2U);
    // 2000 needs 11 bits; the 16-bit result has 12 bits in use: nothing is shifted.
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{2000, 2000}));
    rig.stop();
    rig.start(CkToFProcessCnbl::ConcatPhases);
    result = rig.process(rig.frame(sections({500, 1000, 4000})));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(result.picture().bitsPerChannel, 16U);
    EXPECT_EQ(result.picture().channels, 3U);
    // 11 bits in use are scaled to 16.
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{2000 << 5, 2000 << 5}));
    EXPECT_EQ(result.output->metadata().phasesCount, 0);
}

TEST(HybridFrame, OneDarkFrameDoesNotFreezeTheBitsOfTheMerge) {
    ToFChainRig rig;
    rig.useHybrid(4, 6, 3);
    rig.start(CkToFProcessCnbl::ConcatPhases);
    for (int i = 0; i < 2; ++i) {
        ToFResult result = rig.process(rig.frame(sections({1, 1, 1})));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{1 << 15, 1 << 15})) << "1 bit in use";
        result = rig.process(rig.frame(0));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{0, 0}));
        result = rig.process(rig.frame(sections({500, 1000, 4000})));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{2000 << 5, 2000 << 5}));
    }
}

TEST(HybridFrame, MergedValuesBeyond16BitsAreShiftedDown) {
    ToFChainRig rig;
    rig.useHybrid(4, 6, 3);
    rig.source->info.bitsPerChannel = 16;
    rig.start(CkToFProcessCnbl::ConcatPhases);
    // Saturated from 58981 on. Section 0 counts four times: 60000 * 4 = 240000 needs 18 bits.
    const ToFResult result = rig.process(rig.frame(sections({60000, 60000, 60000})));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{60000, 60000}));
}

TEST(HybridFrame, ConcatPhasesOfOneSectionYieldsNothing) {
    ToFChainRig rig;
    rig.useHybrid(4, 3, 1);
    rig.start(CkToFProcessCnbl::ConcatPhases);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::nothingToMerge);
}

/// Of merged windows (400, 240, 80): 80, 240 + 400 - 2 * 80, and the depth of any multiple of (100, 60, 20).
void expectMerged(const SkPicBuf& picture, int transform) {
    if (transform == CkToFProcessCnbl::Depth) {
        for (quint32 y = 0; y < picture.height; ++y) {
            EXPECT_NEAR(sampleAt<float>(picture, 3, y, 0), 3.99723277, 1e-6);
            EXPECT_NEAR(sampleAt<float>(picture, 3, y, 1), 0.26666667, 1e-7);
        }
    } else {
        const int expected = transform == CkToFProcessCnbl::Intensity ? 80 : 480;
        EXPECT_EQ(rowValues(picture), std::vector<int>(picture.height, expected));
    }
}

/// Section 0 is another scene, section 1 counts twice, section 2 is saturated.
ToFChainRig::Samples exposed(quint32 section) {
    return section == 0 ? windows(20, 100, 60) : section == 1 ? windows(200, 120, 40) : windows(4000, 1, 1);
}

TEST(HybridFrame, EveryTransformOfStackedSectionsWorksOnTheMergedOnes) {
    for (int transform :
         {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth}) {
        ToFChainRig rig;
        rig.useHybrid(4, 6, 3);
        rig.start(transform);
        const ToFResult result =
            rig.process(rig.frame([](quint32 x, quint32 y, quint32 c) { return exposed(y / 2)(x, y, c); }));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(result.picture().height, 2U);
        expectMerged(result.picture(), transform);
    }
}

TEST(HybridFrame, EveryTransformOfGatheredSectionsWorksOnTheMergedOnes) {
    for (int transform :
         {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth}) {
        ToFChainRig rig;
        rig.useHybrid(4, 6, 3); // the output has a third of the rows
        rig.source->metadata.sectionCount = 3;
        rig.start(transform);
        EXPECT_TRUE(rig.process(rig.section(0, exposed(0))).empty());
        EXPECT_TRUE(rig.process(rig.section(1, exposed(1))).empty());
        const ToFResult result = rig.process(rig.section(2, exposed(2)));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(result.picture().height, 2U);
        expectMerged(result.picture(), transform);
        EXPECT_EQ(rig.block->errorMessage(), QString());
    }
}

TEST(HybridFrame, TallerThanItsOutputWithoutAWorkBufferIsComputedAsItIs) {
    // 1800 rows count as three sections although the metadata do not say so, hence no work buffer.
    ToFChainRig rig;
    rig.useHybrid(4, 1800, 0);
    rig.start(CkToFProcessCnbl::Intensity);
    const ToFResult result = rig.process(
        rig.frame([](quint32, quint32 y, quint32 c) { return int(c == 1 ? 9 : 100 + y / 600 * 100 + c); }));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), std::vector<int>(600, 100)) << "the first rows of the frame";
}

TEST(HybridFrame, SeparateSectionsAreGatheredAndMerged) {
    ToFChainRig rig;
    rig.useHybrid(4, 2, 3);
    rig.source->metadata.sectionCount = 3;
    rig.start(CkToFProcessCnbl::ConcatPhases);
    for (int set = 0; set < 2; ++set) {
        EXPECT_TRUE(rig.process(rig.section(0, windows(500, 500, 500))).empty());
        EXPECT_TRUE(rig.process(rig.section(1, windows(1000, 1000, 1000))).empty());
        const ToFResult result = rig.process(rig.section(2, windows(4000, 4000, 4000)));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(result.picture().height, 2U);
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{2000 << 5, 2000 << 5}));
    }
}

TEST(HybridFrame, RelabellingWorksOnEachSectionWhileASetIsGathered) {
    ToFChainRig rig;
    rig.useHybrid(4, 2, 3);
    rig.source->metadata.sectionCount = 3;
    rig.start(CkToFProcessCnbl::SetHybrid);
    for (quint32 index : {0U, 1U, 7U, 2U}) {
        const int value = 10 + int(index);
        const ToFResult result = rig.process(rig.section(index, windows(value, value, value)));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{value, value}));
    }
}

TEST(HybridFrame, SeparateSectionsWithoutAMatchingWorkBufferAreComputedFromTheLastImage) {
    ToFChainRig rig;
    rig.useHybrid(4, 2, 1);
    rig.source->metadata.sectionCount = 2;
    rig.start(CkToFProcessCnbl::Amplitude);
    EXPECT_TRUE(rig.process(rig.section(0, windows(500, 500, 500))).empty());
    const ToFResult result = rig.process(rig.section(1, windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{120, 120}));
}

class ReferenceSection : public testing::Test {
protected:
    ReferenceSection() {
        rig.useHybrid(4, 2, 1);
        rig.source->metadata.sectionMode = 3;
        rig.source->metadata.sectionCount = 2;
    }
    ToFChainRig rig;
};

TEST_F(ReferenceSection, YieldsNothingAndIsSubtractedFromThoseThatFollow) {
    rig.start(CkToFProcessCnbl::Amplitude);
    // The reference starts at zero.
    ToFResult result = rig.process(rig.section(1, windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{120, 120}));
    EXPECT_TRUE(rig.process(rig.section(0, windows(10, 30, 25))).empty());
    result = rig.process(rig.section(1, windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{120, 120})); // 90, 30, 0: 30 + 90 - 2 * 0
    EXPECT_TRUE(rig.process(rig.section(0, windows(50, 0, 5))).empty()) << "the new reference";
    result = rig.process(rig.section(1, windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{80, 80})); // 50, 60, 15: 60 + 50 - 2 * 15
}

TEST_F(ReferenceSection, YieldsNothingWhateverTheTransform) {
    for (int transform = 0; transform < 8; ++transform) {
        rig.start(transform);
        EXPECT_TRUE(rig.process(rig.section(0, windows(10, 30, 25))).empty()) << transform;
        rig.stop();
    }
}

TEST_F(ReferenceSection, WithoutItsBuffersNothingComesOut) {
    rig.source->metadata.sectionCount = 1;
    rig.source->metadata.sectionMode = 0; // at set-up
    rig.start(CkToFProcessCnbl::Amplitude);
    rig.source->metadata.sectionMode = 3;
    EXPECT_TRUE(rig.process(rig.section(0, windows(10, 30, 25))).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noReference);
    EXPECT_TRUE(rig.process(rig.section(1, windows(100, 60, 20))).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noReference);
    rig.source->metadata.sectionMode = 0;
    EXPECT_FALSE(rig.process(rig.section(1, windows(100, 60, 20))).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST_F(ReferenceSection, OnlyMode3HasOne) {
    for (const quint32 mode : {1U, 2U, 4U, 5U, 0xffffffffU}) {
        rig.source->metadata.sectionMode = mode;
        rig.source->metadata.sectionCount = 1;
        rig.start(CkToFProcessCnbl::Amplitude);
        const ToFResult result = rig.process(rig.section(0, windows(100, 60, 20)));
        ASSERT_FALSE(result.empty()) << mode;
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{120, 120}));
        rig.stop();
    }
}

TEST_F(ReferenceSection, OfAnotherSizeIsPassedOver) {
    rig.start(CkToFProcessCnbl::Amplitude);
    rig.useHybrid(4, 3, 1);
    rig.source->metadata.sectionMode = 3;
    EXPECT_TRUE(rig.process(rig.section(0, windows(90, 90, 90))).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::referenceDiffers);
    EXPECT_TRUE(rig.process(rig.section(1, windows(90, 90, 90))).empty());
    EXPECT_EQ(rig.block->errorMessage(), ToFTexts::referenceDiffers);
    rig.useHybrid(4, 2, 1);
    rig.source->metadata.sectionMode = 3;
    const ToFResult result = rig.process(rig.section(1, windows(100, 60, 20)));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{120, 120}));
}

TEST_F(ReferenceSection, DoesNotCountAmongTheGatheredSections) {
    rig.useHybrid(4, 2, 2);
    rig.source->metadata.sectionMode = 3;
    rig.source->metadata.sectionCount = 3;
    rig.start(CkToFProcessCnbl::ConcatPhases);
    EXPECT_TRUE(rig.process(rig.section(0, windows(100, 100, 100))).empty());
    EXPECT_TRUE(rig.process(rig.section(1, windows(600, 600, 600))).empty());
    const ToFResult result = rig.process(rig.section(2, windows(1124, 1124, 1124)));
    ASSERT_FALSE(result.empty());
    // 1124 - 100 = 1024 is not saturated and has 11 bits: scaled to 16.
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{1024 << 5, 1024 << 5}));
}

TEST_F(ReferenceSection, OfInputThatIsNotHybridIsSubtractedAndTheSequenceCountsAsItIs) {
    rig.useAandB(4, 2, 1);
    rig.source->metadata.sectionMode = 3;
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::ConcatPhases);
    const auto image = [&](quint32 sectionIndex, qint32 index, int value) {
        auto data = rig.phase(index, 0, value, value);
        CkImageMetadata metadata = data->metadata();
        metadata.sectionIndex = sectionIndex;
        data->setMetadata(metadata);
        return data;
    };
    EXPECT_TRUE(rig.process(image(0, 0, 10)).empty());
    EXPECT_TRUE(rig.process(image(1, 0, 30)).empty());
    const ToFResult result = rig.process(image(1, 1, 40));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{20, 20, 30, 30}));
}

TEST_F(ReferenceSection, TheSectionCountMayChangeFromFrameToFrame) {
    rig.source->metadata.sectionCount = 3;
    rig.start(CkToFProcessCnbl::Intensity);
    for (quint32 count : {0U, 1U, 2U, 3U, 4U, 100U, 0x7fffffffU, 0x80000000U, 0xffffffffU, 3U}) {
        rig.source->metadata.sectionCount = count;
        for (quint32 index : {0U, 1U, 2U, 3U, 0x7fffffffU, 0x80000000U, 0xffffffffU}) {
            const auto samples = index == 0 ? windows(0, 0, 0) : windows(100, 60, 20);
            const ToFResult result = rig.process(rig.section(index, samples));
            if (!result.empty()) {
                EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{20, 20}));
            }
        }
    }
    // Still a working block: two sections make a set.
    EXPECT_TRUE(rig.process(rig.section(1, windows(100, 60, 20))).empty());
    EXPECT_FALSE(rig.process(rig.section(2, windows(100, 60, 20))).empty());
}

} // namespace
