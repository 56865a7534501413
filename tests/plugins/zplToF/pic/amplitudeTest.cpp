#include "tests/plugins/zplToF/pic/picTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// Amplitudes at and next to the lengths whose root is an integer, computed with integers only.

namespace {

using Type = EkImageDataType;

struct Light {
    qint64 x;
    qint64 y;
};

/// Largest integer whose square is not above the given one.
qint64 integerRoot(qint64 square) {
    auto root = qint64(std::sqrt(double(square)));
    while (root * root > square) {
        --root;
    }
    while ((root + 1) * (root + 1) <= square) {
        ++root;
    }
    return root;
}

/// A picture whose pixels have the given light vectors, from samples within the limits.
class LightPicture {
public:
    LightPicture(const std::vector<Light>& lights, quint32 width, int phases, Type type, qint64 low,
                 qint64 high)
        : mLights(lights), mPhases(phases), mLow(low), mHigh(high), mHasTaps(low >= 0),
          mHeight(quint32((lights.size() + width - 1) / width)),
          source(width, mHeight * quint32(phases), mHasTaps ? 2 : 1, type) {
        for (size_t index = 0; index < lights.size(); ++index) {
            putAxis(index, 0, lights[index].x);
            putAxis(index, 1, lights[index].y);
        }
    }

    void expectExactAmplitudes(const SkToFKernels& kernels) const {
        const PinnedKernels pinned(kernels);
        TestPicture result(source->width, mHeight, 1,
                           sampleBytes(source->dataType) == 1 ? Type::UInt8 : Type::UInt16);
        ASSERT_TRUE(mHasTaps ? CkToFPicAPI::rawX2PicToAmplitude(*source, *result, mPhases)
                             : CkToFPicAPI::rawAminBPicToAmplitude(*source, *result, mPhases));
        for (size_t index = 0; index < mLights.size(); ++index) {
            const Light& light = mLights[index];
            const qint64 expected =
                integerRoot((light.x * light.x + light.y * light.y) / (mPhases * mPhases));
            ASSERT_EQ(result.integerAt(column(index), row(index)), expected)
                << kernels.sName << ", x " << light.x << ", y " << light.y;
        }
    }

private:
    quint32 column(size_t index) const { return quint32(index % source->width); }
    quint32 row(size_t index) const { return quint32(index / source->width); }

    /// As much as possible from the first phase of the axis, the rest from the opposite phase.
    void putAxis(size_t index, quint32 phase, qint64 value) {
        const qint64 rest = putDifference(index, phase, value);
        if (mPhases == 4) {
            EXPECT_EQ(putDifference(index, phase + 2, -rest), 0);
        } else {
            EXPECT_EQ(rest, 0);
        }
    }
    qint64 putDifference(size_t index, quint32 phase, qint64 value) {
        const quint32 y = phase * mHeight + row(index);
        if (!mHasTaps) {
            const qint64 part = std::clamp(value, mLow, mHigh);
            source.setInteger(column(index), y, 0, part);
            return value - part;
        }
        const qint64 part = std::clamp(value, mLow - mHigh, mHigh - mLow);
        source.setInteger(column(index), y, 0, part > 0 ? mLow + part : mLow);
        source.setInteger(column(index), y, 1, part > 0 ? mLow : mLow - part);
        return value - part;
    }

    const std::vector<Light>& mLights;
    int mPhases;
    qint64 mLow;
    qint64 mHigh;
    bool mHasTaps;
    quint32 mHeight;
    TestPicture source;
};

class Amplitude : public ::testing::TestWithParam<const SkToFKernels*> {};

INSTANTIATE_TEST_SUITE_P(Kernels, Amplitude, ::testing::ValuesIn(ToFKernelChoice::available()),
                         [](const auto& instance) { return std::string(instance.param->sName); });

std::vector<Light> everyLight(qint64 limit) {
    std::vector<Light> lights;
    for (qint64 y = -limit; y <= limit; ++y) {
        for (qint64 x = -limit; x <= limit; ++x) {
            lights.push_back({x, y});
        }
    }
    return lights;
}

TEST_P(Amplitude, EveryLightOf8BitTaps) {
    for (const int phases : {2, 4}) {
        const qint64 limit = phases / 2 * 255;
        const std::vector<Light> lights = everyLight(limit);
        const LightPicture picture(lights, quint32(2 * limit + 1), phases, Type::UInt8, 0, 255);
        picture.expectExactAmplitudes(*GetParam());
    }
}

TEST_P(Amplitude, EveryLightOf8BitDifferences) {
    for (const int phases : {2, 4}) {
        // One more below 0, unless the other phase compensates for it.
        std::vector<Light> lights = everyLight(phases / 2 * 127);
        lights.insert(lights.end(), {{-128, -128}, {-128, 127}, {-128, 0}, {-1, -128}});
        const LightPicture picture(lights, 255, phases, Type::Int8, -128, 127);
        picture.expectExactAmplitudes(*GetParam());
    }
}

/// For every possible amplitude, vectors of exactly that length and vectors just shorter.
std::vector<Light> lightsAtIntegers(qint64 limit, int phases, std::mt19937& random) {
    std::vector<Light> lights;
    const qint64 largest = integerRoot(2 * limit * limit) / phases;
    for (qint64 amplitude = 1; amplitude <= largest; ++amplitude) {
        const qint64 length = phases * amplitude;
        const qint64 longest = std::min(limit, length);
        const qint64 shortest =
            length <= limit ? 0 : std::min(limit, integerRoot(length * length - limit * limit - 1) + 1);
        for (int count = 0; count < 6; ++count) {
            const qint64 x =
                count == 0 ? shortest : shortest + qint64(random() % quint64(longest - shortest + 1));
            const qint64 y = integerRoot(length * length - x * x);
            const qint64 sign = random() % 2 == 0 ? 1 : -1;
            if (y <= limit) {
                lights.push_back({x, sign * y});
            }
            if (y + 1 <= limit) {
                lights.push_back({-y - 1, sign * x});
            }
        }
    }
    return lights;
}

TEST_P(Amplitude, LightsWhoseLengthIsNextToAnInteger) {
    std::mt19937 random(41);
    for (const int bits : {11, 12, 13, 14, 15, 16}) {
        for (const int phases : {2, 4}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, phases " + std::to_string(phases));
            const qint64 high = (qint64(1) << bits) - 1;
            const std::vector<Light> lights = lightsAtIntegers(phases / 2 * high, phases, random);
            ASSERT_GT(lights.size(), size_t(high));
            const LightPicture picture(lights, 641, phases, Type::UInt16, 0, high);
            picture.expectExactAmplitudes(*GetParam());

            const qint64 half = high / 2;
            const std::vector<Light> differences = lightsAtIntegers(phases / 2 * half, phases, random);
            const LightPicture subtracted(differences, 641, phases, Type::Int16, -half - 1, half);
            subtracted.expectExactAmplitudes(*GetParam());
        }
    }
}

/// Samples of the given bits, some at their limits and at those of 16 bits: blocks that can take the fast
/// path alternate with blocks that must not.
void fillAround(int bits, TestPicture& source, std::mt19937& random) {
    const qint64 beyond = qint64(1) << bits;
    const bool taps = source->channels == 2;
    const std::vector<qint64> limits =
        taps ? std::vector<qint64>{beyond - 1, beyond, 32767, 32768, 65535}
             : std::vector<qint64>{beyond - 1, beyond, 32767, 1 - beyond, -beyond, -beyond - 1, -32768};
    for (quint32 y = 0; y < source->height; ++y) {
        for (quint32 x = 0; x < source->width; ++x) {
            for (quint32 channel = 0; channel < source->channels; ++channel) {
                const qint64 sample =
                    taps ? qint64(random()) % beyond : qint64(random()) % (2 * beyond - 1) - beyond + 1;
                source.setInteger(x, y, channel,
                                  random() % 128 == 0 ? limits[random() % limits.size()] : sample);
            }
        }
    }
}

TEST_P(Amplitude, SamplesAround12And14Bits) {
    constexpr quint32 width = 1021;
    constexpr quint32 height = 60;
    std::mt19937 random(14);
    for (const auto& [bits, channels] : {std::pair(12, 1U), {12, 2U}, {14, 1U}, {14, 2U}}) {
        TestPicture source(width, 4 * height, channels, channels == 2 ? Type::UInt16 : Type::Int16);
        fillAround(bits, source, random);
        // Clang 14 cannot capture structured bindings without an initialiser.
        const auto difference = [&source, channels = channels](quint32 x, quint32 y, quint32 phase) {
            const quint32 row = phase * height + y;
            return source.integerAt(x, row, 0) - (channels == 2 ? source.integerAt(x, row, 1) : 0);
        };
        for (const int phases : {2, 4}) {
            TestPicture result(width, height, 1, Type::UInt16);
            ASSERT_TRUE(channels == 2 ? CkToFPicAPI::rawX2PicToAmplitude(*source, *result, phases)
                                      : CkToFPicAPI::rawAminBPicToAmplitude(*source, *result, phases));
            for (quint32 y = 0; y < height; ++y) {
                for (quint32 x = 0; x < width; ++x) {
                    const bool four = phases == 4;
                    const qint64 along = difference(x, y, 0) - (four ? difference(x, y, 2) : 0);
                    const qint64 across = difference(x, y, 1) - (four ? difference(x, y, 3) : 0);
                    ASSERT_EQ(result.at<quint16>(x, y), integerRoot(along * along + across * across) / phases)
                        << along << ' ' << across;
                }
            }
        }
    }
}

} // namespace
