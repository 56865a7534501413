#include "plugins/zplToF/pic/ToFHybridPictures.h"

#include "plugins/zplToF/pic/ToFPhaseStack.h"
#include "plugins/zplToF/pic/ToFPicGuard.h"
#include "plugins/zplToF/pic/ToFPictureKinds.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/SampleVisitor.h"
#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <bit>
#include <type_traits>

namespace {

constexpr double kDefaultPulseNs = 80.0;
// m; in this order of operations the double nearest to 11.99169832.
constexpr double kDefaultDepthRange = kSpeedOfLight * kDefaultPulseNs / 2e9;
static_assert(kDefaultDepthRange == 11.99169832);
constexpr double kSaturationShare = 0.9;

/// Index of an unsigned sample width in the kernel tables; -1 for anything else.
int unsignedIndex(EkImageDataType dataType) {
    // Counted from 1, because the visitor returns 0 for the types it does not know.
    const int position = visitIntegerSamples(dataType, [](auto zero) {
        using Sample = decltype(zero);
        constexpr bool kSupported = std::is_unsigned_v<Sample> && sizeof(Sample) <= sizeof(quint32);
        return kSupported ? std::countr_zero(sizeof(Sample)) + 1 : 0;
    });
    return position - 1;
}

/// Low bits that a narrowing conversion drops: those the samples use beyond the result's bits.
int narrowingShift(const SkPicBuf& source, const SkPicBuf& result) {
    if (source.dataType != EkImageDataType::UInt32 || result.dataType == EkImageDataType::UInt32) {
        return 0;
    }
    qint64 shift = qint64(source.bitsPerChannel) - qint64(result.bitsPerChannel);
    quint32 usedBits = 0;
    if (shift >= 1 && CkPicBufAPI::DetectColorBitDepth(source, usedBits, false)) {
        shift = qint64(usedBits) - qint64(result.bitsPerChannel);
    }
    return int(std::clamp<qint64>(shift, 0, 63));
}

bool processWindows(const SkPicBuf& source, SkPicBuf& result,
                    const SkToFKernels::ShiftedRow (&kernels)[3][3]) {
    const int sourceIndex = unsignedIndex(source.dataType);
    const int resultIndex = unsignedIndex(result.dataType);
    if (sourceIndex < 0 || resultIndex < 0 || kernels[sourceIndex][resultIndex] == nullptr) {
        return false;
    }
    if (!ToFPicGuard::isPair(source, result, result.dataType, 1) || result.height > source.height) {
        return false;
    }
    const int shift = narrowingShift(source, result);
    for (quint32 y = 0; y < result.height; ++y) {
        kernels[sourceIndex][resultIndex](source.row(y), result.row(y), result.width, shift);
    }
    return true;
}

/// The smallest sample that counts as saturated. Bit depths above 64 are taken as 64.
quint16 saturationThreshold(quint32 bitsPerChannel) {
    const quint64 largest = bitsPerChannel >= 64 ? ~quint64(0) : (quint64(1) << bitsPerChannel) - 1;
    return quint16(quint64(double(largest) * kSaturationShare));
}

} // namespace

bool ToFHybridPictures::intensity(const SkPicBuf& source, SkPicBuf& result) {
    return ToFPictureKinds::isHybrid(source) &&
           processWindows(source, result, ToFKernelChoice::active().hybridIntensity);
}

bool ToFHybridPictures::amplitude(const SkPicBuf& source, SkPicBuf& result) {
    return ToFPictureKinds::isHybrid(source) &&
           processWindows(source, result, ToFKernelChoice::active().hybridAmplitude);
}

bool ToFHybridPictures::depthAndConfidence(const SkPicBuf& source, SkPicBuf& result, float pulseDurationS) {
    const int index = unsignedIndex(source.dataType);
    if (index < 0 || !ToFPictureKinds::isHybrid(source) ||
        !ToFPicGuard::isPair(source, result, EkImageDataType::Float32, 2) || result.height > source.height) {
        return false;
    }
    const double range =
        pulseDurationS > 0.0F ? double(pulseDurationS) * kSpeedOfLight * 0.5 : kDefaultDepthRange;
    const SkToFKernels::DepthRow kernel = ToFKernelChoice::active().hybridDepth[index];
    for (quint32 y = 0; y < result.height; ++y) {
        kernel(source.row(y), result.row(y), result.width, range);
    }
    return true;
}

bool ToFHybridPictures::mergeSections(const SkPicBuf& source, SkPicBuf& result) {
    const int sourceIndex = unsignedIndex(source.dataType);
    const int resultIndex = unsignedIndex(result.dataType);
    if (source.channels != 3 || sourceIndex < 0 || sourceIndex > 1 || resultIndex < 1) {
        return false;
    }
    if (!ToFPicGuard::isPair(source, result, result.dataType, 3)) {
        return false;
    }
    const quint32 sections = source.height / result.height;
    if (sections < 2) {
        return false;
    }

    const SkToFKernels& kernels = ToFKernelChoice::active();
    const SkToFKernels::SectionRow kernel = kernels.mergeSections[sourceIndex][resultIndex];
    const size_t sectionBytes = size_t(result.height) * source.lineSize;
    const quint16 threshold = saturationThreshold(source.bitsPerChannel);
    quint32 used = 0;
    for (quint32 y = 0; y < result.height; ++y) {
        kernel({source.row(y), sectionBytes, sections, threshold}, result.row(y), result.width, used);
    }

    if (result.bitsPerChannel > 8) {
        if (!kernels.bTracksRange) {
            CkPicBufAPI::DetectColorBitDepth(result, result.bitsPerChannel, false);
        } else if (used != 0) {
            result.bitsPerChannel = quint32(std::bit_width(used));
        }
    }
    return true;
}

bool ToFHybridPictures::interleaveWindows(const SkPicBuf& source, SkPicBuf& result) {
    if (source.channels != 1 || source.colorFilterArray != EkColorFilterArray::None || result.channels != 3) {
        return false;
    }
    const int index = unsignedIndex(source.dataType);
    if (index < 0 || index > 1 || result.dataType != source.dataType) {
        return false;
    }
    if (result.width == 0 || result.height == 0) {
        return true;
    }
    if (!ToFPicGuard::isPair(source, result, source.dataType, 3) ||
        !ToFPhaseStack::holds(source, result, 3)) {
        return false;
    }

    const SkToFKernels::StackedRow kernel = ToFKernelChoice::active().interleaveThree[index];
    for (quint32 y = 0; y < result.height; ++y) {
        // Stacked bottom up: X1 is the last sub-image.
        const quint8* const rows[] = {source.row(2 * result.height + y), source.row(result.height + y),
                                      source.row(y)};
        kernel(rows, result.row(y), result.width);
    }
    if (index == 1 && source.bitsPerChannel == 16 && result.bitsPerChannel == 12) {
        return CkPicBufAPI::ShiftBits(result, -4, false);
    }
    return true;
}
