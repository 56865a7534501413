// Every shortcut of the window, with the focus in every kind of view and panel, triggers exactly one entry.

#include "tests/host/viewer/ViewerBlocks.h"
#include "tests/host/viewer/playback/RecordingViewFixture.h"

#include "host/viewer/panels/log/CkLogPanel.h"
#include "host/viewer/picture/CkImageCanvas.h"

#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcutEvent>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>
#include <QWindow>

namespace {

/// Records which entries a key triggers, and suppresses their actions, some of which close the window.
class ShortcutCatcher : public QObject {
public:
    ShortcutCatcher() { QCoreApplication::instance()->installEventFilter(this); }

    QList<QObject*> reached;
    bool ambiguous = false;

    void clear() {
        reached.clear();
        ambiguous = false;
    }

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override {
        if (pEvent->type() != QEvent::Shortcut) {
            return false;
        }
        reached.append(pWatched);
        ambiguous = ambiguous || static_cast<QShortcutEvent*>(pEvent)->isAmbiguous();
        return true;
    }
};

enum class EkFocus { View, Panel, Field };

class Shortcuts : public RecordingViewFixture {
protected:
    void SetUp() override {
        RecordingViewFixture::SetUp();
        m_options.pluginPaths = QStringList{ZU_TOF_PLUGIN};
        makeRecording(path("a.tif"), 10);
        ASSERT_TRUE(start());
        window()->findChild<QDockWidget*>("dockRecordings")->show();
    }

    CkMdiView* scene() const {
        for (CkMdiView* view : area()->views()) {
            if (view->connectedViewId() >= 0) {
                return view;
            }
        }
        return nullptr;
    }

    /// A picture of a recording behind a block; the block is the one selected in the chain panel.
    CkImageView* openRecording() const {
        EXPECT_TRUE(openFile(path("a.tif")));
        EXPECT_TRUE(waitForShown(0));
        CkChain* chain = player()->chain();
        chain->stop();
        // The view moves to the new block.
        EXPECT_TRUE(CkChainManager::instance()->insertAfter(chain, new CkDemoBlock, player()));
        EXPECT_TRUE(chain->start());
        EXPECT_TRUE(waitForShown(0));
        return firstView();
    }

    /// Keys that work only in the views and the playback bar; elsewhere they are text.
    static bool isOfThePlayer(const QAction* action) {
        return action->shortcutContext() == Qt::WidgetWithChildrenShortcut;
    }
    /// Keys for editing text in a field.
    static bool isForEditing(const QKeySequence& key) {
        static const QList<QKeySequence::StandardKey> s_keys = {QKeySequence::SelectAll,
                                                                QKeySequence::Copy,
                                                                QKeySequence::Paste,
                                                                QKeySequence::Cut,
                                                                QKeySequence::Undo,
                                                                QKeySequence::Redo,
                                                                QKeySequence::MoveToEndOfLine,
                                                                QKeySequence::MoveToStartOfLine,
                                                                QKeySequence::DeleteEndOfLine,
                                                                QKeySequence::Delete};
        return std::any_of(s_keys.begin(), s_keys.end(),
                           [&](auto standard) { return QKeySequence::keyBindings(standard).contains(key); });
    }

    bool isExpected(const QAction* action, EkFocus where) const {
        const bool reachable = !action->associatedObjects().isEmpty() && action->isEnabled() &&
                               action->isVisible() && !action->shortcut().isEmpty();
        return reachable && (where == EkFocus::View || !isOfThePlayer(action)) &&
               (where != EkFocus::Field || !isForEditing(action->shortcut())) &&
               (isOfThePlayer(action) || action->shortcutContext() == Qt::WindowShortcut);
    }

    template <typename Target>
    void press(Target* target, const char* name, EkFocus where) {
        int keys = 0;
        for (QAction* action : window()->findChildren<QAction*>()) {
            if (!isExpected(action, where)) {
                continue;
            }
            const QKeyCombination key = action->shortcut()[0];
            m_catcher.clear();
            QTest::keyClick(target, key.key(), key.keyboardModifiers());
            ++keys;
            EXPECT_FALSE(m_catcher.ambiguous) << name << ", " << qPrintable(action->shortcut().toString());
            EXPECT_EQ(m_catcher.reached, QList<QObject*>{action})
                << name << ", " << qPrintable(action->shortcut().toString() + ": " + action->text());
            m_tried.insert(action);
        }
        EXPECT_GT(keys, 25) << name;
    }

    void pressIn(QWidget* widget, const char* name, EkFocus where) {
        ASSERT_NE(widget, nullptr) << name;
        for (QWidget* parent = widget; parent != nullptr; parent = parent->parentWidget()) {
            if (auto* dock = qobject_cast<QDockWidget*>(parent)) {
                dock->show();
                dock->raise();
            }
        }
        // There may be no window manager to do it.
        QApplication::setActiveWindow(window());
        widget->setFocus();
        ASSERT_TRUE(waitFor([widget] { return QApplication::focusWidget() == widget; })) << name;
        press(widget, name, where);
    }

    template <typename Widget>
    Widget* in(const char* panel, const char* name = "") const {
        const auto* parent = window()->findChild<QWidget*>(QLatin1String(panel));
        EXPECT_NE(parent, nullptr) << panel;
        for (Widget* widget : parent->findChildren<Widget*>()) {
            const bool wanted = *name == '\0' || widget->objectName() == QLatin1String(name);
            if (wanted && widget->isEnabled() && widget->focusPolicy() != Qt::NoFocus) {
                return widget;
            }
        }
        return nullptr;
    }

    ShortcutCatcher m_catcher;
    QSet<QAction*> m_tried;
};

TEST_F(Shortcuts, ActInAPictureViewAndInEveryPanel) {
    CkImageView* view = openRecording();
    ASSERT_NE(openGrey(), nullptr);
    area()->setActiveView(view->viewId());
    pressIn(view->canvas(), "picture", EkFocus::View);
    pressIn(in<QSlider>("playbackBar", "playbackSlider"), "position", EkFocus::View);
    pressIn(in<QComboBox>("playbackBar", "playbackPace"), "pace", EkFocus::View);
    pressIn(in<QSpinBox>("playbackBar", "playbackNumber"), "frame number", EkFocus::Field);
    pressIn(in<QTreeWidget>("chainPanel"), "chain", EkFocus::Panel);
    pressIn(in<QTreeView>("logPanel"), "log", EkFocus::Panel);
    pressIn(in<QLineEdit>("logPanel", "logSearch"), "search", EkFocus::Field);
    pressIn(in<QComboBox>("lutPanel", "lutMap"), "colours", EkFocus::Panel);
    pressIn(in<QDoubleSpinBox>("lutPanel", "lutGamma"), "gamma", EkFocus::Field);
    pressIn(in<QPushButton>("cameraPanel", "btnStart"), "camera button", EkFocus::Panel);
    pressIn(in<QAbstractSpinBox>("cameraPanel"), "camera number", EkFocus::Field);
    pressIn(in<QComboBox>("cameraPanel"), "camera choice", EkFocus::Panel);
    pressIn(in<QComboBox>("qualityPanel"), "quality choice", EkFocus::Panel);
    // Entries that need a camera or a ToF picture.
    for (const char* name : {"actPlaybackPlay", "actPlaybackLoop", "actRecordSource"}) {
        EXPECT_TRUE(m_tried.contains(action(name))) << name;
    }
}

TEST_F(Shortcuts, ActInThePictureOfACamera) {
    void* camera = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    pressIn(firstView()->canvas(), "picture", EkFocus::View);
    for (const char* name : {"actStartCamera", "actPauseCamera", "actStepCamera", "actCloseCamera"}) {
        EXPECT_TRUE(m_tried.contains(window()->findChild<QAction*>(name))) << name;
    }
    cameras()->stop(camera);
}

TEST_F(Shortcuts, ActInA3dView) {
    void* camera = cameras()->openCamera("sim:wave", true);
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    window()->findChild<QToolButton*>("btnToF3D")->click();
    ASSERT_TRUE(waitFor([this] { return scene() != nullptr; }));
    // Software rendering would delay the keys.
    cameras()->stop(camera);
    area()->setActiveView(scene()->viewId());
    QWindow* surface = nullptr;
    for (QWindow* shown : QGuiApplication::allWindows()) {
        surface = shown->inherits("Qt3DExtras::Qt3DWindow") ? shown : surface;
    }
    ASSERT_NE(surface, nullptr);
    ASSERT_TRUE(waitFor([surface] { return surface->isExposed(); }));
    surface->requestActivate();
    ASSERT_TRUE(waitFor([surface] { return QGuiApplication::focusWindow() == surface; }));
    press(surface, "3D view", EkFocus::View);
}

} // namespace
