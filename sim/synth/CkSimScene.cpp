#include "sim/synth/CkSimScene.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr double kFloorReflectivity = 0.35;
constexpr double kCeilingReflectivity = 0.80;
constexpr double kSphereReflectivity = 0.75;

double component(const SkSimVector& vector, int axis) {
    return axis == 0 ? vector.x : axis == 1 ? vector.y : vector.z;
}

/// The lamps hang from the ceiling: surfaces that face up get all of their light, those that face down least.
double daylightOn(double normalUp) {
    return 0.65 + 0.35 * normalUp;
}

/// Entry and exit of a ray from the origin through a box, and the axes of the faces it passes.
struct SkCrossing {
    double enter = 0.0;
    double leave = std::numeric_limits<double>::infinity();
    int enterAxis = -1;
    int leaveAxis = -1;
};

SkCrossing cross(const SkSimVector& direction, const SkSimVector& low, const SkSimVector& high) {
    SkCrossing crossing;
    for (int axis = 0; axis < 3; ++axis) {
        const double speed = component(direction, axis);
        double first = component(low, axis);
        double last = component(high, axis);
        if (speed == 0.0) {
            if (first > 0.0 || last < 0.0) {
                crossing.leave = -1.0;
            }
            continue;
        }
        first /= speed;
        last /= speed;
        if (first > last) {
            std::swap(first, last);
        }
        if (first > crossing.enter) {
            crossing.enter = first;
            crossing.enterAxis = axis;
        }
        if (last < crossing.leave) {
            crossing.leave = last;
            crossing.leaveAxis = axis;
        }
    }
    return crossing;
}

SkSimHit hitFace(const SkSimVector& direction, double distance, int axis, double reflectivity) {
    const double speed = component(direction, axis);
    // The visible face points against the ray.
    const double normalUp = axis == 1 ? (speed < 0.0 ? 1.0 : -1.0) : 0.0;
    return {distance, reflectivity, std::abs(speed), daylightOn(normalUp)};
}

} // namespace

CkSimScene CkSimScene::room() {
    CkSimScene scene;
    scene.m_room = {{-2.2, -1.3, -1.0}, {2.2, 1.4, 4.5}, 0.6};
    scene.m_boxes = {
        {{-1.7, -1.3, 2.9}, {-0.9, -0.3, 3.6}, 0.85}, {{0.6, -1.3, 3.3}, {1.3, 0.2, 3.9}, 0.30},
        {{-0.3, -1.3, 2.2}, {0.2, -0.75, 2.7}, 0.60}, {{1.2, -1.3, 1.9}, {1.8, -0.9, 2.5}, 0.08},
        {{-0.6, 0.1, 4.44}, {0.5, 0.8, 4.5}, 0.95},
    };
    scene.m_sphereRadius = 0.3;
    return scene;
}

CkSimScene CkSimScene::wall(double distance, double reflectivity) {
    CkSimScene scene;
    scene.m_wallDistance = std::max(distance, 0.001);
    scene.m_wallReflectivity = std::clamp(reflectivity, 0.0, 1.0);
    return scene;
}

SkSimHit CkSimScene::hitStatic(const SkSimVector& direction) const {
    if (m_wallDistance > 0.0) {
        return {m_wallDistance / direction.z, m_wallReflectivity, direction.z, daylightOn(0.0)};
    }

    const SkCrossing walls = cross(direction, m_room.low, m_room.high);
    double reflectivity = m_room.reflectivity;
    if (walls.leaveAxis == 1) {
        reflectivity = direction.y < 0.0 ? kFloorReflectivity : kCeilingReflectivity;
    }
    SkSimHit nearest = hitFace(direction, walls.leave, walls.leaveAxis, reflectivity);
    for (const SkBox& box : m_boxes) {
        const SkCrossing crossing = cross(direction, box.low, box.high);
        if (crossing.enterAxis >= 0 && crossing.enter < crossing.leave && crossing.enter < nearest.distance) {
            nearest = hitFace(direction, crossing.enter, crossing.enterAxis, box.reflectivity);
        }
    }
    return nearest;
}

SkSimVector CkSimScene::sphereCenter(double seconds) const {
    const double turn = 2.0 * std::numbers::pi * seconds;
    return {0.9 * std::sin(turn / 6.0), 0.2 + 0.35 * std::sin(turn / 4.0), 2.1 + 0.5 * std::cos(turn / 6.0)};
}

bool CkSimScene::hitSphere(const SkSimVector& direction, const SkSimVector& center, SkSimHit& hit) const {
    const double along = direction.x * center.x + direction.y * center.y + direction.z * center.z;
    const double centerSquared = center.x * center.x + center.y * center.y + center.z * center.z;
    const double radiusSquared = m_sphereRadius * m_sphereRadius;
    const double halfChordSquared = radiusSquared - (centerSquared - along * along);
    if (halfChordSquared <= 0.0) {
        return false;
    }
    const double distance = along - std::sqrt(halfChordSquared);
    if (distance <= 0.0) {
        return false;
    }
    const SkSimVector normal = {(distance * direction.x - center.x) / m_sphereRadius,
                                (distance * direction.y - center.y) / m_sphereRadius,
                                (distance * direction.z - center.z) / m_sphereRadius};
    const double facing = -(normal.x * direction.x + normal.y * direction.y + normal.z * direction.z);
    hit = {distance, kSphereReflectivity, std::max(facing, 0.0), daylightOn(normal.y)};
    return true;
}
