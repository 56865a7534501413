#pragma once

#include "host/recording/SkFrameDescription.h"

#include <vector>

/// How the samples of a recording are stored.
enum class EkRecordingCompression {
    None,
    Deflate ///< lossless; a fraction of the size of raw pictures, and much slower
};

/// Writes pictures as the pages of a BigTIFF file.
///
/// A page (samples, text, directory) is written completely before the previous page is linked to it: after a
/// crash or a power failure the file ends with its last complete page. Appending a page takes constant time,
/// independent of the length of the file. One thread at a time.
class CkRecordingWriter {
public:
    static constexpr quint64 kMaximumPictureBytes = 1ULL << 30U; ///< Larger pictures are refused.

    CkRecordingWriter() = default;
    ~CkRecordingWriter(); ///< Closes.
    CkRecordingWriter(const CkRecordingWriter&) = delete;
    CkRecordingWriter& operator=(const CkRecordingWriter&) = delete;

    /// Creates the file, or replaces an existing one. False, with errorMessage, when that fails.
    bool open(const QString& sFileName, const SkRecordingInfo& recording,
              EkRecordingCompression compression = EkRecordingCompression::None);
    bool isOpen() const { return m_file >= 0; }

    /// Appends a picture of 1 to 4 channels. object: members of an earlier recording to preserve. False, with
    /// errorMessage, when the picture cannot be stored or the disk refuses it; the pages written so far
    /// remain a valid file, and the next picture may be tried.
    bool write(const SkPicBuf& picBuf, const CkImageMetadata& metadata,
               const QJsonObject& object = QJsonObject());

    /// False, with errorMessage, when the operating system reports a write error only now.
    bool close();

    qint64 frameCount() const { return m_frames; }
    quint64 byteCount() const { return m_end; }      ///< of the file up to the end of its last page
    QString errorMessage() const { return m_error; } ///< of the last failed call; names file and page

private:
    bool fail(const QString& sReason);
    bool writeAt(const void* pBytes, size_t uiBytes, quint64 uiOffset);
    const quint8* packedSamples(const SkPicBuf& picBuf, size_t& uiBytes);
    QByteArray deflated(const SkPicBuf& picBuf, size_t uiBytes);
    /// Null after the first page.
    const SkRecordingInfo* recordingOfPage() const { return m_frames == 0 ? &m_recording : nullptr; }
    /// Writes samples, text and directory after the last page, then links them to it.
    bool appendPage(const SkPicBufInfo& info, const QByteArray& text, const void* pSamples, size_t uiBytes);

    int m_file = -1;
    QString m_fileName;
    QString m_error;
    SkRecordingInfo m_recording;
    EkRecordingCompression m_compression = EkRecordingCompression::None;
    qint64 m_frames = 0;
    quint64 m_end = 0;  ///< end of the last complete page
    quint64 m_link = 0; ///< file offset of the field that links the next page
    std::vector<quint8> m_packed;
};
