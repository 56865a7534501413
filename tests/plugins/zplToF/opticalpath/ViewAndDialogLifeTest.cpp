// What may happen while the settings dialog of a 3D view is open.

#include "tests/plugins/zplToF/opticalpath/ViewAndDialogFixture.h"

#include <QFile>

namespace {

// Resident memory in KiB, as the kernel counts it.
qint64 residentKiB() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).trimmed().split(' ').first().toLongLong();
        }
    }
    return -1;
}

} // namespace

using ViewAndDialogLifeTest = ViewAndDialogTest;

TEST_F(ViewAndDialogLifeTest, FramesGoOnAndControlsActWhileTheDialogIsOpenAndMemoryStaysFlat) {
    const auto frameAt = [](quint64 uiFrame) {
        return TestFrame::phase(
            320, 240,
            [uiFrame](int x, int) {
                return DepthPixel{0.5F + float(uiFrame % 5), 0.005F * float(x)};
            },
            uiFrame);
    };
    auto view = openOn(frameAt(0));
    show(*view, QSize(192, 160));
    withDialog(*view, [&] {
        qint64 iSettled = 0;
        int iFewest = 320 * 240;
        int iMost = 0;
        for (quint64 uiFrame = 1; uiFrame <= 450; ++uiFrame) {
            give(*view, frameAt(uiFrame));
            ASSERT_NE(view->currentImage(), nullptr);
            EXPECT_EQ(view->currentImage()->frameId(), qint32(uiFrame));
            if (uiFrame % 5 == 0) {
                QTest::keyClick(child("tbConfThreshold"), uiFrame % 10 == 0 ? Qt::Key_End : Qt::Key_Home);
                QTest::keyClick(child("tbConfThreshold"), Qt::Key_Right);
                click(QDialogButtonBox::Apply);
            }
            iFewest = qMin(iFewest, view->cloud().pointCount());
            iMost = qMax(iMost, view->cloud().pointCount());
            QCoreApplication::processEvents();
            // By then allocators that retain freed memory, such as those of sanitizers, have settled.
            if (uiFrame == 150) {
                iSettled = residentKiB();
            }
        }
        // Depth and confidence of a frame take 600 KiB, its cloud another 1800: 175 and 527 MiB for 300
        // frames. The renderer holds up to some ten clouds more at one moment than at another.
        EXPECT_LT(residentKiB() - iSettled, 100 * 1024);
        EXPECT_LT(iFewest, 320 * 240 / 10);
        EXPECT_GT(iMost, 320 * 240 * 9 / 10);
        click(QDialogButtonBox::Cancel);
    });
}

TEST_F(ViewAndDialogLifeTest, TheViewMayCloseWhileItsDialogIsOpen) {
    auto view = openOn(wall());
    driver.expectWindow([&](QWidget*) { view.reset(); });
    view->showOpticalPathDlg();
    EXPECT_EQ(driver.pending(), 0);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(storedKeys(), QStringList());
}
