#include "host/viewer/panels/quality/QualityQuantities.h"

#include "host/viewer/picture/PictureText.h"

#include <QCoreApplication>

#include <array>
#include <cmath>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(QualityQuantities)
};

struct SkQuantity {
    const char* name;
    const char* hint;
    double SkQualityValues::*member;
    double factor;
    const char* unit; ///< null: that of the channel
};

constexpr std::array<SkQuantity, QualityQuantities::kCount> kQuantities = {{
    {QT_TRANSLATE_NOOP("QualityQuantities", "Mean"),
     QT_TRANSLATE_NOOP("QualityQuantities", "Mean of the valid pixels of the newest frame"),
     &SkQualityValues::mean, 1.0, nullptr},
    {QT_TRANSLATE_NOOP("QualityQuantities", "Std. dev. over the region"),
     QT_TRANSLATE_NOOP("QualityQuantities", "Standard deviation of the valid pixels of the newest frame"),
     &SkQualityValues::spatialStd, 1.0, nullptr},
    {QT_TRANSLATE_NOOP("QualityQuantities", "Std. dev. over time"),
     QT_TRANSLATE_NOOP("QualityQuantities",
                       "How much a pixel varies from frame to frame: quadratic mean of the standard "
                       "deviations that the pixels have had since the start"),
     &SkQualityValues::temporalStd, 1.0, nullptr},
    {QT_TRANSLATE_NOOP("QualityQuantities", "Valid pixels"),
     QT_TRANSLATE_NOOP("QualityQuantities",
                       "Share of pixels that are finite, confident enough and not saturated"),
     &SkQualityValues::validShare, 100.0, "%"},
    {QT_TRANSLATE_NOOP("QualityQuantities", "Tilt"),
     QT_TRANSLATE_NOOP("QualityQuantities",
                       "Angle between the optical axis and the normal of the plane through the points"),
     &SkQualityValues::tiltDegrees, 1.0, "\u00b0"},
    {QT_TRANSLATE_NOOP("QualityQuantities", "Flatness"),
     QT_TRANSLATE_NOOP("QualityQuantities",
                       "From the point furthest in front of that plane to the one furthest behind it"),
     &SkQualityValues::flatness, 1.0, "mm"},
    {QT_TRANSLATE_NOOP("QualityQuantities", "RMS from the plane"),
     QT_TRANSLATE_NOOP("QualityQuantities", "Quadratic mean of the points' distances from that plane"),
     &SkQualityValues::planeRms, 1.0, "mm"},
}};

const SkQuantity& quantity(int index) {
    return kQuantities[size_t(index)];
}

} // namespace

QString QualityQuantities::name(int index) {
    return Texts::tr(quantity(index).name);
}

QString QualityQuantities::hint(int index) {
    return Texts::tr(quantity(index).hint);
}

double QualityQuantities::value(const SkQualityValues& values, int index) {
    return quantity(index).factor * values.*quantity(index).member;
}

QString QualityQuantities::unit(const SkQualityValues& values, int index) {
    const char* fixed = quantity(index).unit;
    return fixed != nullptr ? QString::fromUtf8(fixed) : values.unit;
}

QString QualityQuantities::number(double value, const QString& unit) {
    if (!std::isfinite(value)) {
        return QStringLiteral("\u2013");
    }
    const double size = std::abs(value);
    const int decimals = size >= 10000.0 ? 0 : size >= 1000.0 ? 1 : size >= 10.0 ? 2 : 3;
    const QString digits = PictureText::locale().toString(value, 'f', decimals);
    return unit.isEmpty() ? digits : digits + QLatin1Char(' ') + unit;
}

QString QualityQuantities::number(const SkQualityValues& values, int index) {
    return number(value(values, index), unit(values, index));
}

QString QualityQuantities::text(const SkQualityValues& values) {
    QString lines;
    for (int i = 0; i < kCount; ++i) {
        lines += name(i) + QLatin1Char('\t') + number(values, i) + QLatin1Char('\n');
    }
    return lines;
}
