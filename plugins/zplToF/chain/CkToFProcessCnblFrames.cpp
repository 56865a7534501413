// The block's life between setupStart and setupStop.

#include "chain/CkToFProcessCnbl.h"

#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkMemoryPool.h"

#include <memory>

namespace {

constexpr quint32 referenceSectionMode = 3;

} // namespace

void CkToFProcessCnbl::setupStart() {
    CkImageProvider::setupStart();
    m_collector.clear();
    m_reference.clear();
    m_processor.clear();
    m_bSetTooLarge = false;
    m_fedByVideo.reset();
    SkPicBufInfo in;
    CkImageMetadata metadata;
    if (inputImageInfo(in, &metadata)) {
        prepareBuffers(in, metadata);
    }
}

void CkToFProcessCnbl::prepareBuffers(const SkPicBufInfo& in, const CkImageMetadata& metadata) {
    const bool hybrid = CkToFPicAPI::isRawToFHybridPic(in, &metadata);
    if (metadata.sectionMode == referenceSectionMode) {
        m_reference.prepare(in);
    }
    if (CkToFPicAPI::incomingSeparatePhases(&metadata) && isFedByVideo()) {
        const auto place = CkToFPhaseCollector::SkPlace::of(metadata, hybrid);
        m_bSetTooLarge = m_collector.prepare(in, place.count) == CkToFPhaseCollector::EkPrepared::TooLarge;
        if (m_bSetTooLarge) {
            publish(tooLargeMessage(transform()));
        }
    }
    if (hybrid && m_collector.hasBuffer()) {
        m_processor.prepareHdr(m_collector.bufferInfo(), metadata.phasesCount);
    } else if (hybrid && metadata.phasesCount >= 2) {
        m_processor.prepareHdr(in, metadata.phasesCount);
    }
}

void CkToFProcessCnbl::setupStop() {
    CkImageProvider::setupStop();
    m_collector.clear();
    m_reference.clear();
    m_processor.clear();
    m_bSetTooLarge = false;
    m_fedByVideo.reset();
}

bool CkToFProcessCnbl::isFedByVideo() {
    if (!m_fedByVideo) {
        m_fedByVideo = isInChainWithVideoSource();
    }
    return *m_fedByVideo;
}

IkChainData* CkToFProcessCnbl::processData(IkChainData* pData) {
    auto* const data = dynamic_cast<CkImageData*>(pData);
    if (data == nullptr || state() == Blocked) {
        return nullptr;
    }
    // Read once: another thread may store a new value while this frame is worked on.
    const EkTransformType frameTransform = transform();
    SkPicBufInfo outInfo;
    CkImageMetadata outMeta;
    const bool negotiated = negotiate(frameTransform, data->picBuf(), outInfo, &data->metadata(), &outMeta);
    if (!negotiated || data->picBuf().data == nullptr) {
        if (!m_sLastError.isEmpty() && errorMessage().isEmpty()) {
            setErrorMessage(m_sLastError);
        }
        return nullptr;
    }
    bool passThrough = false;
    QString message;
    CkImageData* const result = processFrame(frameTransform, *data, outInfo, outMeta, passThrough, message);
    publish(message);
    if (passThrough) {
        return data;
    }
    if (result != nullptr) {
        delete data;
    }
    return result;
}

CkImageData* CkToFProcessCnbl::processFrame(EkTransformType transform, const CkImageData& data,
                                            const SkPicBufInfo& outInfo, const CkImageMetadata& outMeta,
                                            bool& bPassThrough, QString& sMessage) {
    const CkImageMetadata& metadata = data.metadata();
    const SkPicBuf* const picture = subtractReference(data.picBuf(), metadata);
    if (picture == nullptr) {
        return nullptr;
    }
    SkToFFrame frame{.frame = *picture, .input = picture};
    frame.hybrid = CkToFPicAPI::isRawToFHybridPic(data.picBuf(), &metadata);
    frame.phases = CkToFPicAPI::detectPhasesCount(data.picBuf(), &metadata);
    frame.pulseDuration = metadata.hybridPulseDuration;
    if (transform != AandBtoAminB && CkToFPicAPI::incomingSeparatePhases(&metadata) && isFedByVideo()) {
        gather(transform, metadata, frame, sMessage);
    }
    bPassThrough = CkToFFrameProcessor::passesThrough(transform, frame);
    if (bPassThrough || !m_processor.canProcess(transform, frame, outInfo)) {
        return nullptr;
    }
    CkToFPicture out;
    if (!takeOutputPicture(outInfo, CkToFFrameProcessor::leavesPixelsOpen(transform, frame), out.picBuf()) ||
        !m_processor.process(transform, frame, out.picBuf())) {
        return nullptr;
    }
    out.picBuf().copyPicAdditionalData(data.picBuf());
    auto result = std::make_unique<CkImageData>();
    result->setPicBuf(out.take());
    result->setMetadata(outMeta);
    return result.release();
}

const SkPicBuf* CkToFProcessCnbl::subtractReference(const SkPicBuf& picture,
                                                    const CkImageMetadata& metadata) {
    if (metadata.sectionMode != referenceSectionMode) {
        return &picture;
    }
    if (metadata.sectionIndex == 0) {
        m_reference.setReference(picture);
        return nullptr;
    }
    return m_reference.difference(picture);
}

void CkToFProcessCnbl::gather(EkTransformType transform, const CkImageMetadata& metadata, SkToFFrame& frame,
                              QString& sMessage) {
    frame.gathered = true;
    frame.input = nullptr;
    const auto place = CkToFPhaseCollector::SkPlace::of(metadata, frame.hybrid);
    if (m_bSetTooLarge) {
        sMessage = tooLargeMessage(transform);
        return;
    }
    if (!m_collector.add(frame.frame, place, metadata.phaseAngle)) {
        return;
    }
    frame.input = &m_collector.set();
    frame.phases = quint32(m_collector.angles().size());
    frame.angles = &m_collector.angles();
    if (!frame.hybrid) {
        checkAngles(transform, &sMessage);
    }
}

QString CkToFProcessCnbl::tooLargeMessage(EkTransformType transform) {
    // The others work on each image alone.
    const bool needsSet = transform >= Intensity && transform <= ConcatPhases;
    return needsSet ? tr("The set of phase images needs more than 1 GiB of memory.") : QString();
}

bool CkToFProcessCnbl::takeOutputPicture(const SkPicBufInfo& info, bool bClear, SkPicBuf& picBuf) {
    const size_t bytes = CkPicBufAPI::byteSize(info);
    CkMemoryPool* const pool = memoryPool();
    if (bytes == 0 || pool == nullptr) {
        return false;
    }
    if (CkPicBufAPI::AllocPicBufFromPool(pool, this, picBuf, info, bClear)) {
        m_uiMismatches = 0;
        return true;
    }
    if (pool->bytesPerPicture(this) != bytes) {
        renegotiateIfOutdated(info);
    }
    return false;
}

void CkToFProcessCnbl::renegotiateIfOutdated(const SkPicBufInfo& info) {
    CkChain* const ownChain = chain();
    SkPicBufInfo negotiated;
    if (ownChain == nullptr || (ownChain->negotiatedInfo(this, negotiated, nullptr) &&
                                CkPicBufAPI::byteSize(negotiated) == CkPicBufAPI::byteSize(info))) {
        return; // negotiated for just this, but the memory could not be had
    }
    // A source that describes its frames wrongly would have every frame renegotiate, so that the chain did
    // nothing else: at once, then ever more rarely down to every 32nd frame.
    ++m_uiMismatches;
    if ((m_uiMismatches & (m_uiMismatches - 1)) == 0 || m_uiMismatches % 32 == 0) {
        ownChain->requestRenegotiation();
    }
}

void CkToFProcessCnbl::publish(const QString& sMessage) {
    if (errorMessage() != sMessage) {
        setErrorMessage(sMessage);
    }
}
