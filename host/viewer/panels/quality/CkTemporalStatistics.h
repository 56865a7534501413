#pragma once

#include <QtGlobal>

#include <vector>

/// Spread over time of each pixel, in one pass (Welford). Values that are not finite are skipped. One thread
/// at a time.
class CkTemporalStatistics {
public:
    void clear();

    /// Adds a frame; another number of values than before restarts.
    void add(const std::vector<float>& values);

    qint64 frames() const { return m_frames; }

    /// Quadratic mean of the standard deviations of the pixels seen at least twice; not a number without one.
    double standardDeviation() const;

private:
    struct SkPixel {
        double mean = 0.0;
        double squares = 0.0; ///< about the mean
        quint32 count = 0;
    };
    std::vector<SkPixel> m_pixels;
    qint64 m_frames = 0;
};
