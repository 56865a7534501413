#pragma once

#include "sim/camera/SkSimPlan.h"
#include "sim/synth/CkSimHybridSynth.h"
#include "sim/synth/CkSimRaster.h"
#include "sim/synth/CkSimWaveSynth.h"
#include "tools/tof/accuracy/SkToFAccuracy.h"

#include <QString>

class CkImageData;

/// The simulated camera of one cell of the matrix, which looks at a wall across its optical axis. The frames
/// depend on the arguments alone: the noise of a cell is the same whatever else is in the matrix. One thread
/// at a time.
class CkToFWallCamera {
public:
    CkToFWallCamera(const SkToFAccuracyPoint& point, const SkToFAccuracySetup& setup);

    /// The true distances and the light of every pixel.
    const CkSimRaster& raster() const { return m_raster; }
    const SkSimSettings& settings() const { return m_settings; }
    /// Phases or sections of a frame, stacked from top to bottom.
    quint32 parts() const { return quint32(m_image.parts.size()); }

    /// Exposes the raw frame of this number, from 0. Empty, or the error text.
    QString expose(qint64 iFrame, CkImageData& raw);

private:
    bool exposePart(quint32 uiPart, quint64 uiSet, CkImageData& raw);

    bool m_isHybrid;
    quint32 m_height; ///< rows of one part
    quint64 m_firstSet;
    SkSimSettings m_settings;
    SkSimImage m_image;
    CkSimRaster m_raster;
    CkSimWaveSynth m_wave;
    CkSimHybridSynth m_hybrid;
};
