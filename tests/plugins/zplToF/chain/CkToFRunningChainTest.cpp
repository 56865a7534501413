// The block on a chain's own thread.

#include "tests/plugins/zplToF/chain/ToFChainRig.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkRTTI.h"

#include <QDomDocument>
#include <QElapsedTimer>
#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

namespace {

using Block = CkToFProcessCnbl;

/// Looks at every frame that comes out.
class Sink : public IkFrameSink {
public:
    using Check = std::function<bool(const CkImageData&)>;
    explicit Sink(Check goodFrame) : m_goodFrame(std::move(goodFrame)) {}

    int takeFrame(CkImageData* data) override {
        const std::unique_ptr<CkImageData> frame(data);
        wrong += !m_goodFrame(*frame);
        ++frames;
        lastId = frame->frameId();
        return 0;
    }

    std::atomic<int> frames{0};
    std::atomic<int> wrong{0};
    std::atomic<int> lastId{-1};

private:
    Check m_goodFrame;
};

/// Lets the chain work until the condition holds; false after half a minute.
template <typename Condition>
bool waitFor(const Condition& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 30000) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// 4 phases, 8 x 8 pixels: d0 = 100, d90 = 0, d180 = -100, d270 = 0.
std::unique_ptr<CkImageData> fourPhases(const ToFChainRig& rig) {
    static constexpr int a[] = {200, 150, 100, 150};
    static constexpr int b[] = {100, 150, 200, 150};
    return rig.frame([](quint32, quint32 y, quint32 c) { return c == 0 ? a[y / 8] : b[y / 8]; });
}

/// Whether a frame is wholly the result of one transform of fourPhases.
bool isWhole(const CkImageData& data) {
    const SkPicBuf& picture = data.picBuf();
    const CkImageMetadata& metadata = data.metadata();
    const int last = valueAt(picture, picture.width - 1, picture.height - 1);
    if (picture.dataType == EkImageDataType::Float32) { // Depth: phase 0
        return picture.height == 8 && picture.channels == 2 &&
               metadata.channelNames.value(0) == "Phase shift" && metadata.phasesCount == 0 && last == 0 &&
               picture.maxValue > 0.0F;
    }
    if (picture.dataType == EkImageDataType::Int16) { // AandBtoAminB: the phase of 270 degrees
        return picture.height == 32 && picture.channels == 1 && metadata.colorFilterArray == 9 &&
               metadata.phasesCount == 4 && last == 0 && valueAt(picture, 0, 0) == 100;
    }
    if (picture.channels == 2) { // SetABPhase or Concat phases: the input
        return picture.height == 32 && metadata.phasesCount == 4 && last == 150;
    }
    // Amplitude: 200 / 4; Intensity: the mean of all samples.
    return picture.height == 8 && picture.dataType == EkImageDataType::UInt16 && metadata.phasesCount == 0 &&
           (last == 50 || last == 150);
}

TEST(RunningChain, FramesComeOutInOrder) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    Sink sink(isWhole);
    ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
    rig.start(Block::Depth);
    for (int i = 0; i < 100; ++i) {
        auto frame = fourPhases(rig);
        frame->picBuf().additionalData.frameNumber = quint64(i);
        ASSERT_TRUE(rig.source->push(std::move(frame)));
        ASSERT_TRUE(waitFor([&] { return sink.lastId == i; }));
    }
    EXPECT_EQ(sink.frames, 100);
    EXPECT_EQ(sink.wrong, 0);
    rig.chain->removeSink(&sink);
}

TEST(RunningChain, ConcatPassesStackedPhasesThroughToTheSinks) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    Sink sink(isWhole);
    ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
    rig.start(Block::ConcatPhases);
    for (int i = 0; i < 20; ++i) {
        auto frame = fourPhases(rig);
        frame->picBuf().additionalData.frameNumber = quint64(i);
        ASSERT_TRUE(rig.source->push(std::move(frame)));
        ASSERT_TRUE(waitFor([&] { return sink.lastId == i; }));
    }
    rig.stop();
    EXPECT_EQ(sink.frames, 20);
    EXPECT_EQ(sink.wrong, 0);
    const SkBlockStatistics statistics = rig.chain->blockStatistics(rig.block);
    EXPECT_EQ(statistics.framesOut, 20U);
    EXPECT_EQ(statistics.dropped, 0U);
    rig.chain->removeSink(&sink);
}

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

TEST(RunningChain, SetTransformHammeredFromOtherThreadsLeavesNoMixedFrame) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    Sink sink(isWhole);
    ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
    rig.start(Block::Amplitude);
    const std::unique_ptr<CkImageData> pattern = fourPhases(rig);
    std::atomic<bool> stop{false};
    std::thread camera([&] {
        while (!stop) {
            rig.source->push(std::unique_ptr<CkImageData>(pattern->share()));
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> users;
    for (int user = 0; user < 2; ++user) {
        users.emplace_back([&, user] {
            for (int i = 0; i < 150; ++i) {
                rig.block->setTransform(Block::EkTransformType((i * (user + 1) + user) % 7), i % 5 != 4);
            }
        });
    }
    for (std::thread& user : users) {
        user.join();
    }
    // The last word has to hold.
    rig.block->setTransform(Block::Depth, true);
    EXPECT_TRUE(rig.chain->started());
    const int before = sink.frames;
    EXPECT_TRUE(waitFor([&] { return sink.frames > before + 5; }));
    stop = true;
    camera.join();
    rig.stop();
    EXPECT_EQ(sink.wrong, 0);
    rig.chain->removeSink(&sink);
}

TEST(RunningChain, SetTransformReturnsWhenTheChainRunsWithTheNewTransform) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    rig.start(Block::Amplitude);
    for (int i = 0; i < 20; ++i) {
        const auto transform = i % 2 == 0 ? Block::Depth : Block::Amplitude;
        std::thread user([&] { rig.block->setTransform(transform, true); });
        user.join();
        EXPECT_TRUE(rig.chain->started());
        SkPicBufInfo info;
        ASSERT_TRUE(rig.chain->negotiatedInfo(rig.block, info, nullptr));
        EXPECT_EQ(info.channels, transform == Block::Depth ? 2U : 1U);
    }
}

TEST(RunningChain, FramesOfANewSizeMakeTheChainRenegotiate) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    std::atomic<quint32> expectedWidth{8};
    Sink sink([&](const CkImageData& data) { return data.picBuf().width == expectedWidth; });
    ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
    rig.start(Block::Depth);
    ASSERT_TRUE(rig.source->push(fourPhases(rig)));
    ASSERT_TRUE(waitFor([&] { return sink.frames == 1; }));
    // The pool has no room for frames a hundred times as large; the source has been told of them.
    expectedWidth = 800;
    rig.useAandB(800, 32, 4);
    EXPECT_TRUE(waitFor([&] {
        rig.source->push(fourPhases(rig));
        return sink.frames > 1;
    }));
    EXPECT_EQ(sink.wrong, 0);
    EXPECT_TRUE(rig.chain->started());
    rig.chain->removeSink(&sink);
}

/// Hands a frame to the source and waits until the chain is done with it.
void pushAndWait(const ToFChainRig& rig, std::unique_ptr<CkImageData> frame) {
    ASSERT_TRUE(rig.source->push(std::move(frame)));
    ASSERT_TRUE(waitFor([&] {
        const SkBlockStatistics statistics = rig.chain->blockStatistics(rig.source);
        return statistics.framesDone + statistics.dropped == statistics.framesIn;
    }));
}

TEST(RunningChain, ASequenceThatGetsLongerAndShorterComesOutWhole) {
    for (const auto transform : {Block::ConcatPhases, Block::Amplitude}) {
        ToFChainRig rig;
        rig.useAandB(4, 2, 1);
        rig.useSequence(2);
        std::atomic<quint32> height{0};
        Sink sink([&](const CkImageData& data) { return data.picBuf().height == height; });
        ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
        rig.start(transform);
        int sets = 0;
        for (const qint32 length : {2, 4, 4, 2, 8}) {
            height = transform == Block::ConcatPhases ? 2U * quint32(length) : 2U;
            rig.useSequence(length);
            for (qint32 index = 0; index < length; ++index) {
                pushAndWait(rig, rig.phase(index, 360 * index / std::max(length, 4), 200, 100));
            }
            EXPECT_EQ(sink.frames, ++sets) << length;
        }
        EXPECT_EQ(sink.wrong, 0);
        EXPECT_EQ(rig.block->errorMessage(), QString());
        EXPECT_EQ(rig.chain->blockStatistics(rig.block).dropped, 0U) << "a set that waits for more is none";
        rig.chain->removeSink(&sink);
    }
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

TEST(RunningChain, PhasesPassedOnOneByOneReachTheViews) {
    // Concat gathers nothing that comes neither from a camera nor from a video.
    ToFChainRig rig(std::make_unique<PushSource>());
    rig.useAandB(4, 2, 1);
    rig.useSequence(4);
    Sink sink([](const CkImageData& data) { return data.picBuf().height == 2; });
    ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
    rig.start(Block::ConcatPhases);
    for (int frame = 1; frame < 6; ++frame) {
        pushAndWait(rig, rig.phase(frame % 4, 0, 200, 100));
        EXPECT_EQ(sink.frames, frame);
    }
    EXPECT_EQ(sink.wrong, 0);
    EXPECT_EQ(rig.chain->blockStatistics(rig.block).dropped, 0U);
    rig.chain->removeSink(&sink);
}

TEST(RunningChain, ASourceThatDescribesItsFramesWronglyDoesNotStallTheChain) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    rig.start(Block::Depth);
    ToFChainRig wide;
    wide.useAandB(800, 32, 4);
    for (int i = 0; i < 200; ++i) {
        rig.source->push(fourPhases(wide));
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    Sink sink(isWhole);
    ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
    EXPECT_TRUE(waitFor([&] {
        rig.source->push(fourPhases(rig));
        return sink.frames > 0;
    }));
    rig.chain->removeSink(&sink);
}

TEST(RunningChain, AChainSavedAndLoadedHasTheSameBlocksWithTheSameTransforms) {
    CkRTTI::instance()->registerClass(nullptr, &Block::staticMetaObject, "CkChainable");
    CkRTTI::instance()->registerClass(nullptr, &CkVideoSource::staticMetaObject, "CkChainable");
    CkRTTI::instance()->registerClass(nullptr, &CkBellSource::staticMetaObject, "CkChainable");
    ToFChainRig rig;
    rig.block->setTransform(Block::ConcatPhases, false);
    auto* const second = new Block;
    second->setTransform(Block::Depth, false);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(rig.chain, second, rig.block));
    QDomDocument doc;
    QDomElement element = doc.createElement("chain");
    doc.appendChild(element);
    ASSERT_TRUE(rig.chain->save(doc, element));
    QDomDocument parsed;
    ASSERT_TRUE(parsed.setContent(doc.toString()));
    CkChain* const loaded = CkChainManager::instance()->createChain();
    QString error;
    ASSERT_TRUE(loaded->load(parsed.documentElement(), &error)) << error.toStdString();
    std::vector<int> transforms;
    for (CkChainable* block : loaded->blocks()) {
        if (const auto* tof = qobject_cast<Block*>(block)) {
            transforms.push_back(tof->transform());
        }
    }
    EXPECT_EQ(transforms, (std::vector<int>{Block::ConcatPhases, Block::Depth}));
    CkChainManager::instance()->closeChain(loaded);
}

} // namespace
