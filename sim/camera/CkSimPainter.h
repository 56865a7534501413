#pragma once

#include "sim/camera/SkSimPlan.h"
#include "sim/synth/CkSimGreySynth.h"
#include "sim/synth/CkSimHybridSynth.h"
#include "sim/synth/CkSimRaster.h"
#include "sim/synth/CkSimWaveSynth.h"

#include <memory>

/// Paints the images of a plan. Caches what images have in common (raster, sensor maps). One thread at a
/// time.
class CkSimPainter {
public:
    explicit CkSimPainter(EkSimCameraKind kind) : m_kind(kind) {}

    /// Moves the scene of the settings to a time in seconds. False when memory allocation fails.
    bool moveTo(const SkSimSettings& settings, double seconds);

    /// Paints an image of a set, after moveTo, into a picture of the image's format. False, with undefined
    /// content, for a picture of another format.
    bool paint(const SkSimSettings& settings, const SkSimImage& image, quint64 set, SkPicBuf& picture);

    /// The raster of the last moveTo; null before.
    const CkSimRaster* raster() const { return m_raster.get(); }

private:
    /// Everything that the raster depends on.
    struct SkView {
        SkSimLens lens;
        EkSimScene scene = EkSimScene::Room;
        double wallDistanceM = 0.0;
        double wallReflectivity = 0.0;

        bool operator==(const SkView&) const = default;
    };

    EkSimCameraKind m_kind;
    SkView m_view;
    std::unique_ptr<CkSimRaster> m_raster;
    CkSimWaveSynth m_wave;
    CkSimHybridSynth m_hybrid;
    CkSimGreySynth m_grey;
};
