#include "host/viewer/playback/CkRecordButton.h"

#include "host/viewer/playback/CkRecordingJob.h"
#include "host/viewer/playback/CkRecordingManager.h"
#include "zuCore/CkImageSource.h"

#include <QPainter>

namespace {

CkRecordingJob* runningOf(const CkRecordingManager& manager, void* handle) {
    for (CkRecordingJob* job : manager.jobs()) {
        const auto* source = qobject_cast<const CkImageSource*>(job->block());
        if (job->state() == CkRecordingJob::EkState::Running && source != nullptr &&
            source->cameraHandles().contains(handle)) {
            return job;
        }
    }
    return nullptr;
}

} // namespace

CkRecordButton::CkRecordButton(CkRecordingManager* pManager, void* pCameraHandle,
                               std::function<void()> openView, QWidget* pParent)
    : QPushButton(pParent), m_manager(pManager), m_handle(pCameraHandle), m_openView(std::move(openView)) {
    setObjectName(QStringLiteral("btnRecord"));
    setIcon(icon());
    connect(this, &QPushButton::clicked, this, &CkRecordButton::toggleRecording);
    connect(pManager, &CkRecordingManager::jobsChanged, this, &CkRecordButton::refresh);
    refresh();
}

QIcon CkRecordButton::icon() {
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xd0, 0x20, 0x20));
    painter.drawEllipse(5, 5, 22, 22);
    return QIcon(pixmap);
}

void CkRecordButton::toggleRecording() {
    if (CkRecordingJob* running = runningOf(*m_manager, m_handle)) {
        running->stop();
        return;
    }
    if (m_manager->sourceOfCamera(m_handle) == nullptr) {
        m_openView();
    }
    m_manager->recordWithDialog(m_manager->sourceOfCamera(m_handle));
}

void CkRecordButton::refresh() {
    const bool running = runningOf(*m_manager, m_handle) != nullptr;
    setText(running ? tr("Stop Recording") : tr("Record..."));
    setToolTip(
        running ? tr("Write the queued frames and close the file")
                : tr("Record the camera's pictures as they are delivered, from the moment the camera runs"));
}
