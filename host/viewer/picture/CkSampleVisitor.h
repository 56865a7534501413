#pragma once

#include "zuCore/EkImageDataType.h"

#include <utility>

/// Calls visitor with a value of the C++ type of the samples, which tells the visitor the type, and answers
/// what it answers. False, and no call, for types without a C++ equivalent.
template <class Visitor>
bool visitSampleType(EkImageDataType dataType, Visitor&& visitor) {
    switch (dataType) {
    case EkImageDataType::Int8:
        return visitor(qint8{});
    case EkImageDataType::UInt8:
        return visitor(quint8{});
    case EkImageDataType::Int16:
        return visitor(qint16{});
    case EkImageDataType::UInt16:
        return visitor(quint16{});
    case EkImageDataType::Int32:
        return visitor(qint32{});
    case EkImageDataType::UInt32:
        return visitor(quint32{});
    case EkImageDataType::Int64:
        return visitor(qint64{});
    case EkImageDataType::UInt64:
        return visitor(quint64{});
    case EkImageDataType::Float32:
        return visitor(float{});
    case EkImageDataType::Float64:
        return visitor(double{});
    default:
        return false;
    }
}
