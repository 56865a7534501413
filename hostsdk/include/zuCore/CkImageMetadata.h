#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QString>
#include <QStringList>

/// Readout formats of a ToF camera as they appear in CkImageMetadata::tofFormatCode. Exactly these six
/// are recognised.
namespace ToFFormatCode {
inline constexpr quint32 kRawX2Bits8 = 0x80ab0f08U;             ///< A and B, 8 bit
inline constexpr quint32 kRawX2Bits12 = 0x80ab0f0cU;            ///< A and B, 12 bit in 16
inline constexpr quint32 kRawX2Bits12Alternate = 0x84ab0f0cU;   ///< alternate code
inline constexpr quint32 kAminusBBits8 = 0x80a05f08U;           ///< A minus B, 8 bit, signed
inline constexpr quint32 kAminusBBits12 = 0x80a05f0cU;          ///< A minus B, 12 bit in 16, signed
inline constexpr quint32 kAminusBBits12Alternate = 0x84a05f0cU; ///< alternate code
} // namespace ToFFormatCode

/// Per-image record that travels with a picture. Plain data, copied by value (strings share).
struct CkImageMetadata {
    QStringList channelNames;         ///< one per channel: "Phase shift", "Confidence", "Depth", "X1", ...
    quint32 tofFormatCode = 0;        ///< see ToFFormatCode; 0 = none
    quint32 colorFilterArray = 0;     ///< same code as the descriptor's
    float modulationFrequency = 0.0F; ///< MHz; 0 = absent
    qint32 phasesCount = 0;           ///< phases stacked in this picture; 0 or negative = unknown
    qint32 phaseSequenceLength = 0;   ///< images that make one set; 0 or negative = not a sequence
    qint32 phaseSequenceIndex = 0;    ///< position in the set, from 0
    qint32 phaseAngle = 0;            ///< degrees, of an image that holds one phase
    float hybridPulseDuration = 0.0F; ///< seconds; 0 or negative = default depth range
    quint32 sectionIndex = 0;         ///< position among the sections of a hybrid measurement, from 0
    quint32 sectionCount = 0;         ///< sections of a hybrid measurement
    quint32 sectionMode = 0;          ///< see ToFSectionMode
    float lensFocalLength = 0.0F;     ///< mm; 0 or negative = unknown
    float exposureTimeUs = 0.0F;      ///< microseconds
    float frameRate = 0.0F;           ///< sets per second the camera is set to
    qint64 timestampNs = 0;           ///< host clock at delivery, nanoseconds since the epoch
    quint64 frameNumber = 0;          ///< counts from 0 at each start of acquisition
    QString cameraName;               ///< to be displayed; empty: unknown
    QString cameraSerial;             ///< empty: unknown

    bool operator==(const CkImageMetadata&) const = default;
};
