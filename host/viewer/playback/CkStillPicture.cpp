#include "host/viewer/playback/CkStillPicture.h"

#include "host/recording/FrameFiles.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicture.h"

#include <QCoreApplication>
#include <QImageReader>

#include <algorithm>
#include <cstring>

namespace {

// Far above the size of camera pictures.
constexpr int kMaximumMegabytes = 1024;

/// Converts to a format whose rows have the layout of a picture buffer.
QImage bufferLayout(const QImage& image) {
    switch (image.format()) {
    case QImage::Format_Grayscale16:
    case QImage::Format_Grayscale8:
        return image;
    case QImage::Format_RGBX64:
    case QImage::Format_RGBA64:
    case QImage::Format_RGBA64_Premultiplied:
        return image.convertToFormat(QImage::Format_RGBA64);
    default:
        break;
    }
    if (image.isGrayscale() && !image.hasAlphaChannel()) {
        return image.convertToFormat(QImage::Format_Grayscale8);
    }
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_BGR888);
}

SkPicBufInfo infoOf(const QImage& image) {
    const bool wide = image.format() == QImage::Format_Grayscale16 || image.format() == QImage::Format_RGBA64;
    quint32 channels = 1;
    switch (image.format()) {
    case QImage::Format_BGR888:
        channels = 3;
        break;
    case QImage::Format_ARGB32:
    case QImage::Format_RGBA64:
        channels = 4;
        break;
    default:
        break;
    }
    return SkPicBufInfo::of(quint32(image.width()), quint32(image.height()), channels,
                            wide ? EkImageDataType::UInt16 : EkImageDataType::UInt8, wide ? 16 : 8);
}

} // namespace

bool CkStillPicture::recognises(const QByteArray& sFirstBytes) {
    static const QByteArrayList magic = {QByteArrayLiteral("\x89PNG\r\n\x1a\n"),
                                         QByteArrayLiteral("\xff\xd8\xff"), QByteArrayLiteral("BM")};
    return std::any_of(magic.begin(), magic.end(),
                       [&](const QByteArray& bytes) { return sFirstBytes.startsWith(bytes); });
}

QStringList CkStillPicture::suffixes() {
    return {QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("bmp")};
}

void CkStillPicture::registerFormat() {
    static const bool done = [] {
        FrameFiles::addFormat(&CkStillPicture::recognises, &CkStillPicture::open);
        return true;
    }();
    Q_UNUSED(done)
}

std::shared_ptr<const IkFrameFile> CkStillPicture::open(const QString& sFileName, QString* psError) {
    QImageReader reader(sFileName);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    QImageReader::setAllocationLimit(kMaximumMegabytes);
    const QImage image = reader.read();
    if (image.isNull()) {
        if (psError != nullptr) {
            *psError = QCoreApplication::translate("CkStillPicture", "\"%1\", page 1: %2")
                           .arg(sFileName, reader.errorString());
        }
        return nullptr;
    }
    return std::shared_ptr<const IkFrameFile>(new CkStillPicture(sFileName, bufferLayout(image)));
}

CkStillPicture::CkStillPicture(const QString& sFileName, const QImage& image)
    : m_fileName(sFileName), m_image(image), m_info(infoOf(image)) {}

bool CkStillPicture::describe(qint64 iFrame, SkFrameDescription& description, QString* psError) const {
    if (iFrame != 0) {
        if (psError != nullptr) {
            *psError = QCoreApplication::translate("CkStillPicture", "\"%1\": there is only one picture.")
                           .arg(m_fileName);
        }
        return false;
    }
    description = SkFrameDescription();
    description.info = m_info;
    return true;
}

std::unique_ptr<CkImageData> CkStillPicture::read(qint64 iFrame, QString* psError,
                                                  QJsonObject* pObject) const {
    SkFrameDescription description;
    CkPicture picture;
    if (!describe(iFrame, description, psError)) {
        return nullptr;
    }
    if (!picture.allocate(m_info)) {
        if (psError != nullptr) {
            *psError = QCoreApplication::translate("CkStillPicture", "\"%1\": There is not enough memory.")
                           .arg(m_fileName);
        }
        return nullptr;
    }
    if (psError != nullptr) {
        psError->clear();
    }
    if (pObject != nullptr) {
        *pObject = QJsonObject();
    }
    for (quint32 y = 0; y < m_info.height; ++y) {
        quint8* const row = picture.picBuf().row(y);
        std::memcpy(row, m_image.constScanLine(int(y)), m_info.lineSize);
        if (m_image.format() == QImage::Format_RGBA64) {
            auto* const samples = reinterpret_cast<quint16*>(row);
            for (quint32 x = 0; x < m_info.width; ++x) {
                std::swap(samples[4 * size_t(x)], samples[4 * size_t(x) + 2]);
            }
        }
    }
    auto frame = std::make_unique<CkImageData>();
    frame->setPicBuf(picture.take());
    return frame;
}
