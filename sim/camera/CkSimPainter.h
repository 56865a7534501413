#pragma once

#include "sim/camera/SkSimPlan.h"
#include "sim/synth/CkSimGreySynth.h"
#include "sim/synth/CkSimHybridSynth.h"
#include "sim/synth/CkSimRaster.h"
#include "sim/synth/CkSimWaveSynth.h"

#include <memory>

/// Paints the images of a plan. Keeps what settings and scene have in common from image to image; one thread
/// at a time.
class CkSimPainter {
public:
    explicit CkSimPainter(EkSimCameraKind kind) : m_kind(kind) {}

    /// Shows the scene of the settings at a time in seconds. False when memory is short.
    bool moveTo(const SkSimSettings& settings, double seconds);

    /// Paints an image of a set after moveTo. The picture has the image's format. False, with an undefined
    /// part painted, when it has not.
    bool paint(const SkSimSettings& settings, const SkSimImage& image, quint64 set, SkPicBuf& picture);

    /// What moveTo showed last; null before.
    const CkSimRaster* raster() const { return m_raster.get(); }

private:
    /// What a raster is made of.
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
