#include "tests/system/SystemFixture.h"
#include "zuCore/CkChainable.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"

#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QRegularExpression>

// The distance offset calibration as performed by a user: camera, menu, dialog, and the resulting cloud.

namespace {

constexpr double kWallM = 1.25;
constexpr double kBuiltInM = 0.2;
const QString kOffsetKey = QStringLiteral("ToF.OptRealDistandeOffsetM");

/// Passes pictures on without their modulation frequency, as a recording without one would.
class ForgetFrequency : public CkImageProvider {
public:
    bool queryOutputImageInfo(const SkPicBufInfo& in, SkPicBufInfo& out, const CkImageMetadata* pInMeta,
                              CkImageMetadata* pOutMeta) override {
        const bool known = CkImageProvider::queryOutputImageInfo(in, out, pInMeta, pOutMeta);
        if (pOutMeta != nullptr) {
            pOutMeta->modulationFrequency = 0.0F;
        }
        return known;
    }
    IkChainData* processData(IkChainData* pData) override {
        if (auto* frame = dynamic_cast<CkImageData*>(pData)) {
            CkImageMetadata metadata = frame->metadata();
            metadata.modulationFrequency = 0.0F;
            frame->setMetadata(metadata);
        }
        return pData;
    }
};

class CalibrationInViewer : public SystemFixture {
protected:
    /// A running camera in front of the wall, with its view.
    void openWall() {
        {
            QSettings settings(m_options.settingsFile, QSettings::IniFormat);
            settings.setValue(kOffsetKey, 0.0F);
            settings.setValue("ToF.OptCompensateDistorsion", true);
            settings.setValue("ToF.OptConfidenceThreshold", 1e6F); // every pixel counts
        }
        ASSERT_TRUE(start());
        m_camera = openWaveCamera();
        ASSERT_NE(m_camera, nullptr);
        set(m_camera, "sim_scene", 1);
        set(m_camera, "sim_wall_distance", kWallM);
        set(m_camera, "sim_distance_offset", kBuiltInM);
        set(m_camera, "sim_noise", 0);
        ASSERT_TRUE(cameras()->start(m_camera));
        ASSERT_TRUE(waitForFrame(firstView()));
    }

    /// Opens the dialog from the menu, fills it in and presses OK; whileMeasuring is called repeatedly until
    /// the dialog closes.
    void calibrate(const QString& distance, bool inches = false,
                   std::function<void(QDialog*)> whileMeasuring = {}) {
        bool started = false;
        m_onDialog = [&](QDialog* dialog) {
            auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("edDistance"));
            if (edit == nullptr) {
                return;
            }
            if (started) {
                if (whileMeasuring) {
                    whileMeasuring(dialog);
                }
                return;
            }
            started = true;
            edit->selectAll();
            QTest::keyClicks(edit, distance);
            auto* unit = dialog->findChild<QComboBox*>(QStringLiteral("cbUnit"));
            if (inches) {
                QTest::keyClick(unit, Qt::Key_Down);
            }
            EXPECT_EQ(unit->currentIndex(), inches ? 1 : 0);
            press(dialog, QDialogButtonBox::Ok);
        };
        clickPluginMenu("menuTofCalibrateOffset");
        EXPECT_TRUE(started);
        m_onDialog = {};
    }
    static void press(QDialog* dialog, QDialogButtonBox::StandardButton button) {
        QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
    }
    static int framesCounted(QDialog* dialog) {
        const QString progress = dialog->findChild<QLabel*>(QStringLiteral("lbProgress"))->text();
        return progress.section(QLatin1Char(' '), 1, 1).toInt();
    }

    double storedOffset() const {
        return QSettings(m_options.settingsFile, QSettings::IniFormat).value(kOffsetKey).toDouble();
    }

    CkMdiView* open3dView() {
        clickPluginMenu("menuOpenToF3dView");
        const QList<CkMdiView*> scenes = views(true);
        EXPECT_EQ(scenes.size(), 1);
        return scenes.value(0);
    }

    /// Distance in m of the middle 6 x 6 points of the cloud that a 3D view exports.
    double wallInCloud(CkMdiView* scene) {
        EXPECT_TRUE(waitForFrames(scene, 2));
        const QString name = m_folder.filePath(QStringLiteral("wall.ply"));
        bool saved = false;
        EXPECT_TRUE(
            QMetaObject::invokeMethod(scene, "savePly", Q_RETURN_ARG(bool, saved), Q_ARG(QString, name)));
        EXPECT_TRUE(saved);
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        std::vector<double> z;
        bool header = true;
        for (const QByteArray& line : file.readAll().split('\n')) {
            const QList<QByteArray> numbers = line.split(' ');
            if (header) {
                header = line != "end_header";
            } else if (numbers.size() == 3) {
                z.push_back(numbers[2].toDouble() / 1000.0);
            }
        }
        constexpr size_t width = 640;
        constexpr size_t height = 480;
        EXPECT_EQ(z.size(), width * height) << "no pixel may be left out";
        if (z.size() != width * height) {
            return 0.0;
        }
        double sum = 0.0;
        for (size_t y = height / 2 - 3; y < height / 2 + 3; ++y) {
            for (size_t x = width / 2 - 3; x < width / 2 + 3; ++x) {
                sum += z[y * width + x];
            }
        }
        return sum / 36.0;
    }

    void* m_camera = nullptr;
};

// Without noise only quantisation remains before the calibration. After it, as it averages the same pixels,
// only the errors of single precision and of the rays off the axis: far below 1 mm.
constexpr double kConverterM = 0.005;
constexpr double kCalibratedM = 0.001;

struct SkEntry {
    const char* distance;
    bool inches;
};

class CalibrationInUnits : public CalibrationInViewer, public ::testing::WithParamInterface<SkEntry> {};

TEST_P(CalibrationInUnits, StoresTheOffsetAndTheWallStandsAtItsPlace) {
    ASSERT_NO_FATAL_FAILURE(openWall());
    set(m_camera, "tof_readout_mode", 0); // the action configures the camera without asking
    calibrate(GetParam().distance, GetParam().inches);
    EXPECT_EQ(param(m_camera, "tof_readout_mode")->committedValue().toInt(), 4);
    EXPECT_EQ(blockTitles(), QStringList{"ToF Depth"});
    ASSERT_EQ(m_boxes.size(), 1);
    const QString pattern = GetParam().inches ? QStringLiteral("Measured distance: 57.* inches*")
                                              : QStringLiteral("Measured distance: 14?.* cm*");
    EXPECT_TRUE(QRegularExpression(QRegularExpression::wildcardToRegularExpression(pattern))
                    .match(m_boxes[0])
                    .hasMatch())
        << qPrintable(m_boxes[0]);
    EXPECT_NEAR(storedOffset(), -kBuiltInM, kConverterM);
    EXPECT_NEAR(wallInCloud(open3dView()), kWallM, kCalibratedM);
}
// 1.25 m; with the built-in offset 1.45 m are measured, 57.09 inches.
INSTANTIATE_TEST_SUITE_P(CalibrationInViewer, CalibrationInUnits,
                         ::testing::Values(SkEntry{"125", false}, SkEntry{"49.2126", true}));

TEST_F(CalibrationInViewer, OnA3dViewItGoesOnShowingAndTakesTheOffsetOverAtOnce) {
    ASSERT_NO_FATAL_FAILURE(openWall());
    CkMdiView* scene = open3dView();
    ASSERT_NE(scene, nullptr);
    EXPECT_NEAR(wallInCloud(scene), kWallM + kBuiltInM, kConverterM);
    ASSERT_EQ(area()->activeViewId(), scene->viewId());
    // Frames keep coming before OK starts the measurement, and during it.
    int framesWhileOpen = 0;
    const auto watch = QObject::connect(scene, &CkMdiView::receivedFrame, [&](qint32) {
        framesWhileOpen += QApplication::activeModalWidget() != nullptr ? 1 : 0;
    });
    calibrate(QStringLiteral("125"));
    QObject::disconnect(watch);
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_GE(framesWhileOpen, 5);
    EXPECT_NEAR(storedOffset(), -kBuiltInM, kConverterM);
    EXPECT_NEAR(wallInCloud(scene), kWallM, kCalibratedM);
}

TEST_F(CalibrationInViewer, CancelHalfWayLeavesTheOffsetAlone) {
    ASSERT_NO_FATAL_FAILURE(openWall());
    set(m_camera, "framerate", 2); // five measurements take long enough to press a button
    bool cancelled = false;
    calibrate(QStringLiteral("125"), false, [&cancelled](QDialog* dialog) {
        if (!cancelled && framesCounted(dialog) >= 1) {
            cancelled = true;
            press(dialog, QDialogButtonBox::Cancel);
        }
    });
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
    EXPECT_EQ(storedOffset(), 0.0);
}

TEST_F(CalibrationInViewer, CameraClosedWhileMeasuringLeavesADialogToCancel) {
    ASSERT_NO_FATAL_FAILURE(openWall());
    set(m_camera, "framerate", 2);
    bool closed = false;
    int looks = 0;
    calibrate(QStringLiteral("125"), false, [&](QDialog* dialog) {
        if (!closed && framesCounted(dialog) >= 1) {
            closed = true;
            cameras()->closeCamera(m_camera);
        } else if (closed && ++looks == 3) {
            EXPECT_TRUE(area()->views().isEmpty());
            EXPECT_LT(framesCounted(dialog), 5);
            press(dialog, QDialogButtonBox::Cancel);
        }
    });
    EXPECT_EQ(looks, 3);
    EXPECT_TRUE(m_boxes.isEmpty()) << qPrintable(m_boxes.join(u'\n'));
    EXPECT_EQ(storedOffset(), 0.0);
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST_F(CalibrationInViewer, CameraUnpluggedWhileMeasuringHoldsTheMeasurementUntilItIsBack) {
    ASSERT_NO_FATAL_FAILURE(openWall());
    set(m_camera, "framerate", 2);
    int counted = 0;
    int looks = 0;
    calibrate(QStringLiteral("125"), false, [&](QDialog* dialog) {
        if (counted == 0 && framesCounted(dialog) >= 1) {
            counted = framesCounted(dialog);
            cameras()->unplugCamera(m_camera);
        } else if (counted > 0 && ++looks == 3) {
            EXPECT_FALSE(area()->views().isEmpty());
            EXPECT_LT(framesCounted(dialog), 5);
            cameras()->plugCameraIn("sim:wave");
        }
    });
    EXPECT_GE(looks, 3);
    ASSERT_EQ(m_boxes.size(), 1) << qPrintable(m_boxes.join(u'\n'));
    EXPECT_NEAR(storedOffset(), -kBuiltInM, kConverterM);
}

TEST_F(CalibrationInViewer, MetadataWithoutModulationFrequencyAreToldAndStoreNothing) {
    ASSERT_NO_FATAL_FAILURE(openWall());
    CkChainable* source = firstView()->dataProvider();
    CkChain* chain = source->chain();
    chain->stop();
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, new ForgetFrequency, source));
    ASSERT_TRUE(chain->start());
    calibrate(QStringLiteral("125"));
    ASSERT_EQ(m_boxes, QStringList{"Modulation frequency not present in image metadata."});
    EXPECT_EQ(storedOffset(), 0.0);
    EXPECT_EQ(chain->blocks().size(), 3) << "source, the block that forgets, and depth behind it";
}

} // namespace
