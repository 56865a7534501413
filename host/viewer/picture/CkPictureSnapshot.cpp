#include "host/viewer/picture/CkPictureSnapshot.h"

#include "host/viewer/picture/PictureFile.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicture.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QDir>
#include <QFileInfo>
#include <QImageWriter>
#include <QMessageBox>
#include <QPointer>
#include <QSaveFile>
#include <QWidget>

namespace {

// Values of SkSaveFormat::group.
constexpr int kAsSeen = 0;
constexpr int kAsMeasured = 1;

// A deep copy, so that no buffer of the chain's pool is held while a dialog is open.
std::unique_ptr<CkImageData> copyOf(const CkImageData& frame) {
    CkPicture pixels;
    if (!CkPicBufAPI::CopyPicBuf(frame.picBuf(), pixels.picBuf())) {
        return nullptr;
    }
    auto copy = std::make_unique<CkImageData>();
    copy->setPicBuf(pixels.take());
    copy->setMetadata(frame.metadata());
    return copy;
}

} // namespace

CkPictureSnapshot::CkPictureSnapshot(const QImage& image, const CkImageData* pFrame, int iChannel,
                                     const QString& sChannel)
    : m_image(image), m_frame(pFrame != nullptr ? copyOf(*pFrame) : nullptr), m_channel(iChannel),
      m_channelTitle(sChannel) {}

CkPictureSnapshot::~CkPictureSnapshot() = default;
CkPictureSnapshot::CkPictureSnapshot(CkPictureSnapshot&&) noexcept = default;

QList<CkPictureSnapshot::SkFormat> CkPictureSnapshot::formats() const {
    if (m_image.isNull()) {
        return {};
    }
    QList<SkFormat> formats = {{{tr("PNG, as seen (*.png)"), QStringLiteral("png"), kAsSeen}, {}},
                               {{tr("JPEG, as seen (*.jpg)"), QStringLiteral("jpg"), kAsSeen}, {}}};
    if (m_frame == nullptr) {
        return formats;
    }
    if (m_channel >= 0) {
        const QString scale =
            PictureFile::scaleText(m_frame->picBuf(), m_frame->metadata(), quint32(m_channel));
        formats.append(
            {{tr("16-bit PNG, as measured, %1 (*.png)").arg(scale), QStringLiteral("png"), kAsMeasured},
             EkMeasured::Png16});
        formats.append({{tr("Float TIFF, as measured, channel \"%1\" (*.tif)").arg(m_channelTitle),
                         QStringLiteral("tif"), kAsMeasured},
                        EkMeasured::FloatTiff});
    }
    if (m_frame->picBuf().channels > 1 || m_channel < 0) {
        formats.append(
            {{tr("Float TIFF, as measured, all channels (*.tif)"), QStringLiteral("tif"), kAsMeasured},
             EkMeasured::FloatTiffOfAll});
    }
    return formats;
}

bool CkPictureSnapshot::saveAsSeen(const QString& sFileName, QString* psError) const {
    QString error;
    const bool ok = writeAsSeen(sFileName, error);
    if (!ok && psError != nullptr) {
        *psError = error;
    }
    return ok;
}

bool CkPictureSnapshot::saveAsMeasured(const QString& sFileName, EkMeasured format, QString* psError) const {
    QString error;
    const bool ok = writeAsMeasured(sFileName, format, error);
    if (!ok && psError != nullptr) {
        *psError = error;
    }
    return ok;
}

bool CkPictureSnapshot::writeAsSeen(const QString& sFileName, QString& sError) const {
    if (m_image.isNull()) {
        sError = tr("There is no picture to save.");
        return false;
    }
    const QByteArray suffix = fileSuffix(sFileName).toLatin1();
    if (!QImageWriter::supportedImageFormats().contains(suffix)) {
        sError = tr("%1: the extension determines the format of the picture: use .png or .jpg.")
                     .arg(QDir::toNativeSeparators(sFileName));
        return false;
    }
    QSaveFile file(sFileName);
    QImageWriter writer(&file, suffix);
    if (!file.open(QIODevice::WriteOnly) || !writer.write(m_image) || !file.commit()) {
        const bool byFile = file.error() != QFileDevice::NoError;
        sError = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(sFileName),
                                              byFile ? file.errorString() : writer.errorString());
        return false;
    }
    return true;
}

bool CkPictureSnapshot::writeAsMeasured(const QString& sFileName, EkMeasured format, QString& sError) const {
    if (m_frame == nullptr) {
        sError = tr("There is no picture to save.");
        return false;
    }
    if (format != EkMeasured::Png16) {
        const int channel = format == EkMeasured::FloatTiffOfAll ? -1 : m_channel;
        return PictureFile::saveFloatTiff(m_frame->picBuf(), m_frame->metadata(), channel, sFileName, sError);
    }
    if (m_channel < 0) {
        sError = tr("A colour picture has no single channel to save; choose a channel first.");
        return false;
    }
    return PictureFile::savePng16(m_frame->picBuf(), m_frame->metadata(), quint32(m_channel), sFileName,
                                  sError);
}

void CkPictureSnapshot::saveWithDialog(QWidget* pParent) const {
    const QList<SkFormat> offered = formats();
    if (offered.isEmpty()) {
        return;
    }
    QList<SkSaveFormat> files;
    for (const SkFormat& format : offered) {
        files.append(format.file);
    }
    IkAppDelegate* delegate = IkAppDelegate::instance();
    // The camera may be unplugged, and the view with it, while the dialog is open.
    const QPointer<QWidget> parent(pParent);
    int chosen = 0;
    const QString name =
        askSaveFileName(pParent,
                        {.title = tr("Save Picture"),
                         .start = delegate != nullptr ? delegate->lastDirectory() : QString(),
                         .formats = files,
                         .unknownSuffix = EkUnknownSuffix::Refuse},
                        chosen);
    if (!parent || name.isEmpty()) {
        return;
    }
    const std::optional<EkMeasured> measured = offered[chosen].measured;
    QString error;
    if (!(measured ? saveAsMeasured(name, *measured, &error) : saveAsSeen(name, &error))) {
        QMessageBox::warning(pParent, tr("Save Picture"), error);
    } else if (delegate != nullptr) {
        delegate->setLastDirectory(QFileInfo(name).absolutePath());
    }
}
