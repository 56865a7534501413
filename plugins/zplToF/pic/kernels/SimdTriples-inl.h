// Three interleaved samples per pixel, for one instruction set; included once per target.

#if defined(TOF_SIMD_TRIPLES_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_TRIPLES_TOGGLE
#undef TOF_SIMD_TRIPLES_TOGGLE
#else
#define TOF_SIMD_TRIPLES_TOGGLE
#endif

#include "plugins/zplToF/pic/kernels/SimdRows-inl.h"

#include <array>

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

// Shuffles within 128 bits are cheap, those across are not. A block is therefore three vectors whose lower
// halves hold the first pixels and whose upper halves hold the rest. In each lane, one of the three vectors
// has a first, one a second and one a third sample of a pixel, so blends alone deinterleave them. This leaves
// the pixels in a mixed order, which is restored at the end, where it matters at all. Vectors wider than 256
// bits would need shuffles across 128 bits again.

template <typename T>
using TripleTag = hn::CappedTag<T, 32 / sizeof(T)>;
template <typename T>
using TripleVec = hn::Vec<TripleTag<T>>;

/// Pixels of a block, and of 128 bits of it.
template <typename T>
constexpr size_t kTriplePixels = hn::MaxLanes(TripleTag<T>());
template <typename T>
constexpr size_t kPartPixels = 16 / sizeof(T);

template <typename T>
struct TripleTables {
    static constexpr size_t kLanes = kPartPixels<T>;
    /// All bits set in every third lane, starting at lane 0, 1 and 2.
    alignas(16) T thirds[3][kLanes] = {};
    /// Byte shuffles of per-pixel values in mixed order: samples copies them to every sample of a vector,
    /// ordered restores the order of the picture.
    alignas(16) uint8_t samples[3][16] = {};
    alignas(16) uint8_t ordered[16] = {};

    constexpr TripleTables() {
        for (size_t lane = 0; lane < kLanes; ++lane) {
            thirds[lane % 3][lane] = T(~T(0));
            for (size_t byte = 0; byte < sizeof(T); ++byte) {
                for (size_t vector = 0; vector < 3; ++vector) {
                    samples[vector][lane * sizeof(T) + byte] =
                        uint8_t((vector * kLanes + lane) / 3 * 3 % kLanes * sizeof(T) + byte);
                }
                ordered[lane * sizeof(T) + byte] = uint8_t(lane * 3 % kLanes * sizeof(T) + byte);
            }
        }
    }
};

template <typename T>
inline constexpr TripleTables<T> kTripleTables;

/// The samples of a block of pixels.
template <typename T>
struct Triples {
    using D = TripleTag<T>;
    using V = TripleVec<T>;
    V first;
    V second;
    V third;

    static HWY_INLINE Triples load(const uint8_t* samples) {
        const D d;
        constexpr size_t bytes = kTriplePixels<T> * sizeof(T);
        return inParts(loadBytes(d, samples), loadBytes(d, samples + bytes),
                       loadBytes(d, samples + 2 * bytes));
    }

    /// From three vectors of consecutive samples.
    static HWY_INLINE Triples inParts(V a, V b, V c) {
        if constexpr (kTriplePixels < T >> kPartPixels<T>) {
            const D d;
            return {hn::ConcatUpperLower(d, b, a), hn::ConcatLowerUpper(d, c, a),
                    hn::ConcatUpperLower(d, c, b)};
        } else {
            return {a, b, c};
        }
    }

    /// The inverse of inParts: vectors of consecutive samples.
    HWY_INLINE Triples inSequence() const {
        if constexpr (kTriplePixels < T >> kPartPixels<T>) {
            const D d;
            return {hn::ConcatLowerLower(d, second, first), hn::ConcatUpperLower(d, first, third),
                    hn::ConcatUpperUpper(d, third, second)};
        } else {
            return *this;
        }
    }

    /// One sample of every pixel, in mixed order.
    template <size_t sample>
    HWY_INLINE V samplesOf() const {
        const D d;
        constexpr size_t lanes = kPartPixels<T>;
        const V mixed = everyThird<sample>(first, everyThird<(sample + 2 * lanes) % 3>(second, third));
        if constexpr (sample == 0) {
            return mixed;
        } else {
            return hn::CombineShiftRightBytes<sample * sizeof(T)>(d, mixed, mixed);
        }
    }

    /// Copies the value of every pixel to each of its samples.
    static HWY_INLINE Triples spread(V pixels) {
        return {shuffled(pixels, kTripleTables<T>.samples[0]), shuffled(pixels, kTripleTables<T>.samples[1]),
                shuffled(pixels, kTripleTables<T>.samples[2])};
    }

    /// Per-pixel values from mixed order to the order of the picture.
    static HWY_INLINE V ordered(V pixels) { return shuffled(pixels, kTripleTables<T>.ordered); }

private:
    /// Every third lane of one vector, starting at the given one, and the remaining lanes of another.
    template <size_t lane>
    static HWY_INLINE V everyThird(V those, V others) {
#if HWY_TARGET == HWY_SSE4 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3
        // A blend with an immediate runs on more execution ports than one with a mask vector.
        if constexpr (sizeof(T) == 2) {
            constexpr int lanes = lane == 0 ? 0x49 : lane == 1 ? 0x92 : 0x24;
#if HWY_TARGET == HWY_SSE4
            return V{_mm_blend_epi16(others.raw, those.raw, lanes)};
#else
            return V{_mm256_blend_epi16(others.raw, those.raw, lanes)};
#endif
        }
#endif
        return hn::IfVecThenElse(hn::LoadDup128(D(), kTripleTables<T>.thirds[lane]), those, others);
    }

    static HWY_INLINE V shuffled(V pixels, const uint8_t* table) {
        const hn::Repartition<uint8_t, D> bytes;
        return hn::TableLookupBytes(pixels, hn::BitCast(D(), hn::LoadDup128(bytes, table)));
    }
};

#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
