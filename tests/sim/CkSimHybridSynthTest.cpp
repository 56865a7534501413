#include "sim/synth/CkSimHybridSynth.h"
#include "sim/synth/CkSimGreySynth.h"
#include "tests/sim/SimPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using EkSection = CkSimHybridSynth::EkSection;

constexpr quint32 W = 832;
constexpr quint32 H = 600;
const SkSimLens LENS{832, 600};

/// Depth of three windows from the formula, and how far rounding each of them by 1/2 may move it.
struct SkDepth {
    double metres = 0.0;
    double bound = 0.0;
};

SkDepth depthOf(double first, double second, double third, double range) {
    const bool near = first > third;
    const double start = near ? first : second;
    const double end = near ? second : third;
    const double ambient = near ? third : first;
    const double signal = start + end - 2.0 * ambient;
    // (end - ambient) / signal with 1/2 on every count: the numerator moves by 1, the denominator by 2.
    const double share = (end - ambient) / signal;
    return {share * range + (near ? 0.0 : range), range * (1.02 + 2.04 * share) / (signal - 2.04)};
}

double radial(quint32 column, quint32 row, double wall) {
    const double x = (double(column) - 416.0) * 0.01;
    const double y = (300.0 - double(row)) * 0.01;
    return wall * std::sqrt(x * x + y * y + 12.25) / 3.5;
}

SkSimExposure quiet(double offset = 0.0) {
    SkSimExposure exposure;
    exposure.noise = false;
    exposure.distanceOffsetM = offset;
    return exposure;
}

} // namespace

TEST(CkSimHybridSynth, windowsHoldWhatTheyShould) {
    // Range of 40 ns: 5.99584916 m. A wall at half of it, reflectivity 0.8, middle pixel:
    // 45000 * 0.8 / 2.99792458^2 = 4005.5 electrons, half in X1, half in X2; ambient 600 * 0.8 * 0.65 = 312.
    CkSimHybridSynth synth;
    synth.setup(quiet(), 40.0);
    SimPicture picture(W, H, 3, EkImageDataType::UInt16, 16);
    const double gain = 65535.0 / 60000.0;
    {
        const CkSimRaster raster(LENS, CkSimScene::wall(2.99792458));
        ASSERT_TRUE(synth.writeSection(raster, {0, 0, EkSection::Plain}, picture, 0));
        EXPECT_NEAR(picture.valueAt(416, 300, 0), (312.0 + 4005.5 / 2.0) * gain, 0.6);
        EXPECT_NEAR(picture.valueAt(416, 300, 1), (312.0 + 4005.5 / 2.0) * gain, 0.6);
        EXPECT_NEAR(picture.valueAt(416, 300, 2), 312.0 * gain, 0.6);
        EXPECT_TRUE(picture.guardsIntact());
    }
    {
        // At 1.25 ranges (7.49481145 m): 36000 / 56.1722 = 640.9 electrons, 3/4 in X2, 1/4 in X3.
        const CkSimRaster raster(LENS, CkSimScene::wall(7.49481145));
        ASSERT_TRUE(synth.writeSection(raster, {0, 0, EkSection::Plain}, picture, 0));
        EXPECT_NEAR(picture.valueAt(416, 300, 0), 312.0 * gain, 0.6);
        EXPECT_NEAR(picture.valueAt(416, 300, 1), (312.0 + 640.9 * 0.75) * gain, 0.6);
        EXPECT_NEAR(picture.valueAt(416, 300, 2), (312.0 + 640.9 * 0.25) * gain, 0.6);
    }
}

TEST(CkSimHybridSynth, depthComesBackInBothHalvesOfTheRange) {
    struct SkCase {
        double wall;
        double pulseNs;
        double offset;
        quint32 bits;
        EkImageDataType type;
    };
    const SkCase cases[] = {{2.0, 40.0, 0.0, 12, EkImageDataType::UInt16},
                            {2.0, 40.0, 0.0, 16, EkImageDataType::UInt16},
                            {2.0, 80.0, 0.0, 12, EkImageDataType::UInt16},
                            {2.5, 16.0, 0.0, 16, EkImageDataType::UInt16}, // 2.4 m to 4.8 m: second half
                            {1.0, 40.0, 0.3, 12, EkImageDataType::UInt16},
                            {0.9, 40.0, 0.0, 8, EkImageDataType::UInt8}};
    for (const SkCase& test : cases) {
        SCOPED_TRACE(testing::Message()
                     << test.wall << " m, " << test.pulseNs << " ns, " << test.bits << " bits");
        const CkSimRaster raster(LENS, CkSimScene::wall(test.wall));
        CkSimHybridSynth synth;
        synth.setup(quiet(test.offset), test.pulseNs);
        SimPicture picture(W, H, 3, test.type, test.bits);
        ASSERT_TRUE(synth.writeSection(raster, {0, 0, EkSection::Plain}, picture, 0));
        const double range = test.pulseNs * 1e-9 * 299792458.0 / 2.0;
        int checked = 0;
        for (quint32 row = 0; row < H; row += 3) {
            for (quint32 column = 0; column < W; column += 5) {
                const double truth = radial(column, row, test.wall) + test.offset;
                // Where the return begins or ends a window, rounding decides which window it is in.
                const double place = truth / range;
                if (place > 1.95 || std::abs(place - 1.0) < 0.05) {
                    continue;
                }
                ++checked;
                const SkDepth depth =
                    depthOf(picture.valueAt(column, row, 0), picture.valueAt(column, row, 1),
                            picture.valueAt(column, row, 2), range);
                ASSERT_LE(std::abs(depth.metres - truth), depth.bound) << column << ' ' << row;
            }
        }
        EXPECT_GT(checked, 10000);
    }
}

TEST(CkSimHybridSynth, eachSectionIsTwiceAsSensitive) {
    const CkSimRaster raster(LENS, CkSimScene::wall(3.0));
    CkSimHybridSynth synth;
    synth.setup(quiet(), 40.0);
    SimPicture picture(W, 4 * H, 3, EkImageDataType::UInt16, 12);
    for (int section = 0; section < 4; ++section) {
        ASSERT_TRUE(
            synth.writeSection(raster, {0, section, EkSection::Plain}, picture, quint32(section) * H));
    }
    for (quint32 row = 0; row < H; row += 11) {
        for (quint32 column = 0; column < W; column += 13) {
            for (quint32 channel = 0; channel < 3; ++channel) {
                const double base = picture.valueAt(column, row, channel);
                for (quint32 section = 1; section < 4; ++section) {
                    const double factor = double(1U << section);
                    // 1/2 for its own rounding and factor / 2 for that of section 0.
                    ASSERT_NEAR(picture.valueAt(column, section * H + row, channel), base * factor,
                                factor / 2.0 + 0.51);
                }
            }
        }
    }
}

TEST(CkSimHybridSynth, theMostSensitiveSectionSaturatesFirst) {
    // 45000 * 0.8 electrons come back from 1 m: half of a full pixel; eight times that does not fit.
    const CkSimRaster raster(LENS, CkSimScene::wall(1.0));
    CkSimHybridSynth synth;
    synth.setup(quiet(), 40.0);
    SimPicture picture(W, 2 * H, 3, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(synth.writeSection(raster, {0, 0, EkSection::Plain}, picture, 0));
    ASSERT_TRUE(synth.writeSection(raster, {0, 3, EkSection::Plain}, picture, H));
    EXPECT_LT(picture.valueAt(416, 300, 0), 3685.0);
    EXPECT_EQ(picture.valueAt(416, H + 300, 0), 4095.0);
}

TEST(CkSimHybridSynth, referenceTakesTheDarkLevelAway) {
    const CkSimRaster raster(LENS, CkSimScene::wall(2.0));
    CkSimHybridSynth synth;
    synth.setup(quiet(), 40.0);
    SimPicture plain(W, H, 3, EkImageDataType::UInt16, 16);
    SimPicture measured(W, H, 3, EkImageDataType::UInt16, 16);
    SimPicture reference(W, H, 3, EkImageDataType::UInt16, 16);
    ASSERT_TRUE(synth.writeSection(raster, {0, 0, EkSection::Plain}, plain, 0));
    ASSERT_TRUE(synth.writeSection(raster, {0, 0, EkSection::Measured}, measured, 0));
    ASSERT_TRUE(synth.writeSection(raster, {0, 0, EkSection::Reference}, reference, 0));
    const double gain = 65535.0 / 60000.0;
    const double ambient = 312.0 * gain;
    double darkest = 1e9;
    double brightest = 0.0;
    for (quint32 row = 0; row < H; row += 3) {
        for (quint32 column = 0; column < W; column += 3) {
            for (quint32 channel = 0; channel < 3; ++channel) {
                const double dark = reference.valueAt(column, row, channel) - ambient / 2.0;
                darkest = std::min(darkest, dark);
                brightest = std::max(brightest, dark);
                // Half of the ambient light is left; three roundings.
                ASSERT_NEAR(measured.valueAt(column, row, channel) - reference.valueAt(column, row, channel),
                            plain.valueAt(column, row, channel) - ambient / 2.0, 1.52);
            }
            const double range = 40e-9 * 299792458.0 / 2.0;
            const auto difference = [&](quint32 channel) {
                return measured.valueAt(column, row, channel) - reference.valueAt(column, row, channel);
            };
            const SkDepth depth = depthOf(difference(0), difference(1), difference(2), range);
            // Two roundings in every difference.
            ASSERT_LE(std::abs(depth.metres - radial(column, row, 2.0)), 2.0 * depth.bound);
        }
    }
    EXPECT_NEAR(darkest, 600.0 * gain, 2.0);
    EXPECT_NEAR(brightest, 855.0 * gain, 2.0);
}

TEST(CkSimHybridSynth, noiseDependsOnSeedSetAndSectionAlone) {
    const CkSimRaster raster(LENS, CkSimScene::room());
    CkSimHybridSynth first;
    SimPicture stacked(W, 2 * H, 3, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(first.writeSection(raster, {9, 0, EkSection::Plain}, stacked, 0));
    ASSERT_TRUE(first.writeSection(raster, {9, 1, EkSection::Plain}, stacked, H));
    CkSimHybridSynth second;
    SimPicture single(W, H, 3, EkImageDataType::UInt16, 12, 0);
    ASSERT_TRUE(second.writeSection(raster, {9, 1, EkSection::Plain}, single, 0));
    EXPECT_TRUE(single.samePixels(stacked, H));
    ASSERT_TRUE(second.writeSection(raster, {9, 0, EkSection::Plain}, single, 0));
    EXPECT_TRUE(single.samePixels(stacked, 0));
    ASSERT_TRUE(second.writeSection(raster, {10, 0, EkSection::Plain}, single, 0));
    EXPECT_FALSE(single.samePixels(stacked, 0));
}

TEST(CkSimHybridSynth, refusesPicturesThatDoNotFit) {
    const CkSimRaster raster(LENS, CkSimScene::wall(2.0));
    CkSimHybridSynth synth;
    SimPicture twoChannels(W, H, 2, EkImageDataType::UInt16, 12);
    EXPECT_FALSE(synth.writeSection(raster, {0, 0, EkSection::Plain}, twoChannels, 0));
    SimPicture wide(W, H, 3, EkImageDataType::UInt32, 16);
    EXPECT_FALSE(synth.writeSection(raster, {0, 0, EkSection::Plain}, wide, 0));
    SimPicture good(W, H, 3, EkImageDataType::UInt16, 12);
    EXPECT_FALSE(synth.writeSection(raster, {0, 0, EkSection::Plain}, good, 1));
    EXPECT_FALSE(synth.writeSection(raster, {0, -1, EkSection::Plain}, good, 0));
    EXPECT_FALSE(synth.writeSection(raster, {0, 16, EkSection::Plain}, good, 0));
    EXPECT_TRUE(good.isUntouched(0));
    EXPECT_TRUE(good.isUntouched(H - 1));
}

TEST(CkSimGreySynth, showsTheAmbientLight) {
    // White light on reflectivity 0.8: 40000 * 0.8 * 0.65 = 20800 of 60000 electrons.
    const CkSimRaster raster(SkSimLens{}, CkSimScene::wall(2.0));
    CkSimGreySynth synth;
    synth.setup(quiet());
    SimPicture bytes(640, 480, 1, EkImageDataType::UInt8, 8);
    ASSERT_TRUE(synth.writePicture(raster, 0, bytes));
    EXPECT_NEAR(bytes.valueAt(11, 7), 20800.0 / 60000.0 * 255.0, 0.51);
    EXPECT_TRUE(bytes.guardsIntact());
    SimPicture words(640, 480, 1, EkImageDataType::UInt16, 12);
    ASSERT_TRUE(synth.writePicture(raster, 0, words));
    EXPECT_NEAR(words.valueAt(11, 7), 20800.0 / 60000.0 * 4095.0, 0.51);
    SimPicture signedBytes(640, 480, 1, EkImageDataType::Int8, 8);
    EXPECT_FALSE(synth.writePicture(raster, 0, signedBytes));
    EXPECT_TRUE(signedBytes.isUntouched(0));
}
