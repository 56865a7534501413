#include "plugins/zplToF/cloud/ToFBoundingBoxTables.h"

#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <gmock/gmock.h>

#include <set>

using testing::Each;
using testing::ElementsAre;

TEST(ToFBoundingBoxTables, CornersStandInTheGivenOrder) {
    EXPECT_THAT(ToFBoundingBoxTables::vertices(1.0F, 0.75F, 0.5F),
                ElementsAre(-1, -0.75F, -0.5F, 1, -0.75F, -0.5F, 1, 0.75F, -0.5F, -1, 0.75F, -0.5F, //
                            -1, -0.75F, 0.5F, 1, -0.75F, 0.5F, 1, 0.75F, 0.5F, -1, 0.75F, 0.5F));
}

TEST(ToFBoundingBoxTables, TablesHaveTheSizesOfTheirBuffers) {
    EXPECT_EQ(sizeof(ToFBoundingBoxTables::vertices(1, 1, 1)), 96U);
    EXPECT_EQ(sizeof(ToFBoundingBoxTables::indices()), 48U);
}

TEST(ToFBoundingBoxTables, EdgesStandInTheGivenOrder) {
    EXPECT_THAT(ToFBoundingBoxTables::indices(),
                ElementsAre(0, 1, 1, 2, 2, 3, 3, 0, 4, 5, 5, 6, 6, 7, 7, 4, //
                            0, 4, 1, 5, 2, 6, 3, 7));
}

TEST(ToFBoundingBoxTables, EveryEdgeJoinsCornersThatDifferInOneCoordinate) {
    const auto corners = ToFBoundingBoxTables::vertices(1.0F, 2.0F, 3.0F);
    const auto& indices = ToFBoundingBoxTables::indices();
    std::set<std::pair<int, int>> edges;
    for (size_t i = 0; i < indices.size(); i += 2) {
        int different = 0;
        for (size_t c = 0; c < 3; c++) {
            different += corners[3U * indices[i] + c] != corners[3U * indices[i + 1] + c];
        }
        EXPECT_EQ(different, 1) << "edge " << i / 2;
        edges.insert(std::minmax<int>(indices[i], indices[i + 1]));
    }
    EXPECT_EQ(edges.size(), 12U);
}

TEST(ToFBoundingBoxTables, ZeroHalfExtentsGiveADegenerateBox) {
    EXPECT_THAT(ToFBoundingBoxTables::vertices(0.0F, 0.0F, 0.0F), Each(testing::FloatEq(0.0F)));
}

TEST(ToFBoundingBoxTables, TheBoxOfA640x480PictureIsTwoWideAndOneAndAHalfHigh) {
    TestPicture depth(640, 480, 1, EkImageDataType::UInt8);
    CkToFCloudBuilder builder;
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    const auto [a, b, c] = builder.boxHalfExtents();
    const auto corners = ToFBoundingBoxTables::vertices(a, b, c);
    EXPECT_FLOAT_EQ(corners[3] - corners[0], 2.0F);
    EXPECT_FLOAT_EQ(corners[10] - corners[1], 1.5F);
}
