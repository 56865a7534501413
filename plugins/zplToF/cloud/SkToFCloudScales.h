#pragma once

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"
#include "zuCore/ToFConfidence.h"

#include <array>

/// The parameters that are the same for all pixels of a cloud.
struct SkToFCloudScales {
    quint32 width = 0;  ///< pixels
    quint32 height = 0; ///< pixels
    bool floatPicture = false;

    // Colour: index = ((v - base) / inRange) ^ gamma * outRange + outLow, or the plain value.
    bool useContrast = false;
    bool useGamma = false;
    double gamma = 1.0;
    float base = 0.0F;
    float inRange = 1.0F;
    float outRange = 255.0F;
    float outLow = 0.0F;

    bool filterByConfidence = false;
    SkToFConfidenceRule confidence; ///< when filterByConfidence

    // Position. With the lens in millimetres, without it in pixels and sample values.
    bool useLens = false;
    bool correctRadially = false;
    double centreX = 0.0;       ///< pixels
    double centreY = 0.0;       ///< pixels
    double cellMM = 0.0;        ///< mm
    double resolutionRatio = 1; ///< input pixels per depth pixel
    double offsetXMM = 0.0;     ///< mm on the chip
    double offsetYMM = 0.0;     ///< mm on the chip
    double focalMM = 1.0;       ///< mm
    float distScale = 1.0F;     ///< mm per radian or metre
    float rangeMM = 0.0F;       ///< mm, above 0 with the lens
    float zBase = 0.0F;

    // Scene.
    float xyScale = 1.0F;
    float zScale = 1.0F;
    float zHalf = 0.0F;        ///< half depth of the box
    float yHalf = 0.0F;        ///< half height of the box
    float pointSpacing = 0.0F; ///< edge of a quad

    std::optional<SkToFCloudDimensions> dimensions;

    /// Position on the chip relative to the optical axis.
    double chipXMM(quint32 uiColumn) const {
        return (uiColumn - centreX) * cellMM * resolutionRatio - offsetXMM;
    }
    double chipYMM(quint32 uiRow) const { return (centreY - uiRow) * cellMM * resolutionRatio - offsetYMM; }
};

/// The scales of a picture whose largest value to be shown is fLargest (float pictures only: the maximum of
/// all pixels, or of those that pass the confidence filter).
SkToFCloudScales makeCloudScales(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters,
                                 float fLargest);

/// The 256 colours as red, green, blue from 0 to 1, and an unused fourth number.
using SkToFColours = std::array<std::array<float, 4>, 256>;
void readColours(const quint8* pColourTable, SkToFColours& colours);

/// Wraps a distance below 0 into the unambiguous range: the result of adding the range until the distance is
/// no longer below 0, in one step. Not finite where that would never end.
float wrapDistance(float fDistance, float fRange);

/// Index of a value's colour.
int colourIndex(float fValue, const SkToFCloudScales& scales);
