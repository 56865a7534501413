// Time per cloud and per PLY text, each compared with the straightforward implementation in the same run.
// Every result is verified before it is timed.

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/cloud/ToFPlyText.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "zuCore/CkPicBufAPI.h"

#include <QLocale>
#include <QString>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <iostream>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr quint32 kWidth = 640;
constexpr quint32 kHeight = 480;

[[noreturn]] void fail(const char* sWhat) {
    std::cerr << "wrong result: " << sWhat << '\n';
    std::exit(1);
}

/// Phase shift with confidence: a tilted wall with noise and one dropped pixel in ten.
const SkToFDepthPictures& phasePictures() {
    static CkToFDepthFrame frame;
    if (!frame.isEmpty()) {
        return frame.pictures();
    }
    SkPicBuf input;
    CkPicBufAPI::AllocPicBufFromHeap(input,
                                     SkPicBufInfo::of(kWidth, kHeight, 2, EkImageDataType::Float32, 32));
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(0.0F, 1.0F);
    for (quint32 y = 0; y < kHeight; y++) {
        auto* row = reinterpret_cast<float*>(input.row(y));
        for (quint32 x = 0; x < kWidth; x++) {
            row[2 * x] = 1.0F + 4.0F * float(x) / kWidth + 0.2F * noise(random);
            row[2 * x + 1] = noise(random) < 0.1F ? 20.0F : noise(random);
        }
    }
    CkImageMetadata metadata;
    metadata.channelNames = {"Phase shift", "Confidence"};
    if (!frame.update(input, &metadata, 640)) {
        fail("depth frame");
    }
    CkPicBufAPI::FreePicBuf(input);
    return frame.pictures();
}

/// 12 bits in 16, including the smallest and the largest possible sample.
const SkToFDepthPictures& genericPictures() {
    static SkToFDepthPictures pictures;
    if (pictures.depthPic.data) {
        return pictures;
    }
    CkPicBufAPI::AllocPicBufFromHeap(pictures.depthPic,
                                     SkPicBufInfo::of(kWidth, kHeight, 1, EkImageDataType::UInt16, 12));
    for (quint32 y = 0; y < kHeight; y++) {
        for (quint32 x = 0; x < kWidth; x++) {
            reinterpret_cast<quint16*>(pictures.depthPic.row(y))[x] = quint16((x * 7 + y * 13) % 4096);
        }
    }
    return pictures;
}

SkToFCloudParameters parametersFor(const SkToFDepthPictures& pictures, bool bLens, double dGamma,
                                   bool bQuads) {
    static std::array<quint8, 1024> colours;
    for (size_t i = 0; i < colours.size(); i++) {
        colours[i] = quint8(i * 37);
    }
    SkToFCloudParameters parameters;
    parameters.pColourTable = colours.data();
    parameters.opticalPath.compensateDistortion = bLens;
    if (dGamma != 1.0) {
        parameters.contrast =
            CkLut::CkCompContrast{0, quint32((1ULL << pictures.depthPic.bitsPerChannel) - 1), 0, 255, dGamma};
    }
    parameters.layout = bQuads ? EkToFVertexLayout::Quads : EkToFVertexLayout::Points;
    return parameters;
}

qint32 orderOf(float fValue) {
    qint32 bits = 0;
    std::memcpy(&bits, &fValue, sizeof bits);
    return bits < 0 ? std::numeric_limits<qint32>::min() - bits : bits;
}

void checkEqual(const CkToFCloudBuilder& plain, const CkToFCloudBuilder& fast) {
    if (plain.pointCount() == 0 || plain.pointCount() != fast.pointCount() ||
        plain.indexBytes() != fast.indexBytes()) {
        fail("points or indices");
    }
    const auto* a = reinterpret_cast<const float*>(plain.vertexBytes().constData());
    const auto* b = reinterpret_cast<const float*>(fast.vertexBytes().constData());
    for (int i = 0; i < plain.vertexCount() * 6; i++) {
        if (std::abs(qint64(orderOf(a[i])) - orderOf(b[i])) > (i % 6 < 2 ? 2 : 0)) {
            fail("vertices");
        }
    }
}

double threadNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e9 + double(now.tv_nsec);
}

/// Processor time, unaffected by other programs.
double nanoseconds(const std::function<void()>& work) {
    const double start = threadNanoseconds();
    work();
    return threadNanoseconds() - start;
}

double quantile(std::vector<double>& values, double dPart) {
    std::sort(values.begin(), values.end());
    return values[size_t(dPart * double(values.size() - 1))];
}

/// Times two implementations in alternation, so that other load affects both alike.
void compare(benchmark::State& state, double dUnits, const char* sUnit, const std::function<void()>& plain,
             const std::function<void()>& fast) {
    std::vector<double> plainTimes;
    std::vector<double> fastTimes;
    for (auto _ : state) {
        plainTimes.push_back(nanoseconds(plain));
        fastTimes.push_back(nanoseconds(fast));
        state.SetIterationTime(fastTimes.back() * 1e-9);
    }
    const std::string unit = std::string(" ns/") + sUnit;
    state.counters["fast" + unit] = quantile(fastTimes, 0.5) / dUnits;
    state.counters["fast 10%" + unit] = quantile(fastTimes, 0.1) / dUnits;
    state.counters["fast 90%" + unit] = quantile(fastTimes, 0.9) / dUnits;
    state.counters["plain" + unit] = quantile(plainTimes, 0.5) / dUnits;
    state.counters["ratio"] = quantile(plainTimes, 0.5) / quantile(fastTimes, 0.5);
}

void cloud(benchmark::State& state, const SkToFDepthPictures& (*pictures)(), bool bLens, double dGamma,
           bool bQuads, const SkToFKernels* pKernels) {
    ToFKernelChoice::pin(pKernels);
    const SkToFCloudParameters parameters = parametersFor(pictures(), bLens, dGamma, bQuads);
    CkToFCloudBuilder plain;
    plain.setPlainLoop(true);
    CkToFCloudBuilder fast;
    if (!plain.build(pictures(), parameters) || !fast.build(pictures(), parameters)) {
        fail("build");
    }
    checkEqual(plain, fast);
    compare(
        state, kWidth * kHeight, "pixel", [&] { plain.build(pictures(), parameters); },
        [&] { fast.build(pictures(), parameters); });
    state.SetLabel(fast.lastTargetName());
    ToFKernelChoice::pin(nullptr);
}

const std::vector<SkToFPoint>& plyPoints() {
    static std::vector<SkToFPoint> points;
    if (points.empty()) {
        CkToFCloudBuilder builder;
        SkToFCloudParameters parameters = parametersFor(phasePictures(), true, 1.0, false);
        parameters.opticalPath.confidenceThreshold = 100.0F;
        builder.build(phasePictures(), parameters);
        points.assign(builder.exportPoints().begin(), builder.exportPoints().end());
    }
    if (points.size() != size_t(kWidth) * kHeight) {
        fail("PLY points");
    }
    return points;
}

QByteArray plyByArg(const std::vector<SkToFPoint>& points) {
    QString text = QString("ply\nformat ascii 1.0\nelement vertex %1\nproperty float x\nproperty float y\n"
                           "property float z\nend_header\n")
                       .arg(points.size());
    for (const SkToFPoint& p : points) {
        text += QString("%1 %2 %3\n")
                    .arg(double(p.x), 0, 'g', QLocale::FloatingPointShortest)
                    .arg(double(p.y), 0, 'g', QLocale::FloatingPointShortest)
                    .arg(double(p.z), 0, 'g', QLocale::FloatingPointShortest);
    }
    return text.toUtf8();
}

void ply(benchmark::State& state) {
    if (plyByArg(plyPoints()) != buildPlyText(plyPoints())) {
        fail("PLY text");
    }
    compare(
        state, double(plyPoints().size()), "point", [] { benchmark::DoNotOptimize(plyByArg(plyPoints())); },
        [] { benchmark::DoNotOptimize(buildPlyText(plyPoints())); });
}

void depthFrame(benchmark::State& state) {
    SkPicBuf input;
    CkPicBufAPI::AllocPicBufFromHeap(input,
                                     SkPicBufInfo::of(kWidth, kHeight, 2, EkImageDataType::Float32, 32));
    CkImageMetadata metadata;
    metadata.channelNames = {"Phase shift", "Confidence"};
    CkToFDepthFrame frame;
    for (auto _ : state) {
        if (!frame.update(input, &metadata, 640)) {
            fail("depth frame");
        }
    }
    CkPicBufAPI::FreePicBuf(input);
}

void registerCloud(const std::string& sName, const SkToFDepthPictures& (*pictures)(), bool bLens,
                   double dGamma, bool bQuads) {
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        if (kernels != &ToFKernelChoice::plain()) {
            benchmark::RegisterBenchmark((sName + '/' + kernels->sName).c_str(), cloud, pictures, bLens,
                                         dGamma, bQuads, kernels)
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond);
        }
    }
}

const bool kRegistered = [] {
    registerCloud("cloud/lens+confidence+ortho", phasePictures, true, 1.0, false);
    registerCloud("cloud/lens+confidence+ortho/quads", phasePictures, true, 1.0, true);
    registerCloud("cloud/lens+confidence+ortho/gamma", phasePictures, true, 0.5, false);
    registerCloud("cloud/normalised phase", phasePictures, false, 1.0, false);
    registerCloud("cloud/generic 16 bit", genericPictures, false, 1.0, false);
    registerCloud("cloud/generic 16 bit/gamma", genericPictures, false, 0.5, false);
    benchmark::RegisterBenchmark("ply/against QString::arg", ply)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("depth frame/phase shift", depthFrame)->Unit(benchmark::kMillisecond);
    return true;
}();

} // namespace
