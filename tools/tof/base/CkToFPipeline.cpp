#include "tools/tof/base/CkToFPipeline.h"

#include "plugins/zplToF/transform/ToFAngles.h"
#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "zuCore/CkImageData.h"

namespace {

/// Whether the buffers prepared for a fit b. A running chain does not ask this: it keeps the buffers of its
/// start and refuses other images, while a recording may change its format from page to page.
bool isSameFormat(const SkPicBufInfo& a, const SkPicBufInfo& b) {
    return a.width == b.width && a.height == b.height && a.channels == b.channels &&
           a.dataType == b.dataType && a.lineSize == b.lineSize && a.bitsPerChannel == b.bitsPerChannel &&
           a.colorFilterArray == b.colorFilterArray;
}

/// The texts of the processing block, except those that mention a chain.
QString refusalText(EkFrameRefusal refusal, const SkPicBufInfo& source) {
    switch (refusal) {
    case EkFrameRefusal::None: // no picture could be allocated
    case EkFrameRefusal::NoOutputPixels:
    case EkFrameRefusal::NotSupported:
        return QStringLiteral("The transform cannot work on a picture of %1 x %2 pixels of this kind.")
            .arg(source.width)
            .arg(source.height);
    default:
        return QString::fromLatin1(ToFFrames::refusalText(refusal));
    }
}

} // namespace

CkToFPipeline::CkToFPipeline(int iTransform) : m_transform(iTransform) {
    m_transformer.reset(true);
}

QString CkToFPipeline::missingImages() const {
    const CkToFPicAPI::AngleList& angles = m_transformer.angles();
    QStringList missing;
    for (size_t i = 0; i < angles.size(); ++i) {
        if (angles[i] == CkToFPhaseCollector::kMissingAngle) {
            missing.append(QString::number(i));
        }
    }
    if (missing.isEmpty()) {
        return QStringLiteral("has nothing but a reference section");
    }
    const qsizetype count = missing.size();
    if (count > 8) {
        missing = missing.first(8);
        missing.append(QStringLiteral("..."));
    }
    return QStringLiteral("lacks %1 of its %2 images: %3 (counted from 0)")
        .arg(count)
        .arg(angles.size())
        .arg(missing.join(QStringLiteral(", ")));
}

QString CkToFPipeline::missingAngle() const {
    const CkToFPicAPI::AngleList& angles = m_transformer.angles();
    const std::optional<qint32> missing = ToFAngles::firstMissing(angles);
    return missing ? QStringLiteral("The set of %1 phases has none of %2 degrees.")
                         .arg(angles.size())
                         .arg(*missing)
                   : QString::fromLatin1(ToFAngles::whyIncomplete(angles));
}

CkToFPipeline::EkResult CkToFPipeline::process(const CkImageData& data, std::unique_ptr<CkImageData>& result,
                                               QString& sReason) {
    const SkPicBuf& source = data.picBuf();
    SkToFFormat out;
    const char* const error =
        ToFNegotiation::negotiate(m_transform, source, out.info, &data.metadata(), &out.metadata);
    if (error != nullptr) {
        sReason = QString::fromLatin1(error);
        return EkResult::Impossible;
    }
    if (!m_prepared || !isSameFormat(source, *m_prepared)) {
        m_prepared = source;
        m_transformer.prepare(source, data.metadata());
    }
    using EkOutcome = CkToFTransformer::EkOutcome;
    CkToFTransformer::SkResult done =
        m_transformer.process(m_transform, data, out, [](const SkPicBufInfo& info, bool, CkPicture& picture) {
            return picture.allocate(info);
        });
    if (done.angleError != nullptr) {
        sReason = missingAngle();
        return EkResult::Impossible;
    }
    switch (done.outcome) {
    case EkOutcome::NewFrame:
        result = std::move(done.frame);
        return EkResult::Frame;
    case EkOutcome::SameFrame:
        result.reset(data.share());
        return result != nullptr ? EkResult::Frame : EkResult::Impossible;
    case EkOutcome::Waiting:
        return EkResult::Waiting;
    case EkOutcome::Refused:
    case EkOutcome::NoPicture:
        break;
    }
    sReason = refusalText(done.refusal, source);
    return EkResult::Impossible;
}
