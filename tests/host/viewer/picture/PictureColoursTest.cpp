#include "host/viewer/picture/PictureColours.h"

#include "host/viewer/picture/PictureStatistics.h"
#include "host/viewer/picture/PictureText.h"
#include "tests/host/viewer/ViewerPictures.h"
#include "tests/support/SampleTypes.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkLut.h"
#include "zuCore/ToFVocabulary.h"

#include <QCoreApplication>
#include <QTranslator>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>

namespace {

// A ramp of pure greys: a colour gives its index in the table.
QList<QRgb> greys(int count) {
    QList<QRgb> colours;
    for (int i = 0; i < count; ++i) {
        colours.append(qRgb(i, i, i));
    }
    return colours;
}

int level(const QImage& image, int x, int y) {
    return qRed(image.pixel(x, y));
}

template <class T>
class EverySampleType : public ::testing::Test {};
TYPED_TEST_SUITE(EverySampleType, SampleTypes);

TYPED_TEST(EverySampleType, WindowSpreadsOverTheColours) {
    using T = TypeParam;
    // Values 0, 10, ... 100 in channel 1; channel 0 would give something else.
    const auto frame = makeFrame<T>(SampleTypeOf<T>::value, 11, 3, 2, 8 * sizeof(T),
                                    [](quint32 x, quint32, quint32 c) { return c == 1 ? T(10 * x) : T(99); });
    ASSERT_TRUE(frame);
    QImage image;
    ASSERT_TRUE(PictureColours::colourChannel(frame->picBuf(), 1, {greys(101), {0.0, 100.0}, false}, image));
    ASSERT_EQ(image.size(), QSize(11, 3));
    for (int x = 0; x < 11; ++x) {
        EXPECT_EQ(level(image, x, 2), 10 * x);
    }
    // Values outside a narrower window get the end colours.
    ASSERT_TRUE(PictureColours::colourChannel(frame->picBuf(), 1, {greys(101), {40.0, 60.0}, false}, image));
    EXPECT_EQ(level(image, 0, 0), 0);
    EXPECT_EQ(level(image, 5, 0), 50);
    EXPECT_EQ(level(image, 10, 0), 100);
}

TYPED_TEST(EverySampleType, StatisticsKnowRangeAndQuantiles) {
    using T = TypeParam;
    const auto frame = makeFrame<T>(SampleTypeOf<T>::value, 100, 2, 1, 8 * sizeof(T),
                                    [](quint32 x, quint32, quint32) { return T(x); });
    SkPictureStatistics statistics;
    ASSERT_TRUE(computeStatistics(frame->picBuf(), 0, statistics));
    EXPECT_DOUBLE_EQ(statistics.minimum, 0.0);
    EXPECT_DOUBLE_EQ(statistics.maximum, 99.0);
    EXPECT_EQ(statistics.finite, 200U);
    EXPECT_EQ(statistics.notFinite, 0U);
    // Values spread evenly: half of them lie below the middle, to one of 256 bins.
    EXPECT_NEAR(statistics.quantile(0.5), 49.5, 1.0);
    EXPECT_NEAR(statistics.quantile(0.0), 0.0, 1.0);
    EXPECT_NEAR(statistics.quantile(1.0), 99.0, 1.0);
}

TYPED_TEST(EverySampleType, SampleValueReadsTheSample) {
    using T = TypeParam;
    const auto frame = makeFrame<T>(SampleTypeOf<T>::value, 4, 5, 3, 8 * sizeof(T),
                                    [](quint32 x, quint32 y, quint32 c) { return T(x + 4 * y + 20 * c); });
    EXPECT_EQ(PictureColours::sampleValue(frame->picBuf(), 3, 4, 2), 3 + 16 + 40);
    EXPECT_TRUE(std::isnan(PictureColours::sampleValue(frame->picBuf(), 4, 0, 0)));
    EXPECT_TRUE(std::isnan(PictureColours::sampleValue(frame->picBuf(), 0, 5, 0)));
    EXPECT_TRUE(std::isnan(PictureColours::sampleValue(frame->picBuf(), 0, 0, 3)));
}

TEST(DisplayTable, NegativeSamplesHaveTheirPlace) {
    const auto frame =
        makeFrame<qint16>(EkImageDataType::Int16, 3, 1, 1, 16,
                          [](quint32 x, quint32, quint32) { return qint16(int(x) * 100 - 100); });
    QImage image;
    ASSERT_TRUE(
        PictureColours::colourChannel(frame->picBuf(), 0, {greys(201), {-100.0, 100.0}, false}, image));
    EXPECT_EQ(level(image, 0, 0), 0);
    EXPECT_EQ(level(image, 1, 0), 100);
    EXPECT_EQ(level(image, 2, 0), 200);
}

TEST(DisplayTable, ValuesThatAreNotFiniteAreBlack) {
    const float values[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                            -std::numeric_limits<float>::infinity(), 1.0F, 2.0F};
    const auto frame = makeFrame<float>(EkImageDataType::Float32, 5, 1, 1, 32,
                                        [&](quint32 x, quint32, quint32) { return values[x]; });
    QList<QRgb> colours = {qRgb(10, 20, 30), qRgb(200, 100, 50)};
    QImage image;
    ASSERT_TRUE(PictureColours::colourChannel(frame->picBuf(), 0, {colours, {1.0, 2.0}, true}, image));
    for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(image.pixel(x, 0), PictureColours::kInvalid) << x;
    }
    EXPECT_EQ(image.pixel(3, 0), colours[0]);
    EXPECT_EQ(image.pixel(4, 0), colours[1]);
    SkPictureStatistics statistics;
    ASSERT_TRUE(computeStatistics(frame->picBuf(), 0, statistics));
    EXPECT_EQ(statistics.notFinite, 3U);
    EXPECT_EQ(statistics.minimum, 1.0);
    EXPECT_EQ(statistics.maximum, 2.0);
}

TEST(DisplayTable, PictureWithoutAnyFiniteValueIsBlackAndHasNoRange) {
    const auto frame = makeFrame<float>(EkImageDataType::Float32, 4, 4, 1, 32, [](quint32, quint32, quint32) {
        return std::numeric_limits<float>::quiet_NaN();
    });
    SkPictureStatistics statistics;
    ASSERT_TRUE(computeStatistics(frame->picBuf(), 0, statistics));
    EXPECT_EQ(statistics.finite, 0U);
    EXPECT_EQ(statistics.minimum, 0.0);
    EXPECT_EQ(statistics.maximum, 0.0);
    QImage image;
    ASSERT_TRUE(PictureColours::colourChannel(frame->picBuf(), 0, {greys(2), {0.0, 0.0}, false}, image));
    EXPECT_EQ(image.pixel(3, 3), PictureColours::kInvalid);
}

TEST(DisplayTable, HugeFloatsOfBothSignsAreCountedWithoutHarm) {
    const auto frame =
        makeFrame<double>(EkImageDataType::Float64, 2, 1, 1, 64, [](quint32 x, quint32, quint32) {
            return x == 0 ? std::numeric_limits<double>::lowest() : std::numeric_limits<double>::max();
        });
    SkPictureStatistics statistics;
    ASSERT_TRUE(computeStatistics(frame->picBuf(), 0, statistics));
    EXPECT_EQ(statistics.finite, 2U);
    QImage image;
    EXPECT_TRUE(PictureColours::colourChannel(
        frame->picBuf(), 0, {greys(2), {statistics.minimum, statistics.maximum}, false}, image));
}

TEST(DisplayTable, SaturatedSamplesAreRedOnRequest) {
    const auto frame =
        makeFrame<quint16>(EkImageDataType::UInt16, 3, 1, 1, 12, [](quint32 x, quint32, quint32) {
            return quint16(x == 0 ? 4094 : x == 1 ? 4095 : 5000);
        });
    QImage image;
    ASSERT_TRUE(PictureColours::colourChannel(frame->picBuf(), 0, {greys(256), {0.0, 4095.0}, true}, image));
    EXPECT_NE(image.pixel(0, 0), PictureColours::kSaturated);
    EXPECT_EQ(image.pixel(1, 0), PictureColours::kSaturated);
    EXPECT_EQ(image.pixel(2, 0), PictureColours::kSaturated);
    ASSERT_TRUE(PictureColours::colourChannel(frame->picBuf(), 0, {greys(256), {0.0, 4095.0}, false}, image));
    EXPECT_EQ(level(image, 2, 0), 255);
}

TEST(DisplayTable, RangesFollowTypeAndBits) {
    SkPicBufInfo info;
    info.dataType = EkImageDataType::UInt16;
    info.bitsPerChannel = 12;
    EXPECT_EQ(PictureColours::fullRange(info), (SkDisplayWindow{0.0, 4095.0}));
    info.dataType = EkImageDataType::Int16;
    info.bitsPerChannel = 16;
    EXPECT_EQ(PictureColours::fullRange(info), (SkDisplayWindow{-32768.0, 32767.0}));
    info.dataType = EkImageDataType::UInt8;
    info.bitsPerChannel = 0;
    EXPECT_EQ(PictureColours::fullRange(info), (SkDisplayWindow{0.0, 255.0}));
    info.bitsPerChannel = 4'000'000'000U;
    EXPECT_EQ(PictureColours::fullRange(info), (SkDisplayWindow{0.0, 255.0}));
}

TEST(DisplayTable, RefusesWhatCannotBeShown) {
    QImage image;
    EXPECT_FALSE(PictureColours::colourChannel(SkPicBuf(), 0, {greys(2), {0, 1}, false}, image));
    const auto frame = makeFrame<quint8>(EkImageDataType::UInt8, 2, 2, 1, 8,
                                         [](quint32, quint32, quint32) { return quint8(1); });
    EXPECT_FALSE(PictureColours::colourChannel(frame->picBuf(), 1, {greys(2), {0, 1}, false}, image));
    EXPECT_FALSE(PictureColours::colourChannel(frame->picBuf(), 0, {{}, {0, 1}, false}, image));
    SkPicBuf other = frame->picBuf();
    other.dataType = EkImageDataType(77);
    EXPECT_FALSE(PictureColours::colourChannel(other, 0, {greys(2), {0, 1}, false}, image));
    other = frame->picBuf();
    other.lineSize = 1;
    EXPECT_FALSE(PictureColours::colourChannel(other, 0, {greys(2), {0, 1}, false}, image));
    SkPictureStatistics statistics;
    EXPECT_FALSE(computeStatistics(other, 0, statistics));
    EXPECT_TRUE(image.isNull());
}

TEST(DisplayTable, ColourPicturesAreBlueGreenRed) {
    const auto frame =
        makeFrame<quint8>(EkImageDataType::UInt8, 2, 1, 3, 8,
                          [](quint32 x, quint32, quint32 c) { return quint8(x == 0 ? 10 + c : 100 + c); });
    ASSERT_TRUE(PictureColours::isColourPicture(frame->picBuf()));
    QImage image;
    ASSERT_TRUE(PictureColours::copyColours(frame->picBuf(), image));
    EXPECT_EQ(image.pixel(0, 0), qRgb(12, 11, 10));
    EXPECT_EQ(image.pixel(1, 0), qRgb(102, 101, 100));
}

TEST(DisplayTable, ColoursAreTheMapWarpedByGamma) {
    CkLut lut(8, 1, false, EkImageDataType::UInt8);
    QList<QRgb> plain = PictureColours::colours(lut);
    ASSERT_EQ(plain.size(), PictureColours::kColours);
    EXPECT_EQ(plain.first(), qRgb(0, 0, 0));
    EXPECT_EQ(plain.last(), qRgb(255, 255, 255));
    CkLut::CkCompContrast contrast;
    contrast.gamma = 2.0;
    lut.contrastEntries().append(contrast);
    const QList<QRgb> warped = PictureColours::colours(lut);
    // The middle of the range squared is a quarter of it.
    EXPECT_NEAR(qRed(warped[PictureColours::kColours / 2]), 255.0 / 4.0, 1.0);
    EXPECT_EQ(warped.last(), qRgb(255, 255, 255));
}

TEST(PictureText, NamesChannelsUnitsAndValues) {
    auto frame = makeFrame<float>(EkImageDataType::Float32, 2, 2, 2, 32, [](quint32 x, quint32 y, quint32 c) {
        return c == 0 ? std::numbers::pi_v<float> : float(x + y);
    });
    CkImageMetadata metadata;
    metadata.channelNames = QStringList{"Phase shift", "Confidence"};
    const QString text = PictureText::pixel(frame->picBuf(), metadata, 1, 1);
    EXPECT_EQ(text, "x 1, y 1:  Phase shift 3.1416 rad,  Confidence 2");
    EXPECT_TRUE(PictureText::pixel(frame->picBuf(), metadata, 2, 0).isEmpty());
    EXPECT_TRUE(PictureText::pixel(frame->picBuf(), metadata, -1, 0).isEmpty());
    metadata.channelNames = QStringList{"Depth", "Confidence"};
    EXPECT_EQ(PictureText::channelUnit(frame->picBuf(), metadata, 0), "m");
    EXPECT_EQ(PictureText::channelUnit(frame->picBuf(), metadata, 1), "");
    EXPECT_EQ(PictureText::number(frame->picBuf(), std::numeric_limits<double>::quiet_NaN()), "NaN");
}

TEST(PictureText, CountsAreSaidOnceForAllChannels) {
    auto frame = makeFrame<quint16>(EkImageDataType::UInt16, 2, 1, 2, 12, [](quint32 x, quint32, quint32 c) {
        return quint16(1000 * (c + 1) + x);
    });
    frame->picBuf().colorFilterArray = EkColorFilterArray::RawX2AandB;
    EXPECT_EQ(PictureText::pixel(frame->picBuf(), {}, 1, 0), "x 1, y 0:  A 1001,  B 2001 counts");
    auto colour = makeFrame<quint8>(EkImageDataType::UInt8, 1, 1, 3, 8,
                                    [](quint32, quint32, quint32 c) { return quint8(c); });
    EXPECT_EQ(PictureText::pixel(colour->picBuf(), {}, 0, 0), "x 0, y 0:  Blue 0,  Green 1,  Red 2");
}

/// Marks every text that is looked up.
class MarkingTranslator : public QTranslator {
public:
    QString translate(const char*, const char* sourceText, const char*, int) const override {
        return QStringLiteral("<%1>").arg(QLatin1String(sourceText));
    }
    bool isEmpty() const override { return false; }
};

TEST(PictureText, TranslatesTheNamesOfChannelsAndColourMaps) {
    MarkingTranslator translator;
    ASSERT_TRUE(QCoreApplication::installTranslator(&translator));
    QStringList names = CkLut::pseudoColorNames();
    EXPECT_EQ(names.removeAll("Jet"), 1); // a proper name, the same in every language
    names << ToFChannel::kPhaseShift << ToFChannel::kDepth << ToFChannel::kConfidence << ToFChannel::kGrey;
    for (const QString& name : std::as_const(names)) {
        EXPECT_EQ(PictureText::translated(name), QStringLiteral("<%1>").arg(name));
    }
    EXPECT_EQ(PictureText::translated("Unknown"), "Unknown");
}

TEST(PictureText, KnowsRawPicturesWithoutNames) {
    SkPicBufInfo info;
    info.channels = 2;
    info.dataType = EkImageDataType::UInt16;
    info.colorFilterArray = EkColorFilterArray::RawX2AandB;
    EXPECT_EQ(PictureText::channelName(info, {}, 0), "A");
    EXPECT_EQ(PictureText::channelName(info, {}, 1), "B");
    info.channels = 3;
    info.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    EXPECT_EQ(PictureText::channelName(info, {}, 2), "X3");
    info.width = 640;
    info.height = 480;
    info.bitsPerChannel = 12;
    EXPECT_TRUE(PictureText::format(info).contains(QStringLiteral("640 x 480")));
}

} // namespace
