#include "plugins/zplToF/cloud/CkToFDepthFrame.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/pic/ToFFormats.h"
#include "zuCore/CkMemoryPool.h"
#include "zuCore/ToFVocabulary.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

namespace {

enum EkPool : size_t { DepthPool, ConfidencePool, WorkPool, PoolCount };

/// Two, so that a reference held to the last picture does not force an allocation for the next one.
constexpr int kPicturesPerPool = 2;

/// The format with rows padded like those of another picture.
SkPicBufInfo paddedLike(const SkPicBufInfo& other, SkPicBufInfo info) {
    // Other paddings could make rows begin inside a sample.
    info.padRows(other.linePadding % sizeof(quint64) == 0 ? other.linePadding : 0);
    return info;
}

SkPicBufInfo describeFloat(quint32 uiWidth, quint32 uiHeight, quint32 uiChannels, const SkPicBufInfo& like) {
    return paddedLike(like, SkPicBufInfo::of(uiWidth, uiHeight, uiChannels, EkImageDataType::Float32, 32));
}

/// One channel of a picture's sample type.
SkPicBufInfo describeGrey(quint32 uiWidth, quint32 uiHeight, const SkPicBufInfo& like) {
    return paddedLike(like, SkPicBufInfo::of(uiWidth, uiHeight, 1, like.dataType, like.bitsPerChannel));
}

/// Phase shifts that a processing block computed from A minus B pictures: their metadata keep the raw format
/// code.
bool isPhaseShiftFromAminB(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return info.dataType == EkImageDataType::Float32 && info.channels == 1 && pMetadata &&
           ToFFormats::isDifference(pMetadata->tofFormatCode);
}

/// Rows of one phase; 0 when there are fewer rows than phases.
quint32 rowsPerPhase(const SkPicBufInfo& info, quint32 uiPhases) {
    return uiPhases == 0 ? 0 : info.height / uiPhases;
}

void refreshRange(SkPicBuf& picture) {
    // Without any finite value both become 0.
    CkPicBufAPI::CalcFloatDataMinMax(picture, picture.minValue, picture.maxValue, false);
}

} // namespace

/// Memory of the pictures. On the heap: the addresses of m_keys identify the pools and must survive a move.
class CkToFDepthFrame::CkPools {
public:
    bool acquire(EkPool pool, const SkPicBufInfo& info, bool bClear, CkPicture& picture) {
        const size_t bytes = CkPicBufAPI::byteSize(info);
        if (bytes == 0) {
            return false;
        }
        const void* owner = &m_keys[pool];
        if (m_reserved[pool] != bytes) {
            m_reserved[pool] = m_memory.reserve(owner, info, kPicturesPerPool) ? bytes : 0;
        }
        if (m_reserved[pool] != 0 && m_memory.acquire(owner, info, picture.picBuf(), bClear)) {
            return true;
        }
        // All pictures of the pool are still referenced.
        return picture.allocate(info);
    }

private:
    CkMemoryPool m_memory;
    std::array<char, PoolCount> m_keys{};
    std::array<size_t, PoolCount> m_reserved{};
};

CkToFDepthFrame::CkToFDepthFrame() {
    clear();
}

CkToFDepthFrame::~CkToFDepthFrame() = default;

CkToFDepthFrame::CkToFDepthFrame(CkToFDepthFrame&& other) noexcept
    : m_depth(std::move(other.m_depth)), m_confidence(std::move(other.m_confidence)),
      m_pictures(std::exchange(other.m_pictures, {})), m_pools(std::move(other.m_pools)) {
    other.clear();
}

CkToFDepthFrame& CkToFDepthFrame::operator=(CkToFDepthFrame&& other) noexcept {
    if (this != &other) {
        m_depth = std::move(other.m_depth);
        m_confidence = std::move(other.m_confidence);
        m_pictures = std::exchange(other.m_pictures, {});
        m_pools = std::move(other.m_pools);
        other.clear();
    }
    return *this;
}

void CkToFDepthFrame::clear() {
    m_depth.reset();
    m_confidence.reset();
    m_pictures = {};
    m_pictures.depthPic.channels = 1;
    m_pictures.depthPic.bitsPerChannel = 8;
}

bool CkToFDepthFrame::update(const SkPicBuf& picture, const CkImageMetadata* pMetadata,
                             int iMaxGenericWidth) {
    if (!picture.data) {
        return false;
    }
    clear();
    bool built = false;
    try {
        if (!m_pools) {
            m_pools = std::make_unique<CkPools>();
        }
        built = CkPicBufAPI::isValid(picture) && build(picture, pMetadata, iMaxGenericWidth);
    } catch (const std::bad_alloc&) {
        built = false;
    }
    if (!built) {
        clear();
        return false;
    }
    refreshValueRanges();
    m_depth.picBuf().copyPicAdditionalData(picture);
    m_pictures.depthPic = m_depth.picBuf();
    m_pictures.confidencePic = m_confidence.picBuf();
    m_pictures.resolutionRatio = float(picture.width) / float(m_pictures.depthPic.width);
    return true;
}

bool CkToFDepthFrame::build(const SkPicBuf& picture, const CkImageMetadata* pMetadata, int iMaxGenericWidth) {
    if (picture.dataType == EkImageDataType::Float32 && picture.channels == 2) {
        if (CkToFPicAPI::isPhaseShiftImage(picture, pMetadata)) {
            m_pictures.depthDataKind = EkDepthDataType::PhaseShift;
        } else if (CkToFPicAPI::isDepthImage(picture, pMetadata)) {
            m_pictures.depthDataKind = EkDepthDataType::Depth;
        }
        return splitChannels(picture);
    }
    if (CkToFPicAPI::isRawX2ToFABPic(picture, pMetadata)) {
        return buildFromRawX2(picture, pMetadata);
    }
    if (CkToFPicAPI::isRawToFAminBPic(picture, pMetadata)) {
        return buildFromAminB(picture, pMetadata);
    }
    if (CkToFPicAPI::isRawToFHybridPic(picture, pMetadata)) {
        return buildFromHybrid(picture, pMetadata);
    }
    if (isPhaseShiftFromAminB(picture, pMetadata)) {
        m_pictures.depthDataKind = EkDepthDataType::PhaseShift;
        // Wrapping phases cannot be averaged, so these pictures are never shrunk.
        return buildGeneric(picture, picture.width);
    }
    return buildGeneric(picture, quint32(std::max(1, iMaxGenericWidth)));
}

bool CkToFDepthFrame::splitChannels(const SkPicBuf& picture) {
    const SkPicBufInfo info = describeFloat(picture.width, picture.height, 1, picture);
    return m_pools->acquire(DepthPool, info, false, m_depth) &&
           m_pools->acquire(ConfidencePool, info, false, m_confidence) &&
           CkPicBufAPI::ExtractChannel(picture, m_depth.picBuf(), 0) &&
           CkPicBufAPI::ExtractChannel(picture, m_confidence.picBuf(), 1);
}

bool CkToFDepthFrame::buildFromRawX2(const SkPicBuf& picture, const CkImageMetadata* pMetadata) {
    const quint32 phases = CkToFPicAPI::detectPhasesCount(picture, pMetadata);
    const quint32 rows = rowsPerPhase(picture, phases);
    CkPicture both;
    if (rows == 0 || !m_pools->acquire(WorkPool, describeFloat(picture.width, rows, 2, picture),
                                       !ToFPhases::isSupportedCount(phases), both)) {
        return false;
    }
    m_pictures.depthDataKind = EkDepthDataType::PhaseShift;
    return CkToFPicAPI::rawX2PicToPhaseShift_Confidence(picture, both.picBuf(), int(phases)) &&
           splitChannels(both.picBuf());
}

bool CkToFDepthFrame::buildFromAminB(const SkPicBuf& picture, const CkImageMetadata* pMetadata) {
    const quint32 phases = CkToFPicAPI::detectPhasesCount(picture, pMetadata);
    const quint32 rows = rowsPerPhase(picture, phases);
    m_pictures.depthDataKind = EkDepthDataType::PhaseShift;
    return rows != 0 &&
           m_pools->acquire(DepthPool, describeFloat(picture.width, rows, 1, picture),
                            !ToFPhases::isSupportedCount(phases), m_depth) &&
           CkToFPicAPI::rawAminBPicToPhaseShift(picture, m_depth.picBuf(), int(phases));
}

bool CkToFDepthFrame::buildFromHybrid(const SkPicBuf& picture, const CkImageMetadata* pMetadata) {
    CkPicture both;
    if (!m_pools->acquire(WorkPool, describeFloat(picture.width, picture.height, 2, picture), false, both)) {
        return false;
    }
    const float pulseDuration = pMetadata ? pMetadata->hybridPulseDuration : 0.0F;
    m_pictures.depthDataKind = EkDepthDataType::Depth;
    return CkToFPicAPI::rawHybridToDepth_Confidence(picture, both.picBuf(), pulseDuration) &&
           splitChannels(both.picBuf());
}

bool CkToFDepthFrame::buildGeneric(const SkPicBuf& picture, quint32 uiMaxWidth) {
    const bool shrink = picture.width > uiMaxWidth;
    const quint32 width = shrink ? uiMaxWidth : picture.width;
    const quint32 height =
        shrink ? quint32(std::max<quint64>(1, quint64(picture.height) * uiMaxWidth / picture.width))
               : picture.height;
    const bool supported = isCloudSampleType(picture.dataType);
    SkPicBufInfo info = describeGrey(width, height, picture);
    info.layoutFlag = picture.layoutFlag;
    info.colorFilterArray = picture.colorFilterArray;
    if (!m_pools->acquire(DepthPool, info, !supported, m_depth)) {
        return false;
    }
    SkPicBuf& depthPic = m_depth.picBuf();
    // Unsupported samples are never drawn: the picture stays zeroed.
    if (!supported) {
        return true;
    }
    if (picture.channels == 1) {
        return shrink ? CkPicBufAPI::ResizePic(picture, depthPic, width, height)
                      : CkPicBufAPI::CopyPicBuf(picture, depthPic);
    }
    if (!shrink) {
        return CkPicBufAPI::ConvertToGrey(picture, depthPic);
    }

    CkPicture grey;
    const SkPicBufInfo greyInfo = describeGrey(picture.width, picture.height, picture);
    return m_pools->acquire(WorkPool, greyInfo, false, grey) &&
           CkPicBufAPI::ConvertToGrey(picture, grey.picBuf()) &&
           CkPicBufAPI::ResizePic(grey.picBuf(), depthPic, width, height);
}

void CkToFDepthFrame::refreshValueRanges() {
    if (m_depth.picBuf().dataType == EkImageDataType::Float32) {
        refreshRange(m_depth.picBuf());
    }
    if (m_confidence.picBuf().data) {
        refreshRange(m_confidence.picBuf());
    }
}
