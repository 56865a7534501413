#pragma once

#include "zuCore/EkImageDataType.h"
#include "zuCore/zuCoreGlobal.h"

class CkPicMemory;

/// Format descriptor of a picture. Plain data; the order of the fields is part of the interface.
struct SkPicBufInfo {
    quint32 width = 0;          ///< pixels per row
    quint32 height = 0;         ///< rows; of a stacked picture the total of all sub-images
    quint32 lineSize = 0;       ///< bytes from one row to the next, at least width * channels * sample bytes
    quint32 channels = 0;       ///< interleaved samples per pixel
    quint32 bitsPerChannel = 0; ///< significant bits of a sample: 8, 12, 16, 32
    quint32 linePadding = 0; ///< rows are rounded up to a multiple of this many bytes; 0 and 1: packed rows
    EkImageDataType dataType = EkImageDataType::Unknown;              ///< of a sample
    EkDataStorageFormat storageFormat = EkDataStorageFormat::Unknown; ///< of the host: Interleaved
    EkColorFilterArray colorFilterArray = EkColorFilterArray::None;   ///< None: no colour filter
    bool layoutFlag = false;                                          ///< false for every raw ToF picture

    /// Interleaved samples without a colour filter, in packed rows: lineSize is width * channels * sample
    /// bytes, and 0, which allocations refuse, when that exceeds 32 bits.
    static SkPicBufInfo of(quint32 uiWidth, quint32 uiHeight, quint32 uiChannels, EkImageDataType dataType,
                           quint32 uiBitsPerChannel) {
        SkPicBufInfo info;
        info.width = uiWidth;
        info.height = uiHeight;
        info.channels = uiChannels;
        info.bitsPerChannel = uiBitsPerChannel;
        info.dataType = dataType;
        info.storageFormat = EkDataStorageFormat::Interleaved;
        info.padRows(0);
        return info;
    }

    /// Sets linePadding, and lineSize to the packed row rounded up to a multiple of that many bytes, or to 0
    /// when that exceeds 32 bits. 0 and 1: packed.
    void padRows(quint32 uiLinePadding) {
        linePadding = uiLinePadding;
        const quint64 padding = uiLinePadding > 1 ? uiLinePadding : 1;
        // In two steps: the product of all three factors can exceed 64 bits.
        const quint64 samples = quint64(width) * channels;
        const quint64 padded = samples > 0xffffffffU
                                   ? samples
                                   : (samples * sampleBytes(dataType) + padding - 1) / padding * padding;
        lineSize = padded > 0xffffffffU ? 0 : quint32(padded);
    }
};

/// Data of a frame in addition to its pixels; every block copies it from input to output.
struct SkPicAdditionalData {
    quint64 frameNumber = 0; ///< counts from 0 at each start of the camera
    qint64 timestampNs = 0;  ///< time of exposure on the camera's own clock, nanoseconds
};

/// A picture: descriptor, pixels and the value range of float pixels.
///
/// Plain data without a destructor: copying the structure makes an alias of the same pixels, and exactly one
/// of the aliases must be passed to CkPicBufAPI::FreePicBuf. Not synchronised; pixels shared between threads
/// are read-only.
struct SkPicBuf : SkPicBufInfo {
    quint8* data = nullptr; ///< row 0; null when nothing is allocated
    float minValue = 0.0F;  ///< smallest finite value of a float picture, see CalcFloatDataMinMax
    float maxValue = 0.0F;  ///< largest finite value of a float picture

    SkPicAdditionalData additionalData; ///< of the frame

    /// Reference-counted memory that holds the pixels; null for pixels of another owner.
    CkPicMemory* memory = nullptr;

    /// Copies the additional data (time stamp, counters) of another picture.
    void copyPicAdditionalData(const SkPicBuf& other) { additionalData = other.additionalData; }

    const quint8* row(quint32 uiRow) const { return data + size_t(uiRow) * lineSize; } ///< Row 0 first.
    quint8* row(quint32 uiRow) { return data + size_t(uiRow) * lineSize; }             ///< To write to.
};
