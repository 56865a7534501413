// The native window of the scene within the widgets around it: keys, drops, and the tool bar above it.

#include "tests/plugins/zplToF/view3d/ViewActionFixture.h"

#include <QAction>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QToolBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <Qt3DExtras/Qt3DWindow>

namespace {

/// A main window that accepts dropped files.
class Surroundings : public QWidget {
public:
    Surroundings() {
        new QVBoxLayout(this);
        resize(640, 480);
    }
    void dragEnterEvent(QDragEnterEvent* event) override {
        entered << event->position().toPoint();
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
    void dragMoveEvent(QDragMoveEvent* event) override { moved << event->position().toPoint(); }
    void dragLeaveEvent(QDragLeaveEvent*) override { ++left; }
    void dropEvent(QDropEvent* event) override {
        dropped << event->position().toPoint();
        files += event->mimeData()->urls();
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }

    QList<QPoint> entered;
    QList<QPoint> moved;
    QList<QPoint> dropped;
    QList<QUrl> files;
    int left = 0;
};

class ToF3DViewWindowTest : public ViewActionTest {
protected:
    ToF3DViewWindowTest() {
        m_files.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a.tif"))});
        m_pView = open().release();
        m_surroundings.layout()->addWidget(m_pView);
    }

    void showAll() {
        m_surroundings.show();
        ASSERT_TRUE(waitFor([this] { return m_pView->scene()->isDrawn(); }));
    }
    QWindow* window() const { return m_pView->scene()->window(); }
    /// The position of the scene's origin in the main window.
    QPoint offset() const { return m_surroundings.mapFromGlobal(window()->mapToGlobal(QPoint(0, 0))); }
    QAction* addKey(Qt::Key key, Qt::ShortcutContext context, int& count) {
        auto* action = new QAction(&m_surroundings);
        action->setShortcut(key);
        action->setShortcutContext(context);
        QObject::connect(action, &QAction::triggered, action, [&count] { ++count; });
        m_surroundings.addAction(action);
        return action;
    }
    void press(Qt::Key key) {
        QTest::mouseClick(window(), Qt::LeftButton, {}, QPoint(20, 20));
        QTest::keyClick(window(), key);
        letEventsHappen(20);
    }

    QMimeData m_files;
    Surroundings m_surroundings;
    CkToF3DMdiView* m_pView = nullptr;
};

// ---- keys
// --------------------------------------------------------------------------------------------------

TEST_F(ToF3DViewWindowTest, KeysOfTheWidgetsAroundWorkWithTheFocusInTheScene) {
    int played = 0;
    int stopped = 0;
    int everywhere = 0;
    addKey(Qt::Key_Space, Qt::WidgetWithChildrenShortcut, played);
    QAction* home = addKey(Qt::Key_Home, Qt::WidgetWithChildrenShortcut, stopped);
    addKey(Qt::Key_F9, Qt::ApplicationShortcut, everywhere);
    showAll();
    press(Qt::Key_Space);
    EXPECT_EQ(played, 1);
    press(Qt::Key_Home);
    EXPECT_EQ(stopped, 1);
    // Once, although both the shortcut map and the window see the key.
    press(Qt::Key_F9);
    EXPECT_EQ(everywhere, 1);
    home->setEnabled(false);
    press(Qt::Key_Home);
    EXPECT_EQ(stopped, 1);
    press(Qt::Key_Comma);
    EXPECT_EQ(played + stopped + everywhere, 3);
}

TEST_F(ToF3DViewWindowTest, AKeyOfTheWidgetsAroundMayCloseTheView) {
    auto* action = new QAction(&m_surroundings);
    action->setShortcut(Qt::Key_End);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    const QPointer<CkToF3DMdiView> view(m_pView);
    QObject::connect(action, &QAction::triggered, action, [&view] { delete view; });
    m_surroundings.addAction(action);
    showAll();
    press(Qt::Key_Space);
    EXPECT_NE(view, nullptr);
    QTest::keyClick(window(), Qt::Key_End);
    EXPECT_TRUE(waitFor([&view] { return view == nullptr; }));
}

// ---- drops
// -------------------------------------------------------------------------------------------------

TEST_F(ToF3DViewWindowTest, FilesDroppedOnTheSceneReachTheWindowAroundIt) {
    m_surroundings.setAcceptDrops(true);
    showAll();
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(QPoint(30, 40), offered, &m_files, Qt::LeftButton, {});
    enter.ignore();
    QCoreApplication::sendEvent(window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
    EXPECT_EQ(m_surroundings.entered, QList<QPoint>{offset() + QPoint(30, 40)});

    QDragMoveEvent move(QPoint(31, 42), offered, &m_files, Qt::LeftButton, {});
    move.setDropAction(Qt::CopyAction);
    move.accept();
    QCoreApplication::sendEvent(window(), &move);
    EXPECT_TRUE(move.isAccepted());
    EXPECT_EQ(move.dropAction(), Qt::CopyAction);
    EXPECT_EQ(m_surroundings.moved, QList<QPoint>{offset() + QPoint(31, 42)});

    QDropEvent drop(QPointF(50, 60), offered, &m_files, Qt::LeftButton, {});
    drop.ignore();
    QCoreApplication::sendEvent(window(), &drop);
    EXPECT_TRUE(drop.isAccepted());
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
    EXPECT_EQ(m_surroundings.dropped, QList<QPoint>{offset() + QPoint(50, 60)});
    EXPECT_EQ(m_surroundings.files, m_files.urls());

    // Another drag, which leaves again.
    QCoreApplication::sendEvent(window(), &enter);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(window(), &leave);
    EXPECT_EQ(m_surroundings.left, 1);
}

TEST_F(ToF3DViewWindowTest, WhereNobodyTakesFilesADropIsRefused) {
    showAll();
    QDragEnterEvent enter(QPoint(30, 40), Qt::CopyAction, &m_files, Qt::LeftButton, {});
    enter.accept();
    QCoreApplication::sendEvent(window(), &enter);
    EXPECT_FALSE(enter.isAccepted());
    QDropEvent drop(QPointF(30, 40), Qt::CopyAction, &m_files, Qt::LeftButton, {});
    drop.accept();
    QCoreApplication::sendEvent(window(), &drop);
    EXPECT_FALSE(drop.isAccepted());
    EXPECT_TRUE(m_surroundings.files.isEmpty());
}

// ---- tool bar
// ----------------------------------------------------------------------------------------------

TEST_F(ToF3DViewWindowTest, WhateverDoesNotFitIsBehindTheButtonOfTheToolBar) {
    useLens(0.0F);
    m_source.shown = phaseOf(kPi);
    const auto view = open();
    show(*view, QSize(900, 300));
    const auto* toolBar = view->findChild<QToolBar*>();
    auto* button = toolBar->findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button"));
    ASSERT_NE(button, nullptr);
    EXPECT_FALSE(button->isVisible());
    bool onlyTheTextWasBehind = false;
    for (int width = 900; width >= 192; width -= 12) {
        view->resize(width, 300);
        ASSERT_TRUE(waitFor([&] { return toolBar->width() == width; }));
        QStringList missing;
        for (QAction* item : toolBar->actions()) {
            const QWidget* widget = toolBar->widgetForAction(item);
            if (!item->isSeparator() && !item->text().isEmpty() && !widget->isVisible()) {
                missing << item->text();
                ASSERT_NE(button->menu(), nullptr);
                EXPECT_TRUE(button->menu()->actions().contains(item)) << width << qPrintable(item->text());
            }
        }
        EXPECT_EQ(button->isVisible(), !missing.isEmpty()) << width;
        EXPECT_TRUE(missing.isEmpty() || button->isEnabled()) << width;
        onlyTheTextWasBehind =
            onlyTheTextWasBehind ||
            missing == QStringList{QStringLiteral("Width: 0.1 m Height: 0.1 m Depth: 5.0 m")};
    }
    EXPECT_TRUE(onlyTheTextWasBehind);

    // There the labels can be read and the menus opened.
    letEventsHappen(20);
    button->menu()->popup(QPoint(10, 10));
    ASSERT_TRUE(waitFor([&] { return button->menu()->isVisible(); }));
    QStringList texts;
    for (const QLabel* label : button->menu()->findChildren<QLabel*>()) {
        if (label->isVisible()) {
            texts << label->text();
        }
    }
    EXPECT_EQ(texts, QStringList{QStringLiteral("Width: 0.1 m Height: 0.1 m Depth: 5.0 m")});
    EXPECT_LE(button->menu()->findChildren<QLabel*>().size(), 2);
    button->menu()->hide();
    view->resize(193, 300);
    give(*view, TestFrame::generic(8, 6, [](int x, int) { return float(x); }));
    for (const QLabel* label : button->menu()->findChildren<QLabel*>()) {
        EXPECT_EQ(label->text(), QString());
    }
}

} // namespace
