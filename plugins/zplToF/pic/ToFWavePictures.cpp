#include "plugins/zplToF/pic/ToFWavePictures.h"

#include "plugins/zplToF/pic/ToFPicGuard.h"
#include "plugins/zplToF/pic/ToFPictureKinds.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <array>
#include <bit>

namespace {

using ToFPhaseStack::AngleList;

/// Source, result and arrangement of one operation on stacked phases.
struct Stack {
    const SkPicBuf& source;
    SkPicBuf& result;
    int phases;
    const AngleList* angles; ///< may be null
};

/// Index of a number of phases in the kernel tables; -1 when it is not supported.
int phasesIndex(int phases) {
    return ToFPhases::isSupportedCount(phases) ? std::countr_zero(unsigned(phases)) : -1;
}

/// Whether a stack of an unsupported number of phases fits; a number below 1 needs no rows.
bool fitsUnsupported(const Stack& stack) {
    return stack.phases <= 0 || ToFPhaseStack::holds(stack.source, stack.result, quint64(stack.phases));
}

/// Calls row(sourceRows, resultRow) for every row of the result. False when a phase is outside the source.
template <class Row>
bool forEachRow(const Stack& stack, const Row& row) {
    std::array<quint32, 8> firstRows{};
    if (!ToFPhaseStack::locate(stack.source, stack.result, stack.phases, stack.angles, firstRows)) {
        return false;
    }
    std::array<const quint8*, 8> sourceRows{};
    for (quint32 y = 0; y < stack.result.height; ++y) {
        for (size_t phase = 0; phase < size_t(stack.phases); ++phase) {
            sourceRows[phase] = stack.source.row(firstRows[phase] + y);
        }
        row(sourceRows.data(), stack.result.row(y));
    }
    return true;
}

bool processToInteger(const Stack& stack, const SkToFKernels::StackedRow (&kernels)[4]) {
    const int index = phasesIndex(stack.phases);
    if (index < 0) {
        return fitsUnsupported(stack);
    }
    const SkToFKernels::StackedRow kernel = kernels[index];
    const size_t width = stack.result.width;
    return forEachRow(stack, [kernel, width](const quint8* const* sourceRows, quint8* resultRow) {
        kernel(sourceRows, resultRow, width);
    });
}

void refreshRange(SkPicBuf& result) {
    float minimum = 0.0F;
    float maximum = 0.0F;
    CkPicBufAPI::CalcFloatDataMinMax(result, minimum, maximum, false);
    result.minValue = minimum;
    result.maxValue = maximum;
}

/// Gives pixels without signal the worst confidence of the picture: the kernels leave 0, the best one.
void fillDarkPixels(SkPicBuf& result, const SkToFKernels& kernels, const SkToFRowStats& stats) {
    if (!stats.bDark || stats.fWorst == 0.0F) {
        return;
    }
    for (quint32 y = 0; y < result.height; ++y) {
        kernels.fillDark(result.row(y), result.width, stats.fWorst);
    }
}

bool processToFloat(const Stack& stack, const SkToFKernels& kernels,
                    const SkToFKernels::StackedFloatRow (&rowKernels)[4]) {
    SkPicBuf& result = stack.result;
    const int index = phasesIndex(stack.phases);
    if (index < 0) {
        if (!fitsUnsupported(stack)) {
            return false;
        }
        refreshRange(result);
        return true;
    }
    const SkToFKernels::StackedFloatRow kernel = rowKernels[index];
    SkToFRowStats stats;
    const bool located = forEachRow(stack, [&](const quint8* const* sourceRows, quint8* resultRow) {
        kernel(sourceRows, resultRow, result.width, stats);
    });
    if (!located) {
        return false;
    }
    if (result.channels == 2) {
        fillDarkPixels(result, kernels, stats);
    }
    if (kernels.bTracksRange) {
        // fillDarkPixels has replaced every zero confidence, unless the worst confidence is 0 itself.
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
    if (!ToFPictureKinds::isTwoTaps(source, nullptr)) {
        return -1;
    }
    if (source.dataType == EkImageDataType::UInt8) {
        return 0;
    }
    return source.dataType == EkImageDataType::UInt16 ? 1 : -1;
}

/// Index of a difference source's sample width; -1 for anything else.
int differenceIndex(const SkPicBuf& source) {
    if (!ToFPictureKinds::isDifference(source, nullptr)) {
        return -1;
    }
    return source.dataType == EkImageDataType::Int8 ? 0 : 1;
}

} // namespace

bool ToFWavePictures::phaseShiftAndConfidence(const SkPicBuf& source, SkPicBuf& result, int phases,
                                              const AngleList* angles) {
    const int width = twoTapIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, EkImageDataType::Float32, 2)) {
        return false;
    }
    const SkToFKernels& kernels = ToFKernelChoice::active();
    return processToFloat({source, result, phases, angles}, kernels, kernels.phaseConfidence[width]);
}

bool ToFWavePictures::phaseShiftOfDifference(const SkPicBuf& source, SkPicBuf& result, int phases,
                                             const AngleList* angles) {
    const int width = differenceIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, EkImageDataType::Float32, 1)) {
        return false;
    }
    const SkToFKernels& kernels = ToFKernelChoice::active();
    return processToFloat({source, result, phases, angles}, kernels, kernels.phase[width]);
}

bool ToFWavePictures::intensity(const SkPicBuf& source, SkPicBuf& result, int phases) {
    const int width = twoTapIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, source.dataType, 1)) {
        return false;
    }
    return processToInteger({source, result, phases, nullptr}, ToFKernelChoice::active().intensity[width]);
}

bool ToFWavePictures::amplitude(const SkPicBuf& source, SkPicBuf& result, int phases,
                                const AngleList* angles) {
    const int width = twoTapIndex(source);
    if (width < 0 || !ToFPicGuard::isPair(source, result, source.dataType, 1)) {
        return false;
    }
    return processToInteger({source, result, phases, angles}, ToFKernelChoice::active().amplitude[width]);
}

bool ToFWavePictures::amplitudeOfDifference(const SkPicBuf& source, SkPicBuf& result, int phases,
                                            const AngleList* angles) {
    const int width = differenceIndex(source);
    if (width < 0) {
        return false;
    }
    const auto resultType = width == 0 ? EkImageDataType::UInt8 : EkImageDataType::UInt16;
    if (!ToFPicGuard::isPair(source, result, resultType, 1)) {
        return false;
    }
    return processToInteger({source, result, phases, angles},
                            ToFKernelChoice::active().amplitudeOfDifference[width]);
}

bool ToFWavePictures::difference(const SkPicBuf& source, SkPicBuf& result) {
    // A repeated conversion is refused; other layouts are converted when their types fit.
    if (!ToFPictureKinds::isTwoTaps(source, nullptr) && ToFPictureKinds::isDifference(result, nullptr) &&
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
