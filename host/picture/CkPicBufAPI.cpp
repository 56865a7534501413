#include "zuCore/CkPicBufAPI.h"

#include "host/picture/CkPicMemory.h"
#include "host/picture/PictureConversion.h"
#include "host/picture/PictureCopy.h"
#include "host/picture/PictureSamples.h"
#include "host/picture/pictureChecks.h"
#include "zuCore/CkMemoryPool.h"

namespace {

/// info.lineSize 0: the packed row rounded up to linePadding.
bool allocate(SkPicBuf& picBuf, SkPicBufInfo info, bool bClear, size_t uiReserveBytes) {
    CkPicBufAPI::FreePicBuf(picBuf, true);
    picBuf = SkPicBuf();
    if (pictureRowBytes(info) == 0) {
        return false;
    }
    if (info.lineSize == 0) {
        info.padRows(info.linePadding);
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
    // Added before the old one is released: the target may hold the last reference to these pixels.
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

bool CkPicBufAPI::CopyPicBuf(const SkPicBuf& source, SkPicBuf& target) {
    return PictureCopy::copy(source, target);
}

bool CkPicBufAPI::CopyRect(SkPicBuf& target, quint32 uiTargetX, quint32 uiTargetY, const SkPicBuf& source,
                           quint32 uiSourceX, quint32 uiSourceY, quint32 uiWidth, quint32 uiHeight) {
    return PictureCopy::copyRect(source, target,
                                 {uiSourceX, uiSourceY, uiTargetX, uiTargetY, uiWidth, uiHeight});
}

bool CkPicBufAPI::ExtractChannel(const SkPicBuf& source, SkPicBuf& target, quint32 uiChannel) {
    return PictureCopy::extractChannel(source, target, uiChannel);
}

bool CkPicBufAPI::ConvertToGrey(const SkPicBuf& source, SkPicBuf& target) {
    return PictureConversion::toGrey(source, target);
}

bool CkPicBufAPI::ResizePic(const SkPicBuf& source, SkPicBuf& target, quint32 uiWidth, quint32 uiHeight) {
    return PictureConversion::resize(source, target, uiWidth, uiHeight);
}

bool CkPicBufAPI::ConvertPicToDifBpc(const SkPicBuf& source, SkPicBuf& target, bool bRound) {
    return PictureConversion::changeBitDepth(source, target, bRound);
}

bool CkPicBufAPI::CalcFloatDataMinMax(const SkPicBuf& picBuf, float& fMin, float& fMax,
                                      bool bFirstChannelOnly) {
    return PictureSamples::valueRange(picBuf, fMin, fMax, bFirstChannelOnly);
}

bool CkPicBufAPI::DetectColorBitDepth(const SkPicBuf& picBuf, quint32& uiBits, bool bFirstChannelOnly) {
    return PictureSamples::bitDepth(picBuf, uiBits, bFirstChannelOnly);
}

bool CkPicBufAPI::ShiftBits(SkPicBuf& picBuf, int iShift, bool bUpdateBits) {
    return PictureSamples::shiftBits(picBuf, iShift, bUpdateBits);
}

bool CkPicBufAPI::Subtract(SkPicBuf& picBuf, const SkPicBuf& subtrahend) {
    return PictureSamples::subtract(picBuf, subtrahend);
}
