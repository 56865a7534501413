#include "tests/support/TestPicture.h"
#include "zuCore/CkPicBufAPI.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

template <typename T>
class IntegerSamples : public testing::Test {};
using IntegerTypes = testing::Types<qint8, quint8, qint16, quint16, qint32, quint32, qint64, quint64>;
TYPED_TEST_SUITE(IntegerSamples, IntegerTypes);

template <typename T>
class FloatSamples : public testing::Test {};
using FloatTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(FloatSamples, FloatTypes);

/// Any value of the type, including the limits.
template <typename T>
void fillRandomly(PaddedPicture& picture, unsigned seed) {
    std::mt19937_64 random(seed);
    const T limits[] = {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), T(0), T(1), T(-1)};
    picture.fill<T>([&](quint32, quint32, quint32) {
        const quint64 value = random();
        return value % 4 == 0 ? limits[value / 4 % 5] : T(value >> 13);
    });
}

TYPED_TEST(IntegerSamples, ShiftBitsMovesEverySampleByAnyAmount) {
    using T = TypeParam;
    constexpr int width = 8 * int(sizeof(T));
    for (int shift : {0, 1, -1, 3, -3, width - 1, 1 - width, width, -width, 100, -100,
                      std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        PaddedPicture picture(11, 3, 2, SampleTypeOf<T>::value);
        PaddedPicture original(11, 3, 2, SampleTypeOf<T>::value);
        fillRandomly<T>(picture, 1);
        fillRandomly<T>(original, 1);
        ASSERT_TRUE(CkPicBufAPI::ShiftBits(*picture, shift, false));
        for (quint32 y = 0; y < 3; ++y) {
            for (quint32 x = 0; x < 11; ++x) {
                // One bit at a time: a doubling without the lost bit, a halving towards minus infinity.
                T expected = original.at<T>(x, y, 1);
                for (int i = 0; i < std::min(shift, width); ++i) {
                    expected = T(quint64(expected) * 2);
                }
                for (int i = 0; i > std::max(shift, -width); --i) {
                    const T remainder = T(expected % 2);
                    expected = T((expected - T(remainder)) / 2 - (remainder < 0 ? 1 : 0));
                }
                ASSERT_EQ(picture.at<T>(x, y, 1), expected) << "shift " << shift;
            }
        }
        EXPECT_TRUE(picture.guardsIntact());
        EXPECT_EQ(picture->bitsPerChannel, quint32(width)) << "unchanged";
    }
}

TYPED_TEST(IntegerSamples, ShiftBitsCanCarryTheBitsAlong) {
    using T = TypeParam;
    constexpr quint32 width = 8 * sizeof(T);
    PaddedPicture picture(3, 1, 1, SampleTypeOf<T>::value, width - 2);
    ASSERT_TRUE(CkPicBufAPI::ShiftBits(*picture, -4, true));
    EXPECT_EQ(picture->bitsPerChannel, width - 6);
    ASSERT_TRUE(CkPicBufAPI::ShiftBits(*picture, 100, true));
    EXPECT_EQ(picture->bitsPerChannel, width);
    ASSERT_TRUE(CkPicBufAPI::ShiftBits(*picture, std::numeric_limits<int>::min(), true));
    EXPECT_EQ(picture->bitsPerChannel, 0U);
}

TYPED_TEST(IntegerSamples, SubtractSaturates) {
    using T = TypeParam;
    PaddedPicture picture(13, 7, 2, SampleTypeOf<T>::value, 0, 3);
    PaddedPicture original(13, 7, 2, SampleTypeOf<T>::value, 0, 3);
    PaddedPicture subtrahend(13, 7, 2, SampleTypeOf<T>::value, 0, 21);
    fillRandomly<T>(picture, 2);
    fillRandomly<T>(original, 2);
    fillRandomly<T>(subtrahend, 3);
    ASSERT_TRUE(CkPicBufAPI::Subtract(*picture, *subtrahend));
    __extension__ using Wide = __int128;
    for (quint32 y = 0; y < 7; ++y) {
        for (quint32 x = 0; x < 13; ++x) {
            for (quint32 c = 0; c < 2; ++c) {
                const Wide difference = Wide(original.at<T>(x, y, c)) - Wide(subtrahend.at<T>(x, y, c));
                const Wide expected = std::min<Wide>(
                    std::max<Wide>(difference, std::numeric_limits<T>::min()), std::numeric_limits<T>::max());
                ASSERT_EQ(picture.at<T>(x, y, c), T(expected));
            }
        }
    }
    EXPECT_TRUE(picture.guardsIntact());
    ASSERT_TRUE(CkPicBufAPI::Subtract(*picture, *picture)) << "from itself";
    EXPECT_EQ(picture.at<T>(12, 6, 1), T(0));
}

TYPED_TEST(IntegerSamples, DetectColorBitDepthIsTheLengthOfTheLargestMagnitude) {
    using T = TypeParam;
    constexpr quint32 width = 8 * sizeof(T);
    PaddedPicture picture(5, 4, 2, SampleTypeOf<T>::value);
    quint32 bits = 77;
    EXPECT_FALSE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, false)) << "all zero";
    EXPECT_EQ(bits, 77U);
    for (quint32 length = 1; length < width; ++length) {
        picture.set<T>(4, 3, 1, T(T(1) << (length - 1)));
        ASSERT_TRUE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, false));
        EXPECT_EQ(bits, length);
    }
    EXPECT_FALSE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, true)) << "channel 0 is zero";
    picture.set<T>(2, 1, 0, T(5));
    ASSERT_TRUE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, true));
    EXPECT_EQ(bits, 3U);
    if constexpr (std::is_signed_v<T>) {
        picture.set<T>(2, 1, 0, T(-9));
        ASSERT_TRUE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, true));
        EXPECT_EQ(bits, 4U);
        picture.set<T>(2, 1, 0, std::numeric_limits<T>::min());
    } else {
        picture.set<T>(2, 1, 0, std::numeric_limits<T>::max());
    }
    ASSERT_TRUE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, false));
    EXPECT_EQ(bits, width);
}

TYPED_TEST(IntegerSamples, HaveNoFloatRange) {
    PaddedPicture picture(5, 4, 2, SampleTypeOf<TypeParam>::value);
    float low = 1.0F;
    float high = 2.0F;
    EXPECT_FALSE(CkPicBufAPI::CalcFloatDataMinMax(*picture, low, high, false));
    EXPECT_EQ(low, 1.0F);
    EXPECT_EQ(high, 2.0F);
}

TYPED_TEST(FloatSamples, MinimumAndMaximumCoverAllChannelsAndPassOverWhatIsNotFinite) {
    using T = TypeParam;
    constexpr T infinity = std::numeric_limits<T>::infinity();
    constexpr T nan = std::numeric_limits<T>::quiet_NaN();
    // Widths around and beyond the number of values per vector.
    for (quint32 width = 1; width <= 40; ++width) {
        PaddedPicture picture(width, 3, 2, SampleTypeOf<T>::value);
        picture.fill<T>([](quint32 x, quint32 y, quint32) { return T(10) + T(x) + T(y); });
        picture.set<T>(0, 0, 0, nan);
        picture.set<T>(width - 1, 2, 0, infinity);
        picture.set<T>(0, 1, 1, -infinity);
        picture.set<T>(width - 1, 1, 1, T(-3.5));
        picture.set<T>(width / 2, 2, 1, T(500));
        float low = 0.0F;
        float high = 0.0F;
        ASSERT_TRUE(CkPicBufAPI::CalcFloatDataMinMax(*picture, low, high, false));
        EXPECT_EQ(low, -3.5F);
        EXPECT_EQ(high, 500.0F);
        ASSERT_TRUE(CkPicBufAPI::CalcFloatDataMinMax(*picture, low, high, true));
        EXPECT_EQ(low, 11.0F);
        // Channel 0 grows to the right and down; its last value is infinite.
        EXPECT_EQ(high, width == 1 ? 11.0F : 10.0F + float(width - 2) + 2.0F);
    }
}

TYPED_TEST(FloatSamples, WithoutAFiniteValueThereIsNoRange) {
    using T = TypeParam;
    PaddedPicture picture(20, 3, 2, SampleTypeOf<T>::value);
    picture.fill<T>([](quint32 x, quint32, quint32) {
        return x % 2 == 0 ? std::numeric_limits<T>::quiet_NaN() : -std::numeric_limits<T>::infinity();
    });
    float low = 3.0F;
    float high = 4.0F;
    EXPECT_FALSE(CkPicBufAPI::CalcFloatDataMinMax(*picture, low, high, false));
    EXPECT_EQ(low, 0.0F);
    EXPECT_EQ(high, 0.0F);
}

TYPED_TEST(FloatSamples, SubtractHasNoLimitsToSaturateAt) {
    using T = TypeParam;
    PaddedPicture picture(3, 1, 1, SampleTypeOf<T>::value);
    PaddedPicture subtrahend(3, 1, 1, SampleTypeOf<T>::value);
    picture.set<T>(0, 0, 0, T(1.5));
    subtrahend.set<T>(0, 0, 0, T(4));
    picture.set<T>(1, 0, 0, std::numeric_limits<T>::quiet_NaN());
    subtrahend.set<T>(2, 0, 0, std::numeric_limits<T>::infinity());
    ASSERT_TRUE(CkPicBufAPI::Subtract(*picture, *subtrahend));
    EXPECT_EQ(picture.at<T>(0, 0), T(-2.5));
    EXPECT_TRUE(std::isnan(picture.at<T>(1, 0)));
    EXPECT_EQ(picture.at<T>(2, 0), -std::numeric_limits<T>::infinity());
}

TYPED_TEST(FloatSamples, HaveNoBits) {
    PaddedPicture picture(3, 2, 1, SampleTypeOf<TypeParam>::value);
    picture.set<TypeParam>(0, 0, 0, TypeParam(3));
    const auto before = picture.bytes();
    quint32 bits = 5;
    EXPECT_FALSE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, false));
    EXPECT_FALSE(CkPicBufAPI::ShiftBits(*picture, 1, false));
    EXPECT_EQ(bits, 5U);
    EXPECT_EQ(picture.bytes(), before);
}

TEST(CalcFloatDataMinMax, DoublesBeyondFloatsRangeSaturate) {
    PaddedPicture picture(2, 1, 1, EkImageDataType::Float64);
    picture.set<double>(0, 0, 0, -1e300);
    picture.set<double>(1, 0, 0, 1e300);
    float low = 0.0F;
    float high = 0.0F;
    ASSERT_TRUE(CkPicBufAPI::CalcFloatDataMinMax(*picture, low, high, false));
    EXPECT_EQ(low, std::numeric_limits<float>::lowest());
    EXPECT_EQ(high, std::numeric_limits<float>::max());
}

TEST(Subtract, RefusesPicturesThatDoNotBelongTogether) {
    PaddedPicture picture(4, 4, 2, EkImageDataType::UInt8);
    PaddedPicture narrow(3, 4, 2, EkImageDataType::UInt8);
    PaddedPicture low(4, 3, 2, EkImageDataType::UInt8);
    PaddedPicture oneChannel(4, 4, 1, EkImageDataType::UInt8);
    PaddedPicture otherType(4, 4, 2, EkImageDataType::Int8);
    picture.set<quint8>(0, 0, 0, 9);
    const auto before = picture.bytes();
    for (PaddedPicture* subtrahend : {&narrow, &low, &oneChannel, &otherType}) {
        EXPECT_FALSE(CkPicBufAPI::Subtract(*picture, **subtrahend));
    }
    SkPicBuf oneRowDown = *picture;
    oneRowDown.height = 3;
    oneRowDown.data += picture->lineSize;
    SkPicBuf upperRows = *picture;
    upperRows.height = 3;
    EXPECT_FALSE(CkPicBufAPI::Subtract(upperRows, oneRowDown)) << "overlapping";
    EXPECT_EQ(picture.bytes(), before);
}

TEST(SamplesOfUnknownType, AreNotInterpreted) {
    for (EkImageDataType type :
         {EkImageDataType::Unknown, EkImageDataType::Other16, EkImageDataType(12345)}) {
        PaddedPicture picture(4, 4, 1, type);
        PaddedPicture other(4, 4, 1, type);
        const auto before = picture.bytes();
        float low = 0.0F;
        float high = 0.0F;
        quint32 bits = 0;
        SkPicBuf none;
        EXPECT_FALSE(CkPicBufAPI::CalcFloatDataMinMax(*picture, low, high, false));
        EXPECT_FALSE(CkPicBufAPI::DetectColorBitDepth(*picture, bits, false));
        EXPECT_FALSE(CkPicBufAPI::ShiftBits(*picture, 1, false));
        EXPECT_FALSE(CkPicBufAPI::Subtract(*picture, *other));
        EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*other, *picture, false));
        EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(*other, *picture));
        EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(*other, none));
        EXPECT_FALSE(CkPicBufAPI::ResizePic(*other, *picture, 4, 4));
        EXPECT_EQ(none.data, nullptr);
        EXPECT_EQ(picture.bytes(), before);
    }
}

TEST(RowsShorterThanTheirPixels, AreRefused) {
    PaddedPicture picture(4, 4, 1, EkImageDataType::UInt8);
    PaddedPicture shortRows(4, 4, 1, EkImageDataType::UInt8);
    shortRows->lineSize = 3;
    quint32 bits = 0;
    EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(*shortRows, *picture));
    EXPECT_FALSE(CkPicBufAPI::CopyPicBuf(*picture, *shortRows));
    EXPECT_FALSE(CkPicBufAPI::ShiftBits(*shortRows, 1, false));
    EXPECT_FALSE(CkPicBufAPI::Subtract(*shortRows, *picture));
    EXPECT_FALSE(CkPicBufAPI::Subtract(*picture, *shortRows));
    EXPECT_FALSE(CkPicBufAPI::DetectColorBitDepth(*shortRows, bits, false));
    EXPECT_FALSE(CkPicBufAPI::ConvertPicToDifBpc(*shortRows, *picture, false));
    EXPECT_FALSE(CkPicBufAPI::ResizePic(*shortRows, *picture, 4, 4));
    EXPECT_FALSE(CkPicBufAPI::ConvertToGrey(*shortRows, *picture));
    EXPECT_TRUE(shortRows.guardsIntact());
}

} // namespace
