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
    result.showBBox = ToFSettings::readBool(settings, Key::ShowBBox, result.showBBox);
    result.regulateInputFps = ToFSettings::readBool(settings, Key::RegulateInputFps, result.regulateInputFps);
    result.maxInputFps = ToFSettings::readFloat(settings, Key::MaxInputFps, result.maxInputFps);
    result.opticalPath = ToFSettings::readOpticalPath(settings);
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
    return ToFSettings::readFloat(settings, ToFSettingsKey::RealDistanceOffsetM, fDefault);
}

int SkToFViewSettings::readPseudoColor(const QSettings& settings) {
    return readWhole(settings, ToFSettingsKey::LutPseudoColor, 0);
}

QColor SkToFViewSettings::readBackground(const QSettings& settings) {
    return QColor(QRgb(readWhole(settings, ToFSettingsKey::BgColor, kDefaultBackground)));
}

QColor SkToFViewSettings::defaultBackground() {
    return QColor(QRgb(kDefaultBackground));
}
