// The light vector of a pixel, its angle and its length, for one instruction set; included once per target.

#if defined(TOF_SIMD_LIGHT_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef TOF_SIMD_LIGHT_TOGGLE
#undef TOF_SIMD_LIGHT_TOGGLE
#else
#define TOF_SIMD_LIGHT_TOGGLE
#endif

#include "plugins/zplToF/pic/kernels/SimdRows-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR
/// In-phase and quadrature components of a block as integers; for eight phases also those of the diagonals.
template <class Source, int phases>
struct Axes {
    using V = typename Source::V;
    V x;
    V y;
    V sumOfDiagonals;
    V differenceOfDiagonals;

    // Explicit: an implicit constructor would be compiled without the target's instruction set.
    HWY_INLINE explicit Axes(BlockRows rows)
        : x(Source::difference(rows[0])), y(x), sumOfDiagonals(x), differenceOfDiagonals(x) {
        if constexpr (phases == 2) {
            y = Source::difference(rows[1]);
        } else if constexpr (phases == 4) {
            x = Source::opposed(rows[0], rows[2]);
            y = Source::opposed(rows[1], rows[3]);
        } else if constexpr (phases == 8) {
            x = Source::opposed(rows[0], rows[4]);
            y = Source::opposed(rows[2], rows[6]);
            const V p = Source::opposed(rows[1], rows[5]);
            const V q = Source::opposed(rows[3], rows[7]);
            sumOfDiagonals = hn::Add(p, q);
            differenceOfDiagonals = hn::Sub(p, q);
        }
    }
};

/// The light vectors of one part of a block. The integers give two and four phases an exact length.
struct Light {
    VF x;
    VF y;
    VI integerX;
    VI integerY;
};

template <size_t part, class Source, int phases>
HWY_INLINE Light lightVector(const Axes<Source, phases>& axes) {
    Light light;
    light.integerX = lanesOf<part>(axes.x);
    light.integerY = lanesOf<part>(axes.y);
    light.x = hn::ConvertTo(DF(), light.integerX);
    light.y = hn::ConvertTo(DF(), light.integerY);
    if constexpr (phases == 8) {
        // Not fused: the definition rounds the product before the addition.
        const VF c = hn::Set(DF(), 0.70710677F);
        const VF alongX = hn::ConvertTo(DF(), lanesOf<part>(axes.differenceOfDiagonals));
        const VF alongY = hn::ConvertTo(DF(), lanesOf<part>(axes.sumOfDiagonals));
        light.x = hn::Add(light.x, hn::Mul(alongX, c));
        light.y = hn::Add(light.y, hn::Mul(alongY, c));
    }
    return light;
}

/// Angle of (x, y) in [0, 2 pi), within 2 units in the last place of atan2f before the wrap. Components are
/// 0 or normal numbers.
HWY_INLINE VF phaseShift(VF y, VF x) {
    const DF d;
    const VF absX = hn::Abs(x);
    const VF absY = hn::Abs(y);
    // The smallest normal number keeps the divisor above 0 for pixels without signal.
    const VF q = hn::Div(hn::Min(absX, absY), hn::Max(hn::Max(absX, absY), hn::Set(d, 1.17549435e-38F)));

    // Minimax polynomial of (atan(q) - q) / q^3 over [0, 1] in s = q^2.
    const VF s = hn::Mul(q, q);
    VF series = hn::Set(d, 0.00292069186F);
    series = hn::MulAdd(series, s, hn::Set(d, -0.0163679272F));
    series = hn::MulAdd(series, s, hn::Set(d, 0.0432118587F));
    series = hn::MulAdd(series, s, hn::Set(d, -0.0755221397F));
    series = hn::MulAdd(series, s, hn::Set(d, 0.106660046F));
    series = hn::MulAdd(series, s, hn::Set(d, -0.142110556F));
    series = hn::MulAdd(series, s, hn::Set(d, 0.199937731F));
    series = hn::MulAdd(series, s, hn::Set(d, -0.333331525F));
    VF angle = hn::MulAdd(hn::Mul(q, s), series, q);

    // pi / 2 and pi are each split into a float and the remainder.
    const VF fromYAxis = hn::Add(hn::Sub(hn::Set(d, 1.57079637F), angle), hn::Set(d, -4.37113883e-8F));
    angle = hn::IfThenElse(hn::Gt(absY, absX), fromYAxis, angle);
    const VF fromNegativeX = hn::Add(hn::Sub(hn::Set(d, 3.14159274F), angle), hn::Set(d, -8.74227766e-8F));
    angle = hn::IfNegativeThenElse(x, fromNegativeX, angle);
    // 2 pi - angle rounds like the definition's -angle + 2 pi.
    return hn::IfThenElse(hn::Lt(y, hn::Zero(d)), hn::Sub(hn::Set(d, 6.2831855F), angle), angle);
}

/// Nearest integer of a value below 2^22, without the range check of hn::ConvertTo.
HWY_INLINE VI roundedInteger(VF value) {
    const VF ones = hn::Set(DF(), 12582912.0F); // 1.5 * 2^23: one unit in the last place is 1
    return hn::Sub(hn::BitCast(DI(), hn::Add(value, ones)), hn::BitCast(DI(), ones));
}

/// roundedInteger of a product.
HWY_INLINE VI roundedProduct(VF value, VF factor) {
    const VF ones = hn::Set(DF(), 12582912.0F);
    return hn::Sub(hn::BitCast(DI(), hn::MulAdd(value, factor, ones)), hn::BitCast(DI(), ones));
}

/// Length of the light vector divided by the number of phases, rounded towards zero like the plain loop.
template <class Source, int phases>
HWY_INLINE VI scaledLength(const Light& light) {
    const DF df;
    const DI di;
    if constexpr (phases == 8) {
        // Not fused, and no estimate: each rounding must be that of the definition.
        const VF length = hn::Sqrt(hn::Add(hn::Mul(light.x, light.x), hn::Mul(light.y, light.y)));
        return hn::ConvertTo(di, hn::Mul(length, hn::Set(df, 0.125F)));
    } else {
        // An 11-bit estimate and one Newton step are faster than a square root. The 2^-20 keeps the estimate
        // of 0 finite and vanishes in the rounding of any other sum.
        constexpr float scale = 1.0F / phases;
        const VF squares =
            hn::MulAdd(light.x, light.x, hn::MulAdd(light.y, light.y, hn::Set(df, 1.0F / (1 << 20))));
        const VF reciprocal = hn::ApproximateReciprocalSqrt(squares);
        const VF length = hn::Mul(squares, reciprocal);
        const VF scaled =
            hn::MulAdd(hn::NegMulAdd(length, length, squares), hn::Mul(reciprocal, hn::Set(df, 0.5F * scale)),
                       hn::Mul(length, hn::Set(df, scale)));
        if constexpr (Source::kParts == 2) {
            // For 8-bit samples the error is below 0.00006 and the length at most 181. A length that is not
            // an integer is at least 0.00017 below the next one, so a shift by half of that decides.
            return roundedInteger(hn::Sub(scaled, hn::Set(df, 0.5F - 0.000085F)));
        } else {
            // For 16-bit samples the error is below 0.03, so the nearest integer is the result or one more.
            // The remainder is small: its low 32 bits hold its sign, although the squares need 36 bits.
            constexpr int shift = phases == 4 ? 2 : 1;
            const VI integer = roundedInteger(scaled);
            const VI root = hn::ShiftLeft<shift>(integer);
            const VI remainder = hn::Sub(
                hn::Add(hn::Mul(light.integerX, light.integerX), hn::Mul(light.integerY, light.integerY)),
                hn::Mul(root, root));
            return hn::Add(integer, hn::ShiftRight<31>(remainder));
        }
    }
}

template <size_t part, class Source, int phases>
HWY_INLINE VI amplitudeOf(const Axes<Source, phases>& axes) {
    if constexpr (phases == 1) {
        return hn::Abs(lanesOf<part>(axes.x));
    } else {
        return scaledLength<Source, phases>(lightVector<part>(axes));
    }
}

template <class Source, int phases>
HWY_INLINE typename Source::V sampleSum(BlockRows rows) {
    auto sum = Source::emptySum(phases);
    for (int phase = 0; phase < phases; ++phase) {
        sum = Source::addSum(sum, rows[phase]);
    }
    return sum;
}

#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#endif
