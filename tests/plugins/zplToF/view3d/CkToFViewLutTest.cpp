#include "plugins/zplToF/view3d/CkToFViewLut.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"
#include "zuCore/CkLut.h"

#include <gtest/gtest.h>

namespace {

std::unique_ptr<CkImageData> floats() {
    return TestFrame::generic(4, 4, [](int, int) { return 1.0F; });
}

std::unique_ptr<CkImageData> bytes() {
    return TestFrame::bytes(4, 4, [](int, int) { return 1; });
}

TEST(CkToFViewLutTest, WithoutATableThereAreNoColours) {
    CkToFViewLut lut;
    EXPECT_EQ(lut.lut(), nullptr);
    EXPECT_EQ(lut.colors(), nullptr);
    EXPECT_FALSE(lut.fits(floats()->picBuf()));
    // Outside an application there is no other choice either.
    EXPECT_EQ(lut.makeFor(floats()->picBuf(), {}), nullptr);
}

TEST(CkToFViewLutTest, ATableFitsPicturesOfItsDepthAndIsTransformedToOthers) {
    CkToFViewLut lut;
    lut.makeDefault(floats()->picBuf());
    ASSERT_NE(lut.lut(), nullptr);
    EXPECT_TRUE(lut.fits(floats()->picBuf()));
    EXPECT_FALSE(lut.fits(bytes()->picBuf()));
    EXPECT_TRUE(lut.set(lut.makeFor(bytes()->picBuf(), {}), lut.flags()));
    EXPECT_TRUE(lut.fits(bytes()->picBuf()));
}

TEST(CkToFViewLutTest, ANullTableChangesTheFlagsOnly) {
    CkToFViewLut lut;
    lut.makeDefault(floats()->picBuf());
    CkLut* table = lut.lut();
    EXPECT_FALSE(lut.set(nullptr, {false, true}));
    bool first = true;
    bool second = false;
    unsigned int bits = 0;
    EXPECT_EQ(lut.read(&first, &second, &bits), table);
    EXPECT_FALSE(first);
    EXPECT_TRUE(second);
    EXPECT_EQ(bits, 32U);
    EXPECT_EQ(lut.read(nullptr, nullptr, nullptr), table);
}

TEST(CkToFViewLutTest, TheColoursFollowTheMapOfTheTable) {
    CkToFViewLut lut;
    lut.makeDefault(bytes()->picBuf());
    EXPECT_EQ(lut.colors()[0], 0);
    lut.lut()->setPseudoColorIndex(2);
    EXPECT_TRUE(lut.set(lut.lut(), lut.flags()));
    EXPECT_EQ(lut.colors()[0], 255);
}

} // namespace
