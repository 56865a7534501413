#pragma once

#include "sim/synth/CkSimRaster.h"
#include "sim/synth/SkSimExposure.h"

#include "zuCore/SkPicBuf.h"

#include <vector>

/// A continuous-wave sensor: two taps A and B per pixel that are switched with the modulated light.
///
/// With S electrons of reflected and N of ambient light, contrast m, and phase shift p of a pixel, the tap A
/// of the phase angle t collects N / 2 + S / 2 * (1 + m * cos(p - t)), the tap B the rest. From
/// x = d(0) - d(180) and y = d(90) - d(270), d = A - B, atan2(y, x) gives the phase shift
/// p = 2 pi * (distance + offset) / unambiguousRange, wrapped. One thread at a time.
class CkSimWaveSynth {
public:
    static constexpr double kLightSpeedMMHz = 299.70254; ///< in air
    static constexpr double kSignalElectrons = 60000.0;  ///< S of a white surface at 1 m, facing, after 1 ms
    static constexpr double kAmbientElectrons = 4000.0;  ///< N of a white surface in full daylight after 1 ms
    static constexpr double kContrast = 0.9;
    static constexpr double kReadNoiseElectrons = 25.0; ///< standard deviation, each tap

    /// Distance in metres at which the phase shift wraps to 0.
    static double unambiguousRange(double modulationMHz) { return kLightSpeedMMHz / (2.0 * modulationMHz); }

    void setup(const SkSimExposure& exposure, double modulationMHz);

    /// Exposes the phase of an angle in degrees and writes it as a sub-image that starts at a row. The format
    /// is the target's: two channels UInt8 or UInt16 are A and B, one channel Int8 or Int16 is A minus B, of
    /// bitsPerChannel bits. The largest tap count, 2^bits - 1, is a full pixel. Differences are in tap
    /// counts, except that with 8 or 16 bits, where the sign takes one bit, 2^(bits - 1) - 1 is a full pixel.
    /// set and angle select the noise. False, with nothing written, when the target has another format or is
    /// too small.
    bool writePhase(const CkSimRaster& raster, quint64 set, int angleDegrees, SkPicBuf& target,
                    quint32 firstRow);

private:
    void updateMaps(const CkSimRaster& raster);
    void expose(int angleDegrees, quint64 set, int row, int width);

    SkSimExposure m_exposure;
    double m_modulationMHz = 20.0;
    /// The raster and revision that the maps below belong to; 0: none.
    quint64 m_raster = 0;
    quint64 m_revision = 0;
    std::vector<float> m_mean;   ///< electrons of a tap without modulation
    std::vector<float> m_cosine; ///< modulation amplitude times cosine of the phase shift
    std::vector<float> m_sine;
    std::vector<float> m_tapA;
    std::vector<float> m_tapB;
    std::vector<float> m_gaussA;
    std::vector<float> m_gaussB;
};
