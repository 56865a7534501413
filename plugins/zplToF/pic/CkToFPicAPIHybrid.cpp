#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include "plugins/zplToF/pic/ToFPicGuard.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <bit>

namespace {

constexpr double kDefaultDepthRange = 11.99169832; // m, a pulse of 80 ns
constexpr double kSaturationShare = 0.9;

/// Index of an unsigned sample width in the kernel tables; -1 for anything else.
int unsignedIndex(EkImageDataType dataType) {
    switch (dataType) {
    case EkImageDataType::UInt8:
        return 0;
    case EkImageDataType::UInt16:
        return 1;
    case EkImageDataType::UInt32:
        return 2;
    default:
        return -1;
    }
}

/// Bits that a narrowing conversion drops: what the samples use beyond the result's bits.
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

/// Largest sample that counts as unsaturated plus one. Pictures that claim 64 bits or more are taken as 64.
quint16 saturationThreshold(quint32 bitsPerChannel) {
    const quint64 largest = bitsPerChannel >= 64 ? ~quint64(0) : (quint64(1) << bitsPerChannel) - 1;
    return quint16(quint64(double(largest) * kSaturationShare));
}

bool isFloatPicture(const SkPicBuf& picture, quint32 channels) {
    return picture.dataType == EkImageDataType::Float32 && picture.channels == channels &&
           ToFPicGuard::isUsable(picture);
}

/// Stores the largest depth found over all rows; below 0 there was none.
template <class Row>
bool storeLargest(quint32 rows, float& maximum, const Row& largestOfRow) {
    float largest = -1.0F;
    for (quint32 y = 0; y < rows; ++y) {
        largest = largestOfRow(y, largest);
    }
    if (largest < 0.0F) {
        return false;
    }
    maximum = largest;
    return true;
}

} // namespace

bool CkToFPicAPI::rawHybridToIntensity(const SkPicBuf& source, SkPicBuf& result) {
    return isRawToFHybridPic(source, nullptr) &&
           processWindows(source, result, ToFKernelChoice::active().hybridIntensity);
}

bool CkToFPicAPI::rawHybridToAmplitude(const SkPicBuf& source, SkPicBuf& result) {
    return isRawToFHybridPic(source, nullptr) &&
           processWindows(source, result, ToFKernelChoice::active().hybridAmplitude);
}

bool CkToFPicAPI::rawHybridToDepth_Confidence(const SkPicBuf& source, SkPicBuf& result,
                                              float fPulseDurationS) {
    const int index = unsignedIndex(source.dataType);
    if (index < 0 || !isRawToFHybridPic(source, nullptr) ||
        !ToFPicGuard::isPair(source, result, EkImageDataType::Float32, 2) || result.height > source.height) {
        return false;
    }
    const double range =
        fPulseDurationS > 0.0F ? double(fPulseDurationS) * kSpeedOfLight * 0.5 : kDefaultDepthRange;
    const SkToFKernels::DepthRow kernel = ToFKernelChoice::active().hybridDepth[index];
    for (quint32 y = 0; y < result.height; ++y) {
        kernel(source.row(y), result.row(y), result.width, range);
    }
    return true;
}

bool CkToFPicAPI::processHdrFromImageSections(const SkPicBuf& source, SkPicBuf& result) {
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
        kernel(source.row(y), sectionBytes, sections, threshold, result.row(y), result.width, used);
    }

    if (result.bitsPerChannel > 8) {
        if (!kernels.bRangeRidesAlong) {
            CkPicBufAPI::DetectColorBitDepth(result, result.bitsPerChannel, false);
        } else if (used != 0) {
            result.bitsPerChannel = quint32(std::bit_width(used));
        }
    }
    return true;
}

bool CkToFPicAPI::convertTestImageToHybridTof(const SkPicBuf& source, SkPicBuf& result) {
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
        !ToFPicGuard::holdsStack(source, result, 3)) {
        return false;
    }

    const SkToFKernels::StackedRow kernel = ToFKernelChoice::active().interleaveThree[index];
    for (quint32 y = 0; y < result.height; ++y) {
        // The first window stands at the bottom.
        const quint8* const rows[] = {source.row(2 * result.height + y), source.row(result.height + y),
                                      source.row(y)};
        kernel(rows, result.row(y), result.width);
    }
    if (index == 1 && source.bitsPerChannel == 16 && result.bitsPerChannel == 12) {
        return CkPicBufAPI::ShiftBits(result, -4, false);
    }
    return true;
}

bool CkToFPicAPI::findMaxDepthClipConfidence(const SkPicBuf& picture, float& fMaximum,
                                             float fConfidenceLimit) {
    if (!isFloatPicture(picture, 2)) {
        return false;
    }
    const SkToFKernels::DepthSearchRow kernel = ToFKernelChoice::active().largestDepthOfPairs;
    return storeLargest(picture.height, fMaximum, [&](quint32 y, float largest) {
        return kernel(picture.row(y), nullptr, picture.width, fConfidenceLimit, largest);
    });
}

bool CkToFPicAPI::findMaxDepthClipConfidence(const SkPicBuf& depth, const SkPicBuf& confidence,
                                             float& fMaximum, float fConfidenceLimit) {
    if (!isFloatPicture(depth, 1) || !isFloatPicture(confidence, 1) || depth.width != confidence.width ||
        depth.height != confidence.height) {
        return false;
    }
    const SkToFKernels::DepthSearchRow kernel = ToFKernelChoice::active().largestDepth;
    return storeLargest(depth.height, fMaximum, [&](quint32 y, float largest) {
        return kernel(depth.row(y), confidence.row(y), depth.width, fConfidenceLimit, largest);
    });
}
