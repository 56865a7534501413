#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QtGlobal>
#include <vector>

/// Classification and processing of raw ToF pictures.
///
/// Stateless; any thread, unless another thread writes the same pictures. Results are allocated by the
/// caller. Operations answer false, and write nothing, when the kind or sample type of source or result is
/// not supported, when a picture has no data or an impossible descriptor, or when the source has fewer rows
/// than the phase layout needs. Nothing throws. Bytes of a row beyond its pixels are never written.
///
/// Stacked pictures: with a result of height H, sub-image i occupies source rows i * H to (i + 1) * H - 1.
/// An angle list names the angle of each sub-image in degrees, in stored order; null or empty: nominal order
/// (1: 0; 2: 0, 90; 4: 0, 90, 180, 270; 8: 0, 45, ... 315).
class CkToFPicAPI {
public:
    using AngleList = std::vector<qint32>;

    // ---- what a picture is; metadata may be null ------------------------------------------------------

    /// Two taps A and B as two interleaved channels.
    static bool isRawX2ToFABPic(const SkPicBufInfo& info, const CkImageMetadata* pMetadata);
    /// Signed difference A minus B, one channel.
    static bool isRawToFAminBPic(const SkPicBufInfo& info, const CkImageMetadata* pMetadata);
    /// Three integration windows X1, X2, X3; the metadata is not consulted.
    static bool isRawToFHybridPic(const SkPicBufInfo& info, const CkImageMetadata* pMetadata);
    /// Float picture whose first channel is a phase shift in radians.
    static bool isPhaseShiftImage(const SkPicBufInfo& info, const CkImageMetadata* pMetadata);
    /// Float picture whose first channel is a depth in metres.
    static bool isDepthImage(const SkPicBufInfo& info, const CkImageMetadata* pMetadata);
    /// Whether the phases (or sections) arrive as separate images that have to be gathered.
    static bool incomingSeparatePhases(const CkImageMetadata* pMetadata);
    /// Phases stacked in the picture, at least 1. Not checked to be 1, 2, 4 or 8.
    static quint32 detectPhasesCount(const SkPicBufInfo& info, const CkImageMetadata* pMetadata);
    /// Position of the first entry equal to the angle; the nominal index without a list or a match.
    static quint32 findAngleIdx(quint32 uiNominalIndex, qint32 iAngle, const AngleList* pAngles);

    // ---- continuous wave ------------------------------------------------------------------------------

    /// Float, 2 channels: phase shift in radians [0, 2 pi) and confidence (lower is better). Refreshes the
    /// result's minimum and maximum. iPhases other than 1, 2, 4, 8: no pixel is written.
    static bool rawX2PicToPhaseShift_Confidence(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                                const AngleList* pAngles = nullptr);
    /// Float, 1 channel: phase shift in radians. Refreshes minimum and maximum.
    static bool rawAminBPicToPhaseShift(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                        const AngleList* pAngles = nullptr);
    /// Mean of all samples of all phases; result of the source's sample type.
    static bool rawX2PicToIntensity(const SkPicBuf& source, SkPicBuf& result, int iPhases);
    /// Strength of the reflected light; result of the source's sample type.
    static bool rawX2PicToAmplitude(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                    const AngleList* pAngles = nullptr);
    /// The same from signed differences; result of the unsigned type of the same width.
    static bool rawAminBPicToAmplitude(const SkPicBuf& source, SkPicBuf& result, int iPhases,
                                       const AngleList* pAngles = nullptr);
    /// A - B wrapped to the signed type of the source's width, all stacked phases at once.
    static bool rawX2PicToRawAminB(const SkPicBuf& source, SkPicBuf& result);

    // ---- hybrid ---------------------------------------------------------------------------------------

    static bool rawHybridToIntensity(const SkPicBuf& source, SkPicBuf& result);
    static bool rawHybridToAmplitude(const SkPicBuf& source, SkPicBuf& result);
    /// Float, 2 channels: depth in metres and confidence; (0, 0) for an invalid pixel. fPulseDurationS in
    /// seconds; 0 or negative: a range of 11.99169832 m.
    static bool rawHybridToDepth_Confidence(const SkPicBuf& source, SkPicBuf& result, float fPulseDurationS);
    /// Merges stacked exposure sections into one picture; sets the result's bits to those in use.
    static bool processHdrFromImageSections(const SkPicBuf& source, SkPicBuf& result);
    /// Three stacked one-channel sub-images to X1, X2, X3.
    static bool convertTestImageToHybridTof(const SkPicBuf& source, SkPicBuf& result);

    // ---- depth pictures -------------------------------------------------------------------------------

    /// Largest depth (channel 0) of the pixels whose confidence (channel 1) lies in (0, limit]. False, and
    /// fMaximum unchanged, when there is none.
    static bool findMaxDepthClipConfidence(const SkPicBuf& picture, float& fMaximum, float fConfidenceLimit);
    static bool findMaxDepthClipConfidence(const SkPicBuf& depth, const SkPicBuf& confidence, float& fMaximum,
                                           float fConfidenceLimit);
};
