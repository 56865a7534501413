#include "plugins/zplToF/view3d/CkToFInputRegulator.h"

#include <gtest/gtest.h>
#include <limits>

namespace {
constexpr auto drops = CkToFInputRegulator::drops;
} // namespace

TEST(CkToFInputRegulatorTest, FiveFramesASecondDropAt150MillisecondsAndDrawAt200) {
    EXPECT_TRUE(drops(true, 5.0F, 150));
    EXPECT_TRUE(drops(true, 5.0F, 199));
    EXPECT_FALSE(drops(true, 5.0F, 200));
    EXPECT_FALSE(drops(true, 5.0F, 201));
}

TEST(CkToFInputRegulatorTest, NothingIsDroppedWithoutTheLimit) {
    EXPECT_FALSE(drops(false, 5.0F, 1));
}

TEST(CkToFInputRegulatorTest, TheFirstFrameIsDrawn) {
    EXPECT_FALSE(drops(true, 0.001F, -1));
}

TEST(CkToFInputRegulatorTest, AFrameInTheSameMillisecondIsDrawn) {
    EXPECT_FALSE(drops(true, 5.0F, 0));
    EXPECT_TRUE(drops(true, 5.0F, 1));
}

TEST(CkToFInputRegulatorTest, ALimitOfNoUseLimitsNothing) {
    for (const float limit :
         {0.0F, -5.0F, std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
          std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_FALSE(drops(true, limit, 1)) << limit;
    }
}
