#include "view3d/CkToFViewSettings.h"

#include <QColor>
#include <QSettings>
#include <limits>

namespace {

constexpr uint DefaultBackground = 0x303080;

float readFloat(const QSettings& settings, const char* key, float defaultValue) {
    bool ok = false;
    const float value = settings.value(QLatin1String(key)).toFloat(&ok);
    return ok && float_is_valid(value) ? value : defaultValue;
}

// By way of a real number: what QVariant makes of one that is out of range is not defined.
template <typename Whole>
Whole readWhole(const QSettings& settings, const char* key, Whole defaultValue) {
    bool ok = false;
    const double value = settings.value(QLatin1String(key)).toDouble(&ok);
    const bool fits = value >= double(std::numeric_limits<Whole>::min()) &&
                      value <= double(std::numeric_limits<Whole>::max());
    return ok && fits ? Whole(value) : defaultValue;
}

// QVariant takes any text but "false" and "0" for true; here only real flags count.
bool readBool(const QSettings& settings, const char* key, bool defaultValue) {
    const QVariant value = settings.value(QLatin1String(key));
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
        return value.toBool();
    case QMetaType::QString:
        break;
    default:
        return defaultValue;
    }
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1")) {
        return true;
    }
    if (text == QLatin1String("false") || text == QLatin1String("0")) {
        return false;
    }
    return defaultValue;
}

QPointF readPoint(const QSettings& settings, const char* key, const QPointF& defaultValue) {
    const QVariant value = settings.value(QLatin1String(key));
    if (value.typeId() != QMetaType::QPointF && value.typeId() != QMetaType::QPoint) {
        return defaultValue;
    }
    const QPointF point = value.toPointF();
    return std::isfinite(point.x()) && std::isfinite(point.y()) ? point : defaultValue;
}

} // namespace

SkToFViewSettings SkToFViewSettings::read(const QSettings& settings) {
    namespace Key = ToFSettingsKey;
    SkToFViewSettings result;
    result.showBBox = readBool(settings, Key::ShowBBox, result.showBBox);
    result.regulateInputFps = readBool(settings, Key::RegulateInputFps, result.regulateInputFps);
    result.maxInputFps = readFloat(settings, Key::MaxInputFps, result.maxInputFps);
    SkToFOpticalPath& path = result.opticalPath;
    path.compensateDistortion = readBool(settings, Key::CompensateDistortion, path.compensateDistortion);
    path.lensFocalLengthMM = readFloat(settings, Key::LensFocalLengthMM, path.lensFocalLengthMM);
    path.chipCellSizeMM = readFloat(settings, Key::ChipCellSizeMM, path.chipCellSizeMM);
    path.centerOffsetMM = readPoint(settings, Key::CenterOffsetMM, path.centerOffsetMM);
    path.modulationFreqMHz = readFloat(settings, Key::ModulationFreqMHz, path.modulationFreqMHz);
    path.confidenceThreshold = readFloat(settings, Key::ConfidenceThreshold, path.confidenceThreshold);
    path.realDistanceOffsetM = readDistanceOffset(settings, path.realDistanceOffsetM);
    path.orthoRadialCorrection = readBool(settings, Key::OrthoRadialCorrection, path.orthoRadialCorrection);
    return result;
}

void SkToFViewSettings::writeDialogValues(QSettings& settings) const {
    namespace Key = ToFSettingsKey;
    const auto write = [&settings](const char* key, const QVariant& value) {
        settings.setValue(QLatin1String(key), value);
    };
    write(Key::CompensateDistortion, opticalPath.compensateDistortion);
    write(Key::LensFocalLengthMM, opticalPath.lensFocalLengthMM);
    write(Key::ChipCellSizeMM, opticalPath.chipCellSizeMM);
    write(Key::CenterOffsetMM, opticalPath.centerOffsetMM);
    write(Key::ModulationFreqMHz, opticalPath.modulationFreqMHz);
    write(Key::ConfidenceThreshold, opticalPath.confidenceThreshold);
    write(Key::RealDistanceOffsetM, opticalPath.realDistanceOffsetM);
    write(Key::OrthoRadialCorrection, opticalPath.orthoRadialCorrection);
    write(Key::RegulateInputFps, regulateInputFps);
    write(Key::MaxInputFps, maxInputFps);
}

float SkToFViewSettings::readDistanceOffset(const QSettings& settings, float fDefault) {
    return readFloat(settings, ToFSettingsKey::RealDistanceOffsetM, fDefault);
}

int SkToFViewSettings::readPseudoColor(const QSettings& settings) {
    return readWhole(settings, ToFSettingsKey::LutPseudoColor, 0);
}

QColor SkToFViewSettings::readBackground(const QSettings& settings) {
    return QColor(QRgb(readWhole(settings, ToFSettingsKey::BgColor, DefaultBackground)));
}

QColor SkToFViewSettings::defaultBackground() {
    return QColor(QRgb(DefaultBackground));
}
