#include "host/viewer/panels/quality/CkQualityPanel.h"
#include "host/viewer/shell/CkShortcutsDialog.h"
#include "tests/host/viewer/ViewerControls.h"
#include "zuCore/CkImageData.h"

#include <QAction>
#include <QClipboard>
#include <QDockWidget>
#include <QGuiApplication>
#include <QSet>
#include <QShortcut>
#include <QToolButton>
#include <QTreeWidget>

// Every control of the window can be reached by a key, and tells the reason when it is disabled.

namespace {

class Controls : public ControlsFixture {};

TEST_F(Controls, EveryMenuEntryHasAShortcut) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForFrame(firstView()));
    int checked = 0;
    for (const SkEntry& entry : menuEntries()) {
        if (entry.action->menu() != nullptr || isListed(entry)) {
            continue;
        }
        ++checked;
        EXPECT_FALSE(entry.action->shortcut().isEmpty()) << qPrintable(entry.path);
    }
    EXPECT_GT(checked, 30);
}

TEST_F(Controls, NoTwoShortcutsAreInConflict) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    m_options.cameras = QStringList{"sim:grey", "sim:wave"};
    ASSERT_TRUE(start());
    menuEntries();
    QHash<QKeySequence, QString> taken;
    for (const QAction* action : window()->findChildren<QAction*>()) {
        // Those of a single widget work only while it has the focus.
        const bool everywhere = action->shortcutContext() == Qt::WindowShortcut ||
                                action->shortcutContext() == Qt::ApplicationShortcut;
        for (const QKeySequence& key : action->shortcuts()) {
            if (everywhere && !isOfTheToolkit(action)) {
                EXPECT_FALSE(taken.contains(key)) << qPrintable(key.toString()) << ": "
                                                  << qPrintable(action->text() + ", " + taken.value(key));
                taken.insert(key, action->text());
            }
        }
    }
    for (const QShortcut* shortcut : window()->findChildren<QShortcut*>()) {
        EXPECT_FALSE(taken.contains(shortcut->key())) << qPrintable(shortcut->key().toString());
        taken.insert(shortcut->key(), "shortcut");
    }
    EXPECT_GT(taken.size(), 30);
}

TEST_F(Controls, TheHelpListsEveryShortcutOfTheMenus) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    CkShortcutsDialog dialog(window()->menuBar());
    QStringList listed;
    const auto* tree = dialog.findChild<QTreeWidget*>();
    ASSERT_NE(tree, nullptr);
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        listed.append(tree->topLevelItem(i)->text(0));
    }
    for (const SkEntry& entry : menuEntries()) {
        if (!entry.action->shortcut().isEmpty()) {
            EXPECT_TRUE(listed.contains(entry.action->shortcut().toString(QKeySequence::NativeText)))
                << qPrintable(entry.path);
        }
    }
}

TEST_F(Controls, NoTwoEntriesOfAMenuShareALetter) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    QHash<QString, QString> taken;
    QList<SkEntry> entries = menuEntries();
    for (const QAction* action : window()->menuBar()->actions()) {
        entries.append({action, action->text(), QString()});
    }
    for (const SkEntry& entry : entries) {
        const QString text = entry.action->text();
        const qsizetype at = text.indexOf('&');
        if (at < 0) {
            continue;
        }
        const QString key = entry.path.left(entry.path.size() - text.size()) + text[at + 1].toLower();
        EXPECT_FALSE(taken.contains(key)) << qPrintable(entry.path + " and " + taken.value(key));
        taken.insert(key, text);
    }
}

TEST_F(Controls, WhatIsDisabledSaysWhyInEveryState) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    ASSERT_TRUE(start());
    expectReasons("empty");
    void* camera = openGrey();
    expectReasons("camera open");
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    expectReasons("camera runs");
    cameras()->stop(camera);
    expectReasons("camera stopped");
    ASSERT_TRUE(area()->closeView(firstView()->viewId()));
    expectReasons("view closed");
    // A view that is no picture view.
    area()->addView(new CkMdiView);
    expectReasons("other view");
    cameras()->closeCamera(camera);
    expectReasons("camera closed");
}

TEST_F(Controls, PictureMenuWorksOnTheActiveView) {
    m_options.cameras = QStringList{"sim:wave"};
    ASSERT_TRUE(start());
    CkImageView* view = firstView();
    ASSERT_TRUE(waitForFrame(view));
    view->shownImage();
    const auto trigger = [this](const char* text) {
        for (const SkEntry& entry : menuEntries()) {
            if (entry.path == QLatin1String("P&icture > ") + QLatin1String(text)) {
                ASSERT_TRUE(entry.action->isEnabled()) << text;
                const_cast<QAction*>(entry.action)->trigger();
                return;
            }
        }
        ADD_FAILURE() << text;
    };
    EXPECT_TRUE(view->autoContrast());
    trigger("&Automatic Contrast");
    EXPECT_FALSE(view->autoContrast());
    trigger("Full &Range");
    EXPECT_EQ(view->window(), PictureColours::fullRange(view->currentImage()->picBuf()));
    trigger("&Automatic Contrast");
    EXPECT_TRUE(view->autoContrast());
    trigger("&Mark Saturated");
    EXPECT_TRUE(view->marksSaturated());
    trigger("&Legend");
    EXPECT_FALSE(view->showsLegend());
    ASSERT_EQ(view->channelCount(), 2);
    trigger("&Next Channel");
    EXPECT_EQ(view->channel(), 1);
    trigger("&Next Channel");
    EXPECT_EQ(view->channel(), 0);
    trigger("&Previous Channel");
    EXPECT_EQ(view->channel(), 1);
}

TEST_F(Controls, KeysOfPanelsBringThemToTheFrontFirst) {
    ASSERT_TRUE(start());
    const auto find = [this](const char* name) {
        auto* action = window()->findChild<QAction*>(name);
        EXPECT_NE(action, nullptr) << name;
        return action;
    };
    QAction* colours = find("act_dockColours");
    QAction* quality = find("act_dockQuality");
    const auto* panel = window()->findChild<QDockWidget*>("dockQuality");
    const auto inFront = [](const QDockWidget* dock) { return !dock->visibleRegion().isEmpty(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return colours->isChecked(); }, 30'000));
    ASSERT_FALSE(inFront(panel));
    EXPECT_FALSE(quality->isChecked());
    // Its tab is behind that of the colours.
    quality->trigger();
    EXPECT_TRUE(QTest::qWaitFor([&] { return inFront(panel); }, 30'000));
    EXPECT_TRUE(quality->isChecked());
    EXPECT_FALSE(colours->isChecked());
    EXPECT_FALSE(window()->findChild<QDockWidget*>("dockColours")->isHidden());
    quality->trigger();
    EXPECT_TRUE(panel->isHidden());
    EXPECT_FALSE(quality->isChecked());
    quality->trigger();
    EXPECT_TRUE(QTest::qWaitFor([&] { return inFront(panel); }, 30'000));
}

TEST_F(Controls, TheQualityPanelIsWorkedFromTheMenu) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForFrame(firstView()));
    auto* draw = window()->findChild<QAction*>("actQualityDraw");
    auto* copy = window()->findChild<QAction*>("actQualityCopy");
    auto* restart = window()->findChild<QAction*>("actQualityRestart");
    const auto* panel = window()->findChild<CkQualityPanel*>();
    ASSERT_TRUE(draw != nullptr && copy != nullptr && restart != nullptr && panel != nullptr);
    EXPECT_FALSE(copy->isEnabled());
    EXPECT_EQ(copy->toolTip(), "The panel Quality is hidden");
    ASSERT_TRUE(draw->isEnabled()) << qPrintable(draw->toolTip());
    draw->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return panel->measuredView() == firstView(); }, 30'000));
    EXPECT_TRUE(panel->findChild<QToolButton*>("qualityDraw")->isChecked());
    ASSERT_TRUE(QTest::qWaitFor([&] { return copy->isEnabled() && panel->values().frames >= 3; }, 30'000));
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->setText("before");
    // A Wayland compositor without a keyboard has no clipboard.
    const bool bClipboard = clipboard->text() == "before";
    EXPECT_TRUE(bClipboard || QGuiApplication::platformName() == "wayland");
    copy->trigger();
    EXPECT_EQ(clipboard->text().startsWith("Mean\t"), bClipboard);
    cameras()->stop(CkCameraManager::instance()->openedCameras().first());
    restart->trigger();
    EXPECT_TRUE(panel->history().values().empty());
    EXPECT_FALSE(copy->isEnabled());
    draw->trigger();
    EXPECT_FALSE(panel->findChild<QToolButton*>("qualityDraw")->isChecked());
}

} // namespace
