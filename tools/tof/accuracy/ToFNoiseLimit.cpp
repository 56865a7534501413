#include "tools/tof/accuracy/ToFNoiseLimit.h"

#include <cmath>

double wavePhaseSigma(double signal, double total, double contrast, int phases, double other) {
    return std::sqrt(2.0 * (total + other) / phases) / (contrast * signal);
}

double pulseShareSigma(double first, double second, double ambient, double other) {
    const double pulse = first + second - 2.0 * ambient;
    const double share = (second - ambient) / pulse;
    const double variance = share * share * (first + other) +
                            (1.0 - share) * (1.0 - share) * (second + other) +
                            (2.0 * share - 1.0) * (2.0 * share - 1.0) * (ambient + other);
    return std::sqrt(variance) / pulse;
}
