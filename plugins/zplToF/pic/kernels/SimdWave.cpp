#include "plugins/zplToF/pic/kernels/SimdTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "plugins/zplToF/pic/kernels/SimdWave.cpp"
#include <hwy/foreach_target.h>

#include "plugins/zplToF/pic/kernels/SimdLight-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

/// Running minimum and maximum of each lane.
struct Range {
    VF minimum;
    VF maximum;

    // Explicit: an implicit constructor would be compiled without the target's instruction set.
    HWY_INLINE Range()
        : minimum(hn::Set(DF(), std::numeric_limits<float>::infinity())),
          maximum(hn::Set(DF(), -std::numeric_limits<float>::infinity())) {}

    HWY_INLINE void include(VF values) {
        minimum = hn::Min(minimum, values);
        maximum = hn::Max(maximum, values);
    }
    HWY_INLINE void addTo(SkToFRowStats& stats) const {
        const DF d;
        stats.fMinimum = std::min(stats.fMinimum, hn::GetLane(hn::MinOfLanes(d, minimum)));
        stats.fMaximum = std::max(stats.fMaximum, hn::GetLane(hn::MaxOfLanes(d, maximum)));
    }
};

/// A single phase has no angle: its magnitude is the result.
template <size_t part, class Source, int phases>
HWY_INLINE VF phaseValue(const Axes<Source, phases>& axes) {
    if constexpr (phases == 1) {
        return hn::ConvertTo(DF(), amplitudeOf<part>(axes));
    } else {
        const Light light = lightVector<part>(axes);
        return phaseShift(light.y, light.x);
    }
}

/// Standard deviation of the phase shift; 0 for a pixel without signal.
template <int phases>
HWY_INLINE VF confidenceOf(VI sum, VI amplitude) {
    const DF d;
    constexpr int sumShift = phases == 1 ? 2 : phases == 8 ? 4 : 3;
    constexpr int amplitudeShift = phases == 8 ? 2 : phases == 4 ? 1 : 0;
    VF variance = hn::ConvertTo(d, hn::ShiftRight<sumShift>(sum));
    if constexpr (phases == 8) {
        variance = hn::Mul(variance, hn::Set(d, 2.4142137F));
    }
    // Exact for sums below 2^24: the root in single precision is the rounded root in double precision.
    const VF signal = hn::ConvertTo(d, hn::ShiftLeft<amplitudeShift>(amplitude));
    const VF confidence = hn::Div(hn::Sqrt(variance), signal);
    return hn::IfThenZeroElse(hn::Eq(signal, hn::Zero(d)), confidence);
}

template <class Source, int phases>
struct PhaseConfidenceBlock {
    static constexpr size_t kPixels = kFloats * Source::kParts;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = 8;

    Range phaseRange;
    Range confidenceRange;
    VF smallestSignal;

    HWY_INLINE PhaseConfidenceBlock() : smallestSignal(phaseRange.minimum) {}

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) {
        const Axes<Source, phases> axes(rows);
        const auto sum = sampleSum<Source, phases>(rows);
        putPart<0>(axes, sum, result);
        if constexpr (Source::kParts == 2) {
            putPart<1>(axes, sum, result);
        }
    }

    template <size_t part>
    HWY_INLINE void putPart(const Axes<Source, phases>& axes, typename Source::V sum, uint8_t* result) {
        const DF d;
        const VF phase = phaseValue<part>(axes);
        const VF confidence = confidenceOf<phases>(lanesOf<part>(sum), amplitudeOf<part>(axes));
        hn::StoreInterleaved2(phase, confidence, d,
                              reinterpret_cast<float*>(result + part * kFloats * kResultBytes));
        phaseRange.include(phase);
        confidenceRange.include(confidence);
        const auto dark = hn::Eq(confidence, hn::Zero(d));
        smallestSignal = hn::IfThenElse(dark, smallestSignal, hn::Min(smallestSignal, confidence));
    }
};

template <class Source, int phases>
void phaseConfidenceRow(const quint8* const* rows, quint8* result, size_t pixels, SkToFRowStats& stats) {
    PhaseConfidenceBlock<Source, phases> block;
    forEachBlock(rows, result, pixels, block);
    block.phaseRange.addTo(stats);

    const DF d;
    stats.fWorst = std::max(stats.fWorst, hn::GetLane(hn::MaxOfLanes(d, block.confidenceRange.maximum)));
    stats.bDark = stats.bDark || hn::GetLane(hn::MinOfLanes(d, block.confidenceRange.minimum)) == 0.0F;
    // fillDark raises dark pixels later, so they must not set the minimum.
    stats.fMinimum = std::min(stats.fMinimum, hn::GetLane(hn::MinOfLanes(d, block.smallestSignal)));
}

template <class Source, int phases>
struct PhaseBlock {
    static constexpr size_t kPixels = kFloats * Source::kParts;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = 4;

    Range range;

    HWY_INLINE PhaseBlock() {}
    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) {
        const Axes<Source, phases> axes(rows);
        putPart<0>(axes, result);
        if constexpr (Source::kParts == 2) {
            putPart<1>(axes, result);
        }
    }

    template <size_t part>
    HWY_INLINE void putPart(const Axes<Source, phases>& axes, uint8_t* result) {
        const VF phase = phaseValue<part>(axes);
        storeBytes(DF(), phase, result + part * kFloats * kResultBytes);
        range.include(phase);
    }
};

template <class Source, int phases>
void phaseRow(const quint8* const* rows, quint8* result, size_t pixels, SkToFRowStats& stats) {
    PhaseBlock<Source, phases> block;
    forEachBlock(rows, result, pixels, block);
    block.range.addTo(stats);
}

struct FillDarkBlock {
    static constexpr size_t kPixels = kFloats / 2;
    static constexpr size_t kRows = 1;
    static constexpr size_t kSourceBytes = 8;
    static constexpr size_t kResultBytes = 8;

    VF worst;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) {
        const DF d;
        const VF pairs = loadBytes(d, rows[0]);
        const auto dark = hn::Eq(pairs, hn::Zero(d));
        storeBytes(d, hn::OddEven(hn::IfThenElse(dark, worst, pairs), pairs), result);
    }
};

void fillDarkRow(quint8* result, size_t pixels, float worst) {
    FillDarkBlock block{hn::Set(DF(), worst)};
    const uint8_t* const rows[] = {result};
    forEachBlock(rows, result, pixels, block);
}

struct AngleBlock {
    static constexpr size_t kPixels = kFloats;
    static constexpr size_t kRows = 2;
    static constexpr size_t kSourceBytes = 4;
    static constexpr size_t kResultBytes = 4;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        storeBytes(DF(), phaseShift(loadBytes(DF(), rows[1]), loadBytes(DF(), rows[0])), result);
    }
};

void angleRow(const quint8* const* rows, quint8* result, size_t pixels) {
    AngleBlock block;
    forEachBlock(rows, result, pixels, block);
}

template <int phases, int index>
void addPhases(SkToFKernels& kernels) {
    kernels.phaseConfidence[0][index] = phaseConfidenceRow<Taps8, phases>;
    kernels.phaseConfidence[1][index] = phaseConfidenceRow<Taps16, phases>;
    kernels.phase[0][index] = phaseRow<Differences8, phases>;
    kernels.phase[1][index] = phaseRow<Differences16, phases>;
}

void addWave(SkToFKernels& kernels) {
    addPhases<1, 0>(kernels);
    addPhases<2, 1>(kernels);
    addPhases<4, 2>(kernels);
    addPhases<8, 3>(kernels);
    kernels.fillDark = fillDarkRow;
    kernels.angle = angleRow;
    kernels.bTracksRange = true;
}
#else
void addWave(SkToFKernels&) {}
#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
TOF_EXPORT_KERNELS(addSimdWaveKernels, addWave, SkToFKernels)
#endif
