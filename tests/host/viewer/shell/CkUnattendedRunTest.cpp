#include "host/viewer/shell/CkUnattendedRun.h"
#include "host/viewer/panels/quality/CkRegionOverlay.h"
#include "tests/host/viewer/ViewerFixture.h"

#include <QAbstractButton>
#include <QFile>
#include <QSignalSpy>

namespace {

TEST_F(ViewerSession, TriggeredButtonInABackgroundTabIsRaised) {
    m_options.cameras = QStringList{"2"};
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForFrame(firstView()));
    auto* const draw = window()->findChild<QAbstractButton*>("qualityDraw");
    ASSERT_NE(draw, nullptr);
    EXPECT_TRUE(draw->visibleRegion().isEmpty());
    EXPECT_EQ(firstView()->findChild<CkRegionOverlay*>(), nullptr);

    m_session.reset();
    m_options.triggers = QStringList{"qualityDraw"};
    ASSERT_TRUE(start());
    auto* const clicked = window()->findChild<QAbstractButton*>("qualityDraw");
    ASSERT_TRUE(QTest::qWaitFor([&] { return clicked->isChecked(); }, 30'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !clicked->visibleRegion().isEmpty(); }, 30'000));
    EXPECT_NE(firstView()->findChild<CkRegionOverlay*>(), nullptr);
}

TEST_F(ViewerSession, UnattendedRunWritesItsPictureAndEndsWithZero) {
    m_options.cameras = QStringList{"sim:grey"};
    m_options.frames = 3;
    m_options.screenshotFile = m_folder.filePath("window.png");
    ASSERT_TRUE(start());
    QSignalSpy finished(m_session.get(), &CkViewerSession::finished);
    ASSERT_TRUE(finished.wait(30'000));
    EXPECT_EQ(finished.first().first().toInt(), 0);
    const QImage shot(m_options.screenshotFile);
    EXPECT_EQ(shot.size(), QSize(1500, 950));
}

TEST_F(ViewerSession, UnattendedRunWithoutFramesOrCloudFails) {
    SkViewerOptions options;
    options.frames = 2;
    ASSERT_TRUE(start());
    CkUnattendedRun idle(options, window());
    idle.setTimeLimit(300);
    QSignalSpy finished(&idle, &CkUnattendedRun::finished);
    idle.start();
    ASSERT_TRUE(finished.wait(20'000));
    EXPECT_EQ(finished.first().first().toInt(), CkUnattendedRun::kFailed);

    options.plyFile = m_folder.filePath("cloud.ply");
    ASSERT_TRUE(cameras()->start(openGrey()));
    CkUnattendedRun noCloud(options, window());
    noCloud.setTimeLimit(1500);
    QSignalSpy failed(&noCloud, &CkUnattendedRun::finished);
    noCloud.start();
    ASSERT_TRUE(failed.wait(20'000));
    EXPECT_EQ(failed.first().first().toInt(), CkUnattendedRun::kFailed);
    EXPECT_FALSE(QFile::exists(options.plyFile));
}

} // namespace
