#include "tests/plugins/zplToF/chain/ToFRunningChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkRTTI.h"

#include <QDomDocument>

namespace {

using Block = CkToFProcessCnbl;

TEST(RunningChain, FramesComeOutInOrder) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    CheckingSink sink(isWhole);
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
    CheckingSink sink(isWhole);
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

TEST(RunningChain, SetTransformHammeredFromOtherThreadsLeavesNoMixedFrame) {
    ToFChainRig rig;
    rig.useAandB(8, 32, 4);
    CheckingSink sink(isWhole);
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
    // The last change wins.
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
    CheckingSink sink([&](const CkImageData& data) { return data.picBuf().width == expectedWidth; });
    ASSERT_TRUE(rig.chain->addSink(rig.block, &sink));
    rig.start(Block::Depth);
    ASSERT_TRUE(rig.source->push(fourPhases(rig)));
    ASSERT_TRUE(waitFor([&] { return sink.frames == 1; }));
    // The pool has no room for frames a hundred times as large, although the source declares them.
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

TEST(RunningChain, ASequenceThatGetsLongerAndShorterComesOutWhole) {
    for (const auto transform : {Block::ConcatPhases, Block::Amplitude}) {
        ToFChainRig rig;
        rig.useAandB(4, 2, 1);
        rig.useSequence(2);
        std::atomic<quint32> height{0};
        CheckingSink sink([&](const CkImageData& data) { return data.picBuf().height == height; });
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

TEST(RunningChain, PhasesPassedOnOneByOneReachTheViews) {
    // Concat only gathers images of a camera or a video.
    ToFChainRig rig(std::make_unique<PushSource>());
    rig.useAandB(4, 2, 1);
    rig.useSequence(4);
    CheckingSink sink([](const CkImageData& data) { return data.picBuf().height == 2; });
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
    CheckingSink sink(isWhole);
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
