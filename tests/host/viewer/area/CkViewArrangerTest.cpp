#include "host/viewer/area/CkViewArranger.h"

#include "host/viewer/area/CkViewWindow.h"

#include <QMdiArea>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class ViewArranger : public testing::Test {
protected:
    void SetUp() override {
        m_area.resize(600, 400);
        m_area.show();
    }

    CkViewWindow* addWindow(int iViewId) {
        auto* window = new CkViewWindow(iViewId);
        window->setWidget(new QWidget);
        m_area.addSubWindow(window);
        window->setGeometry(kUntouched);
        window->show();
        return window;
    }

    static constexpr QRect kUntouched{10, 20, 210, 170};

    QMdiArea m_area;
    CkViewArranger m_arranger{&m_area};
};

TEST_F(ViewArranger, ArrangesFromTheEventLoopAndOnlyWhileAutomatic) {
    const CkViewWindow* const window = addWindow(1);
    m_arranger.arrangeLater();
    EXPECT_EQ(window->geometry(), kUntouched);
    m_arranger.setAutomatic(false);
    QTest::qWait(0);
    EXPECT_EQ(window->geometry(), kUntouched);
    m_arranger.arrangeLater();
    QTest::qWait(0);
    EXPECT_EQ(window->geometry(), kUntouched);
    m_arranger.setAutomatic(true);
    QTest::qWait(0);
    EXPECT_EQ(window->geometry(), QRect(QPoint(0, 0), m_area.viewport()->size()));
}

TEST_F(ViewArranger, TilesInTheOrderOfOpeningWhicheverIsActive) {
    const CkViewWindow* const first = addWindow(1);
    const CkViewWindow* const second = addWindow(2);
    m_area.setActiveSubWindow(addWindow(3));
    m_area.setActiveSubWindow(m_area.subWindowList().at(1));
    m_arranger.tile();
    EXPECT_EQ(first->pos(), QPoint(0, 0));
    EXPECT_EQ(second->y(), 0);
    EXPECT_EQ(second->x(), first->width());
}

TEST_F(ViewArranger, AMaximizedWindowStaysSoUntilTilingIsRequested) {
    CkViewWindow* const window = addWindow(1);
    addWindow(2);
    window->showMaximized();
    m_arranger.arrangeLater();
    QTest::qWait(0);
    EXPECT_TRUE(window->isMaximized());
    m_arranger.tile();
    EXPECT_FALSE(window->isMaximized());
}

TEST_F(ViewArranger, MinimizedWindowsTakeNoPlace) {
    const CkViewWindow* const shown = addWindow(1);
    addWindow(2)->showMinimized();
    m_arranger.tile();
    EXPECT_EQ(shown->geometry(), QRect(QPoint(0, 0), m_area.viewport()->size()));
}

TEST_F(ViewArranger, CascadingSwitchesAutomaticTilingOff) {
    addWindow(1);
    m_arranger.arrangeLater();
    m_arranger.cascade();
    EXPECT_FALSE(m_arranger.isAutomatic());
    const QRect cascaded = m_area.subWindowList().first()->geometry();
    QTest::qWait(0);
    EXPECT_EQ(m_area.subWindowList().first()->geometry(), cascaded);
}

} // namespace
