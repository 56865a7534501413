#include "plugins/zplToF/pic/CkToFPicAPI.h"

#include "plugins/zplToF/pic/ToFDepthSearch.h"
#include "plugins/zplToF/pic/ToFHybridPictures.h"
#include "plugins/zplToF/pic/ToFPhaseStack.h"
#include "plugins/zplToF/pic/ToFPictureKinds.h"
#include "plugins/zplToF/pic/ToFWavePictures.h"

bool CkToFPicAPI::isRawX2ToFABPic(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return ToFPictureKinds::isTwoTaps(info, pMetadata);
}

bool CkToFPicAPI::isRawToFAminBPic(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return ToFPictureKinds::isDifference(info, pMetadata);
}

bool CkToFPicAPI::isRawToFHybridPic(const SkPicBufInfo& info, const CkImageMetadata* /*pMetadata*/) {
    return ToFPictureKinds::isHybrid(info);
}

bool CkToFPicAPI::isPhaseShiftImage(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return ToFPictureKinds::isPhaseShift(info, pMetadata);
}

bool CkToFPicAPI::isDepthImage(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return ToFPictureKinds::isDepth(info, pMetadata);
}

bool CkToFPicAPI::incomingSeparatePhases(const CkImageMetadata* pMetadata) {
    return ToFPictureKinds::isSeparatePhase(pMetadata);
}

quint32 CkToFPicAPI::detectPhasesCount(const SkPicBufInfo& info, const CkImageMetadata* pMetadata) {
    return ToFPictureKinds::stackedPhases(info, pMetadata);
}

quint32 CkToFPicAPI::findAngleIdx(quint32 uiNominalIndex, qint32 iAngle, const AngleList* pAngles) {
    return ToFPhaseStack::indexOfAngle(uiNominalIndex, iAngle, pAngles);
}

bool CkToFPicAPI::rawX2PicToPhaseShift_Confidence(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                                  const AngleList* pAngles) {
    return ToFWavePictures::phaseShiftAndConfidence(source, result, iPhases, pAngles);
}

bool CkToFPicAPI::rawAminBPicToPhaseShift(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                          const AngleList* pAngles) {
    return ToFWavePictures::phaseShiftOfDifference(source, result, iPhases, pAngles);
}

bool CkToFPicAPI::rawX2PicToIntensity(const SkPicBuf& source, SkPicBuf& result, int iPhases) {
    return ToFWavePictures::intensity(source, result, iPhases);
}

bool CkToFPicAPI::rawX2PicToAmplitude(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                      const AngleList* pAngles) {
    return ToFWavePictures::amplitude(source, result, iPhases, pAngles);
}

bool CkToFPicAPI::rawAminBPicToAmplitude(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                         const AngleList* pAngles) {
    return ToFWavePictures::amplitudeOfDifference(source, result, iPhases, pAngles);
}

bool CkToFPicAPI::rawX2PicToRawAminB(const SkPicBuf& source, SkPicBuf& result) {
    return ToFWavePictures::difference(source, result);
}

bool CkToFPicAPI::rawHybridToIntensity(const SkPicBuf& source, SkPicBuf& result) {
    return ToFHybridPictures::intensity(source, result);
}

bool CkToFPicAPI::rawHybridToAmplitude(const SkPicBuf& source, SkPicBuf& result) {
    return ToFHybridPictures::amplitude(source, result);
}

bool CkToFPicAPI::rawHybridToDepth_Confidence(const SkPicBuf& source, SkPicBuf& result,
                                              float fPulseDurationS) {
    return ToFHybridPictures::depthAndConfidence(source, result, fPulseDurationS);
}

bool CkToFPicAPI::processHdrFromImageSections(const SkPicBuf& source, SkPicBuf& result) {
    return ToFHybridPictures::mergeSections(source, result);
}

bool CkToFPicAPI::convertTestImageToHybridTof(const SkPicBuf& source, SkPicBuf& result) {
    return ToFHybridPictures::interleaveWindows(source, result);
}

bool CkToFPicAPI::findMaxDepthClipConfidence(const SkPicBuf& picture, float& fMaximum,
                                             float fConfidenceLimit) {
    return ToFDepthSearch::largestTrusted(picture, fMaximum, fConfidenceLimit);
}

bool CkToFPicAPI::findMaxDepthClipConfidence(const SkPicBuf& depth, const SkPicBuf& confidence,
                                             float& fMaximum, float fConfidenceLimit) {
    return ToFDepthSearch::largestTrusted(depth, confidence, fMaximum, fConfidenceLimit);
}
