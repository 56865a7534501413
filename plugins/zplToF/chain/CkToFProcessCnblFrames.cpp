// The block's life between setupStart and setupStop.

#include "plugins/zplToF/chain/CkToFProcessCnbl.h"

#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkMemoryPool.h"

#include <memory>

using ToFFrames::refusalText;

namespace {

bool isEmpty(const SkPicBufInfo& info) {
    return info.width == 0 || info.height == 0;
}

bool isKnown(CkToFProcessCnbl::EkTransformType transform) {
    return transform >= CkToFProcessCnbl::SetABPhase && transform <= CkToFProcessCnbl::SetHybrid;
}

} // namespace

void CkToFProcessCnbl::setupStart() {
    CkImageProvider::setupStart();
    forgetFrames();
    // What will keep every frame from being processed is said before the first one comes.
    const EkTransformType startTransform = transform();
    EkRefusal refusal = isKnown(startTransform) ? EkRefusal::None : EkRefusal::UnknownTransform;
    SkPicBufInfo in;
    CkImageMetadata metadata;
    if (inputImageInfo(in, &metadata)) {
        const EkRefusal buffers = prepareBuffers(in, metadata);
        SkPicBufInfo out;
        if (!negotiate(startTransform, in, out, &metadata, nullptr)) {
            show(m_sLastError);
            return;
        }
        if (refusal == EkRefusal::None && isEmpty(out)) {
            refusal = EkRefusal::NoOutputPixels;
        } else if (refusal == EkRefusal::None && !CkToFFrameProcessor::needsNoSet(startTransform)) {
            refusal = buffers;
        }
    }
    if (refusal != EkRefusal::None) {
        show(tr(refusalText(refusal)));
    }
}

CkToFProcessCnbl::EkRefusal CkToFProcessCnbl::prepareBuffers(const SkPicBufInfo& in,
                                                             const CkImageMetadata& metadata) {
    const EkRefusal refusal = m_input.prepare(in, metadata, isFedByVideo());
    const SkPicBufInfo* const set = m_input.setInfo();
    if (CkToFPicAPI::isRawToFHybridPic(in, &metadata) && (set != nullptr || metadata.phasesCount >= 2)) {
        m_processor.prepareHdr(set != nullptr ? *set : in, metadata.phasesCount);
    }
    return refusal == EkRefusal::None && m_processor.lacksHdrBuffer() ? EkRefusal::NoMemory : refusal;
}

void CkToFProcessCnbl::setupStop() {
    CkImageProvider::setupStop();
    forgetFrames();
}

void CkToFProcessCnbl::forgetFrames() {
    m_input.clear();
    m_processor.clear();
    m_sShownRefusal.clear();
    m_fedByVideo.reset();
}

bool CkToFProcessCnbl::isFedByVideo() {
    if (!m_fedByVideo) {
        m_fedByVideo = isInChainWithVideoSource();
    }
    return *m_fedByVideo;
}

IkChainData* CkToFProcessCnbl::processData(IkChainData* pData) {
    if (pData == nullptr || state() == Blocked) {
        return nullptr;
    }
    auto* const data = dynamic_cast<CkImageData*>(pData);
    if (data == nullptr) {
        refuse(tr(refusalText(EkRefusal::NoPicture)));
        return nullptr;
    }
    // Read once: another thread may store a new value while this frame is worked on.
    const EkTransformType frameTransform = transform();
    SkPicBufInfo outInfo;
    CkImageMetadata outMeta;
    if (!negotiate(frameTransform, data->picBuf(), outInfo, &data->metadata(), &outMeta)) {
        refuse(m_sLastError);
        return nullptr;
    }
    if (data->picBuf().data == nullptr) {
        refuse(tr(refusalText(EkRefusal::NoPixels)));
        return nullptr;
    }
    const SkOutcome outcome = processFrame(frameTransform, *data, outInfo, outMeta);
    if (outcome.refusal != EkRefusal::None) {
        show(tr(refusalText(outcome.refusal)));
        noteDropped();
    } else {
        publish(outcome.message);
    }
    if (outcome.passThrough) {
        return data;
    }
    if (outcome.output != nullptr) {
        delete data;
    }
    return outcome.output;
}

CkToFProcessCnbl::SkOutcome CkToFProcessCnbl::processFrame(EkTransformType transform, const CkImageData& data,
                                                           const SkPicBufInfo& outInfo,
                                                           const CkImageMetadata& outMeta) {
    SkOutcome outcome;
    if (!isKnown(transform)) {
        outcome.refusal = EkRefusal::UnknownTransform;
        return outcome;
    }
    const CkImageMetadata& metadata = data.metadata();
    const SkPicBuf* const section = m_input.lessReference(data.picBuf(), metadata, outcome.refusal);
    if (section == nullptr) {
        return outcome;
    }
    SkToFFrame frame{.frame = *section, .input = section};
    frame.hybrid = CkToFPicAPI::isRawToFHybridPic(data.picBuf(), &metadata);
    frame.phases = CkToFPicAPI::detectPhasesCount(data.picBuf(), &metadata);
    frame.pulseDuration = metadata.hybridPulseDuration;
    if (transform != AandBtoAminB && CkToFPicAPI::incomingSeparatePhases(&metadata) && isFedByVideo()) {
        const EkRefusal refusal = m_input.gather(metadata, frame);
        if (frame.input == nullptr && !CkToFFrameProcessor::needsNoSet(transform)) {
            // What no set will change is said of each of its images.
            const bool incomplete = refusal == EkRefusal::None;
            outcome.refusal = incomplete && isEmpty(outInfo) ? EkRefusal::NoOutputPixels : refusal;
            return outcome;
        }
        if (frame.input != nullptr && !frame.hybrid) {
            checkAngles(transform, &outcome.message);
        }
    }
    outcome.passThrough = CkToFFrameProcessor::passesThrough(transform, frame);
    CkPicture picture;
    if (!outcome.passThrough) {
        makePicture(transform, frame, outInfo, picture, outcome);
    }
    if (!picture.isEmpty()) {
        picture.picBuf().copyPicAdditionalData(data.picBuf());
        auto output = std::make_unique<CkImageData>();
        output->setPicBuf(picture.take());
        output->setMetadata(outMeta);
        outcome.output = output.release();
    }
    return outcome;
}

void CkToFProcessCnbl::makePicture(EkTransformType transform, const SkToFFrame& frame,
                                   const SkPicBufInfo& outInfo, CkPicture& picture, SkOutcome& outcome) {
    outcome.refusal = m_processor.refusal(transform, frame, outInfo);
    if (isEmpty(outInfo)) {
        outcome.refusal = EkRefusal::NoOutputPixels;
    }
    if (outcome.refusal != EkRefusal::None) {
        return;
    }
    const bool clear = CkToFFrameProcessor::leavesPixelsOpen(transform, frame);
    // Without a picture of the pool the chain counts the frame and says why.
    if (takeOutputPicture(outInfo, clear, picture.picBuf()) &&
        !m_processor.process(transform, frame, picture.picBuf())) {
        picture.reset();
        outcome.refusal = EkRefusal::NotSupported;
    }
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

void CkToFProcessCnbl::show(const QString& sRefusal) {
    m_sShownRefusal = sRefusal;
    publish(sRefusal);
}

void CkToFProcessCnbl::refuse(const QString& sReason) {
    // A message of somebody else, or of a set that was processed, is not replaced.
    const QString shown = errorMessage();
    if (shown.isEmpty() || shown == m_sShownRefusal) {
        show(sReason);
    }
    noteDropped();
}
