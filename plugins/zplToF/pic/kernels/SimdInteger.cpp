#include "plugins/zplToF/pic/kernels/SimdTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "plugins/zplToF/pic/kernels/SimdInteger.cpp"
#include <hwy/foreach_target.h>

#include "plugins/zplToF/pic/kernels/SimdAmplitude-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

/// Interleaved taps of type T, loaded as lanes of the type W of twice the width: A is the low half of each
/// lane.
template <typename T, typename W>
struct TapLanes {
    using Narrow = hn::CappedTag<T, 32 / sizeof(T)>;
    using Wide = hn::CappedTag<W, 32 / sizeof(W)>;
    using V = hn::Vec<Wide>;
    static constexpr int kBits = 8 * sizeof(T);

    static HWY_INLINE V sum(const uint8_t* bytes) {
        const V taps = loadBytes(Wide(), bytes);
        return hn::Add(hn::And(taps, hn::Set(Wide(), W(hwy::LimitsMax<T>()))), hn::ShiftRight<kBits>(taps));
    }
    /// The low half of each lane is the difference modulo the narrow type; the high half is unspecified.
    static HWY_INLINE V difference(const uint8_t* bytes) {
        const V taps = loadBytes(Wide(), bytes);
        return hn::Sub(taps, hn::ShiftRight<kBits>(taps));
    }
    /// Stores the low halves of all lanes, first before second.
    static HWY_INLINE void storeLowHalves(V first, V second, uint8_t* result) {
        const Narrow d;
        storeBytes(d, hn::ConcatEven(d, hn::BitCast(d, second), hn::BitCast(d, first)), result);
    }
};

using ByteLanes = TapLanes<uint8_t, uint16_t>;
using WordLanes = TapLanes<uint16_t, uint32_t>;

template <class Taps, int phases>
struct IntensityBlock {
    static constexpr size_t kPixels = hn::MaxLanes(typename Taps::Narrow());
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = 2 * sizeof(hn::TFromD<typename Taps::Narrow>);
    static constexpr size_t kResultBytes = kSourceBytes / 2;
    static constexpr int kShift = phases == 1 ? 1 : phases == 2 ? 2 : phases == 4 ? 3 : 4;

    static HWY_INLINE typename Taps::V mean(BlockRows rows) {
        auto sum = Taps::sum(rows[0]);
        for (int phase = 1; phase < phases; ++phase) {
            sum = hn::Add(sum, Taps::sum(rows[phase]));
        }
        return hn::ShiftRight<kShift>(sum);
    }
    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        Taps::storeLowHalves(mean(rows), mean(rows.from(kPixels / 2 * kSourceBytes)), result);
    }
};

template <class Taps, int phases>
void intensityRow(const quint8* const* rows, quint8* result, size_t pixels) {
    IntensityBlock<Taps, phases> block;
    forEachBlock(rows, result, pixels, block);
}

template <class Taps>
struct DifferenceBlock {
    static constexpr size_t kPixels = hn::MaxLanes(typename Taps::Narrow());
    static constexpr size_t kRows = 1;
    static constexpr size_t kSourceBytes = 2 * sizeof(hn::TFromD<typename Taps::Narrow>);
    static constexpr size_t kResultBytes = kSourceBytes / 2;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        Taps::storeLowHalves(Taps::difference(rows[0]),
                             Taps::difference(rows[0] + kPixels / 2 * kSourceBytes), result);
    }
};

template <class Taps>
void differenceRow(const quint8* source, quint8* result, size_t pixels) {
    DifferenceBlock<Taps> block;
    forEachBlock(&source, result, pixels, block);
}

template <typename T>
struct InterleaveBlock {
    static constexpr size_t kPixels = hn::MaxLanes(hn::ScalableTag<T>());
    static constexpr size_t kRows = 3;
    static constexpr size_t kSourceBytes = sizeof(T);
    static constexpr size_t kResultBytes = 3 * sizeof(T);

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        const hn::ScalableTag<T> d;
        hn::StoreInterleaved3(loadBytes(d, rows[0]), loadBytes(d, rows[1]), loadBytes(d, rows[2]), d,
                              reinterpret_cast<T*>(result));
    }
};

template <typename T>
void interleaveThreeRow(const quint8* const* rows, quint8* result, size_t pixels) {
    InterleaveBlock<T> block;
    forEachBlock(rows, result, pixels, block);
}

template <int phases, int index>
void addPhases(SkToFKernels& kernels) {
    kernels.intensity[0][index] = intensityRow<ByteLanes, phases>;
    kernels.intensity[1][index] = intensityRow<WordLanes, phases>;
    kernels.amplitude[0][index] = amplitudeRow<Taps8, phases>;
    kernels.amplitude[1][index] = amplitudeRow<Taps16, phases>;
    kernels.amplitudeOfDifference[0][index] = amplitudeRow<Differences8, phases>;
    kernels.amplitudeOfDifference[1][index] = amplitudeRow<Differences16, phases>;
}

void addInteger(SkToFKernels& kernels) {
    addPhases<1, 0>(kernels);
    addPhases<2, 1>(kernels);
    addPhases<4, 2>(kernels);
    addPhases<8, 3>(kernels);
    kernels.difference[0] = differenceRow<ByteLanes>;
    kernels.difference[1] = differenceRow<WordLanes>;
    kernels.interleaveThree[0] = interleaveThreeRow<uint8_t>;
    kernels.interleaveThree[1] = interleaveThreeRow<uint16_t>;
}
#else
void addInteger(SkToFKernels&) {}
#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
TOF_EXPORT_KERNELS(addSimdIntegerKernels, addInteger, SkToFKernels)
#endif
