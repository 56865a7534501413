#include "host/recording/SkDepthScale.h"

#include "host/recording/ForeignMembers.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <cstring>
#include <limits>

namespace {

template <typename Sample>
void scaleRow(const quint8* from, float* to, quint32 width, const SkDepthScale& scale) {
    for (quint32 x = 0; x < width; ++x) {
        Sample value;
        std::memcpy(&value, from + size_t(x) * sizeof(Sample), sizeof(Sample));
        // In double precision: a float does not hold counts above 2^24.
        to[x] = scale.zeroIsNothing && value == Sample(0) ? std::numeric_limits<float>::quiet_NaN()
                                                          : float(double(value) * scale.metresPerCount);
    }
}

using RowFunction = void (*)(const quint8*, float*, quint32, const SkDepthScale&);

RowFunction rowFunction(EkImageDataType dataType) {
    switch (dataType) {
    case EkImageDataType::Int8:
        return scaleRow<qint8>;
    case EkImageDataType::UInt8:
        return scaleRow<quint8>;
    case EkImageDataType::Int16:
        return scaleRow<qint16>;
    case EkImageDataType::UInt16:
        return scaleRow<quint16>;
    case EkImageDataType::Int32:
        return scaleRow<qint32>;
    case EkImageDataType::UInt32:
        return scaleRow<quint32>;
    case EkImageDataType::Int64:
        return scaleRow<qint64>;
    case EkImageDataType::UInt64:
        return scaleRow<quint64>;
    case EkImageDataType::Float32:
        return scaleRow<float>;
    case EkImageDataType::Float64:
        return scaleRow<double>;
    default:
        return nullptr;
    }
}

} // namespace

bool SkDepthScale::fits(const SkPicBufInfo& info) {
    return info.channels == 1 && rowFunction(info.dataType) != nullptr;
}

SkPicBufInfo SkDepthScale::scaledInfo(const SkPicBufInfo& info) {
    SkPicBufInfo scaled = info;
    scaled.dataType = EkImageDataType::Float32;
    scaled.bitsPerChannel = 32;
    scaled.linePadding = 0;
    scaled.lineSize = info.width * quint32(sizeof(float));
    scaled.colorFilterArray = EkColorFilterArray::None;
    return scaled;
}

CkImageMetadata SkDepthScale::scaledMetadata(const CkImageMetadata& metadata) {
    CkImageMetadata scaled = metadata;
    scaled.channelNames = QStringList{QStringLiteral("Depth")};
    scaled.colorFilterArray = 0;
    return scaled;
}

std::unique_ptr<CkImageData> SkDepthScale::scaled(const CkImageData& frame) const {
    const SkPicBuf& from = frame.picBuf();
    SkPicBuf to;
    if (!isActive() || !fits(from) || from.data == nullptr ||
        !CkPicBufAPI::AllocPicBufFromHeap(to, scaledInfo(from))) {
        return nullptr;
    }
    to.copyPicAdditionalData(from);
    auto result = std::make_unique<CkImageData>();
    result->setPicBuf(to);
    result->setMetadata(scaledMetadata(frame.metadata()));
    ForeignMembers::give(*result, ForeignMembers::of(frame));
    SkPicBuf& picture = result->picBuf();
    const RowFunction scaleOne = rowFunction(from.dataType);
    for (quint32 y = 0; y < from.height; ++y) {
        scaleOne(from.row(y), reinterpret_cast<float*>(picture.row(y)), from.width, *this);
    }
    CkPicBufAPI::CalcFloatDataMinMax(picture, picture.minValue, picture.maxValue, false);
    return result;
}
