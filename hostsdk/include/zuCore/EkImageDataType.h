#pragma once

#include <QtGlobal>

/// Sample type of a picture. The numbers are part of recordings and of the plug-in interface. Any other
/// number may arrive in a descriptor; it is treated as a one-byte type that cannot be processed.
enum class EkImageDataType : quint32 {
    Unknown = 0,
    Int8 = 1,
    UInt8 = 2,
    Int16 = 3,
    UInt16 = 4,
    Int32 = 5,
    UInt32 = 6,
    Int64 = 7,
    UInt64 = 8,
    Float32 = 9,
    Float64 = 10,
    Other16 = 11 ///< another two-byte type, never processed
};

/// How samples are stored. Pictures allocated for results are Interleaved.
enum class EkDataStorageFormat : quint32 { Unknown = 0, Interleaved = 1 };

/// Sensor arrangement of a picture.
enum class EkColorFilterArray : quint32 {
    None = 0,        ///< also every float and every single-image result
    RawX2AandB = 8,  ///< re-labelled two-tap pictures
    RawAminusB = 9,  ///< signed difference pictures made by a processing block
    RawX3Hybrid = 13 ///< hybrid X1X2X3 pictures
};

/// The meaning of the values of a float result picture.
enum class EkDepthDataType : int {
    Generic = 0,    ///< a picture shown as it is
    PhaseShift = 1, ///< radians, [0, 2 pi)
    Depth = 2       ///< metres
};

/// Bytes of one sample: 1, 2, 4 or 8; 1 for every number that is no known type.
constexpr quint32 sampleBytes(EkImageDataType dataType) {
    switch (dataType) {
    case EkImageDataType::Int16:
    case EkImageDataType::UInt16:
    case EkImageDataType::Other16:
        return 2;
    case EkImageDataType::Int32:
    case EkImageDataType::UInt32:
    case EkImageDataType::Float32:
        return 4;
    case EkImageDataType::Int64:
    case EkImageDataType::UInt64:
    case EkImageDataType::Float64:
        return 8;
    default:
        return 1;
    }
}

constexpr bool isFloatType(EkImageDataType dataType) {
    return dataType == EkImageDataType::Float32 || dataType == EkImageDataType::Float64;
}

/// Whether samples are signed integers.
constexpr bool isSignedIntegerType(EkImageDataType dataType) {
    return dataType == EkImageDataType::Int8 || dataType == EkImageDataType::Int16 ||
           dataType == EkImageDataType::Int32 || dataType == EkImageDataType::Int64;
}
