// Compiled once for every instruction set.

#include "plugins/zplToF/cloud/ToFCloudVectorSteps.h"
#include "plugins/zplToF/pic/kernels/SimdTargets.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "plugins/zplToF/cloud/ToFCloudVectorSteps.cpp"

#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// After Highway's, which chooses the target.
#include "plugins/zplToF/cloud/ToFCloudPointWriter-inl.h"

#include <algorithm>
#include <cmath>
#include <limits>

HWY_BEFORE_NAMESPACE();
namespace tofSimd {
namespace HWY_NAMESPACE {

// Without vectors the plain loop is used.
#if HWY_TARGET == HWY_SCALAR || HWY_TARGET == HWY_EMU128

void addSteps(SkToFCloudSteps&) {}

#else

namespace {

using Floats = hn::ScalableTag<float>;
using Halves = hn::Half<Floats>;
using Doubles = hn::RepartitionToWide<Floats>;
using Integers = hn::RebindToSigned<Floats>;
using Counts = hn::RebindToUnsigned<Floats>;
using FloatV = hn::Vec<Floats>;
using FloatM = hn::Mask<Floats>;

HWY_INLINE FloatM isFinite(FloatV v) {
    return hn::Le(hn::Abs(v), hn::Set(Floats(), std::numeric_limits<float>::max()));
}

/// Factor per pixel times distance in double precision, as a float.
HWY_INLINE FloatV timesDistance(hn::Vec<Doubles> lowFactors, hn::Vec<Doubles> highFactors, FloatV distance) {
    const Doubles dd;
    const Floats df;
    const Halves dh;
    const auto low = hn::Mul(lowFactors, hn::PromoteTo(dd, hn::LowerHalf(dh, distance)));
    const auto high = hn::Mul(highFactors, hn::PromoteTo(dd, hn::UpperHalf(dh, distance)));
    return hn::Combine(df, hn::DemoteTo(dh, high), hn::DemoteTo(dh, low));
}

HWY_INLINE FloatV wrap(FloatV distance, float fRange) {
    const Floats df;
    const auto range = hn::Set(df, fRange);
    const auto negative = hn::Lt(distance, hn::Zero(df));
    if (HWY_LIKELY(hn::AllFalse(df, hn::Lt(distance, hn::Neg(range))))) {
        return hn::IfThenElse(negative, hn::Add(distance, range), distance);
    }
    // More than one turn is rare, and exact only in double precision.
    HWY_ALIGN float lanes[hn::MaxLanes(df)];
    hn::Store(distance, df, lanes);
    for (size_t i = 0; i < hn::Lanes(df); i++) {
        lanes[i] = wrapDistance(lanes[i], fRange);
    }
    return hn::Load(df, lanes);
}

/// Vector form of SkToFConfidenceRule::accepts.
HWY_INLINE FloatM passesConfidence(FloatV confidence, const SkToFCloudScales& scales) {
    const Floats df;
    const auto above = hn::Gt(confidence, hn::Set(df, scales.confidence.threshold));
    const auto passes = hn::And(isFinite(confidence), hn::Not(above));
    return scales.confidence.zeroIsInvalid ? hn::And(passes, hn::Ne(confidence, hn::Zero(df))) : passes;
}

HWY_INLINE FloatV sceneDepth(FloatV depth, const SkToFCloudScales& scales) {
    const Floats df;
    const auto half = hn::Set(df, scales.zHalf);
    const auto scaled = hn::Mul(depth, hn::Set(df, scales.zScale));
    return scales.floatPicture ? hn::Sub(half, scaled) : hn::Sub(scaled, half);
}

HWY_INLINE void storeKept(FloatM kept, size_t i, SkToFCloudChunk& chunk) {
    const Counts dc;
    hn::Store(hn::IfThenElseZero(hn::RebindMask(dc, kept), hn::Set(dc, 1U)), dc, chunk.kept + i);
}

HWY_INLINE FloatM readsKept(const SkToFCloudChunkSource& source, size_t i, FloatV value,
                            const SkToFCloudScales& scales) {
    const auto kept = isFinite(value);
    return source.pConfidences
               ? hn::And(kept, passesConfidence(hn::LoadU(Floats(), source.pConfidences + i), scales))
               : kept;
}

void placeThroughLens(const SkToFCloudInput& input, const SkToFCloudChunkSource& source, size_t uiPixels,
                      SkToFCloudChunk& chunk) {
    const Floats df;
    const Doubles dd;
    const SkToFCloudScales& s = input.scales;
    const auto xyScale = hn::Set(df, s.xyScale);
    const auto rowFactor = hn::Set(dd, s.chipYMM(source.uiRow) / s.focalMM);
    const auto zOffset = hn::Set(df, s.zBase > 0.0F ? s.zBase : 0.0F);
    const double* columns = input.pColumnFactors + source.uiColumn;
    for (size_t i = 0; i < uiPixels; i += hn::Lanes(df)) {
        const auto value = hn::LoadU(df, source.pValues + i);
        auto kept = readsKept(source, i, value, s);
        auto d = wrap(hn::Add(hn::Mul(value, hn::Set(df, s.distScale)), hn::Set(df, s.zBase)), s.rangeMM);
        if (source.pFactors) {
            d = hn::Mul(d, hn::LoadU(df, source.pFactors + i));
        }
        const auto x =
            timesDistance(hn::LoadU(dd, columns + i), hn::LoadU(dd, columns + i + hn::Lanes(dd)), d);
        const auto y = timesDistance(rowFactor, rowFactor, d);
        const auto z = hn::Sub(d, zOffset);
        const auto sceneX = hn::Mul(x, xyScale);
        const auto sceneY = hn::Mul(y, xyScale);
        const auto sceneZ = sceneDepth(z, s);
        kept = hn::And(kept, hn::And(hn::And(isFinite(x), isFinite(y)), isFinite(z)));
        kept = hn::And(kept, hn::And(hn::And(isFinite(sceneX), isFinite(sceneY)), isFinite(sceneZ)));
        hn::Store(x, df, chunk.x + i);
        hn::Store(y, df, chunk.y + i);
        hn::Store(z, df, chunk.z + i);
        hn::Store(sceneX, df, chunk.sceneX + i);
        hn::Store(sceneY, df, chunk.sceneY + i);
        hn::Store(sceneZ, df, chunk.sceneZ + i);
        storeKept(kept, i, chunk);
    }
}

void placeNormalised(const SkToFCloudInput& input, const SkToFCloudChunkSource& source, size_t uiPixels,
                     SkToFCloudChunk& chunk) {
    const Floats df;
    const Doubles dd;
    const Halves dh;
    const SkToFCloudScales& s = input.scales;
    const auto sceneY = hn::Set(df, float(s.centreY - source.uiRow) * s.xyScale);
    const auto xyScale = hn::Set(df, s.xyScale);
    const auto zBase = hn::Set(df, s.zBase);
    const double* columns = input.pColumnFactors + source.uiColumn;
    for (size_t i = 0; i < uiPixels; i += hn::Lanes(df)) {
        const auto value = hn::LoadU(df, source.pValues + i);
        const auto x = hn::Combine(df, hn::DemoteTo(dh, hn::LoadU(dd, columns + i + hn::Lanes(dd))),
                                   hn::DemoteTo(dh, hn::LoadU(dd, columns + i)));
        const auto z = hn::Sub(value, zBase);
        const auto sceneZ = sceneDepth(z, s);
        hn::Store(hn::Mul(x, xyScale), df, chunk.sceneX + i);
        hn::Store(sceneY, df, chunk.sceneY + i);
        hn::Store(sceneZ, df, chunk.sceneZ + i);
        storeKept(hn::And(readsKept(source, i, value, s), hn::And(isFinite(z), isFinite(sceneZ))), i, chunk);
    }
}

void colour(const float* pValues, size_t uiPixels, const SkToFCloudScales& scales, SkToFCloudChunk& chunk) {
    if (scales.useGamma) {
        for (size_t i = 0; i < uiPixels; i++) {
            chunk.colours[i] = chunk.kept[i] ? colourIndex(pValues[i], scales) : 0;
        }
        return;
    }
    const Floats df;
    const Integers di;
    for (size_t i = 0; i < uiPixels; i += hn::Lanes(df)) {
        auto index = hn::LoadU(df, pValues + i);
        if (scales.useContrast) {
            const auto above =
                hn::Mul(hn::Sub(index, hn::Set(df, scales.base)), hn::Set(df, scales.outRange));
            index = hn::Add(hn::Div(above, hn::Set(df, scales.inRange)), hn::Set(df, scales.outLow));
        }
        const auto clamped = hn::Min(index, hn::Set(df, 255.0F));
        const auto inside = hn::IfThenElseZero(hn::Gt(index, hn::Zero(df)), clamped);
        hn::Store(hn::ConvertTo(di, inside), di, chunk.colours + i);
    }
}

/// Returns the number of points written.
template <bool Quads, bool Streamed = false>
size_t writeChunk(const SkToFCloudChunk& chunk, size_t uiPixels, bool bExportChip, float fEdge,
                  const SkToFCloudTarget& target) {
    CkToFPointWriter<Quads, Streamed> writer(target.pVertices, target.pExport, fEdge, target.colours);
    for (size_t i = 0; i < uiPixels; i += 4) {
        const SkToFFourPoints scene(chunk.sceneX + i, chunk.sceneY + i, chunk.sceneZ + i);
        const SkToFFourPoints exported =
            bExportChip ? SkToFFourPoints(chunk.x + i, chunk.y + i, chunk.z + i) : scene;
        writer.write(scene.first, exported.first, chunk.colours[i], chunk.kept[i]);
        writer.write(scene.second, exported.second, chunk.colours[i + 1], chunk.kept[i + 1]);
        writer.write(scene.third, exported.third, chunk.colours[i + 2], chunk.kept[i + 2]);
        writer.write(scene.fourth, exported.fourth, chunk.colours[i + 3], chunk.kept[i + 3]);
    }
    return size_t(writer.exportEnd() - target.pExport) / 3;
}

void computeChunk(const SkToFCloudInput& input, const SkToFCloudChunkSource& source, size_t uiPixels,
                  SkToFCloudChunk& chunk) {
    if (input.scales.useLens) {
        placeThroughLens(input, source, uiPixels, chunk);
    } else {
        placeNormalised(input, source, uiPixels, chunk);
    }
    colour(source.pValues, uiPixels, input.scales, chunk);
}

size_t writePoints(const SkToFCloudInput& input, const SkToFCloudChunk& chunk, size_t uiPixels,
                   const SkToFCloudTarget& target) {
    const SkToFCloudScales& s = input.scales;
    const auto write = input.verticesPerPoint == 1                 ? writeChunk<false>
                       : CkToFCorners::canStream(target.pVertices) ? writeChunk<true, true>
                                                                   : writeChunk<true>;
    return write(chunk, uiPixels, s.useLens, s.pointSpacing, target);
}

void finishWriting() {
    hwy::FlushStream();
}

} // namespace

void addSteps(SkToFCloudSteps& steps) {
    steps.lanes = hn::Lanes(Floats());
    steps.compute = computeChunk;
    steps.write = writePoints;
    steps.finishWriting = finishWriting;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace tofSimd
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

TOF_EXPORT_KERNELS(addSimdCloudSteps, addSteps, SkToFCloudSteps)

#endif
