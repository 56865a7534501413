#include "plugins/zplToF/view3d/SkToFViewSettings.h"

#include <QColor>
#include <QSettings>
#include <limits>

namespace {

constexpr uint kDefaultBackground = 0x303080;

// Converted as a double: the result of QVariant's integer conversions is undefined for numbers out of range.
template <typename Whole>
Whole readWhole(const QSettings& settings, const char* key, Whole defaultValue) {
    bool ok = false;
    const double value = settings.value(QLatin1String(key)).toDouble(&ok);
    const bool fits = value >= double(std::numeric_limits<Whole>::min()) &&
                      value <= double(std::numeric_limits<Whole>::max());
    return ok && fits ? Whole(value) : defaultValue;
}

} // namespace

SkToFViewSettings SkToFViewSettings::read(const QSettings& settings) {
    namespace Key = ToFSettingsKey;
    SkToFViewSettings result;
    result.showBBox = ToFSettings::readBool(settings, Key::kShowBBox, result.showBBox);
    result.regulateInputFps =
        ToFSettings::readBool(settings, Key::kRegulateInputFps, result.regulateInputFps);
    result.maxInputFps = ToFSettings::readFloat(settings, Key::kMaxInputFps, result.maxInputFps);
    result.opticalPath = ToFSettings::readOpticalPath(settings);
    return result;
}

void SkToFViewSettings::writeDialogValues(QSettings& settings) const {
    namespace Key = ToFSettingsKey;
    const auto write = [&settings](const char* key, const QVariant& value) {
        settings.setValue(QLatin1String(key), value);
    };
    write(Key::kCompensateDistortion, opticalPath.compensateDistortion);
    write(Key::kLensFocalLengthMM, opticalPath.lensFocalLengthMM);
    write(Key::kChipCellSizeMM, opticalPath.chipCellSizeMM);
    write(Key::kCenterOffsetMM, opticalPath.centerOffsetMM);
    write(Key::kModulationFreqMHz, opticalPath.modulationFreqMHz);
    write(Key::kConfidenceThreshold, opticalPath.confidenceThreshold);
    write(Key::kRealDistanceOffsetM, opticalPath.realDistanceOffsetM);
    write(Key::kOrthoRadialCorrection, opticalPath.orthoRadialCorrection);
    write(Key::kRegulateInputFps, regulateInputFps);
    write(Key::kMaxInputFps, maxInputFps);
}

float SkToFViewSettings::readDistanceOffset(const QSettings& settings, float fDefault) {
    return ToFSettings::readFloat(settings, ToFSettingsKey::kRealDistanceOffsetM, fDefault);
}

int SkToFViewSettings::readPseudoColor(const QSettings& settings) {
    return readWhole(settings, ToFSettingsKey::kLutPseudoColor, 0);
}

QColor SkToFViewSettings::readBackground(const QSettings& settings) {
    return QColor(QRgb(readWhole(settings, ToFSettingsKey::kBgColor, kDefaultBackground)));
}

QColor SkToFViewSettings::defaultBackground() {
    return QColor(QRgb(kDefaultBackground));
}
