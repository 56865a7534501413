#include "tests/host/viewer/ViewerFixture.h"

#include "host/viewer/area/CkViewNoticeController.h"
#include "host/viewer/base/CkViewerSettings.h"
#include "host/viewer/panels/camera/CkCameraMenu.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/panels/lut/CkLutPanel.h"
#include "host/viewer/panels/quality/CkRegionOverlay.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/shell/CkRateGraph.h"
#include "host/viewer/shell/CkShortcutsDialog.h"
#include "host/viewer/shell/CkStatusBar.h"
#include "host/viewer/shell/CkUnattendedRun.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFile>
#include <QLabel>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <cmath>

namespace {

class ViewerSession : public ViewerFixture {};

TEST_F(ViewerSession, StartsEmptyAndAnswersForIt) {
    ASSERT_TRUE(start());
    IkAppDelegate* delegate = IkAppDelegate::instance();
    ASSERT_NE(delegate, nullptr);
    EXPECT_EQ(delegate->activeViewId(), -1);
    EXPECT_EQ(delegate->mdiView(3), nullptr);
    EXPECT_FALSE(delegate->closeView(3));
    EXPECT_EQ(delegate->openImageView(nullptr), -1);
    EXPECT_EQ(delegate->cameraHandleOfView(0), nullptr);
    EXPECT_FALSE(delegate->startAcquisition(1, 0));
    EXPECT_FALSE(delegate->startAcquisition(1, 12345));
    EXPECT_FALSE(delegate->addCameraPanelLayout(reinterpret_cast<void*>(5), nullptr, nullptr, 1));
    EXPECT_EQ(delegate->mainWindow(), window());
    for (int id = 0; id <= 4; ++id) {
        EXPECT_NE(delegate->mainMenu(id), nullptr) << id;
    }
    EXPECT_EQ(delegate->mainMenu(5), nullptr);
    EXPECT_EQ(delegate->mainMenu(-1), nullptr);
    EXPECT_EQ(delegate->mainMenu(IkAppDelegate::PluginMenu)->title(), "&Plug-ins");
    m_session.reset();
    EXPECT_EQ(IkAppDelegate::instance(), nullptr);
}

TEST_F(ViewerSession, OpenedCameraIsShownWithPanelRateAndPixelValue) {
    m_options.cameras = QStringList{"2"};
    ASSERT_TRUE(start());
    void* camera = CkCameraManager::instance()->openedCameras().value(0);
    ASSERT_NE(camera, nullptr);
    EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
    CkCameraPanel* panel = cameras()->panel(camera);
    ASSERT_NE(panel, nullptr);
    for (const CkCameraParam* param : CkCameraManager::instance()->cameraParameters(camera)->params()) {
        EXPECT_NE(panel->findChild<QWidget*>(QStringLiteral("param_") + param->name()), nullptr)
            << qPrintable(param->name());
    }
    CkImageView* view = firstView();
    ASSERT_TRUE(waitForFrame(view));
    EXPECT_EQ(area()->activeViewId(), view->viewId());
    EXPECT_EQ(IkAppDelegate::instance()->cameraHandleOfView(view->viewId()), camera);
    EXPECT_FALSE(view->shownImage().isNull());

    CkStatusBar* status = window()->viewStatusBar();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return status->rateText().section(' ', 0, 0).toDouble() > 0.0; }, 20'000));
    EXPECT_TRUE(status->dropText().contains("dropped"));
    EXPECT_GE(status->findChild<CkRateGraph*>()->count(), 1);
    QTest::mouseMove(view->canvas(), view->canvas()->fromPicture(QPointF(30.5, 20.5)).toPoint());
    emit view->canvas()->pixelHovered(QPoint(30, 20));
    EXPECT_TRUE(status->pixelText().startsWith("x 30, y 20:")) << qPrintable(status->pixelText());
}

TEST_F(ViewerSession, StartStopPauseAndStepAreInThePanel) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    ASSERT_NE(camera, nullptr);
    CkCameraManager* manager = CkCameraManager::instance();
    CkCameraPanel* panel = cameras()->panel(camera);
    auto* startButton = panel->findChild<QPushButton*>("btnStart");
    auto* stepButton = panel->findChild<QPushButton*>("btnStep");
    EXPECT_FALSE(manager->isAcquiring(camera));
    EXPECT_FALSE(stepButton->isEnabled());
    EXPECT_FALSE(stepButton->toolTip().isEmpty());
    QTest::mouseClick(startButton, Qt::LeftButton);
    EXPECT_TRUE(manager->isAcquiring(camera));
    EXPECT_EQ(startButton->text(), "Stop");
    ASSERT_TRUE(waitForFrame(firstView()));
    QTest::mouseClick(stepButton, Qt::LeftButton);
    EXPECT_TRUE(panel->isPaused());
    QTest::qWait(200);
    const qint32 held = firstView()->currentImage()->frameId();
    QSignalSpy frames(firstView(), &CkMdiView::receivedFrame);
    QTest::mouseClick(stepButton, Qt::LeftButton);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !frames.isEmpty(); }, 20'000));
    EXPECT_NE(firstView()->currentImage()->frameId(), held);
    QTest::mouseClick(startButton, Qt::LeftButton);
    EXPECT_FALSE(manager->isAcquiring(camera));
    EXPECT_FALSE(panel->isPaused());
    for (const CkChain* chain : cameras()->chainsOf(camera)) {
        EXPECT_TRUE(chain->stopped());
    }
}

TEST_F(ViewerSession, PluginIsToldOfEverythingInOrder) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    ASSERT_TRUE(start());
    ASSERT_FALSE(m_session->plugins()->plugins().isEmpty());
    const QObject* probe = m_session->plugins()->plugins().last().object;
    const auto calls = [probe] { return probe->property("calls").toStringList(); };
    EXPECT_EQ(calls().last(), "init");
    const qsizetype before = calls().size();
    void* camera = openGrey();
    const int id = firstView()->viewId();
    // The panel is there before the plug-in hears of the camera.
    EXPECT_TRUE(calls().mid(before).contains("camera with panel"));
    EXPECT_NE(cameras()->panel(camera)->findChild<QWidget*>("probeButton"), nullptr);
    EXPECT_TRUE(calls().contains(QStringLiteral("active %1").arg(id)));
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_TRUE(calls().last().startsWith(QStringLiteral("image %1 ").arg(id))) << qPrintable(calls().last());
    ASSERT_TRUE(IkAppDelegate::instance()->closeView(id));
    EXPECT_TRUE(calls().contains(QStringLiteral("closing %1 alive").arg(id)));
    EXPECT_EQ(calls().last(), "active -1");
    EXPECT_EQ(IkAppDelegate::instance()->mdiView(id), nullptr);
}

TEST_F(ViewerSession, APluginThatThrowsTakesNothingDown) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    ASSERT_TRUE(start());
    ASSERT_FALSE(m_session->plugins()->plugins().isEmpty());
    QObject* probe = m_session->plugins()->plugins().last().object;
    probe->setProperty("throws", true);
    void* camera = openGrey();
    const int id = firstView()->viewId();
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_TRUE(IkAppDelegate::instance()->closeView(id));
    const QStringList calls = probe->property("calls").toStringList();
    for (const char* call :
         {"newCameraConnected", "activeViewChanged", "viewGotNewImage", "viewAboutToClose"}) {
        EXPECT_TRUE(calls.contains(QStringLiteral("threw in ") + QLatin1String(call))) << call;
    }
}

TEST_F(ViewerSession, BrokenPluginsAreNamedAndTheRestStarts) {
    const QString folder = m_folder.filePath("plugins");
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile broken(folder + "/libbroken.so");
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("this is no library");
    broken.close();
    QFile truncated(folder + "/libtruncated.so");
    QFile whole(QStringLiteral(ZU_PROBE_PLUGIN));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly) && truncated.open(QIODevice::WriteOnly));
    truncated.write(whole.read(3000));
    truncated.close();
    ASSERT_TRUE(QFile::copy(ZU_PROBE_PLUGIN, folder + "/libzprobe.so"));
    m_options.pluginPaths = QStringList{folder, m_folder.filePath("nowhere")};
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    const QString problems = m_session->plugins()->problems().join('\n');
    EXPECT_TRUE(problems.contains("libbroken.so")) << qPrintable(problems);
    EXPECT_TRUE(problems.contains("libtruncated.so")) << qPrintable(problems);
    EXPECT_TRUE(problems.contains("nowhere")) << qPrintable(problems);
    EXPECT_EQ(m_session->plugins()->problems().size(), 3);
    EXPECT_TRUE(m_session->plugins()->plugins().last().fileName.endsWith("libzprobe.so"));
    EXPECT_TRUE(waitForFrame(firstView()));
}

TEST_F(ViewerSession, UnknownCameraIsReportedAndTheViewerLives) {
    m_options.cameras = QStringList{"17", "no-such-camera"};
    EXPECT_FALSE(start());
    EXPECT_TRUE(window()->isVisible());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
    EXPECT_EQ(CkViewerSession::cameraId("0"), "sim:wave");
    EXPECT_EQ(CkViewerSession::cameraId("sim:hybrid"), "sim:hybrid");
    EXPECT_EQ(CkViewerSession::cameraId("-1"), "");
    EXPECT_TRUE(CkViewerSession::cameraList().contains("sim:grey"));
}

TEST_F(ViewerSession, AnUnpluggedCameraFreezesItsViewsAndGoesOnWhenItIsBack) {
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
    // The editors are those of the camera that is there now.
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

TEST_F(ViewerSession, PanelAndActiveViewBelongToTheSameCamera) {
    ASSERT_TRUE(start());
    CkCameraManager* manager = CkCameraManager::instance();
    void* grey = openGrey();
    void* wave = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(grey));
    ASSERT_TRUE(cameras()->start(wave));
    auto* tabs = window()->findChild<QDockWidget*>("dockCameras")->findChild<QTabWidget*>();
    ASSERT_NE(tabs, nullptr);
    area()->setActiveView(cameras()->viewsOf(grey).first());
    EXPECT_EQ(tabs->currentWidget(), cameras()->panel(grey));
    area()->setActiveView(cameras()->viewsOf(wave).first());
    EXPECT_EQ(tabs->currentWidget(), cameras()->panel(wave));
    // The tab is clicked: the camera's view comes forward, and F5 stops that camera and no other.
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {},
                      tabs->tabBar()->tabRect(tabs->indexOf(cameras()->panel(grey))).center());
    EXPECT_EQ(area()->activeViewId(), cameras()->viewsOf(grey).first());
    auto* f5 = window()->findChild<QAction*>("actStartCamera");
    ASSERT_EQ(f5->shortcut(), QKeySequence(Qt::Key_F5));
    f5->trigger();
    EXPECT_FALSE(manager->isAcquiring(grey));
    EXPECT_TRUE(manager->isAcquiring(wave));
    // Without any view of its own the panel in front still says which camera is meant.
    area()->closeView(cameras()->viewsOf(grey).first(), false);
    tabs->setCurrentWidget(cameras()->panel(grey));
    EXPECT_EQ(area()->activeViewId(), cameras()->viewsOf(wave).first());
}

TEST_F(ViewerSession, TriggeredButtonBehindAnotherTabComesToTheFront) {
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

TEST_F(ViewerSession, AutomaticContrastIsTheBusinessOfOneView) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    auto* automatic = window()->lutPanel()->findChild<QCheckBox*>("lutAuto");
    ASSERT_TRUE(QTest::qWaitFor([&] { return automatic->isEnabled(); }, 20'000));
    EXPECT_TRUE(automatic->isChecked());
    automatic->click();
    EXPECT_FALSE(firstView()->autoContrast());
    auto* later = qobject_cast<CkImageView*>(area()->view(cameras()->openView(camera)));
    EXPECT_TRUE(later->autoContrast());
    EXPECT_FALSE(firstView()->autoContrast());
    // Nor by the menu.
    area()->setActiveView(firstView()->viewId());
    firstView()->setAutoContrast(true);
    QAction* entry = nullptr;
    for (QAction* action : window()->findChildren<QAction*>()) {
        entry = action->shortcut() == QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A) ? action : entry;
    }
    ASSERT_NE(entry, nullptr);
    entry->trigger();
    EXPECT_FALSE(firstView()->autoContrast());
    EXPECT_TRUE(qobject_cast<CkImageView*>(area()->view(cameras()->openView(camera)))->autoContrast());
}

TEST_F(ViewerSession, TheColourPanelShowsNothingOfAnotherViewForOneWithoutAPicture) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    firstView()->setWindow({12.0, 34.0});
    const auto* low = window()->lutPanel()->findChild<QDoubleSpinBox*>("lutLow");
    const auto* high = window()->lutPanel()->findChild<QDoubleSpinBox*>("lutHigh");
    ASSERT_TRUE(QTest::qWaitFor([&] { return low->value() == 12.0 && high->value() == 34.0; }, 20'000));
    cameras()->stop(camera);
    auto* empty = qobject_cast<CkImageView*>(area()->view(cameras()->openView(camera)));
    ASSERT_EQ(area()->activeView(), empty);
    ASSERT_FALSE(empty->hasPicture());
    for (const QDoubleSpinBox* number : {low, high}) {
        EXPECT_EQ(number->text(), "");
        EXPECT_FALSE(number->isEnabled());
        EXPECT_EQ(number->toolTip(), "There is no picture yet");
    }
    // Its own as soon as there is one.
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(empty));
    cameras()->stop(camera);
    // The field shows whole counts.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return low->isEnabled() && std::abs(high->value() - empty->window().high) <= 0.5; }, 20'000))
        << high->value() << " of " << empty->window().high;
    EXPECT_NE(high->value(), 34.0);
    area()->setActiveView(firstView()->viewId());
    EXPECT_EQ(low->value(), 12.0);
}

TEST_F(ViewerSession, ClosingTheLastViewOfAChainClosesTheChain) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    CkChainable* source = firstView()->dataProvider();
    const int second = IkAppDelegate::instance()->openImageView(source);
    ASSERT_GE(second, 0);
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
    ASSERT_TRUE(area()->closeView(firstView()->viewId()));
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
    ASSERT_TRUE(area()->closeView(second));
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    EXPECT_TRUE(CkCameraManager::instance()->isOpen(camera));
    // Starting a camera that nobody looks at opens a view on it.
    ASSERT_TRUE(IkAppDelegate::instance()->startAcquisition(1, 0));
    EXPECT_TRUE(waitForFrame(firstView()));
    EXPECT_TRUE(IkAppDelegate::instance()->startAcquisition(0, quint64(quintptr(camera))));
    EXPECT_FALSE(CkCameraManager::instance()->isAcquiring(camera));
}

TEST_F(ViewerSession, CloseButtonOfAViewWindowClosesTheView) {
    ASSERT_TRUE(start());
    openGrey();
    const int id = firstView()->viewId();
    ASSERT_EQ(area()->subWindowList().size(), 1);
    area()->subWindowList().first()->close();
    EXPECT_EQ(area()->view(id), nullptr);
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST_F(ViewerSession, StartingACameraActivatesOneOfItsViews) {
    ASSERT_TRUE(start());
    void* grey = openGrey();
    cameras()->openCamera("sim:wave", true);
    EXPECT_NE(IkAppDelegate::instance()->cameraHandleOfView(area()->activeViewId()), grey);
    ASSERT_TRUE(IkAppDelegate::instance()->startAcquisition(1, quint64(quintptr(grey))));
    EXPECT_EQ(IkAppDelegate::instance()->cameraHandleOfView(area()->activeViewId()), grey);
}

TEST_F(ViewerSession, LutPanelColoursTheActiveViewAndIsRemembered) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    CkImageView* view = firstView();
    ASSERT_TRUE(waitForFrame(view));
    auto* maps = window()->lutPanel()->findChild<QComboBox*>("lutMap");
    ASSERT_TRUE(maps->isEnabled());
    EXPECT_EQ(maps->currentIndex(), 0);
    const auto isGrey = [view] {
        const QImage& image = view->shownImage();
        for (int x = 0; x < image.width(); x += 7) {
            const QRgb pixel = image.pixel(x, image.height() / 2);
            if (qRed(pixel) != qGreen(pixel) || qGreen(pixel) != qBlue(pixel)) {
                return false;
            }
        }
        return true;
    };
    EXPECT_TRUE(isGrey());
    const int jet = maps->findText("Jet");
    ASSERT_GT(jet, 0);
    maps->setCurrentIndex(jet);
    emit maps->activated(jet);
    EXPECT_EQ(view->viewLut(nullptr, nullptr, nullptr)->pseudoColorIndex(), jet);
    EXPECT_FALSE(isGrey());
    // A new table for such pictures starts with what the user chose.
    const std::unique_ptr<CkLut> lut(
        IkAppDelegate::instance()->createLut(view->currentImage()->picBuf(), {}));
    EXPECT_EQ(lut->pseudoColorIndex(), jet);
    EXPECT_EQ(CkViewerSettings::open()->value(CkViewerSettings::keyPseudoColor(false)).toInt(), jet);
}

TEST_F(ViewerSession, SettingsAndLastDirectoryLiveInTheGivenFile) {
    ASSERT_TRUE(start());
    IkAppDelegate* delegate = IkAppDelegate::instance();
    EXPECT_EQ(delegate->lastDirectory(), "");
    delegate->setLastDirectory("/some/where");
    EXPECT_EQ(delegate->lastDirectory(), "/some/where");
    const std::unique_ptr<QSettings> first(delegate->settings());
    const std::unique_ptr<QSettings> second(delegate->settings());
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(first->fileName(), m_options.settingsFile);
}

TEST_F(ViewerSession, TilingShowsEveryViewWithoutOverlap) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    for (int more = 0; more < 4; ++more) {
        cameras()->openView(camera);
    }
    IkAppDelegate::instance()->refreshViewArea();
    const QList<QMdiSubWindow*> windows = area()->subWindowList();
    ASSERT_EQ(windows.size(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(area()->viewport()->rect().contains(windows[i]->geometry())) << i;
        EXPECT_GE(windows[i]->width(), 190) << i;
        for (int k = i + 1; k < 5; ++k) {
            EXPECT_FALSE(windows[i]->geometry().intersects(windows[k]->geometry())) << i << ' ' << k;
        }
    }
}

TEST_F(ViewerSession, EveryShortcutIsListedAndUnique) {
    ASSERT_TRUE(start());
    const auto shortcuts = CkShortcutsDialog::collect(window()->menuBar());
    QStringList keys;
    for (const auto& [key, meaning] : shortcuts) {
        EXPECT_FALSE(keys.contains(key)) << qPrintable(key + ": " + meaning);
        keys.append(key);
    }
    for (const char* wanted : {"F5", "F6", "F7", "F11", "Ctrl+O", "Ctrl+S", "Ctrl+T", "Ctrl+W", "Ctrl+1"}) {
        EXPECT_TRUE(keys.contains(QLatin1String(wanted))) << wanted;
    }
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
    idle.setPatience(300);
    QSignalSpy finished(&idle, &CkUnattendedRun::finished);
    idle.start();
    ASSERT_TRUE(finished.wait(20'000));
    EXPECT_EQ(finished.first().first().toInt(), CkUnattendedRun::kFailed);

    options.plyFile = m_folder.filePath("cloud.ply");
    ASSERT_TRUE(cameras()->start(openGrey()));
    CkUnattendedRun noCloud(options, window());
    noCloud.setPatience(1500);
    QSignalSpy failed(&noCloud, &CkUnattendedRun::finished);
    noCloud.start();
    ASSERT_TRUE(failed.wait(20'000));
    EXPECT_EQ(failed.first().first().toInt(), CkUnattendedRun::kFailed);
    EXPECT_FALSE(QFile::exists(options.plyFile));
}

} // namespace
