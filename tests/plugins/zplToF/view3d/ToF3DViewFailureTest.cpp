#include "plugins/zplToF/view3d/ToFGlProbe.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"

#include <QAction>
#include <QLabel>
#include <Qt3DExtras/Qt3DWindow>
#include <stdexcept>

namespace {

// Set before the first use of OpenGL: Mesa reads it once. 2.1 has no core profile and no geometry shaders.
const bool environmentSet = qputenv("MESA_GL_VERSION_OVERRIDE", "2.1");

const QString errorText = QStringLiteral(
    "Error creating 3D widget. Please make sure OpenGL drivers are avilable on your computer.");

QString labelText(const QWidget& view) {
    for (const QLabel* label : view.findChildren<QLabel*>()) {
        if (!label->text().isEmpty()) {
            return label->text();
        }
    }
    return {};
}

class ToF3DViewFailureTest : public ViewTest {};

TEST_F(ToF3DViewFailureTest, WithoutUsableOpenGLTheViewSaysSoAndTheRestWorks) {
    ASSERT_TRUE(environmentSet);
    ASSERT_FALSE(ToFGlProbe::canRender(true));
    m_source.shown = TestFrame::phase(8, 6, [](int, int) { return DepthPixel{1.0F, 0.1F}; });
    const auto view = open();
    EXPECT_EQ(view->scene(), nullptr);
    EXPECT_EQ(labelText(*view), errorText);
    view->resize(600, 400);
    view->show();
    letEventsHappen(50);

    EXPECT_EQ(view->depthFrame().depthDataKind(), EkDepthDataType::PhaseShift);
    give(*view, TestFrame::phase(
                    8, 6,
                    [](int, int) {
                        return DepthPixel{2.0F, 0.1F};
                    },
                    7));
    ASSERT_NE(view->currentImage(), nullptr);
    EXPECT_EQ(view->currentImage()->frameId(), 7);
    action(*view, QStringLiteral("2x"))->trigger();
    EXPECT_EQ(view->model().zZoom(), 2.0F);
    action(*view, QStringLiteral("Default position"))->trigger();
    action(*view, QStringLiteral("Screenshot"))->trigger();
    EXPECT_FALSE(view->grabScene(QStringLiteral("/dev/null")));
    EXPECT_FALSE(action(*view, QStringLiteral("Export data"))->isEnabled());
    // Both are stored although there is no scene to show them.
    view->showBoundingBox(false);
    view->selectBgColor(0x112233U);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.ShowBBox")).toBool(), false);
    EXPECT_EQ(m_host.stored(QStringLiteral("ToF.BgColor")).toUInt(), 0x112233U);
    view->updateBBoxGeometry(1.0F, 1.0F, 1.0F);
    view->updatePointCloudGeometry();
    view->moveToDefault3DPosition();
}

/// An application whose settings throw while the scene is being made: the third time they are requested,
/// after the options and the pseudo-colour index.
class FailingDelegate : public FakeAppDelegate {
public:
    QSettings* settings() override {
        if (++m_asked == 3) {
            throw std::runtime_error("no settings");
        }
        return FakeAppDelegate::settings();
    }

private:
    int m_asked = 0;
};

QStringList criticalMessages;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg) {
        criticalMessages << text;
    }
}

TEST_F(ToF3DViewFailureTest, AnExceptionWhileTheSceneIsMadeIsLoggedAndShownAsTheError) {
    FailingDelegate host;
    host.registerView(&m_source);
    m_source.shown = TestFrame::phase(8, 6, [](int, int) { return DepthPixel{1.0F, 0.1F}; });
    host.provideLuts = false;
    criticalMessages.clear();
    const QtMessageHandler before = qInstallMessageHandler(collect);
    std::unique_ptr<CkToF3DMdiView> view;
    EXPECT_NO_THROW(view = open());
    qInstallMessageHandler(before);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->scene(), nullptr);
    EXPECT_EQ(labelText(*view), errorText);
    ASSERT_EQ(criticalMessages.size(), 1);
    EXPECT_TRUE(criticalMessages[0].startsWith(QLatin1String("CkToF3DMdiView::CkToF3DMdiView(): ")));
    EXPECT_TRUE(criticalMessages[0].contains(QLatin1String("plugins/zplToF/3dMdiView")));
    EXPECT_TRUE(criticalMessages[0].endsWith(QLatin1String("Exception in 3D view createSceneWidget.")));
}

TEST_F(ToF3DViewFailureTest, AShaderLogIsWrittenAsCritical) {
    const auto view = open();
    criticalMessages.clear();
    const QtMessageHandler before = qInstallMessageHandler(collect);
    view->shaderProgramLogChanged(QStringLiteral("0:1: syntax error"));
    qInstallMessageHandler(before);
    EXPECT_EQ(criticalMessages,
              QStringList{QStringLiteral("CkToF3DMdiView::shaderProgramLogChanged(): 0:1: syntax error")});
}

} // namespace
