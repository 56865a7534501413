#include "plugins/zplToF/view3d/CkToFColorTable.h"

#include <gtest/gtest.h>

// Blue, green, red.
TEST(CkToFColorTableTest, GreyRisesEvenly) {
    CkToFColorTable table;
    ASSERT_TRUE(table.update(0));
    for (int value = 0; value < 256; ++value) {
        for (int channel = 0; channel < 3; ++channel) {
            ASSERT_EQ(table.colors()[4 * value + channel], value);
        }
    }
}

TEST(CkToFColorTableTest, RainbowRunsFromBlueOverCyanGreenAndYellowToRed) {
    CkToFColorTable table;
    ASSERT_TRUE(table.update(2));
    const quint8* first = table.colors();
    EXPECT_EQ(first[0], 255);
    EXPECT_EQ(first[1], 0);
    EXPECT_EQ(first[2], 0);
    const quint8* last = table.colors() + size_t(4) * 255;
    EXPECT_EQ(last[0], 0);
    EXPECT_EQ(last[1], 0);
    EXPECT_EQ(last[2], 255);
}

TEST(CkToFColorTableTest, AnUnknownMapIsGrey) {
    CkToFColorTable table;
    for (const int index : {-1, 1000000}) {
        ASSERT_TRUE(table.update(index));
        EXPECT_EQ(table.colors()[4 * 100], 100);
        EXPECT_EQ(table.colors()[4 * 100 + 1], 100);
        EXPECT_EQ(table.colors()[4 * 100 + 2], 100);
    }
}
