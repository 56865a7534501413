#include "tests/plugins/zplToF/chain/ToFChainRig.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

namespace {

TEST(PhaseSequence, ASecondIndexZeroDiscardsTheSetBegun) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(4);
    rig.start(CkToFProcessCnbl::ConcatPhases);
    int value = 0;
    for (qint32 index : {0, 1, 0, 1, 2}) {
        ++value;
        EXPECT_TRUE(rig.process(rig.phase(index, 0, value, value)).empty());
    }
    const ToFResult result = rig.process(rig.phase(3, 0, 6, 6));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{3, 3, 4, 4, 5, 5, 6, 6}));
}

TEST(PhaseSequence, AShorterSetKeepsWhatFitsAndYieldsTheRowsOfItsOutput) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(4);
    rig.start(CkToFProcessCnbl::Depth);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 300, 100)).empty());
    EXPECT_TRUE(rig.process(rig.phase(2, 180, 100, 100)).empty());
    // A set now has two images, and the first one has arrived.
    rig.useSequence(2);
    const ToFResult result = rig.process(rig.phase(1, 90, 100, 100));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(result.picture().height, 2U);
    // x = 200, y = 0: phase 0; amplitude 100; confidence sqrt((300 + 100 + 100 + 100) >> 3) / 100.
    EXPECT_EQ(sampleAt<float>(result.picture(), 3, 1, 0), 0.0F);
    EXPECT_FLOAT_EQ(sampleAt<float>(result.picture(), 3, 1, 1), std::sqrt(75.0F) / 100.0F);
}

TEST(PhaseSequence, FourSeparateImagesProduceOneOutputOnTheFourth) {
    ToFChainRig rig;
    rig.useAandB(5, 3, 1);
    rig.useSequence(4);
    rig.start(CkToFProcessCnbl::Depth);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 100, 200)).empty());
    EXPECT_TRUE(rig.process(rig.phase(1, 90, 150, 150)).empty());
    EXPECT_TRUE(rig.process(rig.phase(2, 180, 200, 100)).empty());
    const ToFResult result = rig.process(rig.phase(3, 270, 150, 150));
    ASSERT_FALSE(result.empty());
    EXPECT_FALSE(result.passedThrough);
    EXPECT_EQ(result.picture().width, 5U);
    EXPECT_EQ(result.picture().height, 3U);
    EXPECT_EQ(result.output->metadata().channelNames, (QStringList{"Phase shift", "Confidence"}));
    // x = -100 - 100, y = 0: pi; amplitude 200 / 4 = 50; confidence sqrt(1200 >> 3) / (2 * 50).
    EXPECT_FLOAT_EQ(sampleAt<float>(result.picture(), 4, 2, 0), 3.14159265F);
    EXPECT_FLOAT_EQ(sampleAt<float>(result.picture(), 4, 2, 1), std::sqrt(150.0F) / 100.0F);
}

TEST(PhaseSequence, TheAngleListSaysWhichImageIsWhich) {
    ToFChainRig rig;
    rig.useAandB(5, 3, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::Depth);
    // The image of 90 degrees comes first: x is the difference of the second, y that of the first.
    EXPECT_TRUE(rig.process(rig.phase(0, 90, 200, 100)).empty());
    const ToFResult result = rig.process(rig.phase(1, 0, 100, 100));
    ASSERT_FALSE(result.empty());
    EXPECT_FLOAT_EQ(sampleAt<float>(result.picture(), 0, 0, 0), 1.57079633F);
}

TEST(PhaseSequence, AnIndexOutsideTheSetYieldsNothingAndDisturbsNothing) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::ConcatPhases);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 1, 1)).empty());
    EXPECT_TRUE(rig.process(rig.phase(2, 90, 9, 9)).empty());
    EXPECT_TRUE(rig.process(rig.phase(3, 90, 9, 9)).empty());
    const ToFResult result = rig.process(rig.phase(1, 90, 2, 2));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{1, 1, 2, 2}));
}

TEST(PhaseSequence, AandBtoAminBConvertsEachImageAlone) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(4);
    rig.start(CkToFProcessCnbl::AandBtoAminB);
    for (qint32 index : {0, 1, 3, 7, -1}) {
        const ToFResult result = rig.process(rig.phase(index, 0, 100 + index, 40));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{60 + index, 60 + index}));
        EXPECT_EQ(result.picture().dataType, EkImageDataType::Int16);
    }
}

TEST(PhaseSequence, RelabellingWorksOnEachImageWhileASetIsGathered) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::SetABPhase);
    for (qint32 index : {0, 1, 5, 0}) {
        const ToFResult result = rig.process(rig.phase(index, 0, 10 + index, 10 + index));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{10 + index, 10 + index}));
    }
}

TEST(PhaseSequence, AmplitudeAndIntensityOfAGatheredSet) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::Amplitude);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 160, 100)).empty());
    const ToFResult amplitude = rig.process(rig.phase(1, 90, 180, 100));
    ASSERT_FALSE(amplitude.empty());
    EXPECT_EQ(rowValues(amplitude.picture()), (std::vector<int>{50, 50})); // sqrt(60^2 + 80^2) / 2
    rig.stop();
    rig.start(CkToFProcessCnbl::Intensity);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 160, 100)).empty());
    const ToFResult intensity = rig.process(rig.phase(1, 90, 180, 100));
    ASSERT_FALSE(intensity.empty());
    EXPECT_EQ(rowValues(intensity.picture()), (std::vector<int>{135, 135})); // 540 / 4
}

TEST(PhaseSequence, ASetOfDifferencesIsGatheredToo) {
    ToFChainRig rig;
    rig.useAminusB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::Amplitude);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, -60, 0)).empty());
    const ToFResult result = rig.process(rig.phase(1, 90, 80, 0));
    ASSERT_FALSE(result.empty());
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{50, 50}));
    EXPECT_EQ(result.picture().dataType, EkImageDataType::UInt16);
}

TEST(PhaseSequence, OnlyCamerasAndVideosDeliverPhasesOneByOne) {
    ToFChainRig rig(std::make_unique<PushSource>());
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::Amplitude);
    const ToFResult result = rig.process(rig.phase(0, 0, 160, 100));
    ASSERT_FALSE(result.empty()) << "a frame of another source is a picture of its own";
    EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{60, 60}));
    rig.stop();
    rig.start(CkToFProcessCnbl::ConcatPhases);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 160, 100)).passedThrough);
}

TEST(PhaseSequence, AnUnsupportedNumberOfPhasesGivesAZeroPicture) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(3);
    for (int transform :
         {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth}) {
        rig.start(transform);
        // A supported set leaves its result in the picture that is reused next.
        rig.useSequence(2);
        EXPECT_TRUE(rig.process(rig.phase(0, 0, 160, 100)).empty());
        EXPECT_FALSE(rig.process(rig.phase(1, 90, 180, 100)).empty());
        rig.useSequence(3);
        EXPECT_TRUE(rig.process(rig.phase(0, 0, 160, 100)).empty());
        EXPECT_TRUE(rig.process(rig.phase(1, 90, 160, 100)).empty());
        const ToFResult result = rig.process(rig.phase(2, 180, 160, 100));
        ASSERT_FALSE(result.empty());
        EXPECT_EQ(rowValues(result.picture()), (std::vector<int>{0, 0}));
        rig.stop();
    }
}

TEST(PhaseSequence, StoppingForgetsASetHalfGathered) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::ConcatPhases);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 1, 1)).empty());
    rig.stop();
    rig.start(CkToFProcessCnbl::ConcatPhases);
    EXPECT_TRUE(rig.process(rig.phase(1, 90, 2, 2)).empty());
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 3, 3)).empty());
    EXPECT_FALSE(rig.process(rig.phase(1, 90, 4, 4)).empty());
}

} // namespace
