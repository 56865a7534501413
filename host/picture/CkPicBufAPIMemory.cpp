// Memory: allocation, references, sizes.

#include "zuCore/CkPicBufAPI.h"

#include "host/picture/CkPicMemory.h"
#include "host/picture/pictureChecks.h"
#include "zuCore/CkMemoryPool.h"

#include <limits>

namespace {

/// Rows rounded up to a multiple of the padding; 0 when that leaves 32 bits.
quint32 paddedLineSize(quint64 uiRowBytes, quint32 uiPadding) {
    quint64 bytes = uiRowBytes;
    if (uiPadding > 1) {
        bytes = (bytes + uiPadding - 1) / uiPadding * uiPadding;
    }
    return bytes <= std::numeric_limits<quint32>::max() ? quint32(bytes) : 0;
}

/// info.lineSize 0 asks for packed, padded rows.
bool allocate(SkPicBuf& picBuf, SkPicBufInfo info, bool bClear, size_t uiReserveBytes) {
    CkPicBufAPI::FreePicBuf(picBuf, true);
    picBuf = SkPicBuf();
    const quint64 rowBytes = pictureRowBytes(info);
    if (rowBytes == 0) {
        return false;
    }
    if (info.lineSize == 0) {
        info.lineSize = paddedLineSize(rowBytes, info.linePadding);
    }
    const size_t bytes = CkPicBufAPI::byteSize(info);
    size_t total = 0;
    if (bytes == 0 || __builtin_add_overflow(bytes, uiReserveBytes, &total)) {
        return false;
    }
    CkPicMemory* const memory = CkPicMemory::create(total, bClear);
    if (memory == nullptr) {
        return false;
    }
    static_cast<SkPicBufInfo&>(picBuf) = info;
    picBuf.data = memory->pixels();
    picBuf.memory = memory;
    return true;
}

} // namespace

bool CkPicBufAPI::AllocPicBufFromHeap(SkPicBuf& picBuf, quint32 uiWidth, quint32 uiHeight, quint32 uiChannels,
                                      EkImageDataType dataType, quint32 uiLinePadding, quint32 uiLineSize,
                                      quint32 uiBitsPerChannel, EkDataStorageFormat storageFormat,
                                      EkColorFilterArray colorFilterArray, bool bLayoutFlag, bool bNoClear,
                                      size_t uiReserveBytes) {
    SkPicBufInfo info;
    info.width = uiWidth;
    info.height = uiHeight;
    info.lineSize = uiLineSize;
    info.channels = uiChannels;
    info.bitsPerChannel = uiBitsPerChannel;
    info.linePadding = uiLinePadding;
    info.dataType = dataType;
    info.storageFormat = storageFormat;
    info.colorFilterArray = colorFilterArray;
    info.layoutFlag = bLayoutFlag;
    return allocate(picBuf, info, !bNoClear, uiReserveBytes);
}

bool CkPicBufAPI::AllocPicBufFromHeap(SkPicBuf& picBuf, const SkPicBufInfo& info, bool bPackLines,
                                      size_t uiReserveBytes) {
    SkPicBufInfo wanted = info;
    if (bPackLines) {
        wanted.lineSize = 0;
    }
    return allocate(picBuf, wanted, true, uiReserveBytes);
}

bool CkPicBufAPI::AllocPicBufFromPool(CkMemoryPool* pPool, const void* pOwner, SkPicBuf& picBuf,
                                      const SkPicBufInfo& info, bool bClear) {
    if (pPool == nullptr) {
        FreePicBuf(picBuf, true);
        return false;
    }
    return pPool->acquire(pOwner, info, picBuf, bClear);
}

void CkPicBufAPI::FreePicBuf(SkPicBuf& picBuf, bool bReset) {
    if (picBuf.data == nullptr && picBuf.memory == nullptr) {
        return;
    }
    if (picBuf.memory != nullptr) {
        picBuf.memory->release();
    }
    if (bReset) {
        picBuf = SkPicBuf();
        return;
    }
    picBuf.data = nullptr;
    picBuf.memory = nullptr;
    picBuf.minValue = 0.0F;
    picBuf.maxValue = 0.0F;
}

bool CkPicBufAPI::SharePicBuf(const SkPicBuf& source, SkPicBuf& target) {
    if (source.memory == nullptr) {
        return false;
    }
    // The new reference first: the target may hold the last one to these pixels.
    const SkPicBuf shared = source;
    shared.memory->addReference();
    FreePicBuf(target, true);
    target = shared;
    return true;
}

size_t CkPicBufAPI::byteSize(const SkPicBufInfo& info) {
    size_t bytes = 0;
    if (!isValid(info) || __builtin_mul_overflow(size_t(info.lineSize), size_t(info.height), &bytes)) {
        return 0;
    }
    return bytes;
}

bool CkPicBufAPI::isValid(const SkPicBufInfo& info) {
    const quint64 rowBytes = pictureRowBytes(info);
    return rowBytes != 0 && info.height != 0 && info.lineSize >= rowBytes;
}
