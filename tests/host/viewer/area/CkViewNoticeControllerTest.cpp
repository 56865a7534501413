#include "host/viewer/area/CkViewNoticeController.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "tests/host/viewer/panels/chain/ChainPanelFixture.h"

#include <QSignalSpy>

namespace {

TEST_F(ChainPanel, AFailingBlockIsReportedInItsViewAndTheOldPictureIsDarkened) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    CkImageView* view = firstView();
    QSignalSpy frames(view, &CkMdiView::receivedFrame);
    ASSERT_TRUE(QTest::qWaitFor([&] { return frames.size() >= 2; }, 20'000));
    const auto notice = [&] { return area()->notices()->notice(view->viewId()); };
    const QImage bright = view->canvas()->grab().toImage();
    EXPECT_EQ(notice(), "");
    EXPECT_FALSE(view->canvas()->isDimmed());
    block->m_bFail = true;
    ASSERT_TRUE(QTest::qWaitFor([&] { return notice() == "Demo 5: The demo block fails."; }, 20'000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->canvas()->isDimmed(); }, 20'000));
    EXPECT_EQ(view->findChild<QLabel*>("viewNotice")->text(), notice());
    const QImage dark = view->canvas()->grab().toImage();
    const auto light = [](const QImage& image) { return qGray(image.pixel(image.rect().center())); };
    EXPECT_LT(light(dark), std::max(light(bright), 100));
    block->m_bFail = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice().isEmpty() && !view->canvas()->isDimmed(); }, 20'000));
    EXPECT_FALSE(view->findChild<QLabel*>("viewNotice")->isVisible());
    // The same for a block that is switched off.
    block->setState(CkChainable::Blocked);
    EXPECT_TRUE(QTest::qWaitFor([&] { return notice() == "\"Demo 5\" is switched off."; }, 20'000));
    EXPECT_TRUE(view->canvas()->isDimmed());
}

TEST_F(ChainPanel, AWarningThatHoldsNothingUpDarkensNothing) {
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    CkImageView* view = firstView();
    block->m_bWarn = true;
    const auto notice = [&] { return area()->notices()->notice(view->viewId()); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return notice() == "Demo 5: Odd, but it works."; }, 20'000));
    // A frame arrives between any two checks.
    QSignalSpy frames(view, &CkMdiView::receivedFrame);
    for (int look = 0; look < 10; ++look) {
        const qsizetype before = frames.size();
        ASSERT_TRUE(QTest::qWaitFor([&] { return frames.size() > before; }, 20'000));
        area()->notices()->refresh();
        EXPECT_FALSE(view->canvas()->isDimmed()) << look;
    }
    EXPECT_EQ(notice(), "Demo 5: Odd, but it works.");
}

TEST_F(ChainPanel, AViewWithoutAPictureSaysWhatItWaitsFor) {
    CkImageView* view = firstView();
    cameras()->stop(cameras()->currentCamera());
    auto* later = new CkImageView(view->dataProvider());
    area()->addView(later);
    const auto text = [&] {
        area()->notices()->refresh();
        return later->canvas()->emptyText();
    };
    EXPECT_EQ(text(), "No picture yet. Start the camera to see one.");
    auto* block = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(block, nullptr);
    block->m_bFail = true;
    ASSERT_TRUE(cameras()->start(nullptr));
    EXPECT_EQ(text(), "No picture yet. The camera runs; the first picture is on its way.");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !block->errorMessage().isEmpty(); }, 20'000));
    text();
    EXPECT_EQ(later->findChild<QLabel*>("viewNotice")->text(), "Demo 5: The demo block fails.");
    later->dataProvider()->chain()->stop();
    EXPECT_EQ(text(), "No picture yet. The processing chain is stopped.");
}

} // namespace
