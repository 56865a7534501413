#include "sim/synth/CkSimWaveSynth.h"
#include "tests/sim/SimPicture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

constexpr double PI = 3.141592653589793;
constexpr quint32 W = 640;
constexpr quint32 H = 480;

std::vector<int> anglesOf(int phases) {
    switch (phases) {
    case 1:
        return {0};
    case 2:
        return {0, 90};
    case 4:
        return {0, 90, 180, 270};
    default:
        return {0, 45, 90, 135, 180, 225, 270, 315};
    }
}

void writeSet(CkSimWaveSynth& synth, const CkSimRaster& raster, quint64 set, int phases,
              SimPicture& picture) {
    quint32 row = 0;
    for (const int angle : anglesOf(phases)) {
        ASSERT_TRUE(synth.writePhase(raster, set, angle, picture, row));
        row += quint32(raster.lens().height);
    }
}

/// x and y of the phase pointer of a pixel from the differences of all phases, in double precision.
struct SkPointer {
    double x = 0.0;
    double y = 0.0;
};

SkPointer pointerOf(const SimPicture& picture, int phases, quint32 height, quint32 column, quint32 row) {
    std::vector<double> d;
    for (int phase = 0; phase < phases; ++phase) {
        const quint32 line = quint32(phase) * height + row;
        d.push_back(picture->channels == 2
                        ? picture.valueAt(column, line, 0) - picture.valueAt(column, line, 1)
                        : picture.valueAt(column, line));
    }
    if (phases == 2) {
        return {d[0], d[1]};
    }
    if (phases == 4) {
        return {d[0] - d[2], d[1] - d[3]};
    }
    const double p = d[1] - d[5];
    const double q = d[3] - d[7];
    return {d[0] - d[4] + (p - q) * std::sqrt(0.5), d[2] - d[6] + (p + q) * std::sqrt(0.5)};
}

/// Radial distance and returned fraction of the light of a wall of reflectivity 0.8, from the formulas.
struct SkWallPixel {
    double distance = 0.0;
    double echo = 0.0;
};

SkWallPixel wallPixel(double wall, quint32 column, quint32 row) {
    const double x = (double(column) - 320.0) * 0.01;
    const double y = (240.0 - double(row)) * 0.01;
    const double cosine = 3.5 / std::sqrt(x * x + y * y + 3.5 * 3.5);
    const double distance = wall / cosine;
    return {distance, 0.8 * cosine / (distance * distance)};
}

struct SkCase {
    int phases;
    EkImageDataType type;
    quint32 bits;
    double modulationMHz;
    double wall;
    double offset;
};

} // namespace

// A count is rounded by at most 1/2. A pointer's x and y are sums of differences of counts with the weights
// below, so each is off by at most e:
//   2 phases: one difference of two counts: e = 1;            length of the pointer L = m S
//   4 phases: two differences: e = 2;                         L = 2 m S
//   8 phases: two differences plus four times sqrt(1/2): e = 2 + 2 sqrt(2) ; L = 4 m S
// with m S in counts. A minus B pictures round the difference itself: half of e. The pointer's end moves by
// at most sqrt(2) e, its angle by at most asin(sqrt(2) e / L). Two hundredths are added to e for single
// precision.
TEST(CkSimWaveSynth, phasesGiveTheDistanceWithinTheQuantisation) {
    const SkCase cases[] = {
        {4, EkImageDataType::UInt16, 12, 20.0, 2.0, 0.0},  {4, EkImageDataType::UInt16, 16, 20.0, 2.0, 0.0},
        {4, EkImageDataType::UInt8, 8, 20.0, 1.5, 0.0},    {2, EkImageDataType::UInt16, 12, 20.0, 2.0, 0.0},
        {8, EkImageDataType::UInt16, 12, 20.0, 2.0, 0.0},  {4, EkImageDataType::Int16, 12, 20.0, 2.0, 0.0},
        {4, EkImageDataType::Int16, 16, 20.0, 2.0, 0.0},   {4, EkImageDataType::Int8, 8, 20.0, 1.5, 0.0},
        {8, EkImageDataType::Int16, 12, 20.0, 2.0, 0.0},   {2, EkImageDataType::Int16, 12, 20.0, 2.0, 0.0},
        {4, EkImageDataType::UInt16, 12, 20.0, 1.25, 0.2}, {4, EkImageDataType::UInt16, 12, 20.0, 1.25, -1.4},
        {4, EkImageDataType::UInt16, 12, 100.0, 2.0, 0.0}, {8, EkImageDataType::UInt16, 16, 37.5, 3.9, 1.0},
    };
    for (const SkCase& test : cases) {
        SCOPED_TRACE(testing::Message() << test.phases << " phases, type " << int(test.type) << ", "
                                        << test.bits << " bits, " << test.modulationMHz << " MHz");
        const bool taps = test.type == EkImageDataType::UInt8 || test.type == EkImageDataType::UInt16;
        const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(test.wall));
        CkSimWaveSynth synth;
        SkSimExposure exposure;
        exposure.noise = false;
        exposure.distanceOffsetM = test.offset;
        synth.setup(exposure, test.modulationMHz);
        SimPicture picture(W, quint32(test.phases) * H, taps ? 2 : 1, test.type, test.bits);
        writeSet(synth, raster, 0, test.phases, picture);
        ASSERT_TRUE(picture.guardsIntact());

        const double range = 299.70254 / (2.0 * test.modulationMHz);
        double fullScale = double((1U << test.bits) - 1U);
        if (test.type == EkImageDataType::Int8) {
            fullScale = 127.0;
        }
        if (test.type == EkImageDataType::Int16 && test.bits == 16) {
            fullScale = 32767.0;
        }
        const double weights[] = {0.0, 0.5, 1.0, 0.0, 2.0, 0.0, 0.0, 0.0, 2.0 + 2.0 * std::sqrt(2.0)};
        const double e = (test.phases == 2 ? 1.0 : weights[test.phases]) * (taps ? 1.0 : 0.5) + 0.02;
        for (quint32 row = 0; row < H; row += 5) {
            for (quint32 column = 0; column < W; column += 3) {
                const SkWallPixel truth = wallPixel(test.wall, column, row);
                const double counts = 0.9 * 60000.0 * truth.echo * fullScale / 60000.0;
                const double length = counts * test.phases / 2.0;
                const double bound = std::asin(std::sqrt(2.0) * e / length) / (2.0 * PI) * range;
                const SkPointer pointer = pointerOf(picture, test.phases, H, column, row);
                double error =
                    std::atan2(pointer.y, pointer.x) / (2.0 * PI) * range - truth.distance - test.offset;
                error -= range * std::round(error / range);
                ASSERT_LE(std::abs(error), bound) << column << ' ' << row;
            }
        }
    }
}

TEST(CkSimWaveSynth, tapsHoldWhatTheyShould) {
    // Wall of reflectivity 0.8 at 2 m, middle pixel: S = 60000 * 0.8 / 4 = 12000 electrons, ambient
    // 4000 * 0.8 * 0.65 = 2080, phase shift 2 pi * 2 / 7.4925635.
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(2.0));
    CkSimWaveSynth synth;
    SkSimExposure exposure;
    exposure.noise = false;
    synth.setup(exposure, 20.0);
    SimPicture picture(W, 4 * H, 2, EkImageDataType::UInt16, 16);
    writeSet(synth, raster, 0, 4, picture);
    const double phase = 2.0 * PI * 2.0 / 7.4925635;
    for (quint32 index = 0; index < 4; ++index) {
        const double swing = 6000.0 * 0.9 * std::cos(phase - index * PI / 2.0);
        EXPECT_NEAR(picture.valueAt(320, index * H + 240, 0), (7040.0 + swing) * 65535.0 / 60000.0, 0.51);
        EXPECT_NEAR(picture.valueAt(320, index * H + 240, 1), (7040.0 - swing) * 65535.0 / 60000.0, 0.51);
    }
}

TEST(CkSimWaveSynth, amplitudeFollowsTheInverseSquare) {
    CkSimWaveSynth synth;
    SkSimExposure exposure;
    exposure.noise = false;
    synth.setup(exposure, 20.0);
    double products[3] = {};
    const double walls[3] = {1.2, 2.4, 4.8};
    for (int index = 0; index < 3; ++index) {
        const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(walls[index]));
        SimPicture picture(W, 4 * H, 2, EkImageDataType::UInt16, 16);
        writeSet(synth, raster, 0, 4, picture);
        const SkPointer pointer = pointerOf(picture, 4, H, 320, 240);
        products[index] = std::hypot(pointer.x, pointer.y) * walls[index] * walls[index];
    }
    // The weakest pointer, 4500 counts long, is known to 2 sqrt(2) counts.
    EXPECT_NEAR(products[1] / products[0], 1.0, 1e-3);
    EXPECT_NEAR(products[2] / products[0], 1.0, 1e-3);
}

TEST(CkSimWaveSynth, onePhaseHoldsTheDifferenceItself) {
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(2.0));
    CkSimWaveSynth synth;
    SkSimExposure exposure;
    exposure.noise = false;
    synth.setup(exposure, 20.0);
    SimPicture picture(W, H, 1, EkImageDataType::Int16, 12);
    writeSet(synth, raster, 0, 1, picture);
    const double expected = 12000.0 * 0.9 * std::cos(2.0 * PI * 2.0 / 7.4925635) * 4095.0 / 60000.0;
    EXPECT_NEAR(picture.valueAt(320, 240), expected, 0.51);
}

TEST(CkSimWaveSynth, nearThingsSaturate) {
    // At 0.2 m each tap would collect more than 7 full pixels.
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(0.2));
    CkSimWaveSynth synth;
    for (const bool noise : {false, true}) {
        SkSimExposure exposure;
        exposure.noise = noise;
        synth.setup(exposure, 20.0);
        const SkCase formats[] = {{1, EkImageDataType::UInt8, 8, 0, 0, 0},
                                  {1, EkImageDataType::UInt16, 12, 0, 0, 0},
                                  {1, EkImageDataType::UInt16, 16, 0, 0, 0}};
        for (const SkCase& format : formats) {
            SimPicture picture(W, H, 2, format.type, format.bits);
            ASSERT_TRUE(synth.writePhase(raster, 0, 0, picture, 0));
            EXPECT_EQ(picture.valueAt(320, 240, 0), double((1U << format.bits) - 1U));
        }
        SimPicture difference(W, H, 1, EkImageDataType::Int16, 16);
        ASSERT_TRUE(synth.writePhase(raster, 0, 0, difference, 0));
        EXPECT_GE(difference.valueAt(320, 240), -32767.0);
        EXPECT_LE(difference.valueAt(320, 240), 32767.0);
    }
}

TEST(CkSimWaveSynth, oneFullAndOneEmptyTapFillTheDifference) {
    // In the dark, at a quarter of the unambiguous range, the angle 90 fills A and leaves B the 5 % that the
    // contrast does not switch; the angle 270 does the opposite.
    const double range = 299.70254 / 40.0;
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(range / 4.0));
    CkSimWaveSynth synth;
    SkSimExposure exposure;
    exposure.noise = false;
    exposure.ambient = 0.0;
    // S = 60000 * 0.8 / 3.5087 = 13680 electrons a millisecond; A = 0.95 S fills 60000 after 4.617 ms.
    exposure.timeUs = 4700.0;
    synth.setup(exposure, 20.0);
    SimPicture bytes(W, H, 1, EkImageDataType::Int8, 8);
    SimPicture words(W, H, 1, EkImageDataType::Int16, 16);
    for (const int angle : {90, 270}) {
        ASSERT_TRUE(synth.writePhase(raster, 0, angle, bytes, 0));
        ASSERT_TRUE(synth.writePhase(raster, 0, angle, words, 0));
        const double sign = angle == 90 ? 1.0 : -1.0;
        const double rest = 0.05 * 13680.0 * 4.7 / 60000.0;
        EXPECT_NEAR(bytes.valueAt(320, 240), sign * 127.0 * (1.0 - rest), 0.6);
        EXPECT_NEAR(words.valueAt(320, 240), sign * 32767.0 * (1.0 - rest), 20.0);
    }
}

TEST(CkSimWaveSynth, noiseHasTheVarianceOfPhotonsAndReadout) {
    // Middle pixels of a wall at 2 m over 400 sets; A of the angle 0 collects 7040 - 587 electrons or so; the
    // variance is that plus 25 squared, in counts of 65535 / 60000 each, plus 1/12 for rounding.
    // A long lens: all pixels see the wall nearly head-on.
    const CkSimRaster raster(SkSimLens{16, 16, 350.0}, CkSimScene::wall(2.0));
    CkSimWaveSynth synth;
    SkSimExposure exposure;
    synth.setup(exposure, 20.0);
    SimPicture picture(16, 16, 2, EkImageDataType::UInt16, 16);
    constexpr int sets = 400;
    double sum[2] = {};
    double squares[2] = {};
    double products = 0.0;
    constexpr double gain = 65535.0 / 60000.0;
    const double swing = 6000.0 * 0.9 * std::cos(2.0 * PI * 2.0 / 7.4925635);
    const double means[2] = {7040.0 + swing, 7040.0 - swing};
    for (quint64 set = 0; set < sets; ++set) {
        ASSERT_TRUE(synth.writePhase(raster, set, 0, picture, 0));
        for (quint32 row = 0; row < 16; ++row) {
            for (quint32 column = 0; column < 16; ++column) {
                const double a = picture.valueAt(column, row, 0) / gain - means[0];
                const double b = picture.valueAt(column, row, 1) / gain - means[1];
                sum[0] += a;
                sum[1] += b;
                squares[0] += a * a;
                squares[1] += b * b;
                products += a * b;
            }
        }
    }
    constexpr double count = sets * 256.0;
    for (int tap = 0; tap < 2; ++tap) {
        const double variance = means[tap] + 625.0;
        // A mean of n values scatters by sqrt(variance / n) = 0.28, a variance by a share of sqrt(2 / n) =
        // 0.45 %; five times that is allowed.
        EXPECT_NEAR(sum[tap] / count, 0.0, 1.4);
        EXPECT_NEAR(squares[tap] / count / variance, 1.0, 0.025);
    }
    EXPECT_NEAR(products / count / (means[0] + 625.0), 0.0, 0.02) << "the taps' noise is unrelated";
}

TEST(CkSimWaveSynth, noiseDependsOnSeedSetAndAngleAlone) {
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(2.0));
    SkSimExposure exposure;
    exposure.seed = 77;
    CkSimWaveSynth first;
    first.setup(exposure, 20.0);
    SimPicture stacked(W, 4 * H, 2, EkImageDataType::UInt16, 12);
    writeSet(first, raster, 12, 4, stacked);

    // Another sensor, other sets before, phases in another order, each into a picture of its own.
    CkSimWaveSynth second;
    second.setup(exposure, 20.0);
    SimPicture single(W, H, 2, EkImageDataType::UInt16, 12, 0);
    ASSERT_TRUE(second.writePhase(raster, 3, 0, single, 0));
    for (const int phase : {2, 0, 3, 1}) {
        ASSERT_TRUE(second.writePhase(raster, 12, phase * 90, single, 0));
        EXPECT_TRUE(single.samePixels(stacked, quint32(phase) * H)) << phase;
    }
    ASSERT_TRUE(second.writePhase(raster, 13, 0, single, 0));
    EXPECT_FALSE(single.samePixels(stacked, 0)) << "another set";
    exposure.seed = 78;
    second.setup(exposure, 20.0);
    ASSERT_TRUE(second.writePhase(raster, 12, 0, single, 0));
    EXPECT_FALSE(single.samePixels(stacked, 0)) << "another seed";
}

TEST(CkSimWaveSynth, followsTheMovingSceneAsIfItWereNew) {
    CkSimRaster moving(SkSimLens{}, CkSimScene::room());
    CkSimWaveSynth synth;
    SimPicture picture(W, H, 2, EkImageDataType::UInt16, 12);
    for (const double seconds : {0.5, 0.6, 3.0}) {
        moving.moveTo(seconds);
        ASSERT_TRUE(synth.writePhase(moving, 1, 90, picture, 0));
    }
    // Two moments at once: more than the area that changed last is out of date.
    moving.moveTo(4.0);
    moving.moveTo(4.5);
    ASSERT_TRUE(synth.writePhase(moving, 1, 90, picture, 0));

    CkSimRaster fresh(SkSimLens{}, CkSimScene::room());
    fresh.moveTo(4.5);
    CkSimWaveSynth other;
    SimPicture expected(W, H, 2, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(other.writePhase(fresh, 1, 90, expected, 0));
    EXPECT_TRUE(picture.samePixels(expected));
}

TEST(CkSimWaveSynth, refusesPicturesThatDoNotFit) {
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(2.0));
    CkSimWaveSynth synth;
    const auto refused = [&](quint32 columns, quint32 rows, quint32 samples, EkImageDataType type,
                             quint32 bits, quint32 firstRow) {
        SimPicture picture(columns, rows, samples, type, bits);
        const bool written = synth.writePhase(raster, 0, 0, picture, firstRow);
        return !written && picture.isUntouched(0) && picture.isUntouched(rows - 1);
    };
    EXPECT_TRUE(refused(641, 480, 2, EkImageDataType::UInt16, 12, 0));
    EXPECT_TRUE(refused(640, 479, 2, EkImageDataType::UInt16, 12, 0));
    EXPECT_TRUE(refused(640, 960, 2, EkImageDataType::UInt16, 12, 481));
    EXPECT_TRUE(refused(640, 480, 2, EkImageDataType::UInt16, 12, 0xffffffffU));
    EXPECT_TRUE(refused(640, 480, 1, EkImageDataType::UInt16, 12, 0));
    EXPECT_TRUE(refused(640, 480, 2, EkImageDataType::Int16, 12, 0));
    EXPECT_TRUE(refused(640, 480, 2, EkImageDataType::UInt32, 12, 0));
    EXPECT_TRUE(refused(640, 480, 2, EkImageDataType::UInt8, 12, 0));
    EXPECT_TRUE(refused(640, 480, 2, EkImageDataType::UInt16, 0, 0));
    EXPECT_TRUE(refused(640, 480, 2, EkImageDataType::UInt16, 17, 0));
    SimPicture picture(640, 480, 2, EkImageDataType::UInt16, 12);
    SkPicBuf shortRows = picture;
    shortRows.lineSize = 2559;
    EXPECT_FALSE(synth.writePhase(raster, 0, 0, shortRows, 0));
    SkPicBuf empty = picture;
    empty.data = nullptr;
    EXPECT_FALSE(synth.writePhase(raster, 0, 0, empty, 0));
    EXPECT_TRUE(picture.isUntouched(0));
}
