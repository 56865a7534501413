// The real time-of-flight plug-in in the real viewer; the library is only known by its place.

#include "ViewerFixture.h"

#include "camera/CkCameraPanel.h"
#include "chain/CkChainPanel.h"
#include "chain/CkChainTree.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChainable.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QDialog>
#include <QFile>
#include <QMdiSubWindow>
#include <QMenu>
#include <QRadioButton>
#include <QScreen>
#include <QSet>
#include <QSignalSpy>
#include <QTextBrowser>
#include <QToolButton>

namespace {

const QString kToFBlock = QStringLiteral("com.orvane.Pictor.CkToFProcessCnbl");

class ToFViewer : public ViewerFixture {
protected:
    void SetUp() override {
        ViewerFixture::SetUp();
        m_options.pluginPaths = QStringList{ZU_TOF_PLUGIN};
        ASSERT_TRUE(start());
        ASSERT_TRUE(m_session->plugins()->problems().isEmpty());
    }

    void clickTool(void* camera, const char* name) {
        auto* button = desk()->panel(camera)->findChild<QToolButton*>(QLatin1String(name));
        ASSERT_NE(button, nullptr) << name;
        QTest::mouseClick(button, Qt::LeftButton);
    }

    QAction* pluginAction(const char* name) const {
        auto* action = window()->findChild<QAction*>(QLatin1String(name));
        for (const auto& loaded : m_session->plugins()->plugins()) {
            action = action != nullptr ? action : loaded.object->findChild<QAction*>(QLatin1String(name));
        }
        return action;
    }

    CkMdiView* followerOf(int viewId) const {
        for (CkMdiView* view : area()->views()) {
            if (view->connectedViewId() == viewId) {
                return view;
            }
        }
        return nullptr;
    }

    static QStringList titles(const CkChain* chain) {
        QStringList result;
        for (const CkChainable* block : chain->blocks()) {
            result.append(block->title());
        }
        return result;
    }

    // What the person in front of the screen sees where the 3D scene is.
    QImage sceneOnScreen(CkMdiView* view) const {
        const QImage whole = window()->screen()->grabWindow(window()->winId()).toImage();
        const QRect place(view->mapTo(window(), QPoint(0, 0)), view->size());
        return whole.copy(place.adjusted(4, 44, -4, -4));
    }

    static int colourCount(const QImage& image) {
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                colours.insert(image.pixel(x, y));
            }
        }
        return int(colours.size());
    }
};

TEST_F(ToFViewer, ToolButtonOpensTheLiveCloudFromAStoppedCamera) {
    void* camera = desk()->openCamera("sim:wave", true);
    ASSERT_FALSE(CkCameraManager::instance()->isAcquiring(camera));
    const int rawView = firstView()->viewId();
    QCoreApplication::processEvents();
    clickTool(camera, "btnToF3D");
    EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
    CkMdiView* scene = followerOf(rawView);
    ASSERT_NE(scene, nullptr);
    ASSERT_TRUE(waitForFrame(firstView()));
    // The cloud: many colours, and the background in the corners where nothing is.
    constexpr QRgb background = 0xff303080U;
    QImage first;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            first = sceneOnScreen(scene).convertToFormat(QImage::Format_RGB32);
            return first.pixel(2, first.height() - 3) == background && colourCount(first) > 50;
        },
        60'000));
    EXPECT_EQ(first.pixel(2, 2), background);
    EXPECT_EQ(first.pixel(first.width() - 3, 2), background);
    EXPECT_EQ(first.pixel(first.width() - 3, first.height() - 3), background);
    // The sphere moves.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return sceneOnScreen(scene).convertToFormat(QImage::Format_RGB32) != first; }, 60'000));
}

TEST_F(ToFViewer, AllViewsAreTiledAndShowTheirPictures) {
    void* camera = desk()->openCamera("sim:wave", true);
    QCoreApplication::processEvents();
    clickTool(camera, "btnToFAllViews");
    ASSERT_EQ(area()->views().size(), 4);
    ASSERT_EQ(CkChainManager::instance()->chains().size(), 1);
    const CkChain* chain = CkChainManager::instance()->chains().first();
    EXPECT_TRUE(chain->started());
    EXPECT_EQ(titles(chain).mid(1), QStringList({"ToF Depth", "ToF Amplitude", "ToF Intensity"}));
    QCoreApplication::processEvents();
    const QList<QMdiSubWindow*> windows = area()->subWindowList();
    ASSERT_EQ(windows.size(), 4);
    for (CkMdiView* view : area()->views()) {
        if (qobject_cast<CkImageView*>(view) != nullptr) {
            EXPECT_TRUE(waitForFrame(view)) << qPrintable(view->viewTitle());
        }
        EXPECT_GE(view->width(), 250);
        EXPECT_GE(view->height(), 250);
    }
}

TEST_F(ToFViewer, HybridCameraGetsItsOwnThreeBranches) {
    void* camera = desk()->openCamera("sim:hybrid", true);
    ASSERT_TRUE(desk()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    QAction* action = pluginAction("menuOpenAllToFProcessingViews");
    ASSERT_NE(action, nullptr);
    ASSERT_TRUE(action->isEnabled());
    action->trigger();
    ASSERT_EQ(CkChainManager::instance()->chains().size(), 1);
    EXPECT_EQ(titles(CkChainManager::instance()->chains().first()).mid(1),
              QStringList({"ToF Depth", "ToF Amplitude", "ToF Intensity"}));
    for (CkMdiView* view : area()->views()) {
        if (qobject_cast<CkImageView*>(view) != nullptr) {
            EXPECT_TRUE(waitForFrame(view)) << qPrintable(view->viewTitle());
        }
    }
}

TEST_F(ToFViewer, UnpluggingWhileEverythingRunsLeavesNothingBehind) {
    void* camera = desk()->openCamera("sim:wave", true);
    QCoreApplication::processEvents();
    clickTool(camera, "btnToFAllViews");
    ASSERT_EQ(area()->views().size(), 4);
    ASSERT_TRUE(waitForFrame(area()->views().first()));
    desk()->unplugCamera(camera);
    EXPECT_TRUE(area()->views().isEmpty());
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    EXPECT_FALSE(pluginAction("menuOpenToF3dView")->isEnabled());
    for (int i = 0; i < 20; ++i) {
        QTest::qWait(10);
    }
    // And again from the beginning.
    camera = desk()->openCamera("sim:wave", true);
    ASSERT_NE(camera, nullptr);
    ASSERT_TRUE(desk()->start(camera));
    EXPECT_TRUE(waitForFrame(firstView()));
}

TEST_F(ToFViewer, BlockIsAddedConfiguredExplainedAndSavedFromThePanel) {
    void* camera = desk()->openCamera("sim:wave", true);
    ASSERT_TRUE(desk()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    CkChainPanel* panel = window()->chainPanel();
    CkChainable* block = panel->addBlock(kToFBlock, false);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(block->title(), "ToF Amplitude");
    QCoreApplication::processEvents();
    panel->tree()->selectBlock(block);
    panel->configureSelected();
    auto* dialog = window()->findChild<QDialog*>("configureBlockDialog");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), "ToF Image Processing");
    const QList<QRadioButton*> choices = dialog->findChildren<QRadioButton*>();
    ASSERT_EQ(choices.size(), 7);
    for (QRadioButton* choice : choices) {
        if (choice->text().startsWith("Phase shift (depth)")) {
            choice->click();
        }
    }
    EXPECT_EQ(block->title(), "ToF Depth");
    EXPECT_TRUE(block->chain()->started());
    dialog->close();
    panel->helpSelected();
    auto* help = window()->findChild<QDialog*>("blockHelpDialog");
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->findChild<QTextBrowser*>()->toPlainText().startsWith("Processes ToF images."));
    help->close();

    const QString file = m_folder.filePath("depth.zuchain");
    QString error;
    ASSERT_TRUE(window()->saveChainFile(file, error)) << qPrintable(error);
    desk()->closeAllCameras();
    ASSERT_TRUE(window()->openChainFile(file, error)) << qPrintable(error);
    EXPECT_EQ(titles(CkChainManager::instance()->chains().first()).mid(1), QStringList{"ToF Depth"});
    EXPECT_TRUE(waitForFrame(firstView()));
}

TEST_F(ToFViewer, ErrorOfTheBlockShowsWhileTheCameraSendsTheWrongPictures) {
    void* camera = desk()->openCamera("sim:wave", true);
    ASSERT_TRUE(desk()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    CkChainPanel* panel = window()->chainPanel();
    CkChainable* block = panel->addBlock(kToFBlock, false);
    ASSERT_NE(block, nullptr);
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->tree()->shownError(block), "");
    const auto setReadoutMode = [camera](int iMode) {
        CkCameraParam* mode =
            CkCameraManager::instance()->cameraParameters(camera)->findParam("tof_readout_mode");
        return mode != nullptr && mode->setParamValue(CkValue(iMode)) && mode->commit();
    };
    ASSERT_TRUE(setReadoutMode(0));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return panel->tree()->shownError(block).startsWith("The input image must be RAWX2 image"); },
        30'000));
    ASSERT_TRUE(setReadoutMode(4));
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel->tree()->shownError(block).isEmpty(); }, 30'000));
    QSignalSpy frames(firstView(), &CkMdiView::receivedFrame);
    EXPECT_TRUE(frames.wait(30'000));
}

} // namespace
