#pragma once

#include "plugins/zplToF/cloud/CkToFCloudBuilder.h"

#include <vector>

/// A point by the formulas in double precision, with the tolerance for single precision.
struct ReferencePoint {
    double x = 0, y = 0, z = 0;                ///< export
    double sceneX = 0, sceneY = 0, sceneZ = 0; ///< scene
    double xTolerance = 0, yTolerance = 0, zTolerance = 0;
    double sceneXTolerance = 0, sceneYTolerance = 0, sceneZTolerance = 0;
    int lowestColour = 0, highestColour = 0; ///< different only for a value at a border
};

/// A second, slow implementation of the whole cloud, written from its formulas and sharing no code with the
/// builder.
struct CloudReference {
    CloudReference(const SkToFDepthPictures& pictures, const SkToFCloudParameters& parameters);

    std::vector<ReferencePoint> points;
    bool lens = false;
    double widthM = 0, heightM = 0, depthM = 0;
    double halfDepth = 0, halfHeight = 0;
    double spacing = 0;
};
