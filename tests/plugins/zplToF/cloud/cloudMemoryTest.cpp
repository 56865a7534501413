#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/cloud/ToFPlyText.h"
#include "tests/plugins/zplToF/cloud/CloudRig.h"
#include "tests/plugins/zplToF/cloud/HeapWatch.h"

#include <gmock/gmock.h>

#include <random>

namespace {

constexpr size_t Small = 4096;

/// Frame, cloud and the arrays that the buffers of the scene share, updated as a view does. Clouds of the
/// same size differ in their points.
size_t largestAllocation(const SkPicBuf& input, const CkImageMetadata& metadata, EkToFVertexLayout layout,
                         bool plain) {
    CkToFDepthFrame frame;
    CkToFCloudBuilder builder;
    builder.setPlainLoop(plain);
    SkToFCloudParameters parameters = testParameters(true);
    parameters.layout = layout;
    QByteArray given;
    SkPicBuf shown;
    const auto step = [&] {
        parameters.opticalPath.confidenceThreshold =
            parameters.opticalPath.confidenceThreshold > 0.5F ? 0.3F : 0.7F;
        CkPicBufAPI::FreePicBuf(shown);
        ASSERT_TRUE(frame.update(input, &metadata, 640));
        ASSERT_TRUE(CkPicBufAPI::SharePicBuf(frame.depthPic(), shown));
        ASSERT_TRUE(builder.build(frame.pictures(), parameters));
        ASSERT_GT(builder.pointCount(), 0);
        given = builder.vertexBytes();
    };
    for (int i = 0; i < 6; i++) {
        step();
    }
    const HeapWatch watch;
    for (int i = 0; i < 20; i++) {
        step();
    }
    const size_t largest = watch.largest();
    CkPicBufAPI::FreePicBuf(shown);
    return largest;
}

std::string textOf(bool plain, EkToFVertexLayout layout) {
    return std::string(plain ? "plain" : "vectors") +
           (layout == EkToFVertexLayout::Quads ? ", quads" : ", points");
}

} // namespace

TEST(HeapWatch, SeesWhatItIsThereToSee) {
    const HeapWatch watch;
    EXPECT_LT(watch.largest(), 5000U);
    {
        QByteArray bytes(100000, 'x');
        EXPECT_GE(watch.largest(), 100000U);
        EXPECT_LT(watch.largest(), 110000U);
        std::vector<double> more(50000);
        bytes[0] = char(more.size() % 100);
    }
    EXPECT_GE(watch.largest(), 400000U);
    EXPECT_GE(watch.peak(), 500000U);
    EXPECT_LT(watch.peak(), 600000U);
}

TEST(CloudMemory, PhasePicturesAllocateNothingLargeOnceSizesHaveSettled) {
    TestPicture input(640, 480, 2, EkImageDataType::Float32);
    std::mt19937 random(1);
    for (quint32 y = 0; y < 480; y++) {
        for (quint32 x = 0; x < 640; x++) {
            input.set<float>(x, y, 0, float(random() % 6000) / 1000.0F);
            input.set<float>(x, y, 1, float(random() % 1000) / 1000.0F);
        }
    }
    CkImageMetadata metadata;
    metadata.channelNames = {"Phase shift", "Confidence"};
    for (bool plain : {false, true}) {
        for (auto layout : {EkToFVertexLayout::Points, EkToFVertexLayout::Quads}) {
            EXPECT_LE(largestAllocation(*input, metadata, layout, plain), Small) << textOf(plain, layout);
        }
    }
}

TEST(CloudMemory, RawAndGenericPicturesAllocateNothingLargeEither) {
    TestPicture taps(320, 480, 2, EkImageDataType::UInt16, 12);
    for (quint32 y = 0; y < 480; y++) {
        for (quint32 x = 0; x < 640; x++) {
            reinterpret_cast<quint16*>(taps->row(y))[x] = quint16((x * 31 + y * 17) % 4096);
        }
    }
    CkImageMetadata metadata;
    metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
    metadata.phasesCount = 4;
    EXPECT_LE(largestAllocation(*taps, metadata, EkToFVertexLayout::Points, false), Small);
    TestPicture grey(600, 300, 1, EkImageDataType::UInt8);
    EXPECT_LE(largestAllocation(*grey, CkImageMetadata(), EkToFVertexLayout::Points, false), Small);
}

TEST(CloudMemory, PlyTextTakesAtMostTwiceItsSize) {
    std::mt19937 random(7);
    for (size_t count : {size_t(0), size_t(1), size_t(500), size_t(3000), size_t(307200)}) {
        for (bool falling : {false, true}) {
            // The worst case for measuring the last lines: long lines first, short ones last.
            std::vector<SkToFPoint> points(count);
            for (size_t i = 0; i < count; i++) {
                if (!falling || i < count / 2) {
                    points[i] = {float(random()) * -1.7e-7F, float(random()) * 1e-12F,
                                 float(random()) * 3e-4F};
                }
            }
            const HeapWatch watch;
            const QByteArray text = buildPlyText(points);
            ASSERT_GT(text.size(), qsizetype(6 * count));
            EXPECT_LE(watch.peak(), size_t(2 * text.size()) + 64) << count << (falling ? " falling" : "");
        }
    }
}

TEST(CloudMemory, FramesOfChangingSizeDoNotPileUp) {
    CkToFDepthFrame frame;
    CkToFCloudBuilder builder;
    SkToFCloudParameters parameters = testParameters();
    TestPicture large(400, 300, 1, EkImageDataType::UInt8);
    TestPicture small(40, 30, 1, EkImageDataType::UInt8);
    const auto step = [&](TestPicture& picture, EkToFVertexLayout layout) {
        parameters.layout = layout;
        ASSERT_TRUE(frame.update(*picture, nullptr, 640));
        ASSERT_TRUE(builder.build(frame.pictures(), parameters));
    };
    const HeapWatch watch;
    step(large, EkToFVertexLayout::Quads);
    const size_t once = watch.peak();
    for (int i = 0; i < 20; i++) {
        step(small, EkToFVertexLayout::Points);
        step(large, EkToFVertexLayout::Quads);
    }
    EXPECT_LT(watch.peak(), once + once / 4);
}
