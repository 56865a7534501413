#include "host/viewer/base/ChainFile.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/base/ViewerVersion.h"
#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "host/viewer/panels/chain/ChainEditor.h"
#include "host/viewer/playback/CkRecordButton.h"
#include "host/viewer/playback/RecordedChain.h"
#include "tests/host/viewer/ViewerBlocks.h"
#include "tests/host/viewer/playback/RecordingViewFixture.h"
#include "tests/support/FullDisk.h"
#include "zuCore/CkLut.h"
#include "zuCore/CkRTTI.h"

#include <QDockWidget>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QToolButton>

namespace {

class RecordingManager : public RecordingViewFixture {
protected:
    void SetUp() override {
        RecordingViewFixture::SetUp();
        CkRTTI::instance()->registerClass(nullptr, &CkDemoBlock::staticMetaObject, "CkChainable");
        ASSERT_TRUE(start());
        m_camera = openGrey();
        ASSERT_TRUE(cameras()->start(m_camera));
        ASSERT_TRUE(waitForFrame(firstView()));
    }

    CkRecordingJob* record(CkChainable* block, const QString& file) const {
        QString error;
        CkRecordingJob* job = recordings()->record(block, file, EkRecordingCompression::None, error);
        EXPECT_NE(job, nullptr) << qPrintable(error);
        return job;
    }
    static bool waitForWritten(const CkRecordingJob* job, qint64 frames) {
        return waitFor([=] { return job->counters().written >= frames; });
    }
    QLabel* label(const char* name) const {
        return controller()->panel()->findChild<QLabel*>(QLatin1String(name));
    }
    QWidget* dock() const { return window()->findChild<QDockWidget*>("dockRecordings"); }

    void* m_camera = nullptr;
};

TEST_F(RecordingManager, ACameraIsRecordedAndPlayed) {
    EXPECT_FALSE(dock()->isVisible());
    CkRecordingJob* job = record(recordings()->sourceToRecord(), path("camera.tif"));
    EXPECT_TRUE(dock()->isVisible());
    auto* lamp = window()->findChild<QLabel*>("recordingLamp");
    EXPECT_TRUE(lamp->isVisible());
    ASSERT_TRUE(waitForWritten(job, 5));
    EXPECT_TRUE(
        waitFor([&] { return lamp->text().contains("Recording: ") && !lamp->text().contains(": 0 "); }));
    EXPECT_TRUE(waitFor([&] { return !label("recordingCounters")->text().startsWith("0 frames"); }))
        << qPrintable(label("recordingCounters")->text());
    EXPECT_TRUE(label("recordingCounters")->text().contains("in the queue"));
    controller()->panel()->findChild<QToolButton*>("btnStopRecording")->click();
    ASSERT_TRUE(waitUntilFinished(job));
    EXPECT_FALSE(lamp->isVisible());
    const CkRecorder::SkState state = job->counters();
    EXPECT_TRUE(state.error.isEmpty()) << qPrintable(state.error);
    EXPECT_EQ(quint64(QFileInfo(path("camera.tif")).size()), state.bytes);
    EXPECT_TRUE(
        label("recordingCounters")->text().startsWith(QStringLiteral("%1 frames").arg(state.written)));

    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("camera.tif"), nullptr));
    EXPECT_EQ(reader.frameCount(), state.written);
    EXPECT_EQ(reader.recordingInfo().software, ViewerVersion::text());
    EXPECT_TRUE(reader.recordingInfo().chainXml.contains("sim:grey"));
    EXPECT_EQ(reader.recordingInfo().viewSettings["kind"].toString(), "picture");

    controller()->panel()->findChild<QToolButton*>("btnOpenRecording")->click();
    ASSERT_EQ(area()->views().size(), 2);
    ASSERT_NE(player(), nullptr);
    EXPECT_EQ(player()->frameCount(), state.written);
    controller()->panel()->findChild<QToolButton*>("btnForgetRecording")->click();
    EXPECT_TRUE(recordings()->jobs().isEmpty());
}

TEST_F(RecordingManager, TheButtonOfTheCameraAsksForAFile) {
    auto* button = cameras()->panel(m_camera)->findChild<CkRecordButton*>();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), "Record...");
    const QString file = path("chosen");
    QTimer chooser;
    QObject::connect(&chooser, &QTimer::timeout, window(), [&] {
        if (auto* dialog = window()->findChild<QFileDialog*>("recordDialog")) {
            chooser.stop();
            dialog->findChild<QLineEdit*>()->setText(file);
            QMetaObject::invokeMethod(dialog, "accept");
        }
    });
    chooser.start(20);
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_EQ(recordings()->jobs().size(), 1);
    CkRecordingJob* job = recordings()->jobs().first();
    EXPECT_TRUE(job->fileName().endsWith("chosen.tif"));
    EXPECT_EQ(button->text(), "Stop Recording");
    ASSERT_TRUE(waitForWritten(job, 1));
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_TRUE(waitUntilFinished(job));
    EXPECT_EQ(button->text(), "Record...");
}

TEST_F(RecordingManager, AFullDiskEndsTheRecordingAndNothingElse) {
    const CkRecordingJob* job = nullptr;
    {
        const FullDisk disk(3'000'000);
        job = record(recordings()->sourceToRecord(), path("full.tif"));
        ASSERT_TRUE(waitUntilFinished(job));
    }

    const CkRecorder::SkState state = job->counters();
    EXPECT_GE(state.dropped, 1);
    EXPECT_TRUE(state.error.contains("full.tif")) << qPrintable(state.error);
    EXPECT_TRUE(label("recordingDrops")->isVisible());
    EXPECT_TRUE(label("recordingDrops")->text().contains(QStringLiteral("%1 dropped").arg(state.dropped)));
    EXPECT_TRUE(label("recordingDrops")->text().contains("full.tif"));
    auto* box = window()->findChild<QMessageBox*>("recordingBox");
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->text().contains("full.tif")) << qPrintable(box->text());
    box->close();
    // The camera keeps running, and the frames written can be played.
    QSignalSpy frames(firstView(), &CkMdiView::receivedFrame);
    EXPECT_TRUE(waitFor([&] { return frames.size() >= 2; }));
    if (state.written > 0) {
        ASSERT_TRUE(openFile(path("full.tif")));
        EXPECT_EQ(player()->frameCount(), state.written);
        EXPECT_TRUE(player()->errorMessage().isEmpty());
    }
}

TEST_F(RecordingManager, FilesThatCannotBeWrittenAreNamed) {
    QString error;
    for (const QString& file : {path("none/a.tif"), m_folder.path(), QStringLiteral("/dev/full")}) {
        error.clear();
        EXPECT_EQ(
            recordings()->record(recordings()->sourceToRecord(), file, EkRecordingCompression::None, error),
            nullptr);
        EXPECT_TRUE(error.contains(file)) << qPrintable(error);
    }
    EXPECT_TRUE(recordings()->jobs().isEmpty());
    EXPECT_EQ(recordings()->record(nullptr, path("a.tif"), EkRecordingCompression::None, error), nullptr);
    EXPECT_TRUE(waitForFrame(firstView()));
}

TEST_F(RecordingManager, AFileInUseIsNotOverwritten) {
    makeRecording(path("played.tif"), 3);
    ASSERT_TRUE(openFile(path("played.tif")));
    CkChainable* source = recordings()->sourceOfCamera(m_camera);
    ASSERT_NE(source, nullptr);
    QString error;
    EXPECT_EQ(recordings()->record(source, path("played.tif"), EkRecordingCompression::None, error), nullptr);
    EXPECT_TRUE(error.contains("played.tif")) << qPrintable(error);
    EXPECT_EQ(recordings()->record(
                  source, m_folder.filePath("../" + QFileInfo(m_folder.path()).fileName() + "/played.tif"),
                  EkRecordingCompression::None, error),
              nullptr);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("played.tif"), nullptr));
    EXPECT_EQ(reader.frameCount(), 3);
    CkRecordingJob* job = record(source, path("twice.tif"));
    EXPECT_EQ(recordings()->record(source, path("twice.tif"), EkRecordingCompression::None, error), nullptr);
    job->stop();
    ASSERT_TRUE(waitUntilFinished(job));
}

TEST_F(RecordingManager, ASourceIsFollowedWhenBlocksAreInsertedAfterIt) {
    CkChainable* source = recordings()->sourceToRecord();
    CkChain* chain = source->chain();
    CkRecordingJob* job = record(source, path("raw.tif"));
    ASSERT_TRUE(waitForWritten(job, 1));
    auto* block = new CkDemoBlock;
    QString error;
    ASSERT_TRUE(ChainEditor::insertAfter(block, source, error)) << qPrintable(error);
    block->m_bFail = true; // nothing leaves the block any more
    const qint64 before = job->counters().written;
    EXPECT_TRUE(waitForWritten(job, before + 3));
    EXPECT_EQ(job->block(), source);
    EXPECT_EQ(job->state(), CkRecordingJob::EkState::Running);
    // A recording ends with its chain.
    ASSERT_TRUE(area()->closeAllViews(false));
    ASSERT_TRUE(waitUntilFinished(job));
    EXPECT_EQ(CkChainManager::instance()->chains().contains(chain), false);
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("raw.tif"), nullptr));
    EXPECT_EQ(reader.frameCount(), job->counters().written);
}

TEST_F(RecordingManager, TheViewerEndsWithARecordingRunning) {
    CkRecordingJob* job = record(recordings()->sourceToRecord(), path("end.tif"));
    ASSERT_TRUE(waitForWritten(job, 2));
    const qint64 written = job->counters().written;
    m_session.reset();
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("end.tif"), nullptr));
    EXPECT_GE(reader.frameCount(), written);
    EXPECT_TRUE(reader.damage().isEmpty());
}

/// Answers the question whether to open the recorded chain.
class Answerer : public QObject {
public:
    Answerer(CkMainWindow* window, const QString& button) : m_window(window), m_button(button) {
        m_timer.setInterval(10);
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* box = m_window->findChild<QMessageBox*>("restoreChainBox");
            if (box == nullptr) {
                return;
            }
            m_text = box->text();
            for (QAbstractButton* offered : box->buttons()) {
                if (offered->text().remove(QLatin1Char('&')) == m_button) {
                    offered->click();
                    return;
                }
            }
        });
        m_timer.start();
    }
    QString text() const { return m_text; }

private:
    CkMainWindow* m_window;
    QString m_button;
    QString m_text;
    QTimer m_timer;
};

TEST_F(RecordingManager, AChainAfterTheRecordedSourceIsOffered) {
    CkChainable* source = recordings()->sourceToRecord();
    auto* block = new CkDemoBlock;
    block->m_iSetting = 77;
    QString error;
    ASSERT_TRUE(ChainEditor::insertAfter(block, source, error)) << qPrintable(error);
    CkRecordingJob* job = record(source, path("chain.tif"));
    ASSERT_TRUE(waitForWritten(job, 3));
    job->stop();
    ASSERT_TRUE(waitUntilFinished(job));
    cameras()->closeAllCameras();
    ASSERT_TRUE(waitFor([this] { return area()->views().isEmpty(); }));

    {
        const Answerer answer(window(), "With the Chain");
        ASSERT_TRUE(openFile(path("chain.tif")));
        EXPECT_TRUE(answer.text().contains("Demo block")) << qPrintable(answer.text());
    }
    ASSERT_EQ(CkChainManager::instance()->chains().size(), 1);
    const QList<CkChainable*> blocks = CkChainManager::instance()->chains().first()->blocks();
    ASSERT_EQ(blocks.size(), 2);
    EXPECT_STREQ(blocks[0]->metaObject()->className(), "CkVideoSource");
    EXPECT_EQ(blocks[1]->title(), "Demo 77");
    EXPECT_EQ(area()->views().size(), 2);
    for (CkMdiView* view : area()->views()) {
        EXPECT_TRUE(waitForFrame(view));
    }
    ASSERT_TRUE(area()->closeAllViews(false));
    ASSERT_TRUE(waitFor([] { return CkChainManager::instance()->chains().isEmpty(); }));
    {
        const Answerer answer(window(), "Pictures Only");
        ASSERT_TRUE(openFile(path("chain.tif")));
    }
    ASSERT_EQ(CkChainManager::instance()->chains().size(), 1);
    EXPECT_EQ(CkChainManager::instance()->chains().first()->blocks().size(), 1);
    {
        const Answerer answer(window(), "Cancel");
        EXPECT_FALSE(openFile(path("chain.tif")));
    }
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
}

TEST_F(RecordingManager, TheOutputOfAChainIsNotProcessedTwice) {
    CkChainable* source = recordings()->sourceToRecord();
    QString error;
    ASSERT_TRUE(ChainEditor::insertAfter(new CkDemoBlock, source, error)) << qPrintable(error);
    CkChainable* output = recordings()->outputToRecord();
    EXPECT_NE(output, source);
    CkRecordingJob* job = record(output, path("output.tif"));
    ASSERT_TRUE(waitForWritten(job, 1));
    job->stop();
    ASSERT_TRUE(waitUntilFinished(job));
    ASSERT_TRUE(openFile(path("output.tif"))); // no question
    EXPECT_EQ(player()->chain()->blocks().size(), 1);
}

TEST_F(RecordingManager, ColoursAndContrastAreRestored) {
    CkImageView* view = firstView();
    CkLut* lut = view->viewLut(nullptr, nullptr, nullptr);
    lut->setPseudoColorIndex(2);
    lut->allocRgbTable(0);
    view->setViewLut(lut, true, false, true);
    view->setGamma(1.5);
    view->setWindow({20.0, 180.0});
    CkRecordingJob* job = record(recordings()->sourceToRecord(), path("looks.tif"));
    ASSERT_TRUE(waitForWritten(job, 1));
    job->stop();
    ASSERT_TRUE(waitUntilFinished(job));
    ASSERT_TRUE(openFile(path("looks.tif")));
    auto* played = qobject_cast<CkImageView*>(area()->activeView());
    ASSERT_NE(played, nullptr);
    ASSERT_NE(played, view);
    ASSERT_TRUE(waitForFrame(played));
    ASSERT_TRUE(waitFor([=] { return !played->autoContrast(); }));
    EXPECT_EQ(played->window().low, 20.0);
    EXPECT_EQ(played->window().high, 180.0);
    EXPECT_DOUBLE_EQ(played->gamma(), 1.5);
    EXPECT_EQ(played->viewLut(nullptr, nullptr, nullptr)->pseudoColorIndex(), 2);
}

TEST(RecordedChain, ChainsWithoutAnOwnerAreRefused) {
    QDomDocument doc;
    const QDomElement settings = doc.createElement("block");
    QString error;
    SkRecordingInfo info;
    EXPECT_TRUE(RecordedChain::forPlayback(info, settings, error).isNull());
    EXPECT_TRUE(error.isEmpty());
    for (const QString& bad :
         {QStringLiteral("no xml"), QStringLiteral("<svg/>"), QStringLiteral("<chain><a></chain>"),
          QStringLiteral("<chain>") + QStringLiteral("<a>").repeated(200'000)}) {
        error.clear();
        info.chainXml = bad;
        EXPECT_TRUE(RecordedChain::forPlayback(info, settings, error).isNull());
        EXPECT_FALSE(error.isEmpty());
    }
}

// Looks shallow to a check that only counts characters.
TEST(RecordedChain, DeepChainsAreRefusedWhateverTheirElementsAreNamed) {
    QDomDocument doc;
    const QDomElement settings = doc.createElement("block");
    constexpr int levels = 150'000;
    for (const auto& [begin, end] : {std::pair("<_a>", "</_a>"), std::pair("<a b=\"/>\">", "</a>"),
                                     std::pair("<\u00e4>", "</\u00e4>")}) {
        SkRecordingInfo info;
        info.chainXml = QStringLiteral("<chain version=\"1\">") + QString::fromUtf8(begin).repeated(levels) +
                        QString::fromUtf8(end).repeated(levels) + QStringLiteral("</chain>");
        QString error;
        EXPECT_TRUE(RecordedChain::forPlayback(info, settings, error).isNull()) << begin;
        EXPECT_TRUE(error.contains("nested deeper than 100 levels")) << qPrintable(error);
    }
}

TEST(RecordedChain, OnlyWhatTheRecordedBlockFeedsIsKept) {
    SkRecordingInfo info;
    info.chainXml = QStringLiteral("<chain version=\"1\"><block class=\"s\" id=\"0\" predecessors=\"\"/>"
                                   "<block class=\"other\" id=\"1\" predecessors=\"0\"/>"
                                   "<block class=\"here\" id=\"2\" predecessors=\"0\" recorded=\"1\"/>"
                                   "<block class=\"next\" id=\"3\" predecessors=\"2\"/>"
                                   "<block class=\"both\" id=\"4\" predecessors=\"1 3\"/>"
                                   "<block class=\"last\" id=\"5\" predecessors=\"3\"/></chain>");
    QDomDocument doc;
    QDomElement settings = doc.createElement("block");
    settings.setAttribute("loop", 1);
    QString error;
    const QDomDocument kept = RecordedChain::forPlayback(info, settings, error);
    ASSERT_FALSE(kept.isNull());
    QStringList classes;
    for (QDomElement block = kept.documentElement().firstChildElement(); !block.isNull();
         block = block.nextSiblingElement()) {
        classes.append(block.attribute("class"));
    }
    EXPECT_EQ(classes, QStringList({"com.orvane.Pictor.CkVideoSource", "next", "last"}));
    EXPECT_EQ(kept.documentElement().firstChildElement().attribute("loop"), "1");
    EXPECT_EQ(kept.documentElement().firstChildElement().attribute("id"), "2");
}

} // namespace
