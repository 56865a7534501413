#include "tests/support/FakeAppDelegate.h"
#include "zuCoreGui/CkMdiView.h"

#include <gtest/gtest.h>

TEST(IkAppDelegateTest, IsNullOutsideAnApplicationAndAfterItsEnd) {
    EXPECT_EQ(IkAppDelegate::instance(), nullptr);
    {
        FakeAppDelegate delegate;
        EXPECT_EQ(IkAppDelegate::instance(), &delegate);
    }
    EXPECT_EQ(IkAppDelegate::instance(), nullptr);
}

TEST(IkAppDelegateTest, ALaterDelegateIsNotClearedByTheEndOfAnEarlierOne) {
    auto first = std::make_unique<FakeAppDelegate>();
    FakeAppDelegate second;
    first.reset();
    EXPECT_EQ(IkAppDelegate::instance(), &second);
}

TEST(FakeAppDelegateTest, HandsOutANewSettingsObjectAtEachCallAndCountsThem) {
    FakeAppDelegate delegate;
    QSettings* first = delegate.settings();
    QSettings* second = delegate.settings();
    EXPECT_NE(first, second);
    EXPECT_EQ(delegate.settingsAlive(), 2);
    first->setValue("ToF.BgColor", 0x102030U);
    delete first;
    delete second;
    EXPECT_EQ(delegate.settingsAlive(), 0);
    EXPECT_EQ(delegate.settingsHandedOut, 2);
    EXPECT_EQ(delegate.stored("ToF.BgColor").toUInt(), 0x102030U);
}

TEST(FakeAppDelegateTest, KnowsViewsUntilTheyAreDeleted) {
    FakeAppDelegate delegate;
    auto view = std::make_unique<CkMdiView>();
    const int iViewId = view->viewId();
    EXPECT_EQ(delegate.mdiView(iViewId), nullptr);
    delegate.registerView(view.get());
    EXPECT_EQ(delegate.mdiView(iViewId), view.get());
    view.reset();
    EXPECT_EQ(delegate.mdiView(iViewId), nullptr);
}
