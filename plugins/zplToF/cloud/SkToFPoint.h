#pragma once

/// A point of the export list: millimetres with the lens model, scene units without it.
struct SkToFPoint {
    float x = 0.0F; ///< to the right
    float y = 0.0F; ///< up
    float z = 0.0F; ///< along the optical axis with the lens model, towards the viewer without it

    bool operator==(const SkToFPoint&) const = default;
};
