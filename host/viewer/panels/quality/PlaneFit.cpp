#include "host/viewer/panels/quality/PlaneFit.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// Points lie on a line when their spread across it is below this share of the spread along it.
constexpr double kOnALine = 1e-12;

} // namespace

std::optional<SkFittedPlane> fitPlane(const std::vector<SkSpacePoint>& points) {
    if (points.size() < 3) {
        return std::nullopt;
    }
    const double count = double(points.size());
    SkSpacePoint centre;
    for (const SkSpacePoint& point : points) {
        centre.x += point.x / count;
        centre.y += point.y / count;
        centre.z += point.z / count;
    }
    // Relative to the centroid the offset vanishes, and large coordinates do not reduce the precision.
    double xx = 0.0;
    double xy = 0.0;
    double yy = 0.0;
    double xz = 0.0;
    double yz = 0.0;
    for (const SkSpacePoint& point : points) {
        const double x = point.x - centre.x;
        const double y = point.y - centre.y;
        const double z = point.z - centre.z;
        xx += x * x;
        xy += x * y;
        yy += y * y;
        xz += x * z;
        yz += y * z;
    }
    const double determinant = xx * yy - xy * xy;
    if (!(determinant > kOnALine * (xx + yy) * (xx + yy))) {
        return std::nullopt;
    }
    SkFittedPlane plane;
    plane.slopeX = (xz * yy - yz * xy) / determinant;
    plane.slopeY = (yz * xx - xz * xy) / determinant;
    plane.offset = centre.z - plane.slopeX * centre.x - plane.slopeY * centre.y;
    const double slope = std::hypot(plane.slopeX, plane.slopeY);
    plane.tiltDegrees = std::atan(slope) * 180.0 / std::numbers::pi;
    const double alongNormal = 1.0 / std::hypot(1.0, slope);
    double squares = 0.0;
    double lowest = 0.0;
    double highest = 0.0;
    for (const SkSpacePoint& point : points) {
        const double rest =
            (point.z - centre.z - plane.slopeX * (point.x - centre.x) - plane.slopeY * (point.y - centre.y)) *
            alongNormal;
        squares += rest * rest;
        lowest = std::min(lowest, rest);
        highest = std::max(highest, rest);
    }
    plane.rms = std::sqrt(squares / count);
    plane.flatness = highest - lowest;
    return plane;
}
