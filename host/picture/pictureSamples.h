#pragma once

#include "zuCore/EkImageDataType.h"

#include <cstring>
#include <type_traits>

// Samples are read and written through memcpy: a lineSize need not be a multiple of the sample size.
template <typename T>
inline T loadSample(const quint8* row, size_t index) {
    T value;
    std::memcpy(&value, row + index * sizeof(T), sizeof(T));
    return value;
}

template <typename T>
inline void storeSample(quint8* row, size_t index, T value) {
    std::memcpy(row + index * sizeof(T), &value, sizeof(T));
}

/// Stands for a sample type in a call of visitInteger or visitSample.
template <typename T>
struct SampleTag {
    using Type = T;
};

/// Calls the visitor with the tag of an integer sample type; false for every other type.
template <typename Visitor>
bool visitInteger(EkImageDataType dataType, Visitor&& visitor) {
    switch (dataType) {
    case EkImageDataType::Int8:
        return visitor(SampleTag<qint8>());
    case EkImageDataType::UInt8:
        return visitor(SampleTag<quint8>());
    case EkImageDataType::Int16:
        return visitor(SampleTag<qint16>());
    case EkImageDataType::UInt16:
        return visitor(SampleTag<quint16>());
    case EkImageDataType::Int32:
        return visitor(SampleTag<qint32>());
    case EkImageDataType::UInt32:
        return visitor(SampleTag<quint32>());
    case EkImageDataType::Int64:
        return visitor(SampleTag<qint64>());
    case EkImageDataType::UInt64:
        return visitor(SampleTag<quint64>());
    default:
        return false;
    }
}

/// The same for integers and floats.
template <typename Visitor>
bool visitSample(EkImageDataType dataType, Visitor&& visitor) {
    switch (dataType) {
    case EkImageDataType::Float32:
        return visitor(SampleTag<float>());
    case EkImageDataType::Float64:
        return visitor(SampleTag<double>());
    default:
        return visitInteger(dataType, visitor);
    }
}
