#include "host/viewer/picture/Saturation.h"

#include "zuCore/CkChain.h"
#include "zuCore/CkImageSource.h"

#include <QCoreApplication>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Saturation)
};

bool isDifferenceCode(quint32 code) {
    return code == ToFFormatCode::kAminusBBits8 || code == ToFFormatCode::kAminusBBits12 ||
           code == ToFFormatCode::kAminusBBits12Alternate;
}

// A block that passes samples through preserves their type and number: its picture counts as the source's.
bool isComputed(const SkPicBufInfo& info, const CkChainable* pBlock) {
    const CkChainable* const source = Saturation::soleSource(pBlock);
    SkPicBufInfo original;
    if (source == nullptr || !source->chain()->negotiatedInfo(source, original, nullptr)) {
        return pBlock != nullptr && qobject_cast<const CkImageSource*>(pBlock) == nullptr;
    }
    const auto samples = [](const SkPicBufInfo& picture) {
        return quint64(picture.width) * picture.height * picture.channels;
    };
    return info.dataType != original.dataType || samples(info) < samples(original);
}

} // namespace

Saturation::EkEvidence Saturation::evidence(const SkPicBufInfo& info, const CkImageMetadata& metadata,
                                            const CkChainable* pBlock) {
    if (isComputed(info, pBlock)) {
        return EkEvidence::Computed;
    }
    if (isFloatType(info.dataType)) {
        return EkEvidence::Floats;
    }
    return isSignedIntegerType(info.dataType) && isDifferenceCode(metadata.tofFormatCode)
               ? EkEvidence::Difference
               : EkEvidence::Samples;
}

QString Saturation::reason(EkEvidence evidence) {
    switch (evidence) {
    case EkEvidence::Difference:
        return Texts::tr("A minus B does not show whether A and B were saturated");
    case EkEvidence::Floats:
        return Texts::tr("Samples of this type have no upper limit");
    case EkEvidence::Computed:
        return Texts::tr("A computed picture does not show it; the picture of the camera does");
    default:
        return {};
    }
}

CkChainable* Saturation::soleSource(const CkChainable* pBlock) {
    const CkChainable* block = pBlock;
    while (block != nullptr && qobject_cast<const CkImageSource*>(block) == nullptr) {
        const QList<CkChainable*> feeders = block->precedessors();
        block = feeders.size() == 1 ? feeders.first() : nullptr;
    }
    return block != nullptr && block->chain() != nullptr ? const_cast<CkChainable*>(block) : nullptr;
}

quint64 Saturation::fullScale(const SkPicBufInfo& info) {
    const quint32 held = 8 * sampleBytes(info.dataType);
    const quint32 bits = info.bitsPerChannel == 0 || info.bitsPerChannel > held ? held : info.bitsPerChannel;
    return bits >= 64 ? ~quint64(0) : (quint64(1) << bits) - 1;
}
