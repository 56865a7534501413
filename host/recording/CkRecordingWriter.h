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
/// A page (samples, text, directory) is complete in the file before the page in front of it is made to point
/// to it. Whoever kills the program or pulls the disk's plug on it leaves a file that ends with the last
/// complete page. Every page costs the same, whatever stands in front of it. One thread at a time.
class CkRecordingWriter {
public:
    /// Larger pictures are refused.
    static constexpr quint64 MaximumPictureBytes = 1ULL << 30U;

    CkRecordingWriter() = default;
    /// Closes.
    ~CkRecordingWriter();
    CkRecordingWriter(const CkRecordingWriter&) = delete;
    CkRecordingWriter& operator=(const CkRecordingWriter&) = delete;

    /// Makes a new file; one of this name is replaced. False, with errorMessage, when that fails.
    bool open(const QString& sFileName, const SkRecordingInfo& recording,
              EkRecordingCompression compression = EkRecordingCompression::None);
    bool isOpen() const { return m_iFile >= 0; }

    /// Appends a picture of 1 to 4 channels. object: members of an earlier recording to be kept. False, with
    /// errorMessage, when the picture cannot be stored or the disk does not take it; the pages written so far
    /// stay a valid file, and the next picture may be tried.
    bool write(const SkPicBuf& picBuf, const CkImageMetadata& metadata,
               const QJsonObject& object = QJsonObject());

    /// False, with errorMessage, when the operating system reports a late error.
    bool close();

    qint64 frameCount() const { return m_iFrames; }
    /// Bytes of the file up to the end of its last page.
    quint64 byteCount() const { return m_uiEnd; }
    /// Of the last call that failed; names the file and the page.
    QString errorMessage() const { return m_sError; }

private:
    bool fail(const QString& sReason);
    bool writeAt(const void* pBytes, size_t uiBytes, quint64 uiOffset);
    const quint8* packedSamples(const SkPicBuf& picBuf, size_t& uiBytes);
    QByteArray deflated(const SkPicBuf& picBuf, size_t uiBytes);

    int m_iFile = -1;
    QString m_sFileName;
    QString m_sError;
    SkRecordingInfo m_recording;
    EkRecordingCompression m_compression = EkRecordingCompression::None;
    qint64 m_iFrames = 0;
    quint64 m_uiEnd = 0;  ///< behind the last complete page
    quint64 m_uiLink = 0; ///< where the offset of the next page is to be written
    std::vector<quint8> m_packed;
};
