#pragma once

/// The distance offset, metres, that a calibration stores and every 3D view adds to its distances.
/// User-interface thread.
namespace ToFDistanceOffset {

/// The stored offset; fDefault when there is none, and outside an application.
float read(float fDefault);

/// Stores the offset and updates every open 3D view.
void store(float fOffset);

} // namespace ToFDistanceOffset
