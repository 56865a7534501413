// Frames per second through chains with ToF blocks, on precomputed sets of the simulated camera. Every
// benchmark verifies the output and stops when it is wrong.

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "sim/synth/CkSimWaveSynth.h"
#include "tests/support/PushSource.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"

#include <QCoreApplication>
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <thread>

namespace {

using Block = CkToFProcessCnbl;
using Clock = std::chrono::steady_clock;

constexpr quint32 kWidth = 640;
constexpr quint32 kHeight = 480;
constexpr quint32 kPhases = 4;
constexpr int kPrecomputedSets = 8;

double nanoseconds(Clock::duration duration) {
    return double(std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count());
}

/// Processor time of this thread, which other programs do not affect.
double threadNanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e9 + double(now.tv_nsec);
}

/// Counts and checks the frames of one block's output.
class CountingSink : public IkFrameSink {
public:
    explicit CountingSink(EkImageDataType type) : m_type(type) {}

    int takeFrame(CkImageData* data) override {
        const std::unique_ptr<CkImageData> frame(data);
        wrong += frame->picBuf().dataType != m_type || frame->picBuf().width != kWidth;
        (frames == 0 ? m_cpuAtFirst : m_cpuAtLast) = threadNanoseconds();
        frames.fetch_add(1, std::memory_order_release);
        return 0;
    }

    std::atomic<qint64> frames{0};
    std::atomic<qint64> wrong{0};

    /// Processor time of the chain's thread from one frame to the next, nanoseconds.
    double chainCpuNs() const {
        return (m_cpuAtLast - m_cpuAtFirst) / double(std::max<qint64>(frames - 1, 1));
    }

private:
    EkImageDataType m_type;
    double m_cpuAtFirst = 0.0;
    double m_cpuAtLast = 0.0;
};

/// A source with sets of the simulated continuous-wave camera.
class SimulatedSets : public PushSource {
public:
    SimulatedSets() {
        setFormat(kWidth, kPhases * kHeight, 2, EkImageDataType::UInt16, 12);
        metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
        metadata.phasesCount = kPhases;
        CkSimRaster raster(SkSimLens{}, CkSimScene::room());
        CkSimWaveSynth synth;
        synth.setup(SkSimExposure{}, 20.0);
        for (int set = 0; set < kPrecomputedSets; ++set) {
            sets.push_back(makeFrame(quint64(set)));
            raster.moveTo(double(set) / 30.0);
            for (quint32 phase = 0; phase < kPhases; ++phase) {
                synth.writePhase(raster, quint64(set), int(phase) * 90, sets.back()->picBuf(),
                                 phase * kHeight);
            }
        }
    }

    /// Waits until the chain has taken a set.
    void pushSet(int set) {
        while (!push(std::unique_ptr<CkImageData>(sets[size_t(set % kPrecomputedSets)]->share()))) {
            std::this_thread::yield();
        }
    }

    std::vector<std::unique_ptr<CkImageData>> sets;
};

/// A chain of the simulated sets and one branch for each transform.
class BenchChain {
public:
    explicit BenchChain(const std::vector<int>& transforms) {
        CkChainManager* const manager = CkChainManager::instance();
        chain = manager->createChain();
        source = new SimulatedSets;
        manager->insertAfter(chain, source, nullptr);
        for (int transform : transforms) {
            auto* const block = new Block;
            block->setTransform(Block::EkTransformType(transform), false);
            manager->branchAfter(chain, block, source);
            blocks.push_back(block);
            sinks.push_back(std::make_unique<CountingSink>(
                transform == Block::Depth ? EkImageDataType::Float32 : EkImageDataType::UInt16));
            chain->addSink(block, sinks.back().get());
        }
        chain->start();
    }
    ~BenchChain() {
        for (const auto& sink : sinks) {
            chain->removeSink(sink.get());
        }
        CkChainManager::instance()->closeChain(chain);
    }

    void waitForFrames(qint64 count) const {
        for (const auto& sink : sinks) {
            while (sink->frames.load(std::memory_order_acquire) < count) {
                std::this_thread::yield();
            }
        }
    }

    bool rightFrames() const {
        for (const auto& sink : sinks) {
            if (sink->wrong != 0) {
                return false;
            }
        }
        return true;
    }

    /// Wall-clock nanoseconds a frame spends in a block.
    double blockNs(size_t index) const {
        const SkBlockStatistics statistics = chain->blockStatistics(blocks[index]);
        return double(statistics.processNs) / double(std::max<quint64>(statistics.framesIn, 1));
    }

    CkChain* chain = nullptr;
    SimulatedSets* source = nullptr;
    std::vector<Block*> blocks;
    std::vector<std::unique_ptr<CountingSink>> sinks;
};

/// Streams sets as fast as the chain takes them; returns nanoseconds per set.
double stream(benchmark::State& state, BenchChain& chain) {
    qint64 sets = 0;
    const auto begin = Clock::now();
    for (auto _ : state) {
        chain.source->pushSet(int(sets++ % kPrecomputedSets));
    }
    chain.waitForFrames(sets);
    const double spent = nanoseconds(Clock::now() - begin);
    if (!chain.rightFrames()) {
        state.SkipWithError("a frame of the wrong format came out");
    }
    state.counters["sets/s"] = double(sets) * 1e9 / spent;
    return spent / double(sets);
}

void sourceDepthSink(benchmark::State& state) {
    BenchChain chain({Block::Depth});
    stream(state, chain);
    state.counters["block_us"] = chain.blockNs(0) / 1e3;
}

void sourceThreeBranches(benchmark::State& state) {
    BenchChain chain({Block::Depth, Block::Amplitude, Block::Intensity});
    stream(state, chain);
    state.counters["depth_us"] = chain.blockNs(0) / 1e3;
    state.counters["amplitude_us"] = chain.blockNs(1) / 1e3;
    state.counters["intensity_us"] = chain.blockNs(2) / 1e3;
}

/// The kernel's share of the block's time: kernel alone and block alternate on the same sets and thread,
/// measured in processor time.
void kernelShareOfDepth(benchmark::State& state) {
    BenchChain chain({Block::Depth});
    Block* const block = chain.blocks.front();
    SkPicBufInfo outInfo;
    block->queryOutputImageInfo(chain.source->info, outInfo, &chain.source->metadata, nullptr);
    SkPicBuf result;
    CkPicBufAPI::AllocPicBufFromHeap(result, outInfo);
    double kernelNs = 0.0;
    double blockNs = 0.0;
    int set = 0;
    for (auto _ : state) {
        const auto& source = chain.source->sets[size_t(set++ % kPrecomputedSets)];
        CkImageData* const input = source->share();
        const double begin = threadNanoseconds();
        const bool done =
            CkToFPicAPI::rawX2PicToPhaseShift_Confidence(source->picBuf(), result, int(kPhases));
        const double between = threadNanoseconds();
        const std::unique_ptr<IkChainData> output(block->processData(input));
        const double end = threadNanoseconds();
        if (!done || !output) {
            state.SkipWithError("no output");
            break;
        }
        kernelNs += between - begin;
        blockNs += end - between;
    }
    CkPicBufAPI::FreePicBuf(result);
    const double iterations = double(state.iterations());
    state.counters["kernel_us"] = kernelNs / iterations / 1e3;
    state.counters["block_us"] = blockNs / iterations / 1e3;
    state.counters["share_%"] = 100.0 * kernelNs / blockNs;
}

/// Overhead of the chain per frame: the block only passes its input on.
void chainOverhead(benchmark::State& state) {
    BenchChain chain({Block::ConcatPhases});
    const double ns = stream(state, chain);
    state.counters["block_us"] = chain.blockNs(0) / 1e3;
    state.counters["overhead_us"] = (ns - chain.blockNs(0)) / 1e3;
    // The same in processor time of the thread.
    state.counters["overhead_cpu_us"] = (chain.sinks.front()->chainCpuNs() - chain.blockNs(0)) / 1e3;
}

/// From delivering a frame to receiving it at the sink, with no other frame in flight.
void chainLatency(benchmark::State& state) {
    BenchChain chain({Block::ConcatPhases});
    qint64 sets = 0;
    for (auto _ : state) {
        chain.source->pushSet(int(sets++));
        chain.waitForFrames(sets);
    }
}

BENCHMARK(sourceDepthSink)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(sourceThreeBranches)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(kernelShareOfDepth)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(chainOverhead)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(chainLatency)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
