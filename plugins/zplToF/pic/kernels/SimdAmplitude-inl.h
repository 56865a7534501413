// Amplitudes as integers for one instruction set; included once per target.

#if defined(TOF_SIMD_AMPLITUDE_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_AMPLITUDE_TOGGLE
#undef TOF_SIMD_AMPLITUDE_TOGGLE
#else
#define TOF_SIMD_AMPLITUDE_TOGGLE
#endif

#include "plugins/zplToF/pic/kernels/SimdLight-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

using VU16 = hn::Vec<hn::ScalableTag<uint16_t>>;
using VU8 = hn::Vec<hn::ScalableTag<uint8_t>>;

/// Sums of the products of lanes 2 i and 2 i + 1.
HWY_INLINE VI pairProducts(VS16 a, VS16 b) {
    VI unused = hn::Zero(DI());
    return hn::ReorderWidenMulAccumulate(DI(), a, b, hn::Zero(DI()), unused);
}

/// Stores the lower halves of all lanes, first before second.
HWY_INLINE void storeWords(VI first, VI second, uint8_t* result) {
    const hn::ScalableTag<uint16_t> d;
    storeBytes(d, hn::ConcatEven(d, hn::BitCast(d, second), hn::BitCast(d, first)), result);
}

/// Moves the even groups of eight bytes in front of the odd ones.
HWY_INLINE VU8 evenEightsFirst(VU8 eights) {
    if constexpr (hn::MaxLanes(hn::ScalableTag<uint8_t>()) == 16) {
        return eights;
    } else {
        constexpr size_t lanes = hn::MaxLanes(DU());
        alignas(64) uint32_t order[lanes];
        for (size_t lane = 0; lane < lanes; ++lane) {
            order[lane] = uint32_t(lane < lanes / 2 ? lane / 2 * 4 + lane % 2
                                                    : (lane - lanes / 2) / 2 * 4 + 2 + lane % 2);
        }
        const auto indices = hn::SetTableIndices(DU(), order);
        return hn::BitCast(hn::ScalableTag<uint8_t>(),
                           hn::TableLookupLanes(hn::BitCast(DU(), eights), indices));
    }
}

/// storeWords for values of 15 bits at most.
HWY_INLINE void storeSmallWords(VI first, VI second, uint8_t* result) {
    const hn::ScalableTag<uint8_t> d;
    storeBytes(d, evenEightsFirst(hn::BitCast(d, hn::ReorderDemote2To(DS16(), first, second))), result);
}

/// Square root of an integer of up to 24 bits, rounded down. Exact: the float nearest to the root is an
/// integer only if the root is. Uses the bare conversion instruction: hn::ConvertTo adds a range check for
/// large values.
HWY_INLINE VI integerRoot(VI square) {
    const VF root = hn::Sqrt(hn::ConvertTo(DF(), square));
#if HWY_TARGET == HWY_SSE4
    return VI{_mm_cvttps_epi32(root.raw)};
#elif HWY_TARGET == HWY_AVX2
    return VI{_mm256_cvttps_epi32(root.raw)};
#elif HWY_TARGET == HWY_AVX3
    return VI{_mm512_cvttps_epi32(root.raw)};
#else
    return hn::ConvertTo(DI(), root);
#endif
}

/// Interleaves the lower halves of the lanes of both vectors.
HWY_INLINE VU16 interleaveLowHalves(VI first, VI second) {
    const hn::ScalableTag<uint16_t> d;
    return hn::OddEven(hn::BitCast(d, hn::ShiftLeft<16>(second)), hn::BitCast(d, first));
}
/// Interleaves the upper halves of the lanes of both vectors.
HWY_INLINE VU16 interleaveHighHalves(VI first, VI second) {
    const hn::ScalableTag<uint16_t> d;
    return hn::OddEven(hn::BitCast(d, second), hn::BitCast(d, hn::ShiftRight<16>(first)));
}

/// Amplitudes of 8-bit samples of two or four phases. Half of each block takes its square roots from the
/// divide and square-root unit, the other half from an estimate: using that unit alone would stall on it.
///
/// The light vector is scaled up so that its square holds the square of the amplitude from bit 16 upwards.
/// Dropping the bits below does not change the integer root.
template <class Source, int phases>
struct NarrowAmplitudeBlock {
    static constexpr size_t kLanes = hn::MaxLanes(DS16());
    static constexpr size_t kPixels = 2 * kLanes;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = 1;

    /// Scaled squares of the pixels of one vector of samples, split as InterleaveLower and InterleaveUpper
    /// do.
    struct Squares {
        VI low;
        VI high;
    };
    struct Partial {
        Squares first;
        Squares second;
    };

    HWY_INLINE Partial begin(BlockRows rows) const {
        return {scaledSquares(rows), scaledSquares(rows.from(kLanes * kSourceBytes))};
    }

    HWY_INLINE void finish(const Partial& partial, uint8_t* result) const {
        const hn::ScalableTag<uint16_t> d16;
        const hn::ScalableTag<uint8_t> d8;
        // The roots are 256 times the amplitude, so the amplitude is their upper byte.
        const VU16 both =
            hn::Or(estimatedRoots(partial.first), hn::AndNot(hn::Set(d16, 0xFF), exactRoots(partial.second)));
        alignas(16) static constexpr uint8_t order[16] = {0, 4, 8, 12, 2, 6, 10, 14,
                                                          1, 5, 9, 13, 3, 7, 11, 15};
        const auto eights = hn::TableLookupBytes(hn::BitCast(d8, both), hn::LoadDup128(d8, order));
        storeBytes(d8, evenEightsFirst(eights), result);
    }

private:
    static HWY_INLINE Squares scaledSquares(BlockRows rows) {
        VS16 x = Source::scaledDifference(rows[0]);
        VS16 y = Source::scaledDifference(rows[1]);
        if constexpr (phases == 4) {
            x = hn::Sub(x, Source::scaledDifference(rows[2]));
            y = hn::Sub(y, Source::scaledDifference(rows[3]));
        } else {
            x = hn::Add(x, x);
            y = hn::Add(y, y);
        }
        const VS16 low = hn::InterleaveLower(DS16(), x, y);
        const VS16 high = hn::InterleaveUpper(DS16(), x, y);
        return {pairProducts(low, low), pairProducts(high, high)};
    }

    static HWY_INLINE VU16 estimatedRoots(const Squares& squares) {
        const auto nearest = [](VI square) HWY_ATTR {
            const VF value = hn::ConvertTo(DF(), square);
            // 1.5 * 2^31: one unit in the last place is 256, so the low bits are the amplitude. For 0 the
            // estimate is infinite and the product NaN, whose low bits are 0.
            return hn::BitCast(
                DI(), hn::MulAdd(value, hn::ApproximateReciprocalSqrt(value), hn::Set(DF(), 3221225472.0F)));
        };
        const hn::ScalableTag<uint16_t> d;
        // The 11-bit estimate is off by less than 0.1, so its nearest integer is the root or one more.
        const VU16 integer = interleaveLowHalves(nearest(squares.low), nearest(squares.high));
        const VS16 square = hn::BitCast(DS16(), interleaveHighHalves(squares.low, squares.high));
        const auto above = hn::Gt(hn::BitCast(DS16(), hn::Mul(integer, integer)), square);
        return hn::Add(integer, hn::BitCast(d, hn::VecFromMask(DS16(), above)));
    }

    /// The squares have 20 significant bits, so they are exact as floats. A root that is just below a whole
    /// amplitude falls short of it by a millionth of itself, which floats resolve.
    static HWY_INLINE VU16 exactRoots(const Squares& squares) {
        return interleaveLowHalves(integerRoot(squares.low), integerRoot(squares.high));
    }
};

/// Amplitudes of 16-bit samples of two or four phases, fastest for 12-bit samples.
template <class Source, int phases>
struct WordAmplitudeBlock {
    static constexpr size_t kPixels = 2 * kFloats;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = 2;

    struct Partial {
        VI first;
        VI second;
        bool areSquares; ///< squares of the amplitudes, rounded down, instead of the amplitudes
    };

    HWY_INLINE Partial begin(BlockRows rows) const {
        const BlockRows next = rows.from(kFloats * kSourceBytes);
        const VS16 bits = magnitudes(rows);
        if (HWY_LIKELY(fit<12>(bits))) {
            return {hn::ShiftRight<kSquareShift>(lightSquares(rows)),
                    hn::ShiftRight<kSquareShift>(lightSquares(next)), true};
        }
        if (fit<14>(bits)) {
            return {lengthOf(lightSquares(rows)), lengthOf(lightSquares(next)), false};
        }
        return {amplitudeOf<0>(Axes<Source, phases>(rows)), amplitudeOf<0>(Axes<Source, phases>(next)),
                false};
    }

    HWY_INLINE void finish(const Partial& partial, uint8_t* result) const {
        // Squares of 12-bit samples have 23 bits.
        if (HWY_LIKELY(partial.areSquares)) {
            storeSmallWords(integerRoot(partial.first), integerRoot(partial.second), result);
        } else {
            storeWords(partial.first, partial.second, result);
        }
    }

private:
    /// log2 of the divisor that turns the squared length of the light vector into a squared amplitude.
    static constexpr int kSquareShift = phases == 4 ? 4 : 2;

    /// Bitwise or of the magnitudes of all samples of the block.
    static HWY_INLINE VS16 magnitudes(BlockRows rows) {
        VS16 bits = Source::magnitude(rows[0]);
        constexpr size_t vectors = kPixels * kSourceBytes / hn::MaxLanes(DS16()) / 2;
        for (size_t row = 0; row < kRows; ++row) {
            for (size_t vector = row == 0 ? 1 : 0; vector < vectors; ++vector) {
                bits = hn::Or(bits, Source::magnitude(rows[row] + vector * hn::MaxLanes(DS16()) * 2));
            }
        }
        return bits;
    }
    template <int count>
    static HWY_INLINE bool fit(VS16 bits) {
        const VS16 above = hn::And(bits, hn::Set(DS16(), int16_t(-(1 << count))));
        return hn::AllTrue(DS16(), hn::Eq(above, hn::Zero(DS16())));
    }

    /// For samples of 14 bits at most, where the components of the light vector fit into 16 bits.
    static HWY_INLINE VI lightSquares(BlockRows rows) {
        VI x;
        VI y;
        if constexpr (phases == 4) {
            x = Source::smallOpposed(rows[0], rows[2]);
            y = Source::smallOpposed(rows[1], rows[3]);
        } else {
            x = Source::smallDifference(rows[0]);
            y = Source::smallDifference(rows[1]);
        }
        const VS16 pairs = hn::BitCast(DS16(), interleaveLowHalves(x, y));
        return pairProducts(pairs, pairs);
    }

    static HWY_INLINE VI lengthOf(VI squares) {
        const VF root = hn::Sqrt(hn::ConvertTo(DF(), squares));
        // Off by less than 0.01, so the nearest integer is the result or one more.
        const VI integer = roundedProduct(root, hn::Set(DF(), 1.0F / phases));
        const VS16 words = hn::BitCast(DS16(), integer);
        const auto above = hn::Gt(pairProducts(words, words), hn::ShiftRight<kSquareShift>(squares));
        return hn::Add(integer, hn::VecFromMask(DI(), above));
    }
};

/// Amplitudes of one or eight phases. They never exceed the range of their samples, so demoting loses
/// nothing.
template <class Source, int phases>
struct AmplitudeBlock {
    static constexpr size_t kPixels = 2 * kFloats;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = Source::kParts == 2 ? 1 : 2;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        const Axes<Source, phases> axes(rows);
        if constexpr (Source::kParts == 2 && phases == 1) {
            const hn::Rebind<uint8_t, DS16> d;
            storeBytes(d, hn::DemoteTo(d, hn::Abs(axes.x)), result);
        } else if constexpr (Source::kParts == 2) {
            const hn::Rebind<uint8_t, DF> d;
            storeBytes(d, hn::DemoteTo(d, amplitudeOf<0>(axes)), result);
            storeBytes(d, hn::DemoteTo(d, amplitudeOf<1>(axes)), result + kFloats);
        } else {
            const Axes<Source, phases> next(rows.from(kFloats * kSourceBytes));
            storeWords(amplitudeOf<0>(axes), amplitudeOf<0>(next), result);
        }
    }
};

template <class Source, int phases>
void amplitudeRow(const quint8* const* rows, quint8* result, size_t pixels) {
    if constexpr (phases == 2 || phases == 4) {
        using Block = std::conditional_t<Source::kParts == 2, NarrowAmplitudeBlock<Source, phases>,
                                         WordAmplitudeBlock<Source, phases>>;
        forEachBlockInTwoSteps(rows, result, pixels, Block());
    } else {
        AmplitudeBlock<Source, phases> block;
        forEachBlock(rows, result, pixels, block);
    }
}

#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
