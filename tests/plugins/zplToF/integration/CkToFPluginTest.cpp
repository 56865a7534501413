#include "plugins/zplToF/CkToFPlugin.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "tests/support/TestFrames.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/CkRTTI.h"
#include "zuCore/zuCoreVersion.h"

#include <QAction>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMetaClassInfo>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace {

class ToFPlugin : public ::testing::Test {
protected:
    QAction* action(const char* name) const {
        return app.mainMenuFor()->findChild<QAction*>(QLatin1String(name));
    }
    QList<bool> enabled() const {
        return {action("menuOpenToF3dView")->isEnabled(),
                action("menuOpenAllToFProcessingViews")->isEnabled(),
                action("menuTofCalibrateOffset")->isEnabled()};
    }

    /// 3D views that follow a view, which becomes the active one.
    void openToF3dViews(CkMdiView& on, int count) {
        app.registerView(&on);
        app.activeView = on.viewId();
        plugin.actions().setMessageFunction([](const SkToFMessage&) { return QMessageBox::Ok; });
        for (int i = 0; i < count; ++i) {
            plugin.on_actOpenToF3dView();
        }
    }

    struct App : FakeAppDelegate {
        QMenu* mainMenuFor() const { return const_cast<App*>(this)->mainMenu(3); }
    } app;
    CkToFPlugin plugin;
};

TEST_F(ToFPlugin, SaysWhatItIs) {
    EXPECT_EQ(plugin.name(), "ToF Images Visualization");
    EXPECT_EQ(plugin.author(), "Orvane");
    EXPECT_EQ(plugin.description(), "Plugin for ToF camera output visualization and processing.");
    EXPECT_EQ(plugin.website(), "https://www.orvane.com");
    int major = -1;
    int minor = -1;
    int patch = -1;
    plugin.version(major, minor, patch);
    EXPECT_EQ(major, kZuCoreVersionMajor);
    EXPECT_EQ(minor, kZuCoreVersionMinor);
    EXPECT_EQ(patch, kZuCoreVersionPatch);
}

TEST_F(ToFPlugin, InterfaceIsReachedByNameAndByIdentifier) {
    auto* byName = static_cast<CkPlugin*>(plugin.qt_metacast("CkPlugin"));
    EXPECT_EQ(byName, static_cast<CkPlugin*>(&plugin));
    EXPECT_EQ(plugin.qt_metacast("com.orvane.CkPlugin"), byName);
}

TEST_F(ToFPlugin, SlotsStandInTheirOrderAndThereIsNothingElse) {
    const QMetaObject& meta = CkToFPlugin::staticMetaObject;
    const QStringList expected{"on_actOpenToF3dView()",   "on_actOpenToF3dViewStartAcq()",
                               "on_actOpenAllToFViews()", "on_actOpenAllToFViewsStartAcq()",
                               "on_actCalibrateOffset()", "enableMainMenuItems(int)"};
    QStringList found;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        EXPECT_EQ(meta.method(index).methodType(), QMetaMethod::Slot);
        found << QString::fromLatin1(meta.method(index).methodSignature());
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(meta.propertyCount(), meta.propertyOffset());
    EXPECT_EQ(meta.method(meta.methodOffset() + 5).parameterNames(), QList<QByteArray>{"iActiveViewId"});
}

TEST_F(ToFPlugin, BlockIsRegisteredAndCanBeCreated) {
    ASSERT_TRUE(plugin.init());
    bool listed = false;
    const QList<SkRegisteredClass> classes = CkRTTI::instance()->classes(QStringLiteral("CkChainable"));
    for (const SkRegisteredClass& entry : classes) {
        listed = listed || (entry.uniqueId == "com.orvane.Pictor.CkToFProcessCnbl" &&
                            entry.customName == "ToF Image Processing");
    }
    EXPECT_TRUE(listed);
    const std::unique_ptr<QObject> block(
        CkRTTI::instance()->create(QStringLiteral("com.orvane.Pictor.CkToFProcessCnbl")));
    EXPECT_NE(qobject_cast<CkToFProcessCnbl*>(block.get()), nullptr);
}

TEST_F(ToFPlugin, MenuHasThreeDisabledActions) {
    ASSERT_TRUE(plugin.init());
    QMenu* menu = app.mainMenuFor()->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->title(), "Time of Flight Processing (ToF)");
    const QList<QAction*> actions = menu->actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), "Open ToF 3D View");
    EXPECT_EQ(actions[0]->objectName(), "menuOpenToF3dView");
    EXPECT_EQ(actions[1]->text(), "Open All ToF Processing Views");
    EXPECT_EQ(actions[1]->objectName(), "menuOpenAllToFProcessingViews");
    EXPECT_EQ(actions[2]->text(), "Calibrate distance offset...");
    EXPECT_EQ(actions[2]->objectName(), "menuTofCalibrateOffset");
    EXPECT_EQ(enabled(), (QList<bool>{false, false, false}));
}

TEST_F(ToFPlugin, NoMenuAndNoCameraAreNoError) {
    app.provideMenus = false;
    EXPECT_TRUE(plugin.init());
    plugin.activeViewChanged(0);
    plugin.activeViewChanged(-1);
}

TEST_F(ToFPlugin, WithoutAHostNothingIsDoneAndNothingFails) {
    FakeCamera camera({4, 13});
    QObject button;
    button.setProperty("tof_camera_handle", QVariant::fromValue(quint64(quintptr(camera.handle()))));
    IkAppDelegate::setInstance(nullptr);
    EXPECT_TRUE(plugin.init());
    plugin.newCameraConnected(camera.handle());
    plugin.activeViewChanged(1);
    plugin.on_actOpenToF3dView();
    plugin.on_actOpenAllToFViews();
    plugin.on_actCalibrateOffset();
    CkToFPlugin::startCameraAcquitionFromButton(&button);
    IkAppDelegate::setInstance(&app);
    EXPECT_TRUE(app.calls.isEmpty());
    EXPECT_TRUE(app.cameraPanels.isEmpty());
    EXPECT_TRUE(plugin.actions().views().isEmpty());
}

TEST_F(ToFPlugin, WithoutAnActiveViewAllThreeActionsAreDisabled) {
    FakeCamera camera({4, 13});
    ASSERT_TRUE(plugin.init());
    app.viewCameras[1] = camera.handle();
    plugin.activeViewChanged(1);
    EXPECT_EQ(enabled(), (QList<bool>{true, true, true}));
    plugin.activeViewChanged(-1);
    EXPECT_EQ(enabled(), (QList<bool>{false, false, false}));
}

TEST_F(ToFPlugin, OneToFCameraAndAViewOfSomethingElseLeaveCalibrationEnabled) {
    FakeCamera camera({4, 13});
    ASSERT_TRUE(plugin.init());
    ASSERT_EQ(CkCameraManager::instance()->openedCameraCount(), 1);
    app.viewCameras[1] = nullptr;
    plugin.activeViewChanged(1);
    EXPECT_EQ(enabled(), (QList<bool>{true, false, true}));
    FakeCamera second({-1, 13});
    plugin.activeViewChanged(1);
    EXPECT_EQ(enabled(), (QList<bool>{true, false, false})) << "two cameras are open";
}

TEST_F(ToFPlugin, MenuThatOpensKnowsOfCamerasThatCameOrWentMeanwhile) {
    FakeCamera camera({4, 13});
    ASSERT_TRUE(plugin.init());
    app.activeView = 1;
    app.viewCameras[1] = nullptr;
    FakeCamera second({-1, 13});
    plugin.activeViewChanged(1);
    ASSERT_EQ(enabled(), (QList<bool>{true, false, false}));
    auto* menu = qobject_cast<QMenu*>(action("menuTofCalibrateOffset")->parent());
    ASSERT_NE(menu, nullptr);
    second.close();
    emit menu->aboutToShow();
    EXPECT_EQ(enabled(), (QList<bool>{true, false, true}));
    app.viewCameras[1] = camera.handle();
    emit menu->aboutToShow();
    EXPECT_EQ(enabled(), (QList<bool>{true, true, true}));
    camera.close(); // its view still exists, with a stale handle
    emit menu->aboutToShow();
    EXPECT_EQ(enabled(), (QList<bool>{true, false, false}));
}

TEST_F(ToFPlugin, OnlyCameraThatIsNoToFCameraEnablesNoCalibration) {
    FakeCamera camera({-1, 13});
    ASSERT_TRUE(plugin.init());
    app.viewCameras[1] = camera.handle();
    plugin.activeViewChanged(1);
    EXPECT_EQ(enabled(), (QList<bool>{true, false, false}));
}

TEST_F(ToFPlugin, CameraWithoutReadoutModeGetsNoToolArea) {
    ASSERT_TRUE(plugin.init());
    FakeCamera plain({-1, 13});
    FakeCamera hybrid({-1, 18, 13});
    plugin.newCameraConnected(plain.handle());
    plugin.newCameraConnected(hybrid.handle());
    plugin.newCameraConnected(nullptr);
    EXPECT_TRUE(app.cameraPanels.isEmpty());
}

TEST_F(ToFPlugin, ToFCameraGetsLabelButtonsAndSpacer) {
    ASSERT_TRUE(plugin.init());
    FakeCamera camera({4, 13});
    plugin.newCameraConnected(camera.handle());
    QWidget* panel = app.cameraPanels.value(camera.handle());
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(app.calls.count("addCameraPanelLayout 1"), 1);
    QLayout* layout = panel->layout()->itemAt(0)->layout();
    ASSERT_NE(qobject_cast<QHBoxLayout*>(layout), nullptr);
    ASSERT_EQ(layout->count(), 4);
    const auto* label = qobject_cast<QLabel*>(layout->itemAt(0)->widget());
    const auto* open3d = qobject_cast<QToolButton*>(layout->itemAt(1)->widget());
    const auto* openAll = qobject_cast<QToolButton*>(layout->itemAt(2)->widget());
    const QSpacerItem* spacer = layout->itemAt(3)->spacerItem();
    ASSERT_TRUE(label != nullptr && open3d != nullptr && openAll != nullptr && spacer != nullptr);
    EXPECT_EQ(label->text(), "ToF Processing:");
    EXPECT_EQ(open3d->text(), "Open 3D View");
    EXPECT_EQ(open3d->objectName(), "btnToF3D");
    EXPECT_EQ(openAll->text(), "Open All ToF Processing Views");
    EXPECT_EQ(openAll->objectName(), "btnToFAllViews");
    for (const QToolButton* button : {open3d, openAll}) {
        EXPECT_EQ(button->property("tof_camera_handle").toULongLong(), quint64(quintptr(camera.handle())));
    }
    EXPECT_EQ(spacer->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    EXPECT_EQ(spacer->sizePolicy().verticalPolicy(), QSizePolicy::Minimum);
}

TEST_F(ToFPlugin, CameraThatIsAlreadyOpenIsEquippedAtStart) {
    FakeCamera camera({4, 13});
    ASSERT_TRUE(plugin.init());
    EXPECT_TRUE(app.cameraPanels.contains(camera.handle()));
}

TEST_F(ToFPlugin, CameraWithoutAPanelLeavesNothingBehind) {
    ASSERT_TRUE(plugin.init());
    FakeCamera camera({4, 13});
    app.camerasWithoutPanel << camera.handle();
    plugin.newCameraConnected(camera.handle());
    for (const QWidget* widget : QApplication::allWidgets()) {
        EXPECT_NE(widget->objectName(), "btnToF3D");
    }
}

TEST_F(ToFPlugin, CameraThatConnectsEnablesTheActions) {
    ASSERT_TRUE(plugin.init());
    FakeCamera camera({4, 13});
    app.activeView = 1;
    app.viewCameras[1] = camera.handle();
    ASSERT_EQ(enabled(), (QList<bool>{false, false, false}));
    plugin.newCameraConnected(camera.handle());
    EXPECT_EQ(enabled(), (QList<bool>{true, true, true}));
}

TEST_F(ToFPlugin, ToolButtonStartsItsCameraBeforeItOpensAnything) {
    ASSERT_TRUE(plugin.init());
    FakeCamera camera({4, 13});
    plugin.newCameraConnected(camera.handle());
    plugin.actions().setMessageFunction([](const SkToFMessage&) { return QMessageBox::Ok; });
    CkChain* chain = CkChainManager::instance()->createChain();
    auto* source = new FakeSource(FakeKind::AB);
    source->handles = {camera.handle()};
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    app.activeView = app.openImageView(source);
    const auto opened = [this] {
        return app.calls.filter(QRegularExpression("^(addMdi|openImage)View")).size();
    };
    for (const char* name : {"btnToF3D", "btnToFAllViews"}) {
        app.calls.clear();
        QList<qsizetype> openedAtStart;
        app.onStartAcquisition = [&](int, quint64) { openedAtStart << opened(); };
        app.cameraPanels.value(camera.handle())->findChild<QToolButton*>(QLatin1String(name))->click();
        EXPECT_EQ(openedAtStart, QList<qsizetype>{0}) << name;
        EXPECT_GT(opened(), 0) << name;
    }
    app.onStartAcquisition = nullptr;
    for (CkChain* running : CkChainManager::instance()->chains()) {
        CkChainManager::instance()->closeChain(running);
    }
}

TEST_F(ToFPlugin, ToolButtonStartsItsOwnCamera) {
    ASSERT_TRUE(plugin.init());
    FakeCamera camera({4, 13});
    plugin.newCameraConnected(camera.handle());
    app.calls.clear();
    app.cameraPanels.value(camera.handle())->findChild<QToolButton*>("btnToF3D")->click();
    app.cameraPanels.value(camera.handle())->findChild<QToolButton*>("btnToFAllViews")->click();
    const QString started = QStringLiteral("startAcquisition 1 %1").arg(quint64(quintptr(camera.handle())));
    EXPECT_EQ(app.calls, (QStringList{started, started}));
    QObject noButton;
    CkToFPlugin::startCameraAcquitionFromButton(&noButton);
    CkToFPlugin::startCameraAcquitionFromButton(nullptr);
    EXPECT_EQ(app.calls.size(), 2);
}

/// A frame of float phase shifts.
std::unique_ptr<CkImageData> frame() {
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{"Phase shift", "Confidence"};
    return makeFrame(SkPicBufInfo::of(8, 8, 2, EkImageDataType::Float32, 32), metadata);
}

TEST_F(ToFPlugin, FramesReachTheViewsOfTheirOwnView) {
    ASSERT_TRUE(plugin.init());
    CkMdiView first;
    CkMdiView second;
    openToF3dViews(first, 1);
    openToF3dViews(second, 1);
    const auto views = plugin.actions().views();
    ASSERT_EQ(views.size(), 2);
    int toFirst = 0;
    int toSecond = 0;
    QObject::connect(views[0], &CkMdiView::receivedFrame, [&toFirst](qint32) { ++toFirst; });
    QObject::connect(views[1], &CkMdiView::receivedFrame, [&toSecond](qint32) { ++toSecond; });
    const auto data = frame();
    plugin.viewGotNewImage(first.viewId(), data.get());
    EXPECT_EQ(toFirst, 1);
    EXPECT_EQ(toSecond, 0);
    plugin.viewGotNewImage(first.viewId(), nullptr);
    EXPECT_EQ(toFirst, 1);
}

TEST_F(ToFPlugin, FramesAreHeldToTheRefreshLimit) {
    ASSERT_TRUE(plugin.init());
    app.store(QStringLiteral("ToF.RegulateInputFps"), true);
    app.store(QStringLiteral("ToF.MaxInputFps"), 0.0001F);
    CkMdiView shown;
    openToF3dViews(shown, 1);
    CkToF3DMdiView* view = plugin.actions().views().first();
    const auto first = frame();
    first->picBuf().additionalData.frameNumber = 1;
    plugin.viewGotNewImage(shown.viewId(), first.get());
    ASSERT_NE(view->currentImage(), nullptr);
    ASSERT_EQ(view->currentImage()->frameId(), 1);
    QTest::qWait(2); // within the same millisecond there is no limit
    const auto second = frame();
    second->picBuf().additionalData.frameNumber = 2;
    plugin.viewGotNewImage(shown.viewId(), second.get());
    EXPECT_EQ(view->currentImage()->frameId(), 1);
}

TEST_F(ToFPlugin, ClosingRemovesAThreeDViewOnceAndOthersNever) {
    ASSERT_TRUE(plugin.init());
    CkMdiView shown;
    openToF3dViews(shown, 2);
    ASSERT_EQ(plugin.actions().views().size(), 2);
    plugin.viewAboutToClose(shown.viewId());
    EXPECT_EQ(plugin.actions().views().size(), 2);
    const int closing = plugin.actions().views()[0]->viewId();
    plugin.viewAboutToClose(closing);
    ASSERT_EQ(plugin.actions().views().size(), 1);
    plugin.viewAboutToClose(closing);
    EXPECT_EQ(plugin.actions().views().size(), 1);
}

TEST_F(ToFPlugin, ViewThatClosesWhileAFrameIsOnItsWayIsNotTouchedAgain) {
    ASSERT_TRUE(plugin.init());
    CkMdiView shown;
    openToF3dViews(shown, 2);
    const auto views = plugin.actions().views();
    ASSERT_EQ(views.size(), 2);
    const int second = views[1]->viewId();
    QObject::connect(views[0], &CkMdiView::receivedFrame, [this, second](qint32) {
        plugin.viewAboutToClose(second);
        app.closeView(second);
    });
    const auto data = frame();
    plugin.viewGotNewImage(shown.viewId(), data.get());
    EXPECT_TRUE(views[1].isNull());
    EXPECT_EQ(plugin.actions().views().size(), 1);
}

} // namespace
