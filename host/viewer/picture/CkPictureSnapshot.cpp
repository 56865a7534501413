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

// Values of SkSaveForm::group.
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

QList<CkPictureSnapshot::SkForm> CkPictureSnapshot::forms() const {
    if (m_image.isNull()) {
        return {};
    }
    QList<SkForm> forms = {{{tr("PNG, as seen (*.png)"), QStringLiteral("png"), kAsSeen}, {}},
                           {{tr("JPEG, as seen (*.jpg)"), QStringLiteral("jpg"), kAsSeen}, {}}};
    if (m_frame == nullptr) {
        return forms;
    }
    if (m_channel >= 0) {
        const QString scale =
            PictureFile::scaleText(m_frame->picBuf(), m_frame->metadata(), quint32(m_channel));
        forms.append(
            {{tr("16-bit PNG, as measured, %1 (*.png)").arg(scale), QStringLiteral("png"), kAsMeasured},
             EkMeasured::Png16});
        forms.append({{tr("Float TIFF, as measured, channel \"%1\" (*.tif)").arg(m_channelTitle),
                       QStringLiteral("tif"), kAsMeasured},
                      EkMeasured::FloatTiff});
    }
    if (m_frame->picBuf().channels > 1 || m_channel < 0) {
        forms.append(
            {{tr("Float TIFF, as measured, all channels (*.tif)"), QStringLiteral("tif"), kAsMeasured},
             EkMeasured::FloatTiffOfAll});
    }
    return forms;
}

bool CkPictureSnapshot::saveAsSeen(const QString& sFileName, QString* psError) const {
    QString error;
    const bool ok = writeAsSeen(sFileName, error);
    if (!ok && psError != nullptr) {
        *psError = error;
    }
    return ok;
}

bool CkPictureSnapshot::saveAsMeasured(const QString& sFileName, EkMeasured form, QString* psError) const {
    QString error;
    const bool ok = writeAsMeasured(sFileName, form, error);
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
    const QByteArray ending = fileEnding(sFileName).toLatin1();
    if (!QImageWriter::supportedImageFormats().contains(ending)) {
        sError = tr("%1: the ending says in which format a picture is saved: .png or .jpg.")
                     .arg(QDir::toNativeSeparators(sFileName));
        return false;
    }
    QSaveFile file(sFileName);
    QImageWriter writer(&file, ending);
    if (!file.open(QIODevice::WriteOnly) || !writer.write(m_image) || !file.commit()) {
        const bool byFile = file.error() != QFileDevice::NoError;
        sError = QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(sFileName),
                                              byFile ? file.errorString() : writer.errorString());
        return false;
    }
    return true;
}

bool CkPictureSnapshot::writeAsMeasured(const QString& sFileName, EkMeasured form, QString& sError) const {
    if (m_frame == nullptr) {
        sError = tr("There is no picture to save.");
        return false;
    }
    if (form != EkMeasured::Png16) {
        const int channel = form == EkMeasured::FloatTiffOfAll ? -1 : m_channel;
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
    const QList<SkForm> offered = forms();
    if (offered.isEmpty()) {
        return;
    }
    QList<SkSaveForm> files;
    for (const SkForm& form : offered) {
        files.append(form.file);
    }
    IkAppDelegate* delegate = IkAppDelegate::instance();
    // The camera may be unplugged, and the view with it, while the dialog is open.
    const QPointer<QWidget> parent(pParent);
    int chosen = 0;
    const QString name =
        askSaveFileName(pParent,
                        {.title = tr("Save Picture"),
                         .start = delegate != nullptr ? delegate->lastDirectory() : QString(),
                         .forms = files,
                         .endings = EkSaveEndings::Ours},
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
