#include "host/viewer/picture/CkImageView.h"

#include "host/viewer/picture/CkColorLegend.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkPictureSnapshot.h"
#include "tests/host/viewer/ViewerPictures.h"
#include "tests/support/ModalDriver.h"
#include "zuCore/CkLut.h"

#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <limits>

namespace {

std::unique_ptr<CkImageData> ramp16() {
    return makeFrame<quint16>(EkImageDataType::UInt16, 64, 48, 1, 12,
                              [](quint32 x, quint32, quint32) { return quint16(1000 + x); });
}

TEST(ImageView, ScalesFloatsFromSmallestToLargestOfTheChannelShown) {
    CkFedImageView view;
    auto frame = makeFrame<float>(EkImageDataType::Float32, 9, 4, 2, 32, [](quint32 x, quint32 y, quint32 c) {
        if (x == 8) {
            return std::numeric_limits<float>::quiet_NaN();
        }
        return c == 0 ? 0.5F + 0.25F * float(x + y) : 1000.0F * float(x);
    });
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{"Phase shift", "Confidence"};
    frame->setMetadata(metadata);
    view.feed(std::move(frame));
    ASSERT_FALSE(view.shownImage().isNull());
    EXPECT_DOUBLE_EQ(view.window().low, 0.5);
    EXPECT_DOUBLE_EQ(view.window().high, 0.5 + 0.25 * (7 + 3));
    EXPECT_EQ(view.unit(), "rad");
    EXPECT_EQ(view.shownImage().pixel(8, 0), PictureColours::kInvalid);
    view.setChannel(1);
    view.shownImage();
    EXPECT_DOUBLE_EQ(view.window().low, 0.0);
    EXPECT_DOUBLE_EQ(view.window().high, 7000.0);
    EXPECT_EQ(view.unit(), "");
}

template <class T>
void showsType(EkImageDataType type) {
    CkFedImageView view;
    view.feed(
        makeFrame<T>(type, 32, 16, 1, 8 * sizeof(T), [](quint32 x, quint32, quint32) { return T(3 * x); }));
    const QImage& image = view.shownImage();
    ASSERT_EQ(image.size(), QSize(32, 16)) << int(type);
    // Automatic contrast spreads the ramp from the darkest to the brightest colour.
    EXPECT_NE(image.pixel(0, 0), image.pixel(31, 0)) << int(type);
    EXPECT_NE(image.pixel(8, 0), image.pixel(24, 0)) << int(type);
}

TEST(ImageView, ShowsEverySampleType) {
    showsType<qint8>(EkImageDataType::Int8);
    showsType<quint8>(EkImageDataType::UInt8);
    showsType<qint16>(EkImageDataType::Int16);
    showsType<quint16>(EkImageDataType::UInt16);
    showsType<qint32>(EkImageDataType::Int32);
    showsType<quint32>(EkImageDataType::UInt32);
    showsType<qint64>(EkImageDataType::Int64);
    showsType<quint64>(EkImageDataType::UInt64);
    showsType<float>(EkImageDataType::Float32);
    showsType<double>(EkImageDataType::Float64);
}

TEST(ImageView, SaysWhenAFormatCannotBeShown) {
    CkFedImageView view;
    view.resize(300, 200);
    view.feed(makeFrame<quint16>(EkImageDataType::Other16, 8, 8, 1, 16,
                                 [](quint32, quint32, quint32) { return quint16(1); }));
    EXPECT_TRUE(view.shownImage().isNull());
    view.grab();
    // The next good frame is shown again.
    view.feed(ramp16());
    EXPECT_FALSE(view.shownImage().isNull());
}

TEST(ImageView, FollowsFormatChangesFromFrameToFrame) {
    CkFedImageView view;
    view.feed(ramp16());
    EXPECT_EQ(view.shownImage().size(), QSize(64, 48));
    view.feed(makeFrame<quint8>(EkImageDataType::UInt8, 10, 20, 3, 8,
                                [](quint32 x, quint32, quint32 c) { return quint8(x + 50 * c); }));
    EXPECT_EQ(view.shownImage().size(), QSize(10, 20));
    EXPECT_TRUE(view.showsColours());
    EXPECT_EQ(view.shownImage().pixel(3, 0), qRgb(103, 53, 3));
    view.setChannel(2);
    EXPECT_FALSE(view.showsColours());
    EXPECT_NE(view.shownImage().pixel(3, 0), qRgb(103, 53, 3));
    view.feed(ramp16());
    EXPECT_EQ(view.channel(), 0);
    EXPECT_EQ(view.shownImage().size(), QSize(64, 48));
}

TEST(ImageView, ManualWindowStaysAndEndsAutomaticContrast) {
    CkFedImageView view;
    view.feed(ramp16());
    view.shownImage();
    EXPECT_TRUE(view.autoContrast());
    EXPECT_NEAR(view.window().low, 1000.0, 1.0);
    EXPECT_NEAR(view.window().high, 1063.0, 1.0);
    view.setWindow({1031.0, 1010.0});
    EXPECT_FALSE(view.autoContrast());
    view.feed(ramp16());
    const QImage image = view.shownImage();
    EXPECT_EQ(view.window(), (SkDisplayWindow{1010.0, 1031.0}));
    EXPECT_EQ(image.pixel(10, 0), qRgb(0, 0, 0));
    EXPECT_EQ(image.pixel(31, 0), qRgb(255, 255, 255));
    // The table contains the window for its other users.
    const CkLut* lut = view.viewLut(nullptr, nullptr, nullptr);
    ASSERT_FALSE(lut->contrastEntries().isEmpty());
    EXPECT_EQ(lut->contrastEntries().first().inLow, 1010U);
    EXPECT_EQ(lut->contrastEntries().first().inHigh, 1031U);
    view.setWindow({std::numeric_limits<double>::quiet_NaN(), 5.0});
    EXPECT_EQ(view.window(), (SkDisplayWindow{1010.0, 1031.0}));
    view.setAutoContrast(true);
    view.shownImage();
    EXPECT_NEAR(view.window().low, 1000.0, 1.0);
}

TEST(ImageView, TakesOverANewTableAndItsFlags) {
    CkFedImageView view;
    view.feed(ramp16());
    const QRgb grey = view.shownImage().pixel(40, 10);
    EXPECT_EQ(qRed(grey), qBlue(grey));
    auto* lut = new CkLut(12, 1, false, EkImageDataType::UInt16);
    lut->setPseudoColorIndex(1);
    view.setViewLut(lut, true, true, true);
    bool automatic = false;
    bool saturation = false;
    EXPECT_EQ(view.viewLut(&automatic, &saturation, nullptr), lut);
    EXPECT_TRUE(automatic);
    EXPECT_TRUE(saturation);
    EXPECT_NE(view.shownImage().pixel(40, 10), grey);
    view.setViewLut(nullptr, false, false, true);
    EXPECT_EQ(view.viewLut(&automatic, nullptr, nullptr), lut);
    EXPECT_FALSE(automatic);
}

TEST(ImageView, ReportsThePixelUnderTheMouse) {
    CkFedImageView view;
    view.resize(400, 300);
    view.feed(ramp16());
    view.show();
    QSignalSpy texts(&view, &CkImageView::pixelTextChanged);
    CkImageCanvas* canvas = view.canvas();
    const QPointF position = canvas->fromPicture(QPointF(20.5, 7.5));
    QMouseEvent move(QEvent::MouseMove, position, canvas->mapToGlobal(position), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(canvas, &move);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_EQ(texts.last().first().toString(), "x 20, y 7:  Value 1020 counts");
    // The text follows the frames while the mouse rests.
    view.feed(makeFrame<quint16>(EkImageDataType::UInt16, 64, 48, 1, 12,
                                 [](quint32, quint32, quint32) { return quint16(7); }));
    EXPECT_EQ(texts.last().first().toString(), "x 20, y 7:  Value 7 counts");
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(canvas, &leave);
    EXPECT_EQ(texts.last().first().toString(), "");
}

TEST(ImageView, SavesAsSeenAndAsMeasured) {
    QTemporaryDir folder;
    CkFedImageView view;
    QString error;
    EXPECT_FALSE(view.snapshot().saveAsSeen(folder.filePath("early.png"), &error));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_TRUE(view.snapshot().formats().isEmpty());
    EXPECT_FALSE(view.snapshot().saveAsMeasured(folder.filePath("early.png"),
                                                CkPictureSnapshot::EkMeasured::Png16, &error));
    view.feed(ramp16());
    ASSERT_TRUE(view.snapshot().saveAsSeen(folder.filePath("seen.png"), &error)) << qPrintable(error);
    EXPECT_EQ(QImage(folder.filePath("seen.png")).convertToFormat(QImage::Format_RGB32), view.shownImage());
    // PNG and JPEG as seen, PNG and TIFF as measured; there are no other channels.
    EXPECT_EQ(view.snapshot().formats().size(), 4);
    using EkMeasured = CkPictureSnapshot::EkMeasured;
    ASSERT_TRUE(view.snapshot().saveAsMeasured(folder.filePath("raw.png"), EkMeasured::Png16, &error))
        << qPrintable(error);
    const QImage raw(folder.filePath("raw.png"));
    ASSERT_EQ(raw.format(), QImage::Format_Grayscale16);
    EXPECT_EQ(reinterpret_cast<const quint16*>(raw.constScanLine(5))[17], 1017);
    EXPECT_FALSE(view.snapshot().saveAsSeen(folder.filePath("no/such/folder/a.png"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("a.png"))) << qPrintable(error);
    // A wrong extension is refused.
    EXPECT_FALSE(view.snapshot().saveAsMeasured(folder.filePath("raw.jpg"), EkMeasured::Png16, &error));
    EXPECT_TRUE(error.endsWith("raw.jpg: this format requires the extension .png.")) << qPrintable(error);
    EXPECT_FALSE(view.snapshot().saveAsMeasured(folder.filePath("raw.png"), EkMeasured::FloatTiff, &error));
    EXPECT_TRUE(error.endsWith("raw.png: this format requires the extension .tif.")) << qPrintable(error);
    EXPECT_EQ(QImage(folder.filePath("raw.png")).format(), QImage::Format_Grayscale16);
    EXPECT_TRUE(view.snapshot().saveAsMeasured(folder.filePath("raw.TIFF"), EkMeasured::FloatTiff, &error));
    for (const char* name : {"seen.dat", "seen"}) {
        EXPECT_FALSE(view.snapshot().saveAsSeen(folder.filePath(name), &error));
        EXPECT_TRUE(error.endsWith(": the extension determines the format of the picture: use .png or .jpg."))
            << qPrintable(error);
        EXPECT_FALSE(QFile::exists(folder.filePath(name)));
    }
    ASSERT_TRUE(view.snapshot().saveAsSeen(folder.filePath("seen.jpeg"), &error));
    EXPECT_EQ(QImageReader(folder.filePath("seen.jpeg")).format(), "jpeg");
    // A colour picture has no channel to save until one is chosen.
    view.feed(makeFrame<quint8>(EkImageDataType::UInt8, 8, 8, 3, 8,
                                [](quint32 x, quint32, quint32 c) { return quint8(10 * x + c); }));
    EXPECT_EQ(view.snapshot().formats().size(), 3);
    EXPECT_FALSE(view.snapshot().saveAsMeasured(folder.filePath("colour.png"), EkMeasured::Png16, &error));
    EXPECT_FALSE(QFile::exists(folder.filePath("colour.png")));
    EXPECT_TRUE(
        view.snapshot().saveAsMeasured(folder.filePath("colour.tif"), EkMeasured::FloatTiffOfAll, &error));
    view.setChannel(2);
    ASSERT_TRUE(view.snapshot().saveAsMeasured(folder.filePath("colour.png"), EkMeasured::Png16, &error));
    const QImage red(folder.filePath("colour.png"));
    EXPECT_EQ(reinterpret_cast<const quint16*>(red.constScanLine(0))[7], 72);
}

class SavedPicture : public ::testing::Test {
protected:
    static std::unique_ptr<CkImageData> constant(quint16 value) {
        return makeFrame<quint16>(EkImageDataType::UInt16, 64, 48, 1, 12,
                                  [value](quint32, quint32, quint32) { return value; });
    }
    /// Saves in the format with this index; another frame arrives while the dialog is open.
    QString saveWhileAnotherFrameComes(CkFedImageView& view, int format, const char* name) {
        const QString path = m_folder.filePath(QString::fromLatin1(name));
        m_driver.expectWindow([&view, format, path](QWidget* dialog) {
            view.feed(constant(7));
            view.shownImage();
            auto* types = dialog->findChild<QComboBox*>("fileTypeCombo");
            for (int i = 0; i < format; ++i) {
                QTest::keyClick(types, Qt::Key_Down);
            }
            dialog->findChild<QLineEdit*>("fileNameEdit")->setText(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        view.saveWithDialog();
        EXPECT_TRUE(m_driver.boxes.isEmpty());
        return path;
    }

    QTemporaryDir m_folder;
    ModalDriver m_driver;
};

TEST_F(SavedPicture, IsTheOneThatWasShownWhenSavingBegan) {
    CkFedImageView view;
    view.feed(ramp16());
    const QImage seen = view.shownImage().copy();
    const QImage file(saveWhileAnotherFrameComes(view, 0, "seen.png"));
    EXPECT_EQ(file.convertToFormat(QImage::Format_RGB32), seen);
    EXPECT_NE(view.shownImage(), seen);
}

TEST_F(SavedPicture, IsMeasuredInTheFrameThatWasShownWhenSavingBegan) {
    CkFedImageView view;
    view.feed(ramp16());
    const QImage file(saveWhileAnotherFrameComes(view, 2, "measured.png"));
    ASSERT_EQ(file.format(), QImage::Format_Grayscale16);
    EXPECT_EQ(reinterpret_cast<const quint16*>(file.constScanLine(5))[17], 1017);
}

TEST_F(SavedPicture, KeepsItsChannelWhateverTheViewShowsLater) {
    CkFedImageView view;
    view.feed(makeFrame<quint16>(EkImageDataType::UInt16, 8, 6, 2, 16,
                                 [](quint32 x, quint32, quint32 c) { return quint16(100 * (c + 1) + x); }));
    view.setChannel(1);
    const CkPictureSnapshot picture = view.snapshot();
    view.setChannel(0);
    QString error;
    const QString path = m_folder.filePath("second.png");
    ASSERT_TRUE(picture.saveAsMeasured(path, CkPictureSnapshot::EkMeasured::Png16, &error))
        << qPrintable(error);
    EXPECT_EQ(reinterpret_cast<const quint16*>(QImage(path).constScanLine(0))[3], 203);
}

TEST(ImageCanvas, ZoomKeepsThePointUnderTheMouseAndStaysInLimits) {
    CkImageCanvas canvas;
    canvas.resize(400, 300);
    canvas.setPictureSize(QSize(200, 200));
    EXPECT_TRUE(canvas.isFitting());
    EXPECT_DOUBLE_EQ(canvas.zoom(), 1.5);
    canvas.setZoom(8.0);
    EXPECT_FALSE(canvas.isFitting());
    const QPointF mouse(123.0, 77.0);
    const QPointF before = canvas.toPicture(mouse);
    QWheelEvent wheel(mouse, canvas.mapToGlobal(mouse), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&canvas, &wheel);
    EXPECT_GT(canvas.zoom(), 8.0);
    EXPECT_NEAR(canvas.toPicture(mouse).x(), before.x(), 1e-9);
    EXPECT_NEAR(canvas.toPicture(mouse).y(), before.y(), 1e-9);
    canvas.setZoom(1e9);
    EXPECT_DOUBLE_EQ(canvas.zoom(), CkImageCanvas::kMaximumZoom);
    canvas.setZoom(0.0);
    EXPECT_DOUBLE_EQ(canvas.zoom(), CkImageCanvas::kMinimumZoom);
    canvas.zoomToOriginal();
    EXPECT_DOUBLE_EQ(canvas.zoom(), 1.0);
    canvas.zoomToFit();
    EXPECT_DOUBLE_EQ(canvas.zoom(), 1.5);
    const QPointF back = canvas.fromPicture(canvas.toPicture(mouse));
    EXPECT_NEAR(back.x(), mouse.x(), 1e-9);
}

TEST(ImageCanvas, DragMovesThePictureButNotOutOfSight) {
    CkImageCanvas canvas;
    canvas.resize(100, 100);
    canvas.setPictureSize(QSize(200, 200));
    canvas.setZoom(1.0);
    EXPECT_EQ(canvas.toPicture(QPointF(0, 0)), QPointF(50, 50));
    QTest::mousePress(&canvas, Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    QMouseEvent move(QEvent::MouseMove, QPointF(60, 80), QPointF(60, 80), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&canvas, &move);
    EXPECT_EQ(canvas.toPicture(QPointF(0, 0)), QPointF(40, 20));
    QMouseEvent far(QEvent::MouseMove, QPointF(5000, 5000), QPointF(5000, 5000), Qt::NoButton, Qt::LeftButton,
                    Qt::NoModifier);
    QCoreApplication::sendEvent(&canvas, &far);
    EXPECT_EQ(canvas.toPicture(QPointF(0, 0)), QPointF(0, 0));
}

TEST(ImageCanvas, PaintsThePixelsWhereItSaysTheyAre) {
    CkImageCanvas canvas;
    canvas.resize(160, 120);
    QImage image(16, 12, QImage::Format_RGB32);
    image.fill(qRgb(0, 0, 255));
    image.setPixel(5, 6, qRgb(255, 255, 0));
    canvas.setPictureSize(image.size());
    canvas.setImageFunction([&image] { return &image; });
    canvas.zoomToFit();
    const QImage shot = canvas.grab().toImage();
    EXPECT_EQ(shot.pixel(canvas.fromPicture(QPointF(5.5, 6.5)).toPoint()), qRgb(255, 255, 0));
    EXPECT_EQ(shot.pixel(canvas.fromPicture(QPointF(7.5, 6.5)).toPoint()), qRgb(0, 0, 255));
}

TEST(ColorLegend, TicksAreRoundNumbersInsideTheRange) {
    // Steps of 1, 2 or 5 times a power of ten: 0 to 2 pi has the whole numbers.
    EXPECT_EQ(CkColorLegend::tickValues(0.0, 6.28, 8), (QList<double>{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(CkColorLegend::tickValues(0.0, 4095.0, 6), (QList<double>{0, 1000, 2000, 3000, 4000}));
    EXPECT_TRUE(CkColorLegend::tickValues(5.0, 5.0, 6).isEmpty());
    EXPECT_TRUE(CkColorLegend::tickValues(0.0, std::numeric_limits<double>::infinity(), 6).isEmpty());
    for (const int most : {2, 3, 7, 20}) {
        const QList<double> ticks = CkColorLegend::tickValues(-1.3, 17.9, most);
        EXPECT_LE(ticks.size(), most);
        for (const double tick : ticks) {
            EXPECT_GE(tick, -1.3);
            EXPECT_LE(tick, 17.9);
        }
    }
}

} // namespace
