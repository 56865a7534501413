#pragma once

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/view3d/SkToFViewSettings.h"

#include <memory>

class CkImageData;
class CkToFViewLut;

/// What a 3D view shows, without widget and scene: the depth picture of the last frame, the options, and the
/// cloud built from both. One thread at a time.
class CkToFCloudModel {
public:
    explicit CkToFCloudModel(EkToFVertexLayout layout);
    ~CkToFCloudModel();

    /// Makes the depth and confidence pictures of a frame and adopts the optical values that the camera
    /// reports. False when there is no depth picture afterwards, and, without any change, for null and for a
    /// frame without pixels.
    bool setFrame(const CkImageData* pData);
    /// Builds the cloud from the depth picture. False, and the cloud is unchanged, without a depth picture or
    /// colours, or when the builder refuses.
    bool build(const CkToFViewLut& lut);

    /// Lowers a threshold meant for phase confidence when the data are of another kind, whose confidence it
    /// would never exclude.
    void adaptThresholdToKind();
    /// Applies a new threshold. Values not above 0 are ignored; false when the cloud cannot have changed.
    bool setConfidenceThreshold(float fThreshold);

    SkToFViewSettings& options() { return m_options; }
    const SkToFViewSettings& options() const { return m_options; }
    const CkToFDepthFrame& frame() const { return m_frame; }
    const CkToFCloudBuilder& cloud() const { return m_cloud; }
    CkToFCloudBuilder& cloud() { return m_cloud; }
    /// The depth picture with the metadata of its frame; null before the first frame.
    CkImageData* imageData() const { return m_data.get(); }

    float zZoom() const { return m_zZoom; }
    void setZZoom(float fFactor) { m_zZoom = fFactor; } ///< above 0
    /// Pixels; generic pictures wider than this are shrunk to it.
    int depthTexResolutionW() const { return m_depthTexResolutionW; }
    void setDepthTexResolutionW(int iWidth) { m_depthTexResolutionW = iWidth; }
    bool usesPoints() const { return m_layout == EkToFVertexLayout::Points; }

private:
    const EkToFVertexLayout m_layout;
    CkToFDepthFrame m_frame;
    std::unique_ptr<CkImageData> m_data;
    int m_depthTexResolutionW = 640;
    SkToFViewSettings m_options;
    float m_zZoom = 1.0F;
    CkToFCloudBuilder m_cloud;
};
