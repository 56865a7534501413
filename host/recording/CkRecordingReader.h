#pragma once

#include "recording/CkTiffFile.h"
#include "recording/SkFrameDescription.h"

#include <memory>

class CkImageData;

/// Reads recordings, and TIFF files of others as stacks of pictures. Open on one thread; after that any
/// number of threads may read, each frame in the same time wherever it is.
class CkRecordingReader {
public:
    using ProgressFunction = CkTiffFile::ProgressFunction;

    CkRecordingReader();
    ~CkRecordingReader();
    CkRecordingReader(const CkRecordingReader&) = delete;
    CkRecordingReader& operator=(const CkRecordingReader&) = delete;

    /// Finds all pages. False, with psError, when there is not one frame to be read or the search was
    /// cancelled. A file that is damaged further on opens with the frames in front of the damage.
    bool open(const QString& sFileName, QString* psError, const ProgressFunction& progress = {});

    /// What is wrong with the file behind its last frame, with file, page and reason; empty when nothing is.
    QString damage() const { return m_sDamage; }

    QString fileName() const;
    qint64 frameCount() const;
    quint64 byteCount() const;
    /// What the first page says about the recording; empty members for files of others.
    const SkRecordingInfo& recordingInfo() const { return m_recording; }

    /// A frame, owned by the caller; numbers count from 0. Null, with psError, when nothing of it can be
    /// read. An error beside a frame: a part of the picture could not be read and is 0. pObject, which may be
    /// null, gets the page's text as it was read, see SkFrameDescription.
    std::unique_ptr<CkImageData> read(qint64 iFrame, QString* psError, QJsonObject* pObject = nullptr) const;

    /// Everything about a frame but its samples, without reading those.
    bool describe(qint64 iFrame, SkFrameDescription& description, QString* psError) const;

private:
    QString message(qint64 iFrame, const QString& sReason) const;

    CkTiffFile m_file;
    QString m_sDamage;
    SkRecordingInfo m_recording;
};
