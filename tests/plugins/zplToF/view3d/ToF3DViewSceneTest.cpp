#include "plugins/zplToF/view3d/CkToFRenderCapture.h"
#include "plugins/zplToF/view3d/CkToFScene.h"
#include "plugins/zplToF/view3d/ToFGlProbe.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QSurfaceFormat>
#include <Qt3DCore/QEntity>
#include <Qt3DExtras/QForwardRenderer>
#include <Qt3DExtras/QOrbitCameraController>
#include <Qt3DExtras/QPhongMaterial>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QCamera>
#include <Qt3DRender/QClearBuffers>
#include <Qt3DRender/QEffect>
#include <Qt3DRender/QFilterKey>
#include <Qt3DRender/QGeometryRenderer>
#include <Qt3DRender/QGraphicsApiFilter>
#include <Qt3DRender/QParameter>
#include <Qt3DRender/QRenderCapabilities>
#include <Qt3DRender/QRenderCapture>
#include <Qt3DRender/QRenderPass>
#include <Qt3DRender/QRenderSettings>
#include <Qt3DRender/QShaderProgram>
#include <Qt3DRender/QTechnique>

namespace {

QStringList criticalMessages;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg) {
        criticalMessages << text;
    }
}

class ToF3DViewSceneTest : public ViewTest {};

TEST_F(ToF3DViewSceneTest, TheStartIsLoggedAsCriticalWithVersionsRendererAndPlatform) {
    criticalMessages.clear();
    const QtMessageHandler before = qInstallMessageHandler(collect);
    const auto view = open();
    qInstallMessageHandler(before);
    ASSERT_EQ(criticalMessages.size(), 1);
    const auto* found = view->scene()->window()->renderSettings()->renderCapabilities();
    EXPECT_EQ(criticalMessages[0],
              QStringLiteral("Starting ToF 3D with OpenGL %1.%2 (glsl %3) on %4, platform: %5")
                  .arg(QString::number(found->majorVersion()), QString::number(found->minorVersion()),
                       found->glslVersion(), found->renderer(), QStringLiteral("xcb")));
}

TEST_F(ToF3DViewSceneTest, TheBillboardMaterialIsOneForwardTechniqueForOpenGL31Core) {
    const auto view = open();
    const SkToFBillboardMaterial& billboards = view->scene()->billboards();
    ASSERT_NE(billboards.material, nullptr);
    EXPECT_EQ(billboards.material->parameters(),
              QList<Qt3DRender::QParameter*>({billboards.pointSize, billboards.windowSize}));
    EXPECT_EQ(billboards.pointSize->parent(), billboards.material);
    EXPECT_EQ(billboards.windowSize->parent(), billboards.material);
    const auto techniques = billboards.material->effect()->techniques();
    ASSERT_EQ(techniques.size(), 1);
    const auto* api = techniques[0]->graphicsApiFilter();
    EXPECT_EQ(api->api(), Qt3DRender::QGraphicsApiFilter::OpenGL);
    EXPECT_EQ(api->profile(), Qt3DRender::QGraphicsApiFilter::CoreProfile);
    EXPECT_EQ(api->majorVersion(), 3);
    EXPECT_EQ(api->minorVersion(), 1);
    ASSERT_EQ(techniques[0]->filterKeys().size(), 1);
    EXPECT_EQ(techniques[0]->filterKeys()[0]->name(), QStringLiteral("renderingStyle"));
    EXPECT_EQ(techniques[0]->filterKeys()[0]->value().toString(), QStringLiteral("forward"));
    ASSERT_EQ(techniques[0]->renderPasses().size(), 1);
    EXPECT_EQ(techniques[0]->renderPasses()[0]->shaderProgram(), billboards.program);
}

TEST_F(ToF3DViewSceneTest, TheShadersComeFromTheResource) {
    const auto view = open();
    const Qt3DRender::QShaderProgram* program = view->scene()->billboards().program;
    const auto source = [](const char* name) {
        QFile file(QStringLiteral(":/shaders/") + QLatin1String(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        return file.readAll();
    };
    EXPECT_EQ(program->vertexShaderCode(), source("billboards.vert"));
    EXPECT_EQ(program->geometryShaderCode(), source("billboards.geom"));
    EXPECT_EQ(program->fragmentShaderCode(), source("billboards.frag"));
    for (const QByteArray& code :
         {program->vertexShaderCode(), program->geometryShaderCode(), program->fragmentShaderCode()}) {
        EXPECT_TRUE(code.startsWith("#version 150\n"));
    }
}

TEST_F(ToF3DViewSceneTest, AProblemOfTheShadersReachesTheLog) {
    const auto view = open();
    criticalMessages.clear();
    const QtMessageHandler before = qInstallMessageHandler(collect);
    emit view->scene()->billboards().program->logChanged(QStringLiteral("0:1: syntax error"));
    qInstallMessageHandler(before);
    EXPECT_EQ(criticalMessages,
              QStringList{QStringLiteral("CkToF3DMdiView::shaderProgramLogChanged(): 0:1: syntax error")});
}

TEST_F(ToF3DViewSceneTest, CloudAndBoxAreEntitiesOfOneRoot) {
    const auto view = open();
    const CkToFScene& scene = *view->scene();
    const auto clouds = scene.cloudRenderer()->entities();
    ASSERT_EQ(clouds.size(), 1);
    EXPECT_EQ(clouds[0]->components(),
              Qt3DCore::QComponentVector({scene.cloudRenderer(), scene.billboards().material}));
    const auto boxes = scene.boxRenderer()->entities();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0], scene.boxEntity());
    EXPECT_EQ(boxes[0]->parentNode(), clouds[0]->parentNode());
    const auto materials = boxes[0]->componentsOfType<Qt3DExtras::QPhongMaterial>();
    ASSERT_EQ(materials.size(), 1);
    EXPECT_EQ(materials[0]->ambient(), QColor(Qt::white));
    ASSERT_EQ(boxes[0]->components().size(), 2);
    EXPECT_EQ(boxes[0]->components()[0], scene.boxRenderer());

    const auto controllers = clouds[0]->parentNode()->findChildren<Qt3DExtras::QOrbitCameraController*>();
    ASSERT_EQ(controllers.size(), 1);
    EXPECT_EQ(controllers[0]->camera(), scene.camera());
}

TEST_F(ToF3DViewSceneTest, TheCaptureStandsUnderTheClearedBuffers) {
    const auto view = open();
    const QObject* node = view->scene()->renderCapture()->capture();
    const QObject* clear =
        view->scene()->window()->defaultFrameGraph()->findChild<Qt3DRender::QClearBuffers*>();
    ASSERT_NE(clear, nullptr);
    while (node != nullptr && node != clear) {
        node = node->parent();
    }
    EXPECT_EQ(node, clear);
}

// Four samples per pixel would take a software renderer more time than everything else.
TEST_F(ToF3DViewSceneTest, AProcessorDrawsOneSampleAPixel) {
    const auto view = open();
    ASSERT_TRUE(ToFGlProbe::isSoftware());
    show(*view);
    EXPECT_LE(view->scene()->window()->format().samples(), 1);
    EXPECT_LE(QSurfaceFormat::defaultFormat().samples(), 1);
}

} // namespace
