#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkImageData.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QDockWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>

namespace {

TEST_F(ViewerSession, StartStopPauseAndStepAreInThePanel) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    ASSERT_NE(camera, nullptr);
    CkCameraManager* manager = CkCameraManager::instance();
    CkCameraPanel* panel = cameras()->panel(camera);
    auto* startButton = panel->findChild<QPushButton*>("btnStart");
    auto* stepButton = panel->findChild<QPushButton*>("btnStep");
    EXPECT_FALSE(manager->isAcquiring(camera));
    EXPECT_FALSE(stepButton->isEnabled());
    EXPECT_FALSE(stepButton->toolTip().isEmpty());
    QTest::mouseClick(startButton, Qt::LeftButton);
    EXPECT_TRUE(manager->isAcquiring(camera));
    EXPECT_EQ(startButton->text(), "Stop");
    ASSERT_TRUE(waitForFrame(firstView()));
    QTest::mouseClick(stepButton, Qt::LeftButton);
    EXPECT_TRUE(panel->isPaused());
    QTest::qWait(200);
    const qint32 held = firstView()->currentImage()->frameId();
    QSignalSpy frames(firstView(), &CkMdiView::receivedFrame);
    QTest::mouseClick(stepButton, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !frames.isEmpty(); }, 20'000));
    EXPECT_NE(firstView()->currentImage()->frameId(), held);
    QTest::mouseClick(startButton, Qt::LeftButton);
    EXPECT_FALSE(manager->isAcquiring(camera));
    EXPECT_FALSE(panel->isPaused());
    for (const CkChain* chain : cameras()->chainsOf(camera)) {
        EXPECT_TRUE(chain->stopped());
    }
}

TEST_F(ViewerSession, PanelAndActiveViewBelongToTheSameCamera) {
    ASSERT_TRUE(start());
    CkCameraManager* manager = CkCameraManager::instance();
    void* grey = openGrey();
    void* wave = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(grey));
    ASSERT_TRUE(cameras()->start(wave));
    auto* tabs = window()->findChild<QDockWidget*>("dockCameras")->findChild<QTabWidget*>();
    ASSERT_NE(tabs, nullptr);
    area()->setActiveView(cameras()->viewsOf(grey).first());
    EXPECT_EQ(tabs->currentWidget(), cameras()->panel(grey));
    area()->setActiveView(cameras()->viewsOf(wave).first());
    EXPECT_EQ(tabs->currentWidget(), cameras()->panel(wave));
    // A click on the tab activates the camera's view, and F5 stops only that camera.
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {},
                      tabs->tabBar()->tabRect(tabs->indexOf(cameras()->panel(grey))).center());
    EXPECT_EQ(area()->activeViewId(), cameras()->viewsOf(grey).first());
    auto* f5 = window()->findChild<QAction*>("actStartCamera");
    ASSERT_EQ(f5->shortcut(), QKeySequence(Qt::Key_F5));
    f5->trigger();
    EXPECT_FALSE(manager->isAcquiring(grey));
    EXPECT_TRUE(manager->isAcquiring(wave));
    // A camera without a view is still selected by its panel.
    area()->closeView(cameras()->viewsOf(grey).first(), false);
    tabs->setCurrentWidget(cameras()->panel(grey));
    EXPECT_EQ(area()->activeViewId(), cameras()->viewsOf(wave).first());
}

TEST_F(ViewerSession, StartingACameraActivatesOneOfItsViews) {
    ASSERT_TRUE(start());
    void* grey = openGrey();
    cameras()->openCamera("sim:wave", true);
    EXPECT_NE(IkAppDelegate::instance()->cameraHandleOfView(area()->activeViewId()), grey);
    ASSERT_TRUE(IkAppDelegate::instance()->startAcquisition(1, quint64(quintptr(grey))));
    EXPECT_EQ(IkAppDelegate::instance()->cameraHandleOfView(area()->activeViewId()), grey);
}

} // namespace
