#include "plugins/zplToF/transform/CkToFFrameProcessor.h"

#include "plugins/zplToF/transform/EkTransformType.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

size_t rowBytes(const SkPicBufInfo& info) {
    return size_t(info.width) * info.channels * sampleBytes(info.dataType);
}

/// Copies the rows of the target out of the source, whatever the two call their pixels.
bool copyRows(const SkPicBuf& source, SkPicBuf& target) {
    const size_t bytes = rowBytes(target);
    if (!CkPicBufAPI::isValid(source) || source.data == nullptr || source.height < target.height ||
        rowBytes(source) < bytes) {
        return false;
    }
    for (quint32 y = 0; y < target.height; ++y) {
        std::memcpy(target.row(y), source.row(y), bytes);
    }
    return true;
}

int phasesArgument(const SkToFFrame& frame) {
    return int(std::min<quint32>(frame.phases, std::numeric_limits<int>::max()));
}

bool makeIntensity(const SkToFFrame& frame, SkPicBuf& out) {
    return CkToFPicAPI::rawX2PicToIntensity(*frame.input, out, phasesArgument(frame));
}

// Two taps come as two channels, differences as one; the negotiation let nothing else through.
bool makeAmplitude(const SkToFFrame& frame, SkPicBuf& out) {
    const auto operation =
        frame.input->channels == 2 ? CkToFPicAPI::rawX2PicToAmplitude : CkToFPicAPI::rawAminBPicToAmplitude;
    return operation(*frame.input, out, phasesArgument(frame), frame.angles);
}

bool makePhaseShift(const SkToFFrame& frame, SkPicBuf& out) {
    const auto operation = frame.input->channels == 2 ? CkToFPicAPI::rawX2PicToPhaseShift_Confidence
                                                      : CkToFPicAPI::rawAminBPicToPhaseShift;
    return operation(*frame.input, out, phasesArgument(frame), frame.angles);
}

bool isSupportedPhasesCount(quint32 phases) {
    return phases == 1 || phases == 2 || phases == 4 || phases == 8;
}

} // namespace

bool CkToFFrameProcessor::prepareHdr(const SkPicBufInfo& sections, qint32 iPhasesCount) {
    clear();
    SkPicBufInfo info = sections;
    if (iPhasesCount > 1) {
        info.height /= quint32(iPhasesCount);
    }
    info.dataType = EkImageDataType::UInt32;
    info.bitsPerChannel = 32;
    const quint64 pitch = (quint64(info.width) * info.channels * 4 + 255) & ~quint64(255);
    if (pitch > std::numeric_limits<quint32>::max()) {
        return false;
    }
    info.lineSize = quint32(pitch);
    if (!CkPicBufAPI::AllocPicBufFromHeap(m_hdr.picBuf(), info)) {
        m_bHdrMissing = CkPicBufAPI::byteSize(info) != 0;
        return false;
    }
    m_hdrInfo = info;
    return true;
}

void CkToFFrameProcessor::clear() {
    m_hdr.reset();
    m_hdrInfo = SkPicBufInfo();
    m_bHdrMissing = false;
}

bool CkToFFrameProcessor::passesThrough(int iTransform, const SkToFFrame& frame) {
    return iTransform == ToFTransform::ConcatPhases && !frame.hybrid && !frame.gathered;
}

bool CkToFFrameProcessor::needsNoSet(int iTransform) {
    return iTransform == ToFTransform::SetABPhase || iTransform == ToFTransform::AandBtoAminB ||
           iTransform == ToFTransform::SetHybrid;
}

CkToFFrameProcessor::EkRefusal CkToFFrameProcessor::refusal(int iTransform, const SkToFFrame& frame,
                                                            const SkPicBufInfo& out) const {
    if (needsNoSet(iTransform)) {
        return EkRefusal::None;
    }
    const bool merges = frame.hybrid && frame.input->height > out.height;
    switch (iTransform) {
    case ToFTransform::Intensity:
    case ToFTransform::Amplitude:
    case ToFTransform::Depth:
        return merges && m_bHdrMissing ? EkRefusal::NoMemory : EkRefusal::None;
    case ToFTransform::ConcatPhases:
        if (merges && m_bHdrMissing) {
            return EkRefusal::NoMemory;
        }
        return !frame.hybrid || (merges && hasHdrBuffer()) ? EkRefusal::None : EkRefusal::NothingToMerge;
    default:
        return EkRefusal::UnknownTransform;
    }
}

bool CkToFFrameProcessor::leavesPixelsOpen(int iTransform, const SkToFFrame& frame) {
    const bool stacked = iTransform == ToFTransform::Intensity || iTransform == ToFTransform::Amplitude ||
                         iTransform == ToFTransform::Depth;
    return stacked && !frame.hybrid && !isSupportedPhasesCount(frame.phases);
}

bool CkToFFrameProcessor::process(int iTransform, const SkToFFrame& frame, SkPicBuf& out) {
    switch (iTransform) {
    case ToFTransform::SetABPhase:
        return relabel(frame, out);
    case ToFTransform::SetHybrid:
        return frame.frame.channels == 1 && out.channels == 3
                   ? CkToFPicAPI::convertTestImageToHybridTof(frame.frame, out)
                   : relabel(frame, out);
    case ToFTransform::Intensity:
        return frame.hybrid ? CkToFPicAPI::rawHybridToIntensity(hybridSource(frame, out), out)
                            : makeIntensity(frame, out);
    case ToFTransform::Amplitude:
        return frame.hybrid ? CkToFPicAPI::rawHybridToAmplitude(hybridSource(frame, out), out)
                            : makeAmplitude(frame, out);
    case ToFTransform::Depth:
        return frame.hybrid ? CkToFPicAPI::rawHybridToDepth_Confidence(hybridSource(frame, out), out,
                                                                       frame.pulseDuration)
                            : makePhaseShift(frame, out);
    case ToFTransform::ConcatPhases:
        return concatenate(frame, out);
    case ToFTransform::AandBtoAminB:
        return CkToFPicAPI::rawX2PicToRawAminB(frame.frame, out);
    default:
        return false;
    }
}

bool CkToFFrameProcessor::relabel(const SkToFFrame& frame, SkPicBuf& out) const {
    return copyRows(frame.frame, out);
}

bool CkToFFrameProcessor::concatenate(const SkToFFrame& frame, SkPicBuf& out) {
    if (!frame.hybrid) {
        return copyRows(*frame.input, out);
    }
    if (!mergeSections(*frame.input)) {
        return false;
    }
    SkPicBuf& merged = m_hdr.picBuf();
    if (merged.bitsPerChannel > 16) {
        if (!CkPicBufAPI::ShiftBits(merged, 16 - int(merged.bitsPerChannel), false)) {
            return false;
        }
        merged.bitsPerChannel = 16;
    }
    return CkPicBufAPI::ConvertPicToDifBpc(merged, out, false);
}

bool CkToFFrameProcessor::mergeSections(const SkPicBuf& sections) {
    // A merge writes the bits it found into the descriptor; a dark frame finds none and would keep the last.
    static_cast<SkPicBufInfo&>(m_hdr.picBuf()) = m_hdrInfo;
    return CkToFPicAPI::processHdrFromImageSections(sections, m_hdr.picBuf());
}

const SkPicBuf& CkToFFrameProcessor::hybridSource(const SkToFFrame& frame, const SkPicBuf& out) {
    const bool merged = frame.input->height > out.height && hasHdrBuffer() && mergeSections(*frame.input);
    return merged ? m_hdr.picBuf() : frame.frame;
}
