#include "tests/plugins/zplToF/pic/picTestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

// The plain loops against an independent implementation of the formulas, pixel by pixel, in extended
// precision.

namespace {

using Type = EkImageDataType;
using Angles = CkToFPicAPI::AngleList;
using Extended = long double;

constexpr Extended kPi = 3.14159265358979323846264338327950288L;

/// The exact results of one continuous-wave pixel.
struct WaveTruth {
    Extended phase;
    Extended amplitude; ///< not yet truncated
    Extended sumOfSamples;
    Extended samples;
};

/// Discrete Fourier sum of the phases at their angles, from either kind of source.
WaveTruth waveTruth(const TestPicture& source, quint32 x, quint32 y, quint32 height, int phases,
                    const Angles& stored) {
    const int step = phases == 8 ? 45 : 90;
    WaveTruth truth{0, 0, 0, 0};
    Extended cosineSum = 0;
    Extended sineSum = 0;
    Extended single = 0;
    for (int phase = 0; phase < phases; ++phase) {
        size_t subImage = size_t(phase);
        for (size_t entry = 0; entry < stored.size(); ++entry) {
            if (stored[entry] == phase * step) {
                subImage = entry;
                break;
            }
        }
        const quint32 row = quint32(subImage) * height + y;
        Extended difference = Extended(source.integerAt(x, row, 0));
        if (source->channels == 2) {
            truth.sumOfSamples += difference + Extended(source.integerAt(x, row, 1));
            difference -= Extended(source.integerAt(x, row, 1));
        }
        single = difference;
        const Extended angle = Extended(phase * step) * kPi / 180.0L;
        cosineSum += difference * cosl(angle);
        sineSum += difference * sinl(angle);
    }
    truth.samples = 2 * phases;
    if (phases == 1) {
        truth.phase = fabsl(single);
        truth.amplitude = fabsl(single);
        return truth;
    }
    truth.phase = atan2l(sineSum, cosineSum);
    if (truth.phase < 0) {
        truth.phase += 2 * kPi;
    }
    truth.amplitude = hypotl(cosineSum, sineSum) / phases;
    return truth;
}

/// Distance of two angles on the circle.
Extended angleDistance(Extended first, Extended second) {
    const Extended distance = fabsl(first - second);
    return std::min(distance, fabsl(2 * kPi - distance));
}

/// Whether an integer is the truncated exact value, or within the error of single precision of it.
bool isTruncated(Extended truth, qint64 actual, bool exact) {
    const Extended slack = exact ? 1e-12L * (truth + 1) : 1e-6L * (truth + 1);
    return Extended(actual) <= truth + slack && Extended(actual) + 1 > truth - slack;
}

struct WaveCase {
    Type type;
    int phases;
    quint32 bits;
};

class WaveReference : public ::testing::TestWithParam<WaveCase> {
protected:
    static constexpr quint32 width = 61;
    static constexpr quint32 height = 5;

    std::vector<Angles> lists() const {
        switch (GetParam().phases) {
        case 2:
            return {{}, {90, 0}};
        case 4:
            return {{}, {180, 0, 270, 90}, {270, 180, 180, 0}};
        case 8:
            return {{}, {0, 90, 180, 270, 45, 135, 225, 315}};
        default:
            return {{}};
        }
    }
    void SetUp() override { ToFKernelChoice::pin(&ToFKernelChoice::plain()); }
    void TearDown() override { ToFKernelChoice::pin(nullptr); }
};

std::vector<WaveCase> waveCases() {
    std::vector<WaveCase> cases;
    for (const int phases : {1, 2, 4, 8}) {
        for (const Type type : {Type::UInt8, Type::Int8}) {
            cases.push_back({type, phases, 8});
        }
        for (const Type type : {Type::UInt16, Type::Int16}) {
            cases.push_back({type, phases, 12});
            cases.push_back({type, phases, 16});
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Cases, WaveReference, ::testing::ValuesIn(waveCases()), [](const auto& instance) {
    return "type" + std::to_string(int(instance.param.type)) + "phases" +
           std::to_string(instance.param.phases) + "bits" + std::to_string(instance.param.bits);
});

TEST_P(WaveReference, PhaseConfidenceAmplitudeIntensity) {
    const auto [type, phases, bits] = GetParam();
    const bool taps = type == Type::UInt8 || type == Type::UInt16;
    const Type unsignedType = sampleBytes(type) == 1 ? Type::UInt8 : Type::UInt16;
    std::mt19937 random(quint32(phases) * 100 + bits);
    TestPicture source(width, height * quint32(phases), taps ? 2 : 1, type, bits, 5);
    fillRandom(source, random, bits);

    for (const Angles& stored : lists()) {
        TestPicture phase(width, height, taps ? 2 : 1, Type::Float32);
        TestPicture amplitude(width, height, 1, unsignedType);
        TestPicture intensity(width, height, 1, unsignedType);
        if (taps) {
            ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *phase, phases, &stored));
            ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(*source, *amplitude, phases, &stored));
            ASSERT_TRUE(CkToFPicAPI::rawX2PicToIntensity(*source, *intensity, phases));
        } else {
            ASSERT_TRUE(CkToFPicAPI::rawAminBPicToPhaseShift(*source, *phase, phases, &stored));
            ASSERT_TRUE(CkToFPicAPI::rawAminBPicToAmplitude(*source, *amplitude, phases, &stored));
        }

        // Confidences first: dark pixels take the largest of them.
        std::vector<std::optional<Extended>> confidences;
        Extended worst = 0;
        for (quint32 y = 0; y < height && taps; ++y) {
            for (quint32 x = 0; x < width; ++x) {
                const WaveTruth truth = waveTruth(source, x, y, height, phases, stored);
                const Extended whole = Extended(amplitude.integerAt(x, y));
                // The kernels truncate the variance to an integer.
                const int divisor = phases == 1 ? 4 : phases == 8 ? 16 : 8;
                Extended variance = floorl(truth.sumOfSamples / divisor);
                if (phases == 8) {
                    variance *= 1.0L + sqrtl(2.0L);
                }
                const Extended scale = phases == 8 ? 4 : phases == 4 ? 2 : 1;
                std::optional<Extended> confidence;
                if (whole != 0 && variance != 0) {
                    confidence = sqrtl(variance) / (scale * whole);
                }
                worst = std::max(worst, confidence.value_or(0));
                confidences.push_back(confidence);
            }
        }
        for (quint32 y = 0; y < height; ++y) {
            for (quint32 x = 0; x < width; ++x) {
                SCOPED_TRACE(std::to_string(x) + ", " + std::to_string(y));
                const WaveTruth truth = waveTruth(source, x, y, height, phases, stored);
                if (phases == 1) {
                    ASSERT_EQ(Extended(phase.at<float>(x, y)), truth.phase);
                } else if (truth.amplitude > 1e-6L) { // no signal, no angle
                    ASSERT_LT(angleDistance(Extended(phase.at<float>(x, y)), truth.phase), 2e-6L);
                }
                ASSERT_GE(phase.at<float>(x, y), 0.0F);
                ASSERT_TRUE(isTruncated(truth.amplitude, amplitude.integerAt(x, y), phases != 8))
                    << double(truth.amplitude) << " became " << amplitude.integerAt(x, y);
                if (!taps) {
                    continue;
                }
                const Extended expected = confidences[size_t(y) * width + x].value_or(worst);
                ASSERT_NEAR(double(phase.at<float>(x, y, 1)), double(expected), 4e-7 * double(expected));
                // The mean takes every stored phase once, whatever the angle list contains.
                const WaveTruth stack = waveTruth(source, x, y, height, phases, {});
                ASSERT_EQ(Extended(intensity.integerAt(x, y)), floorl(stack.sumOfSamples / stack.samples));
            }
        }
    }
}

class HybridReference : public ::testing::TestWithParam<Type> {
protected:
    void SetUp() override { ToFKernelChoice::pin(&ToFKernelChoice::plain()); }
    void TearDown() override { ToFKernelChoice::pin(nullptr); }
};

INSTANTIATE_TEST_SUITE_P(Types, HybridReference, ::testing::Values(Type::UInt8, Type::UInt16, Type::UInt32),
                         [](const auto& instance) { return "type" + std::to_string(int(instance.param)); });

struct HybridTruth {
    Extended depth = 0;
    Extended confidence = 0;
};

HybridTruth hybridTruth(Extended a, Extended b, Extended c, Extended range) {
    if (fabsl(a - b) <= 2 && a < c && b < c) {
        return {};
    }
    Extended p = b, q = c, r = a, offset = range;
    if (a > c) {
        p = a;
        q = b;
        r = c;
        offset = 0;
    }
    const Extended signal = p + q - 2 * r;
    if (signal <= 0 || q < r || p == 0 || q == 0) {
        return {};
    }
    const Extended confidence = ((p + q) * r) / (2 * p * q);
    if (confidence > 0.9L + 1e-15L) {
        return {};
    }
    return {(q - r) * range / signal + offset, confidence};
}

TEST_P(HybridReference, DepthIntensityAmplitude) {
    const Type type = GetParam();
    const quint32 sampleBits = 8 * sampleBytes(type);
    std::mt19937 random(99);
    for (const quint32 bits : {4U, 8U, sampleBits}) {
        TestPicture source(97, 60, 3, type, sampleBits, 7);
        source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
        fillRandom(source, random, bits);
        TestPicture depth(97, 60, 2, Type::Float32);
        TestPicture intensity(97, 60, 1, type);
        TestPicture amplitude(97, 60, 1, type);
        const float pulse = bits == 4 ? 25e-9F : 0.0F;
        const Extended range = bits == 4 ? Extended(pulse) * 299792458.0L / 2 : 11.99169832L;
        ASSERT_TRUE(CkToFPicAPI::rawHybridToDepth_Confidence(*source, *depth, pulse));
        ASSERT_TRUE(CkToFPicAPI::rawHybridToIntensity(*source, *intensity));
        ASSERT_TRUE(CkToFPicAPI::rawHybridToAmplitude(*source, *amplitude));
        int valid = 0;
        for (quint32 y = 0; y < 60; ++y) {
            for (quint32 x = 0; x < 97; ++x) {
                const auto window = [&](quint32 channel) {
                    const qint64 value = source.integerAt(x, y, channel);
                    return type == Type::UInt32 ? qint64(qint32(quint32(value))) : value;
                };
                const qint64 a = window(0), b = window(1), c = window(2);
                const HybridTruth truth = hybridTruth(Extended(a), Extended(b), Extended(c), range);
                valid += truth.depth != 0;
                ASSERT_NEAR(double(depth.at<float>(x, y, 0)), double(truth.depth),
                            1e-7 * fabs(double(truth.depth)));
                ASSERT_NEAR(double(depth.at<float>(x, y, 1)), double(truth.confidence),
                            1e-7 * fabs(double(truth.confidence)));
                const qint64 mask = (qint64(1) << sampleBits) - 1;
                const qint64 low = a < c ? a : c;
                const qint64 high = a < c ? c : a;
                const qint64 reflected = b + high - 2 * low;
                ASSERT_EQ(intensity.integerAt(x, y), low & mask);
                ASSERT_EQ(amplitude.integerAt(x, y), (reflected < 1 ? 0 : reflected) & mask);
            }
        }
        EXPECT_GT(valid, 500);
    }
}

TEST(SectionsReference, MergeOfRandomSections) {
    ToFKernelChoice::pin(&ToFKernelChoice::plain());
    std::mt19937 random(5);
    for (const quint32 sections : {2U, 3U, 5U}) {
        TestPicture source(23, sections * 4 + 1, 3, Type::UInt16, 12, 2);
        fillRandom(source, random, 12);
        TestPicture result(23, 4, 3, Type::UInt32, 32);
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *result));
        qint64 largest = 0;
        for (quint32 y = 0; y < 4; ++y) {
            for (quint32 x = 0; x < 23; ++x) {
                quint32 section = sections - 1;
                const auto peak = [&] {
                    const quint32 row = section * 4 + y;
                    return std::max({source.integerAt(x, row, 0), source.integerAt(x, row, 1),
                                     source.integerAt(x, row, 2)});
                };
                while (section > 0 && peak() >= 3685) {
                    --section;
                }
                for (quint32 channel = 0; channel < 3; ++channel) {
                    qint64 expected = source.integerAt(x, section * 4 + y, channel);
                    for (quint32 doubled = section; doubled + 1 < sections; ++doubled) {
                        expected *= 2;
                    }
                    ASSERT_EQ(result.integerAt(x, y, channel), expected);
                    largest = std::max(largest, expected);
                }
            }
        }
        quint32 bits = 0;
        while (largest >> bits) {
            ++bits;
        }
        EXPECT_EQ(result->bitsPerChannel, bits);
    }
    ToFKernelChoice::pin(nullptr);
}

} // namespace
