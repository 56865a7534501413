#pragma once

#include "zuCore/EkImageDataType.h"

#include <cstddef>
#include <cstring>

// Dispatches from the sample type of a picture to a C++ type, for code that works on any sample type:
//
//     visitSamples(picBuf.dataType, [&](auto zero) {
//         using Sample = decltype(zero);
//         ...
//         return true;
//     });

/// Calls visitor with a zero of the C++ type of an integer sample type and returns what it returns. For every
/// other type visitor is not called and the result is a default value (false, null, 0).
template <typename Visitor>
auto visitIntegerSamples(EkImageDataType dataType, Visitor&& visitor) -> decltype(visitor(quint8())) {
    switch (dataType) {
    case EkImageDataType::Int8:
        return visitor(qint8());
    case EkImageDataType::UInt8:
        return visitor(quint8());
    case EkImageDataType::Int16:
        return visitor(qint16());
    case EkImageDataType::UInt16:
        return visitor(quint16());
    case EkImageDataType::Int32:
        return visitor(qint32());
    case EkImageDataType::UInt32:
        return visitor(quint32());
    case EkImageDataType::Int64:
        return visitor(qint64());
    case EkImageDataType::UInt64:
        return visitor(quint64());
    default:
        return decltype(visitor(quint8()))();
    }
}

/// The same for integer and floating-point sample types.
template <typename Visitor>
auto visitSamples(EkImageDataType dataType, Visitor&& visitor) -> decltype(visitor(quint8())) {
    switch (dataType) {
    case EkImageDataType::Float32:
        return visitor(float());
    case EkImageDataType::Float64:
        return visitor(double());
    default:
        return visitIntegerSamples(dataType, visitor);
    }
}

/// A sample of a row, also where the row is not aligned for it: a lineSize need not be a multiple of the
/// sample size.
template <typename Sample>
Sample loadSample(const quint8* row, size_t index) {
    Sample sample;
    std::memcpy(&sample, row + index * sizeof(Sample), sizeof(Sample));
    return sample;
}

/// Writes a sample of a row; see loadSample.
template <typename Sample>
void storeSample(quint8* row, size_t index, Sample sample) {
    std::memcpy(row + index * sizeof(Sample), &sample, sizeof(Sample));
}
