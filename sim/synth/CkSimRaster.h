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
/// The result depends only on the time, not on earlier calls. One thread at a time.
class CkSimRaster {
public:
    CkSimRaster(const SkSimLens& lens, const CkSimScene& scene);
    CkSimRaster(const CkSimRaster&) = delete;
    CkSimRaster& operator=(const CkSimRaster&) = delete;

    /// Unique within the process, unlike an address, which may be reused.
    quint64 identity() const { return m_identity; }
    const SkSimLens& lens() const { return m_lens; }

    /// Moves the scene to a time in seconds.
    void moveTo(double seconds);

    /// Increases with every moveTo.
    quint64 revision() const { return m_revision; }
    /// Pixels that may differ from the previous revision.
    const SkSimRect& changed() const { return m_changed; }

    /// Row by row, width * height values each.
    const std::vector<float>& distance() const { return m_current.distance; } ///< radial, metres
    /// Fraction of the camera's own light that returns: reflectivity * cosine / distance squared.
    const std::vector<float>& echo() const { return m_current.echo; }
    /// Fraction of the ambient light that returns: reflectivity * daylight.
    const std::vector<float>& ambient() const { return m_current.ambient; }

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
    SkMaps m_static; ///< the scene without the sphere
    SkMaps m_current;
    SkSimRect m_sphereArea;
    SkSimRect m_changed;
    double m_seconds = 0.0;
    quint64 m_revision = 0;
};
