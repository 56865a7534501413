#pragma once

#include "plugins/zplToF/cloud/SkToFDepthPictures.h"
#include "zuCore/CkImageMetadata.h"
#include "zuCore/CkPicture.h"

#include <memory>

/// Turns any picture of a camera or chain into a depth picture with confidence, and owns both.
///
/// Movable, not copyable; one thread at a time. The pictures come from the frame's own pools, so that inputs
/// of one format allocate nothing after the first few. References made with CkPicBufAPI::SharePicBuf outlive
/// the next update and the frame itself.
class CkToFDepthFrame {
public:
    /// An empty depth picture of pixel step 1 and 8 bits, kind generic.
    CkToFDepthFrame();
    ~CkToFDepthFrame();
    CkToFDepthFrame(CkToFDepthFrame&& other) noexcept;
    CkToFDepthFrame& operator=(CkToFDepthFrame&& other) noexcept;
    CkToFDepthFrame(const CkToFDepthFrame&) = delete;
    CkToFDepthFrame& operator=(const CkToFDepthFrame&) = delete;

    /// Rebuilds everything from a picture; the metadata may be null. Generic pictures wider than
    /// iMaxGenericWidth pixels (above 0) are shrunk to it. Value ranges of float results are up to date
    /// afterwards.
    /// False without any change when the picture has no data. False with an empty depth picture when the
    /// descriptor is impossible, a stacked picture has fewer rows than phases, its sample type cannot be
    /// processed, or memory runs out. Never throws.
    bool update(const SkPicBuf& picture, const CkImageMetadata* pMetadata, int iMaxGenericWidth);

    /// Releases the pictures and returns to the state after construction.
    void clear();

    /// Valid until the next update, clear or move; the pixels stay valid while a reference is held.
    const SkToFDepthPictures& pictures() const { return m_pictures; }
    const SkPicBuf& depthPic() const { return m_pictures.depthPic; }
    const SkPicBuf& confidencePic() const { return m_pictures.confidencePic; }
    EkDepthDataType depthDataKind() const { return m_pictures.depthDataKind; }
    float resolutionRatio() const { return m_pictures.resolutionRatio; }
    bool isEmpty() const { return m_pictures.depthPic.data == nullptr; }

private:
    class CkPools;

    bool build(const SkPicBuf& picture, const CkImageMetadata* pMetadata, int iMaxGenericWidth);
    bool splitChannels(const SkPicBuf& picture);
    bool buildFromRawX2(const SkPicBuf& picture, const CkImageMetadata* pMetadata);
    bool buildFromAminB(const SkPicBuf& picture, const CkImageMetadata* pMetadata);
    bool buildFromHybrid(const SkPicBuf& picture, const CkImageMetadata* pMetadata);
    bool buildGeneric(const SkPicBuf& picture, quint32 uiMaxWidth);
    void refreshValueRanges();

    CkPicture m_depth;
    CkPicture m_confidence;
    SkToFDepthPictures m_pictures; ///< aliases of the two
    std::unique_ptr<CkPools> m_pools;
};
