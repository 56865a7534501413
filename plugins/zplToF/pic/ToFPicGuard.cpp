#include "plugins/zplToF/pic/ToFPicGuard.h"

#include <cstdint>
#include <limits>

namespace {

/// Bytes from the first pixel of the first row to the end of the last pixel of the last row.
quint64 touchedBytes(const SkPicBufInfo& info) {
    return quint64(info.height - 1) * info.lineSize +
           quint64(info.width) * info.channels * sampleBytes(info.dataType);
}

bool overlap(const SkPicBuf& first, const SkPicBuf& second) {
    const auto firstStart = quint64(reinterpret_cast<std::uintptr_t>(first.data));
    const auto secondStart = quint64(reinterpret_cast<std::uintptr_t>(second.data));
    return firstStart < secondStart + touchedBytes(second) && secondStart < firstStart + touchedBytes(first);
}

} // namespace

bool ToFPicGuard::isUsable(const SkPicBuf& picture) {
    if (picture.data == nullptr || picture.width == 0 || picture.height == 0 || picture.channels == 0) {
        return false;
    }
    // Divided, not multiplied: width * channels * bytes can exceed 64 bits.
    if (quint64(picture.width) * picture.channels > picture.lineSize / sampleBytes(picture.dataType)) {
        return false;
    }
    const auto start = quint64(reinterpret_cast<std::uintptr_t>(picture.data));
    return touchedBytes(picture) <= std::numeric_limits<quint64>::max() - start;
}

bool ToFPicGuard::isPair(const SkPicBuf& source, const SkPicBuf& result, EkImageDataType resultType,
                         quint32 resultChannels) {
    return result.dataType == resultType && result.channels == resultChannels && isUsable(source) &&
           isUsable(result) && result.width <= source.width && !overlap(source, result);
}
