#pragma once

#include "plugins/zplToF/cloud/SkToFOpticalPath.h"

class QSettings;

/// Keys of the 3D view's settings, with type, default, unit and writer. Misspelt words are part of the
/// keys: existing settings files use them.
namespace ToFSettingsKey {
// clang-format off
inline constexpr char kShowBBox[]             = "ToF.ShowBBox";              ///< bool, true; the view
inline constexpr char kRegulateInputFps[]     = "ToF.RegulateInputFps";      ///< bool, false; settings dialog
inline constexpr char kMaxInputFps[]          = "ToF.MaxInputFps";           ///< float, 5, frames/s; settings dialog
inline constexpr char kCompensateDistortion[] = "ToF.OptCompensateDistorsion"; ///< bool, false; settings dialog
inline constexpr char kLensFocalLengthMM[]    = "ToF.OptLensFocalLengthMM";  ///< float, 3.5, mm; settings dialog
inline constexpr char kChipCellSizeMM[]       = "ToF.OptChipCellSizeMM";     ///< float, 0.01, mm; settings dialog
inline constexpr char kCenterOffsetMM[]       = "ToF.OptCenterOffsetMM";     ///< QPointF, (0, 0), mm; settings dialog
inline constexpr char kModulationFreqMHz[]    = "ToF.OptModulationFreq";     ///< float, 30, MHz; settings dialog
inline constexpr char kConfidenceThreshold[]  = "ToF.OptConfidenceThreshold"; ///< float, 10; settings dialog
inline constexpr char kRealDistanceOffsetM[]  = "ToF.OptRealDistandeOffsetM"; ///< float, -1.5, m; settings dialog, calibration
inline constexpr char kOrthoRadialCorrection[] = "ToF.OptOrthoRadialCorrection"; ///< bool, true; settings dialog
inline constexpr char kLutPseudoColor[]       = "ToF.LUTPseudoColor";        ///< int, 0, number of the map; the view
inline constexpr char kDepthTexResolutionW[]  = "ToF.DepthTexResolutionW";   ///< int, 640, pixels; the view, never read
inline constexpr char kBgColor[]              = "ToF.BgColor";               ///< unsigned, 0x303080, 0xRRGGBB; the view
// clang-format on
} // namespace ToFSettingsKey

/// Reading never fails: a value that is missing, of another type or not finite is replaced by the default.
/// Safe from any thread that may use the settings.
namespace ToFSettings {

float readFloat(const QSettings& settings, const char* key, float fDefault);
/// Accepts only flags, whole numbers and the texts "true", "false", "1" and "0", in upper or lower case.
bool readBool(const QSettings& settings, const char* key, bool bDefault);
SkToFOpticalPath readOpticalPath(const QSettings& settings);

} // namespace ToFSettings
