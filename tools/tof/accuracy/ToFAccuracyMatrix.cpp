#include "tools/tof/accuracy/ToFAccuracyMatrix.h"

std::vector<SkToFAccuracyPoint> SkToFAccuracyMatrix::points() const {
    std::vector<SkToFAccuracyPoint> all;
    const auto scenes = [this, &all](SkToFAccuracyPoint point) {
        for (const double count : bits) {
            point.bits = int(count);
            for (const double reflectivity : reflectivities) {
                point.reflectivity = reflectivity;
                for (const double ambient : ambients) {
                    point.ambient = ambient;
                    for (const double distance : distances) {
                        point.distanceM = distance;
                        all.push_back(point);
                    }
                }
            }
        }
    };
    for (size_t i = 0; wave && i < frequencies.size(); ++i) {
        for (const double count : phases) {
            SkToFAccuracyPoint point;
            point.modulation = frequencies[i];
            point.phases = int(count);
            scenes(point);
        }
    }
    for (size_t i = 0; hybrid && i < pulses.size(); ++i) {
        SkToFAccuracyPoint point;
        point.hybrid = true;
        point.modulation = pulses[i];
        scenes(point);
    }
    return all;
}
