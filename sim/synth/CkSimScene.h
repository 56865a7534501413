#pragma once

#include <vector>

/// Position or direction in camera coordinates; metres for positions.
struct SkSimVector {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// Where a ray hits a surface.
struct SkSimHit {
    double distance = 0.0;     ///< metres along the ray; 0 when nothing was hit
    double reflectivity = 0.0; ///< 0 (black) to 1
    double cosine = 0.0;       ///< of the angle between the ray and the surface normal, 0 to 1
    double daylight = 0.0;     ///< fraction of the ambient light that reaches the surface, 0 to 1
};

/// The scene in front of the camera: static solids and at most one sphere that moves with time. Immutable
/// after construction; any thread.
class CkSimScene {
public:
    /// A room 4.4 m wide, 2.7 m high, its back wall at 4.5 m, with boxes of various reflectivities at
    /// various distances, and a sphere that circles in front of them.
    static CkSimScene room();
    /// A flat wall alone, perpendicular to the optical axis, at a distance in metres (at least 1 mm).
    static CkSimScene wall(double distance, double reflectivity = 0.8);

    /// Nearest static surface along a unit vector with z > 0.
    SkSimHit hitStatic(const SkSimVector& direction) const;

    bool hasSphere() const { return m_sphereRadius > 0.0; }
    double sphereRadius() const { return m_sphereRadius; }
    /// Centre of the sphere at a time in seconds.
    SkSimVector sphereCenter(double seconds) const;
    /// The sphere with this centre along a unit vector. False when the ray misses it.
    bool hitSphere(const SkSimVector& direction, const SkSimVector& center, SkSimHit& hit) const;

private:
    struct SkBox {
        SkSimVector low;
        SkSimVector high;
        double reflectivity = 0.0;
    };

    CkSimScene() = default;

    SkBox m_room;
    double m_wallDistance = 0.0;
    double m_wallReflectivity = 0.0;
    std::vector<SkBox> m_boxes;
    double m_sphereRadius = 0.0;
};
