#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/cloud/ToFPlyText.h"
#include "sim/camera/CkSimCameraDriver.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"

#include <QTest>
#include <cmath>
#include <gtest/gtest.h>
#include <mutex>

// End to end without a window: camera, chain, phase shift, depth picture, cloud, exported text.

namespace {

constexpr double kWallM = 2.0;
constexpr double kFrequencyMHz = 20.0;
constexpr double kRangeM = 299.70254 / (2.0 * kFrequencyMHz);
constexpr double kTwoPi = 6.283185307179586;

/// Keeps the first frame.
class FirstFrame : public IkFrameSink {
public:
    int takeFrame(CkImageData* pData) override {
        const std::lock_guard lock(m_mutex);
        if (m_frame == nullptr) {
            m_frame.reset(pData);
        } else {
            delete pData;
        }
        return 0;
    }
    CkImageData* frame() {
        const std::lock_guard lock(m_mutex);
        return m_frame.get();
    }

private:
    std::mutex m_mutex;
    std::unique_ptr<CkImageData> m_frame;
};

void set(void* camera, const char* name, double value) {
    CkCameraParam* param =
        CkCameraManager::instance()->cameraParameters(camera)->findParam(QLatin1String(name));
    ASSERT_NE(param, nullptr) << name;
    ASSERT_TRUE(param->setParamValue(CkValue(value))) << name;
    ASSERT_TRUE(param->commit()) << name;
}

struct PlyPoint {
    double x, y, z;
};

/// Parses the text as a PLY reader does.
std::vector<PlyPoint> readPly(const QByteArray& text) {
    std::vector<PlyPoint> points;
    bool header = true;
    for (const QByteArray& line : text.split('\n')) {
        if (header) {
            header = line != "end_header";
            continue;
        }
        const QList<QByteArray> numbers = line.split(' ');
        if (numbers.size() == 3) {
            points.push_back({numbers[0].toDouble(), numbers[1].toDouble(), numbers[2].toDouble()});
        }
    }
    return points;
}

/// Largest error of a pixel's distance that quantisation alone can cause.
///
/// Each sample is off by at most half a count. A - B is then off by at most 1, and x = (A0 - B0) - (A180 -
/// B180) and y likewise by at most 2, so the vector (x, y) of length z moves by at most 2 sqrt(2), which
/// turns it by at most asin(2 sqrt(2) / z). One turn is the whole range.
double quantisationBoundM(const SkPicBuf& raw, int x, int y, int rowsPerPhase) {
    const auto difference = [&](int phase) {
        const auto* row = reinterpret_cast<const quint16*>(raw.row(quint32(phase * rowsPerPhase + y)));
        return double(row[2 * x]) - double(row[2 * x + 1]);
    };
    const double length = std::hypot(difference(0) - difference(2), difference(1) - difference(3));
    return std::asin(2.0 * std::sqrt(2.0) / length) / kTwoPi * kRangeM;
}

TEST(WallDistance, ExportedCloudOfAWallAtTwoMetresIsThereWithinTheQuantisation) {
    CkCameraManager* cameras = CkCameraManager::instance();
    cameras->addDriver(std::make_unique<CkSimCameraDriver>());
    void* camera = cameras->openCamera(CkSimCameraDriver::kWaveId);
    ASSERT_NE(camera, nullptr);
    set(camera, "sim_scene", 1);
    set(camera, "sim_wall_distance", kWallM);
    set(camera, "sim_noise", 0);
    set(camera, "sim_converter_bits", 16);
    set(camera, "tof_modulation_frequency", kFrequencyMHz);

    CkChain* chain = CkChainManager::instance()->createChain();
    auto* source = new CkCameraSource(camera);
    auto* block = new CkToFProcessCnbl;
    block->setTransform(CkToFProcessCnbl::Depth, false);
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, block, source));
    FirstFrame raw;
    FirstFrame phaseShift;
    ASSERT_TRUE(chain->addSink(source, &raw));
    ASSERT_TRUE(chain->addSink(block, &phaseShift));
    ASSERT_TRUE(chain->start());
    ASSERT_TRUE(cameras->startAcquisition(camera));
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return raw.frame() != nullptr && phaseShift.frame() != nullptr; }, 60'000));
    cameras->closeCamera(camera);
    chain->stop();

    CkToFDepthFrame depth;
    ASSERT_TRUE(depth.update(phaseShift.frame()->picBuf(), &phaseShift.frame()->metadata(), 640));
    ASSERT_EQ(depth.depthDataKind(), EkDepthDataType::PhaseShift);

    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    ASSERT_TRUE(lut.allocRgbTable(1024));
    SkToFCloudParameters parameters;
    parameters.opticalPath.compensateDistortion = true;
    parameters.opticalPath.lensFocalLengthMM = 3.5F;
    parameters.opticalPath.chipCellSizeMM = 0.01F;
    parameters.opticalPath.modulationFreqMHz = float(kFrequencyMHz);
    parameters.opticalPath.confidenceThreshold = 1e6F;
    parameters.opticalPath.realDistanceOffsetM = 0.0F;
    parameters.pColourTable = lut.rgbTable();
    CkToFCloudBuilder builder;
    ASSERT_TRUE(builder.build(depth.pictures(), parameters));
    ASSERT_TRUE(builder.usedLens());

    const std::vector<PlyPoint> points = readPly(buildPlyText(builder.exportPoints()));
    const int width = 640;
    const int height = 480;
    ASSERT_EQ(points.size(), size_t(width) * height);
    const SkPicBuf& rawPicture = raw.frame()->picBuf();
    ASSERT_EQ(rawPicture.dataType, EkImageDataType::UInt16);
    ASSERT_EQ(rawPicture.height, quint32(4 * height));
    double worst = 0.0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const PlyPoint& point = points[size_t(y) * width + size_t(x)];
            // The last term is the error of single precision for phases below 2 pi and distances below 10 m:
            // a few units of 2^-22 relative to the range.
            const double bound =
                quantisationBoundM(rawPicture, x, y, height) + 4.0 * std::ldexp(kRangeM, -22);
            const double error = std::abs(point.z / 1000.0 - kWallM);
            ASSERT_LE(error, bound) << "pixel " << x << ", " << y;
            worst = std::max(worst, bound);
        }
    }
    EXPECT_LT(worst, 0.002) << "the bound itself has to mean something: 2 mm at the darkest pixel";

    chain->removeSink(&raw);
    chain->removeSink(&phaseShift);
    CkChainManager::instance()->closeChain(chain);
}

} // namespace
