#include "tof/CkTofPipeline.h"

#include "chain/CkToFNegotiation.h"
#include "chain/EkTransformType.h"
#include "zuCore/CkImageData.h"

#include <algorithm>

namespace {

constexpr quint32 referenceSectionMode = 3;

bool isSameFormat(const SkPicBufInfo& a, const SkPicBufInfo& b) {
    return a.width == b.width && a.height == b.height && a.channels == b.channels &&
           a.dataType == b.dataType && a.lineSize == b.lineSize && a.bitsPerChannel == b.bitsPerChannel &&
           a.colorFilterArray == b.colorFilterArray;
}

} // namespace

void CkTofPipeline::prepare(const SkPicBufInfo& in, const CkImageMetadata& metadata) {
    m_collector.clear();
    m_reference.clear();
    m_processor.clear();
    m_prepared = in;
    m_bPrepared = true;
    const bool hybrid = CkToFPicAPI::isRawToFHybridPic(in, &metadata);
    if (metadata.sectionMode == referenceSectionMode) {
        m_reference.prepare(in);
    }
    if (CkToFPicAPI::incomingSeparatePhases(&metadata)) {
        m_collector.prepare(in, CkToFPhaseCollector::SkPlace::of(metadata, hybrid).count);
    }
    if (hybrid && m_collector.hasBuffer()) {
        m_processor.prepareHdr(m_collector.bufferInfo(), metadata.phasesCount);
    } else if (hybrid && metadata.phasesCount >= 2) {
        m_processor.prepareHdr(in, metadata.phasesCount);
    }
}

bool CkTofPipeline::gather(const CkImageMetadata& metadata, SkToFFrame& frame) {
    frame.gathered = true;
    frame.input = nullptr;
    const auto place = CkToFPhaseCollector::SkPlace::of(metadata, frame.hybrid);
    if (!m_collector.add(frame.frame, place, metadata.phaseAngle)) {
        return false;
    }
    frame.input = &m_collector.set();
    frame.phases = quint32(m_collector.angles().size());
    frame.angles = &m_collector.angles();
    return true;
}

bool CkTofPipeline::hasAllAngles(QString& sReason) const {
    const CkToFPicAPI::AngleList& angles = m_collector.angles();
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

CkTofPipeline::EkResult CkTofPipeline::process(const CkImageData& data, std::unique_ptr<CkImageData>& result,
                                               QString& sReason) {
    const CkImageMetadata& metadata = data.metadata();
    const SkPicBuf& source = data.picBuf();
    SkPicBufInfo outInfo;
    CkImageMetadata outMeta;
    const char* const refused =
        CkToFNegotiation::negotiate(m_iTransform, source, outInfo, &metadata, &outMeta);
    if (refused != nullptr) {
        sReason = QString::fromLatin1(refused);
        return EkResult::Impossible;
    }
    if (!m_bPrepared || !isSameFormat(source, m_prepared)) {
        prepare(source, metadata);
    }
    const SkPicBuf* picture = &source;
    if (metadata.sectionMode == referenceSectionMode) {
        if (metadata.sectionIndex == 0) {
            m_reference.setReference(source);
            return EkResult::Waiting;
        }
        picture = m_reference.difference(source);
        if (picture == nullptr) {
            sReason = QStringLiteral("There is not enough memory.");
            return EkResult::Impossible;
        }
    }
    SkToFFrame frame{.frame = *picture, .input = picture};
    frame.hybrid = CkToFPicAPI::isRawToFHybridPic(source, &metadata);
    frame.phases = CkToFPicAPI::detectPhasesCount(source, &metadata);
    frame.pulseDuration = metadata.hybridPulseDuration;
    const bool alone = m_iTransform == ToFTransform::AandBtoAminB ||
                       m_iTransform == ToFTransform::SetABPhase || m_iTransform == ToFTransform::SetHybrid;
    if (!alone && CkToFPicAPI::incomingSeparatePhases(&metadata)) {
        if (!gather(metadata, frame)) {
            return EkResult::Waiting;
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
    CkToFPicture out;
    if (!m_processor.canProcess(m_iTransform, frame, outInfo) ||
        !CkPicBufAPI::AllocPicBufFromHeap(out.picBuf(), outInfo) ||
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
