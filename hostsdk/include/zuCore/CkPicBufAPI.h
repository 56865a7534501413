#pragma once

#include "zuCore/SkPicBuf.h"

#include <cstddef>

class CkMemoryPool;

/// Picture services: allocation, copying, channels, bit depth, value range.
///
/// Stateless; any thread, as long as no other thread writes the pictures given. No function throws or prints.
/// Every function returns false, and writes nothing, when a picture has no data, a descriptor is
/// impossible (rows shorter than their pixels, no channels, an unknown sample type where samples are
/// interpreted) or a rectangle leaves its picture. Rows are walked by lineSize; bytes of a row beyond its
/// pixels are never written.
class ZUCORE_EXPORT CkPicBufAPI {
public:
    // ---- memory -------------------------------------------------------------------------------------

    /// A new zeroed picture on the heap, row 0 aligned to 64 bytes. uiLineSize 0: the packed row rounded up
    /// to a multiple of uiLinePadding. uiReserveBytes are added after the last row. bNoClear leaves the
    /// pixels unset. False when a size is 0, overflows or cannot be allocated, or uiLineSize is shorter than
    /// a row; picBuf is then empty. A reference that picBuf held is released first.
    static bool AllocPicBufFromHeap(SkPicBuf& picBuf, quint32 uiWidth, quint32 uiHeight, quint32 uiChannels,
                                    EkImageDataType dataType, quint32 uiLinePadding, quint32 uiLineSize,
                                    quint32 uiBitsPerChannel, EkDataStorageFormat storageFormat,
                                    EkColorFilterArray colorFilterArray, bool bLayoutFlag, bool bNoClear,
                                    size_t uiReserveBytes);

    /// The same for a descriptor. The descriptor's lineSize is kept unless it is 0 or bPackLines.
    static bool AllocPicBufFromHeap(SkPicBuf& picBuf, const SkPicBufInfo& info, bool bPackLines = false,
                                    size_t uiReserveBytes = 0);

    /// A picture from the sub-pool of an owner in a pool, see CkMemoryPool::acquire. A reference that picBuf
    /// held is released first. False, with picBuf empty, on failure and for a null pool.
    static bool AllocPicBufFromPool(CkMemoryPool* pPool, const void* pOwner, SkPicBuf& picBuf,
                                    const SkPicBufInfo& info, bool bClear);

    /// Releases the picture's reference and clears data, minimum and maximum; with bReset the descriptor,
    /// too. No-op for an empty picture.
    static void FreePicBuf(SkPicBuf& picBuf, bool bReset = true);

    /// A second reference to the same pixels; freed like any other picture. False for pixels without an owner
    /// (memory null). A reference that target held is released first.
    static bool SharePicBuf(const SkPicBuf& source, SkPicBuf& target);

    /// Bytes from row 0 to the end of the last row; 0 when the descriptor is impossible or the size
    /// overflows.
    static size_t byteSize(const SkPicBufInfo& info);

    /// True when width, height and channels are above 0 and lineSize holds a row.
    static bool isValid(const SkPicBufInfo& info);

    // ---- copies -------------------------------------------------------------------------------------

    /// Copies pixels, value range and additional data. An empty target is allocated like the source; any
    /// other must have the same width, height, channels and sample type. Overlapping pictures as for
    /// CopyRect.
    static bool CopyPicBuf(const SkPicBuf& source, SkPicBuf& target);

    /// Copies a rectangle of pixels between pictures of the same channels and sample type. An empty rectangle
    /// inside both pictures is allowed. Source and target may be the same picture or overlap, as long as
    /// their lineSize is the same.
    static bool CopyRect(SkPicBuf& target, quint32 uiTargetX, quint32 uiTargetY, const SkPicBuf& source,
                         quint32 uiSourceX, quint32 uiSourceY, quint32 uiWidth, quint32 uiHeight);

    /// Copies one channel into a one-channel picture of the same size and sample type.
    static bool ExtractChannel(const SkPicBuf& source, SkPicBuf& target, quint32 uiChannel);

    /// One-channel picture of the same sample type: the mean of two channels, or 0.299 R + 0.587 G + 0.114 B
    /// of channels in the order B, G, R (further channels are ignored), rounded to nearest for integers. An
    /// empty target is allocated.
    static bool ConvertToGrey(const SkPicBuf& source, SkPicBuf& target);

    /// Scales to uiWidth x uiHeight; each target pixel is the mean of the source area it covers. An empty
    /// target is allocated. Same channels and sample type. Values that are not finite are excluded from the
    /// mean.
    static bool ResizePic(const SkPicBuf& source, SkPicBuf& target, quint32 uiWidth, quint32 uiHeight);

    // ---- samples ------------------------------------------------------------------------------------

    /// Smallest and largest finite value of a float picture over all channels, or of channel 0 only. False,
    /// and both set to 0, when no value is finite.
    static bool CalcFloatDataMinMax(const SkPicBuf& picBuf, float& fMin, float& fMax, bool bFirstChannelOnly);

    /// Bit length of the largest sample (magnitude of negative ones) over all channels, or of channel 0
    /// only. Integer pictures. False, and uiBits unchanged, for an all-zero picture.
    static bool DetectColorBitDepth(const SkPicBuf& picBuf, quint32& uiBits, bool bFirstChannelOnly);

    /// Shifts every sample of an integer picture; negative moves towards the least significant bit
    /// (arithmetically for signed samples), bits shifted out are lost. Any shift is accepted. With
    /// bUpdateBits bitsPerChannel follows the shift, otherwise it stays.
    static bool ShiftBits(SkPicBuf& picBuf, int iShift, bool bUpdateBits);

    /// picBuf = picBuf - subtrahend, saturated to the sample type. Same size, channels and sample type.
    static bool Subtract(SkPicBuf& picBuf, const SkPicBuf& subtrahend);

    /// Converts integer samples between sample types, scaled from the source's bitsPerChannel to the target's
    /// by a shift and saturated to the target's bits; with bRound to nearest when bits are lost. Same size
    /// and channels.
    static bool ConvertPicToDifBpc(const SkPicBuf& source, SkPicBuf& target, bool bRound);
};
