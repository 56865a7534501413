#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/shell/CkRateGraph.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "tests/support/ModalDriver.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMimeData>
#include <QSettings>
#include <QTest>
#include <QUrl>
#include <functional>

// How views and window are arranged, and the graph in the status bar.

namespace {

class WindowArrangement : public ViewerFixture {
protected:
    QAction* byShortcut(const QKeySequence& key) const {
        for (QAction* action : window()->findChildren<QAction*>()) {
            if (action->shortcut() == key) {
                return action;
            }
        }
        return nullptr;
    }
};

TEST_F(WindowArrangement, CascadeLaysViewsOverEachOtherAndTheyStaySo) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    void* camera = CkCameraManager::instance()->openedCameras().first();
    cameras()->openView(camera);
    cameras()->openView(camera);
    QAction* cascade = byShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    ASSERT_NE(cascade, nullptr);
    cascade->trigger();
    EXPECT_FALSE(area()->arrangesItself());
    // Opening one more view does not tile the others.
    cameras()->openView(camera);
    QCoreApplication::processEvents();
    QList<QMdiSubWindow*> windows = area()->subWindowList(QMdiArea::CreationOrder);
    ASSERT_EQ(windows.size(), 4);
    windows.removeLast();
    for (qsizetype i = 0; i < windows.size(); ++i) {
        for (qsizetype j = i + 1; j < windows.size(); ++j) {
            EXPECT_TRUE(windows[i]->geometry().intersects(windows[j]->geometry())) << i << " and " << j;
            EXPECT_NE(windows[i]->pos(), windows[j]->pos()) << i << " and " << j;
        }
    }
    // Conversely, tiled views share the area without overlap.
    QAction* tile = byShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
    ASSERT_NE(tile, nullptr);
    tile->trigger();
    EXPECT_FALSE(windows[0]->geometry().intersects(windows[1]->geometry()));
    EXPECT_FALSE(windows[0]->geometry().intersects(windows[2]->geometry()));
}

// The program that files come from deletes them after a move.
TEST_F(WindowArrangement, DroppedFilesAreCopiedNeverMoved) {
    ASSERT_TRUE(start());
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("a.tif")))});
    QDragEnterEvent both(QPoint(10, 10), Qt::MoveAction | Qt::CopyAction, &files, Qt::LeftButton, {});
    both.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(window(), &both);
    EXPECT_TRUE(both.isAccepted());
    EXPECT_EQ(both.dropAction(), Qt::CopyAction);
    QDragEnterEvent moveOnly(QPoint(10, 10), Qt::MoveAction, &files, Qt::LeftButton, {});
    QCoreApplication::sendEvent(window(), &moveOnly);
    EXPECT_FALSE(moveOnly.isAccepted());

    // Not a local file, so that nothing is opened.
    files.setUrls({QUrl(QStringLiteral("http://localhost/a.tif"))});
    QDropEvent drop(QPointF(10, 10), Qt::MoveAction | Qt::CopyAction, &files, Qt::LeftButton, {});
    drop.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(window(), &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
}

TEST_F(WindowArrangement, FullScreenIsEnteredAndLeftByItsAction) {
    ASSERT_TRUE(start());
    QAction* full = byShortcut(Qt::Key_F11);
    ASSERT_NE(full, nullptr);
    ASSERT_FALSE(window()->isFullScreen());
    full->trigger();
    EXPECT_TRUE(QTest::qWaitFor([this] { return window()->isFullScreen(); }, 30'000));
    EXPECT_TRUE(full->isChecked());
    full->trigger();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !window()->isFullScreen(); }, 30'000));
    EXPECT_FALSE(full->isChecked());
}

// Number of pixels in a column that match the colour, without the frame.
int pixelsLike(const QImage& picture, int column, bool (*matches)(const QColor&)) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        count += matches(picture.pixelColor(column, y)) ? 1 : 0;
    }
    return count;
}

TEST(RateGraph, ABarIsAsHighAsItsShareOfTheHighestSecond) {
    CkRateGraph graph;
    graph.resize(graph.sizeHint());
    ASSERT_EQ(graph.height(), 18);
    // 16 pixels represent the 20 frames of the last second; the second before has a quarter of them.
    graph.add(5.0, 0.0);
    graph.add(15.0, 5.0);
    QImage picture(graph.size(), QImage::Format_RGB32);
    graph.render(&picture);
    const auto blue = [](const QColor& c) { return c.blue() > 180 && c.red() < 100; };
    const auto red = [](const QColor& c) { return c.red() > 180 && c.blue() < 100; };
    const int newest = 1 + 2 * (CkRateGraph::kSeconds - 1);
    // 16 * 15 / 20 = 12 and 16 * 5 / 20 = 4.
    EXPECT_EQ(pixelsLike(picture, newest, blue), 12);
    EXPECT_EQ(pixelsLike(picture, newest, red), 4);
    EXPECT_EQ(pixelsLike(picture, newest - 2, blue), 4);
    EXPECT_EQ(pixelsLike(picture, newest - 2, red), 0);
    EXPECT_EQ(pixelsLike(picture, newest - 4, blue), 0);
    graph.clear();
    graph.render(&picture);
    EXPECT_EQ(pixelsLike(picture, newest, blue), 0);
}

TEST_F(WindowArrangement, TheTextAboutAPixelDoesNotWidenTheWindow) {
    ASSERT_TRUE(start());
    const int before = window()->minimumSizeHint().width();
    auto* pixel = window()->findChild<QLabel*>("statusPixel");
    ASSERT_NE(pixel, nullptr);
    pixel->setText(QString(500, 'x'));
    QCoreApplication::processEvents();
    EXPECT_EQ(window()->minimumSizeHint().width(), before);
}

TEST_F(WindowArrangement, RecentFilesAreNamedWholeInTheMenu) {
    ASSERT_TRUE(start());
    ViewerSettings::open()->setValue(ViewerSettings::kRecentChainsKey, QStringList{"/left & right/a.tif"});
    const auto* recent = window()->findChild<QMenu*>("menuRecentChains");
    ASSERT_NE(recent, nullptr);
    emit window()->menu(IkAppDelegate::FileMenu)->aboutToShow();
    ASSERT_EQ(recent->actions().size(), 1);
    EXPECT_EQ(recent->actions().first()->text(), "/left && right/a.tif");
}

class OwnWindowView : public CkMdiView {
public:
    int viewCaps() const override { return NativeWindowCap; }
};

TEST_F(WindowArrangement, KeysOfTheMenusWorkInAViewWithAWindowOfItsOwn) {
    ASSERT_TRUE(start());
    auto* view = new OwnWindowView;
    area()->addView(view);
    ASSERT_TRUE(view->isWindow());
    // There may be no window manager to do it.
    QApplication::setActiveWindow(view);
    QTest::keyClick(view, Qt::Key_W, Qt::ControlModifier);
    EXPECT_TRUE(area()->views().isEmpty());
}

class SavedChain : public WindowArrangement {
protected:
    /// The content of the saved file when this happens while the dialog is open.
    QByteArray savedWhile(const std::function<void()>& what) {
        const QString path = m_folder.filePath("saved.zuchain");
        m_driver.expectWindow([what, path](QWidget* dialog) {
            what();
            dialog->findChild<QLineEdit*>("fileNameEdit")->setText(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        byShortcut(QKeySequence::Save)->trigger();
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    ModalDriver m_driver;
};

TEST_F(SavedChain, IsThatOfTheViewThatWasActiveWhenSavingBegan) {
    ASSERT_TRUE(start());
    openGrey();
    const int grey = area()->activeViewId();
    cameras()->openCamera("sim:wave", true);
    const int wave = area()->activeViewId();
    area()->setActiveView(grey);
    const QByteArray saved = savedWhile([this, wave] { area()->setActiveView(wave); });
    EXPECT_TRUE(saved.contains("sim:grey")) << saved.constData();
    EXPECT_FALSE(saved.contains("sim:wave")) << saved.constData();
    EXPECT_TRUE(m_driver.boxes.isEmpty());
}

TEST_F(SavedChain, IsNotAnotherOneWhenItHasBeenClosed) {
    ASSERT_TRUE(start());
    cameras()->openCamera("sim:wave", true);
    void* grey = openGrey();
    const QByteArray saved = savedWhile([this, grey] { cameras()->closeCamera(grey); });
    EXPECT_EQ(saved, QByteArray());
    ASSERT_EQ(m_driver.boxes.size(), 1);
    EXPECT_EQ(m_driver.boxes[0].text, "The chain has been closed in the meantime.");
}

} // namespace
