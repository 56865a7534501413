#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/shell/CkRateGraph.h"
#include "host/viewer/shell/CkShortcutsDialog.h"
#include "host/viewer/shell/CkStatusBar.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChainable.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>

namespace {

TEST_F(ViewerSession, StartsEmptyAndAnswersForIt) {
    ASSERT_TRUE(start());
    IkAppDelegate* delegate = IkAppDelegate::instance();
    ASSERT_NE(delegate, nullptr);
    EXPECT_EQ(delegate->activeViewId(), -1);
    EXPECT_EQ(delegate->mdiView(3), nullptr);
    EXPECT_FALSE(delegate->closeView(3));
    EXPECT_EQ(delegate->openImageView(nullptr), -1);
    EXPECT_EQ(delegate->cameraHandleOfView(0), nullptr);
    EXPECT_FALSE(delegate->startAcquisition(1, 0));
    EXPECT_FALSE(delegate->startAcquisition(1, 12345));
    EXPECT_FALSE(delegate->addCameraPanelLayout(reinterpret_cast<void*>(5), nullptr, nullptr, 1));
    EXPECT_EQ(delegate->mainWindow(), window());
    for (int id = 0; id <= 4; ++id) {
        EXPECT_NE(delegate->mainMenu(id), nullptr) << id;
    }
    EXPECT_EQ(delegate->mainMenu(5), nullptr);
    EXPECT_EQ(delegate->mainMenu(-1), nullptr);
    EXPECT_EQ(delegate->mainMenu(IkAppDelegate::PluginMenu)->title(), "&Plug-ins");
    m_session.reset();
    EXPECT_EQ(IkAppDelegate::instance(), nullptr);
}

TEST_F(ViewerSession, OpenedCameraIsShownWithPanelRateAndPixelValue) {
    m_options.cameras = QStringList{"2"};
    ASSERT_TRUE(start());
    void* camera = CkCameraManager::instance()->openedCameras().value(0);
    ASSERT_NE(camera, nullptr);
    EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
    CkCameraPanel* panel = cameras()->panel(camera);
    ASSERT_NE(panel, nullptr);
    for (const CkCameraParam* param : CkCameraManager::instance()->cameraParameters(camera)->params()) {
        EXPECT_NE(panel->findChild<QWidget*>(QStringLiteral("param_") + param->name()), nullptr)
            << qPrintable(param->name());
    }
    CkImageView* view = firstView();
    ASSERT_TRUE(waitForFrame(view));
    EXPECT_EQ(area()->activeViewId(), view->viewId());
    EXPECT_EQ(IkAppDelegate::instance()->cameraHandleOfView(view->viewId()), camera);
    EXPECT_FALSE(view->shownImage().isNull());

    CkStatusBar* status = window()->viewStatusBar();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return status->rateText().section(' ', 0, 0).toDouble() > 0.0; }, 20'000));
    EXPECT_TRUE(status->dropText().contains("dropped"));
    EXPECT_GE(status->findChild<CkRateGraph*>()->count(), 1);
    QTest::mouseMove(view->canvas(), view->canvas()->fromPicture(QPointF(30.5, 20.5)).toPoint());
    emit view->canvas()->pixelHovered(QPoint(30, 20));
    EXPECT_TRUE(status->pixelText().startsWith("x 30, y 20:")) << qPrintable(status->pixelText());
}

TEST_F(ViewerSession, UnknownCameraIsReportedAndTheViewerContinues) {
    m_options.cameras = QStringList{"17", "no-such-camera"};
    EXPECT_FALSE(start());
    EXPECT_TRUE(window()->isVisible());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
    EXPECT_EQ(CkViewerSession::cameraId("0"), "sim:wave");
    EXPECT_EQ(CkViewerSession::cameraId("sim:hybrid"), "sim:hybrid");
    EXPECT_EQ(CkViewerSession::cameraId("-1"), "");
    EXPECT_TRUE(CkViewerSession::cameraList().contains("sim:grey"));
}

TEST_F(ViewerSession, ClosingTheLastViewOfAChainClosesTheChain) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    CkChainable* source = firstView()->dataProvider();
    const int second = IkAppDelegate::instance()->openImageView(source);
    ASSERT_GE(second, 0);
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
    ASSERT_TRUE(area()->closeView(firstView()->viewId()));
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
    ASSERT_TRUE(area()->closeView(second));
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    EXPECT_TRUE(CkCameraManager::instance()->isOpen(camera));
    // Starting a camera without a view opens one.
    ASSERT_TRUE(IkAppDelegate::instance()->startAcquisition(1, 0));
    EXPECT_TRUE(waitForFrame(firstView()));
    EXPECT_TRUE(IkAppDelegate::instance()->startAcquisition(0, quint64(quintptr(camera))));
    EXPECT_FALSE(CkCameraManager::instance()->isAcquiring(camera));
}

TEST_F(ViewerSession, CloseButtonOfAViewWindowClosesTheView) {
    ASSERT_TRUE(start());
    openGrey();
    const int id = firstView()->viewId();
    ASSERT_EQ(area()->subWindowList().size(), 1);
    area()->subWindowList().first()->close();
    EXPECT_EQ(area()->view(id), nullptr);
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST_F(ViewerSession, SettingsAndLastDirectoryLiveInTheGivenFile) {
    ASSERT_TRUE(start());
    IkAppDelegate* delegate = IkAppDelegate::instance();
    EXPECT_EQ(delegate->lastDirectory(), "");
    delegate->setLastDirectory("/some/where");
    EXPECT_EQ(delegate->lastDirectory(), "/some/where");
    const std::unique_ptr<QSettings> first(delegate->settings());
    const std::unique_ptr<QSettings> second(delegate->settings());
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(first->fileName(), m_options.settingsFile);
}

TEST_F(ViewerSession, TilingShowsEveryViewWithoutOverlap) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    for (int more = 0; more < 4; ++more) {
        cameras()->openView(camera);
    }
    IkAppDelegate::instance()->refreshViewArea();
    const QList<QMdiSubWindow*> windows = area()->subWindowList();
    ASSERT_EQ(windows.size(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(area()->viewport()->rect().contains(windows[i]->geometry())) << i;
        EXPECT_GE(windows[i]->width(), 190) << i;
        for (int k = i + 1; k < 5; ++k) {
            EXPECT_FALSE(windows[i]->geometry().intersects(windows[k]->geometry())) << i << ' ' << k;
        }
    }
}

TEST_F(ViewerSession, EveryShortcutIsListedAndUnique) {
    ASSERT_TRUE(start());
    const auto shortcuts = CkShortcutsDialog::collect(window()->menuBar());
    QStringList keys;
    for (const auto& [key, meaning] : shortcuts) {
        EXPECT_FALSE(keys.contains(key)) << qPrintable(key + ": " + meaning);
        keys.append(key);
    }
    for (const char* wanted : {"F5", "F6", "F7", "F11", "Ctrl+O", "Ctrl+S", "Ctrl+T", "Ctrl+W", "Ctrl+1"}) {
        EXPECT_TRUE(keys.contains(QLatin1String(wanted))) << wanted;
    }
}

} // namespace
