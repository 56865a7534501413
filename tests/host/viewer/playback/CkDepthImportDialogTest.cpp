#include "host/viewer/shell/CkChainFileController.h"
#include "tests/host/viewer/playback/RecordingViewFixture.h"
#include "tests/support/LocaleScope.h"

#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/playback/CkDepthImportDialog.h"
#include "host/viewer/playback/CkStillPicture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <cmath>
#include <functional>

namespace {

/// A 16-bit grey PNG: 0 at the left, then 1000, 2000 and so on, the row added.
void makePng(const QString& file) {
    QImage image(8, 4, QImage::Format_Grayscale16);
    for (int y = 0; y < 4; ++y) {
        auto* row = reinterpret_cast<quint16*>(image.scanLine(y));
        for (int x = 0; x < 8; ++x) {
            row[x] = quint16(x == 0 ? 0 : x * 1000 + y);
        }
    }
    ASSERT_TRUE(image.save(file));
}

class DepthImport : public RecordingViewFixture {
protected:
    void SetUp() override {
        RecordingViewFixture::SetUp();
        ASSERT_TRUE(start());
    }

    /// Opens a file; the function operates the dialog.
    bool openWith(const QString& file, const std::function<void(CkDepthImportDialog&)>& press) {
        m_iAsked = 0;
        QTimer presser;
        QObject::connect(&presser, &QTimer::timeout, window(), [&] {
            if (auto* dialog = window()->findChild<CkDepthImportDialog*>()) {
                presser.stop();
                ++m_iAsked;
                press(*dialog);
            }
        });
        presser.start(10);
        return openFile(file);
    }
    static void accept(CkDepthImportDialog& dialog) {
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
    }
    float depthAt(quint32 x, quint32 y) const {
        const SkPicBuf& picture = firstView()->currentImage()->picBuf();
        EXPECT_EQ(picture.dataType, EkImageDataType::Float32);
        return reinterpret_cast<const float*>(picture.row(y))[x];
    }

    int m_iAsked = 0;
};

TEST_F(DepthImport, NumbersAreWrittenAsTheLanguageHasThem) {
    const LocaleScope german{QLocale(QLocale::German)};
    makePng(path("depth.png"));
    QString range;
    ASSERT_TRUE(openWith(path("depth.png"), [&](CkDepthImportDialog& dialog) {
        range = dialog.findChild<QLabel*>("importRange")->text();
        accept(dialog);
    }));
    EXPECT_EQ(range, "1,000 m to 7,003 m");
}

TEST_F(DepthImport, ASinglePictureHasNothingToPlay) {
    makePng(path("depth.png"));
    ASSERT_TRUE(openWith(path("depth.png"), [&](CkDepthImportDialog& dialog) { accept(dialog); }));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_FALSE(controller()->bar()->isVisible());
    EXPECT_FALSE(action("actPlaybackPlay")->isEnabled());
    EXPECT_EQ(action("actPlaybackPlay")->toolTip(), "The active view shows a single picture");
}

TEST_F(DepthImport, SixteenBitPngBecomesMetresByDefault) {
    makePng(path("depth.png"));
    QString range;
    ASSERT_TRUE(openWith(path("depth.png"), [&](CkDepthImportDialog& dialog) {
        range = dialog.findChild<QLabel*>("importRange")->text();
        EXPECT_TRUE(dialog.findChild<QRadioButton*>("importDepth")->isChecked());
        EXPECT_TRUE(dialog.findChild<QCheckBox*>("importZero")->isChecked());
        accept(dialog);
    }));
    EXPECT_EQ(m_iAsked, 1);
    EXPECT_EQ(range, "1.000 m to 7.003 m");
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_TRUE(std::isnan(depthAt(0, 2)));
    EXPECT_FLOAT_EQ(depthAt(3, 2), 3.002F);
    EXPECT_EQ(firstView()->unit(), "m");
    // The chain file restores it without a dialog.
    QString error;
    ASSERT_TRUE(window()->chainFiles()->saveActive(path("depth.zuchain"), error)) << qPrintable(error);
    ASSERT_TRUE(area()->closeAllViews(false));
    ASSERT_TRUE(waitFor([this] { return area()->views().isEmpty(); }));
    ASSERT_TRUE(openFile(path("depth.zuchain")));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_FLOAT_EQ(depthAt(7, 3), 7.003F);
}

TEST_F(DepthImport, AnotherScaleIsTypedIn) {
    makePng(path("depth.png"));
    ASSERT_TRUE(openWith(path("depth.png"), [](CkDepthImportDialog& dialog) {
        auto* unit = dialog.findChild<QComboBox*>("importUnit");
        auto* millimetres = dialog.findChild<QDoubleSpinBox*>("importMillimetres");
        EXPECT_FALSE(millimetres->isEnabled());
        EXPECT_FALSE(millimetres->toolTip().isEmpty());
        unit->setCurrentIndex(unit->findText("Another scale"));
        EXPECT_TRUE(millimetres->isEnabled());
        millimetres->setValue(0.25);
        dialog.findChild<QCheckBox*>("importZero")->setChecked(false);
        EXPECT_EQ(dialog.findChild<QLabel*>("importRange")->text(), "0.000 m to 1.751 m");
        accept(dialog);
    }));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_EQ(depthAt(0, 0), 0.0F);
    EXPECT_FLOAT_EQ(depthAt(4, 0), 1.0F);
}

TEST_F(DepthImport, AGreyPictureStaysAsItIs) {
    makePng(path("grey.png"));
    ASSERT_TRUE(openWith(path("grey.png"), [](CkDepthImportDialog& dialog) {
        dialog.findChild<QRadioButton*>("importPicture")->click();
        accept(dialog);
    }));
    ASSERT_TRUE(waitForFrame(firstView()));
    const SkPicBuf& picture = firstView()->currentImage()->picBuf();
    EXPECT_EQ(picture.dataType, EkImageDataType::UInt16);
    EXPECT_EQ(reinterpret_cast<const quint16*>(picture.row(3))[6], 6003);
}

TEST_F(DepthImport, CancelOpensNothing) {
    makePng(path("depth.png"));
    EXPECT_FALSE(openWith(path("depth.png"), [](CkDepthImportDialog& dialog) { dialog.reject(); }));
    EXPECT_TRUE(area()->views().isEmpty());
}

TEST_F(DepthImport, RecordingsAndOrdinaryPicturesAskNothing) {
    makeRecording(path("own.tif"), 2);
    ASSERT_TRUE(openWith(path("own.tif"), accept));
    QImage colours(6, 5, QImage::Format_RGB32);
    colours.fill(QColor(10, 20, 30));
    ASSERT_TRUE(colours.save(path("colours.png")));
    ASSERT_TRUE(openWith(path("colours.png"), accept));
    EXPECT_EQ(m_iAsked, 0);
    CkMdiView* view = area()->activeView();
    ASSERT_TRUE(waitForFrame(view));
    const SkPicBuf& picture = view->currentImage()->picBuf();
    EXPECT_EQ(picture.channels, 3U);
    EXPECT_EQ(picture.row(2)[0], 30); // blue first
    EXPECT_EQ(picture.row(2)[2], 10);
}

TEST_F(DepthImport, TiffStacksOfOthersArePlayedAsDepths) {
    // A recording without its texts is treated as a stack of another program.
    makeRecording(path("own.tif"), 3);
    QFile file(path("own.tif"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    bytes.replace("zutof.frame", "others.data");
    QFile stack(path("stack.tif"));
    ASSERT_TRUE(stack.open(QIODevice::WriteOnly));
    stack.write(bytes);
    stack.close();
    ASSERT_TRUE(openWith(path("stack.tif"), accept));
    EXPECT_EQ(m_iAsked, 1);
    ASSERT_TRUE(waitForShown(0));
    EXPECT_FLOAT_EQ(depthAt(5, 6), 0.065F);
    action("actPlaybackLast")->trigger();
    ASSERT_TRUE(waitForShown(2));
    EXPECT_FLOAT_EQ(depthAt(5, 6), 0.265F);
    EXPECT_FALSE(controller()->playback()->timeOf(1).has_value());
}

} // namespace

TEST(DepthImportProposal, FollowsTheSamples) {
    SkPicBufInfo info;
    info.channels = 1;
    info.dataType = EkImageDataType::UInt16;
    EXPECT_EQ(CkDepthImportDialog::proposal(info, 5000.0).metresPerCount, 0.001);
    info.dataType = EkImageDataType::Float32;
    EXPECT_EQ(CkDepthImportDialog::proposal(info, 7.5).metresPerCount, 1.0);
    EXPECT_EQ(CkDepthImportDialog::proposal(info, 4200.0).metresPerCount, 0.001);
    EXPECT_TRUE(CkDepthImportDialog::mayHoldDepths(info));
    info.dataType = EkImageDataType::UInt8;
    EXPECT_FALSE(CkDepthImportDialog::mayHoldDepths(info));
    info.dataType = EkImageDataType::UInt16;
    info.channels = 3;
    EXPECT_FALSE(CkDepthImportDialog::mayHoldDepths(info));
}
