#include "tests/plugins/zplToF/view3d/ViewActionFixture.h"

#include <QAction>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <Qt3DExtras/Qt3DWindow>
#include <Qt3DRender/QRenderCapture>
#include <limits>

namespace {

class ToF3DViewExportTest : public ViewActionTest {};

TEST_F(ToF3DViewExportTest, ScreenshotsAreWrittenAsPngJpegAndBmp) {
    m_host.store(QStringLiteral("ToF.BgColor"), 0x204060U);
    const auto view = open();
    show(*view);
    for (const char* name : {"shot.png", "shot.jpg", "shot.bmp"}) {
        const QString file = inFolder(QLatin1String(name));
        m_driver.expectWindow([&](QWidget* window) {
            EXPECT_EQ(window->windowTitle(), QStringLiteral("Save Screenshot to File"));
            EXPECT_EQ(qobject_cast<QFileDialog*>(window)->nameFilters(),
                      QStringList({QStringLiteral("PNG (*.png)"), QStringLiteral("JPEG (*.jpg)"),
                                   QStringLiteral("BMP Bitmaps (*.bmp)")}));
            EXPECT_EQ(window->parentWidget(), view.get());
            chooseFile(window, file);
        });
        action(*view, QStringLiteral("Screenshot"))->trigger();
        ASSERT_TRUE(waitFor([&] { return m_driver.pending() == 0 && QFile::exists(file); })) << name;
        letEventsHappen(20);
        const QImage image(file);
        EXPECT_EQ(image.size(), view->scene()->window()->size()) << name;
        // JPEG is lossy.
        const QColor color = image.pixelColor(image.width() / 2, image.height() / 4);
        EXPECT_NEAR(color.red(), 0x20, 3) << name;
        EXPECT_NEAR(color.green(), 0x40, 3) << name;
        EXPECT_NEAR(color.blue(), 0x60, 3) << name;
        EXPECT_EQ(m_host.directory, m_folder.path());
    }
}

TEST_F(ToF3DViewExportTest, ACancelledScreenshotWritesNothing) {
    m_host.directory = m_folder.path();
    const auto view = open();
    show(*view);
    bool shown = false;
    m_driver.expectWindow([&](QWidget* window) {
        shown = true;
        EXPECT_EQ(qobject_cast<QFileDialog*>(window)->directory().absolutePath(), m_folder.path());
        QTest::keyClick(window, Qt::Key_Escape);
    });
    action(*view, QStringLiteral("Screenshot"))->trigger();
    ASSERT_TRUE(waitFor([&] { return shown && QApplication::activeModalWidget() == nullptr; }));
    letEventsHappen(20);
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
    EXPECT_EQ(m_host.directory, m_folder.path());
    EXPECT_EQ(m_host.calls.filter(QStringLiteral("setLastDirectory")).size(), 0);
}

TEST_F(ToF3DViewExportTest, AScreenshotNamedWithoutAnExtensionIsWrittenInTheChosenFormat) {
    const auto view = open();
    show(*view);
    m_driver.expectWindow([&](QWidget* window) {
        auto* formats = window->findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        ASSERT_NE(formats, nullptr);
        QTest::keyClick(formats, Qt::Key_End);
        EXPECT_EQ(formats->currentText(), QStringLiteral("BMP Bitmaps (*.bmp)"));
        chooseFile(window, inFolder(QStringLiteral("shot")));
    });
    action(*view, QStringLiteral("Screenshot"))->trigger();
    const QString file = inFolder(QStringLiteral("shot.bmp"));
    ASSERT_TRUE(waitFor([&] { return m_driver.pending() == 0 && QFile::exists(file); }));
    EXPECT_EQ(QImageReader(file).format(), QByteArray("bmp"));
    EXPECT_EQ(QImage(file).size(), view->scene()->window()->size());
}

QStringList criticalMessages;

void collect(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type == QtCriticalMsg) {
        criticalMessages << text;
    }
}

TEST_F(ToF3DViewExportTest, AScreenshotThatCannotBeWrittenIsLoggedAndLeavesNoFile) {
    const auto view = open();
    show(*view);
    const QString file = inFolder(QStringLiteral("shot.nosuchformat"));
    m_driver.expectWindow([&](QWidget* window) { chooseFile(window, file); });
    criticalMessages.clear();
    const QtMessageHandler before = qInstallMessageHandler(collect);
    view->saveScreenshot();
    EXPECT_TRUE(waitFor([&] { return !criticalMessages.isEmpty(); }));
    qInstallMessageHandler(before);
    ASSERT_EQ(criticalMessages.size(), 1);
    EXPECT_TRUE(
        criticalMessages[0].startsWith(QLatin1String("CkToF3DMdiView::onScreenshotRequestCompleted(): ")));
    EXPECT_TRUE(criticalMessages[0].contains(file)) << criticalMessages[0].toStdString();
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
    EXPECT_EQ(m_host.directory, m_folder.path());
}

/// A failed capture has no picture. The dialog opens nevertheless; no file is written, and the failure is
/// logged.
TEST_F(ToF3DViewExportTest, ACaptureWithoutAPictureLeavesNoFile) {
    const auto view = open();
    show(*view);
    Qt3DRender::QRenderCaptureReply* reply = view->scene()->requestCapture();
    ASSERT_NE(reply, nullptr);
    ASSERT_TRUE(reply->image().isNull());
    QObject::connect(reply, SIGNAL(completed()), view.get(), SLOT(onScreenshotRequestCompleted()));
    const QString file = inFolder(QStringLiteral("shot.png"));
    bool shown = false;
    m_driver.expectWindow([&](QWidget* window) {
        // The reply must outlive Qt's use of it, and the view must not receive the signal of the real
        // capture.
        QObject::disconnect(reply, nullptr, view.get(), nullptr);
        EXPECT_TRUE(waitFor([&] { return reply->isComplete(); }));
        shown = true;
        chooseFile(window, file);
    });
    criticalMessages.clear();
    const QtMessageHandler before = qInstallMessageHandler(collect);
    // From the event loop, as Qt emits it.
    QMetaObject::invokeMethod(reply, &Qt3DRender::QRenderCaptureReply::completed, Qt::QueuedConnection);
    EXPECT_TRUE(waitFor([&] { return shown && !criticalMessages.isEmpty(); }));
    qInstallMessageHandler(before);
    ASSERT_EQ(criticalMessages.size(), 1);
    EXPECT_TRUE(criticalMessages[0].contains(file)) << criticalMessages[0].toStdString();
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_EQ(m_host.directory, m_folder.path());
}

TEST_F(ToF3DViewExportTest, AHiddenViewTakesNoScreenshot) {
    const auto view = open();
    view->saveScreenshot();
    EXPECT_FALSE(view->grabScene(inFolder(QStringLiteral("scene.png"))));
    view->onScreenshotRequestCompleted();
    letEventsHappen(50);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(ToF3DViewExportTest, TheViewMayCloseUnderTheScreenshotsDialog) {
    auto view = open();
    show(*view);
    m_driver.expectWindow([&](QWidget*) { view.reset(); });
    view->saveScreenshot();
    ASSERT_TRUE(waitFor([&] { return view == nullptr; }));
    letEventsHappen(20);
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(ToF3DViewExportTest, AViewThatClosesBeforeItsCaptureCameIsGone) {
    auto view = open();
    show(*view);
    view->saveScreenshot();
    ASSERT_TRUE(view->grabScene(inFolder(QStringLiteral("scene.png"))));
    view.reset();
    letEventsHappen(100);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(ToF3DViewExportTest, ScenesAreGrabbedWithoutADialog) {
    const auto view = open();
    show(*view);
    const QString png = inFolder(QStringLiteral("scene.png"));
    const QString bmp = inFolder(QStringLiteral("scene.bmp"));
    ASSERT_TRUE(view->grabScene(png));
    ASSERT_TRUE(view->grabScene(bmp));
    ASSERT_TRUE(waitFor([&] { return QFile::exists(png) && QFile::exists(bmp); }));
    EXPECT_EQ(QImage(png).size(), view->scene()->window()->size());
    EXPECT_EQ(QImage(bmp).size(), view->scene()->window()->size());
}

// Three pixels of a picture of one row, at distances 1, 2 and 3 of the range.
TEST_F(ToF3DViewExportTest, AnExportOfThreePointsHasItsHeaderAndThreeLines) {
    m_source.shown = TestFrame::generic(
        4, 1, [](int x, int) { return x < 3 ? 0.5F * float(x) : std::numeric_limits<float>::quiet_NaN(); });
    const auto view = open();
    ASSERT_EQ(view->cloud().pointCount(), 3);
    const QString file = inFolder(QStringLiteral("cloud.ply"));
    m_driver.expectWindow([&](QWidget* window) {
        const auto* dialog = qobject_cast<QFileDialog*>(window);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->nameFilters(), QStringList{QStringLiteral("PLY (*.ply)")});
        EXPECT_EQ(dialog->parentWidget(), view.get());
        chooseFile(window, file);
    });
    action(*view, QStringLiteral("Export data"))->trigger();
    QFile written(file);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    const QByteArray text = written.readAll();
    EXPECT_TRUE(
        text.startsWith("ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\n"
                        "property float z\nend_header\n"));
    const QList<QByteArray> lines = text.split('\n');
    ASSERT_EQ(lines.size(), 7 + 3 + 1);
    EXPECT_EQ(lines.last(), QByteArray());
    // x = (pixel - 2) x 2 / 4, y = 0.5 x 2 / 4.
    for (int i = 0; i < 3; ++i) {
        const QList<QByteArray> numbers = lines[7 + i].split(' ');
        ASSERT_EQ(numbers.size(), 3);
        EXPECT_EQ(numbers[0], QByteArray::number(0.5 * (i - 2)));
        EXPECT_EQ(numbers[1], QByteArray("0.25"));
        EXPECT_NEAR(numbers[2].toDouble(), 0.6 - 0.6 * i, 1e-6);
    }
    // The same text without a dialog.
    const QString again = inFolder(QStringLiteral("again.ply"));
    EXPECT_TRUE(view->savePly(again));
    QFile second(again);
    ASSERT_TRUE(second.open(QIODevice::ReadOnly));
    EXPECT_EQ(second.readAll(), text);
    EXPECT_FALSE(view->savePly(inFolder(QStringLiteral("no/such/folder.ply"))));
}

TEST_F(ToF3DViewExportTest, ACancelledExportWritesNothing) {
    m_source.shown = phaseOf(1.0F);
    m_host.directory = m_folder.path();
    const auto view = open();
    m_driver.expectWindow([](QWidget* window) { QTest::keyClick(window, Qt::Key_Escape); });
    action(*view, QStringLiteral("Export data"))->trigger();
    EXPECT_EQ(m_driver.pending(), 0);
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(ToF3DViewExportTest, WithoutPointsNoPlyIsSaved) {
    const auto view = open();
    EXPECT_FALSE(view->savePly(inFolder(QStringLiteral("cloud.ply"))));
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

} // namespace
