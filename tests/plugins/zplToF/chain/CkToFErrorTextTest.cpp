#include "tests/plugins/zplToF/chain/ToFChainRig.h"

#include <gtest/gtest.h>

namespace {

const QString kWrongType = "The input image data type is not supported.";
const QString kFourPhases = "4 phases processing requires phases with 0, 90, 180 and 270 deg.";
using namespace ToFTexts;

TEST(ErrorText, ANegotiationErrorAppearsStaysAndClears) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::SetABPhase);
    EXPECT_EQ(rig.block->errorMessage(), QString());
    EXPECT_FALSE(rig.process(rig.frame(5)).empty());
    rig.source->setFormat(4, 4, 3, EkImageDataType::UInt16, 12);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), kWrongType);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), kWrongType);
    rig.useAandB(4, 4, 2);
    EXPECT_FALSE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(ErrorText, ANegotiationErrorDoesNotReplaceAMessageThatIsShown) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::SetABPhase);
    rig.block->setErrorMessage("from somebody else");
    rig.source->setFormat(4, 4, 3, EkImageDataType::UInt16, 12);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), "from somebody else");
}

TEST(ErrorText, ABlockThatCannotNegotiateSaysSoAtTheStart) {
    ToFChainRig rig;
    rig.source->setFormat(4, 4, 3, EkImageDataType::UInt16, 12);
    rig.start(CkToFProcessCnbl::SetABPhase);
    EXPECT_EQ(rig.block->errorMessage(), kWrongType);
    rig.stop();
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::SetABPhase);
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(ErrorText, AQueryAloneLeavesWhatIsShown) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.block->setErrorMessage("shown");
    SkPicBufInfo out;
    EXPECT_TRUE(rig.block->queryOutputImageInfo(rig.source->info, out, &rig.source->metadata, nullptr));
    EXPECT_EQ(rig.block->errorMessage(), "shown");
    rig.source->setFormat(4, 4, 3, EkImageDataType::UInt16, 12);
    EXPECT_FALSE(rig.block->queryOutputImageInfo(rig.source->info, out, &rig.source->metadata, nullptr));
    EXPECT_EQ(rig.block->errorMessage(), "shown");
    rig.block->setErrorMessage(QString());
    EXPECT_FALSE(rig.block->queryOutputImageInfo(rig.source->info, out, &rig.source->metadata, nullptr));
    EXPECT_EQ(rig.block->errorMessage(), QString()) << "asked, not run";
}

TEST(ErrorText, APictureWithoutPixelsSaysSo) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Amplitude);
    auto frame = rig.frame(5);
    frame->setPicBuf(SkPicBuf());
    frame->picBuf().channels = 2;
    EXPECT_TRUE(rig.process(std::move(frame)).empty());
    EXPECT_EQ(rig.block->errorMessage(), noPixels);
    EXPECT_FALSE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(ErrorText, AnUnknownTransformSaysSoFromTheStartOn) {
    for (int transform : {-1, 7, 1000}) {
        ToFChainRig rig;
        rig.useAandB(4, 2, 1);
        rig.useSequence(2);
        rig.start(transform);
        EXPECT_EQ(rig.block->errorMessage(), unknownTransform) << transform;
        for (qint32 index : {0, 1}) {
            EXPECT_TRUE(rig.process(rig.phase(index, 90 * index, 200, 100)).empty());
            EXPECT_EQ(rig.block->errorMessage(), unknownTransform) << transform;
        }
        rig.block->setTransform(CkToFProcessCnbl::Depth, true);
        EXPECT_EQ(rig.block->errorMessage(), QString());
    }
    ToFChainRig unknownInput;
    unknownInput.start(-1);
    EXPECT_EQ(unknownInput.block->errorMessage(), unknownTransform);
}

TEST(ErrorText, AReasonFollowsTheReasonBefore) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::Depth);
    EXPECT_TRUE(rig.process(rig.phase(5, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), outsideSet);
    rig.useAandB(4, 1, 1);
    rig.useSequence(2);
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString()) << "lower images fit the buffer, too";
    EXPECT_TRUE(rig.process(rig.phase(5, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), outsideSet);
    rig.source->setFormat(4, 4, 3, EkImageDataType::UInt8, 8);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    EXPECT_TRUE(rig.block->errorMessage().startsWith("The input image must be RAWX2 image"))
        << qPrintable(rig.block->errorMessage());
}

TEST(ErrorText, IncompleteAnglesAreProcessedAndReported) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(4);
    rig.start(CkToFProcessCnbl::Depth);
    for (int set = 0; set < 2; ++set) {
        for (qint32 index = 0; index < 3; ++index) {
            EXPECT_TRUE(rig.process(rig.phase(index, 45 * index, 200, 100)).empty());
            EXPECT_EQ(rig.block->errorMessage(), QString()) << "nothing to say of a set that is not complete";
        }
        EXPECT_FALSE(rig.process(rig.phase(3, 135, 200, 100)).empty());
        EXPECT_EQ(rig.block->errorMessage(), kFourPhases);
    }
    // A frame without a message of its own clears it.
    EXPECT_TRUE(rig.process(rig.phase(0, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(ErrorText, StaysWhileEachFrameCompletesABadSet) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(4);
    rig.start(CkToFProcessCnbl::Amplitude);
    for (qint32 index = 0; index < 4; ++index) {
        rig.process(rig.phase(index, 0, 200, 100));
    }
    EXPECT_EQ(rig.block->errorMessage(), kFourPhases);
    EXPECT_FALSE(rig.process(rig.phase(3, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), kFourPhases);
    rig.process(rig.phase(1, 90, 200, 100));
    rig.process(rig.phase(2, 180, 200, 100));
    EXPECT_EQ(rig.block->errorMessage(), kFourPhases);
    EXPECT_FALSE(rig.process(rig.phase(3, 270, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(ErrorText, IntensityDoesNotCareForAngles) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(CkToFProcessCnbl::Intensity);
    rig.process(rig.phase(0, 17, 200, 100));
    EXPECT_FALSE(rig.process(rig.phase(1, 17, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(ErrorText, ASetBeyondOneGiBIsRefusedAndSaidSo) {
    ToFChainRig rig;
    rig.useAandB(64, 64, 1); // 16384 bytes: 65536 images are 1 GiB
    rig.useSequence(65536);
    rig.start(CkToFProcessCnbl::Depth);
    EXPECT_EQ(rig.block->errorMessage(), QString());
    EXPECT_TRUE(rig.process(rig.phase(65535, 0, 200, 100)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString()) << "the last image has its place";
    rig.stop();
    rig.useSequence(65537);
    rig.start(CkToFProcessCnbl::Depth);
    EXPECT_EQ(rig.block->errorMessage(), tooLarge);
    for (qint32 index = 0; index < 3; ++index) {
        EXPECT_TRUE(rig.process(rig.phase(index, 0, 200, 100)).empty());
        EXPECT_EQ(rig.block->errorMessage(), tooLarge);
    }
    rig.stop();
    rig.start(CkToFProcessCnbl::AandBtoAminB);
    EXPECT_FALSE(rig.process(rig.phase(0, 0, 200, 100)).empty()) << "needs no set";
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(ErrorText, ASequenceOfTwoBillionIsRefusedAndSaidSo) {
    ToFChainRig rig;
    rig.useAandB(640, 480, 1);
    rig.useSequence(2000000000);
    for (int transform : {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth,
                          CkToFProcessCnbl::ConcatPhases}) {
        rig.start(transform);
        EXPECT_TRUE(rig.process(rig.phase(1, 90, 200, 100)).empty());
        EXPECT_EQ(rig.block->errorMessage(), tooLarge);
        rig.stop();
    }
}

TEST(ErrorText, ABlockedBlockYieldsNothingAndSaysNothing) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::SetABPhase);
    rig.block->setState(CkChainable::Blocked);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    rig.source->setFormat(4, 4, 3, EkImageDataType::UInt16, 12);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

} // namespace
