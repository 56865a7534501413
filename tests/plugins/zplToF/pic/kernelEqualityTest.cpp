#include "tests/plugins/zplToF/pic/picOperations.h"

#include "zuCore/CkPicBufAPI.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <hwy/highway.h>
#include <limits>
#include <memory>
#include <set>
#include <thread>

// Every vector implementation against the plain loops, byte for byte; only phase angles may differ.

namespace {

using Angles = CkToFPicAPI::AngleList;

struct Layout {
    quint32 extraLineBytes;
    size_t misalignment;
};

std::vector<Angles> angleLists(int phases) {
    std::vector<Angles> lists{{}};
    if (phases == 2) {
        lists.insert(lists.end(), {{90, 0}, {0, 180}, {90, 90}});
    } else if (phases == 4) {
        lists.insert(lists.end(), {{180, 0, 270, 90}, {90, 0, 0, 7, 270}, {270, 180, 90, 0}});
    } else if (phases == 8) {
        lists.insert(lists.end(), {{315, 270, 225, 180, 135, 90, 45, 0}, {0, 90, 180, 270}});
    }
    return lists;
}

/// The raw bytes are equal, except angles, which differ by at most 2 units in the last place.
void expectEqualResults(const PicOperation& operation, const TestPicture& plain, const TestPicture& simd,
                        int phases) {
    EXPECT_TRUE(simd.guardsIntact());
    EXPECT_EQ(plain->bitsPerChannel, simd->bitsPerChannel);
    if (!operation.phaseShift || phases == 1) {
        ASSERT_EQ(plain.bytes(), simd.bytes());
        EXPECT_EQ(plain->minValue, simd->minValue);
        EXPECT_EQ(plain->maxValue, simd->maxValue);
        return;
    }
    for (quint32 y = 0; y < plain->height; ++y) {
        for (quint32 x = 0; x < plain->width; ++x) {
            ASSERT_LE(ulpDistance(plain.at<float>(x, y), simd.at<float>(x, y)), 2) << x << ' ' << y;
            if (plain->channels == 2) {
                ASSERT_EQ(plain.at<quint32>(x, y, 1), simd.at<quint32>(x, y, 1)) << x << ' ' << y;
            }
        }
    }
    // The value range is that of the angles actually written.
    float minimum = 0.0F;
    float maximum = 0.0F;
    CkPicBufAPI::CalcFloatDataMinMax(*simd, minimum, maximum, false);
    EXPECT_EQ(simd->minValue, minimum);
    EXPECT_EQ(simd->maxValue, maximum);
}

void compare(const PicOperation& operation, const SkToFKernels& kernels, int phases, quint32 width,
             Layout layout, const Angles& angles, std::mt19937& random) {
    SCOPED_TRACE(operation.name + " on " + kernels.sName + ", phases " + std::to_string(phases) + ", width " +
                 std::to_string(width) + ", extra " + std::to_string(layout.extraLineBytes) + ", list of " +
                 std::to_string(angles.size()));
    constexpr quint32 height = 2;
    // One sub-image more than phases, because some lists have one more entry.
    const quint32 stacked = operation.stackedPhases ? height * quint32(std::max(phases, 3) + 1) : height;
    const quint32 sampleBits = 8 * sampleBytes(operation.sourceType);
    const quint32 bits = sampleBits == 16 && random() % 2 == 0 ? 12 : sampleBits;

    TestPicture source(width, stacked, operation.sourceChannels, operation.sourceType, bits,
                       layout.extraLineBytes, layout.misalignment);
    if (operation.sourceChannels == 3 && operation.resultChannels != 3) {
        source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    }
    fillRandom(source, random, bits);
    const std::vector<quint8> sourceBefore = source.bytes();

    TestPicture plain(width, height, operation.resultChannels, operation.resultType, 0, layout.extraLineBytes,
                      layout.misalignment);
    TestPicture simd(width, height, operation.resultChannels, operation.resultType, 0, layout.extraLineBytes,
                     layout.misalignment);
    {
        const PinnedKernels pinned(ToFKernelChoice::plain());
        ASSERT_TRUE(operation.run(*source, *plain, phases, &angles));
    }
    {
        const PinnedKernels pinned(kernels);
        ASSERT_TRUE(operation.run(*source, *simd, phases, &angles));
    }
    EXPECT_EQ(source.bytes(), sourceBefore);
    expectEqualResults(operation, plain, simd, phases);
}

class KernelEquality : public ::testing::TestWithParam<PicOperation> {};

INSTANTIATE_TEST_SUITE_P(Operations, KernelEquality, ::testing::ValuesIn(everyPicOperation()),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(KernelEquality, EveryWidthPhasesLayoutAndAngleList) {
    std::mt19937 random(20240607);
    std::vector<quint32> widths;
    for (quint32 width = 1; width <= 40; ++width) {
        widths.push_back(width);
    }
    widths.insert(widths.end(), {64, 65, 129, 640});
    const std::vector<int> phaseCounts =
        GetParam().stackedPhases ? std::vector<int>{1, 2, 3, 4, 8} : std::vector<int>{1};
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        for (const int phases : phaseCounts) {
            for (const quint32 width : widths) {
                for (const Layout layout : {Layout{0, 0}, Layout{3, 1}, Layout{64, 8}}) {
                    for (const Angles& angles : angleLists(phases)) {
                        compare(GetParam(), *kernels, phases, width, layout, angles, random);
                        if (HasFatalFailure()) {
                            return;
                        }
                    }
                }
            }
        }
    }
}

void compareMerge(const TestPicture& source, EkImageDataType resultType) {
    TestPicture plain(source->width, 2, 3, resultType, 0, 6);
    {
        const PinnedKernels pinned(ToFKernelChoice::plain());
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *plain));
    }
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        TestPicture simd(source->width, 2, 3, resultType, 0, 6);
        const PinnedKernels pinned(*kernels);
        ASSERT_TRUE(CkToFPicAPI::processHdrFromImageSections(*source, *simd));
        ASSERT_EQ(plain.bytes(), simd.bytes()) << kernels->sName;
        ASSERT_EQ(plain->bitsPerChannel, simd->bitsPerChannel) << kernels->sName;
    }
}

TEST(KernelEqualityOfMerge, ManySectionsAndThresholds) {
    std::mt19937 random(7);
    for (const auto sourceType : {EkImageDataType::UInt8, EkImageDataType::UInt16}) {
        for (const quint32 sections : {2U, 3U, 4U, 5U, 8U, 9U, 16U, 17U, 18U, 33U, 40U}) {
            for (const quint32 bits : {0U, 1U, 5U, 7U, 8U, 9U, 12U, 16U, 31U, 40U, 63U, 64U, 4000000000U}) {
                SCOPED_TRACE(std::to_string(sections) + " sections, bits " + std::to_string(bits));
                TestPicture source(69, 2 * sections, 3, sourceType, 8, 2);
                fillRandom(source, random, sourceType == EkImageDataType::UInt8 ? 8 : 14);
                source->bitsPerChannel = bits;
                for (const auto resultType : {EkImageDataType::UInt16, EkImageDataType::UInt32}) {
                    compareMerge(source, resultType);
                    if (HasFatalFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

// A block whose pixels can all use the most sensitive section takes a path of its own.
TEST(KernelEqualityOfMerge, BlocksBelowTheThresholdAmongOthers) {
    std::mt19937 random(8);
    for (const auto sourceType : {EkImageDataType::UInt8, EkImageDataType::UInt16}) {
        TestPicture source(200, 6, 3, sourceType, 8);
        fillRandom(source, random, 7);
        for (quint32 y = 0; y < source->height; ++y) {
            for (quint32 x = 90; x < 97; ++x) {
                source.setInteger(x, y, x % 3, 229 + (x + y) % 20);
            }
        }
        compareMerge(source, EkImageDataType::UInt16);
        compareMerge(source, EkImageDataType::UInt32);
    }
}

TEST(KernelEqualityOfHybridDepth, EveryPulseDuration) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const float pulses[] = {infinity,
                            -infinity,
                            std::numeric_limits<float>::max(),
                            std::numeric_limits<float>::min(),
                            std::numeric_limits<float>::denorm_min(),
                            std::numeric_limits<float>::quiet_NaN(),
                            1e30F,
                            -0.0F};
    for (const auto type : {EkImageDataType::UInt8, EkImageDataType::UInt16, EkImageDataType::UInt32}) {
        std::mt19937 random(13);
        TestPicture source(1001, 3, 3, type);
        source->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
        fillRandom(source, random, 3); // few values, so that windows are often equal
        for (const float pulse : pulses) {
            TestPicture plain(1001, 3, 2, EkImageDataType::Float32);
            for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
                TestPicture simd(1001, 3, 2, EkImageDataType::Float32);
                const PinnedKernels pinned(*kernels);
                ASSERT_TRUE(CkToFPicAPI::rawHybridToDepth_Confidence(*source, *simd, pulse));
                if (kernels == &ToFKernelChoice::plain()) {
                    plain.copyBytes(simd);
                }
                EXPECT_TRUE(plain.bytes() == simd.bytes()) << kernels->sName << ", " << pulse << " s";
            }
        }
    }
}

/// Every triple of these values as a row of pixels.
TestPicture* windowsNearZeroAndLimits() {
    constexpr qint32 low = std::numeric_limits<qint32>::min();
    constexpr qint32 high = std::numeric_limits<qint32>::max();
    const std::vector<qint32> values{low, low + 1, -65536, -9, -7, -2,    -1,       0,
                                     1,   2,       3,      7,  9,  70000, high - 1, high};
    const quint32 count = quint32(values.size());
    auto* picture = new TestPicture(count * count * count, 1, 3, EkImageDataType::UInt32);
    (*picture)->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    for (quint32 x = 0; x < (*picture)->width; ++x) {
        picture->set(x, 0, 0, values[x % count]);
        picture->set(x, 0, 1, values[x / count % count]);
        picture->set(x, 0, 2, values[x / count / count]);
    }
    return picture;
}

TEST(KernelEqualityOfWideWindows, DepthNearZeroAndLimits) {
    const std::unique_ptr<TestPicture> source(windowsNearZeroAndLimits());
    TestPicture plain((*source)->width, 1, 2, EkImageDataType::Float32);
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        TestPicture simd((*source)->width, 1, 2, EkImageDataType::Float32);
        const PinnedKernels pinned(*kernels);
        ASSERT_TRUE(CkToFPicAPI::rawHybridToDepth_Confidence(**source, *simd, 0.0F));
        if (kernels == &ToFKernelChoice::plain()) {
            plain.copyBytes(simd);
        }
        EXPECT_EQ(plain.bytes(), simd.bytes()) << kernels->sName;
    }
    // 7 and -7 have no sum: their product with the ambient light is 0, divided by a negative number.
    TestPicture opposed(40, 1, 3, EkImageDataType::UInt32);
    opposed->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    for (quint32 x = 0; x < 40; ++x) {
        opposed.set<qint32>(x, 0, 0, 7);
        opposed.set<qint32>(x, 0, 1, -7);
        opposed.set<qint32>(x, 0, 2, -9);
    }
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        TestPicture depth(40, 1, 2, EkImageDataType::Float32);
        const PinnedKernels pinned(*kernels);
        ASSERT_TRUE(CkToFPicAPI::rawHybridToDepth_Confidence(*opposed, *depth, 0.0F));
        EXPECT_EQ(depth.at<float>(39, 0, 0), float(2.0 * 11.99169832 / 18.0));
        EXPECT_EQ(depth.at<quint32>(39, 0, 1), 0x80000000U) << kernels->sName;
    }
}

TEST(KernelEqualityOfWideWindows, AmplitudesOf33BitsAndEveryShift) {
    const std::unique_ptr<TestPicture> source(windowsNearZeroAndLimits());
    for (const auto type : {EkImageDataType::UInt8, EkImageDataType::UInt16, EkImageDataType::UInt32}) {
        // All 32 bits are in use, so the shift is 32 minus the bits of the result.
        for (const quint32 resultBits : {0U, 1U, 8U, 12U, 16U, 31U, 32U}) {
            SCOPED_TRACE(std::to_string(8 * sampleBytes(type)) + " bits, " + std::to_string(resultBits));
            for (const bool amplitude : {false, true}) {
                const auto run = [&](const SkToFKernels& kernels) {
                    const PinnedKernels pinned(kernels);
                    TestPicture result((*source)->width, 1, 1, type);
                    result->bitsPerChannel = resultBits;
                    EXPECT_TRUE(amplitude ? CkToFPicAPI::rawHybridToAmplitude(**source, *result)
                                          : CkToFPicAPI::rawHybridToIntensity(**source, *result));
                    return result.bytes();
                };
                const std::vector<quint8> plain = run(ToFKernelChoice::plain());
                for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
                    ASSERT_EQ(plain, run(*kernels))
                        << kernels->sName << (amplitude ? " amplitude" : " intensity");
                }
            }
        }
    }
}

TEST(KernelEqualityOfDepthSearch, EveryWidth) {
    std::mt19937 random(11);
    const auto number = [&random] { return float(random() % 4000) / 1000.0F - 1.0F; };
    for (quint32 width = 1; width <= 70; ++width) {
        TestPicture pairs(width, 3, 2, EkImageDataType::Float32, 0, 1);
        TestPicture depth(width, 3, 1, EkImageDataType::Float32, 0, 2);
        TestPicture confidence(width, 3, 1, EkImageDataType::Float32, 0, 3);
        float expected = -1.0F;
        for (quint32 y = 0; y < 3; ++y) {
            for (quint32 x = 0; x < width; ++x) {
                const float metres = number();
                const float trust = number();
                pairs.set(x, y, 0, metres);
                pairs.set(x, y, 1, trust);
                depth.set(x, y, 0, metres);
                confidence.set(x, y, 0, trust);
                if (trust > 0.0F && trust <= 0.25F && metres > expected) {
                    expected = metres;
                }
            }
        }
        for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
            const PinnedKernels pinned(*kernels);
            float first = -7.0F;
            float second = -7.0F;
            EXPECT_EQ(CkToFPicAPI::findMaxDepthClipConfidence(*pairs, first, 0.25F), expected >= 0.0F);
            EXPECT_EQ(CkToFPicAPI::findMaxDepthClipConfidence(*depth, *confidence, second, 0.25F),
                      expected >= 0.0F);
            EXPECT_EQ(first, expected >= 0.0F ? expected : -7.0F) << kernels->sName;
            EXPECT_EQ(second, first);
        }
    }
}

TEST(KernelChoice, EveryInstructionSetOfThisProcessorIsAvailable) {
    std::set<std::string> names;
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        names.insert(kernels->sName);
    }
    EXPECT_TRUE(names.count("plain"));
    for (const int64_t target : {HWY_SSE4, HWY_AVX2, HWY_AVX3}) {
        EXPECT_EQ(names.count(hwy::TargetName(target)) == 1, (hwy::SupportedTargets() & target) != 0)
            << hwy::TargetName(target);
    }
}

int spiedCalls = 0;
SkToFKernels::StackedRow spiedKernel = nullptr;

void spy(const quint8* const* rows, quint8* result, size_t pixels) {
    ++spiedCalls;
    spiedKernel(rows, result, pixels);
}

TEST(KernelChoice, PinnedKernelsAreTheOnesThatRun) {
    TestPicture source(40, 8, 2, EkImageDataType::UInt16);
    std::set<SkToFKernels::StackedRow> distinct;
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        SkToFKernels watched = *kernels;
        spiedKernel = watched.amplitude[1][2];
        distinct.insert(spiedKernel);
        watched.amplitude[1][2] = spy;
        spiedCalls = 0;
        const PinnedKernels pinned(watched);
        TestPicture result(40, 2, 1, EkImageDataType::UInt16);
        ASSERT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(*source, *result, 4));
        EXPECT_EQ(spiedCalls, 2) << kernels->sName;
    }
    // No two implementations ran the same code.
    EXPECT_EQ(distinct.size(), ToFKernelChoice::available().size());
}

TEST(KernelChoice, AutomaticChoiceFollowsTheEnvironment) {
    const char* wanted = std::getenv("ZU_TOF_KERNELS");
    const SkToFKernels* named = wanted == nullptr ? nullptr : ToFKernelChoice::find(wanted);
    const SkToFKernels* expected = named != nullptr ? named : ToFKernelChoice::available().back();
    EXPECT_EQ(&ToFKernelChoice::active(), expected);
    EXPECT_EQ(ToFKernelChoice::find("no such kernels"), nullptr);
    ToFKernelChoice::pin(&ToFKernelChoice::plain());
    EXPECT_STREQ(ToFKernelChoice::active().sName, "plain");
    ToFKernelChoice::pin(nullptr);
    EXPECT_EQ(&ToFKernelChoice::active(), expected);
}

TEST(KernelChoice, OperationsRunOnManyThreads) {
    std::mt19937 random(3);
    TestPicture source(333, 40, 2, EkImageDataType::UInt16);
    fillRandom(source, random, 12);
    TestPicture expected(333, 10, 2, EkImageDataType::Float32);
    ASSERT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *expected, 4));
    std::vector<std::thread> threads;
    std::vector<int> equal(4, 0);
    for (size_t index = 0; index < equal.size(); ++index) {
        threads.emplace_back([&, index] {
            for (int round = 0; round < 20; ++round) {
                TestPicture result(333, 10, 2, EkImageDataType::Float32);
                CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, 4);
                equal[index] += result.bytes() == expected.bytes();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(equal, std::vector<int>(4, 20));
}

} // namespace
