#include "host/viewer/panels/quality/CkQualityHistory.h"

#include "host/viewer/picture/PictureText.h"

#include <QStringList>

#include <cmath>

namespace {

QString cell(double value) {
    return std::isfinite(value) ? QString::number(value, 'g', 9) : QString();
}

} // namespace

void CkQualityHistory::add(const SkQualityValues& values) {
    m_values.push_back(values);
    if (m_values.size() > kMost) {
        m_values.pop_front();
    }
}

QByteArray CkQualityHistory::csv(const QString& sView, const QRect& region) const {
    QString text = QStringLiteral("# view: %1; region: x %2, y %3, %4 x %5 pixels\n")
                       .arg(sView)
                       .arg(region.x())
                       .arg(region.y())
                       .arg(region.width())
                       .arg(region.height());
    text += QStringLiteral("frame,frames_over_time,unit,mean,std_region,std_time,valid_share,tilt_deg,"
                           "flatness_mm,plane_rms_mm,saturation_known\n");
    for (const SkQualityValues& values : m_values) {
        const QStringList cells{QString::number(values.frameNumber),
                                QString::number(values.frames),
                                values.unit,
                                cell(values.mean),
                                cell(values.spatialStd),
                                cell(values.temporalStd),
                                cell(values.validShare),
                                cell(values.tiltDegrees),
                                cell(values.flatness),
                                cell(values.planeRms),
                                QString::number(int(values.saturationKnown))};
        text += cells.join(QLatin1Char(',')) + QLatin1Char('\n');
    }
    return text.toUtf8();
}

QString CkQualityHistory::number(double fValue, const QString& sUnit) {
    if (!std::isfinite(fValue)) {
        return QStringLiteral("\u2013");
    }
    const double size = std::abs(fValue);
    const int decimals = size >= 10000.0 ? 0 : size >= 1000.0 ? 1 : size >= 10.0 ? 2 : 3;
    const QString number = PictureText::locale().toString(fValue, 'f', decimals);
    return sUnit.isEmpty() ? number : number + QLatin1Char(' ') + sUnit;
}

QString CkQualityHistory::text(const SkQualityValues& values) {
    const auto line = [](const QString& sName, const QString& sValue) {
        return sName + QLatin1Char('\t') + sValue + QLatin1Char('\n');
    };
    const QString mm = QStringLiteral("mm");
    return line(tr("Mean"), number(values.mean, values.unit)) +
           line(tr("Std. dev. over the region"), number(values.spatialStd, values.unit)) +
           line(tr("Std. dev. over time"), number(values.temporalStd, values.unit)) +
           line(tr("Valid pixels"), number(100.0 * values.validShare, QStringLiteral("%"))) +
           line(tr("Tilt"), number(values.tiltDegrees, QStringLiteral("\u00b0"))) +
           line(tr("Flatness"), number(values.flatness, mm)) +
           line(tr("RMS from the plane"), number(values.planeRms, mm));
}
