// Amplitudes as integers for one instruction set; included once per target.

#if defined(TOF_SIMD_AMPLITUDE_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_AMPLITUDE_TOGGLE
#undef TOF_SIMD_AMPLITUDE_TOGGLE
#else
#define TOF_SIMD_AMPLITUDE_TOGGLE
#endif

#include "pic/kernels/SimdLight-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

/// Sums of neighbouring products.
HWY_INLINE VI pairProducts(VS16 a, VS16 b) {
    VI unused = hn::Zero(DI());
    return hn::ReorderWidenMulAccumulate(DI(), a, b, hn::Zero(DI()), unused);
}

/// The square of the divisor that makes a length of the light vector an amplitude, as a shift.
template <int phases>
constexpr int kSquareShift = phases == 4 ? 4 : 2;

/// Both vectors as one of the lower halves of their lanes, in order.
HWY_INLINE void storeWords(VI first, VI second, uint8_t* result) {
    const hn::ScalableTag<uint16_t> d;
    storeBytes(d, hn::ConcatEven(d, hn::BitCast(d, second), hn::BitCast(d, first)), result);
}
HWY_INLINE void storeBytesOf(VS16 first, VS16 second, uint8_t* result) {
    const hn::ScalableTag<uint8_t> d;
    storeBytes(d, hn::ConcatEven(d, hn::BitCast(d, second), hn::BitCast(d, first)), result);
}

/// Amplitudes of 8-bit samples. The squares fit into 15 bits once they are divided, and dropping their
/// fraction does not change the integer root.
template <class Source, int phases>
HWY_INLINE VS16 narrowAmplitude(BlockRows rows) {
    const Axes<Source, phases> axes(rows);
    if constexpr (phases == 1) {
        return hn::Abs(axes.x);
    } else {
        const DS16 d;
        const VS16 lowPairs = hn::InterleaveLower(d, axes.x, axes.y);
        const VS16 highPairs = hn::InterleaveUpper(d, axes.x, axes.y);
        const VI low = hn::ShiftRight<kSquareShift<phases>>(pairProducts(lowPairs, lowPairs));
        const VI high = hn::ShiftRight<kSquareShift<phases>>(pairProducts(highPairs, highPairs));
        const auto root = [](VI squares) HWY_ATTR {
            const VF value = hn::ConvertTo(DF(), squares);
            return roundedProduct(value, hn::ApproximateReciprocalSqrt(value));
        };
        const VS16 squares = hn::ReorderDemote2To(d, low, high);
        const VS16 nearest = hn::ReorderDemote2To(d, root(low), root(high));
        // The estimate of 11 bits is less than 0.1 off, so its nearest integer is the root or one more. The
        // estimate of 0 is no number; a root is never above its square.
        const hn::ScalableTag<uint16_t> du;
        const VS16 integer = hn::BitCast(d, hn::Min(hn::BitCast(du, nearest), hn::BitCast(du, squares)));
        return hn::Add(integer, hn::VecFromMask(d, hn::Gt(hn::Mul(integer, integer), squares)));
    }
}

template <class Source, int phases>
struct NarrowAmplitudeBlock {
    static constexpr size_t kLanes = hn::MaxLanes(DS16());
    static constexpr size_t kPixels = 2 * kLanes;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = 1;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        storeBytesOf(narrowAmplitude<Source, phases>(rows),
                     narrowAmplitude<Source, phases>(rows.from(kLanes * kSourceBytes)), result);
    }
};

/// Amplitudes never exceed the range of the samples they come from, so nothing is cut off.
template <class Source, int phases>
struct AmplitudeBlock {
    static constexpr size_t kPixels = 2 * kFloats;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = Source::kParts == 2 ? 1 : 2;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        if constexpr (Source::kParts == 2) {
            const Axes<Source, phases> axes(rows);
            const hn::Rebind<uint8_t, DF> d;
            storeBytes(d, hn::DemoteTo(d, amplitudeOf<0>(axes)), result);
            storeBytes(d, hn::DemoteTo(d, amplitudeOf<1>(axes)), result + kFloats);
        } else if (phases == 1 || phases == 8 || !isSmall(rows)) {
            storeWords(wide(rows), wide(rows.from(kFloats * kSourceBytes)), result);
        } else {
            storeWords(small(rows), small(rows.from(kFloats * kSourceBytes)), result);
        }
    }

private:
    static HWY_INLINE VI wide(BlockRows rows) { return amplitudeOf<0>(Axes<Source, phases>(rows)); }

    /// Whether all samples of the block have a magnitude of 14 bits at most, as those of cameras have. The
    /// parts of the light vector fit into 16 bits then, and the sum of their squares into 32.
    static HWY_INLINE bool isSmall(BlockRows rows) {
        auto bits = Source::magnitude(rows[0]);
        constexpr size_t vectors = kPixels * kSourceBytes / hn::MaxLanes(DS16()) / 2;
        for (size_t row = 0; row < kRows; ++row) {
            for (size_t vector = row == 0 ? 1 : 0; vector < vectors; ++vector)
                bits = hn::Or(bits, Source::magnitude(rows[row] + vector * hn::MaxLanes(DS16()) * 2));
        }
        return hn::AllTrue(DS16(),
                           hn::Eq(hn::And(bits, hn::Set(DS16(), int16_t(-0x4000))), hn::Zero(DS16())));
    }

    static HWY_INLINE VI small(BlockRows rows) {
        VI x = Source::smallDifference(rows[0]);
        VI y = Source::smallDifference(rows[kRows / 2]);
        if constexpr (phases == 4) {
            x = hn::Sub(x, Source::smallDifference(rows[2]));
            y = Source::smallDifference(rows[1]);
            y = hn::Sub(y, Source::smallDifference(rows[3]));
        }
        const DS16 d;
        const VS16 pairs = hn::OddEven(hn::BitCast(d, hn::ShiftLeft<16>(y)), hn::BitCast(d, x));
        const VI squares = pairProducts(pairs, pairs);
        const VF root = hn::Sqrt(hn::ConvertTo(DF(), squares));
        // Less than 0.01 off, so the nearest integer is the result or one more.
        const VI integer = roundedProduct(root, hn::Set(DF(), 1.0F / phases));
        const VS16 words = hn::BitCast(d, integer);
        const auto above = hn::Gt(pairProducts(words, words), hn::ShiftRight<kSquareShift<phases>>(squares));
        return hn::Add(integer, hn::VecFromMask(DI(), above));
    }
};

template <class Source, int phases>
void amplitudeRow(const quint8* const* rows, quint8* result, size_t pixels) {
    std::conditional_t<Source::kParts == 2 && phases != 8, NarrowAmplitudeBlock<Source, phases>,
                       AmplitudeBlock<Source, phases>>
        block;
    forEachBlock(rows, result, pixels, block);
}

#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
