#include "plugins/zplToF/cloud/SkToFOpticalPath.h"

#include "tests/plugins/zplToF/cloud/CloudRig.h"
#include "zuCore/CkImageMetadata.h"

#include <gmock/gmock.h>

TEST(SkToFOpticalPath, StartsWithTheDefaultsOfTheSettings) {
    const SkToFOpticalPath path;
    EXPECT_FALSE(path.compensateDistortion);
    EXPECT_EQ(path.lensFocalLengthMM, 3.5F);
    EXPECT_EQ(path.chipCellSizeMM, 0.01F);
    EXPECT_EQ(path.centerOffsetMM, QPointF(0, 0));
    EXPECT_EQ(path.modulationFreqMHz, 30.0F);
    EXPECT_EQ(path.confidenceThreshold, 10.0F);
    EXPECT_EQ(path.realDistanceOffsetM, -1.5F);
    EXPECT_TRUE(path.orthoRadialCorrection);
}

TEST(SkToFOpticalPath, TheCamerasOwnValuesWinWhereItHasThem) {
    SkToFOpticalPath path;
    CkImageMetadata metadata;
    path.adoptCameraValues(metadata);
    EXPECT_EQ(path, SkToFOpticalPath());
    metadata.modulationFrequency = -1.0F;
    metadata.lensFocalLength = NotANumber;
    path.adoptCameraValues(metadata);
    EXPECT_EQ(path, SkToFOpticalPath());
    metadata.modulationFrequency = 12.5F;
    metadata.lensFocalLength = 8.0F;
    path.adoptCameraValues(metadata);
    EXPECT_EQ(path.modulationFreqMHz, 12.5F);
    EXPECT_EQ(path.lensFocalLengthMM, 8.0F);
    EXPECT_EQ(path.chipCellSizeMM, 0.01F);
}

TEST(SkToFOpticalPath, OnlyFiniteValuesAboveZeroArePositive) {
    EXPECT_TRUE(float_is_positive(1e-30F));
    for (float value : {0.0F, -0.0F, -1.0F, NotANumber, Infinite, -Infinite}) {
        EXPECT_FALSE(float_is_positive(value)) << value;
    }
}

TEST(SkToFOpticalPath, OnlyFiniteValuesAreValid) {
    for (float value : {0.0F, -1.0F, 3e38F}) {
        EXPECT_TRUE(float_is_valid(value)) << value;
    }
    for (float value : {NotANumber, Infinite, -Infinite}) {
        EXPECT_FALSE(float_is_valid(value)) << value;
    }
}
