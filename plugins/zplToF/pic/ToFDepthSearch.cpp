#include "plugins/zplToF/pic/ToFDepthSearch.h"

#include "plugins/zplToF/pic/ToFPicGuard.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"

namespace {

bool isFloatPicture(const SkPicBuf& picture, quint32 channels) {
    return picture.dataType == EkImageDataType::Float32 && picture.channels == channels &&
           ToFPicGuard::isUsable(picture);
}

/// Stores the largest depth of all rows. A result below 0 means that no pixel is trusted.
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

bool ToFDepthSearch::largestTrusted(const SkPicBuf& picture, float& maximum, float confidenceLimit) {
    if (!isFloatPicture(picture, 2)) {
        return false;
    }
    const SkToFKernels::DepthSearchRow kernel = ToFKernelChoice::active().largestDepthOfPairs;
    return storeLargest(picture.height, maximum, [&](quint32 y, float largest) {
        return kernel(picture.row(y), nullptr, picture.width, confidenceLimit, largest);
    });
}

bool ToFDepthSearch::largestTrusted(const SkPicBuf& depth, const SkPicBuf& confidence, float& maximum,
                                    float confidenceLimit) {
    if (!isFloatPicture(depth, 1) || !isFloatPicture(confidence, 1) || depth.width != confidence.width ||
        depth.height != confidence.height) {
        return false;
    }
    const SkToFKernels::DepthSearchRow kernel = ToFKernelChoice::active().largestDepth;
    return storeLargest(depth.height, maximum, [&](quint32 y, float largest) {
        return kernel(depth.row(y), confidence.row(y), depth.width, confidenceLimit, largest);
    });
}
