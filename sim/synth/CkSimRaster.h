#pragma once

#include "sim/synth/CkSimScene.h"
#include "sim/synth/SkSimLens.h"

#include "zuCore/SkPicBuf.h"

#include <vector>

/// Half-open: columns left to right - 1, rows top to bottom - 1.
struct SkSimRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool isEmpty() const { return left >= right || top >= bottom; }
};

/// A scene seen through a lens: the true distance and the light of every pixel at one moment.
///
/// The static part is computed once; moving in time touches only the pixels that the sphere leaves or enters.
/// The result depends on the time alone, not on earlier calls. One thread at a time.
class CkSimRaster {
public:
    CkSimRaster(const SkSimLens& lens, const CkSimScene& scene);
    CkSimRaster(const CkSimRaster&) = delete;
    CkSimRaster& operator=(const CkSimRaster&) = delete;

    /// Unique in the process, unlike an address, which may be reused.
    quint64 identity() const { return m_identity; }
    const SkSimLens& lens() const { return m_lens; }

    /// Shows the scene at a time in seconds.
    void moveTo(double seconds);

    /// Increases with every moveTo.
    quint64 revision() const { return m_revision; }
    /// Pixels that may differ from the revision before.
    const SkSimRect& changed() const { return m_changed; }

    /// Row by row, width * height values each.
    const std::vector<float>& distance() const { return m_shown.distance; } ///< radial, metres
    /// Share of the camera's own light that comes back: reflectivity * cosine / distance squared.
    const std::vector<float>& echo() const { return m_shown.echo; }
    /// Share of the ambient light that comes back: reflectivity * daylight.
    const std::vector<float>& ambient() const { return m_shown.ambient; }

    /// Copies the true radial distances in metres into a one-channel float picture of the lens's size. False
    /// for any other picture.
    bool writeDistance(SkPicBuf& target) const;

private:
    struct SkMaps {
        std::vector<float> distance;
        std::vector<float> echo;
        std::vector<float> ambient;
    };

    SkSimVector rayOf(int column, int row) const;
    SkSimRect sphereArea(const SkSimVector& center) const;
    void restore(const SkSimRect& area);
    void drawSphere(const SkSimVector& center, const SkSimRect& area);

    quint64 m_identity;
    SkSimLens m_lens;
    CkSimScene m_scene;
    SkMaps m_standing;
    SkMaps m_shown;
    SkSimRect m_sphereArea;
    SkSimRect m_changed;
    double m_seconds = 0.0;
    quint64 m_revision = 0;
};
