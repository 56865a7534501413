#include "plugins/zplToF/integration/ToFCameraCheck.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "zuCore/CkCameraManager.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkImageProvider.h"
#include "zuCore/ToFVocabulary.h"
#include "zuCoreGui/CkMdiView.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QPointer>
#include <algorithm>
#include <initializer_list>
#include <tuple>

namespace {

using ToFParameter::kDataFormat;
using ToFParameter::kReadoutMode;

void summarise(const SkPicBufInfo& info, const CkImageMetadata& metadata, SkToFKinds& kinds) {
    kinds.isAB = CkToFPicAPI::isRawX2ToFABPic(info, &metadata);
    kinds.isAminB = CkToFPicAPI::isRawToFAminBPic(info, &metadata);
    kinds.isPhaseShift =
        CkToFPicAPI::isPhaseShiftImage(info, &metadata) || CkToFPicAPI::isDepthImage(info, &metadata);
    kinds.separatePhases = CkToFPicAPI::incomingSeparatePhases(&metadata);
    kinds.isHybrid = CkToFPicAPI::isRawToFHybridPic(info, &metadata);
}

/// In the order of the functions that take single flags.
std::tuple<bool, bool, bool, bool, bool> flags(const SkToFKinds& kinds) {
    return {kinds.isAB, kinds.isAminB, kinds.isPhaseShift, kinds.separatePhases, kinds.isHybrid};
}

using CameraPointer = QPointer<CkCameraParameters>;

CkCameraParam* findParam(const CameraPointer& parameters, QLatin1String name) {
    return parameters != nullptr ? parameters->findParam(name, false) : nullptr;
}

/// Sets the parameter to fallback unless it has one of the accepted values, and adds it to the batch.
bool keepOrSet(const CameraPointer& parameters, QLatin1String name, std::initializer_list<int> accepted,
               int fallback) {
    CkCameraParam* param = findParam(parameters, name);
    if (param == nullptr) {
        return false;
    }
    const int current = param->paramValue().toInt();
    if (std::find(accepted.begin(), accepted.end(), current) != accepted.end()) {
        return true;
    }
    // Receivers of the camera's signals may close it.
    if (!param->setParamValue(CkValue(fallback)) || parameters == nullptr) {
        return false;
    }
    parameters->addParamCommitToBatch(param);
    return true;
}

bool setUpFormat(const CameraPointer& parameters) {
    using namespace ToFDataFormat;
    if (findParam(parameters, kReadoutMode) == nullptr) {
        return keepOrSet(parameters, kDataFormat, {kHybrid8, kHybrid12}, kHybrid12);
    }
    if (!keepOrSet(parameters, kReadoutMode, {ToFReadoutMode::kAminusB, ToFReadoutMode::kAandB},
                   ToFReadoutMode::kAandB)) {
        return false;
    }
    if (findParam(parameters, kReadoutMode)->paramValue().toInt() == ToFReadoutMode::kAandB) {
        return keepOrSet(parameters, kDataFormat, {kAandB8, kAandB12}, kAandB12);
    }
    return keepOrSet(parameters, kDataFormat,
                     {kAminusB8, kAminusB16, kAminusB8Alternate, kAminusB16Alternate}, kAminusB16Alternate);
}

} // namespace

bool ToFCameraCheck::isToFCamera(void* cameraHandle) {
    CkCameraParameters* parameters = CkCameraManager::instance()->cameraParameters(cameraHandle);
    if (parameters == nullptr) {
        return false;
    }
    return parameters->findParam(kReadoutMode, false) != nullptr ||
           parameters->cameraInfo().sensorType == ToFSensorType::kHybrid;
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
    const bool hybrid = parameters->cameraInfo().sensorType == ToFSensorType::kHybrid;
    if (findParam(parameters, kDataFormat) == nullptr ||
        (!hybrid && findParam(parameters, kReadoutMode) == nullptr)) {
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
