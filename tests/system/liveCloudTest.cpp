#include "host/viewer/area/CkViewNoticeController.h"
#include "tests/system/SystemFixture.h"

#include <QSet>

namespace {

constexpr QRgb kBackground = qRgb(0x30, 0x30, 0x80);

/// The part of the screen that shows a view's scene.
QImage screenOf(CkMdiView* view) {
    // The scene lies below the tool bar, down to the view's lower edge.
    const int top = 48;
    const QPoint corner = view->mapToGlobal(QPoint(0, top));
    return view->screen()
        ->grabWindow(0, corner.x(), corner.y(), view->width(), view->height() - top)
        .toImage()
        .convertToFormat(QImage::Format_RGB32);
}

struct SceneLook {
    qsizetype colours = 0;
    int background = 0;
    int pixels = 0;
};

SceneLook look(const QImage& image) {
    SceneLook seen;
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            colours.insert(pixel);
            seen.background += pixel == kBackground ? 1 : 0;
        }
    }
    seen.colours = colours.size();
    seen.pixels = image.width() * image.height();
    return seen;
}

int differingPixels(const QImage& left, const QImage& right) {
    int count = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            count += left.pixel(x, y) != right.pixel(x, y) ? 1 : 0;
        }
    }
    return count;
}

class LiveCloud : public SystemFixture {
protected:
    /// Expects a moving cloud of many colours on the background. The camera has no noise, so that only the
    /// scene moves.
    void expectLiveCloud(CkMdiView* scene) {
        SceneLook seen;
        QImage first;
        // The corners lie outside the projected volume.
        const auto cornersAreEmpty = [&first] {
            for (const int x : {5, first.width() - 5}) {
                for (const int y : {5, first.height() - 5}) {
                    if (first.pixel(x, y) != kBackground) {
                        return false;
                    }
                }
            }
            return true;
        };
        ASSERT_TRUE(waitForFrames(scene, 3));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] {
                first = screenOf(scene);
                seen = look(first);
                return seen.colours > 100 && cornersAreEmpty();
            },
            60'000))
            << seen.colours << " colours, corners " << (cornersAreEmpty() ? "empty" : "not empty");
        EXPECT_GT(seen.background, seen.pixels / 20) << "nothing is drawn where nothing is";
        EXPECT_LT(seen.background, seen.pixels * 19 / 20) << "the cloud is there";
        int moved = 0;
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                moved = differingPixels(first, screenOf(scene));
                return moved > 200;
            },
            60'000))
            << "only " << moved << " pixels changed";
    }

    void expectThreeLiveBranches() {
        EXPECT_EQ(blockTitles(), (QStringList{"ToF Depth", "ToF Amplitude", "ToF Intensity"}));
        EXPECT_TRUE(CkChainManager::instance()->chains()[0]->started());
        EXPECT_EQ(views(false).size(), 3);
        ASSERT_EQ(views(true).size(), 1);
        EXPECT_TRUE(waitForFrames(views(true)[0], 2));
        for (CkMdiView* view : views(false)) {
            EXPECT_TRUE(waitForFrame(view)) << qPrintable(view->viewTitle());
        }
    }

    /// No view is covered by another, and each is large enough to read.
    bool isTiled() const {
        const QList<CkMdiView*> all = area()->views();
        for (qsizetype i = 0; i < all.size(); ++i) {
            const QRect mine(all[i]->mapToGlobal(QPoint(0, 0)), all[i]->size());
            if (mine.width() < 250 || mine.height() < 250) {
                return false;
            }
            for (qsizetype j = i + 1; j < all.size(); ++j) {
                if (mine.intersects(QRect(all[j]->mapToGlobal(QPoint(0, 0)), all[j]->size()))) {
                    return false;
                }
            }
        }
        return true;
    }
};

TEST_F(LiveCloud, MenuOpensAThreeDViewWhoseCloudIsOnTheScreenAndMoves) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    ASSERT_NE(camera, nullptr);
    set(camera, "sim_noise", 0);
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    clickPluginMenu("menuOpenToF3dView");
    ASSERT_EQ(views(true).size(), 1);
    EXPECT_EQ(views(true)[0]->connectedViewId(), firstView()->viewId());
    expectLiveCloud(views(true)[0]);
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, ToolButtonOfAStoppedCameraOpensTheLiveCloud) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    set(camera, "sim_noise", 0);
    ASSERT_FALSE(CkCameraManager::instance()->isAcquiring(camera));
    clickToolButton("btnToF3D");
    EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
    ASSERT_EQ(views(true).size(), 1);
    EXPECT_EQ(views(true)[0]->connectedViewId(), firstView()->viewId());
    expectLiveCloud(views(true)[0]);
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, ToolButtonOfAStoppedCameraOpensAllViewsTiled) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    ASSERT_FALSE(CkCameraManager::instance()->isAcquiring(camera));
    clickToolButton("btnToFAllViews");
    EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
    expectThreeLiveBranches();
    EXPECT_TRUE(QTest::qWaitFor([this] { return isTiled(); }, 30'000));
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, HybridCameraGetsItsOwnThreeBranches) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(cameras()->start(openStopped("sim:hybrid")));
    ASSERT_TRUE(waitForFrame(firstView()));
    clickPluginMenu("menuOpenAllToFProcessingViews");
    expectThreeLiveBranches();
    EXPECT_TRUE(QTest::qWaitFor([this] { return isTiled(); }, 30'000));
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, ClosingTheCameraFromTheMenuWhileEverythingRunsClosesCleanly) {
    ASSERT_TRUE(start());
    // Twice: the second round starts from the state left by the first one.
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(cameras()->start(openWaveCamera()));
        ASSERT_TRUE(waitForFrame(firstView()));
        clickToolButton("btnToFAllViews");
        ASSERT_EQ(views(true).size(), 1);
        ASSERT_TRUE(waitForFrames(views(true)[0], 2));
        ASSERT_NO_FATAL_FAILURE(clickOnlyEntry("menuCloseCamera"));
        EXPECT_TRUE(QTest::qWaitFor([this] { return area()->views().isEmpty(); }, 30'000));
        EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
        EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
        for (const char* entry :
             {"menuOpenToF3dView", "menuOpenAllToFProcessingViews", "menuTofCalibrateOffset"}) {
            EXPECT_FALSE(pluginAction(entry)->isEnabled()) << entry;
        }
    }
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, EveryViewOfAnUnpluggedCameraWaitsAndGoesOn) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    clickToolButton("btnToFAllViews");
    ASSERT_EQ(views(true).size(), 1);
    ASSERT_TRUE(waitForFrames(views(true)[0], 2));
    const QList<CkMdiView*> before = area()->views();
    for (int round = 0; round < 2; ++round) {
        ASSERT_NO_FATAL_FAILURE(clickOnlyEntry("menuUnplugCamera"));
        ASSERT_TRUE(
            QTest::qWaitFor([camera] { return CkCameraManager::instance()->isUnplugged(camera); }, 30'000));
        EXPECT_EQ(area()->views(), before);
        for (CkMdiView* view : before) {
            EXPECT_TRUE(area()->notices()->notice(view->viewId()).contains("is unplugged"))
                << qPrintable(view->viewTitle());
        }
        ASSERT_NO_FATAL_FAILURE(clickOnlyEntry("menuPlugInCamera"));
        for (CkMdiView* view : before) {
            EXPECT_TRUE(waitForFrames(view, 2)) << qPrintable(view->viewTitle());
            EXPECT_EQ(area()->notices()->notice(view->viewId()), "");
        }
    }
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

struct SetUpAnswer {
    QMessageBox::StandardButton button;
    int readoutMode;
    int dataFormat;
};

class CameraNotSetUp : public LiveCloud, public ::testing::WithParamInterface<SetUpAnswer> {};

TEST_P(CameraNotSetUp, ThreeDViewFromTheMenuAsksFirst) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    set(camera, "tof_readout_mode", 0);
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    const int format = param(camera, "imgdataformat")->committedValue().toInt();
    m_answer = GetParam().button;
    clickPluginMenu("menuOpenToF3dView");
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_TRUE(m_boxes[0].endsWith("Do you want to update the camera parameters automatically?"));
    const bool yes = m_answer == QMessageBox::Yes;
    EXPECT_EQ(param(camera, "tof_readout_mode")->committedValue().toInt(), yes ? 4 : 0);
    EXPECT_EQ(param(camera, "imgdataformat")->committedValue().toInt(), yes ? 13 : format);
    ASSERT_EQ(views(true).size(), 1) << "it opens either way";
    EXPECT_TRUE(waitForFrames(views(true)[0], 2));
}
INSTANTIATE_TEST_SUITE_P(LiveCloud, CameraNotSetUp,
                         ::testing::Values(SetUpAnswer{QMessageBox::Yes, 4, 13},
                                           SetUpAnswer{QMessageBox::No, 0, -1}));

TEST_F(LiveCloud, AllViewsFromTheToolButtonSetTheCameraUpAfterYesAndNothingAfterCancel) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    set(camera, "tof_readout_mode", 0);
    m_answer = QMessageBox::Cancel;
    clickToolButton("btnToFAllViews");
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_EQ(views(true).size(), 0);
    EXPECT_EQ(views(false).size(), 1);
    EXPECT_EQ(param(camera, "tof_readout_mode")->committedValue().toInt(), 0);

    m_answer = QMessageBox::Yes;
    clickToolButton("btnToFAllViews");
    EXPECT_EQ(m_boxes.size(), 2);
    EXPECT_EQ(param(camera, "tof_readout_mode")->committedValue().toInt(), 4);
    EXPECT_EQ(views(false).size(), 3);
    ASSERT_EQ(views(true).size(), 1);
    EXPECT_TRUE(waitForFrames(views(true)[0], 2));
}

} // namespace
