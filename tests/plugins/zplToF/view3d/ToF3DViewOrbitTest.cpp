// Mouse, wheel and keys move the camera by the same amount however often the scene is drawn.

#include "tests/plugins/zplToF/view3d/ViewActionFixture.h"

#include <QMouseEvent>
#include <QThread>
#include <QWheelEvent>
#include <Qt3DCore/QEntity>
#include <Qt3DExtras/QOrbitCameraController>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DLogic/QFrameAction>
#include <Qt3DRender/QCamera>
#include <array>
#include <cmath>

namespace {

constexpr std::array kFrameTimesMs = {200UL, 16UL}; ///< 5 and 60 frames per second

class ToF3DViewOrbitTest : public ViewActionTest {
protected:
    ToF3DViewOrbitTest() { m_host.provideLuts = false; }

    /// A view of points near (z = 0.6) on the left and far (z = -0.6) on the right; each frame takes this
    /// long to draw.
    std::unique_ptr<CkToF3DMdiView> openSlow(unsigned long milliseconds) {
        m_source.shown = TestFrame::generic(40, 30, [](int x, int) { return x < 20 ? 1.0F : 2.0F; });
        auto view = open();
        show(*view);
        EXPECT_FALSE(capture(*view).isNull());
        auto* root =
            qobject_cast<Qt3DCore::QEntity*>(view->scene()->cloudRenderer()->entities()[0]->parentNode());
        auto* drawing = new Qt3DLogic::QFrameAction;
        root->addComponent(drawing);
        QObject::connect(drawing, &Qt3DLogic::QFrameAction::triggered, drawing,
                         [milliseconds] { QThread::msleep(milliseconds); });
        return view;
    }

    static QVector3D pointOf(int x, int y) {
        return {(float(x) - 20.0F) / 20.0F, (15.0F - float(y)) / 20.0F, x < 20 ? 0.6F : -0.6F};
    }

    /// Where the camera projects a point of the scene.
    static QPointF placeOf(const CkToF3DMdiView& view, const QVector3D& point) {
        const Qt3DRender::QCamera* camera = view.scene()->camera();
        const QVector3D seen = (camera->projectionMatrix() * camera->viewMatrix()).map(point);
        const QSize size = view.scene()->window()->size();
        return {(double(seen.x()) + 1.0) / 2.0 * size.width(),
                (1.0 - double(seen.y())) / 2.0 * size.height()};
    }

    /// Moves the mouse as a user does, with frames drawn in between.
    static void drag(const CkToF3DMdiView& view, Qt::MouseButton button, const QPoint& from,
                     const QPoint& by) {
        QWindow* window = view.scene()->window();
        constexpr int steps = 8;
        QTest::mousePress(window, button, {}, from);
        for (int i = 1; i <= steps; ++i) {
            letEventsHappen(20);
            QTest::mouseMove(window, from + by * i / steps);
        }
        letEventsHappen(20);
        QTest::mouseRelease(window, button, {}, from + by);
        // Events still in flight.
        letEventsHappen(500);
    }

    static void turnWheel(const CkToF3DMdiView& view, const QPoint& eighthsOfADegree) {
        const QPointF middle(100.0, 100.0);
        QWheelEvent event(middle, view.scene()->window()->mapToGlobal(middle), {}, eighthsOfADegree,
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.scene()->window(), &event);
    }

    static void expectNear(const QVector3D& found, const QVector3D& expected, double tolerance) {
        EXPECT_LE(double((found - expected).length()), tolerance)
            << found.x() << ' ' << found.y() << ' ' << found.z();
    }
    static double distance(const CkToF3DMdiView& view) {
        return double(view.scene()->camera()->viewVector().length());
    }
};

TEST_F(ToF3DViewOrbitTest, ThePointUnderTheMouseFollowsIt) {
    for (const unsigned long milliseconds : kFrameTimesMs) {
        for (const int x : {12, 28}) {
            const auto view = openSlow(milliseconds);
            const QVector3D point = pointOf(x, 15);
            const QPointF before = placeOf(*view, point);
            drag(*view, Qt::LeftButton, before.toPoint(), QPoint(40, 20));
            const QPointF moved = placeOf(*view, point) - before;
            EXPECT_NEAR(moved.x(), 40.0, 4.0) << milliseconds << ' ' << x;
            EXPECT_NEAR(moved.y(), 20.0, 2.0) << milliseconds << ' ' << x;
            EXPECT_NEAR(distance(*view), 3.0, 1e-4);
        }
    }
}

TEST_F(ToF3DViewOrbitTest, BesideThePointsTheViewCentreFollowsTheMouse) {
    const auto view = openSlow(1);
    const QPointF before = placeOf(*view, QVector3D());
    drag(*view, Qt::LeftButton, QPoint(3, 3), QPoint(40, 20));
    const QPointF moved = placeOf(*view, QVector3D()) - before;
    EXPECT_NEAR(moved.x(), 40.0, 0.5);
    EXPECT_NEAR(moved.y(), 20.0, 0.5);
}

TEST_F(ToF3DViewOrbitTest, ADragOverTheWindowTurnsByHalfATurn) {
    for (const unsigned long milliseconds : kFrameTimesMs) {
        const auto view = openSlow(milliseconds);
        const Qt3DRender::QCamera* camera = view->scene()->camera();
        const int width = view->scene()->window()->width();
        // The front moves to the right: the camera to the left.
        drag(*view, Qt::RightButton, QPoint(0, 100), QPoint(width / 2, 0));
        expectNear(camera->position(), QVector3D(-3.0F, 0.0F, 0.0F), 0.05);
        drag(*view, Qt::RightButton, QPoint(0, 100), QPoint(width / 2, 0));
        expectNear(camera->position(), QVector3D(0.0F, 0.0F, -3.0F), 0.1);
        expectNear(camera->upVector(), QVector3D(0.0F, 1.0F, 0.0F), 0.001);
        expectNear(camera->viewCenter(), QVector3D(), 0.001);
    }
}

TEST_F(ToF3DViewOrbitTest, ADragDownwardsTurnsTheFrontDown) {
    const auto view = openSlow(1);
    const Qt3DRender::QCamera* camera = view->scene()->camera();
    const int width = view->scene()->window()->width();
    drag(*view, Qt::RightButton, QPoint(100, 10), QPoint(0, width / 4));
    const float part = 3.0F * std::sqrt(0.5F);
    expectNear(camera->position(), QVector3D(0.0F, part, part), 0.05);
    // Past the pole the scene is upside down and still follows the mouse.
    drag(*view, Qt::RightButton, QPoint(100, 10), QPoint(0, width / 2));
    expectNear(camera->position(), QVector3D(0.0F, part, -part), 0.1);
    ASSERT_LT(camera->upVector().y(), 0.0F);
    const QVector3D front = camera->position() / 3.0F;
    const QPointF before = placeOf(*view, front);
    drag(*view, Qt::RightButton, QPoint(100, 100), QPoint(20, 0));
    EXPECT_GT(placeOf(*view, front).x(), before.x() + 10.0);
}

TEST_F(ToF3DViewOrbitTest, TheWheelZoomsByATenthANotch) {
    for (const unsigned long milliseconds : kFrameTimesMs) {
        const auto view = openSlow(milliseconds);
        turnWheel(*view, QPoint(0, 120));
        EXPECT_NEAR(distance(*view), 3.0 / 1.1, 1e-4);
        letEventsHappen(300);
        EXPECT_NEAR(distance(*view), 3.0 / 1.1, 1e-4);
        turnWheel(*view, QPoint(0, -120));
        EXPECT_NEAR(distance(*view), 3.0, 1e-4);
        for (int i = 0; i < 5; ++i) {
            turnWheel(*view, QPoint(0, -120));
        }
        EXPECT_NEAR(distance(*view), 3.0 * std::pow(1.1, 5), 1e-3);
        // Half a notch; and, with Alt held, a horizontal one.
        turnWheel(*view, QPoint(0, 60));
        EXPECT_NEAR(distance(*view), 3.0 * std::pow(1.1, 4.5), 1e-3);
        turnWheel(*view, QPoint(120, 0));
        EXPECT_NEAR(distance(*view), 3.0 * std::pow(1.1, 3.5), 1e-3);
        EXPECT_EQ(view->scene()->camera()->viewCenter(), QVector3D());
        letEventsHappen(300);
        EXPECT_NEAR(distance(*view), 3.0 * std::pow(1.1, 3.5), 1e-3);
    }
}

TEST_F(ToF3DViewOrbitTest, ZoomingNeverLeavesTheRangeOfTheCamera) {
    const auto view = openSlow(1);
    turnWheel(*view, QPoint(0, 120 * 1000));
    EXPECT_NEAR(distance(*view), 0.2, 1e-4);
    turnWheel(*view, QPoint(0, -120 * 1000));
    EXPECT_NEAR(distance(*view), 500.0, 0.1);
    turnWheel(*view, QPoint(0, 120));
    EXPECT_NEAR(distance(*view), 500.0 / 1.1, 0.1);
}

TEST_F(ToF3DViewOrbitTest, BothButtonsZoom) {
    const auto view = openSlow(1);
    QWindow* window = view->scene()->window();
    QTest::mousePress(window, Qt::LeftButton, {}, QPoint(100, 100));
    QTest::mousePress(window, Qt::RightButton, {}, QPoint(100, 100));
    // QTest supports one button at a time.
    const QPointF place(150.0, 100.0 + window->height() / 4.0);
    QMouseEvent move(QEvent::MouseMove, place, window->mapToGlobal(place), Qt::NoButton,
                     Qt::LeftButton | Qt::RightButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &move);
    QTest::mouseRelease(window, Qt::RightButton, {}, place.toPoint());
    QTest::mouseRelease(window, Qt::LeftButton, {}, place.toPoint());
    EXPECT_NEAR(distance(*view), 3.0 * std::pow(1.1, 2.5), 0.05);
    EXPECT_EQ(view->scene()->camera()->viewCenter(), QVector3D());
}

TEST_F(ToF3DViewOrbitTest, AMouseWithoutButtonsMovesNothing) {
    const auto view = openSlow(1);
    QTest::mouseMove(view->scene()->window(), QPoint(50, 50));
    QTest::mouseMove(view->scene()->window(), QPoint(150, 150));
    letEventsHappen(50);
    EXPECT_EQ(view->scene()->camera()->position(), QVector3D(0.0F, 0.0F, 3.0F));
}

TEST_F(ToF3DViewOrbitTest, KeysMoveTurnAndZoomByFixedSteps) {
    const auto view = openSlow(200);
    Qt3DRender::QCamera* camera = view->scene()->camera();
    QWindow* window = view->scene()->window();
    // 5 % of the height visible at the view centre.
    const float step = float(0.05 * 2.0 * 3.0 * std::tan(22.5 * M_PI / 180.0));
    QTest::keyClick(window, Qt::Key_Up);
    expectNear(camera->position(), QVector3D(0.0F, step, 3.0F), 1e-4);
    QTest::keyClick(window, Qt::Key_Down);
    expectNear(camera->position(), QVector3D(0.0F, 0.0F, 3.0F), 1e-4);
    QTest::keyClick(window, Qt::Key_Right);
    EXPECT_GT(camera->position().x(), 0.5F * step);
    EXPECT_EQ(camera->viewCenter().x(), camera->position().x());
    QTest::keyClick(window, Qt::Key_Left);
    expectNear(camera->position(), QVector3D(0.0F, 0.0F, 3.0F), 1e-4);
    QTest::keyClick(window, Qt::Key_PageUp);
    EXPECT_NEAR(distance(*view), 3.0 / 1.1, 1e-4);
    QTest::keyClick(window, Qt::Key_PageDown);
    QTest::keyClick(window, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_NEAR(distance(*view), 3.0 / 1.1, 1e-4);
    QTest::keyClick(window, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_NEAR(distance(*view), 3.0, 1e-4);
    // The camera moves to the right, by 5 degrees.
    QTest::keyClick(window, Qt::Key_Right, Qt::AltModifier);
    const double angle = 5.0 * M_PI / 180.0;
    expectNear(camera->position(),
               QVector3D(float(3.0 * std::sin(angle)), 0.0F, float(3.0 * std::cos(angle))), 1e-3);
    letEventsHappen(300);
    EXPECT_NEAR(distance(*view), 3.0, 1e-3);
}

TEST_F(ToF3DViewOrbitTest, TheCameraIsMovedByAnOrbitController) {
    const auto view = open();
    const auto controllers = view->scene()
                                 ->cloudRenderer()
                                 ->entities()[0]
                                 ->parentNode()
                                 ->findChildren<Qt3DExtras::QOrbitCameraController*>();
    ASSERT_EQ(controllers.size(), 1);
    EXPECT_EQ(controllers[0]->camera(), view->scene()->camera());
}

} // namespace
