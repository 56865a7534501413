// Throughput of the recorder: at the 30 sets a second of a ToF camera (640 x 480 x 4 phases, A and B, 16 bit:
// 147 MB/s) and unpaced, compared with a plain loop of writes to the same disk. Every file is read back and
// verified before a number is printed.

#include "host/recording/CkRecorder.h"
#include "host/recording/CkRecordingReader.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr quint32 kWidth = 640;
constexpr quint32 kHeight = 480 * 4;
constexpr quint32 kChannels = 2;
constexpr size_t kFrameBytes = size_t(kWidth) * kHeight * kChannels * sizeof(quint16);
constexpr double kSetsPerSecond = 30.0;
constexpr int kDifferentFrames = 8;
constexpr double kMegabyte = 1e6;

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

quint16 sample(int frame, size_t index) {
    return quint16((index * 2654435761U + size_t(frame) * 40503U) >> 4U & 0xfffU);
}

std::vector<std::unique_ptr<CkImageData>> makeFrames() {
    std::vector<std::unique_ptr<CkImageData>> frames;
    for (int i = 0; i < kDifferentFrames; ++i) {
        SkPicBuf picture;
        if (!CkPicBufAPI::AllocPicBufFromHeap(picture, kWidth, kHeight, kChannels, EkImageDataType::UInt16, 0,
                                              0, 12, EkDataStorageFormat::Interleaved,
                                              EkColorFilterArray::RawX2AandB, false, false, 0)) {
            return {};
        }
        auto* const samples = reinterpret_cast<quint16*>(picture.data);
        for (size_t k = 0; k < kFrameBytes / sizeof(quint16); ++k) {
            samples[k] = sample(i, k);
        }
        frames.push_back(std::make_unique<CkImageData>());
        frames.back()->setPicBuf(picture);
    }
    return frames;
}

bool isRight(const QString& file, qint64 expected) {
    CkRecordingReader reader;
    QString error;
    if (!reader.open(file, &error) || reader.frameCount() != expected) {
        std::printf("  WRONG: %lld of %lld frames, %s\n", static_cast<long long>(reader.frameCount()),
                    static_cast<long long>(expected), qPrintable(error));
        return false;
    }
    for (qint64 i = 0; i < expected; i += std::max<qint64>(1, expected / 10)) {
        const auto frame = reader.read(i, &error);
        const int number = frame != nullptr ? int(frame->metadata().frameNumber) % kDifferentFrames : 0;
        for (size_t k = 0; frame != nullptr && k < kFrameBytes / sizeof(quint16); k += 9973) {
            if (reinterpret_cast<const quint16*>(frame->picBuf().data)[k] != sample(number, k)) {
                std::printf("  WRONG samples in frame %lld\n", static_cast<long long>(i));
                return false;
            }
        }
        if (frame == nullptr) {
            std::printf("  WRONG: %s\n", qPrintable(error));
            return false;
        }
    }
    return true;
}

CkImageData* numbered(const CkImageData& frame, qint64 number) {
    CkImageData* const shared = frame.share();
    CkImageMetadata metadata;
    metadata.frameNumber = quint64(number);
    shared->setMetadata(metadata);
    return shared;
}

/// At the camera's pace, or as fast as the recorder takes them.
bool record(const QString& file, const std::vector<std::unique_ptr<CkImageData>>& frames, double seconds,
            EkRecordingCompression compression, bool paced, double plainRate) {
    CkRecorder recorder;
    CkRecorder::SkOptions options;
    options.compression = compression;
    QString error;
    if (!recorder.start(file, {}, options, &error)) {
        std::printf("  %s\n", qPrintable(error));
        return false;
    }
    const auto begin = Clock::now();
    qint64 offered = 0;
    int longestQueue = 0;
    while (secondsSince(begin) < seconds) {
        if (paced) {
            std::this_thread::sleep_until(
                begin + std::chrono::duration_cast<Clock::duration>(
                            std::chrono::duration<double>(double(offered) / kSetsPerSecond)));
        } else if (!recorder.waitForSpace()) {
            break;
        }
        recorder.takeFrame(numbered(*frames[size_t(offered % kDifferentFrames)], offered));
        longestQueue = std::max(longestQueue, recorder.state().waiting);
        ++offered;
    }
    recorder.stop();
    const double took = secondsSince(begin);
    const CkRecorder::SkState state = recorder.state();
    const double rate = double(state.written) * double(kFrameBytes) / took / kMegabyte;
    std::printf(
        "  %-28s %5lld sets offered, %5lld written, %lld dropped, queue at most %2d of %d, %7.1f MB/s of "
        "samples, %.2f of a plain loop%s\n",
        paced                                            ? "30 sets a second:"
        : compression == EkRecordingCompression::Deflate ? "as fast as possible, packed:"
                                                         : "as fast as possible:",
        static_cast<long long>(offered), static_cast<long long>(state.written),
        static_cast<long long>(state.dropped), longestQueue, options.queueFrames, rate, rate / plainRate,
        state.error.isEmpty() ? "" : qPrintable(QStringLiteral(", ") + state.error));
    const bool right = isRight(file, state.written);
    QFile::remove(file);
    return right && (!paced || state.dropped == 0);
}

/// MB/s of a plain loop of writes to the same place.
double plainLoop(const QString& file, const CkImageData& frame, double seconds) {
    const int handle = ::open(QFile::encodeName(file).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const auto begin = Clock::now();
    double written = 0.0;
    while (handle >= 0 && secondsSince(begin) < seconds) {
        const ssize_t done = ::write(handle, frame.picBuf().data, kFrameBytes);
        if (done <= 0) {
            break;
        }
        written += double(done);
    }
    ::close(handle);
    const double rate = written / secondsSince(begin) / kMegabyte;
    QFile::remove(file);
    return rate;
}

} // namespace

int main(int argc, char** argv) {
    const QString folder = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QDir::tempPath();
    const double seconds = argc > 2 ? QByteArray(argv[2]).toDouble() : 5.0;
    QTemporaryDir place(folder + QStringLiteral("/benchRecording"));
    const auto frames = makeFrames();
    if (!place.isValid() || frames.empty()) {
        std::printf("There is no room for the benchmark in %s.\n", qPrintable(folder));
        return 2;
    }
    const QString file = place.filePath(QStringLiteral("a.tif"));
    std::printf("A set: %u x %u x %u x 2 bytes = %.2f MB; to %s, %.0f s each\n", kWidth, kHeight, kChannels,
                double(kFrameBytes) / kMegabyte, qPrintable(folder), seconds);
    const double plain = plainLoop(file, *frames.front(), seconds);
    std::printf("  %-28s %.1f MB/s\n", "plain loop of writes:", plain);
    const bool paced = record(file, frames, seconds, EkRecordingCompression::None, true, plain);
    const bool free = record(file, frames, seconds, EkRecordingCompression::None, false, plain);
    const bool packed = record(file, frames, seconds, EkRecordingCompression::Deflate, false, plain);
    std::printf("%s\n", paced && free && packed ? "Nothing was lost." : "LOST OR WRONG, see above.");
    return paced && free && packed ? 0 : 1;
}
