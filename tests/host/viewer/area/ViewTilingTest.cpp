#include "host/viewer/area/ViewTiling.h"

#include <gtest/gtest.h>

namespace {

constexpr QSize kSpace(1001, 701);

TEST(ViewTiling, NoViewsHaveNoPlaces) {
    EXPECT_TRUE(ViewTiling::places(kSpace, {}).isEmpty());
}

TEST(ViewTiling, EveryPixelBelongsToOneView) {
    for (int count = 1; count <= 12; ++count) {
        const QList<QRect> places = ViewTiling::places(kSpace, QList<double>(count, 4.0 / 3.0));
        ASSERT_EQ(places.size(), count);
        qint64 covered = 0;
        for (qsizetype i = 0; i < places.size(); ++i) {
            covered += qint64(places[i].width()) * places[i].height();
            EXPECT_TRUE(QRect(QPoint(0, 0), kSpace).contains(places[i])) << count << ", " << i;
            for (qsizetype k = 0; k < i; ++k) {
                EXPECT_FALSE(places[i].intersects(places[k])) << count << ": " << k << ", " << i;
            }
        }
        EXPECT_EQ(covered, qint64(kSpace.width()) * kSpace.height()) << count;
    }
}

TEST(ViewTiling, ASingleRowIsSharedOutByShape) {
    const QList<QRect> places = ViewTiling::places(QSize(1000, 500), {1.0, 1.5});
    EXPECT_EQ(places, (QList<QRect>{QRect(0, 0, 400, 500), QRect(400, 0, 600, 500)}));
}

TEST(ViewTiling, ATallPictureKeepsFourFifthsOfAnEqualShare) {
    // Shares 0.4 and 10 / 10.1 before they are made to add up to one.
    const QList<QRect> places = ViewTiling::places(QSize(1000, 500), {0.1, 10.0});
    EXPECT_EQ(places[0].width(), qRound(1000.0 * 0.4 / (0.4 + 10.0 / 10.1)));
    EXPECT_EQ(places[0].width() + places[1].width(), 1000);
}

TEST(ViewTiling, TheLastRowOfSeveralSharesItsWidthEqually) {
    const QList<QRect> places = ViewTiling::places(QSize(600, 400), {0.1, 1.0, 5.0, 1.0, 0.1});
    EXPECT_EQ(places, (QList<QRect>{QRect(0, 0, 200, 200), QRect(200, 0, 200, 200), QRect(400, 0, 200, 200),
                                    QRect(0, 200, 300, 200), QRect(300, 200, 300, 200)}));
}

} // namespace
