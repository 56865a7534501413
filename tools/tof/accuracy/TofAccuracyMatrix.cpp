#include "tools/tof/accuracy/TofAccuracyMatrix.h"

std::vector<SkTofAccuracyPoint> SkTofAccuracyMatrix::points() const {
    std::vector<SkTofAccuracyPoint> all;
    const auto scenes = [this, &all](SkTofAccuracyPoint point) {
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
            SkTofAccuracyPoint point;
            point.modulation = frequencies[i];
            point.phases = int(count);
            scenes(point);
        }
    }
    for (size_t i = 0; hybrid && i < pulses.size(); ++i) {
        SkTofAccuracyPoint point;
        point.hybrid = true;
        point.modulation = pulses[i];
        scenes(point);
    }
    return all;
}
