#pragma once

#include "sim/synth/CkSimRaster.h"
#include "sim/synth/SkSimExposure.h"

#include "zuCore/SkPicBuf.h"

#include <vector>

/// A plain image sensor; ambient light only. One thread at a time.
class CkSimGreySynth {
public:
    static constexpr double kAmbientElectrons = 40000.0; ///< of a white surface in full daylight after 1 ms
    static constexpr double kReadNoiseElectrons = 15.0;

    void setup(const SkSimExposure& exposure) { m_exposure = exposure; }

    /// Writes a one-channel UInt8 or UInt16 picture of bitsPerChannel bits, of the lens's size. False, with
    /// nothing written, for any other target.
    bool writePicture(const CkSimRaster& raster, quint64 set, SkPicBuf& target);

private:
    SkSimExposure m_exposure;
    std::vector<float> m_row;
    std::vector<float> m_gauss;
};
