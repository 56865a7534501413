#pragma once

#include "host/recording/CkTiffFile.h"
#include "host/recording/IkFrameFile.h"
#include "host/recording/SkReadLimits.h"

/// Reads recordings, and the TIFF files of other programs as stacks of pictures. Open on one thread; after
/// that any number of threads may read. Random access: every frame takes the same time.
class CkRecordingReader : public IkFrameFile {
public:
    explicit CkRecordingReader(const SkReadLimits& limits = {});
    ~CkRecordingReader() override;
    CkRecordingReader(const CkRecordingReader&) = delete;
    CkRecordingReader& operator=(const CkRecordingReader&) = delete;

    /// Indexes all pages. False, with psError, when the file has no readable frame or the search was
    /// cancelled. A damaged file opens with the frames before the damage; a page beyond the limit counts as
    /// damage.
    bool open(const QString& sFileName, QString* psError, const ProgressFunction& progress = {});

    QString damage() const override { return m_damage; }
    QString fileName() const override;
    qint64 frameCount() const override;
    quint64 byteCount() const;
    const SkRecordingInfo& recordingInfo() const override { return m_recording; }
    std::unique_ptr<CkImageData> read(qint64 iFrame, QString* psError,
                                      QJsonObject* pObject = nullptr) const override;
    bool describe(qint64 iFrame, SkFrameDescription& description, QString* psError) const override;

private:
    QString message(qint64 iFrame, const QString& sReason) const;

    SkReadLimits m_limits;
    CkTiffFile m_file;
    QString m_damage;
    SkRecordingInfo m_recording;
};
