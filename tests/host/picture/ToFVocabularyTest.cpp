// Cameras, saved chains and other programs depend on these exact names and numbers.

#include "zuCore/ToFVocabulary.h"

#include <gtest/gtest.h>

TEST(ToFVocabulary, NamesAreThoseOfFilesAndCameras) {
    EXPECT_EQ(ToFChannel::kPhaseShift, QLatin1String("Phase shift"));
    EXPECT_EQ(ToFChannel::kDepth, QLatin1String("Depth"));
    EXPECT_EQ(ToFChannel::kConfidence, QLatin1String("Confidence"));
    EXPECT_EQ(ToFParameter::kReadoutMode, QLatin1String("tof_readout_mode"));
    EXPECT_EQ(ToFParameter::kDataFormat, QLatin1String("imgdataformat"));
    EXPECT_STREQ(ToFProperty::kCameraHandle, "tof_camera_handle");
}

TEST(ToFVocabulary, CodesHaveTheirNumbers) {
    EXPECT_EQ(ToFReadoutMode::kAminusB, 2);
    EXPECT_EQ(ToFReadoutMode::kAandB, 4);
    EXPECT_EQ(ToFDataFormat::kAminusB8, 0);
    EXPECT_EQ(ToFDataFormat::kAminusB16, 1);
    EXPECT_EQ(ToFDataFormat::kAminusB8Alternate, 5);
    EXPECT_EQ(ToFDataFormat::kAminusB16Alternate, 6);
    EXPECT_EQ(ToFDataFormat::kAandB8, 11);
    EXPECT_EQ(ToFDataFormat::kAandB12, 13);
    EXPECT_EQ(ToFDataFormat::kHybrid8, 17);
    EXPECT_EQ(ToFDataFormat::kHybrid12, 18);
    EXPECT_EQ(ToFSensorType::kHybrid, 13U);
    EXPECT_EQ(ToFSectionMode::kReferenceFirst, 3U);
}

TEST(ToFVocabulary, TheSpeedsOfLightAreThoseOfTheFormulas) {
    EXPECT_EQ(kSpeedOfLight, 299792458.0);
    EXPECT_EQ(double(kSpeedOfLightInAirMMHz), 299.7025451660156);
}

TEST(ToFVocabulary, PhasesComeInCountsThatCanBeComputed) {
    for (qint64 count = -1; count < 20; ++count) {
        const bool supported = count == 1 || count == 2 || count == 4 || count == 8;
        EXPECT_EQ(ToFPhases::isSupportedCount(count), supported) << count;
    }
    EXPECT_EQ(ToFPhases::nominalStep(2), 90);
    EXPECT_EQ(ToFPhases::nominalStep(4), 90);
    EXPECT_EQ(ToFPhases::nominalStep(8), 45);
}
