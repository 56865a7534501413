#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include "plugins/zplToF/pic/ToFPicGuard.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "zuCore/CkPicBufAPI.h"

#include <algorithm>
#include <array>

namespace {

/// Position of a phases count in the kernel tables; -1 when it is not supported.
int phasesIndex(int phases) {
    switch (phases) {
    case 1:
        return 0;
    case 2:
        return 1;
    case 4:
        return 2;
    case 8:
        return 3;
    default:
        return -1;
    }
}

/// Whether the stack of an unsupported phases count fits; a count below 1 asks for no rows.
bool fitsAnyway(const SkPicBuf& source, const SkPicBuf& result, int phases) {
    return phases <= 0 || ToFPicGuard::holdsStack(source, result, quint64(phases));
}

/// Calls row(sourceRows, resultRow) for every row of the result.
template <class Row>
void forEachRow(const SkPicBuf& source, SkPicBuf& result, int phases, const std::array<quint32, 8>& firstRows,
                const Row& row) {
    std::array<const quint8*, 8> sourceRows{};
    for (quint32 y = 0; y < result.height; ++y) {
        for (size_t phase = 0; phase < size_t(phases); ++phase) {
            sourceRows[phase] = source.row(firstRows[phase] + y);
        }
        row(sourceRows.data(), result.row(y));
    }
}

bool processToInteger(const SkPicBuf& source, SkPicBuf& result, int phases,
                      const CkToFPicAPI::AngleList* angles, const SkToFKernels::StackedRow (&kernels)[4]) {
    const int index = phasesIndex(phases);
    if (index < 0) {
        return fitsAnyway(source, result, phases);
    }
    std::array<quint32, 8> firstRows{};
    if (!ToFPicGuard::locatePhases(source, result, phases, angles, firstRows)) {
        return false;
    }
    const SkToFKernels::StackedRow kernel = kernels[index];
    forEachRow(source, result, phases, firstRows, [&](const quint8* const* sourceRows, quint8* resultRow) {
        kernel(sourceRows, resultRow, result.width);
    });
    return true;
}

void refreshRange(SkPicBuf& result) {
    float minimum = 0.0F;
    float maximum = 0.0F;
    CkPicBufAPI::CalcFloatDataMinMax(result, minimum, maximum, false);
    result.minValue = minimum;
    result.maxValue = maximum;
}

/// Pixels without signal carry the worst confidence of the frame instead of a perfect one.
void fillDarkPixels(SkPicBuf& result, const SkToFKernels& kernels, const SkToFRowStats& stats) {
    if (!stats.bDark || stats.fWorst == 0.0F) {
        return;
    }
    for (quint32 y = 0; y < result.height; ++y) {
        kernels.fillDark(result.row(y), result.width, stats.fWorst);
    }
}

bool processToFloat(const SkPicBuf& source, SkPicBuf& result, int phases,
                    const CkToFPicAPI::AngleList* angles, const SkToFKernels& kernels,
                    const SkToFKernels::StackedFloatRow (&rowKernels)[4], SkToFRowStats& stats) {
    const int index = phasesIndex(phases);
    if (index < 0) {
        if (!fitsAnyway(source, result, phases)) {
            return false;
        }
        refreshRange(result);
        return true;
    }
    std::array<quint32, 8> firstRows{};
    if (!ToFPicGuard::locatePhases(source, result, phases, angles, firstRows)) {
        return false;
    }
    const SkToFKernels::StackedFloatRow kernel = rowKernels[index];
    forEachRow(source, result, phases, firstRows, [&](const quint8* const* sourceRows, quint8* resultRow) {
        kernel(sourceRows, resultRow, result.width, stats);
    });
    if (result.channels == 2) {
        fillDarkPixels(result, kernels, stats);
    }
    if (kernels.bRangeRidesAlong) {
        // The worst confidence takes the place of zeros; as long as it is 0 itself, zeros remain.
        const bool zerosRemain = stats.bDark && stats.fWorst == 0.0F;
        result.minValue = zerosRemain ? std::min(stats.fMinimum, 0.0F) : stats.fMinimum;
        result.maxValue = std::max(stats.fMaximum, stats.fWorst);
    } else {
        refreshRange(result);
    }
    return true;
}

/// Index of a two-tap source's sample width; -1 for anything else.
int twoTapIndex(const SkPicBuf& source) {
    if (!CkToFPicAPI::isRawX2ToFABPic(source, nullptr)) {
        return -1;
    }
    if (source.dataType == EkImageDataType::UInt8) {
        return 0;
    }
    return source.dataType == EkImageDataType::UInt16 ? 1 : -1;
}

/// Index of a difference source's sample width; -1 for anything else.
int differenceIndex(const SkPicBuf& source) {
    if (!CkToFPicAPI::isRawToFAminBPic(source, nullptr)) {
        return -1;
    }
    return source.dataType == EkImageDataType::Int8 ? 0 : 1;
}

} // namespace

bool CkToFPicAPI::rawX2PicToPhaseShift_Confidence(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                                  const AngleList* pAngles) {
    const int width = twoTapIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, EkImageDataType::Float32, 2)) {
        return false;
    }
    const SkToFKernels& kernels = ToFKernelChoice::active();
    SkToFRowStats stats;
    return processToFloat(source, result, iPhases, pAngles, kernels, kernels.phaseConfidence[width], stats);
}

bool CkToFPicAPI::rawAminBPicToPhaseShift(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                          const AngleList* pAngles) {
    const int width = differenceIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, EkImageDataType::Float32, 1)) {
        return false;
    }
    const SkToFKernels& kernels = ToFKernelChoice::active();
    SkToFRowStats stats;
    return processToFloat(source, result, iPhases, pAngles, kernels, kernels.phase[width], stats);
}

bool CkToFPicAPI::rawX2PicToIntensity(const SkPicBuf& source, SkPicBuf& result, int iPhases) {
    const int width = twoTapIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, source.dataType, 1)) {
        return false;
    }
    return processToInteger(source, result, iPhases, nullptr, ToFKernelChoice::active().intensity[width]);
}

bool CkToFPicAPI::rawX2PicToAmplitude(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                      const AngleList* pAngles) {
    const int width = twoTapIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, source.dataType, 1)) {
        return false;
    }
    return processToInteger(source, result, iPhases, pAngles, ToFKernelChoice::active().amplitude[width]);
}

bool CkToFPicAPI::rawAminBPicToAmplitude(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                         const AngleList* pAngles) {
    const int width = differenceIndex(source);
    if (width < 0) {
        return false;
    }
    const auto resultType = width == 0 ? EkImageDataType::UInt8 : EkImageDataType::UInt16;
    if (!ToFPicGuard::isPair(source, result, resultType, 1)) {
        return false;
    }
    return processToInteger(source, result, iPhases, pAngles,
                            ToFKernelChoice::active().amplitudeOfDifference[width]);
}

bool CkToFPicAPI::rawX2PicToRawAminB(const SkPicBuf& source, SkPicBuf& result) {
    // A picture that was converted before is left alone; other layouts are converted when their types fit.
    if (!isRawX2ToFABPic(source, nullptr) && isRawToFAminBPic(result, nullptr) &&
        source.width == result.width && source.height == result.height) {
        return false;
    }

    const bool narrow = source.dataType == EkImageDataType::UInt8;
    if (!narrow && source.dataType != EkImageDataType::UInt16) {
        return false;
    }
    const auto resultType = narrow ? EkImageDataType::Int8 : EkImageDataType::Int16;
    if (!ToFPicGuard::isPair(source, result, resultType, 1) || result.height > source.height ||
        quint64(source.width) * source.channels < 2 * quint64(result.width)) {
        return false;
    }

    const SkToFKernels::SingleRow kernel = ToFKernelChoice::active().difference[narrow ? 0 : 1];
    for (quint32 y = 0; y < result.height; ++y) {
        kernel(source.row(y), result.row(y), result.width);
    }
    return true;
}
