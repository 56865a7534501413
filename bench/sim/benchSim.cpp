// Sets a second of the simulated sensors on one core. Every benchmark first verifies the result of what it
// times, and stops when it is wrong.

#include "sim/synth/CkSimHybridSynth.h"
#include "sim/synth/CkSimWaveSynth.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace {

struct SkFrame : SkPicBuf {
    std::vector<quint64> memory;

    SkFrame(quint32 columns, quint32 rows, quint32 samples, EkImageDataType type, quint32 bits) {
        width = columns;
        height = rows;
        channels = samples;
        bitsPerChannel = bits;
        dataType = type;
        lineSize = columns * samples * sampleBytes(type);
        memory.resize(size_t(lineSize) * rows / sizeof(quint64) + 1);
        data = reinterpret_cast<quint8*>(memory.data());
    }
};

constexpr int kAngles[8] = {0, 90, 180, 270, 45, 135, 225, 315};

void makeWaveSet(CkSimWaveSynth& synth, CkSimRaster& raster, quint64 set, int phases, SkFrame& frame) {
    raster.moveTo(double(set) / 30.0);
    for (int phase = 0; phase < phases; ++phase) {
        synth.writePhase(raster, set, kAngles[phase], frame, quint32(phase * raster.lens().height));
    }
}

/// Mean distance error, in metres, of a four-phase set of A and B taps.
double meanWaveError(const SkFrame& frame, const CkSimRaster& raster, double modulationMHz) {
    const int rows = raster.lens().height;
    const int columns = raster.lens().width;
    const double range = CkSimWaveSynth::unambiguousRange(modulationMHz);
    double sum = 0.0;
    for (int row = 0; row < rows; ++row) {
        const quint16* line[4];
        for (int phase = 0; phase < 4; ++phase) {
            line[phase] = reinterpret_cast<const quint16*>(frame.row(quint32(phase * rows + row)));
        }
        for (int column = 0; column < columns; ++column) {
            const auto difference = [&](int phase) {
                return double(line[phase][2 * column]) - double(line[phase][2 * column + 1]);
            };
            const double phase = std::atan2(difference(1) - difference(3), difference(0) - difference(2));
            double error = phase / (2.0 * std::numbers::pi) * range -
                           double(raster.distance()[size_t(row) * size_t(columns) + size_t(column)]);
            error -= range * std::round(error / range);
            sum += error;
        }
    }
    return sum / double(rows * columns);
}

void waveSets(benchmark::State& state) {
    const int phases = int(state.range(0));
    const bool difference = state.range(1) != 0;
    CkSimRaster raster(SkSimLens{}, CkSimScene::room());
    SkSimExposure exposure;
    exposure.noise = state.range(2) != 0;
    CkSimWaveSynth synth;
    synth.setup(exposure, 20.0);
    SkFrame check(640, 4 * 480, 2, EkImageDataType::UInt16, 12);
    makeWaveSet(synth, raster, 7, 4, check);
    if (std::abs(meanWaveError(check, raster, 20.0)) > 0.002) {
        state.SkipWithError("the distances of the simulated set are wrong");
        return;
    }
    SkFrame frame(640, quint32(phases) * 480, difference ? 1 : 2,
                  difference ? EkImageDataType::Int16 : EkImageDataType::UInt16, 12);
    quint64 set = 0;
    for (auto _ : state) {
        makeWaveSet(synth, raster, set++, phases, frame);
        benchmark::DoNotOptimize(frame.data);
        benchmark::ClobberMemory();
    }
    state.counters["sets/s"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

void hybridSets(benchmark::State& state) {
    const int sections = int(state.range(0));
    constexpr double pulseNs = 40.0;
    CkSimRaster raster(SkSimLens{832, 600}, CkSimScene::room());
    SkSimExposure exposure;
    exposure.noise = state.range(1) != 0;
    CkSimHybridSynth synth;
    synth.setup(exposure, pulseNs);
    SkFrame frame(832, quint32(sections) * 600, 3, EkImageDataType::UInt16, 12);
    synth.writeSection(raster, {0, 0, CkSimHybridSynth::EkSection::Plain}, frame, 0);
    // The room ends well within the first range: the pulse is in the first two windows.
    double sum = 0.0;
    for (quint32 row = 0; row < 600; ++row) {
        const auto* line = reinterpret_cast<const quint16*>(frame.row(row));
        for (quint32 column = 0; column < 832; ++column) {
            const double third = line[3 * column + 2];
            const double first = line[3 * column] - third;
            const double second = line[3 * column + 1] - third;
            const double truth = double(raster.distance()[row * 832 + column]);
            if (first + second > 100.0) {
                sum += second / (first + second) * CkSimHybridSynth::range(pulseNs) - truth;
            }
        }
    }
    if (std::abs(sum) / (832.0 * 600.0) > 0.005) {
        state.SkipWithError("the distances of the simulated section are wrong");
        return;
    }
    quint64 set = 0;
    for (auto _ : state) {
        raster.moveTo(double(set) / 30.0);
        for (int section = 0; section < sections; ++section) {
            synth.writeSection(raster, {set, section, CkSimHybridSynth::EkSection::Plain}, frame,
                               quint32(section) * 600U);
        }
        ++set;
        benchmark::DoNotOptimize(frame.data);
        benchmark::ClobberMemory();
    }
    state.counters["sets/s"] = benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(waveSets)
    ->ArgNames({"phases", "difference", "noise"})
    ->Args({4, 0, 1})
    ->Args({4, 0, 0})
    ->Args({4, 1, 1})
    ->Args({8, 0, 1})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(hybridSets)
    ->ArgNames({"sections", "noise"})
    ->Args({1, 1})
    ->Args({4, 1})
    ->Args({1, 0})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
