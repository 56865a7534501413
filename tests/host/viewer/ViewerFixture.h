#pragma once

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/plugins/CkPluginHost.h"
#include "host/viewer/shell/CkMainWindow.h"
#include "host/viewer/shell/CkViewerSession.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

/// The real viewer in this process, with simulated cameras and settings of its own.
class ViewerFixture : public ::testing::Test {
protected:
    void SetUp() override {
        CkViewerSession::addBuiltInDrivers();
        m_options.settingsFile = m_folder.filePath(QStringLiteral("settings.ini"));
        m_options.windowSize = QSize(1500, 950);
    }

    void TearDown() override {
        m_session.reset();
        for (const SkCameraInfo& info : CkCameraManager::instance()->withheldCameras()) {
            CkCameraManager::instance()->plugCameraIn(info.id);
        }
        EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
        EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    }

    bool start() {
        m_session = std::make_unique<CkViewerSession>(m_options);
        return m_session->start();
    }

    CkMainWindow* window() const { return m_session->window(); }
    CkViewArea* area() const { return window()->area(); }
    CkCameraController* cameras() const { return window()->cameras(); }

    void* openGrey() const { return cameras()->openCamera(QStringLiteral("sim:grey"), true); }
    CkImageView* firstView() const { return qobject_cast<CkImageView*>(area()->views().value(0)); }

    /// Waits until a view has shown a frame.
    static bool waitForFrame(CkMdiView* view) {
        return view != nullptr && QTest::qWaitFor([view] { return view->currentImage() != nullptr; }, 20'000);
    }

    QTemporaryDir m_folder;
    SkViewerOptions m_options;
    std::unique_ptr<CkViewerSession> m_session;
};

/// Tests of the whole viewer, in several files.
class ViewerSession : public ViewerFixture {};
