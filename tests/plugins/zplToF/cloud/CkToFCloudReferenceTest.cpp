#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "tests/plugins/zplToF/cloud/CloudReference.h"
#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <gmock/gmock.h>

#include <bit>
#include <random>
#include <set>

namespace {

/// Runs every build of its scope on one instruction set.
class TargetScope {
public:
    explicit TargetScope(const SkToFKernels& kernels) { ToFKernelChoice::pin(&kernels); }
    ~TargetScope() { ToFKernelChoice::pin(nullptr); }
    TargetScope(const TargetScope&) = delete;
    TargetScope& operator=(const TargetScope&) = delete;
};

/// The instruction sets of this processor, without the plain loops.
std::vector<const SkToFKernels*> vectorTargets() {
    std::vector<const SkToFKernels*> targets = ToFKernelChoice::available();
    targets.erase(targets.begin());
    return targets;
}

struct Scene {
    TestPicture depth;
    TestPicture confidence;
    EkDepthDataType kind;
    float resolutionRatio = 1.0F;
    bool hasConfidence;

    Scene(quint32 width, quint32 height, EkImageDataType type, quint32 bits, EkDepthDataType dataKind,
          bool withConfidence, quint32 seed)
        : depth(width, height, 1, type, bits, 4 * (seed % 5)),
          confidence(width, height, 1, EkImageDataType::Float32, 32, 4 * (seed % 3)), kind(dataKind),
          hasConfidence(withConfidence) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> unit(0.0F, 1.0F);
        for (quint32 y = 0; y < height; y++) {
            for (quint32 x = 0; x < width; x++) {
                setSample(x, y, quint32(random()));
                const float chance = unit(random);
                confidence.set<float>(x, y, 0,
                                      chance < 0.1F    ? 0.0F
                                      : chance < 0.2F  ? 3.0F * unit(random)
                                      : chance < 0.22F ? NotANumber
                                                       : unit(random));
            }
        }
        if (type == EkImageDataType::Float32) {
            refreshRange(depth);
        }
    }

    SkToFDepthPictures pictures() {
        return {*depth, hasConfidence ? *confidence : SkPicBuf(), kind, resolutionRatio};
    }

private:
    void setSample(quint32 x, quint32 y, quint32 bits) {
        if (depth->dataType == EkImageDataType::Float32) {
            depth.set<float>(x, y, 0,
                             bits % 41 == 0   ? NotANumber
                             : bits % 43 == 0 ? -Infinite
                                              : 0.25F + 6.03F * float(bits >> 8) / 16777216.0F);
        } else {
            depth.setInteger(x, y, 0, bits >> (32 - std::min(32U, depth->bitsPerChannel)));
        }
    }
};

void expectReference(const CkToFCloudBuilder& builder, const CloudReference& reference, bool quads) {
    ASSERT_EQ(builder.pointCount(), int(reference.points.size()));
    ASSERT_EQ(builder.usedLens(), reference.lens);
    EXPECT_FLOAT_EQ(builder.boxHalfExtents()[0], 1.0F);
    EXPECT_NEAR(builder.boxHalfExtents()[1], reference.halfHeight, 1e-6 * reference.halfHeight);
    EXPECT_NEAR(builder.boxHalfExtents()[2], reference.halfDepth, 1e-5 * reference.halfDepth);
    EXPECT_NEAR(builder.pointSpacing(), reference.spacing, 1e-6);
    if (reference.lens) {
        EXPECT_NEAR(builder.dimensions()->widthM, reference.widthM, 1e-5 * reference.widthM);
        EXPECT_NEAR(builder.dimensions()->heightM, reference.heightM, 1e-5 * reference.heightM);
        EXPECT_NEAR(builder.dimensions()->depthM, reference.depthM, 1e-5 * reference.depthM);
    }
    const int corners = quads ? 4 : 1;
    for (int i = 0; i < builder.pointCount(); i++) {
        const ReferencePoint& p = reference.points[size_t(i)];
        const SkToFPoint& exported = builder.exportPoints()[size_t(i)];
        ASSERT_NEAR(exported.x, p.x, p.xTolerance) << i;
        ASSERT_NEAR(exported.y, p.y, p.yTolerance) << i;
        ASSERT_NEAR(exported.z, p.z, p.zTolerance) << i;
        for (int corner = 0; corner < corners; corner++) {
            const TestVertex vertex = vertexAt(builder, corners * i + corner);
            const double right = quads && (corner == 1 || corner == 2) ? reference.spacing : 0.0;
            const double down = quads && corner < 2 ? reference.spacing : 0.0;
            ASSERT_NEAR(vertex.x, p.sceneX + right, p.sceneXTolerance + 1e-7 * right) << i;
            ASSERT_NEAR(vertex.y, p.sceneY - down, p.sceneYTolerance + 1e-7 * down) << i;
            ASSERT_NEAR(vertex.z, p.sceneZ, p.sceneZTolerance) << i;
            ASSERT_GE(colourOf(vertex), p.lowestColour) << i;
            ASSERT_LE(colourOf(vertex), p.highestColour) << i;
            const int index = colourOf(vertex);
            ASSERT_EQ(vertex.red, float(((7 * index) & 255) / 255.0));
            ASSERT_EQ(vertex.green, float((255 - index) / 255.0));
        }
    }
}

/// Same points in the same order: z and colours bit-equal, x and y within two units in the last place.
void expectSameCloud(const CkToFCloudBuilder& plain, const CkToFCloudBuilder& vectors) {
    ASSERT_EQ(plain.pointCount(), vectors.pointCount());
    ASSERT_EQ(plain.vertexBytes().size(), vectors.vertexBytes().size());
    ASSERT_EQ(plain.indexBytes(), vectors.indexBytes());
    EXPECT_EQ(plain.dimensions(), vectors.dimensions());
    EXPECT_EQ(plain.boxHalfExtents(), vectors.boxHalfExtents());
    const auto* a = reinterpret_cast<const float*>(plain.vertexBytes().constData());
    const auto* b = reinterpret_cast<const float*>(vectors.vertexBytes().constData());
    const int floats = int(plain.vertexBytes().size() / 4);
    for (int i = 0; i < floats; i++) {
        if (i % 6 < 2) {
            ASSERT_LE(std::abs(orderOf(a[i]) - orderOf(b[i])), 2) << "vertex float " << i;
        } else {
            ASSERT_EQ(std::bit_cast<quint32>(a[i]), std::bit_cast<quint32>(b[i])) << "vertex float " << i;
        }
    }
    for (size_t i = 0; i < plain.exportPoints().size(); i++) {
        const SkToFPoint& p = plain.exportPoints()[i];
        const SkToFPoint& q = vectors.exportPoints()[i];
        ASSERT_LE(std::abs(orderOf(p.x) - orderOf(q.x)), 2) << i;
        ASSERT_LE(std::abs(orderOf(p.y) - orderOf(q.y)), 2) << i;
        ASSERT_EQ(std::bit_cast<quint32>(p.z), std::bit_cast<quint32>(q.z)) << i;
    }
}

/// One set of parameters out of many, from a seed.
SkToFCloudParameters someParameters(quint32 seed, quint32 bits) {
    std::mt19937 random(seed);
    const auto pick = [&](auto... values) {
        const std::array all = {values...};
        return all[random() % all.size()];
    };
    SkToFCloudParameters parameters = testParameters(random() % 3 != 0);
    SkToFOpticalPath& path = parameters.opticalPath;
    path.lensFocalLengthMM = pick(3.5F, 8.0F, 1.2F);
    path.chipCellSizeMM = pick(0.01F, 0.0145F, 0.003F);
    path.centerOffsetMM = QPointF(pick(0.0, -0.0123, -0.4), pick(0.0, 0.031, -0.25));
    path.modulationFreqMHz = pick(30.0F, 12.5F, 100.0F);
    path.confidenceThreshold = pick(10.0F, 0.6F, 0.25F, -1.0F, 0.0F);
    path.realDistanceOffsetM = pick(-1.5F, 0.0F, 0.75F, -7.3F, 2.5F);
    path.orthoRadialCorrection = random() % 2 == 0;
    parameters.zZoom = pick(1.0F, 0.2F, 5.0F, 100.0F);
    parameters.layout = pick(EkToFVertexLayout::Points, EkToFVertexLayout::Quads);
    const quint32 max = quint32((1ULL << bits) - 1);
    switch (random() % 4) {
    case 0:
        parameters.contrast = {{max / 5, max - max / 4, 30, 220, 1.0}};
        break;
    case 1:
        parameters.contrast = {{0, max, 0, 255, pick(0.5, 2.2, 1.7)}};
        break;
    case 2:
        parameters.contrast = {{max / 7, max / 2, 200, 20, pick(1.0, 0.8)}};
        break;
    default:
        break;
    }
    return parameters;
}

struct Sample {
    EkImageDataType type;
    quint32 bits;
};

constexpr std::array<Sample, 8> Samples = {{{EkImageDataType::Int8, 8},
                                            {EkImageDataType::UInt8, 8},
                                            {EkImageDataType::Int16, 16},
                                            {EkImageDataType::UInt16, 12},
                                            {EkImageDataType::UInt16, 16},
                                            {EkImageDataType::Int32, 32},
                                            {EkImageDataType::UInt32, 32},
                                            {EkImageDataType::Float32, 32}}};

/// Widths of one pixel to two vectors and one, of one to two chunks and one, and a few shapes.
constexpr std::array<std::array<quint32, 2>, 20> Sizes = {
    {{1, 1},  {2, 1},  {1, 9},  {3, 2},  {4, 4},  {5, 3},   {7, 7},   {8, 2},   {9, 2},   {15, 3},
     {16, 2}, {17, 4}, {31, 2}, {32, 1}, {33, 3}, {255, 2}, {256, 2}, {257, 2}, {513, 1}, {64, 48}}};

class CloudSizes : public testing::TestWithParam<size_t> {};
INSTANTIATE_TEST_SUITE_P(All, CloudSizes, testing::Range<size_t>(0, Sizes.size()), [](const auto& size) {
    return std::to_string(Sizes[size.param][0]) + "x" + std::to_string(Sizes[size.param][1]);
});

} // namespace

TEST_P(CloudSizes, EveryLoopGivesTheCloudOfTheFormulas) {
    const auto [width, height] = Sizes[GetParam()];
    CkToFCloudBuilder plain;
    plain.setPlainLoop(true);
    CkToFCloudBuilder vectors;
    quint32 seed = quint32(1000 * GetParam());
    int withLens = 0;
    for (const Sample& sample : Samples) {
        for (int kind = 0; kind < 3; kind++) {
            // Only floats carry ToF data; other types are shown as they are.
            const int repetitions = sample.type == EkImageDataType::Float32 ? 12 : kind == 0 ? 4 : 1;
            for (int i = 0; i < repetitions; i++) {
                seed++;
                SCOPED_TRACE("seed " + std::to_string(seed) + " type " + std::to_string(int(sample.type)) +
                             " kind " + std::to_string(kind));
                Scene scene(width, height, sample.type, sample.bits, EkDepthDataType(kind), seed % 4 != 0,
                            seed);
                scene.resolutionRatio = seed % 5 == 0 ? 2.5F : 1.0F;
                const SkToFDepthPictures pictures = scene.pictures();
                const SkToFCloudParameters parameters = someParameters(seed, sample.bits);
                ASSERT_TRUE(plain.build(pictures, parameters));
                ASSERT_STREQ(plain.lastTargetName(), "plain");
                ASSERT_NO_FATAL_FAILURE(expectReference(plain, CloudReference(pictures, parameters),
                                                        parameters.layout == EkToFVertexLayout::Quads));
                withLens += plain.usedLens();
                for (const SkToFKernels* target : vectorTargets()) {
                    const TargetScope scope(*target);
                    ASSERT_TRUE(vectors.build(pictures, parameters));
                    ASSERT_STREQ(vectors.lastTargetName(), target->sName);
                    ASSERT_NO_FATAL_FAILURE(expectSameCloud(plain, vectors)) << target->sName;
                }
            }
        }
    }
    if (width > 1) {
        EXPECT_GT(withLens, 5) << "the lens model was hardly tried";
    }
}

TEST(CloudTargets, ThisProcessorRunsVectors) {
    std::set<std::string> names;
    for (const SkToFKernels* target : vectorTargets()) {
        names.insert(target->sName);
    }
#if defined(__x86_64__)
    EXPECT_TRUE(names.count("SSE4") && names.count("AVX2")) << testing::PrintToString(names);
#endif
    EXPECT_FALSE(names.empty());
}

TEST(CloudTargets, WithoutVectorsThePlainLoopIsTaken) {
    const TargetScope scope(ToFKernelChoice::plain());
    TestPicture depth(5, 2, 1, EkImageDataType::UInt8);
    CkToFCloudBuilder builder;
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    EXPECT_STREQ(builder.lastTargetName(), "plain");
    EXPECT_EQ(builder.pointCount(), 10);
}

TEST(CloudTargets, CloudsAndPicturesRunOnTheSameInstructionSet) {
    TestPicture depth(5, 2, 1, EkImageDataType::UInt8);
    CkToFCloudBuilder builder;
    ASSERT_TRUE(builder.build({*depth, {}}, testParameters()));
    EXPECT_STREQ(builder.lastTargetName(), ToFKernelChoice::active().sName);
}

TEST(CloudTargets, OnePixelAnywhereIsFound) {
    // The last pixels of a row, of a chunk and of the picture are where full vectors end.
    for (quint32 width : {1U, 13U, 257U}) {
        for (quint32 only = 0; only < 3 * width; only++) {
            TestPicture depth(width, 3, 1, EkImageDataType::Float32);
            fillFloats(depth,
                       [&](quint32 x, quint32 y) { return y * width + x == only ? 1.0F : NotANumber; });
            for (auto layout : {EkToFVertexLayout::Points, EkToFVertexLayout::Quads}) {
                SkToFCloudParameters parameters = testParameters();
                parameters.layout = layout;
                CkToFCloudBuilder plain;
                plain.setPlainLoop(true);
                CkToFCloudBuilder vectors;
                ASSERT_TRUE(plain.build({*depth, {}}, parameters));
                ASSERT_TRUE(vectors.build({*depth, {}}, parameters));
                ASSERT_EQ(vectors.pointCount(), 1);
                ASSERT_EQ(plain.vertexBytes(), vectors.vertexBytes());
            }
        }
    }
}
