// The checks of all controls and of the next session, with the real plug-in.

#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/panels/lut/CkLutPanel.h"
#include "host/viewer/panels/quality/CkQualityPanel.h"
#include "tests/host/viewer/ViewerControls.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkImageData.h"

#include <QCheckBox>
#include <QLabel>
#include <QToolButton>
#include <cmath>

namespace {

class ToFSession : public ControlsFixture {
protected:
    void SetUp() override {
        ControlsFixture::SetUp();
        m_options.pluginPaths = QStringList{ZU_TOF_PLUGIN};
    }

    CkMdiView* scene() const {
        for (CkMdiView* view : area()->views()) {
            if (view->connectedViewId() >= 0) {
                return view;
            }
        }
        return nullptr;
    }

    bool waitForScene() const {
        return QTest::qWaitFor([this] { return scene() != nullptr; }, 30'000);
    }
};

TEST_F(ToFSession, The3dViewOfTheLastSessionIsRestored) {
    ASSERT_TRUE(start());
    void* wave = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(wave));
    ASSERT_TRUE(waitForFrame(firstView()));
    cameras()->panel(wave)->findChild<QToolButton*>("btnToF3D")->click();
    ASSERT_TRUE(waitForScene());
    const qsizetype views = area()->views().size();
    ASSERT_TRUE(window()->close());
    m_session.reset();

    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForScene());
    EXPECT_EQ(area()->views().size(), views);
    EXPECT_EQ(scene()->connectedViewId(), firstView()->viewId());
    EXPECT_TRUE(
        CkCameraManager::instance()->isAcquiring(CkCameraManager::instance()->openedCameras().value(0)));
}

TEST_F(ToFSession, EveryEntryOfThePluginHasAShortcutAndAReason) {
    ASSERT_TRUE(start());
    expectReasons("empty");
    QList<QKeySequence> keys;
    for (const SkEntry& entry : menuEntries()) {
        if (entry.action->objectName().startsWith("menuOpenToF") ||
            entry.action->objectName().startsWith("menuOpenAllToF") ||
            entry.action->objectName().startsWith("menuTof")) {
            EXPECT_FALSE(entry.action->shortcut().isEmpty()) << qPrintable(entry.path);
            keys.append(entry.action->shortcut());
        }
    }
    ASSERT_EQ(keys.size(), 3);
    EXPECT_NE(keys[0], keys[1]);
    EXPECT_NE(keys[1], keys[2]);
    EXPECT_NE(keys[0], keys[2]);
    // A camera without distances.
    ASSERT_TRUE(cameras()->start(openGrey()));
    ASSERT_TRUE(waitForFrame(firstView()));
    expectReasons("grey camera");
    cameras()->closeAllCameras();
    void* wave = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(wave));
    ASSERT_TRUE(waitForFrame(firstView()));
    expectReasons("ToF camera");
    cameras()->panel(wave)->findChild<QToolButton*>("btnToF3D")->click();
    ASSERT_TRUE(waitForScene());
    area()->setActiveView(scene()->viewId());
    expectReasons("3D view");
}

TEST_F(ToFSession, SaturatedPixelsAreNotValidInAComputedPicture) {
    ASSERT_TRUE(start());
    void* wave = cameras()->openCamera("sim:wave", true);
    const auto set = [wave](const char* name, double value) {
        CkCameraParam* param = CkCameraManager::instance()->cameraParameters(wave)->findParam(name);
        ASSERT_NE(param, nullptr) << name;
        ASSERT_TRUE(param->setParamValue(CkValue(value)) && param->commit()) << name;
    };
    set("sim_scene", 1);
    set("sim_wall_distance", 0.4);
    set("exposure", 1000); // saturates at the near wall
    ASSERT_TRUE(cameras()->start(wave));
    ASSERT_TRUE(waitForFrame(firstView()));
    cameras()->panel(wave)->findChild<QToolButton*>("btnToFAllViews")->click();
    CkImageView* phase = nullptr;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            for (CkMdiView* view : area()->views()) {
                auto* image = qobject_cast<CkImageView*>(view);
                if (image != nullptr && image->currentImage() != nullptr &&
                    image->currentImage()->metadata().channelNames.value(0) == "Phase shift") {
                    phase = image;
                }
            }
            return phase != nullptr;
        },
        30'000));
    area()->setActiveView(phase->viewId());
    auto* quality = window()->findChild<CkQualityPanel*>("qualityPanel");
    emit quality->raiseRequested();
    ASSERT_TRUE(QTest::qWaitFor([&] { return quality->measuredView() == phase; }, 30'000));
    const auto values = [quality] { return quality->values(); };
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return values().saturationKnown && values().validShare == 0.0; }, 30'000))
        << values().validShare << ' ' << values().mean << ' ' << values().saturationKnown;
    EXPECT_TRUE(std::isnan(values().mean));
    // Neither does the amplitude, which is 0 where both taps are saturated; nothing can be marked there.
    EXPECT_FALSE(phase->saturationReason().isEmpty());
    const auto* mark = window()->lutPanel()->findChild<QCheckBox*>("lutSaturation");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !mark->isEnabled(); }, 30'000));
    EXPECT_EQ(mark->toolTip(), phase->saturationReason());
    set("exposure", 100);
    EXPECT_TRUE(QTest::qWaitFor([&] { return values().validShare == 1.0; }, 30'000)) << values().validShare;
    EXPECT_NEAR(values().mean, 400.0, 40.0) << "along the rays";
    // A minus B does not show it.
    set("tof_readout_mode", 2);
    set("imgdataformat", 6);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !values().saturationKnown; }, 30'000));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return quality->findChild<QLabel*>("qualityWhere")->text().contains("A minus B does not show");
        },
        30'000));
    area()->setActiveView(firstView()->viewId());
    EXPECT_FALSE(firstView()->saturationReason().isEmpty());
}

} // namespace
