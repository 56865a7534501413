// Row walking and sample access for one instruction set; included once per target.

#if defined(TOF_SIMD_ROWS_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_ROWS_TOGGLE
#undef TOF_SIMD_ROWS_TOGGLE
#else
#define TOF_SIMD_ROWS_TOGGLE
#endif

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;
using DI = hn::ScalableTag<int32_t>;
using DU = hn::ScalableTag<uint32_t>;
using VF = hn::Vec<DF>;
using VI = hn::Vec<DI>;

/// Pixels of a block of floats.
constexpr size_t kFloats = hn::MaxLanes(DF());

/// Start of a block of pixels in each of its rows. One offset for all rows: an array of advanced pointers
/// would be computed in vectors and extracted again.
struct BlockRows {
    const uint8_t* const* rows;
    size_t offset;

    HWY_INLINE const uint8_t* operator[](size_t row) const { return rows[row] + offset; }
    HWY_INLINE BlockRows from(size_t bytes) const { return {rows, offset + bytes}; }
};

/// Calls walk(rows, result, last) for a row of at least one block of Block::kPixels pixels, of which the last
/// may begin at any pixel.
///
/// A row shorter than one block is computed in a copy whose unused pixels repeat the last one, which leaves
/// minimum and maximum unchanged.
template <class Block, class Walk>
HWY_INLINE void walkRow(const uint8_t* const* rows, uint8_t* result, size_t pixels, Walk walk) {
    constexpr size_t kPixels = Block::kPixels;
    constexpr size_t kRows = Block::kRows;
    constexpr size_t kSource = Block::kSourceBytes;
    constexpr size_t kResult = Block::kResultBytes;
    const uint8_t* at[kRows];

    alignas(64) uint8_t shortSource[kRows][kPixels * kSource];
    alignas(64) uint8_t shortResult[kPixels * kResult + 1];
    const bool isShort = pixels < kPixels;
    for (size_t row = 0; row < kRows; ++row) {
        at[row] = rows[row];
        if (isShort) {
            std::memcpy(shortSource[row], rows[row], pixels * kSource);
            for (size_t pixel = pixels; pixel < kPixels; ++pixel) {
                std::memcpy(shortSource[row] + pixel * kSource, rows[row] + (pixels - 1) * kSource, kSource);
            }
            at[row] = shortSource[row];
        }
    }
    walk(at, isShort ? shortResult : result, isShort ? 0 : pixels - kPixels);
    if (isShort && kResult > 0) {
        std::memcpy(result, shortResult, pixels * kResult);
    }
}

/// Calls block(rows, result) for blocks of Block::kPixels pixels until the row is done. The last block is
/// moved back to end with the row: the pixels it shares with the block before are computed twice, with the
/// same result.
template <class Block>
HWY_INLINE void forEachBlock(const uint8_t* const* rows, uint8_t* result, size_t pixels, Block& block) {
    walkRow<Block>(
        rows, result, pixels, [&block](const uint8_t* const* at, uint8_t* target, size_t last) HWY_ATTR {
            constexpr size_t kPixels = Block::kPixels;
            // The inner loop runs twice when the last block has to be moved back.
            for (size_t pixel = 0; pixel < last + kPixels;) {
                for (pixel = std::min(pixel, last); pixel <= last; pixel += kPixels) {
                    block(BlockRows{at, pixel * Block::kSourceBytes}, target + pixel * Block::kResultBytes);
                }
            }
        });
}

/// forEachBlock as a software pipeline: block.finish(block.begin(rows), result), where begin of the next
/// block runs before finish of the current one. This hides the latency of a dependency chain that is longer
/// than the out-of-order window of the processor.
template <class Block>
HWY_INLINE void forEachBlockInTwoSteps(const uint8_t* const* rows, uint8_t* result, size_t pixels,
                                       const Block& block) {
    walkRow<Block>(rows, result, pixels,
                   [&block](const uint8_t* const* at, uint8_t* target, size_t last) HWY_ATTR {
                       size_t pixel = 0;
                       auto partial = block.begin(BlockRows{at, 0});
                       while (pixel < last) {
                           const size_t next = std::min(pixel + Block::kPixels, last);
                           const auto following = block.begin(BlockRows{at, next * Block::kSourceBytes});
                           block.finish(partial, target + pixel * Block::kResultBytes);
                           partial = following;
                           pixel = next;
                       }
                       block.finish(partial, target + pixel * Block::kResultBytes);
                   });
}

template <class D>
HWY_INLINE hn::Vec<D> loadBytes(D d, const uint8_t* bytes) {
    return hn::LoadU(d, reinterpret_cast<const hn::TFromD<D>*>(bytes));
}

template <class D>
HWY_INLINE void storeBytes(D d, hn::Vec<D> values, uint8_t* bytes) {
    hn::StoreU(values, d, reinterpret_cast<hn::TFromD<D>*>(bytes));
}

#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR
// ---- sources: full vectors of integers just wide enough for the sums of eight phases ---------------------

using DS16 = hn::ScalableTag<int16_t>;
using VS16 = hn::Vec<DS16>;

/// The lanes of one of the kParts float vectors of a block.
template <size_t part>
HWY_INLINE VI lanesOf(VI values) {
    static_assert(part == 0);
    return values;
}
template <size_t part>
HWY_INLINE VI lanesOf(VS16 values) {
    const hn::Half<DS16> half;
    if constexpr (part == 0) {
        return hn::PromoteTo(DI(), hn::LowerHalf(half, values));
    } else {
        return hn::PromoteTo(DI(), hn::UpperHalf(half, values));
    }
}

/// Interleaved taps of 16 bits. Offset to signed values, so that one instruction multiplies both taps by 1
/// or -1 and adds them. The offset cancels in differences.
struct Taps16 {
    static constexpr size_t kBytes = 4;
    static constexpr size_t kParts = 1;
    using V = VI;

    static HWY_INLINE V difference(const uint8_t* bytes) { return add(hn::Zero(DI()), bytes, kAMinusB); }
    static HWY_INLINE V opposed(const uint8_t* plus, const uint8_t* minus) {
        return add(difference(plus), minus, kBMinusA);
    }
    /// Initial value of a sum over phases: compensates the offset of the taps.
    static HWY_INLINE V emptySum(int phases) { return hn::Set(DI(), phases * 0x10000); }
    static HWY_INLINE V addSum(V sum, const uint8_t* bytes) { return add(sum, bytes, kAPlusB); }

    /// A vector whose bits include every bit that a sample uses.
    static HWY_INLINE VS16 magnitude(const uint8_t* bytes) { return loadBytes(DS16(), bytes); }
    /// For samples of 15 bits at most.
    static HWY_INLINE V smallDifference(const uint8_t* bytes) {
        return differenceOf(loadBytes(DS16(), bytes));
    }
    static HWY_INLINE V smallOpposed(const uint8_t* plus, const uint8_t* minus) {
        return differenceOf(hn::Sub(loadBytes(DS16(), plus), loadBytes(DS16(), minus)));
    }

private:
    // Factors of B and A, high half first.
    static constexpr uint32_t kAMinusB = 0xFFFF0001U;
    static constexpr uint32_t kBMinusA = 0x0001FFFFU;
    static constexpr uint32_t kAPlusB = 0x00010001U;

    static HWY_INLINE V differenceOf(VS16 taps) {
        V unused = hn::Zero(DI());
        return hn::ReorderWidenMulAccumulate(DI(), taps, hn::BitCast(DS16(), hn::Set(DU(), kAMinusB)),
                                             hn::Zero(DI()), unused);
    }
    static HWY_INLINE V add(V sum, const uint8_t* bytes, uint32_t factors) {
        const VS16 taps = hn::Xor(loadBytes(DS16(), bytes), hn::Set(DS16(), hwy::LimitsMin<int16_t>()));
        V unused = hn::Zero(DI());
        return hn::ReorderWidenMulAccumulate(DI(), taps, hn::BitCast(DS16(), hn::Set(DU(), factors)), sum,
                                             unused);
    }
};

/// Even bytes times the low byte of the factors plus odd bytes times the high one; bytes are unsigned,
/// factors signed.
HWY_INLINE VS16 pairSums(const uint8_t* bytes, int16_t factors) {
    const auto taps = loadBytes(hn::ScalableTag<uint8_t>(), bytes);
#if HWY_TARGET == HWY_SSE4
    return VS16{_mm_maddubs_epi16(taps.raw, _mm_set1_epi16(factors))};
#elif HWY_TARGET == HWY_AVX2
    return VS16{_mm256_maddubs_epi16(taps.raw, _mm256_set1_epi16(factors))};
#elif HWY_TARGET == HWY_AVX3
    return VS16{_mm512_maddubs_epi16(taps.raw, _mm512_set1_epi16(factors))};
#else
    const auto pairs = hn::BitCast(hn::ScalableTag<uint16_t>(), taps);
    const VS16 even = hn::BitCast(DS16(), hn::And(pairs, hn::Set(hn::ScalableTag<uint16_t>(), 0xFF)));
    const VS16 odd = hn::BitCast(DS16(), hn::ShiftRight<8>(pairs));
    return hn::Add(hn::Mul(even, hn::Set(DS16(), int8_t(factors))),
                   hn::Mul(odd, hn::Set(DS16(), int8_t(factors >> 8))));
#endif
}

/// Interleaved taps of 8 bits. A sum of sixteen of them fits into 16 bits.
struct Taps8 {
    static constexpr size_t kBytes = 2;
    static constexpr size_t kParts = 2;
    using V = VS16;

    static HWY_INLINE V difference(const uint8_t* bytes) { return pairSums(bytes, kAMinusB); }
    static HWY_INLINE V opposed(const uint8_t* plus, const uint8_t* minus) {
        return hn::Sub(difference(plus), difference(minus));
    }
    /// 64 times the difference.
    static HWY_INLINE V scaledDifference(const uint8_t* bytes) { return pairSums(bytes, kScaledAMinusB); }
    static HWY_INLINE V emptySum(int) { return hn::Zero(DS16()); }
    static HWY_INLINE V addSum(V sum, const uint8_t* bytes) { return hn::Add(sum, pairSums(bytes, kAPlusB)); }

private:
    // Factors of B and A, high byte first.
    static constexpr int16_t kAMinusB = -0x00FF;
    static constexpr int16_t kScaledAMinusB = -0x3FC0;
    static constexpr int16_t kAPlusB = 0x0101;
};

struct Differences16 {
    static constexpr size_t kBytes = 2;
    static constexpr size_t kParts = 1;
    using V = VI;

    static HWY_INLINE VS16 magnitude(const uint8_t* bytes) { return hn::Abs(loadBytes(DS16(), bytes)); }
    static HWY_INLINE V smallDifference(const uint8_t* bytes) { return difference(bytes); }
    static HWY_INLINE V smallOpposed(const uint8_t* plus, const uint8_t* minus) {
        return opposed(plus, minus);
    }

    static HWY_INLINE V difference(const uint8_t* bytes) {
        return hn::PromoteTo(DI(), loadBytes(hn::Rebind<int16_t, DI>(), bytes));
    }
    static HWY_INLINE V opposed(const uint8_t* plus, const uint8_t* minus) {
        return hn::Sub(difference(plus), difference(minus));
    }
};

struct Differences8 {
    static constexpr size_t kBytes = 1;
    static constexpr size_t kParts = 2;
    using V = VS16;

    static HWY_INLINE V difference(const uint8_t* bytes) {
        return hn::PromoteTo(DS16(), loadBytes(hn::Rebind<int8_t, DS16>(), bytes));
    }
    static HWY_INLINE V opposed(const uint8_t* plus, const uint8_t* minus) {
        return hn::Sub(difference(plus), difference(minus));
    }
    static HWY_INLINE V scaledDifference(const uint8_t* bytes) { return hn::ShiftLeft<6>(difference(bytes)); }
};

#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
