#include "host/viewer/session/CkSessionReader.h"
#include "host/viewer/shell/CkViewMenu.h"

#include "host/viewer/base/ViewerSettings.h"
#include "tests/host/viewer/ViewerBlocks.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkRTTI.h"

#include <QAction>
#include <QDockWidget>
#include <QMdiSubWindow>
#include <QSettings>

namespace {

class Session : public ViewerFixture {
protected:
    /// Closes the window as the user does: it asks the views, saves the session, and closes.
    void endSession() {
        ASSERT_TRUE(window()->close());
        m_session.reset();
    }

    static bool runs(const char* id) {
        for (void* handle : CkCameraManager::instance()->openedCameras()) {
            SkCameraInfo info;
            if (CkCameraManager::instance()->cameraInfo(handle, info) && info.id == QLatin1String(id)) {
                return CkCameraManager::instance()->isAcquiring(handle);
            }
        }
        ADD_FAILURE() << id << " is not open";
        return false;
    }

    QString remembered() const {
        return QString::fromUtf8(ViewerSettings::open()->value(ViewerSettings::kSessionKey).toByteArray());
    }
};

TEST_F(Session, CamerasAndViewsAreRestored) {
    ASSERT_TRUE(start());
    void* grey = openGrey();
    void* wave = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(wave));
    cameras()->openView(grey);
    EXPECT_EQ(area()->views().size(), 3);
    const CkMdiView* active = area()->views().at(1);
    area()->setActiveView(active->viewId());
    endSession();
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);

    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 2);
    EXPECT_FALSE(runs("sim:grey"));
    EXPECT_TRUE(runs("sim:wave"));
    ASSERT_EQ(area()->views().size(), 3);
    EXPECT_EQ(area()->activeView(), area()->views().at(1));
    EXPECT_TRUE(waitForFrame(area()->views().at(1)));
    // Each view is on its old chain.
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 3);
}

TEST_F(Session, BlocksOfTheChainsAndTheirSettingsAreRestored) {
    CkRTTI::instance()->registerClass(nullptr, &CkDemoBlock::staticMetaObject, QStringLiteral("CkChainable"));
    ASSERT_TRUE(start());
    openGrey();
    CkChainable* source = firstView()->dataProvider();
    auto* block = new CkDemoBlock;
    block->m_iSetting = 77;
    CkChain* chain = source->chain();
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, block, source));
    area()->addView(new CkImageView(source));
    ASSERT_EQ(area()->views().at(0)->dataProvider(), block);
    ASSERT_EQ(area()->views().at(1)->dataProvider(), source);
    endSession();

    ASSERT_TRUE(start());
    ASSERT_EQ(area()->views().size(), 2);
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
    const auto* restored = qobject_cast<CkDemoBlock*>(area()->views().at(0)->dataProvider());
    ASSERT_NE(restored, nullptr);
    EXPECT_EQ(restored->m_iSetting, 77);
    EXPECT_EQ(restored->chain()->precedessors(const_cast<CkDemoBlock*>(restored)).value(0),
              area()->views().at(1)->dataProvider());
    m_session.reset();
}

TEST_F(Session, PanelsAndPositionsAreRestored) {
    ASSERT_TRUE(start());
    openGrey();
    auto* log = window()->findChild<QDockWidget*>("dockLog");
    ASSERT_NE(log, nullptr);
    log->hide();
    area()->setArrangesItself(false);
    QMdiSubWindow* frame = area()->subWindowList().value(0);
    frame->setGeometry(31, 17, 420, 333);
    endSession();

    ASSERT_TRUE(start());
    EXPECT_TRUE(window()->findChild<QDockWidget*>("dockLog")->isHidden());
    EXPECT_FALSE(area()->arrangesItself());
    ASSERT_EQ(area()->subWindowList().size(), 1);
    EXPECT_EQ(area()->subWindowList().first()->geometry(), QRect(31, 17, 420, 333));
    window()->viewMenu()->resetLayout();
    EXPECT_FALSE(window()->findChild<QDockWidget*>("dockLog")->isHidden());
    EXPECT_TRUE(area()->arrangesItself());
}

TEST_F(Session, NothingIsRestoredForACleanStartOrNamedCamerasOrWhenSwitchedOff) {
    ASSERT_TRUE(start());
    openGrey();
    endSession();
    const QString before = remembered();
    ASSERT_TRUE(before.contains("sim:grey"));

    m_options.cleanStart = true;
    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
    m_session.reset();
    m_options.cleanStart = false;
    m_options.cameras = QStringList{"sim:hybrid"};
    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    m_session.reset();
    // Neither of them was closed by the user, so neither saved a session.
    EXPECT_EQ(remembered(), before);
    m_options.cameras.clear();
    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    auto* reopen = window()->findChild<QAction*>("actReopenCameras");
    ASSERT_NE(reopen, nullptr);
    EXPECT_TRUE(reopen->isChecked());
    reopen->trigger();
    m_session.reset();
    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
    EXPECT_FALSE(window()->findChild<QAction*>("actReopenCameras")->isChecked());
}

TEST_F(Session, UnattendedRunsNeitherReadNorWrite) {
    ASSERT_TRUE(start());
    openGrey();
    endSession();
    const QString before = remembered();
    m_options.frames = 1000;
    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
    endSession();
    EXPECT_EQ(remembered(), before);
}

TEST_F(Session, MissingCameraIsNamedAndItsViewsAreNotGivenToAnother) {
    ASSERT_TRUE(start());
    cameras()->openCamera("sim:wave", true);
    openGrey();
    endSession();
    QString text = remembered();
    text.replace("sim:wave", "sim:pulled-off");
    m_options.cleanStart = true;
    ASSERT_TRUE(start());
    const SkRestoredSession restored = CkSessionReader(area(), cameras()).restore(text.toUtf8());
    ASSERT_EQ(restored.problems.size(), 1);
    EXPECT_TRUE(restored.problems.first().contains("sim:pulled-off"))
        << qPrintable(restored.problems.first());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    ASSERT_EQ(area()->views().size(), 1);
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
}

TEST_F(Session, NonsenseOpensNothingAndIsReported) {
    ASSERT_TRUE(start());
    const QByteArray deep = "<session version='1'>" + QByteArray("<_a>").repeated(150'000) +
                            QByteArray("</_a>").repeated(150'000) + "</session>";
    for (const QByteArray& text :
         {QByteArray("no xml"), QByteArray("<session version=\"99\"/>"), QByteArray("<other/>"), deep}) {
        EXPECT_EQ(CkSessionReader(area(), cameras()).restore(text).problems.size(), 1)
            << text.left(50).toStdString();
    }
    EXPECT_TRUE(CkSessionReader(area(), cameras()).restore(QByteArray()).problems.isEmpty());
    const QByteArray hollow =
        "<session version='1'><chain/><chain><chain version='1'/></chain>"
        "<view chain='0' block='0'/><view chain='1' block='3'/><view chain='-1'/></session>";
    CkSessionReader(area(), cameras()).restore(hollow);
    EXPECT_TRUE(area()->views().isEmpty());
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

} // namespace
