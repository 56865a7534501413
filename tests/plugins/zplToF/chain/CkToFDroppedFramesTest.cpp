// Which frames the block counts as dropped, and the reasons it gives.

#include "tests/plugins/zplToF/chain/ToFRunningChain.h"

#include <functional>

namespace {

using Block = CkToFProcessCnbl;

/// Pushes frames and waits until the block has seen them.
SkBlockStatistics statisticsAfter(ToFChainRig& rig, std::vector<std::unique_ptr<CkImageData>> frames) {
    for (auto& frame : frames) {
        EXPECT_TRUE(rig.source->push(std::move(frame)));
        rig.onChainThread([] {});
    }
    return rig.chain->blockStatistics(rig.block);
}

struct Refused {
    const char* name;
    int transform;
    QString message;
    std::function<void(ToFChainRig&)> setUp;
    std::function<std::unique_ptr<CkImageData>(const ToFChainRig&)> frame;
};

std::vector<Refused> refusedFrames() {
    const auto plain = [](const ToFChainRig& rig) { return rig.frame(5); };
    return {
        {"an unknown transform", -1, ToFTexts::unknownTransform,
         [](ToFChainRig& rig) { rig.useAandB(4, 4, 2); }, plain},
        {"a format that cannot be negotiated", Block::SetABPhase,
         "The input image data type is not supported.",
         [](ToFChainRig& rig) { rig.source->setFormat(4, 4, 3, EkImageDataType::UInt16, 12); }, plain},
        {"more phases than rows", Block::Depth, ToFTexts::noOutput,
         [](ToFChainRig& rig) { rig.useAandB(4, 3, 4); }, plain},
        {"two billion phases", Block::Depth, ToFTexts::tooLarge,
         [](ToFChainRig& rig) {
             rig.useAandB(640, 480, 1);
             rig.useSequence(2000000000);
         },
         [](const ToFChainRig& rig) { return rig.phase(1, 90, 200, 100); }},
        {"an index outside its set", Block::Depth, ToFTexts::outsideSet,
         [](ToFChainRig& rig) {
             rig.useAandB(4, 2, 1);
             rig.useSequence(2);
         },
         [](const ToFChainRig& rig) { return rig.phase(2, 90, 200, 100); }},
        {"one section to merge", Block::ConcatPhases, ToFTexts::nothingToMerge,
         [](ToFChainRig& rig) { rig.useHybrid(4, 4, 1); }, plain},
        {"samples that nothing computes", Block::Amplitude, ToFTexts::notSupported,
         [](ToFChainRig& rig) {
             rig.useAandB(4, 4, 2);
             rig.source->info.dataType = EkImageDataType::Other16;
         },
         plain},
        {"a picture without pixels", Block::Amplitude, ToFTexts::noPixels,
         [](ToFChainRig& rig) { rig.useAandB(4, 4, 2); },
         [](const ToFChainRig& rig) {
             auto frame = rig.frame(5);
             SkPicBuf empty;
             static_cast<SkPicBufInfo&>(empty) = frame->picBuf();
             frame->setPicBuf(empty);
             return frame;
         }},
    };
}

TEST(RunningChain, AFrameOfWhichNothingComesIsCountedAndExplained) {
    for (const Refused& refused : refusedFrames()) {
        SCOPED_TRACE(refused.name);
        ToFChainRig rig;
        refused.setUp(rig);
        rig.start(refused.transform);
        for (quint64 count = 1; count <= 3; ++count) {
            std::vector<std::unique_ptr<CkImageData>> frames;
            frames.push_back(refused.frame(rig));
            const SkBlockStatistics statistics = statisticsAfter(rig, std::move(frames));
            EXPECT_EQ(statistics.framesIn, count);
            EXPECT_EQ(statistics.framesOut, 0U);
            EXPECT_EQ(statistics.dropped, count);
            EXPECT_EQ(rig.block->errorMessage(), refused.message);
        }
    }
}

TEST(RunningChain, SectionsThatGetAReferenceAreSetUpFor) {
    ToFChainRig rig;
    rig.useHybrid(4, 2, 1);
    rig.source->metadata.sectionCount = 1;
    rig.start(Block::Amplitude);
    const auto sections = [&](quint32 count) {
        std::vector<std::unique_ptr<CkImageData>> frames;
        for (quint32 i = 0; i < count; ++i) {
            frames.push_back(rig.section(i, [](quint32, quint32, quint32) { return 5; }));
        }
        return frames;
    };
    EXPECT_EQ(statisticsAfter(rig, sections(1)).framesOut, 1U);
    rig.source->metadata.sectionMode = 3;
    rig.source->metadata.sectionCount = 2;
    const SkBlockStatistics statistics = statisticsAfter(rig, sections(2));
    EXPECT_EQ(statistics.framesOut, 2U) << "the section behind the reference";
    EXPECT_EQ(statistics.dropped, 0U);
    EXPECT_EQ(rig.block->errorMessage(), QString());
}

TEST(RunningChain, ImagesOfASetThatIsNotCompleteYetAreNotDropped) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(Block::Depth);
    for (quint64 set = 1; set <= 3; ++set) {
        std::vector<std::unique_ptr<CkImageData>> frames;
        frames.push_back(rig.phase(0, 0, 200, 100));
        frames.push_back(rig.phase(1, 90, 200, 100));
        const SkBlockStatistics statistics = statisticsAfter(rig, std::move(frames));
        EXPECT_EQ(statistics.framesIn, 2 * set);
        EXPECT_EQ(statistics.framesOut, set);
        EXPECT_EQ(statistics.dropped, 0U);
        EXPECT_EQ(rig.block->errorMessage(), QString());
    }
}

TEST(RunningChain, AReferenceSectionIsNotDropped) {
    ToFChainRig rig;
    rig.useHybrid(4, 2, 1);
    rig.source->metadata.sectionMode = 3;
    rig.start(Block::Amplitude);
    const auto five = [](quint32, quint32, quint32) { return 5; };
    std::vector<std::unique_ptr<CkImageData>> frames;
    frames.push_back(rig.section(0, five));
    frames.push_back(rig.section(1, five));
    const SkBlockStatistics statistics = statisticsAfter(rig, std::move(frames));
    EXPECT_EQ(statistics.framesIn, 2U);
    EXPECT_EQ(statistics.framesOut, 1U);
    EXPECT_EQ(statistics.dropped, 0U);
}

TEST(RunningChain, FramesOfWhichNothingComesAreCounted) {
    ToFChainRig rig;
    rig.useAandB(4, 2, 1);
    rig.useSequence(2);
    rig.start(Block::Depth);
    pushAndWait(rig, rig.phase(0, 0, 200, 100));
    EXPECT_EQ(rig.chain->blockStatistics(rig.block).dropped, 0U);
    pushAndWait(rig, rig.phase(2, 0, 200, 100)); // outside its set
    EXPECT_EQ(rig.chain->blockStatistics(rig.block).dropped, 1U);
    rig.useSequence(2000000000);
    pushAndWait(rig, rig.phase(0, 0, 200, 100));
    pushAndWait(rig, rig.phase(1, 0, 200, 100));
    EXPECT_EQ(rig.chain->blockStatistics(rig.block).dropped, 3U);
    rig.source->setFormat(4, 2, 3, EkImageDataType::UInt8, 8);
    rig.source->metadata = CkImageMetadata();
    pushAndWait(rig, rig.frame(5));
    EXPECT_EQ(rig.chain->blockStatistics(rig.block).dropped, 4U);
    EXPECT_EQ(rig.chain->blockStatistics(rig.source).dropped, 0U);
}

} // namespace
