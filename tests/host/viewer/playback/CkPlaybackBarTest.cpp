#include "host/viewer/shell/CkChainFileController.h"
#include "tests/host/viewer/playback/RecordingViewFixture.h"

#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/panels/log/CkLogPanel.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/shell/CkShortcutsDialog.h"

#include <QApplication>
#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

namespace {

class PlaybackBar : public RecordingViewFixture {
protected:
    void SetUp() override {
        RecordingViewFixture::SetUp();
        ASSERT_TRUE(start());
        makeRecording(path("a.tif"), 10);
    }
    QLabel* label(const char* name) const {
        return controller()->bar()->findChild<QLabel*>(QLatin1String(name));
    }
    int number() const { return controller()->bar()->findChild<QSpinBox*>("playbackNumber")->value(); }
    void expectSample(qint64 frame) const {
        const SkPicBuf& picture = firstView()->currentImage()->picBuf();
        EXPECT_EQ(reinterpret_cast<const quint16*>(picture.row(5))[7], sample(frame, 7, 5));
    }
};

TEST_F(PlaybackBar, OpeningShowsTheFirstFrameAndTheBar) {
    EXPECT_FALSE(controller()->bar()->isVisible());
    EXPECT_FALSE(action("actPlaybackPlay")->isEnabled());
    EXPECT_EQ(action("actPlaybackPlay")->toolTip(), "The active view shows no recording");
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    expectSample(0);
    EXPECT_TRUE(controller()->bar()->isVisible());
    EXPECT_FALSE(player()->isPlaying());
    EXPECT_TRUE(firstView()->viewTitle().contains("a.tif"));
    EXPECT_TRUE(waitFor([this] { return label("playbackTime")->text() == "0:00.000 / 0:00.360"; }))
        << qPrintable(label("playbackTime")->text());
    // A camera's view has nothing to play.
    ASSERT_NE(openGrey(), nullptr);
    EXPECT_TRUE(waitFor([this] { return !controller()->bar()->isVisible(); }));
    area()->setActiveView(firstView()->viewId());
    EXPECT_TRUE(waitFor([this] { return controller()->bar()->isVisible(); }));
}

TEST_F(PlaybackBar, StepsSeeksAndPlaysToTheEnd) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    action("actPlaybackForward")->trigger();
    ASSERT_TRUE(waitForShown(1));
    expectSample(1);
    action("actPlaybackLast")->trigger();
    ASSERT_TRUE(waitForShown(9));
    action("actPlaybackBack")->trigger();
    ASSERT_TRUE(waitForShown(8));
    action("actPlaybackFirst")->trigger();
    ASSERT_TRUE(waitForShown(0));
    action("actPlaybackBack")->trigger();
    EXPECT_EQ(player()->position(), 0);
    controller()->bar()->findChild<QSpinBox*>("playbackNumber")->setValue(6);
    ASSERT_TRUE(waitForShown(6));
    EXPECT_TRUE(waitFor([this] { return label("playbackTime")->text() == "0:00.240 / 0:00.360"; }));
    controller()->bar()->findChild<QSlider*>("playbackSlider")->setValue(3);
    ASSERT_TRUE(waitForShown(3));
    expectSample(3);
    EXPECT_TRUE(waitFor([this] { return number() == 3; }));
    action("actPlaybackPlay")->trigger();
    ASSERT_TRUE(waitForShown(9));
    EXPECT_TRUE(waitFor([this] { return !player()->isPlaying(); }));
    EXPECT_TRUE(waitFor([this] { return action("actPlaybackPlay")->text() == "&Play"; }));
}

TEST_F(PlaybackBar, EveryFrameIsShown) {
    makeRecording(path("many.tif"), 200);
    ASSERT_TRUE(openFile(path("many.tif")));
    ASSERT_TRUE(waitForShown(0));
    QList<quint64> shown;
    QObject::connect(firstView(), &CkMdiView::frameShown, window(),
                     [&](int, const CkImageData* data) { shown.append(data->metadata().frameNumber); });
    action("actPlaybackEveryFrame")->trigger();
    action("actPlaybackPlay")->trigger();
    ASSERT_TRUE(waitFor([this] { return player()->position() == 199 && !player()->isPlaying(); }));
    ASSERT_TRUE(waitFor([&] { return !shown.isEmpty() && shown.last() == 199; }));
    EXPECT_EQ(shown.size(), 199);
    EXPECT_EQ(firstView()->droppedFrames(), 0U);
    EXPECT_EQ(player()->chain()->blockStatistics(player()).dropped, 0U);
}

TEST_F(PlaybackBar, LoopAndPaceArePassedOnAndShown) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    action("actPlaybackLoop")->trigger();
    EXPECT_TRUE(player()->isLoop());
    action("actPlaybackBack")->trigger();
    ASSERT_TRUE(waitForShown(9));
    auto* pace = controller()->bar()->findChild<QComboBox*>("playbackPace");
    pace->setCurrentIndex(pace->findText("Every frame"));
    EXPECT_EQ(player()->pace(), int(SkPlaybackSettings::EveryFrame));
    EXPECT_TRUE(action("actPlaybackEveryFrame")->isChecked());
    action("actPlaybackPlay")->trigger();
    EXPECT_TRUE(waitFor([this] { return action("actPlaybackPlay")->text() == "&Pause"; }));
    // It loops.
    ASSERT_TRUE(waitFor([this] { return player()->position() == 5; }));
    ASSERT_TRUE(waitFor([this] { return player()->position() == 2; }));
    action("actPlaybackPlay")->trigger();
    EXPECT_FALSE(player()->isPlaying());
}

TEST_F(PlaybackBar, PlaysInRealTimeByDefault) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    EXPECT_EQ(player()->pace(), int(SkPlaybackSettings::RealTime));
    EXPECT_EQ(controller()->bar()->findChild<QComboBox*>("playbackPace")->currentText(), "Real time");
    EXPECT_TRUE(action("actPlaybackRealTime")->isChecked());
    // An unattended run plays every frame, because no user is watching.
    m_session.reset();
    m_options.frames = 1'000;
    ASSERT_TRUE(start());
    ASSERT_TRUE(openFile(path("a.tif")));
    EXPECT_EQ(player()->pace(), int(SkPlaybackSettings::EveryFrame));
}

TEST_F(PlaybackBar, TheSpeedIsChosenWhereThereIsOne) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    const auto* speed = controller()->bar()->findChild<QComboBox*>("playbackSpeed");
    ASSERT_NE(speed, nullptr);
    EXPECT_TRUE(speed->isVisible());
    EXPECT_TRUE(speed->isEnabled());
    EXPECT_EQ(speed->currentText(), QString::fromUtf8("1 \u00d7"));
    const_cast<QComboBox*>(speed)->setCurrentIndex(speed->findText(QString::fromUtf8("0.5 \u00d7")));
    EXPECT_EQ(player()->speed(), 0.5);
    const QString tip = speed->toolTip();
    action("actPlaybackEveryFrame")->trigger();
    EXPECT_TRUE(waitFor([&] { return !speed->isEnabled(); }));
    EXPECT_NE(speed->toolTip(), tip);
    action("actPlaybackRealTime")->trigger();
    EXPECT_TRUE(waitFor([&] { return speed->isEnabled(); }));
    EXPECT_EQ(speed->currentText(), QString::fromUtf8("0.5 \u00d7"));
    // As in a chain file.
    player()->setSpeed(0.7);
    EXPECT_TRUE(waitFor([&] { return speed->currentText() == QString::fromUtf8("0.7 \u00d7"); }));
}

TEST_F(PlaybackBar, FramesAreCountedOutOfAll) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    const auto* box = controller()->bar()->findChild<QSpinBox*>("playbackNumber");
    EXPECT_EQ(box->text(), "Frame 0 of 10");
    action("actPlaybackLast")->trigger();
    EXPECT_TRUE(waitFor([&] { return box->text() == "Frame 9 of 10"; })) << qPrintable(box->text());
}

TEST_F(PlaybackBar, ShortcutsWorkInTheViewsAndAreListedInTheHelp) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    // There may be no window manager to do it.
    QApplication::setActiveWindow(window());
    firstView()->canvas()->setFocus();
    QTest::keyClick(firstView()->canvas(), Qt::Key_Period);
    ASSERT_TRUE(waitForShown(1));
    QTest::keyClick(firstView()->canvas(), Qt::Key_End);
    ASSERT_TRUE(waitForShown(9));
    QTest::keyClick(firstView()->canvas(), Qt::Key_Comma);
    ASSERT_TRUE(waitForShown(8));
    QTest::keyClick(firstView()->canvas(), Qt::Key_Space);
    ASSERT_TRUE(waitForShown(9));
    // The entry says "Pause" until the bar has seen the end.
    ASSERT_TRUE(waitFor([this] { return action("actPlaybackPlay")->text() == "&Play"; }));
    QStringList meanings;
    for (const auto& entry : CkShortcutsDialog::collect(window()->menuBar())) {
        meanings.append(entry.second);
    }
    for (const char* wanted : {"Play", "Step Forward", "Step Back", "First Frame", "Last Frame"}) {
        EXPECT_FALSE(meanings.filter(QLatin1String(wanted)).isEmpty()) << wanted;
    }
}

TEST_F(PlaybackBar, AChainThatWasStoppedShowsItsFrameAgain) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    action("actPlaybackLast")->trigger();
    ASSERT_TRUE(waitForShown(9));
    QSignalSpy frames(firstView(), &CkMdiView::receivedFrame);
    player()->chain()->stop();
    ASSERT_TRUE(player()->chain()->start());
    ASSERT_TRUE(waitFor([&] { return !frames.isEmpty(); }));
    EXPECT_EQ(player()->position(), 9);
}

TEST_F(PlaybackBar, DroppedFilesOpenWhateverTheyAre) {
    makeRecording(path("named.wrongly"), 2);
    QFile foreign(path("foreign.tif"));
    ASSERT_TRUE(foreign.open(QIODevice::WriteOnly));
    foreign.write("this is no picture");
    foreign.close();
    QMimeData content;
    content.setUrls({QUrl::fromLocalFile(path("named.wrongly")), QUrl::fromLocalFile(path("foreign.tif"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &drop);
    ASSERT_TRUE(waitFor([this] { return window()->findChild<QMessageBox*>("openChainBox") != nullptr; }));
    auto* box = window()->findChild<QMessageBox*>("openChainBox");
    EXPECT_TRUE(box->text().contains("foreign.tif")) << qPrintable(box->text());
    box->close();
    ASSERT_TRUE(waitForShown(0));
    EXPECT_EQ(player()->frameCount(), 2);
}

TEST_F(PlaybackBar, FilesThatCannotBeOpenedSayWhy) {
    QString error;
    CkFileOpener* opener = window()->fileOpener();
    EXPECT_FALSE(opener->open(path("missing.tif"), error));
    EXPECT_TRUE(error.contains("missing.tif")) << qPrintable(error);
    EXPECT_FALSE(opener->open(m_folder.path(), error));
    EXPECT_TRUE(error.contains("folder")) << qPrintable(error);
    QFile text(path("letter.txt"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("Dear reader");
    text.close();
    EXPECT_FALSE(opener->open(path("letter.txt"), error));
    EXPECT_TRUE(error.contains("letter.txt") && error.contains("Recordings")) << qPrintable(error);
    QFile broken(path("broken.png"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write(QByteArray::fromHex("89504e470d0a1a0a0000000d49484452"));
    broken.close();
    EXPECT_FALSE(opener->open(path("broken.png"), error));
    EXPECT_TRUE(error.contains("broken.png")) << qPrintable(error);
    EXPECT_TRUE(area()->views().isEmpty());
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST_F(PlaybackBar, ATruncatedRecordingShowsWhatIsLeftAndSaysWhatIsNot) {
    QFile whole(path("a.tif"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    QFile cut(path("cut.tif"));
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
    cut.write(whole.readAll().chopped(10));
    cut.close();
    ASSERT_TRUE(openFile(path("cut.tif")));
    ASSERT_TRUE(waitForShown(0));
    EXPECT_EQ(player()->frameCount(), 9);
    controller()->bar()->refresh();
    EXPECT_TRUE(label("playbackNote")->isVisible());
    EXPECT_TRUE(label("playbackNote")->text().contains("Damaged"));
    EXPECT_TRUE(label("playbackNote")->toolTip().contains("cut.tif\", page 10:"))
        << qPrintable(label("playbackNote")->toolTip());
    action("actPlaybackLast")->trigger();
    ASSERT_TRUE(waitForShown(8));
    expectSample(8);
}

TEST_F(PlaybackBar, OpeningALongFileCanBeCancelled) {
    // Millions of pages of one entry each: the search takes far longer than pressing a button.
    constexpr quint32 pages = 3'000'000;
    constexpr quint32 pageBytes = 18;
    QByteArray bytes(8 + qsizetype(pages) * pageBytes, '\0');
    char* next = bytes.data();
    const auto put = [&next](auto value) {
        std::memcpy(next, &value, sizeof(value));
        next += sizeof(value);
    };
    put(quint32(0x002a4949));
    put(quint32(8));
    for (quint32 page = 0; page < pages; ++page) {
        put(quint16(1));
        put(quint16(256)); // width
        put(quint16(3));
        put(quint32(1));
        put(quint32(1));
        put(page + 1 < pages ? 8 + (page + 1) * pageBytes : 0U);
    }
    QFile file(path("long.tif"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
    file.close();

    bool asked = false;
    QTimer presser;
    QObject::connect(&presser, &QTimer::timeout, window(), [&] {
        if (auto* dialog = window()->findChild<QDialog*>("openingRecording")) {
            asked = true;
            dialog->findChild<QPushButton*>()->click();
        }
    });
    presser.start(1);
    QString error = "to be cleared";
    EXPECT_FALSE(window()->fileOpener()->open(path("long.tif"), error));
    EXPECT_TRUE(asked);
    EXPECT_TRUE(error.isEmpty()) << qPrintable(error);
    EXPECT_TRUE(area()->views().isEmpty());
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST_F(PlaybackBar, ChainFilesKeepTheirRecording) {
    ASSERT_TRUE(openFile(path("a.tif")));
    ASSERT_TRUE(waitForShown(0));
    action("actPlaybackLoop")->trigger();
    QString error;
    ASSERT_TRUE(window()->chainFiles()->saveActive(path("played.zuchain"), error)) << qPrintable(error);
    ASSERT_TRUE(area()->closeAllViews(false));
    ASSERT_TRUE(waitFor([this] { return area()->views().isEmpty(); }));
    ASSERT_TRUE(openFile(path("played.zuchain")));
    ASSERT_TRUE(waitForShown(0));
    EXPECT_STREQ(firstView()->dataProvider()->metaObject()->className(), "CkVideoSource");
    EXPECT_TRUE(player()->isLoop());
}

} // namespace

TEST(PlaybackTime, IsWrittenLikeAClock) {
    EXPECT_EQ(CkPlaybackBar::timeText(0), "0:00.000");
    EXPECT_EQ(CkPlaybackBar::timeText(61'234'999'999), "1:01.234");
    EXPECT_EQ(CkPlaybackBar::timeText(3'661'001'000'000), "1:01:01.001");
}
