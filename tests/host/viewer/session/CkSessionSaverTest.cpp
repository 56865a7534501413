#include "host/viewer/session/CkSessionSaver.h"

#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "tests/host/viewer/ViewerFixture.h"

#include <QDialog>
#include <QDockWidget>
#include <QFile>
#include <QMdiSubWindow>
#include <QProcess>
#include <QSettings>
#include <QSignalSpy>

// The session is saved while the window is open, not only when it closes.

namespace {

constexpr int kPatience = 30'000;

class SessionSaver : public ViewerFixture {
protected:
    bool startKeeping() {
        const bool ok = start();
        // Changes are saved at the next iteration of the event loop.
        m_session->saver()->setDelay(0);
        return ok;
    }
    void close() {
        ASSERT_TRUE(window()->close());
        m_session.reset();
    }
    static QString remembered() {
        return QString::fromUtf8(ViewerSettings::open()->value(ViewerSettings::kSessionKey).toByteArray());
    }
    static bool waitUntilRemembered(const QString& text) {
        return QTest::qWaitFor([&] { return remembered().contains(text); }, kPatience);
    }
    QMdiSubWindow* frame() const { return area()->subWindowList().value(0); }
};

TEST_F(SessionSaver, WhatWasNotClosedIsRestoredAfterACrash) {
    ASSERT_TRUE(startKeeping());
    openGrey();
    auto* log = window()->findChild<QDockWidget*>("dockLog");
    log->hide();
    area()->setArrangesItself(false);
    frame()->setGeometry(31, 17, 420, 333);
    ASSERT_TRUE(waitUntilRemembered("x=\"31\"")) << qPrintable(remembered());
    // A change of a panel is sufficient, too.
    QTest::keyClick(window(), Qt::Key_Shift);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] {
            return ViewerSettings::open()->value(ViewerSettings::kStateKey).toByteArray() ==
                   window()->saveState();
        },
        kPatience));
    // As after a crash: the window is not closed.
    m_session.reset();

    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    EXPECT_TRUE(window()->findChild<QDockWidget*>("dockLog")->isHidden());
    EXPECT_FALSE(area()->arrangesItself());
    ASSERT_EQ(area()->subWindowList().size(), 1);
    EXPECT_EQ(frame()->geometry(), QRect(31, 17, 420, 333));
}

TEST_F(SessionSaver, AKilledProgramFindsItsViewsAgain) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(cameras()->start(openGrey()));
    close();
    ASSERT_EQ(remembered().count("<view "), 1);
    QProcess program;
    program.setProcessChannelMode(QProcess::ForwardedChannels);
    program.start(QStringLiteral(ZU_VIEWER),
                  {"--settings", m_options.settingsFile, "--trigger", "btnNewView"});
    ASSERT_TRUE(program.waitForStarted());
    const bool told = QTest::qWaitFor([] { return remembered().count("<view ") == 2; }, 2 * kPatience);
    program.kill();
    program.waitForFinished(kPatience);
    ASSERT_TRUE(told) << qPrintable(remembered());
    EXPECT_EQ(program.exitStatus(), QProcess::CrashExit);

    ASSERT_TRUE(start());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    EXPECT_EQ(area()->views().size(), 2);
    EXPECT_TRUE(waitForFrame(area()->views().at(1)));
}

TEST_F(SessionSaver, WaitsUntilADialogIsDone) {
    ASSERT_TRUE(startKeeping());
    QSignalSpy saved(m_session->saver(), &CkSessionSaver::saved);
    QSignalSpy postponed(m_session->saver(), &CkSessionSaver::postponed);
    QDialog dialog(window());
    dialog.open();
    openGrey();
    ASSERT_TRUE(QTest::qWaitFor([&] { return postponed.size() >= 3; }, kPatience));
    EXPECT_TRUE(saved.isEmpty());
    EXPECT_EQ(remembered(), "");
    dialog.close();
    EXPECT_TRUE(waitUntilRemembered("sim:grey"));
}

TEST_F(SessionSaver, ACleanStartReplacesNothingBeforeItsUserActs) {
    ASSERT_TRUE(start());
    openGrey();
    close();
    const QString before = remembered();
    m_options.cleanStart = true;
    ASSERT_TRUE(startKeeping());
    ASSERT_TRUE(cameras()->start(cameras()->openCamera("sim:wave", true)));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_EQ(remembered(), before);
    QTest::keyClick(window(), Qt::Key_Shift);
    ASSERT_TRUE(waitUntilRemembered("sim:wave"));
    EXPECT_FALSE(remembered().contains("sim:grey"));
}

TEST_F(SessionSaver, TheEmptyAreaAfterClosingTheWindowIsNotSaved) {
    ASSERT_TRUE(startKeeping());
    openGrey();
    ASSERT_TRUE(waitUntilRemembered("sim:grey"));
    ASSERT_TRUE(window()->close());
    EXPECT_TRUE(QTest::qWaitFor([this] { return area()->views().isEmpty(); }, kPatience));
    cameras()->closeAllCameras();
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_TRUE(remembered().contains("sim:grey"));
    EXPECT_TRUE(remembered().contains("<view "));
}

TEST_F(SessionSaver, A3dViewThatHadNoFrameToFollowIsNotForgotten) {
    ASSERT_TRUE(start());
    openGrey();
    close();
    ASSERT_TRUE(remembered().contains("has3d=\"0\""));
    ViewerSettings::open()->setValue(ViewerSettings::kSessionKey,
                                     remembered().replace("has3d=\"0\"", "has3d=\"1\"").toUtf8());
    ASSERT_TRUE(start());
    close();
    EXPECT_TRUE(remembered().contains("has3d=\"1\"")) << qPrintable(remembered());
}

TEST_F(SessionSaver, UnattendedRunsKeepNothing) {
    m_options.frames = 1000;
    ASSERT_TRUE(start());
    EXPECT_EQ(m_session->saver(), nullptr);
}

class SessionLook : public SessionSaver {
protected:
    void expectLook() const {
        const CkImageView* view = firstView();
        ASSERT_NE(view, nullptr);
        EXPECT_EQ(view->channel(), 1);
        EXPECT_FALSE(view->canvas()->isFitting());
        EXPECT_DOUBLE_EQ(view->canvas()->zoom(), 2.5);
        EXPECT_EQ(view->showsLegend(), m_bLegend);
        EXPECT_TRUE(view->marksSaturated());
        EXPECT_FALSE(view->autoContrast());
        EXPECT_DOUBLE_EQ(view->window().low, 10.0);
        EXPECT_DOUBLE_EQ(view->window().high, 500.0);
        EXPECT_DOUBLE_EQ(view->gamma(), 2.0);
    }

    bool m_bLegend = false;
};

TEST_F(SessionLook, ChannelZoomAndColoursAreRestoredEvenAfterASessionWithoutAFrame) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(cameras()->start(cameras()->openCamera("sim:wave", true)));
    ASSERT_TRUE(waitForFrame(firstView()));
    CkImageView* view = firstView();
    ASSERT_EQ(view->channel(), 0);
    view->setChannel(1);
    view->canvas()->setZoom(2.5);
    m_bLegend = !view->showsLegend();
    view->setShowsLegend(m_bLegend);
    view->setMarksSaturated(true);
    view->setGamma(2.0);
    view->setWindow({10.0, 500.0});
    expectLook();
    close();

    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForFrame(firstView()));
    expectLook();
    close();
    // The camera does not run, so that no picture arrives.
    const auto setRunning = [](const char* from, const char* to) {
        ViewerSettings::open()->setValue(ViewerSettings::kSessionKey,
                                         remembered().replace(from, to).toUtf8());
    };
    setRunning("running=\"1\"", "running=\"0\"");
    ASSERT_TRUE(start());
    EXPECT_EQ(firstView()->currentImage(), nullptr);
    close();
    setRunning("running=\"0\"", "running=\"1\"");
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForFrame(firstView()));
    expectLook();
}

} // namespace
