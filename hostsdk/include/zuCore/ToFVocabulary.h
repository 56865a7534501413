#pragma once

#include <QLatin1String>
#include <QtGlobal>

// Names and codes that cameras, the host, the tools and plug-ins exchange. Format codes of frames are in
// CkImageMetadata.h (ToFFormatCode), sample types and pixel arrangements in EkImageDataType.h.

/// Speed of light in vacuum, m/s. The range of pulsed (hybrid) sensors is computed with it.
inline constexpr double kSpeedOfLight = 299792458.0;

/// Speed of light in air, m * MHz, in single precision. A phase shift of a full turn at f MHz is a distance
/// of kSpeedOfLightInAirMMHz / (2 f) metres.
inline constexpr float kSpeedOfLightInAirMMHz = 299.70254F;

/// Names in CkImageMetadata::channelNames. The first one of a float picture defines the meaning of its
/// values.
///
/// Beside a phase shift the confidence is its standard deviation in radians; beside a hybrid depth it is a
/// ratio of the windows, and 0 marks a pixel without a measurement.
namespace ToFChannel {
inline constexpr QLatin1String kPhaseShift{"Phase shift"}; ///< radians, [0, 2 pi)
inline constexpr QLatin1String kDepth{"Depth"};            ///< metres
inline constexpr QLatin1String kConfidence{"Confidence"};  ///< dimensionless; lower is better
inline constexpr QLatin1String kA{"A"};                    ///< first tap of a two-tap pixel
inline constexpr QLatin1String kB{"B"};                    ///< second tap
inline constexpr QLatin1String kAminusB{"A-B"};            ///< signed difference of the taps
inline constexpr QLatin1String kX1{"X1"};                  ///< first integration window of a hybrid pixel
inline constexpr QLatin1String kX2{"X2"};                  ///< second window
inline constexpr QLatin1String kX3{"X3"};                  ///< third window
inline constexpr QLatin1String kGrey{"Grey"};              ///< brightness, no ToF
} // namespace ToFChannel

/// Names of the parameters by which a ToF camera is recognised and set up (CkCameraParameters::findParam).
namespace ToFParameter {
inline constexpr QLatin1String kReadoutMode{"tof_readout_mode"}; ///< see ToFReadoutMode
inline constexpr QLatin1String kDataFormat{"imgdataformat"};     ///< see ToFDataFormat
} // namespace ToFParameter

/// Dynamic properties of widgets that the host and plug-ins exchange.
namespace ToFProperty {
/// quint64: handle of the camera that a tool button acts on.
inline constexpr char kCameraHandle[] = "tof_camera_handle";
} // namespace ToFProperty

/// Values of ToFParameter::kReadoutMode. A camera may support others; they deliver no ToF pictures.
namespace ToFReadoutMode {
inline constexpr int kGrey = 0;    ///< no ToF
inline constexpr int kAminusB = 2; ///< the signed difference of the taps
inline constexpr int kAandB = 4;   ///< both taps
} // namespace ToFReadoutMode

/// Values of ToFParameter::kDataFormat. A camera with the readout modes of ToFReadoutMode sends differences
/// with the codes that a camera without readout modes uses for grey pictures.
namespace ToFDataFormat {
inline constexpr int kGrey8 = 0;              ///< 8 bit, of cameras without readout mode
inline constexpr int kGrey16 = 1;             ///< 16 bit, of cameras without readout mode
inline constexpr int kAminusB8 = 0;           ///< 8 bit, signed
inline constexpr int kAminusB16 = 1;          ///< 16 bit, signed
inline constexpr int kAminusB8Alternate = 5;  ///< alternate code of kAminusB8
inline constexpr int kAminusB16Alternate = 6; ///< alternate code of kAminusB16
inline constexpr int kAandB8 = 11;            ///< 8 bit
inline constexpr int kAandB12 = 13;           ///< 12 bit in 16
inline constexpr int kHybrid8 = 17;           ///< X1X2X3, 8 bit
inline constexpr int kHybrid12 = 18;          ///< X1X2X3, 12 bit in 16
} // namespace ToFDataFormat

/// Values of SkCameraInfo::sensorType.
namespace ToFSensorType {
inline constexpr quint32 kHybrid = 13; ///< pulsed, three integration windows
} // namespace ToFSensorType

/// Values of CkImageMetadata::sectionMode.
namespace ToFSectionMode {
inline constexpr quint32 kMeasurementOnly = 0; ///< every section is a measurement
/// Section 0 is a reference: it is subtracted from the others and does not count as a section.
inline constexpr quint32 kReferenceFirst = 3;

/// How many of the sections counted by CkImageMetadata::sectionCount are no measurement: 0 or 1.
constexpr quint32 referenceSections(quint32 uiSectionMode) {
    return uiSectionMode == kReferenceFirst ? 1U : 0U;
}
} // namespace ToFSectionMode

/// Phases of one measurement.
namespace ToFPhases {

/// Whether a distance or an amplitude can be computed from this number of phases: 1, 2, 4 or 8.
constexpr bool isSupportedCount(qint64 count) {
    return count == 1 || count == 2 || count == 4 || count == 8;
}

/// Degrees from one phase to the next in the nominal order: 45 for eight phases, otherwise 90. Two phases are
/// a quarter turn apart; half a turn would only repeat the first one with its taps exchanged.
constexpr qint32 nominalStep(qint64 count) {
    return count == 8 ? 45 : 90;
}

} // namespace ToFPhases
