#include "host/viewer/panels/quality/CkQualityHistory.h"

#include <QSaveFile>
#include <QStringList>

#include <cmath>

namespace {

QString cell(double value) {
    return std::isfinite(value) ? QString::number(value, 'g', 9) : QString();
}

} // namespace

void CkQualityHistory::add(const SkQualityValues& values) {
    m_values.push_back(values);
    if (m_values.size() > kMaximumFrames) {
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

bool CkQualityHistory::saveCsv(const QString& sFileName, const QString& sView, const QRect& region,
                               QString& sError) const {
    const QByteArray text = csv(sView, region);
    QSaveFile file(sFileName);
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit()) {
        return true;
    }
    sError = tr("%1 cannot be written: %2.").arg(sFileName, file.errorString());
    return false;
}
