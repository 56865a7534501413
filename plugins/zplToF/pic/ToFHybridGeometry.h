#pragma once

#include <QtGlobal>

/// The size of a hybrid sensor. Some deliver their three integration windows as a plain picture, one below
/// the other; only its size distinguishes it from other pictures.
namespace ToFHybridGeometry {

inline constexpr quint32 kWidth = 832;               ///< pixels
inline constexpr quint32 kHeight = 600;              ///< pixels
inline constexpr quint32 kStackHeight = 3 * kHeight; ///< of the three windows

} // namespace ToFHybridGeometry
