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

/// Sums of neighbouring products.
HWY_INLINE VI pairProducts(VS16 a, VS16 b) {
    VI unused = hn::Zero(DI());
    return hn::ReorderWidenMulAccumulate(DI(), a, b, hn::Zero(DI()), unused);
}

/// Both vectors as one of the lower halves of their lanes, in order.
HWY_INLINE void storeWords(VI first, VI second, uint8_t* result) {
    const hn::ScalableTag<uint16_t> d;
    storeBytes(d, hn::ConcatEven(d, hn::BitCast(d, second), hn::BitCast(d, first)), result);
}

/// The first, third, ... eight bytes of a vector ahead of the others.
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

/// Both vectors as one of the lower halves of their lanes, in order: values of 15 bits at most.
HWY_INLINE void storeSmallWords(VI first, VI second, uint8_t* result) {
    const hn::ScalableTag<uint8_t> d;
    storeBytes(d, evenEightsFirst(hn::BitCast(d, hn::ReorderDemote2To(DS16(), first, second))), result);
}

/// Integer part of the root of an integer, without the care that a conversion takes of large values. Exact up
/// to 24 bits: the float nearest to the root is an integer only if the root is.
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

/// The lower halves of the lanes of both vectors, in turn.
HWY_INLINE VU16 lowHalvesInTurn(VI first, VI second) {
    const hn::ScalableTag<uint16_t> d;
    return hn::OddEven(hn::BitCast(d, hn::ShiftLeft<16>(second)), hn::BitCast(d, first));
}
/// The upper halves.
HWY_INLINE VU16 highHalvesInTurn(VI first, VI second) {
    const hn::ScalableTag<uint16_t> d;
    return hn::OddEven(hn::BitCast(d, second), hn::BitCast(d, hn::ShiftRight<16>(first)));
}

/// Amplitudes of 8-bit samples of two or four phases. One half of a block has its roots from the divider of
/// the processor, the other from an estimate: the divider alone would be waited for.
///
/// The light vector is raised so that its square holds the square of the amplitude from bit 16 on. Dropping
/// the fraction of that does not change the integer root.
template <class Source, int phases>
struct NarrowAmplitudeBlock {
    static constexpr size_t kLanes = hn::MaxLanes(DS16());
    static constexpr size_t kPixels = 2 * kLanes;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = 1;

    /// Of the pixels of a full vector of samples: every second four of them, and those between.
    struct Squares {
        VI low;
        VI high;
    };
    struct Begun {
        Squares first;
        Squares second;
    };

    HWY_INLINE Begun begin(BlockRows rows) const {
        return {raisedSquares(rows), raisedSquares(rows.from(kLanes * kSourceBytes))};
    }

    HWY_INLINE void finish(const Begun& begun, uint8_t* result) const {
        const hn::ScalableTag<uint16_t> d16;
        const hn::ScalableTag<uint8_t> d8;
        // The roots are 256 times the amplitude: it is their upper byte.
        const VU16 both =
            hn::Or(estimatedRoots(begun.first), hn::AndNot(hn::Set(d16, 0xFF), raisedRoots(begun.second)));
        alignas(16) static constexpr uint8_t order[16] = {0, 4, 8, 12, 2, 6, 10, 14,
                                                          1, 5, 9, 13, 3, 7, 11, 15};
        const auto eights = hn::TableLookupBytes(hn::BitCast(d8, both), hn::LoadDup128(d8, order));
        storeBytes(d8, evenEightsFirst(eights), result);
    }

private:
    static HWY_INLINE Squares raisedSquares(BlockRows rows) {
        VS16 x = Source::raisedDifference(rows[0]);
        VS16 y = Source::raisedDifference(rows[1]);
        if constexpr (phases == 4) {
            x = hn::Sub(x, Source::raisedDifference(rows[2]));
            y = hn::Sub(y, Source::raisedDifference(rows[3]));
        } else {
            x = hn::Add(x, x);
            y = hn::Add(y, y);
        }
        const VS16 low = hn::InterleaveLower(DS16(), x, y);
        const VS16 high = hn::InterleaveUpper(DS16(), x, y);
        return {pairProducts(low, low), pairProducts(high, high)};
    }

    static HWY_INLINE VU16 estimatedRoots(const Squares& squares) {
        const auto nearest = [](VI raised) HWY_ATTR {
            const VF value = hn::ConvertTo(DF(), raised);
            // 1.5 * 2^31: the last bit counts 256, so the low bits are the amplitude. For 0 the estimate is
            // infinite and the product not a number, whose low bits are 0.
            return hn::BitCast(
                DI(), hn::MulAdd(value, hn::ApproximateReciprocalSqrt(value), hn::Set(DF(), 3221225472.0F)));
        };
        const hn::ScalableTag<uint16_t> d;
        // The estimate of 11 bits is less than 0.1 off, so its nearest integer is the root or one more.
        const VU16 integer = lowHalvesInTurn(nearest(squares.low), nearest(squares.high));
        const VS16 square = hn::BitCast(DS16(), highHalvesInTurn(squares.low, squares.high));
        const auto above = hn::Gt(hn::BitCast(DS16(), hn::Mul(integer, integer)), square);
        return hn::Add(integer, hn::BitCast(d, hn::VecFromMask(DS16(), above)));
    }

    /// The squares have 20 bits and zeros behind them, so they are exact as floats. A root just below a whole
    /// amplitude is a millionth of itself below it, and floats are finer.
    static HWY_INLINE VU16 raisedRoots(const Squares& squares) {
        return lowHalvesInTurn(integerRoot(squares.low), integerRoot(squares.high));
    }
};

/// Amplitudes of 16-bit samples of two or four phases, quickest for samples of 12 bits.
template <class Source, int phases>
struct WordAmplitudeBlock {
    static constexpr size_t kPixels = 2 * kFloats;
    static constexpr size_t kRows = phases;
    static constexpr size_t kSourceBytes = Source::kBytes;
    static constexpr size_t kResultBytes = 2;

    struct Begun {
        VI first;
        VI second;
        bool areSquares; ///< of the amplitudes, without their fraction
    };

    HWY_INLINE Begun begin(BlockRows rows) const {
        const BlockRows behind = rows.from(kFloats * kSourceBytes);
        const VS16 bits = magnitudes(rows);
        if (HWY_LIKELY(fit<12>(bits))) {
            return {hn::ShiftRight<kSquareShift>(lightSquares(rows)),
                    hn::ShiftRight<kSquareShift>(lightSquares(behind)), true};
        }
        if (fit<14>(bits)) {
            return {lengthOf(lightSquares(rows)), lengthOf(lightSquares(behind)), false};
        }
        return {amplitudeOf<0>(Axes<Source, phases>(rows)), amplitudeOf<0>(Axes<Source, phases>(behind)),
                false};
    }

    HWY_INLINE void finish(const Begun& begun, uint8_t* result) const {
        // Squares of 12-bit samples have 23 bits.
        if (HWY_LIKELY(begun.areSquares)) {
            storeSmallWords(integerRoot(begun.first), integerRoot(begun.second), result);
        } else {
            storeWords(begun.first, begun.second, result);
        }
    }

private:
    /// Of the divisor that makes a length of the light vector an amplitude.
    static constexpr int kSquareShift = phases == 4 ? 4 : 2;

    /// All bits that the magnitudes of the block's samples have.
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

    /// Of samples of 14 bits at most: the parts of the light vector fit into 16 bits then.
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
        const VS16 pairs = hn::BitCast(DS16(), lowHalvesInTurn(x, y));
        return pairProducts(pairs, pairs);
    }

    static HWY_INLINE VI lengthOf(VI squares) {
        const VF root = hn::Sqrt(hn::ConvertTo(DF(), squares));
        // Less than 0.01 off, so the nearest integer is the result or one more.
        const VI integer = roundedProduct(root, hn::Set(DF(), 1.0F / phases));
        const VS16 words = hn::BitCast(DS16(), integer);
        const auto above = hn::Gt(pairProducts(words, words), hn::ShiftRight<kSquareShift>(squares));
        return hn::Add(integer, hn::VecFromMask(DI(), above));
    }
};

/// Amplitudes of one phase and of eight. They never exceed the range of the samples they come from, so
/// nothing is cut off.
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
            const Axes<Source, phases> behind(rows.from(kFloats * kSourceBytes));
            storeWords(amplitudeOf<0>(axes), amplitudeOf<0>(behind), result);
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
