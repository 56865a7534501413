#include "tools/tof/accuracy/ToFAccuracyLimits.h"

#include <cmath>

QStringList SkToFAccuracyLimits::exceededBy(const SkToFAccuracyResult& result) const {
    QStringList exceeded;
    const auto check = [&exceeded](const std::optional<double>& limit, double value, const char* text) {
        // Negated, so that NaN exceeds the limit too.
        if (limit && !(value <= *limit)) {
            exceeded.append(QString::fromLatin1(text).arg(value, 0, 'g', 4).arg(*limit, 0, 'g', 4));
        }
    };
    check(maxBiasMm, std::abs(result.biasMm), "bias of %1 mm (limit %2 mm)");
    check(maxStdMm, result.stdMm, "standard deviation of %1 mm (limit %2 mm)");
    check(maxRatio, result.stdMm / result.sensorMm, "%1 times the sensor's noise (limit %2)");
    if (minValidShare && result.validShare() < *minValidShare) {
        exceeded.append(QStringLiteral("%1 % valid pixels (limit %2 %)")
                            .arg(100.0 * result.validShare(), 0, 'g', 4)
                            .arg(100.0 * *minValidShare, 0, 'g', 4));
    }
    return exceeded;
}

QString describeAccuracyPoint(const SkToFAccuracyPoint& point) {
    const QString camera = point.hybrid
                               ? QStringLiteral("hybrid, %1 ns").arg(point.modulation)
                               : QStringLiteral("%1 MHz, %2 phases").arg(point.modulation).arg(point.phases);
    return QStringLiteral("%1, %2 bit, %3 m, %4 %, ambient %5")
        .arg(camera)
        .arg(point.bits)
        .arg(point.distanceM)
        .arg(100.0 * point.reflectivity)
        .arg(point.ambient);
}
