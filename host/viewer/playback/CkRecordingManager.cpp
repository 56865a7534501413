#include "host/viewer/playback/CkRecordingManager.h"

#include "host/recording/CkVideoSource.h"
#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/SaveFileName.h"
#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/playback/CkRecordingJob.h"
#include "host/viewer/playback/RecordedChain.h"
#include "zuCore/CkChain.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkImageSource.h"
#include "zuCoreGui/CkMdiView.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QRegularExpression>

#include <algorithm>

namespace {

const CkMdiView* followedView(const CkViewArea& area) {
    const CkMdiView* view = area.activeView();
    if (view != nullptr && view->dataProvider() == nullptr && view->connectedViewId() >= 0) {
        return area.view(view->connectedViewId());
    }
    return view;
}

bool isSameFile(const QString& a, const QString& b) {
    const QString first = QFileInfo(a).canonicalFilePath();
    return !first.isEmpty() && first == QFileInfo(b).canonicalFilePath();
}

void showBox(QWidget* window, const QString& text) {
    auto* box = new QMessageBox(QMessageBox::Warning, CkRecordingManager::tr("Recording"), text,
                                QMessageBox::Ok, window);
    box->setObjectName(QStringLiteral("recordingBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setModal(false);
    box->show();
}

} // namespace

CkRecordingManager::CkRecordingManager(CkViewArea* pArea, QWidget* pWindow)
    : QObject(pWindow), m_area(pArea), m_window(pWindow) {}

CkRecordingManager::~CkRecordingManager() = default;

CkChainable* CkRecordingManager::outputToRecord() const {
    const CkMdiView* view = followedView(*m_area);
    CkChainable* block = view != nullptr ? view->dataProvider() : nullptr;
    return block != nullptr && block->chain() != nullptr ? block : nullptr;
}

CkChainable* CkRecordingManager::sourceToRecord() const {
    CkChainable* block = outputToRecord();
    while (block != nullptr && !block->precedessors().isEmpty()) {
        block = block->precedessors().first();
    }
    return block;
}

CkChainable* CkRecordingManager::sourceOfCamera(void* pHandle) const {
    const auto isOfCamera = [pHandle](CkChainable* block) {
        const auto* source = qobject_cast<CkImageSource*>(block);
        return source != nullptr && source->cameraHandles().contains(pHandle);
    };
    if (CkChainable* active = sourceToRecord(); isOfCamera(active)) {
        return active;
    }
    for (const CkChain* chain : CkChainManager::instance()->chains()) {
        for (CkChainable* block : chain->imageSources()) {
            if (isOfCamera(block)) {
                return block;
            }
        }
    }
    return nullptr;
}

bool CkRecordingManager::isInUse(const QString& sFileName, QString& sReason) const {
    for (const CkRecordingJob* job : m_jobs) {
        if (job->state() != CkRecordingJob::EkState::Finished && isSameFile(job->fileName(), sFileName)) {
            sReason = tr("\"%1\" is being recorded to; choose another file.").arg(sFileName);
            return true;
        }
    }
    for (const CkChain* chain : CkChainManager::instance()->chains()) {
        for (CkChainable* block : chain->imageSources()) {
            const auto* source = qobject_cast<CkVideoSource*>(block);
            if (source != nullptr && isSameFile(source->fileName(), sFileName)) {
                sReason =
                    tr("\"%1\" is open here and would be lost; choose another file, or close its views.")
                        .arg(sFileName);
                return true;
            }
        }
    }
    return false;
}

QString CkRecordingManager::titleOf(const CkChainable* pBlock) const {
    const CkChain* chain = pBlock->chain();
    return chain != nullptr ? chain->chainTitle(pBlock) : pBlock->title();
}

CkRecordingJob* CkRecordingManager::record(CkChainable* pBlock, const QString& sFileName,
                                           EkRecordingCompression compression, QString& sError) {
    if (isInUse(sFileName, sError)) {
        return nullptr;
    }
    const CkMdiView* view = followedView(*m_area);
    if (view != nullptr && view->dataProvider() != pBlock) {
        view = nullptr;
        for (const CkMdiView* other : m_area->views()) {
            if (other->dataProvider() == pBlock) {
                view = other;
                break;
            }
        }
    }
    auto* job = new CkRecordingJob(this);
    CkRecorder::SkOptions options;
    options.compression = compression;
    if (!job->start(pBlock, QFileInfo(sFileName).absoluteFilePath(), RecordedChain::describe(pBlock, view),
                    options, sError)) {
        delete job;
        return nullptr;
    }
    job->setTitle(titleOf(pBlock));
    m_jobs.append(job);
    connect(job, &CkRecordingJob::problemOccurred, this, [this, job] { emit problemOccurred(job); });
    connect(job, &CkRecordingJob::stateChanged, this, [this, job] {
        if (job->state() == CkRecordingJob::EkState::Finished) {
            report(job);
        }
        emit jobsChanged();
    });
    qInfo("%s", qUtf8Printable(tr("Recording \"%1\" to %2").arg(job->title(), job->fileName())));
    emit jobsChanged();
    return job;
}

void CkRecordingManager::report(CkRecordingJob* pJob) {
    const CkRecorder::SkState state = pJob->counters();
    const QString frames = tr("%1: %n frame(s) recorded, %2 dropped", nullptr, pluralNumber(state.written))
                               .arg(pJob->fileName(), QString::number(state.dropped));
    if (state.error.isEmpty()) {
        if (state.dropped > 0) {
            qWarning("%s", qUtf8Printable(frames));
        } else {
            qInfo("%s", qUtf8Printable(frames));
        }
        return;
    }
    qCritical("%s", qUtf8Printable(state.error));
    const QString kept = state.written > 0
                             ? tr("The %n frame(s) before it are in the file and can be opened.", nullptr,
                                  pluralNumber(state.written))
                             : tr("The file holds no frame.");
    showBox(m_window,
            tr("The recording ended early.\n\n%1\n\n%2 %3")
                .arg(state.error, kept, tr("%n frame(s) were lost.", nullptr, pluralNumber(state.dropped))));
}

void CkRecordingManager::recordWithDialog(CkChainable* pBlock) {
    if (pBlock == nullptr) {
        return;
    }
    const QPointer<CkChainable> block(pBlock);
    QString name = titleOf(pBlock);
    name.replace(QRegularExpression(QStringLiteral("[^\\w.,()-]+")), QStringLiteral(" "));
    const QString proposed =
        QDir(ViewerSettings::lastDirectory())
            .filePath(QStringLiteral("%1 %2.tif")
                          .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH.mm.ss")),
                               name.simplified().left(80)));
    const QString plain = tr("Recordings (*.tif)");
    const QString packed = tr("Recordings, compressed without loss, slower (*.tif)");
    const QString suffix = QStringLiteral("tif");
    int format = 0;
    const QString fileName = askSaveFileName(m_window,
                                             {.title = tr("Record"),
                                              .start = proposed,
                                              .formats = {{plain, suffix}, {packed, suffix}},
                                              .unknownSuffix = EkUnknownSuffix::Refuse,
                                              .objectName = QStringLiteral("recordDialog")},
                                             format);
    if (fileName.isEmpty()) {
        return;
    }
    ViewerSettings::setLastDirectory(QFileInfo(fileName).absolutePath());
    QString error = tr("What was to be recorded has been closed.");
    if (!block ||
        record(block, fileName, format == 1 ? EkRecordingCompression::Deflate : EkRecordingCompression::None,
               error) == nullptr) {
        qWarning("%s", qUtf8Printable(error));
        showBox(m_window, error);
    }
}

void CkRecordingManager::stopAll() {
    for (CkRecordingJob* job : std::as_const(m_jobs)) {
        job->stop();
    }
}

int CkRecordingManager::runningCount() const {
    return int(std::count_if(m_jobs.begin(), m_jobs.end(), [](const CkRecordingJob* job) {
        return job->state() == CkRecordingJob::EkState::Running;
    }));
}

CkRecordingJob* CkRecordingManager::runningOf(const CkChainable* pBlock) const {
    for (CkRecordingJob* job : m_jobs) {
        if (job->state() == CkRecordingJob::EkState::Running && job->block() == pBlock && pBlock != nullptr) {
            return job;
        }
    }
    return nullptr;
}

void CkRecordingManager::remove(CkRecordingJob* pJob) {
    if (pJob->state() == CkRecordingJob::EkState::Finished && m_jobs.removeOne(pJob)) {
        pJob->deleteLater();
        emit jobsChanged();
    }
}
