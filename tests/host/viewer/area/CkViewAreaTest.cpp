#include "host/viewer/area/CkViewArea.h"

#include "tests/host/viewer/ViewerPictures.h"
#include "zuCoreGui/CkMdiView.h"

#include <QAction>
#include <QImage>
#include <QMdiSubWindow>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class CkAreaView : public CkMdiView {
public:
    explicit CkAreaView(int iConnected = -1, int iCaps = 0) : m_iConnected(iConnected), m_iCaps(iCaps) {}
    int viewCaps() const override { return m_iCaps; }
    int connectedViewId() const override { return m_iConnected; }

private:
    int m_iConnected;
    int m_iCaps;
};

TEST(ViewArea, ActiveViewFollowsOpeningClosingAndChoice) {
    CkViewArea area;
    area.resize(800, 600);
    area.show();
    QSignalSpy active(&area, &CkViewArea::activeViewChanged);
    auto* first = new CkAreaView;
    auto* second = new CkAreaView;
    area.addView(first);
    area.addView(second);
    EXPECT_EQ(area.activeViewId(), second->viewId());
    area.setActiveView(first->viewId());
    EXPECT_EQ(area.activeView(), first);
    area.setActiveView(987654);
    EXPECT_EQ(area.activeView(), first);
    area.activateNextView();
    EXPECT_EQ(area.activeView(), second);
    const int gone = second->viewId();
    ASSERT_TRUE(area.closeView(gone));
    EXPECT_EQ(area.activeView(), first);
    EXPECT_FALSE(area.closeView(gone));
    ASSERT_TRUE(area.closeView(first->viewId()));
    EXPECT_EQ(area.activeViewId(), -1);
    EXPECT_EQ(active.last().first().toInt(), -1);
    EXPECT_TRUE(area.views().isEmpty());
}

TEST(ViewArea, ViewIsStillThereWhenItsClosingIsAnnounced) {
    CkViewArea area;
    auto* view = new CkAreaView;
    const int id = view->viewId();
    area.addView(view);
    bool alive = false;
    QObject::connect(&area, &CkViewArea::viewAboutToClose, &area,
                     [&](int iViewId) { alive = iViewId == id && area.view(id) == view; });
    QSignalSpy deleted(view, &QObject::destroyed);
    area.closeView(id);
    EXPECT_TRUE(alive);
    EXPECT_EQ(area.view(id), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(deleted.size(), 1);
}

TEST(ViewArea, FollowersCloseWithTheViewTheyFollow) {
    CkViewArea area;
    auto* leader = new CkAreaView;
    area.addView(leader);
    auto* follower = new CkAreaView(leader->viewId());
    auto* stranger = new CkAreaView;
    area.addView(follower);
    area.addView(stranger);
    QSignalSpy closing(&area, &CkViewArea::viewAboutToClose);
    const int followerId = follower->viewId();
    const int leaderId = leader->viewId();
    ASSERT_TRUE(area.closeView(leaderId));
    ASSERT_EQ(closing.size(), 2);
    EXPECT_EQ(closing[0].first().toInt(), followerId);
    EXPECT_EQ(closing[1].first().toInt(), leaderId);
    EXPECT_EQ(area.views(), QList<CkMdiView*>{stranger});
}

TEST(ViewArea, SceneGetsMoreWidthThanATallPictureBesideIt) {
    CkViewArea area;
    area.resize(1000, 700);
    area.show();
    auto* picture = new CkFedImageView;
    picture->feed(makeFrame<quint8>(EkImageDataType::UInt8, 64, 192, 1, 8,
                                    [](quint32 x, quint32, quint32) { return quint8(x); }));
    area.addView(picture);
    auto* scene = new CkAreaView(picture->viewId());
    area.addView(scene);
    area.tile();
    const QRect left = picture->parentWidget()->geometry();
    const QRect right = scene->parentWidget()->geometry();
    EXPECT_EQ(left.left(), 0);
    EXPECT_EQ(left.right() + 1, right.left());
    EXPECT_EQ(right.right() + 1, area.viewport()->width());
    EXPECT_GT(right.width(), 3 * left.width() / 2);
    // The picture keeps at least three tenths of the width.
    EXPECT_GE(left.width(), 300);
}

TEST(ViewArea, KeysOfTheAreaWorkInAViewThatIsAWindowOfItsOwn) {
    QWidget mainWindow;
    CkViewArea area(&mainWindow);
    QAction play(QStringLiteral("Play"), nullptr);
    play.setShortcut(Qt::Key_Space);
    play.setShortcutContext(Qt::WidgetWithChildrenShortcut);
    area.addAction(&play);
    QSignalSpy played(&play, &QAction::triggered);
    mainWindow.show();
    auto* own = new CkAreaView(-1, CkMdiView::NativeWindowCap);
    area.addView(own);
    own->activateWindow();
    own->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([own] { return own->hasFocus(); }, 30000));
    QTest::keyClick(own, Qt::Key_Space);
    EXPECT_EQ(played.count(), 1);
    own->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(ViewArea, ViewWithANativeSurfaceGetsAWindowOfItsOwn) {
    QWidget mainWindow;
    CkViewArea area(&mainWindow);
    mainWindow.show();
    auto* plain = new CkAreaView;
    area.addView(plain);
    auto* own = new CkAreaView(-1, CkMdiView::NativeWindowCap);
    area.addView(own);
    EXPECT_TRUE(own->isWindow());
    EXPECT_TRUE(own->isVisible());
    EXPECT_EQ(area.subWindowList().size(), 1);
    EXPECT_EQ(area.activeView(), own);
    // The user closes its window.
    QSignalSpy closing(&area, &CkViewArea::viewAboutToClose);
    const int id = own->viewId();
    own->close();
    EXPECT_EQ(closing.size(), 1);
    EXPECT_EQ(area.view(id), nullptr);
    EXPECT_EQ(area.activeView(), plain);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(ViewArea, TheTextOfAnEmptyAreaFitsANarrowOne) {
    CkViewArea area;
    area.resize(220, 500);
    area.show();
    const QImage shot = area.viewport()->grab().toImage();
    const QRgb background = shot.pixel(0, 0);
    int letters = 0;
    for (int y = 0; y < shot.height(); ++y) {
        EXPECT_EQ(shot.pixel(1, y), background) << y;
        EXPECT_EQ(shot.pixel(shot.width() - 2, y), background) << y;
        for (int x = 0; x < shot.width(); ++x) {
            letters += int(shot.pixel(x, y) != background);
        }
    }
    EXPECT_GT(letters, 500);
}

} // namespace
