#include "host/viewer/area/CkViewNoticeController.h"
#include "host/viewer/panels/camera/CkCameraMenu.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChainable.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>

namespace {

TEST_F(ViewerSession, AnUnpluggedCameraFreezesItsViewsAndContinuesWhenPluggedIn) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    ASSERT_TRUE(start());
    CkCameraManager* manager = CkCameraManager::instance();
    void* grey = openGrey();
    void* wave = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(grey));
    ASSERT_TRUE(cameras()->start(wave));
    cameras()->openView(wave);
    const QList<int> waveViews = cameras()->viewsOf(wave);
    ASSERT_EQ(waveViews.size(), 2);
    for (CkMdiView* view : area()->views()) {
        ASSERT_TRUE(waitForFrame(view));
    }
    CkCameraParam* rate = manager->cameraParameters(wave)->findParam("framerate");
    ASSERT_TRUE(rate->setParamValue(CkValue(17.0)) && rate->commit());
    const QList<CkChain*> chains = CkChainManager::instance()->chains();

    window()->cameraMenu()->refresh();
    QMenu* unplug = window()->cameraMenu()->unplugMenu();
    ASSERT_EQ(unplug->actions().size(), 2);
    unplug->actions().last()->trigger();
    EXPECT_EQ(area()->views().size(), 3);
    EXPECT_EQ(CkChainManager::instance()->chains(), chains);
    EXPECT_EQ(cameras()->viewsOf(wave), waveViews);
    for (const int id : waveViews) {
        auto* view = qobject_cast<CkImageView*>(area()->view(id));
        EXPECT_TRUE(area()->notices()->notice(id).contains("is unplugged"));
        const auto* banner = view->findChild<QLabel*>("viewNotice");
        ASSERT_NE(banner, nullptr);
        EXPECT_TRUE(banner->isVisible());
        EXPECT_TRUE(view->canvas()->isDimmed());
        EXPECT_TRUE(view->dataProvider()->chain()->started());
    }
    EXPECT_EQ(area()->notices()->notice(firstView()->viewId()), "");
    auto* start = cameras()->panel(wave)->findChild<QPushButton*>("btnStart");
    EXPECT_FALSE(start->isEnabled());
    EXPECT_FALSE(start->toolTip().isEmpty());
    EXPECT_TRUE(cameras()->panel(wave)->findChild<QLabel*>("cameraState")->text().contains("unplugged"));

    QMenu* plugIn = window()->cameraMenu()->plugInMenu();
    ASSERT_EQ(plugIn->actions().size(), 1);
    EXPECT_EQ(unplug->actions().size(), 1);
    plugIn->actions().first()->trigger();
    EXPECT_TRUE(manager->isAcquiring(wave)) << "the same handle";
    EXPECT_NEAR(manager->cameraParameters(wave)->findParam("framerate")->committedValue().toDouble(), 17.0,
                1e-9);
    for (const int id : waveViews) {
        EXPECT_EQ(area()->notices()->notice(id), "");
        EXPECT_FALSE(qobject_cast<CkImageView*>(area()->view(id))->canvas()->isDimmed());
        QSignalSpy frames(area()->view(id), &CkMdiView::receivedFrame);
        EXPECT_TRUE(QTest::qWaitFor([&] { return frames.size() >= 3; }, 30'000)) << id;
    }
    EXPECT_TRUE(start->isEnabled());
    // The editors belong to the new camera object.
    auto* field =
        cameras()->panel(wave)->findChild<QWidget*>("param_framerate")->findChild<QDoubleSpinBox*>();
    field->setValue(19.0);
    EXPECT_NEAR(manager->cameraParameters(wave)->findParam("framerate")->committedValue().toDouble(), 19.0,
                1e-9);
}

TEST_F(ViewerSession, AnUnpluggedCameraCanBeClosed) {
    ASSERT_TRUE(start());
    void* grey = openGrey();
    ASSERT_TRUE(cameras()->start(grey));
    ASSERT_TRUE(waitForFrame(firstView()));
    cameras()->unplugCamera(grey);
    cameras()->closeCamera(grey);
    EXPECT_TRUE(area()->views().isEmpty());
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    EXPECT_EQ(openGrey(), nullptr);
    cameras()->plugCameraIn("sim:grey");
    EXPECT_NE(openGrey(), nullptr);
}

} // namespace
