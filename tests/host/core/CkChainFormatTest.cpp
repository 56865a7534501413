// Frames whose format is not the negotiated one.

#include "tests/host/core/chainFixture.h"
#include "zuCore/CkMemoryPool.h"
#include "zuCore/CkPicBufAPI.h"

using testing::ElementsAre;

namespace {

/// Outputs pictures large enough for a whole sequence, filled with the first byte of the frame.
class StackBlock : public AddBlock {
public:
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override {
        AddBlock::queryOutputImageInfo(in, out, pInMeta, pOutMeta);
        out.height = in.height * quint32(std::max(pInMeta->phaseSequenceLength, 1));
        return true;
    }
    IkChainData* processData(IkChainData* pData) override {
        auto* const input = dynamic_cast<CkImageData*>(pData);
        SkPicBufInfo info;
        CkImageMetadata metadata;
        SkPicBuf picture;
        queryOutputImageInfo(input->picBuf(), info, &input->metadata(), &metadata);
        if (!CkPicBufAPI::AllocPicBufFromPool(memoryPool(), this, picture, info, false)) {
            return nullptr;
        }
        std::fill_n(picture.data, CkPicBufAPI::byteSize(info), input->picBuf().data[0]);
        auto output = std::make_unique<CkImageData>();
        output->setPicBuf(picture);
        output->setMetadata(metadata);
        delete input;
        return output.release();
    }
};

/// Announces twice the height of the pictures that it passes through.
class UnstackedBlock : public PassBlock {
public:
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override {
        PassBlock::queryOutputImageInfo(in, out, pInMeta, pOutMeta);
        out.height = 2 * in.height;
        return true;
    }
};

class CkChainFormatTest : public ChainFixture {
protected:
    ~CkChainFormatTest() override {
        chain->stop();
        chain->removeSink(&sink);
    }

    /// Pushes a frame and waits until the chain has finished it.
    void run(const SkPicBufInfo& info, const CkImageMetadata& metadata, int value = 1) {
        ASSERT_TRUE(source->pushFormat(info, metadata, quint8(value)));
        ASSERT_TRUE(waitUntil([&] {
            const SkBlockStatistics statistics = chain->blockStatistics(source);
            return statistics.framesDone + statistics.dropped == statistics.framesIn;
        }));
    }

    CkImageMetadata negotiatedMetadata(CkChainable* block) const {
        SkPicBufInfo info;
        CkImageMetadata metadata;
        EXPECT_TRUE(chain->negotiatedInfo(block, info, &metadata));
        return metadata;
    }

    KeepingSink sink;
    const SkPicBufInfo format = packedFormat(8, 4);
};

CkImageMetadata sequenceOf(qint32 length) {
    CkImageMetadata metadata;
    metadata.phaseSequenceLength = length;
    return metadata;
}

using Change = void (*)(SkPicBufInfo&, CkImageMetadata&);

} // namespace

TEST_F(CkChainFormatTest, ALongerSequenceIsNegotiatedOnceAndLosesNoFrame) {
    auto* const block = branch(new StackBlock(), source);
    chain->addSink(block, &sink);
    source->announce(format, sequenceOf(2));
    ASSERT_TRUE(chain->start());
    run(format, sequenceOf(2), 1);
    EXPECT_EQ(sink.lastInfo().height, 8U);
    for (int value = 2; value < 7; ++value) {
        run(format, sequenceOf(4), value);
        EXPECT_EQ(sink.lastInfo().height, 16U);
    }
    EXPECT_THAT(sink.values(), ElementsAre(1, 2, 3, 4, 5, 6));
    EXPECT_EQ(block->starts, 2);
    EXPECT_EQ(chain->blockStatistics(source).dropped, 0U);
    EXPECT_EQ(chain->blockStatistics(block).dropped, 0U);
    EXPECT_EQ(block->errorMessage(), QString());
}

TEST_F(CkChainFormatTest, EveryFieldThatLastsIsNegotiatedOnceWhenItChanges) {
    const Change changes[] = {
        [](SkPicBufInfo& info, CkImageMetadata&) { info = packedFormat(9, 4); },
        [](SkPicBufInfo& info, CkImageMetadata&) { info = packedFormat(8, 5); },
        [](SkPicBufInfo& info, CkImageMetadata&) { info.lineSize = 16; },
        [](SkPicBufInfo& info, CkImageMetadata&) {
            info.width = 4;
            info.channels = 2;
        },
        [](SkPicBufInfo& info, CkImageMetadata&) { info.bitsPerChannel = 7; },
        [](SkPicBufInfo& info, CkImageMetadata&) { info.dataType = EkImageDataType::Int8; },
        [](SkPicBufInfo& info, CkImageMetadata&) { info.colorFilterArray = EkColorFilterArray::RawX2AandB; },
        [](SkPicBufInfo& info, CkImageMetadata&) { info.layoutFlag = true; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.channelNames = QStringList{"A"}; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.tofFormatCode = ToFFormatCode::kRawX2Bits8; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.colorFilterArray = 13; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.modulationFrequency = 20.0F; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.phasesCount = 4; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.phaseSequenceLength = 4; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.hybridPulseDuration = 1e-8F; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.sectionCount = 3; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.sectionMode = 3; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.lensFocalLength = 8.0F; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.frameRate = 30.0F; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.cameraName = "another"; },
        [](SkPicBufInfo&, CkImageMetadata& metadata) { metadata.cameraSerial = "7"; },
    };
    auto* const block = branch(new AddBlock(0), source);
    chain->addSink(block, &sink);
    source->announce(format);
    for (size_t i = 0; i < std::size(changes); ++i) {
        SCOPED_TRACE(i);
        block->starts = 0;
        ASSERT_TRUE(chain->start());
        SkPicBufInfo info = format;
        CkImageMetadata metadata;
        run(info, metadata);
        EXPECT_EQ(block->starts, 1);
        changes[i](info, metadata);
        const size_t before = sink.count();
        for (int frame = 0; frame < 5; ++frame) {
            run(info, metadata);
        }
        EXPECT_EQ(block->starts, 2);
        EXPECT_EQ(sink.count(), before + 5);
        EXPECT_EQ(negotiatedMetadata(block), metadata);
        SkPicBufInfo negotiated;
        ASSERT_TRUE(chain->negotiatedInfo(block, negotiated, nullptr));
        EXPECT_EQ(negotiated.width, info.width);
        EXPECT_EQ(negotiated.bitsPerChannel, info.bitsPerChannel);
        chain->stop();
    }
}

TEST_F(CkChainFormatTest, WhatChangesFromFrameToFrameIsNoFormat) {
    auto* const block = branch(new AddBlock(0), source);
    chain->addSink(block, &sink);
    source->announce(format);
    ASSERT_TRUE(chain->start());
    for (int i = 0; i < 10; ++i) {
        CkImageMetadata metadata;
        metadata.phaseSequenceIndex = i;
        metadata.phaseAngle = 90 * i;
        metadata.sectionIndex = quint32(i);
        metadata.exposureTimeUs = float(100 * i);
        metadata.timestampNs = i;
        metadata.frameNumber = quint64(i);
        run(format, metadata);
    }
    EXPECT_EQ(block->starts, 1);
    EXPECT_EQ(sink.count(), 10U);
}

TEST_F(CkChainFormatTest, ASingleFramePassedOnInAnotherSizeReachesViewsAndBlocksBehind) {
    auto* const passing = branch(new UnstackedBlock(), source);
    auto* const downstream = branch(new AddBlock(1), passing);
    KeepingSink atPassing;
    chain->addSink(passing, &atPassing);
    chain->addSink(downstream, &sink);
    for (const quint32 height : {4U, 6U, 5U}) {
        source->announce(packedFormat(8, height));
        ASSERT_TRUE(chain->start());
        const size_t before = sink.count();
        run(packedFormat(8, height), {}, 5);
        EXPECT_EQ(atPassing.count(), before + 1);
        ASSERT_EQ(sink.count(), before + 1);
        EXPECT_EQ(sink.lastInfo().height, height);
        EXPECT_EQ(downstream->inputAtStart.height, height) << "set up for the frames that arrive";
        EXPECT_EQ(chain->blockStatistics(passing).dropped, 0U);
        chain->stop();
    }
    // The size changes while the chain runs.
    ASSERT_TRUE(chain->start());
    for (const quint32 height : {5U, 9U, 9U, 3U}) {
        const size_t before = sink.count();
        run(packedFormat(8, height), {}, 5);
        ASSERT_EQ(sink.count(), before + 1);
        EXPECT_EQ(sink.lastInfo().height, height);
    }
    chain->stop();
    chain->removeSink(&atPassing);
}

TEST_F(CkChainFormatTest, OfAlternatingFormatsAtLeastEverySecondFrameComesOut) {
    auto* const block = branch(new AddBlock(0), source);
    chain->addSink(block, &sink);
    QStringList signalled;
    QObject::connect(
        source, &CkChainable::errorMessageChanged, source, [&](const QString& text) { signalled << text; },
        Qt::DirectConnection);
    for (const quint32 formats : {2U, 3U, 7U}) {
        SCOPED_TRACE(formats);
        source->announce(packedFormat(8, 4));
        ASSERT_TRUE(chain->start());
        const size_t before = sink.count();
        block->starts = 0;
        signalled.clear();
        bool lostBefore = false;
        for (quint32 i = 0; i < 300; ++i) {
            const size_t count = sink.count();
            run(packedFormat(8, 4 + i % formats), {});
            const bool lost = sink.count() == count;
            EXPECT_FALSE(lost && lostBefore) << i;
            EXPECT_TRUE(lost || sink.lastInfo().height == 4 + i % formats);
            lostBefore = lost;
        }
        const size_t delivered = sink.count() - before;
        EXPECT_GE(delivered, 150U);
        EXPECT_EQ(chain->blockStatistics(source).dropped, 300 - delivered) << "lost frames are counted";
        EXPECT_LE(block->starts, 150) << "not set up again for every frame";
        EXPECT_THAT(source->errorMessage().toStdString(), testing::HasSubstr("another format"));
        EXPECT_EQ(signalled.size(), 1) << "reported once, until it is over";
        chain->stop();
    }
    source->announce(format);
    ASSERT_TRUE(chain->start());
    run(packedFormat(8, 5), {});
    run(format, {});
    EXPECT_NE(source->errorMessage(), QString());
    for (int i = 0; i < 40; ++i) {
        run(format, {});
    }
    EXPECT_EQ(source->errorMessage(), QString()) << "and cleared afterwards";
}

TEST_F(CkChainFormatTest, MetadataThatAlternateDropNothingAndSetUpEverMoreRarely) {
    auto* const block = branch(new AddBlock(0), source);
    chain->addSink(block, &sink);
    ASSERT_TRUE(chain->start());
    constexpr int frames = 2000;
    for (int i = 0; i < frames; ++i) {
        CkImageMetadata metadata;
        metadata.modulationFrequency = i % 2 == 0 ? 20.0F : 25.0F;
        run(format, metadata);
    }
    EXPECT_EQ(sink.count(), size_t(frames));
    EXPECT_EQ(chain->blockStatistics(source).dropped, 0U);
    // At the start, and after delays of 2, 4, 8 ... 1024 frames, 2046 in total.
    EXPECT_LE(block->starts, 12);
    EXPECT_GE(block->starts, 6);
    EXPECT_EQ(source->errorMessage(), QString());
    // After a while without changes, the chain adapts to new metadata at once.
    for (int i = 0; i < 3000; ++i) {
        run(format, negotiatedMetadata(block));
    }
    const int starts = block->starts;
    CkImageMetadata metadata;
    metadata.modulationFrequency = 30.0F;
    run(format, metadata);
    EXPECT_EQ(block->starts, starts + 1);
    EXPECT_EQ(negotiatedMetadata(block), metadata);
}

TEST_F(CkChainFormatTest, SetsOfTwoLengthsInTurnAreAllFollowed) {
    auto* const block = branch(new StackBlock(), source);
    chain->addSink(block, &sink);
    source->announce(format, sequenceOf(4));
    ASSERT_TRUE(chain->start());
    for (int set = 0; set < 20; ++set) {
        const qint32 length = set % 2 == 0 ? 4 : 2;
        for (int i = 0; i < length; ++i) {
            run(format, sequenceOf(length));
            EXPECT_EQ(sink.lastInfo().height, 4U * quint32(length));
        }
    }
    EXPECT_EQ(sink.count(), 60U);
    EXPECT_EQ(chain->blockStatistics(block).dropped, 0U);
}
