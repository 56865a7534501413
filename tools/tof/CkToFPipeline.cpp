#include "tools/tof/CkToFPipeline.h"

#include "plugins/zplToF/transform/EkTransformType.h"
#include "plugins/zplToF/transform/ToFNegotiation.h"
#include "zuCore/CkImageData.h"

#include <algorithm>

namespace {

bool isSameFormat(const SkPicBufInfo& a, const SkPicBufInfo& b) {
    return a.width == b.width && a.height == b.height && a.channels == b.channels &&
           a.dataType == b.dataType && a.lineSize == b.lineSize && a.bitsPerChannel == b.bitsPerChannel &&
           a.colorFilterArray == b.colorFilterArray;
}

} // namespace

void CkToFPipeline::prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata) {
    m_processor.clear();
    m_prepared = in;
    m_bPrepared = true;
    m_input.prepare(in, metadata, true);
    const SkPicBufInfo* const set = m_input.setInfo();
    if (CkToFPicAPI::isRawToFHybridPic(in, &metadata) && (set != nullptr || metadata.phasesCount >= 2)) {
        m_processor.prepareHdr(set != nullptr ? *set : in, metadata.phasesCount);
    }
}

QString CkToFPipeline::missingImages() const {
    const CkToFPicAPI::AngleList& angles = m_input.angles();
    QStringList missing;
    for (size_t i = 0; i < angles.size(); ++i) {
        if (angles[i] == CkToFPhaseCollector::missingAngle) {
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

bool CkToFPipeline::hasAllAngles(QString& sReason) const {
    const CkToFPicAPI::AngleList& angles = m_input.angles();
    const auto count = qint32(angles.size());
    if (count == 1) {
        return true;
    }
    if (count != 2 && count != 4 && count != 8) {
        sReason = QStringLiteral("ToF processing requires 2, 4 or 8 phases.");
        return false;
    }
    const qint32 spacing = count == 8 ? 45 : 90;
    for (qint32 i = 0; i < count; ++i) {
        if (std::find(angles.begin(), angles.end(), i * spacing) == angles.end()) {
            sReason =
                QStringLiteral("The set of %1 phases has none of %2 degrees.").arg(count).arg(i * spacing);
            return false;
        }
    }
    return true;
}

CkToFPipeline::EkResult CkToFPipeline::process(const CkImageData& data, std::unique_ptr<CkImageData>& result,
                                               QString& sReason) {
    const CkImageMetadata& metadata = data.metadata();
    const SkPicBuf& source = data.picBuf();
    SkPicBufInfo outInfo;
    CkImageMetadata outMeta;
    const char* const refused = ToFNegotiation::negotiate(m_iTransform, source, outInfo, &metadata, &outMeta);
    if (refused != nullptr) {
        sReason = QString::fromLatin1(refused);
        return EkResult::Impossible;
    }
    if (!m_bPrepared || !isSameFormat(source, m_prepared)) {
        prepare(source, metadata);
    }
    using EkRefusal = ToFFrames::EkRefusal;
    EkRefusal refusal = EkRefusal::None;
    const auto waitingOrRefused = [&] {
        sReason = QString::fromLatin1(ToFFrames::refusalText(refusal));
        return refusal == EkRefusal::None ? EkResult::Waiting : EkResult::Impossible;
    };
    const SkPicBuf* const picture = m_input.lessReference(source, metadata, refusal);
    if (picture == nullptr) {
        return waitingOrRefused();
    }
    SkToFFrame frame{.frame = *picture, .input = picture};
    frame.hybrid = CkToFPicAPI::isRawToFHybridPic(source, &metadata);
    frame.phases = CkToFPicAPI::detectPhasesCount(source, &metadata);
    frame.pulseDuration = metadata.hybridPulseDuration;
    if (!CkToFFrameProcessor::needsNoSet(m_iTransform) && CkToFPicAPI::incomingSeparatePhases(&metadata)) {
        refusal = m_input.gather(metadata, frame);
        if (frame.input == nullptr) {
            return waitingOrRefused();
        }
        const bool byAngle = m_iTransform == ToFTransform::Amplitude || m_iTransform == ToFTransform::Depth;
        if (byAngle && !frame.hybrid && !hasAllAngles(sReason)) {
            return EkResult::Impossible;
        }
    }
    if (CkToFFrameProcessor::passesThrough(m_iTransform, frame)) {
        result.reset(data.share());
        return result != nullptr ? EkResult::Frame : EkResult::Impossible;
    }
    refusal = m_processor.refusal(m_iTransform, frame, outInfo);
    if (refusal != EkRefusal::None) {
        return waitingOrRefused();
    }
    CkPicture out;
    if (!CkPicBufAPI::AllocPicBufFromHeap(out.picBuf(), outInfo) ||
        !m_processor.process(m_iTransform, frame, out.picBuf())) {
        sReason = QStringLiteral("The transform cannot work on a picture of %1 x %2 pixels of this kind.")
                      .arg(source.width)
                      .arg(source.height);
        return EkResult::Impossible;
    }
    out.picBuf().copyPicAdditionalData(source);
    result = std::make_unique<CkImageData>();
    result->setPicBuf(out.take());
    result->setMetadata(outMeta);
    return EkResult::Frame;
}
