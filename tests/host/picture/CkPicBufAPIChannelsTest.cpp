#include "tests/support/SampleTypes.h"
#include "tests/support/TestPicture.h"
#include "zuCore/CkPicBufAPI.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

__extension__ using Wide = __int128;

template <typename T>
class ChannelsOf : public testing::Test {};
TYPED_TEST_SUITE(ChannelsOf, SampleTypes);

template <typename T>
T small(quint32 x, quint32 y, quint32 c) {
    return T((x * 5 + y * 11 + c * 29) % 120);
}

template <typename T>
T roundedTo(double value) {
    return std::is_integral_v<T> ? T(std::floor(value + 0.5)) : T(value);
}

TYPED_TEST(ChannelsOf, GreyOfOneChannelIsACopy) {
    using T = TypeParam;
    PaddedPicture source(7, 3, 1, SampleTypeOf<T>::value);
    PaddedPicture target(7, 3, 1, SampleTypeOf<T>::value, 0, 2);
    source.fill<T>(small<T>);
    source.set<T>(6, 2, 0, std::numeric_limits<T>::max());
    ASSERT_TRUE(CkPicBufAPI::ConvertToGrey(*source, *target));
    EXPECT_EQ(target.at<T>(6, 2), std::numeric_limits<T>::max());
    EXPECT_EQ(target.at<T>(5, 2), small<T>(5, 2, 0));
    EXPECT_TRUE(target.guardsIntact());
}

TYPED_TEST(ChannelsOf, GreyOfTwoChannelsIsTheirMean) {
    using T = TypeParam;
    PaddedPicture source(7, 3, 2, SampleTypeOf<T>::value);
    PaddedPicture target(7, 3, 1, SampleTypeOf<T>::value, 0, 2);
    source.fill<T>(small<T>);
    source.set<T>(0, 0, 0, std::numeric_limits<T>::max());
    source.set<T>(0, 0, 1, std::numeric_limits<T>::max());
    ASSERT_TRUE(CkPicBufAPI::ConvertToGrey(*source, *target));
    EXPECT_EQ(target.at<T>(0, 0), std::numeric_limits<T>::max());
    for (quint32 x = 1; x < 7; ++x) {
        const double mean = (double(small<T>(x, 2, 0)) + double(small<T>(x, 2, 1))) / 2.0;
        EXPECT_EQ(target.at<T>(x, 2), roundedTo<T>(mean));
    }
    EXPECT_TRUE(target.guardsIntact());
}

TYPED_TEST(ChannelsOf, GreyOfColoursWeighsBlueGreenRed) {
    using T = TypeParam;
    for (quint32 channels : {3U, 4U}) {
        PaddedPicture source(6, 3, channels, SampleTypeOf<T>::value);
        PaddedPicture target(6, 3, 1, SampleTypeOf<T>::value, 0, 2);
        source.fill<T>(small<T>);
        ASSERT_TRUE(CkPicBufAPI::ConvertToGrey(*source, *target));
        for (quint32 x = 0; x < 6; ++x) {
            const double grey = 0.299 * double(small<T>(x, 1, 2)) + 0.587 * double(small<T>(x, 1, 1)) +
                                0.114 * double(small<T>(x, 1, 0));
            if constexpr (std::is_integral_v<T>) {
                EXPECT_EQ(target.at<T>(x, 1), roundedTo<T>(grey));
            } else {
                EXPECT_NEAR(double(target.at<T>(x, 1)), grey, 1e-5);
            }
        }
        EXPECT_TRUE(target.guardsIntact());
    }
}

TYPED_TEST(ChannelsOf, ResizeToTheSameSizeIsACopy) {
    using T = TypeParam;
    PaddedPicture source(5, 4, 2, SampleTypeOf<T>::value);
    PaddedPicture target(5, 4, 2, SampleTypeOf<T>::value, 0, 7);
    source.fill<T>(small<T>);
    source.set<T>(4, 3, 1, std::numeric_limits<T>::max());
    source.set<T>(3, 3, 1, std::numeric_limits<T>::lowest());
    ASSERT_TRUE(CkPicBufAPI::ResizePic(*source, *target, 5, 4));
    for (quint32 y = 0; y < 4; ++y) {
        for (quint32 x = 0; x < 5; ++x) {
            ASSERT_EQ(target.at<T>(x, y, 1), source.at<T>(x, y, 1));
        }
    }
    EXPECT_TRUE(target.guardsIntact());
}

TYPED_TEST(ChannelsOf, ResizeTakesTheMeanOfTheCoveredArea) {
    using T = TypeParam;
    const quint32 sizes[][2] = {{1, 1}, {3, 2}, {2, 5}, {7, 6}, {14, 12}, {10, 3}};
    PaddedPicture source(7, 6, 2, SampleTypeOf<T>::value);
    source.fill<T>(small<T>);
    for (const auto& [width, height] : sizes) {
        PaddedPicture target(width, height, 2, SampleTypeOf<T>::value, 0, 5);
        ASSERT_TRUE(CkPicBufAPI::ResizePic(*source, *target, width, height));
        // By brute force: target pixel x covers source x * 7 / width to (x + 1) * 7 / width; the source is
        // cut into 7 * width columns and 6 * height rows of equal size.
        for (quint32 y = 0; y < height; ++y) {
            for (quint32 x = 0; x < width; ++x) {
                double sum = 0.0;
                for (quint32 v = y * 6; v < (y + 1) * 6; ++v) {
                    for (quint32 u = x * 7; u < (x + 1) * 7; ++u) {
                        sum += double(small<T>(u / width, v / height, 1));
                    }
                }
                const double mean = sum / 42.0;
                if constexpr (std::is_integral_v<T>) {
                    ASSERT_NEAR(double(target.at<T>(x, y, 1)), mean, 0.5 + 1e-9);
                } else {
                    ASSERT_NEAR(double(target.at<T>(x, y, 1)), mean, 1e-4);
                }
            }
        }
        EXPECT_TRUE(target.guardsIntact());
    }
}

TEST(ConvertToGrey, AllocatesAnEmptyTarget) {
    PaddedPicture source(6, 3, 3, EkImageDataType::UInt16, 12);
    source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    SkPicBuf target;
    ASSERT_TRUE(CkPicBufAPI::ConvertToGrey(*source, target));
    EXPECT_EQ(target.width, 6U);
    EXPECT_EQ(target.height, 3U);
    EXPECT_EQ(target.channels, 1U);
    EXPECT_EQ(target.bitsPerChannel, 12U);
    EXPECT_EQ(target.dataType, EkImageDataType::UInt16);
    EXPECT_EQ(target.colorFilterArray, EkColorFilterArray::None);
    CkPicBufAPI::FreePicBuf(target);
}

TEST(ConvertToGrey, RefusesATargetOfAnotherFormat) {
    PaddedPicture source(6, 3, 3, EkImageDataType::UInt16);
    PaddedPicture narrow(5, 3, 1, EkImageDataType::UInt16);
    PaddedPicture twoChannels(6, 3, 2, EkImageDataType::UInt16);
    PaddedPicture otherType(6, 3, 1, EkImageDataType::UInt8);
    EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(*source, *narrow));
    EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(*source, *twoChannels));
    EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(*source, *otherType));
    EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(*source, *source));
}

TEST(ResizePic, LeavesOutWhatIsNotFinite) {
    PaddedPicture source(4, 2, 1, EkImageDataType::Float32);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    const float values[2][4] = {{1.0F, nan, nan, infinity}, {4.0F, 7.0F, -infinity, nan}};
    source.fill<float>([&](quint32 x, quint32 y, quint32) { return values[y][x]; });
    PaddedPicture target(2, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkPicBufAPI::ResizePic(*source, *target, 2, 1));
    EXPECT_FLOAT_EQ(target.at<float>(0, 0), 4.0F);
    EXPECT_TRUE(std::isnan(target.at<float>(1, 0))) << "nothing finite to take a mean of";
}

TEST(ResizePic, AHalfCoveredPixelIsEnoughToTakeAMeanOf) {
    // Three pixels become two: each result covers one source pixel whole and half of the middle one.
    PaddedPicture source(3, 1, 1, EkImageDataType::Float32);
    source.set<float>(0, 0, 0, std::numeric_limits<float>::quiet_NaN());
    source.set<float>(1, 0, 0, 6.0F);
    source.set<float>(2, 0, 0, 3.0F);
    PaddedPicture target(2, 1, 1, EkImageDataType::Float32);
    ASSERT_TRUE(CkPicBufAPI::ResizePic(*source, *target, 2, 1));
    EXPECT_FLOAT_EQ(target.at<float>(0, 0), 6.0F);
    EXPECT_FLOAT_EQ(target.at<float>(1, 0), 4.0F) << "(6 / 2 + 3) / 1.5";
}

TEST(ResizePic, AllocatesAnEmptyTargetAndRefusesSizesOfZero) {
    PaddedPicture source(4, 2, 2, EkImageDataType::UInt8);
    SkPicBuf target;
    EXPECT_FALSE(CkPicBufAPI::ResizePic(*source, target, 0, 1));
    EXPECT_FALSE(CkPicBufAPI::ResizePic(*source, target, 1, 0));
    EXPECT_FALSE(CkPicBufAPI::ResizePic(*source, target, 0xffffffffU, 0xffffffffU));
    EXPECT_EQ(target.data, nullptr);
    ASSERT_TRUE(CkPicBufAPI::ResizePic(*source, target, 9, 5));
    EXPECT_EQ(target.width, 9U);
    EXPECT_EQ(target.height, 5U);
    EXPECT_EQ(target.channels, 2U);
    EXPECT_FALSE(CkPicBufAPI::ResizePic(*source, target, 9, 4)) << "another size than the target's";
    CkPicBufAPI::FreePicBuf(target);
}

/// Source and target sample type.
template <typename S, typename T>
struct Conversion {
    using Source = S;
    using Target = T;
};

template <typename C>
class ConvertPicToDifBpcOf : public testing::Test {};
using Conversions =
    testing::Types<Conversion<quint8, quint16>, Conversion<quint16, quint8>, Conversion<quint32, quint16>,
                   Conversion<quint32, quint8>, Conversion<quint16, quint16>, Conversion<qint8, qint16>,
                   Conversion<qint16, quint8>, Conversion<quint16, qint16>, Conversion<qint32, qint8>,
                   Conversion<quint64, quint8>, Conversion<quint8, quint64>, Conversion<qint64, quint64>,
                   Conversion<quint64, qint64>, Conversion<qint8, qint32>, Conversion<quint32, qint64>>;
TYPED_TEST_SUITE(ConvertPicToDifBpcOf, Conversions);

TYPED_TEST(ConvertPicToDifBpcOf, ScalesByBitsRoundsOnRequestAndSaturates) {
    using S = typename TypeParam::Source;
    using T = typename TypeParam::Target;
    std::mt19937_64 random(5);
    const quint32 sourceWidth = 8 * sizeof(S);
    const quint32 targetWidth = 8 * sizeof(T);
    for (quint32 sourceBits : {1U, 5U, sourceWidth - 1, sourceWidth}) {
        for (quint32 targetBits : {1U, 4U, targetWidth - 1, targetWidth}) {
            for (bool round : {false, true}) {
                PaddedPicture source(9, 3, 2, SampleTypeOf<S>::value, sourceBits);
                PaddedPicture target(9, 3, 2, SampleTypeOf<T>::value, targetBits, 3);
                source.fill<S>([&](quint32 x, quint32, quint32) { return S(random() >> (x * 7)); });
                ASSERT_TRUE(CkPicBufAPI::ConvertPicToDifBpc(*source, *target, round));
                const Wide high = (Wide(1) << (std::is_signed_v<T> ? targetBits - 1 : targetBits)) - 1;
                const Wide low = std::is_signed_v<T> ? -high - 1 : Wide(0);
                for (quint32 y = 0; y < 3; ++y) {
                    for (quint32 x = 0; x < 9; ++x) {
                        // A signed 8-bit sample is a number, not a character.
                        Wide value = source.at<S>(x, y, 1); // NOLINT(bugprone-signed-char-misuse)
                        if (targetBits >= sourceBits) {
                            value *= Wide(1) << (targetBits - sourceBits);
                        } else {
                            const Wide divisor = Wide(1) << (sourceBits - targetBits);
                            value += round ? divisor / 2 : Wide(0);
                            const Wide remainder = ((value % divisor) + divisor) % divisor;
                            value = (value - remainder) / divisor;
                        }
                        ASSERT_EQ(target.at<T>(x, y, 1), T(std::min(std::max(value, low), high)))
                            << sourceBits << " bits to " << targetBits;
                    }
                }
                EXPECT_TRUE(target.guardsIntact());
            }
        }
    }
}

TEST(ConvertPicToDifBpc, KnownValues) {
    PaddedPicture source(4, 1, 1, EkImageDataType::UInt16, 12);
    PaddedPicture target(4, 1, 1, EkImageDataType::UInt8, 8);
    const quint16 values[4] = {0x0ff8, 0x0018, 0x0017, 0x1fff};
    source.fill<quint16>([&](quint32 x, quint32, quint32) { return values[x]; });
    ASSERT_TRUE(CkPicBufAPI::ConvertPicToDifBpc(*source, *target, false));
    EXPECT_EQ(target.at<quint8>(0, 0), 255);
    EXPECT_EQ(target.at<quint8>(1, 0), 1);
    EXPECT_EQ(target.at<quint8>(2, 0), 1);
    EXPECT_EQ(target.at<quint8>(3, 0), 255) << "beyond its 12 bits";
    ASSERT_TRUE(CkPicBufAPI::ConvertPicToDifBpc(*source, *target, true));
    EXPECT_EQ(target.at<quint8>(0, 0), 255) << "rounded up and kept in range";
    EXPECT_EQ(target.at<quint8>(1, 0), 2);
    EXPECT_EQ(target.at<quint8>(2, 0), 1);
}

TEST(ConvertPicToDifBpc, RefusesFloatsOtherSizesAndImpossibleBits) {
    PaddedPicture source(4, 2, 1, EkImageDataType::UInt16);
    PaddedPicture target(4, 2, 1, EkImageDataType::UInt8);
    PaddedPicture floats(4, 2, 1, EkImageDataType::Float32);
    PaddedPicture narrow(3, 2, 1, EkImageDataType::UInt8);
    PaddedPicture twoChannels(4, 2, 2, EkImageDataType::UInt8);
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*source, *floats, false));
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*floats, *target, false));
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*source, *narrow, false));
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*source, *twoChannels, false));
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*source, *source, false));
    for (quint32 bits : {0U, 17U, 0xffffffffU}) {
        source->bitsPerChannel = bits;
        EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*source, *target, false)) << bits;
    }
    source->bitsPerChannel = 16;
    for (quint32 bits : {0U, 9U}) {
        target->bitsPerChannel = bits;
        EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*source, *target, false)) << bits;
    }
}

} // namespace
