#include "plugins/zplToF/transform/CkToFTransformer.h"
#include "plugins/zplToF/transform/EkTransformType.h"
#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkImageData.h"

#include <gtest/gtest.h>

namespace {

using namespace ToFTransform;
using EkOutcome = CkToFTransformer::EkOutcome;

bool fromHeap(const SkPicBufInfo& info, bool /*clear*/, CkPicture& picture) {
    return picture.allocate(info);
}

/// Frames of two taps, 4 x 2 pixels.
class Frames {
public:
    CkImageMetadata metadata;

    Frames() {
        metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
        metadata.phasesCount = 1;
    }

    std::unique_ptr<CkImageData> frame(int a, int b, quint32 height = 2) const {
        CkPicture picture;
        EXPECT_TRUE(picture.allocate(SkPicBufInfo::of(4, height, 2, EkImageDataType::UInt16, 12)));
        for (quint32 y = 0; y < height; ++y) {
            auto* const row = reinterpret_cast<quint16*>(picture.picBuf().row(y));
            for (int x = 0; x < 4; ++x) {
                row[2 * x] = quint16(a);
                row[2 * x + 1] = quint16(b);
            }
        }
        auto data = std::make_unique<CkImageData>();
        data->setPicBuf(picture.take());
        data->setMetadata(metadata);
        return data;
    }

    std::unique_ptr<CkImageData> image(qint32 index, qint32 angle, qint32 length = 2) {
        metadata.phaseSequenceLength = length;
        metadata.phaseSequenceIndex = index;
        metadata.phaseAngle = angle;
        return frame(200, 100);
    }
};

CkToFTransformer::SkResult process(CkToFTransformer& transformer, int transform, const CkImageData& data,
                                   const CkToFTransformer::PictureSource& source = fromHeap) {
    SkToFFormat out;
    EXPECT_EQ(ToFNegotiation::negotiate(transform, data.picBuf(), out.info, &data.metadata(), &out.metadata),
              nullptr);
    return transformer.process(transform, data, out, source);
}

TEST(CkToFTransformer, AFrameBecomesANewOneOfTheNegotiatedFormat) {
    Frames frames;
    CkToFTransformer transformer;
    const auto data = frames.frame(200, 100);
    data->picBuf().additionalData.frameNumber = 17;
    const auto result = process(transformer, AandBtoAminB, *data);
    ASSERT_EQ(result.outcome, EkOutcome::NewFrame);
    EXPECT_EQ(result.refusal, EkFrameRefusal::None);
    ASSERT_NE(result.frame, nullptr);
    EXPECT_EQ(result.frame->picBuf().channels, 1U);
    EXPECT_EQ(reinterpret_cast<const qint16*>(result.frame->picBuf().row(1))[3], 100);
    EXPECT_EQ(result.frame->picBuf().additionalData.frameNumber, 17U);
    EXPECT_EQ(result.frame->metadata().tofFormatCode, ToFFormatCode::kAminusBBits12);
}

TEST(CkToFTransformer, ANumberThatIsNoTransformIsRefused) {
    Frames frames;
    CkToFTransformer transformer;
    for (int transform : {-1, 7}) {
        const auto result = process(transformer, transform, *frames.frame(200, 100));
        EXPECT_EQ(result.outcome, EkOutcome::Refused);
        EXPECT_EQ(result.refusal, EkFrameRefusal::UnknownTransform);
    }
}

TEST(CkToFTransformer, WithoutGatheringEveryImageOfASetIsProcessedByItself) {
    Frames frames;
    CkToFTransformer transformer;
    EXPECT_EQ(process(transformer, ConcatPhases, *frames.image(0, 0)).outcome, EkOutcome::SameFrame);
    EXPECT_EQ(process(transformer, Amplitude, *frames.image(0, 0)).outcome, EkOutcome::NewFrame);
    EXPECT_TRUE(transformer.angles().empty());
}

TEST(CkToFTransformer, ASetWaitsForItsLastImage) {
    Frames frames;
    CkToFTransformer transformer;
    transformer.reset(true);
    const auto first = frames.image(0, 0);
    ASSERT_EQ(transformer.prepare(first->picBuf(), first->metadata()), EkFrameRefusal::None);
    for (int transform : {Intensity, Amplitude, Depth, ConcatPhases}) {
        const auto waiting = process(transformer, transform, *first);
        EXPECT_EQ(waiting.outcome, EkOutcome::Waiting) << transform;
        EXPECT_EQ(waiting.frame, nullptr);
        EXPECT_EQ(transformer.angles(), (CkToFPicAPI::AngleList{0, CkToFPhaseCollector::kMissingAngle}));
        const auto done = process(transformer, transform, *frames.image(1, 90));
        ASSERT_EQ(done.outcome, EkOutcome::NewFrame) << transform;
        EXPECT_EQ(done.frame->picBuf().height, transform == ConcatPhases ? 4U : 2U);
        EXPECT_EQ(done.angleError, nullptr);
    }
    transformer.reset(true);
    EXPECT_TRUE(transformer.angles().empty());
}

TEST(CkToFTransformer, OnlyTransformsThatDependOnAnglesReportWrongOnes) {
    Frames frames;
    CkToFTransformer transformer;
    transformer.reset(true);
    const auto first = frames.image(0, 0);
    transformer.prepare(first->picBuf(), first->metadata());
    for (int transform : {Intensity, Amplitude, Depth, ConcatPhases}) {
        process(transformer, transform, *first);
        const auto done = process(transformer, transform, *frames.image(1, 180));
        EXPECT_EQ(done.outcome, EkOutcome::NewFrame) << "processed all the same";
        EXPECT_EQ(done.angleError != nullptr, transform == Amplitude || transform == Depth) << transform;
        EXPECT_EQ(transformer.angleError(transform), done.angleError);
    }
}

TEST(CkToFTransformer, ASetOfAnotherLengthThanPreparedIsRefused) {
    Frames frames;
    CkToFTransformer transformer;
    transformer.reset(true);
    const auto first = frames.image(0, 0);
    transformer.prepare(first->picBuf(), first->metadata());
    process(transformer, Depth, *first);
    const auto result = process(transformer, Depth, *frames.image(3, 90, 4));
    EXPECT_EQ(result.outcome, EkOutcome::Refused);
    EXPECT_EQ(result.refusal, EkFrameRefusal::SetDiffers);
}

TEST(CkToFTransformer, WithoutAPictureThereIsNoRefusal) {
    Frames frames;
    CkToFTransformer transformer;
    const auto result = process(transformer, Amplitude, *frames.frame(200, 100),
                                [](const SkPicBufInfo&, bool, CkPicture&) { return false; });
    EXPECT_EQ(result.outcome, EkOutcome::NoPicture);
    EXPECT_EQ(result.refusal, EkFrameRefusal::None);
    EXPECT_EQ(result.frame, nullptr);
}

TEST(CkToFTransformer, PicturesThatStayPartlyUnwrittenAreAskedForZeroed) {
    Frames frames;
    CkToFTransformer transformer;
    for (qint32 phases : {1, 2, 3, 4}) {
        frames.metadata.phasesCount = phases;
        bool cleared = false;
        process(transformer, Amplitude, *frames.frame(200, 100, 12),
                [&cleared](const SkPicBufInfo& info, bool clear, CkPicture& picture) {
                    cleared = clear;
                    return picture.allocate(info);
                });
        EXPECT_EQ(cleared, phases == 3) << phases;
    }
}

TEST(CkToFTransformer, MorePhasesThanRowsLeaveNoPixels) {
    Frames frames;
    CkToFTransformer transformer;
    frames.metadata.phasesCount = 4;
    bool asked = false;
    const auto result = process(transformer, Depth, *frames.frame(200, 100),
                                [&asked](const SkPicBufInfo&, bool, CkPicture&) { return asked = true; });
    EXPECT_EQ(result.outcome, EkOutcome::Refused);
    EXPECT_EQ(result.refusal, EkFrameRefusal::NoOutputPixels);
    EXPECT_FALSE(asked);
}

TEST(CkToFTransformer, AReferenceSectionWaitsAndIsSubtracted) {
    Frames frames;
    frames.metadata.sectionMode = 3;
    CkToFTransformer transformer;
    const auto reference = frames.frame(30, 20);
    ASSERT_EQ(transformer.prepare(reference->picBuf(), reference->metadata()), EkFrameRefusal::None);
    EXPECT_EQ(process(transformer, AandBtoAminB, *reference).outcome, EkOutcome::Waiting);
    frames.metadata.sectionIndex = 1;
    const auto result = process(transformer, AandBtoAminB, *frames.frame(230, 120));
    ASSERT_EQ(result.outcome, EkOutcome::NewFrame);
    EXPECT_EQ(reinterpret_cast<const qint16*>(result.frame->picBuf().row(0))[0], (230 - 30) - (120 - 20));
}

TEST(CkToFTransformer, AReferenceItWasNotPreparedForIsRefused) {
    Frames frames;
    CkToFTransformer transformer;
    const auto plain = frames.frame(30, 20);
    transformer.prepare(plain->picBuf(), plain->metadata());
    frames.metadata.sectionMode = 3;
    const auto result = process(transformer, Amplitude, *frames.frame(30, 20));
    EXPECT_EQ(result.outcome, EkOutcome::Refused);
    EXPECT_EQ(result.refusal, EkFrameRefusal::NoReference);
}

} // namespace
