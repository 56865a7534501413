#include "plugins/zplToF/integration/ToFCameraCheck.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"
#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QPointer>
#include <algorithm>
#include <initializer_list>
#include <tuple>

namespace {

constexpr int g_iReadoutAminusB = 2;
constexpr int g_iReadoutAandB = 4;

const QString g_sReadoutMode = QStringLiteral("tof_readout_mode");
const QString g_sDataFormat = QStringLiteral("imgdataformat");

void summarise(const SkPicBufInfo& info, const CkImageMetadata& metadata, SkToFKinds& kinds) {
    kinds.isAB = CkToFPicAPI::isRawX2ToFABPic(info, &metadata);
    kinds.isAminB = CkToFPicAPI::isRawToFAminBPic(info, &metadata);
    kinds.isPhaseShift =
        CkToFPicAPI::isPhaseShiftImage(info, &metadata) || CkToFPicAPI::isDepthImage(info, &metadata);
    kinds.separatePhases = CkToFPicAPI::incomingSeparatePhases(&metadata);
    kinds.isHybrid = CkToFPicAPI::isRawToFHybridPic(info, &metadata);
}

/// In the order of the functions that take one by one.
std::tuple<bool, bool, bool, bool, bool> flags(const SkToFKinds& kinds) {
    return {kinds.isAB, kinds.isAminB, kinds.isPhaseShift, kinds.separatePhases, kinds.isHybrid};
}

using CameraPointer = QPointer<CkCameraParameters>;

CkCameraParam* findParam(const CameraPointer& parameters, const QString& name) {
    return parameters != nullptr ? parameters->findParam(name, false) : nullptr;
}

/// Sets the parameter to fallback unless it has one of the accepted values; what was set joins the batch.
bool keepOrSet(const CameraPointer& parameters, const QString& name, std::initializer_list<int> accepted,
               int fallback) {
    CkCameraParam* param = findParam(parameters, name);
    if (param == nullptr) {
        return false;
    }
    const int current = param->paramValue().toInt();
    if (std::find(accepted.begin(), accepted.end(), current) != accepted.end()) {
        return true;
    }
    // Whoever is told of the value may close the camera.
    if (!param->setParamValue(CkValue(fallback)) || parameters == nullptr) {
        return false;
    }
    parameters->addParamCommitToBatch(param);
    return true;
}

bool setUpFormat(const CameraPointer& parameters) {
    if (findParam(parameters, g_sReadoutMode) == nullptr) {
        return keepOrSet(parameters, g_sDataFormat, {17, 18}, 18);
    }
    if (!keepOrSet(parameters, g_sReadoutMode, {g_iReadoutAminusB, g_iReadoutAandB}, g_iReadoutAandB)) {
        return false;
    }
    if (findParam(parameters, g_sReadoutMode)->paramValue().toInt() == g_iReadoutAandB) {
        return keepOrSet(parameters, g_sDataFormat, {11, 13}, 13);
    }
    return keepOrSet(parameters, g_sDataFormat, {0, 1, 5, 6}, 6);
}

} // namespace

bool ToFCameraCheck::isToFCamera(void* cameraHandle) {
    CkCameraParameters* parameters = CkCameraManager::instance()->cameraParameters(cameraHandle);
    if (parameters == nullptr) {
        return false;
    }
    return parameters->findParam(g_sReadoutMode, false) != nullptr ||
           parameters->cameraInfo().sensorType == ToFCameraCheck::kHybridSensorType;
}

bool ToFCameraCheck::viewBelongsToToFCamera(int iViewId, void*& cameraHandle) {
    IkAppDelegate* host = IkAppDelegate::instance();
    cameraHandle = host != nullptr ? host->cameraHandleOfView(iViewId) : nullptr;
    return cameraHandle != nullptr && isToFCamera(cameraHandle);
}

bool ToFCameraCheck::imageFormatAtView(CkMdiView* pView, SkPicBufInfo* pInfo, CkImageMetadata* pMetadata) {
    if (pView == nullptr) {
        return false;
    }
    SkPicBufInfo info;
    CkImageMetadata metadata;
    auto* provider = qobject_cast<CkImageProvider*>(pView->dataProvider());
    if (provider == nullptr || !provider->outputImageInfo(info, &metadata)) {
        const CkImageData* current = pView->currentImage();
        if (current == nullptr) {
            return false;
        }
        info = current->picBuf();
        metadata = current->metadata();
    }
    if (pInfo != nullptr) {
        *pInfo = info;
    }
    if (pMetadata != nullptr) {
        *pMetadata = metadata;
    }
    return true;
}

bool ToFCameraCheck::imageFormatAtView(CkMdiView* pView, SkToFKinds& kinds) {
    kinds = {};
    SkPicBufInfo info;
    CkImageMetadata metadata;
    if (!imageFormatAtView(pView, &info, &metadata)) {
        return false;
    }
    summarise(info, metadata, kinds);
    return true;
}

bool ToFCameraCheck::imageFormatAtView(CkMdiView* pView, bool& isAB, bool& isAminB, bool& isPhaseShift,
                                       bool& separatePhases, bool& isHybrid) {
    SkToFKinds kinds;
    const bool known = imageFormatAtView(pView, kinds);
    std::tie(isAB, isAminB, isPhaseShift, separatePhases, isHybrid) = flags(kinds);
    return known;
}

bool ToFCameraCheck::checkToFFormat(CkChainable* pBlock, SkToFKinds& kinds) {
    kinds = {};
    auto* provider = qobject_cast<CkImageProvider*>(pBlock);
    SkPicBufInfo info;
    CkImageMetadata metadata;
    if (provider == nullptr || !provider->outputImageInfo(info, &metadata)) {
        return false;
    }
    summarise(info, metadata, kinds);
    return true;
}

bool ToFCameraCheck::checkToFFormat(CkChainable* pBlock, bool& isAB, bool& isAminB, bool& isPhaseShift,
                                    bool& separatePhases, bool& isHybrid) {
    SkToFKinds kinds;
    const bool known = checkToFFormat(pBlock, kinds);
    std::tie(isAB, isAminB, isPhaseShift, separatePhases, isHybrid) = flags(kinds);
    return known;
}

bool ToFCameraCheck::switchCameraTo3dFormat(CkMdiView* pView, void* cameraHandle) {
    const CameraPointer parameters = CkCameraManager::instance()->cameraParameters(cameraHandle);
    const QPointer<CkMdiView> view = pView;
    if (parameters == nullptr) {
        return false;
    }
    const bool hybrid = parameters->cameraInfo().sensorType == ToFCameraCheck::kHybridSensorType;
    if (findParam(parameters, g_sDataFormat) == nullptr ||
        (!hybrid && findParam(parameters, g_sReadoutMode) == nullptr)) {
        return false;
    }
    const bool setUp = setUpFormat(parameters);
    if (parameters == nullptr || !parameters->endCommitBatch(setUp) || !setUp) {
        return false;
    }

    CkChainable* block = view != nullptr ? view->dataProvider() : nullptr;
    CkChain* chain = block != nullptr ? block->chain() : nullptr;
    if (chain != nullptr && chain->stopped()) {
        chain->start();
    }
    return true;
}
