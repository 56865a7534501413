// Phase shift and amplitude of four phases, compared with an OpenCV implementation of the same result.

#include "bench/pic/RatioReporter.h"
#include "bench/pic/benchPictures.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"

#include <benchmark/benchmark.h>
#include <opencv2/core.hpp>

#include <cmath>
#include <string>

namespace {

using Api = CkToFPicAPI;
using Type = EkImageDataType;

constexpr quint32 kPhases = 4;

/// The pixels of a picture, without a copy.
cv::Mat matOf(const SkPicBuf& pic, int type) {
    return {int(pic.height), int(pic.width), type, pic.data, pic.lineSize};
}

/// OpenCV buffers, reused from run to run.
struct OpenCvSteps {
    cv::Mat a, b, differences, x, y, amplitude, angle;

    void runTwoTaps(const SkPicBuf& source) {
        const cv::Mat taps = matOf(source, CV_16UC2);
        cv::extractChannel(taps, a, 0);
        cv::extractChannel(taps, b, 1);
        cv::subtract(a, b, differences, cv::noArray(), CV_32F);
        toPolar(differences, int(source.height / kPhases));
    }

    void runDifferences(const SkPicBuf& source) {
        toPolar(matOf(source, CV_16SC1), int(source.height / kPhases));
    }

private:
    void toPolar(const cv::Mat& stack, int height) {
        const auto phase = [&](int index) { return stack.rowRange(index * height, (index + 1) * height); };
        cv::subtract(phase(0), phase(2), x, cv::noArray(), CV_32F);
        cv::subtract(phase(1), phase(3), y, cv::noArray(), CV_32F);
        cv::cartToPolar(x, y, amplitude, angle);
    }
};

struct Results {
    explicit Results(const SkPicBuf& source)
        : phase(source.width, source.height / kPhases, 1, Type::Float32, 32),
          amplitude(source.width, source.height / kPhases, 1, Type::UInt16, 16),
          pairs(source.width, source.height / kPhases, 2, Type::Float32, 32) {}
    BenchPicture phase;
    BenchPicture amplitude;
    BenchPicture pairs;
};

bool runTwoTaps(const SkPicBuf& source, Results& results) {
    return Api::rawX2PicToPhaseShift_Confidence(source, results.pairs.pic, kPhases) &&
           Api::rawX2PicToAmplitude(source, results.amplitude.pic, kPhases);
}

bool runDifferences(const SkPicBuf& source, Results& results) {
    return Api::rawAminBPicToPhaseShift(source, results.phase.pic, kPhases) &&
           Api::rawAminBPicToAmplitude(source, results.amplitude.pic, kPhases);
}

/// OpenCV's angles are about 0.3 degrees accurate; angles are compared modulo a full turn.
bool sameAngles(const cv::Mat& angle, const SkPicBuf& phase) {
    for (quint32 row = 0; row < phase.height; ++row) {
        const auto* ours = reinterpret_cast<const float*>(phase.row(row));
        const auto* theirs = angle.ptr<float>(int(row));
        for (quint32 column = 0; column < phase.width; ++column) {
            const double difference = double(ours[column * phase.channels]) - double(theirs[column]);
            if (!(std::abs(std::remainder(difference, 6.283185307179586)) < 0.01)) {
                return false;
            }
        }
    }
    return true;
}

void countPixels(benchmark::State& state, const SkPicBuf& source) {
    const quint32 height = source.height / kPhases;
    state.counters["ns_per_px"] =
        benchmark::Counter(double(source.width) * double(height) * 1e-9,
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

template <class Ours, class Theirs>
void add(const std::string& name, const SkPicBuf& source, const Ours& ours, const Theirs& theirs) {
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        benchmark::RegisterBenchmark(
            (name + "/" + kernels->sName).c_str(), [=, &source](benchmark::State& state) {
                Results results(source);
                OpenCvSteps steps;
                (steps.*theirs)(source);
                ToFKernelChoice::pin(kernels);
                const bool taps = source.channels == 2;
                if (!ours(source, results) ||
                    !sameAngles(steps.angle, taps ? results.pairs.pic : results.phase.pic)) {
                    state.SkipWithError("differs from OpenCV");
                }
                while (state.KeepRunning()) {
                    benchmark::DoNotOptimize(ours(source, results));
                }
                ToFKernelChoice::pin(nullptr);
                countPixels(state, source);
            });
    }
    benchmark::RegisterBenchmark((name + "/OpenCV").c_str(), [=, &source](benchmark::State& state) {
        OpenCvSteps steps;
        while (state.KeepRunning()) {
            (steps.*theirs)(source);
            benchmark::DoNotOptimize(steps.angle.data);
            benchmark::ClobberMemory();
        }
        countPixels(state, source);
    });
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    cv::setNumThreads(1);
    const BenchPicture taps = twoTapPicture(kPhases, Type::UInt16);
    const BenchPicture differences = differencePicture(kPhases, Type::Int16);
    add("A and B, phase, confidence, amplitude", taps.pic, runTwoTaps, &OpenCvSteps::runTwoTaps);
    add("A minus B, phase, amplitude", differences.pic, runDifferences, &OpenCvSteps::runDifferences);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
