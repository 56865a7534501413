#include "plugins/zplToF/cloud/ToFSettings.h"

#include <QSettings>

namespace {

QPointF readPoint(const QSettings& settings, const char* key, const QPointF& defaultValue) {
    const QVariant value = settings.value(QLatin1String(key));
    if (value.typeId() != QMetaType::QPointF && value.typeId() != QMetaType::QPoint) {
        return defaultValue;
    }
    const QPointF point = value.toPointF();
    return std::isfinite(point.x()) && std::isfinite(point.y()) ? point : defaultValue;
}

} // namespace

float ToFSettings::readFloat(const QSettings& settings, const char* key, float fDefault) {
    bool ok = false;
    const float value = settings.value(QLatin1String(key)).toFloat(&ok);
    return ok && float_is_valid(value) ? value : fDefault;
}

// QVariant takes any text but "false" and "0" for true; here only real flags count.
bool ToFSettings::readBool(const QSettings& settings, const char* key, bool bDefault) {
    const QVariant value = settings.value(QLatin1String(key));
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
        return value.toBool();
    case QMetaType::QString:
        break;
    default:
        return bDefault;
    }
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1")) {
        return true;
    }
    if (text == QLatin1String("false") || text == QLatin1String("0")) {
        return false;
    }
    return bDefault;
}

SkToFOpticalPath ToFSettings::readOpticalPath(const QSettings& settings) {
    namespace Key = ToFSettingsKey;
    SkToFOpticalPath path;
    path.compensateDistortion = readBool(settings, Key::kCompensateDistortion, path.compensateDistortion);
    path.lensFocalLengthMM = readFloat(settings, Key::kLensFocalLengthMM, path.lensFocalLengthMM);
    path.chipCellSizeMM = readFloat(settings, Key::kChipCellSizeMM, path.chipCellSizeMM);
    path.centerOffsetMM = readPoint(settings, Key::kCenterOffsetMM, path.centerOffsetMM);
    path.modulationFreqMHz = readFloat(settings, Key::kModulationFreqMHz, path.modulationFreqMHz);
    path.confidenceThreshold = readFloat(settings, Key::kConfidenceThreshold, path.confidenceThreshold);
    path.realDistanceOffsetM = readFloat(settings, Key::kRealDistanceOffsetM, path.realDistanceOffsetM);
    path.orthoRadialCorrection = readBool(settings, Key::kOrthoRadialCorrection, path.orthoRadialCorrection);
    return path;
}
