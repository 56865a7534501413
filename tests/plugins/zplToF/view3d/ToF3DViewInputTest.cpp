// Keys and mouse in the window of the scene.

#include "tests/plugins/zplToF/view3d/ViewActionFixture.h"

#include <QAction>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DInput/QAction>
#include <Qt3DRender/QCamera>

namespace {

class ToF3DViewInputTest : public ViewActionTest {};

TEST_F(ToF3DViewInputTest, PressingOTwiceReturnsTheCloudToItsFirstState) {
    useLens(0.0F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    show(*view);
    const QByteArray before = vertices(*view);
    QTest::keyClick(view->scene()->window(), Qt::Key_O);
    EXPECT_TRUE(view->options().opticalPath.orthoRadialCorrection);
    EXPECT_NE(vertices(*view), before);
    QTest::keyClick(view->scene()->window(), Qt::Key_O);
    EXPECT_FALSE(view->options().opticalPath.orthoRadialCorrection);
    EXPECT_EQ(vertices(*view), before);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.OptOrthoRadialCorrection")).toBool(), false);
}

TEST_F(ToF3DViewInputTest, EscapeLeavesFullScreenOnly) {
    QWidget window;
    m_host.window = &window;
    const auto view = open();
    show(*view);
    window.show();
    QTest::keyClick(view->scene()->window(), Qt::Key_Escape);
    EXPECT_FALSE(m_host.calls.contains(QStringLiteral("leaveFullScreen")));
    window.showFullScreen();
    QTest::keyClick(view->scene()->window(), Qt::Key_Escape);
    EXPECT_EQ(m_host.calls.count(QStringLiteral("leaveFullScreen")), 1);
    m_host.window = nullptr;
    QTest::keyClick(view->scene()->window(), Qt::Key_Escape);
    EXPECT_EQ(m_host.calls.count(QStringLiteral("leaveFullScreen")), 1);
}

TEST_F(ToF3DViewInputTest, AMousePressMakesTheViewActiveOnce) {
    const auto view = open();
    show(*view);
    m_host.calls.clear();
    QTest::mouseClick(view->scene()->window(), Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_EQ(m_host.calls, QStringList{QStringLiteral("setActiveView %1").arg(view->viewId())});
    QTest::mouseClick(view->scene()->window(), Qt::RightButton, {}, QPoint(50, 50));
    EXPECT_EQ(m_host.calls.size(), 1);
}

/// The mouse buttons as the orbit controller sees them.
QList<Qt3DInput::QAction*> controllerButtons(const CkToF3DMdiView& view) {
    const auto entities = view.scene()->cloudRenderer()->entities();
    return entities[0]->parentNode()->findChildren<Qt3DInput::QAction*>();
}

/// Before Qt 3D has drawn a frame, its controllers receive no mouse events.
void waitForInput(const QImage& drawn) {
    ASSERT_FALSE(drawn.isNull());
}

TEST_F(ToF3DViewInputTest, AMousePressMakesTheViewActiveBeforeTheOrbitControllerHandlesIt) {
    const auto view = open();
    show(*view);
    waitForInput(capture(*view));
    m_host.calls.clear();
    const QList<Qt3DInput::QAction*> buttons = controllerButtons(*view);
    ASSERT_FALSE(buttons.isEmpty());
    for (const Qt3DInput::QAction* button : buttons) {
        QObject::connect(button, &Qt3DInput::QAction::activeChanged, button,
                         [this] { m_host.calls << QStringLiteral("controller"); });
    }
    QTest::mousePress(view->scene()->window(), Qt::LeftButton, {}, QPoint(50, 50));
    ASSERT_TRUE(waitFor([&] { return m_host.calls.contains(QStringLiteral("controller")); }));
    EXPECT_EQ(m_host.calls, QStringList({QStringLiteral("setActiveView %1").arg(view->viewId()),
                                         QStringLiteral("controller")}));
    QTest::mouseRelease(view->scene()->window(), Qt::LeftButton, {}, QPoint(50, 50));
}

TEST_F(ToF3DViewInputTest, DefaultPositionAfterOrbiting) {
    const auto view = open();
    show(*view);
    waitForInput(capture(*view));
    Qt3DRender::QCamera* camera = view->scene()->camera();
    EXPECT_EQ(camera->position(), QVector3D(0, 0, 3));
    QWindow* window = view->scene()->window();
    // The controller reads the mouse once per frame and rotates by the movement since the last one.
    QTest::mousePress(window, Qt::RightButton, {}, QPoint(200, 200));
    int x = 200;
    ASSERT_TRUE(waitFor([&] {
        x = x < 400 ? x + 5 : 200;
        QTest::mouseMove(window, QPoint(x, 200));
        return camera->position() != QVector3D(0, 0, 3);
    }));
    QTest::mouseRelease(window, Qt::RightButton, {}, QPoint(x, 200));
    const QList<Qt3DInput::QAction*> buttons = controllerButtons(*view);
    ASSERT_TRUE(waitFor([&] {
        return std::none_of(buttons.begin(), buttons.end(),
                            [](const auto* button) { return button->isActive(); });
    }));

    action(*view, QStringLiteral("Default position"))->trigger();
    EXPECT_EQ(camera->position(), QVector3D(0, 0, 3));
    EXPECT_EQ(camera->upVector(), QVector3D(0, 1, 0));
    EXPECT_EQ(camera->viewCenter(), QVector3D(0, 0, 0));
    EXPECT_EQ(camera->fieldOfView(), 45.0F);
    EXPECT_EQ(camera->aspectRatio(), 16.0F / 9.0F);
    EXPECT_EQ(camera->nearPlane(), 0.1F);
    EXPECT_EQ(camera->farPlane(), 1000.0F);
}

} // namespace
