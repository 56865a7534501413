#include "plugins/zplToF/transform/CkToFFrameProcessor.h"
#include "plugins/zplToF/transform/ToFTransforms.h"
#include "tests/support/TestPicture.h"

#include <gtest/gtest.h>

namespace {

using namespace ToFTransform;

const SkToFTransform& row(int transform) {
    return *ToFTransforms::find(transform);
}

TEST(CkToFFrameProcessor, OnlyAnUngatheredFrameThatIsNotHybridPassesThrough) {
    PaddedPicture picture(4, 2, 2, EkImageDataType::UInt16);
    for (int transform = 0; transform < 7; ++transform) {
        SkToFFrame frame{.frame = *picture, .input = &*picture};
        EXPECT_EQ(CkToFFrameProcessor::passesThrough(row(transform), frame), transform == ConcatPhases);
        frame.gathered = true;
        EXPECT_FALSE(CkToFFrameProcessor::passesThrough(row(transform), frame));
        frame.gathered = false;
        frame.hybrid = true;
        EXPECT_FALSE(CkToFFrameProcessor::passesThrough(row(transform), frame));
    }
}

TEST(CkToFFrameProcessor, AnIncompleteSetStopsOnlyTheTransformsThatWorkOnSets) {
    PaddedPicture picture(4, 2, 2, EkImageDataType::UInt16);
    const SkToFFrame incomplete{.frame = *picture, .input = nullptr, .gathered = true};
    const CkToFFrameProcessor processor;
    const bool expected[] = {true, false, false, false, false, true, true};
    for (int transform = 0; transform < 7; ++transform) {
        EXPECT_EQ(row(transform).input == SkToFTransform::EkInput::Frame, expected[transform]) << transform;
        if (expected[transform]) {
            EXPECT_EQ(processor.refusal(row(transform), incomplete, *picture), EkFrameRefusal::None);
        }
    }
}

TEST(CkToFFrameProcessor, SectionsAreMergedOnlyWhereThereAreSomeAndABuffer) {
    PaddedPicture sections(5, 6, 3, EkImageDataType::UInt16, 12);
    PaddedPicture out(5, 2, 3, EkImageDataType::UInt16);
    PaddedPicture asTall(5, 6, 3, EkImageDataType::UInt16);
    const SkToFFrame hybrid{.frame = *sections, .input = &*sections, .hybrid = true};
    const SkToFFrame other{.frame = *sections, .input = &*sections, .gathered = true};
    CkToFFrameProcessor processor;
    EXPECT_EQ(processor.refusal(row(ConcatPhases), hybrid, *out), EkFrameRefusal::NothingToMerge)
        << "no buffer";
    EXPECT_EQ(processor.refusal(row(Intensity), hybrid, *out), EkFrameRefusal::None)
        << "of the frame as it is";
    ASSERT_TRUE(processor.prepareHdr(*sections, 3));
    EXPECT_EQ(processor.refusal(row(ConcatPhases), hybrid, *out), EkFrameRefusal::None);
    EXPECT_EQ(processor.refusal(row(ConcatPhases), hybrid, *asTall), EkFrameRefusal::NothingToMerge)
        << "no sections";
    EXPECT_EQ(processor.refusal(row(ConcatPhases), other, *asTall), EkFrameRefusal::None);
}

TEST(CkToFFrameProcessor, AWorkBufferThatCannotBeHadIsNoMemory) {
    // 4 GiB minus 64 KiB per row times 2^31 rows: more than any memory.
    SkPicBufInfo absurd;
    absurd.width = 0x15550000U;
    absurd.height = 0x80000000U;
    absurd.channels = 3;
    absurd.dataType = EkImageDataType::UInt16;
    absurd.lineSize = absurd.width * 6;
    CkToFFrameProcessor processor;
    EXPECT_FALSE(processor.prepareHdr(absurd, 1));
    EXPECT_TRUE(processor.lacksHdrBuffer());
    PaddedPicture sections(5, 6, 3, EkImageDataType::UInt16, 12);
    PaddedPicture out(5, 2, 3, EkImageDataType::UInt16);
    const SkToFFrame hybrid{.frame = *sections, .input = &*sections, .hybrid = true};
    for (int transform : {Intensity, Amplitude, Depth, ConcatPhases}) {
        EXPECT_EQ(processor.refusal(row(transform), hybrid, *out), EkFrameRefusal::NoMemory) << transform;
    }
    EXPECT_EQ(processor.refusal(row(Intensity), hybrid, *sections), EkFrameRefusal::None)
        << "nothing to merge";
    EXPECT_FALSE(processor.prepareHdr(*sections, 7)) << "no row is left: no buffer is wanted";
    EXPECT_FALSE(processor.lacksHdrBuffer());
}

TEST(CkToFFrameProcessor, OnlyUnsupportedPhasesCountsLeavePixelsOpen) {
    PaddedPicture picture(4, 2, 2, EkImageDataType::UInt16);
    for (quint32 phases : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U, 16U, 0xffffffffU}) {
        SkToFFrame frame{.frame = *picture, .input = &*picture};
        frame.phases = phases;
        const bool supported = phases == 1 || phases == 2 || phases == 4 || phases == 8;
        for (int transform : {Intensity, Amplitude, Depth}) {
            EXPECT_EQ(CkToFFrameProcessor::leavesPixelsUnwritten(row(transform), frame), !supported)
                << phases;
        }
        for (int transform : {SetABPhase, ConcatPhases, AandBtoAminB, SetHybrid}) {
            EXPECT_FALSE(CkToFFrameProcessor::leavesPixelsUnwritten(row(transform), frame));
        }
        frame.hybrid = true;
        EXPECT_FALSE(CkToFFrameProcessor::leavesPixelsUnwritten(row(Depth), frame));
    }
}

TEST(CkToFFrameProcessor, TheWorkBufferHoldsOneSectionIn32Bits) {
    PaddedPicture sections(5, 6, 3, EkImageDataType::UInt16, 12);
    CkToFFrameProcessor processor;
    EXPECT_FALSE(processor.hasHdrBuffer());
    ASSERT_TRUE(processor.prepareHdr(*sections, 3));
    EXPECT_EQ(processor.hdrInfo().width, 5U);
    EXPECT_EQ(processor.hdrInfo().height, 2U);
    EXPECT_EQ(processor.hdrInfo().channels, 3U);
    EXPECT_EQ(processor.hdrInfo().dataType, EkImageDataType::UInt32);
    EXPECT_EQ(processor.hdrInfo().bitsPerChannel, 32U);
    EXPECT_EQ(processor.hdrInfo().lineSize, 256U);
    ASSERT_TRUE(processor.prepareHdr(*sections, 1));
    EXPECT_EQ(processor.hdrInfo().height, 6U);
    EXPECT_FALSE(processor.prepareHdr(*sections, 7)) << "no row is left";
    EXPECT_FALSE(processor.hasHdrBuffer());
    SkPicBufInfo absurd = *sections;
    absurd.width = 0xffffffffU;
    EXPECT_FALSE(processor.prepareHdr(absurd, 1));
    ASSERT_TRUE(processor.prepareHdr(*sections, 3));
    processor.clear();
    EXPECT_FALSE(processor.hasHdrBuffer());
}

TEST(CkToFFrameProcessor, RelabellingCopiesWholeRowsAndNothingBehindThem) {
    PaddedPicture source(6, 4, 1, EkImageDataType::UInt8, 8, 5);
    source.fill<quint8>([](quint32 x, quint32 y, quint32) { return quint8(10 * y + x); });
    PaddedPicture target(3, 4, 2, EkImageDataType::UInt8, 8, 9);
    const SkToFFrame frame{.frame = *source, .input = &*source};
    CkToFFrameProcessor processor;
    ASSERT_TRUE(processor.process(row(SetABPhase), frame, *target));
    EXPECT_EQ(target.at<quint8>(2, 3, 1), 35);
    EXPECT_TRUE(target.guardsIntact());
    PaddedPicture wide(4, 4, 2, EkImageDataType::UInt8);
    PaddedPicture high(3, 5, 2, EkImageDataType::UInt8);
    EXPECT_FALSE(processor.process(row(SetABPhase), frame, *wide));
    EXPECT_FALSE(processor.process(row(SetABPhase), frame, *high));
    EXPECT_EQ(wide.at<quint8>(0, 0), 0);
}

TEST(CkToFFrameProcessor, AGatheredSetIsCopiedAsFarAsTheOutputReaches) {
    PaddedPicture set(3, 8, 2, EkImageDataType::UInt16, 12, 7);
    set.fill<quint16>([](quint32, quint32 y, quint32) { return quint16(y); });
    PaddedPicture out(3, 4, 2, EkImageDataType::UInt16, 12, 3);
    const SkToFFrame frame{.frame = *set, .input = &*set, .gathered = true};
    CkToFFrameProcessor processor;
    ASSERT_TRUE(processor.process(row(ConcatPhases), frame, *out));
    EXPECT_EQ(out.at<quint16>(2, 3, 1), 3);
    EXPECT_TRUE(out.guardsIntact());
    PaddedPicture taller(3, 9, 2, EkImageDataType::UInt16);
    EXPECT_FALSE(processor.process(row(ConcatPhases), frame, *taller));
}

} // namespace
