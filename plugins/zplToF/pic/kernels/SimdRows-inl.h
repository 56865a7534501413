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
using VU = hn::Vec<DU>;

/// Pixels of a block of floats.
constexpr size_t kFloats = hn::MaxLanes(DF());

/// Calls block(rows, result) for blocks of Block::kPixels pixels until the row is done.
///
/// The last block is moved back so that it ends with the row: its first pixels are worked out twice, with
/// the same values. A row shorter than one block is worked out in a copy whose unused pixels repeat the
/// last one, so that minimum and maximum are those of the row.
template <class Block>
HWY_INLINE void forEachBlock(const uint8_t* const* rows, uint8_t* result, size_t pixels, Block& block) {
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
            for (size_t pixel = pixels; pixel < kPixels; ++pixel)
                std::memcpy(shortSource[row] + pixel * kSource, rows[row] + (pixels - 1) * kSource, kSource);
            at[row] = shortSource[row];
        }
    }
    uint8_t* const target = isShort ? shortResult : result;
    const size_t end = isShort ? kPixels : pixels;

    const uint8_t* now[kRows];
    for (size_t pixel = 0;;) {
        for (size_t row = 0; row < kRows; ++row)
            now[row] = at[row] + pixel * kSource;
        block(now, target + pixel * kResult);
        if (pixel + kPixels >= end)
            break;
        pixel = std::min(pixel + kPixels, end - kPixels);
    }
    if (isShort && kResult > 0)
        std::memcpy(result, shortResult, pixels * kResult);
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

/// The vectors of one block that become float vectors: kParts of them.
template <size_t part>
HWY_INLINE VI lanesOf(VI values) {
    static_assert(part == 0);
    return values;
}
template <size_t part>
HWY_INLINE VI lanesOf(VS16 values) {
    const hn::Half<DS16> half;
    if constexpr (part == 0)
        return hn::PromoteTo(DI(), hn::LowerHalf(half, values));
    else
        return hn::PromoteTo(DI(), hn::UpperHalf(half, values));
}

/// Interleaved taps of 16 bits. Shifted to signed values, so that one instruction multiplies both taps by 1
/// or -1 and adds them; the differences do not notice.
struct Taps16 {
    static constexpr size_t kBytes = 4;
    static constexpr size_t kParts = 1;
    using V = VI;

    static HWY_INLINE V difference(const uint8_t* bytes) { return add(hn::Zero(DI()), bytes, aMinusB); }
    static HWY_INLINE V opposed(const uint8_t* plus, const uint8_t* minus) {
        return add(difference(plus), minus, bMinusA);
    }
    /// Starts the sum of the taps of several phases with what the shift takes away from them.
    static HWY_INLINE V emptySum(int phases) { return hn::Set(DI(), phases * 0x10000); }
    static HWY_INLINE V addSum(V sum, const uint8_t* bytes) { return add(sum, bytes, aPlusB); }

private:
    // Factors of B and A, high half first.
    static constexpr uint32_t aMinusB = 0xFFFF0001U;
    static constexpr uint32_t bMinusA = 0x0001FFFFU;
    static constexpr uint32_t aPlusB = 0x00010001U;

    static HWY_INLINE V add(V sum, const uint8_t* bytes, uint32_t factors) {
        const VS16 taps = hn::Xor(loadBytes(DS16(), bytes), hn::Set(DS16(), hwy::LimitsMin<int16_t>()));
        V unused = hn::Zero(DI());
        return hn::ReorderWidenMulAccumulate(DI(), taps, hn::BitCast(DS16(), hn::Set(DU(), factors)), sum,
                                             unused);
    }
};

/// Interleaved taps of 8 bits; the sums of sixteen of them still fit into 16 bits.
struct Taps8 {
    static constexpr size_t kBytes = 2;
    static constexpr size_t kParts = 2;
    using V = VS16;

    static HWY_INLINE V difference(const uint8_t* bytes) {
        const auto taps = loadBytes(DU16(), bytes);
        return hn::BitCast(DS16(), hn::Sub(tapA(taps), hn::ShiftRight<8>(taps)));
    }
    static HWY_INLINE V opposed(const uint8_t* plus, const uint8_t* minus) {
        return hn::Sub(difference(plus), difference(minus));
    }
    static HWY_INLINE V emptySum(int) { return hn::Zero(DS16()); }
    static HWY_INLINE V addSum(V sum, const uint8_t* bytes) {
        const auto taps = loadBytes(DU16(), bytes);
        return hn::Add(sum, hn::BitCast(DS16(), hn::Add(tapA(taps), hn::ShiftRight<8>(taps))));
    }

private:
    using DU16 = hn::ScalableTag<uint16_t>;
    static HWY_INLINE hn::Vec<DU16> tapA(hn::Vec<DU16> taps) { return hn::And(taps, hn::Set(DU16(), 0xFF)); }
};

struct Differences16 {
    static constexpr size_t kBytes = 2;
    static constexpr size_t kParts = 1;
    using V = VI;

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
};

#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
