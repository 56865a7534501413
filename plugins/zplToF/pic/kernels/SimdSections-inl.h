// Merging of exposure sections for one instruction set; included once per target.

#if defined(TOF_SIMD_SECTIONS_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_SECTIONS_TOGGLE
#undef TOF_SIMD_SECTIONS_TOGGLE
#else
#define TOF_SIMD_SECTIONS_TOGGLE
#endif

#include "pic/kernels/CkToFKernelChoice.h"
#include "pic/kernels/SimdRows-inl.h"

#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

// A pixel is three neighbouring lanes, so three vectors hold whole pixels. 16 lanes at most, because the
// flags of three vectors then fit into 64 bits.
using DS = hn::CappedTag<uint16_t, 16>;
using VS = hn::Vec<DS>;
constexpr size_t kSectionLanes = hn::MaxLanes(DS());

/// The flags of one vector, exactly as wide as its mask: a wider read would wait for the store.
using LaneFlags = std::conditional_t<kSectionLanes == 16, uint16_t, uint8_t>;

/// One flag per lane of three vectors.
HWY_INLINE uint64_t flagsOf(hn::Mask<DS> mask) {
    uint8_t bytes[8];
    hn::StoreMaskBits(DS(), mask, bytes);
    LaneFlags flags;
    std::memcpy(&flags, bytes, sizeof(flags));
    return flags;
}

HWY_INLINE hn::Mask<DS> maskOf(uint64_t flags) {
    uint8_t bytes[8] = {};
    const auto used = LaneFlags(flags);
    std::memcpy(bytes, &used, sizeof(used));
    return hn::LoadMaskBits(DS(), bytes);
}

/// Flags all three samples of every pixel that has a flagged one.
HWY_INLINE uint64_t wholePixels(uint64_t flags) {
    constexpr uint64_t firstSamples = 0x1249249249249249ULL;
    return ((flags | flags >> 1 | flags >> 2) & firstSamples) * 7;
}

HWY_INLINE VS loadSamples(const uint8_t* row, size_t sample, uint8_t) {
    return hn::PromoteTo(DS(), loadBytes(hn::Rebind<uint8_t, DS>(), row + sample));
}

HWY_INLINE VS loadSamples(const uint8_t* row, size_t sample, uint16_t) {
    return loadBytes(DS(), row + 2 * sample);
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

    // Written out: an implicit constructor would not be compiled for the instruction set.
    HWY_INLINE Merged() : value(hn::Zero(DS())), shift(hn::Zero(DS())) {}

    HWY_INLINE void take(hn::Mask<DS> mask, VS samples, uint32_t sectionShift) {
        constexpr uint32_t bits = 8 * sizeof(R);
        const VS kept = sectionShift < bits ? samples : hn::Zero(DS());
        const int by = int(sectionShift < bits ? sectionShift : 0);
        if constexpr (sizeof(R) == 2) {
            value = hn::IfThenElse(mask, hn::ShiftLeftSame(kept, by), value);
        } else {
            value = hn::IfThenElse(mask, kept, value);
            shift = hn::IfThenElse(mask, hn::Set(DS(), uint16_t(by)), shift);
        }
    }
    HWY_INLINE void store(uint8_t* result, Used<R>& used) const {
        if constexpr (sizeof(R) == 2) {
            used = hn::Or(used, value);
            storeBytes(DS(), value, result);
        } else {
            const hn::Half<DS> half;
            const UsedLanes<R> wide;
            const Used<R> low = hn::Shl(hn::PromoteTo(wide, hn::LowerHalf(half, value)),
                                        hn::PromoteTo(wide, hn::LowerHalf(half, shift)));
            const Used<R> high = hn::Shl(hn::PromoteTo(wide, hn::UpperHalf(half, value)),
                                         hn::PromoteTo(wide, hn::UpperHalf(half, shift)));
            used = hn::Or(used, hn::Or(low, high));
            storeBytes(wide, low, result);
            storeBytes(wide, high, result + kSectionLanes * 2);
        }
    }
};

/// The samples of a block of whole pixels, and which of them belong to a pixel below the threshold.
template <typename T>
struct SectionBlock {
    VS samples[3];
    uint64_t usable;

    HWY_INLINE SectionBlock(const uint8_t* row, VS limit) {
        uint64_t saturated = 0;
        for (size_t part = 0; part < 3; ++part) {
            samples[part] = loadSamples(row, part * kSectionLanes, T());
            saturated |= flagsOf(hn::Eq(hn::Max(samples[part], limit), samples[part]))
                         << (part * kSectionLanes);
        }
        usable = ~wholePixels(saturated);
    }
};

template <typename R>
HWY_INLINE void storeMerged(const Merged<R> (&merged)[3], uint8_t* result, Used<R>& used) {
    for (size_t part = 0; part < 3; ++part)
        merged[part].store(result + part * kSectionLanes * sizeof(R), used);
}

template <typename T, typename R>
HWY_INLINE void mergeBlock(const uint8_t* firstSection, size_t sectionBytes, uint32_t sections,
                           uint16_t threshold, uint8_t* result, Used<R>& used) {
    constexpr uint64_t allSamples = (uint64_t(1) << (3 * kSectionLanes)) - 1;
    const VS limit = hn::Set(DS(), threshold);
    Merged<R> merged[3];
    uint64_t open = allSamples;
    for (uint32_t section = sections - 1; section > 0; --section) {
        const SectionBlock<T> block(firstSection + section * sectionBytes, limit);
        const uint64_t taken = open & block.usable;
        open &= ~taken;
        for (size_t part = 0; part < 3; ++part)
            merged[part].take(maskOf(taken >> (part * kSectionLanes)), block.samples[part],
                              sections - 1 - section);
        if (section > 1 && open == 0)
            return storeMerged(merged, result, used);
    }
    // Once section 1 was looked at, section 0 is mixed in unasked: where pixels differ from their neighbours,
    // a mispredicted branch costs more than the loads it may save.
    for (size_t part = 0; part < 3; ++part)
        merged[part].take(maskOf(open >> (part * kSectionLanes)),
                          loadSamples(firstSection, part * kSectionLanes, T()), sections - 1);
    storeMerged(merged, result, used);
}

/// A row of at least one block. A number of sections that the compiler knows needs no loop over them.
template <typename T, typename R, uint32_t knownSections>
HWY_INLINE void mergeBlocks(const uint8_t* firstSection, size_t sectionBytes, uint32_t anySections,
                            uint16_t threshold, uint8_t* result, size_t pixels, Used<R>& used) {
    constexpr size_t kPixels = kSectionLanes;
    const uint32_t sections = knownSections != 0 ? knownSections : anySections;
    for (size_t pixel = 0;;) {
        mergeBlock<T, R>(firstSection + pixel * 3 * sizeof(T), sectionBytes, sections, threshold,
                         result + pixel * 3 * sizeof(R), used);
        if (pixel + kPixels >= pixels)
            break;
        pixel = std::min(pixel + kPixels, pixels - kPixels);
    }
}

template <typename T, typename R>
void mergeSectionsRow(const quint8* firstSection, size_t sectionBytes, quint32 sections, quint16 threshold,
                      quint8* result, size_t pixels, quint32& usedBits) {
    if (pixels < kSectionLanes) {
        // Short rows of any number of sections are not worth copying.
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
