#include "tests/plugins/zplToF/pic/picOperations.h"

#include <gtest/gtest.h>

#include <limits>

// Bad pictures: a false result and nothing written.

namespace {

using Type = EkImageDataType;
using Angles = CkToFPicAPI::AngleList;
constexpr quint32 kHuge = std::numeric_limits<quint32>::max();

class Guard : public ::testing::TestWithParam<PicOperation> {
protected:
    static constexpr quint32 width = 20;
    static constexpr quint32 height = 3;
    static constexpr int phases = 4;

    Guard() {
        const PicOperation& operation = GetParam();
        source = std::make_unique<TestPicture>(width, operation.stackedPhases ? height * 4 : height,
                                               operation.sourceChannels, operation.sourceType, 0, 4);
        if (operation.sourceChannels == 3 && operation.resultChannels != 3) {
            (*source)->colorFilterArray = EkColorFilterArray::RawX3Hybrid;
        }
        result = std::make_unique<TestPicture>(width, height, operation.resultChannels, operation.resultType,
                                               0, 4);
        (*result)->minValue = -1.0F;
        (*result)->maxValue = 99.0F;
    }

    bool run(const Angles* angles = nullptr) { return GetParam().run(**source, **result, phases, angles); }

    /// Expects the call to be refused with this change and to write nothing; then reverts the change.
    template <class Change>
    void expectRefused(const char* what, const Change& change) {
        const SkPicBuf sourceBefore = **source;
        const SkPicBuf resultBefore = **result;
        const std::vector<quint8> pixels = result->bytes();
        const std::vector<quint8> sourcePixels = source->bytes();
        change(**source, **result);
        const quint32 bits = (*result)->bitsPerChannel;
        EXPECT_FALSE(run()) << what;
        EXPECT_EQ(result->bytes(), pixels) << what;
        EXPECT_EQ(source->bytes(), sourcePixels) << what;
        EXPECT_EQ((*result)->minValue, -1.0F) << what;
        EXPECT_EQ((*result)->maxValue, 99.0F) << what;
        EXPECT_EQ((*result)->bitsPerChannel, bits) << what;
        **source = sourceBefore;
        **result = resultBefore;
    }

    std::unique_ptr<TestPicture> source;
    std::unique_ptr<TestPicture> result;
};

INSTANTIATE_TEST_SUITE_P(Operations, Guard, ::testing::ValuesIn(everyPicOperation()),
                         [](const auto& instance) { return instance.param.name; });

TEST_P(Guard, TheUnchangedPicturesAreProcessed) {
    EXPECT_TRUE(run());
}

TEST_P(Guard, OnlyPhaseShiftsRefreshTheValueRange) {
    ASSERT_TRUE(run());
    if (GetParam().phaseShift) {
        EXPECT_EQ((*result)->minValue, 0.0F); // the source is black
        EXPECT_EQ((*result)->maxValue, 0.0F);
    } else {
        EXPECT_EQ((*result)->minValue, -1.0F);
        EXPECT_EQ((*result)->maxValue, 99.0F);
    }
}

TEST_P(Guard, HybridOperationsAskWhetherThePictureIsHybrid) {
    if (GetParam().name.rfind("Hybrid", 0) != 0) {
        EXPECT_NE((*source)->colorFilterArray, EkColorFilterArray::RawX3Hybrid);
        return;
    }
    for (const quint32 colors : {0U, 8U, 9U, 12U, 14U}) {
        expectRefused("colours",
                      [colors](SkPicBuf& s, SkPicBuf&) { s.colorFilterArray = EkColorFilterArray(colors); });
    }
    (*source)->layoutFlag = true;
    EXPECT_EQ(run(), GetParam().sourceType == Type::UInt32);
}

TEST_P(Guard, NullData) {
    expectRefused("source", [](SkPicBuf& s, SkPicBuf&) { s.data = nullptr; });
    expectRefused("result", [](SkPicBuf&, SkPicBuf& r) { r.data = nullptr; });
}

TEST_P(Guard, ZeroAndAbsurdSizes) {
    const bool emptyIsDone = GetParam().name.rfind("TestImage", 0) == 0;
    if (!emptyIsDone) {
        expectRefused("no result width", [](SkPicBuf&, SkPicBuf& r) { r.width = 0; });
        expectRefused("no result height", [](SkPicBuf&, SkPicBuf& r) { r.height = 0; });
    }
    expectRefused("no source width", [](SkPicBuf& s, SkPicBuf&) { s.width = 0; });
    expectRefused("no source height", [](SkPicBuf& s, SkPicBuf&) { s.height = 0; });
    expectRefused("no source channels", [](SkPicBuf& s, SkPicBuf&) { s.channels = 0; });
    expectRefused("no result channels", [](SkPicBuf&, SkPicBuf& r) { r.channels = 0; });
    expectRefused("huge width", [](SkPicBuf& s, SkPicBuf& r) { s.width = r.width = kHuge; });
    expectRefused("huge result height", [](SkPicBuf&, SkPicBuf& r) { r.height = kHuge; });
    expectRefused("huge channels", [](SkPicBuf& s, SkPicBuf&) { s.channels = kHuge; });
    // Products of width, channels and sample bytes that overflow 32 or 64 bits to a small number.
    expectRefused("width that wraps", [](SkPicBuf& s, SkPicBuf& r) { s.width = r.width = 0x80000000U; });
    expectRefused("end beyond the address space", [](SkPicBuf& s, SkPicBuf&) {
        s.data = reinterpret_cast<quint8*>(std::numeric_limits<quintptr>::max() - 4);
    });
}

TEST_P(Guard, ShortRows) {
    expectRefused("source", [](SkPicBuf& s, SkPicBuf&) {
        s.lineSize = s.width * s.channels * sampleBytes(s.dataType) - 1;
    });
    expectRefused("result", [](SkPicBuf&, SkPicBuf& r) {
        r.lineSize = r.width * r.channels * sampleBytes(r.dataType) - 1;
    });
    expectRefused("none", [](SkPicBuf& s, SkPicBuf&) { s.lineSize = 0; });
}

TEST_P(Guard, ForeignSampleTypes) {
    for (const quint32 type : {0U, 5U, 7U, 8U, 10U, 11U, 12U, 255U, kHuge}) {
        expectRefused("source", [type](SkPicBuf& s, SkPicBuf&) { s.dataType = Type(type); });
        expectRefused("result", [type](SkPicBuf&, SkPicBuf& r) { r.dataType = Type(type); });
    }
}

TEST_P(Guard, WrongResultChannels) {
    for (const quint32 channels : {1U, 2U, 3U, 4U}) {
        if (channels != GetParam().resultChannels) {
            expectRefused("channels", [channels](SkPicBuf&, SkPicBuf& r) {
                r.channels = channels;
                r.width = 2;
            });
        }
    }
}

TEST_P(Guard, ResultWiderOrHigherThanTheSource) {
    expectRefused("wider", [](SkPicBuf& s, SkPicBuf& r) { s.width = r.width - 1; });
    expectRefused("higher", [](SkPicBuf& s, SkPicBuf& r) { s.height = r.height - 1; });
}

TEST_P(Guard, OverlappingPictures) {
    expectRefused("the same", [](SkPicBuf& s, SkPicBuf& r) { r.data = s.data; });
    expectRefused("last byte", [](SkPicBuf& s, SkPicBuf& r) {
        const size_t rowBytes = size_t(s.width) * s.channels * sampleBytes(s.dataType);
        r.data = s.data + size_t(s.height - 1) * s.lineSize + rowBytes - 1;
    });
}

TEST(NeighbouringPictures, DoNotOverlap) {
    constexpr size_t sourceBytes = 6 * 4 * 2 * 2;
    constexpr size_t resultBytes = 6 * 4 * 2;
    alignas(64) quint8 store[sourceBytes + resultBytes] = {};
    for (const bool sourceFirst : {true, false}) {
        TestPicture source(6, 4, 2, Type::UInt16);
        TestPicture result(6, 4, 1, Type::Int16);
        source->lineSize = 6 * 2 * 2;
        result->lineSize = 6 * 2;
        source->data = store + (sourceFirst ? 0 : resultBytes);
        result->data = store + (sourceFirst ? sourceBytes : 0);
        EXPECT_TRUE(CkToFPicAPI::rawX2PicToRawAminB(*source, *result)) << sourceFirst;
        source->data += sourceFirst ? 1 : -1;
        EXPECT_FALSE(CkToFPicAPI::rawX2PicToRawAminB(*source, *result)) << sourceFirst;
    }
}

TEST_P(Guard, StackHigherThanTheSource) {
    if (!GetParam().stackedPhases) {
        EXPECT_EQ((*source)->height, (*result)->height);
        return;
    }
    const bool merge = GetParam().name.rfind("Merge", 0) == 0;
    const quint32 tooFew = merge ? 2 * height - 1
                           : GetParam().sourceChannels == 1 && GetParam().resultChannels == 3
                               ? 3 * height - 1
                               : 4 * height - 1;
    expectRefused("stack", [tooFew](SkPicBuf& s, SkPicBuf&) { s.height = tooFew; });
}

TEST_P(Guard, AngleBeyondTheStack) {
    const std::string& name = GetParam().name;
    const bool usesAngles = GetParam().phaseShift || name.rfind("Amplitude", 0) == 0;
    const Angles far{0, 180, 270, 45, 90};
    const std::vector<quint8> pixels = result->bytes();
    EXPECT_EQ(run(&far), !usesAngles);
    if (usesAngles) {
        EXPECT_EQ(result->bytes(), pixels);
        EXPECT_EQ((*result)->maxValue, 99.0F);
    }
}

TEST(UnsupportedPhases, WriteNothingButRefreshTheRange) {
    for (const int phases : {3, 0, -1, 5, 16, std::numeric_limits<int>::min()}) {
        TestPicture source(6, 32, 2, Type::UInt16);
        TestPicture result(6, 2, 2, Type::Float32);
        result.set(1, 1, 0, 4.5F);
        result.set(2, 1, 1, -2.5F);
        const std::vector<quint8> pixels = result.bytes();
        EXPECT_TRUE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, phases)) << phases;
        EXPECT_EQ(result.bytes(), pixels);
        EXPECT_EQ(result->minValue, -2.5F);
        EXPECT_EQ(result->maxValue, 4.5F);
        TestPicture grey(6, 2, 1, Type::UInt16);
        const std::vector<quint8> greyPixels = grey.bytes();
        EXPECT_TRUE(CkToFPicAPI::rawX2PicToIntensity(*source, *grey, phases));
        EXPECT_TRUE(CkToFPicAPI::rawX2PicToAmplitude(*source, *grey, phases));
        EXPECT_EQ(grey.bytes(), greyPixels);
    }
}

TEST(UnsupportedPhases, MoreThanTheSourceHoldsAreRefused) {
    TestPicture source(6, 32, 2, Type::UInt16);
    TestPicture result(6, 2, 2, Type::Float32);
    for (const int phases : {17, 1000, std::numeric_limits<int>::max()}) {
        EXPECT_FALSE(CkToFPicAPI::rawX2PicToPhaseShift_Confidence(*source, *result, phases));
    }
}

TEST(DifferenceGuard, DifferencePictureOfTheSameSizeIsLeftAlone) {
    TestPicture source(6, 4, 2, Type::UInt16);
    source.setInteger(0, 0, 0, 5);
    source->layoutFlag = true; // no longer a two-tap picture
    TestPicture result(6, 4, 1, Type::Int16);
    EXPECT_FALSE(CkToFPicAPI::rawX2PicToRawAminB(*source, *result));
    EXPECT_EQ(result.integerAt(0, 0), 0);
    // A picture of another size is converted.
    TestPicture smaller(6, 3, 1, Type::Int16);
    EXPECT_TRUE(CkToFPicAPI::rawX2PicToRawAminB(*source, *smaller));
    EXPECT_EQ(smaller.integerAt(0, 0), 5);
}

TEST(DifferenceGuard, RowsTooShortForTwoSamplesAPixelAreRefused) {
    TestPicture source(10, 4, 1, Type::UInt8);
    TestPicture result(6, 4, 1, Type::Int8);
    const std::vector<quint8> pixels = result.bytes();
    EXPECT_FALSE(CkToFPicAPI::rawX2PicToRawAminB(*source, *result));
    EXPECT_EQ(result.bytes(), pixels);
    TestPicture narrower(5, 4, 1, Type::Int8);
    source.setInteger(8, 3, 0, 9);
    source.setInteger(9, 3, 0, 4);
    EXPECT_TRUE(CkToFPicAPI::rawX2PicToRawAminB(*source, *narrower));
    EXPECT_EQ(narrower.integerAt(4, 3), 5);
}

TEST(DepthSearchGuard, BadPicturesLeaveTheMaximumAlone) {
    TestPicture depth(4, 3, 1, Type::Float32);
    TestPicture confidence(4, 3, 1, Type::Float32);
    TestPicture pairs(4, 3, 2, Type::Float32);
    for (quint32 x = 0; x < 4; ++x) {
        depth.set(x, 0, 0, 2.0F);
        confidence.set(x, 0, 0, 0.1F);
        pairs.set(x, 0, 0, 2.0F);
        pairs.set(x, 0, 1, 0.1F);
    }
    float maximum = 7.0F;
    const auto refused = [&](const SkPicBuf& d, const SkPicBuf& c, const SkPicBuf& p) {
        EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(d, c, maximum, 1.0F));
        EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(p, maximum, 1.0F));
        EXPECT_EQ(maximum, 7.0F);
    };
    for (int kind = 0; kind < 5; ++kind) {
        SkPicBuf d = *depth;
        SkPicBuf p = *pairs;
        for (SkPicBuf* picture : {&d, &p}) {
            if (kind == 0) {
                picture->data = nullptr;
            } else if (kind == 1) {
                picture->dataType = Type::UInt32;
            } else if (kind == 2) {
                picture->channels = 3;
            } else if (kind == 3) {
                picture->lineSize -= 1;
            } else {
                picture->height = 0;
            }
        }
        refused(d, *confidence, p);
        EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(*confidence, d, maximum, 1.0F));
    }
    for (const auto& [width, height] : {std::pair(3U, 3U), std::pair(4U, 2U), std::pair(4U, 4U)}) {
        TestPicture other(width, height, 1, Type::Float32);
        for (quint32 x = 0; x < width; ++x) {
            other.set(x, 0, 0, 0.5F); // a depth as well as a confidence
        }
        EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(*depth, *other, maximum, 1.0F));
        EXPECT_FALSE(CkToFPicAPI::findMaxDepthClipConfidence(*other, *confidence, maximum, 1.0F));
    }
    EXPECT_EQ(maximum, 7.0F);
    EXPECT_TRUE(CkToFPicAPI::findMaxDepthClipConfidence(*depth, *confidence, maximum, 1.0F));
    EXPECT_EQ(maximum, 2.0F);
}

TEST(DepthSearchGuard, ChannelsAreCountedExactly) {
    // Every sample would be a trusted depth of 2 m, as depth and as confidence.
    for (const quint32 channels : {1U, 2U, 3U, 4U}) {
        TestPicture picture(4, 3, channels, Type::Float32);
        for (quint32 index = 0; index < 4 * 3 * channels; ++index) {
            picture.set(index / channels % 4, index / channels / 4, index % channels, 2.0F);
        }
        float maximum = 7.0F;
        EXPECT_EQ(CkToFPicAPI::findMaxDepthClipConfidence(*picture, maximum, 3.0F), channels == 2);
        EXPECT_EQ(maximum, channels == 2 ? 2.0F : 7.0F);
        maximum = 7.0F;
        EXPECT_EQ(CkToFPicAPI::findMaxDepthClipConfidence(*picture, *picture, maximum, 3.0F), channels == 1);
        EXPECT_EQ(maximum, channels == 1 ? 2.0F : 7.0F);
    }
}

TEST(TestImageGuard, OnlyOneUnfilteredUnsignedChannelIsATestImage) {
    for (const quint32 colors : {1U, 8U, 9U, 13U}) {
        TestPicture source(4, 6, 1, Type::UInt16);
        source->colorFilterArray = EkColorFilterArray(colors);
        TestPicture result(4, 2, 3, Type::UInt16);
        EXPECT_FALSE(CkToFPicAPI::convertTestImageToHybridTof(*source, *result)) << colors;
    }
    for (const Type type : {Type::Int8, Type::Int16}) {
        for (const Type resultType : {type, type == Type::Int8 ? Type::UInt8 : Type::UInt16}) {
            TestPicture source(4, 6, 1, type);
            TestPicture result(4, 2, 3, resultType);
            EXPECT_FALSE(CkToFPicAPI::convertTestImageToHybridTof(*source, *result));
        }
    }
}

TEST(TestImageGuard, AResultWithoutColumnsOrWithoutRowsIsDone) {
    const SkPicBuf nothing;
    SkPicBuf source = nothing;
    source.channels = 1;
    source.dataType = Type::UInt16;
    for (const auto& [width, height] : {std::pair(0U, 0U), std::pair(0U, 5U), std::pair(5U, 0U)}) {
        SkPicBuf result = nothing;
        result.width = width;
        result.height = height;
        result.channels = 3;
        result.dataType = Type::UInt16;
        EXPECT_TRUE(CkToFPicAPI::convertTestImageToHybridTof(source, result)) << width << " x " << height;
    }
}

} // namespace
