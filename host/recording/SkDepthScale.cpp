#include "host/recording/SkDepthScale.h"

#include "host/recording/ForeignMembers.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicture.h"
#include "zuCore/SampleVisitor.h"
#include "zuCore/ToFVocabulary.h"

#include <limits>

namespace {

template <typename Sample>
void scaleRow(const quint8* from, float* to, quint32 width, const SkDepthScale& scale) {
    for (quint32 x = 0; x < width; ++x) {
        const auto value = loadSample<Sample>(from, x);
        // In double precision: a float cannot represent all counts above 2^24.
        to[x] = scale.zeroIsInvalid && value == Sample(0) ? std::numeric_limits<float>::quiet_NaN()
                                                          : float(double(value) * scale.metresPerCount);
    }
}

using RowFunction = void (*)(const quint8*, float*, quint32, const SkDepthScale&);

RowFunction rowFunction(EkImageDataType dataType) {
    return visitSamples(dataType, [](auto zero) -> RowFunction { return scaleRow<decltype(zero)>; });
}

} // namespace

bool SkDepthScale::fits(const SkPicBufInfo& info) {
    return info.channels == 1 && rowFunction(info.dataType) != nullptr;
}

SkPicBufInfo SkDepthScale::scaledInfo(const SkPicBufInfo& info) {
    SkPicBufInfo scaled = info;
    scaled.dataType = EkImageDataType::Float32;
    scaled.bitsPerChannel = 32;
    scaled.colorFilterArray = EkColorFilterArray::None;
    scaled.padRows(0);
    return scaled;
}

CkImageMetadata SkDepthScale::scaledMetadata(const CkImageMetadata& metadata) {
    CkImageMetadata scaled = metadata;
    scaled.channelNames = QStringList{ToFChannel::kDepth};
    scaled.colorFilterArray = 0;
    return scaled;
}

std::unique_ptr<CkImageData> SkDepthScale::scaled(const CkImageData& frame) const {
    const SkPicBuf& from = frame.picBuf();
    CkPicture to;
    if (!isActive() || !fits(from) || from.data == nullptr || !to.allocate(scaledInfo(from))) {
        return nullptr;
    }
    to.picBuf().copyPicAdditionalData(from);
    auto result = std::make_unique<CkImageData>();
    result->setPicBuf(to.take());
    result->setMetadata(scaledMetadata(frame.metadata()));
    ForeignMembers::set(*result, ForeignMembers::of(frame));
    SkPicBuf& picture = result->picBuf();
    const RowFunction scaleOne = rowFunction(from.dataType);
    for (quint32 y = 0; y < from.height; ++y) {
        scaleOne(from.row(y), reinterpret_cast<float*>(picture.row(y)), from.width, *this);
    }
    CkPicBufAPI::CalcFloatDataMinMax(picture, picture.minValue, picture.maxValue, false);
    return result;
}
