#include "plugins/zplToF/view3d/CkToFRenderCapture.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QCamera>
#include <Qt3DRender/QGeometryRenderer>
#include <cmath>
#include <limits>

namespace {

constexpr float kNoPoint = std::numeric_limits<float>::quiet_NaN();
const QColor background(48, 48, 128);
const QColor red(255, 0, 0);
const QColor blue(0, 0, 255);

/// Bounding rectangle of the pixels of a colour in a picture; null when there are none.
QRect extentOf(const QImage& image, const QColor& color) {
    QRect extent;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color) {
                extent = extent.united(QRect(x, y, 1, 1));
            }
        }
    }
    return extent;
}

QColor at(const QImage& image, const QPointF& place) {
    return image.pixelColor(int(std::floor(place.x())), int(std::floor(place.y())));
}

/// Clouds of float pictures 40 pixels wide and 30 high in the rainbow map: the smallest value is blue and
/// nearest (z = 0.6), the largest red and farthest (z = -0.6). Without the box, so that only points show.
class ToF3DViewPictureTest : public ViewTest {
protected:
    static constexpr int kWidth = 40;
    static constexpr int kHeight = 30;

    ToF3DViewPictureTest() {
        m_host.store(QStringLiteral("ToF.LUTPseudoColor"), 2);
        m_host.store(QStringLiteral("ToF.ShowBBox"), false);
        m_host.provideLuts = false;
    }

    static QVector3D place(int x, int y, float z) {
        return {(float(x) - 20.0F) * 2.0F / 40.0F, (15.0F - float(y)) * 2.0F / 40.0F, z};
    }
    QSize sceneSize(const CkToF3DMdiView& view) const { return view.scene()->window()->size(); }
};

TEST_F(ToF3DViewPictureTest, TheBackgroundIsTheColorOfTheSettings) {
    m_host.store(QStringLiteral("ToF.BgColor"), 0x204060U);
    const auto view = open();
    show(*view);
    const QImage image = capture(*view);
    EXPECT_EQ(image.size(), sceneSize(*view));
    EXPECT_EQ(extentOf(image, QColor(0x20, 0x40, 0x60)), image.rect());
}

TEST_F(ToF3DViewPictureTest, ARedQuadOfPointsIsRedAtTheProjectedPixel) {
    m_source.shown = TestFrame::generic(kWidth, kHeight, [](int x, int y) {
        if (x >= 28 && x < 32 && y >= 4 && y < 8) {
            return 2.0F;
        }
        return x == 5 && y == 25 ? 1.0F : kNoPoint;
    });
    const auto view = open();
    ASSERT_EQ(view->cloud().pointCount(), 17);
    show(*view);
    const QImage image = capture(*view);
    const QSize size = sceneSize(*view);
    for (int y = 4; y < 8; ++y) {
        for (int x = 28; x < 32; ++x) {
            EXPECT_EQ(at(image, project(place(x, y, -0.6F), size)), red) << x << ' ' << y;
        }
    }
    EXPECT_EQ(at(image, project(place(5, 25, 0.6F), size)), blue);
    // Two steps beside the points the background shows.
    for (const QPoint beside : {QPoint(25, 6), QPoint(34, 6), QPoint(30, 1), QPoint(30, 10), QPoint(5, 22)}) {
        EXPECT_EQ(at(image, project(place(beside.x(), beside.y(), -0.6F), size)), background)
            << beside.x() << ' ' << beside.y();
    }
}

TEST_F(ToF3DViewPictureTest, TheScreenShowsWhatTheCaptureHolds) {
    m_source.shown = TestFrame::generic(kWidth, kHeight, [](int x, int) { return x < 20 ? 1.0F : 2.0F; });
    const auto view = open();
    view->move(0, 0);
    show(*view);
    const QImage image = capture(*view);
    QScreen* screen = QGuiApplication::primaryScreen();
    QImage seen;
    ASSERT_TRUE(waitFor([&] {
        seen = screen->grabWindow(view->scene()->window()->winId())
                   .toImage()
                   .convertToFormat(QImage::Format_RGB32);
        return seen.size() == image.size() && extentOf(seen, red).isValid();
    }));
    int different = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            different += image.pixel(x, y) != seen.pixel(x, y) ? 1 : 0;
        }
    }
    EXPECT_EQ(different, 0);
}

// The far patch lies on the line of sight through the near one: (x - 20) / 3.6 against (x - 20) / 2.4.
TEST_F(ToF3DViewPictureTest, NearerHidesFarther) {
    // Near points first in the buffer, then last: the order must not matter.
    for (const bool nearFirst : {true, false}) {
        const int nearY = nearFirst ? 15 - 4 : 15 + 4;
        const int farY = nearFirst ? 15 - 6 : 15 + 6;
        m_source.shown = TestFrame::generic(kWidth, kHeight, [&](int x, int y) {
            if (std::abs(x - 20) <= 6 && std::abs(y - farY) <= 1) {
                return 2.0F;
            }
            return std::abs(x - 20) <= 2 && std::abs(y - nearY) <= 1 ? 1.0F : kNoPoint;
        });
        const auto view = open();
        show(*view);
        const QImage image = capture(*view);
        const QSize size = sceneSize(*view);
        const QPointF center = project(place(20, nearY, 0.6F), size);
        const QPointF behind = project(place(20, farY, -0.6F), size);
        ASSERT_LT(std::hypot(center.x() - behind.x(), center.y() - behind.y()), 1.0);
        EXPECT_EQ(at(image, center), blue) << nearFirst;
        EXPECT_EQ(at(image, project(place(26, farY, -0.6F), size)), red) << nearFirst;
        EXPECT_EQ(at(image, project(place(14, farY, -0.6F), size)), red) << nearFirst;
    }
}

TEST_F(ToF3DViewPictureTest, TheBoxesCornersProjectWhereTheyShould) {
    m_host.store(QStringLiteral("ToF.ShowBBox"), true);
    m_source.shown = TestFrame::generic(kWidth, kHeight, [](int x, int y) {
        return x == 20 && y == 15 ? 1.0F : x == 21 && y == 15 ? 2.0F : kNoPoint;
    });
    const auto view = open();
    show(*view);
    const QImage image = capture(*view);
    const QSize size = sceneSize(*view);
    // The lines are white, one pixel wide and smoothed; the background's red is 48.
    const auto bright = [&](const QVector3D& corner) {
        const QPointF center = project(corner, size);
        for (int dy = -2; dy <= 2; ++dy) {
            for (int dx = -2; dx <= 2; ++dx) {
                const QPoint point(int(center.x()) + dx, int(center.y()) + dy);
                if (image.rect().contains(point) && image.pixelColor(point).red() > 120) {
                    return true;
                }
            }
        }
        return false;
    };
    for (const float x : {-1.0F, 1.0F}) {
        for (const float y : {-0.75F, 0.75F}) {
            for (const float z : {-0.6F, 0.6F}) {
                EXPECT_TRUE(bright({x, y, z})) << x << ' ' << y << ' ' << z;
            }
        }
    }
    // On an edge, and away from all edges.
    EXPECT_TRUE(bright({0.0F, 0.75F, 0.6F}));
    EXPECT_TRUE(bright({-1.0F, 0.0F, -0.6F}));
    EXPECT_FALSE(bright({0.0F, 0.4F, 0.6F}));

    view->showBoundingBox(false);
    const QImage without = capture(*view);
    EXPECT_FALSE(without == image);
    EXPECT_EQ(at(without, project({0.0F, 0.75F, 0.6F}, size)), background);
}

TEST_F(ToF3DViewPictureTest, APointHalvesAtTwiceTheDistance) {
    // A picture of 4 pixels makes large points: one at the origin's column, halfway in depth.
    m_source.shown = TestFrame::generic(4, 4, [](int x, int y) {
        return x == 2 && y == 2 ? 1.5F : x == 0 && y == 0 ? 1.0F : x == 0 && y == 3 ? 2.0F : kNoPoint;
    });
    const auto view = open();
    show(*view);
    QVector<QSizeF> sizes;
    for (const float distance : {3.0F, 6.0F}) {
        view->scene()->camera()->setPosition({0.0F, 0.0F, distance});
        const QImage image = capture(*view);
        // The middle of the range is green.
        const QColor color = at(image, project({0.0F, 0.0F, 0.0F}, sceneSize(*view), distance));
        ASSERT_NE(color, background);
        const QRect extent = extentOf(image, color);
        EXPECT_NEAR(extent.center().x(), image.width() / 2, 1);
        EXPECT_NEAR(extent.center().y(), image.height() / 2, 1);
        sizes.append(extent.size());
    }
    EXPECT_NEAR(sizes[0].width(), 2.0 * sizes[1].width(), 2.0);
    EXPECT_NEAR(sizes[0].height(), 2.0 * sizes[1].height(), 2.0);
    // parPointSize is 4 / 4 = 1; drawn 1 x height / distance / 2 pixels high.
    EXPECT_NEAR(sizes[0].height(), sceneSize(*view).height() / 3.0 / 2.0, 2.0);
}

TEST_F(ToF3DViewPictureTest, ResizeKeepsSquaresSquare) {
    m_source.shown = TestFrame::generic(4, 4, [](int x, int y) {
        return x == 2 && y == 2 ? 1.5F : x == 0 && y == 0 ? 1.0F : x == 0 && y == 3 ? 2.0F : kNoPoint;
    });
    const auto view = open();
    show(*view);
    for (const QSize size : {QSize(600, 600), QSize(1000, 500), QSize(500, 1000)}) {
        view->resize(size);
        ASSERT_TRUE(waitFor([&] { return sceneSize(*view).width() == size.width(); }));
        letEventsHappen(50);
        const QImage image = capture(*view);
        ASSERT_EQ(image.size(), sceneSize(*view));
        EXPECT_EQ(view->scene()->camera()->aspectRatio(), 16.0F / 9.0F);
        const QColor color = at(image, project({0.0F, 0.0F, 0.0F}, image.size()));
        ASSERT_NE(color, background);
        const QRect extent = extentOf(image, color);
        // Square in the view as a whole; the scene is lower than the view by the tool bar.
        const double toolBar = double(size.height()) / image.height();
        EXPECT_NEAR(extent.width(), extent.height() * toolBar, 2.0) << size.width() << 'x' << size.height();
        EXPECT_GT(extent.height(), 60);
    }
}

TEST_F(ToF3DViewPictureTest, ANewFrameReplacesThePicture) {
    m_source.shown = TestFrame::generic(kWidth, kHeight, [](int x, int) { return x < 20 ? 1.0F : 2.0F; });
    const auto view = open();
    show(*view);
    const QSize size = sceneSize(*view);
    EXPECT_EQ(at(capture(*view), project(place(30, 15, -0.6F), size)), red);
    // The same number of points, and then fewer.
    give(*view, TestFrame::generic(kWidth, kHeight, [](int x, int) { return x < 20 ? 2.0F : 1.0F; }));
    EXPECT_EQ(at(capture(*view), project(place(30, 15, 0.6F), size)), blue);
    give(*view, TestFrame::generic(kWidth, kHeight, [](int x, int) { return x < 10 ? 2.0F : kNoPoint; }));
    const QImage fewer = capture(*view);
    EXPECT_EQ(at(fewer, project(place(30, 15, 0.6F), size)), background);
    EXPECT_EQ(at(fewer, project(place(5, 15, 0.6F), size)), blue);
}

TEST_F(ToF3DViewPictureTest, FramesThatCameWhileHiddenShowAsTheNewestOnly) {
    m_source.shown = TestFrame::generic(kWidth, kHeight, [](int x, int) { return x < 20 ? 1.0F : 2.0F; });
    const auto view = open();
    for (int i = 0; i < 5; ++i) {
        give(*view, TestFrame::generic(kWidth, kHeight, [i](int x, int) { return x < 4 * i ? 1.0F : 2.0F; }));
        // The export is still the cloud that was built last.
        EXPECT_EQ(view->cloud().pointCount(), kWidth * kHeight);
    }
    give(*view, TestFrame::generic(kWidth, kHeight, [](int x, int) { return x < 4 ? 1.0F : kNoPoint; }));
    EXPECT_EQ(view->cloud().pointCount(), kWidth * kHeight);
    EXPECT_EQ(view->depthFrame().depthPic().minValue, 1.0F);
    EXPECT_EQ(view->depthFrame().depthPic().maxValue, 1.0F);
    show(*view);
    ASSERT_TRUE(waitFor([&] { return view->cloud().pointCount() == 4 * kHeight; }));
    const QImage image = capture(*view);
    const QSize size = sceneSize(*view);
    EXPECT_EQ(at(image, project(place(2, 15, 0.6F), size)), blue);
    EXPECT_EQ(at(image, project(place(20, 15, 0.6F), size)), background);

    view->hide();
    ASSERT_TRUE(waitFor([&] { return !view->scene()->isDrawn(); }));
    give(*view, TestFrame::generic(kWidth, kHeight, [](int, int) { return 1.0F; }));
    EXPECT_EQ(view->cloud().pointCount(), 4 * kHeight);
    show(*view);
    ASSERT_TRUE(waitFor([&] { return view->cloud().pointCount() == kWidth * kHeight; }));
    EXPECT_EQ(at(capture(*view), project(place(20, 15, 0.6F), size)), blue);
}

TEST_F(ToF3DViewPictureTest, SelectedBackgroundIsSeenAtOnceAndInTheNextView) {
    const auto view = open();
    show(*view);
    view->selectBgColor(0xff0000);
    EXPECT_EQ(extentOf(capture(*view), red), QRect(QPoint(0, 0), sceneSize(*view)));
    const auto next = open();
    show(*next);
    EXPECT_EQ(extentOf(capture(*next), red), QRect(QPoint(0, 0), sceneSize(*next)));
}

} // namespace
