// Merging of exposure sections for one instruction set; included once per target.

#if defined(TOF_SIMD_SECTIONS_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_SECTIONS_TOGGLE
#undef TOF_SIMD_SECTIONS_TOGGLE
#else
#define TOF_SIMD_SECTIONS_TOGGLE
#endif

#include "plugins/zplToF/pic/kernels/SimdTriples-inl.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"

#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

/// Lanes in which merged samples of type T are computed before they are stored as type R.
template <typename T, typename R>
using MergedLane = std::conditional_t<sizeof(R) == sizeof(T), T, hwy::MakeWide<T>>;
template <typename T, typename R>
using MergedTag = hn::Repartition<MergedLane<T, R>, TripleTag<T>>;
/// Bitwise or of the samples merged so far.
template <typename T, typename R>
using Used = hn::Vec<MergedTag<T, R>>;

/// Merged samples of one vector. For a wider result type the factor is kept and applied in wide lanes.
template <typename T, typename R>
struct Merged {
    using V = TripleVec<T>;
    V value;
    V factor;

    HWY_INLINE Merged(V samples, uint32_t sectionShift)
        : value(shifted(samples, sectionShift)), factor(factorOf(sectionShift)) {}

    HWY_INLINE void take(V mask, V samples, uint32_t sectionShift) {
        value = hn::IfVecThenElse(mask, shifted(samples, sectionShift), value);
        if constexpr (sizeof(R) > sizeof(T)) {
            factor = hn::IfVecThenElse(mask, factorOf(sectionShift), factor);
        }
    }

private:
    static HWY_INLINE V factorOf(uint32_t sectionShift) {
        return hn::Set(TripleTag<T>(), T(T(1) << sectionShift));
    }
    static HWY_INLINE V shifted(V samples, uint32_t sectionShift) {
        if constexpr (sizeof(R) > sizeof(T)) {
            return samples;
        } else {
            return hn::ShiftLeftSame(samples, int(sectionShift));
        }
    }
};

template <typename T, typename R>
struct MergedBlock {
    Merged<T, R> first;
    Merged<T, R> second;
    Merged<T, R> third;

    HWY_INLINE MergedBlock(const Triples<T>& samples, uint32_t sectionShift)
        : first(samples.first, sectionShift), second(samples.second, sectionShift),
          third(samples.third, sectionShift) {}

    HWY_INLINE void take(TripleVec<T> usable, const Triples<T>& samples, uint32_t sectionShift) {
        const auto taken = Triples<T>::spread(usable);
        first.take(taken.first, samples.first, sectionShift);
        second.take(taken.second, samples.second, sectionShift);
        third.take(taken.third, samples.third, sectionShift);
    }

    HWY_INLINE void store(uint8_t* result, Used<T, R>& used) const {
        if constexpr (sizeof(R) == sizeof(T)) {
            constexpr size_t bytes = kTriplePixels<T> * sizeof(T);
            const Triples<T> values = Triples<T>{first.value, second.value, third.value}.inSequence();
            used = hn::Or(used, hn::Or(values.first, hn::Or(values.second, values.third)));
            storeBytes(TripleTag<T>(), values.first, result);
            storeBytes(TripleTag<T>(), values.second, result + bytes);
            storeBytes(TripleTag<T>(), values.third, result + 2 * bytes);
        } else {
            storeWide<0>(first, result, used);
            storeWide<1>(second, result, used);
            storeWide<2>(third, result, used);
        }
    }

private:
    using D = MergedTag<T, R>;
    using V = hn::Vec<D>;

    /// Stores the products of a vector: 128 bits of it become 256.
    template <size_t part>
    static HWY_INLINE void storeWide(const Merged<T, R>& merged, uint8_t* result, Used<T, R>& used) {
        const D d;
        const TripleTag<T> narrow;
        V low;
        V high;
        if constexpr (sizeof(T) == 1) {
            const auto zero = hn::Zero(narrow);
            low = hn::Mul(hn::ZipLower(d, merged.value, zero), hn::ZipLower(d, merged.factor, zero));
            high = hn::Mul(hn::ZipUpper(d, merged.value, zero), hn::ZipUpper(d, merged.factor, zero));
        } else {
            const auto lowBits = hn::Mul(merged.value, merged.factor);
            const auto highBits = hn::MulHigh(merged.value, merged.factor);
            low = hn::ZipLower(d, lowBits, highBits);
            high = hn::ZipUpper(d, lowBits, highBits);
        }
        used = hn::Or(used, hn::Or(low, high));
        if constexpr (kTriplePixels < T >> kPartPixels<T>) {
            storeSamples(hn::ConcatLowerLower(d, high, low), result, part * kPartPixels<T>);
            storeSamples(hn::ConcatUpperUpper(d, high, low), result, (part + 3) * kPartPixels<T>);
        } else {
            storeSamples(low, result, part * kPartPixels<T>);
            storeSamples(high, result, part * kPartPixels<T> + kPartPixels<T> / 2);
        }
    }

    static HWY_INLINE void storeSamples(V values, uint8_t* result, size_t sample) {
        uint8_t* const at = result + sample * sizeof(R);
        if constexpr (sizeof(R) == sizeof(MergedLane<T, R>)) {
            storeBytes(D(), values, at);
        } else {
            const hn::Half<D> half;
            const hn::Repartition<R, D> wide;
            storeBytes(wide, hn::PromoteTo(wide, hn::LowerHalf(half, values)), at);
            storeBytes(wide, hn::PromoteTo(wide, hn::UpperHalf(half, values)),
                       at + hn::MaxLanes(wide) * sizeof(R));
        }
    }
};

/// Mask of the pixels without a sample above the largest usable one, in mixed order.
template <typename T>
HWY_INLINE TripleVec<T> usablePixels(const Triples<T>& samples, TripleVec<T> largestUsable) {
    const auto largest = hn::Max(hn::Max(samples.template samplesOf<0>(), samples.template samplesOf<1>()),
                                 samples.template samplesOf<2>());
    return hn::VecFromMask(TripleTag<T>(), hn::Eq(hn::Min(largest, largestUsable), largest));
}

template <typename T, typename R>
HWY_INLINE void mergeBlock(SkToFSectionRows sections, TripleVec<T> largestUsable, uint8_t* result,
                           Used<T, R>& used) {
    const TripleTag<T> d;
    const auto last = Triples<T>::load(sections.row(sections.count - 1));
    auto decided = usablePixels<T>(last, largestUsable);
    MergedBlock<T, R> merged(last, 0);
    for (uint32_t section = sections.count - 1; section > 0; --section) {
        if (hn::AllTrue(d, hn::MaskFromVec(decided))) {
            break;
        }
        const auto samples = Triples<T>::load(sections.row(section - 1));
        merged.take(hn::Not(decided), samples, sections.count - section);
        if (section > 1) {
            decided = hn::Or(decided, usablePixels<T>(samples, largestUsable));
        }
    }
    merged.store(result, used);
}

/// Merges a row of at least one block. A section count known at compile time (0: any) lets the compiler
/// unroll the loop.
template <typename T, typename R, uint32_t knownSections>
HWY_INLINE void mergeBlocks(const SkToFSectionRows& rows, uint8_t* result, size_t pixels, Used<T, R>& used) {
    constexpr size_t kPixels = kTriplePixels<T>;
    // Values, not the structure: the result might alias it, which would cost a load per use.
    const SkToFSectionRows row = rows;
    const uint32_t sections = knownSections != 0 ? knownSections : row.count;
    const auto largestUsable =
        hn::Set(TripleTag<T>(), T(std::min<uint32_t>(row.threshold - 1U, hwy::LimitsMax<T>())));
    const size_t last = pixels - kPixels;
    for (size_t pixel = 0; pixel < pixels;) {
        for (pixel = std::min(pixel, last); pixel <= last; pixel += kPixels) {
            mergeBlock<T, R>({row.first + pixel * 3 * sizeof(T), row.stride, sections, row.threshold},
                             largestUsable, result + pixel * 3 * sizeof(R), used);
        }
    }
}

template <typename T, typename R>
void mergeSectionsRow(const SkToFSectionRows& sections, quint8* result, size_t pixels, quint32& usedBits) {
    // The plain loop handles rows too short for a block, a threshold that no sample is below, and more
    // sections than a sample has bits: their factors do not fit into T.
    if (pixels < kTriplePixels<T> || sections.threshold == 0 || sections.count > 8 * sizeof(T)) {
        ToFKernelChoice::plain().mergeSections[sizeof(T) / 2][sizeof(R) / 2](sections, result, pixels,
                                                                             usedBits);
        for (size_t sample = 0; sample < 3 * pixels; ++sample) {
            R value;
            std::memcpy(&value, result + sample * sizeof(R), sizeof(R));
            usedBits |= value;
        }
        return;
    }
    const MergedTag<T, R> d;
    Used<T, R> used = hn::Zero(d);
    if (sections.count == 2) {
        mergeBlocks<T, R, 2>(sections, result, pixels, used);
    } else if (sections.count == 3) {
        mergeBlocks<T, R, 3>(sections, result, pixels, used);
    } else if (sections.count == 4) {
        mergeBlocks<T, R, 4>(sections, result, pixels, used);
    } else {
        mergeBlocks<T, R, 0>(sections, result, pixels, used);
    }
    alignas(64) MergedLane<T, R> lanes[hn::MaxLanes(d)];
    hn::Store(used, d, lanes);
    for (const auto lane : lanes) {
        usedBits |= lane;
    }
}
#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
