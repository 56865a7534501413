#include "plugins/zplToF/view3d/CkToFCloudModel.h"
#include "plugins/zplToF/view3d/CkToFViewLut.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

std::unique_ptr<CkImageData> phaseFrame() {
    return TestFrame::phase(8, 6, [](int x, int) { return DepthPixel{float(x) / 2.0F, 0.1F}; });
}

std::unique_ptr<CkImageData> depthFrame() {
    return TestFrame::depth(8, 6, [](int x, int) { return DepthPixel{float(x), 0.1F}; });
}

struct CkToFCloudModelTest : public ::testing::Test {
    float threshold() const { return model.options().opticalPath.confidenceThreshold; }

    CkToFCloudModel model{EkToFVertexLayout::Points};
    CkToFViewLut lut;
};

TEST_F(CkToFCloudModelTest, NothingIsBuiltBeforeTheFirstFrameAndWithoutATable) {
    EXPECT_EQ(model.imageData(), nullptr);
    ASSERT_TRUE(model.setFrame(phaseFrame().get()));
    EXPECT_FALSE(model.build(lut));
    lut.makeDefault(model.frame().depthPic());
    EXPECT_TRUE(model.build(lut));
    EXPECT_EQ(model.cloud().pointCount(), 48);
    EXPECT_FALSE(CkToFCloudModel(EkToFVertexLayout::Points).build(lut));
}

TEST_F(CkToFCloudModelTest, AFrameWithoutPixelsKeepsTheLastOne) {
    ASSERT_TRUE(model.setFrame(phaseFrame().get()));
    const CkImageData* shown = model.imageData();
    const CkImageData empty;
    EXPECT_FALSE(model.setFrame(&empty));
    EXPECT_FALSE(model.setFrame(nullptr));
    EXPECT_EQ(model.imageData(), shown);
    EXPECT_EQ(model.frame().depthPic().width, 8U);
}

TEST_F(CkToFCloudModelTest, OnlyDataOtherThanPhaseLowersAThresholdAboveOne) {
    ASSERT_TRUE(model.setFrame(phaseFrame().get()));
    model.adaptThresholdToKind();
    EXPECT_EQ(threshold(), 10.0F);
    ASSERT_TRUE(model.setFrame(depthFrame().get()));
    model.adaptThresholdToKind();
    EXPECT_EQ(threshold(), 0.6F);
    model.options().opticalPath.confidenceThreshold = 1.0F;
    model.adaptThresholdToKind();
    EXPECT_EQ(threshold(), 1.0F);
}

TEST_F(CkToFCloudModelTest, AThresholdIsTakenAboveZeroAndMattersWithConfidenceOnly) {
    ASSERT_TRUE(model.setFrame(phaseFrame().get()));
    for (const float useless : {0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_FALSE(model.setConfidenceThreshold(useless)) << useless;
        EXPECT_EQ(threshold(), 10.0F);
    }
    EXPECT_TRUE(model.setConfidenceThreshold(0.4F));
    EXPECT_EQ(threshold(), 0.4F);
    ASSERT_TRUE(model.setFrame(TestFrame::bytes(4, 4, [](int x, int) { return x; }).get()));
    EXPECT_FALSE(model.setConfidenceThreshold(0.3F));
    EXPECT_EQ(threshold(), 0.3F);
}

} // namespace
