#include "plugins/zplToF/calibration/CkToFOffsetEstimator.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCore/CkPicture.h"
#include "zuCore/ToFVocabulary.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {
constexpr double kFullTurn = 6.283185307179586; // radians
constexpr float kCmPerMetre = 100.0F;

CkPicture phasePicture(const SkPicBuf& source, quint32 uiHeight, quint32 uiChannels) {
    SkPicBufInfo info = SkPicBufInfo::of(source.width, uiHeight, uiChannels, EkImageDataType::Float32, 32);
    info.linePadding = source.linePadding;
    info.lineSize = 0;
    CkPicture picture;
    picture.allocate(info);
    return picture;
}
} // namespace

void CkToFOffsetEstimator::reset() {
    *this = CkToFOffsetEstimator();
}

bool CkToFOffsetEstimator::addPicture(const SkPicBuf& picture, const CkImageMetadata* pMetadata) {
    const quint32 uiPhases = CkToFPicAPI::detectPhasesCount(picture, pMetadata);
    if (CkToFPicAPI::isPhaseShiftImage(picture, pMetadata)) {
        addPhaseShift(picture);
        return true;
    }
    if (CkToFPicAPI::isRawToFAminBPic(picture, pMetadata)) {
        // For other counts the kernel leaves its result unwritten; the phase shift of 0 would count as
        // measured.
        if (!ToFPhases::isSupportedCount(uiPhases)) {
            return false;
        }
        // The kernel reads as many rows of each phase as its result has.
        CkPicture phase = phasePicture(picture, picture.height / uiPhases, 1);
        if (!CkToFPicAPI::rawAminBPicToPhaseShift(picture, phase.picBuf(), int(uiPhases))) {
            return false;
        }
        addPhaseShift(phase.picBuf());
        return true;
    }
    if (CkToFPicAPI::isRawX2ToFABPic(picture, pMetadata)) {
        // The kernel refuses two channels and leaves the result zero: such frames count with phase shift 0.
        CkPicture phase = phasePicture(picture, picture.height, 2);
        CkToFPicAPI::rawAminBPicToPhaseShift(picture, phase.picBuf(), int(uiPhases));
        addPhaseShift(phase.picBuf());
        return true;
    }
    return false;
}

bool CkToFOffsetEstimator::hasMean() const {
    return m_pixelCount > 0 && std::isfinite(m_phaseSum / float(m_pixelCount));
}

CkToFOffsetEstimator::SkResult CkToFOffsetEstimator::result(float fDistanceCm, float fModulationFreq) const {
    const float fMeanPhase = m_phaseSum / float(m_pixelCount);
    const float fHalfWavelength = kSpeedOfLightInAirMMHz / (2.0F * fModulationFreq);
    const float fMeasured = float(double(fMeanPhase) / kFullTurn * double(fHalfWavelength));
    return {fMeasured, fDistanceCm / kCmPerMetre - fMeasured};
}

float CkToFOffsetEstimator::sumCentralPhaseShiftPixels(const SkPicBuf* pImage, int iChannel, int iSquareSize,
                                                       int& iCount) {
    iCount = 0;
    if (pImage == nullptr || pImage->data == nullptr || pImage->dataType != EkImageDataType::Float32 ||
        !CkPicBufAPI::isValid(*pImage) || iChannel < 0 || quint32(iChannel) >= pImage->channels) {
        return 0.0F;
    }
    const qint64 iWidth = pImage->width;
    const qint64 iHeight = pImage->height;
    qint64 iSide = iSquareSize;
    if (iSide > iWidth) {
        iSide = iWidth / 2;
    }
    if (iHeight < iSide) {
        iSide = iHeight / 2;
    }
    if (iSide <= 0 || iSide * iSide > std::numeric_limits<int>::max()) {
        return 0.0F;
    }
    const qint64 iFirstRow = iHeight / 2 - iSide / 2;
    const qint64 iFirstColumn = iWidth / 2 - iSide / 2;
    float fSum = 0.0F;
    for (qint64 iRow = iFirstRow; iRow < iFirstRow + iSide; ++iRow) {
        const quint8* row = pImage->row(quint32(iRow));
        for (qint64 iColumn = iFirstColumn; iColumn < iFirstColumn + iSide; ++iColumn) {
            // Rows may begin at any byte.
            float fValue = 0.0F;
            std::memcpy(&fValue, row + size_t(iColumn * pImage->channels + iChannel) * sizeof fValue,
                        sizeof fValue);
            fSum += fValue;
        }
    }
    iCount = int(iSide * iSide);
    return fSum;
}

void CkToFOffsetEstimator::addPhaseShift(const SkPicBuf& picture) {
    int iCount = 0;
    m_phaseSum += sumCentralPhaseShiftPixels(&picture, 0, kSquareSize, iCount);
    m_pixelCount += iCount;
}
