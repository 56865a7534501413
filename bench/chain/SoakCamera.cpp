#include "bench/chain/SoakCamera.h"

#include <cstring>

namespace {

constexpr quint32 kWidth = 96;
constexpr quint32 kHeight = 64;

void setLayout(SkPicBufInfo& info, quint32 rows, quint32 channels, EkImageDataType type, quint32 bits) {
    info = SkPicBufInfo::of(kWidth, rows, channels, type, bits);
}

void setHybrid(SkPicBufInfo& info, CkImageMetadata& metadata, quint32 rows, qint32 phasesCount) {
    setLayout(info, rows, 3, EkImageDataType::UInt16, 12);
    info.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    metadata.colorFilterArray = 13;
    metadata.phasesCount = phasesCount;
}

} // namespace

void SoakCamera::describe(Readout readout, SkPicBufInfo& info, CkImageMetadata& metadata) {
    metadata = CkImageMetadata();
    metadata.cameraName = QString::number(int(readout));
    switch (readout) {
    case AandB4:
    case AandB2:
    case AandBSeparate:
        metadata.tofFormatCode = ToFFormatCode::kRawX2Bits12;
        metadata.phasesCount = readout == AandB4 ? 4 : readout == AandB2 ? 2 : 1;
        metadata.phaseSequenceLength = readout == AandBSeparate ? 4 : 0;
        setLayout(info, kHeight * quint32(metadata.phasesCount), 2, EkImageDataType::UInt16, 12);
        break;
    case AminusB4:
        metadata.tofFormatCode = ToFFormatCode::kAminusBBits12;
        metadata.phasesCount = 4;
        setLayout(info, 4 * kHeight, 1, EkImageDataType::Int16, 12);
        break;
    case Hybrid:
        setHybrid(info, metadata, kHeight, 1);
        break;
    case HybridSections:
        setHybrid(info, metadata, 3 * kHeight, 3);
        break;
    case HybridReference:
        setHybrid(info, metadata, kHeight, 3);
        metadata.sectionMode = 3;
        metadata.sectionCount = 4;
        break;
    default:
        setLayout(info, kHeight, 1, EkImageDataType::UInt8, 8);
        break;
    }
}

void SoakCamera::setReadout(Readout readout) {
    const std::lock_guard lock(m_mutex);
    m_readout = readout;
}

std::unique_ptr<CkImageData> SoakCamera::nextFrame() {
    const std::lock_guard lock(m_mutex);
    SkPicBufInfo format;
    CkImageMetadata record;
    describe(m_readout, format, record);
    if (record.phaseSequenceLength > 0) {
        record.phaseSequenceIndex = qint32(m_uiFrame % 4);
        record.phaseAngle = 90 * record.phaseSequenceIndex;
    }
    record.sectionIndex = record.sectionCount > 0 ? quint32(m_uiFrame % record.sectionCount) : 0;
    auto frame = ::makeFrame(format, record, m_uiFrame);
    SkPicBuf& picture = frame->picBuf();
    if (picture.data == nullptr) {
        return nullptr;
    }
    std::memset(picture.data, int(m_uiFrame % 16), picture.lineSize);
    ++m_uiFrame;
    return frame;
}

bool SoakCamera::sourceImageInfo(SkPicBufInfo& out, CkImageMetadata* pMetadata) const {
    const std::lock_guard lock(m_mutex);
    CkImageMetadata record;
    describe(m_readout, out, record);
    if (pMetadata != nullptr) {
        *pMetadata = record;
    }
    return true;
}
