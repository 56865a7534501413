// Recordings with the real time-of-flight plug-in and without any camera.

#include "tests/host/viewer/playback/RecordingViewFixture.h"

#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/panels/chain/CkChainPanel.h"
#include "host/viewer/playback/CkDepthImportDialog.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <memory>

namespace {

const QString kToFBlock = QStringLiteral("com.orvane.Pictor.CkToFProcessCnbl");

class ToFRecording : public RecordingViewFixture {
protected:
    void SetUp() override {
        RecordingViewFixture::SetUp();
        m_options.pluginPaths = QStringList{ZU_TOF_PLUGIN};
        ASSERT_TRUE(start());
    }

    void recordCamera(const QString& id, const QString& file) {
        void* camera = cameras()->openCamera(id, true);
        ASSERT_NE(camera, nullptr);
        ASSERT_TRUE(cameras()->start(camera));
        ASSERT_TRUE(waitForFrame(firstView()));
        QString error;
        CkRecordingJob* job = recordings()->record(recordings()->sourceOfCamera(camera), file,
                                                   EkRecordingCompression::None, error);
        ASSERT_NE(job, nullptr) << qPrintable(error);
        ASSERT_TRUE(waitFor([job] { return job->counters().written >= 4; }));
        job->stop();
        ASSERT_TRUE(waitUntilFinished(job));
        cameras()->closeAllCameras();
        ASSERT_TRUE(waitFor([this] { return area()->views().isEmpty(); }));
    }

    /// The 3D view that the menu opens on the active view; boxes are a failure.
    CkMdiView* open3dView() {
        auto* open = window()->findChild<QAction*>("menuOpenToF3dView");
        for (const auto& loaded : m_session->plugins()->plugins()) {
            open = open != nullptr ? open : loaded.object->findChild<QAction*>("menuOpenToF3dView");
        }
        if (open == nullptr) {
            ADD_FAILURE() << "the plug-in offers no 3D view";
            return nullptr;
        }
        const int followed = area()->activeViewId();
        QStringList boxes;
        QTimer closer;
        QObject::connect(&closer, &QTimer::timeout, window(), [&] {
            if (auto* box = window()->findChild<QMessageBox*>()) {
                boxes.append(box->text());
                box->close();
            }
        });
        closer.start(20);
        open->trigger();
        m_boxes = boxes;
        for (CkMdiView* view : area()->views()) {
            if (view->connectedViewId() == followed) {
                return view;
            }
        }
        return nullptr;
    }

    /// Vertices of the cloud that the view exports.
    qint64 pointsOf(CkMdiView* view) const {
        const QString file = path("cloud.ply");
        bool ok = false;
        if (!QMetaObject::invokeMethod(view, "savePly", Q_RETURN_ARG(bool, ok), Q_ARG(QString, file)) ||
            !ok) {
            return 0;
        }
        QFile ply(file);
        EXPECT_TRUE(ply.open(QIODevice::ReadOnly));
        for (QByteArray line = ply.readLine(); !line.isEmpty(); line = ply.readLine()) {
            if (line.startsWith("element vertex ")) {
                return line.mid(15).trimmed().toLongLong();
            }
        }
        return 0;
    }

    QStringList m_boxes;
};

TEST_F(ToFRecording, A3dViewOpensOnARecordingOfRawPhases) {
    ASSERT_NO_FATAL_FAILURE(recordCamera("sim:wave", path("wave.tif")));
    ASSERT_TRUE(openFile(path("wave.tif")));
    ASSERT_TRUE(waitForFrame(firstView()));
    CkMdiView* scene = open3dView();
    ASSERT_NE(scene, nullptr);
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join('\n'));
    // The bar stays visible for the following view, and stepping updates the cloud.
    area()->setActiveView(scene->viewId());
    ASSERT_NE(player(), nullptr);
    EXPECT_TRUE(controller()->bar()->isVisible());
    action("actPlaybackForward")->trigger();
    ASSERT_TRUE(waitFor([this] { return player()->position() == 1; }));
    EXPECT_TRUE(waitFor([&] { return pointsOf(scene) > 1000; }));
}

TEST_F(ToFRecording, AToFBlockWorksOnAPausedRecordingAndItsOutputIsRecorded) {
    ASSERT_NO_FATAL_FAILURE(recordCamera("sim:hybrid", path("hybrid.tif")));
    // Members of a later version are passed through the block.
    CkRecordingWriter writer;
    {
        CkRecordingReader reader;
        ASSERT_TRUE(reader.open(path("hybrid.tif"), nullptr));
        ASSERT_TRUE(writer.open(path("later.tif"), {}));
        for (qint64 i = 0; i < reader.frameCount(); ++i) {
            const auto frame = reader.read(i, nullptr);
            ASSERT_TRUE(writer.write(frame->picBuf(), frame->metadata(), {{"weather", "rain"}}));
        }
        ASSERT_TRUE(writer.close());
    }
    ASSERT_TRUE(openFile(path("later.tif")));
    ASSERT_TRUE(waitForFrame(firstView()));
    CkChainable* block = window()->chainPanel()->addBlock(kToFBlock, false);
    ASSERT_NE(block, nullptr);
    const auto shows = [this](EkImageDataType type, quint32 channels) {
        const CkImageData* shown = firstView()->currentImage();
        return shown != nullptr && shown->picBuf().dataType == type && shown->picBuf().channels == channels;
    };
    // The frame is delivered again through the new block, first as an amplitude, without starting playback.
    ASSERT_TRUE(waitFor([&] { return shows(EkImageDataType::UInt16, 1); }));
    const std::unique_ptr<QWidget> settings(block->configurationWidget());
    for (QRadioButton* choice : settings->findChildren<QRadioButton*>()) {
        if (choice->text().startsWith("Phase shift")) {
            choice->click();
        }
    }
    ASSERT_TRUE(waitFor([&] { return shows(EkImageDataType::Float32, 2); }));
    QString error;
    CkRecordingJob* job = recordings()->record(recordings()->outputToRecord(), path("depth.tif"),
                                               EkRecordingCompression::None, error);
    ASSERT_NE(job, nullptr) << qPrintable(error);
    action("actPlaybackPlay")->trigger();
    ASSERT_TRUE(waitFor([job] { return job->counters().written >= 2; }));
    job->stop();
    ASSERT_TRUE(waitUntilFinished(job));
    CkRecordingReader reader;
    ASSERT_TRUE(reader.open(path("depth.tif"), &error)) << qPrintable(error);
    SkFrameDescription page;
    for (qint64 i = 0; i < reader.frameCount(); ++i) {
        ASSERT_TRUE(reader.describe(i, page, &error));
        EXPECT_EQ(page.info.dataType, EkImageDataType::Float32);
        EXPECT_EQ(page.object["weather"].toString(), "rain");
    }
}

TEST_F(ToFRecording, A3dViewTakesImportedDepths) {
    // 100 x 50 pixels in millimetres, a tenth of them without a measurement.
    QImage image(100, 50, QImage::Format_Grayscale16);
    for (int y = 0; y < 50; ++y) {
        auto* row = reinterpret_cast<quint16*>(image.scanLine(y));
        for (int x = 0; x < 100; ++x) {
            row[x] = quint16(x % 10 == 0 ? 0 : 1000 + 10 * x + y);
        }
    }
    ASSERT_TRUE(image.save(path("depth.png")));
    QTimer accepter;
    QObject::connect(&accepter, &QTimer::timeout, window(), [&] {
        if (auto* dialog = window()->findChild<CkDepthImportDialog*>()) {
            dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
        }
    });
    accepter.start(20);
    ASSERT_TRUE(openFile(path("depth.png")));
    accepter.stop();
    ASSERT_TRUE(waitForFrame(firstView()));
    CkMdiView* scene = open3dView();
    ASSERT_NE(scene, nullptr);
    EXPECT_TRUE(waitFor([&] { return pointsOf(scene) == 100 * 50 * 9 / 10; }));
}

} // namespace
