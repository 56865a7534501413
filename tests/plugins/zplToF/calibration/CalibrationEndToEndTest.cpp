#include "tests/plugins/zplToF/calibration/CalibrationFixture.h"

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "sim/camera/CkSimCameraDriver.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraParam.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkCameraSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <QSignalSpy>
#include <cmath>

// End to end: a camera with a built-in error in front of a wall, its chain, the view on it, the calibration
// on the view, and a 3D view that shows the wall afterwards.

namespace {
constexpr int kPatience = 60000; // ms
constexpr double kWall = 1.25;   // m
constexpr double kError = 0.2;   // m
constexpr int kMiddle = 3;       // half the side of the square that the calibration averages

class CalibrationEndToEndTest : public CalibrationTest {
protected:
    static void SetUpTestSuite() {
        CkCameraManager::instance()->addDriver(std::make_unique<CkSimCameraDriver>());
    }

    void SetUp() override {
        QString sError;
        camera = CkCameraManager::instance()->openCamera(CkSimCameraDriver::kWaveId, &sError);
        ASSERT_NE(camera, nullptr) << sError.toStdString();
        CkCameraParameters* parameters = CkCameraManager::instance()->cameraParameters(camera);
        const std::pair<const char*, double> values[] = {{"sim_scene", 1},
                                                         {"sim_wall_distance", kWall},
                                                         {"sim_distance_offset", kError},
                                                         {"tof_modulation_frequency", 20}};
        for (const auto& [name, fValue] : values) {
            CkCameraParam* param = parameters->findParam(QLatin1String(name));
            ASSERT_NE(param, nullptr) << name;
            ASSERT_TRUE(param->setParamValue(CkValue(fValue))) << name;
            ASSERT_TRUE(param->commit()) << name;
        }
        ASSERT_NEAR(parameters->findParam("sim_distance_offset")->committedValue().toDouble(), kError, 1e-9);

        chain = CkChainManager::instance()->createChain();
        auto* source = new CkCameraSource(camera);
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
        block = new CkToFProcessCnbl;
        block->setTransform(CkToFProcessCnbl::Depth, false);
        ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, block, source));
        shown = std::make_unique<CkMdiView>(block);
        delegate.registerView(shown.get());
        ASSERT_TRUE(chain->start());
        ASSERT_TRUE(CkCameraManager::instance()->startAcquisition(camera, &sError)) << sError.toStdString();
        ASSERT_TRUE(QTest::qWaitFor([this] { return shown->currentImage() != nullptr; }, kPatience));
    }

    void TearDown() override {
        dialog.reset();
        CkCameraManager::instance()->closeCamera(camera);
        CkChainManager::instance()->closeChain(chain);
        shown.reset();
    }

    void calibrate(const QString& sDistance, bool bInches) {
        open(shown.get());
        typeDistance(sDistance);
        if (bInches) {
            chooseInches();
        }
        click(QDialogButtonBox::Ok);
        ASSERT_TRUE(QTest::qWaitFor([this] { return !dialog->isVisible(); }, kPatience));
        EXPECT_EQ(dialog->result(), QDialog::Accepted);
        ASSERT_EQ(driver.boxes.size(), 1);
        EXPECT_EQ(driver.boxes[0].title, "Result");
    }

    // Nine measurements at this rate leave time for an action halfway through.
    void slowDown() {
        CkCameraParam* rate = CkCameraManager::instance()->cameraParameters(camera)->findParam("framerate");
        ASSERT_TRUE(rate != nullptr && rate->setParamValue(CkValue(4.0)) && rate->commit());
    }

    bool waitForCounted(int iFrames) {
        return QTest::qWaitFor(
            [this, iFrames] { return progress().section(QLatin1Char(' '), 1, 1).toInt() >= iFrames; },
            kPatience);
    }

    struct SkWall {
        double fDistance; // mean, m
        double fScatter;  // standard deviation of one pixel, m
        int iPixels;
    };

    // The middle of the wall in a 3D view that is opened now.
    SkWall wallIn3d() {
        delegate.store("ToF.OptCompensateDistorsion", true);
        delegate.store("ToF.OptConfidenceThreshold", 1e6F);
        CkToF3DMdiView view3d(shown->viewId(), -1, nullptr, nullptr);
        CkImageData* frame = shown->currentImage();
        view3d.updateWithConnectedImageData(frame, true);
        view3d.updatePointCloudGeometry();
        const quint32 uiWidth = frame->picBuf().width;
        const quint32 uiHeight = frame->picBuf().height;
        EXPECT_EQ(view3d.cloud().exportPoints().size(), size_t(uiWidth) * uiHeight)
            << "no pixel may be left out";
        double fSum = 0.0;
        double fSquares = 0.0;
        int iPixels = 0;
        for (quint32 y = uiHeight / 2 - kMiddle; y < uiHeight / 2 + kMiddle; ++y) {
            for (quint32 x = uiWidth / 2 - kMiddle; x < uiWidth / 2 + kMiddle; ++x) {
                const double fZ = double(view3d.cloud().exportPoints()[size_t(y) * uiWidth + x].z) / 1000.0;
                fSum += fZ;
                fSquares += fZ * fZ;
                ++iPixels;
            }
        }
        const double fMean = fSum / iPixels;
        return {fMean, std::sqrt(std::max(0.0, fSquares / iPixels - fMean * fMean)), iPixels};
    }

    // Five standard deviations of the difference of two means, that of the five calibration frames and that
    // of the frame shown, from the scatter of the frame itself; plus 1 mm for errors other than noise:
    // quantisation by the converter, rays slightly off the axis, single precision.
    static double noiseBound(const SkWall& wall) {
        return 5.0 * wall.fScatter * std::sqrt(1.0 / (5.0 * wall.iPixels) + 1.0 / wall.iPixels) + 0.001;
    }

    void expectWallAtItsPlace() {
        const SkWall wall = wallIn3d();
        EXPECT_NEAR(wall.fDistance, kWall, noiseBound(wall))
            << "scatter of a pixel " << wall.fScatter << " m";
        // The bound is meaningful: far below the error that the calibration removed.
        EXPECT_LT(noiseBound(wall), kError / 4.0);
    }

    void* camera = nullptr;
    CkChain* chain = nullptr;
    CkToFProcessCnbl* block = nullptr;
    std::unique_ptr<CkMdiView> shown;
};
} // namespace

TEST_F(CalibrationEndToEndTest, TheWallStandsAtItsDistanceAfterCalibratingInCentimetres) {
    delegate.store(key, 0.0F);
    const SkWall before = wallIn3d();
    EXPECT_NEAR(before.fDistance, kWall + kError, noiseBound(before));
    calibrate("125", false);
    EXPECT_TRUE(driver.boxes[0].text.contains(" cm\n")) << driver.boxes[0].text.toStdString();
    EXPECT_NEAR(delegate.stored(key).toDouble(), -kError, noiseBound(before));
    expectWallAtItsPlace();
}

TEST_F(CalibrationEndToEndTest, TheWallStandsAtItsDistanceAfterCalibratingInInches) {
    calibrate("49.2126", true); // 1.25 / 0.0254
    EXPECT_TRUE(driver.boxes[0].text.contains(" inches\n")) << driver.boxes[0].text.toStdString();
    expectWallAtItsPlace();
}

TEST_F(CalibrationEndToEndTest, AnAbortHalfWayLeavesTheOffsetAlone) {
    ASSERT_NO_FATAL_FAILURE(slowDown());
    delegate.store(key, 0.125F);
    open(shown.get());
    chooseFrames(9);
    typeDistance("125");
    click(QDialogButtonBox::Ok);
    ASSERT_TRUE(waitForCounted(3));
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    const QString sAtCancel = progress();
    QSignalSpy frames(shown.get(), &CkMdiView::receivedFrame);
    ASSERT_TRUE(QTest::qWaitFor([&frames] { return frames.count() >= 2; }, kPatience));
    EXPECT_EQ(progress(), sAtCancel);
    EXPECT_EQ(delegate.stored(key).toFloat(), 0.125F);
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CalibrationEndToEndTest, FramesOfAWrongKindInBetweenDoNotSpoilTheResult) {
    ASSERT_NO_FATAL_FAILURE(slowDown());
    open(shown.get());
    chooseFrames(9);
    typeDistance("125");
    click(QDialogButtonBox::Ok);
    ASSERT_TRUE(waitForCounted(2));
    // Amplitude pictures at first; the first error box switches back.
    bool bSwitched = false;
    driver.onBox = [&](QMessageBox* pBox) {
        if (!bSwitched && pBox->icon() == QMessageBox::Critical) {
            bSwitched = true;
            block->setTransform(CkToFProcessCnbl::Depth, true);
        }
        QTest::keyClick(pBox, Qt::Key_Return);
    };
    block->setTransform(CkToFProcessCnbl::Amplitude, true);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !dialog->isVisible(); }, kPatience));
    ASSERT_GE(driver.boxes.size(), 2);
    EXPECT_EQ(driver.boxes.first().text, wrongKind);
    EXPECT_EQ(driver.boxes.last().title, "Result");
    expectWallAtItsPlace();
}

TEST_F(CalibrationEndToEndTest, TheCameraMayBeClosedWhileMeasuring) {
    ASSERT_NO_FATAL_FAILURE(slowDown());
    open(shown.get());
    chooseFrames(9);
    click(QDialogButtonBox::Ok);
    ASSERT_TRUE(waitForCounted(2));
    CkCameraManager::instance()->closeCamera(camera);
    CkChainManager::instance()->closeChain(chain);
    shown.reset();
    QCoreApplication::processEvents();
    EXPECT_TRUE(dialog->isVisible());
    click(QDialogButtonBox::Cancel);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_TRUE(driver.boxes.isEmpty());
}
