// Merging of exposure sections for one instruction set; included once per target.

#if defined(TOF_SIMD_SECTIONS_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_SECTIONS_TOGGLE
#undef TOF_SIMD_SECTIONS_TOGGLE
#else
#define TOF_SIMD_SECTIONS_TOGGLE
#endif

#include "pic/kernels/CkToFKernelChoice.h"
#include "pic/kernels/SimdTriples-inl.h"

#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

using DS = TripleTag<uint16_t>;
using VS = TripleVec<uint16_t>;
using Samples = Triples<uint16_t>;
constexpr size_t kSectionLanes = hn::MaxLanes(DS());

/// The samples of a block of pixels, widened to 16 bits.
template <typename T>
HWY_INLINE Samples loadSamples(const uint8_t* row) {
    if constexpr (sizeof(T) == 2) {
        return Samples::load(row);
    } else {
        const hn::Rebind<uint8_t, DS> narrow;
        const auto widened = [&](size_t part) HWY_ATTR {
            return hn::PromoteTo(DS(), loadBytes(narrow, row + part * kSectionLanes));
        };
        return Samples::inParts(widened(0), widened(1), widened(2));
    }
}

template <typename R>
using UsedLanes = std::conditional_t<sizeof(R) == 2, DS, hn::Rebind<uint32_t, hn::Half<DS>>>;
/// Bits in use by the merged samples so far.
template <typename R>
using Used = hn::Vec<UsedLanes<R>>;

/// Merged samples of one vector; a wide result keeps its shift for later, when its lanes are wide.
template <typename R>
struct Merged {
    VS value;
    VS shift;

    HWY_INLINE Merged(VS samples, uint32_t sectionShift)
        : value(shifted(samples, sectionShift)), shift(hn::Set(DS(), kept(sectionShift))) {}

    HWY_INLINE void take(VS mask, VS samples, uint32_t sectionShift) {
        value = hn::IfVecThenElse(mask, shifted(samples, sectionShift), value);
        if constexpr (sizeof(R) == 4)
            shift = hn::IfVecThenElse(mask, hn::Set(DS(), kept(sectionShift)), shift);
    }

private:
    static constexpr uint32_t bits = 8 * sizeof(R);

    static HWY_INLINE uint16_t kept(uint32_t sectionShift) {
        return uint16_t(sectionShift < bits ? sectionShift : 0);
    }
    static HWY_INLINE VS shifted(VS samples, uint32_t sectionShift) {
        const VS inRange = sectionShift < bits ? samples : hn::Zero(DS());
        return sizeof(R) == 2 ? hn::ShiftLeftSame(inRange, int(kept(sectionShift))) : inRange;
    }
};

template <typename R>
HWY_INLINE void storeSamples(const Samples& values, const Samples& shifts, uint8_t* result, Used<R>& used) {
    const auto store = [&](size_t part, VS value, VS shift) HWY_ATTR {
        uint8_t* const at = result + part * kSectionLanes * sizeof(R);
        if constexpr (sizeof(R) == 2) {
            used = hn::Or(used, value);
            storeBytes(DS(), value, at);
        } else {
            const hn::Half<DS> half;
            const UsedLanes<R> wide;
            const Used<R> low = hn::Shl(hn::PromoteTo(wide, hn::LowerHalf(half, value)),
                                        hn::PromoteTo(wide, hn::LowerHalf(half, shift)));
            const Used<R> high = hn::Shl(hn::PromoteTo(wide, hn::UpperHalf(half, value)),
                                         hn::PromoteTo(wide, hn::UpperHalf(half, shift)));
            used = hn::Or(used, hn::Or(low, high));
            storeBytes(wide, low, at);
            storeBytes(wide, high, at + kSectionLanes * 2);
        }
    };
    const Samples value = values.inSequence();
    const Samples shift = sizeof(R) == 2 ? shifts : shifts.inSequence();
    store(0, value.first, shift.first);
    store(1, value.second, shift.second);
    store(2, value.third, shift.third);
}

/// Which pixels have all samples below the threshold, which is not 0.
HWY_INLINE hn::Mask<DS> usablePixels(const Samples& samples, VS largestUsable) {
    const VS largest =
        hn::Max(hn::Max(samples.samplesOf<0>(), samples.samplesOf<1>()), samples.samplesOf<2>());
    return hn::Eq(hn::Min(largest, largestUsable), largest);
}

template <typename T, typename R>
HWY_INLINE void mergeBlock(const uint8_t* firstSection, size_t sectionBytes, uint32_t sections,
                           VS largestUsable, uint8_t* result, Used<R>& used) {
    const Samples last = loadSamples<T>(firstSection + (sections - 1) * sectionBytes);
    const auto lastUsable = usablePixels(last, largestUsable);
    if (hn::AllTrue(DS(), lastUsable)) {
        const VS unshifted = hn::Zero(DS());
        return storeSamples<R>(last, {unshifted, unshifted, unshifted}, result, used);
    }
    // The more sensitive sections overwrite what the others left.
    const Samples base = loadSamples<T>(firstSection);
    Merged<R> first(base.first, sections - 1);
    Merged<R> second(base.second, sections - 1);
    Merged<R> third(base.third, sections - 1);
    const auto take = [&](const Samples& samples, hn::Mask<DS> usable, uint32_t shift) HWY_ATTR {
        const Samples taken = Samples::spread(hn::VecFromMask(DS(), usable));
        first.take(taken.first, samples.first, shift);
        second.take(taken.second, samples.second, shift);
        third.take(taken.third, samples.third, shift);
    };
    for (uint32_t section = 1; section < sections - 1; ++section) {
        const Samples samples = loadSamples<T>(firstSection + section * sectionBytes);
        take(samples, usablePixels(samples, largestUsable), sections - 1 - section);
    }
    take(last, lastUsable, 0);
    storeSamples<R>({first.value, second.value, third.value}, {first.shift, second.shift, third.shift},
                    result, used);
}

/// A row of at least one block. A number of sections that the compiler knows needs no loop over them.
template <typename T, typename R, uint32_t knownSections>
HWY_INLINE void mergeBlocks(const uint8_t* firstSection, size_t sectionBytes, uint32_t anySections,
                            uint16_t threshold, uint8_t* result, size_t pixels, Used<R>& used) {
    constexpr size_t kPixels = kSectionLanes;
    const uint32_t sections = knownSections != 0 ? knownSections : anySections;
    const VS largestUsable = hn::Set(DS(), uint16_t(threshold - 1));
    const size_t last = pixels - kPixels;
    for (size_t pixel = 0; pixel < pixels;) {
        for (pixel = std::min(pixel, last); pixel <= last; pixel += kPixels)
            mergeBlock<T, R>(firstSection + pixel * 3 * sizeof(T), sectionBytes, sections, largestUsable,
                             result + pixel * 3 * sizeof(R), used);
    }
}

template <typename T, typename R>
void mergeSectionsRow(const quint8* firstSection, size_t sectionBytes, quint32 sections, quint16 threshold,
                      quint8* result, size_t pixels, quint32& usedBits) {
    if (pixels < kSectionLanes || threshold == 0) {
        // Short rows of any number of sections are not worth copying, and below 0 there is nothing.
        CkToFKernelChoice::plain().mergeSections[sizeof(T) / 2][sizeof(R) / 2](
            firstSection, sectionBytes, sections, threshold, result, pixels, usedBits);
        for (size_t sample = 0; sample < 3 * pixels; ++sample) {
            R value;
            std::memcpy(&value, result + sample * sizeof(R), sizeof(R));
            usedBits |= value;
        }
        return;
    }
    Used<R> used = hn::Zero(UsedLanes<R>());
    if (sections == 2)
        mergeBlocks<T, R, 2>(firstSection, sectionBytes, 2, threshold, result, pixels, used);
    else if (sections == 3)
        mergeBlocks<T, R, 3>(firstSection, sectionBytes, 3, threshold, result, pixels, used);
    else if (sections == 4)
        mergeBlocks<T, R, 4>(firstSection, sectionBytes, 4, threshold, result, pixels, used);
    else
        mergeBlocks<T, R, 0>(firstSection, sectionBytes, sections, threshold, result, pixels, used);
    alignas(64) R lanes[hn::MaxLanes(UsedLanes<R>())];
    hn::Store(used, UsedLanes<R>(), lanes);
    for (const R lane : lanes)
        usedBits |= lane;
}
#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
