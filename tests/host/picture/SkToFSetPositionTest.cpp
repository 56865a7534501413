#include "zuCore/SkToFSetPosition.h"

#include <gtest/gtest.h>

TEST(SkToFSetPosition, CountsSectionsWithoutTheirReference) {
    CkImageMetadata metadata;
    metadata.phaseSequenceLength = 4;
    metadata.phaseSequenceIndex = 2;
    metadata.sectionCount = 5;
    metadata.sectionIndex = 1;
    const auto expectPosition = [&](bool hybrid, qint64 count, qint64 index) {
        const auto position = SkToFSetPosition::of(metadata, hybrid);
        EXPECT_EQ(position.count, count);
        EXPECT_EQ(position.index, index);
    };
    expectPosition(false, 4, 2);
    expectPosition(true, 5, 1);
    metadata.sectionMode = 3;
    expectPosition(false, 4, 2);
    expectPosition(true, 4, 0);
    metadata.sectionMode = 4;
    expectPosition(true, 5, 1);
    metadata.sectionMode = 3;
    metadata.sectionCount = 0;
    metadata.sectionIndex = 0;
    expectPosition(true, -1, -1);
    metadata.sectionCount = 0xffffffffU;
    metadata.sectionIndex = 0xffffffffU;
    expectPosition(true, 0xfffffffeLL, 0xfffffffeLL);
}

TEST(SkToFSetPosition, AReferenceSectionIsTheFirstToArrive) {
    CkImageMetadata metadata;
    metadata.phaseSequenceLength = 4;
    metadata.sectionCount = 5;
    EXPECT_TRUE(SkToFSetPosition::of(metadata, false).isFirstToArrive());
    EXPECT_TRUE(SkToFSetPosition::of(metadata, true).isFirstToArrive());
    metadata.sectionMode = 3;
    EXPECT_EQ(SkToFSetPosition::of(metadata, true).references, 1);
    EXPECT_TRUE(SkToFSetPosition::of(metadata, true).isFirstToArrive());
    metadata.sectionIndex = 1;
    EXPECT_FALSE(SkToFSetPosition::of(metadata, true).isFirstToArrive());
    EXPECT_TRUE(SkToFSetPosition::of(metadata, false).isFirstToArrive());
    EXPECT_EQ(SkToFSetPosition::of(metadata, false).references, 0);
    metadata.phaseSequenceIndex = 1;
    EXPECT_FALSE(SkToFSetPosition::of(metadata, false).isFirstToArrive());
}

TEST(SkToFSetPosition, PhasesAreSeparateWhenThePictureDoesNotHoldAllOfThem) {
    CkImageMetadata metadata;
    EXPECT_FALSE(SkToFSetPosition::isSeparatePhase(metadata));
    metadata.phaseSequenceLength = 4;
    EXPECT_TRUE(SkToFSetPosition::isSeparatePhase(metadata));
    metadata.phasesCount = 4;
    EXPECT_FALSE(SkToFSetPosition::isSeparatePhase(metadata));
    metadata.phasesCount = 1;
    EXPECT_TRUE(SkToFSetPosition::isSeparatePhase(metadata));
    metadata.phaseSequenceLength = -4;
    EXPECT_FALSE(SkToFSetPosition::isSeparatePhase(metadata));
}
