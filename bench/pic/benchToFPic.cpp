#include "bench/pic/RatioReporter.h"
#include "bench/pic/benchPictures.h"
#include "bench/pic/copyLoop.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <memory>

namespace {

using Api = CkToFPicAPI;
using Type = EkImageDataType;
using Operation = std::function<bool(const SkPicBuf&, SkPicBuf&)>;

struct Case {
    std::string name;
    std::shared_ptr<BenchPicture> source;
    quint32 stack;
    quint32 resultChannels;
    Type resultType;
    bool phaseShift;
    Operation run;

    std::shared_ptr<BenchPicture> result() const {
        return std::make_shared<BenchPicture>(source->pic.width, source->pic.height / stack, resultChannels,
                                              resultType, resultType == Type::Float32 ? 32 : 16);
    }
};

/// Equal bytes; phase angles within a millionth of the plain loop's.
bool sameResult(const Case& which, const BenchPicture& expected, const BenchPicture& actual) {
    if (!which.phaseShift) {
        return std::memcmp(expected.pic.data, actual.pic.data, expected.bytes()) == 0;
    }
    for (quint32 y = 0; y < expected.pic.height; ++y) {
        const auto* first = reinterpret_cast<const float*>(expected.pic.row(y));
        const auto* second = reinterpret_cast<const float*>(actual.pic.row(y));
        for (quint32 sample = 0; sample < expected.pic.width * expected.pic.channels; ++sample) {
            const float tolerance = sample % expected.pic.channels == 0 ? 1e-6F : 0.0F;
            if (!(std::abs(first[sample] - second[sample]) <= tolerance)) {
                return false;
            }
        }
    }
    return true;
}

double pixelsOf(const BenchPicture& result) {
    return double(result.pic.width) * result.pic.height;
}

void measure(benchmark::State& state, const Case& which, const SkToFKernels& kernels) {
    const auto expected = which.result();
    const auto result = which.result();
    ToFKernelChoice::pin(&ToFKernelChoice::plain());
    bool good = which.run(which.source->pic, expected->pic);
    ToFKernelChoice::pin(&kernels);
    good = which.run(which.source->pic, result->pic) && good;
    if (!good || !sameResult(which, *expected, *result)) {
        state.SkipWithError("differs from the plain loop");
    }
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(which.run(which.source->pic, result->pic));
        benchmark::ClobberMemory();
    }
    ToFKernelChoice::pin(nullptr);
    state.counters["ns_per_px"] =
        benchmark::Counter(pixelsOf(*result) * 1e-9,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void measureCopy(benchmark::State& state, const Case& which) {
    const auto result = which.result();
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(copyLoop(which.source->pic, result->pic));
        benchmark::ClobberMemory();
    }
    state.counters["ns_per_px"] =
        benchmark::Counter(pixelsOf(*result) * 1e-9,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void addWideHybridCases(std::vector<Case>& cases) {
    const auto wide = std::make_shared<BenchPicture>(hybridPicture(1, Type::UInt32));
    cases.push_back(
        {"hybrid depth, 32-bit", wide, 1, 2, Type::Float32, false,
         [](const SkPicBuf& s, SkPicBuf& r) { return Api::rawHybridToDepth_Confidence(s, r, 0.0F); }});
    cases.push_back({"hybrid amplitude, 32-bit", wide, 1, 1, Type::UInt32, false,
                     [](const SkPicBuf& s, SkPicBuf& r) { return Api::rawHybridToAmplitude(s, r); }});
}

std::vector<Case> everyCase() {
    std::vector<Case> cases;
    const auto share = [](BenchPicture&& picture) {
        return std::make_shared<BenchPicture>(std::move(picture));
    };
    for (const Type taps : {Type::UInt16, Type::UInt8}) {
        const std::string bits = taps == Type::UInt16 ? ", 16-bit" : ", 8-bit";
        const Type differences = taps == Type::UInt16 ? Type::Int16 : Type::Int8;
        for (const quint32 phases : {4U, 2U, 8U}) {
            const std::string name = std::to_string(phases) + " phases" + bits;
            const auto source = share(twoTapPicture(phases, taps));
            cases.push_back({"A and B, phase + confidence, " + name, source, phases, 2, Type::Float32, true,
                             [phases](const SkPicBuf& s, SkPicBuf& r) {
                                 return Api::rawX2PicToPhaseShift_Confidence(s, r, int(phases));
                             }});
            if (phases != 4) {
                continue;
            }
            cases.push_back({"A minus B, phase, " + name, share(differencePicture(phases, differences)),
                             phases, 1, Type::Float32, true, [phases](const SkPicBuf& s, SkPicBuf& r) {
                                 return Api::rawAminBPicToPhaseShift(s, r, int(phases));
                             }});
            cases.push_back({"amplitude, " + name, source, phases, 1, taps, false,
                             [phases](const SkPicBuf& s, SkPicBuf& r) {
                                 return Api::rawX2PicToAmplitude(s, r, int(phases));
                             }});
            cases.push_back({"intensity, " + name, source, phases, 1, taps, false,
                             [phases](const SkPicBuf& s, SkPicBuf& r) {
                                 return Api::rawX2PicToIntensity(s, r, int(phases));
                             }});
            const auto subtract = [](const SkPicBuf& s, SkPicBuf& r) {
                return Api::rawX2PicToRawAminB(s, r);
            };
            cases.push_back(
                {"A and B to A minus B, 4 phases" + bits, source, 1, 1, differences, false, subtract});
            cases.push_back({"A and B to A minus B, 1 phase" + bits, share(twoTapPicture(1, taps)), 1, 1,
                             differences, false, subtract});
        }
        const auto hybrid = share(hybridPicture(1, taps));
        cases.push_back(
            {"hybrid depth" + bits, hybrid, 1, 2, Type::Float32, false,
             [](const SkPicBuf& s, SkPicBuf& r) { return Api::rawHybridToDepth_Confidence(s, r, 0.0F); }});
        cases.push_back({"hybrid intensity" + bits, hybrid, 1, 1, taps, false,
                         [](const SkPicBuf& s, SkPicBuf& r) { return Api::rawHybridToIntensity(s, r); }});
        cases.push_back({"hybrid amplitude" + bits, hybrid, 1, 1, taps, false,
                         [](const SkPicBuf& s, SkPicBuf& r) { return Api::rawHybridToAmplitude(s, r); }});
        const auto merge = [](const SkPicBuf& s, SkPicBuf& r) {
            return Api::processHdrFromImageSections(s, r);
        };
        cases.push_back({"HDR merge of a scene, 3 sections" + bits + " to 16", share(hybridPicture(3, taps)),
                         3, 3, Type::UInt16, false, merge});
        cases.push_back({"HDR merge of noise, 3 sections" + bits + " to 16", share(noisePicture(3, taps)), 3,
                         3, Type::UInt16, false, merge});
    }
    addWideHybridCases(cases);
    return cases;
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    const std::vector<Case> cases = everyCase();
    for (const Case& which : cases) {
        for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
            benchmark::RegisterBenchmark(
                (which.name + "/" + kernels->sName).c_str(),
                [&which, kernels](benchmark::State& state) { measure(state, which, *kernels); })
                ->Unit(benchmark::kMicrosecond);
        }
        benchmark::RegisterBenchmark((which.name + "/copy").c_str(), [&which](benchmark::State& state) {
            measureCopy(state, which);
        })->Unit(benchmark::kMicrosecond);
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
