#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

constexpr auto I8 = EkImageDataType::Int8;
constexpr auto U8 = EkImageDataType::UInt8;
constexpr auto I16 = EkImageDataType::Int16;
constexpr auto U16 = EkImageDataType::UInt16;
constexpr auto U32 = EkImageDataType::UInt32;
constexpr auto F32 = EkImageDataType::Float32;
constexpr auto F64 = EkImageDataType::Float64;
constexpr auto T11 = EkImageDataType::Other16;
constexpr auto T77 = EkImageDataType(77);

const char* const notSupported = "The input image data type is not supported.";
const char* const wantsAandB = "The input image must be RAWX2 image with A and B channel.";
const char* const wantsAmplitude =
    "The input image must be RAWX2 image with A and B channel, or RAW A minus B ToF "
    "image, or X1X2X3 ToF image.";
const char* const wantsDepth =
    "The input image must be RAWX2 image with A and B channels, or RAW A minus B ToF "
    "image, or X1X2X3 ToF image.";

/// Descriptor, in the order width, height, lineSize, channels, bits, type, colour filter code.
struct Format {
    quint32 width, height, lineSize, channels, bits;
    EkImageDataType type;
    quint32 colorFilterArray;

    SkPicBufInfo info() const {
        SkPicBufInfo result;
        result.width = width;
        result.height = height;
        result.lineSize = lineSize;
        result.channels = channels;
        result.bitsPerChannel = bits;
        result.linePadding = 7; // inherited by every output
        result.dataType = type;
        result.storageFormat = EkDataStorageFormat::Interleaved;
        result.colorFilterArray = EkColorFilterArray(colorFilterArray);
        return result;
    }
};

/// What a transform makes of a picture: an error, or a format and changes of the metadata.
struct Expected {
    const char* error = nullptr;
    Format format{};
    bool same = false;           ///< the input's format and metadata as they are
    const char* names = nullptr; ///< joined by '|'; null: kept
    qint64 phases = -1;          ///< -1: kept
    qint64 colorFilterArray = -1;
    quint32 code = 0;
    bool wholeSet = false; ///< angle and index are 0
};

Expected error(const char* text) {
    return {.error = text};
}
Expected same() {
    return {.same = true};
}
Expected aAndB(const Format& format, qint64 phases) {
    return {.format = format, .names = "A|B", .phases = phases, .colorFilterArray = 8, .code = 0x80AB0F0C};
}
Expected aMinusB(const Format& format) {
    return {.format = format, .names = "", .colorFilterArray = 9, .code = 0x80A05F0C};
}
Expected single(const Format& format, const char* names = "") {
    return {.format = format, .names = names, .phases = 0, .colorFilterArray = 0};
}
Expected hybrid(const Format& format) {
    return {.format = format, .names = "X1|X2|X3", .colorFilterArray = 13};
}

const char* const phaseShift = "Phase shift|Confidence";
const char* const depth = "Depth|Confidence";

enum class With { Both, MetadataOnly };

struct Picture {
    const char* name;
    Format format;
    CkImageMetadata metadata;
    With with;
    Expected expected[7];
    bool layoutFlag = false;
};

CkImageMetadata record(quint32 code, qint32 phases, quint32 colorFilterArray = 0, QStringList names = {}) {
    CkImageMetadata metadata;
    metadata.tofFormatCode = code;
    metadata.phasesCount = phases;
    metadata.colorFilterArray = colorFilterArray;
    metadata.channelNames = std::move(names);
    metadata.modulationFrequency = 20.0F;
    metadata.phaseAngle = 180;
    metadata.phaseSequenceIndex = 2;
    metadata.hybridPulseDuration = 8e-8F;
    metadata.timestampNs = 123;
    metadata.cameraName = "cam";
    return metadata;
}

CkImageMetadata sequence(CkImageMetadata metadata, qint32 length) {
    metadata.phaseSequenceLength = length;
    return metadata;
}

CkImageMetadata sections(CkImageMetadata metadata, quint32 count, quint32 mode) {
    metadata.sectionCount = count;
    metadata.sectionMode = mode;
    return metadata;
}

std::vector<Picture> pictures() {
    const QStringList x123{"X1", "X2", "X3"};
    return {
        {"A and B, 16 bit, 4 phases",
         {640, 1920, 2560, 2, 12, U16, 0},
         record(0x80ab0f0c, 4),
         With::Both,
         {aAndB({640, 1920, 2560, 2, 12, U16, 8}, 4), single({640, 480, 1280, 1, 12, U16, 0}),
          single({640, 480, 1280, 1, 12, U16, 0}), single({640, 480, 5120, 2, 32, F32, 0}, phaseShift),
          same(), aMinusB({640, 1920, 1280, 1, 12, I16, 9}), error(notSupported)}},
        {"A and B, 8 bit, 1 phase, odd width",
         {641, 480, 1282, 2, 8, U8, 0},
         record(0x80ab0f08, 1),
         With::Both,
         {aAndB({641, 480, 1282, 2, 8, U8, 8}, 1), single({641, 480, 768, 1, 8, U8, 0}),
          single({641, 480, 768, 1, 8, U8, 0}), single({641, 480, 5376, 2, 32, F32, 0}, phaseShift), same(),
          aMinusB({641, 480, 768, 1, 8, I8, 9}), error(notSupported)}},
        {"A and B of the unprocessed two-byte type",
         {100, 960, 400, 2, 12, T11, 0},
         record(0x84ab0f0c, 0),
         With::Both,
         {aAndB({100, 960, 400, 2, 12, T11, 8}, 2), single({100, 480, 256, 1, 12, T11, 0}),
          single({100, 480, 256, 1, 12, T11, 0}), single({100, 480, 1024, 2, 32, F32, 0}, phaseShift), same(),
          aMinusB({100, 960, 256, 1, 12, T11, 9}), error(notSupported)}},
        {"two channels of signed 16-bit samples: kept",
         {300, 480, 1200, 2, 12, I16, 0},
         record(0x80ab0f0c, 1),
         With::Both,
         {aAndB({300, 480, 1200, 2, 12, I16, 8}, 1), single({300, 480, 768, 1, 12, I16, 0}),
          single({300, 480, 768, 1, 12, I16, 0}), single({300, 480, 2560, 2, 32, F32, 0}, phaseShift), same(),
          aMinusB({300, 480, 768, 1, 12, I16, 9}), error(notSupported)}},
        {"two channels of signed 8-bit samples: kept",
         {300, 480, 600, 2, 8, I8, 0},
         record(0x80ab0f08, 1),
         With::Both,
         {aAndB({300, 480, 600, 2, 8, I8, 8}, 1), single({300, 480, 512, 1, 8, I8, 0}),
          single({300, 480, 512, 1, 8, I8, 0}), single({300, 480, 2560, 2, 32, F32, 0}, phaseShift), same(),
          aMinusB({300, 480, 512, 1, 8, I8, 9}), error(notSupported)}},
        {"two channels of a type that nobody knows: one byte a sample",
         {300, 480, 600, 2, 8, T77, 0},
         record(0x80ab0f08, 1),
         With::Both,
         {aAndB({300, 480, 600, 2, 8, T77, 8}, 1), single({300, 480, 512, 1, 8, T77, 0}),
          single({300, 480, 512, 1, 8, T77, 0}), single({300, 480, 2560, 2, 32, F32, 0}, phaseShift), same(),
          aMinusB({300, 480, 512, 1, 8, T77, 9}), error(notSupported)}},
        {"two channels with a code that is not A and B",
         {640, 480, 2560, 2, 12, U16, 0},
         record(0x84ab0f08, 1),
         With::MetadataOnly,
         {aAndB({640, 480, 2560, 2, 12, U16, 8}, 1), error(wantsAandB), error(wantsAmplitude),
          error(wantsDepth), same(), error(wantsAandB), error(notSupported)}},
        {"A minus B, 16 bit, 4 phases",
         {640, 1920, 1280, 1, 12, I16, 9},
         record(0x80a05f0c, 4, 9),
         With::Both,
         {aAndB({320, 1920, 1280, 2, 12, I16, 8}, 4), error(wantsAandB),
          single({640, 480, 1280, 1, 12, U16, 0}), single({640, 480, 2560, 1, 32, F32, 0}), same(),
          error(wantsAandB), error(notSupported)}},
        {"A minus B, 8 bit, 2 phases",
         {642, 960, 642, 1, 8, I8, 0},
         record(0x80a05f08, 2),
         With::Both,
         {aAndB({321, 960, 642, 2, 8, I8, 8}, 2), error(wantsAandB), single({642, 480, 768, 1, 8, U8, 0}),
          single({642, 480, 2816, 1, 32, F32, 0}), same(), error(wantsAandB), error(notSupported)}},
        {"hybrid, 16 bit, 3 sections",
         {832, 1800, 4992, 3, 12, U16, 13},
         record(0, 3, 13, x123),
         With::Both,
         {error(notSupported),
          single({832, 600, 1792, 1, 12, U16, 0}),
          single({832, 600, 1792, 1, 12, U16, 0}),
          single({832, 600, 6656, 2, 32, F32, 0}, depth),
          {.format = {832, 600, 5120, 3, 16, U16, 13}, .phases = 0},
          error(wantsAandB),
          hybrid({832, 1800, 4992, 3, 12, U16, 13})}},
        {"hybrid, 8 bit, 1 section",
         {832, 600, 2496, 3, 8, U8, 13},
         record(0, 1, 13, x123),
         With::Both,
         {error(notSupported), single({832, 600, 1024, 1, 8, U8, 0}), single({832, 600, 1024, 1, 8, U8, 0}),
          single({832, 600, 6656, 2, 32, F32, 0}, depth), same(), error(wantsAandB),
          hybrid({832, 600, 2496, 3, 8, U8, 13})}},
        {"hybrid, 32 bit, layout flag set",
         {832, 600, 9984, 3, 32, U32, 13},
         record(0, 1, 13, x123),
         With::Both,
         {error(notSupported), single({832, 600, 3328, 1, 32, U32, 0}),
          single({832, 600, 3328, 1, 32, U32, 0}), single({832, 600, 6656, 2, 32, F32, 0}, depth), same(),
          error(wantsAandB), hybrid({832, 600, 9984, 3, 32, U32, 13})},
         true},
        {"plain picture of the hybrid sensor, 16 bit",
         {832, 1800, 1664, 1, 16, U16, 0},
         record(0, 0),
         With::Both,
         {aAndB({416, 1800, 1664, 2, 16, U16, 8}, 1), error(wantsAandB), error(wantsAmplitude),
          error(wantsDepth), same(), error(wantsAandB), hybrid({832, 600, 5120, 3, 12, U16, 13})}},
        {"plain picture of the hybrid sensor, 10 of 16 bit",
         {832, 1800, 1664, 1, 10, U16, 0},
         record(0, 0),
         With::Both,
         {aAndB({416, 1800, 1664, 2, 10, U16, 8}, 1), error(wantsAandB), error(wantsAmplitude),
          error(wantsDepth), same(), error(wantsAandB), hybrid({832, 600, 5120, 3, 10, U16, 13})}},
        {"plain picture of the hybrid sensor, 8 bit",
         {832, 1800, 832, 1, 8, U8, 0},
         record(0, 0),
         With::Both,
         {aAndB({416, 1800, 832, 2, 8, U8, 8}, 1), error(wantsAandB), error(wantsAmplitude),
          error(wantsDepth), same(), error(wantsAandB), hybrid({832, 600, 2560, 3, 8, U8, 13})}},
        {"plain picture of the hybrid sensor, 32 bit",
         {832, 1800, 3328, 1, 16, U32, 0},
         record(0, 0),
         With::Both,
         {aAndB({416, 1800, 3328, 2, 16, U32, 8}, 1), error(wantsAandB), error(wantsAmplitude),
          error(wantsDepth), same(), error(wantsAandB), hybrid({832, 600, 9984, 3, 16, U32, 13})}},
        {"plain picture of the hybrid sensor, double",
         {832, 1800, 6656, 1, 64, F64, 0},
         record(0, 0),
         With::Both,
         {aAndB({416, 1800, 6656, 2, 64, F64, 8}, 1), error(wantsAandB), error(wantsAmplitude),
          error(wantsDepth), same(), error(wantsAandB), hybrid({832, 600, 19968, 3, 64, F64, 13})}},
        {"colour picture",
         {640, 480, 1920, 3, 8, U8, 0},
         record(0, 0),
         With::Both,
         {error(notSupported), error(wantsAandB), error(wantsAmplitude), error(wantsDepth), same(),
          error(wantsAandB), hybrid({640, 480, 1920, 3, 8, U8, 13})}},
        {"float picture, two channels",
         {640, 480, 5120, 2, 32, F32, 0},
         record(0x80ab0f0c, 0),
         With::Both,
         {aAndB({640, 480, 5120, 2, 32, F32, 8}, 1), error(wantsAandB), error(wantsAmplitude),
          error(wantsDepth), same(), error(wantsAandB), error(notSupported)}},
        {"four channels",
         {64, 48, 256, 4, 8, U8, 0},
         record(0, 0),
         With::Both,
         {error(notSupported), error(wantsAandB), error(wantsAmplitude), error(wantsDepth), same(),
          error(wantsAandB), error(notSupported)}},
        {"A and B, phases as separate images",
         {640, 480, 2560, 2, 12, U16, 0},
         sequence(record(0x80ab0f0c, 1), 4),
         With::MetadataOnly,
         {aAndB({640, 480, 2560, 2, 12, U16, 8}, 1),
          single({640, 480, 1280, 1, 12, U16, 0}),
          single({640, 480, 1280, 1, 12, U16, 0}),
          single({640, 480, 5120, 2, 32, F32, 0}, phaseShift),
          {.format = {640, 1920, 2560, 2, 12, U16, 0}, .phases = 4, .wholeSet = true},
          aMinusB({640, 480, 1280, 1, 12, I16, 9}),
          error(notSupported)}},
        {"hybrid, sections as separate images",
         {832, 600, 4992, 3, 12, U16, 13},
         sections(record(0, 1, 13, x123), 3, 0),
         With::MetadataOnly,
         {error(notSupported),
          single({832, 600, 1792, 1, 12, U16, 0}),
          single({832, 600, 1792, 1, 12, U16, 0}),
          single({832, 600, 6656, 2, 32, F32, 0}, depth),
          {.format = {832, 600, 5120, 3, 16, U16, 13}},
          error(wantsAandB),
          hybrid({832, 600, 4992, 3, 12, U16, 13})}},
        {"hybrid, one section beside its reference",
         {832, 600, 4992, 3, 12, U16, 13},
         sections(record(0, 1, 13, x123), 2, 3),
         With::MetadataOnly,
         {error(notSupported), single({832, 600, 1792, 1, 12, U16, 0}),
          single({832, 600, 1792, 1, 12, U16, 0}), single({832, 600, 6656, 2, 32, F32, 0}, depth), same(),
          error(wantsAandB), hybrid({832, 600, 4992, 3, 12, U16, 13})}},
        {"sections announced for a picture that is not hybrid",
         {640, 480, 1280, 1, 12, I16, 0},
         sections(record(0x84a05f0c, 1, 13), 4, 0),
         With::MetadataOnly,
         {aAndB({320, 480, 1280, 2, 12, I16, 8}, 1),
          error(wantsAandB),
          single({640, 480, 1280, 1, 12, U16, 0}),
          single({640, 480, 2560, 1, 32, F32, 0}),
          {.format = {640, 0, 1280, 1, 12, I16, 0}, .phases = 0, .wholeSet = true},
          error(wantsAandB),
          error(notSupported)}},
        {"a sequence of two billion images",
         {640, 480, 2560, 2, 12, U16, 0},
         sequence(record(0x80ab0f0c, 1), 2000000000),
         With::MetadataOnly,
         {aAndB({640, 480, 2560, 2, 12, U16, 8}, 1),
          single({640, 480, 1280, 1, 12, U16, 0}),
          single({640, 480, 1280, 1, 12, U16, 0}),
          single({640, 480, 5120, 2, 32, F32, 0}, phaseShift),
          {.format = {640, 0xffffffff, 2560, 2, 12, U16, 0}, .phases = 2000000000, .wholeSet = true},
          aMinusB({640, 480, 1280, 1, 12, I16, 9}),
          error(notSupported)}},
        {"more phases than rows",
         {64, 3, 256, 2, 12, U16, 0},
         record(0x80ab0f0c, 4),
         With::MetadataOnly,
         {aAndB({64, 3, 256, 2, 12, U16, 8}, 4), single({64, 0, 256, 1, 12, U16, 0}),
          single({64, 0, 256, 1, 12, U16, 0}), single({64, 0, 512, 2, 32, F32, 0}, phaseShift), same(),
          aMinusB({64, 3, 256, 1, 12, I16, 9}), error(notSupported)}},
        {"an unsupported phases count",
         {64, 9, 256, 2, 12, U16, 0},
         record(0x80ab0f0c, 3),
         With::MetadataOnly,
         {aAndB({64, 9, 256, 2, 12, U16, 8}, 3), single({64, 3, 256, 1, 12, U16, 0}),
          single({64, 3, 256, 1, 12, U16, 0}), single({64, 3, 512, 2, 32, F32, 0}, phaseShift), same(),
          aMinusB({64, 9, 256, 1, 12, I16, 9}), error(notSupported)}},
    };
}

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
    for (const Picture& picture : pictures()) {
        for (int transform = 0; transform < 7; ++transform) {
            const Expected& expected = picture.expected[transform];
            for (bool withInput : {true, false}) {
                if (!withInput && picture.with == With::MetadataOnly) {
                    continue; // without its metadata it is another picture
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
    for (const Picture& picture : pictures()) {
        for (int transform : {-1, 7, 100, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
            SCOPED_TRACE(picture.name);
            expectNegotiation(picture, transform, same(), true, true);
            expectNegotiation(picture, transform, same(), false, true);
            expectNegotiation(picture, transform, same(), true, false);
        }
    }
}

TEST(ToFNegotiation, OutputsMayBeTheInputs) {
    for (const Picture& picture : pictures()) {
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
