#include "plugins/zplToF/pic/kernels/SimdTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "plugins/zplToF/pic/kernels/SimdHybrid.cpp"
#include <hwy/foreach_target.h>

#include "plugins/zplToF/pic/kernels/SimdRows-inl.h"
#include "plugins/zplToF/pic/kernels/SimdSections-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {
#if HWY_TARGET != HWY_EMU128 && HWY_TARGET != HWY_SCALAR

using DD = hn::ScalableTag<double>;
using VD = hn::Vec<DD>;

template <typename T, bool wantAmplitude>
struct WindowBlock {
    static constexpr size_t kPixels = kTriplePixels<T>;
    static constexpr size_t kRows = 1;
    static constexpr size_t kSourceBytes = 3 * sizeof(T);
    static constexpr size_t kResultBytes = sizeof(T);

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        const auto windows = Triples<T>::load(rows[0]);
        storeBytes(TripleTag<T>(), Triples<T>::ordered(valueOf(windows)), result);
    }

    static HWY_INLINE TripleVec<T> valueOf(const Triples<T>& windows) {
        const auto x1 = windows.template samplesOf<0>();
        const auto x3 = windows.template samplesOf<2>();
        const auto low = hn::Min(x1, x3);
        if constexpr (wantAmplitude) {
            // x2 + high - 2 low without wider lanes: the excess of x2 over low is added to high - low and may
            // wrap; a deficit is subtracted with saturation at 0.
            const auto x2 = windows.template samplesOf<1>();
            const auto span = hn::Sub(hn::Max(x1, x3), low);
            return hn::Add(hn::SaturatedSub(span, hn::SaturatedSub(low, x2)), hn::SaturatedSub(x2, low));
        } else {
            return low;
        }
    }
};

template <typename T, bool wantAmplitude>
void windowRow(const quint8* source, quint8* result, size_t pixels, int) {
    WindowBlock<T, wantAmplitude> block;
    forEachBlock(&source, result, pixels, block);
}

/// Windows of 32 bits, which are signed. The amplitude needs up to 34 bits: its low 32 come from wrapping
/// sums, and bit 32 from their carry. Wider vectors would need more shuffles per pixel to deinterleave.
template <typename R, bool wantAmplitude>
struct WideWindowBlock {
    using D = TripleTag<int32_t>;
    using UnsignedD = TripleTag<uint32_t>;
    using V = hn::Vec<D>;
    using UnsignedV = hn::Vec<UnsignedD>;
    static constexpr size_t kPixels = hn::MaxLanes(D());
    static constexpr size_t kRows = 1;
    static constexpr size_t kSourceBytes = 12;
    static constexpr size_t kResultBytes = sizeof(R);

    int shift;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        V x1, x2, x3;
        hn::LoadInterleaved3(D(), reinterpret_cast<const int32_t*>(rows[0]), x1, x2, x3);
        const V low = hn::Min(x1, x3);
        if constexpr (wantAmplitude) {
            store(amplitude(low, x2, hn::Max(x1, x3)), result);
        } else {
            // A shift by more than 31 leaves only the sign, as one by 31 does.
            store(hn::BitCast(UnsignedD(), shift == 0 ? low : hn::ShiftRightSame(low, std::min(shift, 31))),
                  result);
        }
    }

private:
    HWY_INLINE UnsignedV amplitude(V low, V x2, V high) const {
        const UnsignedD d;
        // The excess of window 2 over low is added to the span of the others; a deficit is subtracted, down
        // to 0.
        const UnsignedV larger = hn::BitCast(d, hn::Max(x2, low));
        const UnsignedV span = hn::Sub(hn::BitCast(d, high), hn::BitCast(d, low));
        const UnsignedV rest = hn::Sub(span, hn::Min(span, hn::Sub(larger, hn::BitCast(d, x2))));
        const UnsignedV remaining = hn::Add(rest, hn::Sub(larger, hn::BitCast(d, low)));
        if (shift == 0) {
            return remaining;
        }
        const auto carried = hn::Lt(remaining, rest);
        const UnsignedV carry =
            hn::IfThenElseZero(carried, hn::Set(d, shift > 32 ? 0U : uint32_t(1ULL << (32 - shift))));
        return hn::Or(shift > 31 ? hn::Zero(d) : hn::ShiftRightSame(remaining, shift), carry);
    }

    /// Stores the low bits of every lane.
    static HWY_INLINE void store(UnsignedV values, uint8_t* result) {
        if constexpr (sizeof(R) == 4) {
            storeBytes(UnsignedD(), values, result);
        } else {
            // DemoteTo saturates, so the high bits are cleared first.
            const hn::Rebind<R, D> narrow;
            const UnsignedV kept = hn::And(values, hn::Set(UnsignedD(), uint32_t(hwy::LimitsMax<R>())));
            storeBytes(narrow, hn::DemoteTo(narrow, hn::BitCast(D(), kept)), result);
        }
    }
};

template <typename R, bool wantAmplitude>
void wideWindowRow(const quint8* source, quint8* result, size_t pixels, int shift) {
    WideWindowBlock<R, wantAmplitude> block{shift};
    forEachBlock(&source, result, pixels, block);
}

/// Half of a block's quotients in double precision, narrowed.
struct Quotients {
    hn::Vec<hn::Rebind<float, DD>> depth;
    hn::Vec<hn::Rebind<float, DD>> confidence;
};

using HalfI = hn::Vec<hn::Rebind<int32_t, DD>>;

/// Exact up to the divisions: 16-bit samples, their sums and products fit into a double. far is a lane mask.
HWY_INLINE Quotients quotients(HalfI firstSamples, HalfI secondSamples, HalfI ambientSamples, HalfI far,
                               double range) {
    const DD d;
    const hn::Rebind<float, DD> df;
    const VD first = hn::PromoteTo(d, firstSamples);
    const VD second = hn::PromoteTo(d, secondSamples);
    const VD ambient = hn::PromoteTo(d, ambientSamples);
    const VD sum = hn::Add(first, second);
    const VD reflected = hn::Sub(sum, hn::Add(ambient, ambient));
    const VD confidence = hn::Div(hn::Mul(sum, ambient), hn::Mul(hn::Add(first, first), second));
    // Masked, not multiplied: the range may be infinite, and 0 * infinity is NaN.
    const hn::Rebind<int64_t, DD> d64;
    const VD offset = hn::And(hn::BitCast(d, hn::PromoteTo(d64, far)), hn::Set(d, range));
    const VD depth =
        hn::Add(hn::Div(hn::Mul(hn::Sub(second, ambient), hn::Set(d, range)), reflected), offset);
    const auto trusted = hn::Le(confidence, hn::Set(d, 0.9));
    return {hn::DemoteTo(df, hn::IfThenElseZero(trusted, depth)),
            hn::DemoteTo(df, hn::IfThenElseZero(trusted, confidence))};
}

/// What depth and confidence are computed from, in the lane type of the samples.
template <typename Samples>
struct WindowLight {
    decltype(hn::Gt(Samples(), Samples())) near; ///< the pulse returned during windows 1 and 2, not 2 and 3
    Samples first;                               ///< the earlier window with light of the pulse
    Samples second;                              ///< the later one
    Samples ambient;
    Samples reflected;    ///< both windows without ambient light
    Samples aboveAmbient; ///< the later window without ambient light
};

/// Exact: the lanes hold the samples and their sums.
template <typename Samples>
HWY_INLINE WindowLight<Samples> windowLight(Samples a, Samples b, Samples c) {
    const auto near = hn::Gt(a, c);
    const Samples first = hn::IfThenElse(near, a, b);
    const Samples second = hn::IfThenElse(near, b, c);
    const Samples ambient = hn::Min(a, c);
    const Samples reflected = hn::Sub(hn::Add(first, second), hn::Add(ambient, ambient));
    return {near, first, second, ambient, reflected, hn::Sub(second, ambient)};
}

template <typename T>
struct HybridDepthBlock {
    static constexpr size_t kPixels = kFloats;
    static constexpr size_t kRows = 1;
    static constexpr size_t kSourceBytes = 3 * sizeof(T);
    static constexpr size_t kResultBytes = 8;

    double range;

    struct Partial {
        VI first;
        VI second;
        VI ambient;
        VI far;   ///< lane mask
        VI valid; ///< lane mask
    };

    HWY_INLINE Partial begin(BlockRows rows) const {
        const DI di;
        const hn::Rebind<T, DF> dt;
        hn::Vec<hn::Rebind<T, DF>> x1, x2, x3;
        hn::LoadInterleaved3(dt, reinterpret_cast<const T*>(rows[0]), x1, x2, x3);
        const VI a = hn::PromoteTo(di, x1);
        const VI b = hn::PromoteTo(di, x2);
        const VI c = hn::PromoteTo(di, x3);

        const auto light = windowLight(a, b, c);

        // Windows 1 and 2 nearly equal below window 3.
        const auto undecided =
            hn::And(hn::Lt(hn::Abs(hn::Sub(a, b)), hn::Set(di, 3)), hn::Lt(hn::Max(a, b), c));
        // Samples are not negative, so a product of 0 means that one of them is 0.
        const auto measurable = hn::And(hn::And(hn::Gt(light.reflected, hn::Zero(di)),
                                                hn::Gt(hn::Min(light.first, light.second), hn::Zero(di))),
                                        hn::Gt(light.aboveAmbient, hn::Set(di, -1)));
        return {light.first, light.second, light.ambient, hn::Not(hn::VecFromMask(di, light.near)),
                hn::VecFromMask(di, hn::AndNot(undecided, measurable))};
    }

    HWY_INLINE void finish(const Partial& partial, uint8_t* result) const {
        const DF df;
        const hn::Half<DI> dh;
        const Quotients low =
            quotients(hn::LowerHalf(dh, partial.first), hn::LowerHalf(dh, partial.second),
                      hn::LowerHalf(dh, partial.ambient), hn::LowerHalf(dh, partial.far), range);
        const Quotients high =
            quotients(hn::UpperHalf(dh, partial.first), hn::UpperHalf(dh, partial.second),
                      hn::UpperHalf(dh, partial.ambient), hn::UpperHalf(dh, partial.far), range);
        const auto valid = hn::RebindMask(df, hn::MaskFromVec(partial.valid));
        const VF depth = hn::IfThenElseZero(valid, hn::Combine(df, high.depth, low.depth));
        const VF confidence = hn::IfThenElseZero(valid, hn::Combine(df, high.confidence, low.confidence));
        hn::StoreInterleaved2(depth, confidence, df, reinterpret_cast<float*>(result));
    }
};

template <typename T>
void hybridDepthRow(const quint8* source, quint8* result, size_t pixels, double range) {
    forEachBlockInTwoSteps(&source, result, pixels, HybridDepthBlock<T>{range});
}

/// Windows of 32 bits, which are signed. Doubles hold them and their sums exactly. They round a product once,
/// like the plain loop, which converts the exact integer product.
struct WideHybridDepthBlock {
    static constexpr size_t kPixels = hn::MaxLanes(DD());
    static constexpr size_t kRows = 1;
    static constexpr size_t kSourceBytes = 12;
    static constexpr size_t kResultBytes = 8;

    double range;

    HWY_INLINE void operator()(BlockRows rows, uint8_t* result) const {
        const DD d;
        const hn::Rebind<int32_t, DD> di;
        hn::Vec<hn::Rebind<int32_t, DD>> x1, x2, x3;
        hn::LoadInterleaved3(di, reinterpret_cast<const int32_t*>(rows[0]), x1, x2, x3);
        const VD a = hn::PromoteTo(d, x1);
        const VD b = hn::PromoteTo(d, x2);
        const VD c = hn::PromoteTo(d, x3);

        const auto light = windowLight(a, b, c);
        // 0 times negative ambient light is -0 here, but 0 for the integers of the plain loop: adding 0
        // clears the sign.
        const VD zero = hn::Zero(d);
        const VD confidence =
            hn::Div(hn::Add(hn::Mul(hn::Add(light.first, light.second), light.ambient), zero),
                    hn::Mul(hn::Add(light.first, light.first), light.second));
        const VD offset = hn::IfThenZeroElse(light.near, hn::Set(d, range));
        const VD depth =
            hn::Add(hn::Div(hn::Mul(light.aboveAmbient, hn::Set(d, range)), light.reflected), offset);

        const auto undecided =
            hn::And(hn::Le(hn::Abs(hn::Sub(a, b)), hn::Set(d, 2.0)), hn::Lt(hn::Max(a, b), c));
        const auto measurable =
            hn::And(hn::And(hn::Gt(light.reflected, zero), hn::Ge(light.aboveAmbient, zero)),
                    hn::And(hn::Ne(light.first, zero), hn::Ne(light.second, zero)));
        const auto valid = hn::And(hn::AndNot(undecided, measurable), hn::Le(confidence, hn::Set(d, 0.9)));
        const hn::Rebind<float, DD> df;
        hn::StoreInterleaved2(hn::DemoteTo(df, hn::IfThenElseZero(valid, depth)),
                              hn::DemoteTo(df, hn::IfThenElseZero(valid, confidence)), df,
                              reinterpret_cast<float*>(result));
    }
};

void wideHybridDepthRow(const quint8* source, quint8* result, size_t pixels, double range) {
    WideHybridDepthBlock block{range};
    forEachBlock(&source, result, pixels, block);
}

/// Running maximum per lane of the depths with a trusted confidence.
struct LargestDepth {
    VF largest;
    VF limit;

    HWY_INLINE void include(VF depth, VF confidence) {
        const auto trusted = hn::And(hn::Gt(confidence, hn::Zero(DF())), hn::Le(confidence, limit));
        largest = hn::IfThenElse(hn::And(trusted, hn::Gt(depth, largest)), depth, largest);
    }
};

struct LargestDepthBlock : LargestDepth {
    static constexpr size_t kPixels = kFloats;
    static constexpr size_t kRows = 2;
    static constexpr size_t kSourceBytes = 4;
    static constexpr size_t kResultBytes = 0;

    HWY_INLINE void operator()(BlockRows rows, uint8_t*) {
        include(loadBytes(DF(), rows[0]), loadBytes(DF(), rows[1]));
    }
};

struct LargestDepthOfPairsBlock : LargestDepth {
    static constexpr size_t kPixels = kFloats;
    static constexpr size_t kRows = 1;
    static constexpr size_t kSourceBytes = 8;
    static constexpr size_t kResultBytes = 0;

    HWY_INLINE void operator()(BlockRows rows, uint8_t*) {
        VF depth, confidence;
        hn::LoadInterleaved2(DF(), reinterpret_cast<const float*>(rows[0]), depth, confidence);
        include(depth, confidence);
    }
};

/// The first zero found decides the sign of a zero maximum, but lanes do not know which one came first. Once
/// the maximum is 0, only larger depths replace it, so the plain loop repeats at most one row of a picture.
bool isZeroOfUnknownSign(float largest, float maximum) {
    return largest == 0.0F && maximum < 0.0F;
}

float largestDepthRow(const quint8* depth, const quint8* confidence, size_t pixels, float limit,
                      float maximum) {
    LargestDepthBlock block{{hn::Set(DF(), maximum), hn::Set(DF(), limit)}};
    const uint8_t* const rows[] = {depth, confidence};
    forEachBlock(rows, nullptr, pixels, block);
    const float largest = hn::GetLane(hn::MaxOfLanes(DF(), block.largest));
    return isZeroOfUnknownSign(largest, maximum)
               ? ToFKernelChoice::plain().largestDepth(depth, confidence, pixels, limit, maximum)
               : largest;
}

float largestDepthOfPairsRow(const quint8* pairs, const quint8*, size_t pixels, float limit, float maximum) {
    LargestDepthOfPairsBlock block{{hn::Set(DF(), maximum), hn::Set(DF(), limit)}};
    forEachBlock(&pairs, nullptr, pixels, block);
    const float largest = hn::GetLane(hn::MaxOfLanes(DF(), block.largest));
    return isZeroOfUnknownSign(largest, maximum)
               ? ToFKernelChoice::plain().largestDepthOfPairs(pairs, nullptr, pixels, limit, maximum)
               : largest;
}

void addHybrid(SkToFKernels& kernels) {
    kernels.hybridIntensity[0][0] = windowRow<uint8_t, false>;
    kernels.hybridIntensity[1][1] = windowRow<uint16_t, false>;
    kernels.hybridAmplitude[0][0] = windowRow<uint8_t, true>;
    kernels.hybridAmplitude[1][1] = windowRow<uint16_t, true>;
    kernels.hybridIntensity[2][0] = wideWindowRow<uint8_t, false>;
    kernels.hybridIntensity[2][1] = wideWindowRow<uint16_t, false>;
    kernels.hybridIntensity[2][2] = wideWindowRow<uint32_t, false>;
    kernels.hybridAmplitude[2][0] = wideWindowRow<uint8_t, true>;
    kernels.hybridAmplitude[2][1] = wideWindowRow<uint16_t, true>;
    kernels.hybridAmplitude[2][2] = wideWindowRow<uint32_t, true>;
    kernels.hybridDepth[0] = hybridDepthRow<uint8_t>;
    kernels.hybridDepth[1] = hybridDepthRow<uint16_t>;
    kernels.hybridDepth[2] = wideHybridDepthRow;
    kernels.mergeSections[0][1] = mergeSectionsRow<uint8_t, uint16_t>;
    kernels.mergeSections[0][2] = mergeSectionsRow<uint8_t, uint32_t>;
    kernels.mergeSections[1][1] = mergeSectionsRow<uint16_t, uint16_t>;
    kernels.mergeSections[1][2] = mergeSectionsRow<uint16_t, uint32_t>;
    kernels.largestDepth = largestDepthRow;
    kernels.largestDepthOfPairs = largestDepthOfPairsRow;
}
#else
void addHybrid(SkToFKernels&) {}
#endif
} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
TOF_EXPORT_KERNELS(addSimdHybridKernels, addHybrid, SkToFKernels)
#endif
