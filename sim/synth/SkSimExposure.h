#pragma once

#include <QtGlobal>

/// Exposure settings that all simulated sensors share.
struct SkSimExposure {
    double timeUs = 1000.0;       ///< microseconds of one exposure
    double ambient = 1.0;         ///< brightness of the ambient light, 1: lamps on, 0: dark
    double distanceOffsetM = 0.0; ///< constant error of the camera, added to every distance it measures
    bool noise = true;            ///< shot and read noise
    quint32 seed = 1;             ///< of the noise

    bool operator==(const SkSimExposure&) const = default;
};
