#pragma once

#include "host/recording/IkFrameFile.h"

#include <QImage>

/// A PNG, JPEG or BMP file as a recording of one frame. Grey pictures of 8 and 16 bits keep their samples;
/// colours become blue, green, red, and alpha where there is one. Immutable; any thread.
class CkStillPicture : public IkFrameFile {
public:
    /// Whether a file with these first bytes is a picture of a common format.
    static bool recognises(const QByteArray& sFirstBytes);
    static QStringList suffixes();

    /// Makes pictures playable by CkVideoSource; may be called repeatedly.
    static void registerFormat();

    /// Null, with psError naming the file and the reason.
    static std::shared_ptr<const IkFrameFile> open(const QString& sFileName, QString* psError);

    QString fileName() const override { return m_fileName; }
    qint64 frameCount() const override { return 1; }
    QString damage() const override { return {}; }
    const SkRecordingInfo& recordingInfo() const override { return m_recording; }
    std::unique_ptr<CkImageData> read(qint64 iFrame, QString* psError,
                                      QJsonObject* pObject = nullptr) const override;
    bool describe(qint64 iFrame, SkFrameDescription& description, QString* psError) const override;

private:
    CkStillPicture(const QString& sFileName, const QImage& image);

    QString m_fileName;
    QImage m_image; ///< in a format whose rows can be copied as they are
    SkPicBufInfo m_info;
    SkRecordingInfo m_recording;
};
