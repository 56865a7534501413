#include "plugins/zplToF/calibration/CkToFOffsetEstimator.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "zuCore/CkPicBufAPI.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {
// Speed of light in air in m * MHz, the one the 3D view computes with.
constexpr float s_fLightSpeed = 299.70254F;
constexpr double s_fFullTurn = 6.283185307179586;
constexpr float s_fCmPerMetre = 100.0F;

// A phase shift picture that gives its memory back.
class CkToFScratchPicture {
public:
    CkToFScratchPicture(const SkPicBuf& source, quint32 uiHeight, quint32 uiChannels) {
        CkPicBufAPI::AllocPicBufFromHeap(
            picture, source.width, uiHeight, uiChannels, EkImageDataType::Float32, source.linePadding, 0, 32,
            EkDataStorageFormat::Interleaved, EkColorFilterArray::None, false, false, 0);
    }
    ~CkToFScratchPicture() { CkPicBufAPI::FreePicBuf(picture, true); }
    CkToFScratchPicture(const CkToFScratchPicture&) = delete;
    CkToFScratchPicture& operator=(const CkToFScratchPicture&) = delete;

    SkPicBuf picture;
};

// Other counts leave the kernel's result unwritten; a phase shift of 0 would pass for a measurement.
bool canBeEvaluated(quint32 uiPhases) {
    return uiPhases == 1 || uiPhases == 2 || uiPhases == 4 || uiPhases == 8;
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
        if (!canBeEvaluated(uiPhases)) {
            return false;
        }
        // As high as one phase: the kernel reads so many rows of every phase.
        CkToFScratchPicture scratch(picture, picture.height / uiPhases, 1);
        if (!CkToFPicAPI::rawAminBPicToPhaseShift(picture, scratch.picture, int(uiPhases))) {
            return false;
        }
        addPhaseShift(scratch.picture);
        return true;
    }
    if (CkToFPicAPI::isRawX2ToFABPic(picture, pMetadata)) {
        // The difference kernel refuses two channels, so such frames count as phase shift 0.
        CkToFScratchPicture scratch(picture, picture.height, 2);
        CkToFPicAPI::rawAminBPicToPhaseShift(picture, scratch.picture, int(uiPhases));
        addPhaseShift(scratch.picture);
        return true;
    }
    return false;
}

bool CkToFOffsetEstimator::hasMean() const {
    return m_iPixelCount > 0 && std::isfinite(m_fPhaseSum / float(m_iPixelCount));
}

CkToFOffsetEstimator::SkResult CkToFOffsetEstimator::result(float fDistanceCm, float fModulationFreq) const {
    const float fMeanPhase = m_fPhaseSum / float(m_iPixelCount);
    const float fHalfWavelength = s_fLightSpeed / (2.0F * fModulationFreq);
    const float fMeasured = float(double(fMeanPhase) / s_fFullTurn * double(fHalfWavelength));
    return {fMeasured, fDistanceCm / s_fCmPerMetre - fMeasured};
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
            // Rows may start at any byte.
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
    m_fPhaseSum += sumCentralPhaseShiftPixels(&picture, 0, s_iSquareSize, iCount);
    m_iPixelCount += iCount;
}
