#pragma once

#include <QtGlobal>

#include <array>

/// Wire frame of a box around the origin: 8 corners, 12 edges as pairs of corner numbers.
namespace ToFBoundingBoxTables {

/// Corners x, y, z for half extents along x, y and z: the face at -z, then the one at +z, each
/// counter-clockwise seen from +z, starting at the lower left.
std::array<float, 24> vertices(float fHalfX, float fHalfY, float fHalfZ);

/// The -z rectangle, the +z rectangle, the edges that join them.
const std::array<quint16, 24>& indices();

} // namespace ToFBoundingBoxTables
