#include "host/picture/PictureCopy.h"

#include "host/picture/pictureChecks.h"

#include <cstring>

bool PictureCopy::copy(const SkPicBuf& source, SkPicBuf& target) {
    if (!hasPixels(source)) {
        return false;
    }
    if (target.data == nullptr) {
        if (!CkPicBufAPI::AllocPicBufFromHeap(target, source)) {
            return false;
        }
    }
    if (!sameSize(source, target) ||
        !copyRect(source, target, {.width = source.width, .height = source.height})) {
        return false;
    }
    target.minValue = source.minValue;
    target.maxValue = source.maxValue;
    target.copyPicAdditionalData(source);
    return true;
}

bool PictureCopy::copyRect(const SkPicBuf& source, SkPicBuf& target, const SkRectCopy& rect) {
    if (!hasPixels(source) || !hasPixels(target) || !samePixelFormat(source, target)) {
        return false;
    }
    const auto inside = [&](const SkPicBufInfo& info, quint32 x, quint32 y) {
        return quint64(x) + rect.width <= info.width && quint64(y) + rect.height <= info.height;
    };
    if (!inside(source, rect.sourceX, rect.sourceY) || !inside(target, rect.targetX, rect.targetY)) {
        return false;
    }
    if (rect.width == 0 || rect.height == 0) {
        return true;
    }
    // With different line sizes there is no order that reads every row before it is overwritten.
    if (source.lineSize != target.lineSize && overlap(source, target)) {
        return false;
    }
    const size_t pixelBytes = size_t(source.channels) * sampleBytes(source.dataType);
    const size_t rowBytes = pixelBytes * rect.width;
    const quint8* const from = source.row(rect.sourceY) + pixelBytes * rect.sourceX;
    quint8* const to = target.row(rect.targetY) + pixelBytes * rect.targetX;
    // Overlapping rows are copied in the order that reads every one before it is overwritten.
    const bool backwards = std::less<const quint8*>()(from, to);
    for (quint32 i = 0; i < rect.height; ++i) {
        const size_t y = backwards ? rect.height - 1 - i : i;
        std::memmove(to + y * target.lineSize, from + y * source.lineSize, rowBytes);
    }
    return true;
}

bool PictureCopy::extractChannel(const SkPicBuf& source, SkPicBuf& target, quint32 uiChannel) {
    if (!hasPixels(source) || !hasPixels(target) || uiChannel >= source.channels || target.channels != 1 ||
        target.dataType != source.dataType || !sameSize(source, target) || overlap(source, target)) {
        return false;
    }
    const auto copyRows = [&]<size_t Bytes>() {
        const size_t step = size_t(source.channels) * Bytes;
        for (quint32 y = 0; y < source.height; ++y) {
            const quint8* from = source.row(y) + size_t(uiChannel) * Bytes;
            quint8* to = target.row(y);
            for (quint32 x = 0; x < source.width; ++x, from += step, to += Bytes) {
                std::memcpy(to, from, Bytes);
            }
        }
    };
    switch (sampleBytes(source.dataType)) {
    case 1:
        copyRows.operator()<1>();
        break;
    case 2:
        copyRows.operator()<2>();
        break;
    case 4:
        copyRows.operator()<4>();
        break;
    default:
        copyRows.operator()<8>();
        break;
    }
    return true;
}
