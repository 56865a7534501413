#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <gmock/gmock.h>

namespace {

/// Colour of every pixel of a picture of one row.
std::vector<int> coloursOf(const SkPicBuf& picture, std::optional<CkLut::CkCompContrast> contrast,
                           bool plain) {
    CkToFCloudBuilder builder;
    builder.setPlainLoop(plain);
    SkToFCloudParameters parameters = testParameters();
    parameters.contrast = contrast;
    EXPECT_TRUE(builder.build({picture, {}}, parameters));
    std::vector<int> colours;
    for (int i = 0; i < builder.pointCount(); i++) {
        colours.push_back(colourOf(vertexAt(builder, i)));
    }
    return colours;
}

class Colour : public testing::TestWithParam<bool> {
protected:
    /// Colours of 16-bit samples in a picture of so many significant bits.
    std::vector<int> of(const std::vector<quint16>& samples, quint32 bits,
                        std::optional<CkLut::CkCompContrast> contrast = std::nullopt) {
        TestPicture picture(quint32(samples.size()), 1, 1, EkImageDataType::UInt16, bits);
        for (quint32 x = 0; x < samples.size(); x++) {
            picture.set<quint16>(x, 0, 0, samples[x]);
        }
        return coloursOf(*picture, contrast, GetParam());
    }
    std::vector<int> ofFloats(const std::vector<float>& samples,
                              std::optional<CkLut::CkCompContrast> contrast = std::nullopt) {
        TestPicture picture(quint32(samples.size()), 1, 1, EkImageDataType::Float32);
        fillFloats(picture, [&](quint32 x, quint32) { return samples[x]; });
        return coloursOf(*picture, contrast, GetParam());
    }
};

using testing::ElementsAre;

INSTANTIATE_TEST_SUITE_P(Both, Colour, testing::Bool(),
                         [](const auto& loop) { return loop.param ? "Plain" : "Vectors"; });

} // namespace

TEST_P(Colour, WithoutAContrastEntryTheWholeRangeIsMapped) {
    EXPECT_THAT(of({0, 2048, 4095}, 12), ElementsAre(0, 127, 255)); // 2048 * 255 / 4095 = 127.53
    EXPECT_THAT(of({0, 100, 255}, 8), ElementsAre(0, 100, 255));
}

TEST_P(Colour, AContrastEntryReplacesTheRange) {
    // (v - 1000) * 100 / 2000 + 50
    EXPECT_THAT(of({1000, 2000, 3000, 3019, 3020}, 12, {{1000, 3000, 50, 150, 1.0}}),
                ElementsAre(50, 100, 150, 150, 151));
}

TEST_P(Colour, AnEntryBeyondTheSampleRangeIsLeftOut) {
    EXPECT_THAT(of({0, 2048, 4095}, 12, {{0, 4096, 0, 10, 1.0}}), ElementsAre(0, 127, 255));
    EXPECT_THAT(of({0, 2048, 4095}, 12, {{0, 4095, 0, 10, 1.0}}), ElementsAre(0, 5, 10));
}

TEST_P(Colour, AnIdentityRangeLeavesValuesAsTheyAre) {
    // inLow = outLow and inHigh = outHigh: the index is the value itself.
    EXPECT_THAT(of({0, 9, 10, 20, 40, 300}, 12, {{10, 20, 10, 20, 1.0}}), ElementsAre(0, 9, 10, 20, 40, 255));
}

TEST_P(Colour, IndicesAreClampedAsRealNumbers) {
    // (65535 - 0) * 255 is far beyond the range of an index.
    EXPECT_THAT(of({0, 1, 65535}, 16, {{0, 0, 0, 255, 1.0}}), ElementsAre(0, 255, 255));
    EXPECT_THAT(ofFloats({-3e38F, 0.0F, 3e38F}, {{4000000000U, 4000000001U, 0, 255, 1.0}}),
                testing::Each(testing::AllOf(testing::Ge(0), testing::Le(255))));
    TestPicture wide(2, 1, 1, EkImageDataType::UInt32);
    wide.set<quint32>(0, 0, 0, 4294967295U);
    EXPECT_THAT(coloursOf(*wide, {{0, 1, 0, 255, 1.0}}, GetParam()), ElementsAre(255, 0));
}

TEST_P(Colour, ValuesBelowTheWindowTakeTheFirstColour) {
    EXPECT_THAT(of({0, 500}, 12, {{1000, 2000, 0, 255, 1.0}}), ElementsAre(0, 0));
    TestPicture negative(2, 1, 1, EkImageDataType::Int16);
    negative.set<qint16>(0, 0, 0, -5);
    negative.set<qint16>(1, 0, 0, -32768);
    EXPECT_THAT(coloursOf(*negative, std::nullopt, GetParam()), ElementsAre(0, 0));
}

TEST_P(Colour, GammaBendsTheRamp) {
    // 255 * sqrt(1 / 4) = 127.5, 255 * (1 / 2) ^ 2 = 63.75
    EXPECT_THAT(of({0, 1000, 4000}, 12, {{0, 4000, 0, 255, 0.5}}), ElementsAre(0, 127, 255));
    EXPECT_THAT(of({0, 2000, 4000}, 12, {{0, 4000, 0, 255, 2.0}}), ElementsAre(0, 63, 255));
    EXPECT_THAT(ofFloats({10.0F, 12.5F, 20.0F}, {{0, 4294967295U, 0, 255, 0.5}}), ElementsAre(0, 127, 255));
}

TEST_P(Colour, WhatIsNotANumberTakesTheFirstColour) {
    // The root of a value below the window.
    EXPECT_THAT(of({0, 999}, 12, {{1000, 2000, 0, 255, 0.5}}), ElementsAre(0, 0));
    EXPECT_THAT(of({0, 999}, 12, {{0, 2000, 0, 255, qQNaN()}}), ElementsAre(0, 0));
}

TEST_P(Colour, OutputThatRunsBackwardsCountsAsOneStep) {
    // outHigh - outLow is at least 1: (v - 0) * 1 / 4095 + 200.
    EXPECT_THAT(of({0, 2048, 4095}, 12, {{0, 4095, 200, 100, 1.0}}), ElementsAre(200, 200, 201));
}

TEST_P(Colour, FloatPicturesScaleTheWindowToTheirValues) {
    EXPECT_THAT(ofFloats({1.0F, 2.0F, 3.0F}), ElementsAre(0, 127, 255));
    // The upper half of the range: base 2, length 1.
    EXPECT_THAT(ofFloats({1.0F, 2.0F, 2.5F, 3.0F}, {{2147483648U, 4294967295U, 0, 255, 1.0}}),
                ElementsAre(0, 0, 127, 255));
}

TEST_P(Colour, AWindowWithoutWidthInAFloatPictureIsOneUnitLong) {
    // Both ends in the middle of 1 to 3.
    EXPECT_THAT(ofFloats({1.0F, 2.0F, 2.5F, 3.0F}, {{2147483648U, 2147483648U, 0, 255, 1.0}}),
                ElementsAre(0, 0, 127, 255));
}

TEST_P(Colour, ADescriptorWithoutBitsHarmsNothing) {
    for (quint32 bits : {0U, 33U, 64U, 4000000000U}) {
        TestPicture picture(3, 1, 1, EkImageDataType::Float32);
        fillFloats(picture, [](quint32 x, quint32) { return float(x); });
        picture->bitsPerChannel = bits;
        EXPECT_THAT(coloursOf(*picture, std::nullopt, GetParam()), ElementsAre(0, 127, 255)) << bits;
    }
    TestPicture integer(2, 1, 1, EkImageDataType::UInt8);
    integer.set<quint8>(1, 0, 0, 200);
    integer->bitsPerChannel = 0;
    EXPECT_THAT(coloursOf(*integer, std::nullopt, GetParam()), ElementsAre(0, 255));
}

TEST(CkToFCloudColour, RedGreenAndBlueStandInTheirPlaces) {
    std::array<quint8, 1024> table{};
    table[4 * 7] = 51;      // blue
    table[4 * 7 + 1] = 102; // green
    table[4 * 7 + 2] = 255; // red
    table[4 * 7 + 3] = 1;   // nothing
    TestPicture picture(1, 1, 1, EkImageDataType::UInt8);
    picture.set<quint8>(0, 0, 0, 7);
    SkToFCloudParameters parameters;
    parameters.pColourTable = table.data();
    for (bool plain : {true, false}) {
        CkToFCloudBuilder builder;
        builder.setPlainLoop(plain);
        ASSERT_TRUE(builder.build({*picture, {}}, parameters));
        EXPECT_FLOAT_EQ(vertexAt(builder, 0).red, 1.0F);
        EXPECT_FLOAT_EQ(vertexAt(builder, 0).green, 0.4F);
        EXPECT_FLOAT_EQ(vertexAt(builder, 0).blue, 0.2F);
    }
}
