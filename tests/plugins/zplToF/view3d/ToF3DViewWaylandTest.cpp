#include "plugins/zplToF/view3d/CkToFScene.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include <QGuiApplication>
#include <QLabel>
#include <QTest>
#include <Qt3DCore/QAttribute>
#include <Qt3DCore/QBuffer>
#include <Qt3DCore/QEntity>
#include <Qt3DExtras/QPerVertexColorMaterial>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QGeometryRenderer>
#include <Qt3DRender/QParameter>
#include <Qt3DRender/QRenderCapture>
#include <limits>

namespace {

constexpr float kNoPoint = std::numeric_limits<float>::quiet_NaN();

class ToF3DViewWaylandTest : public ViewTest {
protected:
    ToF3DViewWaylandTest() {
        m_host.store(QStringLiteral("ToF.LUTPseudoColor"), 2);
        m_host.store(QStringLiteral("ToF.ShowBBox"), false);
        m_host.provideLuts = false;
    }
};

// First in the program: nothing of Qt 3D has run yet.
TEST_F(ToF3DViewWaylandTest, TheRendererVariableIsUntouchedBeforeTheWindowExists) {
    ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("wayland"));
    ASSERT_FALSE(qEnvironmentVariableIsSet("QT3D_RENDERER"));
    EXPECT_FALSE(CkToFScene::platformUsesPointPrimitives());
    const auto view = open();
    ASSERT_NE(view->scene(), nullptr);
    EXPECT_NE(qgetenv("QT3D_RENDERER"), QByteArray("opengl"));
}

TEST_F(ToF3DViewWaylandTest, TheSmallestSizeIs800x600AndTheViewWantsAWindowOfItsOwn) {
    const auto view = open();
    EXPECT_EQ(view->minimumSize(), QSize(800, 600));
    EXPECT_EQ(view->viewCaps(), 0x40);
}

TEST_F(ToF3DViewWaylandTest, TheCloudIsDrawnAsQuadsWithThePerVertexColorMaterial) {
    m_source.shown = TestFrame::generic(40, 30, [](int x, int) { return x < 20 ? 1.0F : 2.0F; });
    const auto view = open();
    EXPECT_FALSE(view->model().usesPoints());
    const CkToFScene& scene = *view->scene();
    EXPECT_EQ(scene.billboards().material, nullptr);
    EXPECT_EQ(scene.billboards().pointSize, nullptr);
    EXPECT_EQ(scene.billboards().windowSize, nullptr);
    const auto entities = scene.cloudRenderer()->entities();
    ASSERT_EQ(entities.size(), 1);
    EXPECT_EQ(entities[0]->componentsOfType<Qt3DExtras::QPerVertexColorMaterial>().size(), 1);
    EXPECT_EQ(scene.cloudRenderer()->primitiveType(), Qt3DRender::QGeometryRenderer::Triangles);
    EXPECT_EQ(scene.cloudRenderer()->vertexCount(), 6 * 40 * 30);
    const auto* indices =
        CkToF3DMdiView::getSceneAttribute(scene.cloudRenderer(), QStringLiteral("sceneIndexBuffer"));
    ASSERT_NE(indices, nullptr);
    EXPECT_EQ(indices->count(), 6U * 40U * 30U);
}

TEST_F(ToF3DViewWaylandTest, AResizeChangesNoParameter) {
    m_source.shown = TestFrame::generic(4, 3, [](int x, int) { return float(x); });
    const auto view = open();
    show(*view, QSize(800, 600));
    const auto parameters =
        view->scene()->window()->findChildren<Qt3DRender::QParameter*>() +
        view->scene()->cloudRenderer()->entities()[0]->parentNode()->findChildren<Qt3DRender::QParameter*>();
    ASSERT_FALSE(parameters.isEmpty());
    const auto state = [&] {
        QStringList texts;
        for (const Qt3DRender::QParameter* parameter : parameters) {
            EXPECT_NE(parameter->name(), QStringLiteral("parWindowSize"));
            EXPECT_NE(parameter->name(), QStringLiteral("parPointSize"));
            texts << parameter->name() + QLatin1Char('=') + parameter->value().toString();
        }
        return texts;
    };
    const QStringList before = state();
    view->resize(900, 700);
    ASSERT_TRUE(waitFor([&] { return view->scene()->window()->width() == 900; }));
    EXPECT_EQ(state(), before);
}

TEST_F(ToF3DViewWaylandTest, AGrabShowsTheCloud) {
    m_source.shown = TestFrame::generic(40, 30, [](int x, int y) {
        if (x >= 26 && x < 34 && y >= 4 && y < 12) {
            return 2.0F;
        }
        return x == 5 && y == 25 ? 1.0F : kNoPoint;
    });
    const auto view = open();
    show(*view, QSize(800, 600));
    const QImage image = capture(*view);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), view->scene()->window()->size());
    // The quad of pixel (x, y) spans up to x + 1 and y + 1.
    const QVector3D middle((30.0F - 20.0F) * 0.05F, (15.0F - 8.0F) * 0.05F, -0.6F);
    const QPointF place = project(middle, image.size());
    const QColor seen = image.pixelColor(place.toPoint());
    EXPECT_GT(seen.red(), 128) << seen.name().toStdString();
    EXPECT_LT(seen.blue(), 100) << seen.name().toStdString();
    EXPECT_EQ(image.pixelColor(image.width() / 4, image.height() / 4), QColor(48, 48, 128));
}

TEST_F(ToF3DViewWaylandTest, FramesAreShownHiddenAndShownAgain) {
    const auto view = open();
    show(*view, QSize(800, 600));
    for (int i = 0; i < 30; ++i) {
        give(*view, TestFrame::generic(40, 30, [i](int x, int) { return x < i ? 1.0F : 2.0F; }));
        letEventsHappen(2);
    }
    EXPECT_EQ(view->cloud().pointCount(), 1200);
    view->hide();
    ASSERT_TRUE(waitFor([&] { return !view->scene()->isDrawn(); }));
    give(*view, TestFrame::generic(40, 30, [](int x, int) { return x < 4 ? 1.0F : kNoPoint; }));
    EXPECT_EQ(view->cloud().pointCount(), 1200);
    show(*view, QSize(800, 600));
    ASSERT_TRUE(waitFor([&] { return view->cloud().pointCount() == 4 * 30; }));
}

} // namespace
