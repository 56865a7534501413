#include "tools/tof/accuracy/ToFAccuracyReport.h"

#include <QStringList>

#include <cmath>

namespace {

QString cell(double value) {
    return std::isfinite(value) ? QString::number(value, 'g', 9) : QString();
}

} // namespace

QByteArray SkToFAccuracyReport::csv() const {
    QString text =
        QStringLiteral("camera,modulation_MHz,pulse_ns,phases,bits,distance_m,reflectivity,ambient,range_m,"
                       "wrapped,bias_mm,std_mm,p95_mm,max_mm,valid_share,saturated_share,signal_electrons,"
                       "total_electrons,shot_limit_mm,sensor_limit_mm\n");
    for (const SkToFAccuracyResult& result : results) {
        const SkToFAccuracyPoint& point = result.point;
        const QStringList cells{point.hybrid ? QStringLiteral("hybrid") : QStringLiteral("wave"),
                                point.hybrid ? QString() : cell(point.modulation),
                                point.hybrid ? cell(point.modulation) : QString(),
                                point.hybrid ? QString() : QString::number(point.phases),
                                QString::number(point.bits),
                                cell(point.distanceM),
                                cell(point.reflectivity),
                                cell(point.ambient),
                                cell(result.rangeM),
                                QString::number(int(result.isWrapped())),
                                cell(result.biasMm),
                                cell(result.stdMm),
                                cell(result.p95Mm),
                                cell(result.largestMm),
                                cell(result.validShare()),
                                cell(result.saturatedShare()),
                                cell(result.signal),
                                cell(result.total),
                                cell(result.shotMm),
                                cell(result.sensorMm)};
        text += cells.join(QLatin1Char(',')) + QLatin1Char('\n');
    }
    return text.toUtf8();
}
