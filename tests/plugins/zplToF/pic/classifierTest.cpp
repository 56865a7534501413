#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

SkPicBufInfo described(quint32 channels, quint32 type, bool flag = false, quint32 colors = 0,
                       quint32 height = 480) {
    SkPicBufInfo info;
    info.width = 640;
    info.height = height;
    info.channels = channels;
    info.dataType = EkImageDataType(type);
    info.layoutFlag = flag;
    info.colorFilterArray = EkColorFilterArray(colors);
    return info;
}

CkImageMetadata withCode(quint32 code) {
    CkImageMetadata metadata;
    metadata.tofFormatCode = code;
    return metadata;
}

const quint32 kAllCodes[] = {0x80ab0f08U, 0x80ab0f0cU, 0x84ab0f0cU, 0x80a05f08U, 0x80a05f0cU,
                             0x84a05f0cU, 0x84ab0f08U, 0x84a05f08U, 0U};

TEST(TwoTapPicture, AcceptsExactlyItsThreeFormatCodes) {
    const SkPicBufInfo info = described(2, 4);
    for (int index = 0; index < 9; ++index) {
        const CkImageMetadata metadata = withCode(kAllCodes[index]);
        EXPECT_EQ(CkToFPicAPI::isRawX2ToFABPic(info, &metadata), index < 3) << std::hex << kAllCodes[index];
    }
}

TEST(TwoTapPicture, Code84ab0f08IsNotOne) {
    const CkImageMetadata wrong = withCode(0x84ab0f08U);
    const CkImageMetadata right = withCode(0x80ab0f0cU);
    EXPECT_FALSE(CkToFPicAPI::isRawX2ToFABPic(described(2, 4), &wrong));
    EXPECT_TRUE(CkToFPicAPI::isRawX2ToFABPic(described(2, 4), &right));
}

TEST(TwoTapPicture, DataType11PassesTheTest) {
    EXPECT_TRUE(CkToFPicAPI::isRawX2ToFABPic(described(2, 11), nullptr));
}

TEST(TwoTapPicture, RefusesWideTypesOtherChannelsAndTheLayoutFlag) {
    for (quint32 type = 0; type < 20; ++type) {
        EXPECT_EQ(CkToFPicAPI::isRawX2ToFABPic(described(2, type), nullptr), type < 5 || type > 10) << type;
    }
    for (quint32 channels : {0U, 1U, 3U, 4U}) {
        EXPECT_FALSE(CkToFPicAPI::isRawX2ToFABPic(described(channels, 4), nullptr));
    }
    EXPECT_FALSE(CkToFPicAPI::isRawX2ToFABPic(described(2, 4, true), nullptr));
}

TEST(DifferencePicture, AcceptsExactlyItsThreeFormatCodes) {
    const SkPicBufInfo info = described(1, 3);
    for (int index = 0; index < 9; ++index) {
        const CkImageMetadata metadata = withCode(kAllCodes[index]);
        EXPECT_EQ(CkToFPicAPI::isRawToFAminBPic(info, &metadata), index >= 3 && index < 6) << index;
    }
}

TEST(DifferencePicture, LayoutFlagMakesNoDifference) {
    EXPECT_TRUE(CkToFPicAPI::isRawToFAminBPic(described(1, 1, true), nullptr));
    EXPECT_TRUE(CkToFPicAPI::isRawToFAminBPic(described(1, 3, true), nullptr));
}

TEST(DifferencePicture, OnlySignedEightAndSixteenBitsInOneChannel) {
    for (quint32 type = 0; type < 20; ++type) {
        EXPECT_EQ(CkToFPicAPI::isRawToFAminBPic(described(1, type), nullptr), type == 1 || type == 3);
    }
    EXPECT_FALSE(CkToFPicAPI::isRawToFAminBPic(described(2, 3), nullptr));
    EXPECT_FALSE(CkToFPicAPI::isRawToFAminBPic(described(0, 3), nullptr));
}

TEST(HybridPicture, LayoutFlagIsOverlookedForUnsigned32BitOnly) {
    EXPECT_TRUE(CkToFPicAPI::isRawToFHybridPic(described(3, 6, true, 13), nullptr));
    EXPECT_FALSE(CkToFPicAPI::isRawToFHybridPic(described(3, 4, true, 13), nullptr));
    EXPECT_TRUE(CkToFPicAPI::isRawToFHybridPic(described(3, 4, false, 13), nullptr));
}

TEST(HybridPicture, TypesColoursAndChannels) {
    for (quint32 type = 0; type < 20; ++type) {
        const bool passes = type < 5 || type == 6 || type > 10;
        EXPECT_EQ(CkToFPicAPI::isRawToFHybridPic(described(3, type, false, 13), nullptr), passes) << type;
    }
    EXPECT_FALSE(CkToFPicAPI::isRawToFHybridPic(described(3, 4, false, 0), nullptr));
    EXPECT_FALSE(CkToFPicAPI::isRawToFHybridPic(described(2, 4, false, 13), nullptr));
    const CkImageMetadata metadata = withCode(0x80ab0f08U);
    EXPECT_TRUE(CkToFPicAPI::isRawToFHybridPic(described(3, 4, false, 13), &metadata));
}

TEST(LayoutFlag, CountsForTwoTapsAndForHybridButNotOf32Bits) {
    const CkImageMetadata taps = withCode(0x80ab0f0cU);
    const CkImageMetadata difference = withCode(0x80a05f0cU);
    CkImageMetadata noNames;
    for (const quint32 type : {0U, 1U, 2U, 3U, 4U, 6U, 9U, 11U, 12U}) {
        SCOPED_TRACE(type);
        EXPECT_FALSE(CkToFPicAPI::isRawX2ToFABPic(described(2, type, true), nullptr));
        EXPECT_FALSE(CkToFPicAPI::isRawX2ToFABPic(described(2, type, true), &taps));
        EXPECT_EQ(CkToFPicAPI::isRawToFAminBPic(described(1, type, true), nullptr), type == 1 || type == 3);
        EXPECT_EQ(CkToFPicAPI::isRawToFAminBPic(described(1, type, true), &difference),
                  type == 1 || type == 3);
        EXPECT_EQ(CkToFPicAPI::isRawToFHybridPic(described(3, type, true, 13), nullptr), type == 6);
        EXPECT_EQ(CkToFPicAPI::isRawToFHybridPic(described(3, type, true, 13), &noNames), type == 6);
        EXPECT_EQ(CkToFPicAPI::isPhaseShiftImage(described(2, type, true), nullptr), type == 9);
        EXPECT_EQ(CkToFPicAPI::isDepthImage(described(2, type, true), &noNames), type == 9);
    }
}

TEST(HybridPicture, TheDescriptorSaysSoWhateverTheMetadataSay) {
    CkImageMetadata metadata;
    metadata.colorFilterArray = 13;
    EXPECT_FALSE(CkToFPicAPI::isRawToFHybridPic(described(3, 4, false, 0), &metadata));
    EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(3, 4, false, 0, 1800), &metadata), 1U);
    metadata.colorFilterArray = 0;
    EXPECT_TRUE(CkToFPicAPI::isRawToFHybridPic(described(3, 4, false, 13), &metadata));
    EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(3, 4, false, 13, 1800), &metadata), 3U);
}

TEST(FloatPicture, OneChannelWithoutMetadataIsPhaseShiftAndDepth) {
    EXPECT_TRUE(CkToFPicAPI::isPhaseShiftImage(described(1, 9), nullptr));
    EXPECT_TRUE(CkToFPicAPI::isDepthImage(described(1, 9), nullptr));
}

TEST(FloatPicture, FirstChannelNameDecidesCaseSensitively) {
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{"Phase shift", "Confidence"};
    EXPECT_TRUE(CkToFPicAPI::isPhaseShiftImage(described(2, 9), &metadata));
    EXPECT_FALSE(CkToFPicAPI::isDepthImage(described(2, 9), &metadata));
    metadata.channelNames = QStringList{"Depth", "Phase shift"};
    EXPECT_FALSE(CkToFPicAPI::isPhaseShiftImage(described(2, 9), &metadata));
    EXPECT_TRUE(CkToFPicAPI::isDepthImage(described(1, 9), &metadata));
    metadata.channelNames = QStringList{"phase shift"};
    EXPECT_FALSE(CkToFPicAPI::isPhaseShiftImage(described(1, 9), &metadata));
}

TEST(FloatPicture, FewerNamesThanChannelsCountsAsAny) {
    CkImageMetadata metadata;
    EXPECT_TRUE(CkToFPicAPI::isPhaseShiftImage(described(1, 9), &metadata));
    metadata.channelNames = QStringList{"Grey"};
    EXPECT_TRUE(CkToFPicAPI::isDepthImage(described(2, 9), &metadata));
    EXPECT_FALSE(CkToFPicAPI::isDepthImage(described(1, 9), &metadata));
}

TEST(FloatPicture, ChannelsAndTypes) {
    EXPECT_TRUE(CkToFPicAPI::isPhaseShiftImage(described(0, 9), nullptr));
    EXPECT_FALSE(CkToFPicAPI::isPhaseShiftImage(described(3, 9), nullptr));
    EXPECT_FALSE(CkToFPicAPI::isDepthImage(described(1, 10), nullptr));
    const CkImageMetadata noNames;
    EXPECT_FALSE(CkToFPicAPI::isDepthImage(described(0, 9), &noNames));
}

TEST(SeparatePhases, SequenceLengthAgainstPhasesCount) {
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(nullptr));
    CkImageMetadata metadata;
    metadata.phaseSequenceLength = 4;
    metadata.phasesCount = 1;
    EXPECT_TRUE(CkToFPicAPI::incomingSeparatePhases(&metadata));
    metadata.phasesCount = 4;
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(&metadata));
    metadata.phaseSequenceLength = 2; // fewer images than phases also differ
    EXPECT_TRUE(CkToFPicAPI::incomingSeparatePhases(&metadata));
    metadata.phaseSequenceLength = 0;
    metadata.phasesCount = 1;
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(&metadata));
    metadata.phaseSequenceLength = -3;
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(&metadata));
}

TEST(SeparatePhases, HybridSectionsCountWithoutTheReference) {
    CkImageMetadata metadata;
    metadata.phaseSequenceLength = 4;
    metadata.phasesCount = 4;
    metadata.colorFilterArray = 13;
    metadata.sectionCount = 2;
    EXPECT_TRUE(CkToFPicAPI::incomingSeparatePhases(&metadata));
    metadata.sectionMode = 3;
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(&metadata));
    metadata.sectionCount = 3;
    EXPECT_TRUE(CkToFPicAPI::incomingSeparatePhases(&metadata));
    metadata.colorFilterArray = 8;
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(&metadata));
}

TEST(SeparatePhases, OnlyMode3HasAReference) {
    CkImageMetadata metadata;
    metadata.colorFilterArray = 13;
    metadata.sectionCount = 2;
    for (const quint32 mode : {0U, 1U, 2U, 4U, 5U, 0xffffffffU}) {
        metadata.sectionMode = mode;
        EXPECT_TRUE(CkToFPicAPI::incomingSeparatePhases(&metadata)) << mode;
    }
}

TEST(SeparatePhases, SectionCountIsComparedSigned) {
    CkImageMetadata metadata;
    metadata.colorFilterArray = 13;
    metadata.sectionMode = 3;
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(&metadata)); // 0 less 1
    metadata.sectionMode = 0;
    metadata.sectionCount = std::numeric_limits<quint32>::max();
    EXPECT_FALSE(CkToFPicAPI::incomingSeparatePhases(&metadata)); // -1
}

TEST(PhasesCount, MetadataWinsUnchecked) {
    CkImageMetadata metadata;
    metadata.phasesCount = 5;
    EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(2, 4, false, 0, 1920), &metadata), 5U);
    for (qint32 unknown : {0, -1, std::numeric_limits<qint32>::min()}) {
        metadata.phasesCount = unknown;
        EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(2, 4, false, 0, 1920), &metadata), 4U);
    }
}

TEST(PhasesCount, HeightDecidesWithoutMetadata) {
    const std::pair<quint32, quint32> expected[] = {{480, 1},  {960, 2},  {1920, 4}, {3840, 8},
                                                    {1800, 1}, {1000, 1}, {0, 1},    {600, 1}};
    for (const auto& [height, count] : expected) {
        EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(2, 4, false, 0, height), nullptr), count);
    }
}

TEST(PhasesCount, Height1800IsThreeForHybridOnly) {
    EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(3, 4, false, 13, 1800), nullptr), 3U);
    EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(3, 4, false, 0, 1800), nullptr), 1U);
    EXPECT_EQ(CkToFPicAPI::detectPhasesCount(described(3, 4, false, 13, 1000), nullptr), 1U);
}

TEST(AngleIndex, FirstMatchOrNominal) {
    const CkToFPicAPI::AngleList swapped{90, 0};
    const CkToFPicAPI::AngleList lacking{0, 180};
    const CkToFPicAPI::AngleList repeated{45, 90, 90, 0};
    const CkToFPicAPI::AngleList empty;
    EXPECT_EQ(CkToFPicAPI::findAngleIdx(1, 90, &swapped), 0U);
    EXPECT_EQ(CkToFPicAPI::findAngleIdx(1, 90, &lacking), 1U);
    EXPECT_EQ(CkToFPicAPI::findAngleIdx(7, 90, &repeated), 1U);
    EXPECT_EQ(CkToFPicAPI::findAngleIdx(7, 0, &repeated), 3U);
    EXPECT_EQ(CkToFPicAPI::findAngleIdx(3, 90, &empty), 3U);
    EXPECT_EQ(CkToFPicAPI::findAngleIdx(3, 90, nullptr), 3U);
}

} // namespace
