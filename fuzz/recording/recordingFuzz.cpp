#include "fuzz/recording/recordingFuzz.h"

#include "fuzz/FuzzFile.h"
#include "host/recording/CkRecordingReader.h"
#include "zuCore/CkImageData.h"

#include <algorithm>

namespace {

// Enough to reach every path; more would only slow down each run.
constexpr qint64 kMostFrames = 6;

std::string checkText(const QByteArray& text) {
    SkFrameDescription first;
    if (!first.fromText(text)) {
        return {};
    }
    const SkRecordingInfo recording = first.recordingInfo();
    const QByteArray written = first.toText(&recording);
    SkFrameDescription second;
    if (!second.fromText(written)) {
        return "a text of ours is not read";
    }
    const SkRecordingInfo again = second.recordingInfo();
    return second.toText(&again) == written ? std::string() : "a text changes when it is written again";
}

/// Reads every sample, so that the sanitizer checks the access.
bool hasAllSamples(const SkPicBuf& picture) {
    const size_t row = size_t(picture.width) * picture.channels * sampleBytes(picture.dataType);
    quint32 sum = 0;
    for (quint32 y = 0; y < picture.height; ++y) {
        const quint8* const bytes = picture.data + size_t(y) * picture.lineSize;
        for (size_t x = 0; x < row; ++x) {
            sum += bytes[x];
        }
    }
    return picture.data != nullptr && row > 0 && row <= picture.lineSize &&
           sum <= 255U * row * picture.height;
}

std::string checkFrame(const CkRecordingReader& reader, qint64 frame) {
    QString error;
    SkFrameDescription description;
    const bool described = reader.describe(frame, description, &error);
    if (!described && !error.contains(reader.fileName())) {
        return "a refused description does not name the file";
    }
    const std::unique_ptr<CkImageData> read = reader.read(frame, &error);
    if (read == nullptr) {
        return error.contains(reader.fileName()) ? std::string() : "a refused frame does not name the file";
    }
    const SkPicBuf& picture = read->picBuf();
    if (!described) {
        return "a frame was read that cannot be described";
    }
    if (picture.width != description.info.width || picture.height != description.info.height ||
        picture.channels != description.info.channels || picture.dataType != description.info.dataType) {
        return "a frame has another format than its description";
    }
    if (!hasAllSamples(picture)) {
        return "a frame has no samples";
    }
    return checkText(description.toText());
}

} // namespace

std::string checkRecording(const uint8_t* bytes, size_t size) {
    if (size > 0 && bytes[0] == '{') {
        return checkText(QByteArray(reinterpret_cast<const char*>(bytes), qsizetype(size)));
    }
    static FuzzFile file;
    if (!file.write(bytes, size)) {
        return "the bytes cannot be put into a file";
    }
    CkRecordingReader reader;
    QString error;
    if (!reader.open(file.name(), &error)) {
        return error.contains(file.name()) ? std::string() : "a refused file is not named";
    }
    // Half of the frames are read from the end: frames after the damage must be unreachable.
    const qint64 frames = reader.frameCount();
    for (qint64 step = 0; step < std::min(frames, kMostFrames); ++step) {
        std::string broken = checkFrame(reader, step % 2 == 0 ? step / 2 : frames - 1 - step / 2);
        if (!broken.empty()) {
            return broken;
        }
    }
    const bool pastTheEnd = reader.read(frames, &error) != nullptr || reader.read(-1, &error) != nullptr;
    return pastTheEnd ? "a frame was read that is not there" : std::string();
}
