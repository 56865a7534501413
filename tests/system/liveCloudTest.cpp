#include "SystemFixture.h"

#include <QSet>

namespace {

constexpr QRgb g_background = qRgb(0x30, 0x30, 0x80);

/// What is on the screen where a view's scene is.
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
            seen.background += pixel == g_background ? 1 : 0;
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

/// Every view has a width to be seen at, and none hides another.
bool liesFree(const QList<CkMdiView*>& views) {
    for (qsizetype i = 0; i < views.size(); ++i) {
        const QRect mine(views[i]->mapToGlobal(QPoint(0, 0)), views[i]->size());
        for (qsizetype j = i + 1; j < views.size(); ++j) {
            const QRect other(views[j]->mapToGlobal(QPoint(0, 0)), views[j]->size());
            if (mine.intersects(other)) {
                return false;
            }
        }
        if (mine.width() < 190) {
            return false;
        }
    }
    return true;
}

class LiveCloud : public SystemFixture {};

TEST_F(LiveCloud, MenuOpensAThreeDViewWhoseCloudIsOnTheScreenAndMoves) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    ASSERT_NE(camera, nullptr);
    set(camera, "sim_noise", 0); // so that only what moves changes
    ASSERT_TRUE(desk()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    clickPluginMenu("menuOpenToF3dView");
    ASSERT_EQ(views(true).size(), 1);
    CkMdiView* scene = views(true)[0];
    EXPECT_EQ(scene->connectedViewId(), firstView()->viewId());
    ASSERT_TRUE(waitForFrames(scene, 3));

    SceneLook seen;
    QImage first;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            first = screenOf(scene);
            seen = look(first);
            return seen.colours > 100;
        },
        60'000))
        << "only " << seen.colours << " colours";
    EXPECT_GT(seen.background, seen.pixels / 20) << "nothing is drawn where nothing is";
    EXPECT_LT(seen.background, seen.pixels * 19 / 20) << "the cloud is there";
    // The corners lie outside the projected volume.
    EXPECT_EQ(first.pixel(5, first.height() - 5), g_background);
    EXPECT_EQ(first.pixel(first.width() - 5, first.height() - 5), g_background);

    int moved = 0;
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            moved = differingPixels(first, screenOf(scene));
            return moved > 200;
        },
        60'000))
        << "only " << moved << " pixels changed";
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, ToolButtonOfAStoppedCameraOpensAllViewsTiled) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    ASSERT_FALSE(CkCameraManager::instance()->isAcquiring(camera));
    clickToolButton("btnToFAllViews");
    EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
    EXPECT_EQ(views(false).size(), 3);
    ASSERT_EQ(views(true).size(), 1);
    ASSERT_TRUE(waitForFrames(views(true)[0], 2));
    for (CkMdiView* view : views(false)) {
        EXPECT_TRUE(waitForFrame(view)) << qPrintable(view->viewTitle());
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return liesFree(area()->views()); }, 30'000)) << "tiled in the area";
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, HybridCameraGetsItsOwnThreeBranches) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(desk()->start(openStopped("sim:hybrid")));
    ASSERT_TRUE(waitForFrame(firstView()));
    clickPluginMenu("menuOpenAllToFProcessingViews");
    EXPECT_EQ(views(false).size(), 3);
    ASSERT_EQ(views(true).size(), 1);
    EXPECT_TRUE(waitForFrames(views(true)[0], 2));
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
}

TEST_F(LiveCloud, UnpluggingTheCameraWhileEverythingRunsClosesCleanly) {
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    ASSERT_TRUE(desk()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    clickToolButton("btnToFAllViews");
    ASSERT_EQ(views(true).size(), 1);
    ASSERT_TRUE(waitForFrames(views(true)[0], 2));
    desk()->unplugCamera(camera);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return area()->views().isEmpty() && CkChainManager::instance()->chains().isEmpty(); },
        30'000));
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
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
    ASSERT_TRUE(desk()->start(camera));
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

TEST_F(LiveCloud, CalibrationFromTheMenuStoresTheOffset) {
    constexpr double wall = 1.25;
    constexpr double builtIn = 0.2;
    ASSERT_TRUE(start());
    void* camera = openWaveCamera();
    set(camera, "sim_scene", 1);
    set(camera, "sim_wall_distance", wall);
    set(camera, "sim_distance_offset", builtIn);
    set(camera, "sim_noise", 0);
    set(camera, "tof_readout_mode", 0); // the action sets the camera up without asking
    ASSERT_TRUE(desk()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));

    bool started = false;
    m_onDialog = [&started](QDialog* dialog) {
        auto* distance = dialog->findChild<QLineEdit*>(QStringLiteral("edDistance"));
        auto* ok = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        if (started || distance == nullptr) {
            return;
        }
        started = true;
        distance->selectAll();
        QTest::keyClicks(distance, QStringLiteral("125"));
        QTest::mouseClick(ok, Qt::LeftButton);
    };
    m_answer = QMessageBox::Ok;
    clickPluginMenu("menuTofCalibrateOffset");
    ASSERT_TRUE(started);
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_TRUE(m_boxes[0].startsWith("Measured distance: ")) << qPrintable(m_boxes[0]);
    const QSettings settings(m_options.settingsFile, QSettings::IniFormat);
    ASSERT_TRUE(settings.contains("ToF.OptRealDistandeOffsetM"));
    // Without noise only the converter's steps and the rays beside the axis (below 0.1 mm) remain.
    EXPECT_NEAR(settings.value("ToF.OptRealDistandeOffsetM").toDouble(), -builtIn, 0.005);
}

} // namespace
