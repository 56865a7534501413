#include "plugins/zplToF/transform/ToFOperations.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

size_t rowBytes(const SkPicBufInfo& info) {
    return size_t(info.width) * info.channels * sampleBytes(info.dataType);
}

/// Copies the bytes of rows: source and target may differ in channels and width.
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

/// Two taps are two channels, differences one; negotiation accepts nothing else.
bool isTwoTaps(const SkToFFrame& frame) {
    return frame.input->channels == 2;
}

const SkPicBuf& hybridSource(const SkToFFrame& frame, CkToFHdrBuffer& hdr, const SkPicBuf& out) {
    const SkPicBuf* const merged = frame.input->height > out.height ? hdr.merge(*frame.input) : nullptr;
    return merged != nullptr ? *merged : frame.frame;
}

} // namespace

bool ToFOperations::setABPhase(const SkToFFrame& frame, CkToFHdrBuffer& /*hdr*/, SkPicBuf& out) {
    return copyRows(frame.frame, out);
}

bool ToFOperations::intensity(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out) {
    return frame.hybrid ? CkToFPicAPI::rawHybridToIntensity(hybridSource(frame, hdr, out), out)
                        : CkToFPicAPI::rawX2PicToIntensity(*frame.input, out, phasesArgument(frame));
}

bool ToFOperations::amplitude(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out) {
    if (frame.hybrid) {
        return CkToFPicAPI::rawHybridToAmplitude(hybridSource(frame, hdr, out), out);
    }
    const auto operation =
        isTwoTaps(frame) ? CkToFPicAPI::rawX2PicToAmplitude : CkToFPicAPI::rawAminBPicToAmplitude;
    return operation(*frame.input, out, phasesArgument(frame), frame.angles);
}

bool ToFOperations::depth(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out) {
    if (frame.hybrid) {
        return CkToFPicAPI::rawHybridToDepth_Confidence(hybridSource(frame, hdr, out), out,
                                                        frame.pulseDuration);
    }
    const auto operation = isTwoTaps(frame) ? CkToFPicAPI::rawX2PicToPhaseShift_Confidence
                                            : CkToFPicAPI::rawAminBPicToPhaseShift;
    return operation(*frame.input, out, phasesArgument(frame), frame.angles);
}

bool ToFOperations::concatPhases(const SkToFFrame& frame, CkToFHdrBuffer& hdr, SkPicBuf& out) {
    if (!frame.hybrid) {
        return copyRows(*frame.input, out);
    }
    SkPicBuf* const merged = hdr.merge(*frame.input);
    if (merged == nullptr) {
        return false;
    }
    if (merged->bitsPerChannel > 16) {
        if (!CkPicBufAPI::ShiftBits(*merged, 16 - int(merged->bitsPerChannel), false)) {
            return false;
        }
        merged->bitsPerChannel = 16;
    }
    return CkPicBufAPI::ConvertPicToDifBpc(*merged, out, false);
}

bool ToFOperations::aandBtoAminB(const SkToFFrame& frame, CkToFHdrBuffer& /*hdr*/, SkPicBuf& out) {
    return CkToFPicAPI::rawX2PicToRawAminB(frame.frame, out);
}

bool ToFOperations::setHybrid(const SkToFFrame& frame, CkToFHdrBuffer& /*hdr*/, SkPicBuf& out) {
    return frame.frame.channels == 1 && out.channels == 3
               ? CkToFPicAPI::convertTestImageToHybridTof(frame.frame, out)
               : copyRows(frame.frame, out);
}
