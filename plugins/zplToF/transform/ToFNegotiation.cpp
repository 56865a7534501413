#include "plugins/zplToF/transform/ToFNegotiation.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/pic/ToFHybridGeometry.h"
#include "plugins/zplToF/transform/ToFTransforms.h"
#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <limits>

namespace {

// Texts of the user interface. "A and B channel" and "A and B channels" are different texts: both are in use.
const char* const kNotSupported =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "The input image data type is not supported.");
const char* const kNeedsAandB =
    QT_TRANSLATE_NOOP("CkToFProcessCnbl", "The input image must be RAWX2 image with A and B channel.");
const char* const kNeedsAmplitudeInput = QT_TRANSLATE_NOOP(
    "CkToFProcessCnbl", "The input image must be RAWX2 image with A and B channel, or RAW A "
                        "minus B ToF image, or X1X2X3 ToF image.");
const char* const kNeedsDepthInput = QT_TRANSLATE_NOOP(
    "CkToFProcessCnbl", "The input image must be RAWX2 image with A and B channels, or RAW A "
                        "minus B ToF image, or X1X2X3 ToF image.");

// Shared by all frames, so that naming channels allocates nothing.
const QStringList& namesAandB() {
    static const QStringList kNames{ToFChannel::kA, ToFChannel::kB};
    return kNames;
}
const QStringList& namesPhaseShift() {
    static const QStringList kNames{ToFChannel::kPhaseShift, ToFChannel::kConfidence};
    return kNames;
}
const QStringList& namesDepth() {
    static const QStringList kNames{ToFChannel::kDepth, ToFChannel::kConfidence};
    return kNames;
}
const QStringList& namesHybrid() {
    static const QStringList kNames{ToFChannel::kX1, ToFChannel::kX2, ToFChannel::kX3};
    return kNames;
}

/// Saturates at 32 bits. No picture is that large, so the result is refused later.
quint32 to32Bits(quint64 value) {
    return quint32(std::min<quint64>(value, std::numeric_limits<quint32>::max()));
}

} // namespace

/// One negotiation: the input, what is known about it, and the output.
struct ToFNegotiation::SkRequest {
    SkRequest(const SkPicBufInfo& input, SkPicBufInfo& output, const CkImageMetadata* inMeta,
              CkImageMetadata* outMeta)
        : in(input), out(output), meta(outMeta), phases(CkToFPicAPI::detectPhasesCount(input, inMeta)),
          twoTaps(CkToFPicAPI::isRawX2ToFABPic(input, inMeta)),
          difference(CkToFPicAPI::isRawToFAminBPic(input, inMeta)),
          hybrid(CkToFPicAPI::isRawToFHybridPic(input, inMeta)),
          separate(CkToFPicAPI::incomingSeparatePhases(inMeta)),
          sequenceLength(inMeta != nullptr ? inMeta->phaseSequenceLength : 0) {}

    const SkPicBufInfo in;
    SkPicBufInfo& out;
    CkImageMetadata* const meta;
    const quint32 phases;
    const bool twoTaps;
    const bool difference;
    const bool hybrid;
    const bool separate;
    const qint32 sequenceLength;

    /// Line pitch for pixels of this many bytes: a multiple of 256.
    void setPitch(quint64 bytesPerPixel) const {
        const quint64 rounded = (quint64(out.width) * bytesPerPixel + 255U) & ~quint64(255);
        out.lineSize = to32Bits(rounded);
    }

    void setColorFilterArray(EkColorFilterArray colorFilterArray) const {
        out.colorFilterArray = colorFilterArray;
        if (meta != nullptr) {
            meta->colorFilterArray = quint32(colorFilterArray);
        }
    }

    void setChannelNames(const QStringList& names) const {
        if (meta != nullptr) {
            meta->channelNames = names;
        }
    }

    void setPhasesCount(qint32 count) const {
        if (meta != nullptr) {
            meta->phasesCount = count;
        }
    }

    void setTofFormatCode(quint32 code) const {
        if (meta != nullptr) {
            meta->tofFormatCode = code;
        }
    }

    /// One value per pixel in place of all phases; the result is no longer a raw ToF picture.
    void setSingleImage(quint32 channels, EkImageDataType dataType) const {
        out.dataType = dataType;
        out.channels = channels;
        out.height = in.height / phases;
        setPitch(quint64(channels) * sampleBytes(dataType));
        setColorFilterArray(EkColorFilterArray::None);
        setPhasesCount(0);
    }
};

const char* ToFNegotiation::setABPhase(const SkRequest& request) {
    if (request.in.channels == 1) {
        request.out.channels = 2;
        request.out.width = request.in.width >> 1U;
    } else if (request.in.channels != 2) {
        return kNotSupported;
    }
    request.setColorFilterArray(EkColorFilterArray::RawX2AandB);
    request.setTofFormatCode(ToFFormatCode::kRawX2Bits12);
    request.setChannelNames(namesAandB());
    request.setPhasesCount(qint32(request.phases));
    return nullptr;
}

namespace {

const char* negotiateIntegerImage(const ToFNegotiation::SkRequest& request) {
    EkImageDataType dataType = request.in.dataType;
    if (request.difference) {
        dataType = dataType == EkImageDataType::Int8 ? EkImageDataType::UInt8 : EkImageDataType::UInt16;
    }
    request.setSingleImage(1, dataType);
    request.setChannelNames(QStringList());
    return nullptr;
}

} // namespace

const char* ToFNegotiation::intensity(const SkRequest& request) {
    return request.twoTaps || request.hybrid ? negotiateIntegerImage(request) : kNeedsAandB;
}

const char* ToFNegotiation::amplitude(const SkRequest& request) {
    return request.twoTaps || request.difference || request.hybrid ? negotiateIntegerImage(request)
                                                                   : kNeedsAmplitudeInput;
}

const char* ToFNegotiation::depth(const SkRequest& request) {
    if (!request.twoTaps && !request.difference && !request.hybrid) {
        return kNeedsDepthInput;
    }
    request.out.bitsPerChannel = 32;
    if (request.difference && !request.hybrid) {
        request.setSingleImage(1, EkImageDataType::Float32);
        request.setChannelNames(QStringList());
    } else {
        request.setSingleImage(2, EkImageDataType::Float32);
        request.setChannelNames(request.hybrid ? namesDepth() : namesPhaseShift());
    }
    return nullptr;
}

const char* ToFNegotiation::concatPhases(const SkRequest& request) {
    if (!request.hybrid) {
        if (request.separate) {
            const quint64 length = quint64(std::max(request.sequenceLength, 0));
            request.out.height = to32Bits(request.in.height * length);
            request.setPhasesCount(request.sequenceLength);
            if (request.meta != nullptr) {
                request.meta->phaseAngle = 0;
                request.meta->phaseSequenceIndex = 0;
            }
        }
        return nullptr;
    }
    if (!request.separate) {
        if (request.phases < 2) {
            return nullptr;
        }
        request.out.height = request.in.height / request.phases;
        request.setPhasesCount(0);
    }
    request.out.dataType = EkImageDataType::UInt16;
    request.out.bitsPerChannel = 16;
    request.setPitch(2 * quint64(request.in.channels));
    return nullptr;
}

const char* ToFNegotiation::aandBtoAminB(const SkRequest& request) {
    if (!request.twoTaps) {
        return kNeedsAandB;
    }
    request.out.channels = 1;
    if (request.in.dataType == EkImageDataType::UInt8) {
        request.out.dataType = EkImageDataType::Int8;
    } else if (request.in.dataType == EkImageDataType::UInt16) {
        request.out.dataType = EkImageDataType::Int16;
    }
    request.setPitch(sampleBytes(request.out.dataType));
    request.setColorFilterArray(EkColorFilterArray::RawAminusB);
    request.setChannelNames(QStringList());
    request.setTofFormatCode(ToFFormatCode::kAminusBBits12);
    return nullptr;
}

const char* ToFNegotiation::setHybrid(const SkRequest& request) {
    const SkPicBufInfo& in = request.in;
    if (in.channels == 1 && in.width == ToFHybridGeometry::kWidth &&
        in.height == ToFHybridGeometry::kStackHeight) {
        request.out.channels = 3;
        request.out.height = ToFHybridGeometry::kHeight;
        if (in.dataType == EkImageDataType::UInt16 && in.bitsPerChannel == 16) {
            request.out.bitsPerChannel = 12;
        }
        request.setPitch(3 * quint64(sampleBytes(in.dataType)));
    } else if (in.channels != 3) {
        return kNotSupported;
    }
    request.setColorFilterArray(EkColorFilterArray::RawX3Hybrid);
    request.setChannelNames(namesHybrid());
    return nullptr;
}

const char* ToFNegotiation::negotiate(int iTransform, const SkPicBufInfo& in, SkPicBufInfo& out,
                                      const CkImageMetadata* pInMeta, CkImageMetadata* pOutMeta) {
    // The outputs may be the inputs: the request copies what it needs before they change.
    const SkRequest request(in, out, pInMeta, pOutMeta);
    out = request.in;
    if (pOutMeta != nullptr && pOutMeta != pInMeta) {
        *pOutMeta = pInMeta != nullptr ? *pInMeta : CkImageMetadata();
    }
    const SkToFTransform* const transform = ToFTransforms::find(iTransform);
    return transform != nullptr ? transform->negotiate(request) : nullptr;
}
