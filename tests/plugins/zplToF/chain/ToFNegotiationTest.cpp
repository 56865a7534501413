#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "tests/plugins/zplToF/chain/NegotiationTable.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using namespace NegotiationTable;

void expectInfo(const SkPicBufInfo& info, const SkPicBufInfo& expected) {
    EXPECT_EQ(info.width, expected.width);
    EXPECT_EQ(info.height, expected.height);
    EXPECT_EQ(info.lineSize, expected.lineSize);
    EXPECT_EQ(info.channels, expected.channels);
    EXPECT_EQ(info.bitsPerChannel, expected.bitsPerChannel);
    EXPECT_EQ(info.linePadding, expected.linePadding);
    EXPECT_EQ(info.dataType, expected.dataType);
    EXPECT_EQ(info.storageFormat, expected.storageFormat);
    EXPECT_EQ(info.colorFilterArray, expected.colorFilterArray);
    EXPECT_EQ(info.layoutFlag, expected.layoutFlag);
}

CkImageMetadata changed(CkImageMetadata metadata, const Expected& expected) {
    if (expected.names != nullptr) {
        metadata.channelNames = QString(expected.names).split('|', Qt::SkipEmptyParts);
    }
    if (expected.phases >= 0) {
        metadata.phasesCount = qint32(expected.phases);
    }
    if (expected.colorFilterArray >= 0) {
        metadata.colorFilterArray = quint32(expected.colorFilterArray);
    }
    if (expected.code != 0) {
        metadata.tofFormatCode = expected.code;
    }
    if (expected.wholeSet) {
        metadata.phaseAngle = 0;
        metadata.phaseSequenceIndex = 0;
    }
    return metadata;
}

void expectNegotiation(const Picture& picture, int transform, const Expected& expected, bool withInput,
                       bool withOutput) {
    SkPicBufInfo in = picture.format.info();
    in.layoutFlag = picture.layoutFlag;
    const CkImageMetadata* const inMeta = withInput ? &picture.metadata : nullptr;
    CkImageMetadata outMeta;
    outMeta.cameraName = "left over from before";
    SkPicBufInfo out;
    CkToFProcessCnbl block;
    block.setTransform(CkToFProcessCnbl::EkTransformType(transform), false);

    const bool accepted = block.queryOutputImageInfo(in, out, inMeta, withOutput ? &outMeta : nullptr);
    const char* const text =
        ToFNegotiation::negotiate(transform, in, out, inMeta, withOutput ? &outMeta : nullptr);

    EXPECT_EQ(accepted, expected.error == nullptr);
    EXPECT_STREQ(text, expected.error);
    const bool copied = expected.error != nullptr || expected.same;
    SkPicBufInfo wanted = copied ? in : expected.format.info();
    wanted.layoutFlag = picture.layoutFlag;
    expectInfo(out, wanted);
    if (withOutput) {
        const CkImageMetadata original = withInput ? picture.metadata : CkImageMetadata();
        EXPECT_EQ(outMeta, copied ? original : changed(original, expected));
    }
}

TEST(ToFNegotiation, MatrixOfTransformsAndPictures) {
    for (const Picture& picture : kPictures) {
        for (int transform = 0; transform < 7; ++transform) {
            const Expected& expected = picture.expected[transform];
            for (bool withInput : {true, false}) {
                if (!withInput && picture.with == With::MetadataOnly) {
                    continue; // without metadata it is a picture of another kind
                }
                for (bool withOutput : {true, false}) {
                    SCOPED_TRACE(std::string(picture.name) + ", transform " + std::to_string(transform) +
                                 (withInput ? ", metadata" : ", no metadata") +
                                 (withOutput ? "" : ", no output metadata"));
                    expectNegotiation(picture, transform, expected, withInput, withOutput);
                }
            }
        }
    }
}

TEST(ToFNegotiation, TransformsOutsideTheListCopy) {
    for (const Picture& picture : kPictures) {
        for (int transform : {-1, 7, 100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
            SCOPED_TRACE(picture.name);
            expectNegotiation(picture, transform, same(), true, true);
            expectNegotiation(picture, transform, same(), false, true);
            expectNegotiation(picture, transform, same(), true, false);
        }
    }
}

TEST(ToFNegotiation, OutputsMayBeTheInputs) {
    for (const Picture& picture : kPictures) {
        for (int transform = 0; transform < 7; ++transform) {
            SkPicBufInfo in = picture.format.info();
            in.layoutFlag = picture.layoutFlag;
            SkPicBufInfo out;
            CkImageMetadata outMeta;
            const char* const text =
                ToFNegotiation::negotiate(transform, in, out, &picture.metadata, &outMeta);
            SkPicBufInfo both = in;
            CkImageMetadata bothMeta = picture.metadata;
            EXPECT_STREQ(ToFNegotiation::negotiate(transform, both, both, &bothMeta, &bothMeta), text);
            expectInfo(both, out);
            EXPECT_EQ(bothMeta, outMeta);
        }
    }
}

TEST(ToFNegotiation, APitchBeyond32BitsIsNoPictureAnyMore) {
    const SkPicBufInfo in = Format{0x40000000, 4, 0x80000000, 2, 8, U8, 0}.info();
    SkPicBufInfo out;
    EXPECT_EQ(ToFNegotiation::negotiate(CkToFProcessCnbl::Depth, in, out, nullptr, nullptr), nullptr);
    EXPECT_FALSE(CkPicBufAPI::isValid(out));
}

TEST(CkToFProcessCnblNegotiation, TheErrorTextIsClearedByTheNextSuccess) {
    CkToFProcessCnbl block;
    block.setTransform(CkToFProcessCnbl::SetABPhase, false);
    SkPicBufInfo out;
    EXPECT_FALSE(block.queryOutputImageInfo(Format{64, 48, 192, 3, 8, U8, 0}.info(), out, nullptr, nullptr));
    EXPECT_TRUE(block.queryOutputImageInfo(Format{64, 48, 128, 2, 8, U8, 0}.info(), out, nullptr, nullptr));
    EXPECT_EQ(block.errorMessage(), QString()) << "negotiating alone shows nothing";
}

// The examples of the format rules, one by one.

TEST(NegotiationExample, SingleChannel1664x1800UnderSetABPhase) {
    SkPicBufInfo out;
    CkImageMetadata outMeta;
    ASSERT_EQ(
        ToFNegotiation::negotiate(0, Format{1664, 1800, 1664, 1, 8, U8, 0}.info(), out, nullptr, &outMeta),
        nullptr);
    expectInfo(out, Format{832, 1800, 1664, 2, 8, U8, 8}.info());
    EXPECT_EQ(outMeta.channelNames, (QStringList{"A", "B"}));
}

TEST(NegotiationExample, ThreeChannelsUnderSetABPhaseFail) {
    SkPicBufInfo out;
    EXPECT_STREQ(
        ToFNegotiation::negotiate(0, Format{640, 480, 1920, 3, 8, U8, 0}.info(), out, nullptr, nullptr),
        "The input image data type is not supported.");
}

TEST(NegotiationExample, SixteenBitRawX2UnderAandBtoAminB) {
    SkPicBufInfo out;
    ASSERT_EQ(
        ToFNegotiation::negotiate(5, Format{100, 480, 400, 2, 12, U16, 0}.info(), out, nullptr, nullptr),
        nullptr);
    expectInfo(out, Format{100, 480, 256, 1, 12, I16, 9}.info());
}

TEST(NegotiationExample, FourPhasesAandBUnderDepth) {
    SkPicBufInfo out;
    ASSERT_EQ(
        ToFNegotiation::negotiate(3, Format{640, 1920, 2560, 2, 12, U16, 0}.info(), out, nullptr, nullptr),
        nullptr);
    expectInfo(out, Format{640, 480, 5120, 2, 32, F32, 0}.info());
}

TEST(NegotiationExample, AminusBUnderDepthHasOneChannelAndNoNames) {
    const CkImageMetadata inMeta = record(0x80a05f0c, 4, 9, {"A-B"});
    CkImageMetadata outMeta;
    SkPicBufInfo out;
    ASSERT_EQ(
        ToFNegotiation::negotiate(3, Format{640, 1920, 1280, 1, 12, I16, 9}.info(), out, &inMeta, &outMeta),
        nullptr);
    EXPECT_EQ(out.channels, 1U);
    EXPECT_EQ(out.dataType, F32);
    EXPECT_TRUE(outMeta.channelNames.isEmpty());
}

TEST(NegotiationExample, SetHybridOnThePlainPictureOfTheSensor) {
    SkPicBufInfo out;
    ASSERT_EQ(
        ToFNegotiation::negotiate(6, Format{832, 1800, 1664, 1, 16, U16, 0}.info(), out, nullptr, nullptr),
        nullptr);
    expectInfo(out, Format{832, 600, 5120, 3, 12, U16, 13}.info());
}

} // namespace
