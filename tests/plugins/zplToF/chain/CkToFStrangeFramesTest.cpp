// With any descriptor and metadata of a frame, the block returns and stays usable.

#include "tests/plugins/zplToF/chain/ToFChainRig.h"

#include <gtest/gtest.h>
#include <random>

namespace {

class OtherData : public IkChainData {
public:
    OtherData* share() const override { return nullptr; }
};

TEST(StrangeFrame, NullAndForeignDataYieldNothing) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Amplitude);
    OtherData other;
    rig.onChainThread([&] {
        EXPECT_EQ(rig.block->processData(nullptr), nullptr);
        EXPECT_EQ(rig.block->errorMessage(), QString());
        EXPECT_EQ(rig.block->processData(&other), nullptr);
        EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noPicture);
    });
}

TEST(StrangeFrame, MorePhasesThanRowsYieldsNothing) {
    ToFChainRig rig;
    rig.useAandB(4, 3, 4);
    for (int transform :
         {CkToFProcessCnbl::Intensity, CkToFProcessCnbl::Amplitude, CkToFProcessCnbl::Depth}) {
        rig.start(transform);
        EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noOutput);
        EXPECT_TRUE(rig.process(rig.frame(5)).empty());
        EXPECT_EQ(rig.block->errorMessage(), ToFTexts::noOutput);
        rig.stop();
    }
}

TEST(StrangeFrame, OutsideAChainNothingComesOut) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    CkToFProcessCnbl block;
    auto frame = rig.frame(5);
    EXPECT_EQ(block.processData(frame.get()), nullptr);
    block.setTransform(CkToFProcessCnbl::ConcatPhases, true);
    EXPECT_EQ(block.processData(frame.get()), frame.get());
}

TEST(StrangeFrame, AFrameThatDoesNotFitThePoolIsDropped) {
    ToFChainRig rig;
    rig.useAandB(4, 4, 2);
    rig.start(CkToFProcessCnbl::Amplitude);
    rig.useAandB(4, 40, 2);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    rig.useAandB(4000, 4, 2);
    EXPECT_TRUE(rig.process(rig.frame(5)).empty());
    // Each made the chain renegotiate; it returns to the format of the source.
    rig.useAandB(4, 4, 2);
    int frames = 0;
    while (rig.process(rig.frame(5)).empty() && frames < 100) {
        ++frames;
    }
    EXPECT_LT(frames, 100);
}

TEST(StrangeFrame, RandomDescriptorsAndMetadataDoNoHarm) {
    std::mt19937 random(7);
    const auto oneOf = [&](std::initializer_list<qint64> values) {
        return *(values.begin() + random() % values.size());
    };
    for (int transform = -1; transform < 8; ++transform) {
        for (int kind = 0; kind < 4; ++kind) {
            ToFChainRig rig;
            const auto useKind = [&] {
                kind == 0   ? rig.useAandB(16, 12, 4)
                : kind == 1 ? rig.useAminusB(16, 12, 2)
                : kind == 2 ? rig.useHybrid(16, 12, 3)
                            : rig.useAandB(16, 12, 1);
                if (kind == 3) {
                    rig.useSequence(4);
                }
            };
            useKind();
            rig.source->metadata.sectionMode = quint32(oneOf({0, 3}));
            rig.start(transform);
            for (int i = 0; i < 200; ++i) {
                useKind();
                auto frame = rig.frame(100);
                CkImageMetadata metadata = frame->metadata();
                metadata.phasesCount = qint32(oneOf({-1, 0, 1, 2, 3, 4, 8, 12, 13, 2147483647}));
                metadata.phaseSequenceLength = qint32(oneOf({-5, 0, 1, 2, 4, 5, 2000000000}));
                metadata.phaseSequenceIndex = qint32(oneOf({-1, 0, 1, 2, 3, 4, 2147483647}));
                metadata.phaseAngle = qint32(oneOf({0, 90, 180, 270, -1000, 45, 2147483647}));
                metadata.sectionCount = quint32(oneOf({0, 1, 2, 3, 4, 4294967295}));
                metadata.sectionIndex = quint32(oneOf({0, 1, 2, 3, 4294967295}));
                metadata.sectionMode = quint32(oneOf({0, 1, 3, 3, 4294967295}));
                metadata.hybridPulseDuration = float(oneOf({-1, 0, 1}));
                frame->setMetadata(metadata);
                // Smaller pictures in the same memory are all legal; shorter rows are not.
                SkPicBufInfo& info = frame->picBuf();
                switch (oneOf({0, 0, 0, 1, 2, 3, 4, 5, 6})) {
                case 1:
                    info.height = quint32(oneOf({0, 1, 3, 11}));
                    break;
                case 2:
                    info.width = quint32(oneOf({0, 1, 3, 15}));
                    break;
                case 3:
                    info.lineSize = quint32(oneOf({0, 1, 7, 15}));
                    break;
                case 4:
                    info.channels = quint32(oneOf({0, 1}));
                    break;
                case 5:
                    info.dataType = EkImageDataType(oneOf({0, 1, 2, 3, 4, 11, 77}));
                    break;
                case 6:
                    info.bitsPerChannel = quint32(oneOf({0, 1, 8, 33, 4294967295}));
                    break;
                default:
                    break;
                }
                const ToFResult result = rig.process(std::move(frame));
                if (!result.empty()) {
                    ASSERT_TRUE(result.passedThrough || CkPicBufAPI::isValid(result.picture()));
                }
            }
            rig.stop();
        }
    }
}

} // namespace
