// What the window promises about every control and about the next session, with the real plug-in in it.

#include "ViewerControls.h"
#include "camera/CkCameraPanel.h"

#include <QToolButton>

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

TEST_F(ToFSession, The3dViewOfTheLastSessionComesBack) {
    ASSERT_TRUE(start());
    void* wave = desk()->openCamera("sim:wave", true);
    ASSERT_TRUE(desk()->start(wave));
    ASSERT_TRUE(waitForFrame(firstView()));
    desk()->panel(wave)->findChild<QToolButton*>("btnToF3D")->click();
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
    // A camera that measures no distances.
    ASSERT_TRUE(desk()->start(openGrey()));
    ASSERT_TRUE(waitForFrame(firstView()));
    expectReasons("grey camera");
    desk()->closeAllCameras();
    void* wave = desk()->openCamera("sim:wave", true);
    ASSERT_TRUE(desk()->start(wave));
    ASSERT_TRUE(waitForFrame(firstView()));
    expectReasons("ToF camera");
    desk()->panel(wave)->findChild<QToolButton*>("btnToF3D")->click();
    ASSERT_TRUE(waitForScene());
    area()->setActiveView(scene()->viewId());
    expectReasons("3D view");
}

} // namespace
