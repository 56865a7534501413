#pragma once

#include "host/recording/SkFrameDescription.h"

#include <functional>
#include <memory>

class CkImageData;

/// A file of frames that is open for reading. Any number of threads may read.
class IkFrameFile {
public:
    /// Frames found so far and the share of the file they lie in, 0 to 1. Answering false ends the search.
    using ProgressFunction = std::function<bool(qint64 iFrames, double fShare)>;

    virtual ~IkFrameFile() = default;

    virtual QString fileName() const = 0;
    virtual qint64 frameCount() const = 0;

    /// What is wrong with the file behind its last frame, with file, page and reason; empty when nothing is.
    virtual QString damage() const = 0;

    /// What the first page says about the recording; empty members for files of others.
    virtual const SkRecordingInfo& recordingInfo() const = 0;

    /// A frame, owned by the caller; numbers count from 0. Null, with psError, when nothing of it can be
    /// read. An error beside a frame: a part of the picture could not be read and is 0. pObject, which may be
    /// null, gets the page's text as it was read, see SkFrameDescription.
    virtual std::unique_ptr<CkImageData> read(qint64 iFrame, QString* psError,
                                              QJsonObject* pObject = nullptr) const = 0;

    /// Everything about a frame but its samples, without reading those.
    virtual bool describe(qint64 iFrame, SkFrameDescription& description, QString* psError) const = 0;
};

/// Which files can be opened as frames: recordings and other TIFF files always, further formats when the
/// program adds them.
class CkFrameFiles {
public:
    /// Null, with psError naming the file and the reason.
    using OpenFunction =
        std::function<std::shared_ptr<const IkFrameFile>(const QString& sFileName, QString* psError)>;

    /// For files whose first bytes (at most 512) recognises answers true for. Once, before any thread opens.
    static void addFormat(std::function<bool(const QByteArray&)> recognises, OpenFunction open);

    /// Null, with psError naming the file and the reason, when there is not one frame to be read or progress
    /// answered false. Any thread.
    static std::shared_ptr<const IkFrameFile> open(const QString& sFileName, QString* psError,
                                                   const IkFrameFile::ProgressFunction& progress = {});
};
