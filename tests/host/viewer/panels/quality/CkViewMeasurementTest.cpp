#include "host/viewer/panels/quality/CkViewMeasurement.h"

#include "host/viewer/panels/quality/CkMeasuredRegions.h"
#include "host/viewer/panels/quality/CkSaturationMonitor.h"
#include "tests/host/viewer/ViewerPictures.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

std::unique_ptr<CkImageData> numbered(quint64 number, const char* channel, float value) {
    auto frame = makeFrame<float>(EkImageDataType::Float32, 16, 12, 1, 32,
                                  [value](quint32, quint32, quint32) { return value; });
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{QString::fromLatin1(channel)};
    metadata.frameNumber = number;
    frame->setMetadata(metadata);
    return frame;
}

TEST(ViewMeasurement, KeepsTheHistoryOfOneRegionAndOneUnit) {
    CkViewMeasurement measurement;
    CkSaturationMonitor monitor;
    measurement.setRegion(QRect(2, 2, 4, 4));
    const auto first = numbered(1, "Depth", 1.0F);
    EXPECT_FALSE(measurement.isNewest(*first));
    EXPECT_TRUE(measurement.add(*first, 0, nullptr, monitor));
    EXPECT_TRUE(measurement.isNewest(*first));
    EXPECT_TRUE(measurement.add(*numbered(2, "Depth", 1.5F), 0, nullptr, monitor));
    EXPECT_FALSE(measurement.isNewest(*first));
    EXPECT_EQ(measurement.history().values().size(), 2U);
    EXPECT_DOUBLE_EQ(measurement.values().mean, 1500.0);
    measurement.setRegion(QRect(2, 2, 4, 4));
    EXPECT_EQ(measurement.history().values().size(), 2U);
    // A curve must not mix radians and millimetres.
    EXPECT_TRUE(measurement.add(*numbered(3, "Phase shift", 2.0F), 0, nullptr, monitor));
    EXPECT_EQ(measurement.values().unit, "rad");
    EXPECT_EQ(measurement.history().values().size(), 1U);
    measurement.setRegion(QRect(0, 0, 3, 3));
    EXPECT_TRUE(measurement.isEmpty());
}

TEST(ViewMeasurement, RestartDropsValuesAndKeepsTheRegion) {
    CkViewMeasurement measurement;
    CkSaturationMonitor monitor;
    measurement.setRegion(QRect(1, 1, 5, 5));
    measurement.add(*numbered(1, "Depth", 1.0F), 0, nullptr, monitor);
    measurement.restart();
    EXPECT_TRUE(measurement.isEmpty());
    EXPECT_FALSE(std::isfinite(measurement.values().mean));
    EXPECT_EQ(measurement.region(), QRect(1, 1, 5, 5));
    measurement.add(*numbered(2, "Depth", 1.0F), 0, nullptr, monitor);
    EXPECT_EQ(measurement.values().frames, 1);
}

TEST(ViewMeasurement, FloatsOfNoBlockDoNotShowSaturation) {
    CkViewMeasurement measurement;
    CkSaturationMonitor monitor;
    measurement.setRegion(QRect(1, 1, 5, 5));
    measurement.add(*numbered(1, "Depth", 1.0F), 0, nullptr, monitor);
    EXPECT_FALSE(measurement.saturationReason().isEmpty());
    EXPECT_FALSE(measurement.values().saturationKnown);
}

TEST(MeasuredRegions, StartInTheMiddleAndBelongToOneView) {
    CkMeasuredRegions regions;
    CkFedImageView first;
    CkFedImageView second;
    EXPECT_EQ(regions.region(first, QSize(80, 60)), QRect(30, 22, 20, 15));
    EXPECT_EQ(regions.region(second, QSize(3, 2)), QRect(1, 0, 1, 1));
    regions.setRegion(first, QRect(1, 2, 3, 4));
    EXPECT_EQ(regions.region(first, QSize(80, 60)), QRect(1, 2, 3, 4));
    EXPECT_EQ(regions.region(second, QSize(3, 2)), QRect(1, 0, 1, 1));
    // Pictures of another size have a region of their own.
    first.feed(numbered(1, "Depth", 1.0F));
    EXPECT_EQ(regions.region(first, QSize(16, 12)), QRect(6, 4, 4, 3));
}

} // namespace
