#pragma once

#include "zuCore/CkImageMetadata.h"
#include "zuCore/SkPicBuf.h"

#include <QStringList>

#include <vector>

/// The expected format of each transform for each kind of picture.
namespace NegotiationTable {

inline constexpr auto I8 = EkImageDataType::Int8;
inline constexpr auto U8 = EkImageDataType::UInt8;
inline constexpr auto I16 = EkImageDataType::Int16;
inline constexpr auto U16 = EkImageDataType::UInt16;
inline constexpr auto U32 = EkImageDataType::UInt32;
inline constexpr auto F32 = EkImageDataType::Float32;
inline constexpr auto F64 = EkImageDataType::Float64;
inline constexpr auto T11 = EkImageDataType::Other16;
inline constexpr auto T77 = EkImageDataType(77);

inline const char* const notSupported = "The input image data type is not supported.";
inline const char* const wantsAandB = "The input image must be RAWX2 image with A and B channel.";
inline const char* const wantsAmplitude =
    "The input image must be RAWX2 image with A and B channel, or RAW A minus B ToF "
    "image, or X1X2X3 ToF image.";
inline const char* const wantsDepth =
    "The input image must be RAWX2 image with A and B channels, or RAW A minus B ToF "
    "image, or X1X2X3 ToF image.";

/// Descriptor, in the order width, height, lineSize, channels, bits, type, colour filter code.
struct Format {
    quint32 width, height, lineSize, channels, bits;
    EkImageDataType type;
    quint32 colorFilterArray;

    SkPicBufInfo info() const {
        SkPicBufInfo result;
        result.width = width;
        result.height = height;
        result.lineSize = lineSize;
        result.channels = channels;
        result.bitsPerChannel = bits;
        result.linePadding = 7; // inherited by every output
        result.dataType = type;
        result.storageFormat = EkDataStorageFormat::Interleaved;
        result.colorFilterArray = EkColorFilterArray(colorFilterArray);
        return result;
    }
};

/// The expected result of a transform: an error, or a format and changes of the metadata.
struct Expected {
    const char* error = nullptr;
    Format format{};
    bool same = false;           ///< format and metadata of the input, unchanged
    const char* names = nullptr; ///< joined by '|'; null: kept
    qint64 phases = -1;          ///< -1: kept
    qint64 colorFilterArray = -1;
    quint32 code = 0;
    bool wholeSet = false; ///< angle and index are 0
};

inline Expected error(const char* text) {
    return {.error = text};
}
inline Expected same() {
    return {.same = true};
}
inline Expected aAndB(const Format& format, qint64 phases) {
    return {.format = format, .names = "A|B", .phases = phases, .colorFilterArray = 8, .code = 0x80AB0F0C};
}
inline Expected aMinusB(const Format& format) {
    return {.format = format, .names = "", .colorFilterArray = 9, .code = 0x80A05F0C};
}
inline Expected single(const Format& format, const char* names = "") {
    return {.format = format, .names = names, .phases = 0, .colorFilterArray = 0};
}
inline Expected hybrid(const Format& format) {
    return {.format = format, .names = "X1|X2|X3", .colorFilterArray = 13};
}

inline const char* const phaseShift = "Phase shift|Confidence";
inline const char* const depth = "Depth|Confidence";

enum class With { Both, MetadataOnly };

struct Picture {
    const char* name;
    Format format;
    CkImageMetadata metadata;
    With with;
    Expected expected[7];
    bool layoutFlag = false;
};

inline CkImageMetadata record(quint32 code, qint32 phases, quint32 colorFilterArray = 0,
                              QStringList names = {}) {
    CkImageMetadata metadata;
    metadata.tofFormatCode = code;
    metadata.phasesCount = phases;
    metadata.colorFilterArray = colorFilterArray;
    metadata.channelNames = std::move(names);
    metadata.modulationFrequency = 20.0F;
    metadata.phaseAngle = 180;
    metadata.phaseSequenceIndex = 2;
    metadata.hybridPulseDuration = 8e-8F;
    metadata.timestampNs = 123;
    metadata.cameraName = "cam";
    return metadata;
}

inline CkImageMetadata sequence(CkImageMetadata metadata, qint32 length) {
    metadata.phaseSequenceLength = length;
    return metadata;
}

inline CkImageMetadata sections(CkImageMetadata metadata, quint32 count, quint32 mode) {
    metadata.sectionCount = count;
    metadata.sectionMode = mode;
    return metadata;
}

/// The rows of the table.
extern const std::vector<Picture> kPictures;

} // namespace NegotiationTable
