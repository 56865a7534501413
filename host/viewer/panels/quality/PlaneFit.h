#pragma once

#include <optional>
#include <vector>

struct SkSpacePoint {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// z = slopeX x + slopeY y + offset, and how well points lie on it. Lengths in the unit of the points.
struct SkFittedPlane {
    double slopeX = 0.0;
    double slopeY = 0.0;
    double offset = 0.0;
    double tiltDegrees = 0.0; ///< between the plane's normal and the z axis
    double rms = 0.0;         ///< of the points' distances along the normal
    double flatness = 0.0;    ///< from the point furthest on one side to that furthest on the other
};

/// Least squares in z, because the noise is in the distances. std::nullopt for fewer than three points or
/// collinear points.
std::optional<SkFittedPlane> fitPlane(const std::vector<SkSpacePoint>& points);
