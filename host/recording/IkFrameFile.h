#pragma once

#include "host/recording/SkFrameDescription.h"

#include <functional>
#include <memory>

class CkImageData;

/// A file of frames, open for reading. Any number of threads may read.
class IkFrameFile {
public:
    /// Frames found so far and the share of the file they lie in, 0 to 1. Returning false ends the search.
    using ProgressFunction = std::function<bool(qint64 iFrames, double fShare)>;

    virtual ~IkFrameFile() = default;

    virtual QString fileName() const = 0;
    virtual qint64 frameCount() const = 0;

    /// Damage after the last readable frame, with file, page and reason; empty for an intact file.
    virtual QString damage() const = 0;

    /// The recording information of the first page; empty members for files of other programs.
    virtual const SkRecordingInfo& recordingInfo() const = 0;

    /// A frame, owned by the caller; numbers count from 0. Null, with psError, when it cannot be read at all.
    /// A frame together with an error: part of the picture could not be read and is 0. pObject, which may be
    /// null, receives the page's JSON object, see SkFrameDescription.
    virtual std::unique_ptr<CkImageData> read(qint64 iFrame, QString* psError,
                                              QJsonObject* pObject = nullptr) const = 0;

    /// Everything about a frame except its samples, which are not read.
    virtual bool describe(qint64 iFrame, SkFrameDescription& description, QString* psError) const = 0;
};
