#pragma once

/// A pinhole camera at the origin, looking along +z; x to the right, y up. Plain data.
///
/// The ray of pixel (column, row) has the direction
/// ((column - width / 2) * cellSizeMm, (height / 2 - row) * cellSizeMm, focalLengthMm), the lens model
/// that is also used to convert depth pictures to points.
struct SkSimLens {
    int width = 640;            ///< pixels
    int height = 480;           ///< pixels
    double focalLengthMm = 3.5; ///< above 0
    double cellSizeMm = 0.01;   ///< pitch of the pixels on the sensor, above 0

    bool operator==(const SkSimLens&) const = default;
};
