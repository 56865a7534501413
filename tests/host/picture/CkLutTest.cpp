#include "zuCore/CkLut.h"
#include "tests/support/TestPicture.h"

#include <QSet>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>

namespace {

using Color = std::array<int, 4>;

Color entry(const CkLut& lut, size_t i) {
    const quint8* const bytes = lut.rgbTable() + 4 * i;
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

Color grey(int level) {
    return {level, level, level, 255};
}

Color colorAt(const PaddedPicture& picture, quint32 x, quint32 y) {
    return {picture.at<quint8>(x, y, 0), picture.at<quint8>(x, y, 1), picture.at<quint8>(x, y, 2),
            picture.at<quint8>(x, y, 3)};
}

TEST(CkLut, HasSeveralNamedMapsAndGreyFirst) {
    EXPECT_EQ(CkLut::pseudoColorCount(), 8);
    const QStringList names = CkLut::pseudoColorNames();
    EXPECT_EQ(names.size(), 8);
    EXPECT_EQ(names.first(), "Grey");
    EXPECT_EQ(QSet<QString>(names.begin(), names.end()).size(), 8);
}

TEST(CkLut, EveryMapIsSmoothOpaqueAndDifferent) {
    QSet<QByteArray> tables;
    for (int map = 0; map < CkLut::pseudoColorCount(); ++map) {
        CkLut lut(8, 1, false, EkImageDataType::UInt8);
        lut.setPseudoColorIndex(map);
        ASSERT_TRUE(lut.allocRgbTable(1024));
        ASSERT_EQ(lut.rgbTableEntries(), 256U);
        for (size_t i = 0; i < 256; ++i) {
            const Color color = entry(lut, i);
            EXPECT_EQ(color[3], 255);
            for (size_t c = 0; c < 3 && i > 0; ++c) {
                EXPECT_LE(std::abs(color[c] - entry(lut, i - 1)[c]), 8) << map << ", " << i;
            }
        }
        tables.insert(QByteArray(reinterpret_cast<const char*>(lut.rgbTable()), 1024));
    }
    EXPECT_EQ(tables.size(), CkLut::pseudoColorCount());
}

TEST(CkLut, TheGreyMapIsTheIdentity) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    EXPECT_EQ(lut.rgbTable(), nullptr);
    EXPECT_EQ(lut.rgbTableEntries(), 0U);
    ASSERT_TRUE(lut.allocRgbTable(0));
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(entry(lut, size_t(i)), grey(i));
    }
}

TEST(CkLut, TheRainbowRunsFromBlueOverGreenToRed) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    lut.setPseudoColorIndex(2);
    ASSERT_TRUE(lut.allocRgbTable(0));
    EXPECT_EQ(entry(lut, 0), (Color{255, 0, 0, 255}));
    EXPECT_EQ(entry(lut, 255), (Color{0, 0, 255, 255}));
    const Color middle = entry(lut, 128);
    EXPECT_EQ(middle[1], 255);
    EXPECT_LE(middle[0] + middle[2], 4);
}

/// Characteristic colours of each map: red, green and blue at some positions, in percent.
struct MapPoint {
    const char* map;
    int position; ///< percent of the map's length
    int red, green, blue;
};

TEST(CkLut, EveryMapGoesThroughItsColours) {
    const MapPoint points[] = {{"Inverted grey", 0, 100, 100, 100},
                               {"Inverted grey", 40, 60, 60, 60},
                               {"Inverted grey", 100, 0, 0, 0},
                               {"Rainbow", 25, 0, 100, 100},
                               {"Rainbow", 50, 0, 100, 0},
                               {"Rainbow", 75, 100, 100, 0},
                               {"Jet", 0, 0, 0, 50},
                               {"Jet", 10, 0, 0, 90},
                               {"Jet", 25, 0, 50, 100},
                               {"Jet", 50, 50, 100, 50},
                               {"Jet", 75, 100, 50, 0},
                               {"Jet", 90, 90, 0, 0},
                               {"Jet", 100, 50, 0, 0},
                               {"Hot", 0, 0, 0, 0},
                               {"Hot", 15, 40, 0, 0},
                               {"Hot", 60, 100, 60, 0},
                               {"Hot", 90, 100, 100, 60},
                               {"Hot", 100, 100, 100, 100},
                               {"Violet to yellow", 0, 27, 1, 33},
                               {"Violet to yellow", 25, 23, 32, 54},
                               {"Violet to yellow", 50, 13, 57, 55},
                               {"Violet to yellow", 75, 37, 79, 38},
                               {"Violet to yellow", 100, 99, 91, 15},
                               {"Spectrum", 0, 19, 7, 23},
                               {"Spectrum", 15, 27, 46, 91},
                               {"Spectrum", 35, 11, 85, 80},
                               {"Spectrum", 50, 50, 98, 40},
                               {"Spectrum", 70, 95, 80, 22},
                               {"Spectrum", 85, 94, 39, 8},
                               {"Spectrum", 100, 48, 2, 1},
                               {"Blue to red", 0, 23, 30, 75},
                               {"Blue to red", 50, 87, 87, 87},
                               {"Blue to red", 100, 71, 2, 15}};
    for (const MapPoint& point : points) {
        CkLut lut(8, 1, false, EkImageDataType::UInt8);
        lut.setPseudoColorIndex(int(CkLut::pseudoColorNames().indexOf(QLatin1String(point.map))));
        ASSERT_GT(lut.pseudoColorIndex(), 0) << point.map;
        ASSERT_TRUE(lut.allocRgbTable(0));
        const Color color = entry(lut, size_t(std::lround(2.55 * point.position)));
        // An entry lies up to half a step away from the position: two levels on the steepest slope of 5
        // levels per step.
        EXPECT_NEAR(color[0], 2.55 * point.blue, 3.0) << point.map << " at " << point.position << " %";
        EXPECT_NEAR(color[1], 2.55 * point.green, 3.0) << point.map << " at " << point.position << " %";
        EXPECT_NEAR(color[2], 2.55 * point.red, 3.0) << point.map << " at " << point.position << " %";
    }
}

TEST(CkLut, UnknownMapsCountAsGrey) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    lut.setPseudoColorIndex(3);
    EXPECT_EQ(lut.pseudoColorIndex(), 3);
    for (int index : {-1, 8, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        lut.setPseudoColorIndex(index);
        EXPECT_EQ(lut.pseudoColorIndex(), 0);
    }
}

TEST(CkLut, TheTableHasOneEntryForEachValue) {
    const struct {
        quint32 bits;
        EkImageDataType type;
        size_t entries;
    } cases[] = {{1, EkImageDataType::UInt8, 2},       {8, EkImageDataType::UInt8, 256},
                 {12, EkImageDataType::UInt16, 4096},  {16, EkImageDataType::UInt16, 65536},
                 {24, EkImageDataType::UInt32, 65536}, {32, EkImageDataType::UInt32, 65536},
                 {32, EkImageDataType::Float32, 256},  {0, EkImageDataType::UInt8, 2},
                 {4000, EkImageDataType::UInt8, 65536}};
    for (const auto& c : cases) {
        CkLut lut(c.bits, 1, false, c.type);
        ASSERT_TRUE(lut.allocRgbTable(17));
        EXPECT_EQ(lut.rgbTableEntries(), c.entries) << c.bits;
        EXPECT_EQ(entry(lut, 0), grey(0));
        EXPECT_EQ(entry(lut, c.entries - 1), grey(255));
    }
}

TEST(CkLut, AContrastEntryCutsAWindowOut) {
    CkLut lut(12, 1, false, EkImageDataType::UInt16);
    lut.contrastEntries().append({1000, 2000, 0, 255, 1.0});
    ASSERT_TRUE(lut.allocRgbTable(0));
    EXPECT_EQ(entry(lut, 0), grey(0));
    EXPECT_EQ(entry(lut, 1000), grey(0));
    EXPECT_EQ(entry(lut, 1500), grey(127)); // 127.5, truncated
    EXPECT_EQ(entry(lut, 2000), grey(255));
    EXPECT_EQ(entry(lut, 4095), grey(255));
}

TEST(CkLut, AContrastEntryMayTurnTheRangeRoundAndBendIt) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    lut.contrastEntries().append({0, 255, 200, 100, 2.0});
    ASSERT_TRUE(lut.allocRgbTable(0));
    EXPECT_EQ(entry(lut, 0), grey(200));
    EXPECT_EQ(entry(lut, 255), grey(100));
    EXPECT_EQ(entry(lut, 51), grey(196)); // 200 - 100 * 0.2^2
}

TEST(CkLut, AbsurdContrastEntriesDoNoHarm) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    lut.contrastEntries().append({100, 100, 0, 255, 1.0});
    ASSERT_TRUE(lut.allocRgbTable(0));
    EXPECT_EQ(entry(lut, 99), grey(0));
    EXPECT_EQ(entry(lut, 100), grey(255)) << "a window of zero width acts as a threshold";
    lut.contrastEntries()[0] = {200, 100, 0xffffffffU, 0xffffffffU, std::numeric_limits<double>::quiet_NaN()};
    ASSERT_TRUE(lut.allocRgbTable(0));
    EXPECT_EQ(entry(lut, 0), grey(255));
    lut.contrastEntries()[0] = {0, 256, 0, 10, 1.0};
    ASSERT_TRUE(lut.allocRgbTable(0));
    EXPECT_EQ(entry(lut, 255), grey(255)) << "beyond the value range: the whole range is used";
}

TEST(CkLut, ColoursIntegerPicturesByTheirFirstChannel) {
    CkLut lut(12, 2, false, EkImageDataType::UInt16);
    ASSERT_TRUE(lut.allocRgbTable(0));
    PaddedPicture source(3, 2, 2, EkImageDataType::UInt16, 12);
    PaddedPicture target(3, 2, 4, EkImageDataType::UInt8, 8, 3);
    source.set<quint16>(0, 0, 0, 0);
    source.set<quint16>(1, 0, 0, 4095);
    source.set<quint16>(2, 0, 0, 65535); // beyond the bits
    source.set<quint16>(0, 1, 0, 2048);
    source.set<quint16>(0, 0, 1, 4095);
    ASSERT_TRUE(lut.applyToPic(*source, *target));
    EXPECT_EQ(colorAt(target, 0, 0), grey(0));
    EXPECT_EQ(colorAt(target, 1, 0), grey(255));
    EXPECT_EQ(colorAt(target, 2, 0), grey(255));
    EXPECT_EQ(colorAt(target, 0, 1), grey(127)); // 2048 / 4095 * 255 = 127.5, truncated
    EXPECT_TRUE(target.guardsIntact());
}

TEST(CkLut, ColoursSignedAndWidePictures) {
    CkLut lut(8, 1, false, EkImageDataType::Int8);
    ASSERT_TRUE(lut.allocRgbTable(0));
    PaddedPicture narrow(2, 1, 1, EkImageDataType::Int8);
    PaddedPicture target(2, 1, 4, EkImageDataType::UInt8);
    narrow.set<qint8>(0, 0, 0, -5);
    narrow.set<qint8>(1, 0, 0, 100);
    ASSERT_TRUE(lut.applyToPic(*narrow, *target));
    EXPECT_EQ(colorAt(target, 0, 0), grey(0));
    EXPECT_EQ(colorAt(target, 1, 0), grey(100));

    CkLut wideLut(32, 1, false, EkImageDataType::UInt32);
    ASSERT_TRUE(wideLut.allocRgbTable(0));
    PaddedPicture wide(2, 1, 1, EkImageDataType::UInt32);
    wide.set<quint32>(0, 0, 0, 0x7fffffffU);
    wide.set<quint32>(1, 0, 0, 0xffffffffU);
    ASSERT_TRUE(wideLut.applyToPic(*wide, *target));
    EXPECT_EQ(colorAt(target, 0, 0), grey(127));
    EXPECT_EQ(colorAt(target, 1, 0), grey(255));
}

TEST(CkLut, ScalesFloatsFromMinimumToMaximumOverTheWindow) {
    CkLut lut(32, 1, false, EkImageDataType::Float32);
    ASSERT_TRUE(lut.allocRgbTable(0));
    PaddedPicture source(6, 1, 1, EkImageDataType::Float32);
    PaddedPicture target(6, 1, 4, EkImageDataType::UInt8);
    const float values[6] = {-1.0F,
                             0.0F,
                             3.0F,
                             99.0F,
                             std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity()};
    source.fill<float>([&](quint32 x, quint32, quint32) { return values[x]; });
    source->minValue = -1.0F;
    source->maxValue = 3.0F;
    ASSERT_TRUE(lut.applyToPic(*source, *target));
    EXPECT_EQ(colorAt(target, 0, 0), grey(0));
    EXPECT_EQ(colorAt(target, 1, 0), grey(63)); // a quarter of 255, truncated
    EXPECT_EQ(colorAt(target, 2, 0), grey(255));
    EXPECT_EQ(colorAt(target, 3, 0), grey(255));
    EXPECT_EQ(colorAt(target, 4, 0), grey(0));
    EXPECT_EQ(colorAt(target, 5, 0), grey(0));
    // The lower half of the range spans the whole map.
    lut.contrastEntries().append({0, 0x7fffffffU, 0, 255, 1.0});
    ASSERT_TRUE(lut.applyToPic(*source, *target));
    EXPECT_EQ(colorAt(target, 1, 0), grey(127));
    source->maxValue = -1.0F;
    ASSERT_TRUE(lut.applyToPic(*source, *target)) << "a range without width";
    EXPECT_EQ(colorAt(target, 1, 0), grey(0));
}

TEST(CkLut, AWindowThatIsNotFiniteShowsEveryValueAsItsFirst) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    const std::pair<float, float> windows[] = {{-infinity, 1.0F}, {0.0F, infinity}, {-infinity, infinity},
                                               {infinity, 1.0F},  {none, 1.0F},     {0.0F, none}};
    for (const EkImageDataType type : {EkImageDataType::Float32, EkImageDataType::Float64}) {
        for (const auto& [low, high] : windows) {
            CkLut lut(8, 1, false, type);
            lut.contrastEntries().append({0, 255, 40, 255, 1.0});
            ASSERT_TRUE(lut.allocRgbTable(0));
            PaddedPicture source(3, 1, 1, type);
            PaddedPicture target(3, 1, 4, EkImageDataType::UInt8);
            for (quint32 x = 0; x < 3; ++x) {
                const float value = x == 2 ? none : float(x) - 0.5F;
                type == EkImageDataType::Float32 ? source.set<float>(x, 0, 0, value)
                                                 : source.set<double>(x, 0, 0, double(value));
            }
            source->minValue = low;
            source->maxValue = high;
            ASSERT_TRUE(lut.applyToPic(*source, *target));
            EXPECT_EQ(colorAt(target, 0, 0), grey(40)) << low << " to " << high;
            EXPECT_EQ(colorAt(target, 1, 0), grey(40)) << low << " to " << high;
            EXPECT_EQ(colorAt(target, 2, 0), grey(0));
        }
    }
}

TEST(CkLut, RefusesWhatItCannotColour) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    PaddedPicture source(3, 2, 1, EkImageDataType::UInt8);
    PaddedPicture target(3, 2, 4, EkImageDataType::UInt8);
    EXPECT_FALSE(lut.applyToPic(*source, *target)) << "without a table";
    ASSERT_TRUE(lut.allocRgbTable(0));
    EXPECT_TRUE(lut.applyToPic(*source, *target));
    PaddedPicture otherType(3, 2, 1, EkImageDataType::UInt16);
    PaddedPicture narrow(2, 2, 4, EkImageDataType::UInt8);
    PaddedPicture threeChannels(3, 2, 3, EkImageDataType::UInt8);
    PaddedPicture signedTarget(3, 2, 4, EkImageDataType::Int8);
    EXPECT_FALSE(lut.applyToPic(*otherType, *target));
    EXPECT_FALSE(lut.applyToPic(*source, *narrow));
    EXPECT_FALSE(lut.applyToPic(*source, *threeChannels));
    EXPECT_FALSE(lut.applyToPic(*source, *signedTarget));
    EXPECT_FALSE(lut.applyToPic(SkPicBuf(), *target));
    SkPicBuf none;
    EXPECT_FALSE(lut.applyToPic(*source, none));
}

TEST(CkLut, TransformToFormatKeepsItselfOrScalesItsEntries) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    lut.setPseudoColorIndex(4);
    lut.contrastEntries().append({51, 204, 10, 250, 1.5});
    EXPECT_EQ(lut.transformToFormat(8, 1, false, EkImageDataType::UInt8), &lut);
    const std::unique_ptr<CkLut> twelve(lut.transformToFormat(12, 2, true, EkImageDataType::UInt16));
    ASSERT_NE(twelve.get(), &lut);
    EXPECT_EQ(twelve->bitsPerChannel(), 12U);
    EXPECT_EQ(twelve->pixelStep(), 2U);
    EXPECT_TRUE(twelve->layoutFlag());
    EXPECT_EQ(twelve->dataType(), EkImageDataType::UInt16);
    EXPECT_EQ(twelve->pseudoColorIndex(), 4);
    ASSERT_EQ(twelve->contrastEntries().size(), 1);
    // 51 and 204 are a fifth and four fifths of 255.
    EXPECT_EQ(twelve->contrastEntries().first(), (CkLut::CkCompContrast{819, 3276, 10, 250, 1.5}));
    EXPECT_EQ(twelve->rgbTableEntries(), 4096U);
}

} // namespace
