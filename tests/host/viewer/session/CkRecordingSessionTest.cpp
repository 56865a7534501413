#include "host/viewer/shell/CkChainFileController.h"
#include "tests/host/viewer/playback/RecordingViewFixture.h"

#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/session/CkSessionReader.h"
#include "host/viewer/session/CkSessionSaver.h"

#include <QDockWidget>
#include <QFile>
#include <QSettings>

// Recordings in the session that the next start reopens, and windows that do not change the session.

namespace {

class RecordingSession : public RecordingViewFixture {
protected:
    void SetUp() override {
        RecordingViewFixture::SetUp();
        makeRecording(path("a.tif"), 10);
    }
    /// Closes the window as the user does: it asks the views, saves the session, and closes.
    void endSession() {
        ASSERT_TRUE(window()->close());
        m_session.reset();
    }
    static QString remembered() {
        return QString::fromUtf8(ViewerSettings::open()->value(ViewerSettings::kSessionKey).toByteArray());
    }
    void rememberAGreyCamera() {
        ASSERT_TRUE(start());
        openGrey();
        endSession();
        ASSERT_TRUE(remembered().contains("sim:grey"));
    }
};

TEST_F(RecordingSession, IsRestoredAtTheFrameThatWasShown) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    controller()->playback()->goTo(6);
    ASSERT_TRUE(waitForShown(6));
    controller()->playback()->setLoop(true);
    controller()->playback()->setSpeed(0.5);
    firstView()->setWindow({100.0, 300.0});
    ASSERT_NE(openGrey(), nullptr);
    area()->setActiveView(firstView()->viewId());
    endSession();

    ASSERT_TRUE(start());
    ASSERT_EQ(area()->views().size(), 2);
    EXPECT_EQ(area()->activeView(), firstView());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    ASSERT_TRUE(waitForShown(6));
    EXPECT_FALSE(player()->isPlaying());
    EXPECT_TRUE(player()->isLoop());
    EXPECT_EQ(player()->speed(), 0.5);
    EXPECT_EQ(player()->pace(), int(SkPlaybackSettings::RealTime));
    EXPECT_EQ(firstView()->window(), (SkDisplayWindow{100.0, 300.0}));
    EXPECT_TRUE(controller()->bar()->isVisible());
    // Playback continues from there.
    action("actPlaybackForward")->trigger();
    EXPECT_TRUE(waitForShown(7));
}

TEST_F(RecordingSession, IsRestoredWithoutAnyCamera) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    endSession();
    ASSERT_TRUE(start());
    ASSERT_EQ(area()->views().size(), 1);
    EXPECT_TRUE(waitForShown(0));
}

TEST_F(RecordingSession, WaitsForAFileThatIsNotThereToday) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    endSession();
    const QByteArray text = remembered().toUtf8();
    ASSERT_TRUE(QFile::rename(path("a.tif"), path("elsewhere.tif")));
    m_options.cleanStart = true;
    ASSERT_TRUE(start());
    const SkRestoredSession restored = CkSessionReader(area(), cameras()).restore(text);
    ASSERT_EQ(restored.problems.size(), 1);
    EXPECT_TRUE(restored.problems.first().contains("a.tif")) << qPrintable(restored.problems.first());
    EXPECT_EQ(area()->views().size(), 1);
    endSession();
    m_options.cleanStart = false;
    ASSERT_TRUE(QFile::rename(path("elsewhere.tif"), path("a.tif")));
    ASSERT_TRUE(start());
    EXPECT_TRUE(waitForShown(0));
}

TEST_F(RecordingSession, AFrameThatIsNotInTheFileAnyMoreIsTheFirstOne) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    controller()->playback()->goTo(9);
    ASSERT_TRUE(waitForShown(9));
    endSession();
    ASSERT_TRUE(remembered().contains("frame=\"9\"")) << qPrintable(remembered());
    ASSERT_TRUE(QFile::remove(path("a.tif")));
    makeRecording(path("a.tif"), 4);
    ASSERT_TRUE(start());
    EXPECT_TRUE(waitForShown(0));
}

enum class EkNamed { File, Camera, ChainFile };

class NamedOnTheCommandLine : public RecordingSession, public ::testing::WithParamInterface<EkNamed> {
protected:
    void nameIt() {
        switch (GetParam()) {
        case EkNamed::File:
            m_options.files = QStringList{path("a.tif")};
            break;
        case EkNamed::Camera:
            m_options.cameras = QStringList{"sim:hybrid"};
            break;
        case EkNamed::ChainFile:
            m_options.chainFiles = QStringList{path("a.zuchain")};
            break;
        }
    }
    void makeChainFile() {
        ASSERT_TRUE(start());
        ASSERT_TRUE(openFile(path("a.tif")));
        QString error;
        ASSERT_TRUE(window()->chainFiles()->saveActive(path("a.zuchain"), error)) << qPrintable(error);
        m_session.reset();
    }
};

TEST_P(NamedOnTheCommandLine, LeavesTheSessionAlone) {
    makeChainFile();
    rememberAGreyCamera();
    const QString before = remembered();
    nameIt();
    ASSERT_TRUE(start());
    m_session->saver()->setDelay(0);
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_EQ(area()->views().size(), 1);
    // The user works with it: the panels are saved, the session is not.
    window()->findChild<QDockWidget*>("dockLog")->hide();
    QTest::keyClick(window(), Qt::Key_Shift);
    ASSERT_TRUE(waitFor([this] {
        return ViewerSettings::open()->value(ViewerSettings::kStateKey).toByteArray() ==
               window()->saveState();
    }));
    EXPECT_EQ(remembered(), before);
    endSession();
    EXPECT_EQ(remembered(), before);

    m_options.files.clear();
    m_options.cameras.clear();
    m_options.chainFiles.clear();
    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    EXPECT_TRUE(window()->findChild<QDockWidget*>("dockLog")->isHidden());
}

INSTANTIATE_TEST_SUITE_P(RecordingSession, NamedOnTheCommandLine,
                         ::testing::Values(EkNamed::File, EkNamed::Camera, EkNamed::ChainFile));

} // namespace
