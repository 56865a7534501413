#include "host/picture/pseudoColors.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace {

/// Red, green and blue at a position, all 0..1. Colours between points are interpolated linearly.
struct ControlPoint {
    double position;
    double red;
    double green;
    double blue;
};

constexpr ControlPoint kGrey[] = {{0.0, 0.0, 0.0, 0.0}, {1.0, 1.0, 1.0, 1.0}};
constexpr ControlPoint kInverted[] = {{0.0, 1.0, 1.0, 1.0}, {1.0, 0.0, 0.0, 0.0}};
// Around the colour wheel from blue to red.
constexpr ControlPoint kRainbow[] = {{0.0, 0.0, 0.0, 1.0},
                                     {0.25, 0.0, 1.0, 1.0},
                                     {0.5, 0.0, 1.0, 0.0},
                                     {0.75, 1.0, 1.0, 0.0},
                                     {1.0, 1.0, 0.0, 0.0}};
// The same with dark ends, so that the ends of the range are less prominent.
constexpr ControlPoint kJet[] = {{0.0, 0.0, 0.0, 0.5},   {0.125, 0.0, 0.0, 1.0}, {0.375, 0.0, 1.0, 1.0},
                                 {0.625, 1.0, 1.0, 0.0}, {0.875, 1.0, 0.0, 0.0}, {1.0, 0.5, 0.0, 0.0}};
constexpr ControlPoint kHot[] = {
    {0.0, 0.0, 0.0, 0.0}, {0.375, 1.0, 0.0, 0.0}, {0.75, 1.0, 1.0, 0.0}, {1.0, 1.0, 1.0, 1.0}};
// Evenly rising lightness from violet over teal to yellow.
constexpr ControlPoint kVioletToYellow[] = {{0.0, 0.27, 0.01, 0.33},
                                            {0.25, 0.23, 0.32, 0.54},
                                            {0.5, 0.13, 0.57, 0.55},
                                            {0.75, 0.37, 0.79, 0.38},
                                            {1.0, 0.99, 0.91, 0.15}};
// All hues at an evenly rising, then falling lightness.
constexpr ControlPoint kSpectrum[] = {
    {0.0, 0.19, 0.07, 0.23}, {0.15, 0.27, 0.46, 0.91}, {0.35, 0.11, 0.85, 0.80}, {0.5, 0.50, 0.98, 0.40},
    {0.7, 0.95, 0.80, 0.22}, {0.85, 0.94, 0.39, 0.08}, {1.0, 0.48, 0.02, 0.01}};
constexpr ControlPoint kBlueToRed[] = {
    {0.0, 0.23, 0.30, 0.75}, {0.5, 0.87, 0.87, 0.87}, {1.0, 0.71, 0.02, 0.15}};

struct Map {
    const char* name;
    std::span<const ControlPoint> points;
};

const Map kMaps[] = {{"Grey", kGrey},         {"Inverted grey", kInverted},
                     {"Rainbow", kRainbow},   {"Jet", kJet},
                     {"Hot", kHot},           {"Violet to yellow", kVioletToYellow},
                     {"Spectrum", kSpectrum}, {"Blue to red", kBlueToRed}};

quint8 toByte(double value) {
    return quint8(std::lround(255.0 * value));
}

} // namespace

QStringList pseudoColorMapNames() {
    QStringList names;
    for (const Map& map : kMaps) {
        names.append(QString::fromLatin1(map.name));
    }
    return names;
}

PseudoColorTable pseudoColorMap(int index) {
    const bool known = index >= 0 && index < int(std::size(kMaps));
    const auto points = kMaps[known ? index : 0].points;
    PseudoColorTable table;
    for (size_t i = 0; i < 256; ++i) {
        const double position = double(i) / 255.0;
        // The last interval includes the end of the map.
        size_t k = 0;
        while (k + 2 < points.size() && points[k + 1].position <= position) {
            ++k;
        }
        const ControlPoint& from = points[k];
        const ControlPoint& to = points[k + 1];
        const double part = (position - from.position) / (to.position - from.position);
        table[4 * i] = toByte(std::lerp(from.blue, to.blue, part));
        table[4 * i + 1] = toByte(std::lerp(from.green, to.green, part));
        table[4 * i + 2] = toByte(std::lerp(from.red, to.red, part));
        table[4 * i + 3] = 255;
    }
    return table;
}
