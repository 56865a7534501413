#pragma once

#include <QString>
#include <QtGlobal>

/// One cell of the matrix: what the simulated camera is set to and looks at. Plain data.
struct SkToFAccuracyPoint {
    bool hybrid = false;       ///< pulsed camera with three windows; otherwise continuous wave
    double modulation = 20.0;  ///< modulation frequency in MHz, or pulse duration in ns of a hybrid camera
    double distanceM = 1.0;    ///< m, of a wall across the optical axis
    double reflectivity = 0.8; ///< of the wall, 0 to 1
    double ambient = 1.0;      ///< brightness of the lamps, 1: ordinary room light
    int phases = 4;            ///< 2, 4 or 8; no meaning for a hybrid camera
    int bits = 12;             ///< of the converter: 8, 12 or 16
};

/// Settings that all cells share. Plain data.
struct SkToFAccuracySetup {
    int width = 128; ///< pixels, in the middle of the sensor
    int height = 96;
    qint64 frames = 4;
    double exposureUs = 1000.0;
    bool noise = true;
    quint32 seed = 1;
    float confidenceThreshold = 10.0F; ///< pixels of a higher confidence value are not valid
};

/// The result of a cell. Errors are measured minus true distance along the ray, over all valid pixels of
/// all frames; distances beyond the range are compared modulo the range. Plain data.
struct SkToFAccuracyResult {
    SkToFAccuracyPoint point;
    double rangeM = 0.0; ///< m, where distances wrap (wave) or end (hybrid)
    qint64 pixels = 0;
    qint64 valid = 0;
    qint64 saturated = 0;   ///< pixels with a sample at the end of its range
    double biasMm = 0.0;    ///< mean error; like the next three NaN without valid pixels
    double stdMm = 0.0;     ///< standard deviation of the error
    double p95Mm = 0.0;     ///< 95th percentile of the magnitude of the error
    double largestMm = 0.0; ///< largest magnitude of the error
    double signal = 0.0;    ///< reflected electrons of one exposure, mean over the pixels
    double total = 0.0;     ///< reflected and ambient electrons of one exposure, mean over the pixels
    double shotMm = 0.0;    ///< lower limit of the standard deviation by shot noise alone
    double sensorMm = 0.0;  ///< the same with read noise and quantisation
    QString error;          ///< why the cell could not be measured, or empty

    double validShare() const { return pixels > 0 ? double(valid) / double(pixels) : 0.0; }
    double saturatedShare() const { return pixels > 0 ? double(saturated) / double(pixels) : 0.0; }
    /// Whether the distance is beyond the unambiguous range.
    bool isWrapped() const { return !point.hybrid && point.distanceM >= rangeM; }
};
