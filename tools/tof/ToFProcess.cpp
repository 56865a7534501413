#include "host/recording/CkRecordingWriter.h"
#include "plugins/zplToF/transform/ToFTransforms.h"
#include "tools/tof/CkToFArguments.h"
#include "tools/tof/CkToFInput.h"
#include "tools/tof/CkToFProgress.h"
#include "tools/tof/ToFCommands.h"
#include "tools/tof/ToFInOrder.h"
#include "tools/tof/base/CkToFPipeline.h"

#include "zuCore/CkImageData.h"

namespace {

/// The result of one group.
struct SkProcessed {
    struct SkFrame {
        std::unique_ptr<CkImageData> data;
        QJsonObject object;
    };
    std::vector<SkFrame> frames;
    QStringList errors;
    QString refusal;    ///< of the transform
    QString incomplete; ///< what the set lacks, when it gave no frame
};

int transformOf(const QString& name) {
    for (const SkToFTransform& transform : ToFTransforms::all()) {
        if (name == transform.name) {
            return transform.type;
        }
    }
    return -1;
}

/// Memory for processing a group: a page as read and as stored, the gathered set, and a result of twice the
/// size with the copies made for writing.
quint64 bytesFor(const SkToFGroup& group) {
    return 2 * group.largestPage + 6 * group.bytes;
}

SkProcessed processGroup(const CkRecordingReader& reader, const SkToFGroup& group, int transform) {
    SkProcessed done;
    CkToFPipeline pipeline(transform);
    bool waiting = false;
    for (qint64 page = group.first; page < group.first + group.count; ++page) {
        QString error;
        QJsonObject object;
        const std::unique_ptr<CkImageData> data = reader.read(page, &error, &object);
        if (!error.isEmpty()) {
            done.errors.append(error);
        }
        if (data == nullptr) {
            continue;
        }
        SkProcessed::SkFrame frame;
        QString reason;
        const CkToFPipeline::EkResult result = pipeline.process(*data, frame.data, reason);
        waiting = result == CkToFPipeline::EkResult::Waiting;
        switch (result) {
        case CkToFPipeline::EkResult::Frame:
            frame.object = object;
            done.frames.push_back(std::move(frame));
            break;
        case CkToFPipeline::EkResult::Impossible:
            done.refusal =
                QStringLiteral("\"%1\", page %2: %3").arg(reader.fileName()).arg(page + 1).arg(reason);
            break;
        case CkToFPipeline::EkResult::Waiting:
            break;
        }
    }
    if (waiting && done.frames.empty()) {
        done.incomplete = tofIncompleteSet(group, pipeline.missingImages());
    }
    return done;
}

void addOptions(CkToFArguments& options) {
    options.addValue(
        QStringLiteral("transform"), QStringLiteral("NAME"),
        QStringLiteral(
            "depth (phase shift in radians, or depth in metres of a hybrid camera; with confidence), "
            "amplitude, intensity, concat (gathers phases or sections), aminb (A minus B), ab (labels as "
            "A and B), hybrid (labels as X1X2X3)."));
    options.addFlag(QStringLiteral("compress"), QStringLiteral("Compresses the result without loss."));
    options.addArgument(QStringLiteral("RECORDING"), QStringLiteral("File to read."));
    options.addArgument(QStringLiteral("RESULT"), QStringLiteral("File to write."));
    SkToFLimits::addOptions(options);
}

/// Processes all groups into a recording. Returns the exit code.
int processRecording(CkToFInput& input, int transform, const QString& result,
                     EkRecordingCompression compression) {
    const CkRecordingReader& reader = input.reader();
    const std::vector<SkToFGroup> groups = input.groups();
    CkRecordingWriter writer;
    bool writes = true;
    QString incomplete; // about the first incomplete set
    SkRecordingInfo recording = reader.recordingInfo();
    recording.software = tofSoftware();
    const auto open = [&] { return writer.isOpen() || writer.open(result, recording, compression); };
    {
        CkToFProgress progress(QStringLiteral("Processing"));
        inOrder(
            qint64(groups.size()), input.memoryBytes(), [&](qint64 i) { return bytesFor(groups[size_t(i)]); },
            [&](qint64 i) {
                const SkToFGroup& group = groups[size_t(i)];
                const QString tooMuch = input.tooMuchMemory(group, bytesFor(group));
                return tooMuch.isEmpty() ? processGroup(reader, group, transform)
                                         : SkProcessed{{}, {}, tooMuch, {}};
            },
            [&](qint64 i, SkProcessed&& done) {
                for (const QString& error : std::as_const(done.errors)) {
                    input.reportError(error);
                }
                if (!done.refusal.isEmpty()) {
                    input.reportError(done.refusal);
                }
                if (incomplete.isEmpty()) {
                    incomplete = done.incomplete;
                }
                for (const SkProcessed::SkFrame& frame : done.frames) {
                    writes = writes && open() &&
                             writer.write(frame.data->picBuf(), frame.data->metadata(), frame.object);
                }
                progress.show(i + 1, qint64(groups.size()));
                return writes;
            });
    }
    const qint64 written = writer.frameCount();
    if (!writes || !writer.close()) {
        ToFConsole::error(writer.errorMessage());
        return ToFOutput;
    }
    if (written == 0) {
        ToFConsole::error(QStringLiteral("No frame came out of \"%1\"; nothing was written.%2")
                              .arg(reader.fileName(), incomplete));
        return ToFNotApplicable;
    }
    return input.exitCode();
}

} // namespace

int tofProcess(const QStringList& arguments) {
    CkToFArguments options(
        QStringLiteral("process --transform NAME [options] RECORDING RESULT"),
        QStringLiteral(
            "Applies a ToF transform to every frame. Images that arrive one phase or section at a time "
            "are gathered into sets."),
        {QStringLiteral("tof process --transform depth room.tif depth.tif"),
         QStringLiteral("tof process --transform amplitude --compress room.tif amplitude.tif"),
         QStringLiteral("tof process --transform concat separate.tif stacked.tif")});
    addOptions(options);
    if (const auto code = options.parse(arguments)) {
        return *code;
    }
    SkToFLimits limits;
    if (!limits.read(options)) {
        return ToFUsage;
    }
    const int transform = transformOf(options.value(QStringLiteral("transform")));
    if (transform < 0) {
        ToFConsole::error(
            QStringLiteral("--transform expects depth, amplitude, intensity, concat, aminb, ab or "
                           "hybrid, not \"%1\".")
                .arg(options.value(QStringLiteral("transform"))));
        return ToFUsage;
    }
    CkToFInput input(limits);
    if (!input.open(options.argument(0))) {
        return ToFInput;
    }
    if (!tofMayBeRecording(options.argument(1)) || input.isInput(options.argument(1))) {
        return ToFUsage;
    }
    return processRecording(input, transform, options.argument(1),
                            options.has(QStringLiteral("compress")) ? EkRecordingCompression::Deflate
                                                                    : EkRecordingCompression::None);
}
