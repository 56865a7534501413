#pragma once

#include "host/viewer/base/SaveFileName.h"

#include <QCoreApplication>
#include <QImage>
#include <QList>

#include <memory>
#include <optional>

class CkImageData;
class QWidget;

/// The picture that a view shows at one moment, to be written to files; later frames do not change it.
/// User-interface thread.
class CkPictureSnapshot {
    Q_DECLARE_TR_FUNCTIONS(CkPictureSnapshot)

public:
    /// File formats with the measured values; see PictureFile for their contents.
    enum class EkMeasured : int { Png16, FloatTiff, FloatTiffOfAll };

    /// image: the picture as seen, null when nothing can be shown. pFrame is copied; null without a picture.
    /// iChannel, named sChannel: the channel seen; -1: all, as colours.
    CkPictureSnapshot(const QImage& image, const CkImageData* pFrame, int iChannel, const QString& sChannel);
    ~CkPictureSnapshot();
    CkPictureSnapshot(CkPictureSnapshot&&) noexcept;
    CkPictureSnapshot& operator=(CkPictureSnapshot&&) = delete;

    /// A format in which this picture can be saved.
    struct SkFormat {
        SkSaveFormat file;
        std::optional<EkMeasured> measured; ///< nullopt: as seen
    };
    /// Empty when there is no picture.
    QList<SkFormat> formats() const;

    /// Writes the picture as seen (in the format of the file name's extension, at the picture's own size), or
    /// as measured: the channel seen, or all of them. False, with psError set, on failure.
    bool saveAsSeen(const QString& sFileName, QString* psError) const;
    bool saveAsMeasured(const QString& sFileName, EkMeasured format, QString* psError) const;

    /// Asks the user for the file and its format, writes it, and reports a failure in a message box. No-op
    /// without a picture. pParent may be deleted while the dialog is open.
    void saveWithDialog(QWidget* pParent) const;

private:
    bool writeAsSeen(const QString& sFileName, QString& sError) const;
    bool writeAsMeasured(const QString& sFileName, EkMeasured format, QString& sError) const;

    QImage m_image;
    std::unique_ptr<CkImageData> m_frame; ///< null without a picture
    int m_channel;
    QString m_channelTitle;
};
