#include "plugins/zplToF/view3d/CkToFCloudModel.h"

#include "plugins/zplToF/view3d/CkToFViewLut.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"
#include "zuCore/CkPicBufAPI.h"

namespace {

constexpr float kMaxDepthThreshold = 1.0F; // confidence of depth data lies between 0 and 1
constexpr float kDepthThreshold = 0.6F;    // replaces a threshold beyond that range

} // namespace

CkToFCloudModel::CkToFCloudModel(EkToFVertexLayout layout) : m_layout(layout) {}

CkToFCloudModel::~CkToFCloudModel() = default;

bool CkToFCloudModel::setFrame(const CkImageData* pData) {
    if (pData == nullptr || pData->picBuf().data == nullptr) {
        return false;
    }
    // First, so that the frame can reuse the pixels.
    m_data.reset();
    const CkImageMetadata& metadata = pData->metadata();
    m_frame.update(pData->picBuf(), &metadata, m_depthTexResolutionW);
    m_options.opticalPath.adoptCameraValues(metadata);
    if (m_frame.isEmpty()) {
        return false;
    }
    SkPicBuf shared;
    if (CkPicBufAPI::SharePicBuf(m_frame.depthPic(), shared)) {
        shared.copyPicAdditionalData(pData->picBuf());
        m_data = std::make_unique<CkImageData>();
        m_data->setPicBuf(shared);
        m_data->setMetadata(metadata);
    }
    return true;
}

bool CkToFCloudModel::build(const CkToFViewLut& lut) {
    if (m_frame.isEmpty() || lut.colors() == nullptr) {
        return false;
    }
    SkToFCloudParameters parameters;
    parameters.opticalPath = m_options.opticalPath;
    parameters.zZoom = m_zZoom;
    parameters.pColourTable = lut.colors();
    if (!lut.lut()->contrastEntries().isEmpty()) {
        parameters.contrast = lut.lut()->contrastEntries().constFirst();
    }
    parameters.layout = m_layout;
    return m_cloud.build(m_frame.pictures(), parameters);
}

void CkToFCloudModel::adaptThresholdToKind() {
    float& threshold = m_options.opticalPath.confidenceThreshold;
    if (m_frame.depthDataKind() != EkDepthDataType::PhaseShift && threshold > kMaxDepthThreshold) {
        threshold = kDepthThreshold;
    }
}

bool CkToFCloudModel::setConfidenceThreshold(float fThreshold) {
    if (!(fThreshold > 0.0F)) {
        return false;
    }
    m_options.opticalPath.confidenceThreshold = fThreshold;
    return m_frame.confidencePic().data != nullptr;
}
