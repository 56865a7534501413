#include "host/recording/CkRecordingReader.h"

#include "host/recording/CkTiffPage.h"
#include "host/recording/ForeignMembers.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicture.h"

#include <QCoreApplication>

#include <new>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkRecordingReader)
};

bool refuse(QString* psError, const QString& message) {
    if (psError != nullptr) {
        *psError = message;
    }
    return false;
}

} // namespace

CkRecordingReader::CkRecordingReader(const SkReadLimits& limits) : m_limits(limits) {}
CkRecordingReader::~CkRecordingReader() = default;

QString CkRecordingReader::fileName() const {
    return m_file.fileName();
}

qint64 CkRecordingReader::frameCount() const {
    return qint64(m_file.pageOffsets().size());
}

quint64 CkRecordingReader::byteCount() const {
    return m_file.byteCount();
}

QString CkRecordingReader::message(qint64 iFrame, const QString& sReason) const {
    return Texts::tr("\"%1\", page %2: %3").arg(fileName(), QString::number(quint64(iFrame) + 1), sReason);
}

bool CkRecordingReader::open(const QString& sFileName, QString* psError, const ProgressFunction& progress) {
    QString reason;
    try {
        if (!m_file.open(sFileName, reason)) {
            return refuse(psError, Texts::tr("\"%1\": %2").arg(sFileName, reason));
        }
        const CkTiffFile::EkIndex index = m_file.readIndex(m_limits.pages, progress, reason);
        if (index == CkTiffFile::EkIndex::Cancelled) {
            return refuse(psError, Texts::tr("\"%1\": %2").arg(sFileName, reason));
        }
        if (index == CkTiffFile::EkIndex::Damaged) {
            m_damage = message(frameCount(), reason);
        }
        if (frameCount() == 0) {
            return refuse(psError, m_damage.isEmpty()
                                       ? Texts::tr("\"%1\": The file holds no picture.").arg(sFileName)
                                       : m_damage);
        }
        SkFrameDescription first;
        if (describe(0, first, nullptr)) {
            m_recording = first.recordingInfo();
        }
        return true;
    } catch (const std::bad_alloc&) {
        return refuse(psError, Texts::tr("\"%1\": There is not enough memory.").arg(sFileName));
    }
}

bool CkRecordingReader::describe(qint64 iFrame, SkFrameDescription& description, QString* psError) const {
    if (iFrame < 0 || iFrame >= frameCount()) {
        return refuse(psError, message(iFrame, Texts::tr("There is no such page.")));
    }
    QString reason;
    try {
        CkTiffPage page(m_file, iFrame, m_limits);
        return page.describe(description, reason) || refuse(psError, message(iFrame, reason));
    } catch (const std::bad_alloc&) {
        return refuse(psError, message(iFrame, Texts::tr("There is not enough memory.")));
    }
}

std::unique_ptr<CkImageData> CkRecordingReader::read(qint64 iFrame, QString* psError,
                                                     QJsonObject* pObject) const {
    if (psError != nullptr) {
        psError->clear();
    }
    if (iFrame < 0 || iFrame >= frameCount()) {
        refuse(psError, message(iFrame, Texts::tr("There is no such page.")));
        return nullptr;
    }
    QString reason;
    try {
        CkTiffPage page(m_file, iFrame, m_limits);
        SkFrameDescription description;
        if (!page.describe(description, reason)) {
            refuse(psError, message(iFrame, reason));
            return nullptr;
        }
        CkPicture read;
        if (!read.allocate(description.info)) {
            refuse(psError, message(iFrame, Texts::tr("There is not enough memory.")));
            return nullptr;
        }
        auto frame = std::make_unique<CkImageData>();
        read.picBuf().additionalData = description.additionalData;
        frame->setPicBuf(read.take());
        frame->setMetadata(description.metadata);
        if (!description.object.isEmpty()) {
            ForeignMembers::set(*frame, description.foreignMembers());
        }
        const CkTiffPage::EkResult result = page.readSamples(frame->picBuf(), reason);
        if (result != CkTiffPage::EkResult::Complete) {
            refuse(psError, message(iFrame, reason));
        }
        if (result == CkTiffPage::EkResult::Failed) {
            return nullptr;
        }
        SkPicBuf& picture = frame->picBuf();
        if (picture.dataType == EkImageDataType::Float32) {
            CkPicBufAPI::CalcFloatDataMinMax(picture, picture.minValue, picture.maxValue, false);
        }
        if (pObject != nullptr) {
            *pObject = description.object;
        }
        return frame;
    } catch (const std::bad_alloc&) {
        refuse(psError, message(iFrame, Texts::tr("There is not enough memory.")));
        return nullptr;
    }
}
