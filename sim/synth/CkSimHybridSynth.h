#pragma once

#include "sim/synth/CkSimRaster.h"
#include "sim/synth/SkSimExposure.h"

#include "zuCore/SkPicBuf.h"

#include <vector>

/// A pulsed sensor with three integration windows X1, X2, X3 that follow each other, each as long as the
/// pulse.
///
/// With the range r = pulse * c / 2 and u = (distance + offset) / r, window k (0, 1, 2) collects the ambient
/// light of one window plus max(0, 1 - |u - k|) of the reflected pulse: up to r the pulse falls into X1 and
/// X2 and X3 sees ambient light only, from r to 2 r it falls into X2 and X3 and X1 sees ambient light only.
/// One thread at a time.
class CkSimHybridSynth {
public:
    static constexpr double kLightSpeedMPerS = 299792458.0;
    static constexpr double kSignalElectrons = 45000.0; ///< of a white surface at 1 m, facing, after 1 ms
    static constexpr double kAmbientElectrons = 600.0;  ///< in one window, white, full daylight, after 1 ms
    static constexpr double kReadNoiseElectrons = 15.0;
    /// Dark level of a section that comes with a reference section. A fixed pattern of 0 to
    /// kDarkPatternElectrons, different for every pixel, is added.
    static constexpr float kDarkLevelElectrons = 600.0F;
    static constexpr float kDarkPatternElectrons = 255.0F;
    /// Share of the window time for which the reference section is exposed. Its subtraction removes the
    /// dark level and leaves enough ambient light in the third window to validate a pixel.
    static constexpr float kReferenceShare = 0.5F;

    enum class EkSection {
        Plain,    ///< the sensor subtracts its dark level itself
        Measured, ///< with dark level, which the reference removes
        Reference ///< dark level and a share of the ambient light, no pulse
    };

    /// One exposure of one measurement.
    struct SkSection {
        quint64 set = 0; ///< number of the measurement; selects the noise
        int index = 0;   ///< 0 to 15; each one is twice as sensitive as the one before
        EkSection kind = EkSection::Plain;
    };

    static double range(double pulseNs) { return pulseNs * 1e-9 * kLightSpeedMPerS * 0.5; }

    void setup(const SkSimExposure& exposure, double pulseNs);

    /// Exposes a section and writes it as a sub-image that starts at a row. The target has three channels
    /// UInt8 or UInt16; its largest count of bitsPerChannel bits is a full pixel. False, with nothing
    /// written, for any other target, when the sub-image does not fit, or for an index outside 0 to 15.
    bool writeSection(const CkSimRaster& raster, const SkSection& section, SkPicBuf& target,
                      quint32 firstRow);

private:
    void updateMaps(const CkSimRaster& raster);
    void expose(const SkSection& section, int row, int width);

    SkSimExposure m_exposure;
    double m_pulseNs = 40.0;
    /// The raster and revision that the maps below belong to; 0: none.
    quint64 m_raster = 0;
    quint64 m_revision = 0;
    std::vector<float> m_ambient; ///< electrons of a window without pulse, section 0
    std::vector<float> m_pulse[3];
    std::vector<float> m_window[3];
    std::vector<float> m_gauss[3];
};
